#include "net/line_buffer.h"

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

// Feeds the pieces one by one and drains lines after each; a buffer that
// fills without a line end is drained whole, marked with a trailing '~'.
std::vector<std::string> CutLines(LineBuffer& buffer, const std::vector<std::string>& pieces) {
  std::vector<std::string> lines;
  std::string_view line;
  for (const std::string& piece : pieces) {
    size_t done = 0;
    while (done < piece.size()) {
      LineBuffer::Room room = buffer.FreeRoom();
      if (room.size == 0) {
        lines.push_back(std::string(buffer.TakeAll()) + "~");
        continue;
      }
      const size_t n = std::min<size_t>(room.size, piece.size() - done);
      std::memcpy(room.data, piece.data() + done, n);
      buffer.Commit(static_cast<uint32_t>(n));
      done += n;
      while (buffer.NextLine(&line)) lines.emplace_back(line);
    }
  }
  return lines;
}

std::vector<std::string> CutWithMarker(const std::vector<std::string>& pieces, const char* marker,
                                       uint32_t capacity = 2048) {
  LineBuffer buffer(capacity);
  buffer.SetMarker(marker);
  return CutLines(buffer, pieces);
}

TEST(LineBufferTest, LinesDoNotDependOnHowBytesArrive) {
  const std::string wire = "OFXHEADER:100\r\nDATA:OFXSGML\r\n\r\n<OFX>\r\n";
  const std::vector<std::string> whole = CutWithMarker({wire}, "\r\n");
  ASSERT_EQ(whole, (std::vector<std::string>{"OFXHEADER:100", "DATA:OFXSGML", "", "<OFX>"}));
  for (size_t cut = 0; cut <= wire.size(); ++cut) {
    SCOPED_TRACE("cut at " + std::to_string(cut));
    EXPECT_EQ(CutWithMarker({wire.substr(0, cut), wire.substr(cut)}, "\r\n"), whole);
  }
  std::vector<std::string> bytes;
  for (char c : wire) bytes.emplace_back(1, c);
  EXPECT_EQ(CutWithMarker(bytes, "\r\n"), whole);
}

// A 10-byte buffer takes 40 bytes of 4-byte lines only if consumed room is
// reused; a longer line comes out in pieces; without a marker all is one line.
TEST(LineBufferTest, CapacityAndMarker) {
  std::string wire;
  for (int i = 0; i < 10; ++i) wire += "ab\r\n";
  std::vector<std::string> threes;
  for (size_t i = 0; i < wire.size(); i += 3) threes.push_back(wire.substr(i, 3));
  using Lines = std::vector<std::string>;
  const struct { Lines pieces; const char* marker; uint32_t capacity; Lines lines; } cases[] = {
      {threes, "\r\n", 10, Lines(10, "ab")},
      {{"abcdefghij\nk\n"}, "\n", 4, {"abcd~", "efgh~", "ij", "k"}},
      {{"a\r\nb", "c"}, "", 16, {"a\r\nb", "c"}},
  };
  for (const auto& c : cases) EXPECT_EQ(CutWithMarker(c.pieces, c.marker, c.capacity), c.lines) << c.marker;
}

struct SplitCase {
  const char* name;
  std::vector<std::string> pieces;
  std::vector<std::string> lines;
  std::string left;  // still buffered afterwards
};

TEST(LineBufferTest, SplitAnyLineEnd) {
  const SplitCase cases[] = {
      {"mixed ends", {"A\r\nB\n\rX\r\rY"}, {"A", "B", "X", ""}, "Y"},
      {"CR LF across reads", {"A\r", "\nB"}, {"A"}, "B"},
      {"LF CR across reads", {"A\n", "\rB"}, {"A"}, "B"},
      {"CR then CR across reads", {"A\r", "\rB"}, {"A", ""}, "B"},
      {"LF LF", {"\n\n"}, {"", ""}, ""},
  };
  for (const SplitCase& c : cases) {
    SCOPED_TRACE(c.name);
    LineBuffer buffer;
    buffer.SetSplitAny(true);
    EXPECT_EQ(CutLines(buffer, c.pieces), c.lines);
    EXPECT_EQ(buffer.TakeAll(), c.left);
  }
}

TEST(LineBufferTest, CapacityChangeEmptiesAndMarkerSwitchesMode) {
  LineBuffer buffer(8);
  CutLines(buffer, {"abc"});
  ASSERT_EQ(buffer.Unread(), 0u);  // no marker: handed out at once
  buffer.SetMarker("\n");
  CutLines(buffer, {"abc"});
  EXPECT_EQ(buffer.Unread(), 3u);
  EXPECT_TRUE(buffer.SetCapacity(8));
  EXPECT_EQ(buffer.Unread(), 0u);
  buffer.SetSplitAny(true);
  EXPECT_EQ(buffer.Marker(), "\r\n");
  buffer.SetSplitAny(false);
  EXPECT_EQ(buffer.Marker(), "");
}

}  // namespace
}  // namespace orvelan
