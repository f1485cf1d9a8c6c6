#include "base/md4_digest.h"

#include <gtest/gtest.h>

#include "support/digest_checks.h"
#include "support/test_bytes.h"

namespace orvelan {
namespace {

using test::HexDigest;
using test::LcgBytes;

struct DigestCase {
  const char* input;
  const char* digest;
};

TEST(Md4DigestTest, MatchesPublishedTestSuite) {
  const DigestCase kCases[] = {
      {"", "31d6cfe0d16ae931b73c59d7e0c089c0"},
      {"a", "bde52cb31de33e46245e05fbdbd6fb24"},
      {"abc", "a448017aaf21d8525fc10ae87aa6729d"},
      {"message digest", "d9130a8164549fe818874806e1c7014b"},
      {"abcdefghijklmnopqrstuvwxyz", "d79e1c308aa5bbcdeea8ed63df412da9"},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "043f8582f241db351ce627e153e7f0e4"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "e33b4ddc9c38f2199c3e7b164fcc0536"},
  };
  for (const DigestCase& c : kCases) {
    SCOPED_TRACE(c.input);
    EXPECT_EQ(HexDigest<Md4Digest>(c.input), c.digest);
  }
}

// Reference values from an independent implementation, over LcgBytes(n, n):
// the lengths sit around the padding boundaries (55/56, 63/64/65, 119/120)
// and include inputs of many blocks.
TEST(Md4DigestTest, MatchesReferenceOnPseudoRandomInputs) {
  const struct {
    size_t length;
    const char* digest;
  } kCases[] = {
      {1, "fe4d44804af405a94a1cbf509b1cd38e"},    {55, "c43129f3d809a0ca9a4960adbede6505"},
      {56, "c783527a1faf7f8932a213c8422ccafc"},   {57, "de614da8cd37e5761ecf5c16369f4565"},
      {63, "a5789958e3c6e288b99ccf6109fc747f"},   {64, "d007f779917ab7739768df8155973729"},
      {65, "0de41fce8e942f7c8e44f6503e4d9469"},   {119, "46e7d8d4e012208407b8cb90dfd7c380"},
      {120, "d9c2aa8a3d33b73434e800dc8c10ddba"},  {127, "f26d2cb83329145f26b149168c6d64fa"},
      {128, "b88d195e7e499d7db72aa0a084169db6"},  {129, "25e9b047ac70a16cb991555aeb1a7237"},
      {1000, "b65ce5cfb921bc1fbc4a98e9533cad5d"}, {65537, "3120508c2a76577b1a3d3ac19b5511e3"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE("length " + std::to_string(c.length));
    EXPECT_EQ(HexDigest<Md4Digest>(LcgBytes(static_cast<uint32_t>(c.length), c.length)), c.digest);
  }
}

TEST(Md4DigestTest, SplitsDoNotMatter) { test::ExpectSplitsDoNotMatter<Md4Digest>(); }

TEST(Md4DigestTest, ResetCopyAndEmptyUpdates) { test::ExpectStateHandling<Md4Digest>(); }

TEST(Md4DigestTest, OneShotHelpers) {
  test::ExpectOneShotHelpers<Md4Digest>([](ByteString& t, const void* b, int32_t n) { return Md4Of(t, b, n); },
                                        [](ByteString& s) { return Md4Of(s); });
}

}  // namespace
}  // namespace orvelan
