#pragma once
// A transfer channel whose upper hooks record what arrives, shared by the
// channel, TLS and tunnel suites.
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "net/transfer_channel.h"
#include "support/recording_events.h"
#include "support/test_pki.h"

namespace orvelan {

class Probe : public TransferChannel {
 public:
  Probe() {
    InitDefaults();
    SetEventSink(&events);
  }
  RecordingEvents events;
  std::string received;  // lines end with '|' when delivered as lines
  std::string errors;    // "code:text|" per OnError
  int disconnects = 0;
  std::function<void()> on_data;

  int Set(const std::string& setting) {
    const char* out = nullptr;
    return Config(setting.c_str(), out);
  }
  std::string Query(const std::string& name) {
    const char* out = nullptr;
    Config(name.c_str(), out);
    return out;
  }
  void Target(int port, const char* host = "127.0.0.1") {
    ASSERT_EQ(SetRemoteHost(host), 0);
    ASSERT_EQ(SetRemotePort(port), 0);
  }
  int Open(int port, int seconds = 5, bool tls = false) {
    Target(port);
    SetTimeout(seconds);
    if (tls) {
      if (int rc = EnableTls(true, "127.0.0.1"); rc != 0) return rc;
    }
    return ConnectAndWait();
  }
  using TransferChannel::StartDeadline;
  int Receive() { return ReceiveData(0); }
  // Runs wait cycles until `done` or a stop (301).
  int WaitUntil(const std::function<bool()>& done) {
    StartDeadline();
    while (!done()) {
      if (int rc = WaitCycle(); rc != 0) return rc;
    }
    return 0;
  }

 protected:
  void FireDataIn(const char* data, int32_t length, bool end_of_line) override {
    received.append(data, static_cast<size_t>(length));
    if (end_of_line) received += '|';
    if (on_data) on_data();
  }
  void OnError(int code, const char* text) override { errors += std::to_string(code) + ":" + text + "|"; }
  void FireDisconnected(int, const char*) override { ++disconnects; }
};

#define REQUIRE_PKI(pki)                                           \
  const TestPki& pki = TestPki::Get();                             \
  if (!pki.ok()) {                                                 \
    if (PeersRequired()) FAIL() << "openssl is required";         \
    GTEST_SKIP() << "openssl not available to make certificates"; \
  }

// A type-2 NTLM message with Unicode and NTLM set and an empty target.
inline std::string NtlmChallenge() {
  std::string m("NTLMSSP\0\x02\0\0\0\0\0\0\0\0\0\0\0\x01\x82\x08\0" "\x01\x23\x45\x67\x89\xab\xcd\xef", 32);
  return m + std::string(16, '\0');
}

inline std::string Base64(const std::string& bytes) {
  ByteString out;
  out.AppendBase64(bytes.data(), static_cast<int32_t>(bytes.size()), false);
  return std::string(out.View());
}

}  // namespace orvelan
