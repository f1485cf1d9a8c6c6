// Repeated TLS exchanges with the test bank leave neither descriptors nor
// memory behind, on one object and across many.
#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "services/bank_statement_component.h"
#include "soak/soak.h"
#include "support/test_bank_server.h"
#include "support/test_http_client.h"

namespace orvelan {
namespace {

int Download(BankStatementComponent& c, const std::string& url) {
  const std::pair<int, std::string> texts[] = {{31, url},    {42, "user"},         {39, "secret"}, {37, "QWIN"},
                                               {38, "2700"}, {24, "Orvelan Bank"}, {23, "1234"},   {5, "121000248"},
                                               {1, "4412345678"}};
  for (const auto& [id, value] : texts) c.Set(id, 0, value.c_str(), static_cast<int>(value.size()));
  c.Set(52, 0, reinterpret_cast<void*>(10), 0);
  const char* out = nullptr;
  c.service().Config(("OpenSSLCAFile=" + TestBankServer::CaFile()).c_str(), out);
  return c.Do(5, 0, nullptr, nullptr);
}

TEST(GrowthTest, ExchangesOverTlsLeaveNoDescriptorsOrMemoryBehind) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  const int rounds = LongRun() ? 1000 : 50;
  auto kept = std::make_unique<BankStatementComponent>(nullptr, nullptr);
  const std::pair<const char*, std::function<int()>> cases[] = {
      {"one object", [&] { return Download(*kept, bank.TlsUrl()); }},
      {"an object each", [&] {
         BankStatementComponent fresh(nullptr, nullptr);
         return Download(fresh, bank.TlsUrl());
       }},
  };
  for (const auto& [name, exchange] : cases) {
    SCOPED_TRACE(name);
    // The first rounds set up what stays for the process (OpenSSL's tables, the allocator's arenas).
    for (int i = 0; i < 5; ++i) ASSERT_EQ(exchange(), 0);
    const int descriptors = OpenDescriptors();
    const long resident = StatusKiB("VmRSS:");
    for (int i = 0; i < rounds; ++i) ASSERT_EQ(exchange(), 0) << i;
    EXPECT_EQ(OpenDescriptors(), descriptors);
    const long growth = StatusKiB("VmRSS:") - resident;
    RecordProperty(std::string("rss_growth_kib_") + (name[0] == 'o' ? "one" : "each"), std::to_string(growth));
    if (kMemoryIsMeasured) {
      EXPECT_LT(growth, 1024);
    }
  }
}

}  // namespace
}  // namespace orvelan
