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

class ItemListTest : public testing::Test {
 protected:
  void SetUp() override { Record::constructed = Record::destroyed = 0; }
  void TearDown() override { EXPECT_EQ(Record::constructed, Record::destroyed) << "leaked or destroyed twice"; }

  static void Fill(ItemList<Record>& list, int n) {
    ASSERT_EQ(list.SetCount(n), 0);
    for (int i = 0; i < n; ++i) list.Item(i)->value = i;
  }
  static std::vector<int> Values(ItemList<Record>& list) {
    std::vector<int> values;
    for (int i = 0; i < list.Count(); ++i) values.push_back(list.Item(i)->value);
    return values;
  }
};

TEST_F(ItemListTest, GrowsToTwiceTheCountAndShrinksBackInline) {
  ItemList<Record> list;
  Fill(list, 3);
  Record* first = list.Item(0);
  ASSERT_EQ(list.SetCount(25), 0);
  EXPECT_EQ(list.Capacity(), 50);
  EXPECT_EQ(Record::constructed, 3) << "raising the count creates no items";
  EXPECT_EQ(list.Item(0), first) << "growing moves slots, never items";
  EXPECT_EQ(list.Item(25), nullptr);
  list.Item(10);
  list.Last();
  ASSERT_EQ(list.SetCount(2), 0);
  EXPECT_EQ(Record::destroyed, 3);  // items 2, 10 and 24
  EXPECT_EQ(list.Capacity(), 20);
  EXPECT_EQ(Values(list), (std::vector<int>{0, 1}));
  EXPECT_EQ(list.Item(0), first);
  ASSERT_EQ(list.SetCount(1), 0);
  ASSERT_EQ(list.SetCount(2), 0);
  EXPECT_EQ(list.Item(1)->value, 0) << "a slot behind the count was left filled";
}

TEST_F(ItemListTest, InsertAtStoresACloneAtTheClampedPosition) {
  ItemList<Record> list;
  Fill(list, 4);
  Record item;
  item.value = 9;
  EXPECT_EQ(list.InsertAt(item, -1), -1);
  ASSERT_EQ(list.InsertAt(item, 99), 0);
  ASSERT_EQ(list.InsertAt(item, 0), 0);
  EXPECT_EQ(Values(list), (std::vector<int>{9, 0, 1, 2, 3, 9}));
  EXPECT_NE(list.Item(0), &item);
}

// TearDown checks that no record is lost or destroyed twice on the way.
TEST_F(ItemListTest, MovesAndFailedGrowthReleaseEveryItem) {
  for (int n : {5, 30}) {
    ItemList<Record> source;
    Fill(source, n);
    ItemList<Record> target;
    Fill(target, 25);
    target = ItemList<Record>(std::move(source));
    EXPECT_EQ(Values(target).back(), n - 1);
    EXPECT_EQ(target.SetCount(INT32_MAX), kErrOutOfMemory);
    EXPECT_EQ(target.Count(), 0);
  }
}

TEST_F(ItemListTest, MatchesAVectorModelUnderRandomEdits) {
  std::mt19937 random(20240611);
  ItemList<Record> list;
  std::vector<int> model;
  for (int step = 1; step <= 1000; ++step) {
    if (random() % 3 == 0) {
      const int n = static_cast<int>(random() % 60);
      ASSERT_EQ(list.SetCount(n), 0);
      model.resize(static_cast<size_t>(n), 0);
    } else {
      const size_t position = random() % (model.size() + 3);
      Record item;
      item.value = step;
      ASSERT_EQ(list.InsertAt(item, static_cast<int32_t>(position)), 0);
      model.insert(model.begin() + static_cast<std::ptrdiff_t>(std::min(position, model.size())), step);
    }
    ASSERT_EQ(list.Capacity() == 20, model.size() <= 20);
  }
  EXPECT_EQ(Values(list), model);
}

}  // namespace
}  // namespace orvelan
