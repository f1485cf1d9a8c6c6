// The tunnel inside a live TCP connection: what the layers above see before,
// during and after the handshake. Proxies here are scripted loopback servers.
#include "net/firewall_tunnel.h"

#include <string>

#include <gtest/gtest.h>

#include "net/transfer_channel.h"
#include "support/loopback_server.h"
#include "support/recording_events.h"

namespace orvelan {
namespace {

class Probe : public TransferChannel {
 public:
  Probe() {
    InitDefaults();
    SetEventSink(&events);
    SetTimeout(5);
  }
  RecordingEvents events;
  std::string received;  // lines end with '|'
  std::string errors;    // "code:text|" per OnError

  int Set(const std::string& setting) {
    const char* out = nullptr;
    return Config(setting.c_str(), out);
  }
  int Open(int type, int proxy_port, const char* user = "") {
    Set("FirewallType=" + std::to_string(type));
    Set("FirewallHost=127.0.0.1");
    Set("FirewallPort=" + std::to_string(proxy_port));
    Set(std::string("FirewallUser=") + user);
    Set("FirewallPassword=pw");
    SetRemoteHost("127.0.0.1");
    SetRemotePort(4321);
    StartDeadline();
    return ConnectAndWait();
  }
  int WaitFor(const std::string& text) {
    StartDeadline();
    while (received != text) {
      if (int rc = WaitCycle(); rc != 0) return rc;
    }
    return 0;
  }

 protected:
  void FireDataIn(const char* data, int32_t length, bool end_of_line) override {
    received.append(data, static_cast<size_t>(length));
    if (end_of_line) received += '|';
  }
  void OnError(int code, const char* text) override { errors += std::to_string(code) + ":" + text + "|"; }
};

// Bytes that follow the proxy's reply in the same segment belong to the
// tunnelled stream and are cut with the owner's line end.
TEST(FirewallTunnelTest, BytesAfterTheSocksReplyReachTheOwner) {
  LoopbackServer proxy([](int fd) {
    LoopbackServer::ReadUntil(fd, std::string(1, '\0'));
    LoopbackServer::WriteAll(fd, std::string("\0\x5a\0\0\0\0\0\0", 8) + "HELLO\r\nWOR");
    LoopbackServer::WriteAll(fd, "LD\r\n");
    LoopbackServer::ReadUntil(fd, "never");
  });
  Probe p;
  p.SetEOL("\r\n");
  ASSERT_EQ(p.Open(2, proxy.port(), "joe"), 0) << p.GetLastError();
  EXPECT_TRUE(p.IsConnected());
  EXPECT_EQ(p.WaitFor("HELLO|WORLD|"), 0) << p.received;
  EXPECT_TRUE(p.events.Saw("Status(Firewall connection complete.,0)"));
}

std::string ChallengeBase64() {
  std::string m("NTLMSSP\0\x02\0\0\0\0\0\0\0\0\0\0\0\x01\x82\x08\0" "\x01\x23\x45\x67\x89\xab\xcd\xef", 32);
  m += std::string(16, '\0');
  ByteString out;
  out.AppendBase64(m.data(), static_cast<int32_t>(m.size()), false);
  return std::string(out.View());
}

// The NTLM exchange reads lines at CR LF and gives the owner's line end back.
TEST(FirewallTunnelTest, NtlmHandshakeRestoresTheLineEnd) {
  LoopbackServer proxy([](int fd) {
    LoopbackServer::ReadUntil(fd, "\r\n\r\n");
    LoopbackServer::WriteAll(fd, "HTTP/1.1 407 Auth\r\nProxy-Authenticate: NTLM " + ChallengeBase64() +
                                     "\r\nContent-Length: 4\r\n\r\nno\r\n");
    LoopbackServer::ReadUntil(fd, "\r\n\r\n");
    LoopbackServer::WriteAll(fd, "HTTP/1.1 200 OK\r\n\r\n");
    LoopbackServer::WriteAll(fd, "A\nB\n");
    LoopbackServer::ReadUntil(fd, "never");
  });
  Probe p;
  p.SetEOL("\n");
  ASSERT_EQ(p.Open(4, proxy.port(), "CORP\\joe"), 0) << p.GetLastError();
  EXPECT_EQ(p.WaitFor("A|B|"), 0) << p.received;
}

TEST(FirewallTunnelTest, FailureReportsErrorConnectAndDisconnects) {
  LoopbackServer proxy([](int fd) {
    LoopbackServer::ReadUntil(fd, std::string(1, '\0'));
    LoopbackServer::WriteAll(fd, std::string("\0\x5c\0\0\0\0\0\0", 8));
    LoopbackServer::ReadUntil(fd, "never");
  });
  Probe p;
  EXPECT_EQ(p.Open(2, proxy.port()), 118);
  EXPECT_STREQ(p.GetLastError(), "firewall request rejected because identd is not available");
  EXPECT_EQ(p.errors, "118:firewall request rejected because identd is not available|");
  EXPECT_FALSE(p.IsConnected());
  EXPECT_EQ(p.SocketHandle(), -1);
}

// A type without a handshake never lets the connection count as connected.
TEST(FirewallTunnelTest, UnknownTypeEndsByTimeout) {
  LoopbackServer proxy([](int fd) { LoopbackServer::ReadUntil(fd, "never"); });
  Probe p;
  p.SetTimeout(1);
  EXPECT_EQ(p.Open(6, proxy.port()), 301);
  EXPECT_STREQ(p.GetLastError(), "Timeout.");
}

}  // namespace
}  // namespace orvelan
