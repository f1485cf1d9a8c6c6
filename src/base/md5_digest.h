#pragma once
#include <cstdint>

#include "base/block_hasher.h"
#include "base/byte_string.h"

namespace orvelan {

// MD5's starting state and compression function, for BlockHasher.
struct Md5Rounds {
  static constexpr int kStateWords = 4;
  static constexpr bool kBigEndian = false;
  static constexpr uint32_t kInitialState[kStateWords] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
  static void Compress(uint32_t state[kStateWords], const uint8_t* block);
};

using Md5Digest = BlockHasher<Md5Rounds>;  // 16-byte digests
extern template class BlockHasher<Md5Rounds>;  // instantiated next to Compress

// One-shot forms of BlockHasher::Of.
inline int Md5Of(ByteString& target, const void* bytes, int32_t length) { return Md5Digest::Of(target, bytes, length); }
inline int Md5Of(ByteString& in_out) { return Md5Digest::Of(in_out); }

}  // namespace orvelan
