// Times ReadOFXDataFile on generated OFX 1.x statements, plus reading
// TxAmount, TxFITID, TxDatePosted and TxPayeeName of every transaction through
// the component's Get, as a host would. Each run is a fresh child process, so
// the peak memory it reports belongs to that run alone.
//
//   statement_read_timing [--runs 5] [--keep DIR]
//
// Prints, for bank statements of 10k and 100k transactions: the file size, the
// median CPU time and the median peak resident growth over the process before the
// read, and then the ratio time(100k) / time(10k). Then the same 100k
// transactions as a credit card statement read through CCStatement, its runs
// interleaved with the bank's, and the ratio card / bank. --keep writes the
// generated files to DIR (for comparisons with other readers) and leaves them
// there.
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "child_run.h"
#include "orvelan.h"

namespace {

// A plausible statement: payees, memos and check numbers vary, amounts carry
// signs and cents, dates advance through the year.
// The wrappers around the transaction list: bank or card.
struct Wrappers {
  const char* head;
  const char* tail;
};

const Wrappers kBankWrappers = {
    "<BANKMSGSRSV1>\r\n<STMTTRNRS>\r\n<TRNUID>1001\r\n<STATUS>\r\n<CODE>0\r\n<SEVERITY>INFO\r\n</STATUS>\r\n"
    "<STMTRS>\r\n<CURDEF>USD\r\n<BANKACCTFROM>\r\n<BANKID>121000248\r\n<ACCTID>4412345678\r\n"
    "<ACCTTYPE>CHECKING\r\n</BANKACCTFROM>\r\n",
    "</STMTRS>\r\n</STMTTRNRS>\r\n</BANKMSGSRSV1>\r\n"};
const Wrappers kCardWrappers = {
    "<CREDITCARDMSGSRSV1>\r\n<CCSTMTTRNRS>\r\n<TRNUID>1001\r\n<STATUS>\r\n<CODE>0\r\n<SEVERITY>INFO\r\n"
    "</STATUS>\r\n<CCSTMTRS>\r\n<CURDEF>USD\r\n<CCACCTFROM>\r\n<ACCTID>4412345678\r\n</CCACCTFROM>\r\n",
    "</CCSTMTRS>\r\n</CCSTMTTRNRS>\r\n</CREDITCARDMSGSRSV1>\r\n"};

void WriteStatement(const std::string& path, int transactions, const Wrappers& wrappers) {
  std::FILE* out = std::fopen(path.c_str(), "wb");
  if (out == nullptr) {
    std::perror(path.c_str());
    std::exit(1);
  }
  std::fputs(
      "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\nSECURITY:NONE\r\nENCODING:USASCII\r\nCHARSET:1252\r\n"
      "COMPRESSION:NONE\r\nOLDFILEUID:NONE\r\nNEWFILEUID:NONE\r\n\r\n"
      "<OFX>\r\n<SIGNONMSGSRSV1>\r\n<SONRS>\r\n<STATUS>\r\n<CODE>0\r\n<SEVERITY>INFO\r\n</STATUS>\r\n"
      "<DTSERVER>20240131120000.000[-5:EST]\r\n<LANGUAGE>ENG\r\n</SONRS>\r\n</SIGNONMSGSRSV1>\r\n",
      out);
  std::fputs(wrappers.head, out);
  std::fputs("<BANKTRANLIST>\r\n<DTSTART>20240101\r\n<DTEND>20241231\r\n", out);
  static const char* const kPayees[] = {"GROCERY OUTLET #1123", "CITY WATER DEPT", "PAYROLL ACME CORP",
                                        "COFFEE & CO", "ONLINE TRANSFER TO SAV"};
  static const char* const kTypes[] = {"DEBIT", "CHECK", "CREDIT", "POS", "XFER"};
  for (int i = 0; i < transactions; ++i) {
    const int day = i % 365;
    const int month = day / 31 % 12 + 1;
    const int mday = day % 28 + 1;
    std::fprintf(out,
                 "<STMTTRN>\r\n<TRNTYPE>%s\r\n<DTPOSTED>2024%02d%02d%02d%02d00.000[-5:EST]\r\n<TRNAMT>%s%d.%02d\r\n"
                 "<FITID>2024%08d\r\n",
                 kTypes[i % 5], month, mday, i % 24, i % 60, i % 3 == 2 ? "" : "-", i % 2000, i % 100, i);
    if (i % 5 == 1) std::fprintf(out, "<CHECKNUM>%d\r\n", 1000 + i);
    std::fprintf(out, "<NAME>%s\r\n<MEMO>Reference %d\r\n</STMTTRN>\r\n", kPayees[i % 5], i * 7);
  }
  std::fputs(
      "</BANKTRANLIST>\r\n<LEDGERBAL>\r\n<BALAMT>10234.56\r\n<DTASOF>20241231\r\n</LEDGERBAL>\r\n"
      "<AVAILBAL>\r\n<BALAMT>10034.56\r\n<DTASOF>20241231\r\n</AVAILBAL>\r\n",
      out);
  std::fputs(wrappers.tail, out);
  std::fputs("</OFX>\r\n", out);
  std::fclose(out);
}

using orvelan::bench::CpuSeconds;
using orvelan::bench::Median;
using orvelan::bench::PeakKiB;
using orvelan::bench::ResidentKiB;
using orvelan::bench::Run;
using orvelan::bench::RunInChild;

// One component as a host reaches it through the C interface.
struct Reader {
  const char* name;
  void* (*create)(EventCallback, void*, char*);
  int (*destroy)(void*);
  int (*run)(void*, int, int, void**, int*);
  void* (*get)(void*, int, int, int*);
  const char* (*last_error)(void*);
  int (*last_error_code)(void*);
  int read_method, tx_count;
  int tx_fields[4];  // amount, FITID, date posted, payee
  const Wrappers& wrappers;
};

const Reader kBank = {"bank", BankStatement_Create, BankStatement_Destroy, BankStatement_Do, BankStatement_Get,
                      BankStatement_GetLastError, BankStatement_GetLastErrorCode, BANKSTATEMENT_METHOD_READOFXDATAFILE,
                      BANKSTATEMENT_PROP_TXCOUNT,
                      {BANKSTATEMENT_PROP_TXAMOUNT, BANKSTATEMENT_PROP_TXFITID, BANKSTATEMENT_PROP_TXDATEPOSTED,
                       BANKSTATEMENT_PROP_TXPAYEENAME},
                      kBankWrappers};
const Reader kCard = {"card", CCStatement_Create, CCStatement_Destroy, CCStatement_Do, CCStatement_Get,
                      CCStatement_GetLastError, CCStatement_GetLastErrorCode, CCSTATEMENT_METHOD_READOFXDATAFILE,
                      CCSTATEMENT_PROP_TXCOUNT,
                      {CCSTATEMENT_PROP_TXAMOUNT, CCSTATEMENT_PROP_TXFITID, CCSTATEMENT_PROP_TXDATEPOSTED,
                       CCSTATEMENT_PROP_TXPAYEENAME},
                      kCardWrappers};

// In the child: read, walk every transaction.
Run ReadAndWalk(const Reader& reader, const std::string& path, int expected) {
  void* st = reader.create(nullptr, nullptr, nullptr);
  const long before = ResidentKiB();
  const double start = CpuSeconds();
  void* params[1] = {const_cast<char*>(path.c_str())};
  int lengths[1] = {0};
  if (reader.run(st, reader.read_method, 1, params, lengths) != 0) {
    std::fprintf(stderr, "%s ReadOFXDataFile: %d %s\n", reader.name, reader.last_error_code(st), reader.last_error(st));
    std::_Exit(1);
  }
  const double parsed = CpuSeconds();
  const int count = static_cast<int>(reinterpret_cast<intptr_t>(reader.get(st, reader.tx_count, 0, nullptr)));
  size_t checksum = 0;
  for (int i = 0; i < count; ++i) {
    for (int id : reader.tx_fields) {
      int length = 0;
      const char* text = static_cast<const char*>(reader.get(st, id, i, &length));
      checksum += text == nullptr ? 0 : std::strlen(text);
    }
  }
  const double end = CpuSeconds();
  if (count != expected || checksum == 0) {
    std::fprintf(stderr, "%s: read %d transactions, expected %d\n", reader.name, count, expected);
    std::_Exit(1);
  }
  Run run;
  run.seconds = end - start;
  run.parse_seconds = parsed - start;
  run.peak_growth_kib = PeakKiB() - before;
  reader.destroy(st);
  return run;
}

struct Case {
  Case(const Reader& case_reader, int case_transactions) : reader(case_reader), transactions(case_transactions) {}

  const Reader& reader;
  int transactions;
  std::string path;
  long bytes = 0;
  std::vector<Run> runs;
};

void Prepare(Case* c, const std::string& dir, bool keep) {
  c->path = dir + "/" + c->reader.name + "_statement_" + std::to_string(c->transactions) + "_" +
            (keep ? std::string("tx") : std::to_string(getpid())) + ".ofx";
  WriteStatement(c->path, c->transactions, c->reader.wrappers);
  std::FILE* file = std::fopen(c->path.c_str(), "rb");
  std::fseek(file, 0, SEEK_END);
  c->bytes = std::ftell(file);
  std::fclose(file);
}

double MedianSeconds(const Case& c) {
  std::vector<double> times;
  for (const Run& run : c.runs) times.push_back(run.seconds);
  return Median(times);
}

void Report(const Case& c) {
  std::vector<double> parses;
  std::vector<long> peaks;
  for (const Run& run : c.runs) {
    parses.push_back(run.parse_seconds);
    peaks.push_back(run.peak_growth_kib);
  }
  const long peak = Median(peaks);
  std::printf("%s %6d transactions  file %6.1f MB  read+walk median %7.3f s (read %6.3f s)  peak growth %6.1f MB"
              " (%.2fx file)\n",
              c.reader.name, c.transactions, c.bytes / 1e6, MedianSeconds(c), Median(parses), peak / 1024.0,
              static_cast<double>(peak) * 1024.0 / static_cast<double>(c.bytes));
}

}  // namespace

int main(int argc, char** argv) {
  int runs = 5;
  std::string keep;
  for (int i = 1; i + 1 < argc; i += 2) {
    if (std::strcmp(argv[i], "--runs") == 0) runs = std::max(1, std::atoi(argv[i + 1]));
    if (std::strcmp(argv[i], "--keep") == 0) keep = argv[i + 1];
  }
  const std::string dir = keep.empty() ? "/tmp" : keep;
  Case cases[] = {{kBank, 10000}, {kBank, 100000}, {kCard, 100000}};
  for (Case& c : cases) Prepare(&c, dir, !keep.empty());
  // Round-robin, so that a burst of load on the machine falls on every case.
  for (int r = 0; r < runs; ++r) {
    for (Case& c : cases) {
      c.runs.push_back(RunInChild([&c] { return ReadAndWalk(c.reader, c.path, c.transactions); }));
    }
  }
  Report(cases[0]);
  Report(cases[1]);
  std::printf("time(100k) / time(10k) = %.2f\n", MedianSeconds(cases[1]) / MedianSeconds(cases[0]));
  Report(cases[2]);
  std::printf("card / bank at 100k = %.3f\n", MedianSeconds(cases[2]) / MedianSeconds(cases[1]));
  if (keep.empty()) {
    for (const Case& c : cases) std::remove(c.path.c_str());
  }
  return 0;
}
