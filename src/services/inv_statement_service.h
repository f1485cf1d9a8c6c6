#pragma once
#include <cstdint>
#include <string>
#include <unordered_map>

#include "base/byte_string.h"
#include "base/record_list.h"
#include "services/investment_records.h"
#include "services/statement_service_base.h"

// The statement of one brokerage account: what it holds (positions), what it
// did (transactions of every kind), what it has asked for (open orders), its
// cash balances, and the securities all of these name, which arrive in their
// own message set. The date range and the closing information are the
// statement family's (StatementServiceBase). No settings of its own.
namespace orvelan {

class InvStatementService : public StatementServiceBase {
 public:
  InvStatementService();

  int ClearResponse() override;

  // ---- Inputs ----

  const char* AccountId() const { return account_id_.Data(); }
  int SetAccountId(const char* value) { return account_id_.Assign(value); }
  const char* BrokerId() const { return broker_id_.Data(); }
  int SetBrokerId(const char* value) { return broker_id_.Assign(value); }
  // The date the positions are wanted for; as StartDate.
  const char* AsOfDate() { return FormatDate(shown_as_of_, as_of_date_.View()); }
  int SetAsOfDate(const char* value) { return SetUserDate(*this, as_of_date_, value); }
  // What the request asks for; any value but 0 means yes.
  int32_t IncludeBalances() const { return include_balances_; }
  int SetIncludeBalances(int32_t value) { return Store(include_balances_, value); }
  int32_t IncludeOpenOrders() const { return include_open_orders_; }
  int SetIncludeOpenOrders(int32_t value) { return Store(include_open_orders_, value); }
  int32_t IncludePositions() const { return include_positions_; }
  int SetIncludePositions(int32_t value) { return Store(include_positions_, value); }
  int32_t IncludeTransactions() const { return include_transactions_; }
  int SetIncludeTransactions(int32_t value) { return Store(include_transactions_, value); }

  // ---- Statement results ----

  // The INVBAL amounts in display form; one the response did not give reads
  // its cleared value, "0" (which the amount display would turn into "").
  const char* AvailableCash() { return CashBalance(kAvailableCash); }
  const char* MarginBalance() { return CashBalance(kMarginBalance); }
  const char* ShortBalance() { return CashBalance(kShortBalance); }
  const char* BuyingPower() { return CashBalance(kBuyingPower); }
  const char* MarketingInfo() const { return marketing_info_.Data(); }
  const char* StatementDate() { return FormatDate(shown_statement_date_, statement_date_.View()); }

  // ---- The lists: count, index check (432 with the list's text), fields ----
  // Getters of one field each; amounts and dates read "" on a record that was
  // never parsed (a clone), and a field its parse did not reach reads as
  // empty. REQUIRES: the index passed its check.

  int32_t TxCount() const { return transactions_.Count(); }
  int CheckTxIndex(int32_t index);
  const char* TxAggregate(int32_t index) { return Tx(index).Aggregate(shown_[kTxAggregate]); }
  const char* TxSecurityId(int32_t index) { return Tx(index).SecurityId(shown_[kTxSecurityId]); }
  int32_t TxType(int32_t index) { return Tx(index).type_index; }
  const char* TxTypeDescription(int32_t index) { return InvestmentTransaction::kTypes.Description(TxType(index)); }
  template <InvestmentTransaction::Field kField>
  const char* TxText(int32_t index) {
    return Tx(index).Text(kField);
  }
  const char* TxDate(int32_t index) { return DateOf(Tx(index), InvestmentTransaction::kDate, kTxDate); }
  const char* TxDateSettle(int32_t index) {
    return DateOf(Tx(index), InvestmentTransaction::kDateSettle, kTxDateSettle);
  }
  const char* TxTotal(int32_t index) { return AmountOf(Tx(index), InvestmentTransaction::kTotal, kTxTotal); }

  int32_t PosCount() const { return positions_.Count(); }
  int CheckPosIndex(int32_t index);
  const char* PosAggregate(int32_t index) { return Pos(index).Aggregate(shown_[kPosAggregate]); }
  const char* PosSecurityId(int32_t index) { return Pos(index).SecurityId(shown_[kPosSecurityId]); }
  int32_t PosSecType(int32_t index) { return Pos(index).type_index; }
  const char* PosTypeDescription(int32_t index) { return InvestmentPosition::kTypes.Description(PosSecType(index)); }
  template <InvestmentPosition::Field kField>
  const char* PosText(int32_t index) {
    return Pos(index).Text(kField);
  }
  const char* PosDatePriceAsOf(int32_t index) {
    return DateOf(Pos(index), InvestmentPosition::kDatePriceAsOf, kPosDatePriceAsOf);
  }
  const char* PosMarketValue(int32_t index) {
    return AmountOf(Pos(index), InvestmentPosition::kMarketValue, kPosMarketValue);
  }

  int32_t OOCount() const { return open_orders_.Count(); }
  int CheckOOIndex(int32_t index);
  const char* OOAggregate(int32_t index) { return OO(index).Aggregate(shown_[kOOAggregate]); }
  const char* OOSecurityId(int32_t index) { return OO(index).SecurityId(shown_[kOOSecurityId]); }
  int32_t OOOrderType(int32_t index) { return OO(index).type_index; }
  const char* OOTypeDescription(int32_t index) { return OpenOrder::kTypes.Description(OOOrderType(index)); }
  template <OpenOrder::Field kField>
  const char* OOText(int32_t index) {
    return OO(index).Text(kField);
  }
  const char* OODatePlaced(int32_t index) { return DateOf(OO(index), OpenOrder::kDatePlaced, kOODatePlaced); }

  int32_t BalCount() const { return balances_.Count(); }
  int CheckBalIndex(int32_t index);
  const char* BalAggregate(int32_t index) { return Bal(index).Aggregate(shown_[kBalAggregate]); }
  // A dollar balance in amount display form, any other as received.
  const char* BalAmount(int32_t index);
  int32_t BalAmountType(int32_t index) { return Bal(index).type_index; }
  const char* BalTypeDescription(int32_t index) { return InvestmentBalance::kTypes.Description(BalAmountType(index)); }
  template <InvestmentBalance::Field kField>
  const char* BalText(int32_t index) {
    return Bal(index).Text(kField);
  }

  int32_t SecCount() const { return securities_.Count(); }
  int CheckSecIndex(int32_t index);
  const char* SecAggregate(int32_t index) { return Sec(index).Aggregate(shown_[kSecAggregate]); }
  const char* SecSecurityId(int32_t index) { return Sec(index).SecurityId(shown_[kSecSecurityId]); }
  int32_t SecSecType(int32_t index) { return Sec(index).type_index; }
  const char* SecTypeDescription(int32_t index) { return SecurityInfo::kTypes.Description(SecSecType(index)); }
  template <SecurityInfo::Field kField>
  const char* SecText(int32_t index) {
    return Sec(index).Text(kField);
  }

  // The security list joined by id: the index of the security whose
  // SecurityId is `id` ("CUSIP:123456789"), or -1.
  int32_t FindSecurity(std::string_view id);

  RecordList<InvestmentTransaction>& InvTransactions() { return transactions_; }
  RecordList<SecurityInfo>& Securities() { return securities_; }

 protected:
  void RestoreDefaults() override;
  void AccountValues(std::string_view* values) override;
  // 2000 for an empty BrokerId, then for an empty AccountId.
  int CheckRequiredInputs() override;
  int ReadAccount(MarkupDocument&, bool) override { return 0; }
  // INCTRAN, INCOO, INCPOS and INCBAL, and the image flag in 2.x.
  int AppendStatementOptions(ByteString& out, bool xml) override;
  int ParseStatement(MarkupDocument& doc, const ByteString& prefix) override;

 private:
  // The display buffers, one per property that builds its text.
  enum Shown {
    kTxAggregate, kTxSecurityId, kTxDate, kTxDateSettle, kTxTotal,
    kPosAggregate, kPosSecurityId, kPosDatePriceAsOf, kPosMarketValue,
    kOOAggregate, kOOSecurityId, kOODatePlaced,
    kBalAggregate, kBalAmount,
    kSecAggregate, kSecSecurityId,
    kShownCount
  };

  enum CashBalanceKind { kAvailableCash, kMarginBalance, kShortBalance, kBuyingPower, kCashBalanceCount };

  const char* CashBalance(CashBalanceKind b) {
    return ShowAmount(shown_cash_balances_[b], cash_balances_[b].View());
  }
  static int Store(int32_t& flag, int32_t value) {
    flag = value;
    return 0;
  }
  template <class Record, class Field>
  const char* DateOf(const Record& r, Field field, Shown shown) {
    return r.engine == nullptr ? "" : FormatDate(shown_[shown], r.Text(field));
  }
  template <class Record, class Field>
  const char* AmountOf(const Record& r, Field field, Shown shown) {
    return r.engine == nullptr ? "" : ShowAmount(shown_[shown], r.Text(field));
  }
  int ReadBalanceAggregate(MarkupDocument& doc);
  InvestmentTransaction& Tx(int32_t index) { return *transactions_.Item(index); }
  InvestmentPosition& Pos(int32_t index) { return *positions_.Item(index); }
  OpenOrder& OO(int32_t index) { return *open_orders_.Item(index); }
  InvestmentBalance& Bal(int32_t index) { return *balances_.Item(index); }
  SecurityInfo& Sec(int32_t index) { return *securities_.Item(index); }

  int32_t include_open_orders_ = 1;
  int32_t include_balances_ = 1;
  int32_t include_transactions_ = 1;
  int32_t include_positions_ = 1;
  ByteString account_id_;
  ByteString broker_id_;
  ByteString as_of_date_;
  ByteString marketing_info_;
  ByteString statement_date_;
  ByteString cash_balances_[kCashBalanceCount];
  RecordList<InvestmentTransaction> transactions_;
  RecordList<InvestmentPosition> positions_;
  RecordList<OpenOrder> open_orders_;
  RecordList<InvestmentBalance> balances_;
  RecordList<SecurityInfo> securities_;
  // Built on the first FindSecurity after a parse.
  std::unordered_map<std::string, int32_t> security_index_;
  ByteString shown_as_of_, shown_statement_date_, shown_cash_balances_[kCashBalanceCount];
  ByteString shown_[kShownCount];
};

}  // namespace orvelan
