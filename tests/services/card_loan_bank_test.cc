// Card and loan statements end to end over TLS against the sandbox bank,
// through the components' property ids as a host would use them.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "orvelan.h"
#include "services/cc_statement_component.h"
#include "services/inv_statement_component.h"
#include "services/loan_statement_component.h"
#include "support/test_bank_server.h"

namespace orvelan {
namespace {

// The sign-on ids differ per component; the rest of a download is the same.
struct SignOn { int url, user, password, app_id, app_version, org, fid, version, start, end, timeout; };

template <class C>
class Host {
 public:
  Host(const SignOn& ids, const std::string& url, const std::string& user, const char* version) : ids_(ids) {
    for (const auto& [id, value] : {std::pair<int, std::string>{ids.url, url}, {ids.user, user},
                                    {ids.password, "secret"}, {ids.app_id, "QWIN"}, {ids.app_version, "2700"},
                                    {ids.org, "Orvelan Bank"}, {ids.fid, "1234"}, {ids.version, version},
                                    {ids.start, "01/01/2026 00:00:00"}, {ids.end, "02/28/2026 00:00:00"}}) {
      EXPECT_EQ(Set(id, value), 0) << id;
    }
    EXPECT_EQ(component.Set(ids.timeout, 0, reinterpret_cast<void*>(10), 0), 0);
    const char* out = nullptr;
    EXPECT_EQ(component.service().Config(("OpenSSLCAFile=" + TestBankServer::CaFile()).c_str(), out), 0);
  }
  int Set(int id, const std::string& value) {
    return component.Set(id, 0, value.c_str(), static_cast<int>(value.size()));
  }
  std::string Get(int id, int index = 0) {
    const char* text = static_cast<const char*>(component.Get(id, index, nullptr));
    return text != nullptr ? text : "";
  }
  int64_t Count(int id) { return reinterpret_cast<intptr_t>(component.Get(id, 0, nullptr)); }
  int Do(int method) { return component.Do(method, 0, nullptr, nullptr); }

  C component{nullptr, nullptr};
  const SignOn ids_;
};

constexpr SignOn kCard = {CCSTATEMENT_PROP_FIURL,       CCSTATEMENT_PROP_OFXUSER,     CCSTATEMENT_PROP_OFXPASSWORD,
                          CCSTATEMENT_PROP_OFXAPPID,    CCSTATEMENT_PROP_OFXAPPVERSION, CCSTATEMENT_PROP_FIORGANIZATION,
                          CCSTATEMENT_PROP_FIID,        CCSTATEMENT_PROP_OFXVERSION,  CCSTATEMENT_PROP_STARTDATE,
                          CCSTATEMENT_PROP_ENDDATE,     CCSTATEMENT_PROP_TIMEOUT};
constexpr SignOn kLoan = {LOANSTATEMENT_PROP_FIURL,     LOANSTATEMENT_PROP_OFXUSER,   LOANSTATEMENT_PROP_OFXPASSWORD,
                          LOANSTATEMENT_PROP_OFXAPPID,  LOANSTATEMENT_PROP_OFXAPPVERSION, LOANSTATEMENT_PROP_FIORGANIZATION,
                          LOANSTATEMENT_PROP_FIID,      LOANSTATEMENT_PROP_OFXVERSION, LOANSTATEMENT_PROP_STARTDATE,
                          LOANSTATEMENT_PROP_ENDDATE,   LOANSTATEMENT_PROP_TIMEOUT};

TEST(CardLoanBankTest, CardStatementAndClosingInBothDialects) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  for (const char* version : {"102", "211"}) {
    SCOPED_TRACE(version);
    Host<CCStatementComponent> card(kCard, bank.TlsUrl(), "user", version);
    ASSERT_EQ(card.Set(CCSTATEMENT_PROP_CARDNUMBER, "4111222233334444"), 0);
    ASSERT_EQ(card.Do(CCSTATEMENT_METHOD_GETSTATEMENT), 0) << card.component.GetLastError();
    EXPECT_NE(bank.Requests().back().body.find("<CREDITCARDMSGSRQV1>"), std::string::npos);
    ASSERT_EQ(card.Count(CCSTATEMENT_PROP_TXCOUNT), 5);
    double sum = 0;
    for (int i = 0; i < 5; ++i) sum += std::stod(card.Get(CCSTATEMENT_PROP_TXAMOUNT, i));
    EXPECT_NE(sum, 0);
    EXPECT_EQ(card.Get(CCSTATEMENT_PROP_CURRENCYCODE), "USD");
    EXPECT_EQ(card.Get(CCSTATEMENT_PROP_TXFITID, 0).rfind("4111222233334444-", 0), 0u);
    EXPECT_FALSE(card.Get(CCSTATEMENT_PROP_LEDGERBALANCE).empty());

    ASSERT_EQ(card.Do(CCSTATEMENT_METHOD_GETCLOSINGINFO), 0) << card.component.GetLastError();
    EXPECT_EQ(card.Count(CCSTATEMENT_PROP_TXCOUNT), 0);
    ASSERT_EQ(card.Count(CCSTATEMENT_PROP_CLOSINGINFOCOUNT), 2);  // January and February
    for (int i = 0; i < 2; ++i) {
      EXPECT_FALSE(card.Get(CCSTATEMENT_PROP_CLOSINGINFOPAYMENTDUE, i).empty());
      EXPECT_FALSE(card.Get(CCSTATEMENT_PROP_CLOSINGINFOCREDITLIMIT, i).empty());
      EXPECT_EQ(card.Get(CCSTATEMENT_PROP_CLOSINGINFODATECLOSE, i).substr(0, 2), i == 0 ? "01" : "02");
    }
  }
}

TEST(CardLoanBankTest, LoanStatementAndClosingInBothVersions) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  for (const char* version : {"102", "211"}) {
    SCOPED_TRACE(version);
    Host<LoanStatementComponent> loan(kLoan, bank.TlsUrl(), "user", version);
    ASSERT_EQ(loan.Set(LOANSTATEMENT_PROP_ACCOUNTID, "LN-778899"), 0);
    ASSERT_EQ(loan.component.Set(LOANSTATEMENT_PROP_ACCOUNTTYPE, 0, reinterpret_cast<void*>(2), 0), 0);
    // The fixed dictionary lacks these loan aggregates; a host names them.
    const char* out = nullptr;
    ASSERT_EQ(loan.component.service().Config("ExtraTags=ESCRWAMT,LOANPMT,LOANINT,LOANIRATE,LOANCLOSING", out), 0);
    ASSERT_EQ(loan.Do(LOANSTATEMENT_METHOD_GETSTATEMENT), 0) << loan.component.GetLastError();
    EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_OFXVERSION), "211");  // a loan always speaks 2.1.1
    EXPECT_NE(bank.Requests().back().body.find("<LOANACCTTYPE>MORTGAGE</LOANACCTTYPE>"), std::string::npos);
    ASSERT_EQ(loan.Count(LOANSTATEMENT_PROP_TXCOUNT), 3);
    EXPECT_FALSE(loan.Get(LOANSTATEMENT_PROP_PRINCIPALBALANCE).empty());
    EXPECT_FALSE(loan.Get(LOANSTATEMENT_PROP_TXPRINCIPALAMOUNT, 0).empty());

    ASSERT_EQ(loan.Do(LOANSTATEMENT_METHOD_GETCLOSINGINFO), 0) << loan.component.GetLastError();
    ASSERT_EQ(loan.Count(LOANSTATEMENT_PROP_CLOSINGINFOCOUNT), 2);
    for (int i = 0; i < 2; ++i) {
      // LOANPMT/PMTAMT is the payment due, with its own due date.
      EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_CLOSINGINFOPAYMENTDUE, i), "1384.72");
      EXPECT_FALSE(loan.Get(LOANSTATEMENT_PROP_CLOSINGINFODATEDUE, i).empty());
      EXPECT_FALSE(loan.Get(LOANSTATEMENT_PROP_CLOSINGINFOTOTALINTEREST, i).empty());
    }
  }
}

constexpr SignOn kInv = {INVSTATEMENT_PROP_FIURL,      INVSTATEMENT_PROP_OFXUSER,    INVSTATEMENT_PROP_OFXPASSWORD,
                         INVSTATEMENT_PROP_OFXAPPID,   INVSTATEMENT_PROP_OFXAPPVERSION, INVSTATEMENT_PROP_FIORGANIZATION,
                         INVSTATEMENT_PROP_FIID,       INVSTATEMENT_PROP_OFXVERSION, INVSTATEMENT_PROP_STARTDATE,
                         INVSTATEMENT_PROP_ENDDATE,    INVSTATEMENT_PROP_TIMEOUT};

TEST(CardLoanBankTest, InvestmentStatementInBothDialects) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  for (const char* version : {"102", "211"}) {
    SCOPED_TRACE(version);
    Host<InvStatementComponent> inv(kInv, bank.TlsUrl(), "user", version);
    ASSERT_EQ(inv.Set(INVSTATEMENT_PROP_BROKERID, "broker.example.com") | inv.Set(INVSTATEMENT_PROP_ACCOUNTID, "X-42"),
              0);
    ASSERT_EQ(inv.Do(INVSTATEMENT_METHOD_GETSTATEMENT), 0) << inv.component.GetLastError();
    InvStatementService& s = inv.component.service();
    ASSERT_EQ(s.TxCount() * 1000 + s.PosCount() * 100 + s.SecCount() * 10 + s.BalCount(), 13553);
    EXPECT_EQ(s.OOCount(), 2);
    EXPECT_EQ(inv.Count(INVSTATEMENT_PROP_TXTYPE), 4);  // BUYSTOCK
    EXPECT_EQ(inv.Get(INVSTATEMENT_PROP_TXTYPEDESCRIPTION, 12), "Banking transaction");
    // Every trade and position names a security of the list.
    for (int i = 0; i < 8; ++i) EXPECT_GE(s.FindSecurity(inv.Get(INVSTATEMENT_PROP_TXSECURITYID, i)), 0) << i;
    for (int i = 0; i < 5; ++i) EXPECT_EQ(s.FindSecurity(inv.Get(INVSTATEMENT_PROP_POSSECURITYID, i)), i);
    EXPECT_EQ(inv.Get(INVSTATEMENT_PROP_SECASSETCLASS, 1), "LARGESTOCK");
    EXPECT_EQ(inv.Get(INVSTATEMENT_PROP_ACCOUNTID), "X-42");
  }
}

}  // namespace
}  // namespace orvelan
