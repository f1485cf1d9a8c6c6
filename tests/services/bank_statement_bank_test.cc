// The bank statement component end to end: requests built by the service,
// posted over TLS to the scripted test bank, answers read back
// through the component's property ids as a host would. The plain statement
// download is FacadeTest's and WrapperTest's; these are the other methods.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "services/bank_statement_component.h"
#include "support/component_host.h"

namespace orvelan {
namespace {

class BankStatementBankTest : public ::testing::Test {
 protected:
  BankStatementBankTest() : s_(component_.service()) {}

  void Prepare(const std::string& url, const std::string& user, const char* version = "102") {
    component_.SignOn(url, user, version);
    ASSERT_EQ(Set(5, "121000248") | Set(1, "4412345678") | component_.SetInt(2, 1) | component_.SetInt(52, 10), 0);
  }
  int Set(int id, const std::string& value) { return component_.SetText(id, value); }
  std::string Get(int id, int index = 0) { return static_cast<const char*>(component_.Get(id, index, nullptr)); }
  int64_t GetInt(int id, int index = 0) { return component_.Int(id, index); }

  ComponentHost<BankStatementComponent> component_;
  BankStatementService& s_;
};

// In OFX 2.x only: the dictionary counts DTOPEN among the aggregates, so an
// OFX 1.x closing response, where DTOPEN has no end tag, does not parse.
TEST_F(BankStatementBankTest, ClosingInformation) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  Prepare(bank.TlsUrl(), "user", "211");
  ASSERT_EQ(Set(51, "01/01/2026 00:00:00"), 0);
  ASSERT_EQ(Set(22, "03/31/2026 00:00:00"), 0);
  ASSERT_EQ(component_.Do(3, 0, nullptr, nullptr), 0) << component_.GetLastError();
  EXPECT_NE(bank.Requests().back().body.find("<STMTENDTRNRQ>"), std::string::npos);
  ASSERT_EQ(GetInt(6), 3);  // one per calendar month
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(Get(14, i).empty());
    EXPECT_EQ(Get(10, i).substr(0, 2), std::string("0") + static_cast<char>('1' + i)) << Get(10, i);
    EXPECT_FALSE(Get(8, i).empty());
  }
  // A statement download afterwards leaves no closing records behind.
  ASSERT_EQ(component_.Do(5, 0, nullptr, nullptr), 0) << component_.GetLastError();
  EXPECT_EQ(GetInt(6), 0);
  EXPECT_EQ(GetInt(53), 3);
}

// Statuses in the OFX are the canned tests' business; these fail below it.
TEST_F(BankStatementBankTest, TransportFailures) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  {
    SCOPED_TRACE("HTTP 500 page");
    Prepare(bank.TlsUrl(), "http500");
    EXPECT_EQ(component_.Do(5, 0, nullptr, nullptr), 151);
    EXPECT_NE(std::string(component_.GetLastError()).find("500"), std::string::npos) << component_.GetLastError();
    EXPECT_EQ(GetInt(53), 0);
  }
  {
    SCOPED_TRACE("time-out");
    Prepare(bank.TlsUrl(), "stall");
    ASSERT_EQ(component_.Set(52, 0, reinterpret_cast<void*>(1), 0), 0);
    EXPECT_EQ(component_.Do(3, 0, nullptr, nullptr), 301);
    EXPECT_STREQ(component_.GetLastError(), "Timeout.");
  }
}

// The images a statement refers to, through the method's parameter slots.
TEST_F(BankStatementBankTest, ImagesOfTheStatement) {
  ORVELAN_REQUIRE_TEST_BANK(bank);
  ORVELAN_REQUIRE_TLS_BANK(bank);
  Prepare(bank.TlsUrl(), "user", "211");
  ASSERT_EQ(component_.Set(33, 0, reinterpret_cast<void*>(1), 0), 0);
  ASSERT_EQ(component_.Do(5, 0, nullptr, nullptr), 0) << component_.GetLastError();
  EXPECT_NE(bank.Requests().back().body.find("<INCTRANIMG>Y</INCTRANIMG>\r\n</STMTRQ>"), std::string::npos);
  ASSERT_GT(GetInt(53), 0);
  const std::string reference = s_.Transactions().Item(0)->Text(s_.Document(), StatementTransaction::kImageRef);
  ASSERT_FALSE(reference.empty()) << Get(54);

  // The engine keeps an image only when it has a file to write it to.
  const std::string base = ::testing::TempDir() + "statement_image_" + std::to_string(getpid());
  ASSERT_EQ(Set(32, base), 0);
  void* params[3] = {const_cast<char*>(reference.c_str()), const_cast<char*>("OPAQUE"), nullptr};
  int lengths[3] = {0, 0, 0};
  ASSERT_EQ(component_.Do(4, 3, params, lengths), 0) << component_.GetLastError();
  ASSERT_GT(lengths[2], 8);
  EXPECT_EQ(std::string(static_cast<const char*>(params[2]), 8), "\x89PNG\r\n\x1a\n");
  // The image travels in the PNG's comment, so the right one came back.
  EXPECT_NE(std::string(static_cast<const char*>(params[2]), static_cast<size_t>(lengths[2])).find(reference),
            std::string::npos);

  std::remove((base + ".png").c_str());

  params[0] = const_cast<char*>("missing");
  EXPECT_EQ(component_.Do(4, 3, params, lengths), 16512);
  EXPECT_STREQ(component_.GetLastError(), "Image Reference Identifier not found.");
  EXPECT_EQ(lengths[2], 0);
}

}  // namespace
}  // namespace orvelan
