#include "net/tcp_client.h"

#include <cstring>

namespace orvelan {
namespace {

constexpr int32_t kMaxFirewallCredential = 255;

int AssignCut(ByteString& target, const char* text, int32_t limit) {
  const size_t length = text == nullptr ? 0 : std::strlen(text);
  return target.Assign(text, static_cast<int32_t>(length > static_cast<size_t>(limit) ? limit : length));
}

}  // namespace

int TcpClient::InitDefaults() {
  SocketCore::InitDefaults();
  firewall_host_.Clear();
  firewall_user_.Clear();
  firewall_password_.Clear();
  firewall_port_ = 0;
  firewall_type_ = 0;
  firewall_auto_detect_ = false;
  return 1;
}

int TcpClient::SetFirewallAutoDetect(bool on) {
  firewall_auto_detect_ = on;
  return kOk;
}

int TcpClient::SetFirewallType(int32_t type) {
  firewall_type_ = type;
  switch (type) {
    case 1:
    case 4:
    case 5:
      firewall_port_ = 80;
      break;
    case 2:
    case 3:
      firewall_port_ = 1080;
      break;
    default:
      firewall_port_ = 0;
      break;
  }
  return kOk;
}

int TcpClient::SetFirewallHost(const char* host) { return firewall_host_.Assign(host); }

int TcpClient::SetFirewallPort(int32_t port) {
  firewall_port_ = port;
  return kOk;
}

int TcpClient::SetFirewallUser(const char* user) { return AssignCut(firewall_user_, user, kMaxFirewallCredential); }

int TcpClient::SetFirewallPassword(const char* password) {
  return AssignCut(firewall_password_, password, kMaxFirewallCredential);
}

}  // namespace orvelan
