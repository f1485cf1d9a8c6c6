#include "base/des_cipher.h"

namespace orvelan {
namespace {

// Tables of the standard, bits numbered from 1 at the most significant end.
constexpr uint8_t kInitialPermutation[64] = {
    58, 50, 42, 34, 26, 18, 10, 2, 60, 52, 44, 36, 28, 20, 12, 4,
    62, 54, 46, 38, 30, 22, 14, 6, 64, 56, 48, 40, 32, 24, 16, 8,
    57, 49, 41, 33, 25, 17, 9,  1, 59, 51, 43, 35, 27, 19, 11, 3,
    61, 53, 45, 37, 29, 21, 13, 5, 63, 55, 47, 39, 31, 23, 15, 7,
};

constexpr uint8_t kRoundPermutation[32] = {
    16, 7, 20, 21, 29, 12, 28, 17, 1,  15, 23, 26, 5,  18, 31, 10,
    2,  8, 24, 14, 32, 27, 3,  9,  19, 13, 30, 6,  22, 11, 4,  25,
};

constexpr uint8_t kSBoxes[8][64] = {
    {14, 4,  13, 1, 2,  15, 11, 8,  3,  10, 6,  12, 5,  9,  0, 7,  0, 15, 7,  4,  14, 2,
     13, 1,  10, 6, 12, 11, 9,  5,  3,  8,  4,  1,  14, 8,  13, 6, 2,  11, 15, 12, 9,  7,
     3,  10, 5,  0, 15, 12, 8,  2,  4,  9,  1,  7,  5,  11, 3,  14, 10, 0,  6,  13},
    {15, 1,  8,  14, 6,  11, 3,  4,  9,  7, 2,  13, 12, 0,  5,  10, 3,  13, 4,  7, 15, 2,
     8,  14, 12, 0,  1,  10, 6,  9,  11, 5, 0,  14, 7,  11, 10, 4,  13, 1,  5,  8, 12, 6,
     9,  3,  2,  15, 13, 8,  10, 1,  3,  15, 4, 2,  11, 6,  7,  12, 0,  5,  14, 9},
    {10, 0,  9,  14, 6,  3,  15, 5,  1,  13, 12, 7,  11, 4, 2,  8,  13, 7,  0,  9,  3,  4,
     6,  10, 2,  8,  5,  14, 12, 11, 15, 1,  13, 6,  4,  9, 8,  15, 3,  0,  11, 1,  2,  12,
     5,  10, 14, 7,  1,  10, 13, 0,  6,  9,  8,  7,  4,  15, 14, 3,  11, 5,  2,  12},
    {7,  13, 14, 3, 0,  6,  9,  10, 1, 2, 8,  5,  11, 12, 4,  15, 13, 8,  11, 5,  6,  15,
     0,  3,  4,  7, 2,  12, 1,  10, 14, 9, 10, 6,  9,  0,  12, 11, 7,  13, 15, 1,  3,  14,
     5,  2,  8,  4, 3,  15, 0,  6,  10, 1, 13, 8,  9,  4,  5,  11, 12, 7,  2,  14},
    {2,  12, 4, 1,  7,  10, 11, 6, 8,  5,  3,  15, 13, 0,  14, 9, 14, 11, 2,  12, 4,  7,
     13, 1,  5, 0,  15, 10, 3,  9, 8,  6,  4,  2,  1,  11, 10, 13, 7, 8,  15, 9,  12, 5,
     6,  3,  0, 14, 11, 8,  12, 7, 1,  14, 2,  13, 6,  15, 0,  9,  10, 4, 5,  3},
    {12, 1,  10, 15, 9, 2,  6,  8, 0,  13, 3,  4,  14, 7,  5,  11, 10, 15, 4,  2,  7,  12,
     9,  5,  6,  1,  13, 14, 0, 11, 3,  8,  9,  14, 15, 5,  2,  8,  12, 3,  7,  0,  4,  10,
     1,  13, 11, 6,  4,  3,  2, 12, 9,  5,  15, 10, 11, 14, 1,  7,  6,  0,  8,  13},
    {4,  11, 2,  14, 15, 0,  8, 13, 3,  12, 9, 7,  5,  10, 6,  1,  13, 0,  11, 7,  4,  9,
     1,  10, 14, 3,  5,  12, 2, 15, 8,  6,  1, 4,  11, 13, 12, 3,  7,  14, 10, 15, 6,  8,
     0,  5,  9,  2,  6,  11, 13, 8, 1,  4,  10, 7, 9,  5,  0,  15, 14, 2,  3,  12},
    {13, 2,  8,  4, 6,  15, 11, 1,  10, 9,  3, 14, 5,  0,  12, 7, 1,  15, 13, 8, 10, 3,
     7,  4,  12, 5, 6,  11, 0,  14, 9,  2,  7, 11, 4,  1,  9,  12, 14, 2,  0, 6,  10, 13,
     15, 3,  5,  8, 2,  1,  14, 7,  4,  10, 8, 13, 15, 12, 9,  0,  3,  5,  6, 11},
};

constexpr uint8_t kKeyPermutation1[56] = {
    57, 49, 41, 33, 25, 17, 9,  1,  58, 50, 42, 34, 26, 18, 10, 2,  59, 51, 43,
    35, 27, 19, 11, 3,  60, 52, 44, 36, 63, 55, 47, 39, 31, 23, 15, 7,  62, 54,
    46, 38, 30, 22, 14, 6,  61, 53, 45, 37, 29, 21, 13, 5,  28, 20, 12, 4,
};

constexpr uint8_t kKeyPermutation2[48] = {
    14, 17, 11, 24, 1,  5,  3,  28, 15, 6,  21, 10, 23, 19, 12, 4,
    26, 8,  16, 7,  27, 20, 13, 2,  41, 52, 31, 37, 47, 55, 30, 40,
    51, 45, 33, 48, 44, 49, 39, 56, 34, 53, 46, 42, 50, 36, 29, 32,
};

constexpr int kKeyShifts[16] = {1, 1, 2, 2, 2, 2, 2, 2, 1, 2, 2, 2, 2, 2, 2, 1};

// Output bit i is input bit table[i] of an in_bits-wide value.
constexpr uint64_t Permute(uint64_t in, const uint8_t* table, int out_bits, int in_bits) {
  uint64_t out = 0;
  for (int i = 0; i < out_bits; ++i) out = (out << 1) | ((in >> (in_bits - table[i])) & 1);
  return out;
}

// A 64-bit permutation as eight lookups, one per input byte: each byte's
// contribution is independent of the others, so the results just OR together.
struct BytePermutation {
  uint64_t by_byte[8][256];
};

constexpr BytePermutation MakeBytePermutation(const uint8_t* table) {
  BytePermutation p{};
  for (int position = 0; position < 8; ++position) {
    for (int value = 0; value < 256; ++value) {
      p.by_byte[position][value] = Permute(static_cast<uint64_t>(value) << (56 - 8 * position), table, 64, 64);
    }
  }
  return p;
}

struct BitTable {
  uint8_t bits[64];
};

constexpr BitTable Inverse(const uint8_t* table) {
  BitTable inverse{};
  for (int i = 0; i < 64; ++i) inverse.bits[table[i] - 1] = static_cast<uint8_t>(i + 1);
  return inverse;
}

constexpr BitTable kFinalPermutation = Inverse(kInitialPermutation);
constexpr BytePermutation kInitialByBytes = MakeBytePermutation(kInitialPermutation);
constexpr BytePermutation kFinalByBytes = MakeBytePermutation(kFinalPermutation.bits);

// S-box i followed by the round permutation, indexed by the 6 input bits as
// they come out of the expansion (the outer two bits pick the row).
struct SBoxTables {
  uint32_t by_box[8][64];
};

constexpr SBoxTables MakeSBoxTables() {
  SBoxTables t{};
  for (int box = 0; box < 8; ++box) {
    for (int in = 0; in < 64; ++in) {
      const int row = ((in >> 4) & 2) | (in & 1);
      const int column = (in >> 1) & 15;
      const uint64_t out = static_cast<uint64_t>(kSBoxes[box][row * 16 + column]) << (28 - 4 * box);
      t.by_box[box][in] = static_cast<uint32_t>(Permute(out, kRoundPermutation, 32, 32));
    }
  }
  return t;
}

constexpr SBoxTables kSBoxTables = MakeSBoxTables();

inline uint64_t ApplyBytePermutation(const BytePermutation& p, uint64_t in) {
  uint64_t out = 0;
  for (int position = 0; position < 8; ++position) out |= p.by_byte[position][(in >> (56 - 8 * position)) & 0xff];
  return out;
}

uint32_t RoundFunction(uint32_t r, const uint8_t* round_key) {
  // The expansion takes overlapping 6-bit windows of r read circularly; with
  // the last bit copied in front and the first behind, window i starts at bit 4i.
  const uint64_t wrapped = (static_cast<uint64_t>(r & 1) << 33) | (static_cast<uint64_t>(r) << 1) | (r >> 31);
  uint32_t out = 0;
  for (int box = 0; box < 8; ++box) {
    out ^= kSBoxTables.by_box[box][((wrapped >> (28 - 4 * box)) & 0x3f) ^ round_key[box]];
  }
  return out;
}

inline uint64_t LoadBig64(const uint8_t* p) {
  uint64_t v = 0;
  for (int i = 0; i < 8; ++i) v = (v << 8) | p[i];
  return v;
}

inline void StoreBig64(uint64_t v, uint8_t* p) {
  for (int i = 7; i >= 0; --i, v >>= 8) p[i] = static_cast<uint8_t>(v);
}

}  // namespace

DesCipher::DesCipher() {
  const uint8_t zero_key[kKeyLength] = {};
  SetKey(zero_key);
}

void DesCipher::SetKey(const uint8_t key[kKeyLength]) {
  // The first permutation skips bits 8, 16, ... 64: the parity bits drop out here.
  const uint64_t halves = Permute(LoadBig64(key), kKeyPermutation1, 56, 64);
  uint32_t c = static_cast<uint32_t>(halves >> 28);
  uint32_t d = static_cast<uint32_t>(halves & 0xfffffff);
  for (int round = 0; round < 16; ++round) {
    const int s = kKeyShifts[round];
    c = ((c << s) | (c >> (28 - s))) & 0xfffffff;
    d = ((d << s) | (d >> (28 - s))) & 0xfffffff;
    const uint64_t k = Permute((static_cast<uint64_t>(c) << 28) | d, kKeyPermutation2, 48, 56);
    for (int box = 0; box < 8; ++box) round_keys_[round][box] = static_cast<uint8_t>((k >> (42 - 6 * box)) & 0x3f);
  }
}

uint64_t DesCipher::Crypt(uint64_t block, bool decrypt) const {
  const uint64_t permuted = ApplyBytePermutation(kInitialByBytes, block);
  uint32_t left = static_cast<uint32_t>(permuted >> 32);
  uint32_t right = static_cast<uint32_t>(permuted);
  for (int round = 0; round < 16; ++round) {
    const uint32_t next = left ^ RoundFunction(right, round_keys_[decrypt ? 15 - round : round]);
    left = right;
    right = next;
  }
  // The last round does not swap its halves.
  return ApplyBytePermutation(kFinalByBytes, (static_cast<uint64_t>(right) << 32) | left);
}

void DesCipher::Encrypt(uint8_t* blocks, int32_t block_count) const {
  for (int32_t i = 0; i < block_count; ++i, blocks += kBlockLength) StoreBig64(Crypt(LoadBig64(blocks), false), blocks);
}

void DesCipher::Decrypt(uint8_t* blocks, int32_t block_count) const {
  for (int32_t i = 0; i < block_count; ++i, blocks += kBlockLength) StoreBig64(Crypt(LoadBig64(blocks), true), blocks);
}

void TripleDesCbcDecrypt(uint8_t* data, int32_t block_count, const uint8_t key[24], const uint8_t iv[8]) {
  const DesCipher k1(key), k2(key + 8), k3(key + 16);
  uint64_t previous = LoadBig64(iv);
  for (int32_t i = 0; i < block_count; ++i, data += DesCipher::kBlockLength) {
    const uint64_t cipher_text = LoadBig64(data);
    StoreBig64(k1.DecryptBlock(k2.EncryptBlock(k3.DecryptBlock(cipher_text))) ^ previous, data);
    previous = cipher_text;
  }
}

void TripleDesCbcEncrypt(uint8_t* data, int32_t block_count, const uint8_t key[24], const uint8_t iv[8]) {
  const DesCipher k1(key), k2(key + 8), k3(key + 16);
  uint64_t previous = LoadBig64(iv);
  for (int32_t i = 0; i < block_count; ++i, data += DesCipher::kBlockLength) {
    previous = k3.EncryptBlock(k2.DecryptBlock(k1.EncryptBlock(LoadBig64(data) ^ previous)));
    StoreBig64(previous, data);
  }
}

}  // namespace orvelan
