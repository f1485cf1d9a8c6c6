#include "ofx/date_amount_format.h"

#include <string>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

constexpr const char* kDefault = nullptr;  // leave the setting as it is

struct FormatDateCase {
  const char* name;
  const char* date_format;
  const char* ofx_date;
  const char* expected;
};
const FormatDateCase kFormatDateCases[] = {
    {"zone is not applied", kDefault, "20240115103000.000[-5:EST]", "01/15/2024 10:30:00"},
    {"bare date is midnight", kDefault, "20240115", "01/15/2024 00:00:00"},
    {"empty date", kDefault, "", ""},
    {"unreadable date passes through", kDefault, "2024011", "2024011"},
    {"no conversion", "OFXDATE", "20240115103000.000[-5:EST]", "20240115103000.000[-5:EST]"},
    {"empty format means the default", "", "20241231235959.999", "12/31/2024 23:59:59"},
    {"host pattern back to OFX", "YYYYMMddHHmmss.xxx", "20240115103000.250[-5:EST]", "20240115103000.250"},
};

TEST(DateAmountFormatTest, FormatsOFXDatesForTheHost) {
  for (const FormatDateCase& c : kFormatDateCases) {
    SCOPED_TRACE(c.name);
    DateAmountFormat f;
    if (c.date_format != kDefault) f.SetDateFormat(c.date_format);
    ByteString out;
    out.Assign("left over");
    f.FormatDate(out, c.ofx_date);
    EXPECT_EQ(out.View(), c.expected);
    if (c.date_format != kDefault && *c.date_format == '\0') {
      EXPECT_EQ(f.DateFormat().View(), kDefaultDateFormat);
    }
  }
}

struct ParseUserDateCase {
  const char* name;
  const char* date_format;
  const char* ofx_date_format;
  const char* text;
  int rc;
  const char* expected;
};
const ParseUserDateCase kParseUserDateCases[] = {
    {"one-digit month and day", kDefault, kDefault, "1/5/2024 08:00:00", 0, "20240105080000.000[+0:GMT]"},
    {"empty text", kDefault, kDefault, "", 0, ""},
    {"no conversion", "OFXDATE", kDefault, "whatever the host says", 0, "whatever the host says"},
    {"written in the engine's own pattern", kDefault, "YYYYMMdd", "1/5/2024 08:00:00", 0, "20240105"},
    {"month name", "MMMM d, YYYY HH:mm:ss", "YYYYMMddHHmmss", "September 9, 2024 07:08:09", 0, "20240909070809"},
    {"unknown month name", "MMM dd YYYY", kDefault, "Foo 01 2024", kErrCannotParseDate, ""},
};

TEST(DateAmountFormatTest, ParsesHostDates) {
  for (const ParseUserDateCase& c : kParseUserDateCases) {
    SCOPED_TRACE(c.name);
    DateAmountFormat f;
    if (c.date_format != kDefault) f.SetDateFormat(c.date_format);
    if (c.ofx_date_format != kDefault) f.SetOFXDateFormat(c.ofx_date_format);
    ByteString out;
    out.Assign("left over");
    EXPECT_EQ(f.ParseUserDate(out, c.text), c.rc);
    EXPECT_EQ(out.View(), c.expected);
  }
}

TEST(DateAmountFormatTest, CleansAmounts) {
  const struct { const char* text; const char* expected; } cases[] = {
      {"", "0.00"}, {"-0012.50", "-12.50"}, {"+7", "7"}, {"000", ""},
      {"-0.75", "-.75"}, {"-", "-"}, {"+", ""}, {"+-5", "-5"}, {"007 ", "7 "},
  };
  DateAmountFormat f;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(f.FormatAmount(c.text), c.expected);
  }
  const std::string digits(500, '9');  // longer than any fixed buffer
  EXPECT_EQ(f.FormatAmount("-000" + digits), "-" + digits);
}

}  // namespace
}  // namespace orvelan
