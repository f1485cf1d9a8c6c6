#include "net/line_buffer.h"

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

using Lines = std::vector<std::string>;

// Feeds the pieces one by one and drains lines after each; a buffer that
// fills without a line end is drained whole, marked with a trailing '~'.
Lines CutLines(LineBuffer& buffer, const Lines& pieces) {
  Lines lines;
  std::string_view line;
  for (const std::string& piece : pieces) {
    for (size_t done = 0; done < piece.size();) {
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

TEST(LineBufferTest, LinesDoNotDependOnHowBytesArrive) {
  const std::string wire = "OFXHEADER:100\r\nDATA:OFXSGML\r\n\r\n<OFX>\r\n";
  for (size_t cut = 0; cut <= wire.size(); ++cut) {
    SCOPED_TRACE("cut at " + std::to_string(cut));
    LineBuffer buffer;
    buffer.SetMarker("\r\n");
    EXPECT_EQ(CutLines(buffer, {wire.substr(0, cut), wire.substr(cut)}),
              (Lines{"OFXHEADER:100", "DATA:OFXSGML", "", "<OFX>"}));
  }
}

// A 10-byte buffer takes 40 bytes of 4-byte lines only if consumed room is reused; a longer line comes out
// in pieces; without a marker all is one line. With split-any (null marker) CR, LF, CRLF and LFCR each end
// a line, even across reads. left: what is still buffered afterwards.
TEST(LineBufferTest, CapacityMarkerAndSplitAny) {
  const struct { Lines pieces; const char* marker; uint32_t capacity; Lines lines; std::string left; } cases[] = {
      {{"ab\r\nab\r\nab\r\nab\r\nab\r\nab\r\nab\r\nab\r\nab\r\nab\r\n"}, "\r\n", 10, Lines(10, "ab"), ""},
      {{"abcdefghij\nk\n"}, "\n", 4, {"abcd~", "efgh~", "ij", "k"}, ""},
      {{"a\r\nb", "c"}, "", 16, {"a\r\nb", "c"}, ""},
      {{"A\r\nB\n\rX\r\rY"}, nullptr, 2048, {"A", "B", "X", ""}, "Y"},
      {{"A\r", "\nB"}, nullptr, 2048, {"A"}, "B"},
      {{"A\n", "\rB"}, nullptr, 2048, {"A"}, "B"},
      {{"A\r", "\rB"}, nullptr, 2048, {"A", ""}, "B"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.lines.front());
    LineBuffer buffer(c.capacity);
    c.marker != nullptr ? buffer.SetMarker(c.marker) : buffer.SetSplitAny(true);
    EXPECT_EQ(CutLines(buffer, c.pieces), c.lines);
    EXPECT_EQ(buffer.TakeAll(), c.left);
  }
}

TEST(LineBufferTest, CapacityChangeEmptiesAndMarkerSwitchesMode) {
  LineBuffer buffer(8);
  buffer.SetMarker("\n");
  CutLines(buffer, {"abc"});
  EXPECT_TRUE(buffer.SetCapacity(8));
  EXPECT_EQ(buffer.Unread(), 0u);
  buffer.SetSplitAny(true);
  EXPECT_EQ(buffer.Marker(), "\r\n");
}

}  // namespace
}  // namespace orvelan
