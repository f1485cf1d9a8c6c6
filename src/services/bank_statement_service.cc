#include "services/bank_statement_service.h"

#include "base/error_codes.h"
#include "core/setting_table.h"

namespace orvelan {
namespace {

constexpr const char* kAccountTags[] = {"BANKID", "ACCTID", "ACCTTYPE"};
constexpr StatementLayout kLayout = {
    MessageSetTable::kStatement, "BANKACCTFROM", kAccountTags, 3, /*second_version=*/true,
    /*transaction_images=*/true, /*forced_version=*/nullptr, "BANKTRANLIST", "STMTTRN", "CLOSING", "0"};

constexpr char kTextBankIdMissing[] = "Missing required field: Bank Id is missing in the request.";
constexpr char kTextAccountIdMissing[] = "Missing required field: Account Number is missing in the request.";
constexpr char kTextInvalidAccountType[] = "AccountType is invalid.";

}  // namespace

const char* const BankStatementService::kAccountTypeNames[kAccountTypeCount] = {"CHECKING", "SAVINGS", "MONEYMRKT",
                                                                                "CREDITLINE"};

BankStatementService::BankStatementService() : StatementServiceBase(kLayout) {}

void BankStatementService::RestoreDefaults() {
  account_id_.Clear();
  account_type_ = 0;
  bank_id_.Clear();
  bank_id_present_ = true;
  StatementServiceBase::RestoreDefaults();
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

void BankStatementService::AccountValues(std::string_view* values) {
  values[0] = bank_id_.View();
  values[1] = account_id_.View();
  values[2] = kAccountTypeNames[account_type_];
}

int BankStatementService::CheckRequiredInputs() {
  if (bank_id_.IsEmpty() && bank_id_present_) return ReportError(kErrMissingField, kTextBankIdMissing);
  if (account_id_.IsEmpty()) return ReportError(kErrMissingField, kTextAccountIdMissing);
  return kOk;
}

int BankStatementService::ReadAccount(MarkupDocument& doc, bool closing) {
  if (closing) return kOk;
  ByteString type;
  const char* path = doc.HasPath("BANKACCTFROM/ACCTTYPE2") ? "BANKACCTFROM/ACCTTYPE2" : "BANKACCTFROM/ACCTTYPE";
  if (int rc = ReadResponseValue(type, doc, path, true); rc != kOk) return rc;
  // Exact names only: a bank's lower-case code is not trusted to mean the same.
  for (int32_t i = 0; i < kAccountTypeCount; ++i) {
    if (type.Equals(kAccountTypeNames[i])) {
      account_type_ = i;
      break;
    }
  }
  if (int rc = ReadResponseValue(account_id_, doc, "../ACCTID", true); rc != kOk) return rc;
  return Select(doc, "../..");
}

}  // namespace orvelan
