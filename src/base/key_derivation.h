#pragma once
#include <cstdint>

#include "base/byte_string.h"

namespace orvelan {

// Turns a pass phrase and a salt into a cipher key and IV the way OpenSSL's
// EVP_BytesToKey does, which is how traditional encrypted PEM keys are made.
//
//   KeyDerivation kd;                   // MD5 unless told otherwise
//   kd.SetPassPhrase(pass, pass_length);
//   kd.SetSalt(iv, 8);                  // the first 8 bytes of the PEM IV
//   if (kd.Derive(0, 24, 8) != 0) ...   // 200: out of memory
//   use kd.Key() and kd.Iv()
//
// Blocks D1, D2, ... are made until key + IV bytes exist, Di being the digest
// of D(i-1), the pass phrase and the salt (D0 is empty), hashed again
// count - 1 more times. The key is the first key_length bytes, the IV the next
// iv_length. Copies of the inputs are kept until the object goes away.
class KeyDerivation {
 public:
  KeyDerivation() = default;

  // "SHA1" in any case selects SHA-1; every other name, null included, MD5.
  void SetDigestName(const char* name);

  // Copies the bytes; null or a length <= 0 gives the empty pass phrase or no
  // salt. Returns 0 or 200, leaving the old value in place on failure.
  int SetPassPhrase(const void* bytes, int32_t length);
  int SetSalt(const void* bytes, int32_t length);

  // Replaces Key() and Iv(). A count of 0 or 1 means a single digest per
  // block; the work grows linearly with count. Negative lengths count as 0.
  // Returns 0, or 200 leaving the previous key and IV in place.
  int Derive(int32_t count, int32_t key_length, int32_t iv_length);

  // Empty until the first successful Derive.
  const ByteString& Key() const { return key_; }
  const ByteString& Iv() const { return iv_; }

 private:
  bool uses_sha1_ = false;
  ByteString pass_phrase_;
  ByteString salt_;
  ByteString key_;
  ByteString iv_;
};

}  // namespace orvelan
