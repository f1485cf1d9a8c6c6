// Parse and walk of generated bank statements, OFX 1.x SGML and OFX 2.x XML,
// the way the OFX engine and a statement service use the document.
#include <benchmark/benchmark.h>

#include <string>

#include "ofx/ofx_tag_table.h"

namespace orvelan {
namespace {

constexpr const char* kFields[] = {"TRNTYPE", "DTPOSTED", "TRNAMT", "FITID", "CHECKNUM", "NAME", "MEMO"};

std::string Statement(int transactions, bool xml) {
  std::string s;
  const char* nl = "\r\n";
  // Leaves end with an end tag in XML and with the line end in SGML.
  const auto leaf = [&](const char* name, const std::string& value) {
    s += "<";
    s += name;
    s += ">";
    s += value;
    if (xml) {
      s += "</";
      s += name;
      s += ">";
    }
    s += nl;
  };
  if (xml) {
    s += "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\r\n"
         "<?OFX OFXHEADER=\"200\" VERSION=\"211\" SECURITY=\"NONE\" OLDFILEUID=\"NONE\" NEWFILEUID=\"NONE\"?>\r\n";
  } else {
    s += "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\nSECURITY:NONE\r\nENCODING:USASCII\r\nCHARSET:1252\r\n"
         "COMPRESSION:NONE\r\nOLDFILEUID:NONE\r\nNEWFILEUID:NONE\r\n\r\n";
  }
  s += "<OFX>\r\n<SIGNONMSGSRSV1>\r\n<SONRS>\r\n<STATUS>\r\n";
  leaf("CODE", "0");
  leaf("SEVERITY", "INFO");
  s += "</STATUS>\r\n";
  leaf("DTSERVER", "20240131120000.000[-5:EST]");
  leaf("LANGUAGE", "ENG");
  s += "</SONRS>\r\n</SIGNONMSGSRSV1>\r\n<BANKMSGSRSV1>\r\n<STMTTRNRS>\r\n";
  leaf("TRNUID", "1001");
  s += "<STATUS>\r\n";
  leaf("CODE", "0");
  leaf("SEVERITY", "INFO");
  s += "</STATUS>\r\n<STMTRS>\r\n";
  leaf("CURDEF", "USD");
  s += "<BANKACCTFROM>\r\n";
  leaf("BANKID", "121000248");
  leaf("ACCTID", "0123456789");
  leaf("ACCTTYPE", "CHECKING");
  s += "</BANKACCTFROM>\r\n<BANKTRANLIST>\r\n";
  leaf("DTSTART", "20240101");
  leaf("DTEND", "20240131");
  for (int i = 0; i < transactions; ++i) {
    s += "<STMTTRN>\r\n";
    leaf("TRNTYPE", i % 4 == 0 ? "CREDIT" : "DEBIT");
    leaf("DTPOSTED", "202401" + std::to_string(10 + i % 20) + "120000.000[-5:EST]");
    leaf("TRNAMT", (i % 4 == 0 ? "" : "-") + std::to_string(10 + i % 990) + "." + std::to_string(10 + i % 90));
    leaf("FITID", "2024011" + std::to_string(1000000 + i));
    if (i % 5 == 0) leaf("CHECKNUM", std::to_string(1000 + i));
    leaf("NAME", i % 3 == 0 ? "GROCERY STORE #" + std::to_string(i % 700) : "ONLINE PAYMENT THANK YOU");
    if (i % 2 == 0) leaf("MEMO", "POS PURCHASE &amp; CASH BACK " + std::to_string(i));
    s += "</STMTTRN>\r\n";
  }
  s += "</BANKTRANLIST>\r\n<LEDGERBAL>\r\n";
  leaf("BALAMT", "1234.56");
  leaf("DTASOF", "20240131");
  s += "</LEDGERBAL>\r\n</STMTRS>\r\n</STMTTRNRS>\r\n</BANKMSGSRSV1>\r\n</OFX>\r\n";
  return s;
}

const std::string& CachedStatement(int transactions, bool xml) {
  static std::string cache[2][3];
  const int slot = transactions >= 100000 ? 2 : transactions >= 10000 ? 1 : 0;
  std::string& s = cache[xml ? 1 : 0][slot];
  if (s.empty()) s = Statement(transactions, xml);
  return s;
}

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
