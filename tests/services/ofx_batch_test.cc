// OFXBatch: the request it wraps around the host's aggregates, the responses
// it hands back by TRNUID, its failures, and whole batches against the
// sandbox bank, directly and through an NTLM proxy.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "orvelan.h"
#include "services/bank_statement_component.h"
#include "services/cc_statement_component.h"
#include "services/inv_statement_component.h"
#include "services/ofx_batch_component.h"
#include "support/proxy_servers.h"
#include "support/test_bank_server.h"

namespace orvelan {
namespace {

template <class C>
struct Host {
  int Set(int id, const std::string& value, int index = 0) { return component.Set(id, index, value.c_str(), 0); }
  int SetInt(int id, intptr_t value) { return component.Set(id, 0, reinterpret_cast<void*>(value), 0); }
  std::string Get(int id, int index = 0) {
    const char* text = static_cast<const char*>(component.Get(id, index, nullptr));
    return text != nullptr ? text : "";
  }
  int64_t Int(int id) { return reinterpret_cast<intptr_t>(component.Get(id, 0, nullptr)); }
  int Do(int method) { return component.Do(method, 0, nullptr, nullptr); }

  C component{nullptr, nullptr};
};

struct Batch : Host<OFXBatchComponent> {
  void SignOn(const std::string& url, const char* user, const char* version) {
    for (const auto& [id, value] : {std::pair<int, std::string>{OFXBATCH_PROP_FIURL, url}, {OFXBATCH_PROP_OFXUSER, user},
                                    {OFXBATCH_PROP_OFXPASSWORD, "secret"}, {OFXBATCH_PROP_OFXAPPID, "QWIN"},
                                    {OFXBATCH_PROP_OFXAPPVERSION, "2700"},
                                    {OFXBATCH_PROP_FIORGANIZATION, "Orvelan Bank"}}) {
      EXPECT_EQ(Set(id, value), 0) << id;
    }
    EXPECT_EQ(SetInt(OFXBATCH_PROP_TIMEOUT, 10), 0);
    const char* out = nullptr;
    EXPECT_EQ(component.service().Config((std::string("OFXVersion=") + version).c_str(), out), 0);
    EXPECT_EQ(component.service().Config(("OpenSSLCAFile=" + TestBankServer::CaFile()).c_str(), out), 0);
  }
  // Appends an item; the result of setting its request.
  int Add(const std::string& request) {
    const int index = static_cast<int>(Int(OFXBATCH_PROP_OFXBATCHITEMCOUNT));
    EXPECT_EQ(SetInt(OFXBATCH_PROP_OFXBATCHITEMCOUNT, index + 1), 0);
    return Set(OFXBATCH_PROP_OFXBATCHITEMREQUEST, request, index);
  }
  std::string Response(int index) { return Get(OFXBATCH_PROP_OFXBATCHITEMRESPONSE, index); }
  // What follows the sign-on in the request the batch would send now.
  std::string MessageSets(int* rc = nullptr) {
    ByteString request;
    const int result = component.service().BuildRequest(request, false);
    if (rc != nullptr) *rc = result;
    const std::string text(request.View());
    const size_t signon = text.find("</SIGNONMSGSRQV1>\r\n");
    return signon == std::string::npos ? text : text.substr(signon + 19);
  }
};

// A transaction request of `root` with only its TRNUID, in either dialect.
std::string Transaction(const std::string& root, const std::string& trnuid, bool xml) {
  return "<" + root + ">\r\n<TRNUID>" + trnuid + (xml ? "</TRNUID>" : "") + "\r\n</" + root + ">\r\n";
}

TEST(OFXBatchTest, WrapsItemsByMessageSetInTableOrder) {
  for (const char* version : {"102", "211"}) {
    SCOPED_TRACE(version);
    const bool xml = version[0] == '2';
    Batch batch;
    batch.SignOn("http://127.0.0.1/ofx", "user", version);
    const char* roots[] = {"INTERTRNRQ",   "STMTTRNRQ",    "CCSTMTTRNRQ",   "PROFTRNRQ",    "INTRATRNRQ",
                           "STMTENDTRNRQ", "INVSTMTTRNRQ", "ACCTINFOTRNRQ", "LOANSTMTTRNRQ"};
    const char* kinds[] = {"INTER", "STMT", "CCSTMT", "PROF", "INTRA", "STMT", "INVSTMT", "ACCTINFO", "LOANSTMT"};
    std::vector<std::string> t;
    for (int i = 0; i < 9; ++i) {
      t.push_back(Transaction(roots[i], "1000" + std::to_string(i), xml));
      ASSERT_EQ(batch.Add(t.back()), 0);
      EXPECT_EQ(batch.Get(OFXBATCH_PROP_OFXBATCHITEMREQUESTTYPE, i), kinds[i]);
      EXPECT_EQ(batch.Get(OFXBATCH_PROP_OFXBATCHITEMREQUESTUID, i), "1000" + std::to_string(i));
    }
    // Statements, intrabank and interbank transfers each get a BANK wrapper of their own.
    EXPECT_EQ(batch.MessageSets(),
              "<SIGNUPMSGSRQV1>\r\n" + t[7] + "</SIGNUPMSGSRQV1>\r\n<BANKMSGSRQV1>\r\n" + t[1] + t[5] +
                  "</BANKMSGSRQV1>\r\n<BANKMSGSRQV1>\r\n" + t[4] + "</BANKMSGSRQV1>\r\n<CREDITCARDMSGSRQV1>\r\n" + t[2] +
                  "</CREDITCARDMSGSRQV1>\r\n<LOANMSGSRQV1>\r\n" + t[8] + "</LOANMSGSRQV1>\r\n<INVSTMTMSGSRQV1>\r\n" +
                  t[6] + "</INVSTMTMSGSRQV1>\r\n<BANKMSGSRQV1>\r\n" + t[0] + "</BANKMSGSRQV1>\r\n<PROFMSGSRQV1>\r\n" +
                  t[3] + "</PROFMSGSRQV1>\r\n</OFX>");
  }
}

TEST(OFXBatchTest, RecognisesTheRequestByItsRootAndTRNUID) {
  const struct {
    const char* name;
    const char* request;
    int rc;
    const char* kind;
    const char* trnuid;
  } cases[] = {
      {"closing request", "<STMTENDTRNRQ><TRNUID>e1<STMTENDRQ></STMTENDRQ></STMTENDTRNRQ>", 0, "STMT", "e1"},
      {"no TRNUID", "<CCSTMTTRNRQ><CCSTMTRQ></CCSTMTRQ></CCSTMTTRNRQ>", 0, "CCSTMT", ""},
      {"a prefix, not a part", "<INVSTMTTRNRQ><TRNUID>i1</TRNUID></INVSTMTTRNRQ>", 0, "INVSTMT", "i1"},
      {"bill payments are no kind", "<PMTTRNRQ><TRNUID>p1</TRNUID></PMTTRNRQ>", 0, "", ""},
      {"unbalanced", "<STMTTRNRQ><TRNUID>u</TRNUID></CCSTMTTRNRQ>", 201, "", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Batch batch;
    ASSERT_EQ(batch.Add(c.request), c.rc);
    EXPECT_EQ(batch.Get(OFXBATCH_PROP_OFXBATCHITEMREQUEST), c.request);
    EXPECT_EQ(batch.Get(OFXBATCH_PROP_OFXBATCHITEMREQUESTTYPE), c.kind);
    EXPECT_EQ(batch.Get(OFXBATCH_PROP_OFXBATCHITEMREQUESTUID), c.trnuid);
    // The parser's message is not passed on.
    if (c.rc != 0) {
      EXPECT_STREQ(batch.component.GetLastError(), "[201] (no description available)");
    }
    // An empty text changes nothing.
    EXPECT_EQ(batch.Set(OFXBATCH_PROP_OFXBATCHITEMREQUEST, ""), 0);
    EXPECT_EQ(batch.Get(OFXBATCH_PROP_OFXBATCHITEMREQUEST), c.request);
  }
}

TEST(OFXBatchTest, DefaultsAtCreation) {
  Batch batch;
  for (const auto& [id, value] : {std::pair<int, int>{OFXBATCH_PROP_OFXBATCHITEMCOUNT, 0},
                                  {OFXBATCH_PROP_PROXYAUTHSCHEME, 0}, {OFXBATCH_PROP_PROXYAUTODETECT, 0},
                                  {OFXBATCH_PROP_PROXYPORT, 80}, {OFXBATCH_PROP_PROXYSSL, 0},
                                  {OFXBATCH_PROP_TIMEOUT, 60}, {OFXBATCH_PROP_FIREWALLPORT, 0}}) {
    EXPECT_EQ(batch.Int(id), value) << id;
  }
  for (int id : {OFXBATCH_PROP_PROXYPASSWORD, OFXBATCH_PROP_PROXYSERVER, OFXBATCH_PROP_PROXYUSER, OFXBATCH_PROP_FIURL,
                 OFXBATCH_PROP_OFXUSER}) {
    EXPECT_EQ(batch.Get(id), "") << id;
  }
  int length = 0;
  EXPECT_EQ(std::string(static_cast<const char*>(batch.component.Get(OFXBATCH_PROP_SSLCERTSTORE, 0, &length)), 2),
            "MY");
}

TEST(OFXBatchTest, FailuresByCodeAndText) {
  Batch batch;
  batch.SignOn("http://127.0.0.1/ofx", "user", "102");
  int rc = -1;
  EXPECT_EQ(batch.MessageSets(&rc), "</OFX>");  // no requests: the sign-on alone
  EXPECT_EQ(rc, 0);

  for (int id : {OFXBATCH_PROP_OFXBATCHITEMREQUEST, OFXBATCH_PROP_OFXBATCHITEMREQUESTTYPE,
                 OFXBATCH_PROP_OFXBATCHITEMREQUESTUID, OFXBATCH_PROP_OFXBATCHITEMRESPONSE}) {
    SCOPED_TRACE(id);
    EXPECT_EQ(batch.Get(id, 0), "");
    EXPECT_EQ(batch.component.GetLastErrorCode(), 432);
    EXPECT_STREQ(batch.component.GetLastError(), "Invalid OFXBatchItemIndex (out of bounds).");
    EXPECT_EQ(batch.component.CheckIndex(id, -1), 280);
  }
  ASSERT_EQ(batch.SetInt(OFXBATCH_PROP_OFXBATCHITEMCOUNT, 1), 0);
  EXPECT_EQ(batch.Set(OFXBATCH_PROP_OFXBATCHITEMRESPONSE, "x", 1), 432);
  EXPECT_EQ(batch.component.GetLastErrorCode(), 0);  // a refused set leaves the code

  // An empty item, or one of no kind, without TRNUID fails once anything is sent.
  ASSERT_EQ(batch.Set(OFXBATCH_PROP_OFXBATCHITEMREQUEST, "<PMTTRNRQ></PMTTRNRQ>"), 0);
  EXPECT_EQ(batch.MessageSets(&rc), "</OFX>");
  EXPECT_EQ(rc, 0);
  ASSERT_EQ(batch.Add(Transaction("STMTTRNRQ", "s1", false)), 0);
  batch.MessageSets(&rc);
  EXPECT_EQ(rc, 2000);
  EXPECT_STREQ(batch.component.service().GetLastError(),
               "Missing required field: OFXRequest must contain a valid transaction id (TRNUID).");
}

TEST(OFXBatchTest, HandsEachResponseToTheItemOfItsTRNUID) {
  Batch batch;
  for (const char* uid : {"A", "B", "I"}) {
    ASSERT_EQ(batch.Add(Transaction(uid[0] == 'I' ? "INVSTMTTRNRQ" : "STMTTRNRQ", uid, true)), 0);
  }
  const std::string a = "<STMTTRNRS><TRNUID>A</TRNUID><STATUS><CODE>0</CODE></STATUS></STMTTRNRS>";
  const std::string b = "<STMTTRNRS><TRNUID>B</TRNUID><STATUS><CODE>0</CODE></STATUS></STMTTRNRS>";
  const std::string i = "<INVSTMTTRNRS><TRNUID>I</TRNUID></INVSTMTTRNRS>";
  const std::string z = "<INTRATRNRS><TRNUID>Z</TRNUID></INTRATRNRS>";
  const std::string securities = "<SECLISTMSGSRSV1><SECLIST></SECLIST></SECLISTMSGSRSV1>";
  const std::string response =
      "<OFX><SIGNONMSGSRSV1><SONRS><STATUS><CODE>0</CODE><SEVERITY>INFO</SEVERITY></STATUS></SONRS>"
      "</SIGNONMSGSRSV1><BANKMSGSRSV1>" + b + z + a + "</BANKMSGSRSV1><INVSTMTMSGSRSV1>" + i +
      "</INVSTMTMSGSRSV1><BILLPAYMSGSRSV1><PMTTRNRS><TRNUID>P</TRNUID></PMTTRNRS></BILLPAYMSGSRSV1>" + securities +
      "</OFX>";
  ASSERT_EQ(batch.component.service().SetData(response), 0) << batch.component.service().GetLastError();
  EXPECT_EQ(batch.Response(0), a);
  EXPECT_EQ(batch.Response(1), b);
  EXPECT_EQ(batch.Response(2), "<INVSECLIST>" + i + securities + "</INVSECLIST>");
  // The unmatched transfer is added; the bill payment is not matched at all.
  ASSERT_EQ(batch.Int(OFXBATCH_PROP_OFXBATCHITEMCOUNT), 4);
  EXPECT_EQ(batch.Get(OFXBATCH_PROP_OFXBATCHITEMREQUESTUID, 3), "Z");
  EXPECT_EQ(batch.Response(3), z);
  EXPECT_EQ(batch.Get(OFXBATCH_PROP_OFXBATCHITEMREQUEST, 3), "");

  // A transaction response without TRNUID fails as the document's path does.
  EXPECT_EQ(batch.component.service().SetData("<OFX><BANKMSGSRSV1><STMTTRNRS></STMTTRNRS></BANKMSGSRSV1></OFX>"),
            208);
  EXPECT_STREQ(batch.component.service().GetLastError(), "No such child.");
}

// ---- Against the sandbox bank ----

template <class C>
std::string StatementRequest(const std::vector<std::pair<int, std::string>>& values, int request_id) {
  Host<C> host;
  for (const auto& [id, value] : values) EXPECT_EQ(host.Set(id, value), 0) << id;
  return host.Get(request_id);
}

TEST(OFXBatchTest, StatementsOfThreeKindsInOneExchange) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  for (const char* version : {"102", "211"}) {
    SCOPED_TRACE(version);
    const std::string dates[] = {"01/01/2026 00:00:00", "02/28/2026 00:00:00"};
    Batch batch;
    batch.SignOn(bank.TlsUrl(), "user", version);
    ASSERT_EQ(batch.Add(StatementRequest<CCStatementComponent>(
                  {{CCSTATEMENT_PROP_OFXVERSION, version}, {CCSTATEMENT_PROP_CARDNUMBER, "4111222233334444"},
                   {CCSTATEMENT_PROP_STARTDATE, dates[0]}, {CCSTATEMENT_PROP_ENDDATE, dates[1]}},
                  CCSTATEMENT_PROP_OFXREQUEST)),
              0);
    ASSERT_EQ(batch.Add(StatementRequest<InvStatementComponent>(
                  {{INVSTATEMENT_PROP_OFXVERSION, version}, {INVSTATEMENT_PROP_BROKERID, "broker.example.com"},
                   {INVSTATEMENT_PROP_ACCOUNTID, "X-42"}, {INVSTATEMENT_PROP_STARTDATE, dates[0]},
                   {INVSTATEMENT_PROP_ENDDATE, dates[1]}},
                  INVSTATEMENT_PROP_OFXREQUEST)),
              0);
    ASSERT_EQ(batch.Add(StatementRequest<BankStatementComponent>(
                  {{BANKSTATEMENT_PROP_OFXVERSION, version}, {BANKSTATEMENT_PROP_BANKID, "123456789"},
                   {BANKSTATEMENT_PROP_ACCOUNTID, "1001"}, {BANKSTATEMENT_PROP_STARTDATE, dates[0]},
                   {BANKSTATEMENT_PROP_ENDDATE, dates[1]}},
                  BANKSTATEMENT_PROP_OFXREQUEST)),
              0);
    const size_t before = bank.Requests().size();
    ASSERT_EQ(batch.Do(OFXBATCH_METHOD_POSTBATCH), 0) << batch.component.GetLastError();
    EXPECT_EQ(bank.Requests().size(), before + 1);
    EXPECT_EQ(batch.Int(OFXBATCH_PROP_OFXBATCHITEMCOUNT), 3);

    Host<CCStatementComponent> card;
    ASSERT_EQ(card.Set(CCSTATEMENT_PROP_OFXRESPONSE, batch.Response(0)), 0) << card.component.GetLastError();
    EXPECT_EQ(card.Int(CCSTATEMENT_PROP_TXCOUNT), 5);
    Host<InvStatementComponent> inv;
    ASSERT_EQ(inv.Set(INVSTATEMENT_PROP_OFXRESPONSE, batch.Response(1)), 0) << inv.component.GetLastError();
    InvStatementService& s = inv.component.service();
    EXPECT_EQ(s.TxCount() * 100 + s.SecCount(), 1305);  // the securities came with the statement
    Host<BankStatementComponent> account;
    ASSERT_EQ(account.Set(BANKSTATEMENT_PROP_OFXRESPONSE, batch.Response(2)), 0)
        << account.component.GetLastError();
    EXPECT_EQ(account.Int(BANKSTATEMENT_PROP_TXCOUNT), 3);
    EXPECT_EQ(account.Get(BANKSTATEMENT_PROP_TXFITID, 0).rfind("1001-", 0), 0u);
  }
}

TEST(OFXBatchTest, ARefusedItemAndAnItemWithoutTRNUID) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  const std::string refused =
      StatementRequest<BankStatementComponent>({{BANKSTATEMENT_PROP_BANKID, "123456789"},
                                                {BANKSTATEMENT_PROP_ACCOUNTID, "error2020"}},
                                               BANKSTATEMENT_PROP_OFXREQUEST);
  const std::string accepted = StatementRequest<BankStatementComponent>(
      {{BANKSTATEMENT_PROP_BANKID, "123456789"}, {BANKSTATEMENT_PROP_ACCOUNTID, "1001"}}, BANKSTATEMENT_PROP_OFXREQUEST);
  Batch batch;
  batch.SignOn(bank.Url(), "user", "102");
  ASSERT_EQ(batch.Add(refused) | batch.Add(accepted), 0);
  ASSERT_EQ(batch.Do(OFXBATCH_METHOD_POSTBATCH), 0) << batch.component.GetLastError();
  Host<BankStatementComponent> first, second;
  EXPECT_EQ(first.Set(BANKSTATEMENT_PROP_OFXRESPONSE, batch.Response(0)), 2001);
  EXPECT_STREQ(first.component.GetLastError(), "OFX server error (2020): Account error2020 is refused.");
  EXPECT_EQ(second.Set(BANKSTATEMENT_PROP_OFXRESPONSE, batch.Response(1)), 0);

  const size_t before = bank.Requests().size();
  ASSERT_EQ(batch.Add("<STMTTRNRQ>\r\n<STMTRQ>\r\n</STMTRQ>\r\n</STMTTRNRQ>\r\n"), 0);
  EXPECT_EQ(batch.Do(OFXBATCH_METHOD_POSTBATCH), 2000);
  EXPECT_STREQ(batch.component.GetLastError(),
               "Missing required field: OFXRequest must contain a valid transaction id (TRNUID).");
  EXPECT_EQ(bank.Requests().size(), before);
}

TEST(OFXBatchTest, ThroughAnNtlmProxyPlainAndTunnelled) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  const std::string request = StatementRequest<BankStatementComponent>(
      {{BANKSTATEMENT_PROP_BANKID, "123456789"}, {BANKSTATEMENT_PROP_ACCOUNTID, "1001"}}, BANKSTATEMENT_PROP_OFXREQUEST);
  for (const bool tunnel : {false, true}) {
    SCOPED_TRACE(tunnel ? "CONNECT tunnel" : "plain proxying");
    auto proxy = ProxyServer::Scripted({"--ntlm", "--user", "CORP\\joe", "--password", "s3cret"});
    ORVELAN_REQUIRE_PROXY(proxy);
    Batch batch;
    batch.SignOn(tunnel ? bank.TlsUrl() : bank.Url(), "user", "102");
    // The scheme first: choosing it drops the credentials.
    ASSERT_EQ(batch.SetInt(OFXBATCH_PROP_PROXYAUTHSCHEME, 4) | batch.Set(OFXBATCH_PROP_PROXYSERVER, "127.0.0.1") |
                  batch.SetInt(OFXBATCH_PROP_PROXYPORT, proxy->port()) |
                  batch.SetInt(OFXBATCH_PROP_PROXYSSL, tunnel ? 3 : 0) |
                  batch.Set(OFXBATCH_PROP_PROXYUSER, "CORP\\joe") | batch.Set(OFXBATCH_PROP_PROXYPASSWORD, "s3cret"),
              0);
    ASSERT_EQ(batch.Add(request), 0);
    ASSERT_EQ(batch.Do(OFXBATCH_METHOD_POSTBATCH), 0) << batch.component.GetLastError() << proxy->Log();
    EXPECT_NE(proxy->Log().find("authenticate domain=CORP user=joe ok=1"), std::string::npos) << proxy->Log();
    EXPECT_NE(proxy->Log().find(tunnel ? "CONNECT " : "POST http://"), std::string::npos) << proxy->Log();
    EXPECT_NE(batch.Response(0).find("<STMTRS>"), std::string::npos);
  }
}

}  // namespace
}  // namespace orvelan
