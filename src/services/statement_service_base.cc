#include "services/statement_service_base.h"

#include "base/error_codes.h"
#include "services/service_steps.h"

namespace orvelan {
namespace {

constexpr char kTextBadVersion[] = "OFXVersion must begin with \"1\" or \"2\".";
constexpr char kTextInvalidTxIndex[] = "Invalid TxIndex (out of bounds).";
constexpr char kTextInvalidClosingIndex[] = "Invalid ClosingInfoIndex (out of bounds).";

int AppendTag(ByteString& out, const char* open, const ByteString& name) {
  return out.Append(open) | out.Append(name) | out.Append(">\r\n");
}

}  // namespace

int StatementServiceBase::InitDefaults() {
  if (OFXClient::InitDefaults() == 0) return 0;
  RestoreDefaults();
  return 1;
}

int StatementServiceBase::Reset() {
  RestoreDefaults();
  return OFXClient::Reset();
}

void StatementServiceBase::RestoreDefaults() {
  end_date_.Clear();
  start_date_.Clear();
  ClearResponse();
}

int StatementServiceBase::ClearResponse() {
  available_balance_.Assign(layout_.empty_balance);
  available_balance_date_.Clear();
  ledger_balance_.Assign(layout_.empty_balance);
  ledger_balance_date_.Clear();
  currency_code_.Clear();
  transactions_.Clear();
  closings_.Clear();
  return OFXClient::ClearResponse();
}

const char* StatementServiceBase::ShowAmount(ByteString& shown, std::string_view raw) {
  shown.Assign(FormatAmount(raw));
  return shown.Data();
}

int StatementServiceBase::Select(MarkupDocument&, std::string_view path) { return SelectOrReport(*this, path); }

int StatementServiceBase::Download(int32_t type) {
  if (layout_.forced_version != nullptr) {
    if (int rc = SetOFXVersion(layout_.forced_version); rc != kOk) return rc;
  }
  if (int rc = SetStatementType(type); rc != kOk) return rc;
  if (int rc = CheckRequiredInputs(); rc != kOk) return rc;
  return Exchange();
}

// ---- Request ----

int StatementServiceBase::BuildMessageSets(ByteString& out, bool wrapped) {
  const char version = OFXVersion()[0];
  const bool xml = layout_.forced_version != nullptr || version == '2';
  // No request would match what the engine sends around it.
  if (!xml && version != '1') return ReportError(kErrInvalidValue, kTextBadVersion);
  const bool closing = StatementType() == 1;

  ByteString trnuid;
  if (int rc = NewTransactionId(trnuid); rc != kOk) return rc;
  std::string_view account[kMaxAccountTags];
  AccountValues(account);
  ByteString outer, inner;  // STMTTRNRQ and STMTRQ, or their closing forms
  int rc = outer.Append(MessageSetTable::RequestKind(layout_.message_set)) | outer.Append(closing ? "END" : "");
  rc |= inner.Append(outer) | inner.Append("RQ") | outer.Append("TRNRQ");

  if (!wrapped) out.Clear();
  if (wrapped) rc |= MessageSetTable::AppendOpen(out, layout_.message_set);
  rc |= AppendTag(out, "<", outer) | AppendRequestElement(out, xml, "TRNUID", trnuid.View()) | AppendTag(out, "<", inner);
  rc |= out.AppendChar('<') | out.Append(layout_.account_aggregate) | out.Append(">\r\n");
  for (int32_t i = 0; i < layout_.account_tag_count; ++i) {
    rc |= AppendRequestElement(out, xml, layout_.account_tags[i], account[i]);
  }
  rc |= out.Append("</") | out.Append(layout_.account_aggregate) | out.Append(">\r\n");
  rc |= closing ? AppendDateRange(out, xml) : AppendStatementOptions(out, xml);
  // The image flag reads the same in both dialects; an SGML closing request
  // has no place for it.
  if (IncludeImages() && (closing ? xml : layout_.transaction_images)) {
    rc |= out.Append(closing ? "<INCSTMTIMG>Y</INCSTMTIMG>\r\n" : "<INCTRANIMG>Y</INCTRANIMG>\r\n");
  }
  rc |= AppendTag(out, "</", inner) | AppendTag(out, "</", outer);
  if (wrapped) rc |= MessageSetTable::AppendClose(out, layout_.message_set);
  return rc == kOk ? kOk : ReportError(kErrOutOfMemory, nullptr);
}

int StatementServiceBase::AppendDateRange(ByteString& out, bool xml) {
  int rc = kOk;
  if (!start_date_.IsEmpty()) rc |= AppendRequestElement(out, xml, "DTSTART", start_date_.View());
  if (!end_date_.IsEmpty()) rc |= AppendRequestElement(out, xml, "DTEND", end_date_.View());
  return rc;
}

int StatementServiceBase::AppendStatementOptions(ByteString& out, bool xml) {
  return out.Append("<INCTRAN>\r\n") | AppendDateRange(out, xml) | AppendRequestElement(out, xml, "INCLUDE", "Y") |
         out.Append("</INCTRAN>\r\n");
}

// ---- Response ----

int StatementServiceBase::ParseResponse() {
  MarkupDocument& doc = Document();
  // BANKMSGSRSV1, or V2 where the statement allows it; neither: stay.
  ByteString set;
  for (char version : {'1', '2'}) {
    if (version == '2' && !layout_.second_version) break;
    set.Assign(MessageSetTable::MessageSet(layout_.message_set));
    set.Append("MSGSRSV");
    set.AppendChar(version);
    if (!doc.HasPath(set.View())) continue;
    if (int rc = Select(doc, set.View()); rc != kOk) return rc;
    break;
  }
  ByteString prefix, probe;
  prefix.Append(MessageSetTable::RequestKind(layout_.message_set));
  probe.Append(prefix);
  probe.Append("TRNRS/");
  if (doc.HasPath(probe.View())) {
    SetStatementType(0);
  } else {
    probe.Assign(prefix);
    probe.Append("ENDTRNRS/");
    if (doc.HasPath(probe.View())) SetStatementType(1);
  }
  if (StatementType() == 1) {
    prefix.Append("END");
    return ParseClosingInfo(doc, prefix);
  }
  return ParseStatement(doc, prefix);
}

int StatementServiceBase::EnterResponse(MarkupDocument& doc, const ByteString& prefix, bool status_required) {
  ByteString path(prefix);
  path.Append("TRNRS");
  const bool checked =
      status_required || path.View() == doc.ElementName() || doc.HasPath(path.View());
  if (checked) {
    if (int rc = CheckWrapperStatus(path.View()); rc != kOk) return rc;
  }
  path.Assign(prefix);
  path.Append("RS/CURDEF");
  if (int rc = ReadResponseValue(currency_code_, doc, path.View(), true); rc != kOk) return rc;
  return Select(doc, "..");
}

int StatementServiceBase::ParseClosingInfo(MarkupDocument& doc, const ByteString& prefix) {
  if (int rc = EnterResponse(doc, prefix); rc != kOk) return rc;
  if (int rc = ReadAccount(doc, true); rc != kOk) return rc;
  return ReadRecords(*this, layout_.closing_record, closings_, [this](ClosingInfo& c) { return c.Parse(*this); });
}

int StatementServiceBase::ParseStatement(MarkupDocument& doc, const ByteString& prefix) {
  if (int rc = EnterResponse(doc, prefix); rc != kOk) return rc;
  if (int rc = ReadAccount(doc, false); rc != kOk) return rc;
  if (int rc = ReadBalances(doc); rc != kOk) return rc;
  if (!doc.HasPath(layout_.transaction_list)) return kOk;
  if (int rc = Select(doc, layout_.transaction_list); rc != kOk) return rc;
  if (int rc = ReadDateRange(doc); rc != kOk) return rc;
  return ReadRecords(*this, layout_.transaction_record, transactions_,
                     [this](StatementTransaction& tx) { return tx.Parse(*this); });
}

int StatementServiceBase::ReadDateRange(MarkupDocument& doc) {
  if (int rc = ReadResponseValue(start_date_, doc, "DTSTART", true); rc != kOk) return rc;
  if (int rc = ReadResponseValue(end_date_, doc, "../DTEND", true); rc != kOk) return rc;
  return Select(doc, "..");
}

int StatementServiceBase::ReadBalances(MarkupDocument& doc) {
  if (int rc = ReadResponseValue(ledger_balance_, doc, "LEDGERBAL/BALAMT", true); rc != kOk) return rc;
  if (int rc = ReadResponseValue(ledger_balance_date_, doc, "../DTASOF", true); rc != kOk) return rc;
  if (int rc = Select(doc, "../.."); rc != kOk) return rc;
  return ReadAvailableBalance(doc);
}

int StatementServiceBase::ReadAvailableBalance(MarkupDocument& doc) {
  if (!doc.HasPath("AVAILBAL/")) {
    available_balance_.Clear();
    available_balance_date_.Clear();
    return kOk;
  }
  if (int rc = ReadResponseValue(available_balance_, doc, "AVAILBAL/BALAMT", true); rc != kOk) return rc;
  if (int rc = ReadResponseValue(available_balance_date_, doc, "../DTASOF", true); rc != kOk) return rc;
  return Select(doc, "../..");
}

int StatementServiceBase::CheckTxIndex(int32_t index) {
  if (index >= 0 && index < transactions_.Count()) return kOk;
  return ReportError(kErrIndexOutOfRange, kTextInvalidTxIndex);
}

int StatementServiceBase::CheckClosingIndex(int32_t index) {
  if (index >= 0 && index < closings_.Count()) return kOk;
  return ReportError(kErrIndexOutOfRange, kTextInvalidClosingIndex);
}

}  // namespace orvelan
