#pragma once
#include <algorithm>
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
    handle = 7;
    return Record("Watch(" + std::to_string(event_mask) + ")");
  }
  int UnwatchSocket(long handle) override { return Record("Unwatch(" + std::to_string(handle) + ")"); }
  int FireConnectionStatus(const char* event, int code, const char*) override {
    return Record(std::string("Status(") + event + "," + std::to_string(code) + ")");
  }
  int FireError(int code, const char* description) override {
    return Record("Error(" + std::to_string(code) + "," + description + ")");
  }
  int FireSSLServerAuthentication(const char*, int, const char*, const char*, const char* status,
                                  int& accept) override {
    last_cert_status = status;
    Record(std::string("ServerAuth(") + status + "," + std::to_string(accept) + ")");
    if (accept_certificate >= 0) accept = accept_certificate;
    return 0;
  }
  int FireSSLStatus(const char* message) override { return Record(std::string("SSLStatus(") + message + ")"); }

  bool Saw(const std::string& line) const { return std::find(log.begin(), log.end(), line) != log.end(); }

 private:
  int Record(std::string line) {
    log.push_back(std::move(line));
    return 0;
  }
};

}  // namespace orvelan
