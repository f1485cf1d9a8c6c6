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
