#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "services/statement_service_base.h"

// The statement of one loan account: the loan account and its type, the
// principal balances and the marketing text on top of what every statement
// has (StatementServiceBase). Loans speak OFX 2.1.1 only: every download
// sets OFXVersion to "211".
namespace orvelan {

class LoanStatementService : public StatementServiceBase {
 public:
  static constexpr int32_t kLoanTypeCount = 9;
  // OFX LOANACCTTYPE codes for AccountType 0 to 8.
  static const char* const kLoanTypeNames[kLoanTypeCount];

  LoanStatementService();

  // Adds "MarketingInfo" (a query answers it; a set changes nothing).
  int HandleConfig(ConfigArgument& argument, const char*& out) override;
  // Also empties the principal balances and the marketing text.
  int ClearResponse() override;
  // The walk, then AccountType from the LOANACCTTYPE read on the way.
  int ParseResponse() override;

  const char* AccountId() const { return account_id_.Data(); }
  int SetAccountId(const char* value) { return account_id_.Assign(value); }
  // 0..8, see kLoanTypeNames; others fail with 202 and leave the value.
  int32_t AccountType() const { return account_type_; }
  int SetAccountType(int32_t type);

  const char* PrincipalBalance() { return ShowAmount(shown_principal_, principal_balance_.View()); }
  const char* PrincipalBalanceDate() { return FormatDate(shown_principal_date_, principal_balance_date_.View()); }
  const char* TotalPrincipalLTD() { return ShowAmount(shown_ltd_, principal_ltd_.View()); }
  const char* TotalPrincipalYTD() { return ShowAmount(shown_ytd_, principal_ytd_.View()); }
  const char* MarketingInfo() const { return marketing_info_.Data(); }

 protected:
  void RestoreDefaults() override;
  void AccountValues(std::string_view* values) override;
  // 2000 for an empty AccountId.
  int CheckRequiredInputs() override;
  int ReadAccount(MarkupDocument& doc, bool closing) override;
  // PRINBAL, AVAILBAL and MKTGINFO.
  int ReadBalances(MarkupDocument& doc) override;

 private:
  ByteString account_id_;
  ByteString type_read_;  // LOANACCTTYPE of the response being read
  ByteString principal_balance_;
  ByteString principal_balance_date_;
  ByteString principal_ytd_;
  ByteString principal_ltd_;
  ByteString marketing_info_;
  ByteString shown_principal_, shown_principal_date_, shown_ltd_, shown_ytd_;
  int32_t account_type_ = 0;
};

}  // namespace orvelan
