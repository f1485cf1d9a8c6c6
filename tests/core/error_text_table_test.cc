#include "core/error_text_table.h"

#include <cstring>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

struct TextCase {
  int number;
  const char* text;  // null: the table has no row
};
const TextCase kTextCases[] = {
    {1, "Operation not permitted."},
    {2, "No such file or directory."},
    {4, "Interrupted system call."},
    {6, "No such device or address."},
    {7, nullptr},
    {8, "Exec format error."},
    {11, "Try again."},  // not the later "Operation would block." row
    {12, "Out of memory."},
    {32, "Broken pipe."},
    {40, "Too many symbolic links encountered."},
    {41, nullptr},
    {42, "No message of desired type."},
    {57, "Invalid slot."},
    {58, nullptr},
    {59, "Bad font file format."},
    {79, "Can not access a needed shared library."},
    {81, ".lib section in a.out corrupted."},
    {104, "Connection reset by peer."},
    {107, "Transport endpoint is not connected."},
    {110, "Connection timed out."},
    {111, "Connection refused."},
    {113, "No route to host."},
    {115, "Operation now in progress."},
    {124, "Wrong medium type."},
    {0, nullptr},
    {125, nullptr},
    {-1, nullptr},
    {-11, nullptr},
    {301, nullptr},
};

TEST(ErrorTextTableTest, FindsTextsByNumber) {
  for (const TextCase& c : kTextCases) {
    SCOPED_TRACE(c.number);
    const char* text = SystemErrorText(c.number);
    if (c.text == nullptr) {
      EXPECT_EQ(text, nullptr) << text;
    } else {
      ASSERT_NE(text, nullptr);
      EXPECT_STREQ(text, c.text);
    }
  }
}

TEST(ErrorTextTableTest, HoldsEveryNumberOnceExceptEleven) {
  int rows = 0;
  int elevens = 0;
  bool seen[125] = {};
  for (const ErrorTextEntry* row = kErrorTextTable; row->number != 0; ++row) {
    SCOPED_TRACE(row->number);
    ++rows;
    ASSERT_GE(row->number, 1);
    ASSERT_LE(row->number, 124);
    ASSERT_NE(row->text, nullptr);
    const size_t length = std::strlen(row->text);
    ASSERT_GT(length, 1u);
    EXPECT_EQ(row->text[length - 1], '.');
    if (row->number == 11) {
      ++elevens;
    } else {
      EXPECT_FALSE(seen[row->number]);
    }
    seen[row->number] = true;
  }
  EXPECT_EQ(rows, 122);
  EXPECT_EQ(elevens, 2);
  for (int missing : {7, 41, 58}) EXPECT_FALSE(seen[missing]) << missing;
}

}  // namespace
}  // namespace orvelan
