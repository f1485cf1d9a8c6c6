#include "ofx/request_template.h"

#include <gtest/gtest.h>

#include <string>

#include "ofx/message_set_table.h"

namespace orvelan {
namespace {

TEST(RequestTemplateTest, ExpandsSlotsMarkersAndTails) {
  const std::string_view arguments[] = {"zero", "one", "two"};
  struct Case { const char* text; const char* expanded; } cases[] = {
      {"", ""},
      {"<A>~0~</A>", "<A>zero</A>"},
      {"~2~~1~~0~", "twoonezero"},
      {"a~~b", "a~b"},
      {"~~~0~", "~zero"},
      {"x~0", "x0"},  // never closed: the marker is dropped
      {"x~", "x"},
      {"~9~|~-1~|~~", "||~"},  // outside the arguments: nothing
      {"~x~", "zero"},         // not a number reads as 0
  };
  for (const Case& c : cases) {
    RequestTemplate t;
    ASSERT_EQ(t.Load(c.text), 0);
    ByteString out("kept ");
    ASSERT_EQ(t.Expand(out, arguments, 3, true), 0);
    EXPECT_EQ(out.View(), c.expanded) << c.text;
    ASSERT_EQ(t.Expand(out, arguments, 3, false), 0);
    EXPECT_EQ(out.View(), std::string(c.expanded) + c.expanded) << "appends unless told to clear";
  }
}

// The wrappers at both ends of the table and one past it.
TEST(MessageSetTableTest, WrappersAndTheirBounds) {
  ByteString out;
  ASSERT_EQ(MessageSetTable::AppendOpen(out, MessageSetTable::kCreditCardStatement), 0);
  ASSERT_EQ(MessageSetTable::AppendClose(out, MessageSetTable::kAccountInfo), 0);
  EXPECT_EQ(out.View(), "<CREDITCARDMSGSRQV1>\r\n</SIGNUPMSGSRQV1>\r\n");
  EXPECT_STREQ(MessageSetTable::MessageSet(MessageSetTable::kCount - 1), "PROF");
  EXPECT_STREQ(MessageSetTable::RequestKind(MessageSetTable::kCount), "");
  EXPECT_STREQ(MessageSetTable::MessageSet(-1), "");
  EXPECT_STREQ(MessageSetTable::StatementType(2), "");
  EXPECT_EQ(MessageSetTable::AppendOpen(out, MessageSetTable::kCount), 202);
}

}  // namespace
}  // namespace orvelan
