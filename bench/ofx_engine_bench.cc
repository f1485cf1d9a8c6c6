// What the OFX engine adds around the markup parse of a statement response:
// building the request, copying the body, registering the aggregates, the
// sign-on and transaction status checks. BM_MarkupParse is the parse alone
// (as the markup benchmark's retained parse); BM_EngineRound is a request
// built and the same response processed.
//
//   build-rel/bench/ofx_engine_bench --benchmark_repetitions=15 --benchmark_report_aggregates_only=true
#include <benchmark/benchmark.h>

#include <string>

#include "ofx/message_set_table.h"
#include "ofx/ofx_client.h"
#include "ofx/ofx_tag_table.h"
#include "statement_text.h"

namespace orvelan {
namespace {

// A statement service reduced to what every one does: one request aggregate
// and the status check of its transaction response.
class StatusOnlyService : public OFXClient {
 public:
  int BuildMessageSets(ByteString& out, bool) override {
    ByteString trnuid;
    NewTransactionId(trnuid);
    MessageSetTable::AppendOpen(out, MessageSetTable::kStatement);
    out.Append("<STMTTRNRQ>\r\n<TRNUID>");
    out.Append(trnuid);
    out.Append("\r\n<STMTRQ>\r\n</STMTRQ>\r\n</STMTTRNRQ>\r\n");
    return MessageSetTable::AppendClose(out, MessageSetTable::kStatement);
  }
  int ParseResponse() override {
    if (int rc = Document().SelectPath("BANKMSGSRSV1"); rc != 0) return rc;
    return CheckStatus("STMTTRNRS/");
  }
};

void BM_MarkupParse(benchmark::State& state, bool xml) {
  const std::string& text = CachedStatement(static_cast<int>(state.range(0)), xml);
  OFXTagTable doc;
  doc.InitDefaults();
  for (auto _ : state) {
    doc.Reset();
    doc.RegisterAggregates();
    if (doc.ParseRetained(text) != 0) state.SkipWithError(doc.GetLastError());
    benchmark::DoNotOptimize(doc.Tree().Size());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
}

void BM_EngineRound(benchmark::State& state, bool xml) {
  const std::string& text = CachedStatement(static_cast<int>(state.range(0)), xml);
  StatusOnlyService engine;
  engine.InitDefaults();
  engine.SetOFXVersion(xml ? "211" : "102");
  engine.SetOFXUser("user");
  engine.SetOFXPassword("secret");
  ByteString request;
  for (auto _ : state) {
    engine.ClearResponse();
    if (engine.BuildRequest(request, true) != 0) state.SkipWithError("request");
    if (engine.ProcessResponse(text) != 0) state.SkipWithError(engine.GetLastError());
    benchmark::DoNotOptimize(request.Length());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
  // What the document holds beside the response text, per byte of it.
  MarkupDocument& doc = engine.Document();
  const double file = static_cast<double>(text.size());
  state.counters["arena_per_byte"] = doc.Tree().Size() / file;
  state.counters["kept_heap_per_byte"] = static_cast<double>(doc.Parser().KeptTextMemory()) / file;
}

BENCHMARK_CAPTURE(BM_MarkupParse, sgml, false)->Arg(10)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_EngineRound, sgml, false)->Arg(10)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_MarkupParse, xml, true)->Arg(10)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_EngineRound, xml, true)->Arg(10)->Arg(10000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace orvelan
