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

  // ---- OFX engine hooks ----

  // The STMTTRNRQ or STMTENDTRNRQ of the current StatementType in the
  // dialect of OFXVersion; 202 for a version that begins with neither "1"
  // nor "2".
  int BuildMessageSets(ByteString& out, bool wrapped) override;
  // Reads either kind of statement response from the root down.
  int ParseResponse() override;

  // ---- Methods ----

  // Required inputs (2000), then the exchange.
  int GetStatement();
  int GetClosingInfo();

  // ---- Inputs ----

  const char* AccountId() const { return account_id_.Data(); }
  int SetAccountId(const char* value) { return account_id_.Assign(value); }
  // 0 checking, 1 savings, 2 money market, 3 credit line; others fail with
  // 202 and leave the value as it was.
  int32_t AccountType() const { return account_type_; }
  int SetAccountType(int32_t type);
  const char* BankId() const { return bank_id_.Data(); }
  int SetBankId(const char* value) { return bank_id_.Assign(value); }
  bool BankIdPresent() const { return bank_id_present_; }
  // The host's date in DateFormat; "" clears. 676 for a text the format
  // cannot read (the old value stays). Reading gives the display form.
  const char* StartDate();
  int SetStartDate(const char* value) { return SetUserDate(start_date_, value); }
  const char* EndDate();
  int SetEndDate(const char* value) { return SetUserDate(end_date_, value); }
  // The stored OFX dates.
  const char* StartDateOFX() const { return start_date_.Data(); }
  const char* EndDateOFX() const { return end_date_.Data(); }

  // ---- Results, in display form ----

  const char* AvailableBalance() { return Amount(kShowAvailableBalance, available_balance_.Data()); }
  const char* AvailableBalanceDate() { return Date(kShowAvailableBalanceDate, available_balance_date_.Data()); }
  const char* LedgerBalance() { return Amount(kShowLedgerBalance, ledger_balance_.Data()); }
  const char* LedgerBalanceDate() { return Date(kShowLedgerBalanceDate, ledger_balance_date_.Data()); }
  const char* CurrencyCode() const { return currency_code_.Data(); }

  // 0 when `index` names a transaction, else 432 "Invalid TxIndex (out of bounds).".
  int CheckTxIndex(int32_t index);
  int32_t TxCount() const { return transactions_.Count(); }
  const char* TxAggregate(int32_t index) { return Tx(index).Aggregate(shown_[kShowTxAggregate]); }
  const char* TxAmount(int32_t index) { return TxAmountOf(kShowTxAmount, Tx(index), StatementTransaction::kAmount); }
  const char* TxCheckNumber(int32_t index) { return Tx(index).Text(StatementTransaction::kCheckNumber); }
  const char* TxDateInitiated(int32_t index) {
    return TxDateOf(kShowTxDateInitiated, Tx(index), StatementTransaction::kDateInitiated);
  }
  const char* TxDatePosted(int32_t index) {
    return TxDateOf(kShowTxDatePosted, Tx(index), StatementTransaction::kDatePosted);
  }
  const char* TxFITID(int32_t index) { return Tx(index).Text(StatementTransaction::kFITID); }
  const char* TxMemo(int32_t index) { return Tx(index).Text(StatementTransaction::kMemo); }
  const char* TxPayeeName(int32_t index) { return Tx(index).Text(StatementTransaction::kPayeeName); }
  int32_t TxType(int32_t index) { return Tx(index).type_index; }
  const char* TxTypeDescription(int32_t index) { return StatementTransaction::TypeDescription(Tx(index).type_index); }

  // 0 when `index` names a closing period, else 432
  // "Invalid ClosingInfoIndex (out of bounds).".
  int CheckClosingIndex(int32_t index);
  int32_t ClosingInfoCount() const { return closings_.Count(); }
  const char* ClosingInfoAggregate(int32_t index) { return Closing(index).Aggregate(shown_[kShowClosingAggregate]); }
  const char* ClosingInfoBalanceClose(int32_t index) {
    return ClosingAmount(kShowBalanceClose, index, ClosingInfo::kBalanceClose);
  }
  const char* ClosingInfoBalanceOpen(int32_t index) {
    return ClosingAmount(kShowBalanceOpen, index, ClosingInfo::kBalanceOpen);
  }
  const char* ClosingInfoDateClose(int32_t index) {
    return ClosingDate(kShowDateClose, index, ClosingInfo::kDateClose);
  }
  const char* ClosingInfoDateEnd(int32_t index) {
    return ClosingDate(kShowDateEnd, index, ClosingInfo::kDateEnd);
  }
  const char* ClosingInfoDateOpen(int32_t index) {
    return ClosingDate(kShowDateOpen, index, ClosingInfo::kDateOpen);
  }
  const char* ClosingInfoDateStart(int32_t index) {
    return ClosingDate(kShowDateStart, index, ClosingInfo::kDateStart);
  }
  const char* ClosingInfoFITID(int32_t index) { return Closing(index).Text(ClosingInfo::kFITID); }
  const char* ClosingInfoImageRef(int32_t index) { return Closing(index).Text(ClosingInfo::kImageRef); }
  const char* ClosingInfoImageRefType(int32_t index) { return Closing(index).Text(ClosingInfo::kImageRefType); }
  const char* ClosingInfoTotalCredits(int32_t index) {
    return ClosingAmount(kShowTotalCredits, index, ClosingInfo::kTotalCredits);
  }
  const char* ClosingInfoTotalDebits(int32_t index) {
    return ClosingAmount(kShowTotalDebits, index, ClosingInfo::kTotalDebits);
  }
  const char* ClosingInfoTotalFees(int32_t index) {
    return ClosingAmount(kShowTotalFees, index, ClosingInfo::kTotalFees);
  }
  const char* ClosingInfoTotalInterest(int32_t index) {
    return ClosingAmount(kShowTotalInterest, index, ClosingInfo::kTotalInterest);
  }

  // The results, for the response parser and tests.
  ItemList<StatementTransaction>& Transactions() { return transactions_; }
  ItemList<ClosingInfo>& Closings() { return closings_; }

 private:
  // One display buffer per converted property, so a text handed out stays
  // valid until the same property is read again.
  enum Shown : int {
    kShowStartDate,
    kShowEndDate,
    kShowAvailableBalance,
    kShowAvailableBalanceDate,
    kShowLedgerBalance,
    kShowLedgerBalanceDate,
    kShowTxAggregate,
    kShowTxAmount,
    kShowTxDateInitiated,
    kShowTxDatePosted,
    kShowClosingAggregate,
    kShowBalanceClose,
    kShowBalanceOpen,
    kShowDateClose,
    kShowDateEnd,
    kShowDateOpen,
    kShowDateStart,
    kShowTotalCredits,
    kShowTotalDebits,
    kShowTotalFees,
    kShowTotalInterest,
    kShownCount
  };

  void RestoreDefaults();
  int SetUserDate(ByteString& field, const char* text);
  int CheckRequiredInputs();
  int ParseClosingInfo();
  int ParseTransactions();
  // ReportError with the document's code and text.
  int DocumentError(int rc);
  const char* Amount(Shown slot, const char* raw);
  const char* Date(Shown slot, const char* raw);
  // A record that was never parsed (a clone) shows no amounts or dates.
  const char* TxAmountOf(Shown slot, const StatementTransaction& tx, StatementTransaction::Field field) {
    return tx.engine == nullptr ? "" : Amount(slot, tx.Text(field));
  }
  const char* TxDateOf(Shown slot, const StatementTransaction& tx, StatementTransaction::Field field) {
    return tx.engine == nullptr ? "" : Date(slot, tx.Text(field));
  }
  const char* ClosingAmount(Shown slot, int32_t index, ClosingInfo::Field field) {
    const ClosingInfo& c = Closing(index);
    return c.engine == nullptr ? "" : Amount(slot, c.Text(field));
  }
  const char* ClosingDate(Shown slot, int32_t index, ClosingInfo::Field field) {
    const ClosingInfo& c = Closing(index);
    return c.engine == nullptr ? "" : Date(slot, c.Text(field));
  }
  // REQUIRES: the index passed its check.
  StatementTransaction& Tx(int32_t index) { return *transactions_.Item(index); }
  ClosingInfo& Closing(int32_t index) { return *closings_.Item(index); }

  RequestTemplate request_template_;
  ByteString shown_[kShownCount];
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
