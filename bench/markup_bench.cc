// Parse and walk of generated bank statements, OFX 1.x SGML and OFX 2.x XML,
// the way the OFX engine and a statement service use the document.
#include <benchmark/benchmark.h>

#include <string>

#include "ofx/ofx_tag_table.h"
#include "statement_text.h"

namespace orvelan {
namespace {

constexpr const char* kFields[] = {"TRNTYPE", "DTPOSTED", "TRNAMT", "FITID", "CHECKNUM", "NAME", "MEMO"};

// `retained`: the caller keeps the text, as the engine keeps a response body.
int ParseInto(OFXTagTable& doc, const std::string& text, bool retained = false) {
  doc.Reset();
  doc.RegisterAggregates();
  return retained ? doc.ParseRetained(text) : doc.Parse(text.c_str());
}

void BM_Parse(benchmark::State& state, bool xml, bool retained) {
  const std::string& text = CachedStatement(static_cast<int>(state.range(0)), xml);
  OFXTagTable doc;
  doc.InitDefaults();
  for (auto _ : state) {
    if (ParseInto(doc, text, retained) != 0) state.SkipWithError(doc.GetLastError());
    benchmark::DoNotOptimize(doc.Tree().Size());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
  // What the document holds beside the caller's text, per byte of input.
  const double file = static_cast<double>(text.size());
  state.counters["file_MB"] = file / 1e6;
  state.counters["arena_per_byte"] = doc.Tree().Size() / file;
  state.counters["kept_per_byte"] = doc.Parser().KeptLength() / file;
  state.counters["kept_heap_per_byte"] = static_cast<double>(doc.Parser().KeptTextMemory()) / file;
}

// Reads every transaction with its leaves: index step, HasPath for optional
// fields, a step down and back up for each value.
void BM_Walk(benchmark::State& state, bool xml) {
  const int n = static_cast<int>(state.range(0));
  const std::string& text = CachedStatement(n, xml);
  OFXTagTable doc;
  doc.InitDefaults();
  if (ParseInto(doc, text) != 0) state.SkipWithError(doc.GetLastError());
  std::string step;
  for (auto _ : state) {
    size_t bytes = 0;
    doc.SelectPath("/OFX/BANKMSGSRSV1/STMTTRNRS/STMTRS/BANKTRANLIST");
    for (int i = 1; i <= n; ++i) {
      step = "STMTTRN[" + std::to_string(i) + "]";
      if (doc.SelectPath(step) != 0) {
        state.SkipWithError("missing transaction");
        break;
      }
      for (const char* field : kFields) {
        if (!doc.HasPath(field)) continue;
        doc.SelectPath(field);
        bytes += std::char_traits<char>::length(doc.ElementText());
        doc.SelectPath("..");
      }
      doc.SelectPath("..");
    }
    benchmark::DoNotOptimize(bytes);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * n);
}

BENCHMARK_CAPTURE(BM_Parse, sgml, false, false)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Parse, xml, true, false)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Parse, sgml_retained, false, true)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Parse, xml_retained, true, true)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Walk, sgml, false)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Walk, xml, true)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace orvelan
