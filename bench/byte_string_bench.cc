// Costs of the foundation types on the paths the parser and the request
// builder take most often.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <new>

#include "base/byte_string.h"
#include "base/item_list.h"
#include "base/string_list.h"
#include "base/text_util.h"

namespace orvelan {
namespace {

// A header line built from short pieces never leaves the inline buffer.
void BM_ShortAppendsStayInline(benchmark::State& state) {
  for (auto _ : state) {
    ByteString s;
    s.Append("OFXHEADER:");
    s.AppendInt(100);
    s.Append("\r\nDATA:OFXSGML\r\nVERSION:");
    s.AppendInt(102);
    s.AppendChar('\r');
    s.AppendChar('\n');
    benchmark::DoNotOptimize(s.Data());
    if (s.IsOnHeap()) state.SkipWithError("short content reached the heap");
  }
}
BENCHMARK(BM_ShortAppendsStayInline);

void BM_AppendMegabyteIn16BytePieces(benchmark::State& state) {
  const char piece[17] = "<STMTTRN><TRNAMT";
  constexpr int kPieces = (1 << 20) / 16;
  for (auto _ : state) {
    ByteString s;
    for (int i = 0; i < kPieces; ++i) s.Append(piece, 16);
    benchmark::DoNotOptimize(s.Data());
  }
  state.SetBytesProcessed(state.iterations() * (1 << 20));
}
BENCHMARK(BM_AppendMegabyteIn16BytePieces);

void BM_AssignShortTexts(benchmark::State& state) {
  const char* texts[] = {"CHECKING", "20240131120000.000[-5:EST]", "-1234.56", "USD", "Grocery store #42"};
  ByteString s;
  size_t i = 0;
  for (auto _ : state) {
    s.Assign(texts[i++ % 5]);
    benchmark::DoNotOptimize(s.Data());
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_AssignShortTexts);

struct Transaction {
  Transaction() noexcept = default;
  Transaction* Clone() const {
    Transaction* copy = new (std::nothrow) Transaction();
    if (copy != nullptr) {
      copy->amount = amount;
      copy->name.Assign(name);
    }
    return copy;
  }
  double amount = 0;
  ByteString name;
};

// The parser's way: raise the count, then fill the record created on access.
void BM_ItemListFill100k(benchmark::State& state) {
  constexpr int kRecords = 100000;
  for (auto _ : state) {
    ItemList<Transaction> list;
    for (int i = 0; i < kRecords; ++i) {
      list.SetCount(i + 1);
      Transaction* t = list.Last();
      t->amount = i;
      t->name.Assign("PAYMENT");
    }
    benchmark::DoNotOptimize(list.Item(kRecords / 2));
  }
  state.SetItemsProcessed(state.iterations() * kRecords);
}
BENCHMARK(BM_ItemListFill100k)->Unit(benchmark::kMillisecond);

void BM_ItemListAdd100k(benchmark::State& state) {
  constexpr int kRecords = 100000;
  Transaction t;
  t.name.Assign("PAYMENT");
  for (auto _ : state) {
    ItemList<Transaction> list;
    for (int i = 0; i < kRecords; ++i) {
      t.amount = i;
      list.Add(t);
    }
    benchmark::DoNotOptimize(list.Item(kRecords / 2));
  }
  state.SetItemsProcessed(state.iterations() * kRecords);
}
BENCHMARK(BM_ItemListAdd100k)->Unit(benchmark::kMillisecond);

void BM_StringListAdd10k(benchmark::State& state) {
  constexpr int kItems = 10000;
  for (auto _ : state) {
    StringList list;
    for (int i = 0; i < kItems; ++i) list.Add("BANKMSGSRQV1");
    benchmark::DoNotOptimize(list.Item(kItems - 1));
  }
  state.SetItemsProcessed(state.iterations() * kItems);
}
BENCHMARK(BM_StringListAdd10k)->Unit(benchmark::kMicrosecond);

const char* const kAmounts[] = {"-1234.56", "0.01", "250000.00", "19.99", "  42", "1.5E3", "-0.07", "987654.321"};

void BM_ParseDecimalAmounts(benchmark::State& state) {
  size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(ParseDecimal(kAmounts[i++ % 8]));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ParseDecimalAmounts);

// The C library on the same inputs, for scale.
void BM_StrtodAmounts(benchmark::State& state) {
  size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(std::strtod(kAmounts[i++ % 8], nullptr));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_StrtodAmounts);

}  // namespace
}  // namespace orvelan
