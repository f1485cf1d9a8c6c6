// Files built to hurt the reader: huge, deep, never closed, or not text. Each
// is read in a child process, so that a stack overflow is a failed case and
// the peak memory is the read's own.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "services/bank_statement_component.h"
#include "soak/soak.h"

namespace orvelan {
namespace {

constexpr char kHead[] =
    "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\nSECURITY:NONE\r\nENCODING:USASCII\r\nCHARSET:1252\r\n"
    "COMPRESSION:NONE\r\nOLDFILEUID:NONE\r\nNEWFILEUID:NONE\r\n\r\n<OFX><SIGNONMSGSRSV1><SONRS><STATUS><CODE>0"
    "<SEVERITY>INFO</STATUS><DTSERVER>20260101<LANGUAGE>ENG</SONRS></SIGNONMSGSRSV1><BANKMSGSRSV1><STMTTRNRS>"
    "<TRNUID>1<STATUS><CODE>0<SEVERITY>INFO</STATUS><STMTRS><CURDEF>USD<BANKACCTFROM><BANKID>1<ACCTID>2"
    "<ACCTTYPE>CHECKING</BANKACCTFROM><BANKTRANLIST><DTSTART>20260101<DTEND>20260131\r\n";
constexpr char kTail[] =
    "</BANKTRANLIST><LEDGERBAL><BALAMT>1<DTASOF>20260131</LEDGERBAL></STMTRS></STMTTRNRS></BANKMSGSRSV1></OFX>\r\n";

std::string Transaction(long i, const std::string& memo = "") {
  return "<STMTTRN><TRNTYPE>DEBIT<DTPOSTED>20260105<TRNAMT>-1.50<FITID>" + std::to_string(i) + "<NAME>Shop" +
         (memo.empty() ? "" : "<MEMO>" + memo) + "</STMTTRN>\r\n";
}

// Writes kHead, `middle` until the file has about `bytes`, `tail`; the number of middles.
long Write(const std::string& path, long bytes, const std::function<std::string(long)>& middle,
           const std::string& tail) {
  std::ofstream out(path, std::ios::binary);
  out << kHead;
  long count = 0;
  std::string block;
  for (long written = 0; written < bytes; ++count) {
    block += middle(count);
    if (block.size() >= (1 << 20)) {
      written += static_cast<long>(block.size());
      out << block;
      block.clear();
    }
    if (written + static_cast<long>(block.size()) >= bytes) break;
  }
  out << block << tail;
  return count + 1;
}

struct Outcome {
  int rc = -1;
  long transactions = -1;
  long peak_growth_kib = 0;
  char text[200] = "";
};

// Reads the file into a fresh BankStatement in a child; false when the child died.
bool ReadInChild(const std::string& path, bool lenient, Outcome& outcome) {
  int fds[2];
  if (pipe(fds) != 0) return false;
  const pid_t child = fork();
  if (child == 0) {
    close(fds[0]);
    std::ofstream("/proc/self/clear_refs") << "5";  // the peak restarts from the current size
    const long before = StatusKiB("VmRSS:");
    Outcome o;
    {
      BankStatementComponent c(nullptr, nullptr);
      const char* out = nullptr;
      c.service().Config(lenient ? "LenientReading=1" : "LenientReading=0", out);
      o.rc = c.service().ReadOFXDataFile(path.c_str());
      o.transactions = reinterpret_cast<intptr_t>(c.Get(53, 0, nullptr));
      std::snprintf(o.text, sizeof o.text, "%s", c.service().GetLastError());
      o.peak_growth_kib = StatusKiB("VmHWM:") - before;
    }
    _exit(write(fds[1], &o, sizeof o) == static_cast<ssize_t>(sizeof o) ? 0 : 1);
  }
  close(fds[1]);
  const bool got = read(fds[0], &outcome, sizeof outcome) == static_cast<ssize_t>(sizeof outcome);
  close(fds[0]);
  int status = 0;
  waitpid(child, &status, 0);
  return got && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Too deep (over 256 open elements) is 200 "Out of memory."; a NUL ends the
// document as it would a C string, and the cut statement lacks its elements.
TEST(HostileFileTest, ClearErrorOrCorrectReadInBoundedMemory) {
  const long size = LongRun() ? (1L << 30) : (20L << 20);
  const std::string path = ::testing::TempDir() + "orvelan-hostile-" + std::to_string(getpid()) + ".ofx";
  const auto open_tags = [&](const std::string& tags, int times, const std::string& tail) {
    Write(path, 0, [](long) { return ""; }, "");
    std::ofstream out(path, std::ios::binary | std::ios::app);
    for (int i = 0; i < times; ++i) out << tags;
    out << tail;
    return 0L;
  };
  std::string deep_end;
  for (int i = 0; i < 100000; ++i) deep_end += "</BANKTRANLIST>";
  // A statement of small transactions takes about 7 times its size: the
  // tree's record layout is fixed (offsets show through "*N" paths), and its
  // 56-byte element records alone are over 5 times 10-byte leaves. At 1 GB
  // the tree passes its 4 GiB limit, which is 200 "Out of memory.".
  const int statement_growth = 8;
  const int big_rc = LongRun() ? 200 : 0;
  const struct {
    const char* name;
    std::function<long()> write;  // the number of transactions a correct read finds
    int rc;
    int max_growth;  // peak memory over the file's size
  } cases[] = {
      {"nested aggregates",
       [&] {
         const long count = Write(path, size, [](long i) { return Transaction(i); }, kTail);
         return big_rc == 0 ? count : 0;
       },
       big_rc, statement_growth},
      {"a million unclosed elements", [&] { return open_tags("<STMTTRN><TRNAMT>1", 1000000, ""); }, 200, 5},
      {"100,000 levels deep", [&] { return open_tags("<BANKTRANLIST>", 100000, deep_end + kTail); }, 200, 5},
      {"invalid UTF-8",
       [&] { return Write(path, 4 << 20, [](long i) { return Transaction(i, "caf\xc3\x28 \xff\xfe"); }, kTail); }, 0,
       statement_growth},
      {"NUL bytes",
       [&] {
         Write(path, 1 << 20, [](long i) { return Transaction(i, std::string("a\0b", 3)); }, kTail);
         return 0L;
       },
       208, 5},
  };
  for (const auto& c : cases) {
    const long transactions = c.write();
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const long file_kib = static_cast<long>(file.tellg()) / 1024;
    for (bool lenient : {false, true}) {
      SCOPED_TRACE(std::string(c.name) + (lenient ? ", lenient" : ", strict"));
      Outcome o;
      ASSERT_TRUE(ReadInChild(path, lenient, o)) << "the reader died";
      RecordProperty(std::string(c.name) + (lenient ? " lenient" : " strict") + " peak_growth_kib",
                     std::to_string(o.peak_growth_kib) + " of " + std::to_string(file_kib));
      EXPECT_EQ(o.rc, c.rc) << o.text;
      if (c.rc != 0) {
        EXPECT_STRNE(o.text, "") << "the error names itself";
      }
      EXPECT_EQ(o.transactions, transactions);
      if (kMemoryIsMeasured) {
        EXPECT_LE(o.peak_growth_kib, c.max_growth * file_kib);
      }
    }
  }
  std::remove(path.c_str());
}

}  // namespace
}  // namespace orvelan
