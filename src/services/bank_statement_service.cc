#include "services/bank_statement_service.h"

namespace orvelan {
namespace {

constexpr int kErrInvalidValue = 202;
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
  if (argument.NameIs("BankIdPresent")) {
    if (argument.IsQuery()) return ReturnConfigValue(out, bank_id_present_ ? 1 : 0);
    bank_id_present_ = argument.ValueAsBool();
    return kOk;
  }
  return OFXClient::HandleConfig(argument, out);
}

int BankStatementService::SetAccountType(int32_t type) {
  if (type < 0 || type >= kAccountTypeCount) return ReportError(kErrInvalidValue, kTextInvalidAccountType);
  account_type_ = type;
  return kOk;
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
