// What a host sees through the exported functions of BankStatement: ids,
// defaults, value passing, the last-error rules and Config.
#include <dlfcn.h>

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "orvelan.h"

namespace {

class BankStatementAbiTest : public ::testing::Test {
 protected:
  void SetUp() override { obj_ = BankStatement_Create(nullptr, nullptr, nullptr); }
  void TearDown() override { BankStatement_Destroy(obj_); }

  std::string Text(int id, int index = 0) {
    const char* text = static_cast<const char*>(BankStatement_Get(obj_, id, index, nullptr));
    return text == nullptr ? "(null)" : text;
  }
  std::string Bytes(int id) {
    int length = -1;
    const char* data = static_cast<const char*>(BankStatement_Get(obj_, id, 0, &length));
    return length < 0 ? "(failed)" : std::string(data, static_cast<size_t>(length));
  }
  intptr_t Integer(int id) { return reinterpret_cast<intptr_t>(BankStatement_Get(obj_, id, 0, nullptr)); }
  int SetText(int id, const char* value) { return BankStatement_Set(obj_, id, 0, value, 0); }
  int SetInteger(int id, intptr_t value) { return BankStatement_Set(obj_, id, 0, reinterpret_cast<void*>(value), 0); }
  int Do(int id, const char* setting, std::string* answer) {
    void* params[2] = {const_cast<char*>(setting), nullptr};
    int lengths[2] = {0, 0};
    const int rc = BankStatement_Do(obj_, id, 2, params, lengths);
    *answer = params[1] == nullptr ? "(null)" : static_cast<const char*>(params[1]);
    return rc;
  }
  std::string LastError() { return BankStatement_GetLastError(obj_); }
  int LastCode() { return BankStatement_GetLastErrorCode(obj_); }

  void* obj_ = nullptr;
};

// The C host checks the named defaults; these are the reserved ids, the
// offsets onto ordinary properties and one empty default of each kind.
TEST_F(BankStatementAbiTest, VersionBannerAndEmptyDefaults) {
  for (int id : {0, 10000, 20000}) EXPECT_EQ(Text(id), "ORVELAN_VERSION_3_0_3909") << id;
  EXPECT_EQ(Text(10000 + BANKSTATEMENT_PROP_OFXVERSION), "102");
  EXPECT_EQ(Integer(20000 + BANKSTATEMENT_PROP_TIMEOUT), 60);
  EXPECT_EQ(Text(23) + Bytes(44), "");
  EXPECT_EQ(Integer(2), 0);
}

TEST_F(BankStatementAbiTest, ValuesKeepTheirBytesAndLimits) {
  const std::string cert("\x30\x82\0\x01x", 5);
  EXPECT_EQ(BankStatement_Set(obj_, 44, 0, cert.data(), 5), 0);
  EXPECT_EQ(Bytes(44), cert);
  // Firewall credentials are cut to 255 bytes.
  const std::string long_text(300, 'u');
  EXPECT_EQ(SetText(28, long_text.c_str()), 0);
  EXPECT_EQ(Text(28), long_text.substr(0, 255));
  // Integers are cut to 32 bits and sign-extended.
  EXPECT_EQ(SetInteger(29, static_cast<intptr_t>(0x100000050LL)), 0);
  EXPECT_EQ(Integer(29), 0x50);
}

TEST_F(BankStatementAbiTest, SettingFailuresCarryCodeAndText) {
  EXPECT_EQ(BankStatement_Set(obj_, 46, 0, "", 0), 1);
  EXPECT_EQ(LastError(), "Either the store or its length not set correctly");
  EXPECT_EQ(Bytes(46), "MY");  // the store is unchanged
  EXPECT_EQ(SetText(41, ""), 508);
  EXPECT_EQ(LastError(), "No response available from the server.");
  EXPECT_EQ(SetText(23, "x"), 0);  // a later success leaves the text in place
  EXPECT_EQ(LastCode(), 0);
  EXPECT_EQ(LastError(), "No response available from the server.");

  EXPECT_EQ(SetInteger(2, 4), 202);
  // Read-only and unknown ids refuse a set and leave the last error alone.
  for (int id : {3, 64}) {
    EXPECT_EQ(SetText(id, "x"), -1) << id;
    EXPECT_EQ(LastCode(), 202) << id;
    EXPECT_EQ(LastError(), "AccountType is invalid.") << id;
  }
  EXPECT_EQ(Integer(2), 0);  // kept its previous value
  // An unknown id in a get reads as zero and clears the code.
  EXPECT_EQ(SetInteger(2, 4), 202);
  EXPECT_EQ(BankStatement_Get(obj_, 64, 0, nullptr), nullptr);
  EXPECT_EQ(LastCode(), 0);
}

// Every id's bound is checked in the service suite; this is what the host sees.
TEST_F(BankStatementAbiTest, IndexedReadsOnEmptyListsFail) {
  EXPECT_EQ(BankStatement_Get(obj_, 62, 0, nullptr), nullptr);  // TxType is an integer: reads as 0
  EXPECT_EQ(LastCode(), 432);
  EXPECT_EQ(SetText(23, "reset"), 0);
  EXPECT_EQ(BankStatement_CheckIndex(obj_, 7, -1), 280);
  EXPECT_EQ(LastError(), "Invalid ClosingInfoIndex (out of bounds).");
  EXPECT_EQ(LastCode(), 0);  // CheckIndex sets the text only
  for (int id : {1, 53, 99}) EXPECT_EQ(BankStatement_CheckIndex(obj_, id, -7), 0) << id;
}

// Parsing and the core settings are covered below the ABI; this is the method
// slot, the reserved id and the component's own setting.
TEST_F(BankStatementAbiTest, ConfigThroughTheMethodTable) {
  std::string answer;
  EXPECT_EQ(Do(BANKSTATEMENT_METHOD_CONFIG, "codepage=65001", &answer), 0);
  EXPECT_EQ(Integer(2010), 65001);  // the reserved id reads the same setting
  EXPECT_EQ(Do(10000 + BANKSTATEMENT_METHOD_CONFIG, "CodePage", &answer), 0);
  EXPECT_EQ(answer, "65001");
  EXPECT_EQ(Do(BANKSTATEMENT_METHOD_CONFIG, nullptr, &answer), -1);  // a null setting is the empty one
  const std::pair<const char*, const char*> bank_id_present[] = {
      {"bankidpresent=no", ""}, {"BankIdPresent", "0"}, {"BankIdPresent=YES", ""}, {"BankIdPresent", "1"}};
  for (const auto& [setting, expected] : bank_id_present) {
    EXPECT_EQ(Do(BANKSTATEMENT_METHOD_CONFIG, setting, &answer), 0) << setting;
    EXPECT_EQ(answer, expected) << setting;
  }
}

TEST_F(BankStatementAbiTest, ReservedAndEngineMethods) {
  EXPECT_EQ(SetInteger(2, 9), 202);
  for (int id : {2000, 2001, 2002, 12002}) {
    EXPECT_EQ(BankStatement_Do(obj_, id, 0, nullptr, nullptr), 0) << id;
    EXPECT_EQ(LastCode(), 202) << id;  // the last error is not touched
  }
  EXPECT_EQ(BankStatement_Do(obj_, 99, 0, nullptr, nullptr), 0);  // no method: success, code cleared
  EXPECT_EQ(LastCode(), 0);
  EXPECT_EQ(BankStatement_Do(obj_, BANKSTATEMENT_METHOD_GETSTATEMENT, 0, nullptr, nullptr), 2000);
  EXPECT_EQ(LastError(), "Missing required field: Bank Id is missing in the request.");
  EXPECT_EQ(BankStatement_Do(obj_, BANKSTATEMENT_METHOD_RESET, 0, nullptr, nullptr), 0);
  EXPECT_EQ(LastError(), "");
}

TEST(BankStatementAbiLifetimeTest, NullObjectsAreHarmlessAndComponentsIndependent) {
  EXPECT_STREQ(BankStatement_GetLastError(nullptr), "");
  EXPECT_EQ(BankStatement_GetLastErrorCode(nullptr), 0);
  void* a = BankStatement_Create(nullptr, nullptr, nullptr);
  void* b = BankStatement_Create(nullptr, nullptr, nullptr);
  ASSERT_NE(a, b);
  BankStatement_Set(a, BANKSTATEMENT_PROP_OFXUSER, 0, "alice", 0);
  BankStatement_Set(b, BANKSTATEMENT_PROP_ACCOUNTTYPE, 0, reinterpret_cast<void*>(intptr_t{7}), 0);
  EXPECT_EQ(BankStatement_GetLastErrorCode(a), 0);
  EXPECT_EQ(BankStatement_GetLastErrorCode(b), 202);
  EXPECT_STREQ(static_cast<const char*>(BankStatement_Get(b, BANKSTATEMENT_PROP_OFXUSER, 0, nullptr)), "");
  BankStatement_Destroy(a);
  BankStatement_Destroy(b);
}

TEST(AtofTest, IgnoresCommaDecimalLocale) {
  const char* chosen = nullptr;
  for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "nl_NL.UTF-8"}) {
    if (chosen == nullptr && std::setlocale(LC_NUMERIC, name) != nullptr) chosen = name;
  }
  if (chosen == nullptr) {
    if (std::getenv("ORVELAN_REQUIRE_PEERS") != nullptr) FAIL() << "no comma-decimal locale installed";
    GTEST_SKIP() << "no comma-decimal locale installed (install locales and generate de_DE.UTF-8)";
  }
  // The locale is really in force: the C library's strtod stops at the ".".
  EXPECT_EQ(std::strtod("1.5", nullptr), 1.0);
  // Bound through the symbol table as a host binds; the pointer stops inlining.
  double (*volatile host_atof)(const char*) = &std::atof;
  EXPECT_EQ(host_atof("1.5"), 1.5);
  void* lib = dlopen("liborvelan.so.3", RTLD_NOW | RTLD_NOLOAD);
  ASSERT_NE(lib, nullptr);
  auto* library_atof = reinterpret_cast<double (*)(const char*)>(dlsym(lib, "atof"));
  ASSERT_NE(library_atof, nullptr);
  EXPECT_EQ(library_atof("-12.50e1x"), -125.0);
  EXPECT_EQ(library_atof("  3,25"), 3.0);
  dlclose(lib);
  std::setlocale(LC_NUMERIC, "C");
}

}  // namespace
