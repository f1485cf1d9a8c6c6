#include "services/bank_statement_component.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/property_order.h"

namespace orvelan {
namespace {

TEST(BankStatementComponentTest, PropertyIdsFollowTheNamingRule) {
  const auto& properties = BankStatementTables().Properties();
  ASSERT_EQ(properties.size(), 63u);
  const std::vector<std::string> expected = testing::ExpectedIdOrder(properties);
  for (size_t i = 0; i < properties.size(); ++i) {
    EXPECT_EQ(properties[i].id, static_cast<int>(i) + 1) << properties[i].name;
    EXPECT_EQ(properties[i].name, expected[i]) << "id " << i + 1;
  }
}

TEST(BankStatementComponentTest, MethodIdsFollowTheNamingRule) {
  std::vector<std::string> names;
  for (const auto& m : BankStatementTables().Methods()) names.push_back(m.name);
  std::vector<std::string> sorted = names;
  std::sort(sorted.begin(), sorted.end(),
            [](const std::string& a, const std::string& b) { return testing::Lower(a) < testing::Lower(b); });
  EXPECT_EQ(names, sorted);
  for (size_t i = 0; i < BankStatementTables().Methods().size(); ++i) {
    EXPECT_EQ(BankStatementTables().Methods()[i].id, static_cast<int>(i) + 2);
  }
}

TEST(BankStatementComponentTest, RequestAndServerCertificateAreReadOnly) {
  for (int id : {40, 50}) EXPECT_EQ(BankStatementTables().Property(id)->set, nullptr) << id;
}

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

TEST(BankStatementComponentTest, TransactionTypeDescriptions) {
  const std::pair<int, const char*> cases[] = {
      {0, "Credit"}, {6, "Deposit"}, {17, "Cash Advance (adds to Principal Balance)"},
      {18, "Payment of Balloon Amount"}, {255, "Other"}, {19, "Other"}, {-1, "Other"},
  };
  for (const auto& [index, text] : cases) {
    EXPECT_STREQ(StatementTransaction::TypeDescription(index), text) << index;
  }
}

}  // namespace
}  // namespace orvelan

namespace orvelan {
namespace {

// The transport's settings answer through the component's Config, from the
// HTTP layer down to the socket layer, with an OFX client's defaults.
TEST(BankStatementComponentTest, ConfigReachesTheTransport) {
  BankStatementComponent component(nullptr, nullptr);
  auto& s = component.service();
  const struct {
    const char* query;
    const char* answer;
  } cases[] = {
      {"MaxTransferredData", "0"},  {"KeepAlive", "False"},      {"HTTPVersion", "1.1"},
      {"UseWinInetCookies", "True"}, {"OpenSSLCAFile", ""},       {"SelectWaitMillis", "20"},
      {"MaxLineLength", "2048"},     {"TimeoutInMilliseconds", "False"},
  };
  const char* out = nullptr;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.query);
    ASSERT_EQ(s.Config(c.query, out), 0);
    EXPECT_STREQ(out, c.answer);
  }
  EXPECT_EQ(s.Timeout(), 60);
}

}  // namespace
}  // namespace orvelan
