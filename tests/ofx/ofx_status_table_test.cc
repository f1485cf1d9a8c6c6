#include "ofx/ofx_status_table.h"

#include <gtest/gtest.h>

namespace orvelan {
namespace {

// The ends of the table and the gaps in it, where a lookup goes wrong first.
TEST(OFXStatusTableTest, FindsCodesAtTheEdgesAndRefusesTheGaps) {
  const std::pair<int32_t, const char*> cases[] = {
      {1, "Client is up-to-date ."},
      {2012, "Invalid amount"},
      {2014, "Date too soon"},
      {2025, "Branch ID missing. This is required for this country system."},
      {16513, "Image server not available. Try again later."},
      {0, "Unknown server error."},
      {2013, "Unknown server error."},
      {16514, "Unknown server error."},
  };
  for (const auto& [code, text] : cases) EXPECT_STREQ(OFXStatusTable::Text(code), text) << code;
}

}  // namespace
}  // namespace orvelan
