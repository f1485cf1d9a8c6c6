#pragma once
#include <cstdint>
#include <string_view>

#include "base/byte_string.h"
#include "services/statement_service_base.h"

// The statement of one bank account: the bank, account and account type on
// top of what every statement has (StatementServiceBase).
namespace orvelan {

class BankStatementService : public StatementServiceBase {
 public:
  static constexpr int32_t kAccountTypeCount = 4;
  // OFX ACCTTYPE codes for AccountType 0 to 3.
  static const char* const kAccountTypeNames[kAccountTypeCount];

  BankStatementService();

  // Adds "BankIdPresent".
  int HandleConfig(ConfigArgument& argument, const char*& out) override;

  const char* AccountId() const { return account_id_.Data(); }
  int SetAccountId(const char* value) { return account_id_.Assign(value); }
  // 0 checking, 1 savings, 2 money market, 3 credit line; others fail with
  // 202 and leave the value as it was.
  int32_t AccountType() const { return account_type_; }
  int SetAccountType(int32_t type);
  const char* BankId() const { return bank_id_.Data(); }
  int SetBankId(const char* value) { return bank_id_.Assign(value); }
  bool BankIdPresent() const { return bank_id_present_; }

 protected:
  void RestoreDefaults() override;
  void AccountValues(std::string_view* values) override;
  // 2000 for an empty BankId (while BankIdPresent) or AccountId.
  int CheckRequiredInputs() override;
  // ACCTTYPE2 or ACCTTYPE, then ACCTID, of a transaction statement.
  int ReadAccount(MarkupDocument& doc, bool closing) override;

 private:
  ByteString account_id_;
  ByteString bank_id_;
  int32_t account_type_ = 0;
  bool bank_id_present_ = true;  // an empty BankId is refused before a download
};

}  // namespace orvelan
