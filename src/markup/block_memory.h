#pragma once
#include <cstddef>

// Memory for the large buffers of a parse: the tree's arena, the kept text
// and a data file as read. A fresh page costs a fault on first touch, and
// faults (dear anywhere, dearer in a virtual machine) dominated reading a
// large statement. Blocks of kLargeBlock bytes and more therefore come
// straight from mmap, aligned to 2 MiB and offered to transparent huge pages,
// so filling 100 MB takes some fifty faults instead of some 25,000; pages
// reserved but never touched still cost nothing. Smaller blocks come from
// malloc. Untouched huge pages are not resident, so reserving from the input
// size stays cheap.
namespace orvelan {

inline constexpr size_t kLargeBlock = size_t{2} << 20;

// Like realloc: a block of `new_size` bytes holding the first
// min(old_size, new_size) bytes of `block` (null: a new block). Null when
// memory runs out; `block` is then unchanged. `old_size` must be the size the
// block was obtained with.
void* ResizeBlock(void* block, size_t old_size, size_t new_size);
// REQUIRES: `size` is the size the block was obtained with.
void FreeBlock(void* block, size_t size);

}  // namespace orvelan
