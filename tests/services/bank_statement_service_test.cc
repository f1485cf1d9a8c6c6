// The bank statement service over canned responses: the request it writes,
// its required inputs, and every rule of reading both kinds of statement.
#include "services/bank_statement_service.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <tuple>
#include <utility>

#include "services/bank_statement_component.h"
#include "support/component_host.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

constexpr char kStatement[] =
    "<BANKMSGSRSV1><STMTTRNRS><TRNUID>1<STATUS><CODE>0<SEVERITY>INFO</STATUS>"
    "<STMTRS><CURDEF>USD<BANKACCTFROM><BANKID>121000248<ACCTID>4412<ACCTTYPE>SAVINGS</BANKACCTFROM>"
    "<BANKTRANLIST><DTSTART>20260101<DTEND>20260131"
    "<STMTTRN><TRNTYPE>dep<DTPOSTED>20260105120000<DTUSER>20260104<TRNAMT>+0012.50<FITID>F1"
    "<CHECKNUM>101<NAME>Payroll<MEMO>January</STMTTRN>"
    "<STMTTRN><TRNTYPE>other<DTPOSTED>20260106<TRNAMT>-3.00<FITID>F2<NAME><PAYEE><NAME>Water Co</PAYEE>"
    "<IMAGEDATA><IMAGEREF>img-2<IMAGEREFTYPE>OPAQUE</IMAGEDATA></STMTTRN>"
    "<STMTTRN><TRNTYPE>BOGUS<DTPOSTED>20260107<TRNAMT>.5<FITID>F3<NAME>Both<PAYEE><NAME>Payee</PAYEE></STMTTRN>"
    "</BANKTRANLIST><LEDGERBAL><BALAMT>1000.00<DTASOF>20260131</LEDGERBAL>"
    "<AVAILBAL><BALAMT>900.5<DTASOF>20260130</AVAILBAL></STMTRS></STMTTRNRS></BANKMSGSRSV1>";

constexpr char kClosing[] =
    "<BANKMSGSRSV1><STMTENDTRNRS><TRNUID>1<STATUS><CODE>0<SEVERITY>INFO</STATUS>"
    "<STMTENDRS><CURDEF>EUR<BANKACCTFROM><BANKID>1<ACCTID>2<ACCTTYPE>CHECKING</BANKACCTFROM>"
    "<CLOSING><FITID>C1<DTOPEN>20251201</DTOPEN><DTCLOSE>20251231<BALOPEN>10<BALCLOSE>20<DEPANDCREDIT>15"
    "<CHKANDDEB>-5<TOTALFEES>1<DTPOSTSTART>20251201<DTPOSTEND>20251231"
    "<IMAGEDATA><IMAGEREF>stmt-1<IMAGEREFTYPE>OPAQUE</IMAGEDATA></CLOSING>"
    "<CLOSING><FITID>C2<PAYANDCREDIT>7<DEPANDCREDIT>8<FINCHG>2<TOTALFEES>3<TOTALINT>0.25</CLOSING>"
    "</STMTENDRS></STMTENDTRNRS></BANKMSGSRSV1>";

class BankStatementServiceTest : public ::testing::Test {
 protected:
  BankStatementServiceTest() : component_(nullptr, nullptr), s_(component_.service()) {
    // Loan aggregates that the bank dictionary leaves out, and a stand-in.
    const char* out = nullptr;
    s_.Config("ExtraTags=ESCRWAMT,LOANPMT,LOANINT,LOANIRATE", out);
  }

  int Respond(const std::string& body) { return s_.SetOFXResponse(OfxResponse(body).c_str()); }
  std::string Get(int id, int index = 0) {
    const void* value = component_.Get(id, index, nullptr);
    return value == nullptr ? "" : static_cast<const char*>(value);
  }
  int64_t GetInt(int id, int index = 0) { return reinterpret_cast<intptr_t>(component_.Get(id, index, nullptr)); }

  BankStatementComponent component_;
  BankStatementService& s_;
};

TEST_F(BankStatementServiceTest, RequestTemplatesByDialectAndKind) {
  s_.SetBankId("121000248");
  s_.SetAccountId("4412");
  ASSERT_EQ(s_.SetAccountType(2), 0);
  const std::tuple<const char*, int, bool, const char*> cases[] = {
      {"102", 0, true,
       "<STMTTRNRQ>\r\n<TRNUID>T\r\n<STMTRQ>\r\n<BANKACCTFROM>\r\n<BANKID>121000248\r\n<ACCTID>4412\r\n"
       "<ACCTTYPE>MONEYMRKT\r\n</BANKACCTFROM>\r\n<INCTRAN>\r\n<DTSTART>S\r\n<DTEND>E\r\n<INCLUDE>Y\r\n"
       "</INCTRAN>\r\n<INCTRANIMG>Y</INCTRANIMG>\r\n</STMTRQ>\r\n</STMTTRNRQ>\r\n"},
      // The SGML closing request has no slot for the image flag.
      {"102", 1, true,
       "<STMTENDTRNRQ>\r\n<TRNUID>T\r\n<STMTENDRQ>\r\n<BANKACCTFROM>\r\n<BANKID>121000248\r\n<ACCTID>4412\r\n"
       "<ACCTTYPE>MONEYMRKT\r\n</BANKACCTFROM>\r\n<DTSTART>S\r\n<DTEND>E\r\n</STMTENDRQ>\r\n</STMTENDTRNRQ>\r\n"},
      {"211", 1, false,
       "<STMTENDTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<STMTENDRQ>\r\n<BANKACCTFROM>\r\n<BANKID>121000248</BANKID>\r\n"
       "<ACCTID>4412</ACCTID>\r\n<ACCTTYPE>MONEYMRKT</ACCTTYPE>\r\n</BANKACCTFROM>\r\n"
       "<INCSTMTIMG>Y</INCSTMTIMG>\r\n</STMTENDRQ>\r\n</STMTENDTRNRQ>\r\n"},
  };
  s_.SetIncludeImages(true);
  for (const auto& [version, type, dates, request] : cases) {
    SCOPED_TRACE(std::string(version) + " type " + std::to_string(type));
    s_.SetOFXVersion(version);
    ASSERT_EQ(s_.SetStatementType(type), 0);
    ASSERT_EQ(s_.SetStartDate(dates ? "01/02/2026 03:04:05" : ""), 0);
    ASSERT_EQ(s_.SetEndDate(dates ? "01/31/2026 00:00:00" : ""), 0);
    std::string expected = Replace(request, "<DTSTART>S", std::string("<DTSTART>") + s_.StartDateOFX());
    expected = Replace(expected, "<DTEND>E", std::string("<DTEND>") + s_.EndDateOFX());
    const std::string sent = s_.OFXRequest();  // before TransactionId(), which it renews
    EXPECT_EQ(Replace(sent, s_.TransactionId(), "T"), expected);
  }
  s_.SetOFXVersion("300");
  ByteString out;
  EXPECT_EQ(s_.BuildMessageSets(out, true), 202);
  EXPECT_STREQ(s_.GetLastError(), "OFXVersion must begin with \"1\" or \"2\".");
}

TEST_F(BankStatementServiceTest, RequiredInputsComeBeforeTheExchange) {
  const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
      {"", "1", "", "Missing required field: Bank Id is missing in the request."},
      {"1", "1", "", "Missing required field: Account Number is missing in the request."},
      {"", "no", "4412", "Missing required field: OFX User Id is missing in the request."},
  };
  for (const auto& [bank_id, bank_id_present, account, text] : cases) {
    SCOPED_TRACE(text);
    s_.SetBankId(bank_id);
    s_.SetAccountId(account);
    const char* out = nullptr;
    ASSERT_EQ(s_.Config((std::string("BankIdPresent=") + bank_id_present).c_str(), out), 0);
    for (int method : {3, 5}) {
      EXPECT_EQ(component_.Do(method, 0, nullptr, nullptr), 2000);
      EXPECT_STREQ(component_.GetLastError(), text);
    }
  }
}

TEST_F(BankStatementServiceTest, StatementResponseFillsBalancesAndTransactions) {
  ASSERT_EQ(Respond(kStatement), 0) << s_.GetLastError();
  EXPECT_EQ(s_.StatementType(), 0);
  EXPECT_EQ(Get(21), "USD");
  EXPECT_EQ(Get(1), "4412");
  EXPECT_EQ(GetInt(2), 1);  // SAVINGS
  EXPECT_EQ(Get(34), "1000.00");
  EXPECT_EQ(Get(3), "900.5");
  EXPECT_EQ(Get(51), "01/01/2026 00:00:00");
  EXPECT_EQ(Get(22), "01/31/2026 00:00:00");
  ASSERT_EQ(GetInt(53), 3);

  const std::pair<int, std::array<const char*, 3>> columns[] = {
      {55, {"12.50", "-3.00", ".5"}},
      {57, {"01/04/2026 00:00:00", "", ""}},
      {58, {"01/05/2026 12:00:00", "01/06/2026 00:00:00", "01/07/2026 00:00:00"}},
      {60, {"January", "", ""}},
      // An empty NAME gives way to PAYEE/NAME; a NAME with text wins.
      {61, {"Payroll", "Water Co", "Both"}},
      {63, {"Deposit", "Other", "Other"}},
  };
  for (const auto& [id, values] : columns) {
    for (int i = 0; i < 3; ++i) EXPECT_EQ(Get(id, i), values[i]) << "id " << id << " tx " << i;
  }
  EXPECT_EQ(GetInt(62, 0), 6);
  EXPECT_EQ(GetInt(62, 2), 255);  // a code outside the table reads as "Other"
  EXPECT_EQ(Get(54, 0).substr(0, 22), "<STMTTRN><TRNTYPE>dep<");
  EXPECT_STREQ(s_.Transactions().Item(1)->Text(s_.Document(), StatementTransaction::kImageRef), "img-2");
}

TEST_F(BankStatementServiceTest, OptionalPartsOfTheStatement) {
  // Without AVAILBAL and BANKTRANLIST, with the host's dates kept and a
  // lower-case account type ignored.
  ASSERT_EQ(s_.SetStartDate("01/01/2026 00:00:00"), 0);
  ASSERT_EQ(s_.SetAccountType(3), 0);
  std::string body = Replace(kStatement, "<AVAILBAL><BALAMT>900.5<DTASOF>20260130</AVAILBAL>", "");
  body = Replace(body, body.substr(body.find("<BANKTRANLIST>"), body.find("<LEDGERBAL>") - body.find("<BANKTRANLIST>")),
                 "");
  body = Replace(body, "SAVINGS", "checking");
  ASSERT_EQ(Respond(body), 0) << s_.GetLastError();
  EXPECT_EQ(Get(3), "0.00");
  EXPECT_EQ(Get(4), "");
  EXPECT_EQ(GetInt(53), 0);
  EXPECT_EQ(GetInt(2), 3);
  EXPECT_EQ(Get(51), "01/01/2026 00:00:00");
  // ACCTTYPE2 wins over ACCTTYPE.
  ASSERT_EQ(Respond(Replace(kStatement, "<ACCTTYPE>SAVINGS", "<ACCTTYPE>SAVINGS<ACCTTYPE2>CREDITLINE")), 0);
  EXPECT_EQ(GetInt(2), 3);
  // A response whose root is the wrapper itself.
  const std::string statement(kStatement);
  const size_t begin = statement.find("<STMTTRNRS>");
  const size_t end = statement.find("</BANKMSGSRSV1>");
  ASSERT_EQ(s_.SetOFXResponse(statement.substr(begin, end - begin).c_str()), 0) << s_.GetLastError();
  EXPECT_EQ(GetInt(53), 3);
}

TEST_F(BankStatementServiceTest, MissingElementsFailTheStatement) {
  for (const char* part : {"<CURDEF>USD", "<DTASOF>20260131", "<DTEND>20260131"}) {
    SCOPED_TRACE(part);
    EXPECT_EQ(Respond(Replace(kStatement, part, "")), 2000);
    EXPECT_STREQ(s_.GetLastError(), "Expected element missing from server response.");
  }
  // What was read before the failure stays.
  EXPECT_EQ(Get(34), "1000.00");
  const std::tuple<const char*, const char*, const char*, int> cases[] = {
      {"<FITID>F2", "", "Required field missing: \"FITID\".", 2},
      {"<FITID>F1", "<FITID>F1<LOANTRNAMT><INTAMT>1</LOANTRNAMT>", "Required field missing: \"LOANTRNAMT/PRINAMT\".", 1},
      {"<FITID>F1", "<FITID>F1<LOANTRNAMT><PRINAMT>1</LOANTRNAMT>", "Required field missing: \"INTAMT\".", 1},
  };
  for (const auto& [from, to, text, records] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(Respond(Replace(kStatement, from, to)), 202);
    EXPECT_STREQ(s_.GetLastError(), text);
    // The failing record stays, filled up to the failure.
    ASSERT_EQ(GetInt(53), records);
    EXPECT_EQ(Get(55, records - 1), records == 2 ? "-3.00" : "12.50");
  }
  ASSERT_EQ(Respond(Replace(kStatement, "<FITID>F1",
                            "<FITID>F1<LOANTRNAMT><PRINAMT>8<INTAMT>2<ESCRWAMT><ESCRWTOTAL>1</ESCRWAMT></LOANTRNAMT>")),
            0);
  EXPECT_STREQ(s_.Transactions().Item(0)->Text(s_.Document(), StatementTransaction::kEscrowTotal), "1");
}

TEST_F(BankStatementServiceTest, ClosingResponseFillsTheClosingList) {
  ASSERT_EQ(Respond(kClosing), 0) << s_.GetLastError();
  EXPECT_EQ(s_.StatementType(), 1);
  EXPECT_EQ(Get(21), "EUR");
  ASSERT_EQ(GetInt(6), 2);
  const std::pair<int, std::array<const char*, 2>> columns[] = {
      {14, {"C1", "C2"}},
      {9, {"10", "0.00"}},
      {17, {"15", "7"}},  // DEPANDCREDIT when there is no PAYANDCREDIT
      {19, {"1", "2"}},   // FINCHG before TOTALFEES
      {20, {"0.00", ".25"}},
  };
  for (const auto& [id, values] : columns) {
    for (int i = 0; i < 2; ++i) EXPECT_EQ(Get(id, i), values[i]) << "id " << id << " #" << i;
  }
  // A second response replaces the first.
  ASSERT_EQ(Respond(Replace(kClosing, "<CLOSING><FITID>C1", "<CLOSING><FITID>X1</CLOSING><CLOSING><FITID>C1")), 0);
  EXPECT_EQ(GetInt(6), 3);
  EXPECT_EQ(Get(14, 0), "X1");
}

TEST_F(BankStatementServiceTest, ClosingRecordRules) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"<FITID>C2", "", "Required field missing: \"FITID\"."},
      {"<TOTALINT>0.25", "<LOANIRATE><RATE>1</LOANIRATE>", "Required field missing: \"LOANIRATE/LOANINTRATE\"."},
      {"<TOTALINT>0.25", "<LOANPMT><PMTAMT>1</LOANPMT>", "Required field missing: \"DTPMTDUE\"."},
  };
  for (const auto& [from, to, text] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(Respond(Replace(kClosing, from, to)), 202);
    EXPECT_STREQ(s_.GetLastError(), text);
  }
  ASSERT_EQ(Respond(Replace(kClosing, "<TOTALINT>0.25",
                            "<MINPMTDUE>5<LOANPMT><PMTAMT>300</LOANPMT><DTPMTDUE>20260115<LOANINT><LOANINTYTD>9"
                            "</LOANINT><LOANIRATE><LOANINTRATE>4.5</LOANIRATE>")),
            0);
  const ClosingInfo& loan = *s_.Closings().Item(1);
  EXPECT_STREQ(loan.Text(s_.Document(), ClosingInfo::kPaymentDue), "300");
  EXPECT_STREQ(loan.Text(s_.Document(), ClosingInfo::kTotalInterest), "9");
}

TEST_F(BankStatementServiceTest, IndexChecksOnBothLists) {
  ASSERT_EQ(Respond(kStatement), 0);
  EXPECT_EQ(Get(59, 3), "");
  EXPECT_EQ(component_.GetLastErrorCode(), 432);
  EXPECT_EQ(component_.CheckIndex(63, -1), 280);
  EXPECT_STREQ(component_.GetLastError(), "Invalid TxIndex (out of bounds).");
  EXPECT_EQ(component_.CheckIndex(7, 0), 280);
  EXPECT_STREQ(component_.GetLastError(), "Invalid ClosingInfoIndex (out of bounds).");
}

TEST_F(BankStatementServiceTest, DataFilesDecideTheirKind) {
  TempFile closing("closing");
  closing.Write("OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\n\r\n" + OfxResponse(kClosing));
  s_.SetBankId("1");
  s_.SetAccountId("2");
  ASSERT_EQ(s_.SetStatementType(0), 0);  // as after GetStatement
  void* params[1] = {const_cast<char*>(closing.path().c_str())};
  int lengths[1] = {0};
  ASSERT_EQ(component_.Do(6, 1, params, lengths), 0) << component_.GetLastError();
  EXPECT_EQ(GetInt(6), 2);
  EXPECT_EQ(s_.StatementType(), 1);
}

}  // namespace
}  // namespace orvelan
