// Eight threads at once, each with objects of its own: a statement over TLS
// from the sandbox bank, a data file read, aggregate parses and a batch
// exchange. Under ThreadSanitizer (`make test-tsan`) this is the race check;
// elsewhere it checks that the objects do not disturb one another.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "orvelan.h"
#include "services/bank_statement_component.h"
#include "services/ofx_aggregate_component.h"
#include "support/component_host.h"
#include "support/test_bank_server.h"

namespace orvelan {
namespace {

void Statement(const std::string& url, const char* version) {
  Host<BankStatementComponent> s;
  for (const auto& [id, value] : {std::pair<int, std::string>{BANKSTATEMENT_PROP_FIURL, url},
                                  {BANKSTATEMENT_PROP_OFXUSER, "user5"}, {BANKSTATEMENT_PROP_OFXPASSWORD, "secret"},
                                  {BANKSTATEMENT_PROP_OFXAPPID, "QWIN"}, {BANKSTATEMENT_PROP_OFXAPPVERSION, "2700"},
                                  {BANKSTATEMENT_PROP_FIORGANIZATION, "Orvelan Bank"}, {BANKSTATEMENT_PROP_FIID, "1234"},
                                  {BANKSTATEMENT_PROP_OFXVERSION, version}, {BANKSTATEMENT_PROP_BANKID, "121000248"},
                                  {BANKSTATEMENT_PROP_ACCOUNTID, "4412345678"},
                                  {BANKSTATEMENT_PROP_STARTDATE, "01/01/2026 00:00:00"},
                                  {BANKSTATEMENT_PROP_ENDDATE, "01/31/2026 00:00:00"}}) {
    EXPECT_EQ(s.Set(id, value), 0) << id;
  }
  EXPECT_EQ(s.SetInt(BANKSTATEMENT_PROP_ACCOUNTTYPE, 1) | s.SetInt(BANKSTATEMENT_PROP_TIMEOUT, 20) |
                s.Config("OpenSSLCAFile=" + TestBankServer::CaFile()),
            0);
  const int rc = s.component.Do(BANKSTATEMENT_METHOD_GETSTATEMENT, 0, nullptr, nullptr);
  ASSERT_EQ(rc, 0) << s.component.GetLastError();
  EXPECT_EQ(s.GetInt(BANKSTATEMENT_PROP_TXCOUNT), 5);
  EXPECT_EQ(s.Get(BANKSTATEMENT_PROP_ENDDATE).substr(0, 10), "01/31/2026");
}

void DataFile(const std::string& path) {
  Host<BankStatementComponent> s;
  const int rc = s.component.service().ReadOFXDataFile(path.c_str());
  ASSERT_EQ(rc, 0) << s.component.GetLastError();
  EXPECT_EQ(s.GetInt(BANKSTATEMENT_PROP_TXCOUNT), 4);
  EXPECT_EQ(s.Get(BANKSTATEMENT_PROP_ACCOUNTID), "5550001234");
}

void Aggregates(int thread) {
  Host<OFXAggregateComponent> a;
  for (int i = 10; i < 30; ++i) {
    const std::string amount = std::to_string(thread) + "." + std::to_string(i);
    ASSERT_EQ(a.Set(OFXAGGREGATE_PROP_AGGREGATE, "<STMTTRN><TRNAMT>" + amount + "</TRNAMT></STMTTRN>") |
                  a.Set(OFXAGGREGATE_PROP_ELEMENTPATH, "/STMTTRN/TRNAMT"),
              0);
    EXPECT_EQ(a.Get(OFXAGGREGATE_PROP_ELEMENTTEXT), amount);
  }
}

void BatchExchange(const std::string& url, const char* version, const std::string& account) {
  Batch batch(url, version);
  ASSERT_EQ(batch.Add(RequestOf<BankStatementComponent>(
                BANKSTATEMENT_PROP_OFXREQUEST, {{BANKSTATEMENT_PROP_OFXVERSION, version},
                                                {BANKSTATEMENT_PROP_BANKID, "123456789"},
                                                {BANKSTATEMENT_PROP_ACCOUNTID, account}})),
            0);
  ASSERT_EQ(batch.Post(), 0) << batch.component.GetLastError();
  Host<BankStatementComponent> answer;
  ASSERT_EQ(answer.Set(BANKSTATEMENT_PROP_OFXRESPONSE, batch.Response(0)), 0);
  EXPECT_EQ(answer.Get(BANKSTATEMENT_PROP_ACCOUNTID), account);
  EXPECT_EQ(answer.GetInt(BANKSTATEMENT_PROP_TXCOUNT), 3);
}

// GoogleTest's assertions may fail in any thread; each names its thread.
TEST(ParallelObjectsTest, EightThreadsEachWithTheirOwnObjects) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  const char* source = std::getenv("ORVELAN_SOURCE_DIR");
  const std::string url = bank.TlsUrl();
  const std::string data_file = std::string(source != nullptr ? source : ".") + "/examples/statement.ofx";
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&, t] {
      SCOPED_TRACE("thread " + std::to_string(t));
      const char* version = t % 2 == 0 ? "102" : "211";
      Statement(url, version);
      DataFile(data_file);
      Aggregates(t);
      BatchExchange(url, version, "100" + std::to_string(t));
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace orvelan
