#include "base/string_list.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace orvelan {
namespace {

using namespace std::string_literals;
using Items = std::vector<std::string>;

Items ItemsOf(const StringList& list) {
  Items items;
  for (int32_t i = 0; i < list.Count(); ++i) items.emplace_back(list.Item(i), list.ItemLength(i));
  return items;
}

StringList ListOf(const Items& items) {
  StringList list;
  for (const std::string& item : items) list.Add(item.data(), static_cast<int32_t>(item.size()));
  return list;
}

TEST(StringListTest, PacksBigEndianLengthBytesAndNul) {
  const std::string big(70000, 'b');
  StringList list = ListOf({"a\0b"s, big, ""});
  ASSERT_EQ(list.Add(nullptr, 5), 0);
  EXPECT_EQ(list.Packed().View().substr(0, 10), "\0\0\3a\0b\0\x01\x11\x70"s);
  EXPECT_EQ(ItemsOf(list), (Items{"a\0b"s, big, "", ""}));
  EXPECT_STREQ(list.Item(0), "a");
  EXPECT_STREQ(list.Item(4), "");
}

// The start is on the heap; shrinking back inline must not cut the items behind.
TEST(StringListTest, SetItemMovesTheItemsBehind) {
  const Items start = {"alpha", std::string(200, 'b'), "gamma"};
  const struct { int32_t index; const char* text; int code; } cases[] = {
      {0, "a much longer first item", 0}, {1, "b", 0}, {2, "", 0}, {3, "x", 432}, {-1, "x", 432}};
  for (const auto& c : cases) {
    StringList list = ListOf(start);
    Items expected = start;
    if (c.code == 0) expected[static_cast<size_t>(c.index)] = c.text;
    EXPECT_EQ(list.SetItem(c.index, c.text), c.code);
    EXPECT_EQ(ItemsOf(list), expected) << c.index << " <- " << c.text;
  }
}

TEST(StringListTest, ItsOwnItemsAsSources) {
  const std::string x70(70, 'x');
  StringList list = ListOf({"first", x70, "third"});
  ASSERT_EQ(list.Add(list.Item(1), list.ItemLength(1)), 0);  // the buffer moves to the heap
  ASSERT_EQ(list.SetItem(0, list.Item(2)), 0);
  ASSERT_EQ(list.SetItem(2, list.Item(1)), 0);  // grows from the item before it
  EXPECT_EQ(ItemsOf(list), (Items{"third", x70, x70, x70}));
}

TEST(StringListTest, IntegerItemsAndOversizedItems) {
  StringList list;
  ASSERT_EQ(list.AddInt(INT64_MIN), 0);
  ASSERT_EQ(list.AddInt(-12), 0);
  ASSERT_EQ(list.SetItemInt(1, 4096), 0);
  EXPECT_EQ(ItemsOf(list), (Items{"-9223372036854775808", "4096"}));
  EXPECT_EQ(list.ItemAsInt(0), INT64_MIN);
  const std::string too_long(static_cast<size_t>(StringList::kMaxItemLength) + 1, 'm');
  EXPECT_EQ(list.Add(too_long.c_str()), kErrOutOfMemory);
  EXPECT_EQ(list.SetItem(0, too_long.c_str()), kErrOutOfMemory);
  EXPECT_EQ(list.Count(), 2);
}

TEST(StringListTest, MatchesAVectorModelUnderRandomEdits) {
  std::mt19937 random(7);
  StringList list;
  Items model;
  for (int step = 0; step < 1000; ++step) {
    const size_t length = random() % 20 == 0 ? 100 + random() % 200 : random() % 12;
    const std::string text(length, static_cast<char>('a' + step % 26));
    if (model.empty() || random() % 3 == 0) {
      ASSERT_EQ(list.Add(text.c_str()), 0);
      model.push_back(text);
    } else {
      const size_t index = random() % model.size();
      ASSERT_EQ(list.SetItem(static_cast<int32_t>(index), text.c_str()), 0);
      model[index] = text;
    }
  }
  EXPECT_EQ(ItemsOf(list), model);
}

}  // namespace
}  // namespace orvelan
