#include "ofx/ofx_date_time.h"

#include <cstdio>
#include <ctime>

// Placeholder: the pattern engine is being written.
namespace orvelan {

OFXDateTime::OFXDateTime() { InitDefaults(); }

void OFXDateTime::InitDefaults() {
  std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  year_ = local.tm_year + 1900;
  month_ = local.tm_mon + 1;
  day_ = local.tm_mday;
  weekday_ = local.tm_wday;
  SetHour(local.tm_hour);
  minute_ = local.tm_min;
  second_ = local.tm_sec;
  millisecond_ = 0;
  zone_offset_ = 0;
}

void OFXDateTime::SetHour(int32_t value) {
  hour_ = value;
  is_am_ = value < 12 ? 1 : 0;
}

void OFXDateTime::Format(ByteString& out, std::string_view) const {
  char text[32];
  std::snprintf(text, sizeof text, "%04d%02d%02d%02d%02d%02d.%03d[+0:GMT]", year_, month_, day_, hour_, minute_,
                second_, millisecond_);
  out.Append(text);
}

int OFXDateTime::Parse(std::string_view, std::string_view) { return kErrCannotParseDate; }

void OFXDateTime::FormatNow(ByteString& out, std::string_view pattern) { OFXDateTime().Format(out, pattern); }

bool OFXDateTime::ParseOFXDate(std::string_view text) { return !text.empty(); }

std::string_view OFXDateTime::ZoneName() const { return zone_offset_ == 0 ? "GMT" : ""; }

}  // namespace orvelan
