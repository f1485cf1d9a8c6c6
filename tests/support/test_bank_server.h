#pragma once
#include <memory>
#include <string>
#include <vector>

#include "support/peer_process.h"
#include "support/test_pki.h"

namespace orvelan {

// The scripted OFX bank (tests/support/test_bank.py) on a free loopback port,
// started by the constructor and killed by the destructor, with its files in
// a temporary directory of its own. Scenarios are chosen by the USERID of the
// request (the script's header lists them); the password is "secret".
//
//   ORVELAN_REQUIRE_TEST_BANK(bank);            // skips when python3 is missing
//   client.PostToURL(bank.Url().c_str());
//   if (bank.StartBehindTls()) client.PostToURL(bank.TlsUrl().c_str());
//   std::vector<TestBankServer::Request> seen = bank.Requests();
class TestBankServer {
 public:
  TestBankServer();
  TestBankServer(const TestBankServer&) = delete;
  TestBankServer& operator=(const TestBankServer&) = delete;
  ~TestBankServer();

  // False when the bank could not start; why() says what was missing.
  bool ok() const { return port_ > 0; }
  const std::string& why() const { return why_; }

  int port() const { return port_; }
  std::string Url(const std::string& path = "/ofx") const;

  // Puts an nginx with the test CA's server certificate in front of the bank
  // as a TLS reverse proxy (once; later calls return the first answer).
  // False, with why() set, when nginx or openssl is missing or did not start.
  bool StartBehindTls();
  int tls_port() const { return tls_port_; }
  std::string TlsUrl(const std::string& path = "/ofx") const;
  // The CA file a client must trust for TlsUrl().
  static std::string CaFile() { return TestPki::Get().Path("ca.pem"); }

  // One POST the bank received, its body byte for byte; status is the HTTP
  // status it answered (0 while it stalls).
  struct Request {
    int status = 0;
    std::string content_type;
    std::string body;
  };
  // Every request received so far, in order.
  std::vector<Request> Requests() const;
  const std::string& log_path() const { return log_path_; }

 private:
  std::string dir_;
  std::string log_path_;
  std::string why_;
  int port_ = 0;
  int tls_port_ = 0;
  bool tls_tried_ = false;
  std::unique_ptr<PeerProcess> bank_;
  std::unique_ptr<PeerProcess> proxy_;
};

// Declares a started TestBankServer `var`; skips the test when it cannot
// start, or fails it under ORVELAN_REQUIRE_PEERS=1.
#define ORVELAN_REQUIRE_TEST_BANK(var)                                             \
  TestBankServer var;                                                              \
  if (!var.ok()) {                                                                 \
    if (PeersRequired()) FAIL() << "the test bank is required: " << var.why();     \
    GTEST_SKIP() << "test bank not available: " << var.why();                      \
  }

// The same for the bank behind TLS; `var` must be a started TestBankServer.
#define ORVELAN_REQUIRE_TLS_BANK(var)                                              \
  if (!var.StartBehindTls()) {                                                     \
    if (PeersRequired()) FAIL() << "nginx in front of the test bank is required: " \
                                << var.why();                                      \
    GTEST_SKIP() << "TLS test bank not available: " << var.why();                  \
  }

}  // namespace orvelan
