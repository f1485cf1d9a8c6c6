#pragma once
#include <cstdint>

#include "base/byte_string.h"

// One transaction of a bank, credit-card or loan statement, kept as the raw
// element texts of its STMTTRN (or loan transaction) element. Amounts and
// dates are converted for display only when a host reads them.
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

  // A heap copy for ItemList; null when memory runs out.
  StatementTransaction* Clone() const;

  ByteString aggregate;
  ByteString amount;
  ByteString check_number;
  ByteString date_initiated;
  ByteString date_posted;
  ByteString fitid;
  ByteString memo;
  ByteString payee_name;
  ByteString image_ref;
  ByteString image_ref_type;
  ByteString principal_amount;
  ByteString interest_amount;
  ByteString escrow_total;
  int32_t type_index = kTypeOther;
};

}  // namespace orvelan
