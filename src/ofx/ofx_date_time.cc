#include "ofx/ofx_date_time.h"

#include <cstring>
#include <ctime>

namespace orvelan {
namespace {

// Shorter names keep a trailing blank so every three-letter slot is three
// characters wide; hosts have compared against these exact texts for years.
constexpr std::string_view kZoneNames[25] = {
    "IDLW", "NT ", "AHST", "YST", "PST", "MST", "CST", "EST", "AST", "",    "AT ", "WAT", "GMT",
    "CET",  "EET", "BT ",  "",    "",    "",    "",    "CCT", "JST", "GST", "",    "IDLE"};
constexpr std::string_view kMonthAbbreviations[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::string_view kMonthNames[12] = {"January", "February", "March",     "April",   "May",      "June",
                                              "July",    "August",   "September", "October", "November", "December"};
constexpr std::string_view kWeekdayShortNames[7] = {"Su", "Mo", "Tu", "We", "Th", "Fr", "Sa"};
constexpr std::string_view kWeekdayAbbreviations[7] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::string_view kWeekdayNames[7] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                               "Thursday", "Friday", "Saturday"};

constexpr int kZoneIndexBias = 12;

std::string_view ZoneNameOf(int32_t offset) {
  if (offset == 13) return kZoneNames[14];  // a historical alias, kept for hosts that rely on it
  if (offset < -12 || offset > 12) return {};
  return kZoneNames[offset + kZoneIndexBias];
}

template <size_t N>
std::string_view NameAt(const std::string_view (&table)[N], int32_t index) {
  return index >= 0 && static_cast<size_t>(index) < N ? table[index] : std::string_view();
}

// Optional sign and the digits up to the first other byte or the end of the
// slice; overflow wraps like the NUL-terminated integer readers.
int32_t SliceInt(std::string_view slice) {
  size_t i = 0;
  bool negative = false;
  if (i < slice.size() && (slice[i] == '-' || slice[i] == '+')) negative = slice[i++] == '-';
  uint64_t value = 0;
  for (; i < slice.size() && IsDigit(static_cast<unsigned char>(slice[i])); ++i) {
    value = value * 10u + static_cast<uint64_t>(slice[i] - '0');
  }
  return static_cast<int32_t>(static_cast<uint32_t>(negative ? uint64_t{0} - value : value));
}

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && std::memcmp(text.data(), prefix.data(), prefix.size()) == 0;
}

// Days since 1970-01-01 of a proleptic Gregorian date; the month may lie
// outside 1-12 and the day outside the month, as unchecked fields do.
int64_t DaysFromCivil(int64_t year, int64_t month, int64_t day) {
  int64_t m0 = month - 1;
  year += m0 >= 0 ? m0 / 12 : -((11 - m0) / 12);
  m0 -= (m0 >= 0 ? m0 / 12 : -((11 - m0) / 12)) * 12;
  const int64_t m = m0 + 1;
  year -= m <= 2 ? 1 : 0;
  const int64_t era = (year >= 0 ? year : year - 399) / 400;
  const int64_t yoe = year - era * 400;
  const int64_t doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468 + (day - 1);
}

int32_t WeekdayOf(int32_t year, int32_t month, int32_t day) {
  const int64_t w = (DaysFromCivil(year, month, day) + 4) % 7;  // 1970-01-01 was a Thursday
  return static_cast<int32_t>(w < 0 ? w + 7 : w);
}

// Collects formatted output on the stack so a whole date costs one append.
class Writer {
 public:
  explicit Writer(ByteString& out) : out_(out) {}
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  ~Writer() { Flush(); }

  void Put(char c) {
    if (used_ == sizeof buffer_) Flush();
    buffer_[used_++] = c;
  }
  void Put(std::string_view text) {
    if (text.empty()) return;  // an empty table entry has no data pointer
    if (text.size() > sizeof buffer_ - used_) {
      Flush();
      if (text.size() > sizeof buffer_) {
        out_.Append(text);
        return;
      }
    }
    std::memcpy(buffer_ + used_, text.data(), text.size());
    used_ += text.size();
  }
  void PutRepeated(char c, size_t n) {
    while (n-- > 0) Put(c);
  }
  // Zero-padded to `width`; a longer number is written whole unless
  // `keep_last` cuts it to its last `width` digits.
  void PutNumber(int64_t value, int width, bool keep_last) {
    char digits[24];
    int count = 0;
    uint64_t magnitude = value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    do {
      digits[count++] = static_cast<char>('0' + magnitude % 10);
      magnitude /= 10;
    } while (magnitude != 0);
    if (value < 0) Put('-');
    if (keep_last && count > width) count = width;
    for (int i = count; i < width; ++i) Put('0');
    while (count > 0) Put(digits[--count]);
  }
  void Flush() {
    out_.Append(buffer_, static_cast<int32_t>(used_));
    used_ = 0;
  }

 private:
  ByteString& out_;
  char buffer_[64];
  size_t used_ = 0;
};

size_t RunLength(std::string_view pattern, size_t start) {
  size_t end = start + 1;
  while (end < pattern.size() && pattern[end] == pattern[start]) ++end;
  return end - start;
}

int Min2(size_t n) { return n < 2 ? static_cast<int>(n) : 2; }

}  // namespace

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

std::string_view OFXDateTime::ZoneName() const { return ZoneNameOf(zone_offset_); }

void OFXDateTime::Format(ByteString& out, std::string_view pattern) const {
  Writer w(out);
  for (size_t p = 0; p < pattern.size();) {
    const char c = pattern[p];
    const size_t n = RunLength(pattern, p);
    p += n;
    switch (c) {
      case 'A':
      case 'a':
        w.Put(is_am_ != 0 ? 'A' : 'P');
        if (n >= 2) w.Put('M');
        break;
      case 'D':
        w.Put(NameAt(n == 1 ? kWeekdayShortNames : n == 2 ? kWeekdayAbbreviations : kWeekdayNames, weekday_));
        break;
      case 'G':
        w.Put(zone_offset_ < 0 ? '-' : '+');
        w.PutNumber(zone_offset_ < 0 ? -static_cast<int64_t>(zone_offset_) : zone_offset_, Min2(n), false);
        if (n > 2) w.Put("00");
        break;
      case 'H':
        w.PutNumber(hour_, Min2(n), false);
        break;
      case 'h': {
        const int32_t twelve = hour_ % 12;
        w.PutNumber(twelve == 0 ? 12 : twelve, Min2(n), false);
        break;
      }
      case 'M':
        if (n <= 2) {
          w.PutNumber(month_, static_cast<int>(n), true);
        } else {
          w.Put(NameAt(n == 3 ? kMonthAbbreviations : kMonthNames, month_ - 1));
        }
        break;
      case 'Y':
      case 'y':
        w.PutNumber(year_, n >= 4 ? 4 : Min2(n), true);
        break;
      case 'Z':
        w.Put(ZoneNameOf(zone_offset_));
        break;
      case 'd':
        w.PutNumber(day_, Min2(n), false);
        break;
      case 'm':
        w.PutNumber(minute_, Min2(n), false);
        break;
      case 's':
        w.PutNumber(second_, Min2(n), false);
        break;
      case 'x':
        w.PutNumber(millisecond_, 3, false);
        break;
      default:
        w.PutRepeated(c, n);
        break;
    }
  }
}

void OFXDateTime::FormatNow(ByteString& out, std::string_view pattern) { OFXDateTime().Format(out, pattern); }

int OFXDateTime::Parse(std::string_view text, std::string_view pattern) {
  // Where the text stands relative to the pattern: variable-width fields
  // (names, one-digit months and days) move everything after them.
  int64_t shift = 0;
  bool has_milliseconds = false;
  for (size_t p = 0; p < pattern.size();) {
    const char c = pattern[p];
    const size_t n = RunLength(pattern, p);
    int64_t at = static_cast<int64_t>(p) + shift;
    if (at < 0) at = 0;
    const size_t start = static_cast<size_t>(at) < text.size() ? static_cast<size_t>(at) : text.size();
    const std::string_view rest = text.substr(start);
    const std::string_view slice = rest.substr(0, n);
    const bool second_is_digit = slice.size() >= 2 && IsDigit(static_cast<unsigned char>(slice[1]));
    p += n;
    switch (c) {
      case 'A':
        if (EqualsNoCase(slice, "A") || EqualsNoCase(slice, "AM")) {
          is_am_ = 1;
        } else if (EqualsNoCase(slice, "P") || EqualsNoCase(slice, "PM")) {
          is_am_ = 0;
          if (hour_ < 12) SetHour(hour_ + 12);
        } else {
          return kErrCannotParseDate;
        }
        break;
      case 'D': {
        bool found = false;
        for (int32_t i = 0; i < 7 && !found; ++i) {
          if (n <= 2) {
            found = EqualsNoCase(slice, kWeekdayShortNames[i]) || EqualsNoCase(slice, kWeekdayAbbreviations[i]);
          } else if (StartsWith(rest, kWeekdayNames[i])) {
            found = true;
            shift += static_cast<int64_t>(kWeekdayNames[i].size()) - static_cast<int64_t>(n);
          }
          if (found) weekday_ = i;
        }
        if (!found) return kErrCannotParseDate;
        break;
      }
      case 'G': {
        std::string_view digits = slice;
        if (digits.size() >= 2 && digits.substr(digits.size() - 2) == "00") digits.remove_suffix(2);
        const int32_t offset = SliceInt(digits);
        if (offset > 24 || offset < -24) return kErrCannotParseDate;
        zone_offset_ = offset;
        break;
      }
      case 'H':
      case 'h':
        SetHour(SliceInt(slice));
        break;
      case 'M':
        if (n <= 2) {
          month_ = SliceInt(slice);
          if (n == 2 && !second_is_digit) --shift;
        } else {
          bool found = false;
          for (int32_t i = 0; i < 12 && !found; ++i) {
            if (n == 3) {
              found = EqualsNoCase(slice, kMonthAbbreviations[i]);
            } else if (StartsWith(rest, kMonthNames[i])) {
              found = true;
              shift += static_cast<int64_t>(kMonthNames[i].size()) - static_cast<int64_t>(n);
            }
            if (found) month_ = i + 1;
          }
          if (!found) return kErrCannotParseDate;
        }
        break;
      case 'Y':
      case 'y':
        year_ = n >= 3 ? SliceInt(slice) : SliceInt(slice) + 2000;
        break;
      case 'Z': {
        bool found = false;
        for (int32_t offset = -12; offset <= 12 && !found; ++offset) {
          const std::string_view name = kZoneNames[offset + kZoneIndexBias];
          if (!name.empty() && StartsWith(rest, name)) {
            found = true;
            zone_offset_ = offset;
            shift += static_cast<int64_t>(name.size()) - static_cast<int64_t>(n);
          }
        }
        if (!found) return kErrCannotParseDate;
        break;
      }
      case 'd':
        if (n >= 3) return kErrCannotParseDate;
        day_ = SliceInt(slice);
        if (n == 2 && !second_is_digit) --shift;
        break;
      case 'm':
        minute_ = SliceInt(slice);
        break;
      case 's':
        second_ = SliceInt(slice);
        break;
      case 'x':
        millisecond_ = SliceInt(slice);
        has_milliseconds = true;
        break;
      default:
        // A text without a fraction must not keep the clock's milliseconds.
        if (!has_milliseconds) millisecond_ = 0;
        break;
    }
  }
  return 0;
}

bool OFXDateTime::ParseOFXDate(std::string_view text) {
  constexpr size_t kWidths[6] = {4, 2, 2, 2, 2, 2};
  int32_t fields[6] = {};
  size_t pos = 0;
  int read = 0;
  for (; read < 6; ++read) {
    // A fraction or zone straight after a field ends the digits as the end of
    // the text would ("20240115[-5:EST]" is a date without a time).
    if (pos == text.size() || text[pos] == '.' || text[pos] == '[') break;
    if (text.size() - pos < kWidths[read]) return false;
    fields[read] = SliceInt(text.substr(pos, kWidths[read]));
    pos += kWidths[read];
  }
  if (read == 0) return false;

  // Only a cut-off time needs the clock (its missing fields keep the current
  // values); a bare date or a full timestamp does not, which keeps the
  // per-transaction path free of localtime.
  if (read != 3 && read != 6) {
    InitDefaults();
  } else {
    millisecond_ = 0;
    zone_offset_ = 0;
  }
  year_ = fields[0];
  if (read > 1) month_ = fields[1];
  if (read > 2) day_ = fields[2];
  if (read <= 3) {
    SetHour(0);
    minute_ = 0;
    second_ = 0;
    millisecond_ = 0;
  } else {
    SetHour(fields[3]);
    if (read > 4) minute_ = fields[4];
    if (read > 5) second_ = fields[5];
  }
  if (read == 6 && pos < text.size() && text[pos] == '.') {
    millisecond_ = SliceInt(text.substr(pos + 1, 3));
  }
  // The bracketed zone is deliberately not applied: hosts get the server's
  // wall-clock time as written.
  weekday_ = WeekdayOf(year_, month_, day_);
  return true;
}

}  // namespace orvelan
