#include "http/body_buffer.h"

#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace orvelan {
namespace {

constexpr size_t kMapThreshold = size_t{1} << 20;
constexpr size_t kHugePage = size_t{2} << 20;

size_t RoundUp(size_t n, size_t unit) { return (n + unit - 1) / unit * unit; }

}  // namespace

BodyBuffer::~BodyBuffer() { Release(); }

void BodyBuffer::Release() {
  if (mapped_ != 0) {
    munmap(block_, mapped_);
  } else {
    std::free(block_);
  }
  block_ = nullptr;
  size_ = 0;
  capacity_ = 0;
  mapped_ = 0;
}

void BodyBuffer::Clear() {
  if (mapped_ != 0) {
    Release();
    return;
  }
  size_ = 0;
  if (block_ != nullptr) block_[0] = '\0';
}

bool BodyBuffer::Reserve(size_t capacity) { return capacity <= capacity_ || Grow(capacity); }

bool BodyBuffer::Append(const char* data, size_t length) {
  if (length == 0) return true;
  if (length > capacity_ - size_) {
    if (length > SIZE_MAX / 2 - size_) return false;
    // Geometric growth keeps the copies (on the heap) linear in the body size.
    const size_t needed = size_ + length;
    if (!Grow(needed > 2 * capacity_ ? needed : 2 * capacity_)) return false;
  }
  std::memcpy(block_ + size_, data, length);
  size_ += length;
  block_[size_] = '\0';
  return true;
}

bool BodyBuffer::Grow(size_t needed) {
  if (needed >= SIZE_MAX / 2) return false;
  if (needed + 1 < kMapThreshold) {
    char* block = static_cast<char*>(std::realloc(block_, needed + 1));
    if (block == nullptr) return false;
    block_ = block;
    capacity_ = needed;
    block_[size_] = '\0';
    return true;
  }
  const size_t length = RoundUp(needed + 1, kHugePage);
  void* block;
  if (mapped_ != 0) {
    // Moving the page tables instead of the bytes: growth costs no copy.
    block = mremap(block_, mapped_, length, MREMAP_MAYMOVE);
  } else {
    block = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  }
  if (block == MAP_FAILED) return false;
  madvise(block, length, MADV_HUGEPAGE);  // advice only: without it the pages are small
  if (mapped_ == 0 && block_ != nullptr) {
    std::memcpy(block, block_, size_);
    std::free(block_);
  }
  block_ = static_cast<char*>(block);
  mapped_ = length;
  capacity_ = length - 1;
  block_[size_] = '\0';
  return true;
}

}  // namespace orvelan
