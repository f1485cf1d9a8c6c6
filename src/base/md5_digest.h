#pragma once
#include <cstddef>
#include <cstdint>

#include "base/byte_string.h"

namespace orvelan {

// Incremental MD5.
//
//   Md5Digest md5;
//   md5.Update(header, header_length);
//   md5.Update(body, body_length);
//   const uint8_t* digest = md5.Finish();  // 16 bytes, then a NUL
//
// A plain value: copying it copies the running state, which lets a caller hash
// a common prefix once and finish several continuations. Not thread-safe.
class Md5Digest {
 public:
  static constexpr int32_t kDigestLength = 16;

  Md5Digest() { Reset(); }

  // Starts a new digest, forgetting every byte seen so far.
  void Reset();

  // Adds `length` bytes; may be called any number of times, with any split.
  // A null pointer with length 0 is fine. A negative int32 length counts as 0;
  // other integer types need a cast to pick one of the two.
  void Update(const void* bytes, size_t length);
  void Update(const void* bytes, int32_t length) {
    Update(bytes, length > 0 ? static_cast<size_t>(length) : size_t{0});
  }

  // Pads, and returns the 16 digest bytes followed by a NUL byte. The bytes
  // live in this object until the next Reset, Update or Finish. The state is
  // spent afterwards: call Reset before hashing anything else.
  const uint8_t* Finish();

 private:
  void Transform(const uint8_t* block);

  uint32_t state_[4];
  uint64_t byte_count_;
  uint8_t block_[64];  // the first byte_count_ % 64 bytes are pending
  uint8_t result_[kDigestLength + 1];
};

// Makes the 16 digest bytes of bytes[0, length) the content of target.
// Returns 0, or the ByteString's code (200) leaving target unchanged.
int Md5Of(ByteString& target, const void* bytes, int32_t length);

// Replaces the content of in_out by its 16 digest bytes.
int Md5Of(ByteString& in_out);

}  // namespace orvelan
