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

// The S-boxes, one a line: four rows of 16 entries, an entry a hex digit.
constexpr char kSBoxes[8][65] = {
    "e4d12fb83a6c5907" "0f74e2d1a6cb9538" "41e8d62bfc973a50" "fc8249175b3ea06d",
    "f18e6b34972dc05a" "3d47f28ec01a69b5" "0e7ba4d158c6932f" "d8a13f42b67c05e9",
    "a09e63f51dc7b428" "d709346a285ecbf1" "d6498f30b12c5ae7" "1ad069874fe3b52c",
    "7de3069a1285bc4f" "d8b56f03472c1ae9" "a690cb7df13e5284" "3f06a1d8945bc72e",
    "2c417ab6853fd0e9" "eb2c47d150fa3986" "421bad78f9c5630e" "b8c71e2d6f09a453",
    "c1af92680d34e75b" "af427c9561de0b38" "9ef528c3704a1db6" "432c95fabe17608d",
    "4b2ef08d3c975a61" "d0b7491ae35c2f86" "14bdc37eaf680592" "6bd814a7950fe23c",
    "d2846fb1a93e50c7" "1fd8a374c56b0e92" "7b419ce206adf358" "21e74a8dfc90356b",
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
      const char digit = kSBoxes[box][row * 16 + column];
      const uint64_t value = static_cast<uint64_t>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
      const uint64_t out = value << (28 - 4 * box);
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
