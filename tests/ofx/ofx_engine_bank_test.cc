// The engine end to end against the scripted test bank, which refuses what a
// strict bank would refuse (header block, sign-on order, TRNUID form, end
// tags in 2.x), over plain HTTP and through nginx with TLS.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
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
    auto leaf = [&](ByteString& to, const char* name, std::string_view value) {
      to.Append("<");
      to.Append(name);
      to.Append(">");
      to.Append(value);
      if (xml) {
        to.Append("</");
        to.Append(name);
        to.Append(">");
      }
      to.Append("\r\n");
    };
    ByteString trnuid, request;
    if (int rc = NewTransactionId(trnuid); rc != 0) return rc;
    request.Append("<STMTTRNRQ>\r\n");
    leaf(request, "TRNUID", trnuid.View());
    request.Append("<STMTRQ>\r\n<BANKACCTFROM>\r\n");
    leaf(request, "BANKID", "121000248");
    leaf(request, "ACCTID", "1234567890");
    leaf(request, "ACCTTYPE", "CHECKING");
    request.Append("</BANKACCTFROM>\r\n<INCTRAN>\r\n");
    leaf(request, "INCLUDE", "Y");
    request.Append("</INCTRAN>\r\n</STMTRQ>\r\n</STMTTRNRQ>\r\n");
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

std::string Slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

TEST_F(EngineBankTest, StatementIsAcceptedInBothDialectsOverHttpAndTls) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  const std::string log = ::testing::TempDir() + "engine_bank_" + std::to_string(getpid()) + ".log";
  size_t expected_requests = 0;
  for (const char* version : {"102", "211"}) {
    for (const std::string& url : {bank.Url(), bank.TlsUrl()}) {
      SCOPED_TRACE(std::string(version) + " " + url);
      StatementService s;
      Prepare(s, url, "user", version);
      const char* out = nullptr;
      ASSERT_EQ(s.Config(("OFXLog=" + log).c_str(), out), 0);
      ASSERT_EQ(s.Exchange(), 0) << s.GetLastError();
      ++expected_requests;
      EXPECT_EQ(s.parse_calls, 1);
      EXPECT_FALSE(s.ledger_balance.empty());
      const std::vector<TestBankServer::Request> seen = bank.Requests();
      ASSERT_EQ(seen.size(), expected_requests);
      EXPECT_EQ(seen.back().status, 200) << seen.back().body;
      const std::string text = Slurp(log);
      EXPECT_EQ(text.find("BEGIN OFX REQUEST"), text.rfind("BEGIN OFX REQUEST"));
      EXPECT_EQ(text.find("BEGIN OFX RESPONSE"), text.rfind("BEGIN OFX RESPONSE"));
      EXPECT_EQ(text.find("secret"), std::string::npos);
      EXPECT_NE(text.find(s.OFXResponse()), std::string::npos);
    }
  }
  std::remove(log.c_str());
}

TEST_F(EngineBankTest, StatusScenarios) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  {
    StatementService s;
    Prepare(s, bank.Url(), "error2001");
    EXPECT_EQ(s.Exchange(), 2001);
    EXPECT_STREQ(s.GetLastError(), "OFX server error (2001): Invalid account");
  }
  {
    StatementService s;
    Prepare(s, bank.Url(), "user");
    s.SetOFXPassword("wrong");
    EXPECT_EQ(s.Exchange(), 2001);
    EXPECT_STREQ(s.GetLastError(), "OFX server error (15500): Signon (user ID or password) invalid");
  }
  {
    StatementService s;
    Prepare(s, bank.Url(), "warn", "211");
    ASSERT_EQ(s.Exchange(), 0) << s.GetLastError();
    EXPECT_EQ(std::string(s.ServerMessage()).rfind("WARN: ", 0), 0u) << s.ServerMessage();
    EXPECT_TRUE(events_.Saw("Error(2028," + std::string(s.ServerMessage()) + ")"));
  }
  {
    StatementService s;
    Prepare(s, bank.Url(), "accesskey");
    ASSERT_EQ(s.Exchange(), 0) << s.GetLastError();
    EXPECT_STREQ(s.OFXAccessKey(), "orvelan-access-key");
    ASSERT_EQ(s.Exchange(), 0) << "the key goes back in the next sign-on";
    EXPECT_NE(bank.Requests().back().body.find("<ACCESSKEY>orvelan-access-key\r\n</SONRQ>"), std::string::npos);
  }
  {
    StatementService s;
    Prepare(s, bank.Url(), "http500");
    const int rc = s.Exchange();
    EXPECT_NE(rc, 0);
    EXPECT_NE(rc, 2001);
    EXPECT_EQ(s.parse_calls, 0);
  }
  {
    StatementService s;
    Prepare(s, bank.Url(), "badofx");
    EXPECT_EQ(s.Exchange(), 2003) << s.GetLastError();
  }
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
  for (int32_t i = 0; i < questions.Count(); ++i) {
    MFAChallenge* q = questions.Item(i);
    q->answer.Assign(q->phrase_id.Equals("MFA13") ? "blue" : "rex");
  }
  EXPECT_STREQ(questions.Item(0)->phrase_label.Data(), "What is your favourite colour?");

  s.SetMFAChallengePending(false);
  s.SetAnswersReady(true);
  ASSERT_EQ(s.Exchange(), 0) << s.GetLastError();
  EXPECT_EQ(s.parse_calls, 1);
  EXPECT_NE(bank.Requests().back().body.find("<MFAPHRASEA>blue</MFAPHRASEA>"), std::string::npos);
}

TEST_F(EngineBankTest, ImageDownloadAndStatusBody) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  const std::string base = ::testing::TempDir() + "engine_bank_image_" + std::to_string(getpid());
  StatementService s;
  Prepare(s, bank.TlsUrl(), "user");
  s.SetImageFile(base.c_str());
  const char* data = nullptr;
  int32_t length = 0;
  ASSERT_EQ(s.GetImage("IMG-42", "OPAQUE", data, length), 0) << s.GetLastError();
  ASSERT_GT(length, 8);
  EXPECT_EQ(std::string(data, 8), "\x89PNG\r\n\x1a\n");
  EXPECT_EQ(Slurp(base + ".png"), std::string(data, static_cast<size_t>(length)));
  std::remove((base + ".png").c_str());

  EXPECT_EQ(s.GetImage("missing", "", data, length), 16512);
  EXPECT_STREQ(s.GetLastError(), "Image Reference Identifier not found.");
  EXPECT_EQ(length, 0);
}

}  // namespace
}  // namespace orvelan
