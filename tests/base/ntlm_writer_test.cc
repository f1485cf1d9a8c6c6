#include "base/ntlm_writer.h"

#include <gtest/gtest.h>

#include <string>

#include "support/test_bytes.h"

namespace orvelan {
namespace {

using test::Hex;

TEST(NtlmWriterTest, AppendIntWritesLittleEndian) {
  const struct {
    uint32_t value;
    int32_t width;
    const char* bytes_hex;
  } kCases[] = {
      {0x01020304, 4, "04030201"},
      {0x0102, 2, "0201"},
      {0x010203, 3, "030201"},
      {0xab, 1, "ab"},
      {0xe2088297, 4, "978208e2"},
      {0x01020304, 2, "0403"},  // high bytes dropped
      {0xffffffff, 8, "0000000000000000"},
      {0x01020304, 5, "0000000000"},
      {0x01020304, 0, ""},
      {7, 100, nullptr},  // 100 zero bytes
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE("width " + std::to_string(c.width));
    NtlmWriter w;
    ASSERT_EQ(w.AppendInt(0x55, 1), 0);
    ASSERT_EQ(w.AppendInt(c.value, c.width), 0);
    const std::string expected = c.bytes_hex != nullptr ? c.bytes_hex : std::string(200, '0');
    EXPECT_EQ(Hex(w.Buffer().View()), "55" + expected);
  }
}

TEST(NtlmWriterTest, BadWidthsFailWithoutWriting) {
  for (int32_t width : {101, 1000, -1, INT32_MAX, INT32_MIN}) {
    SCOPED_TRACE("width " + std::to_string(width));
    NtlmWriter w;
    ASSERT_EQ(w.AppendInt(1, 4), 0);
    EXPECT_STREQ(w.ErrorText(), "");
    EXPECT_EQ(w.AppendInt(1, width), 508);
    EXPECT_EQ(w.WriteInt(0, 1, width), 508);
    EXPECT_STREQ(w.ErrorText(), "Error in WriteInt: Attempt to overflow buffer.");
    EXPECT_EQ(Hex(w.Buffer().View()), "01000000");
  }
}

TEST(NtlmWriterTest, WriteIntOverwritesWithinTheBuffer) {
  NtlmWriter w;
  ASSERT_EQ(w.AppendInt(0, 8), 0);
  EXPECT_EQ(w.WriteInt(2, 0xaabbcc, 3), 0);
  EXPECT_EQ(w.WriteInt(6, 0x1234, 2), 0);  // ends exactly at the end
  EXPECT_EQ(Hex(w.Buffer().View()), "0000ccbbaa003412");

  EXPECT_EQ(w.WriteInt(7, 0x1234, 2), 508);  // one byte too far
  EXPECT_EQ(w.WriteInt(-2, 1, 1), 508);
  EXPECT_EQ(w.WriteInt(8, 1, 0), 0);
  EXPECT_STREQ(w.ErrorText(), "Error in WriteInt: Attempt to overflow buffer.");  // kept after a success
  EXPECT_EQ(Hex(w.Buffer().View()), "0000ccbbaa003412");
}

TEST(NtlmWriterTest, WriteBytesAppendsOrStaysInside) {
  NtlmWriter w;
  const char kSource[] = "xxNTLMSSP";
  ASSERT_EQ(w.WriteBytes(-1, kSource, 2, 8), 0);  // with the NUL
  EXPECT_EQ(w.Buffer().View(), std::string_view("NTLMSSP\0", 8));

  EXPECT_EQ(w.WriteBytes(6, "ab", 0, 2), 0);  // ends exactly at the end
  EXPECT_EQ(w.Buffer().View(), "NTLMSSab");
  EXPECT_EQ(w.WriteBytes(8, "", 0, 0), 0);
  EXPECT_EQ(w.WriteBytes(-1, nullptr, 0, 0), 0);

  const struct {
    const char* name;
    int32_t position;
    const void* bytes;
    int32_t offset;
    int32_t length;
  } kRejected[] = {
      {"one byte past the end", 7, "ab", 0, 2},
      {"starts past the end", 9, "", 0, 0},
      {"position below -1", -2, "ab", 0, 1},
      {"negative offset", -1, "ab", -1, 1},
      {"negative length", 0, "ab", 0, -1},
      {"null bytes", -1, nullptr, 0, 1},
      {"position overflows", INT32_MAX, "ab", 0, 2},
  };
  for (const auto& c : kRejected) {
    SCOPED_TRACE(c.name);
    NtlmWriter copy = w;
    EXPECT_EQ(copy.WriteBytes(c.position, c.bytes, c.offset, c.length), 508);
    EXPECT_STREQ(copy.ErrorText(), "Error in WriteBytes: Attempt to overflow buffer.");
    EXPECT_EQ(copy.Buffer().View(), "NTLMSSab");
  }
}

// Writers copy a payload out of their own buffer when building messages.
TEST(NtlmWriterTest, WriteBytesFromOwnBuffer) {
  NtlmWriter w;
  ASSERT_EQ(w.Load("0123456789", 10), 0);
  ASSERT_EQ(w.WriteBytes(2, w.Buffer().Data(), 0, 5), 0);  // overlapping move
  EXPECT_EQ(w.Buffer().View(), "0101234789");
  const std::string big(150, 'q');
  ASSERT_EQ(w.WriteBytes(-1, big.data(), 0, 150), 0);
  ASSERT_EQ(w.WriteBytes(-1, w.Buffer().Data(), 0, 160), 0);  // appending moves the storage
  EXPECT_EQ(w.Buffer().Length(), 320);
  EXPECT_EQ(w.Buffer().View().substr(160, 10), "0101234789");
}

TEST(NtlmWriterTest, ReadIntRoundTripsAndStopsAtTheEnd) {
  NtlmWriter w;
  ASSERT_EQ(w.AppendInt(0xfe, 1), 0);
  ASSERT_EQ(w.AppendInt(0xbeef, 2), 0);
  ASSERT_EQ(w.AppendInt(0x123456, 3), 0);
  ASSERT_EQ(w.AppendInt(0xe2088297, 4), 0);
  ASSERT_EQ(w.AppendInt(0x99, 8), 0);
  ASSERT_EQ(w.AppendInt(0x0a0b0c0d, 4), 0);
  ASSERT_EQ(w.AppendInt(0x0201, 2), 0);

  EXPECT_EQ(w.ReadInt(1), 0xfeu);
  EXPECT_EQ(w.ReadInt(2), 0xbeefu);
  EXPECT_EQ(w.ReadInt(3), 0x123456u);
  EXPECT_EQ(w.ReadInt(4), 0xe2088297u);
  EXPECT_EQ(w.ReadInt(0), 0u);
  EXPECT_EQ(w.ReadInt(-3), 0u);
  EXPECT_EQ(w.ReadInt(8), 0u);
  EXPECT_EQ(w.ReadInt(6), 0x0a0b0c0du);  // takes the last two bytes too
  EXPECT_EQ(w.ReadPosition(), 24);
  EXPECT_EQ(w.ReadInt(4), 0u);
  EXPECT_EQ(w.ReadPosition(), 24);

  ASSERT_EQ(w.Load("\x11\x22\x33", 3), 0);
  EXPECT_EQ(w.ReadPosition(), 0);
  EXPECT_EQ(w.ReadInt(2), 0x2211u);
  EXPECT_EQ(w.ReadInt(4), 0x33u);  // only one byte left
  EXPECT_EQ(w.ReadPosition(), 3);

  ASSERT_EQ(w.Load(nullptr, 5), 0);
  EXPECT_TRUE(w.Buffer().IsEmpty());
  EXPECT_EQ(w.ReadInt(4), 0u);
}

}  // namespace
}  // namespace orvelan
