#pragma once
#include <cstdint>

#include "base/block_hasher.h"
#include "base/byte_string.h"

namespace orvelan {

// MD4's starting state and compression function, for BlockHasher.
struct Md4Rounds {
  static constexpr int kStateWords = 4;
  static constexpr bool kBigEndian = false;
  static constexpr uint32_t kInitialState[kStateWords] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
  static void Compress(uint32_t state[kStateWords], const uint8_t* block);
};

// Kept for the NTLM password hash: MD4 offers no collision resistance and
// must not be used for anything new.
using Md4Digest = BlockHasher<Md4Rounds>;  // 16-byte digests
extern template class BlockHasher<Md4Rounds>;  // instantiated next to Compress

// One-shot forms of BlockHasher::Of.
inline int Md4Of(ByteString& target, const void* bytes, int32_t length) { return Md4Digest::Of(target, bytes, length); }
inline int Md4Of(ByteString& in_out) { return Md4Digest::Of(in_out); }

}  // namespace orvelan
