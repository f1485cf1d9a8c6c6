#include "ofx/request_template.h"

#include <gtest/gtest.h>

#include <string>

#include "ofx/message_set_table.h"

namespace orvelan {
namespace {

TEST(RequestTemplateTest, ExpandsSlotsMarkersAndTails) {
  const std::string_view arguments[] = {"zero", "one", "two"};
  struct Case {
    const char* text;
    const char* expanded;
  } cases[] = {
      {"", ""},
      {"plain", "plain"},
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
  }
}

TEST(RequestTemplateTest, AppendsUnlessToldToClear) {
  RequestTemplate t;
  t.Load("[~0~]");
  const std::string_view arguments[] = {"v"};
  ByteString out("head");
  ASSERT_EQ(t.Expand(out, arguments, 1, false), 0);
  EXPECT_EQ(out.View(), "head[v]");
}

TEST(MessageSetTableTest, NamesAndWrappers) {
  const char* expected[][2] = {{"ACCTINFO", "SIGNUP"},   {"STMT", "BANK"},       {"INTRA", "BANK"},
                               {"CCSTMT", "CREDITCARD"}, {"LOANSTMT", "LOAN"},   {"INVSTMT", "INVSTMT"},
                               {"INTER", "BANK"},        {"BILLPAY", "BILLPAY"}, {"PROF", "PROF"}};
  for (int i = 0; i < MessageSetTable::kCount; ++i) {
    EXPECT_STREQ(MessageSetTable::RequestKind(i), expected[i][0]);
    EXPECT_STREQ(MessageSetTable::MessageSet(i), expected[i][1]);
  }
  EXPECT_STREQ(MessageSetTable::RequestKind(9), "");
  EXPECT_STREQ(MessageSetTable::MessageSet(-1), "");
  EXPECT_STREQ(MessageSetTable::StatementType(0), "TRANSACTIONS");
  EXPECT_STREQ(MessageSetTable::StatementType(1), "CLOSING");
  EXPECT_STREQ(MessageSetTable::StatementType(2), "");

  ByteString out;
  ASSERT_EQ(MessageSetTable::AppendOpen(out, MessageSetTable::kCreditCardStatement), 0);
  ASSERT_EQ(MessageSetTable::AppendClose(out, MessageSetTable::kAccountInfo), 0);
  EXPECT_EQ(out.View(), "<CREDITCARDMSGSRQV1>\r\n</SIGNUPMSGSRQV1>\r\n");
  EXPECT_EQ(MessageSetTable::AppendOpen(out, 9), 202);
}

}  // namespace
}  // namespace orvelan
