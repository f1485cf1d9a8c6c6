#pragma once
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/error_codes.h"
#include "markup/block_memory.h"

// The parser's kept text: an append-mostly byte buffer that, unlike
// ByteString, keeps its block when it shrinks and can be sized up front, so a
// large response grows it once instead of through a series of copies.
// Always NUL-terminated. Operations that can allocate return 0 or 200 and
// leave the content unchanged on failure. Not thread-safe.
namespace orvelan {

class TextBuffer {
 public:
  TextBuffer() = default;
  TextBuffer(const TextBuffer&) = delete;
  TextBuffer& operator=(const TextBuffer&) = delete;
  ~TextBuffer() { Clear(); }

  const char* Data() const { return data_ != nullptr ? data_ : ""; }
  int32_t Length() const { return length_; }
  int32_t Capacity() const { return capacity_; }
  bool IsEmpty() const { return length_ == 0; }
  std::string_view View() const { return {Data(), static_cast<size_t>(length_)}; }

  int Reserve(int32_t capacity) {
    if (capacity <= capacity_) return kOk;
    if (capacity > kMaxCapacity) return kErrOutOfMemory;
    char* block = static_cast<char*>(
        ResizeBlock(data_, data_ == nullptr ? 0 : static_cast<size_t>(capacity_) + 1, static_cast<size_t>(capacity) + 1));
    if (block == nullptr) return kErrOutOfMemory;
    data_ = block;
    data_[length_] = '\0';
    capacity_ = capacity;
    return kOk;
  }
  int Append(const char* bytes, int32_t length) {
    if (length <= 0) return kOk;
    if (length > capacity_ - length_) {
      const int64_t wanted = static_cast<int64_t>(length_) + length;
      if (wanted > kMaxCapacity) return kErrOutOfMemory;
      const int64_t grown = wanted + wanted / 2 + 64;  // amortised linear appends
      if (int rc = Reserve(static_cast<int32_t>(grown > kMaxCapacity ? kMaxCapacity : grown)); rc != kOk) return rc;
    }
    std::memcpy(data_ + length_, bytes, static_cast<size_t>(length));
    length_ += length;
    data_[length_] = '\0';
    return kOk;
  }
  int Append(std::string_view bytes) { return Append(bytes.data(), static_cast<int32_t>(bytes.size())); }
  int AppendChar(char c) {
    if (length_ < capacity_) {
      data_[length_++] = c;
      data_[length_] = '\0';
      return kOk;
    }
    return Append(&c, 1);
  }
  // REQUIRES: 0 <= length <= Length(). Keeps the block.
  void Truncate(int32_t length) {
    length_ = length;
    if (data_ != nullptr) data_[length_] = '\0';
  }
  // Grows (the new bytes undefined until written through MutableData) or
  // truncates to `length`; 0 or 200.
  int SetLength(int32_t length) {
    if (int rc = Reserve(length); rc != kOk) return rc;
    if (data_ != nullptr) Truncate(length);
    return kOk;
  }
  char* MutableData() { return data_; }
  // Empties the buffer and hands the block back.
  void Clear() {
    FreeBlock(data_, data_ == nullptr ? 0 : static_cast<size_t>(capacity_) + 1);
    data_ = nullptr;
    length_ = capacity_ = 0;
  }

 private:
  static constexpr int32_t kMaxCapacity = 0x7FFFFFF0;
  char* data_ = nullptr;  // owned, from ResizeBlock; capacity_ + 1 bytes
  int32_t length_ = 0;
  int32_t capacity_ = 0;
};

}  // namespace orvelan
