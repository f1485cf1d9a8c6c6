#pragma once
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdint>
#include <memory>
#include <string_view>

#include "base/byte_string.h"
#include "net/firewall_tunnel.h"
#include "net/line_buffer.h"
#include "net/socket_core.h"

// One client TCP connection, driven by the wait loop of SocketCore: a
// non-blocking connect, sends that may be partial, and a receive loop that
// cuts data into lines (LineBuffer) and hands them up through OnDataIn.
//
// Layers above override the transport hooks (OnConnected, OnDisconnected,
// OnDataIn, OnError, OnReadyToSend, OnConnectionStatus) and pass on what they
// do not handle. With a firewall type set the connection goes to the firewall,
// and the FirewallTunnel's handshake runs before the hooks hear of it.
// Not thread-safe.
namespace orvelan {

class TcpClient : public SocketCore {
 public:
  TcpClient() = default;
  ~TcpClient() override;

  int InitDefaults() override;
  int HandleConfig(ConfigArgument& argument, const char*& out) override;
  int OnSocketEvent(int message, unsigned long socket, long event_bits) override;

  // The firewall settings, kept by the tunnel (see FirewallTunnel).
  // Accepted and without effect on this platform: always reads false.
  bool FirewallAutoDetect() const { return false; }
  int SetFirewallAutoDetect(bool on);
  int32_t FirewallType() const { return tunnel_.type(); }
  // Also sets FirewallPort to the type's default port.
  int SetFirewallType(int32_t type);
  // The text as set; resolved to IPv4 at once (also with UseIPv6). A name
  // that does not resolve leaves address 0 and returns the system error
  // number (EINVAL when the resolver gives none).
  const char* FirewallHost() const { return tunnel_.host(); }
  int SetFirewallHost(const char* host);
  // Network order; 0 when none or unresolved.
  uint32_t FirewallAddress() const { return tunnel_.address(); }
  int32_t FirewallPort() const { return tunnel_.port(); }
  int SetFirewallPort(int32_t port);
  // User and password are cut to 255 bytes.
  const char* FirewallUser() const { return tunnel_.user(); }
  int SetFirewallUser(const char* user) { return tunnel_.SetUser(user); }
  const char* FirewallPassword() const { return tunnel_.password(); }
  int SetFirewallPassword(const char* password) { return tunnel_.SetPassword(password); }

  // The text as set; resolved at once. Reading gives the resolved address.
  // 101 while a socket exists; name-resolution codes 1-4 with their texts.
  const char* RemoteHost();
  // RemoteHost exactly as set.
  const char* RemoteHostText() const { return remote_host_.Data(); }
  int SetRemoteHost(const char* host);
  int32_t RemotePort() const { return remote_port_; }
  // 100 while a socket exists.
  int SetRemotePort(int32_t port);
  // The bound port of the live socket, else the stored one. 106 while a socket exists.
  int32_t LocalPort() const;
  int SetLocalPort(int32_t port);
  // An address or name to bind to; empty means any.
  const char* LocalHost();
  int SetLocalHost(const char* host);
  // Off holds received data back (buffered) until switched on again.
  virtual bool AcceptData() const { return accept_data_; }
  virtual int SetAcceptData(bool on);
  // The line end that cuts received data; empty hands data up as it comes.
  virtual int SetEOL(std::string_view marker);
  bool Linger() const { return linger_; }
  int SetLinger(bool on);
  bool KeepAlive() const { return keep_alive_; }
  int SetKeepAlive(bool on);

  // Starts a non-blocking connect (on) or disconnects (off). Completion comes
  // later through OnConnected.
  int Connect(bool on);
  // Closes the connection; the error half of `event_word` reaches OnDisconnected.
  // Layers that hold unsent data may refuse with 11 (see TlsChannel).
  virtual int Disconnect(long event_word = 0);
  // One non-blocking send: 0 when all was taken, 11 when only part (then
  // BytesLastSent() says how much and a write event is armed), 107 when not
  // connected, or the system error.
  int Send(const char* data, int32_t length);
  int32_t BytesLastSent() const { return bytes_last_sent_; }
  // TCP is up and no tunnel handshake is still running.
  bool IsConnected() const { return connected_ && !tunnel_.Negotiating(); }

 protected:
  friend class FirewallTunnel;  // sits between the socket and the hooks

  // Transport hooks; the defaults do nothing.
  virtual void OnConnected(int code) { (void)code; }
  virtual void OnDisconnected(int code) { (void)code; }
  virtual void OnDataIn(const char* data, int32_t length, bool end_of_line) {
    (void)data;
    (void)length;
    (void)end_of_line;
  }
  virtual void OnError(int code, const char* text) { (void)code, (void)text; }
  virtual void OnReadyToSend() {}
  virtual void OnConnectionStatus(const char* text, int code) { FireConnectionStatus(text, code, ""); }

  // Asks the system resolver for the IPv4 address of `host`: 0, or the
  // h_errno value (1 unknown host, 2 try again, 3 no recovery, 4 no address)
  // with any system error left in errno.
  virtual int LookUpHost(const char* host, in_addr* address);

  // The receive loop; mode 0 readable, 1 drain at disconnect, 2 peer closed,
  // 3 accept data switched before connect, 4 buffered lines only.
  int ReceiveData(int mode);
  // Closes the socket and forgets the connection without any hook.
  void ResetConnection();

  LineBuffer line_buffer_{2048};
  static constexpr uint32_t kBulkSize = 65536;
  std::unique_ptr<char[]> bulk_;  // receive area while no line end is set
  bool graceful_tls_shutdown_ = false;

 private:
  int Resolve(const char* host, sockaddr_storage* address, bool remote);
  int ResolveIPv4(const char* host, sockaddr_in* address, bool remote);
  bool Deliver(const char* data, int32_t length, bool end_of_line);
  bool MayDeliver() const { return (accept_data_ || tunnel_.Negotiating()) && !interrupt_requested_; }
  int ApplyOptions();

  FirewallTunnel tunnel_{*this};
  ByteString remote_host_;
  ByteString local_host_;
  ByteString address_text_;  // what RemoteHost/LocalHost return
  sockaddr_storage remote_address_{};
  sockaddr_storage local_address_{};
  int32_t remote_port_ = 0;
  int32_t local_port_ = 0;
  int32_t bytes_last_sent_ = 0;
  long pending_disconnect_word_ = 0;
  bool connected_ = false;
  bool accept_data_ = true;
  bool in_receive_ = false;
  bool linger_ = true;
  bool keep_alive_ = false;
  bool disconnect_pending_ = false;
  bool no_delay_ = false;
  bool ready_to_send_ = true;
};

}  // namespace orvelan
