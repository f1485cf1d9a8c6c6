// The card and loan statements over canned responses: what each changes in
// the statement family (requests, required inputs, account, loan balances).
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <tuple>

#include "services/cc_statement_component.h"
#include "services/loan_statement_component.h"
#include "support/component_host.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

const std::string kCard =
    OfxResponse("CREDITCARDMSGSRSV1", "CCSTMTTRNRS",
        "<CCSTMTRS><CURDEF>USD<CCACCTFROM><ACCTID>5500999</CCACCTFROM><BANKTRANLIST><DTSTART>20260101<DTEND>20260131"
        "<STMTTRN><TRNTYPE>DEBIT<DTPOSTED>20260105<DTUSER>20260104<TRNAMT>-42.10<FITID>K1</STMTTRN>"
        "<STMTTRN><TRNTYPE>PAYMENT<DTPOSTED>20260120<TRNAMT>100<FITID>K2</STMTTRN></BANKTRANLIST>"
        "<LEDGERBAL><BALAMT>-310.55<DTASOF>20260131</LEDGERBAL></CCSTMTRS>");
const std::string kCardClosing =
    OfxResponse("CREDITCARDMSGSRSV1", "CCSTMTENDTRNRS",
        "<CCSTMTENDRS><CURDEF>USD<CCACCTFROM><ACCTID>5500999</CCACCTFROM><CCCLOSING><FITID>P1<MINPMTDUE>25"
        "<DTPMTDUE>20260125<CREDITLIMIT>5000<FINCHG>0<TOTALFEES>12</CCCLOSING>"
        "<CCCLOSING><FITID>P2<FINCHG><TOTALFEES>7.5</CCCLOSING></CCSTMTENDRS>");
const std::string kLoan =
    OfxResponse("LOANMSGSRSV1", "LOANSTMTTRNRS",
        "<LOANSTMTRS><CURDEF>USD<LOANACCTFROM><LOANACCTID>L-77<LOANACCTTYPE>HOMEEQUITY</LOANACCTFROM>"
        "<LOANTRANLIST><DTSTART>20260101<DTEND>20260131<LOANSTMTTRN><LOANTRNTYPE>BALLOON<DTPOSTED>20260110"
        "<TRNAMT>-900<FITID>B1<LOANTRNAMT><PRINAMT>-700<INTAMT>-150<ESCRWAMT><ESCRWTOTAL>-50</ESCRWAMT></LOANTRNAMT>"
        "</LOANSTMTTRN><LOANSTMTTRN><LOANTRNTYPE>FEE<DTPOSTED>20260111<TRNAMT>-5<FITID>B2</LOANSTMTTRN></LOANTRANLIST>"
        "<PRINBAL><BALAMT>120000<DTASOF>20260131<PRINYTD>700<PRINLTD>30000</PRINBAL>"
        "<MKTGINFO>Refinance today</LOANSTMTRS>");
const std::string kLoanClosing =
    OfxResponse("LOANMSGSRSV1", "LOANSTMTENDTRNRS",
        "<LOANSTMTENDRS><CURDEF>EUR<LOANACCTFROM><LOANACCTID>L-77<LOANACCTTYPE>AUTO</LOANACCTFROM>"
        "<LOANCLOSING><FITID>Q1<DTPMTDUE>20260201<MINPMTDUE>1<LOANPMT><PMTAMT>850</LOANPMT>"
        "<LOANINT><LOANINTYTD>150</LOANINT></LOANCLOSING><LOANCLOSING><FITID>Q2</LOANCLOSING></LOANSTMTENDRS>");

// Either kind, with the loan aggregates the dictionary leaves out.
template <class Component>
struct Statement : ComponentHost<Component> {
  Statement() : ComponentHost<Component>("ESCRWAMT,LOANPMT,LOANINT,LOANIRATE,LOANCLOSING") {}
};
using Card = Statement<CCStatementComponent>;
using Loan = Statement<LoanStatementComponent>;

TEST(CardLoanStatementTest, RequestsByVersionAndKind) {
  Card card;
  Loan loan;
  card.service().SetCardNumber("5500999");
  loan.service().SetAccountId("L-77");
  ASSERT_EQ(loan.service().SetAccountType(2), 0);
  for (StatementServiceBase* s :
       {static_cast<StatementServiceBase*>(&card.service()), static_cast<StatementServiceBase*>(&loan.service())}) {
    ASSERT_EQ(s->SetStartDate("01/02/2026 00:00:00"), 0);
    s->SetIncludeImages(true);
  }
  const std::string start = card.service().StartDateOFX();
  // Card?, type, the 102 and the 211 request (null: a loan's, the same for both).
  const std::tuple<bool, int, const char*, const char*> cases[] = {
      {true, 0,
       "<CCSTMTTRNRQ>\r\n<TRNUID>T\r\n<CCSTMTRQ>\r\n<CCACCTFROM>\r\n<ACCTID>5500999\r\n</CCACCTFROM>\r\n"
       "<INCTRAN>\r\n<DTSTART>S\r\n<INCLUDE>Y\r\n</INCTRAN>\r\n</CCSTMTRQ>\r\n</CCSTMTTRNRQ>\r\n",
       "<CCSTMTTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<CCSTMTRQ>\r\n<CCACCTFROM>\r\n<ACCTID>5500999</ACCTID>\r\n"
       "</CCACCTFROM>\r\n<INCTRAN>\r\n<DTSTART>S</DTSTART>\r\n<INCLUDE>Y</INCLUDE>\r\n</INCTRAN>\r\n"
       "</CCSTMTRQ>\r\n</CCSTMTTRNRQ>\r\n"},
      {true, 1,
       "<CCSTMTENDTRNRQ>\r\n<TRNUID>T\r\n<CCSTMTENDRQ>\r\n<CCACCTFROM>\r\n<ACCTID>5500999\r\n</CCACCTFROM>\r\n"
       "<DTSTART>S\r\n</CCSTMTENDRQ>\r\n</CCSTMTENDTRNRQ>\r\n",
       "<CCSTMTENDTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<CCSTMTENDRQ>\r\n<CCACCTFROM>\r\n<ACCTID>5500999</ACCTID>\r\n"
       "</CCACCTFROM>\r\n<DTSTART>S</DTSTART>\r\n<INCSTMTIMG>Y</INCSTMTIMG>\r\n</CCSTMTENDRQ>\r\n"
       "</CCSTMTENDTRNRQ>\r\n"},
      {false, 0, nullptr,
       "<LOANSTMTTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<LOANSTMTRQ>\r\n<LOANACCTFROM>\r\n<LOANACCTID>L-77</LOANACCTID>\r\n"
       "<LOANACCTTYPE>MORTGAGE</LOANACCTTYPE>\r\n</LOANACCTFROM>\r\n<INCTRAN>\r\n<DTSTART>S</DTSTART>\r\n"
       "<INCLUDE>Y</INCLUDE>\r\n</INCTRAN>\r\n<INCTRANIMG>Y</INCTRANIMG>\r\n</LOANSTMTRQ>\r\n</LOANSTMTTRNRQ>\r\n"},
      {false, 1, nullptr,
       "<LOANSTMTENDTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<LOANSTMTENDRQ>\r\n<LOANACCTFROM>\r\n"
       "<LOANACCTID>L-77</LOANACCTID>\r\n<LOANACCTTYPE>MORTGAGE</LOANACCTTYPE>\r\n</LOANACCTFROM>\r\n"
       "<DTSTART>S</DTSTART>\r\n<INCSTMTIMG>Y</INCSTMTIMG>\r\n</LOANSTMTENDRQ>\r\n</LOANSTMTENDTRNRQ>\r\n"},
  };
  for (const auto& [is_card, type, sgml, xml] : cases) {
    for (const char* version : {"102", "211"}) {
      SCOPED_TRACE(std::string(is_card ? "card " : "loan ") + version + " type " + std::to_string(type));
      StatementServiceBase& s = is_card ? static_cast<StatementServiceBase&>(card.service()) : loan.service();
      s.SetOFXVersion(version);
      ASSERT_EQ(s.SetStatementType(type), 0);
      const std::string sent =
          is_card ? card.Text(CCSTATEMENT_PROP_OFXREQUEST) : loan.Text(LOANSTATEMENT_PROP_OFXREQUEST);
      const char* expected = version[0] == '1' && sgml != nullptr ? sgml : xml;
      EXPECT_EQ(Replace(sent, s.TransactionId(), "T"), Replace(expected, "<DTSTART>S", "<DTSTART>" + start));
      // A download wraps it in the statement's message set.
      ByteString wrapped;
      ASSERT_EQ(s.BuildMessageSets(wrapped, true), 0);
      EXPECT_EQ(wrapped.View().substr(0, 6), is_card ? "<CREDI" : "<LOANM");
    }
  }
}

TEST(CardLoanStatementTest, CardFailures) {
  Card card;
  const auto without = [&card](const std::string& doc, const char* part) {
    return [&card, doc, part] { return card.Respond(Replace(doc, part, "")); };
  };
  const char* out = nullptr;
  card.service().Config("DateFormat=MM/dd/YYYY HH:mm:ss A", out);
  ExpectFailures(card, {{[&card] { return card.Do(CCSTATEMENT_METHOD_GETSTATEMENT, 0, nullptr, nullptr); }, 2000,
                         "Missing required field: CC Account Number is missing in the request."},
                        {[&card] {
                           card.service().SetCardNumber("1");
                           card.service().SetIncludeImages(true);
                           return card.Do(CCSTATEMENT_METHOD_GETSTATEMENT, 0, nullptr, nullptr);
                         },
                         202, "Transaction Images are not available for Credit Card statements."},
                        {[&card] { return card.Set(CCSTATEMENT_PROP_ENDDATE, 0, "12/31/2025 11:59:58 XX", 0); }, 676,
                         "Cannot parse date."},
                        {without(kCard, "<ACCTID>5500999"), 2000, kExpectedElement},
                        {without(kCard, "<FITID>K2"), 202, "Required field missing: \"FITID\"."},
                        {without(kCardClosing, "<FITID>P2"), 202, "Required field missing: \"FITID\"."},
                        {[&card] {
                           return card.Respond(Replace(kCardClosing, "<CODE>0<SEVERITY>INFO</STATUS><CCSTMTENDRS>",
                                                       "<CODE>2000<SEVERITY>ERROR</STATUS><CCSTMTENDRS>"));
                         },
                         2001, "OFX server error (2000): General error"}});
}

TEST(CardLoanStatementTest, LoanFailures) {
  Loan loan;
  const auto without = [&loan](const std::string& doc, const char* part) {
    return [&loan, doc, part] { return loan.Respond(Replace(doc, part, "")); };
  };
  ExpectFailures(loan, {{[&loan] { return loan.Set(LOANSTATEMENT_PROP_ACCOUNTTYPE, 0, reinterpret_cast<void*>(9), 0); },
                         202, "AccountType is invalid."},
                        {without(kLoan, "<DTASOF>20260131"), 2000, kExpectedElement},
                        {without(kLoan, "<PRINAMT>-700"), 202, "Required field missing: \"LOANTRNAMT/PRINAMT\"."},
                        {without(kLoanClosing, "<DTPMTDUE>20260201"), 202, "Required field missing: \"DTPMTDUE\"."},
                        {[&loan] {
                           loan.service().SetAccountId("");
                           return loan.Do(LOANSTATEMENT_METHOD_GETCLOSINGINFO, 0, nullptr, nullptr);
                         },
                         2000, "Missing required field: Loan Account Number is missing in the request."}});
  // Failed walks left the type; the download forced the version.
  EXPECT_EQ(loan.Int(LOANSTATEMENT_PROP_ACCOUNTTYPE), 0);
  EXPECT_EQ(loan.Text(LOANSTATEMENT_PROP_OFXVERSION), "211");
}

TEST(CardLoanStatementTest, EveryIndexedPropertyChecksItsIndex) {
  ExpectEveryId(CCStatementTables(), 62);
  ExpectEveryId(LoanStatementTables(), 66);
  Card card;
  Loan loan;
  ASSERT_EQ(card.Respond(kCard), 0) << card.GetLastError();
  ASSERT_EQ(loan.Respond(kLoanClosing), 0) << loan.GetLastError();
  const char* tx = "Invalid TxIndex (out of bounds).";
  const char* closing = "Invalid ClosingInfoIndex (out of bounds).";
  ExpectIndexedLists(card, {{CCSTATEMENT_PROP_CLOSINGINFOAGGREGATE, CCSTATEMENT_PROP_CLOSINGINFOTOTALFEES, 0, closing},
                            {CCSTATEMENT_PROP_TXAGGREGATE, CCSTATEMENT_PROP_TXTYPEDESCRIPTION, 2, tx}});
  ExpectIndexedLists(loan, {{LOANSTATEMENT_PROP_CLOSINGINFOAGGREGATE, LOANSTATEMENT_PROP_CLOSINGINFOTOTALINTEREST, 2,
                             closing},
                            {LOANSTATEMENT_PROP_TXAGGREGATE, LOANSTATEMENT_PROP_TXTYPEDESCRIPTION, 0, tx}});
}

TEST(CardLoanStatementTest, CardStatementAndClosing) {
  Card card;
  card.service().SetCardNumber("other");
  ASSERT_EQ(card.Respond(kCard), 0) << card.GetLastError();
  EXPECT_EQ(card.Text(CCSTATEMENT_PROP_CARDNUMBER), "5500999");
  EXPECT_EQ(card.Text(CCSTATEMENT_PROP_LEDGERBALANCE), "-310.55");
  EXPECT_EQ(card.Text(CCSTATEMENT_PROP_ENDDATE), "01/31/2026 00:00:00");
  ASSERT_EQ(card.Int(CCSTATEMENT_PROP_TXCOUNT), 2);
  EXPECT_EQ(card.Text(CCSTATEMENT_PROP_TXDATEINITIATED, 0), "01/04/2026 00:00:00");
  EXPECT_EQ(card.Text(CCSTATEMENT_PROP_TXTYPEDESCRIPTION, 1), "Payment");

  for (int round = 0; round < 2; ++round) ASSERT_EQ(card.Respond(kCardClosing), 0) << card.GetLastError();
  ASSERT_EQ(card.Int(CCSTATEMENT_PROP_CLOSINGINFOCOUNT), 2);  // the second response only
  EXPECT_EQ(card.Text(CCSTATEMENT_PROP_CLOSINGINFOPAYMENTDUE, 0), "25");
  EXPECT_EQ(card.Text(CCSTATEMENT_PROP_CLOSINGINFODATEDUE, 0), "01/25/2026 00:00:00");
  EXPECT_EQ(card.Text(CCSTATEMENT_PROP_CLOSINGINFOCREDITLIMIT, 0), "5000");
  // FINCHG wins whenever it has text, "0" too; an empty one gives way.
  EXPECT_STREQ(card.service().Closings().Item(0)->Text(card.service().Document(), ClosingInfo::kTotalFees), "0");
  EXPECT_EQ(card.Text(CCSTATEMENT_PROP_CLOSINGINFOTOTALFEES, 1), "7.5");
}

TEST(CardLoanStatementTest, LoanStatementAndClosing) {
  Loan loan;
  ASSERT_EQ(loan.Respond(kLoan), 0) << loan.GetLastError();
  EXPECT_EQ(loan.Text(LOANSTATEMENT_PROP_ACCOUNTID), "L-77");
  EXPECT_EQ(loan.Int(LOANSTATEMENT_PROP_ACCOUNTTYPE), 8);
  EXPECT_EQ(loan.Text(LOANSTATEMENT_PROP_PRINCIPALBALANCE), "120000");
  EXPECT_EQ(loan.Text(LOANSTATEMENT_PROP_PRINCIPALBALANCEDATE), "01/31/2026 00:00:00");
  EXPECT_EQ(loan.Text(LOANSTATEMENT_PROP_TOTALPRINCIPALYTD) + loan.Text(LOANSTATEMENT_PROP_TOTALPRINCIPALLTD),
            "70030000");
  EXPECT_EQ(loan.Text(LOANSTATEMENT_PROP_AVAILABLEBALANCE), "0.00");
  const char* out = nullptr;
  EXPECT_EQ(loan.service().Config("MarketingInfo=changed", out), 0);
  ASSERT_EQ(loan.service().Config("MarketingInfo", out), 0);
  EXPECT_STREQ(out, "Refinance today");

  ASSERT_EQ(loan.Int(LOANSTATEMENT_PROP_TXCOUNT), 2);  // the one after the split too
  EXPECT_EQ(loan.Int(LOANSTATEMENT_PROP_TXTYPE, 0), 18);
  EXPECT_EQ(loan.Text(LOANSTATEMENT_PROP_TXTYPEDESCRIPTION, 0), "Payment of Balloon Amount");
  EXPECT_EQ(loan.Text(LOANSTATEMENT_PROP_TXPRINCIPALAMOUNT, 0) + loan.Text(LOANSTATEMENT_PROP_TXINTERESTAMOUNT, 0) +
                loan.Text(LOANSTATEMENT_PROP_TXESCROWTOTAL, 0),
            "-700-150-50");

  ASSERT_EQ(loan.Respond(kLoanClosing), 0) << loan.GetLastError();
  EXPECT_EQ(loan.Int(LOANSTATEMENT_PROP_ACCOUNTTYPE), 0);             // AUTO
  EXPECT_EQ(loan.Text(LOANSTATEMENT_PROP_PRINCIPALBALANCE), "0.00");  // cleared with the response
  ASSERT_EQ(loan.Int(LOANSTATEMENT_PROP_CLOSINGINFOCOUNT), 2);
  EXPECT_EQ(loan.Text(LOANSTATEMENT_PROP_CLOSINGINFOPAYMENTDUE, 0), "850");  // LOANPMT over MINPMTDUE
  EXPECT_EQ(loan.Text(LOANSTATEMENT_PROP_CLOSINGINFODATEDUE, 0), "02/01/2026 00:00:00");
  EXPECT_EQ(loan.Text(LOANSTATEMENT_PROP_CLOSINGINFOTOTALINTEREST, 0), "150");
}

}  // namespace
}  // namespace orvelan
