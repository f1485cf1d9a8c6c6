// The HTTP client against tests/support/fault_server.py, a separate server
// process that gives the answers real servers will not give on purpose.
#include <unistd.h>

#include <chrono>
#include <string>

#include <gtest/gtest.h>

#include "support/loopback_server.h"
#include "support/peer_process.h"
#include "support/test_http_client.h"
#include "support/test_pki.h"

namespace orvelan {
namespace {

TEST(FaultServerTest, ClientCopesWithEachFault) {
  std::string script = __FILE__;
  script.replace(script.rfind("http/"), std::string::npos, "support/fault_server.py");
  const std::string python = FindProgram("python3");
  if (python.empty() || access(script.c_str(), R_OK) != 0) {
    if (PeersRequired()) FAIL() << "python3 and " << script << " are required";
    GTEST_SKIP() << "python3 not available for the fault server";
  }
  const int port = UnusedPort();
  char log[] = "/tmp/orvelan-fault-XXXXXX";
  close(mkstemp(log));
  {
    PeerProcess server({python, script, std::to_string(port)}, log);
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
      TestHttpClient client(5);
      ASSERT_EQ(client.Set("TimeoutInMilliseconds=true"), 0);
      client.SetTimeout(c.timeout_ms);
      client.Set("AllowHTTPCompression=true");
      const auto start = std::chrono::steady_clock::now();
      EXPECT_EQ(client.Post(LocalUrl(port, c.path), "x"), c.rc);
      if (c.rc != 0) {
        EXPECT_STREQ(client.GetLastError(), c.error);
      }
      EXPECT_EQ(client.Body(), c.body);
      EXPECT_EQ(client.SocketHandle(), -1);
      // None of them runs into the 5 s time-out.
      EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(c.rc == 301 ? 3000 : 2000));
    }
  }
  unlink(log);
}

}  // namespace
}  // namespace orvelan
