#include "ofx/ofx_date_time.h"

#include <string>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

struct Fields {
  int32_t year, month, day, hour, minute, second, millisecond, zone;
};

OFXDateTime Make(const Fields& f, int32_t weekday = 1) {
  OFXDateTime t;
  t.SetYear(f.year);
  t.SetMonth(f.month);
  t.SetDay(f.day);
  t.SetHour(f.hour);
  t.SetMinute(f.minute);
  t.SetSecond(f.second);
  t.SetMillisecond(f.millisecond);
  t.SetZoneOffset(f.zone);
  t.SetWeekday(weekday);
  return t;
}

// The fields of `t` against `f`, as text so a failure shows them all.
void ExpectFields(const OFXDateTime& t, const Fields& f) {
  const auto text = [](const Fields& g) {
    return std::to_string(g.year) + "-" + std::to_string(g.month) + "-" + std::to_string(g.day) + " " +
           std::to_string(g.hour) + ":" + std::to_string(g.minute) + ":" + std::to_string(g.second) + "." +
           std::to_string(g.millisecond) + " " + std::to_string(g.zone);
  };
  EXPECT_EQ(text({t.Year(), t.Month(), t.Day(), t.Hour(), t.Minute(), t.Second(), t.Millisecond(), t.ZoneOffset()}),
            text(f));
}

std::string FormatOf(const OFXDateTime& t, std::string_view pattern) {
  ByteString out;
  t.Format(out, pattern);
  return std::string(out.View());
}

constexpr Fields kMorning = {2024, 1, 15, 10, 30, 0, 0, 0};  // a Monday

struct FormatCase {
  const char* name;
  Fields fields;
  const char* pattern;
  const char* expected;
};
const FormatCase kFormatCases[] = {
    {"engine default", kMorning, "YYYYMMddHHmmss.xxx[G:Z]", "20240115103000.000[+0:GMT]"},
    {"host default", kMorning, "MM/dd/YYYY HH:mm:ss", "01/15/2024 10:30:00"},
    {"two-digit year", kMorning, "YY", "24"},
    {"long year keeps its last four digits", {12345, 1, 1, 0, 0, 0, 0, 0}, "YYYY", "2345"},
    {"short year is padded", {5, 1, 1, 0, 0, 0, 0, 0}, "YYYYYY", "0005"},
    {"one M keeps the last month digit", {2024, 12, 1, 0, 0, 0, 0, 0}, "M", "2"},
    {"month names", {2024, 3, 1, 0, 0, 0, 0, 0}, "MM MMM MMMM MMMMMM", "03 Mar March March"},
    {"month out of range has no name", {2024, 13, 1, 0, 0, 0, 0, 0}, "<MMM>", "<>"},
    {"day and time are written whole", {2024, 1, 123, 123, 7, 8, 0, 0}, "d H mm s", "123 123 07 8"},
    {"milliseconds are always three digits", {2024, 1, 1, 0, 0, 0, 7, 0}, "x xxxxx", "007 007"},
    {"weekday names", kMorning, "D DD DDD DDDD", "Mo Mon Monday Monday"},
    {"twelve-hour clock at midnight", {2024, 1, 1, 0, 5, 0, 0, 0}, "hh:mm A AA a", "12:05 A AM A"},
    {"twelve-hour clock at noon", {2024, 1, 1, 12, 0, 0, 0, 0}, "h AA", "12 PM"},
    {"zone offset widths", {2024, 1, 1, 0, 0, 0, 0, -5}, "G GG GGG", "-5 -05 -0500"},
    {"zone name with its blank", {2024, 1, 1, 0, 0, 0, 0, -11}, "[Z]", "[NT ]"},
    {"zone name at -12", {2024, 1, 1, 0, 0, 0, 0, -12}, "Z", "IDLW"},
    {"zone name at +12", {2024, 1, 1, 0, 0, 0, 0, 12}, "Z", "IDLE"},
    {"offset 13 borrows EET", {2024, 1, 1, 0, 0, 0, 0, 13}, "G:Z", "+13:EET"},
    {"offset outside the table", {2024, 1, 1, 0, 0, 0, 0, 20}, "[Z]", "[]"},
    {"unknown letters and symbols are literal", kMorning, "TT BQ ^_ 99 YY", "TT BQ ^_ 99 24"},
};

TEST(OFXDateTimeTest, FormatsEachRun) {
  for (const FormatCase& c : kFormatCases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(FormatOf(Make(c.fields), c.pattern), c.expected);
  }
}

// Appends, and longer than any stack buffer the formatter might use.
TEST(OFXDateTimeTest, FormatAppendsAndHandlesLongOutput) {
  const std::string many(300, 'Q');
  ByteString out("at ");
  Make(kMorning).Format(out, many + "DDD" + many);
  EXPECT_EQ(out.View(), "at " + many + "Monday" + many);
}

struct ParseCase {
  const char* name;
  const char* text;
  const char* pattern;
  int rc;
  Fields expected;  // checked only when rc is 0
};
const ParseCase kParseCases[] = {
    {"one-digit month and day shift the rest", "1/5/2024 08:00:00", "MM/dd/YYYY HH:mm:ss", 0,
     {2024, 1, 5, 8, 0, 0, 0, 0}},
    {"no range check", "13/45/2024 25:61:99", "MM/dd/YYYY HH:mm:ss", 0, {2024, 13, 45, 25, 61, 99, 0, 0}},
    {"missing time reads as zero", "01/15/2024", "MM/dd/YYYY HH:mm:ss", 0, {2024, 1, 15, 0, 0, 0, 0, 0}},
    {"two-digit year", "05.01.24", "dd.MM.YY", 0, {2024, 1, 5, 0, 0, 0, 0, 0}},
    {"milliseconds", "20240105123456789", "YYYYMMddHHmmssxxx", 0, {2024, 1, 5, 12, 34, 56, 789, 0}},
    {"month abbreviation ignores case", "mAR 3, 2024", "MMM d, YYYY", 0, {2024, 3, 3, 0, 0, 0, 0, 0}},
    {"full month name shifts", "March 3 2024", "MMMM d YYYY", 0, {2024, 3, 3, 0, 0, 0, 0, 0}},
    {"full month name is case-sensitive", "march 3 2024", "MMMM d YYYY", kErrCannotParseDate, {}},
    {"weekday name shifts", "Tuesday, 01/02/2024", "DDD, MM/dd/YYYY", 0, {2024, 1, 2, 0, 0, 0, 0, 0}},
    {"PM adds twelve", "02:30 PM", "hh:mm AA", 0, {2000, 1, 1, 14, 30, 0, 0, 0}},
    {"PM after noon stays", "12:30 PM", "HH:mm AA", 0, {2000, 1, 1, 12, 30, 0, 0, 0}},
    {"AM does not move the hour", "12:00 AM", "hh:mm AA", 0, {2000, 1, 1, 12, 0, 0, 0, 0}},
    {"neither AM nor PM", "02:30 XM", "hh:mm AA", kErrCannotParseDate, {}},
    {"four-letter zone shifts", "AHST 07", "ZZZ HH", 0, {2000, 1, 1, 7, 0, 0, 0, -10}},
    {"zone name with its blank", "NT 07", "ZZHH", 0, {2000, 1, 1, 7, 0, 0, 0, -11}},
    {"unknown zone", "XYZ", "ZZZ", kErrCannotParseDate, {}},
    {"offset with minutes", "+0500", "GGGGG", 0, {2000, 1, 1, 0, 0, 0, 0, 5}},
    {"offset 24 is the limit", "+24", "GGG", 0, {2000, 1, 1, 0, 0, 0, 0, 24}},
    {"offset beyond 24", "+25", "GGG", kErrCannotParseDate, {}},
};

TEST(OFXDateTimeTest, ParsesPositionally) {
  for (const ParseCase& c : kParseCases) {
    SCOPED_TRACE(c.name);
    OFXDateTime t = Make({2000, 1, 1, 0, 0, 0, 0, 0});
    ASSERT_EQ(t.Parse(c.text, c.pattern), c.rc);
    if (c.rc == 0) ExpectFields(t, c.expected);
  }
}

TEST(OFXDateTimeTest, ParseKeepsMillisecondsOnlyAfterAnXRun) {
  OFXDateTime t = Make({2000, 1, 1, 0, 0, 0, 999, 0});
  ASSERT_EQ(t.Parse("10", "HH"), 0);
  EXPECT_EQ(t.Millisecond(), 999);  // no literal run, nothing resets it
  ASSERT_EQ(t.Parse("123:10", "xxx:HH"), 0);
  EXPECT_EQ(t.Millisecond(), 123);
  ASSERT_EQ(t.Parse("10:30", "HH:mm"), 0);
  EXPECT_EQ(t.Millisecond(), 0);
}

struct OFXDateCase {
  const char* text;
  bool ok;
  Fields expected;
  int32_t weekday;
};
const OFXDateCase kOFXDateCases[] = {
    {"20240115103000.000[-5:EST]", true, {2024, 1, 15, 10, 30, 0, 0, 0}, 1},
    {"20240115103000.250[+5.30:IST]", true, {2024, 1, 15, 10, 30, 0, 250, 0}, 1},
    {"20240115103000[0:GMT]", true, {2024, 1, 15, 10, 30, 0, 0, 0}, 1},
    {"20240115", true, {2024, 1, 15, 0, 0, 0, 0, 0}, 1},
    {"20000229235959.999", true, {2000, 2, 29, 23, 59, 59, 999, 0}, 2},
    {"19991231", true, {1999, 12, 31, 0, 0, 0, 0, 0}, 5},
    {"20241345", true, {2024, 13, 45, 0, 0, 0, 0, 0}, 5},  // unchecked: 14 February 2025
    {"", false, {}, 0},
    {"202", false, {}, 0},
    {"202401151", false, {}, 0},
    {"[-5:EST]", false, {}, 0},
};

TEST(OFXDateTimeTest, ParsesOFXDates) {
  for (const OFXDateCase& c : kOFXDateCases) {
    SCOPED_TRACE(c.text);
    // Leftovers of an earlier date must not leak into the next one.
    OFXDateTime t = Make({1990, 6, 6, 6, 6, 6, 666, 7});
    ASSERT_EQ(t.ParseOFXDate(c.text), c.ok);
    if (!c.ok) continue;
    ExpectFields(t, c.expected);
    EXPECT_EQ(t.Weekday(), c.weekday);
    EXPECT_EQ(t.IsAM(), c.expected.hour < 12);
  }
}

TEST(OFXDateTimeTest, CutOffTimeKeepsTheClockForMissingFields) {
  OFXDateTime t = Make({1990, 6, 6, 6, 6, 77, 666, 7});
  ASSERT_TRUE(t.ParseOFXDate("202401151030"));
  EXPECT_EQ(t.Minute(), 30);
  EXPECT_LE(t.Second(), 60);  // from the clock, not the 77 set before
  EXPECT_EQ(t.Millisecond() + t.ZoneOffset(), 0);
  ASSERT_TRUE(t.ParseOFXDate("2024"));
  EXPECT_EQ(t.Hour() + t.Second(), 0);
}

TEST(OFXDateTimeTest, FreshTimeIsLocalWithZoneAndMillisecondsZero) {
  ByteString now;
  OFXDateTime::FormatNow(now, "YYYYMMddHHmmss.xxx[G:Z]");
  ASSERT_EQ(now.Length(), 26);
  EXPECT_EQ(now.View().substr(14), ".000[+0:GMT]");
}

}  // namespace
}  // namespace orvelan
