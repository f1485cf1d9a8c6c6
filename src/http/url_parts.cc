#include "http/url_parts.h"

#include "base/text_util.h"

namespace orvelan {
namespace {

bool IsKeptInUrl(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || IsDigit(c) || c == '*' || c == '-' || c == '.' ||
         c == '/' || c == '=' || c == '@' || c == '_';
}

int32_t ParsePort(std::string_view text) {
  int64_t value = 0;
  for (char c : text) {
    if (!IsDigit(static_cast<unsigned char>(c))) break;
    value = value * 10 + (c - '0');
    if (value > 65535) return 0;
  }
  return static_cast<int32_t>(value);
}

}  // namespace

std::string UrlParts::Encode(std::string_view text) {
  static const char kHex[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(text.size());
  for (char ch : text) {
    const auto c = static_cast<unsigned char>(ch);
    if (IsKeptInUrl(c)) {
      out += ch;
    } else {
      out += '%';
      out += kHex[c >> 4];
      out += kHex[c & 15];
    }
  }
  return out;
}

void UrlParts::Parse(std::string_view url, bool encode) {
  if (url.empty() || url.front() != '/') {
    const size_t colon = url.find(':');
    if (colon != std::string_view::npos) {
      scheme = std::string(url.substr(0, colon));
      url.remove_prefix(colon + 1);
      if (EqualsNoCase(scheme, "http")) port = default_port = 80;
      if (EqualsNoCase(scheme, "https")) port = default_port = 443;
    }
  }
  std::string new_path;
  if (url.substr(0, 2) != "//") {
    if (!url.empty() && url.front() == '/') {
      new_path = std::string(url);
    } else {
      if (url.substr(0, 2) == "./") url.remove_prefix(2);
      new_path = path;
      if (new_path.empty() || new_path.back() != '/') new_path += '/';
      new_path += url;
    }
  } else {
    url.remove_prefix(2);
    const size_t end = url.find_first_of("/?");
    std::string_view authority = url.substr(0, end);
    const std::string_view rest = end == std::string_view::npos ? std::string_view() : url.substr(end);
    new_path = rest.empty() ? "/" : rest.front() == '?' ? "/" + std::string(rest) : std::string(rest);
    // User information ends at the last "@", so the port is read after it.
    const size_t at = authority.rfind('@');
    if (at != std::string_view::npos) {
      const std::string_view info = authority.substr(0, at);
      const size_t split = info.find(':');
      user = std::string(info.substr(0, split));
      password = split == std::string_view::npos ? std::string() : std::string(info.substr(split + 1));
      authority.remove_prefix(at + 1);
    }
    std::string_view host_text = authority;
    std::string_view port_text;
    if (!authority.empty() && authority.front() == '[') {
      const size_t close = authority.find(']');
      host_text = authority.substr(1, close == std::string_view::npos ? std::string_view::npos : close - 1);
      if (close != std::string_view::npos && authority.substr(close + 1, 1) == ":") {
        port_text = authority.substr(close + 2);
      }
      ipv6 = true;
    } else {
      const size_t colon = authority.find(':');
      host_text = authority.substr(0, colon);
      if (colon != std::string_view::npos) port_text = authority.substr(colon + 1);
    }
    host = std::string(host_text);
    port = port_text.empty() ? default_port : ParsePort(port_text);
  }
  if (encode) {
    const size_t query = new_path.find('?');
    std::string encoded = Encode(std::string_view(new_path).substr(0, query));
    if (query != std::string::npos) encoded += "?" + Encode(std::string_view(new_path).substr(query + 1));
    new_path = encoded;
  }
  path = new_path.empty() ? "/" : new_path;
}

}  // namespace orvelan
