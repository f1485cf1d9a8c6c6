#include "services/bank_statement_component.h"

#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

TEST(BankStatementComponentTest, ResetRestoresInputsAndBankIdPresent) {
  BankStatementComponent component(nullptr, nullptr);
  auto& s = component.service();
  s.SetAccountId("1");
  s.SetBankId("2");
  ASSERT_EQ(s.SetStartDate("01/01/2026 00:00:00"), 0);
  ASSERT_EQ(s.SetEndDate("01/31/2026 00:00:00"), 0);
  ASSERT_EQ(s.SetAccountType(3), 0);
  const char* out = nullptr;
  ASSERT_EQ(s.Config("BankIdPresent=0", out), 0);
  s.SetFIUrl("https://gone.example");  // the engine's reset runs too
  s.SetOFXAccessKey("kept");            // ...and keeps the access key

  EXPECT_EQ(component.Do(7, 0, nullptr, nullptr), 0);
  EXPECT_STREQ(s.AccountId(), "");
  EXPECT_STREQ(s.BankId(), "");
  EXPECT_STREQ(s.StartDate(), "");
  EXPECT_STREQ(s.EndDate(), "");
  EXPECT_EQ(s.AccountType(), 0);
  ASSERT_EQ(s.Config("BankIdPresent", out), 0);
  EXPECT_STREQ(out, "1");
  EXPECT_STREQ(s.FIUrl(), "");
  EXPECT_STREQ(s.OFXAccessKey(), "kept");
}

TEST(BankStatementComponentTest, TransactionTypeDescriptionsOutsideTheTable) {
  const std::pair<int, const char*> cases[] = {{0, "Credit"}, {18, "Payment of Balloon Amount"}, {19, "Other"},
                                               {255, "Other"}, {-1, "Other"}};
  for (const auto& [index, text] : cases) EXPECT_STREQ(StatementTransaction::TypeDescription(index), text) << index;
}

// The engine's DebugTrace (1 or 0) hides the HTTP layer's (True or False),
// while the transport's settings still answer with an OFX client's defaults.
TEST(BankStatementComponentTest, ConfigReachesTheTransport) {
  BankStatementComponent component(nullptr, nullptr);
  const char* out = nullptr;
  for (const auto& [query, answer] : {std::pair{"DebugTrace", "0"}, std::pair{"MaxLineLength", "2048"}}) {
    ASSERT_EQ(component.service().Config(query, out), 0);
    EXPECT_STREQ(out, answer) << query;
  }
}

}  // namespace
}  // namespace orvelan
