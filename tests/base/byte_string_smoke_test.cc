#include "base/byte_string.h"
#include <gtest/gtest.h>
TEST(ByteStringTest, Smoke) { orvelan::ByteString s("abc"); EXPECT_EQ(s.View(), "abc"); }
