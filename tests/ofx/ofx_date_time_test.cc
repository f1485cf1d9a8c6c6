#include "ofx/ofx_date_time.h"

#include <string>
#include <tuple>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

struct Fields { int32_t year, month, day, hour, minute, second, millisecond, zone; };

OFXDateTime Make(const Fields& f) {
  OFXDateTime t;
  t.SetYear(f.year);
  t.SetMonth(f.month);
  t.SetDay(f.day);
  t.SetHour(f.hour);
  t.SetMinute(f.minute);
  t.SetSecond(f.second);
  t.SetMillisecond(f.millisecond);
  t.SetZoneOffset(f.zone);
  t.SetWeekday(1);
  return t;
}

void ExpectFields(const OFXDateTime& t, const Fields& f) {
  EXPECT_EQ(std::make_tuple(t.Year(), t.Month(), t.Day(), t.Hour(), t.Minute(), t.Second(), t.Millisecond(),
                            t.ZoneOffset()),
            std::tie(f.year, f.month, f.day, f.hour, f.minute, f.second, f.millisecond, f.zone));
}

constexpr Fields kMorning = {2024, 1, 15, 10, 30, 0, 0, 0};  // a Monday

struct FormatCase { const char* name; Fields fields; const char* pattern; const char* expected; };
const FormatCase kFormatCases[] = {
    {"engine default", kMorning, "YYYYMMddHHmmss.xxx[G:Z]", "20240115103000.000[+0:GMT]"},
    {"long year keeps its last four digits", {12345, 1, 1, 0, 0, 0, 0, 0}, "YYYY", "2345"},
    {"short year is padded", {5, 1, 1, 0, 0, 0, 0, 0}, "YYYYYY", "0005"},
    {"month names", {2024, 3, 1, 0, 0, 0, 0, 0}, "MM MMM MMMM MMMMMM", "03 Mar March March"},
    {"day and time are written whole", {2024, 1, 123, 123, 7, 8, 0, 0}, "d H mm s", "123 123 07 8"},
    {"milliseconds are always three digits", {2024, 1, 1, 0, 0, 0, 7, 0}, "x xxxxx", "007 007"},
    {"weekday names", kMorning, "D DD DDD DDDD", "Mo Mon Monday Monday"},
    {"twelve-hour clock at midnight", {2024, 1, 1, 0, 5, 0, 0, 0}, "hh:mm A AA a", "12:05 A AM A"},
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
    ByteString out;
    Make(c.fields).Format(out, c.pattern);
    EXPECT_EQ(out.View(), c.expected);
  }
}

// Format appends, longer than any stack buffer it might use; a fresh time is
// local, with zone and milliseconds zero.
TEST(OFXDateTimeTest, FormatAppendsLongOutputAndFormatsNow) {
  const std::string many(300, 'Q');
  ByteString out("at ");
  Make(kMorning).Format(out, many + "DDD" + many);
  EXPECT_EQ(out.View(), "at " + many + "Monday" + many);
  ByteString now;
  OFXDateTime::FormatNow(now, "YYYYMMddHHmmss.xxx[G:Z]");
  ASSERT_EQ(now.Length(), 26);
  EXPECT_EQ(now.View().substr(14), ".000[+0:GMT]");
}

struct ParseCase { const char* name; const char* text; const char* pattern; int rc; Fields expected; };  // on rc 0
const ParseCase kParseCases[] = {
    {"one-digit month and day shift", "1/5/2024 08:00:00", "MM/dd/YYYY HH:mm:ss", 0, {2024, 1, 5, 8, 0, 0, 0, 0}},
    {"no range check", "13/45/2024 25:61:99", "MM/dd/YYYY HH:mm:ss", 0, {2024, 13, 45, 25, 61, 99, 0, 0}},
    {"two-digit year", "05.01.24", "dd.MM.YY", 0, {2024, 1, 5, 0, 0, 0, 0, 0}},
    {"month abbreviation ignores case", "mAR 3, 2024", "MMM d, YYYY", 0, {2024, 3, 3, 0, 0, 0, 0, 0}},
    {"full month name shifts", "March 3 2024", "MMMM d YYYY", 0, {2024, 3, 3, 0, 0, 0, 0, 0}},
    {"full month name is case-sensitive", "march 3 2024", "MMMM d YYYY", kErrCannotParseDate, {}},
    {"PM adds twelve", "02:30 PM", "hh:mm AA", 0, {2000, 1, 1, 14, 30, 0, 0, 0}},
    {"AM does not move the hour", "12:00 AM", "hh:mm AA", 0, {2000, 1, 1, 12, 0, 0, 0, 0}},
    {"neither AM nor PM", "02:30 XM", "hh:mm AA", kErrCannotParseDate, {}},
    {"four-letter zone shifts", "AHST 07", "ZZZ HH", 0, {2000, 1, 1, 7, 0, 0, 0, -10}},
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

struct OFXDateCase { const char* text; bool ok; Fields expected; int32_t weekday; };
const OFXDateCase kOFXDateCases[] = {
    {"20240115103000.000[-5:EST]", true, {2024, 1, 15, 10, 30, 0, 0, 0}, 1},
    {"20240115103000.250[+5.30:IST]", true, {2024, 1, 15, 10, 30, 0, 250, 0}, 1},
    {"20000229235959.999", true, {2000, 2, 29, 23, 59, 59, 999, 0}, 2},
    {"20241345", true, {2024, 13, 45, 0, 0, 0, 0, 0}, 5},  // unchecked: 14 February 2025
    {"", false, {}, 0},
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

// Milliseconds reset only after a literal run; a cut-off OFX date takes missing fields from the clock.
TEST(OFXDateTimeTest, FieldsTheTextLeavesOut) {
  OFXDateTime t = Make({2000, 1, 1, 0, 0, 0, 999, 0});
  ASSERT_EQ(t.Parse("10", "HH"), 0);
  EXPECT_EQ(t.Millisecond(), 999);  // no literal run, nothing resets it
  ASSERT_EQ(t.Parse("123:10", "xxx:HH"), 0);
  EXPECT_EQ(t.Millisecond(), 123);
  ASSERT_EQ(t.Parse("10:30", "HH:mm"), 0);
  EXPECT_EQ(t.Millisecond(), 0);
  t = Make({1990, 6, 6, 6, 6, 77, 666, 7});
  ASSERT_TRUE(t.ParseOFXDate("202401151030"));
  EXPECT_EQ(t.Minute(), 30);
  EXPECT_LE(t.Second(), 60);  // from the clock, not the 77 set before
  EXPECT_EQ(t.Millisecond() + t.ZoneOffset(), 0);
  ASSERT_TRUE(t.ParseOFXDate("2024"));
  EXPECT_EQ(t.Hour() + t.Second(), 0);
}

}  // namespace
}  // namespace orvelan
