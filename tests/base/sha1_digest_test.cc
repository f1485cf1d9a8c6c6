#include "base/sha1_digest.h"

#include <gtest/gtest.h>

#include <string>

#include "support/digest_checks.h"
#include "support/test_bytes.h"

namespace orvelan {
namespace {

using test::HexDigest;
using test::LcgBytes;

TEST(Sha1DigestTest, MatchesStandardExamples) {
  const struct {
    const char* input;
    const char* digest;
  } kCases[] = {
      {"", "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
      {"abc", "a9993e364706816aba3e25717850c26c9cd0d89d"},
      {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", "84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
      {"abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmnopqrsmnopqrstnopqr"
       "stu",
       "a49b2446a02c645bf419f995b67091253a04a259"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.input);
    EXPECT_EQ(HexDigest<Sha1Digest>(c.input), c.digest);
  }
}

TEST(Sha1DigestTest, MillionLetterA) {
  Sha1Digest sha1;
  const std::string thousand(1000, 'a');
  for (int i = 0; i < 1000; ++i) sha1.Update(thousand.data(), thousand.size());
  EXPECT_EQ(test::Hex(sha1.Finish(), Sha1Digest::kDigestLength), "34aa973cd4c4daa4f61eeb2bdbad27316534016f");
}

// Reference values from an independent implementation, over LcgBytes(n, n):
// the lengths sit around the padding boundaries (55/56, 63/64/65, 119/120)
// and include inputs of many blocks.
TEST(Sha1DigestTest, MatchesReferenceOnPseudoRandomInputs) {
  const struct {
    size_t length;
    const char* digest;
  } kCases[] = {
      {1, "c4dd3c8cdd8d7c95603dd67f1cd873d5f9148b29"},     {55, "04262125643d308b0cd42c5bcbada5f0b43486e1"},
      {56, "c62816d0f8cf867d64109a78b46de4c6d61c5a82"},    {57, "fa497d90886d95801bac8744ee5b62b2af40364b"},
      {63, "72d3e3725dd78d8b0f3fe40fe3760072aca72da4"},    {64, "bfba9f752cafd60118ee9823458477fd6dd4defa"},
      {65, "9a860ee8724cdbbc33859c6db56dead086feaa03"},    {119, "35fc1073611fe959d4c1f7a4131ccb3633599463"},
      {120, "26514c65abd5aa2574739d8c12e31139815ed418"},   {127, "6ba5fa103fd8f7e77e5cc25b906816332343af8d"},
      {128, "6f039456fe4b08c7dfb485219046a00f7a1f2961"},   {129, "db37d7378d899cdd8c2b9d1336e7ea0d010dc915"},
      {1000, "5022cf47f62c1318a43bda42aa01b8befbc99396"},  {65537, "fe62b4e8185b201250df110b62f2b0478e07099c"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE("length " + std::to_string(c.length));
    EXPECT_EQ(HexDigest<Sha1Digest>(LcgBytes(static_cast<uint32_t>(c.length), c.length)), c.digest);
  }
}

TEST(Sha1DigestTest, SplitsDoNotMatter) { test::ExpectSplitsDoNotMatter<Sha1Digest>(); }

TEST(Sha1DigestTest, ResetCopyAndEmptyUpdates) { test::ExpectStateHandling<Sha1Digest>(); }

TEST(Sha1DigestTest, OneShotHelpers) {
  test::ExpectOneShotHelpers<Sha1Digest>([](ByteString& t, const void* b, int32_t n) { return Sha1Of(t, b, n); },
                                         [](ByteString& s) { return Sha1Of(s); });
}

}  // namespace
}  // namespace orvelan
