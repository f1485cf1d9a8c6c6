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
#include "services/ofx_batch_component.h"
#include "support/component_host.h"
#include "support/test_bank_server.h"

namespace orvelan {
namespace {

void Statement(const std::string& url, const char* version) {
  ComponentHost<BankStatementComponent> s;
  s.SignOn(url, "user5", version);
  EXPECT_EQ(s.SetText(BANKSTATEMENT_PROP_BANKID, "121000248") | s.SetText(BANKSTATEMENT_PROP_ACCOUNTID, "4412345678") |
                s.SetText(BANKSTATEMENT_PROP_STARTDATE, "01/01/2026 00:00:00") |
                s.SetText(BANKSTATEMENT_PROP_ENDDATE, "01/31/2026 00:00:00") | s.SetInt(BANKSTATEMENT_PROP_ACCOUNTTYPE, 1),
            0);
  ASSERT_EQ(s.Run(BANKSTATEMENT_METHOD_GETSTATEMENT), 0) << s.GetLastError();
  EXPECT_EQ(s.Int(BANKSTATEMENT_PROP_TXCOUNT), 5);
  EXPECT_EQ(s.Text(BANKSTATEMENT_PROP_ENDDATE).substr(0, 10), "01/31/2026");
}

void DataFile(const std::string& path) {
  ComponentHost<BankStatementComponent> s;
  ASSERT_EQ(s.service().ReadOFXDataFile(path.c_str()), 0) << s.GetLastError();
  EXPECT_EQ(s.Int(BANKSTATEMENT_PROP_TXCOUNT), 4);
  EXPECT_EQ(s.Text(BANKSTATEMENT_PROP_ACCOUNTID), "5550001234");
}

void Aggregates(int thread) {
  ComponentHost<OFXAggregateComponent> a;
  for (int i = 10; i < 30; ++i) {
    const std::string amount = std::to_string(thread) + "." + std::to_string(i);
    ASSERT_EQ(a.SetText(OFXAGGREGATE_PROP_AGGREGATE, "<STMTTRN><TRNAMT>" + amount + "</TRNAMT></STMTTRN>") |
                  a.SetText(OFXAGGREGATE_PROP_ELEMENTPATH, "/STMTTRN/TRNAMT"),
              0);
    EXPECT_EQ(a.Text(OFXAGGREGATE_PROP_ELEMENTTEXT), amount);
  }
}

void BatchExchange(const std::string& url, const char* version, const std::string& account) {
  ComponentHost<BankStatementComponent> request;
  EXPECT_EQ(request.SetText(BANKSTATEMENT_PROP_OFXVERSION, version) |
                request.SetText(BANKSTATEMENT_PROP_BANKID, "123456789") |
                request.SetText(BANKSTATEMENT_PROP_ACCOUNTID, account),
            0);
  ComponentHost<OFXBatchComponent> batch;
  batch.SignOn(url, "u", version);
  ASSERT_EQ(batch.SetInt(OFXBATCH_PROP_OFXBATCHITEMCOUNT, 1) |
                batch.SetText(OFXBATCH_PROP_OFXBATCHITEMREQUEST, request.Text(BANKSTATEMENT_PROP_OFXREQUEST)),
            0);
  ASSERT_EQ(batch.Run(OFXBATCH_METHOD_POSTBATCH), 0) << batch.GetLastError();
  ComponentHost<BankStatementComponent> answer;
  ASSERT_EQ(answer.Respond(batch.Text(OFXBATCH_PROP_OFXBATCHITEMRESPONSE)), 0) << answer.GetLastError();
  EXPECT_EQ(answer.Text(BANKSTATEMENT_PROP_ACCOUNTID), account);
  EXPECT_EQ(answer.Int(BANKSTATEMENT_PROP_TXCOUNT), 3);
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
