#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvelan {

// One cookie as the server set it. Origin 0 marks cookies from Set-Cookie.
struct Cookie {
  std::string domain;
  std::string expires;
  std::string name;
  std::string path;
  bool secure = false;
  std::string value;
  int origin = 0;
};

// The cookies of one HTTP client, in the order first seen. Every cookie goes
// back to every server (no domain, path or secure filtering), as the OFX
// servers that rely on cookies expect. Not thread-safe.
class CookieList {
 public:
  CookieList() = default;
  CookieList(const CookieList&) = delete;
  CookieList& operator=(const CookieList&) = delete;

  // Parses a Set-Cookie value: name=value, then ";"-separated attributes of
  // which EXPIRES, DOMAIN, PATH and SECURE count (any case).
  static Cookie ParseSetCookie(std::string_view header_value);

  // A cookie with the same name, domain and path (any case) gets the new
  // expires, value and secure flag; any other is appended.
  void Add(const Cookie& cookie);
  // Drops every cookie received from a server (origin 0).
  void RemoveReceived();
  void Clear() { cookies_.clear(); }

  // "name=value; name2=value2", or empty when there are no cookies.
  std::string HeaderValue() const;
  const std::vector<Cookie>& cookies() const { return cookies_; }

 private:
  std::vector<Cookie> cookies_;
};

}  // namespace orvelan
