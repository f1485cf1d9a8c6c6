#include "markup/block_memory.h"

#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace orvelan {
namespace {

size_t RoundToLarge(size_t n) { return (n + kLargeBlock - 1) & ~(kLargeBlock - 1); }

void Advise(void* block, size_t size) {
#ifdef MADV_HUGEPAGE
  madvise(block, size, MADV_HUGEPAGE);  // a hint: without huge pages, small ones serve
#else
  (void)block;
  (void)size;
#endif
}

// A mapping of `size` (a multiple of kLargeBlock) bytes at a 2 MiB boundary.
void* MapAligned(size_t size) {
  const size_t padded = size + kLargeBlock;
  void* raw = mmap(nullptr, padded, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (raw == MAP_FAILED) return nullptr;
  const uintptr_t start = reinterpret_cast<uintptr_t>(raw);
  const uintptr_t aligned = (start + kLargeBlock - 1) & ~(uintptr_t{kLargeBlock} - 1);
  if (aligned > start) munmap(raw, aligned - start);
  const uintptr_t tail = aligned + size;
  if (start + padded > tail) munmap(reinterpret_cast<void*>(tail), start + padded - tail);
  void* block = reinterpret_cast<void*>(aligned);
  Advise(block, size);
  return block;
}

}  // namespace

void* ResizeBlock(void* block, size_t old_size, size_t new_size) {
  const bool was_large = block != nullptr && old_size >= kLargeBlock;
  if (new_size < kLargeBlock && !was_large) return std::realloc(block, new_size == 0 ? 1 : new_size);
  if (was_large && new_size >= kLargeBlock) {
    // Moving page tables, not bytes.
    const size_t from = RoundToLarge(old_size);
    const size_t to = RoundToLarge(new_size);
    if (from == to) return block;
    void* moved = mremap(block, from, to, MREMAP_MAYMOVE);
    if (moved == MAP_FAILED) return nullptr;
    Advise(moved, to);
    return moved;
  }
  void* fresh = new_size >= kLargeBlock ? MapAligned(RoundToLarge(new_size)) : std::malloc(new_size == 0 ? 1 : new_size);
  if (fresh == nullptr) return nullptr;
  if (block != nullptr) {
    std::memcpy(fresh, block, old_size < new_size ? old_size : new_size);
    FreeBlock(block, old_size);
  }
  return fresh;
}

void FreeBlock(void* block, size_t size) {
  if (block == nullptr) return;
  if (size >= kLargeBlock) {
    munmap(block, RoundToLarge(size));
  } else {
    std::free(block);
  }
}

}  // namespace orvelan
