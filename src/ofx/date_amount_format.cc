#include "ofx/date_amount_format.h"

#include "ofx/ofx_date_time.h"

// Placeholder: the conversions are being written.
namespace orvelan {

DateAmountFormat::DateAmountFormat() {
  date_format_.Assign(kDefaultDateFormat);
  ofx_date_format_.Assign(kDefaultOFXDateFormat);
}

int DateAmountFormat::SetDateFormat(std::string_view pattern) { return date_format_.Assign(pattern); }
int DateAmountFormat::SetOFXDateFormat(std::string_view pattern) { return ofx_date_format_.Assign(pattern); }

void DateAmountFormat::FormatDate(ByteString& out, std::string_view ofx_date) { out.Assign(ofx_date); }

int DateAmountFormat::ParseUserDate(ByteString& out, std::string_view text) const {
  out.Assign(text);
  return 0;
}

std::string_view DateAmountFormat::FormatAmount(std::string_view text) {
  amount_.Assign(text.empty() ? std::string_view("0.00") : text);
  return amount_.View();
}

}  // namespace orvelan
