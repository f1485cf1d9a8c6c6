// Eight threads at once, each with objects of its own: a statement over TLS
// from the sandbox bank, a data file read, aggregate parses and a batch
// exchange. Under ThreadSanitizer (`make test-tsan`) this is the race check;
// elsewhere it checks that the objects do not disturb one another.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "orvelan.h"
#include "services/bank_statement_component.h"
#include "services/ofx_aggregate_component.h"
#include "services/ofx_batch_component.h"
#include "support/test_bank_server.h"

namespace orvelan {
namespace {

template <class C>
struct Host {
  int Set(int id, const std::string& value, int index = 0) { return c.Set(id, index, value.c_str(), 0); }
  int SetInt(int id, intptr_t value) { return c.Set(id, 0, reinterpret_cast<void*>(value), 0); }
  std::string Get(int id, int index = 0) { return static_cast<const char*>(c.Get(id, index, nullptr)); }
  intptr_t GetInt(int id) { return reinterpret_cast<intptr_t>(c.Get(id, 0, nullptr)); }
  int Config(const std::string& setting) {
    const char* out = nullptr;
    return c.service().Config(setting.c_str(), out);
  }
  C c{nullptr, nullptr};
};

// What went wrong in one thread, empty when nothing did.
class Faults {
 public:
  template <class A, class B>
  void Equal(const A& actual, const B& expected, const char* what) {
    if (actual == expected) return;
    std::ostringstream line;
    line << what << ": " << actual << " (expected " << expected << ")\n";
    text_ += line.str();
  }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

void Statement(const std::string& url, const char* version, Faults& f) {
  Host<BankStatementComponent> s;
  for (const auto& [id, value] : {std::pair<int, std::string>{BANKSTATEMENT_PROP_FIURL, url},
                                  {BANKSTATEMENT_PROP_OFXUSER, "user5"}, {BANKSTATEMENT_PROP_OFXPASSWORD, "secret"},
                                  {BANKSTATEMENT_PROP_OFXAPPID, "QWIN"}, {BANKSTATEMENT_PROP_OFXAPPVERSION, "2700"},
                                  {BANKSTATEMENT_PROP_FIORGANIZATION, "Orvelan Bank"}, {BANKSTATEMENT_PROP_FIID, "1234"},
                                  {BANKSTATEMENT_PROP_OFXVERSION, version}, {BANKSTATEMENT_PROP_BANKID, "121000248"},
                                  {BANKSTATEMENT_PROP_ACCOUNTID, "4412345678"},
                                  {BANKSTATEMENT_PROP_STARTDATE, "01/01/2026 00:00:00"},
                                  {BANKSTATEMENT_PROP_ENDDATE, "01/31/2026 00:00:00"}}) {
    f.Equal(s.Set(id, value), 0, "statement property");
  }
  f.Equal(s.SetInt(BANKSTATEMENT_PROP_ACCOUNTTYPE, 1) | s.SetInt(BANKSTATEMENT_PROP_TIMEOUT, 20) |
              s.Config("OpenSSLCAFile=" + TestBankServer::CaFile()),
          0, "statement settings");
  const int rc = s.c.Do(BANKSTATEMENT_METHOD_GETSTATEMENT, 0, nullptr, nullptr);
  f.Equal(rc, 0, s.c.GetLastError());
  f.Equal(s.GetInt(BANKSTATEMENT_PROP_TXCOUNT), 5, "statement transactions");
  f.Equal(s.Get(BANKSTATEMENT_PROP_ENDDATE).substr(0, 10), "01/31/2026", "statement end date");
}

void DataFile(const std::string& path, Faults& f) {
  Host<BankStatementComponent> s;
  const int rc = s.c.service().ReadOFXDataFile(path.c_str());
  f.Equal(rc, 0, s.c.GetLastError());
  f.Equal(s.GetInt(BANKSTATEMENT_PROP_TXCOUNT), 4, "data file transactions");
  f.Equal(s.Get(BANKSTATEMENT_PROP_ACCOUNTID), "5550001234", "data file account");
}

void Aggregates(int thread, Faults& f) {
  Host<OFXAggregateComponent> a;
  for (int i = 0; i < 20; ++i) {
    const std::string amount = std::to_string(thread) + "." + std::to_string(10 + i);
    f.Equal(a.Set(OFXAGGREGATE_PROP_AGGREGATE, "<STMTTRN><TRNTYPE>DEBIT</TRNTYPE><TRNAMT>" + amount + "</TRNAMT></STMTTRN>"), 0,
            "aggregate parse");
    f.Equal(a.Set(OFXAGGREGATE_PROP_ELEMENTPATH, "/STMTTRN/TRNAMT"), 0, "aggregate path");
    f.Equal(a.Get(OFXAGGREGATE_PROP_ELEMENTTEXT), amount, "aggregate amount");
  }
}

void BatchExchange(const std::string& url, const char* version, const std::string& account, Faults& f) {
  Host<BankStatementComponent> request;
  f.Equal(request.Set(BANKSTATEMENT_PROP_OFXVERSION, version) | request.Set(BANKSTATEMENT_PROP_BANKID, "123456789") |
              request.Set(BANKSTATEMENT_PROP_ACCOUNTID, account),
          0, "batch item");
  Host<OFXBatchComponent> batch;
  for (const auto& [id, value] : {std::pair<int, std::string>{OFXBATCH_PROP_FIURL, url}, {OFXBATCH_PROP_OFXUSER, "u"},
                                  {OFXBATCH_PROP_OFXPASSWORD, "secret"}, {OFXBATCH_PROP_OFXAPPID, "QWIN"},
                                  {OFXBATCH_PROP_OFXAPPVERSION, "2700"}, {OFXBATCH_PROP_FIORGANIZATION, "B"}}) {
    f.Equal(batch.Set(id, value), 0, "batch property");
  }
  f.Equal(batch.Config(std::string("OFXVersion=") + version) | batch.Config("OpenSSLCAFile=" + TestBankServer::CaFile()) |
              batch.SetInt(OFXBATCH_PROP_OFXBATCHITEMCOUNT, 1) |
              batch.Set(OFXBATCH_PROP_OFXBATCHITEMREQUEST, request.Get(BANKSTATEMENT_PROP_OFXREQUEST)),
          0, "batch settings");
  int rc = batch.c.Do(OFXBATCH_METHOD_POSTBATCH, 0, nullptr, nullptr);
  f.Equal(rc, 0, batch.c.GetLastError());
  Host<BankStatementComponent> answer;
  rc = answer.Set(BANKSTATEMENT_PROP_OFXRESPONSE, batch.Get(OFXBATCH_PROP_OFXBATCHITEMRESPONSE));
  f.Equal(rc, 0, answer.c.GetLastError());
  f.Equal(answer.Get(BANKSTATEMENT_PROP_ACCOUNTID), account, "batch account");
  f.Equal(answer.GetInt(BANKSTATEMENT_PROP_TXCOUNT), 3, "batch transactions");
}

TEST(ParallelObjectsTest, EightThreadsEachWithTheirOwnObjects) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  const char* source = std::getenv("ORVELAN_SOURCE_DIR");
  const std::string data_file = std::string(source != nullptr ? source : ".") + "/examples/statement.ofx";
  constexpr int kThreads = 8;
  std::vector<Faults> faults(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      const char* version = t % 2 == 0 ? "102" : "211";
      Statement(bank.TlsUrl(), version, faults[t]);
      DataFile(data_file, faults[t]);
      Aggregates(t, faults[t]);
      BatchExchange(bank.TlsUrl(), version, "100" + std::to_string(t), faults[t]);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int t = 0; t < kThreads; ++t) EXPECT_TRUE(faults[t].text().empty()) << "thread " << t << ":\n" << faults[t].text();
}

}  // namespace
}  // namespace orvelan
