#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace orvelan {

// The pieces of a request URL. Parse updates them in place, so a URL that
// leaves a part out (a bare path, no port) keeps the current one.
//
//   UrlParts url;                       // "http", port 80, path "/"
//   url.Parse("https://u:p@h:8443/a?b", /*encode=*/false);
//   // scheme "https", user "u", password "p", host "h", port 8443, path "/a?b"
struct UrlParts {
  std::string scheme = "http";
  std::string host;
  int32_t port = 80;
  int32_t default_port = 80;
  std::string path = "/";
  std::string user;
  std::string password;
  bool ipv6 = false;  // the host was a bracketed literal

  // Never fails: malformed text yields whatever parts could be read.
  void Parse(std::string_view url, bool encode);

  // Percent-encodes every byte but letters, digits and "*-./=@_", in upper-case hex.
  static std::string Encode(std::string_view text);
};

}  // namespace orvelan
