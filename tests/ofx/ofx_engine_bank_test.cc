// The engine end to end against the scripted test bank, which refuses what a
// strict bank would refuse (header block, sign-on order, TRNUID form, end
// tags in 2.x), over plain HTTP and through nginx with TLS.
#include <gtest/gtest.h>

#include <string>

#include "ofx/message_set_table.h"
#include "ofx/ofx_client.h"
#include "support/recording_events.h"
#include "support/test_bank_server.h"

namespace orvelan {
namespace {

// A bank statement request in either dialect; ParseResponse reads the
// transaction status and the ledger balance the way a statement service does.
class StatementService : public OFXClient {
 public:
  std::string ledger_balance;
  int parse_calls = 0;

  int BuildMessageSets(ByteString& out, bool wrapped) override {
    const bool xml = OFXVersion()[0] == '2';
    ByteString trnuid;
    if (int rc = NewTransactionId(trnuid); rc != 0) return rc;
    const auto leaf = [xml](const std::string& name, const std::string& value) {
      return "<" + name + ">" + value + (xml ? "</" + name + ">" : "") + "\r\n";
    };
    const std::string request = "<STMTTRNRQ>\r\n" + leaf("TRNUID", trnuid.Data()) +
                                "<STMTRQ>\r\n<BANKACCTFROM>\r\n" + leaf("BANKID", "121000248") +
                                leaf("ACCTID", "1234567890") + leaf("ACCTTYPE", "CHECKING") +
                                "</BANKACCTFROM>\r\n<INCTRAN>\r\n" + leaf("INCLUDE", "Y") +
                                "</INCTRAN>\r\n</STMTRQ>\r\n</STMTTRNRQ>\r\n";
    if (!wrapped) return out.Assign(request);
    MessageSetTable::AppendOpen(out, MessageSetTable::kStatement);
    out.Append(request);
    return MessageSetTable::AppendClose(out, MessageSetTable::kStatement);
  }

  int ParseResponse() override {
    ++parse_calls;
    MarkupDocument& doc = Document();
    if (int rc = doc.SelectPath("BANKMSGSRSV1"); rc != 0) return ReportError(rc, doc.GetLastError());
    if (int rc = CheckStatus("STMTTRNRS/"); rc != 0) return rc;
    ByteString balance;
    if (int rc = ReadResponseValue(balance, doc, "STMTRS/LEDGERBAL/BALAMT", true); rc != 0) return rc;
    ledger_balance = balance.Data();
    return 0;
  }
};

class EngineBankTest : public ::testing::Test {
 protected:
  void Prepare(StatementService& s, const std::string& url, const char* user, const char* version = "102") {
    ASSERT_EQ(s.InitDefaults(), 1);
    s.SetEventSink(&events_);
    s.SetTimeout(10);
    s.SetFIUrl(url.c_str());
    s.SetOFXUser(user);
    s.SetOFXPassword("secret");
    s.SetOFXAppId("QWIN");
    s.SetOFXAppVersion("2700");
    s.SetFIOrganization("Orvelan Bank");
    s.SetFIId("1234");
    s.SetOFXVersion(version);
    const char* out = nullptr;
    ASSERT_EQ(s.Config(("OpenSSLCAFile=" + TestBankServer::CaFile()).c_str(), out), 0);
  }
  RecordingEvents events_;
};

TEST_F(EngineBankTest, StatementIsAcceptedInBothDialectsOverHttpAndTls) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  size_t expected_requests = 0;
  for (const char* version : {"102", "211"}) {
    for (const std::string& url : {bank.Url(), bank.TlsUrl()}) {
      SCOPED_TRACE(std::string(version) + " " + url);
      StatementService s;
      Prepare(s, url, "user", version);
      ASSERT_EQ(s.Exchange(), 0) << s.GetLastError();
      EXPECT_EQ(s.parse_calls, 1);
      EXPECT_FALSE(s.ledger_balance.empty());
      const std::vector<TestBankServer::Request> seen = bank.Requests();
      ASSERT_EQ(seen.size(), ++expected_requests);
      EXPECT_EQ(seen.back().status, 200) << seen.back().body;
    }
  }
}

TEST_F(EngineBankTest, AccessKeyGoesBackAndBrokenAnswersFail) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  StatementService s;
  Prepare(s, bank.Url(), "accesskey");
  ASSERT_EQ(s.Exchange(), 0) << s.GetLastError();
  EXPECT_STREQ(s.OFXAccessKey(), "orvelan-access-key");
  ASSERT_EQ(s.Exchange(), 0) << "the key goes back in the next sign-on";
  EXPECT_NE(bank.Requests().back().body.find("<ACCESSKEY>orvelan-access-key\r\n</SONRQ>"), std::string::npos);

  StatementService bad;
  Prepare(bad, bank.Url(), "badofx");
  EXPECT_EQ(bad.Exchange(), 2003) << bad.GetLastError();
}

TEST_F(EngineBankTest, MultiFactorChallengeRoundTrip) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  StatementService s;
  Prepare(s, bank.Url(), "mfa", "211");
  EXPECT_EQ(s.Exchange(), 2001) << "status 3000 is an error severity";
  EXPECT_TRUE(s.MFAChallengePending());

  // The pending state sends the challenge request and reads the questions.
  ASSERT_EQ(s.Exchange(), 0) << s.GetLastError();
  EXPECT_EQ(s.parse_calls, 0);
  ItemList<MFAChallenge>& questions = s.Challenges();
  ASSERT_EQ(questions.Count(), 2);
  EXPECT_STREQ(questions.Item(0)->phrase_label.Data(), "What is your favourite colour?");
  for (int32_t i = 0; i < questions.Count(); ++i) {
    questions.Item(i)->answer.Assign(questions.Item(i)->phrase_id.Equals("MFA13") ? "blue" : "rex");
  }
  s.SetMFAChallengePending(false);
  s.SetAnswersReady(true);
  ASSERT_EQ(s.Exchange(), 0) << s.GetLastError();
  EXPECT_EQ(s.parse_calls, 1);
  EXPECT_NE(bank.Requests().back().body.find("<MFAPHRASEA>blue</MFAPHRASEA>"), std::string::npos);
}

}  // namespace
}  // namespace orvelan
