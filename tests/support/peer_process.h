#pragma once
#include <sys/types.h>

#include <string>
#include <vector>

namespace orvelan {

// A server program (nginx, a proxy, openssl s_server) started by a test and
// killed by the destructor. Ready() waits until the loopback ports accept.
class PeerProcess {
 public:
  PeerProcess(const std::vector<std::string>& argv, const std::string& log_path);
  PeerProcess(const PeerProcess&) = delete;
  PeerProcess& operator=(const PeerProcess&) = delete;
  ~PeerProcess();

  bool Ready(const std::vector<int>& ports, int timeout_ms = 5000) const;

 private:
  pid_t pid_ = -1;
};

// Where a program is, or "" when it is not installed.
std::string FindProgram(const std::string& name);

}  // namespace orvelan
