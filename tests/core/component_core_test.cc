#include "core/component_core.h"
#include "core/setting_table.h"

#include <string>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

// A layer above the core with settings of its own, declared as a service would.
class LayeredCore : public ComponentCore {
 public:
  int HandleConfig(ConfigArgument& argument, const char*& out) override {
    using R = Setting<LayeredCore>;
    static constexpr R kSettings[] = {
        R::Int<&LayeredCore::depth_>("Depth"),
        R::TrueFalse<&LayeredCore::deep_>("Deep"),
        R::OneZero<&LayeredCore::deep_>("DeepBit"),
        R::Text<&LayeredCore::label_>("Label"),
        {"Fixed", [](LayeredCore& c, const char*& out) { return c.ReturnConfigValue(out, "fixed"); }},
    };
    if (const R* row = FindSetting(kSettings, argument)) return row->Run(*this, argument, out);
    return ComponentCore::HandleConfig(argument, out);
  }
  int32_t depth_ = 3;
  bool deep_ = false;
  ByteString label_;
};

// Parsing itself is covered with ConfigArgument; these are the core's settings.
TEST(ComponentCoreTest, ConfigSettingsThroughTheLayers) {
  const struct { const char* text; int rc; const char* answer; } steps[] = {
      {"CodePage", 0, "0"},        {"codepage=65001", 0, ""}, {"CODEPAGE", 0, "65001"}, {"CodePage=", 0, ""},
      {"CharsetMode=300", 0, ""},  {"charsetmode", 0, "44"},  {"CharsetMode=200", 0, ""},
      {"CharsetMode", 0, "-56"},   {"depth", 0, "3"},         {"Depth=9", 0, ""},       {"Depth", 0, "9"},
      {"Deep=YES", 0, ""},         {"deep", 0, "True"},       {"DeepBit", 0, "1"},      {"DeepBit=0", 0, ""},
      {"Deep", 0, "False"},        {"Label=a=b", 0, ""},      {"LABEL", 0, "a=b"},      {"Fixed=x", 0, ""},
      {"Fixed", 0, "fixed"},
      {"Foo=1", -1, ""},           {"CodePage2", -1, ""},     {nullptr, -1, ""},
  };
  LayeredCore core;
  for (const auto& s : steps) {
    SCOPED_TRACE(s.text ? s.text : "null");
    const char* out = "stale";
    EXPECT_EQ(core.Config(s.text, out), s.rc);
    EXPECT_STREQ(out, s.answer);
    // A query's answer is also the last-error text.
    if (s.rc == -1) {
      EXPECT_STREQ(core.GetLastError(), "Unknown config setting.");
    } else if (s.answer[0] != '\0') {
      EXPECT_STREQ(core.GetLastError(), s.answer);
    }
  }
  EXPECT_EQ(core.CodePage(), 0);
  EXPECT_EQ(core.CharsetMode(), -56);
}

TEST(ComponentCoreTest, ReturnConfigValueCutsNumbersTo32Bits) {
  ComponentCore core;
  const char* out = nullptr;
  EXPECT_EQ(core.ReturnConfigValue(out, int64_t{0x100000005}), 0);
  EXPECT_STREQ(out, "5");
  EXPECT_EQ(core.ReturnConfigValue(out, int64_t{-2147483648LL}), 0);
  EXPECT_STREQ(out, "-2147483648");
  EXPECT_EQ(core.ReturnConfigValue(out, static_cast<const char*>(nullptr)), 0);
  EXPECT_STREQ(out, "");
}

TEST(ComponentCoreTest, ErrorTextForms) {
  ComponentCore core;
  core.SetErrorText("one");
  core.AppendErrorText(" two");
  EXPECT_STREQ(core.GetLastError(), "one two");
  core.SetLastErrorCode(7);
  core.SetErrorText("a", nullptr, "c", "d");
  EXPECT_STREQ(core.GetLastError(), "acd");
  EXPECT_EQ(core.GetLastErrorCode(), 0);  // the four-part form clears the error first
  core.SetErrorText("[", 110, "] ");
  core.AppendErrorText("x=", -4, ".");
  EXPECT_STREQ(core.GetLastError(), "[110] x=-4.");
  EXPECT_EQ(core.ReportError(2000, "Missing"), 2000);
  EXPECT_STREQ(core.GetLastError(), "Missing");
  EXPECT_EQ(core.GetLastErrorCode(), 0);  // ReportError does not store the code
  core.SetLastErrorCode(5);
  core.ClearError();
  EXPECT_EQ(core.GetLastErrorCode(), 0);
  EXPECT_TRUE(core.HasNoErrorText());
}

}  // namespace
}  // namespace orvelan
