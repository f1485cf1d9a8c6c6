#include "net/socket_core.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

// The system texts come from the error table; 11 is its "Try again." row.
TEST(SocketCoreTest, FillDefaultErrorText) {
  const char* const kNone = "(no description available)";
  const struct { int code; const char* preset /* set by a layer, or null */; std::string expected; } cases[] = {
      {0, nullptr, ""},  {12, nullptr, "[12] Out of memory."}, {200, nullptr, "Out of memory."},
      {11, nullptr, "[11] Try again."}, {110, nullptr, "[110] Connection timed out."},
      {124, nullptr, "[124] Wrong medium type."}, {301, nullptr, "Interrupted."},
      {7, nullptr, "[7] " + std::string(kNone)}, {41, nullptr, "[41] " + std::string(kNone)},
      {58, nullptr, "[58] " + std::string(kNone)}, {125, nullptr, "[125] " + std::string(kNone)},
      {2000, nullptr, "[2000] " + std::string(kNone)}, {-1, nullptr, "[-1] " + std::string(kNone)},
      {111, "Layer said so.", "Layer said so."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.code);
    SocketCore core;
    if (c.preset != nullptr) core.SetErrorText(c.preset);
    EXPECT_EQ(core.FillDefaultErrorText(c.code), c.code);
    EXPECT_EQ(core.GetLastError(), c.expected);
  }
}

TEST(SocketCoreTest, TimeoutIsHeldInMilliseconds) {
  SocketCore core;
  EXPECT_EQ(core.SetTimeout(60), 0);
  EXPECT_EQ(core.Timeout(), 60);
  EXPECT_EQ(core.SetTimeout(-5), 0);  // asynchronous mode keeps its sign
  EXPECT_EQ(core.Timeout(), -5);
  for (int32_t extreme : {INT32_MAX, INT32_MIN}) {  // seconds beyond any millisecond int32
    EXPECT_EQ(core.SetTimeout(extreme), 0);
    EXPECT_EQ(core.Timeout(), extreme);
  }
}

}  // namespace
}  // namespace orvelan
