#include "http/cookie_list.h"

#include "base/text_util.h"

namespace orvelan {
namespace {

std::string_view SkipBlanks(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  return text;
}

}  // namespace

Cookie CookieList::ParseSetCookie(std::string_view text) {
  Cookie cookie;
  const size_t eq = text.find('=');
  cookie.name = std::string(text.substr(0, eq));
  if (eq == std::string_view::npos) return cookie;
  text.remove_prefix(eq + 1);
  const size_t semi = text.find(';');
  cookie.value = std::string(text.substr(0, semi));
  std::string_view rest = semi == std::string_view::npos ? std::string_view() : text.substr(semi + 1);
  while (!rest.empty()) {
    rest = SkipBlanks(rest);
    const size_t end = rest.find(';');
    const std::string_view attribute = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    const size_t attr_eq = attribute.find('=');
    const std::string_view name = attribute.substr(0, attr_eq);
    const std::string_view value =
        attr_eq == std::string_view::npos ? std::string_view() : attribute.substr(attr_eq + 1);
    if (EqualsNoCase(name, "EXPIRES")) {
      cookie.expires = std::string(value);
    } else if (EqualsNoCase(name, "DOMAIN")) {
      cookie.domain = std::string(value);
    } else if (EqualsNoCase(name, "PATH")) {
      cookie.path = std::string(value);
    } else if (EqualsNoCase(name, "SECURE")) {
      cookie.secure = true;
    }
  }
  return cookie;
}

void CookieList::Add(const Cookie& cookie) {
  for (Cookie& old : cookies_) {
    if (EqualsNoCase(old.name, cookie.name) && EqualsNoCase(old.domain, cookie.domain) &&
        EqualsNoCase(old.path, cookie.path)) {
      old.expires = cookie.expires;
      old.value = cookie.value;
      old.secure = cookie.secure;
      return;
    }
  }
  cookies_.push_back(cookie);
}

void CookieList::RemoveReceived() {
  std::vector<Cookie> kept;
  for (Cookie& c : cookies_) {
    if (c.origin != 0) kept.push_back(std::move(c));
  }
  cookies_.swap(kept);
}

std::string CookieList::HeaderValue() const {
  std::string header;
  for (const Cookie& c : cookies_) {
    if (!header.empty()) header += "; ";
    header += c.name;
    header += '=';
    header += c.value;
  }
  return header;
}

}  // namespace orvelan
