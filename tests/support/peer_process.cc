#include "support/peer_process.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace orvelan {

std::string FindProgram(const std::string& name) {
  for (const char* dir : {"/usr/sbin/", "/usr/bin/", "/sbin/", "/bin/", "/usr/local/sbin/", "/usr/local/bin/"}) {
    if (access((dir + name).c_str(), X_OK) == 0) return dir + name;
  }
  return "";
}

PeerProcess::PeerProcess(const std::vector<std::string>& argv, const std::string& log_path) {
  std::vector<char*> args;
  for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
  args.push_back(nullptr);
  pid_ = fork();
  if (pid_ != 0) return;
  const int log = open(log_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  dup2(open("/dev/null", O_RDONLY), 0);
  dup2(log, 1);
  dup2(log, 2);
  setpgid(0, 0);
  execv(args[0], args.data());
  _exit(127);
}

PeerProcess::~PeerProcess() {
  if (pid_ <= 0) return;
  kill(-pid_, SIGKILL);
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

bool PeerProcess::Ready(const std::vector<int>& ports, int timeout_ms) const {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
  for (int port : ports) {
    for (;;) {
      const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
      sockaddr_in a{};
      a.sin_family = AF_INET;
      a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
      a.sin_port = htons(static_cast<uint16_t>(port));
      const bool accepts = connect(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0;
      close(fd);
      if (accepts) break;
      int status;
      if (std::chrono::steady_clock::now() > end || waitpid(pid_, &status, WNOHANG) == pid_) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }
  return true;
}

}  // namespace orvelan
