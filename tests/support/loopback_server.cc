#include "support/loopback_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>

namespace orvelan {
namespace {

// Binds `fd` to the loopback address at a port the system picks; returns the port.
int BindLoopback(int fd, bool ipv6) {
  sockaddr_in a4{};
  sockaddr_in6 a6{};
  a4.sin_family = AF_INET;
  a4.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  a6.sin6_family = AF_INET6;
  a6.sin6_addr = in6addr_loopback;
  sockaddr* a = ipv6 ? reinterpret_cast<sockaddr*>(&a6) : reinterpret_cast<sockaddr*>(&a4);
  socklen_t length = ipv6 ? sizeof a6 : sizeof a4;
  if (bind(fd, a, length) != 0) std::abort();
  getsockname(fd, a, &length);
  return ntohs(ipv6 ? a6.sin6_port : a4.sin_port);
}

}  // namespace

LoopbackServer::LoopbackServer(Script script, bool ipv6) : script_(std::move(script)) {
  listener_ = socket(ipv6 ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int one = 1;
  setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
  port_ = BindLoopback(listener_, ipv6);
  if (listen(listener_, 64) != 0) std::abort();
  thread_ = std::thread([this] {
    while (!stopping_) {
      pollfd p{listener_, POLLIN, 0};
      if (poll(&p, 1, 20) <= 0) continue;
      const int fd = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
      if (fd < 0) continue;
      ++connections_;
      script_(fd);
      close(fd);
      ++finished_;
    }
  });
}

LoopbackServer::~LoopbackServer() {
  stopping_ = true;
  thread_.join();
  close(listener_);
}

bool LoopbackServer::WaitUntilIdle() const {
  for (int i = 0; i < 1000 && finished_.load() != connections_.load(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return finished_.load() == connections_.load();
}

std::string LoopbackServer::ReadUntil(int fd, const std::string& marker) {
  std::string data;
  char c;
  while (data.size() < marker.size() || data.compare(data.size() - marker.size(), marker.size(), marker) != 0) {
    if (read(fd, &c, 1) != 1) break;
    data += c;
  }
  return data;
}

std::string LoopbackServer::ReadRequest(int fd) {
  std::string request = ReadUntil(fd, "\r\n\r\n");
  const size_t at = request.find("Content-Length: ");
  size_t left = at == std::string::npos ? 0 : std::strtoul(request.c_str() + at + 16, nullptr, 10);
  for (char c; left > 0 && read(fd, &c, 1) == 1; --left) request += c;
  return request;
}

void LoopbackServer::WriteAll(int fd, const std::string& bytes) {
  for (size_t done = 0; done < bytes.size();) {
    const ssize_t n = send(fd, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
    if (n <= 0) return;
    done += static_cast<size_t>(n);
  }
}

int UnusedPort() {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  const int port = BindLoopback(fd, false);
  close(fd);
  return port;
}

}  // namespace orvelan
