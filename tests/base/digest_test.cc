#include "base/md5_digest.h"

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

TEST(Md5DigestTest, MatchesPublishedTestSuite) {
  const DigestCase kCases[] = {
      {"", "d41d8cd98f00b204e9800998ecf8427e"},
      {"a", "0cc175b9c0f1b6a831c399e269772661"},
      {"abc", "900150983cd24fb0d6963f7d28e17f72"},
      {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
      {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57edf4a22be3c955ac49da2e2107b67a"},
  };
  for (const DigestCase& c : kCases) {
    SCOPED_TRACE(c.input);
    EXPECT_EQ(HexDigest<Md5Digest>(c.input), c.digest);
  }
}

// Reference values from an independent implementation, over LcgBytes(n, n):
// the lengths sit around the padding boundaries (55/56, 63/64/65, 119/120)
// and include inputs of many blocks.
TEST(Md5DigestTest, MatchesReferenceOnPseudoRandomInputs) {
  const struct {
    size_t length;
    const char* digest;
  } kCases[] = {
      {1, "524a50782178998021a88b8cd4c8dcd8"},    {55, "fbadbad591b8b3ba7dd7a093a67a1acc"},
      {56, "a1fdf89913c217863d8b002f0299d1c4"},   {57, "4f7afdfd88308ec1066c4f34d2d6a174"},
      {63, "24c291e22f962065b73ef0261dafe831"},   {64, "d947920b0d8b96ae40c0da35b906957d"},
      {65, "b2224f91576832b1ea70bd5b92681d58"},   {119, "7ecd7329de7f8953db193da0cf9f75f0"},
      {120, "03a70a610fb59dfb53f2f42ce2913fca"},  {127, "ed87293da696728a6028906fed7b962a"},
      {128, "20e1c2115e7e2009fede106f4ef707b9"},  {129, "4f447cfbeee4e18f5b43da69c28590b4"},
      {1000, "883c2d3cf33a8f42cda60da240bf291d"}, {65537, "54905c9e0cc1ab069fb50983f90978f8"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE("length " + std::to_string(c.length));
    EXPECT_EQ(HexDigest<Md5Digest>(LcgBytes(static_cast<uint32_t>(c.length), c.length)), c.digest);
  }
}

TEST(Md5DigestTest, SplitsDoNotMatter) { test::ExpectSplitsDoNotMatter<Md5Digest>(); }

TEST(Md5DigestTest, ResetCopyAndEmptyUpdates) { test::ExpectStateHandling<Md5Digest>(); }

TEST(Md5DigestTest, OneShotHelpers) {
  test::ExpectOneShotHelpers<Md5Digest>([](ByteString& t, const void* b, int32_t n) { return Md5Of(t, b, n); },
                                        [](ByteString& s) { return Md5Of(s); });
}

}  // namespace
}  // namespace orvelan
