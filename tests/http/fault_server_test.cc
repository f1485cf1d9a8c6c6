// The HTTP client against tests/support/fault_server.py, a separate server
// process that gives the answers real servers will not give on purpose.
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "support/loopback_server.h"
#include "support/peer_process.h"
#include "support/test_http_client.h"
#include "support/test_pki.h"

namespace orvelan {
namespace {

long StatusKb(const std::string& field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.compare(0, field.size(), field) == 0) return std::stol(line.substr(field.size()));
  }
  return -1;
}

// The fault server with every listener: plain faults by path, the same over
// TLS with a good, an expired and a self-signed certificate, a listener that
// never answers and one that never accepts. Started once per binary.
struct FaultServer {
  int plain = UnusedPort(), tls = UnusedPort(), expired = UnusedPort(), self_signed = UnusedPort(),
      silent = UnusedPort(), unaccepted = UnusedPort();
  std::unique_ptr<PeerProcess> process;
  std::string log = TestPki::Get().Path("fault_server.log");

  static FaultServer* Shared(std::string& why) {
    static std::unique_ptr<FaultServer> server;  // stopped at exit
    static std::string failure;
    if (server == nullptr && failure.empty()) {
      std::string script = __FILE__;
      script.replace(script.rfind("http/"), std::string::npos, "support/fault_server.py");
      const std::string python = FindProgram("python3");
      const TestPki& pki = TestPki::Get();
      if (python.empty() || !pki.ok() || access(script.c_str(), R_OK) != 0) {
        failure = "python3, openssl and " + script + " are required";
      } else {
        auto s = std::make_unique<FaultServer>();
        const auto tls = [&](int port, const std::string& cert) {
          return std::vector<std::string>{"--tls", std::to_string(port), pki.Path(cert + ".pem"), pki.Path(cert + ".key")};
        };
        std::vector<std::string> argv = {python, script, std::to_string(s->plain), "--silent", std::to_string(s->silent),
                                         "--unaccepted", std::to_string(s->unaccepted)};
        for (const auto& more : {tls(s->tls, "server"), tls(s->expired, "expired"), tls(s->self_signed, "selfsigned")})
          argv.insert(argv.end(), more.begin(), more.end());
        s->process = std::make_unique<PeerProcess>(argv, s->log);
        if (s->process->Ready({s->plain, s->tls, s->expired, s->self_signed, s->silent})) {
          server = std::move(s);
        } else {
          failure = "fault server did not start; see " + s->log;
        }
      }
    }
    why = failure;
    return server.get();
  }
};

#define ORVELAN_REQUIRE_FAULT_SERVER(var)                      \
  std::string why;                                             \
  FaultServer* var = FaultServer::Shared(why);                 \
  if (var == nullptr) {                                        \
    if (PeersRequired()) FAIL() << why;                        \
    GTEST_SKIP() << "fault server not available: " << why;     \
  }

// 2 GiB, sent plain or as a 2 MB gzip bomb, under a 16 MiB limit: the limit
// cuts what is kept, not the exchange, and nothing holds the whole body.
TEST(FaultServerTest, HugeBodiesStayWithinMemory) {
  ORVELAN_REQUIRE_FAULT_SERVER(server);
  for (const char* path : {"/flood", "/gzip-bomb"}) {
    SCOPED_TRACE(path);
    TestHttpClient client(60);
    client.Set("AllowHTTPCompression=true");
    ASSERT_EQ(client.Set("MaxTransferredData=16777216"), 0);
    std::ofstream("/proc/self/clear_refs") << "5";  // the peak restarts from the current size
    const long before = StatusKb("VmRSS:");
    EXPECT_EQ(client.Post(LocalUrl(server->plain, path), "x"), 0) << client.GetLastError();
    const long growth_kb = StatusKb("VmHWM:") - before;
    RecordProperty(std::string("peak_growth_kb_") + (path + 1), std::to_string(growth_kb));
    EXPECT_LT(growth_kb, 100 * 1024);
    EXPECT_STREQ(client.GetLastError(), "");
    EXPECT_TRUE(client.TransferredData() == std::string(16 << 20, '\0'));
  }
}

// A fault at each phase of an exchange ends it with its code and text within
// the time-out, and the same object then completes a good exchange. Closing
// mid-body with a Content-Length is in HttpClientTest, a certificate for
// another host in NginxExchangeTest.
TEST(FaultServerTest, EachPhaseFailsInTimeAndTheObjectRecovers) {
  ORVELAN_REQUIRE_FAULT_SERVER(server);
  const char kTimeout[] = "Timeout.", kRejected[] = "Server certificate verification failed. Connection aborted.";
  const struct {
    const char* name;
    int port;
    const char* scheme;
    const char* path;
    int rc;
    const char* text;
    const char* body;
  } cases[] = {
      {"connect", server->unaccepted, "http", "/", 301, kTimeout, ""},
      {"TLS handshake", server->silent, "https", "/", 301, kTimeout, ""},
      {"status line", server->plain, "http", "/stall-status", 301, kTimeout, ""},
      {"headers", server->plain, "http", "/stall-headers", 301, kTimeout, ""},
      {"body", server->plain, "http", "/stall-body", 301, kTimeout, "abc"},
      {"body over TLS", server->tls, "https", "/stall-body", 301, kTimeout, "abc"},
      {"closed mid-chunk", server->plain, "http", "/cut-chunk", 0, "", "abcde"},
      {"truncated gzip", server->plain, "http", "/gzip-truncated", 0, "", "?"},
      {"corrupt gzip", server->plain, "http", "/gzip-corrupt", 151, "Could not decompress content.", ""},
      {"1 MB header line", server->plain, "http", "/long-header", 0, "", "ok"},
      {"10,000 headers", server->plain, "http", "/many-headers", 0, "", "ok"},
      {"expired certificate", server->expired, "https", "/ok", 276, kRejected, ""},
      {"self-signed certificate", server->self_signed, "https", "/ok", 276, kRejected, ""},
  };
  TestHttpsClient client(1);
  client.Set("AllowHTTPCompression=true");
  client.Set("OpenSSLCAFile=" + TestPki::Get().Path("ca.pem"));
  const int descriptors = OpenDescriptors();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(client.Post(LocalUrl(c.port, c.path, c.scheme), "x"), c.rc);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(2500));
    EXPECT_STREQ(client.GetLastError(), c.text);
    if (*c.body != '?') {
      EXPECT_EQ(client.Body(), c.body);
    }
    ASSERT_EQ(client.Post(LocalUrl(server->tls, "/ok", "https"), "x"), 0) << client.GetLastError();
    EXPECT_EQ(client.Body(), "ok");
  }
  EXPECT_EQ(OpenDescriptors(), descriptors);
}

}  // namespace
}  // namespace orvelan
