#include "base/byte_string.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>
#include <vector>

namespace orvelan {
namespace {

using namespace std::string_literals;

template <typename S>
std::string Str(const S& s) {
  return std::string(s.View());
}

std::string Letters(int32_t n) {
  std::string text;
  for (int32_t i = 0; i < n; ++i) text += static_cast<char>('a' + i % 26);
  return text;
}

// NUL behind the content; heap block exactly while longer than N.
template <typename S>
void ExpectWellFormed(const S& s) {
  EXPECT_EQ(s.Data()[s.Length()], '\0');
  EXPECT_EQ(s.IsOnHeap(), s.Length() > S::kInlineCapacity);
  EXPECT_EQ(s.Capacity() == S::kInlineCapacity, !s.IsOnHeap());
  EXPECT_GE(s.Capacity(), s.Length());
}

// The short variant catches a general-string size hard-wired into the template.
template <typename S>
class ByteStringVariantTest : public testing::Test {};
using Variants = testing::Types<ShortByteString20, ByteString>;
TYPED_TEST_SUITE(ByteStringVariantTest, Variants);

TYPED_TEST(ByteStringVariantTest, CrossesTheInlineLimitByteByByte) {
  constexpr int32_t kN = TypeParam::kInlineCapacity;
  TypeParam s;
  std::string model;
  for (int32_t i = 0; i < 3 * kN; ++i) {
    ASSERT_EQ(s.AppendChar(static_cast<char>(i % 7)), 0);  // NUL bytes included
    model += static_cast<char>(i % 7);
    ASSERT_EQ(Str(s), model);
    ExpectWellFormed(s);
    if (i == kN) {
      EXPECT_EQ(s.Capacity(), (kN + 1) + (kN + 1) / 2);
    }
  }
  TypeParam other("x");
  s.Swap(other);  // heap against inline, both ways
  EXPECT_EQ(Str(other), model);
  other.Swap(s);
  ExpectWellFormed(other);
  while (!model.empty()) {
    ASSERT_EQ(s.DropLast(), 0);
    model.pop_back();
    ASSERT_EQ(Str(s), model);
    ExpectWellFormed(s);
  }
}

TEST(ByteStringTest, AssignAndAppendOfNothing) {
  ByteString s("before");
  EXPECT_EQ(s.Append(nullptr, 4) | s.Append("abcd", 0) | s.Append("abcd", -3) | s.AppendQuoted(nullptr), 0);
  EXPECT_EQ(Str(s), "before");
  EXPECT_EQ(s.Assign("xyz", -1), 0);
  EXPECT_EQ(Str(s), "");
}

// Growth may move the storage the source points into: a full heap block
// must move, and the blocker keeps realloc from growing it in place.
TEST(ByteStringTest, TakesSourcesFromItsOwnContent) {
  for (int32_t length : {5, 99, 150}) {
    SCOPED_TRACE(length);
    const std::string content = Letters(length);
    ByteString appended(content.substr(0, 100));
    ByteString quoted(content.substr(0, 100));
    ASSERT_EQ(appended.Assign(content), 0);
    ASSERT_EQ(quoted.Assign(content), 0);
    ByteString blocker(std::string(200, 'b'));
    ASSERT_EQ(appended.Append(appended.Data(), appended.Length()), 0);
    EXPECT_EQ(Str(appended), content + content);
    ASSERT_EQ(quoted.AppendQuoted(quoted.Data()), 0);
    EXPECT_EQ(Str(quoted), content + "\"" + content + "\"");
  }
  const std::string text = Letters(300);
  ByteString s(text);
  ASSERT_EQ(s.SetLength(200, s.Data() + 5), 0);
  ASSERT_EQ(s.Assign(s.Data() + 190), 0);  // from the heap block back inline
  EXPECT_EQ(Str(s), text.substr(195, 10));
}

TEST(ByteStringTest, ContentMayHoldNulBytes) {
  const std::string content = "a\0b\0c"s;
  ByteString s(content);
  EXPECT_TRUE(s.Equals("a"));  // a NUL-terminated argument stops at its NUL
  EXPECT_TRUE(s.Equals(content.data(), 5));
  EXPECT_EQ(s.Find("c"), 4);
  EXPECT_EQ(s.FindChar('\0', 2), 3);
  EXPECT_EQ(Str(ByteString(s)), content);
  s.Append(std::string(200, '\0'));
  ASSERT_EQ(s.SetLength(5), 0);  // back inline, NULs and all
  EXPECT_EQ(Str(s), content);
}

TEST(ByteStringTest, AppendsIntegers) {
  const struct { int64_t value; const char* text; } cases[] = {
      {0, "0"}, {-7, "-7"}, {INT32_MIN, "-2147483648"}, {INT64_MIN, "-9223372036854775808"}};
  for (const auto& c : cases) {
    ByteString s("n=");
    EXPECT_EQ(s.AppendInt64(c.value), 0);
    EXPECT_EQ(Str(s), "n="s + c.text);
    EXPECT_EQ(ByteString(c.text).ToInt64(), c.value);
  }
}

TEST(ByteStringTest, Cuts) {
  const struct { int32_t start, end; int code; const char* rest; } slices[] = {
      {3, 100, 0, "3456789"}, {5, 2, 0, ""}, {10, 12, 432, "0123456789"}, {-1, 3, 432, "0123456789"}};
  for (const auto& c : slices) {
    ByteString s("0123456789");
    EXPECT_EQ(s.Slice(c.start, c.end), c.code) << c.start << ", " << c.end;
    EXPECT_EQ(Str(s), c.rest) << c.start << ", " << c.end;
  }
  const struct { const char* text; const char* rest; } trims[] = {
      {"xxaxbxx", "axb"}, {"xxxx", ""}, {"", ""}};
  for (const auto& c : trims) {
    ByteString s(c.text);
    EXPECT_EQ(s.Trim('x'), 0);
    EXPECT_EQ(Str(s), c.rest) << c.text;
  }
  ByteString s("hello");
  EXPECT_EQ(s.RemovePrefix(4), 0);
  EXPECT_EQ(Str(s), "o");
  EXPECT_EQ(s.RemovePrefix(9), 0);
  EXPECT_EQ(Str(s), "");
}

TEST(ByteStringTest, ReadsAndSearches) {
  const struct { const char* haystack; const char* needle; int32_t start, position; } finds[] = {
      {"hello world", "o", 5, 7}, {"aaab", "aab", 0, 1}, {"abc", "c", 3, -1}, {"abc", "a", -1, -1},
      {"abc", "bcd", 0, -1},      {"abc", nullptr, 0, 0},
      {"OK\r\n\r\n", "\r\n\r\n", 2, 2}};  // a match that ends the text, as a reply head does
  for (const auto& c : finds) {
    EXPECT_EQ(ByteString(c.haystack).Find(c.needle, c.start), c.position)
        << c.haystack << " / " << (c.needle ? c.needle : "null") << " from " << c.start;
  }
  ByteString s("abcabc");
  EXPECT_EQ(s.FindChar('a', 1), 3);
  EXPECT_EQ(s.FindChar('a', -1), -1);
  EXPECT_EQ(s.ByteAt(-1), '\0');
  EXPECT_EQ(s.ByteAt(6), '\0');
  EXPECT_STREQ(s.TailAt(6), "");
}

TEST(ByteStringTest, Comparisons) {
  const struct { const char* text; int32_t length; bool equal; } equals[] = {
      {"abc", -1, true}, {"ab", -1, false}, {"abcd", 3, true}, {nullptr, 3, false}};
  for (const auto& c : equals) {
    EXPECT_EQ(ByteString("abc").Equals(c.text, c.length), c.equal) << (c.text ? c.text : "null") << c.length;
  }
  ByteString s("OFXHEADER:100");
  EXPECT_TRUE(s.EqualsNoCase("ofxheader:100"));
  EXPECT_TRUE(s.StartsWith("OFX") && s.EndsWith(":100"));
  EXPECT_FALSE(s.StartsWith("ofx") || s.EndsWith("XOFXHEADER:100"));
  ByteString upper("`az{ \xe9"s);
  upper.ToUpper();
  EXPECT_EQ(Str(upper), "`AZ{ \xe9"s);
}

// 48 input bytes fill a 64-character line; no break follows the last line.
TEST(ByteStringTest, Base64Encodes) {
  const struct { std::string bytes; const char* encoded; } cases[] = {
      {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"\xfb\xff"s, "+/8="}};
  for (const auto& c : cases) {
    ByteString s("> ");
    EXPECT_EQ(s.AppendBase64(c.bytes.data(), static_cast<int32_t>(c.bytes.size()), true), 0);
    EXPECT_EQ(Str(s), "> "s + c.encoded);
  }
  const struct { int32_t length, encoded_length; std::vector<int32_t> breaks; } lines[] = {
      {48, 64, {}}, {49, 70, {64}}, {96, 130, {64}}, {97, 136, {64, 130}}};
  for (const auto& c : lines) {
    std::string bytes;
    for (int32_t i = 0; i < c.length; ++i) bytes += static_cast<char>(i * 37 + 3);  // every high bit
    ByteString s;
    ASSERT_EQ(s.AppendBase64(bytes.data(), c.length, true), 0);
    EXPECT_EQ(s.Length(), c.encoded_length);
    std::vector<int32_t> breaks;
    for (int32_t p = s.Find("\r\n"); p >= 0; p = s.Find("\r\n", p + 2)) breaks.push_back(p);
    EXPECT_EQ(breaks, c.breaks) << c.length;
    ASSERT_EQ(s.DecodeBase64(), 0);
    EXPECT_EQ(Str(s), bytes);
  }
  ByteString own("foo");
  ASSERT_EQ(own.AppendBase64(own.Data(), own.Length(), false), 0);
  EXPECT_EQ(Str(own), "fooZm9v");
}

TEST(ByteStringTest, Base64Decodes) {
  const struct { std::string encoded, decoded; } cases[] = {
      {"TWFu\r\nTWE=", "ManMa"}, {"Zm9vYmE", "fooba"}, {"Zg", "f"}, {"Z", ""},
      {"Zm9v=Zm9v", "foo"},      {"!Z m\t9*v\n", "foo"}, {"AAAA", "\0\0\0"s}};
  for (const auto& c : cases) {
    ByteString s(c.encoded);
    EXPECT_EQ(s.DecodeBase64(), 0);
    EXPECT_EQ(Str(s), c.decoded) << c.encoded;
  }
}

TEST(ByteStringTest, Hex) {
  ByteString s("#");
  EXPECT_EQ(s.AppendHex("\x00\x0f\xa0\xff", 4), 0);
  EXPECT_EQ(Str(s), "#000fa0ff");
  const struct { const char* text; std::string bytes; } cases[] = {
      {"00ff7F", "\x00\xff\x7f"s}, {"abc", "\xab\xff"}, {"zz12", "\xff\x12"}};
  for (const auto& c : cases) {
    ByteString decoded(">");
    EXPECT_EQ(decoded.AppendHexDecoded(c.text), 0);
    EXPECT_EQ(Str(decoded), ">" + c.bytes) << c.text;
  }
}

TEST(ByteStringTest, PercentEncodes) {
  std::vector<uint8_t> space(96, 0);
  space[0] = 1;  // the table covers 0x20 to 0x7f; only its low bit says "keep"
  const struct { const char* text; std::vector<uint8_t> table; const char* encoded; } cases[] = {
      {"a b", space, "%61 %62"}, {"caf\xe9\t", std::vector<uint8_t>(96, 1), "caf%E9%09"},
      {"\x7f", std::vector<uint8_t>(96, 1), "\x7f"}, {"ab", std::vector<uint8_t>(96, 0xFE), "%61%62"}};
  for (const auto& c : cases) {
    ByteString s("GET ");
    EXPECT_EQ(s.AppendPercentEncoded(c.text, c.table.data()), 0);
    EXPECT_EQ(Str(s), "GET "s + c.encoded);
  }
}

}  // namespace
}  // namespace orvelan
