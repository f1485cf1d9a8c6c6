#pragma once
#include <gtest/gtest.h>

#include <string>

#include "base/byte_string.h"
#include "support/test_bytes.h"

// Properties every incremental digest must have, whatever the algorithm. Each
// digest's test suite calls these with its own class.
namespace orvelan::test {

// However the input is cut into updates, the digest is the same: two cuts at
// every pair of positions over three blocks and a bit, then byte by byte.
template <typename Digest>
void ExpectSplitsDoNotMatter() {
  const std::string data = LcgBytes(42, 3 * 64 + 7);
  const std::string whole = HexDigest<Digest>(data);
  for (size_t first = 0; first <= data.size(); ++first) {
    for (size_t second = first; second <= data.size(); second += 5) {
      if (HexDigest<Digest>(data, {first, second}) != whole) {
        ADD_FAILURE() << "cut at " << first << " and " << second;
        return;
      }
    }
  }
  Digest bytewise;
  for (char c : data) bytewise.Update(&c, size_t{1});
  EXPECT_EQ(Hex(bytewise.Finish(), Digest::kDigestLength), whole);
}

// Reset forgets earlier input; Finish leaves a NUL behind the digest; a copy
// continues on its own; empty and null updates change nothing.
template <typename Digest>
void ExpectStateHandling() {
  const std::string data = LcgBytes(5, 100);
  const std::string expected = HexDigest<Digest>(data);

  Digest digest;
  digest.Update("leftover", 8);
  digest.Reset();
  digest.Update(data.data(), data.size());
  const uint8_t* result = digest.Finish();
  EXPECT_EQ(Hex(result, Digest::kDigestLength), expected);
  EXPECT_EQ(result[Digest::kDigestLength], 0);

  Digest prefix;
  prefix.Update(data.data(), size_t{60});
  Digest copy = prefix;
  copy.Update(data.data() + 60, data.size() - 60);
  prefix.Update("x", 1);
  EXPECT_EQ(Hex(copy.Finish(), Digest::kDigestLength), expected);

  Digest empty_updates;
  empty_updates.Update(nullptr, size_t{0});
  empty_updates.Update(data.data(), int32_t{-5});
  empty_updates.Update(data.data(), data.size());
  empty_updates.Update(nullptr, int32_t{0});
  EXPECT_EQ(Hex(empty_updates.Finish(), Digest::kDigestLength), expected);
}

// The one-shot helpers: target gets exactly the digest bytes (whatever it held
// before, inline or on the heap), and the in-place form hashes its own content.
template <typename Digest, typename Of, typename OfInPlace>
void ExpectOneShotHelpers(Of of, OfInPlace of_in_place) {
  for (size_t length : {size_t{0}, size_t{3}, size_t{150}}) {
    SCOPED_TRACE("length " + std::to_string(length));
    const std::string data = LcgBytes(9, length);
    const std::string expected = HexDigest<Digest>(data);

    ByteString target(std::string_view(LcgBytes(1, 200)));
    ASSERT_EQ(of(target, data.data(), static_cast<int32_t>(length)), 0);
    EXPECT_EQ(target.Length(), Digest::kDigestLength);
    EXPECT_EQ(Hex(target.View()), expected);

    ByteString in_out{std::string_view(data)};
    ASSERT_EQ(of_in_place(in_out), 0);
    EXPECT_EQ(Hex(in_out.View()), expected);
  }
}

}  // namespace orvelan::test
