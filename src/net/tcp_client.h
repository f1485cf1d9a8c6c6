#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "net/socket_core.h"

// One client connection and the firewall through which it may be tunnelled.
// For now it holds the firewall settings that the components expose.
namespace orvelan {

class TcpClient : public SocketCore {
 public:
  TcpClient() = default;

  int InitDefaults() override;

  bool FirewallAutoDetect() const { return firewall_auto_detect_; }
  // Accepted and without effect on this platform.
  int SetFirewallAutoDetect(bool on);
  int32_t FirewallType() const { return firewall_type_; }
  // 0 none, 1 HTTP CONNECT, 2 SOCKS 4, 3 SOCKS 5, 4 CONNECT with NTLM,
  // 5 CONNECT with "Negotiate". Also sets FirewallPort to the type's default
  // port (80 for 1, 4 and 5; 1080 for 2 and 3; else 0).
  int SetFirewallType(int32_t type);
  const char* FirewallHost() const { return firewall_host_.Data(); }
  int SetFirewallHost(const char* host);
  int32_t FirewallPort() const { return firewall_port_; }
  int SetFirewallPort(int32_t port);
  // User and password are cut to 255 bytes.
  const char* FirewallUser() const { return firewall_user_.Data(); }
  int SetFirewallUser(const char* user);
  const char* FirewallPassword() const { return firewall_password_.Data(); }
  int SetFirewallPassword(const char* password);

 private:
  ByteString firewall_host_;
  ByteString firewall_user_;
  ByteString firewall_password_;
  int32_t firewall_port_ = 0;
  int32_t firewall_type_ = 0;
  bool firewall_auto_detect_ = false;
};

}  // namespace orvelan
