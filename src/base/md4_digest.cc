#include "base/md4_digest.h"

#include <cstring>

#include "base/byte_order.h"

namespace orvelan {
namespace {

inline uint32_t F(uint32_t x, uint32_t y, uint32_t z) { return z ^ (x & (y ^ z)); }
inline uint32_t G(uint32_t x, uint32_t y, uint32_t z) { return (x & y) | (z & (x | y)); }  // majority
inline uint32_t H(uint32_t x, uint32_t y, uint32_t z) { return x ^ y ^ z; }

// One step: a = (a + f + x + t) <<< s.
inline void Step(uint32_t& a, uint32_t f, uint32_t x, uint32_t t, int s) { a = RotateLeft32(a + f + x + t, s); }

constexpr uint32_t kRound2 = 0x5a827999;  // sqrt(2) * 2^30
constexpr uint32_t kRound3 = 0x6ed9eba1;  // sqrt(3) * 2^30

}  // namespace

void Md4Digest::Reset() {
  state_[0] = 0x67452301;
  state_[1] = 0xefcdab89;
  state_[2] = 0x98badcfe;
  state_[3] = 0x10325476;
  byte_count_ = 0;
  std::memset(result_, 0, sizeof result_);
}

void Md4Digest::Transform(const uint8_t* block) {
  uint32_t x[16];
  for (int i = 0; i < 16; ++i) x[i] = LoadLittle32(block + 4 * i);
  uint32_t a = state_[0], b = state_[1], c = state_[2], d = state_[3];
  for (int i = 0; i < 16; i += 4) {
    Step(a, F(b, c, d), x[i], 0, 3);
    Step(d, F(a, b, c), x[i + 1], 0, 7);
    Step(c, F(d, a, b), x[i + 2], 0, 11);
    Step(b, F(c, d, a), x[i + 3], 0, 19);
  }
  // Round 2 walks the words column by column, round 3 in bit-reversed order.
  for (int i = 0; i < 4; ++i) {
    Step(a, G(b, c, d), x[i], kRound2, 3);
    Step(d, G(a, b, c), x[i + 4], kRound2, 5);
    Step(c, G(d, a, b), x[i + 8], kRound2, 9);
    Step(b, G(c, d, a), x[i + 12], kRound2, 13);
  }
  constexpr int kRound3Start[4] = {0, 2, 1, 3};
  for (int start : kRound3Start) {
    Step(a, H(b, c, d), x[start], kRound3, 3);
    Step(d, H(a, b, c), x[start + 8], kRound3, 9);
    Step(c, H(d, a, b), x[start + 4], kRound3, 11);
    Step(b, H(c, d, a), x[start + 12], kRound3, 15);
  }
  state_[0] += a;
  state_[1] += b;
  state_[2] += c;
  state_[3] += d;
}

void Md4Digest::Update(const void* bytes, size_t length) {
  if (length == 0) return;  // bytes may be null then
  const uint8_t* p = static_cast<const uint8_t*>(bytes);
  size_t pending = static_cast<size_t>(byte_count_ % 64);
  byte_count_ += length;
  if (pending != 0) {
    const size_t take = length < 64 - pending ? length : 64 - pending;
    std::memcpy(block_ + pending, p, take);
    p += take;
    length -= take;
    if (pending + take < 64) return;
    Transform(block_);
  }
  for (; length >= 64; p += 64, length -= 64) Transform(p);
  if (length != 0) std::memcpy(block_, p, length);
}

const uint8_t* Md4Digest::Finish() {
  const uint64_t bit_count = byte_count_ * 8;
  static const uint8_t kPadding[64] = {0x80};
  const size_t pending = static_cast<size_t>(byte_count_ % 64);
  // One 0x80, zeros up to 56 mod 64, then the 64-bit bit count.
  Update(kPadding, pending < 56 ? 56 - pending : 120 - pending);
  uint8_t length_bytes[8];
  StoreLittle32(static_cast<uint32_t>(bit_count), length_bytes);
  StoreLittle32(static_cast<uint32_t>(bit_count >> 32), length_bytes + 4);
  Update(length_bytes, sizeof length_bytes);
  for (int i = 0; i < 4; ++i) StoreLittle32(state_[i], result_ + 4 * i);
  result_[kDigestLength] = 0;
  return result_;
}

int Md4Of(ByteString& target, const void* bytes, int32_t length) {
  Md4Digest md4;
  md4.Update(bytes, length);
  return target.Assign(reinterpret_cast<const char*>(md4.Finish()), Md4Digest::kDigestLength);
}

int Md4Of(ByteString& in_out) { return Md4Of(in_out, in_out.Data(), in_out.Length()); }

}  // namespace orvelan
