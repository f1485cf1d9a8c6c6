#pragma once
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/byte_string.h"

namespace orvelan {

// One armoured block of a key file: a "-----BEGIN <marker>" line (or the
// "---- BEGIN <marker>" of SSH2 key files), header lines "Name: value" where a
// backslash at the end of a line continues the value on the next, then base64
// up to the next "---". Used for the SSH2 key blocks OpenSSL does not read.
//
//   PemBlock block;
//   if (!block.Read(text, "SSH2 ENCRYPTED PRIVATE KEY")) ...  // no such block
//   if (!block.Decrypt(password)) ...                          // DEK-Info not usable
//   use block.Body()
//
// Not thread-safe; holds copies of what it read.
class PemBlock {
 public:
  PemBlock() = default;
  PemBlock(const PemBlock&) = delete;
  PemBlock& operator=(const PemBlock&) = delete;

  // Finds the block and decodes it; false when there is no BEGIN line for
  // `marker` or memory runs out.
  bool Read(std::string_view text, std::string_view marker);

  // The value of the first header named `name` (ASCII case ignored), or null.
  const std::string* Header(std::string_view name) const;
  const std::vector<std::pair<std::string, std::string>>& Headers() const { return headers_; }
  // The decoded body (decrypted after Decrypt).
  const ByteString& Body() const { return body_; }

  // Without a DEK-Info header there is nothing to do (true). With one naming
  // DES-EDE3-CBC or 3des-cbc and an 8-byte hexadecimal IV, the body is
  // decrypted in place with Triple DES in CBC mode, the key derived from the
  // pass phrase and the IV as for traditional encrypted PEM keys, and its
  // padding removed. false for any other cipher, a malformed IV, a body that
  // is not whole blocks, or padding that does not check out (a wrong pass
  // phrase, mostly).
  bool Decrypt(std::string_view pass_phrase);

 private:
  std::vector<std::pair<std::string, std::string>> headers_;
  ByteString body_;
};

}  // namespace orvelan
