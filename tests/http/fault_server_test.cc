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

class FaultServerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string script = __FILE__;
    script.replace(script.rfind("http/"), std::string::npos, "support/fault_server.py");
    const std::string python = FindProgram("python3");
    if (python.empty() || access(script.c_str(), R_OK) != 0) {
      if (PeersRequired()) FAIL() << "python3 and " << script << " are required";
      GTEST_SKIP() << "python3 not available for the fault server";
    }
    close(mkstemp(log_));
    server_ = std::make_unique<PeerProcess>(std::vector<std::string>{python, script, std::to_string(port_)}, log_);
    ASSERT_TRUE(server_->Ready({port_})) << "fault server did not start; see " << log_;
  }
  void TearDown() override {
    server_.reset();
    unlink(log_);
  }

  const int port_ = UnusedPort();
  char log_[32] = "/tmp/orvelan-fault-XXXXXX";
  std::unique_ptr<PeerProcess> server_;
};

TEST_F(FaultServerTest, ClientCopesWithEachFault) {
  const struct {
    const char* path;
    int timeout_ms;
    int rc;
    const char* error;
    std::string body;
  } cases[] = {
      {"/split-crlf", 5000, 0, "", "hello world"},
      {"/close-delimited", 5000, 0, "", "body until the close"},
      {"/stall", 300, 301, "Timeout.", "abc"},
      {"/close-mid-body", 5000, 0, "", "partial"},
      {"/bad-gzip", 5000, 102, "The GZIP header is invalid.", ""},
      {"/gzip-comment", 5000, 0, "", "commented body"},
      {"/no-such-fault", 5000, 151, "HTTP protocol error. 404 Not Found.", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.path);
    TestHttpClient client(5);
    ASSERT_EQ(client.Set("TimeoutInMilliseconds=true"), 0);
    client.SetTimeout(c.timeout_ms);
    client.Set("AllowHTTPCompression=true");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(client.Post(LocalUrl(port_, c.path), "x"), c.rc);
    if (c.rc != 0) {
      EXPECT_STREQ(client.GetLastError(), c.error);
    }
    EXPECT_EQ(client.Body(), c.body);
    EXPECT_EQ(client.SocketHandle(), -1);
    // None of them runs into the 5 s time-out.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(c.rc == 301 ? 3000 : 2000));
  }
}

long StatusKb(const std::string& field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.compare(0, field.size(), field) == 0) return std::stol(line.substr(field.size()));
  }
  return -1;
}

// 2 GiB, sent plain or as a 2 MB gzip bomb, under a 16 MiB limit: the limit
// cuts what is kept, not the exchange, and nothing holds the whole body.
TEST_F(FaultServerTest, HugeBodiesStayWithinMemory) {
  for (const char* path : {"/flood", "/gzip-bomb"}) {
    SCOPED_TRACE(path);
    TestHttpClient client(60);
    client.Set("AllowHTTPCompression=true");
    ASSERT_EQ(client.Set("MaxTransferredData=16777216"), 0);
    std::ofstream("/proc/self/clear_refs") << "5";  // the peak restarts from the current size
    const long before = StatusKb("VmRSS:");
    EXPECT_EQ(client.Post(LocalUrl(port_, path), "x"), 0) << client.GetLastError();
    const long growth_kb = StatusKb("VmHWM:") - before;
    RecordProperty(std::string("peak_growth_kb_") + (path + 1), std::to_string(growth_kb));
    EXPECT_LT(growth_kb, 100 * 1024);
    EXPECT_STREQ(client.GetLastError(), "");
    EXPECT_TRUE(client.TransferredData() == std::string(16 << 20, '\0'));
  }
}

}  // namespace
}  // namespace orvelan
