#include "base/string_list.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace orvelan {
namespace {

using namespace std::string_literals;

std::string ItemBytes(const StringList& list, int32_t index) {
  return std::string(list.Item(index), static_cast<size_t>(list.ItemLength(index)));
}

std::vector<std::string> Items(const StringList& list) {
  std::vector<std::string> items;
  for (int32_t i = 0; i < list.Count(); ++i) items.push_back(ItemBytes(list, i));
  return items;
}

StringList ListOf(const std::vector<std::string>& items) {
  StringList list;
  for (const std::string& item : items) {
    EXPECT_EQ(list.Add(item.data(), static_cast<int32_t>(item.size())), 0);
  }
  return list;
}

TEST(StringListTest, EmptyListReadsAsEmptyTexts) {
  StringList list;
  EXPECT_EQ(list.Count(), 0);
  EXPECT_STREQ(list.Item(0), "");
  EXPECT_STREQ(list.Item(-1), "");
  EXPECT_EQ(list.ItemLength(0), 0);
  EXPECT_EQ(list.ItemAsInt(0), 0);
  EXPECT_EQ(list.Packed().Length(), 0);
}

TEST(StringListTest, PacksLengthBytesAndNul) {
  StringList list;
  ASSERT_EQ(list.Add("ab"), 0);
  ASSERT_EQ(list.Add(""), 0);
  ASSERT_EQ(list.Add("cde"), 0);
  EXPECT_EQ(list.Packed().View(), "\0\0\2ab\0"
                                  "\0\0\0\0"
                                  "\0\0\3cde\0"s);
  EXPECT_EQ(Items(list), (std::vector<std::string>{"ab", "", "cde"}));
}

// The 3-byte length is big-endian; lengths past one and two bytes exercise all three.
TEST(StringListTest, LongItemsUseAllThreeLengthBytes) {
  struct Case {
    int32_t length;
    std::string header;
  };
  const Case cases[] = {{255, "\x00\x00\xff"s},   {256, "\x00\x01\x00"s},   {65535, "\x00\xff\xff"s},
                        {65536, "\x01\x00\x00"s}, {70000, "\x01\x11\x70"s}, {1 << 20, "\x10\x00\x00"s}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.length);
    std::string item;
    for (int32_t i = 0; i < c.length; ++i) item += static_cast<char>('a' + i % 26);
    StringList list;
    ASSERT_EQ(list.Add("before"), 0);
    ASSERT_EQ(list.Add(item.data(), c.length), 0);
    ASSERT_EQ(list.Add("after"), 0);
    EXPECT_EQ(list.Packed().View().substr(10, 3), c.header);
    EXPECT_EQ(list.ItemLength(1), c.length);
    EXPECT_EQ(ItemBytes(list, 1), item);
    EXPECT_STREQ(list.Item(2), "after");
    EXPECT_EQ(list.Packed().Length(), 10 + (c.length + 4) + 9);
  }
}

TEST(StringListTest, ItemsMayHoldNulBytes) {
  StringList list;
  ASSERT_EQ(list.Add("a\0b", 3), 0);
  ASSERT_EQ(list.Add("c"), 0);
  EXPECT_STREQ(list.Item(0), "a");
  EXPECT_EQ(list.ItemLength(0), 3);
  EXPECT_EQ(ItemBytes(list, 0), "a\0b"s);
  EXPECT_STREQ(list.Item(1), "c");
}

TEST(StringListTest, NullAndNegativeLengthsAddEmptyItems) {
  StringList list;
  ASSERT_EQ(list.Add(nullptr), 0);
  ASSERT_EQ(list.Add(nullptr, 5), 0);
  ASSERT_EQ(list.Add("xyz", -1), 0);
  ASSERT_EQ(list.Add("xyz", 0), 0);
  EXPECT_EQ(Items(list), (std::vector<std::string>(4, "")));
}

TEST(StringListTest, SetItemMovesTheItemsBehind) {
  struct Case {
    int32_t index;
    std::string text;
    int code;
    std::vector<std::string> items;
  };
  const Case cases[] = {
      {0, "A", 0, {"A", "beta", "gamma"}},
      {0, "a much longer first item", 0, {"a much longer first item", "beta", "gamma"}},
      {1, "BETA", 0, {"alpha", "BETA", "gamma"}},
      {1, "", 0, {"alpha", "", "gamma"}},
      {1, std::string(300, 'b'), 0, {"alpha", std::string(300, 'b'), "gamma"}},
      {2, "g", 0, {"alpha", "beta", "g"}},
      {2, "gamma ray", 0, {"alpha", "beta", "gamma ray"}},
      {-1, "x", 432, {"alpha", "beta", "gamma"}},
      {3, "x", 432, {"alpha", "beta", "gamma"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.index) + " <- " + c.text);
    StringList list = ListOf({"alpha", "beta", "gamma"});
    EXPECT_EQ(list.SetItem(c.index, c.text.c_str()), c.code);
    EXPECT_EQ(Items(list), c.items);
    EXPECT_EQ(list.Packed().Length(), static_cast<int32_t>(4 * c.items.size() + c.items[0].size() +
                                                           c.items[1].size() + c.items[2].size()));
  }
}

// Editing early items must keep later ones readable, including across the
// inline/heap boundary of the packed buffer in both directions.
TEST(StringListTest, LaterItemsSurviveEditsOfEarlierOnes) {
  StringList list = ListOf({"one", "two", "three", "four", "five"});
  ASSERT_EQ(list.SetItem(0, std::string(200, '1').c_str()), 0);
  EXPECT_TRUE(list.Packed().IsOnHeap());
  ASSERT_EQ(list.SetItem(2, ""), 0);
  ASSERT_EQ(list.SetItem(1, "2"), 0);
  EXPECT_EQ(Items(list), (std::vector<std::string>{std::string(200, '1'), "2", "", "four", "five"}));
  ASSERT_EQ(list.SetItem(0, "1"), 0);
  EXPECT_FALSE(list.Packed().IsOnHeap());
  EXPECT_EQ(Items(list), (std::vector<std::string>{"1", "2", "", "four", "five"}));
}

TEST(StringListTest, ItsOwnItemsAsSources) {
  StringList list = ListOf({"first", std::string(70, 'x'), "third"});
  ASSERT_FALSE(list.Packed().IsOnHeap());
  ASSERT_EQ(list.Add(list.Item(1), list.ItemLength(1)), 0);  // the buffer moves to the heap
  EXPECT_EQ(ItemBytes(list, 3), std::string(70, 'x'));
  ASSERT_EQ(list.SetItem(0, list.Item(2)), 0);
  ASSERT_EQ(list.SetItem(2, list.Item(1)), 0);  // grows an item from the one before it
  EXPECT_EQ(Items(list), (std::vector<std::string>{"third", std::string(70, 'x'), std::string(70, 'x'),
                                                   std::string(70, 'x')}));
  ASSERT_EQ(list.SetItem(1, list.Item(1) + 65), 0);  // a tail of itself
  EXPECT_EQ(ItemBytes(list, 1), "xxxxx");
}

TEST(StringListTest, IntegerItems) {
  struct Case {
    int64_t value;
    const char* text;
  };
  const Case cases[] = {{0, "0"},
                        {-12, "-12"},
                        {INT32_MAX, "2147483647"},
                        {INT32_MIN, "-2147483648"},
                        {INT64_MIN, "-9223372036854775808"}};
  StringList list;
  for (const Case& c : cases) ASSERT_EQ(list.AddInt(c.value), 0);
  for (int32_t i = 0; i < list.Count(); ++i) {
    EXPECT_STREQ(list.Item(i), cases[i].text);
    EXPECT_EQ(list.ItemAsInt(i), cases[i].value);
  }
  ASSERT_EQ(list.SetItemInt(1, 4096), 0);
  EXPECT_STREQ(list.Item(1), "4096");
  EXPECT_EQ(list.SetItemInt(99, 1), kErrIndexOutOfRange);

  StringList texts = ListOf({"12abc", "abc", " 7", "+5"});
  EXPECT_EQ(texts.ItemAsInt(0), 12);
  EXPECT_EQ(texts.ItemAsInt(1), 0);
  EXPECT_EQ(texts.ItemAsInt(2), 0);
  EXPECT_EQ(texts.ItemAsInt(3), 5);
  EXPECT_EQ(texts.ItemAsInt(4), 0);
}

TEST(StringListTest, RefusesItemsTheLengthFieldCannotHold) {
  const std::string largest(static_cast<size_t>(StringList::kMaxItemLength), 'm');
  const std::string too_long = largest + "m";
  StringList list = ListOf({"a", "b"});
  EXPECT_EQ(list.Add(too_long.data(), static_cast<int32_t>(too_long.size())), kErrOutOfMemory);
  EXPECT_EQ(list.Add(too_long.c_str()), kErrOutOfMemory);
  EXPECT_EQ(list.SetItem(0, too_long.c_str()), kErrOutOfMemory);
  EXPECT_EQ(list.SetItem(5, too_long.c_str()), kErrIndexOutOfRange);
  EXPECT_EQ(Items(list), (std::vector<std::string>{"a", "b"}));

  ASSERT_EQ(list.SetItem(0, largest.c_str()), 0);
  EXPECT_EQ(list.ItemLength(0), StringList::kMaxItemLength);
  EXPECT_STREQ(list.Item(1), "b");
}

TEST(StringListTest, ClearEmptiesTheList) {
  StringList list = ListOf({"a", std::string(500, 'b')});
  EXPECT_EQ(list.Clear(), 0);
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.Packed().Length(), 0);
  EXPECT_FALSE(list.Packed().IsOnHeap());
  ASSERT_EQ(list.Add("again"), 0);
  EXPECT_EQ(Items(list), (std::vector<std::string>{"again"}));
}

TEST(StringListTest, CopiesAndMoves) {
  const std::vector<std::string> items = {"a", std::string(200, 'b'), "c"};
  StringList original = ListOf(items);
  StringList copy(original);
  EXPECT_EQ(Items(copy), items);
  ASSERT_EQ(copy.SetItem(0, "changed"), 0);
  EXPECT_EQ(Items(original), items);

  StringList assigned = ListOf({"old"});
  assigned = original;
  EXPECT_EQ(Items(assigned), items);

  StringList moved(std::move(original));
  EXPECT_EQ(Items(moved), items);
  EXPECT_EQ(original.Count(), 0);  // NOLINT(bugprone-use-after-move)
  EXPECT_STREQ(original.Item(0), "");

  assigned = std::move(moved);
  EXPECT_EQ(Items(assigned), items);
  EXPECT_EQ(moved.Count(), 0);  // NOLINT(bugprone-use-after-move)
}

// Random adds and replacements against a vector of strings.
TEST(StringListTest, MatchesAVectorModelUnderRandomEdits) {
  std::mt19937 random(7);
  StringList list;
  std::vector<std::string> model;
  for (int step = 0; step < 2000; ++step) {
    const size_t length = random() % 40 == 0 ? 300 + random() % 300 : random() % 12;
    const std::string text(length, static_cast<char>('a' + step % 26));
    if (model.empty() || random() % 3 == 0) {
      ASSERT_EQ(list.Add(text.data(), static_cast<int32_t>(text.size())), 0);
      model.push_back(text);
    } else {
      const size_t index = random() % model.size();
      ASSERT_EQ(list.SetItem(static_cast<int32_t>(index), text.c_str()), 0);
      model[index] = text;
    }
    if (step % 100 == 0) {
      ASSERT_EQ(Items(list), model);
    }
  }
  EXPECT_EQ(Items(list), model);
}

}  // namespace
}  // namespace orvelan
