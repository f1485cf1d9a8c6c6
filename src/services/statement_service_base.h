#pragma once
#include <cstdint>
#include <string_view>

#include "base/byte_string.h"
#include "base/record_list.h"
#include "ofx/message_set_table.h"
#include "ofx/ofx_client.h"
#include "services/closing_info.h"
#include "services/service_steps.h"
#include "services/statement_transaction.h"

// What the bank, credit-card and loan statements share: the date range, the
// balances, the transaction and closing lists with their display forms, one
// writer for the statement request and one walk over the response. A member
// describes its request and response with a StatementLayout and fills in its
// account through the hooks below:
//
//   class CCStatementService : public StatementServiceBase {
//     CCStatementService() : StatementServiceBase(kLayout) {}
//     void AccountValues(std::string_view* values) override { values[0] = card_number_.View(); }
//     int CheckRequiredInputs() override;
//     int ReadAccount(MarkupDocument& doc, bool closing) override;
//   };
namespace orvelan {

// The names that tell the three statements apart. The request aggregates are
// RequestKind(message_set) + "TRNRQ"/"RQ" (+ "END" for closing information),
// the responses likewise with "RS".
struct StatementLayout {
  MessageSetTable::Kind message_set;
  const char* account_aggregate;    // "BANKACCTFROM"
  const char* const* account_tags;  // its elements, in request order
  int32_t account_tag_count;        // at most StatementServiceBase::kMaxAccountTags
  bool second_version;              // a response may use the V2 message set too
  bool transaction_images;          // the transaction request can ask for images
  const char* forced_version;       // every download uses this OFXVersion; null: the host's
  const char* transaction_list;     // "BANKTRANLIST"
  const char* transaction_record;   // "STMTTRN"
  const char* closing_record;       // "CLOSING"
  const char* empty_balance;        // the balances of a cleared response
};

class StatementServiceBase : public OFXClient {
 public:
  static constexpr int32_t kMaxAccountTags = 3;

  explicit StatementServiceBase(const StatementLayout& layout) : layout_(layout) {}

  int InitDefaults() override;
  // Restores the inputs and empties the results, then resets the engine.
  int Reset() override;
  // Empties the results, then the engine's response.
  int ClearResponse() override;
  // The statement request of the current StatementType; 202 for an
  // OFXVersion that begins with neither "1" nor "2" (unless forced).
  int BuildMessageSets(ByteString& out, bool wrapped) override;
  // Reads either kind of statement response from the root down.
  int ParseResponse() override;

  // The downloads: forced version, StatementType, required inputs, exchange.
  int GetStatement() { return Download(0); }
  int GetClosingInfo() { return Download(1); }

  // ---- Inputs ----

  // The host's date in DateFormat; "" clears. 676 for a text the format
  // cannot read (the old value stays). Reading gives the display form.
  const char* StartDate() { return FormatDate(shown_start_, start_date_.View()); }
  int SetStartDate(const char* value) { return SetUserDate(*this, start_date_, value); }
  const char* EndDate() { return FormatDate(shown_end_, end_date_.View()); }
  int SetEndDate(const char* value) { return SetUserDate(*this, end_date_, value); }
  // The stored OFX dates.
  const char* StartDateOFX() const { return start_date_.Data(); }
  const char* EndDateOFX() const { return end_date_.Data(); }

  // ---- Results, in display form ----

  const char* AvailableBalance() { return ShowAmount(shown_available_, available_balance_.View()); }
  const char* AvailableBalanceDate() { return FormatDate(shown_available_date_, available_balance_date_.View()); }
  const char* LedgerBalance() { return ShowAmount(shown_ledger_, ledger_balance_.View()); }
  const char* LedgerBalanceDate() { return FormatDate(shown_ledger_date_, ledger_balance_date_.View()); }
  const char* CurrencyCode() const { return currency_code_.Data(); }

  // 0 when `index` names a transaction, else 432 "Invalid TxIndex (out of bounds).".
  int CheckTxIndex(int32_t index);
  int32_t TxCount() const { return transactions_.Count(); }
  const char* TxAggregate(int32_t index) { return Tx(index).Aggregate(Document(), shown_tx_aggregate_); }
  int32_t TxType(int32_t index) { return Tx(index).type_index; }
  const char* TxTypeDescription(int32_t index) { return StatementTransaction::TypeDescription(Tx(index).type_index); }
  // The Tx properties over one field each. A record that was never parsed (a
  // clone) shows no amounts or dates. REQUIRES: the index passed its check.
  template <StatementTransaction::Field kField>
  const char* TxText(int32_t index) {
    return Tx(index).Text(Document(), kField);
  }
  template <StatementTransaction::Field kField>
  const char* TxAmount(int32_t index) {
    const StatementTransaction& tx = Tx(index);
    return !tx.parsed ? "" : ShowAmount(shown_tx_[kField], tx.Text(Document(), kField));
  }
  template <StatementTransaction::Field kField>
  const char* TxDate(int32_t index) {
    const StatementTransaction& tx = Tx(index);
    return !tx.parsed ? "" : FormatDate(shown_tx_[kField], tx.Text(Document(), kField));
  }

  // 0 when `index` names a closing period, else 432
  // "Invalid ClosingInfoIndex (out of bounds).".
  int CheckClosingIndex(int32_t index);
  int32_t ClosingInfoCount() const { return closings_.Count(); }
  const char* ClosingInfoAggregate(int32_t index) { return Closing(index).Aggregate(Document(), shown_closing_aggregate_); }
  template <ClosingInfo::Field kField>
  const char* ClosingText(int32_t index) {
    return Closing(index).Text(Document(), kField);
  }
  template <ClosingInfo::Field kField>
  const char* ClosingAmount(int32_t index) {
    const ClosingInfo& c = Closing(index);
    return !c.parsed ? "" : ShowAmount(shown_closing_[kField], c.Text(Document(), kField));
  }
  template <ClosingInfo::Field kField>
  const char* ClosingDate(int32_t index) {
    const ClosingInfo& c = Closing(index);
    return !c.parsed ? "" : FormatDate(shown_closing_[kField], c.Text(Document(), kField));
  }

  // The results, for the response parser and tests.
  RecordList<StatementTransaction>& Transactions() { return transactions_; }
  RecordList<ClosingInfo>& Closings() { return closings_; }

 protected:
  // This layer's defaults: no dates, empty results. A member restores its
  // own inputs and then calls this.
  virtual void RestoreDefaults();
  // The texts of the account tags, in layout order.
  virtual void AccountValues(std::string_view* values) = 0;
  // 0, or the code and text of the first missing input.
  virtual int CheckRequiredInputs() = 0;
  // Reads the account of the response; the cursor starts on the statement
  // response (STMTRS, STMTENDRS, ...) and must end there.
  virtual int ReadAccount(MarkupDocument& doc, bool closing) = 0;
  // The balances of a transaction statement, from and back to its response
  // element. The default reads LEDGERBAL, then AVAILBAL.
  virtual int ReadBalances(MarkupDocument& doc);

  // The request between the account aggregate and the image flag of a
  // transaction statement; the default asks for every transaction of the
  // date range (INCTRAN).
  virtual int AppendStatementOptions(ByteString& out, bool xml);
  // The walk of a transaction statement from the message set (or the root).
  virtual int ParseStatement(MarkupDocument& doc, const ByteString& prefix);

  // The DTSTART and DTEND lines of the dates that are set.
  int AppendDateRange(ByteString& out, bool xml);
  // AVAILBAL when present (both values required), else both empty.
  int ReadAvailableBalance(MarkupDocument& doc);
  // DTSTART and DTEND (both required) of the list at the cursor, which stays there.
  int ReadDateRange(MarkupDocument& doc);
  // Moves the cursor along `path` or reports the document's error.
  int Select(MarkupDocument& doc, std::string_view path);
  const char* ShowAmount(ByteString& shown, std::string_view raw);
  // The status of prefix + "TRNRS", then prefix + "RS/CURDEF"; the cursor
  // ends on the statement response (prefix + "RS"). Without
  // `status_required` a wrapper that is absent is not looked for.
  int EnterResponse(MarkupDocument& doc, const ByteString& prefix, bool status_required = true);

 private:
  int Download(int32_t type);
  int ParseClosingInfo(MarkupDocument& doc, const ByteString& prefix);
  StatementTransaction& Tx(int32_t index) { return *transactions_.Item(index); }
  ClosingInfo& Closing(int32_t index) { return *closings_.Item(index); }

  const StatementLayout& layout_;
  ByteString start_date_;
  ByteString end_date_;
  ByteString available_balance_;
  ByteString available_balance_date_;
  ByteString ledger_balance_;
  ByteString ledger_balance_date_;
  ByteString currency_code_;
  RecordList<StatementTransaction> transactions_;
  RecordList<ClosingInfo> closings_;
  // One display buffer per converted property, so a text handed out stays
  // valid until the same property is read again.
  ByteString shown_start_, shown_end_, shown_available_, shown_available_date_, shown_ledger_, shown_ledger_date_;
  ByteString shown_tx_aggregate_, shown_closing_aggregate_;
  ByteString shown_tx_[StatementTransaction::kFieldCount];
  ByteString shown_closing_[ClosingInfo::kFieldCount];
};

}  // namespace orvelan
