#pragma once
#include <cstdint>

#include "base/byte_string.h"

namespace orvelan {

// A growable little-endian byte buffer for building and reading NTLM messages.
//
//   NtlmWriter w;
//   w.WriteBytes(-1, "NTLMSSP", 0, 8);   // signature and its NUL
//   w.AppendInt(1, 4);                   // message type
//   w.AppendInt(0, 8);                   // a reserved 8-byte field
//   ...
//   w.WriteInt(16, payload_offset, 4);   // patch a field once the offset is known
//
// Writes either append or overwrite bytes already in the buffer; they never
// grow the buffer from the middle. A failing call returns 508 and sets
// ErrorText(); successful calls leave the text alone. Not thread-safe.
class NtlmWriter {
 public:
  static constexpr int32_t kMaxWidth = 100;
  static constexpr char kTextWriteIntOverflow[] = "Error in WriteInt: Attempt to overflow buffer.";
  static constexpr char kTextWriteBytesOverflow[] = "Error in WriteBytes: Attempt to overflow buffer.";

  NtlmWriter() = default;

  // Writes a field of `width` bytes at `position`, or appends it for -1:
  //   width 1 to 4     the low `width` bytes of value, least significant first;
  //   width 0          nothing;
  //   width 5 to 100   `width` zero bytes whatever the value (NTLM's 8-byte
  //                    reserved and context fields are written this way).
  // 508 with kTextWriteIntOverflow for a width outside 0..100, and for a
  // position other than -1 whose field would not end within the buffer.
  // 200 if appending cannot allocate. Nothing is written on failure.
  int WriteInt(int32_t position, uint32_t value, int32_t width);
  int AppendInt(uint32_t value, int32_t width) { return WriteInt(-1, value, width); }

  // Writes bytes[offset, offset + length) at `position`, or appends them for
  // -1. The bytes may lie inside this writer's own buffer. 508 with
  // kTextWriteBytesOverflow when position is not -1 and position + length is
  // beyond the buffer's length, when position < -1, offset < 0 or length < 0,
  // or when bytes is null and length > 0. 200 if appending cannot allocate.
  int WriteBytes(int32_t position, const void* bytes, int32_t offset, int32_t length);

  // Consumes the next `width` bytes from the read cursor and returns the first
  // four of them (or fewer) as a little-endian number; any further bytes are
  // skipped. Never reads past the end: missing bytes count as zero and the
  // cursor stops at the end. A width <= 0 returns 0 and consumes nothing.
  uint32_t ReadInt(int32_t width);

  // Replaces the buffer by a copy of bytes[0, length) and moves the read
  // cursor to its start. Null or length <= 0 empties it. 0 or 200.
  int Load(const void* bytes, int32_t length);

  // The bytes written so far; valid until the next change.
  const ByteString& Buffer() const { return buffer_; }
  int32_t ReadPosition() const { return read_position_; }
  // The text of the last failure; empty until one happens. Static storage.
  const char* ErrorText() const { return error_text_; }

 private:
  int Fail(const char* text);

  ByteString buffer_;
  int32_t read_position_ = 0;
  const char* error_text_ = "";
};

}  // namespace orvelan
