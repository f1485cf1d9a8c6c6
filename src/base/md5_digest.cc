#include "base/md5_digest.h"

#include "base/byte_order.h"

namespace orvelan {
namespace {

// The sine-derived additive constants, one per step.
constexpr uint32_t kSine[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391,
};

// One step: a = b + ((a + f + x + t) <<< s).
inline void Step(uint32_t& a, uint32_t b, uint32_t f, uint32_t x, uint32_t t, int s) {
  a = b + RotateLeft32(a + f + x + t, s);
}

inline uint32_t F(uint32_t x, uint32_t y, uint32_t z) { return z ^ (x & (y ^ z)); }
inline uint32_t G(uint32_t x, uint32_t y, uint32_t z) { return y ^ (z & (x ^ y)); }
inline uint32_t H(uint32_t x, uint32_t y, uint32_t z) { return x ^ y ^ z; }
inline uint32_t I(uint32_t x, uint32_t y, uint32_t z) { return y ^ (x | ~z); }

}  // namespace

void Md5Rounds::Compress(uint32_t state[kStateWords], const uint8_t* block) {
  uint32_t x[16];
  for (int i = 0; i < 16; ++i) x[i] = LoadLittle32(block + 4 * i);
  uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
  // Each round visits the words in its own order: i, 5i + 1, 3i + 5, 7i (mod 16).
  for (int i = 0; i < 16; i += 4) {
    Step(a, b, F(b, c, d), x[i], kSine[i], 7);
    Step(d, a, F(a, b, c), x[i + 1], kSine[i + 1], 12);
    Step(c, d, F(d, a, b), x[i + 2], kSine[i + 2], 17);
    Step(b, c, F(c, d, a), x[i + 3], kSine[i + 3], 22);
  }
  for (int i = 16; i < 32; i += 4) {
    Step(a, b, G(b, c, d), x[(5 * i + 1) % 16], kSine[i], 5);
    Step(d, a, G(a, b, c), x[(5 * i + 6) % 16], kSine[i + 1], 9);
    Step(c, d, G(d, a, b), x[(5 * i + 11) % 16], kSine[i + 2], 14);
    Step(b, c, G(c, d, a), x[(5 * i + 16) % 16], kSine[i + 3], 20);
  }
  for (int i = 32; i < 48; i += 4) {
    Step(a, b, H(b, c, d), x[(3 * i + 5) % 16], kSine[i], 4);
    Step(d, a, H(a, b, c), x[(3 * i + 8) % 16], kSine[i + 1], 11);
    Step(c, d, H(d, a, b), x[(3 * i + 11) % 16], kSine[i + 2], 16);
    Step(b, c, H(c, d, a), x[(3 * i + 14) % 16], kSine[i + 3], 23);
  }
  for (int i = 48; i < 64; i += 4) {
    Step(a, b, I(b, c, d), x[(7 * i) % 16], kSine[i], 6);
    Step(d, a, I(a, b, c), x[(7 * i + 7) % 16], kSine[i + 1], 10);
    Step(c, d, I(d, a, b), x[(7 * i + 14) % 16], kSine[i + 2], 15);
    Step(b, c, I(c, d, a), x[(7 * i + 21) % 16], kSine[i + 3], 21);
  }
  state[0] += a;
  state[1] += b;
  state[2] += c;
  state[3] += d;
}

template class BlockHasher<Md5Rounds>;

}  // namespace orvelan
