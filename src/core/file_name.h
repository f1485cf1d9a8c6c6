#pragma once
#include <cstdint>

#include "base/byte_string.h"

namespace orvelan {

// A file name as the host handed it over, kept in the form it came in so that
// FileHandle can tell whether it can open it.
//
//   FileName name;
//   if (name.SetNarrowName(path) != 0) return kErrOutOfMemory;
//   int rc = file.OpenRead(name, 0);
//
// Only narrow (byte) names can be opened on this platform. Not thread-safe.
class FileName {
 public:
  static constexpr int32_t kNarrow = 0;
  static constexpr int32_t kWide = 1;

  FileName() = default;
  FileName(const FileName&) = delete;
  FileName& operator=(const FileName&) = delete;

  // Stores the bytes of name (null counts as empty) and switches to narrow
  // mode. Returns 0, or 200 when the copy cannot be allocated (the holder is
  // then unchanged).
  int SetNarrowName(const char* name);

  // Wide names cannot be opened here: both names are emptied, the holder is
  // left in wide mode so that opening it fails rather than falling back to an
  // earlier narrow name, and the result is -1.
  int SetWideName(const wchar_t* name);

  // Empty names, narrow mode.
  void Clear();

  const char* NarrowName() const { return narrow_.Data(); }
  const char* WideName() const { return wide_.Data(); }
  int32_t Mode() const { return mode_; }
  bool IsNarrow() const { return mode_ == kNarrow; }

 private:
  ByteString narrow_;
  ByteString wide_;  // stays empty on this platform
  int32_t mode_ = kNarrow;
};

}  // namespace orvelan
