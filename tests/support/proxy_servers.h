#pragma once
#include <memory>
#include <string>
#include <vector>

#include "support/peer_process.h"

namespace orvelan {

// A proxy program on a loopback port, started for one test and killed with
// it; its files live in a temporary directory removed afterwards.
class ProxyServer {
 public:
  ~ProxyServer();

  // danted for SOCKS 4 and 5 without authentication; connects to
  // `blocked_port` are refused by its rules.
  static std::unique_ptr<ProxyServer> Dante(int blocked_port);
  // microsocks for SOCKS 5 with user name and password.
  static std::unique_ptr<ProxyServer> Microsocks(const std::string& user, const std::string& password);
  // tinyproxy for CONNECT and plain proxying; with `basic_auth` it wants
  // user "proxyuser", password "proxypass".
  static std::unique_ptr<ProxyServer> Tinyproxy(bool basic_auth);
  // tests/support/scripted_proxy.py with these extra arguments.
  static std::unique_ptr<ProxyServer> Scripted(const std::vector<std::string>& arguments);

  bool ok() const { return why_.empty(); }
  const std::string& why() const { return why_; }
  int port() const { return port_; }
  // What the proxy printed and logged (the scripted proxy logs what it saw).
  std::string Log() const;

 private:
  // Finds the program and makes the directory; argv gets the program's path.
  explicit ProxyServer(const std::string& program);
  void Run(std::vector<std::string> argv);

  std::unique_ptr<PeerProcess> process_;
  std::string program_;
  std::string dir_;
  std::string why_;
  int port_ = 0;
};

// Skips the test when the proxy is missing, or fails it under ORVELAN_REQUIRE_PEERS=1.
#define ORVELAN_REQUIRE_PROXY(proxy)                                              \
  if (!(proxy)->ok()) {                                                           \
    if (PeersRequired()) FAIL() << "proxy required: " << (proxy)->why();          \
    GTEST_SKIP() << "proxy not available: " << (proxy)->why();                    \
  }

}  // namespace orvelan
