#include "core/config_argument.h"

#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

TEST(ConfigArgumentTest, ParsesNameIndexValueAndQuery) {
  const struct { const char* text; const char* name; const char* value; int index; bool is_query; } cases[] = {
      {"CodePage", "CodePage", "", -1, true},
      {"CodePage=65001", "CodePage", "65001", -1, false},
      {"Name=", "Name", "", -1, false},  // a set with an empty value, not a query
      {"A=b=c", "A", "b=c", -1, false},
      {"Name[3]=x", "Name", "x", 3, false},
      {"Name(3)=x", "Name", "x", 3, false},
      {"Name[1][2]=x", "Name", "x", 12, false},  // index digits run on
      {"Name[3]", "Name", "", 3, true},
      {"Na[2]me=v", "Name", "v", 2, false},
      {"Name[x]=v", "Name", "v", 0, false},
      {"Name[=]=v", "Name", "v", 0, false},  // "=" inside an index is collected
      {"Name[5=v", "Name", "", -1, true},    // an index never closed swallows the rest
      {"", "", "", -1, true},
      {nullptr, "", "", -1, true},
      {"=", "", "", -1, false},
      {" Spaced = 1 ", " Spaced ", " 1 ", -1, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text ? c.text : "null");
    ConfigArgument argument;
    ASSERT_EQ(argument.Parse(c.text), 0);
    EXPECT_STREQ(argument.Name(), c.name);
    EXPECT_STREQ(argument.Value(), c.value);
    EXPECT_EQ(argument.ValueLength(), static_cast<int>(std::string(c.value).size()));
    EXPECT_EQ(argument.Index(), c.index);
    EXPECT_EQ(argument.IsQuery(), c.is_query);
  }
}

TEST(ConfigArgumentTest, NameIsIgnoresAsciiCaseOnly) {
  ConfigArgument argument;
  ASSERT_EQ(argument.Parse("cODEpAGE=1"), 0);
  EXPECT_TRUE(argument.NameIs("CodePage"));
  EXPECT_FALSE(argument.NameIs("CodePag") || argument.NameIs("CodePages"));
  ASSERT_EQ(argument.Parse("\xC9t\xE9=1"), 0);
  EXPECT_FALSE(argument.NameIs("\xE9t\xE9"));  // bytes above 127 are not folded
}

TEST(ConfigArgumentTest, ValueAsBoolAndInt) {
  const std::pair<const char*, bool> bools[] = {
      {"X=TrUe", true}, {"X=YES", true}, {"X=1", true},     {"X=", false},
      {"X=on", false},  {"X=11", false}, {"X=true ", false}, {"X=y", false}};
  for (const auto& [text, expected] : bools) {
    ConfigArgument argument;
    ASSERT_EQ(argument.Parse(text), 0);
    EXPECT_EQ(argument.ValueAsBool(), expected) << text;
  }
  const std::pair<const char*, int> ints[] = {
      {"X=12abc", 12}, {"X=-7", -7}, {"X= 7", 0}};  // the integer parser's own rules are tested with it
  for (const auto& [text, expected] : ints) {
    ConfigArgument argument;
    ASSERT_EQ(argument.Parse(text), 0);
    EXPECT_EQ(argument.ValueAsInt(), expected) << text;
  }
}

}  // namespace
}  // namespace orvelan
