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
  intptr_t Integer(int id, int index = 0) { return reinterpret_cast<intptr_t>(BankStatement_Get(obj_, id, index, nullptr)); }
  int SetText(int id, const char* value) { return BankStatement_Set(obj_, id, 0, value, 0); }
  int SetInteger(int id, intptr_t value) { return BankStatement_Set(obj_, id, 0, reinterpret_cast<void*>(value), 0); }
  int Config(const char* setting, std::string* answer = nullptr) {
    void* params[2] = {const_cast<char*>(setting), nullptr};
    int lengths[2] = {0, 0};
    const int rc = BankStatement_Do(obj_, BANKSTATEMENT_METHOD_CONFIG, 2, params, lengths);
    if (answer != nullptr) *answer = params[1] == nullptr ? "(null)" : static_cast<const char*>(params[1]);
    return rc;
  }
  std::string LastError() { return BankStatement_GetLastError(obj_); }
  int LastCode() { return BankStatement_GetLastErrorCode(obj_); }

  void* obj_ = nullptr;
};

TEST_F(BankStatementAbiTest, VersionBannerAtReservedIdsAndTheirOffsets) {
  for (int id : {0, 10000, 20000}) {
    SCOPED_TRACE(id);
    EXPECT_EQ(Text(id), "ORVELAN_VERSION_3_0_3909");
  }
  // The offsets reach ordinary properties as well.
  EXPECT_EQ(Text(10000 + BANKSTATEMENT_PROP_OFXVERSION), "102");
  EXPECT_EQ(Integer(20000 + BANKSTATEMENT_PROP_TIMEOUT), 60);
}

TEST_F(BankStatementAbiTest, DefaultsAfterCreation) {
  EXPECT_EQ(Text(43), "102");
  EXPECT_EQ(Integer(52), 60);
  for (int id : {1, 5, 22, 23, 24, 27, 28, 30, 31, 32, 36, 37, 38, 39, 41, 42, 47, 49, 51}) EXPECT_EQ(Text(id), "") << id;
  for (int id : {2, 6, 25, 26, 29, 33, 48, 53}) EXPECT_EQ(Integer(id), 0) << id;
  const std::pair<int, std::string> bytes[] = {{46, "MY"}, {44, ""}, {45, ""}, {50, ""}};
  for (const auto& [id, expected] : bytes) {
    int length = -1;
    const char* data = static_cast<const char*>(BankStatement_Get(obj_, id, 0, &length));
    ASSERT_EQ(length, static_cast<int>(expected.size())) << id;
    EXPECT_EQ(std::string(data, static_cast<size_t>(length)), expected);
  }
  EXPECT_EQ(LastCode(), 0);
  EXPECT_EQ(LastError(), "");
}

TEST_F(BankStatementAbiTest, BytesKeepEmbeddedNulsAndTheirCount) {
  const char cert[] = {'\x30', '\x82', '\0', '\x01', 'x'};
  EXPECT_EQ(BankStatement_Set(obj_, 44, 0, cert, sizeof cert), 0);
  int length = 0;
  const char* got = static_cast<const char*>(BankStatement_Get(obj_, 44, 0, &length));
  ASSERT_EQ(length, static_cast<int>(sizeof cert));
  EXPECT_EQ(std::memcmp(got, cert, sizeof cert), 0);
  EXPECT_EQ(SetText(23, nullptr), 0);  // a null text is the empty text
  EXPECT_EQ(Text(23), "");
}

TEST_F(BankStatementAbiTest, FirewallTypeSetsItsDefaultPort) {
  const std::pair<int, int> cases[] = {{1, 80}, {2, 1080}, {3, 1080}, {4, 80}, {5, 80}, {0, 0}, {7, 0}};
  for (const auto& [type, port] : cases) {
    SCOPED_TRACE(type);
    EXPECT_EQ(SetInteger(29, 4242), 0);
    EXPECT_EQ(SetInteger(26, type), 0);
    EXPECT_EQ(Integer(26), type);
    EXPECT_EQ(Integer(29), port);
  }
  // A port set after the type stays.
  EXPECT_EQ(SetInteger(26, 2), 0);
  EXPECT_EQ(SetInteger(29, 9050), 0);
  EXPECT_EQ(Integer(29), 9050);
}

TEST_F(BankStatementAbiTest, FirewallCredentialsAreCutTo255Bytes) {
  const std::string long_text(300, 'u');
  for (int id : {28, 30}) {
    EXPECT_EQ(SetText(id, long_text.c_str()), 0);
    EXPECT_EQ(Text(id), long_text.substr(0, 255)) << id;
  }
}

TEST_F(BankStatementAbiTest, IntegersAreCutTo32BitsAndSignExtended) {
  EXPECT_EQ(SetInteger(29, static_cast<intptr_t>(0x100000050LL)), 0);
  EXPECT_EQ(Integer(29), 0x50);
  EXPECT_EQ(SetInteger(29, -5), 0);
  EXPECT_EQ(Integer(29), -5);
}

TEST_F(BankStatementAbiTest, SettingFailuresCarryCodeAndText) {
  EXPECT_EQ(SetInteger(2, 4), 202);
  EXPECT_EQ(LastCode(), 202);
  EXPECT_EQ(LastError(), "AccountType is invalid.");
  EXPECT_EQ(Integer(2), 0);  // keeps its previous value

  EXPECT_EQ(BankStatement_Set(obj_, 46, 0, "", 0), 1);
  EXPECT_EQ(LastError(), "Either the store or its length not set correctly");
  int length = 0;
  BankStatement_Get(obj_, 46, 0, &length);
  EXPECT_EQ(length, 2);  // the store is unchanged

  EXPECT_EQ(SetText(41, ""), 508);
  EXPECT_EQ(LastError(), "No response available from the server.");

  // A later success clears the text.
  EXPECT_EQ(SetText(23, "x"), 0);
  EXPECT_EQ(LastCode(), 0);
  EXPECT_EQ(LastError(), "");
}

TEST_F(BankStatementAbiTest, ReadOnlyAndUnknownIdsInSetLeaveTheLastError) {
  EXPECT_EQ(SetInteger(2, 9), 202);
  for (int id : {3, 6, 21, 40, 50, 53, 55, 0, 64, 2010, 10023, -1}) {
    SCOPED_TRACE(id);
    EXPECT_EQ(SetText(id, "x"), -1);
    EXPECT_EQ(LastCode(), 202);
    EXPECT_EQ(LastError(), "AccountType is invalid.");
  }
}

TEST_F(BankStatementAbiTest, UnknownIdInGetReturnsZeroWithCodeZero) {
  EXPECT_EQ(SetInteger(2, 9), 202);
  EXPECT_EQ(BankStatement_Get(obj_, 64, 0, nullptr), nullptr);
  EXPECT_EQ(LastCode(), 0);
}

TEST_F(BankStatementAbiTest, IndexedReadsOnEmptyListsFail) {
  // Every Tx property (54..63) and every ClosingInfo property (7..20).
  for (int id = 7; id <= 63; ++id) {
    const bool is_tx = id >= 54;
    const bool is_closing = id <= 20;
    if (!is_tx && !is_closing) continue;
    const char* text =
        is_tx ? "Invalid TxIndex (out of bounds)." : "Invalid ClosingInfoIndex (out of bounds).";
    for (int index : {-1, 0, 5}) {
      SCOPED_TRACE(std::to_string(id) + "[" + std::to_string(index) + "]");
      void* value = BankStatement_Get(obj_, id, index, nullptr);
      if (id == 62) {
        EXPECT_EQ(value, nullptr);  // TxType is an integer: reads as 0
      } else {
        ASSERT_NE(value, nullptr);
        EXPECT_STREQ(static_cast<const char*>(value), "");
      }
      EXPECT_EQ(LastCode(), 432);
      EXPECT_EQ(LastError(), text);

      EXPECT_EQ(SetText(23, "reset"), 0);  // clear code and text
      EXPECT_EQ(BankStatement_CheckIndex(obj_, id, index), 280);
      EXPECT_EQ(LastError(), text);
      EXPECT_EQ(LastCode(), 0);  // CheckIndex sets the text only
    }
  }
  // Ids that are not indexed always pass.
  for (int id : {1, 6, 53, 43, 99, -3}) EXPECT_EQ(BankStatement_CheckIndex(obj_, id, -7), 0) << id;
}

TEST_F(BankStatementAbiTest, ConfigThroughTheMethodTable) {
  std::string answer;
  EXPECT_EQ(Config("codepage=65001", &answer), 0);
  EXPECT_EQ(answer, "");
  EXPECT_EQ(Integer(2010), 65001);  // the reserved id reads the same setting
  EXPECT_EQ(Config("CodePage", &answer), 0);
  EXPECT_EQ(answer, "65001");
  EXPECT_EQ(LastError(), "65001");

  const std::pair<const char*, const char*> bank_id_present[] = {
      {"BankIdPresent", "1"}, {"bankidpresent=no", ""}, {"BankIdPresent", "0"}, {"BankIdPresent=YES", ""},
      {"BankIdPresent", "1"}};
  for (const auto& [setting, expected] : bank_id_present) {
    EXPECT_EQ(Config(setting, &answer), 0) << setting;
    EXPECT_EQ(answer, expected) << setting;
  }

  EXPECT_EQ(Config("Foo=1", &answer), -1);
  EXPECT_EQ(answer, "");
  EXPECT_EQ(LastCode(), -1);
  EXPECT_EQ(LastError(), "Unknown config setting.");

  // A null setting text is the empty text; the text-converting id behaves the same.
  void* params[2] = {nullptr, nullptr};
  int lengths[2] = {0, 0};
  EXPECT_EQ(BankStatement_Do(obj_, BANKSTATEMENT_METHOD_CONFIG, 2, params, lengths), -1);
  params[0] = const_cast<char*>("CodePage");
  EXPECT_EQ(BankStatement_Do(obj_, 10000 + BANKSTATEMENT_METHOD_CONFIG, 2, params, lengths), 0);
  EXPECT_STREQ(static_cast<const char*>(params[1]), "65001");
}

TEST_F(BankStatementAbiTest, ReservedMethodIds) {
  EXPECT_EQ(SetInteger(2, 9), 202);
  for (int id : {2000, 2001, 2002, 12002}) {
    SCOPED_TRACE(id);
    EXPECT_EQ(BankStatement_Do(obj_, id, 0, nullptr, nullptr), 0);
    EXPECT_EQ(LastCode(), 202);  // the last error is not touched
  }
  // An id that names no method succeeds and clears the code.
  EXPECT_EQ(BankStatement_Do(obj_, 99, 0, nullptr, nullptr), 0);
  EXPECT_EQ(LastCode(), 0);
}

TEST_F(BankStatementAbiTest, MethodsWithoutEngineFailWithSystemText) {
  EXPECT_EQ(BankStatement_Do(obj_, BANKSTATEMENT_METHOD_GETSTATEMENT, 0, nullptr, nullptr), 38);
  EXPECT_EQ(LastError(), "[38] Function not implemented.");
  EXPECT_EQ(BankStatement_Do(obj_, BANKSTATEMENT_METHOD_RESET, 0, nullptr, nullptr), 0);
  EXPECT_EQ(LastError(), "");
}

TEST(BankStatementAbiLifetimeTest, NullObjectsAreHarmless) {
  EXPECT_EQ(BankStatement_Destroy(nullptr), 0);
  EXPECT_EQ(BankStatement_StaticInit(nullptr), 0);
  EXPECT_EQ(BankStatement_StaticDestroy(), 0);
  EXPECT_STREQ(BankStatement_GetLastError(nullptr), "");
  EXPECT_EQ(BankStatement_GetLastErrorCode(nullptr), 0);
}

TEST(BankStatementAbiLifetimeTest, ComponentsAreIndependent) {
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

// The exported atof reads "." as the decimal point whatever LC_NUMERIC says.
TEST(AtofTest, IgnoresCommaDecimalLocale) {
  const char* const locales[] = {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "nl_NL.UTF-8"};
  const char* chosen = nullptr;
  for (const char* name : locales) {
    if (std::setlocale(LC_NUMERIC, name) != nullptr) {
      chosen = name;
      break;
    }
  }
  if (chosen == nullptr) {
    if (std::getenv("ORVELAN_REQUIRE_PEERS") != nullptr) FAIL() << "no comma-decimal locale installed";
    GTEST_SKIP() << "no comma-decimal locale installed (install locales and generate de_DE.UTF-8)";
  }
  // The locale is really in force: the C library's strtod stops at the ".".
  EXPECT_EQ(std::strtod("1.5", nullptr), 1.0);

  // Through the process's symbol table, as a host calling atof binds; the
  // pointer keeps the compiler from inlining the C library's version.
  double (*volatile host_atof)(const char*) = &std::atof;
  EXPECT_EQ(host_atof("1.5"), 1.5);
  // And explicitly from the library.
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
