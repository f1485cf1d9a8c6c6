#pragma once
#include <cstdint>

#include "base/byte_string.h"

namespace orvelan {

// Builds the client's NTLM messages for proxy authentication (NTLMv1 with
// extended session security when the server agrees):
//
//   NtlmAuth ntlm;
//   ntlm.SetCredentials("NTLM", "CORP\\alice", "secret");
//   ByteString token;
//   ntlm.CreateToken("NTLM", "proxy.corp", nullptr, 0, token);    // Negotiate
//   ... send base64(token), receive the proxy's Challenge ...
//   if (ntlm.CreateToken("NTLM", "proxy.corp", challenge, n, token) != 0)
//     report ntlm.ErrorText();                                     // no header
//
// One exchange at a time: the flags sent in the Negotiate message are kept for
// the Authenticate message. Texts are taken as UTF-8 and sent as UTF-16LE.
// Not thread-safe.
class NtlmAuth {
 public:
  static constexpr uint32_t kNegotiateFlags = 0xa2088207;
  static constexpr uint32_t kFlagUnicode = 0x1;
  static constexpr uint32_t kFlagOem = 0x2;
  static constexpr uint32_t kFlagRequestTarget = 0x4;
  static constexpr uint32_t kFlagNtlm = 0x200;
  static constexpr uint32_t kFlagLmCopiesNt = 0x400;
  static constexpr uint32_t kFlagDomainSupplied = 0x1000;
  static constexpr uint32_t kFlagWorkstationSupplied = 0x2000;
  static constexpr uint32_t kFlagExtendedSecurity = 0x80000;
  static constexpr uint32_t kFlagTargetInfo = 0x800000;

  static constexpr char kTextBadSignature[] =
      "Could not process server's NTLM authentication token: invalid signature.";
  static constexpr char kTextBadType[] = "Could not process server's NTLM authentication token: invalid message type.";
  static constexpr char kTextNoCharset[] =
      "Could not process server's NTLM authentication token: no charset negotiated.";
  static constexpr char kTextNoVersion[] =
      "Could not process server's NTLM authentication token: no NTLM version negotiated.";
  static constexpr char kTextNoRandom[] = "Could not create the NTLM client challenge: no random bytes available.";

  NtlmAuth() = default;
  NtlmAuth(const NtlmAuth&) = delete;
  NtlmAuth& operator=(const NtlmAuth&) = delete;

  // Forgets the exchange and the error text; while disabled no token is made.
  void Reset(bool disabled);
  // The user text is split at its first backslash into domain and user.
  int SetCredentials(const char* mechanism, const char* user_text, const char* password);

  // A Negotiate message when `challenge` is empty, else the Authenticate
  // message answering it. Returns 0; -1 when the challenge fails a check or
  // OpenSSL has no random bytes (ErrorText() says which) or the component is
  // disabled; 508 for a writer failure; 200 when out of memory. `token` is emptied on failure.
  int CreateToken(const char* mechanism, const char* target, const void* challenge, int32_t challenge_length,
                  ByteString& token);

  // Fixes the client challenge of the next Authenticate message instead of a
  // random one, so that a message can be reproduced.
  void SetClientChallenge(const uint8_t challenge[8]);

  const char* ErrorText() const { return error_text_.Data(); }
  const char* Mechanism() const { return mechanism_.Data(); }
  const char* User() const { return user_.Data(); }
  const char* Domain() const { return domain_.Data(); }
  uint32_t Flags() const { return flags_; }

  // The building blocks, public for checks against published values.
  // MD4 of the UTF-16LE password (16 bytes into out).
  static void NtHash(const char* password, uint8_t out[16]);
  // The LAN Manager hash of the password (16 bytes into out).
  static void LmHash(const char* password, uint8_t out[16]);
  // DESL: the 16-byte key padded to three DES keys, each encrypting `data`.
  static void Desl(const uint8_t key[16], const uint8_t data[8], uint8_t out[24]);
  // Appends the UTF-16LE form of UTF-8 text; bytes that are not UTF-8 count
  // as Latin-1.
  static int AppendUtf16(ByteString& target, const char* text, int32_t length);

 private:
  int MakeNegotiate(ByteString& token);
  int ReadChallenge(const uint8_t* bytes, int32_t length, uint8_t server_challenge[8]);
  int MakeAuthenticate(const uint8_t server_challenge[8], ByteString& token);
  int Fail(const char* text);

  ByteString user_;
  ByteString domain_;
  ByteString password_;
  ByteString workstation_;
  ByteString target_;
  ByteString target_name_;  // from the challenge; not used further
  ByteString error_text_;
  ByteString mechanism_{"NTLM"};
  uint32_t flags_ = kNegotiateFlags;
  uint8_t fixed_client_challenge_[8] = {};
  bool has_fixed_client_challenge_ = false;
  bool disabled_ = false;
};

}  // namespace orvelan
