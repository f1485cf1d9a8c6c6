#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace orvelan {

// Cuts a byte stream that arrives in arbitrary pieces into lines. The socket
// layer receives straight into FreeRoom(), calls Commit(n), then drains
// NextLine(); a line that outgrows the capacity is drained with TakeAll().
//
//   LineBuffer lines(2048);
//   lines.SetMarker("\r\n");
//   LineBuffer::Room room = lines.FreeRoom();
//   lines.Commit(recv(fd, room.data, room.size, 0));
//   std::string_view line;
//   while (lines.NextLine(&line)) Use(line);
//
// Without a marker there is no cutting: NextLine hands out every unread byte.
// One buffer belongs to one connection; not thread-safe.
class LineBuffer {
 public:
  explicit LineBuffer(uint32_t capacity = 2048);
  LineBuffer(const LineBuffer&) = delete;
  LineBuffer& operator=(const LineBuffer&) = delete;

  // Reallocates to `capacity` bytes and empties the buffer; the same capacity
  // only empties it. Returns false when memory is exhausted (buffer unchanged).
  bool SetCapacity(uint32_t capacity);
  uint32_t Capacity() const { return capacity_; }

  // The end-of-line marker; empty turns cutting off. Leaves split-any mode.
  void SetMarker(std::string_view marker);
  std::string_view Marker() const { return marker_; }
  // Split-any mode cuts at CR, LF, CR LF or LF CR (CR CR and LF LF are two
  // line ends); on sets the marker to "\r\n", off removes the marker.
  void SetSplitAny(bool on);
  bool SplitAny() const { return split_any_; }

  // Where the next receive may write. Unread bytes move to the front when the
  // tail is full; size 0 means the buffer is full without a line end.
  struct Room {
    char* data;
    uint32_t size;
  };
  Room FreeRoom();

  // REQUIRES: n <= FreeRoom().size
  void Commit(uint32_t n);

  // Sets *line to the next complete line without its line end; false if none
  // is buffered. *line points into the buffer and is valid until the next
  // non-const call.
  bool NextLine(std::string_view* line);

  // Hands out every unread byte, complete line or not, and empties the buffer.
  std::string_view TakeAll();

  uint32_t Unread() const { return length_; }
  // Drops unread bytes and any pending partner; keeps marker and capacity.
  void Clear();

 private:
  bool NextSplitLine(std::string_view* line);
  void MoveToFront();

  std::unique_ptr<char[]> data_;  // capacity_ + 1 bytes: room for a NUL after a line
  uint32_t capacity_;
  uint32_t start_ = 0;            // first unread byte
  uint32_t length_ = 0;           // unread bytes
  std::string marker_;
  bool split_any_ = false;
  uint8_t pending_partner_ = 0;   // CR or LF still owed by a line end cut at the last byte
};

}  // namespace orvelan
