#include "net/socket_core.h"

#include <string>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

// The system texts come from the error table; 11 is its "Try again." row.
TEST(SocketCoreTest, FillDefaultErrorText) {
  const std::string none = "] (no description available)";
  const struct { int code; const char* preset /* set by a layer, or null */; std::string expected; } cases[] = {
      {0, nullptr, ""}, {12, nullptr, "[12] Out of memory."}, {200, nullptr, "Out of memory."},
      {11, nullptr, "[11] Try again."}, {124, nullptr, "[124] Wrong medium type."}, {301, nullptr, "Interrupted."},
      {41, nullptr, "[41" + none}, {125, nullptr, "[125" + none}, {-1, nullptr, "[-1" + none},
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

}  // namespace
}  // namespace orvelan
