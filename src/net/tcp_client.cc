#include "net/tcp_client.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "core/setting_table.h"

namespace orvelan {
namespace {

constexpr uint32_t kMaxLineLength = 65536;

constexpr char kTextRemotePortBusy[] = "You cannot change the RemotePort at this time. A connection is in progress.";
constexpr char kTextRemoteHostBusy[] = "You cannot change the RemoteHost at this time. A connection is in progress.";
constexpr char kTextLocalPortBusy[] = "You cannot change the LocalPort at this time. A connection is in progress.";
constexpr char kTextMaxLineLengthBusy[] = "You cannot change MaxLineLength at this time. A connection is in progress.";
constexpr char kTextInvalidRemoteAddress[] = "The RemoteHost address is invalid (0.0.0.0).";
constexpr char kTextInvalidFirewallAddress[] = "The FirewallHost address is invalid (0.0.0.0).";
constexpr char kTextAlreadyConnected[] =
    "Already connected. If you want to reconnect, close the current connection first.";
constexpr char kTextZeroPort[] = "RemotePort can't be zero. Please specify a valid service port number.";
constexpr char kTextZeroFirewallPort[] = "The FirewallPort is invalid (0).";

// The texts of the name-resolution codes (h_errno values 1-4).
const char* ResolutionText(int code) {
  switch (code) {
    case HOST_NOT_FOUND:
      return "The specified host is unknown.";
    case TRY_AGAIN:
      return "A temporary error occurred on an authoritative name server.  Try again later.";
    case NO_RECOVERY:
      return " A non-recoverable name server error occurred.";
    case NO_DATA:
      return " The requested name is valid but does not have an IP address.";
    default:
      return "A name resolution error occurred.";
  }
}

bool IsZeroIPv4(const sockaddr_storage& address) {
  return address.ss_family != AF_INET6 &&
         (address.ss_family != AF_INET || reinterpret_cast<const sockaddr_in&>(address).sin_addr.s_addr == 0);
}

void SetPort(sockaddr_storage& address, int32_t port) {
  if (address.ss_family == AF_INET6) {
    reinterpret_cast<sockaddr_in6&>(address).sin6_port = htons(static_cast<uint16_t>(port));
  } else {
    reinterpret_cast<sockaddr_in&>(address).sin_port = htons(static_cast<uint16_t>(port));
  }
}

}  // namespace

TcpClient::~TcpClient() { ResetConnection(); }

int TcpClient::InitDefaults() {
  SocketCore::InitDefaults();
  tunnel_.Clear();
  return 1;
}

int TcpClient::HandleConfig(ConfigArgument& argument, const char*& out) {
  using R = Setting<TcpClient>;
  using A = const ConfigArgument&;
  static constexpr R kSettings[] = {
      {"MaxLineLength",
       [](TcpClient& c, const char*& out) { return c.ReturnConfigValue(out, int64_t{c.line_buffer_.Capacity()}); },
       [](TcpClient& c, A argument) {
         if (c.socket_.is_valid()) return c.ReportError(kErrMaxLineLengthBusy, kTextMaxLineLengthBusy);
         int64_t value = argument.ValueAsInt();
         if (value < 1) value = 1;
         if (value > kMaxLineLength) value = kMaxLineLength;
         return c.line_buffer_.SetCapacity(static_cast<uint32_t>(value)) ? kOk : kErrOutOfMemory;
       }},
      {"SocketHandle",
       [](TcpClient& c, const char*& out) { return c.ReturnConfigValue(out, int64_t{c.socket_.get()}); }},
      {"TcpNoDelay", R::QueryTrueFalse<&TcpClient::no_delay_>,
       [](TcpClient& c, A argument) {
         c.no_delay_ = argument.ValueAsBool();
         const int value = c.no_delay_ ? 1 : 0;
         if (c.socket_.is_valid()) setsockopt(c.socket_.get(), IPPROTO_TCP, TCP_NODELAY, &value, sizeof value);
         return kOk;
       }},
      {"SplitCRLF", [](TcpClient& c, const char*& out) { return AnswerTrueFalse(c, out, c.line_buffer_.SplitAny()); },
       [](TcpClient& c, A argument) {
         c.line_buffer_.SetSplitAny(argument.ValueAsBool());
         return kOk;
       }},
      R::TrueFalse<&TcpClient::graceful_tls_shutdown_>("GracefullyShutDownSSL"),
      {"FirewallAutoDetect", [](TcpClient& c, const char*& out) { return AnswerTrueFalse(c, out, false); },
       [](TcpClient& c, A argument) { return c.SetFirewallAutoDetect(argument.ValueAsBool()); }},
      {"FirewallType",
       [](TcpClient& c, const char*& out) { return c.ReturnConfigValue(out, int64_t{c.tunnel_.type()}); },
       [](TcpClient& c, A argument) { return c.SetFirewallType(argument.ValueAsInt()); }},
      {"FirewallHost", [](TcpClient& c, const char*& out) { return c.ReturnConfigValue(out, c.FirewallHost()); },
       [](TcpClient& c, A argument) { return c.SetFirewallHost(argument.Value()); }},
      {"FirewallPort",
       [](TcpClient& c, const char*& out) { return c.ReturnConfigValue(out, int64_t{c.tunnel_.port()}); },
       [](TcpClient& c, A argument) { return c.SetFirewallPort(argument.ValueAsInt()); }},
      {"FirewallUser", [](TcpClient& c, const char*& out) { return c.ReturnConfigValue(out, c.FirewallUser()); },
       [](TcpClient& c, A argument) { return c.SetFirewallUser(argument.Value()); }},
      {"FirewallPassword",
       [](TcpClient& c, const char*& out) { return c.ReturnConfigValue(out, c.FirewallPassword()); },
       [](TcpClient& c, A argument) { return c.SetFirewallPassword(argument.Value()); }},
      {"FirewallData", [](TcpClient& c, const char*& out) { return c.ReturnConfigValue(out, ""); }},
  };
  if (const R* row = FindSetting(kSettings, argument)) return row->Run(*this, argument, out);
  return SocketCore::HandleConfig(argument, out);
}

int TcpClient::SetFirewallAutoDetect(bool on) {
  tunnel_.SetAutoDetect(on);
  return kOk;
}

int TcpClient::SetFirewallType(int32_t type) {
  tunnel_.SetType(type);
  return kOk;
}

int TcpClient::SetFirewallHost(const char* host) {
  SetErrorText("");
  tunnel_.SetAddress(0);
  if (int rc = tunnel_.SetHost(host); rc != kOk) return rc;
  if (host == nullptr || *host == '\0') return kOk;
  sockaddr_in address{};
  if (int rc = ResolveIPv4(host, &address, false); rc != kOk) return rc;
  tunnel_.SetAddress(address.sin_addr.s_addr);
  return kOk;
}

int TcpClient::SetFirewallPort(int32_t port) {
  tunnel_.SetPort(port);
  return kOk;
}

int TcpClient::Resolve(const char* host, sockaddr_storage* address, bool remote) {
  *address = sockaddr_storage{};
  if (host == nullptr || *host == '\0') {
    address->ss_family = use_ipv6_ ? AF_INET6 : AF_INET;
    return kOk;
  }
  if (use_ipv6_) {
    // A "%N" suffix names the scope (interface) of a link-local address.
    ByteString name(host);
    uint32_t scope = 0;
    if (const char* percent = std::strchr(host, '%'); percent != nullptr) {
      name.Assign(host, static_cast<int32_t>(percent - host));
      scope = static_cast<uint32_t>(std::strtoul(percent + 1, nullptr, 10));
    }
    addrinfo hints{};
    hints.ai_family = AF_INET6;
    hints.ai_socktype = remote ? SOCK_STREAM : 0;
    addrinfo* found = nullptr;
    if (int rc = getaddrinfo(name.Data(), nullptr, &hints, &found); rc != 0) {
      SetErrorText(gai_strerror(rc));
      return rc < 0 ? -rc : rc;
    }
    std::memcpy(address, found->ai_addr, found->ai_addrlen);
    freeaddrinfo(found);
    if (scope != 0) reinterpret_cast<sockaddr_in6*>(address)->sin6_scope_id = scope;
    return kOk;
  }
  return ResolveIPv4(host, reinterpret_cast<sockaddr_in*>(address), remote);
}

int TcpClient::ResolveIPv4(const char* host, sockaddr_in* v4, bool remote) {
  v4->sin_family = AF_INET;
  if (inet_pton(AF_INET, host, &v4->sin_addr) == 1) return kOk;
  errno = 0;  // a failed lookup need not set it, and a stale value would mislead
  int h_error = LookUpHost(host, &v4->sin_addr);
  if (h_error == 0) return kOk;
  if (!remote) return errno != 0 ? errno : EINVAL;
  return ReportError(h_error, ResolutionText(h_error));
}

int TcpClient::LookUpHost(const char* host, in_addr* address) {
  hostent entry{};
  hostent* result = nullptr;
  char scratch[2048];
  int h_error = 0;
  if (gethostbyname_r(host, &entry, scratch, sizeof scratch, &result, &h_error) != 0 || result == nullptr ||
      result->h_addrtype != AF_INET || result->h_addr_list[0] == nullptr) {
    return h_error != 0 ? h_error : HOST_NOT_FOUND;
  }
  std::memcpy(address, result->h_addr_list[0], sizeof *address);
  return 0;
}

const char* TcpClient::RemoteHost() {
  if (tunnel_.IsSet()) return remote_host_.Data();
  char text[INET6_ADDRSTRLEN] = "";
  if (remote_address_.ss_family == AF_INET6) {
    inet_ntop(AF_INET6, &reinterpret_cast<sockaddr_in6&>(remote_address_).sin6_addr, text, sizeof text);
  } else if (!IsZeroIPv4(remote_address_)) {
    inet_ntop(AF_INET, &reinterpret_cast<sockaddr_in&>(remote_address_).sin_addr, text, sizeof text);
  }
  address_text_.Assign(text);
  return address_text_.Data();
}

int TcpClient::SetRemoteHost(const char* host) {
  SetErrorText("");
  if (socket_.is_valid()) return ReportError(kErrRemoteHostBusy, kTextRemoteHostBusy);
  if (int rc = remote_host_.Assign(host); rc != kOk) return rc;
  if (tunnel_.IsSet()) return kOk;  // the tunnel carries the name
  return Resolve(host, &remote_address_, true);
}

int TcpClient::SetRemotePort(int32_t port) {
  SetErrorText("");
  if (socket_.is_valid()) return ReportError(kErrRemotePortBusy, kTextRemotePortBusy);
  remote_port_ = port;
  return kOk;
}

int32_t TcpClient::LocalPort() const {
  if (socket_.is_valid()) {
    sockaddr_storage bound{};
    socklen_t length = sizeof bound;
    if (getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&bound), &length) == 0) {
      return ntohs(bound.ss_family == AF_INET6 ? reinterpret_cast<sockaddr_in6&>(bound).sin6_port
                                               : reinterpret_cast<sockaddr_in&>(bound).sin_port);
    }
  }
  return local_port_;
}

int TcpClient::SetLocalPort(int32_t port) {
  SetErrorText("");
  if (socket_.is_valid()) return ReportError(kErrLocalPortBusy, kTextLocalPortBusy);
  local_port_ = port;
  return kOk;
}

const char* TcpClient::LocalHost() {
  char text[INET6_ADDRSTRLEN] = "";
  sockaddr_storage bound = local_address_;
  socklen_t length = sizeof bound;
  if (connected_) getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&bound), &length);
  if (bound.ss_family == AF_INET6) {
    inet_ntop(AF_INET6, &reinterpret_cast<sockaddr_in6&>(bound).sin6_addr, text, sizeof text);
  } else if (!IsZeroIPv4(bound)) {
    inet_ntop(AF_INET, &reinterpret_cast<sockaddr_in&>(bound).sin_addr, text, sizeof text);
  } else {
    gethostname(text, sizeof text - 1);
    text[sizeof text - 1] = '\0';
  }
  address_text_.Assign(text);
  return address_text_.Data();
}

int TcpClient::SetLocalHost(const char* host) {
  SetErrorText("");
  if (int rc = local_host_.Assign(host); rc != kOk) return rc;
  return Resolve(host, &local_address_, false);
}

int TcpClient::SetAcceptData(bool on) {
  accept_data_ = on;
  if (on && connected_) pending_read_ = true;  // deliver what is buffered on the next cycle
  if (socket_.is_valid() && !connected_) ReceiveData(3);
  return kOk;
}

int TcpClient::SetEOL(std::string_view marker) {
  line_buffer_.SetMarker(marker);
  if (connected_) pending_read_ = true;
  return kOk;
}

int TcpClient::SetLinger(bool on) {
  linger_ = on;
  return socket_.is_valid() ? ApplyOptions() : kOk;
}

int TcpClient::SetKeepAlive(bool on) {
  keep_alive_ = on;
  return socket_.is_valid() ? ApplyOptions() : kOk;
}

int TcpClient::ApplyOptions() {
  const int fd = socket_.get();
  const int keep_alive = keep_alive_ ? 1 : 0;
  setsockopt(fd, SOL_SOCKET, SO_KEEPALIVE, &keep_alive, sizeof keep_alive);
  // Linger off means close resets the connection; on leaves the graceful close.
  const struct linger linger_option = {linger_ ? 0 : 1, 0};
  setsockopt(fd, SOL_SOCKET, SO_LINGER, &linger_option, sizeof linger_option);
  for (auto [size, option] : {std::pair{in_buffer_size_, SO_RCVBUF}, std::pair{out_buffer_size_, SO_SNDBUF}}) {
    if (size == 0) continue;
    const int value = static_cast<int>(size);
    if (setsockopt(fd, SOL_SOCKET, option, &value, sizeof value) != 0) return errno;
  }
  const int one = 1;
  setsockopt(fd, SOL_SOCKET, SO_OOBINLINE, &one, sizeof one);
  if (no_delay_) setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
  return kOk;
}

int TcpClient::Connect(bool on) {
  if (!on) return Disconnect(0);
  ClearError();
  if (socket_.is_valid()) return ReportError(kErrAlreadyConnected, kTextAlreadyConnected);
  disconnect_pending_ = false;
  line_buffer_.Clear();
  // Through a firewall the connection goes to it; the tunnel names RemoteHost
  // to the firewall, which resolves it unless a SOCKS request needs the address.
  const bool firewall = tunnel_.IsSet();
  if (firewall) {
    if (!use_ipv6_ && tunnel_.address() == 0) return ReportError(kErrInvalidAddress, kTextInvalidFirewallAddress);
    if (tunnel_.port() == 0) return ReportError(kErrZeroPort, kTextZeroFirewallPort);
  } else if (!use_ipv6_ && IsZeroIPv4(remote_address_)) {
    // A name set while a firewall was configured has not been resolved yet.
    if (remote_host_.Length() > 0) {
      if (int rc = Resolve(remote_host_.Data(), &remote_address_, true); rc != kOk) return rc;
    }
    if (IsZeroIPv4(remote_address_)) return ReportError(kErrInvalidAddress, kTextInvalidRemoteAddress);
  }
  if (remote_port_ == 0) return ReportError(kErrZeroPort, kTextZeroPort);
  connected_ = false;
  sockaddr_storage target = remote_address_;
  SetPort(target, remote_port_);
  if (firewall) {
    target = sockaddr_storage{};
    auto& v4 = reinterpret_cast<sockaddr_in&>(target);
    v4.sin_family = AF_INET;
    v4.sin_addr.s_addr = tunnel_.address();
    v4.sin_port = htons(static_cast<uint16_t>(tunnel_.port()));
  }
  const bool v6 = target.ss_family == AF_INET6;
  socket_.reset(socket(v6 ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (!socket_.is_valid()) return errno;
  if (!v6 && (local_port_ != 0 || !IsZeroIPv4(local_address_))) {
    sockaddr_in local{};
    local.sin_family = AF_INET;
    if (local_address_.ss_family == AF_INET) local.sin_addr = reinterpret_cast<sockaddr_in&>(local_address_).sin_addr;
    local.sin_port = htons(static_cast<uint16_t>(local_port_));
    if (bind(socket_.get(), reinterpret_cast<sockaddr*>(&local), sizeof local) != 0) {
      const int error = errno;
      ResetConnection();
      return error;
    }
  }
  if (int rc = ApplyOptions(); rc != kOk) {
    ResetConnection();
    return rc;
  }
  if (int rc = WatchSocket(kEventRead | kEventWrite | kEventConnect | kEventClose); rc != kOk) {
    ResetConnection();
    return rc;
  }
  const socklen_t length = v6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
  if (connect(socket_.get(), reinterpret_cast<sockaddr*>(&target), length) != 0 && errno != EINPROGRESS) {
    const int error = errno;
    ResetConnection();
    return error;
  }
  return kOk;
}

void TcpClient::ResetConnection() {
  SetEventMask(0);
  socket_.reset();
  transcript_.Close();
  connected_ = false;
  bytes_last_sent_ = 0;
  accept_data_ = true;
  in_receive_ = false;
  disconnect_pending_ = false;
  pending_disconnect_word_ = 0;
  pending_read_ = false;
}

int TcpClient::Disconnect(long event_word) {
  if (!socket_.is_valid()) {
    ResetConnection();
    return kOk;
  }
  SetEventMask(0);
  if (in_receive_) {
    // The receive loop is handing data up; it finishes the disconnect.
    disconnect_pending_ = true;
    pending_disconnect_word_ = event_word;
    return kOk;
  }
  in_receive_ = true;  // a hook that disconnects again must not recurse
  if (accept_data_) ReceiveData(1);
  if (connected_) {
    connected_ = false;
    tunnel_.Disconnected(static_cast<int>(static_cast<unsigned long>(event_word) >> 16));
    transcript_.Close();
  }
  const int fd = socket_.release();
  const int rc = fd >= 0 && ::close(fd) != 0 ? errno : kOk;
  ResetConnection();
  return rc;
}

int TcpClient::Send(const char* data, int32_t length) {
  if (!connected_ || !socket_.is_valid()) {
    errno = kErrNotConnected;
    return kErrNotConnected;
  }
  if (length <= 0) return kOk;
  const ssize_t sent = send(socket_.get(), data, static_cast<size_t>(length), MSG_NOSIGNAL);
  if (sent < 0) {
    const int error = errno == EWOULDBLOCK ? kErrWouldBlock : errno;
    bytes_last_sent_ = 0;
    AddEvents(kEventWrite);
    return error;
  }
  RestartDeadline();
  bytes_last_sent_ = static_cast<int32_t>(sent);
  if (!secure_) transcript_.Record(true, std::string_view(data, static_cast<size_t>(sent)));
  if (sent == length) return kOk;
  ready_to_send_ = false;
  AddEvents(kEventWrite);
  return kErrWouldBlock;
}

int TcpClient::OnSocketEvent(int message, unsigned long socket, long event_bits) {
  if (message != kSocketMessage || static_cast<int>(socket) != socket_.get() || !socket_.is_valid()) {
    return SocketCore::OnSocketEvent(message, socket, event_bits);
  }
  const auto word = static_cast<unsigned long>(event_bits);
  const int error = static_cast<int>(word >> 16);
  switch (word & 0xFFFF) {
    case kEventRead:
      if ((accept_data_ || tunnel_.Negotiating()) && !in_receive_) {
        in_receive_ = true;
        ReceiveData(0);
        in_receive_ = false;
        if (disconnect_pending_) {
          disconnect_pending_ = false;
          TcpClient::Disconnect(pending_disconnect_word_);
        }
      }
      break;
    case kEventWrite:
      ready_to_send_ = true;
      tunnel_.ReadyToSend();
      break;
    case kEventConnect:
      if (error != 0) {
        connected_ = false;
        tunnel_.Connected(error);
        ResetConnection();
        break;
      }
      connected_ = true;
      {
        const int one = 1;
        setsockopt(socket_.get(), SOL_SOCKET, SO_OOBINLINE, &one, sizeof one);
      }
      if (transcript_path_.Length() > 0) transcript_.Open(transcript_path_.Data());
      tunnel_.Connected(0);
      break;
    case kEventClose:
      ReceiveData(2);
      TcpClient::Disconnect(event_bits);  // the peer is gone: nothing queued can be flushed
      break;
    default:
      break;
  }
  return kOk;
}

bool TcpClient::Deliver(const char* data, int32_t length, bool end_of_line) {
  RestartDeadline();
  tunnel_.DataIn(data, length, end_of_line);
  return MayDeliver() && socket_.is_valid();
}

int TcpClient::ReceiveData(int mode) {
  if (!socket_.is_valid() && mode != 4) return kOk;
  if (!MayDeliver()) return kOk;
  const bool cutting = !line_buffer_.Marker().empty();
  std::string_view line;
  for (;;) {
    while (line_buffer_.NextLine(&line)) {
      if (!Deliver(line.data(), static_cast<int32_t>(line.size()), cutting)) return kOk;
    }
    if (mode == 4) return kOk;
    LineBuffer::Room room = line_buffer_.FreeRoom();
    if (room.size == 0) {
      const std::string_view all = line_buffer_.TakeAll();
      if (!Deliver(all.data(), static_cast<int32_t>(all.size()), false)) return kOk;
      continue;
    }
    if (disconnect_pending_ && mode == 0) {
      in_receive_ = false;
      disconnect_pending_ = false;
      return TcpClient::Disconnect(pending_disconnect_word_);
    }
    // Without line cutting there is nothing to keep between reads, so bulk
    // data skips the line buffer and arrives in large pieces.
    if (!cutting && line_buffer_.Unread() == 0) {
      if (bulk_ == nullptr) bulk_.reset(new char[kBulkSize]);
      room = {bulk_.get(), kBulkSize};
    }
    const ssize_t received = recv(socket_.get(), room.data, room.size, 0);
    if (received < 0) {
      const int error = errno == EWOULDBLOCK ? kErrWouldBlock : errno;
      if (error == kErrWouldBlock || error == EINTR || error == ENOTSOCK || error == ECONNABORTED ||
          error == ECONNRESET) {
        return error;
      }
      ByteString text("socket error in recv: ");
      text.AppendInt(error);
      OnError(error, text.Data());
      return error;
    }
    if (received > 0 && !secure_) transcript_.Record(false, std::string_view(room.data, static_cast<size_t>(received)));
    if (received > 0 && room.data == bulk_.get()) {
      if (!Deliver(room.data, static_cast<int32_t>(received), false)) return kOk;
      if (mode == 0) continue;
    } else if (received > 0 && mode == 0) {
      line_buffer_.Commit(static_cast<uint32_t>(received));
      continue;
    } else if (received > 0) {
      line_buffer_.Commit(static_cast<uint32_t>(received));
    }
    while (line_buffer_.NextLine(&line)) {
      if (!Deliver(line.data(), static_cast<int32_t>(line.size()), cutting)) return kOk;
    }
    if (line_buffer_.Unread() > 0) {
      const std::string_view rest = line_buffer_.TakeAll();
      if (!Deliver(rest.data(), static_cast<int32_t>(rest.size()), false)) return kOk;
    }
    if (mode == 1) return kOk;
    if (received > 0) continue;
    // End of stream.
    in_receive_ = false;
    if (mode != 0) return kOk;
    return TcpClient::Disconnect(pending_disconnect_word_);
  }
}

}  // namespace orvelan
