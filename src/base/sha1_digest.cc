#include "base/sha1_digest.h"

#include <cstring>

#include "base/byte_order.h"

namespace orvelan {

void Sha1Digest::Reset() {
  state_[0] = 0x67452301;
  state_[1] = 0xefcdab89;
  state_[2] = 0x98badcfe;
  state_[3] = 0x10325476;
  state_[4] = 0xc3d2e1f0;
  byte_count_ = 0;
  std::memset(result_, 0, sizeof result_);
}

void Sha1Digest::Transform(const uint8_t* block) {
  // The message schedule lives in a 16-word ring: word t replaces word t - 16.
  uint32_t w[16];
  for (int t = 0; t < 16; ++t) w[t] = LoadBig32(block + 4 * t);
  uint32_t a = state_[0], b = state_[1], c = state_[2], d = state_[3], e = state_[4];
  auto schedule = [&w](int t) {
    const uint32_t next = RotateLeft32(w[(t + 13) & 15] ^ w[(t + 8) & 15] ^ w[(t + 2) & 15] ^ w[t & 15], 1);
    w[t & 15] = next;
    return next;
  };
  auto step = [&](uint32_t f, uint32_t k, uint32_t word) {
    const uint32_t temp = RotateLeft32(a, 5) + f + e + k + word;
    e = d;
    d = c;
    c = RotateLeft32(b, 30);
    b = a;
    a = temp;
  };
  for (int t = 0; t < 16; ++t) step(d ^ (b & (c ^ d)), 0x5a827999, w[t]);
  for (int t = 16; t < 20; ++t) step(d ^ (b & (c ^ d)), 0x5a827999, schedule(t));
  for (int t = 20; t < 40; ++t) step(b ^ c ^ d, 0x6ed9eba1, schedule(t));
  for (int t = 40; t < 60; ++t) step((b & c) | (d & (b | c)), 0x8f1bbcdc, schedule(t));
  for (int t = 60; t < 80; ++t) step(b ^ c ^ d, 0xca62c1d6, schedule(t));
  state_[0] += a;
  state_[1] += b;
  state_[2] += c;
  state_[3] += d;
  state_[4] += e;
}

void Sha1Digest::Update(const void* bytes, size_t length) {
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

const uint8_t* Sha1Digest::Finish() {
  const uint64_t bit_count = byte_count_ * 8;
  static const uint8_t kPadding[64] = {0x80};
  const size_t pending = static_cast<size_t>(byte_count_ % 64);
  // One 0x80, zeros up to 56 mod 64, then the 64-bit bit count, big-endian.
  Update(kPadding, pending < 56 ? 56 - pending : 120 - pending);
  uint8_t length_bytes[8];
  StoreBig32(static_cast<uint32_t>(bit_count >> 32), length_bytes);
  StoreBig32(static_cast<uint32_t>(bit_count), length_bytes + 4);
  Update(length_bytes, sizeof length_bytes);
  for (int i = 0; i < 5; ++i) StoreBig32(state_[i], result_ + 4 * i);
  result_[kDigestLength] = 0;
  return result_;
}

int Sha1Of(ByteString& target, const void* bytes, int32_t length) {
  Sha1Digest sha1;
  sha1.Update(bytes, length);
  return target.Assign(reinterpret_cast<const char*>(sha1.Finish()), Sha1Digest::kDigestLength);
}

int Sha1Of(ByteString& in_out) { return Sha1Of(in_out, in_out.Data(), in_out.Length()); }

}  // namespace orvelan
