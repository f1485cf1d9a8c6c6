// The loan statement end to end over TLS against the sandbox bank, through
// the component's property ids as a host reads them. The card and investment
// statements' end-to-end paths are FacadeTest's; their closing requests and
// lists are CardLoanStatementTest's.
#include <gtest/gtest.h>

#include <string>

#include "orvelan.h"
#include "services/loan_statement_component.h"
#include "support/component_host.h"

namespace orvelan {
namespace {

// A loan signed on to the bank for January and February.
struct Loan : ComponentHost<LoanStatementComponent> {
  Loan(const std::string& url, const char* version) {
    SignOn(url, "user", version);
    EXPECT_EQ(SetText(LOANSTATEMENT_PROP_STARTDATE, "01/01/2026 00:00:00") |
                  SetText(LOANSTATEMENT_PROP_ENDDATE, "02/28/2026 00:00:00"),
              0);
  }
};

TEST(LoanBankTest, LoanStatementAndClosingInBothVersions) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  for (const char* version : {"102", "211"}) {
    SCOPED_TRACE(version);
    Loan loan(bank.TlsUrl(), version);
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
