#include "net/ntlm_auth.h"

// The test swaps the generator through the older RAND_METHOD interface.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/rand.h>

#include <cstring>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "support/test_bytes.h"

namespace orvelan {
namespace {

using test::Hex;
using test::Unhex;

// The published NTLMv1 example: user "User", domain "Domain", password
// "Password", server challenge 0123456789abcdef, client challenge aa x 8.
const std::string kServerChallenge = Unhex("0123456789abcdef");
const uint8_t kClientChallenge[8] = {0xaa, 0xaa, 0xaa, 0xaa, 0xaa, 0xaa, 0xaa, 0xaa};

uint32_t Le16(const std::string& m, size_t at) {
  return static_cast<uint8_t>(m[at]) | static_cast<uint8_t>(m[at + 1]) << 8;
}
uint32_t Le32(const std::string& m, size_t at) { return Le16(m, at) | Le16(m, at + 2) << 16; }

// The payload a security buffer at `at` points to; checks that both lengths agree.
std::string Field(const std::string& m, size_t at) {
  EXPECT_EQ(Le16(m, at), Le16(m, at + 2)) << "length and maximum length differ at " << at;
  const uint32_t length = Le16(m, at);
  const uint32_t offset = Le32(m, at + 4);
  if (length == 0) {
    EXPECT_EQ(offset, 0u) << "an empty field keeps a zero buffer at " << at;
    return "";
  }
  EXPECT_LE(offset + length, m.size());
  return m.substr(offset, length);
}

void PutLe(std::string& m, size_t at, uint32_t value, int width) {
  for (int i = 0; i < width; ++i) m[at + static_cast<size_t>(i)] = static_cast<char>(value >> (8 * i));
}

// A challenge message: the fixed 48-byte part, a target name and, with the
// target-info flag, one AV pair and the terminator.
std::string Challenge(uint32_t flags) {
  std::string m = std::string("NTLMSSP\0\2\0\0\0", 12) + std::string(36, '\0');
  PutLe(m, 12, 6 | 6 << 16, 4);  // target name: length, maximum length, offset
  PutLe(m, 16, 48, 4);
  PutLe(m, 20, flags, 4);
  m.replace(24, 8, kServerChallenge);
  PutLe(m, 40, 14 | 14 << 16, 4);  // target info
  PutLe(m, 44, 54, 4);
  return m + std::string("D\0O\0M\0", 6) + std::string("\x02\x00\x06\x00" "D\0O\0M\0" "\x00\x00\x00\x00", 14);
}

std::string Token(NtlmAuth& ntlm, const std::string& challenge, int* rc = nullptr) {
  ByteString token;
  const int code =
      ntlm.CreateToken("NTLM", "proxy.test", challenge.data(), static_cast<int32_t>(challenge.size()), token);
  if (rc != nullptr) *rc = code;
  return std::string(token.View());
}

// The hashes and DESL are pinned by the published responses below; the LM
// hash also folds case there ("Password"). Only the cut at 14 bytes is not.
TEST(NtlmAuthTest, LmHashCutsThePasswordAt14Bytes) {
  uint8_t long_lm[16], cut_lm[16];
  NtlmAuth::LmHash("ABCDEFGHIJKLMNOPQ", long_lm);
  NtlmAuth::LmHash("ABCDEFGHIJKLMN", cut_lm);
  EXPECT_EQ(Hex(long_lm, 16), Hex(cut_lm, 16));
}

TEST(NtlmAuthTest, NegotiateMessageCarriesFlagsVersionAndDomain) {
  struct Case { const char* user; uint32_t flags; std::string domain; } cases[] = {
      {"User", 0xa2088207, ""},
      {"Domain\\User", 0xa2089207, "Domain"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.user);
    NtlmAuth ntlm;
    ASSERT_EQ(ntlm.SetCredentials("NTLM", c.user, "Password"), 0);
    int rc = 0;
    const std::string m = Token(ntlm, "", &rc);
    ASSERT_EQ(rc, 0);
    ASSERT_EQ(m.size(), 40 + c.domain.size());
    EXPECT_EQ(m.substr(0, 12), std::string("NTLMSSP\0\1\0\0\0", 12));
    EXPECT_EQ(Le32(m, 12), c.flags);
    EXPECT_EQ(Hex(m.substr(32, 8)), "000000000000000f");
    EXPECT_EQ(Field(m, 16), c.domain);
    EXPECT_EQ(Field(m, 24), "");
    EXPECT_EQ(ntlm.Flags(), c.flags);
  }
}

// Authenticate messages for the published example, with and without extended
// session security, and the layout around them.
TEST(NtlmAuthTest, AuthenticateMessageMatchesThePublishedResponses) {
  constexpr uint32_t kServerBase = 0x1 | 0x200 | 0x8000;  // Unicode, NTLM, always sign
  struct Case { const char* name; uint32_t server_flags, our_flags; const char* lm, *nt; } cases[] = {
      {"extended session security", kServerBase | 0x80000, 0xa2089205,
       "aaaaaaaaaaaaaaaa00000000000000000000000000000000", "7537f803ae367128ca458204bde7caf81e97ed2683267232"},
      {"plain NTLMv1", kServerBase, 0xa2009205, "98def7b87f88aa5dafe2df779688a172def11c7d5ccdef13",
       "67c43011f30298a2ad35ece64f16331c44bdbed927841f94"},
      {"target requested", kServerBase | 0x80000 | 0x4 | 0x800000, 0xa2889205,
       "aaaaaaaaaaaaaaaa00000000000000000000000000000000", "7537f803ae367128ca458204bde7caf81e97ed2683267232"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    NtlmAuth ntlm;
    ntlm.SetCredentials("NTLM", "Domain\\User", "Password");
    Token(ntlm, "");
    ntlm.SetClientChallenge(kClientChallenge);
    int rc = 0;
    const std::string m = Token(ntlm, Challenge(c.server_flags), &rc);
    ASSERT_EQ(rc, 0) << ntlm.ErrorText();
    EXPECT_EQ(m.substr(0, 12), std::string("NTLMSSP\0\3\0\0\0", 12));
    EXPECT_EQ(Le32(m, 60), c.our_flags);
    EXPECT_EQ(Hex(m.substr(64, 8)), "000000000000000f");
    EXPECT_EQ(Hex(Field(m, 12)), c.lm);
    EXPECT_EQ(Hex(Field(m, 20)), c.nt);
    EXPECT_EQ(Field(m, 28), std::string("D\0o\0m\0a\0i\0n\0", 12));
    EXPECT_EQ(Field(m, 36), std::string("U\0s\0e\0r\0", 8));
    EXPECT_EQ(Field(m, 44), "");
    EXPECT_EQ(Field(m, 52), "");
    // Payload order: domain, user, workstation, LM, NT, from offset 72 on.
    EXPECT_EQ(Le32(m, 32), 72u);
    EXPECT_EQ(Le32(m, 40), 84u);
    EXPECT_EQ(Le32(m, 16), 92u);
    EXPECT_EQ(Le32(m, 24), 116u);
    EXPECT_EQ(m.size(), 140u);
  }
}

// Stands in for OpenSSL's generator while alive, handing out `bytes` in turn.
class FixedRandom {
 public:
  explicit FixedRandom(std::string bytes) : saved_(RAND_get_rand_method()) {
    bytes_ = std::move(bytes);
    RAND_set_rand_method(&kMethod);
  }
  ~FixedRandom() { RAND_set_rand_method(saved_); }

 private:
  static int Bytes(unsigned char* out, int n) {
    for (int i = 0; i < n; ++i) out[i] = static_cast<unsigned char>(bytes_[static_cast<size_t>(i) % bytes_.size()]);
    return 1;
  }
  static inline std::string bytes_;
  static constexpr RAND_METHOD kMethod = {nullptr, Bytes, nullptr, nullptr, Bytes, nullptr};
  const RAND_METHOD* saved_;
};

// The client challenge is OpenSSL's random bytes moved into 1-255 (a zero
// byte is not allowed), so each Authenticate message differs.
TEST(NtlmAuthTest, ClientChallengeIsRandomAndNeverZero) {
  NtlmAuth ntlm;
  ntlm.SetCredentials("NTLM", "u", "p");
  auto client_challenge = [&] {
    int rc = 0;
    Token(ntlm, "");
    const std::string m = Token(ntlm, Challenge(0x1 | 0x200 | 0x80000), &rc);
    EXPECT_EQ(rc, 0);
    return Field(m, 12).substr(0, 8);
  };
  {
    FixedRandom fixed(Unhex("00feff017f80fdaa"));
    EXPECT_EQ(Hex(client_challenge()), "01ff01028081feab");
  }
  const std::string first = client_challenge();
  const std::string second = client_challenge();
  EXPECT_NE(first, second);
  EXPECT_EQ((first + second).find('\0'), std::string::npos);
}

TEST(NtlmAuthTest, UserTextIsSentAsUtf16) {
  struct Case { const char* text; std::string utf16; } cases[] = {
      {"J\xc3\xbcrgen", std::string("J\0\xfc\0r\0g\0e\0n\0", 12)},
      {"\xf0\x9f\x98\x80", std::string("\x3d\xd8\x00\xde", 4)},
      {"\xff" "a", std::string("\xff\0a\0", 4)},  // not UTF-8: taken as Latin-1
      {"\xc3", std::string("\xc3\0", 2)},
  };
  for (const Case& c : cases) {
    ByteString out;
    ASSERT_EQ(NtlmAuth::AppendUtf16(out, c.text, static_cast<int32_t>(std::strlen(c.text))), 0);
    EXPECT_EQ(Hex(out.View()), Hex(c.utf16)) << c.text;
  }
}

// A challenge that fails a check gives its text and no token; security buffers
// that point outside the message are clipped, never followed.
TEST(NtlmAuthTest, BadChallengesGiveTheirTextsAndNoToken) {
  std::string bad_signature = Challenge(0x1 | 0x200), bad_type = bad_signature;
  bad_signature[3] = 'X';
  bad_type[8] = 3;
  std::string outside = Challenge(0x1 | 0x200 | 0x4 | 0x800000);
  PutLe(outside, 16, 0xfffffff0, 4);
  PutLe(outside, 40, 0xffff, 2);
  struct Case { std::string challenge; const char* text; } cases[] = {
      {bad_signature, NtlmAuth::kTextBadSignature},
      {bad_type, NtlmAuth::kTextBadType},
      {Challenge(0x200), NtlmAuth::kTextNoCharset},
      {Challenge(0x1), NtlmAuth::kTextNoVersion},
      {std::string("NTLMSSP\0\x02\0\0\0", 12), NtlmAuth::kTextNoCharset},  // cut short: flags read as 0
      {outside, ""},
  };
  for (const Case& c : cases) {
    NtlmAuth ntlm;
    ntlm.SetCredentials("NTLM", "u", "p");
    Token(ntlm, "");
    int rc = 0;
    EXPECT_EQ(Token(ntlm, c.challenge, &rc).empty(), *c.text != '\0');
    EXPECT_EQ(rc, *c.text != '\0' ? -1 : 0);
    EXPECT_STREQ(ntlm.ErrorText(), c.text);
  }
  NtlmAuth disabled;
  disabled.SetCredentials("NTLM", "u", "p");
  disabled.Reset(true);
  int rc = 0;
  EXPECT_EQ(Token(disabled, "", &rc), "");
  EXPECT_EQ(rc, -1);
}

}  // namespace
}  // namespace orvelan
