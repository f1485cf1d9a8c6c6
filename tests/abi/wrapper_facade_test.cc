// The wrappers and the single-instance facade as a C++ host sees them: through
// orvelan.hpp and the shared library, against the sandbox bank.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "orvelan.hpp"
#include "support/test_bank_server.h"

namespace orvelan {
namespace {

// The bank behind TLS with a certificate of its own making, which nothing trusts.
#define REQUIRE_SELF_SIGNED_BANK(var)                                          \
  ORVELAN_REQUIRE_TEST_BANK(var);                                              \
  if (!var.StartBehindTls(/*self_signed=*/true)) {                             \
    if (PeersRequired()) FAIL() << "the TLS test bank is required: " << var.why(); \
    GTEST_SKIP() << "TLS test bank not available: " << var.why();              \
  }

const char kStart[] = "01/01/2026 00:00:00";
const char kEnd[] = "02/28/2026 00:00:00";

TEST(FacadeTest, RunnersDownloadFromABankWithASelfSignedCertificate) {
  REQUIRE_SELF_SIGNED_BANK(bank);
  const std::string url = bank.TlsUrl();
  const char* u = url.c_str();
  invStatement1.SetIncludeTransactions(0);
  invStatement1.SetIncludeBalances(0);
  ASSERT_EQ(Initialize(), 0);

  FiProfile_Config("ExtraTags=LOANMSGSETV1");  // the bank's profile lists loans
  ASSERT_EQ(FiProfile_GetProfile("user", "secret", u, "1234", "Orvelan Bank", "", "QWIN", "2700", "211"), 0)
      << FiProfile_GetLastError2();
  EXPECT_EQ(FiProfile_MessageSetCount(), 6);
  EXPECT_STREQ(FiProfile_MessageSetName(2), "BANKMSGSET");
  ASSERT_EQ(Account_GetInfo("user", "secret", u, "1234", "Orvelan Bank", "", "QWIN", "2700", "211"), 0)
      << Account_GetLastError2();
  ASSERT_EQ(Account_GetAccCount(), 4);
  EXPECT_STREQ(Account_GetAccId(1), "4111222233334444");

  ASSERT_EQ(BankStatement_GetStatement("user", "secret", "A-1", "111000025", u, "1234", "Orvelan Bank", kStart, kEnd,
                                       1, "QWIN", "2700", "102"),
            0)
      << BankStatement_GetLastError2();
  EXPECT_EQ(BankStatement_TxCount(), 3);
  EXPECT_STREQ(BankStatement_AccountId(), "A-1");
  EXPECT_NE(bank.Requests().back().body.find("<ACCTTYPE>SAVINGS"), std::string::npos);
  ASSERT_EQ(CCStatement_GetStatement("user", "secret", "4111222233334444", u, "1234", "Orvelan Bank", kStart, kEnd,
                                     "QWIN", "2700", "211"),
            0)
      << CCStatement_GetLastError2();
  EXPECT_EQ(CCStatement_TxCount(), 5);
  EXPECT_STRNE(CCStatement_TxAmount(4), "");
  // Initialize put transactions and balances back into the request.
  ASSERT_EQ(InvStatement_GetStatement("user", "secret", "X-42", u, "1234", "Orvelan Bank", "broker.example.com",
                                      kStart, kEnd, "QWIN", "2700", "211"),
            0)
      << InvStatement_GetLastError2();
  EXPECT_EQ(InvStatement_TxCount(), 13);
  EXPECT_EQ(InvStatement_SecCount(), 5);
  const std::string request = bank.Requests().back().body;
  EXPECT_NE(request.find("<INCLUDE>Y</INCLUDE>"), std::string::npos);
  EXPECT_NE(request.find("<INCBAL>Y</INCBAL>"), std::string::npos);

  // The globals keep their properties: only the empty user stops this one,
  // before anything is sent.
  const size_t sent = bank.Requests().size();
  EXPECT_EQ(BankStatement_GetStatement("", "secret", "A-1", "111000025", u, "1234", "Orvelan Bank", kStart, kEnd, 1,
                                       "QWIN", "2700", "102"),
            2000);
  EXPECT_STREQ(BankStatement_GetLastError2(), "Missing required field: OFX User Id is missing in the request.");
  EXPECT_EQ(bank.Requests().size(), sent);
}

// Each bill-payment runner puts every parameter in its place: whatever the
// bank answers, the request it got shows them.
TEST(FacadeTest, BillPaymentRunnersSendTheirParameters) {
  REQUIRE_SELF_SIGNED_BANK(bank);
  const std::string url = bank.TlsUrl();
  const char* u = url.c_str();
  ASSERT_EQ(Initialize(), 0);
  struct Case {
    const char* name;
    std::function<int()> run;
    std::vector<const char*> sent;
  };
  const Case cases[] = {
      {"PayBill",
       [&] {
         return BillPayment_PayBill("user", "secret", "A-1", "111000025", u, "1234", "Orvelan Bank", 1, "QWIN", "2700",
                                    "City Water", "1 Main St", "Suite 2", "", "Springfield", "IL", "62701", "USA",
                                    "555-0100", "W-77", "42.50", "03/01/2026", "March", "L-1", "211");
       },
       {"<PMTRQ>", ">A-1<", ">SAVINGS<", ">City Water<", ">Suite 2<", ">62701<", ">555-0100<", ">W-77<", ">42.50<",
        ">March<", ">L-1<"}},
      {"ModifyBill",
       [&] {
         return BillPayment_ModifyBill("user", "secret", "A-1", "111000025", u, "1234", "Orvelan Bank", 0, "QWIN",
                                       "2700", "City Water", "1 Main St", "", "", "Springfield", "IL", "62701", "USA",
                                       "555-0100", "W-77", "43.00", "03/02/2026", "Fixed", "P-9", "L-2", "211");
       },
       {"<PMTMODRQ>", ">P-9<", ">CHECKING<", ">43.00<", ">Fixed<", ">L-2<"}},
      {"SyncPayments",
       [&] {
         return BillPayment_SyncPayments("user", "secret", "A-2", "111000025", u, "1234", "Orvelan Bank", 0, "QWIN",
                                         "2700", "T-1", "211");
       },
       {"<PMTSYNCRQ>", ">T-1<", ">A-2<"}},
      {"CancelPayment",
       [&] { return BillPayment_CancelPayment("user", "secret", u, "1234", "Orvelan Bank", "QWIN", "2700", "P-8", "211"); },
       {"<PMTCANCRQ>", ">P-8<"}},
      {"SyncPayees",
       [&] { return BillPayment_SyncPayees("user", "secret", u, "1234", "Orvelan Bank", "QWIN", "2700", "T-2", "211"); },
       {"<PAYEESYNCRQ>", ">T-2<"}},
      {"AddPayee",
       [&] {
         return BillPayment_AddPayee("user", "secret", u, "1234", "Orvelan Bank", "QWIN", "2700", "Gas Co", "2 Elm", "",
                                     "", "Ville", "NY", "10001", "USA", "777", "211", "G-1");
       },
       {"<PAYEERQ>", ">Gas Co<", ">Ville<", ">777<", ">G-1<"}},
      {"DeletePayee",
       [&] { return BillPayment_DeletePayee("user", "secret", u, "1234", "Orvelan Bank", "QWIN", "2700", "L-3", "211"); },
       {"<PAYEEDELRQ>", ">L-3<"}},
      {"ModifyPayee",
       [&] {
         return BillPayment_ModifyPayee("user", "secret", u, "1234", "Orvelan Bank", "QWIN", "2700", "L-4", "Gas Inc",
                                        "3 Elm", "", "", "Ville", "NY", "10002", "USA", "778", "211", "G-2");
       },
       {"<PAYEEMODRQ>", ">L-4<", ">Gas Inc<", ">10002<", ">G-2<"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const size_t sent = bank.Requests().size();
    c.run();
    ASSERT_EQ(bank.Requests().size(), sent + 1) << BillPayment_GetLastError2();
    const std::string body = bank.Requests().back().body;
    for (const char* fragment : c.sent) EXPECT_NE(body.find(fragment), std::string::npos) << fragment;
  }
}

// A host's statement that decides on certificates itself and logs the connection.
class CheckingStatement : public BankStatement {
 public:
  int FireConnectionStatus(BankStatementConnectionStatusEventParams* e) override {
    events.push_back(e->ConnectionEvent);
    return 0;
  }
  int FireSSLServerAuthentication(BankStatementSSLServerAuthenticationEventParams* e) override {
    subject = e->CertSubject;
    status = e->Status;
    cert_length = e->lenCertEncoded;
    offered = e->Accept;
    e->Accept = 1;
    return 0;
  }
  std::vector<std::string> events;
  std::string subject, status;
  int cert_length = 0, offered = -1;
};

template <class W>
void SignOn(W& w, const std::string& url) {
  for (int rc : {w.SetFIUrl(url.c_str()), w.SetOFXUser("user"), w.SetOFXPassword("secret"), w.SetFIId("1234"),
                 w.SetFIOrganization("Orvelan Bank"), w.SetOFXAppId("QWIN"), w.SetOFXAppVersion("2700"),
                 w.SetBankId("111000025"), w.SetAccountId("A-1"), w.SetStartDate(kStart)}) {
    EXPECT_EQ(rc, 0);
  }
}

TEST(WrapperTest, OverriddenEventMethodsSeeAndDecide) {
  REQUIRE_SELF_SIGNED_BANK(bank);
  BankStatement plain;
  SignOn(plain, bank.TlsUrl());
  EXPECT_NE(plain.GetStatement(), 0);  // the library's own verdict stands
  EXPECT_EQ(plain.GetTxCount(), 0);

  CheckingStatement checking;
  SignOn(checking, bank.TlsUrl());
  ASSERT_EQ(checking.GetStatement(), 0) << checking.GetLastError();
  EXPECT_EQ(checking.GetTxCount(), 3);
  EXPECT_EQ(checking.offered, 0);
  EXPECT_NE(checking.subject.find("Orvelan Test Bank"), std::string::npos) << checking.subject;
  EXPECT_NE(checking.status, "");
  EXPECT_GT(checking.cert_length, 100);
  EXPECT_FALSE(checking.events.empty());
}

// The bill-payment records carry the event's fifteen texts in order.
class PayeeLog : public BillPayment {
 public:
  int FireSyncPayees(BillPaymentSyncPayeesEventParams* e) override {
    lines.push_back(std::string(e->Type) + "|" + e->ListId + "|" + e->Account + "|" + e->Name + "|" + e->Addr1 + "|" +
                    e->City + "|" + e->State + "|" + e->PostalCode + "|" + e->Phone);
    return 0;
  }
  std::vector<std::string> lines;
};

TEST(WrapperTest, OwnEventsAndIndexedSetters) {
  PayeeLog payees;
  const std::string response =
      "OFXData=<OFX><SIGNONMSGSRSV1><SONRS><STATUS><CODE>0<SEVERITY>INFO</STATUS><DTSERVER>20260115"
      "<LANGUAGE>ENG</SONRS></SIGNONMSGSRSV1><BILLPAYMSGSRSV1><PAYEESYNCRS><TOKEN>P1<PAYEETRNRS><TRNUID>1"
      "<STATUS><CODE>0<SEVERITY>INFO</STATUS><PAYEERS><PAYEELSTID>L1<PAYEE><NAME>Gas<ADDR1>2 Elm<CITY>Ville"
      "<STATE>NY<POSTALCODE>10001<PHONE>777</PAYEE><PAYACCT>G-1</PAYEERS></PAYEETRNRS></PAYEESYNCRS>"
      "</BILLPAYMSGSRSV1></OFX>";
  payees.Config(response.c_str());
  ASSERT_EQ(payees.lines, std::vector<std::string>{"ADDED|L1|G-1|Gas|2 Elm|Ville|NY|10001|777"})
      << payees.GetLastError();
  EXPECT_EQ(payees.GetSyncPayeeCount(), 1);
  EXPECT_STREQ(payees.GetSyncPayeePostalCode(0), "10001");
  EXPECT_STREQ(payees.GetSyncPayeeName(1), "");

  // An indexed setter: the item takes the request, one past the end is refused.
  OFXBatch batch;
  ASSERT_EQ(batch.SetOFXBatchItemCount(1), 0);
  const char* request = "<STMTTRNRQ><TRNUID>u-1<STMTRQ><BANKACCTFROM><BANKID>1<ACCTID>2<ACCTTYPE>CHECKING"
                        "</BANKACCTFROM></STMTRQ></STMTTRNRQ>";
  EXPECT_EQ(batch.SetOFXBatchItemRequest(0, request), 0) << batch.GetLastError();
  EXPECT_STREQ(batch.GetOFXBatchItemRequestUId(0), "u-1");
  EXPECT_EQ(batch.SetOFXBatchItemRequest(1, request), 432);
}

}  // namespace
}  // namespace orvelan
