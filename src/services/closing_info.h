#pragma once

#include "base/byte_string.h"

// One closed statement period of a bank, credit-card or loan statement, kept
// as the raw element texts of its CLOSING element.
namespace orvelan {

struct ClosingInfo {
  // A heap copy for ItemList; null when memory runs out.
  ClosingInfo* Clone() const;

  ByteString aggregate;
  ByteString fitid;
  ByteString date_open;
  ByteString date_close;
  ByteString balance_open;
  ByteString balance_close;
  ByteString total_fees;
  ByteString total_credits;
  ByteString total_debits;
  ByteString image_ref;
  ByteString image_ref_type;
  ByteString date_start;
  ByteString date_end;
  ByteString date_due;
  ByteString payment_due;
  ByteString credit_limit;
  ByteString total_interest;
};

}  // namespace orvelan
