#pragma once
#include <dirent.h>

#include <string>

#include "http/https_client.h"
#include "support/recording_events.h"

namespace orvelan {

// An HTTP(S) client with its events recorded, settings by Config text, and the
// received body as a string: what the HTTP and proxy tests drive.
template <class Base>
class RecordedClient : public Base {
 public:
  explicit RecordedClient(int timeout_seconds) {
    this->InitDefaults();
    this->SetEventSink(&events);
    this->SetTimeout(timeout_seconds);
  }
  int Set(const std::string& setting) {
    const char* out = nullptr;
    return this->Config(setting.c_str(), out);
  }
  std::string Get(const std::string& name) {
    const char* out = nullptr;
    this->Config(name.c_str(), out);
    return out;
  }
  int Post(const std::string& url, const std::string& body) {
    this->SetPostData(body.data(), static_cast<int32_t>(body.size()));
    return this->PostToURL(url.c_str());
  }
  std::string Body() const { return std::string(this->TransferredData()); }

  RecordingEvents events;
};
using TestHttpClient = RecordedClient<HttpClient>;
using TestHttpsClient = RecordedClient<HttpsClient>;

inline std::string LocalUrl(int port, const std::string& path = "/ofx", const std::string& scheme = "http") {
  return scheme + "://127.0.0.1:" + std::to_string(port) + path;
}

// For leak checks: the descriptors this process holds.
inline int OpenDescriptors() {
  int count = 0;
  if (DIR* dir = opendir("/proc/self/fd")) {
    while (readdir(dir) != nullptr) ++count;
    closedir(dir);
  }
  return count;
}

}  // namespace orvelan
