// Exchanges with a real server: nginx on loopback, plain and TLS.
#include <dirent.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "http/https_client.h"
#include "support/loopback_server.h"
#include "support/nginx_server.h"
#include "support/recording_events.h"
#include "support/test_pki.h"

namespace orvelan {
namespace {

class Client : public HttpsClient {
 public:
  explicit Client(bool trust_test_ca = false) {
    InitDefaults();
    SetEventSink(&events);
    SetTimeout(10);
    max_transferred_data_ = 0;
    if (trust_test_ca) Set("OpenSSLCAFile=" + TestPki::Get().Path("ca.pem"));
  }
  int Set(const std::string& setting) {
    const char* out = nullptr;
    return Config(setting.c_str(), out);
  }
  std::string Body() const { return std::string(TransferredData()); }
  std::string Header(const std::string& name) const {
    for (const auto& [n, v] : ResponseHeaders()) {
      if (n == name) return v;
    }
    return "";
  }
  std::string ServerCert() {
    const char* data = nullptr;
    int32_t length = 0;
    SSLServerCertEncoded(data, length);
    return std::string(data, static_cast<size_t>(length));
  }
  RecordingEvents events;
};

std::string HttpUrl(const NginxServer* n, const char* path) {
  return "http://127.0.0.1:" + std::to_string(n->http_port) + path;
}
std::string HttpsUrl(int port, const char* path, const char* host = "127.0.0.1") {
  return std::string("https://") + host + ":" + std::to_string(port) + path;
}

// The base64 body of a PEM file, on one line.
std::string PemBody(const std::string& pem) {
  std::string out;
  for (size_t at = 0; at < pem.size();) {
    size_t end = pem.find('\n', at);
    if (end == std::string::npos) end = pem.size();
    if (pem.compare(at, 5, "-----") != 0) out += pem.substr(at, end - at);
    at = end + 1;
  }
  return out;
}

int OpenDescriptors() {
  int count = 0;
  if (DIR* dir = opendir("/proc/self/fd")) {
    while (readdir(dir) != nullptr) ++count;
    closedir(dir);
  }
  return count;
}

std::string OneLine(std::string text) {
  std::string out;
  for (char c : text) {
    if (c != '\n' && c != '\r') out += c;
  }
  return out;
}

TEST(NginxExchangeTest, PlainPost) {
  ORVELAN_REQUIRE_NGINX(nginx);
  Client c;
  c.SetContentType("application/x-ofx");
  c.SetPostData("<OFX></OFX>", 11);
  ASSERT_EQ(c.PostToURL(HttpUrl(nginx, "/ofx").c_str()), 0) << c.GetLastError();
  EXPECT_EQ(c.Body(), "<OFX><SIGNONMSGSRSV1>ok</SIGNONMSGSRSV1></OFX>\n");
  EXPECT_STREQ(c.ResponseContentType(), "application/x-ofx");
}

TEST(NginxExchangeTest, NotFoundIs151) {
  ORVELAN_REQUIRE_NGINX(nginx);
  Client c;
  EXPECT_EQ(c.PostToURL(HttpUrl(nginx, "/missing").c_str()), 151);
  EXPECT_STREQ(c.GetLastError(), "HTTP protocol error. 404 Not Found.");
}

TEST(NginxExchangeTest, GzipChunkedBodyIsInflated) {
  ORVELAN_REQUIRE_NGINX(nginx);
  Client c;
  c.Set("AllowHTTPCompression=true");
  c.SetPostData("x", 1);
  ASSERT_EQ(c.PostToURL(HttpUrl(nginx, "/post4k").c_str()), 0) << c.GetLastError();
  EXPECT_EQ(c.Header("Content-Encoding"), "gzip");
  EXPECT_EQ(c.Header("Transfer-Encoding"), "chunked");
  EXPECT_EQ(c.Body(), std::string(4096, 'r'));
}

TEST(NginxExchangeTest, KeepAliveKeepsOneConnection) {
  ORVELAN_REQUIRE_NGINX(nginx);
  Client c;
  c.Set("KeepAlive=true");
  int port = 0;
  for (int i = 0; i < 5; ++i) {
    c.SetPostData("abc", 3);
    ASSERT_EQ(c.PostToURL(HttpUrl(nginx, "/post4k").c_str()), 0) << c.GetLastError();
    EXPECT_EQ(c.Body().size(), 4096u);
    if (i == 0) port = c.LocalPort();
    EXPECT_EQ(c.LocalPort(), port);
  }
  c.Connect(false);
}

TEST(NginxExchangeTest, TrustedServerOverTls) {
  ORVELAN_REQUIRE_NGINX(nginx);
  const TestPki& pki = TestPki::Get();
  Client c(true);
  ASSERT_EQ(c.PostToURL(HttpsUrl(nginx->https_port, "/ofx").c_str()), 0) << c.GetLastError();
  EXPECT_EQ(c.Body(), "<OFX><SIGNONMSGSRSV1>ok</SIGNONMSGSRSV1></OFX>\n");
  EXPECT_EQ(c.events.last_cert_status, "OK");
  EXPECT_EQ(OneLine(c.ServerCert()), PemBody(pki.Read("server.pem")));
  for (const char* status : {"SSLStatus(Socket connection established.)",
                             "SSLStatus(Starting to establish secure channel.)",
                             "SSLStatus(Secure channel established.)", "SSLStatus(SSL connection established.)",
                             "ServerAuth(OK,1)"}) {
    EXPECT_TRUE(c.events.Saw(status)) << status;
  }
}

TEST(NginxExchangeTest, SniCarriesTheHostName) {
  ORVELAN_REQUIRE_NGINX(nginx);
  Client c(true);
  ASSERT_EQ(c.PostToURL(HttpsUrl(nginx->https_port, "/sni", "localhost").c_str()), 0) << c.GetLastError();
  EXPECT_EQ(c.Body(), "localhost");
}

struct CertCase {
  const char* name;
  int port_kind;  // 0 good, 1 expired, 2 other host
  bool with_ca;
  int host_decision;  // -1 leaves the library's
  bool accept_other_cert;
  int rc;
  const char* status;
};

TEST(NginxExchangeTest, CertificateDecision) {
  ORVELAN_REQUIRE_NGINX(nginx);
  const TestPki& pki = TestPki::Get();
  const CertCase cases[] = {
      {"unknown CA", 0, false, -1, false, 276, "unable to verify the first certificate"},
      {"unknown CA, host accepts", 0, false, 1, false, 0, "unable to verify the first certificate"},
      {"expired", 1, true, -1, false, 276, "certificate has expired"},
      {"wrong host", 2, true, -1, false, 276, "IP address mismatch"},
      {"wrong host, host accepts", 2, true, 1, false, 0, "IP address mismatch"},
      {"good chain, host refuses", 0, true, 0, false, 276, "OK"},
      {"accepted certificate without CA", 2, false, -1, true, 0, "OK"},
  };
  for (const CertCase& k : cases) {
    SCOPED_TRACE(k.name);
    Client c(k.with_ca);
    if (k.accept_other_cert) {
      const std::string pem = pki.Read("other.pem");
      c.SetSSLAcceptServerCertEncoded(pem.data(), static_cast<int32_t>(pem.size()));
    }
    c.events.accept_certificate = k.host_decision;
    const int port = k.port_kind == 0 ? nginx->https_port : k.port_kind == 1 ? nginx->expired_port
                                                                              : nginx->other_host_port;
    EXPECT_EQ(c.PostToURL(HttpsUrl(port, "/ofx").c_str()), k.rc);
    EXPECT_EQ(c.events.last_cert_status, k.status);
    if (k.rc != 0) {
      EXPECT_STREQ(c.GetLastError(), "Server certificate verification failed. Connection aborted.");
      EXPECT_TRUE(c.events.Saw("SSLStatus(Server certificate verification failed. Aborting connection...)"));
    } else {
      EXPECT_EQ(c.Body(), "<OFX><SIGNONMSGSRSV1>ok</SIGNONMSGSRSV1></OFX>\n");
    }
    EXPECT_EQ(c.SocketHandle(), -1);
  }
}

TEST(NginxExchangeTest, LargeBodyOverTls) {
  ORVELAN_REQUIRE_NGINX(nginx);
  Client c(true);
  c.SetPostData("x", 1);
  ASSERT_EQ(c.PostToURL(HttpsUrl(nginx->https_port, "/files/1m.bin").c_str()), 0) << c.GetLastError();
  EXPECT_EQ(c.Body().size(), 1048576u);
}

// A negative Timeout over TLS: the request returns at once, the handshake,
// the request and the body follow as the host pumps the events.
TEST(NginxExchangeTest, AsynchronousExchangeOverTls) {
  ORVELAN_REQUIRE_NGINX(nginx);
  Client c(true);
  c.SetTimeout(-1);
  c.SetPostData("x", 1);
  ASSERT_EQ(c.PostToURL(HttpsUrl(nginx->https_port, "/files/1m.bin").c_str()), 0) << c.GetLastError();
  EXPECT_EQ(c.Body(), "");
  for (int i = 0; i < 5000 && c.SocketHandle() != -1; ++i) {
    c.ProcessEvents(0);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  EXPECT_EQ(c.SocketHandle(), -1);
  EXPECT_EQ(c.StatusCode(), 200);
  EXPECT_EQ(c.Body().size(), 1048576u);
  EXPECT_TRUE(c.events.Saw("SSLStatus(SSL connection established.)"));
}

TEST(NginxExchangeTest, ClientCertificateIsPresented) {
  ORVELAN_REQUIRE_NGINX(nginx);
  const TestPki& pki = TestPki::Get();
  for (int store_type : {2, 6, 7}) {
    SCOPED_TRACE(store_type);
    Client c(true);
    const std::string store = store_type == 2   ? pki.Path("client.p12")
                              : store_type == 6 ? pki.Path("client_both.pem")
                                                : pki.Read("client_both.pem");
    c.SetSSLCertStoreType(store_type);
    ASSERT_EQ(c.SetSSLCertStore(store.data(), static_cast<int32_t>(store.size())), 0);
    c.SetSSLCertStorePassword("secret");
    ASSERT_EQ(c.SetSSLCertSubject("*"), 0) << c.GetLastError();
    ASSERT_EQ(c.PostToURL(HttpsUrl(nginx->https_port, "/whoami").c_str()), 0) << c.GetLastError();
    EXPECT_EQ(c.Body(), "CN=Orvelan Client");
  }
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
  const int rc = c.PostToURL(HttpsUrl(port, "/ofx").c_str());
  EXPECT_NE(rc, 0);
  const std::string error = c.GetLastError();
  EXPECT_EQ(error.rfind("Error in making an SSL Connection\n SSL Library Message:", 0), 0u) << error;
  EXPECT_NE(error.find("protocol"), std::string::npos) << error;
  EXPECT_FALSE(c.events.Saw("SSLStatus(Secure channel established.)"));
  EXPECT_EQ(c.SocketHandle(), -1);
}

TEST(NginxExchangeTest, RepeatedTlsExchangesLeaveNoDescriptorBehind) {
  ORVELAN_REQUIRE_NGINX(nginx);
  Client c(true);
  const std::string url = HttpsUrl(nginx->https_port, "/ofx");
  ASSERT_EQ(c.PostToURL(url.c_str()), 0) << c.GetLastError();
  const int before = OpenDescriptors();
  for (int i = 0; i < 200; ++i) {
    ASSERT_EQ(c.PostToURL(url.c_str()), 0) << i << ": " << c.GetLastError();
  }
  EXPECT_EQ(OpenDescriptors(), before);
}

}  // namespace
}  // namespace orvelan
