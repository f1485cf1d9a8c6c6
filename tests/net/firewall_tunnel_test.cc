// The tunnel inside a live TCP connection: what the layers above see before,
// during and after the handshake. Proxies here are scripted loopback servers.
#include "net/firewall_tunnel.h"

#include <string>

#include <gtest/gtest.h>

#include "net/channel_probe.h"
#include "support/loopback_server.h"

namespace orvelan {
namespace {

int OpenThrough(Probe& p, int type, int proxy_port, const char* user = "", int seconds = 5) {
  p.Set("FirewallType=" + std::to_string(type));
  p.Set("FirewallHost=127.0.0.1");
  p.Set("FirewallPort=" + std::to_string(proxy_port));
  p.Set(std::string("FirewallUser=") + user);
  p.Set("FirewallPassword=pw");
  p.SetRemoteHost("127.0.0.1");
  p.SetRemotePort(4321);
  p.SetTimeout(seconds);
  p.StartDeadline();
  return p.ConnectAndWait();
}

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
  ASSERT_EQ(OpenThrough(p, 2, proxy.port(), "joe"), 0) << p.GetLastError();
  EXPECT_TRUE(p.IsConnected());
  EXPECT_EQ(p.WaitUntil([&] { return p.received == "HELLO|WORLD|"; }), 0) << p.received;
  EXPECT_TRUE(p.events.Saw("Status(Firewall connection complete.,0)"));
}

// The NTLM exchange reads lines at CR LF and gives the owner's line end back.
TEST(FirewallTunnelTest, NtlmHandshakeRestoresTheLineEnd) {
  LoopbackServer proxy([](int fd) {
    LoopbackServer::ReadUntil(fd, "\r\n\r\n");
    LoopbackServer::WriteAll(fd, "HTTP/1.1 407 Auth\r\nProxy-Authenticate: NTLM " + Base64(NtlmChallenge()) +
                                     "\r\nContent-Length: 4\r\n\r\nno\r\n");
    LoopbackServer::ReadUntil(fd, "\r\n\r\n");
    LoopbackServer::WriteAll(fd, "HTTP/1.1 200 OK\r\n\r\n");
    LoopbackServer::WriteAll(fd, "A\nB\n");
    LoopbackServer::ReadUntil(fd, "never");
  });
  Probe p;
  p.SetEOL("\n");
  ASSERT_EQ(OpenThrough(p, 4, proxy.port(), "CORP\\joe"), 0) << p.GetLastError();
  EXPECT_EQ(p.WaitUntil([&] { return p.received == "A|B|"; }), 0) << p.received;
}

TEST(FirewallTunnelTest, FailureReportsErrorConnectAndDisconnects) {
  LoopbackServer proxy([](int fd) {
    LoopbackServer::ReadUntil(fd, std::string(1, '\0'));
    LoopbackServer::WriteAll(fd, std::string("\0\x5c\0\0\0\0\0\0", 8));
    LoopbackServer::ReadUntil(fd, "never");
  });
  Probe p;
  EXPECT_EQ(OpenThrough(p, 2, proxy.port()), 118);
  EXPECT_STREQ(p.GetLastError(), "firewall request rejected because identd is not available");
  EXPECT_EQ(p.errors, "118:firewall request rejected because identd is not available|");
  EXPECT_FALSE(p.IsConnected());
  EXPECT_EQ(p.SocketHandle(), -1);
}

}  // namespace
}  // namespace orvelan
