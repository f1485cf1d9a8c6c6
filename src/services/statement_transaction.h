#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "ofx/ofx_client.h"
#include "services/record_source.h"

// One transaction of a bank, credit-card or loan statement. The record refers
// to its STMTTRN (or loan transaction) element in the parsed response, by
// offset, and reads each field's raw text from there when asked; amounts and
// dates are converted for display by the service that owns the record.
namespace orvelan {

struct StatementTransaction {
  // Transaction type codes and their descriptions; a TypeIndex selects a row,
  // and kTypeOther stands for "OTHER" outside the rows.
  static constexpr int32_t kTypeCount = 19;
  static constexpr int32_t kTypeOther = 255;
  static const char* const kTypeCodes[kTypeCount];
  static const char* const kTypeDescriptions[kTypeCount];
  // "Other" for kTypeOther and for any index outside the rows.
  static const char* TypeDescription(int32_t type_index);
  // The row of `code` (ASCII case ignored), kTypeOther for "OTHER" and for a
  // code that is missing or not in the table.
  static int32_t TypeIndexOf(const char* code);

  // The fields in the order the parse reads them.
  enum Field : int8_t {
    kAmount,
    kCheckNumber,
    kDateInitiated,
    kDatePosted,
    kFITID,
    kMemo,
    kImageRef,
    kImageRefType,
    kPayeeName,
    kTypeCode,
    kPrincipalAmount,
    kInterestAmount,
    kEscrowTotal,
    kFieldCount
  };

  // A heap copy for ItemList; null when memory runs out. The copy reads the
  // same element but counts as unparsed, so its amounts and dates read as "".
  StatementTransaction* Clone() const;

  // Reads the record at the document's cursor: checks the required elements
  // (202 with ReadField's text for the first one missing) and works out the
  // type. The cursor is back on the record's element on success.
  int Parse(OFXClient& client);

  // The raw text of `field` in `document`, the one the record was read
  // from; "" for a field the parse did not reach.
  const char* Text(MarkupDocument& document, Field field) const;
  // The element's markup; "" before a parse.
  const char* Aggregate(MarkupDocument& document, ByteString& out) const {
    return RecordSource(document, element).Markup(out);
  }

  uint32_t element = 0;
  uint8_t type_index = kTypeOther;
  int8_t filled = 0;  // fields read so far, in Field order
  bool parsed = false;
};

}  // namespace orvelan
