// The HTTP client against tests/support/fault_server.py, a separate server
// process that gives the answers real servers will not give on purpose.
#include <unistd.h>

#include <chrono>
#include <string>

#include <gtest/gtest.h>

#include "http/http_client.h"
#include "support/loopback_server.h"
#include "support/peer_process.h"
#include "support/test_pki.h"

namespace orvelan {
namespace {

class FaultClient : public HttpClient {
 public:
  FaultClient() {
    InitDefaults();
    SetTimeout(5);
  }
  int Set(const std::string& setting) {
    const char* out = nullptr;
    return Config(setting.c_str(), out);
  }
};

std::string ScriptPath() {
  std::string path = __FILE__;
  path.replace(path.rfind("http/"), std::string::npos, "support/fault_server.py");
  return path;
}

TEST(FaultServerTest, ClientCopesWithEachFault) {
  const std::string python = FindProgram("python3");
  if (python.empty() || access(ScriptPath().c_str(), R_OK) != 0) {
    if (PeersRequired()) FAIL() << "python3 and " << ScriptPath() << " are required";
    GTEST_SKIP() << "python3 not available for the fault server";
  }
  const int port = UnusedPort();
  char log[] = "/tmp/orvelan-fault-XXXXXX";
  const int log_fd = mkstemp(log);
  ASSERT_GE(log_fd, 0);
  close(log_fd);
  {
    PeerProcess server({python, ScriptPath(), std::to_string(port)}, log);
    ASSERT_TRUE(server.Ready({port})) << "fault server did not start; see " << log;
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
      FaultClient client;
      ASSERT_EQ(client.Set("TimeoutInMilliseconds=true"), 0);
      client.SetTimeout(c.timeout_ms);
      client.Set("AllowHTTPCompression=true");
      client.SetPostData("x", 1);
      const auto start = std::chrono::steady_clock::now();
      const std::string url = "http://127.0.0.1:" + std::to_string(port) + c.path;
      EXPECT_EQ(client.PostToURL(url.c_str()), c.rc);
      if (c.rc != 0) {
        EXPECT_STREQ(client.GetLastError(), c.error);
      }
      EXPECT_EQ(client.TransferredData(), c.body);
      EXPECT_EQ(client.SocketHandle(), -1);
      const auto ms =
          std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
      EXPECT_LT(ms, c.rc == 301 ? 3000 : 2000);  // none of them runs into the 5 s time-out
    }
  }
  unlink(log);
}

}  // namespace
}  // namespace orvelan
