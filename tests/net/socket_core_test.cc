#include "net/socket_core.h"

#include <cstdint>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

struct DefaultTextCase {
  int code;
  const char* preset;  // text already set by a layer, or null
  const char* expected;
};

const DefaultTextCase kDefaultTexts[] = {
    {0, nullptr, ""},
    {12, nullptr, "[12] Out of memory."},
    {200, nullptr, "Out of memory."},
    {11, nullptr, "[11] Try again."},
    {110, nullptr, "[110] Connection timed out."},
    {7, nullptr, "[7] (no description available)"},
    {41, nullptr, "[41] (no description available)"},
    {124, nullptr, "[124] Wrong medium type."},
    {125, nullptr, "[125] (no description available)"},
    {301, nullptr, "Interrupted."},
    {2000, nullptr, "[2000] (no description available)"},
    {-1, nullptr, "[-1] (no description available)"},
    {111, "Layer said so.", "Layer said so."},
};

TEST(SocketCoreTest, FillDefaultErrorText) {
  for (const DefaultTextCase& c : kDefaultTexts) {
    SCOPED_TRACE(c.code);
    SocketCore core;
    if (c.preset != nullptr) core.SetErrorText(c.preset);
    EXPECT_EQ(core.FillDefaultErrorText(c.code), c.code);
    EXPECT_STREQ(core.GetLastError(), c.expected);
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
