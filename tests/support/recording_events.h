#pragma once
#include <functional>
#include <string>
#include <vector>

#include "core/component_events.h"

namespace orvelan {

// An event sink that records what a service raised, as "Name(args)" lines,
// and can stand in for a host event loop or a certificate decision.
class RecordingEvents : public ComponentEvents {
 public:
  std::vector<std::string> log;
  int waits = 0;
  long next_wait_ms = 5;  // what WaitForEvents hands back; -1 interrupts
  int accept_certificate = -1;  // -1 keeps the library's decision
  std::string last_cert_status;

  void SetEventCodePage(int) override {}
  int WaitForEvents(long& timeout_ms) override {
    ++waits;
    timeout_ms = next_wait_ms;
    return 0;
  }
  int WatchSocket(long, long event_mask, long& handle) override {
    log.push_back("Watch(" + std::to_string(event_mask) + ")");
    handle = 7;
    return 0;
  }
  int UnwatchSocket(long handle) override {
    log.push_back("Unwatch(" + std::to_string(handle) + ")");
    return 0;
  }
  int FireConnectionStatus(const char* event, int code, const char*) override {
    log.push_back(std::string("Status(") + event + "," + std::to_string(code) + ")");
    return 0;
  }
  int FireError(int code, const char* description) override {
    log.push_back("Error(" + std::to_string(code) + "," + description + ")");
    return 0;
  }
  int FireSSLServerAuthentication(const char*, int, const char*, const char*, const char* status,
                                  int& accept) override {
    last_cert_status = status;
    log.push_back(std::string("ServerAuth(") + status + "," + std::to_string(accept) + ")");
    if (accept_certificate >= 0) accept = accept_certificate;
    return 0;
  }
  int FireSSLStatus(const char* message) override {
    log.push_back(std::string("SSLStatus(") + message + ")");
    return 0;
  }

  bool Saw(const std::string& line) const {
    for (const std::string& l : log) {
      if (l == line) return true;
    }
    return false;
  }
};

}  // namespace orvelan
