// The HTTP client against tests/support/fault_server.py, a separate server
// process that gives the answers real servers will not give on purpose.
#include <unistd.h>

#include <fstream>
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

// 2 GiB, sent plain or as a 2 MB gzip bomb, under a 16 MiB limit: the limit
// cuts what is kept, not the exchange, and nothing holds the whole body.
TEST(FaultServerTest, HugeBodiesStayWithinMemory) {
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
    for (const char* path : {"/flood", "/gzip-bomb"}) {
      SCOPED_TRACE(path);
      TestHttpClient client(60);
      client.Set("AllowHTTPCompression=true");
      ASSERT_EQ(client.Set("MaxTransferredData=16777216"), 0);
      std::ofstream("/proc/self/clear_refs") << "5";  // the peak restarts from the current size
      const long before = StatusKb("VmRSS:");
      EXPECT_EQ(client.Post(LocalUrl(port, path), "x"), 0) << client.GetLastError();
      const long growth_kb = StatusKb("VmHWM:") - before;
      RecordProperty(std::string("peak_growth_kb_") + (path + 1), std::to_string(growth_kb));
      EXPECT_LT(growth_kb, 100 * 1024);
      EXPECT_STREQ(client.GetLastError(), "");
      EXPECT_TRUE(client.TransferredData() == std::string(16 << 20, '\0'));
    }
  }
  unlink(log);
}

}  // namespace
}  // namespace orvelan
