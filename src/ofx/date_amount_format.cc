#include "ofx/date_amount_format.h"

namespace orvelan {
namespace {

constexpr std::string_view kNoConversion = "OFXDATE";

}  // namespace

DateAmountFormat::DateAmountFormat() {
  date_format_.Assign(kDefaultDateFormat);
  ofx_date_format_.Assign(kDefaultOFXDateFormat);
}

int DateAmountFormat::SetDateFormat(std::string_view pattern) { return date_format_.Assign(pattern); }
int DateAmountFormat::SetOFXDateFormat(std::string_view pattern) { return ofx_date_format_.Assign(pattern); }

void DateAmountFormat::FormatDate(ByteString& out, std::string_view ofx_date) {
  out.SetLength(0);
  if (ofx_date.empty()) return;
  if (date_format_.IsEmpty()) date_format_.Assign(kDefaultDateFormat);
  // A date the host cannot use is still better than none: pass it through.
  if (date_format_.View() == kNoConversion || !scratch_.ParseOFXDate(ofx_date)) {
    out.Assign(ofx_date);
    return;
  }
  scratch_.Format(out, date_format_.View());
}

int DateAmountFormat::ParseUserDate(ByteString& out, std::string_view text) const {
  out.SetLength(0);
  if (text.empty()) return 0;
  if (date_format_.View() == kNoConversion) return out.Assign(text);
  OFXDateTime when;
  const std::string_view pattern = date_format_.IsEmpty() ? std::string_view(kDefaultDateFormat) : date_format_.View();
  if (when.Parse(text, pattern) != 0) return kErrCannotParseDate;
  when.Format(out, ofx_date_format_.View());
  return 0;
}

std::string_view DateAmountFormat::FormatAmount(std::string_view text) {
  amount_.SetLength(0);
  if (text.empty()) {
    amount_.Assign("0.00");
    return amount_.View();
  }
  size_t i = 0;
  if (text[0] == '-') amount_.AppendChar('-');
  if (text[0] == '-' || text[0] == '+') ++i;
  while (i < text.size() && text[i] == '0') ++i;
  amount_.Append(text.substr(i));
  return amount_.View();
}

}  // namespace orvelan
