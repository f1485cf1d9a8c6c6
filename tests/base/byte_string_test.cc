#include "base/byte_string.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvelan {
namespace {

using namespace std::string_literals;

template <typename S>
std::string Str(const S& s) {
  return std::string(s.View());
}

// The invariants every change must keep: NUL behind the content, heap block
// exactly while the content is longer than N, capacity N while inline.
template <typename S>
void ExpectWellFormed(const S& s) {
  EXPECT_EQ(s.Data()[s.Length()], '\0');
  const bool long_content = s.Length() > S::kInlineCapacity;
  EXPECT_EQ(s.IsOnHeap(), long_content);
  if (long_content) {
    EXPECT_GE(s.Capacity(), s.Length());
  } else {
    EXPECT_EQ(s.Capacity(), S::kInlineCapacity);
  }
}

// ---------------------------------------------------------------------------
// Storage behaviour, the same for every inline capacity.

template <typename S>
class ByteStringVariantTest : public testing::Test {};
using Variants = testing::Types<ShortByteString20, ShortByteString30, ShortByteString50, ByteString>;
TYPED_TEST_SUITE(ByteStringVariantTest, Variants);

TYPED_TEST(ByteStringVariantTest, StaysInlineUpToItsCapacity) {
  constexpr int32_t kN = TypeParam::kInlineCapacity;
  TypeParam s;
  ASSERT_EQ(s.Assign(std::string(kN, 'a')), 0);
  EXPECT_FALSE(s.IsOnHeap());
  EXPECT_EQ(s.Capacity(), kN);
  ExpectWellFormed(s);
}

TYPED_TEST(ByteStringVariantTest, MovesToHeapPastCapacityAndBackWithContentIntact) {
  constexpr int32_t kN = TypeParam::kInlineCapacity;
  std::string content;
  for (int32_t i = 0; i <= kN; ++i) content += static_cast<char>('A' + i % 26);
  TypeParam s;
  ASSERT_EQ(s.Assign(content.substr(0, kN)), 0);
  ASSERT_EQ(s.AppendChar(content[kN]), 0);
  EXPECT_TRUE(s.IsOnHeap());
  EXPECT_EQ(s.Capacity(), (kN + 1) + (kN + 1) / 2);
  EXPECT_EQ(Str(s), content);
  ExpectWellFormed(s);

  ASSERT_EQ(s.SetLength(kN), 0);
  EXPECT_FALSE(s.IsOnHeap());
  EXPECT_EQ(s.Capacity(), kN);
  EXPECT_EQ(Str(s), content.substr(0, kN));
  ExpectWellFormed(s);
}

// One byte at a time across both boundaries, against a std::string model.
TYPED_TEST(ByteStringVariantTest, GrowingAndShrinkingByOneByteKeepsContent) {
  constexpr int32_t kN = TypeParam::kInlineCapacity;
  TypeParam s;
  std::string model;
  for (int32_t i = 0; i < 4 * kN; ++i) {
    const char c = static_cast<char>(i % 251);  // NUL bytes included
    ASSERT_EQ(s.AppendChar(c), 0);
    model += c;
    ASSERT_EQ(Str(s), model) << "after " << i;
    ExpectWellFormed(s);
  }
  while (!model.empty()) {
    ASSERT_EQ(s.DropLast(), 0);
    model.pop_back();
    ASSERT_EQ(Str(s), model);
    ExpectWellFormed(s);
  }
}

TYPED_TEST(ByteStringVariantTest, ClearReleasesTheHeapBlock) {
  constexpr int32_t kN = TypeParam::kInlineCapacity;
  TypeParam s;
  ASSERT_EQ(s.Assign(std::string(3 * kN, 'x')), 0);
  ASSERT_TRUE(s.IsOnHeap());
  EXPECT_EQ(s.Clear(), 0);
  EXPECT_EQ(s.Length(), 0);
  EXPECT_STREQ(s.Data(), "");
  ExpectWellFormed(s);
}

TYPED_TEST(ByteStringVariantTest, AppendsItsOwnContent) {
  constexpr int32_t kN = TypeParam::kInlineCapacity;
  const std::vector<int32_t> lengths = {1, kN / 2, kN - 1, kN, kN + 1, 3 * kN};
  for (int32_t length : lengths) {
    SCOPED_TRACE("length " + std::to_string(length));
    std::string content;
    for (int32_t i = 0; i < length; ++i) content += static_cast<char>('a' + i % 26);
    TypeParam s;
    ASSERT_EQ(s.Assign(content), 0);
    // Fill the heap block exactly so that the append must move it.
    if (s.IsOnHeap()) {
      while (s.Length() < s.Capacity()) {
        ASSERT_EQ(s.AppendChar('+'), 0);
        content += '+';
      }
    }
    ASSERT_EQ(s.Append(s.Data(), s.Length()), 0);
    EXPECT_EQ(Str(s), content + content);
    const std::string doubled = content + content;
    ASSERT_EQ(s.Append(s.Data() + 1, 1), 0);
    EXPECT_EQ(Str(s), doubled + doubled.substr(1, 1));
    ExpectWellFormed(s);
  }
}

TYPED_TEST(ByteStringVariantTest, CopiesAndMoves) {
  constexpr int32_t kN = TypeParam::kInlineCapacity;
  for (int32_t length : {0, 5, kN, kN + 1, 4 * kN}) {
    SCOPED_TRACE("length " + std::to_string(length));
    const std::string content(static_cast<size_t>(length), 'q');
    TypeParam original(content);

    TypeParam copy(original);
    EXPECT_EQ(Str(copy), content);
    if (length > 0) {
      copy.MutableData()[0] = 'Z';
      EXPECT_EQ(Str(original), content) << "the copy shares storage";
    }

    TypeParam assigned("old");
    assigned = original;
    EXPECT_EQ(Str(assigned), content);
    assigned = *&assigned;
    EXPECT_EQ(Str(assigned), content);

    TypeParam moved(std::move(original));
    EXPECT_EQ(Str(moved), content);
    EXPECT_EQ(original.Length(), 0);  // NOLINT(bugprone-use-after-move)
    ExpectWellFormed(original);

    TypeParam target(std::string(2 * kN, 't'));
    target = std::move(moved);
    EXPECT_EQ(Str(target), content);
    EXPECT_EQ(moved.Length(), 0);  // NOLINT(bugprone-use-after-move)
    ExpectWellFormed(moved);
    ExpectWellFormed(target);
  }
}

TYPED_TEST(ByteStringVariantTest, SwapsEveryStorageCombination) {
  constexpr int32_t kN = TypeParam::kInlineCapacity;
  const std::string short_text = "short";
  const std::string long_a(2 * kN, 'a');
  const std::string long_b(3 * kN, 'b');
  const std::pair<std::string, std::string> pairs[] = {
      {short_text, "x"}, {short_text, long_a}, {long_a, short_text}, {long_a, long_b}};
  for (const auto& [left, right] : pairs) {
    TypeParam a(left);
    TypeParam b(right);
    a.Swap(b);
    EXPECT_EQ(Str(a), right);
    EXPECT_EQ(Str(b), left);
    ExpectWellFormed(a);
    ExpectWellFormed(b);
  }
}

TYPED_TEST(ByteStringVariantTest, EncodersAgreeWithTheGeneralString) {
  const std::string bytes = "\x01\xff hello \xe9\t?"s;
  TypeParam s;
  ByteString reference;
  s.AppendBase64(bytes.data(), static_cast<int32_t>(bytes.size()), false);
  reference.AppendBase64(bytes.data(), static_cast<int32_t>(bytes.size()), false);
  EXPECT_EQ(Str(s), Str(reference));
  s.DecodeBase64();
  EXPECT_EQ(Str(s), bytes);
  s.Clear();
  s.AppendHex(bytes.data(), static_cast<int32_t>(bytes.size()));
  EXPECT_EQ(Str(s), "01ff2068656c6c6f20e9093f");
  ExpectWellFormed(s);
}

// ---------------------------------------------------------------------------
// Growth and SetLength.

TEST(ByteStringTest, HundredBytesGoToAHeapBlockOf150AndNinetyNineComeBack) {
  ByteString s;
  const std::string content(100, 'h');
  ASSERT_EQ(s.Assign(content), 0);
  EXPECT_TRUE(s.IsOnHeap());
  EXPECT_EQ(s.Capacity(), 150);
  ASSERT_EQ(s.SetLength(99), 0);
  EXPECT_FALSE(s.IsOnHeap());
  EXPECT_EQ(s.Capacity(), 99);
  EXPECT_EQ(Str(s), content.substr(0, 99));
}

TEST(ByteStringTest, HeapBlockDoesNotShrinkWhileTheContentIsLong) {
  ByteString s;
  ASSERT_EQ(s.SetLength(1000), 0);
  EXPECT_EQ(s.Capacity(), 1500);
  ASSERT_EQ(s.SetLength(100), 0);
  EXPECT_EQ(s.Capacity(), 1500);
  ASSERT_EQ(s.SetLength(1500), 0);
  EXPECT_EQ(s.Capacity(), 1500);
  ASSERT_EQ(s.SetLength(1501), 0);
  EXPECT_EQ(s.Capacity(), 1501 + 750);
}

// A megabyte appended in small pieces may reallocate only logarithmically often.
TEST(ByteStringTest, RepeatedAppendIsAmortised) {
  ByteString s;
  const char piece[16] = {'0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};
  int capacity_changes = 0;
  int32_t capacity = s.Capacity();
  for (int i = 0; i < (1 << 20) / 16; ++i) {
    ASSERT_EQ(s.Append(piece, 16), 0);
    if (s.Capacity() != capacity) {
      ++capacity_changes;
      capacity = s.Capacity();
    }
  }
  EXPECT_EQ(s.Length(), 1 << 20);
  EXPECT_LE(capacity_changes, 25);  // log1.5(2^20 / 100) is about 23
  EXPECT_EQ(s.View().substr(s.Length() - 16), std::string_view(piece, 16));
}

TEST(ByteStringTest, SetLengthWithASource) {
  ByteString s("prefix");
  ASSERT_EQ(s.SetLength(3, "abcdef"), 0);
  EXPECT_EQ(Str(s), "abc");
  const std::string long_text(300, 'L');
  ASSERT_EQ(s.SetLength(300, long_text.data()), 0);
  EXPECT_EQ(Str(s), long_text);
  s.MutableData()[5] = '!';
  ASSERT_EQ(s.SetLength(200, s.Data() + 5), 0);  // from inside the heap block
  EXPECT_EQ(Str(s), "!" + std::string(199, 'L'));
  ASSERT_EQ(s.SetLength(10, s.Data() + 1), 0);  // and from there back inline
  EXPECT_EQ(Str(s), std::string(10, 'L'));
  EXPECT_FALSE(s.IsOnHeap());
  ExpectWellFormed(s);
}

TEST(ByteStringTest, NegativeLengthsCountAsZero) {
  ByteString s("abc");
  EXPECT_EQ(s.SetLength(-5), 0);
  EXPECT_EQ(s.Length(), 0);
  s.Assign("abc");
  EXPECT_EQ(s.Assign("xyz", -1), 0);
  EXPECT_EQ(s.Length(), 0);
}

// Lengths the 32-bit arithmetic cannot grow to are refused before any write.
TEST(ByteStringTest, RefusesLengthsNearTheThirtyTwoBitLimit) {
  ByteString s("kept");
  EXPECT_EQ(s.SetLength(INT32_MAX), kErrOutOfMemory);
  EXPECT_EQ(s.SetLength(INT32_MAX - 1), kErrOutOfMemory);
  EXPECT_EQ(Str(s), "kept");
  EXPECT_EQ(s.AppendRepeated(INT32_MAX - 2, 'x'), kErrOutOfMemory);
  EXPECT_EQ(Str(s), "kept");
}

// ---------------------------------------------------------------------------
// Assign and Append.

TEST(ByteStringTest, AssignForms) {
  ByteString s("before");
  EXPECT_EQ(s.Assign(static_cast<const char*>(nullptr)), 0);
  EXPECT_EQ(Str(s), "");
  EXPECT_EQ(s.Assign(nullptr, 5), 0);
  EXPECT_EQ(Str(s), "");
  EXPECT_EQ(s.Assign("text"), 0);
  EXPECT_EQ(Str(s), "text");
  EXPECT_EQ(s.Assign("abcdef", 2), 0);
  EXPECT_EQ(Str(s), "ab");
  ShortByteString20 other("from a short string");
  EXPECT_EQ(s.Assign(other), 0);
  EXPECT_EQ(Str(s), "from a short string");
  ByteString long_text(std::string(250, 'z'));
  EXPECT_EQ(other.Assign(long_text), 0);
  EXPECT_EQ(Str(other), std::string(250, 'z'));
  EXPECT_EQ(s.Assign(s.Data() + 5), 0);  // a tail of itself
  EXPECT_EQ(Str(s), "a short string");
}

TEST(ByteStringTest, AppendOfNothingChangesNothing) {
  struct Case {
    const char* name;
    const char* bytes;
    int32_t length;
  };
  const Case cases[] = {
      {"null pointer", nullptr, 4}, {"zero length", "abcd", 0}, {"negative length", "abcd", -3}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ByteString s("keep");
    EXPECT_EQ(s.Append(c.bytes, c.length), 0);
    EXPECT_EQ(Str(s), "keep");
  }
  ByteString s("keep");
  EXPECT_EQ(s.Append(static_cast<const char*>(nullptr)), 0);
  EXPECT_EQ(s.Append(""), 0);
  EXPECT_EQ(Str(s), "keep");
}

TEST(ByteStringTest, AppendForms) {
  ByteString s;
  s.Append("ab");
  s.Append("cdef", 2);
  s.Append(std::string_view("ef"));
  s.Append(ShortByteString20("gh"));
  s.AppendChar('i');
  s.AppendRepeated(3, '-');
  s.AppendRepeated(0, '!');
  s.AppendRepeated(-1, '!');
  EXPECT_EQ(Str(s), "abcdefghi---");
  s.AppendRepeated(200, '=');
  EXPECT_EQ(Str(s), "abcdefghi---" + std::string(200, '='));
}

TEST(ByteStringTest, ContentMayHoldNulBytes) {
  const std::string content = "a\0b\0c"s;
  ByteString s(content);
  EXPECT_EQ(s.Length(), 5);
  EXPECT_EQ(Str(s), content);
  // Operations with a NUL-terminated argument stop at the first NUL of it,
  // but searches run over the whole content.
  EXPECT_TRUE(s.Equals("a"));
  EXPECT_TRUE(s.Equals(content.data(), 5));
  EXPECT_FALSE(s.Equals("a", 1));
  EXPECT_EQ(s.Find("b"), 2);
  EXPECT_EQ(s.FindChar('\0'), 1);
  EXPECT_EQ(s.FindChar('\0', 2), 3);
  EXPECT_EQ(s.ByteAt(3), '\0');
  EXPECT_EQ(s.ByteAt(4), 'c');

  ByteString copy(s);
  EXPECT_EQ(Str(copy), content);
  s.AppendRepeated(200, '\0');
  s.Append("end");
  ASSERT_TRUE(s.IsOnHeap());
  ASSERT_EQ(s.SetLength(5), 0);
  EXPECT_EQ(Str(s), content);
}

TEST(ByteStringTest, AppendIntForms) {
  struct Case {
    int64_t value;
    const char* text;
  };
  const Case int32_cases[] = {{0, "0"},
                              {7, "7"},
                              {-7, "-7"},
                              {1000000, "1000000"},
                              {INT32_MAX, "2147483647"},
                              {INT32_MIN, "-2147483648"}};
  for (const Case& c : int32_cases) {
    ByteString s("n=");
    EXPECT_EQ(s.AppendInt(static_cast<int32_t>(c.value)), 0);
    EXPECT_EQ(Str(s), "n="s + c.text);
  }
  const Case int64_cases[] = {{0, "0"},
                              {-1, "-1"},
                              {4294967296LL, "4294967296"},
                              {INT64_MAX, "9223372036854775807"},
                              {INT64_MIN, "-9223372036854775808"}};
  for (const Case& c : int64_cases) {
    ByteString s("n=");
    EXPECT_EQ(s.AppendInt64(c.value), 0);
    EXPECT_EQ(Str(s), "n="s + c.text);
    EXPECT_EQ(ByteString(c.text).ToInt64(), c.value);
  }
}

TEST(ByteStringTest, AppendQuoted) {
  ByteString s("x=");
  EXPECT_EQ(s.AppendQuoted(nullptr), 0);
  EXPECT_EQ(Str(s), "x=");
  EXPECT_EQ(s.AppendQuoted(""), 0);
  EXPECT_EQ(Str(s), "x=\"\"");
  s.Assign("realm=");
  EXPECT_EQ(s.AppendQuoted("bank"), 0);
  EXPECT_EQ(Str(s), "realm=\"bank\"");
}

// Quoting its own content must not read storage the first quote moved.
TEST(ByteStringTest, AppendQuotedOfItsOwnContent) {
  for (int32_t length : {3, 98, 99, 150}) {
    SCOPED_TRACE("length " + std::to_string(length));
    const std::string content(static_cast<size_t>(length), 'k');
    ByteString s(content.substr(0, 100));
    ASSERT_EQ(s.Assign(content), 0);  // a full block of 150 when on the heap
    ASSERT_EQ(s.AppendQuoted(s.Data()), 0);
    EXPECT_EQ(Str(s), content + "\"" + content + "\"");
  }
}

// ---------------------------------------------------------------------------
// Cutting: RemovePrefix, Slice, Trim (DropLast is covered above).

TEST(ByteStringTest, RemovePrefix) {
  struct Case {
    int32_t n;
    const char* rest;
  };
  const Case cases[] = {{-1, "hello"}, {0, "hello"}, {1, "ello"}, {4, "o"}, {5, ""}, {9, ""}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.n);
    ByteString s("hello");
    EXPECT_EQ(s.RemovePrefix(c.n), 0);
    EXPECT_EQ(Str(s), c.rest);
  }
  ByteString s(std::string(50, 'a') + std::string(100, 'b'));
  ASSERT_EQ(s.RemovePrefix(50), 0);
  EXPECT_EQ(Str(s), std::string(100, 'b'));
  ASSERT_EQ(s.RemovePrefix(1), 0);
  EXPECT_FALSE(s.IsOnHeap());
  EXPECT_EQ(Str(s), std::string(99, 'b'));
}

TEST(ByteStringTest, Slice) {
  struct Case {
    int32_t start;
    int32_t end;
    int code;
    const char* rest;
  };
  const Case cases[] = {
      {3, 100, 0, "3456789"},   {0, 10, 0, "0123456789"}, {2, 5, 0, "234"},
      {9, 10, 0, "9"},          {5, 2, 0, ""},            {4, 4, 0, ""},
      {10, 12, 432, "0123456789"}, {-1, 3, 432, "0123456789"}, {2, -1, 432, "0123456789"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.start) + ", " + std::to_string(c.end));
    ByteString s("0123456789");
    EXPECT_EQ(s.Slice(c.start, c.end), c.code);
    EXPECT_EQ(Str(s), c.rest);
  }
  ByteString empty;
  EXPECT_EQ(empty.Slice(0, 0), kErrIndexOutOfRange);

  ByteString s(std::string(10, '.') + std::string(140, 'm'));
  ASSERT_EQ(s.Slice(10, 150), 0);
  EXPECT_EQ(Str(s), std::string(140, 'm'));
  ASSERT_EQ(s.Slice(1, 60), 0);
  EXPECT_FALSE(s.IsOnHeap());
  EXPECT_EQ(Str(s), std::string(59, 'm'));
}

TEST(ByteStringTest, Trim) {
  struct Case {
    const char* text;
    char c;
    const char* rest;
  };
  const Case cases[] = {{"xxabcxx", 'x', "abc"}, {"xaxbx", 'x', "axb"}, {"abc", 'x', "abc"},
                        {"xxxx", 'x', ""},       {"", 'x', ""},         {"  a b  ", ' ', "a b"},
                        {"x", 'x', ""},          {"ax", 'x', "a"},      {"xa", 'x', "a"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    ByteString s(c.text);
    EXPECT_EQ(s.Trim(c.c), 0);
    EXPECT_EQ(Str(s), c.rest);
  }
}

// ---------------------------------------------------------------------------
// Reading and searching.

TEST(ByteStringTest, ByteAtAndTailAtOutsideTheContent) {
  ByteString s("abc");
  EXPECT_EQ(s.ByteAt(-1), '\0');
  EXPECT_EQ(s.ByteAt(0), 'a');
  EXPECT_EQ(s.ByteAt(2), 'c');
  EXPECT_EQ(s.ByteAt(3), '\0');
  EXPECT_STREQ(s.TailAt(-1), "");
  EXPECT_STREQ(s.TailAt(0), "abc");
  EXPECT_STREQ(s.TailAt(2), "c");
  EXPECT_STREQ(s.TailAt(3), "");
  EXPECT_STREQ(s.TailAt(1000), "");
}

TEST(ByteStringTest, Find) {
  struct Case {
    const char* haystack;
    const char* needle;
    int32_t start;
    int32_t position;
  };
  const Case cases[] = {
      {"hello world", "o", 0, 4},       {"hello world", "o", 5, 7},
      {"hello world", "o", 8, -1},      {"hello world", "world", 0, 6},
      {"hello world", "World", 0, -1},  {"hello world", "hello world!", 0, -1},
      {"aaab", "aab", 0, 1},            {"abab", "ab", 1, 2},
      {"abc", "c", 2, 2},               {"abc", "c", 3, -1},
      {"abc", "c", 99, -1},             {"abc", "a", -1, -1},
      {"abc", "", 0, 0},                {"abc", "", 2, 2},
      {"abc", "", -1, -1},              {"abc", nullptr, 0, 0},
      {"", "", 0, 0},                   {"", "a", 0, -1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.haystack) + " / " + (c.needle ? c.needle : "null") + " from " +
                 std::to_string(c.start));
    EXPECT_EQ(ByteString(c.haystack).Find(c.needle, c.start), c.position);
  }
  EXPECT_EQ(ByteString("<OFX>").Find("<OFX>"), 0);
}

TEST(ByteStringTest, FindChar) {
  struct Case {
    char c;
    int32_t start;
    int32_t position;
  };
  const Case cases[] = {{'a', 0, 0}, {'a', 1, 3}, {'a', 4, -1}, {'z', 0, -1},
                        {'a', -1, -1}, {'c', 5, 5}, {'c', 6, -1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(1, c.c) + " from " + std::to_string(c.start));
    EXPECT_EQ(ByteString("abcabc").FindChar(c.c, c.start), c.position);
  }
}

TEST(ByteStringTest, Equals) {
  struct Case {
    const char* content;
    const char* text;
    int32_t length;
    bool equal;
  };
  const Case cases[] = {
      {"abc", "abc", -1, true},  {"abc", "ab", -1, false},  {"abc", "abcd", -1, false},
      {"abc", "ABC", -1, false}, {"abc", "abc", 3, true},   {"abc", "abcd", 3, true},
      {"abc", "abc", 2, false},  {"abc", "abx", 3, false},  {"abc", nullptr, -1, false},
      {"", nullptr, -1, true},   {"", "", 0, true},         {"", "x", 0, true},
      {"abc", "abc", 4, false},  {"abc", nullptr, 3, false}, {"", nullptr, 0, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.content) + " vs " + (c.text ? c.text : "null") + ", " +
                 std::to_string(c.length));
    EXPECT_EQ(ByteString(c.content).Equals(c.text, c.length), c.equal);
  }
}

TEST(ByteStringTest, EqualsNoCase) {
  ByteString s("Content-Type");
  EXPECT_TRUE(s.EqualsNoCase("content-type"));
  EXPECT_TRUE(s.EqualsNoCase("CONTENT-TYPE"));
  EXPECT_FALSE(s.EqualsNoCase("content-typ"));
  EXPECT_FALSE(s.EqualsNoCase("content_type"));
  EXPECT_TRUE(ByteString().EqualsNoCase(nullptr));
}

TEST(ByteStringTest, StartsWithAndEndsWith) {
  struct Case {
    const char* text;
    bool starts;
    bool ends;
  };
  const Case cases[] = {
      {"OFX", true, false},          {"ofx", false, false},           {"", true, true},
      {nullptr, true, true},         {"OFXHEADER:100", true, true},   {"OFXHEADER:1000", false, false},
      {"100", false, true},          {"x100", false, false},          {":100", false, true},
      {"XOFXHEADER:100", false, false},
  };
  ByteString s("OFXHEADER:100");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text ? c.text : "null");
    EXPECT_EQ(s.StartsWith(c.text), c.starts);
    EXPECT_EQ(s.EndsWith(c.text), c.ends);
  }
}

TEST(ByteStringTest, ToUpperTouchesOnlyAsciiLetters) {
  ByteString s("`az{ AZ@[ 09 \xe9\xff x"s);
  EXPECT_EQ(s.ToUpper(), 0);
  EXPECT_EQ(Str(s), "`AZ{ AZ@[ 09 \xe9\xff X"s);
}

// ---------------------------------------------------------------------------
// Base64.

TEST(ByteStringTest, Base64EncodesTheStandardVectors) {
  struct Case {
    std::string bytes;
    const char* encoded;
  };
  const Case cases[] = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="},
      {"fooba", "Zm9vYmE="},
      {"foobar", "Zm9vYmFy"},
      {"\xfb\xff"s, "+/8="},
      {"\0\0\0"s, "AAAA"},
      {"\xff\xff\xff"s, "////"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.encoded);
    for (bool line_breaks : {false, true}) {
      ByteString s("> ");
      EXPECT_EQ(s.AppendBase64(c.bytes.data(), static_cast<int32_t>(c.bytes.size()), line_breaks), 0);
      EXPECT_EQ(Str(s), "> "s + c.encoded);
    }
  }
  ByteString s("x");
  EXPECT_EQ(s.AppendBase64(nullptr, 5, false), 0);
  EXPECT_EQ(Str(s), "x");
}

// 48 input bytes fill one 64-character line; no break after the last line.
TEST(ByteStringTest, Base64LineBreaks) {
  struct Case {
    int32_t length;
    int32_t encoded_length;
    std::vector<int32_t> breaks;  // positions of "\r\n"
    const char* ending;
  };
  const Case cases[] = {
      {47, 64, {}, "="},
      {48, 64, {}, ""},
      {49, 70, {64}, "=="},
      {96, 130, {64}, ""},
      {97, 136, {64, 130}, "=="},
      {144, 196, {64, 130}, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE("length " + std::to_string(c.length));
    std::string bytes;
    for (int32_t i = 0; i < c.length; ++i) bytes += static_cast<char>(i * 7 + 3);
    ByteString broken;
    ASSERT_EQ(broken.AppendBase64(bytes.data(), c.length, true), 0);
    EXPECT_EQ(broken.Length(), c.encoded_length);
    std::vector<int32_t> breaks;
    for (int32_t p = broken.Find("\r\n"); p >= 0; p = broken.Find("\r\n", p + 2)) breaks.push_back(p);
    EXPECT_EQ(breaks, c.breaks);
    EXPECT_TRUE(broken.EndsWith(c.ending));
    EXPECT_FALSE(broken.EndsWith("\n"));

    ByteString unbroken;
    ASSERT_EQ(unbroken.AppendBase64(bytes.data(), c.length, false), 0);
    std::string joined = Str(broken);
    for (size_t p; (p = joined.find("\r\n")) != std::string::npos;) joined.erase(p, 2);
    EXPECT_EQ(joined, Str(unbroken));

    ASSERT_EQ(broken.DecodeBase64(), 0);
    EXPECT_EQ(Str(broken), bytes);
  }
}

TEST(ByteStringTest, Base64Decodes) {
  struct Case {
    const char* name;
    std::string encoded;
    std::string decoded;
  };
  const Case cases[] = {
      {"line break between groups", "TWFu\r\nTWE=", "ManMa"},
      {"full groups", "Zm9vYmFy", "foobar"},
      {"one pad", "Zm9vYmE=", "fooba"},
      {"two pads", "Zm9vYg==", "foob"},
      {"partial group of three", "Zm9vYmE", "fooba"},
      {"partial group of two", "Zg", "f"},
      {"lone character", "Z", ""},
      {"stops at the first pad", "Zm9v=Zm9v", "foo"},
      {"skips junk", "!Z m\t9*v\n", "foo"},
      {"empty", "", ""},
      {"only junk", "***", ""},
      {"binary", "+/8=", "\xfb\xff"s},
      {"nul bytes out", "AAAA", "\0\0\0"s},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ByteString s(c.encoded);
    EXPECT_EQ(s.DecodeBase64(), 0);
    EXPECT_EQ(Str(s), c.decoded);
    ExpectWellFormed(s);
  }
}

TEST(ByteStringTest, Base64RoundTripsEveryByteValue) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  for (size_t length = 0; length <= bytes.size(); length += 37) {
    for (bool line_breaks : {false, true}) {
      ByteString s;
      ASSERT_EQ(s.AppendBase64(bytes.data(), static_cast<int32_t>(length), line_breaks), 0);
      ASSERT_EQ(s.DecodeBase64(), 0);
      EXPECT_EQ(Str(s), bytes.substr(0, length));
      ExpectWellFormed(s);
    }
  }
}

TEST(ByteStringTest, Base64OfItsOwnContent) {
  ByteString s("foobar");
  ASSERT_EQ(s.AppendBase64(s.Data(), s.Length(), false), 0);
  EXPECT_EQ(Str(s), "foobarZm9vYmFy");
}

// ---------------------------------------------------------------------------
// Hex and percent encoding.

TEST(ByteStringTest, AppendHex) {
  const std::string bytes = "\x00\x0f\xa0\xff\x7f"s;
  ByteString s("#");
  EXPECT_EQ(s.AppendHex(bytes.data(), static_cast<int32_t>(bytes.size())), 0);
  EXPECT_EQ(Str(s), "#000fa0ff7f");
  EXPECT_EQ(s.AppendHex(nullptr, 3), 0);
  EXPECT_EQ(s.AppendHex(bytes.data(), 0), 0);
  EXPECT_EQ(Str(s), "#000fa0ff7f");
  ASSERT_EQ(s.AppendHex(s.Data(), 1), 0);
  EXPECT_EQ(Str(s), "#000fa0ff7f23");
}

TEST(ByteStringTest, AppendHexDecoded) {
  struct Case {
    const char* text;
    std::string bytes;
  };
  const Case cases[] = {
      {"", ""},
      {"00ff7F", "\x00\xff\x7f"s},
      {"aBcD", "\xab\xcd"},
      {"abc", "\xab\xff"},  // a lone last character
      {"1g", "\xff"},
      {"g1", "\xff"},
      {"zz12", "\xff\x12"},
      {" 1", "\xff"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    ByteString s(">");
    EXPECT_EQ(s.AppendHexDecoded(c.text), 0);
    EXPECT_EQ(Str(s), ">" + c.bytes);
  }
  ByteString s(">");
  EXPECT_EQ(s.AppendHexDecoded(nullptr), 0);
  EXPECT_EQ(Str(s), ">");
}

TEST(ByteStringTest, HexRoundTrips) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(255 - i);
  ByteString hex;
  ASSERT_EQ(hex.AppendHex(bytes.data(), 256), 0);
  ByteString back;
  ASSERT_EQ(back.AppendHexDecoded(hex.Data()), 0);
  EXPECT_EQ(Str(back), bytes);
}

// Unreserved characters and "/" are safe; everything else is escaped.
std::vector<uint8_t> PathSafeTable() {
  std::vector<uint8_t> table(96, 0);
  auto mark = [&](int c) { table[static_cast<size_t>(c - 32)] = 1; };
  for (int c = 'a'; c <= 'z'; ++c) mark(c);
  for (int c = 'A'; c <= 'Z'; ++c) mark(c);
  for (int c = '0'; c <= '9'; ++c) mark(c);
  for (char c : std::string("-._~/")) mark(c);
  return table;
}

TEST(ByteStringTest, AppendPercentEncoded) {
  const std::vector<uint8_t> path = PathSafeTable();
  std::vector<uint8_t> everything(96, 1);
  std::vector<uint8_t> other_bits(96, 0xFE);  // every bit but bit 0
  std::vector<uint8_t> space_safe = path;
  space_safe[0] = 1;
  struct Case {
    const char* name;
    const char* text;
    const std::vector<uint8_t>* table;
    const char* encoded;
  };
  const Case cases[] = {
      {"safe text", "/ofx/server-1.0_~", &path, "/ofx/server-1.0_~"},
      {"space", "a b", &path, "a%20b"},
      {"space marked safe", "a b", &space_safe, "a b"},
      {"reserved", "a?b=c&d", &path, "a%3Fb%3Dc%26d"},
      {"upper-case digits", "\xab", &everything, "%AB"},
      {"byte above 127", "caf\xe9", &everything, "caf%E9"},
      {"tab", "\t", &everything, "%09"},
      {"line end", "\r\n", &everything, "%0D%0A"},
      {"DEL is in the table", "\x7f", &everything, "\x7f"},
      {"DEL unmarked", "\x7f", &path, "%7F"},
      {"only bit 0 counts", "ab", &other_bits, "%61%62"},
      {"percent itself", "100%", &path, "100%25"},
      {"empty", "", &path, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ByteString s("GET ");
    EXPECT_EQ(s.AppendPercentEncoded(c.text, c.table->data()), 0);
    EXPECT_EQ(Str(s), "GET "s + c.encoded);
  }
  ByteString s;
  EXPECT_EQ(s.AppendPercentEncoded("a b", nullptr), 0);
  EXPECT_EQ(Str(s), "%61%20%62");
  EXPECT_EQ(s.AppendPercentEncoded(nullptr, path.data()), 0);
  EXPECT_EQ(Str(s), "%61%20%62");
}

}  // namespace
}  // namespace orvelan
