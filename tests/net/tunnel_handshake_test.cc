#include "net/tunnel_handshake.h"

#include <arpa/inet.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "net/channel_probe.h"
#include "support/test_bytes.h"

namespace orvelan {
namespace {

using test::Hex;
using Result = TunnelHandshake::Result;

// A handshake plus the bytes it sent, fed like a socket would feed it.
struct Driver {
  TunnelHandshake h;
  NtlmAuth ntlm;
  std::string sent;
  std::string after;  // what the handshake left over, and bytes fed after it ended

  // A null `address` stands for a host that did not resolve.
  Result Start(int type, const char* host, const char* user = "", const char* password = "",
               const char* address = "10.1.2.3") {
    in_addr a{};
    if (address != nullptr) inet_pton(AF_INET, address, &a);
    ByteString out;
    const Result r = h.Start({type, host, 8443, a.s_addr, user, password}, &ntlm, out);
    sent.assign(out.Data(), static_cast<size_t>(out.Length()));
    return r;
  }
  // Feeds `bytes` as the owner would: with `piecewise` one byte at a time,
  // and what comes after the end of the handshake no longer reaches it.
  Result Feed(const std::string& bytes, bool piecewise = false) {
    sent.clear();
    Result r = h.result();
    const size_t step = piecewise ? 1 : bytes.size();
    size_t at = 0;
    for (; at < bytes.size() && r == TunnelHandshake::kPending; at += step) {
      ByteString out;
      r = h.Feed(bytes.data() + at, static_cast<int32_t>(std::min(step, bytes.size() - at)), false, "", out);
      sent.append(out.Data(), static_cast<size_t>(out.Length()));
    }
    after = std::string(h.Leftover()) + (at < bytes.size() ? bytes.substr(at) : "");
    return r;
  }
};

TEST(TunnelHandshakeTest, ConnectRequestCarriesBasicCredentialsWhenSet) {
  Driver d;
  EXPECT_EQ(d.Start(1, "bank.example"), TunnelHandshake::kPending);
  EXPECT_EQ(d.sent, "CONNECT bank.example:8443 HTTP/1.0\r\n\r\n");
  d.Start(1, "bank.example", "a", "b");
  EXPECT_EQ(d.sent, "CONNECT bank.example:8443 HTTP/1.0\r\nProxy-Authorization: Basic YTpi\r\n\r\n");
  d.Start(1, "bank.example", "", "b");
  EXPECT_EQ(d.sent, "CONNECT bank.example:8443 HTTP/1.0\r\nProxy-Authorization: Basic OmI=\r\n\r\n");
}

TEST(TunnelHandshakeTest, ConnectRepliesOpenOrRefuseTheTunnel) {
  struct Case { std::string reply; Result result; const char* text, *leftover; } cases[] = {
      {"HTTP/1.0 200 Connection established\r\n\r\nXY", TunnelHandshake::kEstablished, "", "XY"},
      {"HTTP/1.1 200 OK\nProxy-agent: t\n\n", TunnelHandshake::kEstablished, "", ""},
      {"HTTP/1.0 403 Forbidden\r\n\r\n", TunnelHandshake::kRefused, "Firewall error. HTTP/1.0 403 Forbidden.", ""},
      {"HTTP/1.0 200 OK\r\n", TunnelHandshake::kPending, "", ""},
  };
  for (const Case& c : cases) {
    for (bool piecewise : {false, true}) {
      SCOPED_TRACE(c.reply + (piecewise ? " (piecewise)" : ""));
      Driver d;
      d.Start(1, "h");
      EXPECT_EQ(d.Feed(c.reply, piecewise), c.result);
      EXPECT_STREQ(d.h.ErrorText(), c.text);
      EXPECT_EQ(c.result == TunnelHandshake::kEstablished ? d.after : "", c.leftover);
      EXPECT_EQ(d.sent, "");
    }
  }
}

TEST(TunnelHandshakeTest, Socks4RequestAndReplyCodes) {
  Driver d;
  EXPECT_EQ(d.Start(2, "bank.example", "joe"), TunnelHandshake::kPending);
  EXPECT_EQ(Hex(d.sent), "040120fb0a010203" + Hex("joe") + "00");
  struct Case { int code; Result result; const char* text; } cases[] = {
      {90, TunnelHandshake::kEstablished, ""},
      {92, TunnelHandshake::kFailed, "firewall request rejected because identd is not available"},
      {200, TunnelHandshake::kFailed, "unknown firewall error: -56"},  // the byte counts as signed
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.code);
    Driver s;
    s.Start(2, "h");
    std::string reply = std::string("\0", 1) + static_cast<char>(c.code) + std::string(6, '\0');
    EXPECT_EQ(s.Feed(reply.substr(0, 7)), TunnelHandshake::kPending);
    EXPECT_EQ(s.Feed(reply.substr(7) + "after"), c.result);
    EXPECT_STREQ(s.h.ErrorText(), c.text);
    EXPECT_EQ(s.h.Leftover(), c.result == TunnelHandshake::kEstablished ? "after" : "");
  }
  Driver unresolved;
  EXPECT_EQ(unresolved.Start(2, "nowhere.invalid", "", "", nullptr), TunnelHandshake::kFailed);
  EXPECT_STREQ(unresolved.h.ErrorText(), TunnelHandshake::kTextUnresolved);
}

TEST(TunnelHandshakeTest, Socks5NegotiatesMethodAndCredentials) {
  Driver d;
  d.Start(3, "bank.example", "joe", "");
  EXPECT_EQ(Hex(d.sent), "050100");  // a user without password offers no authentication
  d.Start(3, "bank.example", "joe", "pw");
  EXPECT_EQ(Hex(d.sent), "05020002");
  // Method 2: exactly 1, user length, user, password length, password.
  EXPECT_EQ(d.Feed(std::string("\x05\x02", 2)), TunnelHandshake::kPending);
  EXPECT_EQ(Hex(d.sent), "0103" + Hex("joe") + "02" + Hex("pw"));
  EXPECT_EQ(d.Feed(std::string("\x01\x00", 2)), TunnelHandshake::kPending);
  EXPECT_EQ(Hex(d.sent), "050100010a01020320fb");
  EXPECT_EQ(d.Feed(std::string("\x05\x00\x00\x01\x7f\x00\x00\x01\x04\x38" "data", 14)),
            TunnelHandshake::kEstablished);
  EXPECT_EQ(d.h.Leftover(), "data");

  Driver named;  // a name after "*" is left to the proxy to resolve
  named.Start(3, "*bank.example", "", "", nullptr);
  named.Feed(std::string("\x05\x00", 2));
  EXPECT_EQ(Hex(named.sent), "050100030c" + Hex("bank.example") + "20fb");
  // A reply bound to a name is as long as it says.
  EXPECT_EQ(named.Feed(std::string("\x05\x00\x00\x03\x04" "abcd" "\x00", 10)), TunnelHandshake::kPending);
  EXPECT_EQ(named.Feed(std::string("\x50", 1)), TunnelHandshake::kEstablished);
}

TEST(TunnelHandshakeTest, Socks5FailureTexts) {
  // Replies to the greeting, to the credentials if asked, to the connect request (rep; -1: not reached).
  struct Case { std::string method_reply; std::string auth_reply; int rep; const char* text; } cases[] = {
      {std::string("\x05\xff", 2), "", -1, "no acceptable firewall authentication methods"},
      {std::string("\x05\x07", 2), "", -1, "unknown firewall authentication method"},
      {std::string("\x05\x02", 2), std::string("\x01\xfe", 2), -1, "firewall authentication failed: -2"},
      {std::string("\x05\x00", 2), "", 1, "general SOCKS server failure"},
      {std::string("\x05\x00", 2), "", 9, "unknown firewall error: 9"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Driver d;
    d.Start(3, "h", "u", "p");
    Result r = d.Feed(c.method_reply);
    if (!c.auth_reply.empty()) r = d.Feed(c.auth_reply);
    if (c.rep >= 0) r = d.Feed(std::string("\x05", 1) + static_cast<char>(c.rep) + std::string(8, '\0'));
    EXPECT_EQ(r, TunnelHandshake::kFailed);
    EXPECT_STREQ(d.h.ErrorText(), c.text);
  }
  Driver unresolved;
  unresolved.Start(3, "nowhere.invalid", "", "", nullptr);
  EXPECT_EQ(unresolved.Feed(std::string("\x05\x00", 2)), TunnelHandshake::kFailed);
  EXPECT_STREQ(unresolved.h.ErrorText(), TunnelHandshake::kTextUnresolved);
}

// The decoded token after "<word> " in the CONNECT's Proxy-Authorization line.
std::string SentToken(const std::string& request, const std::string& word) {
  const std::string key = "Proxy-Authorization: " + word + " ";
  const size_t at = request.find(key) + key.size();
  ByteString token(request.substr(at, request.find("\r\n", at) - at));
  token.DecodeBase64();
  return std::string(token.View());
}

TEST(TunnelHandshakeTest, NtlmConnectRunsTwoRounds) {
  for (int type : {4, 5}) {
    for (int body : {0, 16}) {
      SCOPED_TRACE(std::to_string(type) + " body " + std::to_string(body));
      const std::string word = type == 4 ? "NTLM" : "Negotiate";
      Driver d;
      EXPECT_EQ(d.Start(type, "bank.example", "CORP\\joe", "pw"), TunnelHandshake::kPending);
      EXPECT_EQ(d.sent.substr(0, 36), "CONNECT bank.example:8443 HTTP/1.0\r\n");
      EXPECT_NE(d.sent.find("\r\nProxy-Connection: Keep-Alive\r\n\r\n"), std::string::npos);
      const std::string negotiate = SentToken(d.sent, word);
      ASSERT_EQ(negotiate.substr(0, 9), std::string("NTLMSSP\0\x01", 9));
      const std::string reply = "HTTP/1.1 407 Proxy Authentication Required\r\nProxy-Authenticate: " + word + " " +
                                Base64(NtlmChallenge()) + "\r\nContent-Length: " + std::to_string(body) +
                                "\r\n\r\n" + std::string("HTTP/1.0 500 x\r\n").substr(0, static_cast<size_t>(body));
      EXPECT_EQ(d.Feed(reply, true), TunnelHandshake::kPending);
      const std::string authenticate = SentToken(d.sent, word);
      ASSERT_EQ(authenticate.substr(0, 9), std::string("NTLMSSP\0\x03", 9));
      EXPECT_NE(authenticate.find(std::string("C\0O\0R\0P\0j\0o\0e\0", 14)), std::string::npos);
      EXPECT_EQ(d.Feed("HTTP/1.1 200 Connection established\r\nVia: p\r\n\r\nrest", true),
                TunnelHandshake::kEstablished);
      EXPECT_EQ(d.after, "rest");
    }
  }
}

TEST(TunnelHandshakeTest, NtlmConnectFailures) {
  Driver first;
  first.Start(4, "h", "u", "p");
  EXPECT_EQ(first.Feed("HTTP/1.0 403 Forbidden\r\n\r\n"), TunnelHandshake::kRefused);
  EXPECT_STREQ(first.h.ErrorText(), "Firewall error: 403 Forbidden");
  EXPECT_STREQ(first.h.ReplyText(), "HTTP/1.0 403 Forbidden");

  Driver second;
  second.Start(4, "h", "u", "p");
  const std::string challenge = Base64(NtlmChallenge());
  second.Feed("HTTP/1.0 407 Auth\r\nProxy-Authenticate: NTLM " + challenge + "\r\n\r\n");
  EXPECT_EQ(second.Feed("HTTP/1.0 407 Auth again\r\n\r\n"), TunnelHandshake::kRefused);
  EXPECT_STREQ(second.h.ErrorText(), "Firewall error: 407 Auth again");
  EXPECT_EQ(second.h.ReplyText(), challenge);

  // A challenge that is not NTLM fails the tunnel with the token's text.
  Driver bad;
  bad.Start(4, "h", "u", "p");
  EXPECT_EQ(bad.Feed("HTTP/1.0 407 Auth\r\nProxy-Authenticate: NTLM " + Base64("NOTNTLM!") + "\r\n\r\n"),
            TunnelHandshake::kFailed);
  EXPECT_STREQ(bad.h.ErrorText(), NtlmAuth::kTextBadSignature);
  EXPECT_EQ(bad.sent, "");
}

}  // namespace
}  // namespace orvelan
