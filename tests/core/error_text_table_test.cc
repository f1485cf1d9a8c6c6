#include "core/error_text_table.h"

#include <cstring>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

TEST(ErrorTextTableTest, FindsTextsByNumber) {
  // null: the table has no row; 11 is not the later "Operation would block." row.
  const struct { int number; const char* text; } cases[] = {
      {11, "Try again."}, {12, "Out of memory."}, {110, "Connection timed out."}, {124, "Wrong medium type."},
      {7, nullptr},       {41, nullptr},          {58, nullptr},                  {0, nullptr},
      {-1, nullptr},      {125, nullptr}};
  for (const auto& c : cases) EXPECT_STREQ(SystemErrorText(c.number), c.text) << c.number;
}

TEST(ErrorTextTableTest, HasOneHundredTwentyTwoRowsEndingInAFullStop) {
  int rows = 0;
  for (const ErrorTextEntry* row = kErrorTextTable; row->number != 0; ++row, ++rows) {
    ASSERT_NE(row->text, nullptr) << row->number;
    EXPECT_EQ(row->text[std::strlen(row->text) - 1], '.') << row->number;
  }
  EXPECT_EQ(rows, 122);
}

}  // namespace
}  // namespace orvelan
