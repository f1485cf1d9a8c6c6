#pragma once
#include <memory>
#include <string>

#include "support/peer_process.h"

namespace orvelan {

// nginx on loopback, run as the current user from a generated configuration
// in a temporary directory, with four servers: plain HTTP, HTTPS with a
// certificate from the test CA, HTTPS with an expired certificate, and HTTPS
// with a certificate for another host. Each serves:
//   /ofx      a short application/x-ofx answer (any method)
//   /post4k   a 4096-byte answer (any method)
//   /files/*  static files, among them the random 1m.bin (POST is answered like GET)
//   /sni, /whoami  (TLS only) the server name the client sent, the client
//             certificate's subject
// and gzips answers for clients that ask. Started once per test binary.
class NginxServer {
 public:
  // The shared server, or null when nginx or openssl is missing (why() says).
  static NginxServer* Shared();
  static const std::string& why();

  int http_port = 0;
  int https_port = 0;
  int expired_port = 0;
  int other_host_port = 0;

 private:
  std::unique_ptr<PeerProcess> process_;
};

// Skips the test when the shared nginx is missing, or fails it under
// ORVELAN_REQUIRE_PEERS=1.
#define ORVELAN_REQUIRE_NGINX(var)                                                       \
  NginxServer* var = NginxServer::Shared();                                              \
  if (var == nullptr) {                                                                  \
    if (PeersRequired()) FAIL() << "nginx is required: " << NginxServer::why();          \
    GTEST_SKIP() << "nginx not available: " << NginxServer::why();                       \
  }

}  // namespace orvelan
