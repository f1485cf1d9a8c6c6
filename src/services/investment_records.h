#pragma once
#include <cstdint>
#include <initializer_list>
#include <new>

#include "base/byte_string.h"
#include "ofx/ofx_client.h"
#include "services/record_source.h"

// The records of an investment statement: transactions, positions, open
// orders, balances and the securities they name. Like StatementTransaction,
// each keeps references to its elements in the parsed response and reads its
// raw texts from there when asked; the service converts amounts and dates.
// A record whose parse failed stays in its list with the fields read before
// the failure; the others read "".
namespace orvelan {

// Codes and descriptions of one record kind. An index selects a row;
// kTypeOther stands for the table's "other" code outside the rows.
struct RecordTypeTable {
  static constexpr int32_t kTypeOther = 255;

  const char* const* codes;
  const char* const* descriptions;
  int32_t count;
  const char* other_code;
  const char* other_description;

  // The row of `code` (ASCII case ignored); kTypeOther for the other code and
  // for a code that is missing or unknown, so every index reads a description.
  int32_t IndexOf(const char* code) const;
  const char* Description(int32_t index) const;
};

// What all five records share: where they live, their type, and which
// fields the parse reached.
struct InvestmentRecord {
  // One field read in parse order; a missing required one fails with
  // ReadField's 202.
  struct Step {
    int8_t field;
    const char* name;
    bool required;
  };

  // "UNIQUEIDTYPE:UNIQUEID" of the SECID below `detail`; "" without one.
  const char* SecurityId(ByteString& out) const;
  const char* Aggregate(ByteString& out) const { return record.Markup(out); }

  OFXClient* engine = nullptr;  // not owned; null until parsed (clones too)
  RecordSource record;          // the record's own element
  // Where most fields live: INVBUY/INVSELL, INVPOS, OO or SECINFO; the
  // record's element for the kinds without such a child.
  RecordSource detail;
  // The SECID below `detail`, once the parse has read its UNIQUEIDTYPE.
  RecordSource secid;
  int32_t type_index = RecordTypeTable::kTypeOther;
  // One bit per Field the parse got to.
  uint16_t reached = 0;

 protected:
  bool Reached(int8_t field) const { return (reached & (1u << field)) != 0; }

  // Starts a parse at the document's cursor: engine, element, no detail yet.
  void Begin(OFXClient& client);
  // Moves the cursor along `path`; the document's navigation error if it cannot.
  static int Move(OFXClient& client, const char* path);
  // Moves the cursor into the child `name` and attaches `source` to it; the
  // document's navigation error when there is none.
  static int Enter(OFXClient& client, const char* name, RecordSource& source);
  // UNIQUEIDTYPE and UNIQUEID of the SECID below the cursor must exist; the
  // document's navigation error names the first missing step.
  int RequireSecId(OFXClient& client);
  // A SECID below the cursor, when there is one, must hold both parts;
  // ReadField's 202 otherwise.
  int ReadSecId(OFXClient& client);
  // `steps` below `at`, which is where the cursor is, until a required one is missing.
  int Read(OFXClient& client, const RecordSource& at, std::initializer_list<Step> steps);
};

template <class Record>
Record* CloneRecord(const Record& record) {
  auto* copy = new (std::nothrow) Record(record);
  if (copy != nullptr) copy->engine = nullptr;
  return copy;
}

struct InvestmentTransaction : InvestmentRecord {
  static const RecordTypeTable kTypes;
  enum Field : int8_t {
    kDate, kDateSettle, kFITID, kMemo, kName, kSubAccountFund, kSubAccountSec, kTotal, kUnitPrice, kUnits
  };
  // How the record is built, which decides where each field lives.
  enum Kind : int8_t { kPlain, kBuySell, kWithInvTran, kBanking };

  InvestmentTransaction* Clone() const { return CloneRecord(*this); }
  int Parse(OFXClient& client);
  const char* Text(Field field) const;

  RecordSource tran;  // INVTRAN, or STMTTRN of a banking transaction
  Kind kind = kPlain;
};

struct InvestmentPosition : InvestmentRecord {
  static const RecordTypeTable kTypes;
  enum Field : int8_t { kAccountType, kDatePriceAsOf, kMarketValue, kMemo, kPositionType, kUnitPrice, kUnits };

  InvestmentPosition* Clone() const { return CloneRecord(*this); }
  int Parse(OFXClient& client);
  const char* Text(Field field) const;
};

struct OpenOrder : InvestmentRecord {
  static const RecordTypeTable kTypes;
  enum Field : int8_t {
    kBuyType, kDatePlaced, kDuration, kFITID, kMemo, kRestriction, kSellType, kSubAccount, kUnits, kUnitType
  };

  OpenOrder* Clone() const { return CloneRecord(*this); }
  int Parse(OFXClient& client);
  const char* Text(Field field) const;
};

struct InvestmentBalance : InvestmentRecord {
  static const RecordTypeTable kTypes;
  static constexpr int32_t kDollar = 0;
  enum Field : int8_t { kDescription, kName, kValue };

  InvestmentBalance* Clone() const { return CloneRecord(*this); }
  int Parse(OFXClient& client);
  const char* Text(Field field) const;
};

struct SecurityInfo : InvestmentRecord {
  static const RecordTypeTable kTypes;
  enum Field : int8_t { kAssetClass, kFIId, kMemo, kName, kTicker, kUnitPrice, kYield };

  SecurityInfo* Clone() const { return CloneRecord(*this); }
  int Parse(OFXClient& client);
  const char* Text(Field field) const;
};

}  // namespace orvelan
