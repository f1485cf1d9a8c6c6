#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "base/md4_digest.h"
#include "base/md5_digest.h"
#include "base/sha1_digest.h"
#include "support/test_bytes.h"

namespace orvelan::test {
namespace {

// Digests of the published inputs, then of LcgBytes(n, n) by openssl: 55 bytes
// leave just room for the 0x80 and the bit count, 56 push the count into a
// block of its own, 64 fill a block before any padding.
// digests: MD5, MD4, SHA-1.
const struct { std::string input; const char* digests[3]; } kVectors[] = {
    {"", {"d41d8cd98f00b204e9800998ecf8427e", "31d6cfe0d16ae931b73c59d7e0c089c0",
          "da39a3ee5e6b4b0d3255bfef95601890afd80709"}},
    {"abc", {"900150983cd24fb0d6963f7d28e17f72", "a448017aaf21d8525fc10ae87aa6729d",
             "a9993e364706816aba3e25717850c26c9cd0d89d"}},
    {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
     {"57edf4a22be3c955ac49da2e2107b67a", "e33b4ddc9c38f2199c3e7b164fcc0536",
      "50abf5706a150990a08b2c5ea40fa0e585554732"}},
    {LcgBytes(55, 55), {"fbadbad591b8b3ba7dd7a093a67a1acc", "c43129f3d809a0ca9a4960adbede6505",
                        "04262125643d308b0cd42c5bcbada5f0b43486e1"}},
    {LcgBytes(56, 56), {"a1fdf89913c217863d8b002f0299d1c4", "c783527a1faf7f8932a213c8422ccafc",
                        "c62816d0f8cf867d64109a78b46de4c6d61c5a82"}},
    {LcgBytes(64, 64), {"d947920b0d8b96ae40c0da35b906957d", "d007f779917ab7739768df8155973729",
                        "bfba9f752cafd60118ee9823458477fd6dd4defa"}},
};

template <typename Digest>
constexpr int kColumn = std::is_same_v<Digest, Md5Digest> ? 0 : std::is_same_v<Digest, Md4Digest> ? 1 : 2;

// The hex digest of data fed in the pieces [0, first), [first, second), [second, end).
template <typename Digest>
std::string HexDigest(const std::string& data, size_t first = 0, size_t second = 0) {
  Digest digest;
  digest.Update(data.data(), first);
  digest.Update(data.data() + first, second - first);
  digest.Update(data.data() + second, data.size() - second);
  return Hex(digest.Finish(), Digest::kDigestLength);
}

template <typename Digest>
class DigestTest : public ::testing::Test {};
using Digests = ::testing::Types<Md5Digest, Md4Digest, Sha1Digest>;
TYPED_TEST_SUITE(DigestTest, Digests);

TYPED_TEST(DigestTest, MatchesVectors) {
  for (const auto& v : kVectors) {
    SCOPED_TRACE("length " + std::to_string(v.input.size()));
    EXPECT_EQ(HexDigest<TypeParam>(v.input), v.digests[kColumn<TypeParam>]);
  }
}

// Two cuts at every pair of positions over three blocks and a bit, then byte by byte.
TYPED_TEST(DigestTest, SplitsDoNotMatter) {
  const std::string data = LcgBytes(42, 3 * 64 + 7);
  const std::string whole = HexDigest<TypeParam>(data);
  for (size_t first = 0; first <= data.size(); ++first) {
    for (size_t second = first; second <= data.size(); second += 5) {
      ASSERT_EQ(HexDigest<TypeParam>(data, first, second), whole) << "cut at " << first << " and " << second;
    }
  }
  TypeParam bytewise;
  bytewise.Update("stale", 5);
  bytewise.Reset();
  for (char c : data) bytewise.Update(&c, 1);
  bytewise.Update(data.data(), -1);  // a negative length adds nothing
  const uint8_t* digest = bytewise.Finish();
  EXPECT_EQ(Hex(digest, TypeParam::kDigestLength), whole);
  EXPECT_EQ(digest[TypeParam::kDigestLength], 0);
}

TEST(DigestOfTest, AssignsOrReplacesWithTheDigest) {
  const char* const* abc = kVectors[1].digests;
  ByteString target("previous content");
  ASSERT_EQ(Md5Of(target, "abc", 3), 0);
  EXPECT_EQ(Hex(target.View()), abc[0]);
  ASSERT_EQ(Sha1Of(target, "abc", 3), 0);
  EXPECT_EQ(Hex(target.View()), abc[2]);
  ByteString in_place("abc");
  ASSERT_EQ(Md4Of(in_place), 0);
  EXPECT_EQ(Hex(in_place.View()), abc[1]);
}

}  // namespace
}  // namespace orvelan::test
