#include <netinet/in.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "net/channel_probe.h"
#include "support/loopback_server.h"

namespace orvelan {
namespace {

// Lines are cut across reads with the line end, or at any line end with
// SplitCRLF; the unended rest comes at close.
TEST(TransferChannelTest, ExchangesLinesWithAServer) {
  // first, second: two writes with a pause between.
  const struct { const char *name, *setting, *eol; bool ipv6; const char *first, *second, *received; } cases[] = {
      {"line end", "", "\r\n", false, "one\r\ntw", "o\r\nrest", "one|two|rest"},
      {"SplitCRLF", "SplitCRLF=true", "", false, "A\r", "\nB\n\rX\r\rY", "A|B|X||Y"},
      {"IPv6", "UseIPv6=true", "", true, "si", "x", "six"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    LoopbackServer server([&](int fd) {
      EXPECT_EQ(LoopbackServer::ReadUntil(fd, "\n"), "hello\n");
      LoopbackServer::WriteAll(fd, c.first);
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      LoopbackServer::WriteAll(fd, c.second);
    }, c.ipv6);
    Probe p;
    ASSERT_EQ(*c.setting ? p.Set(c.setting) : 0, 0);
    p.Target(server.port(), c.ipv6 ? "::1" : "127.0.0.1");
    EXPECT_STREQ(p.RemoteHost(), c.ipv6 ? "::1" : "127.0.0.1");
    ASSERT_EQ(p.ConnectAndWait(), 0) << p.GetLastError();
    ASSERT_EQ(*c.eol ? p.SetEOL(c.eol) : 0, 0);
    ASSERT_EQ(p.SendAll("hello\n", 6, false), 0);
    EXPECT_EQ(p.WaitUntil([&] { return p.disconnects > 0; }), 0);
    EXPECT_EQ(p.received, c.received);
    EXPECT_EQ(p.SocketHandle(), -1);
    EXPECT_TRUE(p.events.Saw("Status(Remote host disconnected.,0)"));
  }
}

TEST(TransferChannelTest, StalledServerTimesOutAndInterruptStops) {
  LoopbackServer server([](int fd) { LoopbackServer::ReadUntil(fd, "never"); });
  for (bool interrupt : {false, true}) {
    SCOPED_TRACE(interrupt ? "interrupt" : "time-out");
    Probe p;
    p.Target(server.port());
    p.SetTimeout(interrupt ? 0 : 150);
    ASSERT_EQ(p.Set("TimeoutInMilliseconds=true"), 0);  // the number stays: 150 ms, not 150 s
    ASSERT_EQ(p.ConnectAndWait(), 0);
    int cycles = 0;
    const auto start = std::chrono::steady_clock::now();
    const int rc = p.WaitUntil([&] {
      if (interrupt && ++cycles == 3) p.Interrupt();
      return false;
    });
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    EXPECT_EQ(rc, 301);
    EXPECT_STREQ(p.GetLastError(), interrupt ? "Interrupted." : "Timeout.");
    EXPECT_TRUE(interrupt || (ms.count() >= 150 && ms.count() < 1500)) << ms.count();  // never early
  }
}

TEST(TransferChannelTest, TrafficRestartsTheDeadlineUnlessAbsolute) {
  // The server trickles a byte every 40 ms for 480 ms; the time-out is 250 ms.
  LoopbackServer server([](int fd) {
    for (int i = 0; i < 12; ++i) {
      LoopbackServer::WriteAll(fd, "x");
      std::this_thread::sleep_for(std::chrono::milliseconds(40));
    }
  });
  for (bool absolute : {false, true}) {
    SCOPED_TRACE(absolute ? "absolute" : "restarted");
    Probe p;
    p.Target(server.port());
    p.Set("TimeoutInMilliseconds=1");
    p.Set(absolute ? "AbsoluteTimeout=yes" : "AbsoluteTimeout=false");
    p.SetTimeout(250);
    ASSERT_EQ(p.ConnectAndWait(), 0);
    EXPECT_EQ(p.WaitUntil([&] { return p.disconnects > 0; }), absolute ? 301 : 0);
    EXPECT_EQ(p.received.size() < 12, absolute) << p.received;
    p.Disconnect();
  }
}

TEST(TransferChannelTest, ConnectChecksTargetFirst) {
  const struct { const char* host; int port, firewall_type; const char* firewall_host; int firewall_port, code;
                 const char* text; } cases[] = {
      {"127.0.0.1", 0, 0, "", 0, 116, "RemotePort can't be zero. Please specify a valid service port number."},
      {"127.0.0.1", 80, 2, "127.0.0.1", 0, 116, "The FirewallPort is invalid (0)."},
      {"127.0.0.1", 80, 1, "no-proxy.invalid", 80, 102, "The FirewallHost address is invalid (0.0.0.0)."},
      {"0.0.0.0", 80, 0, "", 0, 102, "The RemoteHost address is invalid (0.0.0.0)."},
      {"127.0.0.1", UnusedPort(), 0, "", 0, 111, "[111] Connection refused."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    Probe p;
    p.SetFirewallType(c.firewall_type);
    p.SetFirewallHost(c.firewall_host);
    p.SetFirewallPort(c.firewall_port);
    p.SetRemoteHost(c.host);
    p.SetRemotePort(c.port);
    EXPECT_EQ(p.ConnectAndWait(), c.code);
    EXPECT_STREQ(p.GetLastError(), c.text);
    EXPECT_EQ(p.SocketHandle(), -1);
  }
}

// A resolver that answers with a chosen h_errno and errno.
class FailingResolver : public Probe {
 public:
  int h_error = 0;
  int system_error = 0;

 protected:
  int LookUpHost(const char*, in_addr*) override {
    errno = system_error;
    return h_error;
  }
};

// RemoteHost reports the resolver's code and text; LocalHost and FirewallHost
// the system error (EINVAL when none), for the component to word.
TEST(TransferChannelTest, ResolutionFailuresGiveCodeAndText) {
  const struct { int h_error, system_error, code; const char* text; } cases[] = {
      {1, ECONNREFUSED, ECONNREFUSED, "The specified host is unknown."},
      {99, 0, EINVAL, "A name resolution error occurred."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.h_error);
    FailingResolver p;
    p.h_error = c.h_error;
    p.system_error = c.system_error;
    EXPECT_EQ(p.SetRemoteHost("bank.example"), c.h_error);
    EXPECT_STREQ(p.GetLastError(), c.text);
    EXPECT_STREQ(p.RemoteHost(), "");
    EXPECT_EQ(p.SetLocalHost("me.example"), c.code);
    ASSERT_EQ(p.SetFirewallHost("127.0.0.2"), 0);  // a dotted address asks no resolver
    EXPECT_EQ(p.SetFirewallHost("proxy.example"), c.code);
    EXPECT_STREQ(p.GetLastError(), "");
    EXPECT_EQ(p.FirewallAddress(), 0u);  // the previous address must not survive
    EXPECT_EQ(p.Query("FirewallHost"), "proxy.example");
  }
  Probe real;
  EXPECT_EQ(real.SetRemoteHost("no-such-host.invalid"), 1);
}

TEST(TransferChannelTest, SettingsAnswerQueries) {
  Probe p;
  const struct { const char* set; const char* name; const char* answer; } cases[] = {
      {"MaxLineLength=100000", "MaxLineLength", "65536"}, {"MaxLineLength=0", "MaxLineLength", "1"},
      {"FirewallType=2", "FirewallPort", "1080"}, {"FirewallType=1", "FirewallPort", "80"},
      {"FirewallPort=9050", "FirewallPort", "9050"}, {"FirewallType=0", "FirewallPort", "0"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(p.Set(c.set), 0);
    EXPECT_EQ(p.Query(c.name), c.answer);
  }
}

TEST(TransferChannelTest, ExternalEventLoopWaitsThroughTheHost) {
  LoopbackServer server([](int fd) { LoopbackServer::WriteAll(fd, "hi"); });
  Probe p;
  p.SetExternalEventLoop(true);
  ASSERT_EQ(p.Open(server.port()), 0);
  EXPECT_EQ(p.events.log.front(), "Watch(51)");
  EXPECT_EQ(p.WaitUntil([&] { return p.disconnects > 0; }), 0);
  EXPECT_EQ(p.received, "hi");
  EXPECT_TRUE(p.events.Saw("Unwatch(7)"));
  // A host that hands back -1 interrupts the wait.
  LoopbackServer stall([](int fd) { LoopbackServer::ReadUntil(fd, "never"); });
  Probe q;
  q.SetExternalEventLoop(true);
  q.events.next_wait_ms = -1;
  q.Target(stall.port());
  EXPECT_EQ(q.ConnectAndWait(), 301);
  EXPECT_STREQ(q.GetLastError(), "Interrupted.");
}

TEST(TransferChannelTest, RecordToFileWritesTheTranscript) {
  const std::string path = ::testing::TempDir() + "orvelan-transcript";
  LoopbackServer server([](int s) {
    LoopbackServer::ReadUntil(s, "?");
    LoopbackServer::WriteAll(s, std::string("ok\0", 3));
  });
  Probe p;
  p.Set(std::string("RecordToFile=") + path);
  ASSERT_EQ(p.Open(server.port()), 0);
  ASSERT_EQ(p.SendAll("why$?", 5, false), 0);
  ASSERT_EQ(p.WaitUntil([&] { return p.disconnects > 0; }), 0);
  std::stringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  EXPECT_EQ(text.str(), "\r\nexpect -exact \"why\\$?\"\r\n\r\nsend -nonewline \"ok\\000\"\r\n");
  unlink(path.c_str());
}

// Even a reading server cannot take 4 MB through a 4 KB send buffer at once;
// the armed write event lets the rest go out through the wait loop, promptly.
TEST(TransferChannelTest, LargeSendsCompleteThroughPartialWrites) {
  const std::string big(4 << 20, 'z');
  std::atomic<size_t> got{0};
  LoopbackServer server([&](int fd) {
    char buffer[65536];
    ssize_t n;
    while ((n = ::read(fd, buffer, sizeof buffer)) > 0) got += static_cast<size_t>(n);
  });
  Probe p;
  ASSERT_EQ(p.Set("OutBufferSize=4096"), 0);
  ASSERT_EQ(p.Open(server.port(), 10), 0);
  EXPECT_EQ(p.Send(big.data(), static_cast<int32_t>(big.size())), 11);
  const int32_t first = p.BytesLastSent();
  EXPECT_LT(first, static_cast<int32_t>(big.size()));
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(p.SendAll(big.data() + first, 1 << 20, false), 0);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1000));
  const int32_t rest = static_cast<int32_t>(big.size()) - first - (1 << 20);
  ASSERT_EQ(p.SendChunked(big.data() + first + (1 << 20), rest, 16384), 0);
  p.Disconnect();
  for (int i = 0; i < 200 && got < big.size(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_EQ(got, big.size());
}

// While connected, target setters and Connect refuse. Would-block ends the
// receive loop quietly; any other failure is raised as an error with its number.
TEST(TransferChannelTest, ConnectedChannelRefusesSettersAndRaisesRecvFailures) {
  LoopbackServer server([](int fd) { LoopbackServer::ReadUntil(fd, "never"); });
  Probe p;
  ASSERT_EQ(p.Open(server.port()), 0);
  EXPECT_EQ(p.SetRemoteHost("127.0.0.2"), 101);
  EXPECT_STREQ(p.GetLastError(), "You cannot change the RemoteHost at this time. A connection is in progress.");
  EXPECT_EQ(p.Set("MaxLineLength=10"), 112);
  EXPECT_EQ(p.Connect(true), 104);
  EXPECT_STREQ(p.RemoteHost(), "127.0.0.1");
  EXPECT_EQ(p.Query("MaxLineLength"), "2048");
  EXPECT_EQ(p.Receive(), 11);
  EXPECT_EQ(p.errors, "");
  // An unconnected socket in place of the connection: recv fails with ENOTCONN.
  const int unconnected = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(dup2(unconnected, p.SocketHandle()), p.SocketHandle());
  close(unconnected);
  EXPECT_EQ(p.Receive(), ENOTCONN);
  EXPECT_EQ(p.errors, "107:socket error in recv: 107|");
}

// A host with many files open gets a socket past FD_SETSIZE, which an
// fd_set cannot hold; the wait loop must still serve it.
TEST(TransferChannelTest, ExchangesOnADescriptorPastFdSetSize) {
  struct Crowd {
    rlimit saved{};
    std::vector<int> fds;
    ~Crowd() {
      for (int fd : fds) close(fd);
      setrlimit(RLIMIT_NOFILE, &saved);
    }
  } crowd;
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &crowd.saved), 0);
  rlimit raised = crowd.saved;
  raised.rlim_cur = std::max<rlim_t>(raised.rlim_cur, FD_SETSIZE + 64);
  if (raised.rlim_cur > raised.rlim_max) GTEST_SKIP() << "the hard descriptor limit is below FD_SETSIZE + 64";
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &raised), 0);
  LoopbackServer server([](int fd) { LoopbackServer::WriteAll(fd, LoopbackServer::ReadUntil(fd, "\n")); });
  while (crowd.fds.empty() || crowd.fds.back() < FD_SETSIZE + 8) {
    const int fd = open("/dev/null", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    crowd.fds.push_back(fd);
  }
  Probe p;
  ASSERT_EQ(p.Open(server.port()), 0) << p.GetLastError();
  EXPECT_GT(p.SocketHandle(), FD_SETSIZE);
  ASSERT_EQ(p.SendAll("hello\n", 6, false), 0);
  EXPECT_EQ(p.WaitUntil([&] { return p.disconnects > 0; }), 0);
  EXPECT_EQ(p.received, "hello\n");
}

}  // namespace
}  // namespace orvelan
