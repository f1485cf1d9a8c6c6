// Our reading speed beside a generic XML parser's, in one run, on generated
// bank statements of 10k and 100k transactions (statement_text.h):
//   pugixml: in-place DOM parse of the 2.x file, then a walk summing TRNAMT;
//   OFXAggregate: writing Aggregate (the parse alone), 1.x and 2.x;
//   BankStatement: ReadOFXDataFile, then TxAmount, TxFITID, TxDatePosted and
//   TxPayeeName of every transaction through BankStatement_Get, 1.x and 2.x.
// Each case runs in a fresh child process (peak memory is that case's alone),
// then once more in that process ("warm": memory recycled, as in a host that
// reads statement after statement); medians of --runs runs (default 5) and
// the ratios between cases are printed. Times are the process's CPU time (user and system, page faults
// included), which a busy shared machine disturbs far less than the clock on
// the wall; ratios are taken within one run.
//
//   pugixml_comparison [--runs 5]
#include <malloc.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "child_run.h"
#include "orvelan.h"
#include "statement_text.h"

namespace {

using orvelan::bench::Median;
using orvelan::bench::ColdThenWarm;
using orvelan::bench::ReadFile;
using orvelan::bench::Run;
using orvelan::bench::CpuSeconds;

double Since(double start) { return CpuSeconds() - start; }

Run Pugixml(const std::string& path, int expected) {
  std::string text;
  pugi::xml_document doc;
  return ColdThenWarm([&](double& seconds, double& parse) {
    doc.reset();
    text = ReadFile(path);
    const double start = CpuSeconds();
    if (!doc.load_buffer_inplace(&text[0], text.size())) std::_Exit(1);
    parse = Since(start);
    double sum = 0;
    int count = 0;
    const pugi::xml_node list =
        doc.child("OFX").child("BANKMSGSRSV1").child("STMTTRNRS").child("STMTRS").child("BANKTRANLIST");
    for (pugi::xml_node tx = list.child("STMTTRN"); tx; tx = tx.next_sibling("STMTTRN")) {
      sum += std::atof(tx.child("TRNAMT").child_value());
      ++count;
    }
    seconds = Since(start);
    if (count != expected || sum == 0) std::_Exit(1);
  });
}

// The aggregates of the generated statement, which OFX 1.x needs to close its leaves.
constexpr const char* kAggregates[] = {"OFX",    "SIGNONMSGSRSV1", "SONRS",        "STATUS",    "BANKMSGSRSV1",
                                       "STMTTRNRS", "STMTRS",      "BANKACCTFROM", "BANKTRANLIST", "STMTTRN",
                                       "LEDGERBAL"};

Run Aggregate(const std::string& path) {
  void* agg = OFXAggregate_Create(nullptr, nullptr, nullptr);
  for (const char* name : kAggregates) {
    std::string setting = std::string("AddSGMLTag=") + name;
    void* params[2] = {&setting[0], nullptr};
    int lengths[2] = {0, 0};
    if (OFXAggregate_Do(agg, OFXAGGREGATE_METHOD_CONFIG, 2, params, lengths) != 0) std::_Exit(1);
  }
  std::string text;
  return ColdThenWarm([&](double& seconds, double& parse) {
    text = ReadFile(path);
    const double start = CpuSeconds();
    if (OFXAggregate_Set(agg, OFXAGGREGATE_PROP_AGGREGATE, 0, text.c_str(), static_cast<int>(text.size())) != 0) {
      std::fprintf(stderr, "Aggregate: %s\n", OFXAggregate_GetLastError(agg));
      std::_Exit(1);
    }
    parse = seconds = Since(start);
  });
}

Run Statement(const std::string& path, int expected) {
  void* st = BankStatement_Create(nullptr, nullptr, nullptr);
  return ColdThenWarm([&](double& seconds, double& parse) {
    const double start = CpuSeconds();
    void* params[1] = {const_cast<char*>(path.c_str())};
    int lengths[1] = {0};
    if (BankStatement_Do(st, BANKSTATEMENT_METHOD_READOFXDATAFILE, 1, params, lengths) != 0) {
      std::fprintf(stderr, "ReadOFXDataFile: %s\n", BankStatement_GetLastError(st));
      std::_Exit(1);
    }
    parse = Since(start);
    const int count =
        static_cast<int>(reinterpret_cast<intptr_t>(BankStatement_Get(st, BANKSTATEMENT_PROP_TXCOUNT, 0, nullptr)));
    size_t checksum = 0;
    for (int i = 0; i < count; ++i) {
      for (int id : {BANKSTATEMENT_PROP_TXAMOUNT, BANKSTATEMENT_PROP_TXFITID, BANKSTATEMENT_PROP_TXDATEPOSTED,
                     BANKSTATEMENT_PROP_TXPAYEENAME}) {
        int length = 0;
        const char* text = static_cast<const char*>(BankStatement_Get(st, id, i, &length));
        checksum += text == nullptr ? 0 : std::strlen(text);
      }
    }
    seconds = Since(start);
    if (count != expected || checksum == 0) std::_Exit(1);
  });
}

struct Figures { double seconds, parse_seconds, peak_per_file, warm_seconds, warm_parse_seconds; };

template <typename Body>
Figures Measure(int runs, double file_bytes, Body&& body) {
  std::vector<double> times, parses, warm_times, warm_parses;
  std::vector<long> peaks;
  for (int r = 0; r < runs; ++r) {
    const Run run = orvelan::bench::RunInChild(body);
    times.push_back(run.seconds);
    parses.push_back(run.parse_seconds);
    peaks.push_back(run.peak_growth_kib);
    warm_times.push_back(run.warm_seconds);
    warm_parses.push_back(run.warm_parse_seconds);
  }
  return {Median(times), Median(parses), Median(peaks) * 1024.0 / file_bytes, Median(warm_times), Median(warm_parses)};
}

}  // namespace

int main(int argc, char** argv) {
  int runs = 5;
  for (int i = 1; i + 1 < argc; i += 2) {
    if (std::strcmp(argv[i], "--runs") == 0) runs = std::max(1, std::atoi(argv[i + 1]));
  }
  const std::string stem = "/tmp/pugixml_comparison_" + std::to_string(getpid());
  enum { kPugi, kAgg1, kAgg2, kRead1, kRead2, kCases };
  const char* const names[kCases] = {"pugixml parse+walk 2.x", "OFXAggregate parse 1.x", "OFXAggregate parse 2.x",
                                     "BankStatement read 1.x", "BankStatement read 2.x"};
  Figures f[2][kCases];
  double bytes[2][2];
  const int sizes[2] = {10000, 100000};
  for (int s = 0; s < 2; ++s) {
    std::string paths[2];
    for (int xml = 0; xml < 2; ++xml) {
      paths[xml] = stem + "_" + std::to_string(sizes[s]) + (xml ? ".xml" : ".ofx");
      const std::string text = orvelan::Statement(sizes[s], xml == 1);
      bytes[s][xml] = static_cast<double>(text.size());
      std::FILE* out = std::fopen(paths[xml].c_str(), "wb");
      if (out == nullptr || std::fwrite(text.data(), 1, text.size(), out) != text.size()) return 1;
      std::fclose(out);
    }
    const int n = sizes[s];
    f[s][kPugi] = Measure(runs, bytes[s][1], [&] { return Pugixml(paths[1], n); });
    f[s][kAgg1] = Measure(runs, bytes[s][0], [&] { return Aggregate(paths[0]); });
    f[s][kAgg2] = Measure(runs, bytes[s][1], [&] { return Aggregate(paths[1]); });
    f[s][kRead1] = Measure(runs, bytes[s][0], [&] { return Statement(paths[0], n); });
    f[s][kRead2] = Measure(runs, bytes[s][1], [&] { return Statement(paths[1], n); });
    for (const std::string& path : paths) std::remove(path.c_str());
  }

  std::printf("files: 10k %.1f MB (1.x) %.1f MB (2.x); 100k %.1f MB (1.x) %.1f MB (2.x); medians of %d runs; "
              "CPU seconds\n",
              bytes[0][0] / 1e6, bytes[0][1] / 1e6, bytes[1][0] / 1e6, bytes[1][1] / 1e6, runs);
  std::printf("%-24s %8s %8s %9s %9s | %8s %8s %9s %9s\n", "", "cold 10k", "100k", "100k/10k", "peak/file",
              "warm 10k", "100k", "100k/10k", "parse MB/s");
  for (int c = 0; c < kCases; ++c) {
    const double file = bytes[1][c == kAgg1 || c == kRead1 ? 0 : 1];
    std::printf("%-24s %8.4f %8.4f %9.2f %9.2f | %8.4f %8.4f %9.2f %9.0f\n", names[c], f[0][c].seconds,
                f[1][c].seconds, f[1][c].seconds / f[0][c].seconds, f[1][c].peak_per_file, f[0][c].warm_seconds,
                f[1][c].warm_seconds, f[1][c].warm_seconds / f[0][c].warm_seconds,
                file / 1e6 / f[1][c].warm_parse_seconds);
  }
  const Figures& pugi = f[1][kPugi];
  std::printf("pugixml parse alone, 100k 2.x: cold %.4f s, warm %.4f s\n", pugi.parse_seconds, pugi.warm_parse_seconds);
  // pugixml's throughput is its parse and walk, as a host reading the
  // statement would use it; its parse alone is shown for comparison.
  for (int warm = 0; warm < 2; ++warm) {
    const auto time = [&](int c) { return warm ? f[1][c].warm_seconds : f[1][c].seconds; };
    const auto parse = [&](int c) { return warm ? f[1][c].warm_parse_seconds : f[1][c].parse_seconds; };
    const double pugi_rate = bytes[1][1] / time(kPugi);
    const double pugi_parse_rate = bytes[1][1] / parse(kPugi);
    std::printf("%s, 100k: read / pugixml parse+walk: 1.x %.2f  2.x %.2f;  OFXAggregate parse rate / pugixml's: "
                "1.x %.2f  2.x %.2f (/ its parse alone: %.2f  %.2f)\n",
                warm ? "warm" : "cold", time(kRead1) / time(kPugi), time(kRead2) / time(kPugi),
                bytes[1][0] / parse(kAgg1) / pugi_rate, bytes[1][1] / parse(kAgg2) / pugi_rate,
                bytes[1][0] / parse(kAgg1) / pugi_parse_rate, bytes[1][1] / parse(kAgg2) / pugi_parse_rate);
  }
  return 0;
}
