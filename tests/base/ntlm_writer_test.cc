#include "base/ntlm_writer.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "support/test_bytes.h"

namespace orvelan::test {
namespace {

TEST(NtlmWriterTest, AppendIntIsLittleEndianOrZeros) {
  NtlmWriter w;
  const std::pair<uint32_t, int32_t> kFields[] = {{0x01020304, 4}, {0x0102, 2},     {0x010203, 3}, {0x01020304, 2},
                                                  {0x01020304, 0}, {0xffffffff, 8}, {7, 100}};
  for (auto [value, width] : kFields) ASSERT_EQ(w.AppendInt(value, width), 0);
  EXPECT_EQ(Hex(w.Buffer().View()), "04030201" "0201" "030201" "0403" + std::string(2 * (8 + 100), '0'));
}

// A field may end exactly at the end of the buffer, not one byte further.
TEST(NtlmWriterTest, WritesStayWithinWidthAndBuffer) {
  NtlmWriter w;
  ASSERT_EQ(w.WriteBytes(-1, "xxNTLMSSP", 2, 8), 0);  // with the NUL
  EXPECT_STREQ(w.ErrorText(), "");
  EXPECT_EQ(w.WriteInt(6, 0x6261, 2), 0);
  EXPECT_EQ(w.WriteInt(7, 0x6261, 2), 508);
  EXPECT_EQ(w.AppendInt(1, 101), 508);
  EXPECT_EQ(w.AppendInt(1, -1), 508);
  EXPECT_STREQ(w.ErrorText(), "Error in WriteInt: Attempt to overflow buffer.");
  EXPECT_EQ(w.WriteBytes(4, "wxyz", 0, 4), 0);
  EXPECT_EQ(w.WriteBytes(5, "wxyz", 0, 4), 508);
  EXPECT_EQ(w.WriteBytes(-1, nullptr, 0, 1), 508);
  EXPECT_STREQ(w.ErrorText(), "Error in WriteBytes: Attempt to overflow buffer.");
  EXPECT_EQ(w.Buffer().View(), "NTLMwxyz");
}

TEST(NtlmWriterTest, ReadIntConsumesWidthAndStopsAtTheEnd) {
  NtlmWriter w;
  ASSERT_EQ(w.Load("\x97\x82\x08\xe2\xef\xbe\x01\x02\x03\x04\x05\x06\x07\x08\x11\x22\x33", 17), 0);
  EXPECT_EQ(w.ReadInt(4), 0xe2088297u);
  EXPECT_EQ(w.ReadInt(2), 0xbeefu);
  EXPECT_EQ(w.ReadInt(0), 0u);
  EXPECT_EQ(w.ReadInt(8), 0x04030201u);  // the last four are skipped
  EXPECT_EQ(w.ReadInt(4), 0x332211u);    // only three left
  EXPECT_EQ(w.ReadPosition(), 17);
  EXPECT_EQ(w.ReadInt(4), 0u);
}

}  // namespace
}  // namespace orvelan::test
