#include "core/component_core.h"

#include <string>

#include <gtest/gtest.h>


namespace orvelan {
namespace {

// A layer above the core with one setting of its own, to show the chain.
class LayeredCore : public ComponentCore {
 public:
  int HandleConfig(ConfigArgument& argument, const char*& out) override {
    if (argument.NameIs("Depth")) {
      if (argument.IsQuery()) return ReturnConfigValue(out, depth_);
      depth_ = argument.ValueAsInt();
      return 0;
    }
    return ComponentCore::HandleConfig(argument, out);
  }
  int depth_ = 3;
};

std::string ConfigAnswer(ComponentCore& core, const char* text, int* rc) {
  const char* out = nullptr;
  *rc = core.Config(text, out);
  EXPECT_NE(out, nullptr);
  return out == nullptr ? "" : out;
}

TEST(ComponentCoreTest, CoreSettings) {
  struct Step {
    const char* text;
    int rc;
    const char* answer;
  };
  const Step steps[] = {
      {"CodePage", 0, "0"},      {"codepage=65001", 0, ""}, {"CODEPAGE", 0, "65001"},     {"CodePage=12abc", 0, ""},
      {"CodePage", 0, "12"},     {"CodePage=", 0, ""},         {"CodePage", 0, "0"},
      {"CharsetMode=300", 0, ""}, {"charsetmode", 0, "44"},     {"CharsetMode=200", 0, ""},
      {"CharsetMode", 0, "-56"}, {"CharsetMode=-1", 0, ""},    {"CharsetMode", 0, "-1"},
      {"Foo=1", -1, ""},         {"Foo", -1, ""},              {"", -1, ""},
      {"CodePage2", -1, ""},     {"Code Page", -1, ""},
  };
  ComponentCore core;
  for (const Step& s : steps) {
    SCOPED_TRACE(s.text);
    int rc = -2;
    EXPECT_EQ(ConfigAnswer(core, s.text, &rc), s.answer);
    EXPECT_EQ(rc, s.rc);
    if (s.rc == 0 && s.answer[0] != '\0') {
      EXPECT_STREQ(core.GetLastError(), s.answer);  // the answer is also the last-error text
    }
    if (s.rc == -1) {
      EXPECT_STREQ(core.GetLastError(), "Unknown config setting.");
    }
  }
  EXPECT_EQ(core.CodePage(), 0);
  EXPECT_EQ(core.CharsetMode(), -1);
}

TEST(ComponentCoreTest, NullConfigTextIsUnknown) {
  ComponentCore core;
  const char* out = "stale";
  EXPECT_EQ(core.Config(nullptr, out), -1);
  EXPECT_STREQ(out, "");
  EXPECT_STREQ(core.GetLastError(), "Unknown config setting.");
}

TEST(ComponentCoreTest, LayersHandleTheirNamesAndPassTheRest) {
  LayeredCore core;
  int rc = -2;
  EXPECT_EQ(ConfigAnswer(core, "depth", &rc), "3");
  EXPECT_EQ(ConfigAnswer(core, "Depth=9", &rc), "");
  EXPECT_EQ(core.depth_, 9);
  EXPECT_EQ(ConfigAnswer(core, "CodePage=5", &rc), "");
  EXPECT_EQ(core.CodePage(), 5);
  EXPECT_EQ(ConfigAnswer(core, "Nothing", &rc), "");
  EXPECT_EQ(rc, -1);
}

TEST(ComponentCoreTest, ReturnConfigValueCutsNumbersTo32Bits) {
  ComponentCore core;
  const char* out = nullptr;
  EXPECT_EQ(core.ReturnConfigValue(out, int64_t{0x100000005}), 0);
  EXPECT_STREQ(out, "5");
  EXPECT_EQ(core.ReturnConfigValue(out, int64_t{-2147483648LL}), 0);
  EXPECT_STREQ(out, "-2147483648");
  EXPECT_EQ(core.ReturnConfigValue(out, "text answer"), 0);
  EXPECT_STREQ(out, "text answer");
  EXPECT_EQ(out, core.GetLastError());
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
  core.SetErrorText(nullptr);
  EXPECT_TRUE(core.HasNoErrorText());
  core.SetLastErrorCode(5);
  core.ClearError();
  EXPECT_EQ(core.GetLastErrorCode(), 0);
  EXPECT_STREQ(core.GetLastError(), "");
}

TEST(ComponentCoreTest, MinimalDefaultTextKnowsOnlyOutOfMemory) {
  ComponentCore core;
  EXPECT_EQ(core.FillDefaultErrorText(200), 200);
  EXPECT_STREQ(core.GetLastError(), "Out of memory.");
  core.SetErrorText("");
  EXPECT_EQ(core.FillDefaultErrorText(110), 110);
  EXPECT_STREQ(core.GetLastError(), "");
}

TEST(ComponentCoreTest, EventsWithoutSinkAreDropped) {
  ComponentCore core;
  int accept = 0;
  long timeout = 20;
  long handle = 4;
  EXPECT_EQ(core.FireError(1, "x"), 0);
  EXPECT_EQ(core.FireSSLServerAuthentication("", 0, "", "", "", accept), 0);
  EXPECT_EQ(accept, 0);
  EXPECT_EQ(core.FireWaitForEvents(timeout), 0);
  EXPECT_EQ(timeout, 20);
  EXPECT_EQ(core.FireWatchSocket(1, 1, handle), 0);
  EXPECT_EQ(handle, 4);
}

}  // namespace
}  // namespace orvelan
