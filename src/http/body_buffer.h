#pragma once
#include <cstddef>
#include <string_view>

namespace orvelan {

// The growable block a response body is collected in. Small bodies live on
// the heap; from 1 MiB up the block is an anonymous mapping that asks for
// transparent huge pages and grows by remapping, so a body of many megabytes
// costs a few page faults and no copy while it grows.
//
//   BodyBuffer body;
//   body.Reserve(content_length);      // optional
//   if (!body.Append(data, n)) { /* out of memory; the contents stay */ }
//   Use(body.View());
//
// Always NUL-terminated after the last byte. Not thread-safe.
class BodyBuffer {
 public:
  BodyBuffer() = default;
  BodyBuffer(const BodyBuffer&) = delete;
  BodyBuffer& operator=(const BodyBuffer&) = delete;
  ~BodyBuffer();

  // Room for `capacity` bytes without growing; false when memory is exhausted.
  bool Reserve(size_t capacity);
  // false when memory is exhausted; nothing is appended then.
  bool Append(const char* data, size_t length);
  // Empties the buffer; a mapped block is returned to the system.
  void Clear();

  size_t size() const { return size_; }
  size_t Capacity() const { return capacity_; }
  const char* c_str() const { return block_ != nullptr ? block_ : ""; }
  std::string_view View() const { return std::string_view(c_str(), size_); }

 private:
  bool Grow(size_t needed);
  void Release();

  char* block_ = nullptr;
  size_t size_ = 0;
  size_t capacity_ = 0;  // bytes before the NUL
  size_t mapped_ = 0;    // length of the mapping, 0 while the block is on the heap
};

}  // namespace orvelan
