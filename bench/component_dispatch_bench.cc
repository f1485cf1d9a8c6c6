// Cost of one trip through the property and method tables, the path every
// host call takes: id lookup, index check, value conversion, last-error rules.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

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
  std::string response =
      "<OFX><BANKMSGSRSV1><STMTTRNRS><STATUS><CODE>0<SEVERITY>INFO</STATUS><STMTRS><CURDEF>USD"
      "<BANKACCTFROM><BANKID>1<ACCTID>2<ACCTTYPE>CHECKING</BANKACCTFROM><BANKTRANLIST><DTSTART>20260101"
      "<DTEND>20260131";
  for (int i = 0; i < 1000; ++i) {
    response += "<STMTTRN><TRNTYPE>DEBIT<DTPOSTED>20260105<TRNAMT>-42.17<FITID>" + std::to_string(i) + "</STMTTRN>";
  }
  response += "</BANKTRANLIST><LEDGERBAL><BALAMT>1<DTASOF>20260131</LEDGERBAL></STMTRS></STMTTRNRS></BANKMSGSRSV1></OFX>";
  if (component.service().SetOFXResponse(response.c_str()) != 0) state.SkipWithError("response not read");
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
