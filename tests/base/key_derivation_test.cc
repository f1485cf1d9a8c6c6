#include "base/key_derivation.h"

#include <gtest/gtest.h>

#include <string>

#include "support/test_bytes.h"

namespace orvelan::test {
namespace {

// Count 0 and 1: what `openssl enc -des-ede3-cbc -P -md NAME` prints for the
// pass phrase "secret"; count 3: the same chain of digests, hashed twice more.
TEST(KeyDerivationTest, MatchesOpenssl) {
  const struct {
    const char* digest_name;  // null: the default
    const char* salt_hex;
    int32_t count, key_length, iv_length;
    const char *key_hex, *iv_hex;
  } kCases[] = {
      {nullptr, "0102030405060708", 0, 24, 8, "c9e5a1bd216dbe1317e230cef48f38ee7f0e17ad64022144", "bccec4a1aa2879ab"},
      {"SHA256", "0102030405060708", 1, 24, 8, "c9e5a1bd216dbe1317e230cef48f38ee7f0e17ad64022144", "bccec4a1aa2879ab"},
      {"SHA1", "0102030405060708", 0, 24, 8, "9471735ee978c27cd122db2c55c4e7bd75918cd88e52c548", "c9e1d45aeb71a233"},
      {"Sha1", "", 1, 24, 8, "e5e9fa1ba31ecd1ae84f75caaa474f3a663f05f412028f81", "da65d26ee56424b2"},
      {"MD5", "0102030405060708", 3, 32, 16, "9dfbe1031721a43e6270b0f44c145e3bf377e4bbeffee35db59f3b025671278f",
       "4044aa33565f621d0d2a028454dd0c0b"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(std::string(c.digest_name ? c.digest_name : "default") + " count " + std::to_string(c.count));
    KeyDerivation kd;
    if (c.digest_name != nullptr) kd.SetDigestName(c.digest_name);
    const std::string salt = Unhex(c.salt_hex);
    ASSERT_EQ(kd.SetPassPhrase("secret", 6), 0);
    ASSERT_EQ(kd.SetSalt(salt.data(), static_cast<int32_t>(salt.size())), 0);
    ASSERT_EQ(kd.Derive(c.count, c.key_length, c.iv_length), 0);
    EXPECT_EQ(Hex(kd.Key().View()), c.key_hex);
    EXPECT_EQ(Hex(kd.Iv().View()), c.iv_hex);
  }
}

}  // namespace
}  // namespace orvelan::test
