// Cost of one trip through the property and method tables, the path every
// host call takes: id lookup, index check, value conversion, last-error rules.
#include <benchmark/benchmark.h>

#include <cstdint>

#include "services/bank_statement_component.h"

namespace {

using orvelan::BankStatementComponent;

void BM_GetText(benchmark::State& state) {
  BankStatementComponent component(nullptr, nullptr);
  component.Set(31, 0, "https://ofx.example.com/ofx", 0);
  for (auto _ : state) benchmark::DoNotOptimize(component.Get(31, 0, nullptr));
}
BENCHMARK(BM_GetText);

void BM_SetText(benchmark::State& state) {
  BankStatementComponent component(nullptr, nullptr);
  for (auto _ : state) benchmark::DoNotOptimize(component.Set(42, 0, "user-name", 0));
}
BENCHMARK(BM_SetText);

void BM_GetIndexedText(benchmark::State& state) {
  BankStatementComponent component(nullptr, nullptr);
  orvelan::StatementTransaction tx;
  tx.amount.Assign("-42.17");
  for (int i = 0; i < 1000; ++i) component.service().Transactions().Add(tx);
  int index = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(component.Get(55, index, nullptr));
    index = (index + 1) % 1000;
  }
}
BENCHMARK(BM_GetIndexedText);

void BM_ConfigQuery(benchmark::State& state) {
  BankStatementComponent component(nullptr, nullptr);
  void* params[2] = {const_cast<char*>("CodePage"), nullptr};
  int lengths[2] = {0, 0};
  for (auto _ : state) benchmark::DoNotOptimize(component.Do(2, 2, params, lengths));
}
BENCHMARK(BM_ConfigQuery);

void BM_CreateDestroy(benchmark::State& state) {
  for (auto _ : state) {
    auto* component = new BankStatementComponent(nullptr, nullptr);
    benchmark::DoNotOptimize(component);
    delete component;
  }
}
BENCHMARK(BM_CreateDestroy);

}  // namespace
