#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "ofx/ofx_client.h"
#include "services/record_source.h"

// One closed statement period of a bank, credit-card or loan statement. Like
// StatementTransaction it refers to its CLOSING element in the parsed
// response and reads the raw texts from there when asked.
namespace orvelan {

struct ClosingInfo {
  enum Field : int8_t {
    kFITID,
    kDateOpen,
    kDateClose,
    kBalanceOpen,
    kBalanceClose,
    kDateStart,
    kDateEnd,
    kImageRef,
    kImageRefType,
    kTotalFees,
    kTotalCredits,
    kTotalDebits,
    kDateDue,
    kPaymentDue,
    kCreditLimit,
    kTotalInterest,
    kFieldCount
  };

  // A heap copy for ItemList; null when memory runs out. The copy has no
  // parse, so its amounts and dates read as "".
  ClosingInfo* Clone() const;

  // Reads the record at the document's cursor; 202 with ReadField's text for
  // a required element that is missing. The cursor is back on the record's
  // element on success.
  int Parse(OFXClient& client);

  // The raw text of `field`; "" for a field the parse did not reach.
  const char* Text(MarkupDocument& document, Field field) const;
  const char* Aggregate(MarkupDocument& document, ByteString& out) const {
    return RecordSource(document, element).Markup(out);
  }

  uint32_t element = 0;
  int8_t filled = 0;  // fields read so far, in Field order
  bool parsed = false;
};

}  // namespace orvelan
