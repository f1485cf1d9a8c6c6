// OFXBatch: the request it wraps around the host's aggregates, the responses it
// hands back by TRNUID, its failures, and batches against the sandbox bank.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
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
  std::string Get(int id, int index = 0) { return static_cast<const char*>(component.Get(id, index, nullptr)); }
  C component{nullptr, nullptr};
};

// The OFXRequest of a component with these properties set.
template <class C>
std::string RequestOf(int request_id, const std::vector<std::pair<int, std::string>>& values) {
  Host<C> host;
  for (const auto& [id, value] : values) EXPECT_EQ(host.Set(id, value), 0) << id;
  return host.Get(request_id);
}

struct Batch : Host<OFXBatchComponent> {
  explicit Batch(const std::string& url = "http://127.0.0.1/ofx", const std::string& version = "102") {
    for (const auto& [id, value] : {std::pair<int, std::string>{OFXBATCH_PROP_FIURL, url}, {OFXBATCH_PROP_OFXUSER, "u"},
                                    {OFXBATCH_PROP_OFXPASSWORD, "secret"}, {OFXBATCH_PROP_OFXAPPID, "QWIN"},
                                    {OFXBATCH_PROP_OFXAPPVERSION, "2700"}, {OFXBATCH_PROP_FIORGANIZATION, "B"}}) {
      EXPECT_EQ(Set(id, value), 0);
    }
    const char* out = nullptr;
    EXPECT_EQ(component.service().Config(("OFXVersion=" + version).c_str(), out) |
                  component.service().Config(("OpenSSLCAFile=" + TestBankServer::CaFile()).c_str(), out),
              0);
  }
  int Add(const std::string& request) {
    const int index = component.service().ItemCount();
    EXPECT_EQ(SetInt(OFXBATCH_PROP_OFXBATCHITEMCOUNT, index + 1), 0);
    return Set(OFXBATCH_PROP_OFXBATCHITEMREQUEST, request, index);
  }
  std::string Response(int index) { return Get(OFXBATCH_PROP_OFXBATCHITEMRESPONSE, index); }
  int Post() { return component.Do(OFXBATCH_METHOD_POSTBATCH, 0, nullptr, nullptr); }
  // What follows the sign-on in the request the batch would send now.
  std::string MessageSets(int& rc) {
    ByteString request;
    rc = component.service().BuildRequest(request, false);
    return std::string(request.View()).substr(request.View().find("</SIGNONMSGSRQV1>\r\n") + 19);
  }
};

std::string Transaction(const std::string& root, const std::string& trnuid, bool xml = false) {
  return "<" + root + ">\r\n<TRNUID>" + trnuid + (xml ? "</TRNUID>" : "") + "\r\n</" + root + ">\r\n";
}

TEST(OFXBatchTest, WrapsItemsByMessageSetInTableOrder) {
  for (const std::string version : {"102", "211"}) {
    Batch batch("http://127.0.0.1/ofx", version);
    int rc = -1;
    EXPECT_EQ(batch.MessageSets(rc), "</OFX>");  // no requests: the sign-on alone
    const char* roots[] = {"INTERTRNRQ",   "STMTTRNRQ",    "CCSTMTTRNRQ",   "PROFTRNRQ",    "INTRATRNRQ",
                           "STMTENDTRNRQ", "INVSTMTTRNRQ", "ACCTINFOTRNRQ", "LOANSTMTTRNRQ"};
    std::string t[9], kinds;
    for (int i = 0; i < 9; ++i) {
      ASSERT_EQ(batch.Add(t[i] = Transaction(roots[i], std::to_string(i), version == "211")), 0);
      kinds += batch.Get(OFXBATCH_PROP_OFXBATCHITEMREQUESTTYPE, i) + batch.Get(OFXBATCH_PROP_OFXBATCHITEMREQUESTUID, i);
    }
    EXPECT_EQ(kinds, "INTER0STMT1CCSTMT2PROF3INTRA4STMT5INVSTMT6ACCTINFO7LOANSTMT8");
    // Statements, intrabank and interbank transfers each get a BANK wrapper of their own.
    EXPECT_EQ(batch.MessageSets(rc),
              "<SIGNUPMSGSRQV1>\r\n" + t[7] + "</SIGNUPMSGSRQV1>\r\n<BANKMSGSRQV1>\r\n" + t[1] + t[5] +
                  "</BANKMSGSRQV1>\r\n<BANKMSGSRQV1>\r\n" + t[4] + "</BANKMSGSRQV1>\r\n<CREDITCARDMSGSRQV1>\r\n" + t[2] +
                  "</CREDITCARDMSGSRQV1>\r\n<LOANMSGSRQV1>\r\n" + t[8] + "</LOANMSGSRQV1>\r\n<INVSTMTMSGSRQV1>\r\n" +
                  t[6] + "</INVSTMTMSGSRQV1>\r\n<BANKMSGSRQV1>\r\n" + t[0] + "</BANKMSGSRQV1>\r\n<PROFMSGSRQV1>\r\n" +
                  t[3] + "</PROFMSGSRQV1>\r\n</OFX>");
    // A request that does not parse gives the parser's code alone; of no kind, it has no TRNUID,
    // which fails the batch although it would not be sent.
    EXPECT_EQ(batch.Add("<STMTTRNRQ><TRNUID>u</TRNUID></CCSTMTTRNRQ>"), 201);
    EXPECT_STREQ(batch.component.GetLastError(), "[201] (no description available)");
    batch.MessageSets(rc);
    EXPECT_EQ(rc, 2000);
    EXPECT_STREQ(batch.component.service().GetLastError(),
                 "Missing required field: OFXRequest must contain a valid transaction id (TRNUID).");
  }
}

TEST(OFXBatchTest, HandsEachResponseToTheItemOfItsTRNUIDInAnyOrder) {
  Batch batch;
  ASSERT_EQ(batch.Add(Transaction("STMTTRNRQ", "A")) | batch.Add(Transaction("STMTTRNRQ", "B")) |
                batch.Add(Transaction("INVSTMTTRNRQ", "I")),
            0);
  const std::string a = "<STMTTRNRS><TRNUID>A</TRNUID></STMTTRNRS>", b = "<STMTTRNRS><TRNUID>B</TRNUID></STMTTRNRS>";
  const std::string i = "<INVSTMTTRNRS><TRNUID>I</TRNUID></INVSTMTTRNRS>", z = "<INTRATRNRS><TRNUID>Z</TRNUID></INTRATRNRS>";
  const std::string securities = "<SECLISTMSGSRSV1><SECLIST></SECLIST></SECLISTMSGSRSV1>";
  ASSERT_EQ(batch.component.service().SetData("<OFX><BANKMSGSRSV1>" + b + z + a + "</BANKMSGSRSV1><INVSTMTMSGSRSV1>" +
                                              i + "</INVSTMTMSGSRSV1><BILLPAYMSGSRSV1><PMTTRNRS><TRNUID>P</TRNUID>"
                                              "</PMTTRNRS></BILLPAYMSGSRSV1>" + securities + "</OFX>"),
            0);
  EXPECT_EQ(batch.Response(0) + batch.Response(1), a + b);
  EXPECT_EQ(batch.Response(2), "<INVSECLIST>" + i + securities + "</INVSECLIST>");
  // The unmatched transfer is added; bill payments are not matched at all.
  ASSERT_EQ(batch.component.service().ItemCount(), 4);
  EXPECT_EQ(batch.Get(OFXBATCH_PROP_OFXBATCHITEMREQUESTUID, 3) + batch.Response(3), "Z" + z);
  EXPECT_EQ(batch.Get(OFXBATCH_PROP_OFXBATCHITEMRESPONSE, 4), "");
  EXPECT_EQ(batch.component.GetLastErrorCode(), 432);
  EXPECT_STREQ(batch.component.GetLastError(), "Invalid OFXBatchItemIndex (out of bounds).");
  for (int id = OFXBATCH_PROP_OFXBATCHITEMREQUEST; id <= OFXBATCH_PROP_OFXBATCHITEMRESPONSE; ++id) {
    EXPECT_EQ(batch.component.CheckIndex(id, 4), 280);
  }
}

// A card, an investment and two bank statements (the bank refuses one) in one
// exchange, each item read back by a component of its kind: over TLS in both
// dialects, then through an NTLM proxy, plain and tunnelled.
TEST(OFXBatchTest, StatementsOfThreeKindsInOneExchange) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  for (const auto& [version, proxy_ssl] : {std::pair<std::string, int>{"102", -1}, {"211", -1}, {"102", 0}, {"211", 3}}) {
    Batch batch(proxy_ssl == 0 ? bank.Url() : bank.TlsUrl(), version);
    std::unique_ptr<ProxyServer> proxy;
    if (proxy_ssl >= 0) {
      proxy = ProxyServer::Scripted({"--ntlm", "--user", "CORP\\joe", "--password", "s3cret"});
      ORVELAN_REQUIRE_PROXY(proxy);
      // The scheme first: choosing it drops the credentials.
      ASSERT_EQ(batch.SetInt(OFXBATCH_PROP_PROXYAUTHSCHEME, 4) | batch.Set(OFXBATCH_PROP_PROXYSERVER, "127.0.0.1") |
                    batch.SetInt(OFXBATCH_PROP_PROXYPORT, proxy->port()) | batch.SetInt(OFXBATCH_PROP_PROXYSSL, proxy_ssl) |
                    batch.Set(OFXBATCH_PROP_PROXYUSER, "CORP\\joe") | batch.Set(OFXBATCH_PROP_PROXYPASSWORD, "s3cret"),
                0);
    }
    const auto bank_request = [&version](const char* account) {
      return RequestOf<BankStatementComponent>(BANKSTATEMENT_PROP_OFXREQUEST, {{BANKSTATEMENT_PROP_OFXVERSION, version},
                                               {BANKSTATEMENT_PROP_BANKID, "123456789"},
                                               {BANKSTATEMENT_PROP_ACCOUNTID, account}});
    };
    for (const std::string& request :
         {RequestOf<CCStatementComponent>(CCSTATEMENT_PROP_OFXREQUEST, {{CCSTATEMENT_PROP_OFXVERSION, version},
                                          {CCSTATEMENT_PROP_CARDNUMBER, "4111222233334444"}}),
          RequestOf<InvStatementComponent>(INVSTATEMENT_PROP_OFXREQUEST, {{INVSTATEMENT_PROP_OFXVERSION, version},
                                           {INVSTATEMENT_PROP_BROKERID, "b.example"}, {INVSTATEMENT_PROP_ACCOUNTID, "X"}}),
          bank_request("1001"), bank_request("error2020")}) {
      ASSERT_EQ(batch.Add(request), 0);
    }
    const size_t before = bank.Requests().size();
    ASSERT_EQ(batch.Post(), 0) << version << proxy_ssl << batch.component.GetLastError();
    EXPECT_EQ(bank.Requests().size(), before + 1);
    if (proxy) {
      EXPECT_NE(proxy->Log().find("authenticate domain=CORP user=joe ok=1"), std::string::npos) << proxy->Log();
      EXPECT_EQ(proxy->Log().find("CONNECT ") != std::string::npos, proxy_ssl == 3) << proxy->Log();
    }
    Host<CCStatementComponent> card;
    Host<InvStatementComponent> inv;
    Host<BankStatementComponent> accepted, refused;
    ASSERT_EQ(card.Set(CCSTATEMENT_PROP_OFXRESPONSE, batch.Response(0)) |
                  inv.Set(INVSTATEMENT_PROP_OFXRESPONSE, batch.Response(1)) |
                  accepted.Set(BANKSTATEMENT_PROP_OFXRESPONSE, batch.Response(2)),
              0);
    // Five card transactions, five securities with the investment statement, three bank transactions.
    EXPECT_EQ(card.component.service().TxCount() * 100 + inv.component.service().SecCount() * 10 +
                  accepted.component.service().TxCount(),
              553);
    EXPECT_EQ(refused.Set(BANKSTATEMENT_PROP_OFXRESPONSE, batch.Response(3)), 2001);
    EXPECT_STREQ(refused.component.GetLastError(), "OFX server error (2020): Account error2020 is refused.");
    // An item without TRNUID: nothing is sent.
    ASSERT_EQ(batch.Add("<STMTTRNRQ>\r\n<STMTRQ>\r\n</STMTRQ>\r\n</STMTTRNRQ>\r\n"), 0);
    EXPECT_EQ(batch.Post(), 2000);
    EXPECT_EQ(bank.Requests().size(), before + 1);
  }
}

}  // namespace
}  // namespace orvelan
