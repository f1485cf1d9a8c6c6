#include "base/item_list.h"

#include <gtest/gtest.h>

#include <climits>
#include <new>
#include <random>
#include <vector>

#include "base/byte_string.h"

namespace orvelan {
namespace {

// A record that counts its lives, so tests see what the list creates and destroys.
struct Record {
  static inline int constructed = 0;
  static inline int destroyed = 0;
  static inline int cloned = 0;
  static inline bool fail_clone = false;

  Record() noexcept { ++constructed; }
  ~Record() { ++destroyed; }
  Record* Clone() const {
    ++cloned;
    if (fail_clone) return nullptr;
    Record* copy = new (std::nothrow) Record();
    if (copy == nullptr) return nullptr;
    copy->value = value;
    if (copy->name.Assign(name) != kOk) {
      delete copy;
      return nullptr;
    }
    return copy;
  }
  static int Live() { return constructed - destroyed; }

  int value = 0;
  ByteString name;
};

class ItemListTest : public testing::Test {
 protected:
  void SetUp() override {
    Record::constructed = Record::destroyed = Record::cloned = 0;
    Record::fail_clone = false;
  }
  void TearDown() override { EXPECT_EQ(Record::Live(), 0) << "a record leaked or was destroyed twice"; }

  // Fills items 0..n-1 with the values 0..n-1.
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

TEST_F(ItemListTest, StartsEmptyOnTheInlineSlots) {
  ItemList<Record> list;
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.Capacity(), 20);
  EXPECT_EQ(list.Item(0), nullptr);
  EXPECT_EQ(list.Last(), nullptr);
}

TEST_F(ItemListTest, ItemsAreCreatedOnFirstAccess) {
  ItemList<Record> list;
  ASSERT_EQ(list.SetCount(5), 0);
  EXPECT_EQ(Record::constructed, 0) << "raising the count creates no items";
  Record* third = list.Item(3);
  ASSERT_NE(third, nullptr);
  EXPECT_EQ(Record::constructed, 1);
  EXPECT_EQ(list.Item(3), third);
  EXPECT_EQ(Record::constructed, 1);
  EXPECT_EQ(list.Last(), list.Item(4));
  EXPECT_EQ(Record::constructed, 2);
  // Outside [0, count) nothing is created.
  EXPECT_EQ(list.Item(-1), nullptr);
  EXPECT_EQ(list.Item(5), nullptr);
  EXPECT_EQ(list.Item(INT32_MAX), nullptr);
  EXPECT_EQ(Record::constructed, 2);
}

TEST_F(ItemListTest, GrowingPastTwentyDoublesTheRequestedCount) {
  ItemList<Record> list;
  Fill(list, 3);
  std::vector<Record*> before = {list.Item(0), list.Item(1), list.Item(2)};
  ASSERT_EQ(list.SetCount(25), 0);
  EXPECT_EQ(list.Capacity(), 50);
  EXPECT_EQ(list.Count(), 25);
  EXPECT_EQ(Record::constructed, 3);
  // Growing moves slots, never items.
  for (int i = 0; i < 3; ++i) EXPECT_EQ(list.Item(i), before[i]);
}

TEST_F(ItemListTest, ShrinkingDestroysTheExistingItemsBehindAndReturnsInline) {
  ItemList<Record> list;
  Fill(list, 3);
  ASSERT_EQ(list.SetCount(25), 0);
  list.Item(10);
  list.Item(24);
  Record* first = list.Item(0);
  Record* second = list.Item(1);
  ASSERT_EQ(Record::Live(), 5);

  ASSERT_EQ(list.SetCount(2), 0);
  EXPECT_EQ(Record::destroyed, 3);  // items 2, 10 and 24
  EXPECT_EQ(list.Capacity(), 20);
  EXPECT_EQ(list.Count(), 2);
  EXPECT_EQ(list.Item(0), first);
  EXPECT_EQ(list.Item(1), second);
  EXPECT_EQ(list.Item(2), nullptr);
  // Slots behind the count were cleared: raising it again gives fresh items.
  ASSERT_EQ(list.SetCount(25), 0);
  EXPECT_EQ(list.Item(10)->value, 0);
}

TEST_F(ItemListTest, CapacityFollowsTheCount) {
  struct Step {
    int32_t count;
    int32_t capacity;
  };
  const Step steps[] = {{0, 20},  {20, 20},  {21, 42}, {42, 42}, {43, 86}, {30, 86},
                        {21, 86}, {20, 20},  {100, 200}, {-3, 20}, {1, 20}, {150, 300}};
  ItemList<Record> list;
  for (const Step& s : steps) {
    SCOPED_TRACE(s.count);
    ASSERT_EQ(list.SetCount(s.count), 0);
    EXPECT_EQ(list.Count(), s.count < 0 ? 0 : s.count);
    EXPECT_EQ(list.Capacity(), s.capacity);
    if (list.Count() > 0) list.Last()->value = s.count;
  }
}

TEST_F(ItemListTest, AddKeepsOrderAcrossGrowth) {
  ItemList<Record> list;
  Record r;
  std::vector<int> capacities;
  for (int i = 0; i < 100; ++i) {
    r.value = i;
    ASSERT_EQ(list.Add(r), 0);
    if (capacities.empty() || capacities.back() != list.Capacity()) capacities.push_back(list.Capacity());
  }
  EXPECT_EQ(capacities, (std::vector<int>{20, 42, 86, 174}));
  std::vector<int> expected(100);
  for (int i = 0; i < 100; ++i) expected[i] = i;
  EXPECT_EQ(Values(list), expected);
  EXPECT_EQ(Record::cloned, 100);
}

TEST_F(ItemListTest, InsertAtPositions) {
  struct Case {
    int32_t position;
    int code;
    std::vector<int> values;
  };
  const Case cases[] = {
      {0, 0, {9, 0, 1, 2, 3}},  {2, 0, {0, 1, 9, 2, 3}}, {3, 0, {0, 1, 2, 9, 3}},
      {4, 0, {0, 1, 2, 3, 9}},  {99, 0, {0, 1, 2, 3, 9}}, {-1, -1, {0, 1, 2, 3}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.position);
    ItemList<Record> list;
    Fill(list, 4);
    Record item;
    item.value = 9;
    EXPECT_EQ(list.InsertAt(item, c.position), c.code);
    EXPECT_EQ(Values(list), c.values);
  }
}

TEST_F(ItemListTest, InsertStoresACloneAndTheCallerKeepsItsItem) {
  ItemList<Record> list;
  Fill(list, 4);
  Record item;
  item.value = 7;
  item.name.Assign("Checking");
  ASSERT_EQ(list.InsertAt(item, 99), 0);
  EXPECT_EQ(Record::cloned, 1);
  ASSERT_EQ(list.Count(), 5);
  Record* stored = list.Item(4);
  EXPECT_NE(stored, &item);
  EXPECT_EQ(stored->value, 7);
  EXPECT_TRUE(stored->name.Equals("Checking"));
  item.value = 8;
  item.name.Assign("Savings");
  EXPECT_EQ(stored->value, 7);
  EXPECT_TRUE(stored->name.Equals("Checking"));
}

TEST_F(ItemListTest, InsertingOneOfItsOwnItems) {
  ItemList<Record> list;
  Fill(list, 20);
  ASSERT_EQ(list.Add(*list.Item(3)), 0);  // the slot array moves while cloning item 3
  ASSERT_EQ(list.InsertAt(*list.Item(20), 0), 0);
  EXPECT_EQ(list.Count(), 22);
  EXPECT_EQ(list.Item(0)->value, 3);
  EXPECT_EQ(list.Item(21)->value, 3);
  EXPECT_EQ(list.Item(4)->value, 3);
}

TEST_F(ItemListTest, InsertAcrossTheInlineBoundary) {
  ItemList<Record> list;
  Fill(list, 20);
  Record item;
  item.value = -5;
  ASSERT_EQ(list.InsertAt(item, 5), 0);
  EXPECT_EQ(list.Capacity(), 42);
  std::vector<int> expected;
  for (int i = 0; i < 20; ++i) {
    if (i == 5) expected.push_back(-5);
    expected.push_back(i);
  }
  EXPECT_EQ(Values(list), expected);
}

TEST_F(ItemListTest, FailedCloneLeavesTheListUnchanged) {
  ItemList<Record> list;
  Fill(list, 3);
  Record::fail_clone = true;
  Record item;
  EXPECT_EQ(list.Add(item), kErrOutOfMemory);
  EXPECT_EQ(list.InsertAt(item, 0), kErrOutOfMemory);
  EXPECT_EQ(Values(list), (std::vector<int>{0, 1, 2}));
}

TEST_F(ItemListTest, UnallocatableCountClearsTheList) {
  ItemList<Record> list;
  Fill(list, 30);
  EXPECT_EQ(list.SetCount(INT32_MAX), kErrOutOfMemory);
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.Capacity(), 20);
  EXPECT_EQ(Record::Live(), 0);
  Fill(list, 2);  // usable again
  EXPECT_EQ(Values(list), (std::vector<int>{0, 1}));
}

TEST_F(ItemListTest, ClearAndDestructionDestroyEveryItem) {
  {
    ItemList<Record> list;
    Fill(list, 50);
    EXPECT_EQ(list.Clear(), 0);
    EXPECT_EQ(Record::destroyed, 50);
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.Capacity(), 20);
    Fill(list, 30);
    list.SetCount(40);  // empty slots are fine to destroy
  }
  EXPECT_EQ(Record::destroyed, 80);
}

TEST_F(ItemListTest, MovesTransferTheItems) {
  for (int n : {5, 30}) {
    SCOPED_TRACE(n);
    ItemList<Record> source;
    Fill(source, n);
    Record* first = source.Item(0);
    const int constructed = Record::constructed;

    ItemList<Record> moved(std::move(source));
    EXPECT_EQ(source.Count(), 0);  // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(source.Capacity(), 20);
    EXPECT_EQ(moved.Count(), n);
    EXPECT_EQ(moved.Item(0), first);

    ItemList<Record> target;
    Fill(target, 25);
    const int destroyed = Record::destroyed;
    target = std::move(moved);
    EXPECT_EQ(Record::destroyed, destroyed + 25);
    EXPECT_EQ(target.Count(), n);
    EXPECT_EQ(target.Item(n - 1)->value, n - 1);
    EXPECT_EQ(moved.Count(), 0);  // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(Record::constructed, constructed + 25);
  }
}

// Random edits against a model: values must never move, vanish or duplicate.
TEST_F(ItemListTest, MatchesAVectorModelUnderRandomEdits) {
  std::mt19937 random(20240611);
  ItemList<Record> list;
  std::vector<int> model;
  int next_value = 1;
  for (int step = 0; step < 3000; ++step) {
    const int op = static_cast<int>(random() % 4);
    if (op == 0) {
      const int n = static_cast<int>(random() % 70);
      ASSERT_EQ(list.SetCount(n), 0);
      model.resize(static_cast<size_t>(n), 0);
    } else if (op == 1) {
      const int position = static_cast<int>(random() % (model.size() + 3));
      Record item;
      item.value = next_value;
      ASSERT_EQ(list.InsertAt(item, position), 0);
      model.insert(model.begin() + std::min<size_t>(static_cast<size_t>(position), model.size()), next_value);
      ++next_value;
    } else if (!model.empty()) {
      const size_t index = random() % model.size();
      list.Item(static_cast<int32_t>(index))->value = next_value;
      model[index] = next_value++;
    }
    ASSERT_EQ(list.Count(), static_cast<int32_t>(model.size()));
    ASSERT_EQ(list.Capacity() == 20, model.size() <= 20);
    ASSERT_GE(list.Capacity(), list.Count());
  }
  EXPECT_EQ(Values(list), model);
}

}  // namespace
}  // namespace orvelan
