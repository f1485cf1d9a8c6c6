#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "base/item_list.h"
#include "core/property_table.h"
#include "ofx/ofx_client.h"
#include "services/closing_info.h"
#include "services/statement_transaction.h"

// The statement of one bank account: its inputs (bank, account, date range)
// and its results (balances, transactions, closing periods). Results are
// read back by index; every indexed read checks the index first.
namespace orvelan {

class BankStatementService : public OFXClient {
 public:
  static constexpr int32_t kAccountTypeCount = 4;
  // OFX ACCTTYPE codes for AccountType 0 to 3.
  static const char* const kAccountTypeNames[kAccountTypeCount];

  BankStatementService() = default;

  int InitDefaults() override;
  // Adds "BankIdPresent".
  int HandleConfig(ConfigArgument& argument, const char*& out) override;

  // Restores the inputs of this layer and empties the results, then resets
  // the engine.
  int Reset() override;
  // Empties the results: balances "0", no transactions, no closing periods;
  // then the engine's response.
  int ClearResponse() override;

  const char* AccountId() const { return account_id_.Data(); }
  int SetAccountId(const char* value) { return account_id_.Assign(value); }
  // 0 checking, 1 savings, 2 money market, 3 credit line; others fail with
  // 202 and leave the value as it was.
  int32_t AccountType() const { return account_type_; }
  int SetAccountType(int32_t type);
  const char* BankId() const { return bank_id_.Data(); }
  int SetBankId(const char* value) { return bank_id_.Assign(value); }
  const char* StartDate() const { return start_date_.Data(); }
  int SetStartDate(const char* value) { return start_date_.Assign(value); }
  const char* EndDate() const { return end_date_.Data(); }
  int SetEndDate(const char* value) { return end_date_.Assign(value); }

  const char* AvailableBalance() const { return available_balance_.Data(); }
  const char* AvailableBalanceDate() const { return available_balance_date_.Data(); }
  const char* LedgerBalance() const { return ledger_balance_.Data(); }
  const char* LedgerBalanceDate() const { return ledger_balance_date_.Data(); }
  const char* CurrencyCode() const { return currency_code_.Data(); }

  // 0 when `index` names a transaction, else 432 "Invalid TxIndex (out of bounds).".
  int CheckTxIndex(int32_t index);
  int32_t TxCount() const { return transactions_.Count(); }
  const char* TxAggregate(int32_t index) { return Tx(index).aggregate.Data(); }
  const char* TxAmount(int32_t index) { return Tx(index).amount.Data(); }
  const char* TxCheckNumber(int32_t index) { return Tx(index).check_number.Data(); }
  const char* TxDateInitiated(int32_t index) { return Tx(index).date_initiated.Data(); }
  const char* TxDatePosted(int32_t index) { return Tx(index).date_posted.Data(); }
  const char* TxFITID(int32_t index) { return Tx(index).fitid.Data(); }
  const char* TxMemo(int32_t index) { return Tx(index).memo.Data(); }
  const char* TxPayeeName(int32_t index) { return Tx(index).payee_name.Data(); }
  int32_t TxType(int32_t index) { return Tx(index).type_index; }
  const char* TxTypeDescription(int32_t index) { return StatementTransaction::TypeDescription(Tx(index).type_index); }

  // 0 when `index` names a closing period, else 432
  // "Invalid ClosingInfoIndex (out of bounds).".
  int CheckClosingIndex(int32_t index);
  int32_t ClosingInfoCount() const { return closings_.Count(); }
  const char* ClosingInfoAggregate(int32_t index) { return Closing(index).aggregate.Data(); }
  const char* ClosingInfoBalanceClose(int32_t index) { return Closing(index).balance_close.Data(); }
  const char* ClosingInfoBalanceOpen(int32_t index) { return Closing(index).balance_open.Data(); }
  const char* ClosingInfoDateClose(int32_t index) { return Closing(index).date_close.Data(); }
  const char* ClosingInfoDateEnd(int32_t index) { return Closing(index).date_end.Data(); }
  const char* ClosingInfoDateOpen(int32_t index) { return Closing(index).date_open.Data(); }
  const char* ClosingInfoDateStart(int32_t index) { return Closing(index).date_start.Data(); }
  const char* ClosingInfoFITID(int32_t index) { return Closing(index).fitid.Data(); }
  const char* ClosingInfoImageRef(int32_t index) { return Closing(index).image_ref.Data(); }
  const char* ClosingInfoImageRefType(int32_t index) { return Closing(index).image_ref_type.Data(); }
  const char* ClosingInfoTotalCredits(int32_t index) { return Closing(index).total_credits.Data(); }
  const char* ClosingInfoTotalDebits(int32_t index) { return Closing(index).total_debits.Data(); }
  const char* ClosingInfoTotalFees(int32_t index) { return Closing(index).total_fees.Data(); }
  const char* ClosingInfoTotalInterest(int32_t index) { return Closing(index).total_interest.Data(); }

  // The results, for the response parser.
  ItemList<StatementTransaction>& Transactions() { return transactions_; }
  ItemList<ClosingInfo>& Closings() { return closings_; }

 private:
  void RestoreDefaults();
  // REQUIRES: the index passed its check.
  StatementTransaction& Tx(int32_t index) { return *transactions_.Item(index); }
  ClosingInfo& Closing(int32_t index) { return *closings_.Item(index); }

  ByteString account_id_;
  ByteString bank_id_;
  ByteString start_date_;
  ByteString end_date_;
  ByteString available_balance_;
  ByteString available_balance_date_;
  ByteString ledger_balance_;
  ByteString ledger_balance_date_;
  ByteString currency_code_;
  ItemList<StatementTransaction> transactions_;
  ItemList<ClosingInfo> closings_;
  int32_t account_type_ = 0;
  bool bank_id_present_ = true;  // an empty BankId is refused before a download
};

}  // namespace orvelan
