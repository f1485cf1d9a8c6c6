// Times ReadOFXDataFile on generated OFX 1.x bank statements, plus reading
// TxAmount, TxFITID, TxDatePosted and TxPayeeName of every transaction through
// BankStatement_Get, as a host would. Each run is a fresh child process, so the
// peak memory it reports belongs to that run alone.
//
//   statement_read_timing [--runs 5] [--keep DIR]
//
// Prints, for 10k and 100k transactions: the file size, the median time and
// the median peak resident growth over the process before the read, and then
// the ratio time(100k) / time(10k). --keep writes the generated files to DIR
// (for comparisons with other readers) and leaves them there.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
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
void WriteStatement(const std::string& path, int transactions) {
  std::FILE* out = std::fopen(path.c_str(), "wb");
  if (out == nullptr) {
    std::perror(path.c_str());
    std::exit(1);
  }
  std::fputs(
      "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\nSECURITY:NONE\r\nENCODING:USASCII\r\nCHARSET:1252\r\n"
      "COMPRESSION:NONE\r\nOLDFILEUID:NONE\r\nNEWFILEUID:NONE\r\n\r\n"
      "<OFX>\r\n<SIGNONMSGSRSV1>\r\n<SONRS>\r\n<STATUS>\r\n<CODE>0\r\n<SEVERITY>INFO\r\n</STATUS>\r\n"
      "<DTSERVER>20240131120000.000[-5:EST]\r\n<LANGUAGE>ENG\r\n</SONRS>\r\n</SIGNONMSGSRSV1>\r\n"
      "<BANKMSGSRSV1>\r\n<STMTTRNRS>\r\n<TRNUID>1001\r\n<STATUS>\r\n<CODE>0\r\n<SEVERITY>INFO\r\n</STATUS>\r\n"
      "<STMTRS>\r\n<CURDEF>USD\r\n<BANKACCTFROM>\r\n<BANKID>121000248\r\n<ACCTID>4412345678\r\n"
      "<ACCTTYPE>CHECKING\r\n</BANKACCTFROM>\r\n<BANKTRANLIST>\r\n<DTSTART>20240101\r\n<DTEND>20241231\r\n",
      out);
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
      "<AVAILBAL>\r\n<BALAMT>10034.56\r\n<DTASOF>20241231\r\n</AVAILBAL>\r\n</STMTRS>\r\n</STMTTRNRS>\r\n"
      "</BANKMSGSRSV1>\r\n</OFX>\r\n",
      out);
  std::fclose(out);
}

using orvelan::bench::ResidentKiB;

struct Run {
  double seconds = 0;
  long peak_growth_kib = 0;
};

// In the child: read, walk every transaction, report through a pipe.
[[noreturn]] void ReadInChild(const std::string& path, int expected, int fd) {
  void* st = BankStatement_Create(nullptr, nullptr, nullptr);
  const long before = ResidentKiB();
  const auto start = std::chrono::steady_clock::now();
  void* params[1] = {const_cast<char*>(path.c_str())};
  int lengths[1] = {0};
  if (BankStatement_Do(st, BANKSTATEMENT_METHOD_READOFXDATAFILE, 1, params, lengths) != 0) {
    std::fprintf(stderr, "ReadOFXDataFile: %d %s\n", BankStatement_GetLastErrorCode(st), BankStatement_GetLastError(st));
    std::_Exit(1);
  }
  const int count = static_cast<int>(reinterpret_cast<intptr_t>(BankStatement_Get(st, BANKSTATEMENT_PROP_TXCOUNT, 0, nullptr)));
  size_t checksum = 0;
  for (int i = 0; i < count; ++i) {
    for (int id : {BANKSTATEMENT_PROP_TXAMOUNT, BANKSTATEMENT_PROP_TXFITID, BANKSTATEMENT_PROP_TXDATEPOSTED,
                   BANKSTATEMENT_PROP_TXPAYEENAME}) {
      int length = 0;
      const char* text = static_cast<const char*>(BankStatement_Get(st, id, i, &length));
      checksum += text == nullptr ? 0 : std::strlen(text);
    }
  }
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  if (count != expected || checksum == 0) {
    std::fprintf(stderr, "read %d transactions, expected %d\n", count, expected);
    std::_Exit(1);
  }
  Run run{seconds, usage.ru_maxrss - before};
  if (write(fd, &run, sizeof run) != static_cast<ssize_t>(sizeof run)) std::_Exit(1);
  BankStatement_Destroy(st);
  std::_Exit(0);
}

Run Measure(const std::string& path, int expected) {
  int fds[2];
  if (pipe(fds) != 0) std::exit(1);
  const pid_t child = fork();
  if (child == 0) {
    close(fds[0]);
    ReadInChild(path, expected, fds[1]);
  }
  close(fds[1]);
  Run run;
  const bool ok = read(fds[0], &run, sizeof run) == static_cast<ssize_t>(sizeof run);
  close(fds[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (!ok || !WIFEXITED(status) || WEXITSTATUS(status) != 0) std::exit(1);
  return run;
}

template <typename T>
T Median(std::vector<T> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
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
  double seconds_10k = 0;
  for (int transactions : {10000, 100000}) {
    const std::string path = dir + "/statement_" + std::to_string(transactions) + "_" +
                             (keep.empty() ? std::to_string(getpid()) : std::string("tx")) + ".ofx";
    WriteStatement(path, transactions);
    std::FILE* file = std::fopen(path.c_str(), "rb");
    std::fseek(file, 0, SEEK_END);
    const long bytes = std::ftell(file);
    std::fclose(file);
    std::vector<double> times;
    std::vector<long> peaks;
    for (int r = 0; r < runs; ++r) {
      const Run run = Measure(path, transactions);
      times.push_back(run.seconds);
      peaks.push_back(run.peak_growth_kib);
    }
    const double seconds = Median(times);
    const double peak_ratio = static_cast<double>(Median(peaks)) * 1024.0 / static_cast<double>(bytes);
    std::printf("%6d transactions  file %6.1f MB  read+walk median %7.3f s  peak growth %6.1f MB (%.2fx file)\n",
                transactions, bytes / 1e6, seconds, Median(peaks) / 1024.0, peak_ratio);
    if (transactions == 10000) seconds_10k = seconds;
    if (transactions == 100000) std::printf("time(100k) / time(10k) = %.2f\n", seconds / seconds_10k);
    if (keep.empty()) std::remove(path.c_str());
  }
  return 0;
}
