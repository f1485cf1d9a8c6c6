#include "base/des_cipher.h"

#include <gtest/gtest.h>

#include <string>

#include "support/test_bytes.h"

namespace orvelan::test {
namespace {

uint8_t* Bytes(std::string& s) { return reinterpret_cast<uint8_t*>(s.data()); }

// Published known answers, among them single-bit plaintexts and keys that
// exercise one S-box path at a time.
TEST(DesCipherTest, KnownAnswersWhateverTheParityBits) {
  const struct { const char* key; uint64_t plain, cipher; } kCases[] = {
      {"133457799bbcdff1", 0x0123456789abcdef, 0x85e813540f0ab405},
      {"0e329232ea6d0d73", 0x8787878787878787, 0x0000000000000000},
      {"0123456789abcdef", 0x4e6f772069732074, 0x3fa40e8a984d4815},
      {"0101010101010101", 0x8000000000000000, 0x95f8a5e5dd31d900},
      {"0101010101010101", 0x4000000000000000, 0xdd7f121ca5015619},
      {"8001010101010101", 0x0000000000000000, 0x95a8d72813daa94d},
      {"4001010101010101", 0x0000000000000000, 0x0eec1487dd8c26d5},
      {"fedcba9876543210", 0x0123456789abcdef, 0xed39d950fa74bcc4},
      {"ffffffffffffffff", 0xffffffffffffffff, 0x7359b2163e4edc58},
  };
  EXPECT_EQ(DesCipher().EncryptBlock(0), 0x8ca64de9c1b123a7u);  // the all-zero key
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.key);
    std::string key = Unhex(c.key);
    const DesCipher des(Bytes(key));
    EXPECT_EQ(des.EncryptBlock(c.plain), c.cipher);
    EXPECT_EQ(des.DecryptBlock(c.cipher), c.plain);
    for (char& b : key) b ^= 1;
    EXPECT_EQ(DesCipher(Bytes(key)).EncryptBlock(c.plain), c.cipher);
  }
}

// openssl des-ecb: key LcgBytes(7, 8), five blocks of LcgBytes(8, 40).
TEST(DesCipherTest, EcbBlocksMatchOpenssl) {
  std::string key = LcgBytes(7, 8);
  const DesCipher des(Bytes(key));
  std::string data = LcgBytes(8, 40);
  des.Encrypt(Bytes(data), 5);
  EXPECT_EQ(Hex(data), "a884e0631e4d58caf5244d3623f4d53d01bd65582b0cf1d4b39d2f985375a7f80bb1792d95e84b8f");
  des.Decrypt(Bytes(data), 5);
  EXPECT_EQ(data, LcgBytes(8, 40));
}

// openssl des-ede3-cbc: key LcgBytes(9, 24), IV LcgBytes(10, 8), eight blocks of LcgBytes(11, 64).
TEST(DesCipherTest, TripleDesCbcMatchesOpenssl) {
  constexpr char kCipherHex[] =
      "4affcd44bf26d58c143f711017f1f8d60526a611e1aabb6bb6df15b38f7f6191"
      "8696cecf8b3b485a12b750835337b043faf04b5341a4ddd834693185fa48494c";
  std::string key = LcgBytes(9, 24);
  std::string iv = LcgBytes(10, 8);
  std::string data = Unhex(kCipherHex);
  TripleDesCbcDecrypt(Bytes(data), 8, Bytes(key), Bytes(iv));
  EXPECT_EQ(Hex(data), Hex(LcgBytes(11, 64)));
  TripleDesCbcEncrypt(Bytes(data), 8, Bytes(key), Bytes(iv));
  EXPECT_EQ(Hex(data), kCipherHex);
}

}  // namespace
}  // namespace orvelan::test
