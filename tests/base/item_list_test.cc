#include "base/item_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <new>
#include <random>
#include <vector>

namespace orvelan {
namespace {

// Counts its lives, so tests see what the list creates and destroys.
struct Record {
  Record() noexcept { ++constructed; }
  Record(const Record& other) noexcept : value(other.value) { ++constructed; }
  ~Record() { ++destroyed; }
  Record* Clone() const { return new (std::nothrow) Record(*this); }

  static inline int constructed = 0;
  static inline int destroyed = 0;
  int value = 0;
};

std::vector<int> Values(ItemList<Record>& list) {
  std::vector<int> values;
  for (int i = 0; i < list.Count(); ++i) values.push_back(list.Item(i)->value);
  return values;
}

TEST(ItemListTest, GrowsToTwiceTheCountAndShrinksBackInline) {
  Record::constructed = Record::destroyed = 0;
  {
    ItemList<Record> list;
    ASSERT_EQ(list.SetCount(3), 0);
    for (int i = 0; i < 3; ++i) list.Item(i)->value = i;
    Record* first = list.Item(0);
    ASSERT_EQ(list.SetCount(25), 0);
    EXPECT_EQ(list.Capacity(), 50);
    EXPECT_EQ(Record::constructed, 3) << "raising the count creates no items";
    EXPECT_EQ(list.Item(25), nullptr);
    list.Item(10);
    list.Last();
    ASSERT_EQ(list.SetCount(2), 0);
    EXPECT_EQ(Record::destroyed, 3);  // items 2, 10 and 24
    EXPECT_EQ(list.Capacity(), 20);
    EXPECT_EQ(Values(list), (std::vector<int>{0, 1}));
    EXPECT_EQ(list.Item(0), first) << "growing moves slots, never items";
    ASSERT_EQ(list.SetCount(1), 0);
    ASSERT_EQ(list.SetCount(2), 0);
    EXPECT_EQ(list.Item(1)->value, 0) << "a slot behind the count was left filled";
    // Moves and failed growth release every item.
    for (int n : {30, 5}) {  // onto an inline list, then onto a heap one
      ItemList<Record> moved;
      ASSERT_EQ(moved.SetCount(n), 0);
      moved.Last()->value = n;
      list = ItemList<Record>(std::move(moved));
      EXPECT_EQ(Values(list).back(), n);
    }
    EXPECT_EQ(list.SetCount(INT32_MAX), kErrOutOfMemory);
    EXPECT_EQ(list.Count(), 0);
  }
  EXPECT_EQ(Record::constructed, Record::destroyed) << "leaked or destroyed twice";
}

// Inserts store clones at clamped positions; counts and the inline limit of
// 20 slots follow a vector.
TEST(ItemListTest, MatchesAVectorModelUnderRandomEdits) {
  Record::constructed = Record::destroyed = 0;
  std::mt19937 random(20240611);
  {
    ItemList<Record> list;
    std::vector<int> model;
    Record item;
    EXPECT_EQ(list.InsertAt(item, -1), -1);
    for (int step = 1; step <= 1000; ++step) {
      if (random() % 3 == 0) {
        const int n = static_cast<int>(random() % 60);
        ASSERT_EQ(list.SetCount(n), 0);
        model.resize(static_cast<size_t>(n), 0);
      } else {
        const size_t position = random() % (model.size() + 3);
        item.value = step;
        ASSERT_EQ(list.InsertAt(item, static_cast<int32_t>(position)), 0);
        model.insert(model.begin() + static_cast<std::ptrdiff_t>(std::min(position, model.size())), step);
      }
      ASSERT_EQ(list.Capacity() == 20, model.size() <= 20);
    }
    EXPECT_EQ(Values(list), model);
  }
  EXPECT_EQ(Record::constructed, Record::destroyed) << "leaked or destroyed twice";
}

}  // namespace
}  // namespace orvelan
