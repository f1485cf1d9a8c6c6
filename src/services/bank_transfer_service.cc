#include "services/bank_transfer_service.h"

#include "base/error_codes.h"
#include "core/setting_table.h"

namespace orvelan {
namespace {

using T = TransferInfo;

// [request type - 1][interbank]
constexpr const char* kSgml[4][2] = {
    {"<INTRATRNRQ>\r\n<TRNUID>~0~\r\n<INTRARQ>\r\n<XFERINFO>\r\n~1~~2~<TRNAMT>~3~\r\n~4~</XFERINFO>\r\n</INTRARQ>\r\n"
     "</INTRATRNRQ>\r\n",
     "<INTERTRNRQ>\r\n<TRNUID>~0~\r\n<INTERRQ>\r\n<XFERINFO>\r\n~1~~2~<TRNAMT>~3~\r\n~4~</XFERINFO>\r\n</INTERRQ>\r\n"
     "</INTERTRNRQ>\r\n"},
    {"<INTRATRNRQ>\r\n<TRNUID>~0~\r\n<INTRAMODRQ>\r\n<SRVRTID>~5~\r\n<XFERINFO>\r\n~1~~2~<TRNAMT>~3~\r\n~4~"
     "</XFERINFO>\r\n</INTRAMODRQ>\r\n</INTRATRNRQ>\r\n",
     "<INTERTRNRQ>\r\n<TRNUID>~0~\r\n<INTERMODRQ>\r\n<SRVRTID>~5~\r\n<XFERINFO>\r\n~1~~2~<TRNAMT>~3~\r\n~4~"
     "</XFERINFO>\r\n</INTERMODRQ>\r\n</INTERTRNRQ>\r\n"},
    {"<INTRATRNRQ>\r\n<TRNUID>~0~\r\n<INTRACANRQ>\r\n<SRVRTID>~5~\r\n</INTRACANRQ>\r\n</INTRATRNRQ>\r\n",
     "<INTERTRNRQ>\r\n<TRNUID>~0~\r\n<INTERCANRQ>\r\n<SRVRTID>~5~\r\n</INTERCANRQ>\r\n</INTERTRNRQ>\r\n"},
    {"<INTRASYNCRQ>\r\n~6~<REJECTIFMISSING>N\r\n~1~</INTRASYNCRQ>\r\n",
     "<INTERSYNCRQ>\r\n~6~<REJECTIFMISSING>N\r\n~1~</INTERSYNCRQ>\r\n"},
};
constexpr const char* kXml[4][2] = {
    {"<INTRATRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<INTRARQ>\r\n<XFERINFO>\r\n~1~~2~<TRNAMT>~3~</TRNAMT>\r\n~4~"
     "</XFERINFO>\r\n</INTRARQ>\r\n</INTRATRNRQ>\r\n",
     "<INTERTRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<INTERRQ>\r\n<XFERINFO>\r\n~1~~2~<TRNAMT>~3~</TRNAMT>\r\n~4~"
     "</XFERINFO>\r\n</INTERRQ>\r\n</INTERTRNRQ>\r\n"},
    {"<INTRATRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<INTRAMODRQ>\r\n<SRVRTID>~5~</SRVRTID>\r\n<XFERINFO>\r\n~1~~2~"
     "<TRNAMT>~3~</TRNAMT>\r\n~4~</XFERINFO>\r\n</INTRAMODRQ>\r\n</INTRATRNRQ>\r\n",
     "<INTERTRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<INTERMODRQ>\r\n<SRVRTID>~5~</SRVRTID>\r\n<XFERINFO>\r\n~1~~2~"
     "<TRNAMT>~3~</TRNAMT>\r\n~4~</XFERINFO>\r\n</INTERMODRQ>\r\n</INTERTRNRQ>\r\n"},
    {"<INTRATRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<INTRACANRQ>\r\n<SRVRTID>~5~</SRVRTID>\r\n</INTRACANRQ>\r\n"
     "</INTRATRNRQ>\r\n",
     "<INTERTRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<INTERCANRQ>\r\n<SRVRTID>~5~</SRVRTID>\r\n</INTERCANRQ>\r\n"
     "</INTERTRNRQ>\r\n"},
    {"<INTRASYNCRQ>\r\n~6~<REJECTIFMISSING>N</REJECTIFMISSING>\r\n~1~</INTRASYNCRQ>\r\n",
     "<INTERSYNCRQ>\r\n~6~<REJECTIFMISSING>N</REJECTIFMISSING>\r\n~1~</INTERSYNCRQ>\r\n"},
};

constexpr FieldRead kResponseHead[] = {
    {T::kTransferId, "SRVRTID", true},
    {T::kDatePosted, "DTPOSTED", false},
    {T::kDateProjected, "DTXFERPRJ", false},
    {T::kCurrency, "CURDEF", false},
};
constexpr FieldRead kTransferAmount[] = {{T::kAmount, "TRNAMT", true}, {T::kDateDue, "DTDUE", false}};
constexpr FieldRead kProcessing[] = {{T::kProcessingStatus, "XFERPRCCODE", false},
                                     {T::kDateProcessed, "DTXFERPRC", false}};

}  // namespace

int BankTransferService::InitDefaults() {
  batch_transfer_type_ = 0;
  return MoneyServiceBase::InitDefaults();
}

int BankTransferService::HandleConfig(ConfigArgument& argument, const char*& out) {
  using R = Setting<BankTransferService>;
  static constexpr R kSettings[] = {R::Int<&BankTransferService::batch_transfer_type_>("BatchTransferType")};
  if (const R* row = FindSetting(kSettings, argument)) return row->Run(*this, argument, out);
  return OFXClient::HandleConfig(argument, out);
}

int BankTransferService::SetFromAccountType(int32_t type) {
  if (type < 0 || type >= kAccountTypeCount) return ReportError(kErrInvalidValue, "Origin AccountType is invalid.");
  transfer_.from_account_type = type;
  return kOk;
}

int BankTransferService::SetToAccountType(int32_t type) {
  if (type < 0 || type >= kAccountTypeCount) {
    return ReportError(kErrInvalidValue, "Destination AccountType is invalid.");
  }
  transfer_.to_account_type = type;
  return kOk;
}

int BankTransferService::CheckSyncIndex(int32_t index) {
  if (index >= 0 && index < synced_.Count()) return kOk;
  return ReportError(kErrIndexOutOfRange, "Invalid SyncTransferIndex (out of bounds).");
}

int BankTransferService::SendFor(int32_t type, const char* id) {
  if (int rc = transfer_.text[T::kTransferId].Assign(id); rc != kOk) return rc;
  return Send(type);
}

bool BankTransferService::IsIntrabank() const {
  const ByteString& to = transfer_.text[T::kToBankId];
  return to.IsEmpty() || to.Equals(transfer_.Text(T::kFromBankId));
}

void BankTransferService::SelectTemplate() {
  const int32_t type = RequestType();
  if (type < kAdd || type > kSynchronize) return;
  const int interbank = IsIntrabank() ? 0 : 1;
  ChooseTemplate(kSgml[type - 1][interbank], kXml[type - 1][interbank]);
}

int BankTransferService::CheckInputs() {
  const int32_t type = RequestType();
  const bool moves = type == kAdd || type == kModify;
  if (type != kCancel && transfer_.text[T::kFromBankId].IsEmpty()) {
    return Missing("Origin Bank Id is missing in the request.");
  }
  if (type != kCancel && transfer_.text[T::kFromAccountId].IsEmpty()) {
    return Missing("Origin Account Number is missing in the request.");
  }
  if (moves && transfer_.text[T::kToAccountId].IsEmpty()) {
    return Missing("Destination Account Number is missing in the request.");
  }
  if (moves && transfer_.text[T::kAmount].IsEmpty()) return Missing("Transfer Amount is missing in the request.");
  return kOk;
}

// ---- Request ----

int BankTransferService::AccountBlock(ByteString& out, bool destination) {
  const int32_t at = destination ? T::kDestination : 0;
  const int32_t type = destination ? transfer_.to_account_type : transfer_.from_account_type;
  const bool card = type == 4;
  const char* aggregate =
      card ? (destination ? "CCACCTTO" : "CCACCTFROM") : (destination ? "BANKACCTTO" : "BANKACCTFROM");
  ByteString* f = transfer_.text + at;
  int rc = out.AppendChar('<') | out.Append(aggregate) | out.Append(">\r\n");
  if (!card) {
    // The destination of an intrabank transfer is at the origin's bank.
    if (destination && f[T::kFromBankId].IsEmpty()) rc |= f[T::kFromBankId].Assign(transfer_.text[T::kFromBankId]);
    rc |= Element(out, "BANKID", f[T::kFromBankId].View());
    if (!f[T::kFromBranchId].IsEmpty()) rc |= Element(out, "BRANCHID", f[T::kFromBranchId].View());
  }
  rc |= Element(out, "ACCTID", f[T::kFromAccountId].View());
  if (!card) rc |= Element(out, "ACCTTYPE", kAccountTypeNames[type]);
  if (!f[T::kFromAccountKey].IsEmpty()) rc |= Element(out, "ACCTKEY", f[T::kFromAccountKey].View());
  return rc | out.Append("</") | out.Append(aggregate) | out.Append(">\r\n");
}

int BankTransferService::BuildMessageSets(ByteString& out, bool wrapped) {
  if (RequestType() == kNone && batch_transfer_type_ != 0) {
    if (batch_transfer_type_ < kNone || batch_transfer_type_ > kSynchronize) {
      return ReportError(kErrInvalidValue, "RequestType is invalid.");
    }
    SetRequestType(batch_transfer_type_);
    SelectTemplate();
    if (int rc = CheckInputs(); rc != kOk) return rc;
  }
  const int32_t type = RequestType();
  ByteString trnuid, token, from, to, due;
  if (int rc = NewTransactionId(trnuid); rc != kOk) return rc;
  int rc = TokenLine(token) | AccountBlock(from, false) | AccountBlock(to, true);
  // An empty due date leaves DTDUE out: the server then schedules the
  // transfer itself, where an empty element would be refused.
  if (type == kAdd || type == kModify) {
    const ByteString& host_date = transfer_.text[T::kDateDue];
    if (host_date.IsEmpty()) {
      due_date_.Clear();
    } else {
      if (int parsed = ParseUserDate(due_date_, host_date.View()); parsed != kOk) return parsed;
      rc |= Element(due, "DTDUE", due_date_.View());
    }
  }
  const std::string_view arguments[] = {trnuid.View(), from.View(),
                                        to.View(),     transfer_.text[T::kAmount].View(),
                                        due.View(),    transfer_.text[T::kTransferId].View(),
                                        token.View()};
  // Inter-bank transfers have a message set of their own.
  const char* set = IsIntrabank() ? "BANKMSGSRQV1>\r\n" : "INTERXFERMSGSRQV1>\r\n";
  if (!wrapped) out.Clear();
  if (wrapped) rc |= out.AppendChar('<') | out.Append(set);
  rc |= Template().Expand(out, arguments, 7, false);
  if (wrapped) rc |= out.Append("</") | out.Append(set);
  return rc == kOk ? kOk : ReportError(kErrOutOfMemory, nullptr);
}

// ---- Response ----

int BankTransferService::ParseResponse() {
  MarkupDocument& doc = Document();
  if (const char* set = FirstChild({"BANKMSGSRSV1", "INTERXFERMSGSRSV1"})) {
    if (int rc = Select(set); rc != kOk) return rc;
  }
  if (RequestType() == kNone) {
    static constexpr struct {
      const char* path;
      Request type;
    } kKinds[] = {
        {"INTRATRNRS/INTRARS", kAdd},       {"INTERTRNRS/INTERRS", kAdd},       {"INTRATRNRS/INTRAMODRS", kModify},
        {"INTERTRNRS/INTERMODRS", kModify}, {"INTRATRNRS/INTRACANRS", kCancel}, {"INTERTRNRS/INTERCANRS", kCancel},
        {"INTRASYNCRS", kSynchronize},      {"INTERSYNCRS", kSynchronize},
    };
    for (const auto& kind : kKinds) {
      if (doc.HasPath(kind.path)) {
        SetRequestType(kind.type);
        break;
      }
    }
    if (RequestType() == kNone) return kOk;
  }
  const char* root = doc.ElementName();
  const auto here = [&](const char* name) { return doc.HasPath(name) || std::string_view(root) == name; };

  if (RequestType() != kSynchronize) {
    const char* wrapper = here("INTRATRNRS") ? "INTRATRNRS" : here("INTERTRNRS") ? "INTERTRNRS" : nullptr;
    if (wrapper == nullptr) return kOk;
    if (int rc = CheckWrapperStatus(wrapper); rc != kOk) return rc;
    return ReadTransfer(transfer_);
  }
  if (int rc = EnterSync(here("INTRASYNCRS") ? "INTRASYNCRS" : "INTERSYNCRS"); rc != kOk) return rc;
  const char* records = doc.HasPath("INTRATRNRS") ? "INTRATRNRS" : "INTERTRNRS";
  if (int rc = ReadSyncRecords(records, synced_, [this](TransferInfo& t) { return ReadTransfer(t); }); rc != kOk) {
    return rc;
  }
  for (int32_t i = 0; i < synced_.Count(); ++i) {
    const TransferInfo& t = *synced_.Item(i);
    const char* texts[] = {t.Text(T::kAggregate),        t.Text(T::kStatus),         t.Text(T::kTransferId),
                           t.Text(T::kAmount),           t.Text(T::kFromAccountId),  t.Text(T::kToAccountId),
                           t.Text(T::kProcessingStatus), SyncDate<T::kDatePosted>(i)};
    FireTextEvent(kSyncTransfersEvent, 8, texts);
  }
  return kOk;
}

int BankTransferService::ReadTransfer(TransferInfo& t) {
  MarkupDocument& doc = Document();
  if (int rc = t.text[T::kAggregate].Assign(doc.ElementSubtree()); rc != kOk) return rc;
  const char* added = FirstChild({"INTRARS", "INTERRS"});
  const char* response = added != nullptr ? added : FirstChild({"INTRAMODRS", "INTERMODRS"});
  if (response != nullptr) {
    if (int rc = Select(response); rc != kOk) return rc;
    t.text[T::kStatus].Assign(added != nullptr ? "ADDED" : "MODIFIED");
    if (int rc = ReadFields(t.text, kResponseHead); rc != kOk) return rc;
    if (int rc = Select("XFERINFO"); rc != kOk) return rc;
    if (int rc = ReadFields(t.text, kTransferAmount); rc != kOk) return rc;
    ByteString shown;
    t.text[T::kDateDue].Assign(FormatDate(shown, t.text[T::kDateDue].View()));
    if (int rc = ReadAccount(t, true); rc != kOk) return rc;
    if (int rc = ReadAccount(t, false); rc != kOk) return rc;
    if (int rc = Select(".."); rc != kOk) return rc;
    if (doc.HasPath("XFERPRCSTS")) {
      if (int rc = Select("XFERPRCSTS"); rc != kOk) return rc;
      if (int rc = ReadFields(t.text, kProcessing); rc != kOk) return rc;
      if (int rc = Select(".."); rc != kOk) return rc;
    }
    return Select("..");
  }
  if (const char* cancelled = FirstChild({"INTRACANRS", "INTERCANRS"})) {
    if (int rc = Select(cancelled); rc != kOk) return rc;
    t.text[T::kStatus].Assign("CANCELLED");
    t.text[T::kProcessingStatus].Assign("CANCELLED");
    if (int rc = ReadField(doc, "SRVRTID", t.text[T::kTransferId]); rc != kOk) return rc;
    return Select("..");
  }
  return kOk;
}

int BankTransferService::ReadAccount(TransferInfo& t, bool destination) {
  MarkupDocument& doc = Document();
  ByteString* f = t.text + (destination ? T::kDestination : 0);
  const char* bank = destination ? "BANKACCTTO" : "BANKACCTFROM";
  if (doc.HasPath(bank)) {
    if (int rc = Select(bank); rc != kOk) return rc;
    if (int rc = ReadField(doc, "BANKID", f[T::kFromBankId]); rc != kOk) return rc;
    if (int rc = ReadField(doc, "BRANCHID", f[T::kFromBranchId], false); rc != kOk) return rc;
    if (int rc = ReadField(doc, "ACCTTYPE", scratch()); rc != kOk) return rc;
    (destination ? t.to_account_type : t.from_account_type) = AccountTypeIndex(scratch().View(), kAccountTypeCount);
  } else if (int rc = Select(destination ? "CCACCTTO" : "CCACCTFROM"); rc != kOk) {
    return rc;
  }
  if (int rc = ReadField(doc, "ACCTID", f[T::kFromAccountId]); rc != kOk) return rc;
  if (int rc = ReadField(doc, "ACCTKEY", f[T::kFromAccountKey], false); rc != kOk) return rc;
  return Select("..");
}

}  // namespace orvelan
