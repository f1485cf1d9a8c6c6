#pragma once
#include <cstdint>
#include <string_view>

#include "base/byte_string.h"

// A broken-down calendar time with a pattern-driven formatter and parser.
//
//   OFXDateTime when;                       // now, local clock, zone 0
//   ByteString out;
//   when.Format(out, "YYYYMMddHHmmss.xxx[G:Z]");   // "20240115103000.000[+0:GMT]"
//   if (when.Parse("1/5/2024 08:00:00", "MM/dd/YYYY HH:mm:ss") != 0) { /* 676 */ }
//
// Patterns are runs of one repeated character; letter runs are fields, all
// other runs are literal text. Field values are never range-checked.
namespace orvelan {

class OFXDateTime {
 public:
  // Holds the current local time, milliseconds 0 and zone offset 0.
  OFXDateTime();

  // Resets the fields to the current local time.
  void InitDefaults();

  // Appends the fields written by `pattern` to `out`.
  void Format(ByteString& out, std::string_view pattern) const;
  // Reads `text` positionally by `pattern`; returns 0 or 676.
  int Parse(std::string_view text, std::string_view pattern);
  // Appends the current local time (zone 0, milliseconds 0) in `pattern`.
  static void FormatNow(ByteString& out, std::string_view pattern);

  // Reads an OFX date (`20240115103000.000[-5:EST]`, `20240115`, ...) with
  // fixed fields; the bracketed zone never shifts the fields and ZoneOffset
  // becomes 0. A bare date has time 00:00:00.000; a time cut short keeps the
  // current local values for its missing fields. Weekday is that of the date.
  // Returns false for an empty text, one that does not begin with a field, or
  // one that ends inside a field.
  bool ParseOFXDate(std::string_view text);

  int32_t Year() const { return year_; }
  int32_t Month() const { return month_; }
  int32_t Day() const { return day_; }
  int32_t Weekday() const { return weekday_; }
  int32_t Hour() const { return hour_; }
  int32_t Minute() const { return minute_; }
  int32_t Second() const { return second_; }
  int32_t Millisecond() const { return millisecond_; }
  bool IsAM() const { return is_am_ != 0; }
  int32_t ZoneOffset() const { return zone_offset_; }
  void SetYear(int32_t value) { year_ = value; }
  void SetMonth(int32_t value) { month_ = value; }
  void SetDay(int32_t value) { day_ = value; }
  void SetWeekday(int32_t value) { weekday_ = value; }
  // Keeps IsAM in step.
  void SetHour(int32_t value);
  void SetMinute(int32_t value) { minute_ = value; }
  void SetSecond(int32_t value) { second_ = value; }
  void SetMillisecond(int32_t value) { millisecond_ = value; }
  void SetZoneOffset(int32_t value) { zone_offset_ = value; }
  // The table name of ZoneOffset; empty for offsets without one.
  std::string_view ZoneName() const;

 private:
  int32_t year_ = 0;
  int32_t month_ = 1;
  int32_t day_ = 1;
  int32_t weekday_ = 0;
  int32_t hour_ = 0;
  int32_t minute_ = 0;
  int32_t second_ = 0;
  int32_t millisecond_ = 0;
  int32_t is_am_ = 1;
  int32_t zone_offset_ = 0;
};

}  // namespace orvelan
