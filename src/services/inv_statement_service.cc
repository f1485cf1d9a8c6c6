#include "services/inv_statement_service.h"

#include "base/error_codes.h"

namespace orvelan {
namespace {

// Every child of the cursor's element from child skip + 1 on, as records.
template <class List>
int ReadAll(OFXClient& client, List& list, int32_t skip = 0) {
  return ReadRecords(client, "", list, [&client](auto& record) { return record.Parse(client); }, skip);
}

constexpr const char* kAccountTags[] = {"BROKERID", "ACCTID"};
// Statement images are asked for by AppendStatementOptions, in 2.x only.
constexpr StatementLayout kLayout = {
    MessageSetTable::kInvestmentStatement, "INVACCTFROM", kAccountTags, 2, /*second_version=*/false,
    /*transaction_images=*/false, /*forced_version=*/nullptr, "INVTRANLIST", "", "INVCLOSING", "0"};

constexpr char kTextBrokerIdMissing[] = "Missing required field: Broker Id is missing in the request.";
constexpr char kTextAccountIdMissing[] = "Missing required field: Account Number is missing in the request.";
constexpr char kTextInvalidTxIndex[] = "Invalid TxIndex (out of bounds).";
constexpr char kTextInvalidPosIndex[] = "Invalid PosIndex (out of bounds).";
constexpr char kTextInvalidOOIndex[] = "Invalid OOIndex (out of bounds).";
constexpr char kTextInvalidBalIndex[] = "Invalid BalIndex (out of bounds).";
constexpr char kTextInvalidSecIndex[] = "Invalid SecIndex (out of bounds).";

const char* YesNo(int32_t flag) { return flag != 0 ? "Y" : "N"; }

}  // namespace

InvStatementService::InvStatementService() : StatementServiceBase(kLayout) {}

void InvStatementService::RestoreDefaults() {
  account_id_.Clear();
  broker_id_.Clear();
  as_of_date_.Clear();
  include_open_orders_ = include_balances_ = include_transactions_ = include_positions_ = 1;
  StatementServiceBase::RestoreDefaults();
}

int InvStatementService::ClearResponse() {
  marketing_info_.Clear();
  statement_date_.Clear();
  for (ByteString& balance : cash_balances_) balance.Assign("0");
  transactions_.Clear();
  positions_.Clear();
  open_orders_.Clear();
  balances_.Clear();
  securities_.Clear();
  security_index_.clear();
  return StatementServiceBase::ClearResponse();
}

void InvStatementService::AccountValues(std::string_view* values) {
  values[0] = broker_id_.View();
  values[1] = account_id_.View();
}

int InvStatementService::CheckRequiredInputs() {
  if (broker_id_.IsEmpty()) return ReportError(kErrMissingField, kTextBrokerIdMissing);
  if (account_id_.IsEmpty()) return ReportError(kErrMissingField, kTextAccountIdMissing);
  return kOk;
}

int InvStatementService::AppendStatementOptions(ByteString& out, bool xml) {
  int rc = out.Append("<INCTRAN>\r\n") | AppendDateRange(out, xml) |
           AppendRequestElement(out, xml, "INCLUDE", YesNo(include_transactions_)) | out.Append("</INCTRAN>\r\n");
  rc |= AppendRequestElement(out, xml, "INCOO", YesNo(include_open_orders_)) | out.Append("<INCPOS>\r\n");
  if (!as_of_date_.IsEmpty()) rc |= AppendRequestElement(out, xml, "DTASOF", as_of_date_.View());
  rc |= AppendRequestElement(out, xml, "INCLUDE", YesNo(include_positions_)) | out.Append("</INCPOS>\r\n");
  rc |= AppendRequestElement(out, xml, "INCBAL", YesNo(include_balances_));
  if (xml && IncludeImages()) rc |= out.Append("<INCTRANIMG>Y</INCTRANIMG>\r\n");
  return rc;
}

// ---- Response ----

int InvStatementService::ParseStatement(MarkupDocument& doc, const ByteString& prefix) {
  // A file may carry the statement without its transaction wrapper.
  if (int rc = EnterResponse(doc, prefix, false); rc != kOk) return rc;
  if (int rc = ReadResponseValue(statement_date_, doc, "DTASOF", true); rc != kOk) return rc;
  if (int rc = ReadResponseValue(marketing_info_, doc, "../MKTGINFO", false); rc != kOk) return rc;
  if (int rc = ReadResponseValue(account_id_, doc, "../INVACCTFROM/ACCTID", true); rc != kOk) return rc;
  if (int rc = ReadResponseValue(broker_id_, doc, "../BROKERID", true); rc != kOk) return rc;
  if (int rc = Select(doc, "../.."); rc != kOk) return rc;

  // Each list is read from and back to INVSTMTRS.
  if (doc.SelectPathIfPresent("INVTRANLIST")) {
    if (int rc = ReadDateRange(doc); rc != kOk) return rc;
    // Every child after the two dates, whatever its name.
    if (int rc = ReadAll(*this, transactions_, 2); rc != kOk) return rc;
    if (int rc = Select(doc, ".."); rc != kOk) return rc;
  }
  if (doc.SelectPathIfPresent("INVPOSLIST")) {
    if (int rc = ReadAll(*this, positions_); rc != kOk) return rc;
    if (int rc = Select(doc, ".."); rc != kOk) return rc;
  }
  if (doc.SelectPathIfPresent("INVBAL")) {
    if (int rc = ReadBalanceAggregate(doc); rc != kOk) return rc;
  }
  if (doc.SelectPathIfPresent("INVOOLIST")) {
    if (int rc = ReadAll(*this, open_orders_); rc != kOk) return rc;
    if (int rc = Select(doc, ".."); rc != kOk) return rc;
  }
  // The securities come in their own message set.
  if (int rc = Select(doc, "/"); rc != kOk) return rc;
  if (!doc.SelectPathIfPresent("SECLISTMSGSRSV1/SECLIST")) return kOk;
  return ReadAll(*this, securities_);
}

// From INVBAL back to INVSTMTRS.
int InvStatementService::ReadBalanceAggregate(MarkupDocument& doc) {
  constexpr const char* kPaths[kCashBalanceCount] = {"AVAILCASH", "../MARGINBALANCE", "../SHORTBALANCE",
                                                     "../BUYPOWER"};
  for (int b = 0; b < kCashBalanceCount; ++b) {
    // BUYPOWER alone is optional; an absent one reads as an empty amount.
    if (int rc = ReadResponseValue(cash_balances_[b], doc, kPaths[b], b != kBuyingPower); rc != kOk) return rc;
  }
  if (int rc = Select(doc, ".."); rc != kOk) return rc;
  if (doc.SelectPathIfPresent("BALLIST")) {
    if (int rc = ReadAll(*this, balances_); rc != kOk) return rc;
    if (int rc = Select(doc, ".."); rc != kOk) return rc;
  }
  return Select(doc, "..");
}

const char* InvStatementService::BalAmount(int32_t index) {
  const InvestmentBalance& b = Bal(index);
  if (b.type_index != InvestmentBalance::kDollar) return b.Text(InvestmentBalance::kValue);
  return AmountOf(b, InvestmentBalance::kValue, kBalAmount);
}

int32_t InvStatementService::FindSecurity(std::string_view id) {
  if (security_index_.empty()) {
    ByteString text;
    for (int32_t i = 0; i < securities_.Count(); ++i) {
      security_index_.emplace(securities_.Item(i)->SecurityId(text), i);  // the first of a repeated id wins
    }
  }
  const auto found = security_index_.find(std::string(id));
  return found == security_index_.end() ? -1 : found->second;
}

// ---- Index checks ----

int InvStatementService::CheckTxIndex(int32_t index) {
  if (index >= 0 && index < transactions_.Count()) return kOk;
  return ReportError(kErrIndexOutOfRange, kTextInvalidTxIndex);
}

int InvStatementService::CheckPosIndex(int32_t index) {
  if (index >= 0 && index < positions_.Count()) return kOk;
  return ReportError(kErrIndexOutOfRange, kTextInvalidPosIndex);
}

int InvStatementService::CheckOOIndex(int32_t index) {
  if (index >= 0 && index < open_orders_.Count()) return kOk;
  return ReportError(kErrIndexOutOfRange, kTextInvalidOOIndex);
}

int InvStatementService::CheckBalIndex(int32_t index) {
  if (index >= 0 && index < balances_.Count()) return kOk;
  return ReportError(kErrIndexOutOfRange, kTextInvalidBalIndex);
}

int InvStatementService::CheckSecIndex(int32_t index) {
  if (index >= 0 && index < securities_.Count()) return kOk;
  return ReportError(kErrIndexOutOfRange, kTextInvalidSecIndex);
}

}  // namespace orvelan
