#include "base/sha1_digest.h"

#include "base/byte_order.h"

namespace orvelan {

void Sha1Rounds::Compress(uint32_t state[kStateWords], const uint8_t* block) {
  // The message schedule lives in a 16-word ring: word t replaces word t - 16.
  uint32_t w[16];
  for (int t = 0; t < 16; ++t) w[t] = LoadBig32(block + 4 * t);
  uint32_t a = state[0], b = state[1], c = state[2], d = state[3], e = state[4];
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
  state[0] += a;
  state[1] += b;
  state[2] += c;
  state[3] += d;
  state[4] += e;
}

template class BlockHasher<Sha1Rounds>;

}  // namespace orvelan
