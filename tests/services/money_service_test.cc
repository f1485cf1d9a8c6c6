// Transfers and bill payments without a server: what each method checks
// before it sends, the request it would send in both dialects, and how
// synchronization responses become records and events.
#include <gtest/gtest.h>

#include <functional>
#include <regex>
#include <string>
#include <vector>

#include "services/bank_transfer_component.h"
#include "services/bill_payment_component.h"
#include "support/component_host.h"

namespace orvelan {
namespace {

using Transfer = BankTransferService;
using Bill = BillPaymentService;

// The request the method would send: it runs without OFXUser, so the
// exchange stops before posting; TRNUIDs read "T".
template <class Service>
std::string RequestOf(Service& s, const std::function<int(Service&)>& method) {
  EXPECT_EQ(method(s), kErrMissingField);
  EXPECT_STREQ(s.GetLastError(), "Missing required field: OFX User Id is missing in the request.");
  const std::string request = s.OFXRequest();
  return std::regex_replace(request, std::regex("<TRNUID>[-0-9a-f]+"), "<TRNUID>T");
}

void FillTransfer(Transfer& s, const char* to_bank) {
  s.template SetTransferText<TransferInfo::kFromBankId>("111");
  s.template SetTransferText<TransferInfo::kFromAccountId>("A1");
  s.template SetTransferText<TransferInfo::kToBankId>(to_bank);
  s.template SetTransferText<TransferInfo::kToAccountId>("B2");
  s.template SetTransferText<TransferInfo::kAmount>("25.00");
}

struct Case {
  const char* version;
  std::function<void(Transfer&)> setup;
  std::function<int(Transfer&)> method;
  const char* expected;
};

TEST(MoneyServiceTest, TransferRequestsInBothDialects) {
  const auto none = [](Transfer&) {};
  const Case cases[] = {
      {"102", none, [](Transfer& s) { return s.TransferFunds(); },
       "<INTRATRNRQ>\r\n<TRNUID>T\r\n<INTRARQ>\r\n<XFERINFO>\r\n<BANKACCTFROM>\r\n<BANKID>111\r\n<ACCTID>A1\r\n"
       "<ACCTTYPE>CHECKING\r\n</BANKACCTFROM>\r\n<BANKACCTTO>\r\n<BANKID>111\r\n<ACCTID>B2\r\n<ACCTTYPE>SAVINGS\r\n"
       "</BANKACCTTO>\r\n<TRNAMT>25.00\r\n</XFERINFO>\r\n</INTRARQ>\r\n</INTRATRNRQ>\r\n"},
      {"211",
       [](Transfer& s) {
         s.SetTransferText<TransferInfo::kToBankId>("222"), s.SetFromAccountType(4);
         s.SetTransferText<TransferInfo::kDateDue>("03/01/2026 00:00:00");
       },
       [](Transfer& s) { return s.ModifyTransfer("S9"); },
       "<INTERTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<INTERMODRQ>\r\n<SRVRTID>S9</SRVRTID>\r\n<XFERINFO>\r\n<CCACCTFROM>\r\n"
       "<ACCTID>A1</ACCTID>\r\n</CCACCTFROM>\r\n<BANKACCTTO>\r\n<BANKID>222</BANKID>\r\n<ACCTID>B2</ACCTID>\r\n"
       "<ACCTTYPE>SAVINGS</ACCTTYPE>\r\n</BANKACCTTO>\r\n<TRNAMT>25.00</TRNAMT>\r\n<DTDUE>20260301000000.000[+0:GMT]</"
       "DTDUE>\r\n"
       "</XFERINFO>\r\n</INTERMODRQ>\r\n</INTERTRNRQ>\r\n"},
      {"102", none, [](Transfer& s) { return s.CancelTransfer("S9"); },
       "<INTRATRNRQ>\r\n<TRNUID>T\r\n<INTRACANRQ>\r\n<SRVRTID>S9\r\n</INTRACANRQ>\r\n</INTRATRNRQ>\r\n"},
      {"211", none,
       [](Transfer& s) {
         const char* a;
         return s.SynchronizeTransfers("refresh", a);
       },
       "<INTRASYNCRQ>\r\n<REFRESH>Y</REFRESH>\r\n<REJECTIFMISSING>N</REJECTIFMISSING>\r\n<BANKACCTFROM>\r\n"
       "<BANKID>111</BANKID>\r\n<ACCTID>A1</ACCTID>\r\n<ACCTTYPE>CHECKING</ACCTTYPE>\r\n</BANKACCTFROM>\r\n"
       "</INTRASYNCRQ>\r\n"},
      {"102", [](Transfer& s) { s.SetTransferText<TransferInfo::kToBankId>("222"); },
       [](Transfer& s) {
         const char* a;
         return s.SynchronizeTransfers("0", a);
       },
       "<INTERSYNCRQ>\r\n<TOKEN>0\r\n<REJECTIFMISSING>N\r\n<BANKACCTFROM>\r\n<BANKID>111\r\n<ACCTID>A1\r\n"
       "<ACCTTYPE>CHECKING\r\n</BANKACCTFROM>\r\n</INTERSYNCRQ>\r\n"},
  };
  for (const Case& c : cases) {
    BankTransferComponent component(nullptr, nullptr);
    Transfer& s = component.service();
    s.SetOFXVersion(c.version);
    FillTransfer(s, "");
    c.setup(s);
    EXPECT_EQ(RequestOf<Transfer>(s, c.method), c.expected);
  }
}

TEST(MoneyServiceTest, WrapperFollowsTheDestinationBank) {
  BankTransferComponent component(nullptr, nullptr);
  Transfer& s = component.service();
  FillTransfer(s, "");
  RequestOf<Transfer>(s, [](Transfer& t) { return t.TransferFunds(); });
  ByteString out;
  ASSERT_EQ(s.BuildMessageSets(out, true), 0);
  EXPECT_EQ(out.View().substr(0, 16), "<BANKMSGSRQV1>\r\n");
  EXPECT_STREQ(s.TransferText<TransferInfo::kToBankId>(), "111");
  s.SetTransferText<TransferInfo::kToBankId>("222");
  RequestOf<Transfer>(s, [](Transfer& t) { return t.TransferFunds(); });
  out.Clear();
  ASSERT_EQ(s.BuildMessageSets(out, true), 0);
  EXPECT_EQ(out.View().substr(0, 21), "<INTERXFERMSGSRQV1>\r\n");
}

void FillPayment(Bill& s) {
  s.SetPaymentText<PaymentInfo::kFromBankId>("111");
  s.SetPaymentText<PaymentInfo::kFromAccountId>("A1");
  s.SetPaymentText<PaymentInfo::kAmount>("60");
  s.SetPayeeText<PayeeInfo::kAccount>("ACC-7");
  s.SetPayeeText<PayeeInfo::kListId>("L1");
}
void FillAddress(Bill& s) {
  for (auto [set, value] : std::initializer_list<std::pair<int (Bill::*)(const char*), const char*>>{
           {&Bill::SetPayeeText<PayeeInfo::kName>, "Power Co"},
           {&Bill::SetPayeeText<PayeeInfo::kAddr1>, "1 Main"},
           {&Bill::SetPayeeText<PayeeInfo::kCity>, "Town"},
           {&Bill::SetPayeeText<PayeeInfo::kState>, "CA"},
           {&Bill::SetPayeeText<PayeeInfo::kPostalCode>, "90001"},
           {&Bill::SetPayeeText<PayeeInfo::kPhone>, "555"}}) {
    (s.*set)(value);
  }
}

struct BillCase {
  const char* version;
  std::function<void(Bill&)> setup;
  std::function<int(Bill&)> method;
  const char* expected;
};

TEST(MoneyServiceTest, BillPaymentRequestsInBothDialects) {
  const auto by_id = [](Bill& s) { FillPayment(s), s.SetPayeeText<PayeeInfo::kPayeeId>("P5"); };
  const BillCase cases[] = {
      {"102", by_id, [](Bill& s) { return s.PayBill(); },
       "<PMTTRNRQ>\r\n<TRNUID>T\r\n<PMTRQ>\r\n<PMTINFO>\r\n<BANKACCTFROM>\r\n<BANKID>111\r\n<ACCTID>A1\r\n"
       "<ACCTTYPE>CHECKING\r\n</BANKACCTFROM>\r\n<TRNAMT>60\r\n<PAYEEID>P5\r\n<PAYEELSTID>L1\r\n<PAYACCT>ACC-7\r\n"
       "<DTDUE>\r\n</PMTINFO>\r\n</PMTRQ>\r\n</PMTTRNRQ>\r\n"},
      {"211",
       [](Bill& s) {
         FillPayment(s), FillAddress(s), s.SetPaymentText<PaymentInfo::kToBankId>("9");
         s.SetPaymentText<PaymentInfo::kMemo>("rent");
       },
       [](Bill& s) { return s.ModifyPayment("S3"); },
       "<PMTTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<PMTMODRQ>\r\n<SRVRTID>S3</SRVRTID>\r\n<PMTINFO>\r\n<BANKACCTFROM>\r\n"
       "<BANKID>111</BANKID>\r\n<ACCTID>A1</ACCTID>\r\n<ACCTTYPE>CHECKING</ACCTTYPE>\r\n</BANKACCTFROM>\r\n"
       "<TRNAMT>60</TRNAMT>\r\n<PAYEE>\r\n<NAME>Power Co</NAME>\r\n<ADDR1>1 Main</ADDR1>\r\n<CITY>Town</CITY>\r\n"
       "<STATE>CA</STATE>\r\n<POSTALCODE>90001</POSTALCODE>\r\n<COUNTRY>US</COUNTRY>\r\n<PHONE>555</PHONE>\r\n"
       "</PAYEE>\r\n<PAYEELSTID>L1</PAYEELSTID>\r\n<PAYACCT>ACC-7</PAYACCT>\r\n<DTDUE></DTDUE>\r\n<MEMO>rent</MEMO>\r\n"
       "</PMTINFO>\r\n</PMTMODRQ>\r\n</PMTTRNRQ>\r\n"},
      {"102", by_id, [](Bill& s) { return s.CancelPayment("S3"); },
       "<PMTTRNRQ>\r\n<TRNUID>T\r\n<PMTCANCRQ>\r\n<SRVRTID>S3\r\n</PMTCANCRQ>\r\n</PMTTRNRQ>\r\n"},
      {"211", by_id, [](Bill& s) { return s.GetPaymentStatus("S3"); },
       "<PMTINQTRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<PMTINQRQ>\r\n<SRVRTID>S3</SRVRTID>\r\n</PMTINQRQ>\r\n</"
       "PMTINQTRNRQ>\r\n"},
      {"211", by_id,
       [](Bill& s) {
         const char* a;
         return s.SynchronizePayments("7", a);
       },
       "<PMTSYNCRQ>\r\n<TOKEN>7</TOKEN>\r\n<REJECTIFMISSING>N</REJECTIFMISSING>\r\n<BANKACCTFROM>\r\n"
       "<BANKID>111</BANKID>\r\n<ACCTID>A1</ACCTID>\r\n<ACCTTYPE>CHECKING</ACCTTYPE>\r\n</BANKACCTFROM>\r\n"
       "</PMTSYNCRQ>\r\n"},
      {"102", [](Bill& s) { FillAddress(s), s.SetPayeeText<PayeeInfo::kAccount>("ACC-7"); },
       [](Bill& s) { return s.AddPayee(); },
       "<PAYEETRNRQ>\r\n<TRNUID>T\r\n<PAYEERQ>\r\n<PAYEE>\r\n<NAME>Power Co\r\n<ADDR1>1 Main\r\n<CITY>Town\r\n"
       "<STATE>CA\r\n<POSTALCODE>90001\r\n<COUNTRY>US\r\n<PHONE>555\r\n</PAYEE>\r\n<PAYACCT>ACC-7\r\n</PAYEERQ>\r\n"
       "</PAYEETRNRQ>\r\n"},
      {"211", [](Bill& s) { FillAddress(s); }, [](Bill& s) { return s.ModifyPayee("L1"); },
       "<PAYEETRNRQ>\r\n<TRNUID>T</TRNUID>\r\n<PAYEEMODRQ>\r\n<PAYEELSTID>L1</PAYEELSTID>\r\n<PAYEE>\r\n"
       "<NAME>Power Co</NAME>\r\n<ADDR1>1 Main</ADDR1>\r\n<CITY>Town</CITY>\r\n<STATE>CA</STATE>\r\n"
       "<POSTALCODE>90001</POSTALCODE>\r\n<COUNTRY>US</COUNTRY>\r\n<PHONE>555</PHONE>\r\n</PAYEE>\r\n</PAYEEMODRQ>\r\n"
       "</PAYEETRNRQ>\r\n"},
      {"102", by_id, [](Bill& s) { return s.DeletePayee("L2"); },
       "<PAYEETRNRQ>\r\n<TRNUID>T\r\n<PAYEEDELRQ>\r\n<PAYEELSTID>L2\r\n</PAYEEDELRQ>\r\n</PAYEETRNRQ>\r\n"},
      {"102", by_id,
       [](Bill& s) {
         const char* a;
         return s.SynchronizePayees("REFRESH", a);
       },
       "<PAYEESYNCRQ>\r\n<REFRESH>Y\r\n<REJECTIFMISSING>N\r\n</PAYEESYNCRQ>\r\n"},
  };
  for (const BillCase& c : cases) {
    BillPaymentComponent component(nullptr, nullptr);
    Bill& s = component.service();
    s.Reset();  // payee country "US"
    s.SetOFXVersion(c.version);
    c.setup(s);
    EXPECT_EQ(RequestOf<Bill>(s, c.method), c.expected);
  }
}

// Each missing input stops its method with 2000 and its text before any
// request exists (no TRNUID was drawn).
TEST(MoneyServiceTest, RequiredFieldsFailBeforeSending) {
  struct Missing {
    std::function<void(Transfer&, Bill&)> setup;
    std::function<int(Transfer&, Bill&)> method;
    const char* text;
  };
  const auto pay = [](Transfer&, Bill& b) { return b.PayBill(); };
  const auto transfer = [](Transfer& t, Bill&) { return t.TransferFunds(); };
  const Missing cases[] = {
      {[](Transfer& t, Bill&) { FillTransfer(t, ""), t.SetTransferText<TransferInfo::kFromBankId>(""); }, transfer,
       "Origin Bank Id is missing in the request."},
      {[](Transfer& t, Bill&) { FillTransfer(t, ""), t.SetTransferText<TransferInfo::kFromAccountId>(""); },
       [](Transfer& t, Bill&) {
         const char* a;
         return t.SynchronizeTransfers("0", a);
       },
       "Origin Account Number is missing in the request."},
      {[](Transfer& t, Bill&) { FillTransfer(t, ""), t.SetTransferText<TransferInfo::kToAccountId>(""); },
       [](Transfer& t, Bill&) { return t.ModifyTransfer("S1"); },
       "Destination Account Number is missing in the request."},
      {[](Transfer& t, Bill&) { FillTransfer(t, ""), t.SetTransferText<TransferInfo::kAmount>(""); }, transfer,
       "Transfer Amount is missing in the request."},
      {[](Transfer&, Bill& b) { FillPayment(b), b.SetPaymentText<PaymentInfo::kFromAccountId>(""); }, pay,
       "From AccountId is missing in the request."},
      {[](Transfer&, Bill& b) { FillPayment(b), b.SetPaymentText<PaymentInfo::kFromBankId>(""); }, pay,
       "From BankId is missing in the request."},
      {[](Transfer&, Bill& b) { FillPayment(b), b.SetPaymentText<PaymentInfo::kAmount>(""); },
       [](Transfer&, Bill& b) { return b.ModifyPayment("S1"); }, "Payment Amount is missing in the request."},
      {[](Transfer&, Bill& b) { FillPayment(b), b.SetPayeeText<PayeeInfo::kAccount>(""); }, pay,
       "Payee Account is missing in the request."},
      {[](Transfer&, Bill& b) { FillPayment(b), b.SetPayeeText<PayeeInfo::kListId>(""); }, pay,
       "Payee ListId is missing in the request."},
      {[](Transfer&, Bill& b) { FillPayment(b); }, pay,
       "Either PayeeId or Payee Information (name, addr1, city, state, postal code, phone) are required to be "
       "provided in the request."},
      {[](Transfer&, Bill& b) { FillPayment(b), b.SetPayeeText<PayeeInfo::kName>("N"); }, pay,
       "Payee Addr1 is missing in the request."},
      {[](Transfer&, Bill& b) { FillAddress(b), b.SetPayeeText<PayeeInfo::kCity>(""); },
       [](Transfer&, Bill& b) { return b.AddPayee(); }, "Payee City is missing in the request."},
      {[](Transfer&, Bill& b) { FillPayment(b), FillAddress(b), b.SetPayeeText<PayeeInfo::kState>(""); }, pay,
       "Payee State is missing in the request."},
      {[](Transfer&, Bill& b) { FillAddress(b), b.SetPayeeText<PayeeInfo::kPostalCode>(""); },
       [](Transfer&, Bill& b) { return b.ModifyPayee("L1"); }, "Payee Postal Code is missing in the request."},
      {[](Transfer&, Bill& b) { FillAddress(b), b.SetPayeeText<PayeeInfo::kPhone>(""); },
       [](Transfer&, Bill& b) { return b.ModifyPayee("L1"); }, "Payee Phone Number is missing in the request."},
      {[](Transfer&, Bill&) {}, [](Transfer&, Bill& b) { return b.ModifyPayee("L1"); },
       "Payee Name is missing in the request."},
      {[](Transfer&, Bill&) {}, [](Transfer&, Bill& b) { return b.AddPayee(); },
       "Either PayeeId or Payee Information (name, addr1, city, state, postal code, phone) are required to be "
       "provided in the request."},
  };
  for (const Missing& c : cases) {
    BankTransferComponent transfer_component(nullptr, nullptr);
    BillPaymentComponent bill_component(nullptr, nullptr);
    Transfer& t = transfer_component.service();
    Bill& b = bill_component.service();
    c.setup(t, b);
    EXPECT_EQ(c.method(t, b), kErrMissingField) << c.text;
    const std::string error = *t.GetLastError() != '\0' ? t.GetLastError() : b.GetLastError();
    EXPECT_EQ(error, std::string("Missing required field: ") + c.text);
    EXPECT_STREQ(t.TransactionId(), "");
    EXPECT_STREQ(b.TransactionId(), "");
  }
}

std::string Ofx(const std::string& set, const std::string& body) {
  return OfxResponse("<" + set + ">" + body + "</" + set + ">");
}
std::string IntraRs(const std::string& id, const std::string& rs) {
  const std::string head = "<INTRATRNRS><TRNUID>1<STATUS><CODE>0<SEVERITY>INFO</STATUS>";
  if (rs == "INTRACANRS") return head + "<INTRACANRS><SRVRTID>" + id + "</INTRACANRS></INTRATRNRS>";
  return head + "<" + rs + "><SRVRTID>" + id +
         "<XFERINFO><BANKACCTFROM><BANKID>111<ACCTID>A1<ACCTTYPE>SAVINGS"
         "</BANKACCTFROM><CCACCTTO><ACCTID>C9</CCACCTTO><TRNAMT>5</XFERINFO><DTPOSTED>20260110</" +
         rs + "></INTRATRNRS>";
}
std::string TransferSync(const std::string& token, const std::string& records, const char* lost = "N") {
  return Ofx("BANKMSGSRSV1", "<INTRASYNCRS><TOKEN>" + token + "<LOSTSYNC>" + lost +
                                 "<BANKACCTFROM><BANKID>111<ACCTID>A1<ACCTTYPE>CHECKING</BANKACCTFROM>" + records +
                                 "</INTRASYNCRS>");
}

// A second synchronization on the same object reports exactly the records
// of its own response: none twice, none skipped.
TEST(MoneyServiceTest, SynchronizationsReportEachRecordOnce) {
  EventLog events;
  BankTransferComponent component(&EventLog::Callback, &events);
  Transfer& s = component.service();
  ASSERT_EQ(s.SetOFXResponse(
                TransferSync("T1", IntraRs("X1", "INTRARS") + IntraRs("X2", "INTRAMODRS") + IntraRs("X1", "INTRACANRS"))
                    .c_str()),
            0);
  EXPECT_EQ(events.lines,
            (std::vector<std::string>{"5|ADDED|X1|5|A1|C9||01/10/2026 00:00:00",
                                      "5|MODIFIED|X2|5|A1|C9||01/10/2026 00:00:00", "5|CANCELLED|X1||||CANCELLED|"}));
  EXPECT_EQ(std::string(s.SyncText<TransferInfo::kAggregate>(2)).substr(0, 23), "<INTRATRNRS><TRNUID>1</");
  EXPECT_STREQ(s.Token(), "T1");
  events.lines.clear();
  ASSERT_EQ(s.SetOFXResponse(TransferSync("T2", IntraRs("X3", "INTRARS")).c_str()), 0);
  ASSERT_EQ(s.SyncTransferCount(), 1);
  EXPECT_STREQ(s.SyncText<TransferInfo::kTransferId>(0), "X3");
  EXPECT_EQ(events.lines.size(), 1u);
  // A lost synchronization fails with 1, keeps the new token and reads nothing.
  EXPECT_EQ(s.SetOFXResponse(TransferSync("T3", IntraRs("X4", "INTRARS"), "Y").c_str()), 1);
  EXPECT_TRUE(s.LostSync());
  EXPECT_STREQ(s.Token(), "T3");
  EXPECT_EQ(s.SyncTransferCount(), 0);
  EXPECT_STREQ(static_cast<const char*>(component.Get(BANKTRANSFER_PROP_SYNCTRANSFERAMOUNT, 0, nullptr)), "");
  EXPECT_EQ(component.GetLastErrorCode(), kErrIndexOutOfRange);
  EXPECT_STREQ(component.GetLastError(), "Invalid SyncTransferIndex (out of bounds).");
  EXPECT_EQ(component.CheckIndex(BANKTRANSFER_PROP_SYNCTRANSFERTYPE, 0), kErrCheckIndex);
}

TEST(MoneyServiceTest, PayeeAndPaymentSynchronizations) {
  EventLog events;
  BillPaymentComponent component(&EventLog::Callback, &events);
  Bill& s = component.service();
  const std::string status = "<TRNUID>1<STATUS><CODE>0<SEVERITY>INFO</STATUS>";
  const std::string payee =
      "<PAYEELSTID>L1<PAYEE><NAME>Gas<ADDR1>2 Elm<CITY>Ville<STATE>NY<POSTALCODE>10001"
      "<PHONE>777</PAYEE><PAYACCT>G-1";
  ASSERT_EQ(s.SetOFXResponse(Ofx("BILLPAYMSGSRSV1",
                                 "<PAYEESYNCRS><TOKEN>P1<PAYEETRNRS>" + status + "<PAYEERS>" + payee +
                                     "</PAYEERS></PAYEETRNRS><PAYEETRNRS>" + status + "</PAYEETRNRS><PAYEETRNRS>" +
                                     status + "<PAYEEMODRS>" + payee + "</PAYEEMODRS></PAYEETRNRS><PAYEETRNRS>" +
                                     status + "<PAYEEDELRS><PAYEELSTID>L1</PAYEEDELRS></PAYEETRNRS></PAYEESYNCRS>")
                                 .c_str()),
            0);
  ASSERT_EQ(events.lines.size(), 3u);
  EXPECT_EQ(events.lines[0], "5|ADDED|||L1|G-1|Gas|2 Elm|||Ville|NY|10001||777");
  EXPECT_NE(events.lines[1].find("|MODIFIED|"), std::string::npos);
  EXPECT_NE(events.lines[2].find("|DELETED|||L1|"), std::string::npos);
  events.lines.clear();
  // A response read without a request is read as the last request type:
  // payments need an object that has not read payees.
  BillPaymentComponent payments(&EventLog::Callback, &events);
  ASSERT_EQ(payments.service().SetOFXResponse(
                Ofx("BILLPAYMSGSRSV1",
                    "<PMTSYNCRS><TOKEN>M1<BANKACCTFROM><BANKID>111<ACCTID>A1<ACCTTYPE>CHECKING"
                    "</BANKACCTFROM><PMTTRNRS>" +
                        status +
                        "<PMTRS><SRVRTID>M7<PMTINFO><BANKACCTFROM>"
                        "<BANKID>111<ACCTID>A1<ACCTTYPE>SAVINGS</BANKACCTFROM><TRNAMT>60<PAYEEID>P5"
                        "<PAYACCT>ACC-7<DTDUE>20260301</PMTINFO><PMTPRCSTS><PMTPRCCODE>WILLPROCESSON"
                        "<DTPMTPRC>20260301</PMTPRCSTS></PMTRS></PMTTRNRS><PMTTRNRS>" +
                        status + "<PMTCANCRS><SRVRTID>M6</PMTCANCRS></PMTTRNRS></PMTSYNCRS>")
                    .c_str()),
            0);
  ASSERT_EQ(events.lines.size(), 2u);
  EXPECT_EQ(events.lines[0], "6|ADDED|M7|P5||ACC-7||60|A1|WILLPROCESSON|03/01/2026 00:00:00");
  EXPECT_NE(events.lines[1].find("|CANCELLED|M6|"), std::string::npos);
  EXPECT_EQ(component.CheckIndex(BILLPAYMENT_PROP_SYNCPAYEENAME, 3), kErrCheckIndex);
  EXPECT_EQ(payments.CheckIndex(BILLPAYMENT_PROP_SYNCPAYMENTID, 2), kErrCheckIndex);
  EXPECT_EQ(payments.CheckIndex(BILLPAYMENT_PROP_SYNCPAYMENTID, 1), 0);
}

}  // namespace
}  // namespace orvelan
