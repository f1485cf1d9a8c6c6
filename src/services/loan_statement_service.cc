#include "services/loan_statement_service.h"

#include "base/error_codes.h"
#include "core/setting_table.h"

namespace orvelan {
namespace {

constexpr const char* kAccountTags[] = {"LOANACCTID", "LOANACCTTYPE"};
// The balances of a cleared loan response read empty, not "0".
constexpr StatementLayout kLayout = {
    MessageSetTable::kLoanStatement, "LOANACCTFROM", kAccountTags, 2, /*second_version=*/false,
    /*transaction_images=*/true, /*forced_version=*/"211", "LOANTRANLIST", "LOANSTMTTRN", "LOANCLOSING", ""};

constexpr char kTextAccountIdMissing[] = "Missing required field: Loan Account Number is missing in the request.";
constexpr char kTextInvalidAccountType[] = "AccountType is invalid.";

}  // namespace

const char* const LoanStatementService::kLoanTypeNames[kLoanTypeCount] = {
    "AUTO", "CONSUMER", "MORTGAGE", "COMMERCIAL", "STUDENT", "MILITARY", "SMB", "CONSTR", "HOMEEQUITY"};

LoanStatementService::LoanStatementService() : StatementServiceBase(kLayout) {}

void LoanStatementService::RestoreDefaults() {
  account_id_.Clear();
  account_type_ = 0;
  StatementServiceBase::RestoreDefaults();
}

int LoanStatementService::ClearResponse() {
  principal_balance_.Clear();
  principal_balance_date_.Clear();
  principal_ytd_.Clear();
  principal_ltd_.Clear();
  marketing_info_.Clear();
  return StatementServiceBase::ClearResponse();
}

int LoanStatementService::HandleConfig(ConfigArgument& argument, const char*& out) {
  using R = Setting<LoanStatementService>;
  static constexpr R kSettings[] = {{"MarketingInfo", R::QueryText<&LoanStatementService::marketing_info_>}};
  if (const R* row = FindSetting(kSettings, argument)) return row->Run(*this, argument, out);
  return OFXClient::HandleConfig(argument, out);
}

int LoanStatementService::SetAccountType(int32_t type) {
  if (type < 0 || type >= kLoanTypeCount) return ReportError(kErrInvalidValue, kTextInvalidAccountType);
  account_type_ = type;
  return kOk;
}

void LoanStatementService::AccountValues(std::string_view* values) {
  values[0] = account_id_.View();
  values[1] = kLoanTypeNames[account_type_];
}

int LoanStatementService::CheckRequiredInputs() {
  return account_id_.IsEmpty() ? ReportError(kErrMissingField, kTextAccountIdMissing) : kOk;
}

int LoanStatementService::ParseResponse() {
  type_read_.Clear();
  const int rc = StatementServiceBase::ParseResponse();
  if (rc != kOk) return rc;
  // Exact names only, as for bank accounts; an unknown code keeps the type.
  for (int32_t i = 0; i < kLoanTypeCount; ++i) {
    if (type_read_.Equals(kLoanTypeNames[i])) {
      account_type_ = i;
      break;
    }
  }
  return kOk;
}

int LoanStatementService::ReadAccount(MarkupDocument& doc, bool) {
  if (int rc = ReadResponseValue(type_read_, doc, "LOANACCTFROM/LOANACCTTYPE", true); rc != kOk) return rc;
  if (int rc = ReadResponseValue(account_id_, doc, "../LOANACCTID", true); rc != kOk) return rc;
  return Select(doc, "../..");
}

int LoanStatementService::ReadBalances(MarkupDocument& doc) {
  if (int rc = ReadResponseValue(principal_balance_, doc, "PRINBAL/BALAMT", true); rc != kOk) return rc;
  if (int rc = ReadResponseValue(principal_balance_date_, doc, "../DTASOF", true); rc != kOk) return rc;
  if (int rc = ReadResponseValue(principal_ytd_, doc, "../PRINYTD", false); rc != kOk) return rc;
  if (int rc = ReadResponseValue(principal_ltd_, doc, "../PRINLTD", false); rc != kOk) return rc;
  if (int rc = Select(doc, "../.."); rc != kOk) return rc;
  if (int rc = ReadAvailableBalance(doc); rc != kOk) return rc;
  if (!doc.HasPath("MKTGINFO")) return kOk;
  if (int rc = ReadResponseValue(marketing_info_, doc, "MKTGINFO", true); rc != kOk) return rc;
  return Select(doc, "..");
}

}  // namespace orvelan
