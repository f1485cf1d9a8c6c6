#include "base/key_derivation.h"

#include <cstring>

#include "base/md5_digest.h"
#include "base/sha1_digest.h"
#include "base/text_util.h"

namespace orvelan {
namespace {

template <typename Digest>
int DeriveBytes(const ByteString& pass_phrase, const ByteString& salt, int32_t count, int32_t wanted,
                ByteString& derived) {
  constexpr size_t kLength = Digest::kDigestLength;
  // Finish hands out bytes that the next Reset clears, so each block is copied out.
  uint8_t block[kLength];
  bool has_block = false;
  while (derived.Length() < wanted) {
    Digest digest;
    if (has_block) digest.Update(block, kLength);
    digest.Update(pass_phrase.Data(), pass_phrase.Length());
    digest.Update(salt.Data(), salt.Length());
    std::memcpy(block, digest.Finish(), kLength);
    for (int32_t i = 1; i < count; ++i) {
      digest.Reset();
      digest.Update(block, kLength);
      std::memcpy(block, digest.Finish(), kLength);
    }
    has_block = true;
    const int32_t missing = wanted - derived.Length();
    const int32_t take = missing < Digest::kDigestLength ? missing : Digest::kDigestLength;
    if (int rc = derived.Append(reinterpret_cast<const char*>(block), take); rc != kOk) return rc;
  }
  return kOk;
}

}  // namespace

void KeyDerivation::SetDigestName(const char* name) { uses_sha1_ = CompareNoCase(name, "SHA1") == 0; }

int KeyDerivation::SetPassPhrase(const void* bytes, int32_t length) {
  return pass_phrase_.Assign(static_cast<const char*>(bytes), length);
}

int KeyDerivation::SetSalt(const void* bytes, int32_t length) {
  return salt_.Assign(static_cast<const char*>(bytes), length);
}

int KeyDerivation::Derive(int32_t count, int32_t key_length, int32_t iv_length) {
  if (key_length < 0) key_length = 0;
  if (iv_length < 0) iv_length = 0;
  const int64_t wanted = static_cast<int64_t>(key_length) + iv_length;
  if (wanted > INT32_MAX / 2) return kErrOutOfMemory;  // beyond what a ByteString holds
  ByteString derived;
  const int rc = uses_sha1_
                     ? DeriveBytes<Sha1Digest>(pass_phrase_, salt_, count, static_cast<int32_t>(wanted), derived)
                     : DeriveBytes<Md5Digest>(pass_phrase_, salt_, count, static_cast<int32_t>(wanted), derived);
  if (rc != kOk) return rc;
  ByteString key;
  ByteString iv;
  if (int r = key.Assign(derived.Data(), key_length); r != kOk) return r;
  if (int r = iv.Assign(derived.Data() + key_length, iv_length); r != kOk) return r;
  key_.Swap(key);
  iv_.Swap(iv);
  return kOk;
}

}  // namespace orvelan
