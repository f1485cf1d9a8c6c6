// Card and loan statements end to end over TLS against the sandbox bank,
// through the components' property ids as a host reads them. The investment
// statement's end-to-end path is FacadeTest's.
#include <gtest/gtest.h>

#include <string>

#include "orvelan.h"
#include "services/cc_statement_component.h"
#include "services/loan_statement_component.h"
#include "support/component_host.h"

namespace orvelan {
namespace {

// A component signed on to the bank for January and February.
template <class C>
struct Host : ComponentHost<C> {
  Host(const std::string& url, const char* version, int start, int end) {
    this->SignOn(url, "user", version);
    EXPECT_EQ(this->SetText(start, "01/01/2026 00:00:00") | this->SetText(end, "02/28/2026 00:00:00"), 0);
  }
};

TEST(CardLoanBankTest, CardStatementAndClosingInBothDialects) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  for (const char* version : {"102", "211"}) {
    SCOPED_TRACE(version);
    Host<CCStatementComponent> card(bank.TlsUrl(), version, CCSTATEMENT_PROP_STARTDATE, CCSTATEMENT_PROP_ENDDATE);
    ASSERT_EQ(card.SetText(CCSTATEMENT_PROP_CARDNUMBER, "4111222233334444"), 0);
    ASSERT_EQ(card.Run(CCSTATEMENT_METHOD_GETSTATEMENT), 0) << card.GetLastError();
    EXPECT_NE(bank.Requests().back().body.find("<CREDITCARDMSGSRQV1>"), std::string::npos);
    ASSERT_EQ(card.Int(CCSTATEMENT_PROP_TXCOUNT), 5);
    double sum = 0;
    for (int i = 0; i < 5; ++i) sum += std::stod(card.Text(CCSTATEMENT_PROP_TXAMOUNT, i));
    EXPECT_NE(sum, 0);
    EXPECT_EQ(card.Text(CCSTATEMENT_PROP_CURRENCYCODE), "USD");
    EXPECT_EQ(card.Text(CCSTATEMENT_PROP_TXFITID, 0).rfind("4111222233334444-", 0), 0u);
    EXPECT_FALSE(card.Text(CCSTATEMENT_PROP_LEDGERBALANCE).empty());

    ASSERT_EQ(card.Run(CCSTATEMENT_METHOD_GETCLOSINGINFO), 0) << card.GetLastError();
    EXPECT_EQ(card.Int(CCSTATEMENT_PROP_TXCOUNT), 0);
    ASSERT_EQ(card.Int(CCSTATEMENT_PROP_CLOSINGINFOCOUNT), 2);  // January and February
    for (int i = 0; i < 2; ++i) {
      EXPECT_FALSE(card.Text(CCSTATEMENT_PROP_CLOSINGINFOPAYMENTDUE, i).empty());
      EXPECT_FALSE(card.Text(CCSTATEMENT_PROP_CLOSINGINFOCREDITLIMIT, i).empty());
      EXPECT_EQ(card.Text(CCSTATEMENT_PROP_CLOSINGINFODATECLOSE, i).substr(0, 2), i == 0 ? "01" : "02");
    }
  }
}

TEST(CardLoanBankTest, LoanStatementAndClosingInBothVersions) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  for (const char* version : {"102", "211"}) {
    SCOPED_TRACE(version);
    Host<LoanStatementComponent> loan(bank.TlsUrl(), version, LOANSTATEMENT_PROP_STARTDATE, LOANSTATEMENT_PROP_ENDDATE);
    ASSERT_EQ(loan.SetText(LOANSTATEMENT_PROP_ACCOUNTID, "LN-778899"), 0);
    ASSERT_EQ(loan.SetInt(LOANSTATEMENT_PROP_ACCOUNTTYPE, 2), 0);
    // The fixed dictionary lacks these loan aggregates; a host names them.
    const char* out = nullptr;
    ASSERT_EQ(loan.service().Config("ExtraTags=ESCRWAMT,LOANPMT,LOANINT,LOANIRATE,LOANCLOSING", out), 0);
    ASSERT_EQ(loan.Run(LOANSTATEMENT_METHOD_GETSTATEMENT), 0) << loan.GetLastError();
    EXPECT_EQ(loan.Text(LOANSTATEMENT_PROP_OFXVERSION), "211");  // a loan always speaks 2.1.1
    EXPECT_NE(bank.Requests().back().body.find("<LOANACCTTYPE>MORTGAGE</LOANACCTTYPE>"), std::string::npos);
    ASSERT_EQ(loan.Int(LOANSTATEMENT_PROP_TXCOUNT), 3);
    EXPECT_FALSE(loan.Text(LOANSTATEMENT_PROP_PRINCIPALBALANCE).empty());
    EXPECT_FALSE(loan.Text(LOANSTATEMENT_PROP_TXPRINCIPALAMOUNT, 0).empty());

    ASSERT_EQ(loan.Run(LOANSTATEMENT_METHOD_GETCLOSINGINFO), 0) << loan.GetLastError();
    ASSERT_EQ(loan.Int(LOANSTATEMENT_PROP_CLOSINGINFOCOUNT), 2);
    for (int i = 0; i < 2; ++i) {
      // LOANPMT/PMTAMT is the payment due, with its own due date.
      EXPECT_EQ(loan.Text(LOANSTATEMENT_PROP_CLOSINGINFOPAYMENTDUE, i), "1384.72");
      EXPECT_FALSE(loan.Text(LOANSTATEMENT_PROP_CLOSINGINFODATEDUE, i).empty());
      EXPECT_FALSE(loan.Text(LOANSTATEMENT_PROP_CLOSINGINFOTOTALINTEREST, i).empty());
    }
  }
}

}  // namespace
}  // namespace orvelan
