#include "support/loopback_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>

namespace orvelan {

LoopbackServer::LoopbackServer(Script script, bool ipv6) : script_(std::move(script)) {
  listener_ = socket(ipv6 ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int one = 1;
  setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
  sockaddr_storage address{};
  socklen_t length;
  if (ipv6) {
    auto& a = reinterpret_cast<sockaddr_in6&>(address);
    a.sin6_family = AF_INET6;
    a.sin6_addr = in6addr_loopback;
    length = sizeof a;
  } else {
    auto& a = reinterpret_cast<sockaddr_in&>(address);
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    length = sizeof a;
  }
  if (bind(listener_, reinterpret_cast<sockaddr*>(&address), length) != 0 || listen(listener_, 64) != 0) std::abort();
  getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
  port_ = ntohs(ipv6 ? reinterpret_cast<sockaddr_in6&>(address).sin6_port
                     : reinterpret_cast<sockaddr_in&>(address).sin_port);
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
  for (int i = 0; i < 1000; ++i) {
    if (finished_.load() == connections_.load()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return false;
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
  std::string head = ReadUntil(fd, "\r\n\r\n");
  size_t at = head.find("Content-Length: ");
  if (at == std::string::npos) return head;
  size_t left = std::strtoul(head.c_str() + at + 16, nullptr, 10);
  std::string body(left, '\0');
  size_t got = 0;
  while (got < left) {
    const ssize_t n = read(fd, &body[got], left - got);
    if (n <= 0) break;
    got += static_cast<size_t>(n);
  }
  body.resize(got);
  return head + body;
}

void LoopbackServer::WriteAll(int fd, const std::string& bytes) {
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = send(fd, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
    if (n <= 0) return;
    done += static_cast<size_t>(n);
  }
}

int UnusedPort() {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof a;
  bind(fd, reinterpret_cast<sockaddr*>(&a), length);
  getsockname(fd, reinterpret_cast<sockaddr*>(&a), &length);
  close(fd);
  return ntohs(a.sin_port);
}

}  // namespace orvelan
