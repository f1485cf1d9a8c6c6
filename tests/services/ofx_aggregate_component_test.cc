#include "services/ofx_aggregate_component.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/property_order.h"

namespace orvelan {
namespace {

TEST(OFXAggregateComponentTest, IdsFollowTheNamingRule) {
  const auto& properties = OFXAggregateTables().Properties();
  ASSERT_EQ(properties.size(), 15u);
  const std::vector<std::string> expected = testing::ExpectedIdOrder(properties);
  for (size_t i = 0; i < properties.size(); ++i) {
    EXPECT_EQ(properties[i].id, static_cast<int>(i) + 1) << properties[i].name;
    EXPECT_EQ(properties[i].name, expected[i]) << "id " << i + 1;
  }
  const auto& methods = OFXAggregateTables().Methods();
  ASSERT_EQ(methods.size(), 2u);
  EXPECT_STREQ(methods[0].name, "Config");
  EXPECT_STREQ(methods[1].name, "PathExists");
}

TEST(OFXAggregateComponentTest, OnlyAggregateAndElementPathAreWritable) {
  for (const auto& p : OFXAggregateTables().Properties()) {
    const bool writable = p.id == 1 || p.id == 13;
    EXPECT_EQ(p.set != nullptr, writable) << p.name;
  }
}

}  // namespace
}  // namespace orvelan
