#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/byte_order.h"
#include "base/byte_string.h"

namespace orvelan {

// The frame that MD4, MD5 and SHA-1 share: input is cut into 64-byte blocks
// for Rounds::Compress, and Finish appends 0x80, zeros up to 56 mod 64 and the
// 64-bit bit count. Rounds supplies the rest:
//   kStateWords, kInitialState  the chaining words and their starting values;
//   kBigEndian                  the byte order of the words, the bit count and
//                               the digest (SHA-1 big, the MDs little);
//   Compress(state, block)      folds one 64-byte block into the state.
//
//   Md5Digest md5;
//   md5.Update(header, header_length);
//   md5.Update(body, body_length);
//   const uint8_t* digest = md5.Finish();  // kDigestLength bytes, then a NUL
//
// A plain value: copying it copies the running state, which lets a caller hash
// a common prefix once and finish several continuations. Not thread-safe.
template <typename Rounds>
class BlockHasher {
 public:
  static constexpr int32_t kDigestLength = 4 * Rounds::kStateWords;

  BlockHasher() { Reset(); }

  // Starts a new digest, forgetting every byte seen so far.
  void Reset() {
    std::memcpy(state_, Rounds::kInitialState, sizeof state_);
    byte_count_ = 0;
    std::memset(result_, 0, sizeof result_);
  }

  // Adds `length` bytes; may be called any number of times, with any split.
  // A null pointer with length 0 is fine. A negative int32 length counts as 0;
  // other integer types need a cast to pick one of the two.
  void Update(const void* bytes, size_t length);
  void Update(const void* bytes, int32_t length) {
    Update(bytes, length > 0 ? static_cast<size_t>(length) : size_t{0});
  }

  // Pads, and returns the kDigestLength digest bytes followed by a NUL byte.
  // The bytes live in this object until the next Reset, Update or Finish. The
  // state is spent afterwards: call Reset before hashing anything else.
  const uint8_t* Finish();

  // Makes the digest of bytes[0, length) the content of target. Returns 0, or
  // the ByteString's code (200) leaving target unchanged.
  static int Of(ByteString& target, const void* bytes, int32_t length) {
    BlockHasher hasher;
    hasher.Update(bytes, length);
    return target.Assign(reinterpret_cast<const char*>(hasher.Finish()), kDigestLength);
  }
  // Replaces the content of in_out by its digest.
  static int Of(ByteString& in_out) { return Of(in_out, in_out.Data(), in_out.Length()); }

 private:
  static constexpr size_t kBlockLength = 64;

  static void StoreWord(uint32_t v, uint8_t* p) {
    if constexpr (Rounds::kBigEndian) {
      StoreBig32(v, p);
    } else {
      StoreLittle32(v, p);
    }
  }

  uint32_t state_[Rounds::kStateWords];
  uint64_t byte_count_;
  uint8_t block_[kBlockLength];  // the first byte_count_ % 64 bytes are pending
  uint8_t result_[kDigestLength + 1];
};

template <typename Rounds>
void BlockHasher<Rounds>::Update(const void* bytes, size_t length) {
  if (length == 0) return;  // bytes may be null then
  const uint8_t* p = static_cast<const uint8_t*>(bytes);
  const size_t pending = static_cast<size_t>(byte_count_ % kBlockLength);
  byte_count_ += length;
  if (pending != 0) {
    const size_t take = length < kBlockLength - pending ? length : kBlockLength - pending;
    std::memcpy(block_ + pending, p, take);
    p += take;
    length -= take;
    if (pending + take < kBlockLength) return;
    Rounds::Compress(state_, block_);
  }
  for (; length >= kBlockLength; p += kBlockLength, length -= kBlockLength) Rounds::Compress(state_, p);
  if (length != 0) std::memcpy(block_, p, length);
}

template <typename Rounds>
const uint8_t* BlockHasher<Rounds>::Finish() {
  const uint64_t bit_count = byte_count_ * 8;
  static constexpr uint8_t kPadding[kBlockLength] = {0x80};
  const size_t pending = static_cast<size_t>(byte_count_ % kBlockLength);
  Update(kPadding, pending < 56 ? 56 - pending : 120 - pending);
  const uint32_t high = static_cast<uint32_t>(bit_count >> 32);
  const uint32_t low = static_cast<uint32_t>(bit_count);
  uint8_t length_bytes[8];
  StoreWord(Rounds::kBigEndian ? high : low, length_bytes);
  StoreWord(Rounds::kBigEndian ? low : high, length_bytes + 4);
  Update(length_bytes, sizeof length_bytes);
  for (int i = 0; i < Rounds::kStateWords; ++i) StoreWord(state_[i], result_ + 4 * i);
  result_[kDigestLength] = 0;
  return result_;
}

}  // namespace orvelan
