#pragma once
#include <string_view>

#include "base/byte_string.h"
#include "ofx/ofx_date_time.h"

// The engine's conversions between OFX dates and amounts and the host's forms:
// the host's `DateFormat` pattern ("OFXDATE" turns conversion off) and the
// `OFXDateFormat` pattern the engine writes. The OFX engine owns one and
// reports 676 "Cannot parse date." when ParseUserDate fails.
namespace orvelan {

inline constexpr char kDefaultDateFormat[] = "MM/dd/YYYY HH:mm:ss";
inline constexpr char kDefaultOFXDateFormat[] = "YYYYMMddHHmmss.xxx[G:Z]";

class DateAmountFormat {
 public:
  DateAmountFormat();

  const ByteString& DateFormat() const { return date_format_; }
  int SetDateFormat(std::string_view pattern);
  const ByteString& OFXDateFormat() const { return ofx_date_format_; }
  int SetOFXDateFormat(std::string_view pattern);

  // `out` = the OFX date in DateFormat; an unreadable date is copied unchanged.
  // An empty DateFormat is first reset to the default.
  void FormatDate(ByteString& out, std::string_view ofx_date);
  // `out` = the host date as an OFX date in OFXDateFormat; returns 0 or 676
  // (with `out` empty). Fields the host date lacks keep the current local
  // time; an empty DateFormat reads as the default.
  int ParseUserDate(ByteString& out, std::string_view text) const;
  // The amount without a "+" sign and leading zeros ("0.00" for empty); valid
  // until the next call.
  std::string_view FormatAmount(std::string_view text);

 private:
  ByteString date_format_;
  ByteString ofx_date_format_;
  ByteString amount_;
  OFXDateTime scratch_;  // reused by FormatDate so a conversion allocates nothing
};

}  // namespace orvelan
