#include "net/ntlm_auth.h"

#include <openssl/err.h>
#include <openssl/rand.h>

#include <cstring>

#include "base/des_cipher.h"
#include "base/error_codes.h"
#include "base/md4_digest.h"
#include "base/md5_digest.h"
#include "base/ntlm_writer.h"

namespace orvelan {
namespace {

constexpr char kSignature[8] = {'N', 'T', 'L', 'M', 'S', 'S', 'P', '\0'};

// Seven key bytes spread over eight, seven bits each, odd parity in the low bit.
void ExpandDesKey(const uint8_t in[7], uint8_t out[8]) {
  out[0] = in[0];
  out[1] = static_cast<uint8_t>(in[0] << 7 | in[1] >> 1);
  out[2] = static_cast<uint8_t>(in[1] << 6 | in[2] >> 2);
  out[3] = static_cast<uint8_t>(in[2] << 5 | in[3] >> 3);
  out[4] = static_cast<uint8_t>(in[3] << 4 | in[4] >> 4);
  out[5] = static_cast<uint8_t>(in[4] << 3 | in[5] >> 5);
  out[6] = static_cast<uint8_t>(in[5] << 2 | in[6] >> 6);
  out[7] = static_cast<uint8_t>(in[6] << 1);
  for (int i = 0; i < 8; ++i) {
    uint8_t b = out[i] & 0xFE;
    int ones = 0;
    for (uint8_t v = b; v != 0; v &= static_cast<uint8_t>(v - 1)) ++ones;
    out[i] = static_cast<uint8_t>(b | (ones % 2 == 0 ? 1 : 0));
  }
}

void DesEncrypt7(const uint8_t key7[7], const uint8_t data[8], uint8_t out[8]) {
  uint8_t key[8];
  ExpandDesKey(key7, key);
  std::memcpy(out, data, 8);
  DesCipher(key).Encrypt(out, 1);
}

// A writer of one message: fixed part first, payloads appended as their
// security buffers are filled.
class MessageBuilder {
 public:
  int Start(uint32_t type, int32_t fixed_length) {
    if (int rc = writer_.WriteBytes(-1, kSignature, 0, 8); rc != kOk) return rc;
    if (int rc = writer_.AppendInt(type, 4); rc != kOk) return rc;
    // Zeroed up to the payload; the fields are patched in place.
    for (int32_t n = 12; n < fixed_length; n += 4) {
      if (int rc = writer_.AppendInt(0, 4); rc != kOk) return rc;
    }
    return kOk;
  }
  // Appends the payload and points the security buffer at `position` to it;
  // an empty payload keeps the buffer all zero.
  int Payload(int32_t position, const ByteString& bytes) {
    if (bytes.Length() == 0) return kOk;
    const int32_t offset = writer_.Buffer().Length();
    if (int rc = writer_.WriteInt(position, static_cast<uint32_t>(bytes.Length()), 2); rc != kOk) return rc;
    if (int rc = writer_.WriteInt(position + 2, static_cast<uint32_t>(bytes.Length()), 2); rc != kOk) return rc;
    if (int rc = writer_.WriteInt(position + 4, static_cast<uint32_t>(offset), 4); rc != kOk) return rc;
    return writer_.WriteBytes(-1, bytes.Data(), 0, bytes.Length());
  }
  int Version(int32_t position) {
    // Major 0, minor 0, build 0, three reserved bytes, revision 15.
    return writer_.WriteInt(position + 7, 15, 1);
  }
  NtlmWriter& writer() { return writer_; }

 private:
  NtlmWriter writer_;
};

// Reads a security buffer of the challenge: its length and offset.
struct SecurityBuffer {
  uint32_t length;
  uint32_t offset;
};

SecurityBuffer ReadSecurityBuffer(NtlmWriter& reader) {
  SecurityBuffer sb;
  sb.length = reader.ReadInt(2);
  reader.ReadInt(2);
  sb.offset = reader.ReadInt(4);
  return sb;
}

// The part of bytes[0, length) the buffer covers, clipped to the message.
std::string_view Clip(const uint8_t* bytes, int32_t length, SecurityBuffer sb) {
  const uint64_t total = static_cast<uint64_t>(length);
  if (sb.offset >= total) return {};
  const uint64_t n = std::min<uint64_t>(sb.length, total - sb.offset);
  return {reinterpret_cast<const char*>(bytes) + sb.offset, static_cast<size_t>(n)};
}

// OpenSSL's generator, not a clock-seeded one: a guessable client challenge
// weakens the response. A zero byte is not allowed, so each byte becomes
// 1 + (byte mod 255).
bool NewClientChallenge(uint8_t out[8]) {
  if (RAND_bytes(out, 8) != 1) return false;
  for (int i = 0; i < 8; ++i) out[i] = static_cast<uint8_t>(1 + out[i] % 255);
  return true;
}

}  // namespace

void NtlmAuth::Reset(bool disabled) {
  disabled_ = disabled;
  flags_ = kNegotiateFlags;
  error_text_.Clear();
  target_name_.Clear();
  has_fixed_client_challenge_ = false;
}

int NtlmAuth::SetCredentials(const char* mechanism, const char* user_text, const char* password) {
  if (int rc = mechanism_.Assign(mechanism != nullptr && *mechanism != '\0' ? mechanism : "NTLM"); rc != kOk) {
    return rc;
  }
  const char* text = user_text != nullptr ? user_text : "";
  const char* slash = std::strchr(text, '\\');
  int rc = kOk;
  if (slash != nullptr) {
    rc = domain_.Assign(text, static_cast<int32_t>(slash - text));
    if (rc == kOk) rc = user_.Assign(slash + 1);
  } else {
    domain_.Clear();
    rc = user_.Assign(text);
  }
  if (rc == kOk) rc = password_.Assign(password);
  return rc;
}

void NtlmAuth::SetClientChallenge(const uint8_t challenge[8]) {
  std::memcpy(fixed_client_challenge_, challenge, 8);
  has_fixed_client_challenge_ = true;
}

int NtlmAuth::Fail(const char* text) {
  error_text_.Assign(text);
  return -1;
}

int NtlmAuth::CreateToken(const char* mechanism, const char* target, const void* challenge,
                          int32_t challenge_length, ByteString& token) {
  token.Clear();
  error_text_.Clear();
  if (disabled_) return Fail("NTLM authentication is disabled.");
  if (mechanism != nullptr && *mechanism != '\0') mechanism_.Assign(mechanism);
  target_.Assign(target);
  int rc;
  if (challenge == nullptr || challenge_length <= 0) {
    rc = MakeNegotiate(token);
  } else {
    uint8_t server_challenge[8];
    rc = ReadChallenge(static_cast<const uint8_t*>(challenge), challenge_length, server_challenge);
    if (rc == kOk) rc = MakeAuthenticate(server_challenge, token);
  }
  if (rc != kOk) token.Clear();
  return rc;
}

int NtlmAuth::MakeNegotiate(ByteString& token) {
  flags_ = kNegotiateFlags;
  if (domain_.Length() > 0) flags_ |= kFlagDomainSupplied;
  if (workstation_.Length() > 0) flags_ |= kFlagWorkstationSupplied;
  MessageBuilder m;
  int rc = m.Start(1, 40);
  if (rc == kOk) rc = m.writer().WriteInt(12, flags_, 4);
  if (rc == kOk) rc = m.Version(32);
  if (rc == kOk) rc = m.Payload(16, domain_);  // OEM: the bytes as given
  if (rc == kOk) rc = m.Payload(24, workstation_);
  if (rc != kOk) {
    if (rc == kErrNoResponse) error_text_.Assign(m.writer().ErrorText());
    return rc;
  }
  return token.Assign(m.writer().Buffer());
}

int NtlmAuth::ReadChallenge(const uint8_t* bytes, int32_t length, uint8_t server_challenge[8]) {
  if (length < 8 || std::memcmp(bytes, kSignature, 8) != 0) return Fail(kTextBadSignature);
  NtlmWriter reader;
  if (int rc = reader.Load(bytes, length); rc != kOk) return rc;
  reader.ReadInt(8);
  if (reader.ReadInt(4) != 2) return Fail(kTextBadType);
  const SecurityBuffer target_name = ReadSecurityBuffer(reader);
  const uint32_t server_flags = reader.ReadInt(4);
  if ((server_flags & kFlagUnicode) != 0) {
    flags_ &= ~kFlagOem;
  } else if ((server_flags & kFlagOem) == 0) {
    return Fail(kTextNoCharset);
  }
  if ((server_flags & (kFlagExtendedSecurity | kFlagNtlm)) == 0) return Fail(kTextNoVersion);
  // A server that cannot do extended session security gets plain NTLMv1
  // responses, which it can check.
  if ((server_flags & kFlagExtendedSecurity) == 0) flags_ &= ~kFlagExtendedSecurity;
  if ((server_flags & kFlagRequestTarget) != 0) {
    target_name_.Assign(Clip(bytes, length, target_name));
    flags_ |= kFlagTargetInfo;
  }
  const int32_t at = reader.ReadPosition();
  std::memset(server_challenge, 0, 8);
  std::memcpy(server_challenge, bytes + at, static_cast<size_t>(std::min(8, length - at)));
  reader.ReadInt(8);
  reader.ReadInt(8);
  const SecurityBuffer target_info = ReadSecurityBuffer(reader);
  if ((server_flags & kFlagTargetInfo) != 0) {
    // The attribute-value pairs are only walked, to their terminator or the
    // end of what the buffer holds.
    std::string_view pairs = Clip(bytes, length, target_info);
    while (pairs.size() >= 4) {
      const uint32_t id = static_cast<uint8_t>(pairs[0]) | static_cast<uint8_t>(pairs[1]) << 8;
      const uint32_t n = static_cast<uint8_t>(pairs[2]) | static_cast<uint8_t>(pairs[3]) << 8;
      if (id == 0) break;
      pairs.remove_prefix(std::min<size_t>(pairs.size(), 4 + size_t{n}));
    }
  }
  return kOk;
}

int NtlmAuth::MakeAuthenticate(const uint8_t server_challenge[8], ByteString& token) {
  uint8_t nt_hash[16];
  NtHash(password_.Data(), nt_hash);
  ByteString lm_response;
  ByteString nt_response;
  uint8_t response[24];
  if ((flags_ & kFlagExtendedSecurity) != 0) {
    uint8_t client_challenge[8];
    if (has_fixed_client_challenge_) {
      std::memcpy(client_challenge, fixed_client_challenge_, 8);
    } else if (!NewClientChallenge(client_challenge)) {
      ERR_clear_error();
      return Fail(kTextNoRandom);
    }
    Md5Digest md5;
    md5.Update(server_challenge, int32_t{8});
    md5.Update(client_challenge, int32_t{8});
    Desl(nt_hash, md5.Finish(), response);
    if (nt_response.Assign(reinterpret_cast<const char*>(response), 24) != kOk) return kErrOutOfMemory;
    if (lm_response.Assign(reinterpret_cast<const char*>(client_challenge), 8) != kOk ||
        lm_response.AppendRepeated(16, '\0') != kOk) {
      return kErrOutOfMemory;
    }
  } else {
    Desl(nt_hash, server_challenge, response);
    if (nt_response.Assign(reinterpret_cast<const char*>(response), 24) != kOk) return kErrOutOfMemory;
    if ((flags_ & kFlagLmCopiesNt) != 0) {
      if (lm_response.Assign(nt_response) != kOk) return kErrOutOfMemory;
    } else {
      uint8_t lm_hash[16];
      LmHash(password_.Data(), lm_hash);
      Desl(lm_hash, server_challenge, response);
      if (lm_response.Assign(reinterpret_cast<const char*>(response), 24) != kOk) return kErrOutOfMemory;
    }
  }
  ByteString domain;
  ByteString user;
  ByteString workstation;
  if (AppendUtf16(domain, domain_.Data(), domain_.Length()) != kOk ||
      AppendUtf16(user, user_.Data(), user_.Length()) != kOk ||
      AppendUtf16(workstation, workstation_.Data(), workstation_.Length()) != kOk) {
    return kErrOutOfMemory;
  }
  MessageBuilder m;
  int rc = m.Start(3, 72);
  if (rc == kOk) rc = m.writer().WriteInt(60, flags_, 4);
  if (rc == kOk) rc = m.Version(64);
  if (rc == kOk) rc = m.Payload(28, domain);
  if (rc == kOk) rc = m.Payload(36, user);
  if (rc == kOk) rc = m.Payload(44, workstation);
  if (rc == kOk) rc = m.Payload(12, lm_response);
  if (rc == kOk) rc = m.Payload(20, nt_response);
  if (rc != kOk) {
    if (rc == kErrNoResponse) error_text_.Assign(m.writer().ErrorText());
    return rc;
  }
  has_fixed_client_challenge_ = false;
  return token.Assign(m.writer().Buffer());
}

void NtlmAuth::NtHash(const char* password, uint8_t out[16]) {
  ByteString unicode;
  const char* text = password != nullptr ? password : "";
  AppendUtf16(unicode, text, static_cast<int32_t>(std::strlen(text)));
  Md4Digest md4;
  md4.Update(unicode.Data(), unicode.Length());
  std::memcpy(out, md4.Finish(), 16);
}

void NtlmAuth::LmHash(const char* password, uint8_t out[16]) {
  static constexpr uint8_t kMagic[8] = {'K', 'G', 'S', '!', '@', '#', '$', '%'};
  uint8_t key[14] = {};
  const char* text = password != nullptr ? password : "";
  for (size_t i = 0; i < sizeof key && text[i] != '\0'; ++i) {
    const char c = text[i];
    key[i] = static_cast<uint8_t>(c >= 'a' && c <= 'z' ? c - 32 : c);
  }
  DesEncrypt7(key, kMagic, out);
  DesEncrypt7(key + 7, kMagic, out + 8);
}

void NtlmAuth::Desl(const uint8_t key[16], const uint8_t data[8], uint8_t out[24]) {
  uint8_t padded[21] = {};
  std::memcpy(padded, key, 16);
  for (int i = 0; i < 3; ++i) DesEncrypt7(padded + 7 * i, data, out + 8 * i);
}

int NtlmAuth::AppendUtf16(ByteString& target, const char* text, int32_t length) {
  const auto* p = reinterpret_cast<const uint8_t*>(text);
  auto unit = [&target](uint32_t u) {
    const char pair[2] = {static_cast<char>(u & 0xFF), static_cast<char>(u >> 8)};
    return target.Append(pair, 2);
  };
  for (int32_t i = 0; i < length;) {
    uint32_t c = p[i];
    int32_t n = 0;
    if (c >= 0xF0 && c < 0xF5) {
      n = 3;
    } else if (c >= 0xE0) {
      n = c < 0xF0 ? 2 : 0;
    } else if (c >= 0xC2) {
      n = 1;
    }
    bool valid = n > 0;
    if (valid) {
      uint32_t code = c & (0x3F >> n);
      for (int32_t k = 1; k <= n; ++k) {
        if (i + k >= length || (p[i + k] & 0xC0) != 0x80) {
          valid = false;
          break;
        }
        code = code << 6 | (p[i + k] & 0x3F);
      }
      if (valid && ((n == 2 && code < 0x800) || (n == 3 && (code < 0x10000 || code > 0x10FFFF)) ||
                    (code >= 0xD800 && code <= 0xDFFF))) {
        valid = false;
      }
      if (valid) {
        int rc;
        if (code >= 0x10000) {
          code -= 0x10000;
          rc = unit(0xD800 | code >> 10);
          if (rc == kOk) rc = unit(0xDC00 | (code & 0x3FF));
        } else {
          rc = unit(code);
        }
        if (rc != kOk) return rc;
        i += n + 1;
        continue;
      }
    }
    if (int rc = unit(c); rc != kOk) return rc;
    ++i;
  }
  return kOk;
}

}  // namespace orvelan
