#include "base/text_util.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

namespace orvelan {
namespace {

int Sign(int v) { return (v > 0) - (v < 0); }

TEST(TextUtilTest, CompareNoCase) {
  struct Case {
    const char* a;
    const char* b;
    int difference;
  };
  const Case cases[] = {
      {"abc", "abc", 0},
      {"ABC", "abc", 0},
      {"Content-Length", "content-length", 0},
      {"abc", "abd", 'c' - 'd'},
      {"abd", "ABC", 'd' - 'c'},
      {"ab", "abc", -'c'},  // the shorter text's NUL is the unequal byte
      {"abc", "AB", 'c'},
      {"", "", 0},
      {nullptr, "", 0},
      {nullptr, "a", -'a'},
      {"[", "a", '[' - 'a'},        // '[' follows 'Z' but is not folded
      {"Z", "[", 'z' - '['},        // 'Z' compares as 'z'
      {"\xe9", "a", 0xe9 - 'a'},    // unsigned bytes
      {"\xc9", "\xe9", 0xc9 - 0xe9},  // only ASCII letters fold
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.a ? c.a : "null") + " vs " + c.b);
    EXPECT_EQ(CompareNoCase(c.a, c.b), c.difference);
    EXPECT_EQ(Sign(CompareNoCase(c.b, c.a)), -Sign(c.difference));
  }
}

TEST(TextUtilTest, ParseInt) {
  struct Case {
    const char* text;
    int64_t value;
  };
  const Case cases[] = {
      {"0", 0},       {"42", 42},   {"+42", 42},  {"-42", -42},   {"007", 7},
      {"12ab", 12},   {"1 2", 1},   {"", 0},      {"-", 0},       {"+", 0},
      {" 5", 0},      {"\t5", 0},   {"--5", 0},   {"+-5", 0},     {"abc", 0},
      {"3.9", 3},     {"-0", 0},    {nullptr, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text ? c.text : "null");
    EXPECT_EQ(ParseInt32(c.text), c.value);
    EXPECT_EQ(ParseInt64(c.text), c.value);
  }
  EXPECT_EQ(ParseInt32("2147483647"), INT32_MAX);
  EXPECT_EQ(ParseInt32("-2147483648"), INT32_MIN);
  EXPECT_EQ(ParseInt64("9223372036854775807"), INT64_MAX);
  EXPECT_EQ(ParseInt64("-9223372036854775808"), INT64_MIN);
  EXPECT_EQ(ParseInt64("4294967296"), 4294967296LL);
}

TEST(TextUtilTest, ParseHex) {
  struct Case {
    const char* text;
    int64_t value;
  };
  const Case cases[] = {{"1fZ", 31},  {"ff", 255},      {"FF", 255}, {"-a", -10}, {"+A", 10},
                        {"0", 0},     {"", 0},          {"g", 0},    {" 1", 0},   {"DeadBeef", 0xDEADBEEF},
                        {"10 ", 16},  {"7fffffffffffffff", INT64_MAX}, {nullptr, 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text ? c.text : "null");
    EXPECT_EQ(ParseHex(c.text), c.value);
  }
}

TEST(TextUtilTest, ParseHexPair) {
  struct Case {
    const char* pair;
    int value;
  };
  const Case cases[] = {{"ff", 255}, {"FF", 255}, {"00", 0},   {"0a", 10}, {"A0", 160}, {"7f", 127},
                        {"fg", -1},  {"gf", -1},  {"f", -1},   {"", -1},   {" f", -1},  {"f ", -1},
                        {"ffz", 255}, {nullptr, -1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.pair ? c.pair : "null");
    EXPECT_EQ(ParseHexPair(c.pair), c.value);
  }
}

TEST(TextUtilTest, SplitAt) {
  char header[] = "Content-Type: text/plain";
  char* value = SplitAt(header, ':');
  EXPECT_STREQ(header, "Content-Type");
  EXPECT_STREQ(value, " text/plain");
  // Only the first occurrence is cut.
  char pair[] = "a=b=c";
  EXPECT_STREQ(SplitAt(pair, '='), "b=c");
  EXPECT_STREQ(pair, "a");
  // Without the byte: the text is untouched and the result is its NUL.
  char plain[] = "abc";
  char* rest = SplitAt(plain, ':');
  EXPECT_EQ(rest, plain + 3);
  EXPECT_STREQ(plain, "abc");
  char last[] = "abc:";
  EXPECT_STREQ(SplitAt(last, ':'), "");
  EXPECT_STREQ(last, "abc");
  EXPECT_EQ(SplitAt(nullptr, ':'), nullptr);
}

TEST(TextUtilTest, CharacterClasses) {
  for (int c = 0; c < 256; ++c) {
    SCOPED_TRACE(c);
    const bool digit = c >= '0' && c <= '9';
    const bool hex = digit || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
    const bool space = c == ' ' || c == '\r' || c == '\n' || c == '\t';
    EXPECT_EQ(IsDigit(static_cast<unsigned char>(c)), digit);
    EXPECT_EQ(IsHexDigit(static_cast<unsigned char>(c)), hex);
    EXPECT_EQ(IsSpace(static_cast<unsigned char>(c)), space);  // not VT, FF, NBSP
  }
}

struct DecimalCase {
  const char* text;
  double value;
  int end;  // offset of the end pointer
};

const double kInf = std::numeric_limits<double>::infinity();

const DecimalCase kDecimalCases[] = {
    {"  -12.50e1x", -125, 10},
    {"1e", 1, 1},
    {"1e+", 1, 1},
    {"1E-x", 1, 1},
    {"2E3", 2000, 3},
    {"abc", 0, 0},
    {"", 0, 0},
    {"   ", 0, 0},
    {"-", 0, 0},
    {".", 0, 0},
    {"-.e5", 0, 0},
    {".5", 0.5, 2},
    {"5.", 5, 2},
    {"+.5e+2", 50, 6},
    {"1.2.3", 1.2, 3},
    {"0", 0, 1},
    {"-0.0", 0, 4},
    {"\t\r\n 7", 7, 5},
    {"\v7", 0, 0},  // only space, CR, LF and TAB are skipped
    {"12.34", 12.34, 5},
    {"-1234.56", -1234.56, 8},
    {"0.01", 0.01, 4},
    {"100.00 USD", 100, 6},
    {"1,5", 1, 1},
    {"1.5e-5", 1.5e-5, 6},
    {"1e308", 1e308, 5},
    {"1e-300", 1e-300, 6},
    {"1e1000", kInf, 6},
    {"1e511", kInf, 5},
    {"-1e1000", -kInf, 7},
    {"1e-1000", 0, 7},
    {"0e1000", 0, 6},
    {"0e-1000", 0, 7},
    {"1e00000000000000000002", 100, 22},
    {"1e99999999999999999999", kInf, 22},
    {"-1e-99999999999999999999", 0, 24},
};

TEST(TextUtilTest, ParseDecimal) {
  for (const DecimalCase& c : kDecimalCases) {
    SCOPED_TRACE(c.text);
    const char* end = nullptr;
    const double value = ParseDecimal(c.text, &end);
    if (std::isinf(c.value)) {
      EXPECT_EQ(value, c.value);
    } else {
      EXPECT_DOUBLE_EQ(value, c.value);
    }
    EXPECT_EQ(end - c.text, c.end);
    EXPECT_EQ(ParseDecimal(c.text), value);
  }
  const char* end = "untouched";
  EXPECT_EQ(ParseDecimal(nullptr, &end), 0);
  EXPECT_EQ(end, nullptr);
}

// Only 18 mantissa digits count; integer digits beyond them still count as places.
TEST(TextUtilTest, ParseDecimalUsesEighteenDigits) {
  EXPECT_EQ(ParseDecimal("1.23456789012345678"), ParseDecimal("1.234567890123456789999"));
  EXPECT_EQ(ParseDecimal("1234567890123456789012"), ParseDecimal("1234567890123456780000"));
  EXPECT_NEAR(ParseDecimal("1234567890123456789012") / 1.234567890123456789e21, 1.0, 1e-15);
  const char* end = nullptr;
  const char* text = "123456789012345678901234.5x";
  EXPECT_NEAR(ParseDecimal(text, &end) / 1.234567890123456789e23, 1.0, 1e-15);
  EXPECT_EQ(*end, 'x');
}

// Typical amounts must come out as the nearest double, like the C library's.
TEST(TextUtilTest, ParseDecimalMatchesStrtodForAmounts) {
  const char* amounts[] = {"0.1",       "0.2",      "0.3",       "1.10",       "19.99",    "-45.67",
                           "1000000.01", "3.14159", "250000.50", "0.000001",   "99999.99", "-0.05",
                           "123456789.12", "7e-3",  "42E2",      "0.00000123", "5.5e10",   "18446744073709551616"};
  for (const char* text : amounts) {
    SCOPED_TRACE(text);
    EXPECT_EQ(ParseDecimal(text), std::strtod(text, nullptr));
  }
}

// A host that switches to a comma-decimal locale must still get 1.5 from "1.5".
TEST(TextUtilTest, ParseDecimalIgnoresTheLocale) {
  const std::string saved = std::setlocale(LC_ALL, nullptr);
  const char* comma_locales[] = {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8", "de_DE"};
  const char* found = nullptr;
  for (const char* name : comma_locales) {
    if (std::setlocale(LC_ALL, name) != nullptr) {
      found = name;
      break;
    }
  }
  if (found == nullptr) GTEST_SKIP() << "no comma-decimal locale installed";
  ASSERT_STREQ(std::localeconv()->decimal_point, ",");
  const char* end = nullptr;
  const double point = ParseDecimal("1.5", &end);
  const double comma = ParseDecimal("1,5");
  std::setlocale(LC_ALL, saved.c_str());
  EXPECT_EQ(point, 1.5);
  EXPECT_STREQ(end, "");
  EXPECT_EQ(comma, 1.0);
}

}  // namespace
}  // namespace orvelan
