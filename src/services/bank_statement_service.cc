#include "services/bank_statement_service.h"

#include <cstring>
#include <string_view>

#include "base/error_codes.h"
#include "core/setting_table.h"

namespace orvelan {
namespace {

// The request aggregates, by dialect and statement type. Slots: 0 TRNUID,
// 1 BANKID, 2 ACCTID, 3 ACCTTYPE, 4 DTSTART line, 5 DTEND line, 6 image flag.
constexpr char kSgmlTransactions[] =
    "<STMTTRNRQ>\r\n<TRNUID>~0~\r\n<STMTRQ>\r\n<BANKACCTFROM>\r\n<BANKID>~1~\r\n<ACCTID>~2~\r\n"
    "<ACCTTYPE>~3~\r\n</BANKACCTFROM>\r\n<INCTRAN>\r\n~4~~5~<INCLUDE>Y\r\n</INCTRAN>\r\n~6~</STMTRQ>\r\n"
    "</STMTTRNRQ>\r\n";
constexpr char kSgmlClosing[] =
    "<STMTENDTRNRQ>\r\n<TRNUID>~0~\r\n<STMTENDRQ>\r\n<BANKACCTFROM>\r\n<BANKID>~1~\r\n<ACCTID>~2~\r\n"
    "<ACCTTYPE>~3~\r\n</BANKACCTFROM>\r\n~4~~5~</STMTENDRQ>\r\n</STMTENDTRNRQ>\r\n";
constexpr char kXmlTransactions[] =
    "<STMTTRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<STMTRQ>\r\n<BANKACCTFROM>\r\n<BANKID>~1~</BANKID>\r\n"
    "<ACCTID>~2~</ACCTID>\r\n<ACCTTYPE>~3~</ACCTTYPE>\r\n</BANKACCTFROM>\r\n<INCTRAN>\r\n~4~~5~"
    "<INCLUDE>Y</INCLUDE>\r\n</INCTRAN>\r\n~6~</STMTRQ>\r\n</STMTTRNRQ>\r\n";
constexpr char kXmlClosing[] =
    "<STMTENDTRNRQ>\r\n<TRNUID>~0~</TRNUID>\r\n<STMTENDRQ>\r\n<BANKACCTFROM>\r\n<BANKID>~1~</BANKID>\r\n"
    "<ACCTID>~2~</ACCTID>\r\n<ACCTTYPE>~3~</ACCTTYPE>\r\n</BANKACCTFROM>\r\n~4~~5~~6~</STMTENDRQ>\r\n"
    "</STMTENDTRNRQ>\r\n";
constexpr int32_t kSlotCount = 7;

constexpr char kTextBankIdMissing[] = "Missing required field: Bank Id is missing in the request.";
constexpr char kTextAccountIdMissing[] = "Missing required field: Account Number is missing in the request.";
constexpr char kTextBadVersion[] = "OFXVersion must begin with \"1\" or \"2\".";
constexpr char kTextInvalidAccountType[] = "AccountType is invalid.";
constexpr char kTextInvalidTxIndex[] = "Invalid TxIndex (out of bounds).";
constexpr char kTextInvalidClosingIndex[] = "Invalid ClosingInfoIndex (out of bounds).";

}  // namespace

const char* const BankStatementService::kAccountTypeNames[kAccountTypeCount] = {"CHECKING", "SAVINGS", "MONEYMRKT",
                                                                               "CREDITLINE"};

int BankStatementService::InitDefaults() {
  if (OFXClient::InitDefaults() == 0) return 0;
  RestoreDefaults();
  account_type_ = 0;
  return 1;
}

int BankStatementService::Reset() {
  RestoreDefaults();
  return OFXClient::Reset();
}

void BankStatementService::RestoreDefaults() {
  account_id_.Clear();
  account_type_ = 0;
  bank_id_.Clear();
  end_date_.Clear();
  start_date_.Clear();
  bank_id_present_ = true;
  ClearResponse();
}

int BankStatementService::ClearResponse() {
  available_balance_.Assign("0");
  available_balance_date_.Clear();
  ledger_balance_.Assign("0");
  ledger_balance_date_.Clear();
  currency_code_.Clear();
  transactions_.Clear();
  closings_.Clear();
  return OFXClient::ClearResponse();
}

int BankStatementService::HandleConfig(ConfigArgument& argument, const char*& out) {
  using R = Setting<BankStatementService>;
  static constexpr R kSettings[] = {R::OneZero<&BankStatementService::bank_id_present_>("BankIdPresent")};
  if (const R* row = FindSetting(kSettings, argument)) return row->Run(*this, argument, out);
  return OFXClient::HandleConfig(argument, out);
}

int BankStatementService::SetAccountType(int32_t type) {
  if (type < 0 || type >= kAccountTypeCount) return ReportError(kErrInvalidValue, kTextInvalidAccountType);
  account_type_ = type;
  return kOk;
}

int BankStatementService::SetUserDate(ByteString& field, const char* text) {
  if (text == nullptr || *text == '\0') return field.Clear();
  ByteString parsed;
  if (int rc = ParseUserDate(parsed, text); rc != kOk) return rc;
  field.Swap(parsed);
  return kOk;
}

const char* BankStatementService::StartDate() { return Date(kShowStartDate, start_date_.Data()); }

const char* BankStatementService::EndDate() { return Date(kShowEndDate, end_date_.Data()); }

const char* BankStatementService::Amount(Shown slot, const char* raw) {
  shown_[slot].Assign(FormatAmount(raw));
  return shown_[slot].Data();
}

const char* BankStatementService::Date(Shown slot, const char* raw) { return FormatDate(shown_[slot], raw); }

// ---- Request ----

int BankStatementService::BuildMessageSets(ByteString& out, bool wrapped) {
  const char version = OFXVersion()[0];
  const bool xml = version == '2';
  const bool closing = StatementType() == 1;
  if (version == '1' || xml) {
    const char* text = xml ? (closing ? kXmlClosing : kXmlTransactions) : (closing ? kSgmlClosing : kSgmlTransactions);
    if (int rc = request_template_.Load(text); rc != kOk) return ReportError(rc, nullptr);
  } else {
    // No template would match what the engine sends around it.
    return ReportError(kErrInvalidValue, kTextBadVersion);
  }

  ByteString trnuid, start, end, images;
  if (int rc = NewTransactionId(trnuid); rc != kOk) return rc;
  auto date_line = [xml](ByteString& line, const char* name, const ByteString& date) {
    if (date.IsEmpty()) return kOk;
    int rc = line.Append("<") | line.Append(name) | line.Append(">") | line.Append(date);
    if (xml) rc |= line.Append("</") | line.Append(name) | line.Append(">");
    return rc | line.Append("\r\n");
  };
  int rc = date_line(start, "DTSTART", start_date_) | date_line(end, "DTEND", end_date_);
  if (IncludeImages()) {
    rc |= images.Append(closing ? "<INCSTMTIMG>Y</INCSTMTIMG>\r\n" : "<INCTRANIMG>Y</INCTRANIMG>\r\n");
  }
  if (rc != kOk) return ReportError(kErrOutOfMemory, nullptr);
  const std::string_view slots[kSlotCount] = {trnuid.View(), bank_id_.View(), account_id_.View(),
                                              kAccountTypeNames[account_type_], start.View(), end.View(),
                                              images.View()};
  if (!wrapped) {
    if (int rc2 = request_template_.Expand(out, slots, kSlotCount, true); rc2 != kOk) return ReportError(rc2, nullptr);
    return kOk;
  }
  rc = out.Append("<BANKMSGSRQV1>\r\n") | request_template_.Expand(out, slots, kSlotCount, false) |
       out.Append("</BANKMSGSRQV1>\r\n");
  return rc == kOk ? kOk : ReportError(kErrOutOfMemory, nullptr);
}

int BankStatementService::CheckRequiredInputs() {
  if (bank_id_.IsEmpty() && bank_id_present_) return ReportError(kErrMissingField, kTextBankIdMissing);
  if (account_id_.IsEmpty()) return ReportError(kErrMissingField, kTextAccountIdMissing);
  return kOk;
}

int BankStatementService::GetStatement() {
  if (int rc = SetStatementType(0); rc != kOk) return rc;
  if (int rc = CheckRequiredInputs(); rc != kOk) return rc;
  return Exchange();
}

int BankStatementService::GetClosingInfo() {
  if (int rc = SetStatementType(1); rc != kOk) return rc;
  if (int rc = CheckRequiredInputs(); rc != kOk) return rc;
  return Exchange();
}

// ---- Response ----

int BankStatementService::DocumentError(int rc) { return ReportError(rc, Document().GetLastError()); }

int BankStatementService::ParseResponse() {
  MarkupDocument& doc = Document();
  if (doc.HasPath("BANKMSGSRSV1")) {
    if (int rc = doc.SelectPath("BANKMSGSRSV1"); rc != kOk) return DocumentError(rc);
  } else if (doc.HasPath("BANKMSGSRSV2")) {
    if (int rc = doc.SelectPath("BANKMSGSRSV2"); rc != kOk) return DocumentError(rc);
  }
  if (doc.HasPath("STMTTRNRS/")) {
    SetStatementType(0);
  } else if (doc.HasPath("STMTENDTRNRS/")) {
    SetStatementType(1);
  }
  return StatementType() == 1 ? ParseClosingInfo() : ParseTransactions();
}

int BankStatementService::ParseClosingInfo() {
  MarkupDocument& doc = Document();
  const bool at_wrapper = std::strcmp(doc.ElementName(), "STMTENDTRNRS") == 0;
  if (int rc = CheckStatus(at_wrapper ? "/STMTENDTRNRS" : "STMTENDTRNRS"); rc != kOk) return rc;
  if (int rc = ReadResponseValue(currency_code_, doc, "STMTENDRS/CURDEF", true); rc != kOk) return rc;
  if (int rc = doc.SelectPath(".."); rc != kOk) return DocumentError(rc);
  ByteString step;
  for (int32_t n = 1;; ++n) {
    step.Assign("CLOSING[");
    step.AppendInt(n);
    step.AppendChar(']');
    if (!doc.SelectPathIfPresent(step.View())) return kOk;
    if (closings_.SetCount(n) != kOk) return ReportError(kErrOutOfMemory, nullptr);
    if (int rc = closings_.Last()->Parse(*this); rc != kOk) return rc;
    if (int rc = doc.SelectPath(".."); rc != kOk) return DocumentError(rc);
  }
}

int BankStatementService::ParseTransactions() {
  MarkupDocument& doc = Document();
  const bool at_wrapper = std::strcmp(doc.ElementName(), "STMTTRNRS") == 0;
  if (int rc = CheckStatus(at_wrapper ? "/STMTTRNRS" : "STMTTRNRS"); rc != kOk) return rc;
  if (int rc = ReadResponseValue(currency_code_, doc, "STMTRS/CURDEF", true); rc != kOk) return rc;

  ByteString type;
  const char* type_path =
      doc.HasPath("../BANKACCTFROM/ACCTTYPE2") ? "../BANKACCTFROM/ACCTTYPE2" : "../BANKACCTFROM/ACCTTYPE";
  if (int rc = ReadResponseValue(type, doc, type_path, true); rc != kOk) return rc;
  // Exact names only: a bank's lower-case code is not trusted to mean the same.
  for (int32_t i = 0; i < kAccountTypeCount; ++i) {
    if (type.Equals(kAccountTypeNames[i])) {
      account_type_ = i;
      break;
    }
  }
  if (int rc = ReadResponseValue(account_id_, doc, "../ACCTID", true); rc != kOk) return rc;
  if (int rc = ReadResponseValue(ledger_balance_, doc, "../../LEDGERBAL/BALAMT", true); rc != kOk) return rc;
  if (int rc = ReadResponseValue(ledger_balance_date_, doc, "../DTASOF", true); rc != kOk) return rc;
  if (doc.HasPath("../../AVAILBAL/")) {
    if (int rc = ReadResponseValue(available_balance_, doc, "../../AVAILBAL/BALAMT", true); rc != kOk) return rc;
    if (int rc = ReadResponseValue(available_balance_date_, doc, "../DTASOF", true); rc != kOk) return rc;
  } else {
    available_balance_.Clear();
    available_balance_date_.Clear();
  }
  if (!doc.HasPath("../../BANKTRANLIST")) return kOk;
  if (int rc = doc.SelectPath("../../BANKTRANLIST"); rc != kOk) return DocumentError(rc);
  if (int rc = ReadResponseValue(start_date_, doc, "DTSTART", true); rc != kOk) return rc;
  if (int rc = ReadResponseValue(end_date_, doc, "../DTEND", true); rc != kOk) return rc;
  if (int rc = doc.SelectPath(".."); rc != kOk) return DocumentError(rc);
  ByteString step;
  for (int32_t n = 1;; ++n) {
    step.Assign("STMTTRN[");
    step.AppendInt(n);
    step.AppendChar(']');
    if (!doc.SelectPathIfPresent(step.View())) return kOk;
    if (transactions_.SetCount(n) != kOk) return ReportError(kErrOutOfMemory, nullptr);
    if (int rc = transactions_.Last()->Parse(*this); rc != kOk) return rc;
    if (int rc = doc.SelectPath(".."); rc != kOk) return DocumentError(rc);
  }
}

int BankStatementService::CheckTxIndex(int32_t index) {
  if (index >= 0 && index < transactions_.Count()) return kOk;
  return ReportError(kErrIndexOutOfRange, kTextInvalidTxIndex);
}

int BankStatementService::CheckClosingIndex(int32_t index) {
  if (index >= 0 && index < closings_.Count()) return kOk;
  return ReportError(kErrIndexOutOfRange, kTextInvalidClosingIndex);
}

}  // namespace orvelan
