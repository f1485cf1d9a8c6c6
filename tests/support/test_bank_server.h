#pragma once
#include <memory>
#include <string>
#include <vector>

#include "support/peer_process.h"
#include "support/test_pki.h"

namespace orvelan {

// The scripted OFX bank (tools/orvelan-testbank; its --help lists the
// scenarios, chosen by USERID) on a free loopback port for the object's lifetime.
class TestBankServer {
 public:
  TestBankServer();
  TestBankServer(const TestBankServer&) = delete;
  TestBankServer& operator=(const TestBankServer&) = delete;
  ~TestBankServer();

  bool ok() const { return port_ > 0; }
  const std::string& why() const { return why_; }  // why it could not start
  std::string Url(const std::string& path = "/ofx") const;

  // Starts the bank's TLS twin with the test CA's server certificate (once);
  // false, with why() set, when it cannot.
  // With `self_signed` the twin makes its own certificate, which no client
  // trusts unless told to.
  bool StartBehindTls(bool self_signed = false);
  std::string TlsUrl(const std::string& path = "/ofx") const;
  static std::string CaFile() { return TestPki::Get().Path("ca.pem"); }

  // Every POST so far, in order, byte for byte, with the HTTP status it got
  // (0 while it stalls).
  struct Request {
    int status = 0;
    std::string body;
  };
  std::vector<Request> Requests() const;

 private:
  std::string dir_;
  std::string log_path_;
  std::string why_;
  int port_ = 0;
  int tls_port_ = 0;
  bool tls_tried_ = false;
  // Starts the script with `options`; its port, or 0 with why() set.
  int Launch(std::unique_ptr<PeerProcess>& bank, const std::string& name, const std::vector<std::string>& options);

  std::unique_ptr<PeerProcess> bank_;
  std::unique_ptr<PeerProcess> tls_bank_;
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
    if (PeersRequired()) FAIL() << "the TLS test bank is required: " \
                                << var.why();                                      \
    GTEST_SKIP() << "TLS test bank not available: " << var.why();                  \
  }

}  // namespace orvelan
