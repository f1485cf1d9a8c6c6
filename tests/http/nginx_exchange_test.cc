// Exchanges with real servers on loopback: nginx, plain and TLS, and openssl s_server.
#include <algorithm>
#include <chrono>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>

#include <gtest/gtest.h>

#include "support/loopback_server.h"
#include "support/nginx_server.h"
#include "support/test_http_client.h"
#include "support/test_pki.h"

namespace orvelan {
namespace {

const char kOfxAnswer[] = "<OFX><SIGNONMSGSRSV1>ok</SIGNONMSGSRSV1></OFX>\n";

class Client : public TestHttpsClient {
 public:
  explicit Client(bool trust_test_ca = false) : TestHttpsClient(10) {
    Set("MaxTransferredData=0");
    if (trust_test_ca) Set("OpenSSLCAFile=" + TestPki::Get().Path("ca.pem"));
  }
};

// A kept connection carries gzip-ed chunked answers one after another.
TEST(NginxExchangeTest, PlainPostsOverOneKeptConnection) {
  ORVELAN_REQUIRE_NGINX(nginx);
  Client c;
  c.Set("KeepAlive=true");
  c.Set("AllowHTTPCompression=true");
  int port = 0;
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(c.Post(LocalUrl(nginx->http_port, "/post4k"), "abc"), 0) << c.GetLastError();
    EXPECT_NE(c.RawResponseHeaders().find("Content-Encoding: gzip\r\n"), std::string::npos);
    EXPECT_NE(c.RawResponseHeaders().find("Transfer-Encoding: chunked\r\n"), std::string::npos);
    EXPECT_EQ(c.Body(), std::string(4096, 'r'));
    if (i == 0) port = c.LocalPort();
    EXPECT_EQ(c.LocalPort(), port);
  }
  c.SetContentType("application/x-ofx");
  ASSERT_EQ(c.Post(LocalUrl(nginx->http_port), "<OFX></OFX>"), 0) << c.GetLastError();
  EXPECT_EQ(c.Body(), kOfxAnswer);
  EXPECT_STREQ(c.ResponseContentType(), "application/x-ofx");
  c.Connect(false);
}

TEST(NginxExchangeTest, TrustedServerOverTlsGetsTheHostNameBySni) {
  ORVELAN_REQUIRE_NGINX(nginx);
  Client c(true);
  ASSERT_EQ(c.PostToURL(("https://localhost:" + std::to_string(nginx->https_port) + "/sni").c_str()), 0) << c.GetLastError();
  EXPECT_EQ(c.Body(), "localhost");
  EXPECT_EQ(c.events.last_cert_status, "OK");
  // The certificate as the server sent it: the PEM file's base64, on one line.
  const char* data = nullptr;
  int32_t length = 0;
  c.SSLServerCertEncoded(data, length);
  std::string sent(data, static_cast<size_t>(length)), pem, line;
  std::istringstream file(TestPki::Get().Read("server.pem"));
  while (std::getline(file, line)) pem += line.rfind("-----", 0) == 0 ? "" : line;
  sent.erase(std::remove_if(sent.begin(), sent.end(), [](char ch) { return ch == '\r' || ch == '\n'; }), sent.end());
  EXPECT_EQ(sent, pem);
  EXPECT_TRUE(c.events.Saw("SSLStatus(Secure channel established.)"));
  EXPECT_TRUE(c.events.Saw("ServerAuth(OK,1)"));
}

// An unknown CA refused, or accepted by the host, is FaultServerTest's and
// WrapperTest's; these are the decisions only a trusted chain can show.
TEST(NginxExchangeTest, CertificateDecision) {
  ORVELAN_REQUIRE_NGINX(nginx);
  // Name, port, trusting the test CA, the host's decision (-1 leaves the library's), accepting other.pem,
  // result, certificate status.
  const std::tuple<const char*, int, bool, int, bool, int, const char*> cases[] = {
      {"wrong host", nginx->other_host_port, true, -1, false, 276, "IP address mismatch"},
      {"good chain, host refuses", nginx->https_port, true, 0, false, 276, "OK"},
      {"accepted certificate without CA", nginx->other_host_port, false, -1, true, 0, "OK"},
  };
  for (const auto& [name, port, with_ca, host_decision, accept_other_cert, rc, status] : cases) {
    SCOPED_TRACE(name);
    Client c(with_ca);
    if (accept_other_cert) {
      const std::string pem = TestPki::Get().Read("other.pem");
      c.SetSSLAcceptServerCertEncoded(pem.data(), static_cast<int32_t>(pem.size()));
    }
    c.events.accept_certificate = host_decision;
    EXPECT_EQ(c.PostToURL(LocalUrl(port, "/ofx", "https").c_str()), rc);
    EXPECT_EQ(c.events.last_cert_status, status);
    if (rc != 0) {
      EXPECT_STREQ(c.GetLastError(), "Server certificate verification failed. Connection aborted.");
      EXPECT_TRUE(c.events.Saw("SSLStatus(Server certificate verification failed. Aborting connection...)"));
    } else {
      EXPECT_EQ(c.Body(), kOfxAnswer);
    }
    EXPECT_EQ(c.SocketHandle(), -1);
  }
}

// With a negative Timeout the request returns at once, and the handshake, the
// request and the body follow as the host pumps the events.
TEST(NginxExchangeTest, LargeBodyOverTlsAsynchronously) {
  ORVELAN_REQUIRE_NGINX(nginx);
  Client c(true);
  c.SetTimeout(-1);
  ASSERT_EQ(c.Post(LocalUrl(nginx->https_port, "/files/1m.bin", "https"), "x"), 0) << c.GetLastError();
  EXPECT_EQ(c.Body(), "");
  for (int i = 0; i < 5000 && c.SocketHandle() != -1; ++i) {
    c.ProcessEvents(0);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  EXPECT_EQ(c.SocketHandle(), -1);
  EXPECT_EQ(c.StatusCode(), 200);
  EXPECT_EQ(c.Body().size(), 1048576u);
}

TEST(NginxExchangeTest, ClientCertificateIsPresented) {
  ORVELAN_REQUIRE_NGINX(nginx);
  // Every store kind loads its key in TlsChannelTest.CertificateStores; one reaches the server here.
  Client c(true);
  const std::string store = TestPki::Get().Path("client.p12");
  c.SetSSLCertStoreType(2);
  ASSERT_EQ(c.SetSSLCertStore(store.data(), static_cast<int32_t>(store.size())), 0);
  c.SetSSLCertStorePassword("secret");
  ASSERT_EQ(c.SetSSLCertSubject("*"), 0) << c.GetLastError();
  ASSERT_EQ(c.PostToURL(LocalUrl(nginx->https_port, "/whoami", "https").c_str()), 0) << c.GetLastError();
  EXPECT_EQ(c.Body(), "CN=Orvelan Client");
}

// A server that speaks nothing newer than TLS 1.1 is refused during the handshake.
TEST(NginxExchangeTest, OldProtocolVersionsAreRefused) {
  const std::string openssl = FindProgram("openssl");
  const TestPki& pki = TestPki::Get();
  if (openssl.empty() || !pki.ok()) {
    if (PeersRequired()) FAIL() << "openssl is required";
    GTEST_SKIP() << "openssl not available";
  }
  const int port = UnusedPort();
  PeerProcess server({openssl, "s_server", "-www", "-tls1_1", "-cipher", "DEFAULT@SECLEVEL=0", "-cert",
                      pki.Path("server.pem"), "-key", pki.Path("server.key"), "-accept",
                      "127.0.0.1:" + std::to_string(port)},
                     pki.Path("s_server.log"));
  ASSERT_TRUE(server.Ready({port})) << pki.Read("s_server.log");
  Client c(true);
  EXPECT_NE(c.PostToURL(LocalUrl(port, "/ofx", "https").c_str()), 0);
  const std::string error = c.GetLastError();
  EXPECT_EQ(error.rfind("Error in making an SSL Connection\n SSL Library Message:", 0), 0u) << error;
  EXPECT_NE(error.find("protocol"), std::string::npos) << error;
}

}  // namespace
}  // namespace orvelan
