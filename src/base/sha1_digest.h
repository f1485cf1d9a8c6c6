#pragma once
#include <cstdint>

#include "base/block_hasher.h"
#include "base/byte_string.h"

namespace orvelan {

// SHA-1's starting state and compression function, for BlockHasher.
struct Sha1Rounds {
  static constexpr int kStateWords = 5;
  static constexpr bool kBigEndian = true;
  static constexpr uint32_t kInitialState[kStateWords] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476,
                                                          0xc3d2e1f0};
  static void Compress(uint32_t state[kStateWords], const uint8_t* block);
};

using Sha1Digest = BlockHasher<Sha1Rounds>;  // 20-byte digests
extern template class BlockHasher<Sha1Rounds>;  // instantiated next to Compress

// One-shot forms of BlockHasher::Of.
inline int Sha1Of(ByteString& target, const void* bytes, int32_t length) {
  return Sha1Digest::Of(target, bytes, length);
}
inline int Sha1Of(ByteString& in_out) { return Sha1Digest::Of(in_out); }

}  // namespace orvelan
