#pragma once
#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace orvelan {

// A scripted TCP server on 127.0.0.1 (or ::1) at a port chosen by the system,
// for the faults real servers will not produce on purpose (stalls, closes
// mid-body, split writes). Each accepted connection runs the script on the
// server's own thread, one at a time; the destructor stops and joins.
class LoopbackServer {
 public:
  using Script = std::function<void(int fd)>;
  explicit LoopbackServer(Script script, bool ipv6 = false);
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;
  ~LoopbackServer();

  int port() const { return port_; }
  int connections() const { return connections_.load(); }
  // Waits (at most 5 s) until every accepted connection is closed, so a test
  // counting the process's descriptors does not count the server's.
  bool WaitUntilIdle() const;

  // For scripts: read until `marker` (or the end); a request head and its
  // Content-Length body; write all of `bytes`.
  static std::string ReadUntil(int fd, const std::string& marker);
  static std::string ReadRequest(int fd);
  static void WriteAll(int fd, const std::string& bytes);

 private:
  Script script_;
  std::thread thread_;
  std::atomic<int> connections_{0};
  std::atomic<int> finished_{0};
  std::atomic<bool> stopping_{false};
  int listener_ = -1;
  int port_ = 0;
};

// A port on which nothing listens (bound, then closed).
int UnusedPort();

}  // namespace orvelan
