#include "net/transcript.h"

#include <gtest/gtest.h>

namespace orvelan {
namespace {

TEST(TranscriptTest, EscapesForReplay) {
  const struct { std::string in; const char* out; } cases[] = {
      {"GET / HTTP/1.1\r\n", "GET / HTTP/1.1\r\n"},
      {std::string("a\0b", 3), "a\\000b"},
      {"\\$\"{}[]", "\\\\\\$\\\"\\{\\}\\[\\]"},
      {"\t\x7f\xff", "\\011\\177\\377"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.out);
    EXPECT_EQ(Transcript::Escape(c.in), c.out);
  }
}

}  // namespace
}  // namespace orvelan
