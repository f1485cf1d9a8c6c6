#include "net/firewall_tunnel.h"

#include <cstring>

namespace orvelan {
namespace {

constexpr int32_t kMaxCredential = 255;

int AssignCut(ByteString& target, const char* text) {
  const size_t length = text == nullptr ? 0 : std::strlen(text);
  return target.Assign(text, static_cast<int32_t>(length > kMaxCredential ? kMaxCredential : length));
}

}  // namespace

void FirewallTunnel::SetType(int32_t type) {
  type_ = type;
  switch (type) {
    case 1:
    case 4:
    case 5:
      port_ = 80;
      break;
    case 2:
    case 3:
      port_ = 1080;
      break;
    default:
      port_ = 0;
      break;
  }
}

int FirewallTunnel::SetUser(const char* user) { return AssignCut(user_, user); }

int FirewallTunnel::SetPassword(const char* password) { return AssignCut(password_, password); }

void FirewallTunnel::Clear() {
  host_.Clear();
  user_.Clear();
  password_.Clear();
  address_ = 0;
  port_ = 0;
  type_ = 0;
  auto_detect_ = false;
}

}  // namespace orvelan
