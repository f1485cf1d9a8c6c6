#pragma once

#include "http/http_client.h"

// The HTTP client with https as its default scheme (port 443). UseWinInet and
// UseWinInetCookies are accepted and reported only. Not thread-safe.
namespace orvelan {

class HttpsClient : public HttpClient {
 public:
  HttpsClient();

  int InitDefaults() override;
  int HandleConfig(ConfigArgument& argument, const char*& out) override;

 private:
  bool use_wininet_ = false;
  bool use_wininet_cookies_ = true;
};

}  // namespace orvelan
