#include "services/bill_payment_service.h"

#include "base/error_codes.h"
#include "ofx/message_set_table.h"

namespace orvelan {
namespace {

using M = PaymentInfo;
using E = PayeeInfo;

#define PMT_INFO_SGML                                                                                                \
  "<PMTINFO>\r\n<BANKACCTFROM>\r\n<BANKID>~1~\r\n<ACCTID>~2~\r\n<ACCTTYPE>~3~\r\n</BANKACCTFROM>\r\n<TRNAMT>~4~\r\n" \
  "~5~~6~~7~~8~~9~~10~~11~~12~~13~~14~~15~~16~~17~~18~<PAYACCT>~19~\r\n<DTDUE>~20~\r\n~21~~22~</PMTINFO>\r\n"
#define PMT_INFO_XML                                                                                            \
  "<PMTINFO>\r\n<BANKACCTFROM>\r\n<BANKID>~1~</BANKID>\r\n<ACCTID>~2~</ACCTID>\r\n<ACCTTYPE>~3~</ACCTTYPE>\r\n" \
  "</BANKACCTFROM>\r\n<TRNAMT>~4~</TRNAMT>\r\n~5~~6~~7~~8~~9~~10~~11~~12~~13~~14~~15~~16~~17~~18~<PAYACCT>~19~" \
  "</PAYACCT>\r\n<DTDUE>~20~</DTDUE>\r\n~21~~22~</PMTINFO>\r\n"
#define PAYEE_BODY "~6~~7~~8~~9~~10~~11~~12~~13~~14~~16~~17~~18~~19~"

// By request type - 1.
constexpr const char* kSgml[9] = {
    "<PMTTRNRQ>\r\n<TRNUID>~0~\r\n<PMTRQ>\r\n" PMT_INFO_SGML "</PMTRQ>\r\n</PMTTRNRQ>\r\n",
    "<PMTTRNRQ>\r\n<TRNUID>~0~\r\n<PMTMODRQ>\r\n<SRVRTID>~23~\r\n" PMT_INFO_SGML "</PMTMODRQ>\r\n</PMTTRNRQ>\r\n",
    "<PMTTRNRQ>\r\n<TRNUID>~0~\r\n<PMTCANCRQ>\r\n<SRVRTID>~23~\r\n</PMTCANCRQ>\r\n</PMTTRNRQ>\r\n",
    "<PMTSYNCRQ>\r\n~24~<REJECTIFMISSING>N\r\n<BANKACCTFROM>\r\n<BANKID>~1~\r\n<ACCTID>~2~\r\n<ACCTTYPE>~3~\r\n"
    "</BANKACCTFROM>\r\n</PMTSYNCRQ>\r\n",
    "<PMTINQTRNRQ>\r\n<TRNUID>~0~\r\n<PMTINQRQ>\r\n<SRVRTID>~23~\r\n</PMTINQRQ>\r\n</PMTINQTRNRQ>\r\n",
    "<PAYEETRNRQ>\r\n<TRNUID>~0~\r\n<PAYEERQ>\r\n~5~" PAYEE_BODY "</PAYEERQ>\r\n</PAYEETRNRQ>\r\n",
    "<PAYEETRNRQ>\r\n<TRNUID>~0~\r\n<PAYEEMODRQ>\r\n<PAYEELSTID>~15~\r\n" PAYEE_BODY
    "</PAYEEMODRQ>\r\n</PAYEETRNRQ>\r\n",
    "<PAYEETRNRQ>\r\n<TRNUID>~0~\r\n<PAYEEDELRQ>\r\n<PAYEELSTID>~15~\r\n</PAYEEDELRQ>\r\n</PAYEETRNRQ>\r\n",
    "<PAYEESYNCRQ>\r\n~24~<REJECTIFMISSING>N\r\n</PAYEESYNCRQ>\r\n",
};
constexpr const char* kXml[9] = {
    "<PMTTRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<PMTRQ>\r\n" PMT_INFO_XML "</PMTRQ>\r\n</PMTTRNRQ>\r\n",
    "<PMTTRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<PMTMODRQ>\r\n<SRVRTID>~23~</SRVRTID>\r\n" PMT_INFO_XML
    "</PMTMODRQ>\r\n</PMTTRNRQ>\r\n",
    "<PMTTRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<PMTCANCRQ>\r\n<SRVRTID>~23~</SRVRTID>\r\n</PMTCANCRQ>\r\n</PMTTRNRQ>\r\n",
    "<PMTSYNCRQ>\r\n~24~<REJECTIFMISSING>N</REJECTIFMISSING>\r\n<BANKACCTFROM>\r\n<BANKID>~1~</BANKID>\r\n"
    "<ACCTID>~2~</ACCTID>\r\n<ACCTTYPE>~3~</ACCTTYPE>\r\n</BANKACCTFROM>\r\n</PMTSYNCRQ>\r\n",
    "<PMTINQTRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<PMTINQRQ>\r\n<SRVRTID>~23~</SRVRTID>\r\n</PMTINQRQ>\r\n"
    "</PMTINQTRNRQ>\r\n",
    "<PAYEETRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<PAYEERQ>\r\n~5~" PAYEE_BODY "</PAYEERQ>\r\n</PAYEETRNRQ>\r\n",
    "<PAYEETRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<PAYEEMODRQ>\r\n<PAYEELSTID>~15~</PAYEELSTID>\r\n" PAYEE_BODY
    "</PAYEEMODRQ>\r\n</PAYEETRNRQ>\r\n",
    "<PAYEETRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<PAYEEDELRQ>\r\n<PAYEELSTID>~15~</PAYEELSTID>\r\n</PAYEEDELRQ>\r\n"
    "</PAYEETRNRQ>\r\n",
    "<PAYEESYNCRQ>\r\n~24~<REJECTIFMISSING>N</REJECTIFMISSING>\r\n</PAYEESYNCRQ>\r\n",
};
#undef PMT_INFO_SGML
#undef PMT_INFO_XML
#undef PAYEE_BODY

// The payee's address, in the order both the request and the checks use.
constexpr struct {
  E::Field field;
  const char* tag;
  const char* missing;
} kAddress[] = {
    {E::kName, "NAME", "Payee Name is missing in the request."},
    {E::kAddr1, "ADDR1", "Payee Addr1 is missing in the request."},
    {E::kCity, "CITY", "Payee City is missing in the request."},
    {E::kState, "STATE", "Payee State is missing in the request."},
    {E::kPostalCode, "POSTALCODE", "Payee Postal Code is missing in the request."},
    {E::kPhone, "PHONE", "Payee Phone Number is missing in the request."},
};
constexpr char kTextEitherPayee[] =
    "Either PayeeId or Payee Information (name, addr1, city, state, postal code, phone) are required to be "
    "provided in the request.";

constexpr FieldRead kPaymentHead[] = {
    {M::kPaymentId, "SRVRTID", true},
    {M::kPayeeListId, "PAYEELSTID", false},
    {M::kCurrency, "CURDEF", false},
    {M::kCheckNumber, "CHECKNUM", false},
};
constexpr FieldRead kPaymentInfo[] = {
    {M::kPayeeAccount, "PAYACCT", true},
    {M::kAmount, "TRNAMT", true},
    {M::kDateDue, "DTDUE", true},
    {M::kMemo, "MEMO", false},
    {M::kBillRefInfo, "BILLREFINFO", false},
};
constexpr FieldRead kProcessing[] = {{M::kProcessingStatus, "PMTPRCCODE", true}, {M::kDateProcessed, "DTPMTPRC", true}};
constexpr FieldRead kPayeeAddress[] = {
    {E::kName, "NAME", true},
    {E::kAddr1, "ADDR1", true},
    {E::kAddr2, "ADDR2", false},
    {E::kAddr3, "ADDR3", false},
    {E::kCity, "CITY", true},
    {E::kState, "STATE", true},
    {E::kPostalCode, "POSTALCODE", true},
    {E::kCountry, "COUNTRY", false},
    {E::kPhone, "PHONE", true},
};

}  // namespace

int BillPaymentService::InitDefaults() {
  payment_.Clear();
  payee_.Clear();
  return MoneyServiceBase::InitDefaults();
}

int BillPaymentService::Reset() {
  payment_.Clear();
  payee_.Clear();
  return MoneyServiceBase::Reset();
}

int BillPaymentService::SetFromAccountType(int32_t type) {
  if (type < 0 || type > 3) return ReportError(kErrInvalidValue, "Origin AccountType is invalid.");
  payment_.from_account_type = type;
  return kOk;
}

int BillPaymentService::SetToAccountType(int32_t type) {
  if (type < 0 || type > 3) return ReportError(kErrInvalidValue, "Destination AccountType is invalid.");
  payment_.to_account_type = type;
  return kOk;
}

int BillPaymentService::CheckPaymentIndex(int32_t index) {
  if (index >= 0 && index < payments_.Count()) return kOk;
  return ReportError(kErrIndexOutOfRange, "Invalid SyncPaymentIndex (out of bounds).");
}

int BillPaymentService::CheckPayeeIndex(int32_t index) {
  if (index >= 0 && index < payees_.Count()) return kOk;
  return ReportError(kErrIndexOutOfRange, "Invalid SyncPayeeIndex (out of bounds).");
}

// ---- Methods ----

int BillPaymentService::SendWithId(int32_t type, ByteString& field, const char* id) {
  if (int rc = field.Assign(id); rc != kOk) return rc;
  return Send(type);
}

int BillPaymentService::ModifyPayment(const char* id) {
  return SendWithId(kModifyPayment, payment_.text[M::kPaymentId], id);
}
int BillPaymentService::CancelPayment(const char* id) {
  return SendWithId(kCancelPayment, payment_.text[M::kPaymentId], id);
}
int BillPaymentService::GetPaymentStatus(const char* id) {
  return SendWithId(kPaymentStatus, payment_.text[M::kPaymentId], id);
}
int BillPaymentService::DeletePayee(const char* list_id) {
  return SendWithId(kDeletePayee, payee_.text[E::kListId], list_id);
}

int BillPaymentService::ModifyPayee(const char* list_id) {
  // The list id is taken only once the payee passed its check.
  SetRequestType(kModifyPayee);
  SelectTemplate();
  if (int rc = CheckInputs(); rc != kOk) return rc;
  if (int rc = payee_.text[E::kListId].Assign(list_id); rc != kOk) return rc;
  return Exchange();
}

void BillPaymentService::SelectTemplate() {
  const int32_t type = RequestType();
  if (type >= kAddPayment && type <= kSyncPayees) ChooseTemplate(kSgml[type - 1], kXml[type - 1]);
}

int BillPaymentService::CheckInputs() {
  const int32_t type = RequestType();
  const bool payment = type == kAddPayment || type == kModifyPayment;
  const bool by_address = payee_.text[E::kPayeeId].IsEmpty() && (payment || type == kAddPayee);
  if (payment) {
    if (payment_.text[M::kFromAccountId].IsEmpty()) return Missing("From AccountId is missing in the request.");
    if (payment_.text[M::kFromBankId].IsEmpty()) return Missing("From BankId is missing in the request.");
    if (payment_.text[M::kAmount].IsEmpty()) return Missing("Payment Amount is missing in the request.");
    if (payee_.text[E::kAccount].IsEmpty()) return Missing("Payee Account is missing in the request.");
    if (payee_.text[E::kListId].IsEmpty()) return Missing("Payee ListId is missing in the request.");
  }
  if (by_address) {
    bool any = false;
    for (const auto& line : kAddress) any = any || !payee_.text[line.field].IsEmpty();
    if (!any) return Missing(kTextEitherPayee);
  }
  if (by_address || type == kModifyPayee) {
    for (const auto& line : kAddress) {
      if (payee_.text[line.field].IsEmpty()) return Missing(line.missing);
    }
  }
  return kOk;
}

// ---- Request ----

int BillPaymentService::BuildMessageSets(ByteString& out, bool wrapped) {
  SelectTemplate();
  const int32_t type = RequestType();
  const ByteString* payee = payee_.text;
  const ByteString* pay = payment_.text;
  ByteString a[25];
  int rc = NewTransactionId(a[0]);
  if (rc != kOk) return rc;
  rc = a[1].Assign(pay[M::kFromBankId]) | a[2].Assign(pay[M::kFromAccountId]) |
       a[3].Assign(kAccountTypeNames[payment_.from_account_type]) | a[4].Assign(pay[M::kAmount]);
  if (!payee[E::kPayeeId].IsEmpty()) {
    rc |= Element(a[5], "PAYEEID", payee[E::kPayeeId].View());
  } else {
    // ~6~ to ~14~: the PAYEE aggregate, one slot per line.
    static constexpr struct {
      int slot;
      E::Field field;
      const char* tag;
      bool optional;
    } kLines[] = {{6, E::kName, "NAME", false},
                  {7, E::kAddr1, "ADDR1", false},
                  {8, E::kAddr2, "ADDR2", true},
                  {9, E::kAddr3, "ADDR3", true},
                  {10, E::kCity, "CITY", false},
                  {11, E::kState, "STATE", false},
                  {12, E::kPostalCode, "POSTALCODE", false},
                  {13, E::kCountry, "COUNTRY", true},
                  {14, E::kPhone, "PHONE", false}};
    rc |= a[6].Append("<PAYEE>\r\n");
    for (const auto& line : kLines) {
      if (!line.optional || !payee[line.field].IsEmpty())
        rc |= Element(a[line.slot], line.tag, payee[line.field].View());
    }
    rc |= a[14].Append("</PAYEE>\r\n");
  }
  if (type == kModifyPayee || type == kDeletePayee) {
    rc |= a[15].Assign(payee[E::kListId]);
  } else if (!payee[E::kListId].IsEmpty()) {
    rc |= Element(a[15], "PAYEELSTID", payee[E::kListId].View());
  }
  if (!pay[M::kToBankId].IsEmpty() && !pay[M::kToAccountId].IsEmpty()) {
    rc |= a[16].Append("<BANKACCTTO>\r\n") | Element(a[16], "BANKID", pay[M::kToBankId].View());
    rc |= Element(a[17], "ACCTID", pay[M::kToAccountId].View());
    rc |= Element(a[18], "ACCTTYPE", kAccountTypeNames[payment_.to_account_type]) | a[18].Append("</BANKACCTTO>\r\n");
  }
  if (type != kAddPayee && type != kModifyPayee) {
    rc |= a[19].Assign(payee[E::kAccount]);
  } else if (!payee[E::kAccount].IsEmpty()) {
    rc |= Element(a[19], "PAYACCT", payee[E::kAccount].View());
  }
  if ((type == kAddPayment || type == kModifyPayment) && !pay[M::kDateDue].IsEmpty()) {
    if (int parsed = ParseUserDate(a[20], pay[M::kDateDue].View()); parsed != kOk) return parsed;
  }
  if (!pay[M::kMemo].IsEmpty()) rc |= Element(a[21], "MEMO", pay[M::kMemo].View());
  if (!pay[M::kBillRefInfo].IsEmpty()) rc |= Element(a[22], "BILLREFINFO", pay[M::kBillRefInfo].View());
  rc |= a[23].Assign(pay[M::kPaymentId]) | TokenLine(a[24]);

  std::string_view arguments[25];
  for (int i = 0; i < 25; ++i) arguments[i] = a[i].View();
  if (!wrapped) out.Clear();
  if (wrapped) rc |= MessageSetTable::AppendOpen(out, MessageSetTable::kBillPay);
  rc |= Template().Expand(out, arguments, 25, false);
  if (wrapped) rc |= MessageSetTable::AppendClose(out, MessageSetTable::kBillPay);
  return rc == kOk ? kOk : ReportError(kErrOutOfMemory, nullptr);
}

// ---- Response ----

int BillPaymentService::ParseResponse() {
  MarkupDocument& doc = Walked();
  if (doc.HasPath("BILLPAYMSGSRSV1")) {
    if (int rc = Select("BILLPAYMSGSRSV1"); rc != kOk) return rc;
  }
  if (RequestType() == kNone) {
    static constexpr struct {
      const char* path;
      Request type;
    } kKinds[] = {
        {"PMTTRNRS/PMTRS", kAddPayment},
        {"PMTTRNRS/PMTMODRS", kModifyPayment},
        {"PMTTRNRS/PMTCANCRS", kCancelPayment},
        {"PMTSYNCRS", kSyncPayments},
        {"PMTINQTRNRS", kPaymentStatus},
        {"PAYEETRNRS/PAYEERS", kAddPayee},
        {"PAYEETRNRS/PAYEEMODRS", kModifyPayee},
        {"PAYEETRNRS/PAYEEDELRS", kDeletePayee},
        {"PAYEESYNCRS", kSyncPayees},
    };
    for (const auto& kind : kKinds) {
      if (doc.HasPath(kind.path)) {
        SetRequestType(kind.type);
        break;
      }
    }
    if (RequestType() == kNone) return kOk;
  }
  switch (RequestType()) {
    case kAddPayment:
    case kModifyPayment:
    case kCancelPayment: {
      if (int rc = CheckWrapperStatus("PMTTRNRS"); rc != kOk) return rc;
      if (int rc = ReadPayment(payment_); rc != kOk) return rc;
      const char* response = FirstChild({"PMTRS", "PMTMODRS"});
      if (RequestType() == kCancelPayment || response == nullptr) return kOk;
      if (int rc = Select(response); rc != kOk) return rc;
      return ReadPayeeFields(payee_, true);
    }
    case kPaymentStatus:
      if (int rc = CheckWrapperStatus("PMTINQTRNRS"); rc != kOk) return rc;
      return ReadPayment(payment_);
    case kAddPayee:
    case kModifyPayee:
    case kDeletePayee: {
      if (int rc = CheckWrapperStatus("PAYEETRNRS"); rc != kOk) return rc;
      const int rc = ReadPayee(payee_);
      return rc == kNotARecord ? kOk : rc;
    }
    case kSyncPayments: {
      if (int rc = EnterSync("PMTSYNCRS"); rc != kOk) return rc;
      const auto read = [this](PaymentInfo& p) { return ReadPayment(p); };
      if (int rc = ReadSyncRecords("PMTTRNRS", payments_, read); rc != kOk) return rc;
      for (int32_t i = 0; i < payments_.Count(); ++i) {
        const PaymentInfo& p = *payments_.Item(i);
        const char* texts[] = {p.Text(M::kAggregate),        p.Text(M::kStatus),         p.Text(M::kPaymentId),
                               p.Text(M::kPayeeId),          p.Text(M::kPayeeListId),    p.Text(M::kPayeeAccount),
                               p.Text(M::kPayeeAggregate),   p.Text(M::kAmount),         p.Text(M::kFromAccountId),
                               p.Text(M::kProcessingStatus), SyncPaymentDateProcessed(i)};
        FireTextEvent(kSyncPaymentsEvent, 11, texts);
      }
      return kOk;
    }
    case kSyncPayees: {
      if (int rc = EnterSync("PAYEESYNCRS"); rc != kOk) return rc;
      const auto read = [this](PayeeInfo& p) { return ReadPayee(p); };
      if (int rc = ReadSyncRecords("PAYEETRNRS", payees_, read); rc != kOk) return rc;
      for (int32_t i = 0; i < payees_.Count(); ++i) {
        const PayeeInfo& p = *payees_.Item(i);
        const char* texts[] = {p.Text(E::kAggregate),  p.Text(E::kStatus),  p.Text(E::kPayeeId), p.Text(E::kIdScope),
                               p.Text(E::kListId),     p.Text(E::kAccount), p.Text(E::kName),    p.Text(E::kAddr1),
                               p.Text(E::kAddr2),      p.Text(E::kAddr3),   p.Text(E::kCity),    p.Text(E::kState),
                               p.Text(E::kPostalCode), p.Text(E::kCountry), p.Text(E::kPhone)};
        FireTextEvent(kSyncPayeesEvent, 15, texts);
      }
      return kOk;
    }
    default:
      return kOk;
  }
}

int BillPaymentService::ReadPayment(PaymentInfo& p) {
  MarkupDocument& doc = Walked();
  if (int rc = p.text[M::kAggregate].Assign(doc.ElementSubtree()); rc != kOk) return rc;
  if (const char* response = FirstChild({"PMTRS", "PMTMODRS"})) {
    if (int rc = Select(response); rc != kOk) return rc;
    p.text[M::kStatus].Assign(std::string_view(response) == "PMTRS" ? "ADDED" : "MODIFIED");
    if (int rc = ReadFields(p.text, kPaymentHead); rc != kOk) return rc;
    if (int rc = Select("PMTINFO"); rc != kOk) return rc;
    if (doc.HasPath("PAYEE")) {
      if (int rc = Select("PAYEE"); rc != kOk) return rc;
      p.text[M::kPayeeAggregate].Assign(doc.ElementSubtree());
      if (int rc = Select(".."); rc != kOk) return rc;
    } else if (int rc = ReadField(doc, "PAYEEID", p.text[M::kPayeeId]); rc != kOk) {
      return rc;
    }
    if (p.text[M::kPayeeListId].IsEmpty()) {
      if (int rc = ReadField(doc, "PAYEELSTID", p.text[M::kPayeeListId], false); rc != kOk) return rc;
    }
    if (int rc = ReadFields(p.text, kPaymentInfo); rc != kOk) return rc;
    ByteString shown;
    p.text[M::kDateDue].Assign(FormatDate(shown, p.text[M::kDateDue].View()));
    if (int rc = ReadBankAccount(p, false); rc != kOk) return rc;
    if (doc.HasPath("BANKACCTTO")) {
      if (int rc = ReadBankAccount(p, true); rc != kOk) return rc;
    }
    if (int rc = Select("../PMTPRCSTS"); rc != kOk) return rc;
    if (int rc = ReadFields(p.text, kProcessing); rc != kOk) return rc;
    if (int rc = Select("../.."); rc != kOk) return rc;
    return kOk;
  }
  if (doc.HasPath("PMTCANCRS")) {
    if (int rc = Select("PMTCANCRS"); rc != kOk) return rc;
    p.text[M::kStatus].Assign("CANCELLED");
    p.text[M::kProcessingStatus].Assign("CANCELLED");
    if (int rc = ReadField(doc, "SRVRTID", p.text[M::kPaymentId]); rc != kOk) return rc;
    return Select("..");
  }
  if (doc.HasPath("PMTINQRS")) {
    if (int rc = Select("PMTINQRS"); rc != kOk) return rc;
    if (int rc = ReadField(doc, "SRVRTID", p.text[M::kPaymentId]); rc != kOk) return rc;
    if (int rc = ReadField(doc, "CHECKNUM", p.text[M::kCheckNumber], false); rc != kOk) return rc;
    if (int rc = Select("PMTPRCSTS"); rc != kOk) return rc;
    if (int rc = ReadFields(p.text, kProcessing); rc != kOk) return rc;
    return Select("../..");
  }
  return kOk;
}

int BillPaymentService::ReadBankAccount(PaymentInfo& p, bool destination) {
  MarkupDocument& doc = Walked();
  if (int rc = Select(destination ? "BANKACCTTO" : "BANKACCTFROM"); rc != kOk) return rc;
  if (int rc = ReadField(doc, "BANKID", p.text[destination ? M::kToBankId : M::kFromBankId]); rc != kOk) return rc;
  if (int rc = ReadField(doc, "ACCTID", p.text[destination ? M::kToAccountId : M::kFromAccountId]); rc != kOk) {
    return rc;
  }
  if (int rc = ReadField(doc, "ACCTTYPE", scratch()); rc != kOk) return rc;
  (destination ? p.to_account_type : p.from_account_type) = AccountTypeIndex(scratch().View(), 4);
  return Select("..");
}

int BillPaymentService::ReadPayee(PayeeInfo& p) {
  MarkupDocument& doc = Walked();
  const char* response = FirstChild({"PAYEERS", "PAYEEMODRS", "PAYEEDELRS"});
  if (response == nullptr) return kNotARecord;
  if (int rc = p.text[E::kAggregate].Assign(doc.ElementSubtree()); rc != kOk) return rc;
  if (int rc = Select(response); rc != kOk) return rc;
  const std::string_view name(response);
  p.text[E::kStatus].Assign(name == "PAYEERS" ? "ADDED" : name == "PAYEEMODRS" ? "MODIFIED" : "DELETED");
  const int rc = name == "PAYEEDELRS" ? ReadField(doc, "PAYEELSTID", p.text[E::kListId]) : ReadPayeeFields(p, false);
  if (rc != kOk) return rc;
  return Select("..");
}

int BillPaymentService::ReadPayeeFields(PayeeInfo& p, bool in_payment) {
  MarkupDocument& doc = Walked();
  // An extended payee sits beside PMTINFO in a payment, inside PAYEERS.
  if (doc.HasPath("EXTDPAYEE")) {
    if (int rc = Select("EXTDPAYEE"); rc != kOk) return rc;
    static constexpr FieldRead kExtended[] = {
        {E::kPayeeId, "PAYEEID", false}, {E::kIdScope, "IDSCOPE", false}, {E::kDaysToPay, "DAYSTOPAY", true}};
    if (int rc = ReadFields(p.text, kExtended); rc != kOk) return rc;
    if (doc.HasPath("NAME")) {
      if (int rc = ReadField(doc, "NAME", p.text[E::kName]); rc != kOk) return rc;
    }
    if (int rc = Select(".."); rc != kOk) return rc;
  }
  const bool info = doc.HasPath("PMTINFO");
  if (info) {
    if (int rc = Select("PMTINFO"); rc != kOk) return rc;
  }
  // A payment may name its payee list id beside PMTINFO only; it was read
  // into the payment already.
  if (in_payment && !doc.HasPath("PAYEELSTID")) {
    p.text[E::kListId].Assign(payment_.text[M::kPayeeListId]);
  } else if (int rc = ReadField(doc, "PAYEELSTID", p.text[E::kListId]); rc != kOk) {
    return rc;
  }
  if (int rc = ReadField(doc, "PAYACCT", p.text[E::kAccount], false); rc != kOk) return rc;
  if (doc.HasPath("PAYEE")) {
    if (int rc = Select("PAYEE"); rc != kOk) return rc;
    if (in_payment || p.text[E::kAggregate].IsEmpty()) p.text[E::kAggregate].Assign(doc.ElementSubtree());
    if (int rc = ReadPayeeAddress(p); rc != kOk) return rc;
    if (int rc = Select(".."); rc != kOk) return rc;
  }
  return info ? Select("..") : kOk;
}

int BillPaymentService::ReadPayeeAddress(PayeeInfo& p) { return ReadFields(p.text, kPayeeAddress); }

int BillPaymentService::SetPayeeAggregate(const char* value) {
  if (int rc = payee_.text[E::kAggregate].Assign(value); rc != kOk) return rc;
  if (value == nullptr || *value == '\0') return kOk;
  OFXTagTable& doc = payee_document_;
  doc.Reset();
  doc.SetBuildDOM(true);
  doc.SetValidate(true);
  doc.SetKeepOriginalText(true);
  if (int rc = doc.RegisterAggregates(); rc != kOk) return ReportError(rc, doc.GetLastError());
  if (int rc = doc.Parse(value); rc != kOk) return ReportError(rc, doc.GetLastError());
  if (int rc = doc.SelectPath("/"); rc != kOk) return ReportError(rc, doc.GetLastError());
  SetWalked(&doc);
  const std::string_view root(doc.ElementName());
  int rc = kOk;
  if (root == "PAYEE") {
    rc = ReadPayeeAddress(payee_);
  } else if (root == "PAYEETRNRS") {
    if (const char* response = FirstChild({"PAYEERS", "PAYEEMODRS"})) {
      rc = Select(response);
      if (rc == kOk) rc = ReadPayeeFields(payee_, false);
    }
  } else if (root == "PAYEERS" || root == "PAYEEMODRS") {
    rc = ReadPayeeFields(payee_, false);
  }
  SetWalked(nullptr);
  // The host's text, not the parts read from it.
  payee_.text[E::kAggregate].Assign(value);
  return rc;
}

}  // namespace orvelan
