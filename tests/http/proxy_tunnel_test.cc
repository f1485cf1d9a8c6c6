// Exchanges through real proxies on loopback and through a scripted one for refusals and NTLM.
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "support/loopback_server.h"
#include "support/nginx_server.h"
#include "support/proxy_servers.h"
#include "support/test_bytes.h"
#include "support/test_http_client.h"
#include "support/test_pki.h"

namespace orvelan {
namespace {

template <class Base>
class Client : public RecordedClient<Base> {
 public:
  Client() : RecordedClient<Base>(10) {}
  void Firewall(int type, int port, const std::string& user = "", const std::string& password = "") {
    for (const std::string& s : {"FirewallType=" + std::to_string(type), std::string("FirewallHost=127.0.0.1"),
                                 "FirewallPort=" + std::to_string(port), "FirewallUser=" + user,
                                 "FirewallPassword=" + password}) {
      this->Set(s);
    }
  }
  void Proxy(int port, const std::string& user, const std::string& password) {
    for (const std::string& s : {std::string("ProxyServer=127.0.0.1"), "ProxyPort=" + std::to_string(port),
                                 "ProxyUser=" + user, "ProxyPassword=" + password}) {
      this->Set(s);
    }
  }
};
using HttpViaProxy = Client<HttpClient>;

// Answers every request with its own body, keeping the connection while the client does.
LoopbackServer::Script Echo() {
  return [](int fd) {
    for (std::string request; !(request = LoopbackServer::ReadRequest(fd)).empty();) {
      const std::string body = request.substr(request.find("\r\n\r\n") + 4);
      LoopbackServer::WriteAll(fd, "HTTP/1.1 200 OK\r\nContent-Type: application/x-ofx\r\nContent-Length: " +
                                       std::to_string(body.size()) + "\r\n\r\n" + body);
      if (request.find("Connection: close") != std::string::npos) return;
    }
  };
}

// An OFX-sized request body: printable, longer than one 16 KB send piece.
std::string OfxBody() {
  std::string body = "OFXHEADER:100\r\nDATA:OFXSGML\r\n\r\n<OFX>";
  for (char c : test::LcgBytes(7, 24000)) body += static_cast<char>('A' + (static_cast<unsigned char>(c) % 26));
  return body + "</OFX>\r\n";
}

std::string Url(int port, const std::string& host = "127.0.0.1") {
  return "http://" + host + ":" + std::to_string(port) + "/ofx";
}

const char kNtlmUser[] = "CORP\\joe";
const char kNtlmPassword[] = "s3cret";
const char kNtlmAccepted[] = "authenticate domain=CORP user=joe ok=1";

std::unique_ptr<ProxyServer> NtlmProxy() {
  return ProxyServer::Scripted({"--ntlm", "--user", kNtlmUser, "--password", kNtlmPassword});
}

TEST(ProxyTunnelTest, OfxPostGoesThroughEveryFirewallType) {
  LoopbackServer origin(Echo());
  // Name, firewall type (4 and 5 NTLM), proxy, user, password.
  const std::tuple<const char*, int, std::function<std::unique_ptr<ProxyServer>()>, const char*, const char*>
      cases[] = {
          {"SOCKS 4 via danted", 2, [] { return ProxyServer::Dante(1); }, "joe", ""},
          {"SOCKS 5 with password via microsocks", 3, [] { return ProxyServer::Microsocks("sockuser", "sockpass"); },
           "sockuser", "sockpass"},
          {"CONNECT with NTLM", 4, NtlmProxy, kNtlmUser, kNtlmPassword},
          {"CONNECT with Negotiate", 5, NtlmProxy, kNtlmUser, kNtlmPassword},
      };
  const std::string body = OfxBody();
  for (const auto& [name, type, start, user, password] : cases) {
    SCOPED_TRACE(name);
    auto proxy = start();
    ORVELAN_REQUIRE_PROXY(proxy);
    HttpViaProxy client;
    client.Firewall(type, proxy->port(), user, password);
    ASSERT_EQ(client.Post(Url(origin.port()), body), 0) << client.GetLastError() << "\n" << proxy->Log();
    EXPECT_TRUE(client.Body() == body);
    if (type >= 4) {
      EXPECT_NE(proxy->Log().find(kNtlmAccepted), std::string::npos) << proxy->Log();
    }
  }
}

// Plain proxying with Basic gets no second attempt; ProxySSL 3 makes the HTTP
// client open a CONNECT tunnel itself, configured from the proxy settings.
TEST(ProxyTunnelTest, PlainProxyAndProxySslTunnelThroughTinyproxy) {
  LoopbackServer origin(Echo());
  const std::string body = OfxBody();
  auto proxy = ProxyServer::Tinyproxy(true);
  ORVELAN_REQUIRE_PROXY(proxy);
  HttpViaProxy client;
  client.Proxy(proxy->port(), "proxyuser", "proxypass");
  ASSERT_EQ(client.Post(Url(origin.port()), body), 0) << client.GetLastError() << "\n" << proxy->Log();
  EXPECT_TRUE(client.Body() == body);
  client.Set("ProxyPassword=wrong");
  EXPECT_EQ(client.Post(Url(origin.port()), body), 151);

  HttpViaProxy tunnel;
  tunnel.Proxy(proxy->port(), "proxyuser", "proxypass");
  tunnel.Set("ProxySSL=3");
  ASSERT_EQ(tunnel.Post(Url(origin.port()), body), 0) << tunnel.GetLastError() << "\n" << proxy->Log();
  tunnel.Set("ProxySSL=0");  // plain proxying again: the tunnel goes
  ASSERT_EQ(tunnel.Post(Url(origin.port()), body), 0) << tunnel.GetLastError();
  EXPECT_EQ(tunnel.Get("FirewallType"), "0");
  tunnel.Set("ProxySSL=3");
  tunnel.Set("ProxyAuthScheme=1");
  EXPECT_EQ(tunnel.Post(Url(origin.port()), body), 153);
  EXPECT_STREQ(tunnel.GetLastError(), "Unknown proxy authentication scheme.");
}

// TLS runs inside the tunnel, to the server named in the URL.
TEST(ProxyTunnelTest, TlsThroughConnect) {
  ORVELAN_REQUIRE_NGINX(nginx);
  auto proxy = ProxyServer::Tinyproxy(false);
  ORVELAN_REQUIRE_PROXY(proxy);
  Client<HttpsClient> client;
  client.Set("OpenSSLCAFile=" + TestPki::Get().Path("ca.pem"));
  client.Firewall(1, proxy->port());
  const std::string url = "https://localhost:" + std::to_string(nginx->https_port) + "/post4k";
  ASSERT_EQ(client.Post(url, "<OFX/>"), 0) << client.GetLastError() << proxy->Log();
  EXPECT_EQ(client.Body(), std::string(4096, 'r'));
}

TEST(ProxyTunnelTest, RefusalsGiveCode118AndTheirTexts) {
  LoopbackServer origin(Echo());
  const std::tuple<const char*, int, std::vector<std::string>, std::string, const char*> cases[] = {
      {"CONNECT 403", 1, {}, "refuse403.test", "Firewall error. HTTP/1.0 403 Refused by script."},
      {"proxy closes without a reply", 1, {}, "close.test", "Firewall host disconnected before the tunnel was open."},
      {"NTLM CONNECT 403", 4, {"--ntlm"}, "refuse403.test", "Firewall error: 403 Refused by script"},
      {"NTLM challenge with a bad signature", 4, {"--ntlm", "--user", "u", "--password", "p"}, "badsig.test",
       "Could not process server's NTLM authentication token: invalid signature."},
      {"NTLM second 407", 4, {"--ntlm", "--user", "u", "--password", "other"}, "127.0.0.1",
       "Firewall error: 407 Proxy Authentication Required"},
  };
  for (const auto& [name, type, arguments, host, text] : cases) {
    SCOPED_TRACE(name);
    auto proxy = ProxyServer::Scripted(arguments);
    ORVELAN_REQUIRE_PROXY(proxy);
    HttpViaProxy client;
    client.Firewall(type, proxy->port(), "u", "p");
    EXPECT_EQ(client.Post(Url(origin.port(), host), "<OFX/>"), 118) << proxy->Log();
    EXPECT_STREQ(client.GetLastError(), text);
  }
}

// danted refuses by its own rules: a blocked port, and a port where nothing listens.
TEST(ProxyTunnelTest, DanteRefusals) {
  const int blocked = UnusedPort();
  auto proxy = ProxyServer::Dante(blocked);
  ORVELAN_REQUIRE_PROXY(proxy);
  const std::tuple<int, int, const char*> cases[] = {
      {3, blocked, "connection not allowed by ruleset"},
      {3, UnusedPort(), "connection refused"},
  };
  for (const auto& [type, port, text] : cases) {
    HttpViaProxy client;
    client.Firewall(type, proxy->port());
    EXPECT_EQ(client.Post(Url(port), "<OFX/>"), 118);
    EXPECT_STREQ(client.GetLastError(), text);
  }
}

// Plain proxying with NTLM: Negotiate without the body, the challenge, then Authenticate with it.
TEST(ProxyTunnelTest, NtlmProxyGetsOneRetry) {
  LoopbackServer origin(Echo());
  const std::tuple<const char*, const char*, std::string, int, const char*> cases[] = {
      {"right password", kNtlmPassword, "127.0.0.1", 0, kNtlmAccepted},
      {"wrong password: a second 407 ends it", "wrong", "127.0.0.1", 151, "authenticate domain=CORP user=joe ok=0"},
      {"bad challenge: the retry goes without header", kNtlmPassword, "badsig.test", 151, nullptr},
  };
  const std::string body = OfxBody();
  for (const auto& [name, password, host, rc, logged] : cases) {
    SCOPED_TRACE(name);
    auto proxy = NtlmProxy();
    ORVELAN_REQUIRE_PROXY(proxy);
    HttpViaProxy client;
    client.Set("ProxyAuthScheme=4");
    EXPECT_EQ(client.Get("KeepAlive"), "True");
    client.Proxy(proxy->port(), kNtlmUser, password);
    EXPECT_EQ(client.Post(Url(origin.port(), host), body), rc) << client.GetLastError() << proxy->Log();
    // The answered 407 leaves no text behind.
    EXPECT_STREQ(client.GetLastError(), rc == 0 ? "" : "HTTP protocol error. 407 Proxy Authentication Required.");
    EXPECT_EQ(client.Body() == body, rc == 0);
    const std::string log = proxy->Log();
    EXPECT_EQ(log.find(logged != nullptr ? logged : "authenticate") != std::string::npos, logged != nullptr) << log;
    const std::string request = "POST " + Url(origin.port(), host);
    EXPECT_NE(log.find(request + " body=0 proxy-authorization=NTLM "), std::string::npos) << log;
    const std::string second = request + " body=" + std::to_string(body.size()) + " proxy-authorization=";
    EXPECT_NE(log.find(second + (logged == nullptr ? "\n" : "NTLM ")), std::string::npos) << log;
  }
}

}  // namespace
}  // namespace orvelan
