#pragma once
#include <cstdint>

#include "base/byte_string.h"

namespace orvelan {

// The firewall or proxy through which a TcpClient may be tunnelled, and its
// settings. No handshake runs yet: every connection goes straight to its
// target and the tunnel only passes events through (Negotiating() is false).
// Not thread-safe.
class FirewallTunnel {
 public:
  FirewallTunnel() = default;
  FirewallTunnel(const FirewallTunnel&) = delete;
  FirewallTunnel& operator=(const FirewallTunnel&) = delete;

  // 0 none, 1 HTTP CONNECT, 2 SOCKS 4, 3 SOCKS 5, 4 CONNECT with NTLM,
  // 5 CONNECT with "Negotiate". Setting a type also sets the port to its
  // default (80 for 1, 4 and 5; 1080 for 2 and 3; else 0).
  int32_t type() const { return type_; }
  void SetType(int32_t type);
  bool IsSet() const { return type_ != 0; }
  // Whether the handshake still owns the connection's bytes.
  bool Negotiating() const { return false; }

  // The host as set, and its IPv4 address in network order (0 = none); the
  // owner resolves the name.
  const char* host() const { return host_.Data(); }
  int SetHost(const char* host) { return host_.Assign(host); }
  uint32_t address() const { return address_; }
  void SetAddress(uint32_t address) { address_ = address; }
  int32_t port() const { return port_; }
  void SetPort(int32_t port) { port_ = port; }
  // User and password are cut to 255 bytes.
  const char* user() const { return user_.Data(); }
  int SetUser(const char* user);
  const char* password() const { return password_.Data(); }
  int SetPassword(const char* password);
  bool auto_detect() const { return auto_detect_; }
  void SetAutoDetect(bool on) { auto_detect_ = on; }

  // Back to no firewall and empty settings.
  void Clear();

 private:
  ByteString host_;
  ByteString user_;
  ByteString password_;
  uint32_t address_ = 0;
  int32_t port_ = 0;
  int32_t type_ = 0;
  bool auto_detect_ = false;
};

}  // namespace orvelan
