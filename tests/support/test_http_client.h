#pragma once
#include <string>

#include "http/http_client.h"
#include "support/recording_events.h"

namespace orvelan {

// An HttpClient with its events recorded, settings by Config text, and the
// received body as a string: what most HTTP and proxy tests drive.
class TestHttpClient : public HttpClient {
 public:
  explicit TestHttpClient(int timeout_seconds) {
    InitDefaults();
    SetEventSink(&events);
    SetTimeout(timeout_seconds);
  }
  int Set(const std::string& setting) {
    const char* out = nullptr;
    return Config(setting.c_str(), out);
  }
  std::string Get(const std::string& name) {
    const char* out = nullptr;
    Config(name.c_str(), out);
    return out;
  }
  std::string Body() const { return std::string(TransferredData()); }

  RecordingEvents events;
};

}  // namespace orvelan
