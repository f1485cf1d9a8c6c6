#include "base/des_cipher.h"

#include <gtest/gtest.h>

#include <string>

#include "support/test_bytes.h"

namespace orvelan {
namespace {

using test::Hex;
using test::LcgBytes;
using test::Unhex;

uint8_t* Bytes(std::string& s) { return reinterpret_cast<uint8_t*>(s.data()); }

DesCipher CipherFromHex(const char* key_hex) {
  std::string key = Unhex(key_hex);
  return DesCipher(Bytes(key));
}

struct KnownAnswer {
  const char* key;
  uint64_t plain;
  uint64_t cipher;
};

// Published known-answer values, among them single-bit plaintexts and keys
// that exercise one S-box path at a time.
const KnownAnswer kKnownAnswers[] = {
    {"133457799bbcdff1", 0x0123456789abcdef, 0x85e813540f0ab405},
    {"0e329232ea6d0d73", 0x8787878787878787, 0x0000000000000000},
    {"0123456789abcdef", 0x4e6f772069732074, 0x3fa40e8a984d4815},
    {"0101010101010101", 0x8000000000000000, 0x95f8a5e5dd31d900},
    {"0101010101010101", 0x4000000000000000, 0xdd7f121ca5015619},
    {"8001010101010101", 0x0000000000000000, 0x95a8d72813daa94d},
    {"4001010101010101", 0x0000000000000000, 0x0eec1487dd8c26d5},
    {"fedcba9876543210", 0x0123456789abcdef, 0xed39d950fa74bcc4},
    {"0000000000000000", 0x0000000000000000, 0x8ca64de9c1b123a7},
    {"ffffffffffffffff", 0xffffffffffffffff, 0x7359b2163e4edc58},
};

TEST(DesCipherTest, KnownAnswersBothWays) {
  for (const KnownAnswer& c : kKnownAnswers) {
    SCOPED_TRACE(c.key);
    const DesCipher des = CipherFromHex(c.key);
    EXPECT_EQ(des.EncryptBlock(c.plain), c.cipher);
    EXPECT_EQ(des.DecryptBlock(c.cipher), c.plain);
  }
}

TEST(DesCipherTest, ParityBitsAreIgnored) {
  for (const KnownAnswer& c : kKnownAnswers) {
    SCOPED_TRACE(c.key);
    std::string key = Unhex(c.key);
    for (char& b : key) b ^= 1;
    EXPECT_EQ(DesCipher(Bytes(key)).EncryptBlock(c.plain), c.cipher);
    key[3] ^= 2;  // a real key bit
    EXPECT_NE(DesCipher(Bytes(key)).EncryptBlock(c.plain), c.cipher);
  }
}

TEST(DesCipherTest, DefaultKeyIsAllZero) {
  EXPECT_EQ(DesCipher().EncryptBlock(0), 0x8ca64de9c1b123a7u);
}

// Structural properties of the cipher that a wrong table or key schedule
// breaks: weak keys are involutions, semi-weak pairs undo each other, and
// complementing key and plaintext complements the ciphertext.
TEST(DesCipherTest, WeakKeysAndComplementation) {
  const uint64_t plain = 0x0123456789abcdef;
  for (const char* weak : {"0101010101010101", "fefefefefefefefe", "e0e0e0e0f1f1f1f1", "1f1f1f1f0e0e0e0e"}) {
    SCOPED_TRACE(weak);
    const DesCipher des = CipherFromHex(weak);
    EXPECT_EQ(des.EncryptBlock(des.EncryptBlock(plain)), plain);
  }
  const DesCipher semi_a = CipherFromHex("01fe01fe01fe01fe");
  const DesCipher semi_b = CipherFromHex("fe01fe01fe01fe01");
  EXPECT_EQ(semi_b.EncryptBlock(semi_a.EncryptBlock(plain)), plain);

  for (uint32_t seed = 0; seed < 8; ++seed) {
    std::string key = LcgBytes(seed, 8);
    const uint64_t p = 0x9e3779b97f4a7c15u * (seed + 1);
    const uint64_t c = DesCipher(Bytes(key)).EncryptBlock(p);
    for (char& b : key) b = static_cast<char>(~b);
    EXPECT_EQ(DesCipher(Bytes(key)).EncryptBlock(~p), ~c);
  }
}

// Ciphertext from an independent implementation: key LcgBytes(7, 8), five
// blocks of LcgBytes(8, 40).
TEST(DesCipherTest, EcbBlocksMatchReference) {
  std::string key = LcgBytes(7, 8);
  const DesCipher des(Bytes(key));
  std::string data = LcgBytes(8, 40);
  des.Encrypt(Bytes(data), 5);
  EXPECT_EQ(Hex(data),
            "a884e0631e4d58caf5244d3623f4d53d01bd65582b0cf1d4b39d2f985375a7f80bb1792d95e84b8f");
  des.Decrypt(Bytes(data), 5);
  EXPECT_EQ(data, LcgBytes(8, 40));

  const std::string before = data;
  des.Encrypt(Bytes(data), 0);
  des.Decrypt(Bytes(data), -1);
  EXPECT_EQ(data, before);
}

// Ciphertext from an independent implementation: key LcgBytes(9, 24),
// IV LcgBytes(10, 8), eight blocks of LcgBytes(11, 64).
constexpr char kTripleDesCipherHex[] =
    "4affcd44bf26d58c143f711017f1f8d60526a611e1aabb6bb6df15b38f7f6191"
    "8696cecf8b3b485a12b750835337b043faf04b5341a4ddd834693185fa48494c";

TEST(DesCipherTest, TripleDesCbcMatchesReference) {
  std::string key = LcgBytes(9, 24);
  std::string iv = LcgBytes(10, 8);
  const std::string plain = LcgBytes(11, 64);

  std::string data = Unhex(kTripleDesCipherHex);
  TripleDesCbcDecrypt(Bytes(data), 8, Bytes(key), Bytes(iv));
  EXPECT_EQ(Hex(data), Hex(plain));

  TripleDesCbcEncrypt(Bytes(data), 8, Bytes(key), Bytes(iv));
  EXPECT_EQ(Hex(data), kTripleDesCipherHex);
}

TEST(DesCipherTest, TripleDesCbcChainsAcrossCalls) {
  std::string key = LcgBytes(9, 24);
  std::string iv = LcgBytes(10, 8);
  const std::string cipher = Unhex(kTripleDesCipherHex);

  // The second half's IV is the last ciphertext block of the first half.
  std::string first = cipher.substr(0, 24);
  std::string second = cipher.substr(24);
  std::string second_iv = cipher.substr(16, 8);
  TripleDesCbcDecrypt(Bytes(first), 3, Bytes(key), Bytes(iv));
  TripleDesCbcDecrypt(Bytes(second), 5, Bytes(key), Bytes(second_iv));
  EXPECT_EQ(Hex(first + second), Hex(LcgBytes(11, 64)));

  std::string untouched = cipher;
  TripleDesCbcDecrypt(Bytes(untouched), 0, Bytes(key), Bytes(iv));
  EXPECT_EQ(untouched, cipher);
}

}  // namespace
}  // namespace orvelan
