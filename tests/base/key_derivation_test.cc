#include "base/key_derivation.h"

#include <gtest/gtest.h>

#include <string>

#include "support/test_bytes.h"

namespace orvelan {
namespace {

using test::Hex;
using test::Unhex;

struct DeriveCase {
  const char* digest_name;  // null: leave the default
  const char* pass_phrase;
  const char* salt_hex;     // "" for no salt
  int32_t count;
  int32_t key_length;
  int32_t iv_length;
  const char* key_hex;
  const char* iv_hex;
};

// Expected bytes from an independent implementation: its pass-phrase
// encryption tool printing key and IV (count 1), and chained one-shot digests
// for the larger counts.
const DeriveCase kDeriveCases[] = {
    {nullptr, "secret", "0102030405060708", 0, 24, 8, "c9e5a1bd216dbe1317e230cef48f38ee7f0e17ad64022144",
     "bccec4a1aa2879ab"},
    {"MD5", "secret", "0102030405060708", 1, 24, 8, "c9e5a1bd216dbe1317e230cef48f38ee7f0e17ad64022144",
     "bccec4a1aa2879ab"},
    {"md5", "secret", "", 0, 24, 8, "5ebe2294ecd0e0f08eab7690d2a6ee6926ae5cc854e36b6b", "dfca366848dea6bb"},
    {nullptr, "secret", "0102030405060708", 0, 32, 16,
     "c9e5a1bd216dbe1317e230cef48f38ee7f0e17ad64022144bccec4a1aa2879ab", "e24b32bbbc4ef02ecbcb6576523ad893"},
    {nullptr, "", "a1b2c3d4e5f60718", 0, 24, 8, "b58793a4f1b2d8152f70c59b76a728c74f7ff45d7a28e0b3",
     "2711f2a6cc968d6f"},
    {"SHA1", "secret", "0102030405060708", 0, 24, 8, "9471735ee978c27cd122db2c55c4e7bd75918cd88e52c548",
     "c9e1d45aeb71a233"},
    {"sha1", "secret", "", 1, 24, 8, "e5e9fa1ba31ecd1ae84f75caaa474f3a663f05f412028f81", "da65d26ee56424b2"},
    {"Sha1", "secret", "0102030405060708", 0, 32, 16,
     "9471735ee978c27cd122db2c55c4e7bd75918cd88e52c548c9e1d45aeb71a233", "9afbddd979490616b897b6510bab48e5"},
    {nullptr, "secret", "0102030405060708", 2, 24, 8, "de9f0b8438d679e4b4b42bcf36b317b4a80cbab69fcc298b",
     "8601b44b02709a00"},
    {nullptr, "secret", "0102030405060708", 3, 32, 16,
     "9dfbe1031721a43e6270b0f44c145e3bf377e4bbeffee35db59f3b025671278f", "4044aa33565f621d0d2a028454dd0c0b"},
    {"SHA1", "secret", "0102030405060708", 3, 32, 16,
     "4af9d0b68594beb18c13151708a4c94483fd5d1eabf575a7a8350a64791bda11", "e5b58555724db915c32ef9b74e6930fc"},
    // Any other name means MD5.
    {"SHA256", "secret", "0102030405060708", 0, 24, 8, "c9e5a1bd216dbe1317e230cef48f38ee7f0e17ad64022144",
     "bccec4a1aa2879ab"},
};

TEST(KeyDerivationTest, MatchesReference) {
  for (const DeriveCase& c : kDeriveCases) {
    SCOPED_TRACE(std::string(c.digest_name ? c.digest_name : "default") + " count " + std::to_string(c.count) +
                 " salt '" + c.salt_hex + "'");
    KeyDerivation kd;
    if (c.digest_name != nullptr) kd.SetDigestName(c.digest_name);
    const std::string salt = Unhex(c.salt_hex);
    ASSERT_EQ(kd.SetPassPhrase(c.pass_phrase, static_cast<int32_t>(std::string(c.pass_phrase).size())), 0);
    ASSERT_EQ(kd.SetSalt(salt.data(), static_cast<int32_t>(salt.size())), 0);
    ASSERT_EQ(kd.Derive(c.count, c.key_length, c.iv_length), 0);
    EXPECT_EQ(Hex(kd.Key().View()), c.key_hex);
    EXPECT_EQ(Hex(kd.Iv().View()), c.iv_hex);
  }
}

TEST(KeyDerivationTest, LengthsAndRepeatedDerives) {
  KeyDerivation kd;
  kd.SetPassPhrase("secret", 6);
  kd.SetSalt("\x01\x02\x03\x04\x05\x06\x07\x08", 8);

  ASSERT_EQ(kd.Derive(0, 0, 0), 0);
  EXPECT_TRUE(kd.Key().IsEmpty());
  EXPECT_TRUE(kd.Iv().IsEmpty());

  // Negative lengths count as zero; the IV then starts at the first byte.
  ASSERT_EQ(kd.Derive(0, -4, 8), 0);
  EXPECT_TRUE(kd.Key().IsEmpty());
  EXPECT_EQ(Hex(kd.Iv().View()), "c9e5a1bd216dbe13");

  // A longer request extends, never changes, the shorter one's bytes.
  ASSERT_EQ(kd.Derive(0, 100, 60), 0);
  EXPECT_EQ(kd.Key().Length(), 100);
  EXPECT_EQ(kd.Iv().Length(), 60);
  EXPECT_EQ(Hex(kd.Key().View()).substr(0, 96),
            "c9e5a1bd216dbe1317e230cef48f38ee7f0e17ad64022144bccec4a1aa2879abe24b32bbbc4ef02ecbcb6576523ad893");

  // Changing the inputs afterwards leaves the derived bytes alone until the next Derive.
  kd.SetDigestName("SHA1");
  kd.SetSalt(nullptr, 0);
  EXPECT_EQ(kd.Key().Length(), 100);
  ASSERT_EQ(kd.Derive(1, 24, 8), 0);
  EXPECT_EQ(Hex(kd.Key().View()), "e5e9fa1ba31ecd1ae84f75caaa474f3a663f05f412028f81");
}

}  // namespace
}  // namespace orvelan
