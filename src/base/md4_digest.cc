#include "base/md4_digest.h"

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

void Md4Rounds::Compress(uint32_t state[kStateWords], const uint8_t* block) {
  uint32_t x[16];
  for (int i = 0; i < 16; ++i) x[i] = LoadLittle32(block + 4 * i);
  uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
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
  state[0] += a;
  state[1] += b;
  state[2] += c;
  state[3] += d;
}

template class BlockHasher<Md4Rounds>;

}  // namespace orvelan
