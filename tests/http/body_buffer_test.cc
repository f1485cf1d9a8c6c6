#include "http/body_buffer.h"

#include <string>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

// Pieces of varied bytes appended one after another must read back exactly,
// whatever the block moves through: heap growth, the move to a mapping,
// growth of the mapping.
TEST(BodyBufferTest, AppendedPiecesReadBackAcrossEveryKindOfGrowth) {
  struct Case {
    const char* name;
    size_t reserve;
    size_t piece;
    size_t total;
  };
  const Case cases[] = {
      {"small pieces on the heap", 0, 7, 5000},
      {"heap into mapping", 0, 65536, 3u << 20},
      {"one piece past the threshold", 0, (1u << 20) + 3, (1u << 20) + 3},
      {"reserved exactly", 5u << 20, 16384, 5u << 20},
      {"reserved short, then grown", 1u << 20, 100000, 9u << 20},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    BodyBuffer body;
    ASSERT_TRUE(body.Reserve(c.reserve));
    std::string expected;
    std::string piece(c.piece, '\0');
    while (expected.size() < c.total) {
      for (size_t i = 0; i < piece.size(); ++i) piece[i] = static_cast<char>((expected.size() + i) * 31 % 251);
      const size_t n = std::min(piece.size(), c.total - expected.size());
      ASSERT_TRUE(body.Append(piece.data(), n));
      expected.append(piece, 0, n);
    }
    ASSERT_EQ(body.size(), expected.size());
    EXPECT_TRUE(body.View() == expected);
    EXPECT_EQ(body.c_str()[body.size()], '\0');
    EXPECT_GE(body.Capacity(), c.reserve);
  }
}

TEST(BodyBufferTest, ClearEmptiesAndTheBufferIsReusable) {
  for (size_t size : {size_t{10}, size_t{4} << 20}) {
    BodyBuffer body;
    std::string data(size, 'x');
    ASSERT_TRUE(body.Append(data.data(), data.size()));
    body.Clear();
    EXPECT_EQ(body.size(), 0u);
    EXPECT_STREQ(body.c_str(), "");
    ASSERT_TRUE(body.Append("abc", 3));
    EXPECT_EQ(body.View(), "abc");
  }
  BodyBuffer empty;
  EXPECT_STREQ(empty.c_str(), "");
  EXPECT_TRUE(empty.Append(nullptr, 0));
}

TEST(BodyBufferTest, ImpossibleSizesFailWithoutTouchingTheContents) {
  BodyBuffer body;
  ASSERT_TRUE(body.Append("keep", 4));
  EXPECT_FALSE(body.Reserve(SIZE_MAX - 1));
  EXPECT_FALSE(body.Append("x", SIZE_MAX - 2));
  EXPECT_EQ(body.View(), "keep");
}

}  // namespace
}  // namespace orvelan
