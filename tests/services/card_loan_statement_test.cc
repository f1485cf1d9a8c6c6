// The card and loan statements over canned responses: what they add to or
// change in the statement family (requests, required inputs, account reads,
// loan balances and records).
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <tuple>

#include "services/cc_statement_component.h"
#include "services/loan_statement_component.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

std::string Ofx(const std::string& body) {
  return "<OFX><SIGNONMSGSRSV1><SONRS><STATUS><CODE>0<SEVERITY>INFO</STATUS><DTSERVER>20260115120000"
         "<LANGUAGE>ENG</SONRS></SIGNONMSGSRSV1>" +
         body + "</OFX>";
}

constexpr char kStatus[] = "<TRNUID>1<STATUS><CODE>0<SEVERITY>INFO</STATUS>";

const std::string kCard = Ofx(std::string("<CREDITCARDMSGSRSV1><CCSTMTTRNRS>") + kStatus +
                              "<CCSTMTRS><CURDEF>USD<CCACCTFROM><ACCTID>5500999</CCACCTFROM>"
                              "<BANKTRANLIST><DTSTART>20260101<DTEND>20260131"
                              "<STMTTRN><TRNTYPE>DEBIT<DTPOSTED>20260105<DTUSER>20260104<TRNAMT>-42.10<FITID>K1"
                              "<NAME>Grocer</STMTTRN>"
                              "<STMTTRN><TRNTYPE>PAYMENT<DTPOSTED>20260120<TRNAMT>100<FITID>K2</STMTTRN>"
                              "</BANKTRANLIST><LEDGERBAL><BALAMT>-310.55<DTASOF>20260131</LEDGERBAL>"
                              "</CCSTMTRS></CCSTMTTRNRS></CREDITCARDMSGSRSV1>");

const std::string kCardClosing = Ofx(std::string("<CREDITCARDMSGSRSV1><CCSTMTENDTRNRS>") + kStatus +
                                     "<CCSTMTENDRS><CURDEF>USD<CCACCTFROM><ACCTID>5500999</CCACCTFROM>"
                                     "<CCCLOSING><FITID>P1<DTCLOSE>20251231<BALCLOSE>310.55<MINPMTDUE>25"
                                     "<DTPMTDUE>20260125<CREDITLIMIT>5000<FINCHG>0<TOTALFEES>12<PAYANDCREDIT>100"
                                     "<PURANDADV>410.55</CCCLOSING>"
                                     "<CCCLOSING><FITID>P2<FINCHG><TOTALFEES>7.5</CCCLOSING>"
                                     "</CCSTMTENDRS></CCSTMTENDTRNRS></CREDITCARDMSGSRSV1>");

const std::string kLoan = Ofx(std::string("<LOANMSGSRSV1><LOANSTMTTRNRS>") + kStatus +
                              "<LOANSTMTRS><CURDEF>USD<LOANACCTFROM><LOANACCTID>L-77<LOANACCTTYPE>HOMEEQUITY"
                              "</LOANACCTFROM><LOANTRANLIST><DTSTART>20260101<DTEND>20260131"
                              "<LOANSTMTTRN><LOANTRNTYPE>BALLOON<DTPOSTED>20260110<TRNAMT>-900<FITID>B1"
                              "<LOANTRNAMT><PRINAMT>-700<INTAMT>-150<ESCRWAMT><ESCRWTOTAL>-50</ESCRWAMT>"
                              "</LOANTRNAMT></LOANSTMTTRN>"
                              "<LOANSTMTTRN><LOANTRNTYPE>FEE<DTPOSTED>20260111<TRNAMT>-5<FITID>B2<CHECKNUM>9"
                              "</LOANSTMTTRN></LOANTRANLIST>"
                              "<PRINBAL><BALAMT>120000<DTASOF>20260131<PRINYTD>700<PRINLTD>30000</PRINBAL>"
                              "<MKTGINFO>Refinance today</LOANSTMTRS></LOANSTMTTRNRS></LOANMSGSRSV1>");

const std::string kLoanClosing =
    Ofx(std::string("<LOANMSGSRSV1><LOANSTMTENDTRNRS>") + kStatus +
        "<LOANSTMTENDRS><CURDEF>EUR<LOANACCTFROM><LOANACCTID>L-77<LOANACCTTYPE>AUTO</LOANACCTFROM>"
        "<LOANCLOSING><FITID>Q1<DTPMTDUE>20260201<MINPMTDUE>1<LOANPMT><PMTAMT>850</LOANPMT>"
        "<LOANINT><LOANINTYTD>150</LOANINT><LOANIRATE><LOANINTRATE>3.5</LOANIRATE></LOANCLOSING>"
        "<LOANCLOSING><FITID>Q2<BALOPEN>1</LOANCLOSING></LOANSTMTENDRS></LOANSTMTENDTRNRS></LOANMSGSRSV1>");

// One component of either kind with the helpers the tests share.
template <class Component>
struct Harness {
  Component c{nullptr, nullptr};
  Harness() {
    // Loan aggregates that the dictionary leaves out.
    const char* out = nullptr;
    c.service().Config("ExtraTags=ESCRWAMT,LOANPMT,LOANINT,LOANIRATE,LOANCLOSING", out);
  }
  std::string Get(int id, int index = 0) {
    const void* value = c.Get(id, index, nullptr);
    return value == nullptr ? "" : static_cast<const char*>(value);
  }
  int64_t GetInt(int id, int index = 0) { return reinterpret_cast<intptr_t>(c.Get(id, index, nullptr)); }
  int Respond(const std::string& text) { return c.service().SetOFXResponse(text.c_str()); }
  // OFXRequest with the fresh TRNUID masked.
  std::string Request() {
    const std::string sent = Get(kRequestId);  // before TransactionId(), which it renews
    return Replace(sent, c.service().TransactionId(), "T");
  }
  static const int kRequestId;
};
template <>
const int Harness<CCStatementComponent>::kRequestId = CCSTATEMENT_PROP_OFXREQUEST;
template <>
const int Harness<LoanStatementComponent>::kRequestId = LOANSTATEMENT_PROP_OFXREQUEST;

using Card = Harness<CCStatementComponent>;
using Loan = Harness<LoanStatementComponent>;

TEST(CardLoanStatementTest, RequestsByVersionAndKind) {
  Card card;
  Loan loan;
  card.c.service().SetCardNumber("5500999");
  loan.c.service().SetAccountId("L-77");
  ASSERT_EQ(loan.c.service().SetAccountType(2), 0);
  for (StatementServiceBase* s : {static_cast<StatementServiceBase*>(&card.c.service()),
                                  static_cast<StatementServiceBase*>(&loan.c.service())}) {
    ASSERT_EQ(s->SetStartDate("01/02/2026 00:00:00"), 0);
    s->SetIncludeImages(true);
  }
  const std::string start = card.c.service().StartDateOFX();
  // Rows: card?, version, closing?, expected with S for the stored start date.
  const std::tuple<bool, const char*, int, const char*> cases[] = {
      {true, "102", 0,
       "<CCSTMTTRNRQ>\r\n<TRNUID>T\r\n<CCSTMTRQ>\r\n<CCACCTFROM>\r\n<ACCTID>5500999\r\n</CCACCTFROM>\r\n"
       "<INCTRAN>\r\n<DTSTART>S\r\n<INCLUDE>Y\r\n</INCTRAN>\r\n</CCSTMTRQ>\r\n</CCSTMTTRNRQ>\r\n"},
      {true, "102", 1,
       "<CCSTMTENDTRNRQ>\r\n<TRNUID>T\r\n<CCSTMTENDRQ>\r\n<CCACCTFROM>\r\n<ACCTID>5500999\r\n</CCACCTFROM>\r\n"
       "<DTSTART>S\r\n</CCSTMTENDRQ>\r\n</CCSTMTENDTRNRQ>\r\n"},
      {true, "211", 0,
       "<CCSTMTTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<CCSTMTRQ>\r\n<CCACCTFROM>\r\n<ACCTID>5500999</ACCTID>\r\n"
       "</CCACCTFROM>\r\n<INCTRAN>\r\n<DTSTART>S</DTSTART>\r\n<INCLUDE>Y</INCLUDE>\r\n</INCTRAN>\r\n"
       "</CCSTMTRQ>\r\n</CCSTMTTRNRQ>\r\n"},
      {true, "211", 1,
       "<CCSTMTENDTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<CCSTMTENDRQ>\r\n<CCACCTFROM>\r\n<ACCTID>5500999</ACCTID>\r\n"
       "</CCACCTFROM>\r\n<DTSTART>S</DTSTART>\r\n<INCSTMTIMG>Y</INCSTMTIMG>\r\n</CCSTMTENDRQ>\r\n"
       "</CCSTMTENDTRNRQ>\r\n"},
      // Loans write XML whatever the version says.
      {false, "102", 0,
       "<LOANSTMTTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<LOANSTMTRQ>\r\n<LOANACCTFROM>\r\n<LOANACCTID>L-77</LOANACCTID>\r\n"
       "<LOANACCTTYPE>MORTGAGE</LOANACCTTYPE>\r\n</LOANACCTFROM>\r\n<INCTRAN>\r\n<DTSTART>S</DTSTART>\r\n"
       "<INCLUDE>Y</INCLUDE>\r\n</INCTRAN>\r\n<INCTRANIMG>Y</INCTRANIMG>\r\n</LOANSTMTRQ>\r\n</LOANSTMTTRNRQ>\r\n"},
      {false, "102", 1,
       "<LOANSTMTENDTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<LOANSTMTENDRQ>\r\n<LOANACCTFROM>\r\n"
       "<LOANACCTID>L-77</LOANACCTID>\r\n<LOANACCTTYPE>MORTGAGE</LOANACCTTYPE>\r\n</LOANACCTFROM>\r\n"
       "<DTSTART>S</DTSTART>\r\n<INCSTMTIMG>Y</INCSTMTIMG>\r\n</LOANSTMTENDRQ>\r\n</LOANSTMTENDTRNRQ>\r\n"},
      {false, "211", 0,
       "<LOANSTMTTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<LOANSTMTRQ>\r\n<LOANACCTFROM>\r\n<LOANACCTID>L-77</LOANACCTID>\r\n"
       "<LOANACCTTYPE>MORTGAGE</LOANACCTTYPE>\r\n</LOANACCTFROM>\r\n<INCTRAN>\r\n<DTSTART>S</DTSTART>\r\n"
       "<INCLUDE>Y</INCLUDE>\r\n</INCTRAN>\r\n<INCTRANIMG>Y</INCTRANIMG>\r\n</LOANSTMTRQ>\r\n</LOANSTMTTRNRQ>\r\n"},
      {false, "211", 1,
       "<LOANSTMTENDTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<LOANSTMTENDRQ>\r\n<LOANACCTFROM>\r\n"
       "<LOANACCTID>L-77</LOANACCTID>\r\n<LOANACCTTYPE>MORTGAGE</LOANACCTTYPE>\r\n</LOANACCTFROM>\r\n"
       "<DTSTART>S</DTSTART>\r\n<INCSTMTIMG>Y</INCSTMTIMG>\r\n</LOANSTMTENDRQ>\r\n</LOANSTMTENDTRNRQ>\r\n"},
  };
  for (const auto& [is_card, version, type, expected] : cases) {
    SCOPED_TRACE(std::string(is_card ? "card " : "loan ") + version + " type " + std::to_string(type));
    StatementServiceBase& s = is_card ? static_cast<StatementServiceBase&>(card.c.service()) : loan.c.service();
    s.SetOFXVersion(version);
    ASSERT_EQ(s.SetStatementType(type), 0);
    EXPECT_EQ(is_card ? card.Request() : loan.Request(), Replace(expected, "<DTSTART>S", "<DTSTART>" + start));
  }
  // The message-set wrappers of a download.
  for (const auto& [s, set] : {std::pair<StatementServiceBase*, std::string>{&card.c.service(), "CREDITCARDMSGSRQV1"},
                               std::pair<StatementServiceBase*, std::string>{&loan.c.service(), "LOANMSGSRQV1"}}) {
    ByteString out;
    ASSERT_EQ(s->BuildMessageSets(out, true), 0);
    EXPECT_EQ(out.View().substr(0, set.size() + 4), "<" + set + ">\r\n");
    EXPECT_EQ(out.View().substr(out.Length() - set.size() - 5), "</" + set + ">\r\n");
  }
}

TEST(CardLoanStatementTest, CardFailures) {
  Card card;
  const std::tuple<std::function<int(Card&)>, int, const char*> cases[] = {
      {[](Card& t) { return t.c.Do(CCSTATEMENT_METHOD_GETSTATEMENT, 0, nullptr, nullptr); }, 2000,
       "Missing required field: CC Account Number is missing in the request."},
      {[](Card& t) {
         t.c.service().SetCardNumber("1");
         t.c.Set(CCSTATEMENT_PROP_INCLUDEIMAGES, 0, reinterpret_cast<void*>(1), 0);
         return t.c.Do(CCSTATEMENT_METHOD_GETSTATEMENT, 0, nullptr, nullptr);
       },
       202, "Transaction Images are not available for Credit Card statements."},
      {[](Card& t) {
         const char* out = nullptr;
         t.c.service().Config("DateFormat=MM/dd/YYYY HH:mm:ss A", out);
         return t.c.Set(CCSTATEMENT_PROP_ENDDATE, 0, "12/31/2025 11:59:58 XX", 0);
       },
       676, "Cannot parse date."},
      {[](Card& t) { return t.Respond(Replace(kCard, "<ACCTID>5500999", "")); }, 2000,
       "Expected element missing from server response."},
      {[](Card& t) { return t.Respond(Replace(kCard, "<FITID>K2", "")); }, 202, "Required field missing: \"FITID\"."},
      {[](Card& t) { return t.Respond(Replace(kCardClosing, "<FITID>P2", "")); }, 202,
       "Required field missing: \"FITID\"."},
      {[](Card& t) { return t.Respond(Replace(kCardClosing, "<CODE>0<SEVERITY>INFO</STATUS><CCSTMTENDRS>",
                                              "<CODE>2000<SEVERITY>ERROR</STATUS><CCSTMTENDRS>")); },
       2001, "OFX server error (2000): General error"},
  };
  for (const auto& [run, code, text] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(run(card), code);
    EXPECT_STREQ(card.c.service().GetLastError(), text);
  }
}

TEST(CardLoanStatementTest, LoanFailures) {
  Loan loan;
  const std::tuple<std::function<int(Loan&)>, int, const char*> cases[] = {
      {[](Loan& t) { return t.c.Set(LOANSTATEMENT_PROP_ACCOUNTTYPE, 0, reinterpret_cast<void*>(9), 0); }, 202,
       "AccountType is invalid."},
      {[](Loan& t) { return t.Respond(Replace(kLoan, "<DTASOF>20260131", "")); }, 2000,
       "Expected element missing from server response."},
      {[](Loan& t) { return t.Respond(Replace(kLoan, "<PRINAMT>-700", "")); }, 202,
       "Required field missing: \"LOANTRNAMT/PRINAMT\"."},
      {[](Loan& t) { return t.Respond(Replace(kLoanClosing, "<DTPMTDUE>20260201", "")); }, 202,
       "Required field missing: \"DTPMTDUE\"."},
      {[](Loan& t) {
         t.c.service().SetAccountId("");
         return t.c.Do(LOANSTATEMENT_METHOD_GETCLOSINGINFO, 0, nullptr, nullptr); }, 2000,
       "Missing required field: Loan Account Number is missing in the request."},
  };
  for (const auto& [run, code, text] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(run(loan), code);
    EXPECT_STREQ(loan.c.service().GetLastError(), text);
  }
  // A failed walk leaves the type; OFXVersion stays forced after a download.
  EXPECT_EQ(loan.GetInt(LOANSTATEMENT_PROP_ACCOUNTTYPE), 0);
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_OFXVERSION), "211");
}

TEST(CardLoanStatementTest, EveryIndexedPropertyChecksItsIndex) {
  Card card;
  Loan loan;
  ASSERT_EQ(card.Respond(kCard), 0) << card.c.GetLastError();
  ASSERT_EQ(loan.Respond(kLoanClosing), 0) << loan.c.GetLastError();
  const char* tx = "Invalid TxIndex (out of bounds).";
  const char* closing = "Invalid ClosingInfoIndex (out of bounds).";
  // Component, first and last id of a list, its count property, its text.
  const std::tuple<bool, int, int, int, const char*> lists[] = {
      {true, CCSTATEMENT_PROP_CLOSINGINFOAGGREGATE, CCSTATEMENT_PROP_CLOSINGINFOTOTALFEES,
       CCSTATEMENT_PROP_CLOSINGINFOCOUNT, closing},
      {true, CCSTATEMENT_PROP_TXAGGREGATE, CCSTATEMENT_PROP_TXTYPEDESCRIPTION, CCSTATEMENT_PROP_TXCOUNT, tx},
      {false, LOANSTATEMENT_PROP_CLOSINGINFOAGGREGATE, LOANSTATEMENT_PROP_CLOSINGINFOTOTALINTEREST,
       LOANSTATEMENT_PROP_CLOSINGINFOCOUNT, closing},
      {false, LOANSTATEMENT_PROP_TXAGGREGATE, LOANSTATEMENT_PROP_TXTYPEDESCRIPTION, LOANSTATEMENT_PROP_TXCOUNT, tx},
  };
  for (const auto& [is_card, first, last, count_id, text] : lists) {
    for (int id = first - 1; id <= last + 1; ++id) {
      SCOPED_TRACE((is_card ? "card id " : "loan id ") + std::to_string(id));
      const int count = static_cast<int>(is_card ? card.GetInt(count_id) : loan.GetInt(count_id));
      const bool indexed = id >= first && id <= last;
      const int check = is_card ? card.c.CheckIndex(id, count) : loan.c.CheckIndex(id, count);
      EXPECT_EQ(check, indexed ? 280 : 0);
      if (!indexed) continue;
      EXPECT_EQ(is_card ? card.Get(id, count) : loan.Get(id, count), "");
      EXPECT_EQ(is_card ? card.c.GetLastErrorCode() : loan.c.GetLastErrorCode(), 432);
      EXPECT_STREQ(is_card ? card.c.GetLastError() : loan.c.GetLastError(), text);
      EXPECT_EQ(is_card ? card.c.CheckIndex(id, count - 1) : loan.c.CheckIndex(id, count - 1), count > 0 ? 0 : 280);
    }
  }
}

TEST(CardLoanStatementTest, CardStatementAndClosing) {
  Card card;
  card.c.service().SetCardNumber("other");
  ASSERT_EQ(card.Respond(kCard), 0) << card.c.GetLastError();
  EXPECT_EQ(card.Get(CCSTATEMENT_PROP_CARDNUMBER), "5500999");
  EXPECT_EQ(card.Get(CCSTATEMENT_PROP_LEDGERBALANCE), "-310.55");
  EXPECT_EQ(card.Get(CCSTATEMENT_PROP_AVAILABLEBALANCE), "0.00");
  EXPECT_EQ(card.Get(CCSTATEMENT_PROP_ENDDATE), "01/31/2026 00:00:00");
  ASSERT_EQ(card.GetInt(CCSTATEMENT_PROP_TXCOUNT), 2);
  EXPECT_EQ(card.Get(CCSTATEMENT_PROP_TXDATEINITIATED, 0), "01/04/2026 00:00:00");
  EXPECT_EQ(card.Get(CCSTATEMENT_PROP_TXPAYEENAME, 0), "Grocer");
  EXPECT_EQ(card.Get(CCSTATEMENT_PROP_TXTYPEDESCRIPTION, 1), "Payment");
  EXPECT_EQ(card.Get(CCSTATEMENT_PROP_TXFITID, 1), "K2");

  for (int round = 0; round < 2; ++round) ASSERT_EQ(card.Respond(kCardClosing), 0) << card.c.GetLastError();
  ASSERT_EQ(card.GetInt(CCSTATEMENT_PROP_CLOSINGINFOCOUNT), 2);  // the second response only
  const std::tuple<int, const char*, const char*> columns[] = {
      {CCSTATEMENT_PROP_CLOSINGINFOPAYMENTDUE, "25", "0.00"},
      {CCSTATEMENT_PROP_CLOSINGINFODATEDUE, "01/25/2026 00:00:00", ""},
      {CCSTATEMENT_PROP_CLOSINGINFOCREDITLIMIT, "5000", "0.00"},
      {CCSTATEMENT_PROP_CLOSINGINFOTOTALFEES, "", "7.5"},  // "0" has no digits to show
      {CCSTATEMENT_PROP_CLOSINGINFOTOTALCREDITS, "100", "0.00"},
      {CCSTATEMENT_PROP_CLOSINGINFOTOTALDEBITS, "410.55", "0.00"},
      {CCSTATEMENT_PROP_CLOSINGINFOBALANCECLOSE, "310.55", "0.00"},
  };
  for (const auto& [id, first, second] : columns) {
    EXPECT_EQ(card.Get(id, 0), first) << id;
    EXPECT_EQ(card.Get(id, 1), second) << id;
  }
  // FINCHG wins whenever it has text, "0" too; an empty one gives way.
  EXPECT_STREQ(card.c.service().Closings().Item(0)->Text(ClosingInfo::kTotalFees), "0");
}

TEST(CardLoanStatementTest, LoanStatementAndClosing) {
  Loan loan;
  ASSERT_EQ(loan.Respond(kLoan), 0) << loan.c.GetLastError();
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_ACCOUNTID), "L-77");
  EXPECT_EQ(loan.GetInt(LOANSTATEMENT_PROP_ACCOUNTTYPE), 8);
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_PRINCIPALBALANCE), "120000");
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_PRINCIPALBALANCEDATE), "01/31/2026 00:00:00");
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_TOTALPRINCIPALYTD), "700");
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_TOTALPRINCIPALLTD), "30000");
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_AVAILABLEBALANCE), "0.00");
  EXPECT_STREQ(loan.c.service().MarketingInfo(), "Refinance today");
  const char* out = nullptr;
  EXPECT_EQ(loan.c.service().Config("MarketingInfo=changed", out), 0);
  ASSERT_EQ(loan.c.service().Config("MarketingInfo", out), 0);
  EXPECT_STREQ(out, "Refinance today");

  ASSERT_EQ(loan.GetInt(LOANSTATEMENT_PROP_TXCOUNT), 2);
  EXPECT_EQ(loan.GetInt(LOANSTATEMENT_PROP_TXTYPE, 0), 18);
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_TXTYPEDESCRIPTION, 0), "Payment of Balloon Amount");
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_TXPRINCIPALAMOUNT, 0), "-700");
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_TXINTERESTAMOUNT, 0), "-150");
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_TXESCROWTOTAL, 0), "-50");
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_TXCHECKNUMBER, 1), "9");
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_TXESCROWTOTAL, 1), "0.00");

  ASSERT_EQ(loan.Respond(kLoanClosing), 0) << loan.c.GetLastError();
  EXPECT_EQ(loan.GetInt(LOANSTATEMENT_PROP_ACCOUNTTYPE), 0);  // AUTO
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_CURRENCYCODE), "EUR");
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_PRINCIPALBALANCE), "0.00");  // cleared with the response
  ASSERT_EQ(loan.GetInt(LOANSTATEMENT_PROP_CLOSINGINFOCOUNT), 2);
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_CLOSINGINFOPAYMENTDUE, 0), "850");  // LOANPMT over MINPMTDUE
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_CLOSINGINFODATEDUE, 0), "02/01/2026 00:00:00");
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_CLOSINGINFOTOTALINTEREST, 0), "150");
  EXPECT_EQ(loan.Get(LOANSTATEMENT_PROP_CLOSINGINFOBALANCEOPEN, 1), "1");
}

}  // namespace
}  // namespace orvelan
