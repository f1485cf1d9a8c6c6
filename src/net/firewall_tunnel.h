#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "net/tunnel_handshake.h"

namespace orvelan {

class TcpClient;

// The firewall or proxy through which a TcpClient reaches its RemoteHost, and
// the settings for it. With a type set the TCP connection goes to the
// firewall; once it is up the tunnel runs its handshake (TunnelHandshake) on
// the raw socket and only then lets the owner hear of the connection. Without
// a type it passes every event straight on. Failures are code 118.
// Owned by its TcpClient; not thread-safe.
class FirewallTunnel {
 public:
  explicit FirewallTunnel(TcpClient& owner) : owner_(owner) {}
  FirewallTunnel(const FirewallTunnel&) = delete;
  FirewallTunnel& operator=(const FirewallTunnel&) = delete;

  // 0 none, 1 HTTP CONNECT, 2 SOCKS 4, 3 SOCKS 5, 4 CONNECT with NTLM,
  // 5 CONNECT with "Negotiate". Setting a type also sets the port to its
  // default (80 for 1, 4 and 5; 1080 for 2 and 3; else 0).
  int32_t type() const { return type_; }
  void SetType(int32_t type);
  bool IsSet() const { return type_ != 0; }
  // Whether the handshake still owns the connection's bytes; the owner does
  // not count as connected meanwhile.
  bool Negotiating() const { return negotiating_; }

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

  // The owner's transport events; each reaches the owner's hook of the same
  // name unless the handshake consumes it.
  void Connected(int code);
  void Disconnected(int code);
  void DataIn(const char* data, int32_t length, bool end_of_line);
  void ReadyToSend();

 private:
  void Begin();
  void Handle(TunnelHandshake::Result result);
  bool SendOut();
  void Fail(const char* text);
  void RestoreMarker();
  void PushBack(std::string_view bytes);

  TcpClient& owner_;
  TunnelHandshake handshake_;
  ByteString host_;
  ByteString user_;
  ByteString password_;
  ByteString out_;  // handshake bytes the socket has not taken yet
  ByteString saved_marker_;
  uint32_t address_ = 0;
  int32_t port_ = 0;
  int32_t type_ = 0;
  bool auto_detect_ = false;
  bool negotiating_ = false;
  bool marker_saved_ = false;
};

}  // namespace orvelan
