// Reading a large investment statement beside a generic XML parser, in one
// run. The generated OFX 2.x statement carries transactions of every common
// kind (buys and sells of stocks, funds, debt, options and others, income,
// reinvestment, transfers, splits, banking), and one position and one security
// per 25 transactions (2k each at 50k), plus balances and open orders.
//   pugixml: in-place DOM parse, then a walk reading each transaction's kind,
//   trade or posting date, total, units and security id;
//   InvStatement: ReadOFXDataFile, then TxType, TxDate, TxTotal, TxUnits and
//   TxSecurityId of every transaction through InvStatement_Get.
// Each case runs in a fresh child process (its peak memory is its own); cases
// alternate so that a burst of load falls on all of them; then once more in
// the same process ("warm": memory recycled, page faults mostly gone). Medians
// of --runs runs (default 5), CPU seconds.
//
//   inv_statement_comparison [--runs 5]
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "child_run.h"
#include "orvelan.h"

namespace {

using orvelan::bench::CpuSeconds;
using orvelan::bench::Median;
using orvelan::bench::PeakKiB;
using orvelan::bench::ResidentKiB;
using orvelan::bench::ColdThenWarm;
using orvelan::bench::ReadFile;
using orvelan::bench::Run;

// OFX 2.x markup, one element a line.
struct Writer {
  std::string s;
  void Leaf(const char* name, const std::string& value) {
    s += '<';
    s += name;
    s += '>';
    s += value;
    s += "</";
    s += name;
    s += ">\r\n";
  }
  void Open(const char* name) { s.append("<").append(name).append(">\r\n"); }
  void Close(const char* name) { s.append("</").append(name).append(">\r\n"); }
  void SecId(int security) {
    Open("SECID");
    Leaf("UNIQUEID", std::to_string(100000000 + security));
    Leaf("UNIQUEIDTYPE", "CUSIP");
    Close("SECID");
  }
  void InvTran(int i) {
    Open("INVTRAN");
    Leaf("FITID", "T" + std::to_string(1000000 + i));
    Leaf("DTTRADE", Date(i));
    Leaf("DTSETTLE", Date(i + 2));
    if (i % 3 == 0) Leaf("MEMO", "Order " + std::to_string(i * 7));
    Close("INVTRAN");
  }
  static std::string Date(int i) {
    char text[32];
    std::snprintf(text, sizeof text, "2024%02d%02d%02d0000.000[-5:EST]", i / 28 % 12 + 1, i % 28 + 1, 9 + i % 8);
    return text;
  }
  static std::string Amount(int i, bool negative) {
    return (negative ? "-" : "") + std::to_string(10 + i % 9000) + "." + std::to_string(10 + i % 90);
  }
};

// A buy or sell: its element, its side, and a leaf of its own after the side (none when null).
struct BuySell {
  const char* kind;
  const char* side;
  const char* extra_name;
  const char* extra_value;
};
constexpr BuySell kBuySells[] = {
    {"BUYSTOCK", "INVBUY", "BUYTYPE", "BUY"},       {"SELLSTOCK", "INVSELL", "SELLTYPE", "SELL"},
    {"BUYMF", "INVBUY", "BUYTYPE", "BUY"},          {"SELLMF", "INVSELL", "SELLTYPE", "SELL"},
    {"BUYDEBT", "INVBUY", "ACCRDINT", "12.50"},     {"SELLDEBT", "INVSELL", "SELLREASON", "SELL"},
    {"BUYOPT", "INVBUY", "OPTBUYTYPE", "BUYTOOPEN"}, {"SELLOPT", "INVSELL", "OPTSELLTYPE", "SELLTOCLOSE"},
    {"BUYOTHER", "INVBUY", nullptr, nullptr},       {"SELLOTHER", "INVSELL", nullptr, nullptr},
};

void Transaction(Writer& w, int i, int securities) {
  const int security = (i * 7) % securities;
  const int kind = i % 15;
  if (kind < 10) {
    const BuySell& b = kBuySells[kind];
    w.Open(b.kind);
    w.Open(b.side);
    w.InvTran(i);
    w.SecId(security);
    w.Leaf("UNITS", std::to_string(1 + i % 500));
    w.Leaf("UNITPRICE", std::to_string(5 + i % 300) + ".25");
    if (i % 2 == 0) w.Leaf("COMMISSION", "4.95");
    w.Leaf("TOTAL", Writer::Amount(i, b.side[3] == 'B'));
    w.Leaf("SUBACCTSEC", "CASH");
    w.Leaf("SUBACCTFUND", "CASH");
    w.Close(b.side);
    if (b.extra_name != nullptr) w.Leaf(b.extra_name, b.extra_value);
    if (kind == 6 || kind == 7) w.Leaf("SHPERCTRCT", "100");
    w.Close(b.kind);
    return;
  }
  static const char* const kOthers[] = {"INCOME", "REINVEST", "TRANSFER", "SPLIT", "INVBANKTRAN"};
  const char* name = kOthers[kind - 10];
  w.Open(name);
  if (kind == 14) {
    w.Open("STMTTRN");
    w.Leaf("TRNTYPE", i % 2 ? "CREDIT" : "DEBIT");
    w.Leaf("DTPOSTED", Writer::Date(i));
    w.Leaf("TRNAMT", Writer::Amount(i, i % 2 == 0));
    w.Leaf("FITID", "B" + std::to_string(1000000 + i));
    w.Leaf("NAME", "CASH TRANSFER " + std::to_string(i % 40));
    w.Close("STMTTRN");
    w.Leaf("SUBACCTFUND", "CASH");
    w.Close(name);
    return;
  }
  w.InvTran(i);
  w.SecId(security);
  switch (kind) {
    case 10:
      w.Leaf("INCOMETYPE", i % 2 ? "DIV" : "INTEREST");
      w.Leaf("TOTAL", Writer::Amount(i, false));
      w.Leaf("SUBACCTSEC", "CASH");
      w.Leaf("SUBACCTFUND", "CASH");
      break;
    case 11:
      w.Leaf("INCOMETYPE", "DIV");
      w.Leaf("TOTAL", Writer::Amount(i, true));
      w.Leaf("SUBACCTSEC", "CASH");
      w.Leaf("UNITS", "1." + std::to_string(100 + i % 900));
      w.Leaf("UNITPRICE", std::to_string(5 + i % 300) + ".25");
      break;
    case 12:
      w.Leaf("SUBACCTSEC", "CASH");
      w.Leaf("UNITS", std::to_string(1 + i % 500));
      w.Leaf("TFERACTION", i % 2 ? "IN" : "OUT");
      w.Leaf("POSTYPE", "LONG");
      break;
    default:
      w.Leaf("SUBACCTSEC", "CASH");
      w.Leaf("OLDUNITS", std::to_string(1 + i % 500));
      w.Leaf("NEWUNITS", std::to_string(2 * (1 + i % 500)));
      w.Leaf("NUMERATOR", "2");
      w.Leaf("DENOMINATOR", "1");
      break;
  }
  w.Close(name);
}

std::string Statement(int transactions) {
  const int holdings = std::max(1, transactions / 25);
  Writer w;
  w.s = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\r\n"
        "<?OFX OFXHEADER=\"200\" VERSION=\"211\" SECURITY=\"NONE\" OLDFILEUID=\"NONE\" NEWFILEUID=\"NONE\"?>\r\n"
        "<OFX>\r\n<SIGNONMSGSRSV1>\r\n<SONRS>\r\n<STATUS>\r\n<CODE>0</CODE>\r\n<SEVERITY>INFO</SEVERITY>\r\n"
        "</STATUS>\r\n<DTSERVER>20241231120000.000[-5:EST]</DTSERVER>\r\n<LANGUAGE>ENG</LANGUAGE>\r\n</SONRS>\r\n"
        "</SIGNONMSGSRSV1>\r\n<INVSTMTMSGSRSV1>\r\n<INVSTMTTRNRS>\r\n<TRNUID>1001</TRNUID>\r\n<STATUS>\r\n"
        "<CODE>0</CODE>\r\n<SEVERITY>INFO</SEVERITY>\r\n</STATUS>\r\n<INVSTMTRS>\r\n";
  w.Leaf("DTASOF", "20241231");
  w.Leaf("CURDEF", "USD");
  w.Open("INVACCTFROM");
  w.Leaf("BROKERID", "broker.example.com");
  w.Leaf("ACCTID", "Z12345678");
  w.Close("INVACCTFROM");
  w.Open("INVTRANLIST");
  w.Leaf("DTSTART", "20240101");
  w.Leaf("DTEND", "20241231");
  for (int i = 0; i < transactions; ++i) Transaction(w, i, holdings);
  w.Close("INVTRANLIST");
  w.Open("INVPOSLIST");
  static const char* const kPositions[] = {"POSSTOCK", "POSMF", "POSDEBT", "POSOPT", "POSOTHER"};
  for (int p = 0; p < holdings; ++p) {
    w.Open(kPositions[p % 5]);
    w.Open("INVPOS");
    w.SecId(p);
    w.Leaf("HELDINACCT", "CASH");
    w.Leaf("POSTYPE", "LONG");
    w.Leaf("UNITS", std::to_string(1 + p % 900));
    w.Leaf("UNITPRICE", std::to_string(5 + p % 300) + ".25");
    w.Leaf("MKTVAL", Writer::Amount(p, false));
    w.Leaf("DTPRICEASOF", "20241231160000.000[-5:EST]");
    w.Close("INVPOS");
    if (p % 5 == 0) w.Leaf("REINVDIV", "Y");
    w.Close(kPositions[p % 5]);
  }
  w.Close("INVPOSLIST");
  w.s += "<INVBAL>\r\n<AVAILCASH>15234.50</AVAILCASH>\r\n<MARGINBALANCE>0</MARGINBALANCE>\r\n"
         "<SHORTBALANCE>0</SHORTBALANCE>\r\n<BUYPOWER>30469.00</BUYPOWER>\r\n<BALLIST>\r\n<BAL>\r\n"
         "<NAME>Dividends YTD</NAME>\r\n<DESC>Dividends year to date</DESC>\r\n<BALTYPE>DOLLAR</BALTYPE>\r\n"
         "<VALUE>1234.56</VALUE>\r\n</BAL>\r\n</BALLIST>\r\n</INVBAL>\r\n<INVOOLIST>\r\n";
  for (int o = 0; o < 20; ++o) {
    w.Open("OOBUYSTOCK");
    w.Open("OO");
    w.Leaf("FITID", "O" + std::to_string(o));
    w.SecId(o % holdings);
    w.Leaf("DTPLACED", "20241230");
    w.Leaf("UNITS", "100");
    w.Leaf("SUBACCT", "CASH");
    w.Leaf("DURATION", "GOODTILCANCEL");
    w.Leaf("RESTRICTION", "NONE");
    w.Leaf("LIMITPRICE", "50.00");
    w.Close("OO");
    w.Leaf("BUYTYPE", "BUY");
    w.Close("OOBUYSTOCK");
  }
  w.s += "</INVOOLIST>\r\n</INVSTMTRS>\r\n</INVSTMTTRNRS>\r\n</INVSTMTMSGSRSV1>\r\n<SECLISTMSGSRSV1>\r\n<SECLIST>\r\n";
  static const char* const kInfos[] = {"STOCKINFO", "MFINFO", "DEBTINFO", "OPTINFO", "OTHERINFO"};
  for (int s = 0; s < holdings; ++s) {
    w.Open(kInfos[s % 5]);
    w.Open("SECINFO");
    w.SecId(s);
    w.Leaf("SECNAME", "Security number " + std::to_string(s));
    w.Leaf("TICKER", "T" + std::to_string(s));
    w.Leaf("UNITPRICE", std::to_string(5 + s % 300) + ".25");
    w.Leaf("DTASOF", "20241231");
    w.Close("SECINFO");
    if (s % 5 == 0) w.Leaf("YIELD", "1.5");
    if (s % 5 == 2) w.Leaf("PARVALUE", "1000");
    w.Close(kInfos[s % 5]);
  }
  w.s += "</SECLIST>\r\n</SECLISTMSGSRSV1>\r\n</OFX>\r\n";
  return w.s;
}

// The five values a portfolio reader wants of a transaction, as pugixml finds them.
Run Pugixml(const std::string& path, int expected) {
  std::string text;
  pugi::xml_document doc;
  return ColdThenWarm([&](double& seconds, double& parse) {
    doc.reset();
    const double start = CpuSeconds();
    text = ReadFile(path);
    if (!doc.load_buffer_inplace(&text[0], text.size())) std::_Exit(1);
    parse = CpuSeconds() - start;
    const pugi::xml_node list =
        doc.child("OFX").child("INVSTMTMSGSRSV1").child("INVSTMTTRNRS").child("INVSTMTRS").child("INVTRANLIST");
    size_t checksum = 0;
    int count = 0;
    for (pugi::xml_node tx = list.first_child(); tx; tx = tx.next_sibling()) {
      if (std::strcmp(tx.name(), "DTSTART") == 0 || std::strcmp(tx.name(), "DTEND") == 0) continue;
      pugi::xml_node detail = tx.child("INVBUY");
      if (!detail) detail = tx.child("INVSELL");
      const pugi::xml_node bank = tx.child("STMTTRN");
      const pugi::xml_node tran = detail ? detail.child("INVTRAN") : tx.child("INVTRAN");
      if (!detail) detail = tx;
      const char* date = bank ? bank.child_value("DTPOSTED") : tran.child_value("DTTRADE");
      const char* total = bank ? bank.child_value("TRNAMT") : detail.child_value("TOTAL");
      const pugi::xml_node secid = detail.child("SECID");
      std::string id;
      if (secid) id = std::string(secid.child_value("UNIQUEIDTYPE")) + ":" + secid.child_value("UNIQUEID");
      checksum += std::strlen(tx.name()) + std::strlen(date) + std::strlen(total) +
                  std::strlen(detail.child_value("UNITS")) + id.size();
      ++count;
    }
    seconds = CpuSeconds() - start;
    if (count != expected || checksum == 0) std::_Exit(1);
  });
}

Run Orvelan(const std::string& path, int expected) {
  void* st = InvStatement_Create(nullptr, nullptr, nullptr);
  return ColdThenWarm([&](double& seconds, double& parse) {
    const double start = CpuSeconds();
    void* params[1] = {const_cast<char*>(path.c_str())};
    int lengths[1] = {0};
    if (InvStatement_Do(st, INVSTATEMENT_METHOD_READOFXDATAFILE, 1, params, lengths) != 0) {
      std::fprintf(stderr, "ReadOFXDataFile: %s\n", InvStatement_GetLastError(st));
      std::_Exit(1);
    }
    parse = CpuSeconds() - start;
    const int count =
        static_cast<int>(reinterpret_cast<intptr_t>(InvStatement_Get(st, INVSTATEMENT_PROP_TXCOUNT, 0, nullptr)));
    size_t checksum = 0;
    for (int i = 0; i < count; ++i) {
      checksum += static_cast<size_t>(
          reinterpret_cast<intptr_t>(InvStatement_Get(st, INVSTATEMENT_PROP_TXTYPE, i, nullptr)));
      for (int id : {INVSTATEMENT_PROP_TXDATE, INVSTATEMENT_PROP_TXTOTAL, INVSTATEMENT_PROP_TXUNITS,
                     INVSTATEMENT_PROP_TXSECURITYID}) {
        int length = 0;
        const char* text = static_cast<const char*>(InvStatement_Get(st, id, i, &length));
        checksum += text == nullptr ? 0 : std::strlen(text);
      }
    }
    seconds = CpuSeconds() - start;
    if (count != expected || checksum == 0) {
      std::fprintf(stderr, "read %d transactions, expected %d\n", count, expected);
      std::_Exit(1);
    }
  });
}

}  // namespace

int main(int argc, char** argv) {
  int runs = 5;
  for (int i = 1; i + 1 < argc; i += 2) {
    if (std::strcmp(argv[i], "--runs") == 0) runs = std::max(1, std::atoi(argv[i + 1]));
  }
  const int sizes[2] = {5000, 50000};
  std::string paths[2];
  double bytes[2];
  for (int s = 0; s < 2; ++s) {
    paths[s] = "/tmp/inv_statement_comparison_" + std::to_string(getpid()) + "_" + std::to_string(sizes[s]) + ".xml";
    const std::string text = Statement(sizes[s]);
    bytes[s] = static_cast<double>(text.size());
    std::FILE* out = std::fopen(paths[s].c_str(), "wb");
    if (out == nullptr || std::fwrite(text.data(), 1, text.size(), out) != text.size()) return 1;
    std::fclose(out);
  }
  // [size][0 pugixml, 1 ours]
  std::vector<Run> results[2][2];
  for (int r = 0; r < runs; ++r) {
    for (int s = 0; s < 2; ++s) {
      const std::string& path = paths[s];
      const int n = sizes[s];
      results[s][0].push_back(orvelan::bench::RunInChild([&] { return Pugixml(path, n); }));
      results[s][1].push_back(orvelan::bench::RunInChild([&] { return Orvelan(path, n); }));
    }
  }
  for (const std::string& path : paths) std::remove(path.c_str());

  // [size][case][cold, warm]
  double seconds[2][2][2];
  std::printf("medians of %d runs, CPU seconds; cold: a fresh process, warm: the same read again in it\n", runs);
  for (int s = 0; s < 2; ++s) {
    for (int c = 0; c < 2; ++c) {
      std::vector<double> times, parses, warm_times;
      std::vector<long> peaks;
      for (const Run& run : results[s][c]) {
        times.push_back(run.seconds);
        parses.push_back(run.parse_seconds);
        warm_times.push_back(run.warm_seconds);
        peaks.push_back(run.peak_growth_kib);
      }
      seconds[s][c][0] = Median(times);
      seconds[s][c][1] = Median(warm_times);
      std::printf("%-13s %6d tx  file %5.1f MB  read+walk cold %7.4f s (parse %7.4f s) warm %7.4f s  "
                  "peak %6.1f MB (%.2fx file)\n",
                  c ? "InvStatement" : "pugixml", sizes[s], bytes[s] / 1e6, seconds[s][c][0], Median(parses),
                  seconds[s][c][1], Median(peaks) / 1024.0, Median(peaks) * 1024.0 / bytes[s]);
    }
  }
  // Also the median of each round's own ratio, whose cases ran back to back
  // and so under much the same load.
  for (int warm = 0; warm < 2; ++warm) {
    const auto time = [warm](const Run& run) { return warm ? run.warm_seconds : run.seconds; };
    std::vector<double> versus, growth;
    for (int r = 0; r < runs; ++r) {
      versus.push_back(time(results[1][1][r]) / time(results[1][0][r]));
      growth.push_back(time(results[1][1][r]) / time(results[0][1][r]));
    }
    std::printf("%s: InvStatement / pugixml at 50k %.2f (per round %.2f; target <= 3); InvStatement time(50k) / "
                "time(5k) %.2f (per round %.2f; target <= 11)\n",
                warm ? "warm" : "cold", seconds[1][1][warm] / seconds[1][0][warm], Median(versus),
                seconds[1][1][warm] / seconds[0][1][warm], Median(growth));
  }
  return 0;
}
