// The bank statement service over canned responses: the request it writes,
// its required inputs, and every rule of reading both kinds of statement.
#include "services/bank_statement_service.h"

#include <gtest/gtest.h>

#include <string>

#include "services/bank_statement_component.h"
#include "support/test_ofx_service.h"

namespace orvelan {
namespace {

std::string Replace(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

constexpr char kSignOn[] =
    "<SIGNONMSGSRSV1><SONRS><STATUS><CODE>0<SEVERITY>INFO</STATUS><DTSERVER>20260115120000"
    "<LANGUAGE>ENG</SONRS></SIGNONMSGSRSV1>";

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

std::string Ofx(const std::string& body) { return std::string("<OFX>") + kSignOn + body + "</OFX>"; }

class BankStatementServiceTest : public ::testing::Test {
 protected:
  BankStatementServiceTest() : component_(nullptr, nullptr), s_(component_.service()) {
    // Loan aggregates that the bank dictionary leaves out, and a stand-in.
    const char* out = nullptr;
    s_.Config("ExtraTags=ESCRWAMT,LOANPMT,LOANINT,LOANIRATE", out);
  }

  int Respond(const std::string& body) { return s_.SetOFXResponse(Ofx(body).c_str()); }
  std::string Get(int id, int index = 0) {
    const void* value = component_.Get(id, index, nullptr);
    return value == nullptr ? "" : static_cast<const char*>(value);
  }
  int64_t GetInt(int id, int index = 0) { return reinterpret_cast<intptr_t>(component_.Get(id, index, nullptr)); }
  // The request with its fresh TRNUID written as "T".
  std::string Request() {
    const std::string request = s_.OFXRequest();
    return Replace(request, s_.TransactionId(), "T");
  }

  BankStatementComponent component_;
  BankStatementService& s_;
};

TEST_F(BankStatementServiceTest, RequestTemplatesByDialectAndKind) {
  s_.SetBankId("121000248");
  s_.SetAccountId("4412");
  ASSERT_EQ(s_.SetAccountType(2), 0);
  const struct {
    const char* version;
    int type;
    bool dates;
    bool images;
    const char* expected;
  } cases[] = {
      {"102", 0, true, true,
       "<STMTTRNRQ>\r\n<TRNUID>T\r\n<STMTRQ>\r\n<BANKACCTFROM>\r\n<BANKID>121000248\r\n<ACCTID>4412\r\n"
       "<ACCTTYPE>MONEYMRKT\r\n</BANKACCTFROM>\r\n<INCTRAN>\r\n<DTSTART>S\r\n<DTEND>E\r\n<INCLUDE>Y\r\n"
       "</INCTRAN>\r\n<INCTRANIMG>Y</INCTRANIMG>\r\n</STMTRQ>\r\n</STMTTRNRQ>\r\n"},
      // The SGML closing request has no slot for the image flag.
      {"102", 1, true, true,
       "<STMTENDTRNRQ>\r\n<TRNUID>T\r\n<STMTENDRQ>\r\n<BANKACCTFROM>\r\n<BANKID>121000248\r\n<ACCTID>4412\r\n"
       "<ACCTTYPE>MONEYMRKT\r\n</BANKACCTFROM>\r\n<DTSTART>S\r\n<DTEND>E\r\n</STMTENDRQ>\r\n</STMTENDTRNRQ>\r\n"},
      {"211", 0, true, false,
       "<STMTTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<STMTRQ>\r\n<BANKACCTFROM>\r\n<BANKID>121000248</BANKID>\r\n"
       "<ACCTID>4412</ACCTID>\r\n<ACCTTYPE>MONEYMRKT</ACCTTYPE>\r\n</BANKACCTFROM>\r\n<INCTRAN>\r\n"
       "<DTSTART>S</DTSTART>\r\n<DTEND>E</DTEND>\r\n<INCLUDE>Y</INCLUDE>\r\n</INCTRAN>\r\n</STMTRQ>\r\n"
       "</STMTTRNRQ>\r\n"},
      {"211", 1, false, true,
       "<STMTENDTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<STMTENDRQ>\r\n<BANKACCTFROM>\r\n<BANKID>121000248</BANKID>\r\n"
       "<ACCTID>4412</ACCTID>\r\n<ACCTTYPE>MONEYMRKT</ACCTTYPE>\r\n</BANKACCTFROM>\r\n"
       "<INCSTMTIMG>Y</INCSTMTIMG>\r\n</STMTENDRQ>\r\n</STMTENDTRNRQ>\r\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.version) + " type " + std::to_string(c.type));
    s_.SetOFXVersion(c.version);
    ASSERT_EQ(s_.SetStatementType(c.type), 0);
    ASSERT_EQ(s_.SetStartDate(c.dates ? "01/02/2026 03:04:05" : ""), 0);
    ASSERT_EQ(s_.SetEndDate(c.dates ? "01/31/2026 00:00:00" : ""), 0);
    s_.SetIncludeImages(c.images);
    std::string expected = Replace(c.expected, "<DTSTART>S", std::string("<DTSTART>") + s_.StartDateOFX());
    expected = Replace(expected, "<DTEND>E", std::string("<DTEND>") + s_.EndDateOFX());
    EXPECT_EQ(Request(), expected);
  }
  // Wrapped, as the exchange sends it.
  ByteString out("before\r\n");
  s_.SetOFXVersion("102");
  ASSERT_EQ(s_.BuildMessageSets(out, true), 0);
  EXPECT_EQ(out.View().substr(0, 24), "before\r\n<BANKMSGSRQV1>\r\n");
  EXPECT_EQ(out.View().substr(out.Length() - 17), "</BANKMSGSRQV1>\r\n");
}

TEST_F(BankStatementServiceTest, UnknownVersionIsRefused) {
  s_.SetOFXVersion("300");
  EXPECT_STREQ(s_.OFXRequest(), "");
  ByteString out;
  EXPECT_EQ(s_.BuildMessageSets(out, true), 202);
  EXPECT_STREQ(s_.GetLastError(), "OFXVersion must begin with \"1\" or \"2\".");
}

TEST_F(BankStatementServiceTest, RequiredInputsComeBeforeTheExchange) {
  const struct {
    const char* bank_id;
    const char* bank_id_present;
    const char* account;
    const char* text;
  } cases[] = {
      {"", "1", "", "Missing required field: Bank Id is missing in the request."},
      {"1", "1", "", "Missing required field: Account Number is missing in the request."},
      // With the inputs there, the engine's own checks are next.
      {"", "no", "4412", "Missing required field: OFX User Id is missing in the request."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    s_.SetBankId(c.bank_id);
    s_.SetAccountId(c.account);
    const char* out = nullptr;
    ASSERT_EQ(s_.Config((std::string("BankIdPresent=") + c.bank_id_present).c_str(), out), 0);
    for (int method : {3, 5}) {
      EXPECT_EQ(component_.Do(method, 0, nullptr, nullptr), 2000);
      EXPECT_STREQ(component_.GetLastError(), c.text);
    }
  }
}

TEST_F(BankStatementServiceTest, InputSettersRefuseBadValues) {
  ASSERT_EQ(s_.SetAccountType(1), 0);
  EXPECT_EQ(component_.Set(2, 0, reinterpret_cast<void*>(4), 0), 202);
  EXPECT_STREQ(component_.GetLastError(), "AccountType is invalid.");
  EXPECT_EQ(component_.Set(2, 0, reinterpret_cast<void*>(-1), 0), 202);
  EXPECT_EQ(s_.AccountType(), 1);

  ASSERT_EQ(s_.SetStartDate("12/31/2025 23:59:58"), 0);
  const std::string stored = s_.StartDateOFX();
  EXPECT_EQ(stored.substr(0, 14), "20251231235958");
  // The default pattern reads digits by position; a morning/afternoon
  // field is what can refuse a text.
  const char* out = nullptr;
  ASSERT_EQ(s_.Config("DateFormat=MM/dd/YYYY HH:mm:ss A", out), 0);
  for (int id : {22, 51}) {
    EXPECT_EQ(component_.Set(id, 0, "12/31/2025 11:59:58 XX", 0), 676) << id;
    EXPECT_STREQ(component_.GetLastError(), "Cannot parse date.");
  }
  EXPECT_EQ(s_.StartDateOFX(), stored);
  ASSERT_EQ(s_.Config("DateFormat=MM/dd/YYYY HH:mm:ss", out), 0);
  EXPECT_EQ(Get(51), "12/31/2025 23:59:58");
  EXPECT_EQ(Get(22), "");
}

TEST_F(BankStatementServiceTest, StatementResponseFillsBalancesAndTransactions) {
  ASSERT_EQ(Respond(kStatement), 0) << s_.GetLastError();
  EXPECT_EQ(s_.StatementType(), 0);
  EXPECT_EQ(Get(21), "USD");
  EXPECT_EQ(Get(1), "4412");
  EXPECT_EQ(GetInt(2), 1);  // SAVINGS
  EXPECT_EQ(Get(34), "1000.00");
  EXPECT_EQ(Get(35), "01/31/2026 00:00:00");
  EXPECT_EQ(Get(3), "900.5");
  EXPECT_EQ(Get(4), "01/30/2026 00:00:00");
  EXPECT_EQ(Get(51), "01/01/2026 00:00:00");
  EXPECT_EQ(Get(22), "01/31/2026 00:00:00");
  ASSERT_EQ(GetInt(53), 3);

  const struct {
    int id;
    const char* values[3];
  } columns[] = {
      {55, {"12.50", "-3.00", ".5"}},
      {56, {"101", "", ""}},
      {57, {"01/04/2026 00:00:00", "", ""}},
      {58, {"01/05/2026 12:00:00", "01/06/2026 00:00:00", "01/07/2026 00:00:00"}},
      {59, {"F1", "F2", "F3"}},
      {60, {"January", "", ""}},
      // An empty NAME gives way to PAYEE/NAME; a NAME with text wins.
      {61, {"Payroll", "Water Co", "Both"}},
      {63, {"Deposit", "Other", "Other"}},
  };
  for (const auto& column : columns) {
    for (int i = 0; i < 3; ++i) EXPECT_EQ(Get(column.id, i), column.values[i]) << "id " << column.id << " tx " << i;
  }
  EXPECT_EQ(GetInt(62, 0), 6);
  EXPECT_EQ(GetInt(62, 1), 255);
  EXPECT_EQ(GetInt(62, 2), 255);  // a code outside the table reads as "Other"
  EXPECT_EQ(Get(54, 0).substr(0, 22), "<STMTTRN><TRNTYPE>dep<");
  EXPECT_EQ(Get(54, 0).substr(Get(54, 0).size() - 10), "</STMTTRN>");
  EXPECT_STREQ(s_.Transactions().Item(1)->Text(StatementTransaction::kImageRef), "img-2");
  EXPECT_STREQ(s_.Transactions().Item(1)->Text(StatementTransaction::kImageRefType), "OPAQUE");
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

TEST_F(BankStatementServiceTest, MissingStatementElementsFailWith2000) {
  for (const char* part : {"<CURDEF>USD", "<ACCTID>4412", "<DTASOF>20260131", "<BALAMT>900.5", "<DTEND>20260131"}) {
    SCOPED_TRACE(part);
    EXPECT_EQ(Respond(Replace(kStatement, part, "")), 2000);
    EXPECT_STREQ(s_.GetLastError(), "Expected element missing from server response.");
  }
  // What was read before the failure stays.
  EXPECT_EQ(Get(34), "1000.00");
  EXPECT_EQ(GetInt(53), 0);
}

TEST_F(BankStatementServiceTest, MissingRecordElementsFailWith202) {
  const struct {
    const char* from;
    const char* to;
    const char* text;
    int records;
  } cases[] = {
      {"<TRNAMT>-3.00", "", "Required field missing: \"TRNAMT\".", 2},
      {"<FITID>F3", "", "Required field missing: \"FITID\".", 3},
      {"<FITID>F1", "<FITID>F1<LOANTRNAMT><INTAMT>1</LOANTRNAMT>", "Required field missing: \"LOANTRNAMT/PRINAMT\".", 1},
      {"<FITID>F1", "<FITID>F1<LOANTRNAMT><PRINAMT>1</LOANTRNAMT>", "Required field missing: \"INTAMT\".", 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(Respond(Replace(kStatement, c.from, c.to)), 202);
    EXPECT_STREQ(s_.GetLastError(), c.text);
    // The failing record stays, filled up to the failure.
    ASSERT_EQ(GetInt(53), c.records);
    EXPECT_EQ(Get(59, 0), "F1");
  }
  // The failing record shows what was read before the missing element.
  ASSERT_EQ(Respond(Replace(kStatement, "<FITID>F2", "")), 202);
  EXPECT_EQ(Get(55, 1), "-3.00");
  EXPECT_EQ(Get(58, 1), "01/06/2026 00:00:00");
  EXPECT_EQ(Get(61, 1), "");
  // Loan amounts when present.
  ASSERT_EQ(Respond(Replace(kStatement, "<FITID>F1",
                            "<FITID>F1<LOANTRNAMT><PRINAMT>8<INTAMT>2<ESCRWAMT><ESCRWTOTAL>1</ESCRWAMT></LOANTRNAMT>")),
            0);
  EXPECT_STREQ(s_.Transactions().Item(0)->Text(StatementTransaction::kPrincipalAmount), "8");
  EXPECT_STREQ(s_.Transactions().Item(0)->Text(StatementTransaction::kInterestAmount), "2");
  EXPECT_STREQ(s_.Transactions().Item(0)->Text(StatementTransaction::kEscrowTotal), "1");
}

TEST_F(BankStatementServiceTest, ErrorStatusOfTheStatement) {
  for (const char* body : {kStatement, kClosing}) {
    const std::string failed = Replace(body, "<CODE>0<SEVERITY>INFO", "<CODE>2019<SEVERITY>ERROR<MESSAGE>Gone");
    EXPECT_EQ(Respond(failed), 2001);
    EXPECT_STREQ(s_.GetLastError(), "OFX server error (2019): Gone");
    EXPECT_EQ(GetInt(53) + GetInt(6), 0);
  }
}

TEST_F(BankStatementServiceTest, ClosingResponseFillsTheClosingList) {
  ASSERT_EQ(Respond(kClosing), 0) << s_.GetLastError();
  EXPECT_EQ(s_.StatementType(), 1);
  EXPECT_EQ(Get(21), "EUR");
  ASSERT_EQ(GetInt(6), 2);
  const struct {
    int id;
    const char* values[2];
  } columns[] = {
      {14, {"C1", "C2"}},
      {12, {"12/01/2025 00:00:00", ""}},
      {11, {"12/31/2025 00:00:00", ""}},
      {9, {"10", "0.00"}},
      {15, {"stmt-1", ""}},
      {17, {"15", "7"}},  // DEPANDCREDIT when there is no PAYANDCREDIT
      {19, {"1", "2"}},   // FINCHG before TOTALFEES
      {20, {"0.00", ".25"}},
  };
  for (const auto& column : columns) {
    for (int i = 0; i < 2; ++i) EXPECT_EQ(Get(column.id, i), column.values[i]) << "id " << column.id << " #" << i;
  }
  // The markup as the parser keeps it, with the end tags SGML leaves out.
  EXPECT_EQ(Get(7, 1),
            "<CLOSING><FITID>C2</FITID><PAYANDCREDIT>7</PAYANDCREDIT><DEPANDCREDIT>8</DEPANDCREDIT><FINCHG>2</FINCHG>"
            "<TOTALFEES>3</TOTALFEES><TOTALINT>0.25</TOTALINT></CLOSING>");
  // A second response replaces the first.
  ASSERT_EQ(Respond(Replace(kClosing, "<CLOSING><FITID>C1", "<CLOSING><FITID>X1</CLOSING><CLOSING><FITID>C1")), 0);
  EXPECT_EQ(GetInt(6), 3);
  EXPECT_EQ(Get(14, 0), "X1");
  EXPECT_EQ(GetInt(53), 0);
}

TEST_F(BankStatementServiceTest, ClosingRecordRules) {
  const struct {
    const char* from;
    const char* to;
    int code;
    const char* text;
  } cases[] = {
      {"<FITID>C2", "", 202, "Required field missing: \"FITID\"."},
      {"<TOTALINT>0.25", "<LOANIRATE><RATE>1</LOANIRATE>", 202, "Required field missing: \"LOANIRATE/LOANINTRATE\"."},
      {"<TOTALINT>0.25", "<LOANPMT><PMTAMT>1</LOANPMT>", 202, "Required field missing: \"DTPMTDUE\"."},
      {"<CURDEF>EUR", "", 2000, "Expected element missing from server response."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(Respond(Replace(kClosing, c.from, c.to)), c.code);
    EXPECT_STREQ(s_.GetLastError(), c.text);
  }
  // A loan's closing: payment and interest from the loan aggregates.
  ASSERT_EQ(Respond(Replace(kClosing, "<TOTALINT>0.25",
                            "<MINPMTDUE>5<LOANPMT><PMTAMT>300</LOANPMT><DTPMTDUE>20260115<LOANINT><LOANINTYTD>9"
                            "</LOANINT><LOANIRATE><LOANINTRATE>4.5</LOANIRATE>")),
            0);
  const ClosingInfo& loan = *s_.Closings().Item(1);
  EXPECT_STREQ(loan.Text(ClosingInfo::kPaymentDue), "300");
  EXPECT_STREQ(loan.Text(ClosingInfo::kDateDue), "20260115");
  EXPECT_STREQ(loan.Text(ClosingInfo::kTotalInterest), "9");
}

TEST_F(BankStatementServiceTest, IndexChecksOnBothLists) {
  ASSERT_EQ(Respond(kStatement), 0);
  for (int id = 54; id <= 63; ++id) {
    EXPECT_EQ(Get(id, 3), "") << id;
    EXPECT_EQ(component_.GetLastErrorCode(), 432) << id;
    EXPECT_EQ(component_.CheckIndex(id, -1), 280);
  }
  EXPECT_STREQ(component_.GetLastError(), "Invalid TxIndex (out of bounds).");
  EXPECT_EQ(component_.CheckIndex(59, 2), 0);
  for (int id = 7; id <= 20; ++id) EXPECT_EQ(component_.CheckIndex(id, 0), 280) << id;
  EXPECT_STREQ(component_.GetLastError(), "Invalid ClosingInfoIndex (out of bounds).");
}

TEST_F(BankStatementServiceTest, ClonesKeepTextsButNotConversions) {
  ASSERT_EQ(Respond(kStatement), 0);
  ASSERT_EQ(s_.Transactions().Add(*s_.Transactions().Item(0)), 0);
  EXPECT_EQ(Get(59, 3), "F1");
  EXPECT_EQ(GetInt(62, 3), 6);
  EXPECT_EQ(Get(55, 3), "");
  EXPECT_EQ(Get(58, 3), "");
}

TEST_F(BankStatementServiceTest, DataFilesDecideTheirKind) {
  TempFile closing("closing"), copy("copy");
  closing.Write("OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\n\r\n" + Ofx(kClosing));
  s_.SetBankId("1");
  s_.SetAccountId("2");
  ASSERT_EQ(s_.SetStatementType(0), 0);  // as after GetStatement
  void* params[1] = {const_cast<char*>(closing.path().c_str())};
  int lengths[1] = {0};
  ASSERT_EQ(component_.Do(6, 1, params, lengths), 0) << component_.GetLastError();
  EXPECT_EQ(GetInt(6), 2);
  params[0] = const_cast<char*>(copy.path().c_str());
  ASSERT_EQ(component_.Do(8, 1, params, lengths), 0);
  // The copy reads back the same records.
  BankStatementComponent other(nullptr, nullptr);
  ASSERT_EQ(other.Do(6, 1, params, lengths), 0);
  EXPECT_STREQ(static_cast<const char*>(other.Get(14, 1, nullptr)), "C2");
  // A missing file fails and leaves no results behind.
  params[0] = const_cast<char*>("/nonexistent/statement.ofx");
  EXPECT_EQ(component_.Do(6, 1, params, lengths), 302);
  EXPECT_STREQ(component_.GetLastError(), "Cannot open OFX data file for reading.");
}

}  // namespace
}  // namespace orvelan
