#include "base/text_util.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

namespace orvelan {
namespace {

TEST(TextUtilTest, CompareNoCase) {
  // The shorter text's NUL is the unequal byte; '[' follows 'Z' but is not
  // folded; bytes compare unsigned and only ASCII letters fold.
  const struct { const char* a; const char* b; int difference; } cases[] = {
      {"Content-Length", "content-LENGTH", 0}, {"abd", "ABC", 'd' - 'c'},   {"ab", "abc", -'c'},
      {nullptr, "a", -'a'},                    {"Z", "[", 'z' - '['},       {"\xc9", "\xe9", 0xc9 - 0xe9}};
  for (const auto& c : cases) {
    EXPECT_EQ(CompareNoCase(c.a, c.b), c.difference) << (c.a ? c.a : "null") << " vs " << c.b;
  }
}

TEST(TextUtilTest, ParseIntegers) {
  const struct { const char* text; int64_t value; } cases[] = {
      {"+42", 42}, {"-42", -42}, {"12ab", 12}, {"-", 0}, {" 5", 0}, {"+-5", 0}, {nullptr, 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(ParseInt32(c.text), c.value) << (c.text ? c.text : "null");
    EXPECT_EQ(ParseInt64(c.text), c.value) << (c.text ? c.text : "null");
  }
  EXPECT_EQ(ParseInt32("-2147483648"), INT32_MIN);
  EXPECT_EQ(ParseInt64("-9223372036854775808"), INT64_MIN);

  const struct { const char* text; int64_t value; } hex[] = {
      {"1fZ", 31}, {"DeadBeef", 0xDEADBEEF}, {"-a", -10}, {"g", 0}, {"7fffffffffffffff", INT64_MAX}};
  for (const auto& c : hex) EXPECT_EQ(ParseHex(c.text), c.value) << c.text;

  const struct { const char* pair; int value; } pairs[] = {
      {"ff", 255}, {"A0", 160}, {"fg", -1}, {"gf", -1}, {"f", -1}, {"", -1}, {nullptr, -1}};
  for (const auto& c : pairs) EXPECT_EQ(ParseHexPair(c.pair), c.value) << (c.pair ? c.pair : "null");
}

TEST(TextUtilTest, SplitAtCutsAtTheFirstSeparator) {
  char pair[] = "a=b=c";
  EXPECT_STREQ(SplitAt(pair, '='), "b=c");
  EXPECT_STREQ(pair, "a");
  char plain[] = "abc";
  EXPECT_EQ(SplitAt(plain, ':'), plain + 3);
  EXPECT_EQ(SplitAt(nullptr, ':'), nullptr);
}

TEST(TextUtilTest, SpaceIsOnlySpaceCrLfAndTab) {
  for (int c = 0; c < 256; ++c) {
    EXPECT_EQ(IsSpace(static_cast<unsigned char>(c)), c == ' ' || c == '\r' || c == '\n' || c == '\t') << c;
  }
}

TEST(TextUtilTest, ParseDecimal) {
  const double inf = std::numeric_limits<double>::infinity();
  // end: the end pointer's offset; only space, CR, LF and TAB are skipped;
  // an exponent of 1000 counts as 511.
  const struct { const char* text; double value; int end; } cases[] = {
      {"  -12.50e1x", -125, 10}, {"1e", 1, 1},        {"1E-x", 1, 1},     {"abc", 0, 0},
      {"-.e5", 0, 0},            {"+.5e+2", 50, 6},   {"1.2.3", 1.2, 3},  {"\v7", 0, 0},
      {"1,5", 1, 1},             {"1e308", 1e308, 5}, {"1e1000", inf, 6}, {"1e512", inf, 5},
      {"-1e-512", 0, 7},         {"0e1000", 0, 6},    {"1e99999999999999999999", inf, 22},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const char* end = nullptr;
    const double value = ParseDecimal(c.text, &end);
    if (std::isinf(c.value)) {
      EXPECT_EQ(value, c.value);
    } else {
      EXPECT_DOUBLE_EQ(value, c.value);
    }
    EXPECT_EQ(end - c.text, c.end);
  }
  const char* end = "untouched";
  EXPECT_EQ(ParseDecimal(nullptr, &end), 0);
  EXPECT_EQ(end, nullptr);
}

// Only 18 mantissa digits count, yet dropped integer digits still count as
// places; amounts must come out as the nearest double, as strtod gives them.
TEST(TextUtilTest, ParseDecimalPrecision) {
  EXPECT_EQ(ParseDecimal("1.23456789012345678"), ParseDecimal("1.234567890123456789999"));
  EXPECT_NEAR(ParseDecimal("1234567890123456789012") / 1.234567890123456789e21, 1.0, 1e-15);
  for (const char* text : {"0.1", "19.99", "-45.67", "1000000.01", "0.000001", "123456789.12", "5.5e10"}) {
    EXPECT_EQ(ParseDecimal(text), std::strtod(text, nullptr)) << text;
  }
}

}  // namespace
}  // namespace orvelan
