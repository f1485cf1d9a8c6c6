// The per-transaction conversions a statement service runs on every row it
// hands back: an OFX date to the host's pattern, and an amount clean-up.
#include <benchmark/benchmark.h>

#include "ofx/date_amount_format.h"
#include "ofx/ofx_date_time.h"

namespace orvelan {
namespace {

void BM_ParseOFXDate(benchmark::State& state) {
  OFXDateTime when;
  for (auto _ : state) {
    benchmark::DoNotOptimize(when.ParseOFXDate("20240115103000.000[-5:EST]"));
  }
}
BENCHMARK(BM_ParseOFXDate);

void BM_FormatDate(benchmark::State& state) {
  DateAmountFormat format;
  ByteString out;
  for (auto _ : state) {
    format.FormatDate(out, "20240115103000.000[-5:EST]");
    benchmark::DoNotOptimize(out.Data());
  }
}
BENCHMARK(BM_FormatDate);

void BM_FormatDateBareDate(benchmark::State& state) {
  DateAmountFormat format;
  ByteString out;
  for (auto _ : state) {
    format.FormatDate(out, "20240115");
    benchmark::DoNotOptimize(out.Data());
  }
}
BENCHMARK(BM_FormatDateBareDate);

void BM_FormatAmount(benchmark::State& state) {
  DateAmountFormat format;
  for (auto _ : state) {
    benchmark::DoNotOptimize(format.FormatAmount("-00001234.56").data());
  }
}
BENCHMARK(BM_FormatAmount);

void BM_ParseUserDate(benchmark::State& state) {
  DateAmountFormat format;
  ByteString out;
  for (auto _ : state) {
    benchmark::DoNotOptimize(format.ParseUserDate(out, "1/5/2024 08:00:00"));
  }
}
BENCHMARK(BM_ParseUserDate);

}  // namespace
}  // namespace orvelan
