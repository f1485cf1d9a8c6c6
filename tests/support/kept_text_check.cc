#include "support/kept_text_check.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "support/tree_dump.h"

namespace orvelan::testing {

std::vector<uint32_t> ElementRecords(const DocumentTree& tree) {
  std::vector<uint32_t> elements;
  for (uint32_t r = 0; r < tree.Size();) {
    uint32_t size;
    std::memcpy(&size, tree.Arena() + r + 4, 4);
    if (size == 0) break;
    if (tree.Arena()[r] == DocumentTree::kElementRecord) elements.push_back(r);
    r += size;
  }
  return elements;
}

void ExpectSameKeptText(MarkupParser& copied, MarkupParser& retained, bool every_range) {
  ASSERT_EQ(retained.KeptLength(), copied.KeptLength());
  EXPECT_EQ(std::string(retained.KeptText().View()), std::string(copied.KeptText().View()));
  EXPECT_EQ(DumpTree(retained.Tree()), DumpTree(copied.Tree()));
  ByteString want;
  ByteString got;
  const auto same = [&](uint32_t begin, uint32_t end) {
    copied.CutKeptText(begin, end, want);
    retained.CutKeptText(begin, end, got);
    ASSERT_EQ(std::string(got.View()), std::string(want.View())) << "[" << begin << ", " << end << ")";
  };
  const DocumentTree& tree = copied.Tree();
  for (uint32_t e : ElementRecords(tree)) {
    same(tree.TagStart(e), tree.End(e));
    same(tree.ContentStart(e), tree.EndTagStart(e));
  }
  if (!every_range) return;
  const uint32_t length = static_cast<uint32_t>(copied.KeptLength());
  for (uint32_t begin = 0; begin <= length + 1; ++begin) {
    for (uint32_t end = 0; end <= length + 2; ++end) same(begin, end);
  }
}

}  // namespace orvelan::testing
