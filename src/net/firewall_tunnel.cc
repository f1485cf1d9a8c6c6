#include "net/firewall_tunnel.h"

#include <arpa/inet.h>

#include <cstring>
#include <string>

#include "core/error_text_table.h"
#include "net/tcp_client.h"

namespace orvelan {
namespace {

constexpr int32_t kMaxCredential = 255;
constexpr char kTextClosedEarly[] = "Firewall host disconnected before the tunnel was open.";

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

void FirewallTunnel::Connected(int code) {
  out_.Clear();
  marker_saved_ = false;
  saved_marker_.Clear();
  if (code != 0) {
    negotiating_ = false;
    if (IsSet()) owner_.OnConnectionStatus("Firewall connection failed.", code);
    owner_.OnConnected(code);
    return;
  }
  negotiating_ = true;
  if (!IsSet()) {
    negotiating_ = false;
    owner_.OnConnected(0);
    return;
  }
  owner_.OnConnectionStatus("Firewall connection complete.", 0);
  Begin();
}

void FirewallTunnel::Begin() {
  TunnelHandshake::Settings settings;
  settings.type = type_;
  settings.host = owner_.RemoteHostText();
  settings.port = owner_.RemotePort();
  settings.user = user_.Data();
  settings.password = password_.Data();
  const bool socks = type_ == 2 || type_ == 3;
  if (socks && *settings.host != '\0' && !(type_ == 3 && *settings.host == '*')) {
    // SOCKS 4 and SOCKS 5 with an address name the target by its IPv4 address.
    sockaddr_in resolved{};
    if (owner_.ResolveIPv4(settings.host, &resolved, false) == kOk) settings.address = resolved.sin_addr.s_addr;
  }
  if (type_ == 4 || type_ == 5) {
    saved_marker_.Assign(owner_.line_buffer_.Marker());
    marker_saved_ = true;
    owner_.line_buffer_.SetMarker("\r\n");
  }
  Handle(handshake_.Start(settings, &owner_.ntlm_, out_));
}

void FirewallTunnel::DataIn(const char* data, int32_t length, bool end_of_line) {
  if (!negotiating_ || !IsSet()) {
    owner_.OnDataIn(data, length, end_of_line);
    return;
  }
  if (type_ < 1 || type_ > 5) return;  // no handshake runs: the bytes go nowhere
  Handle(handshake_.Feed(data, length, end_of_line, owner_.line_buffer_.Marker(), out_));
}

void FirewallTunnel::Handle(TunnelHandshake::Result result) {
  if (result == TunnelHandshake::kFailed) {
    out_.Clear();
    Fail(handshake_.ErrorText());
    return;
  }
  if (!SendOut()) return;
  if (result == TunnelHandshake::kPending) return;
  negotiating_ = false;
  RestoreMarker();
  if (result == TunnelHandshake::kRefused) {
    const ByteString text(handshake_.ErrorText());
    owner_.OnError(kErrTunnel, handshake_.ReplyText());
    owner_.SetErrorText(text.Data());
    owner_.OnConnected(kErrTunnel);
    return;
  }
  PushBack(handshake_.Leftover());
  owner_.OnConnected(0);
}

bool FirewallTunnel::SendOut() {
  while (out_.Length() > 0) {
    const int rc = owner_.Send(out_.Data(), out_.Length());
    if (rc == kOk) {
      out_.Clear();
      break;
    }
    if (rc != kErrWouldBlock) {
      out_.Clear();
      std::string text = "firewall request could not be sent: ";
      const char* system = SystemErrorText(rc);
      text += system != nullptr ? system : std::to_string(rc);
      Fail(text.c_str());
      return false;
    }
    out_.RemovePrefix(owner_.BytesLastSent());
    return true;  // the rest goes out when the socket is ready again
  }
  return true;
}

void FirewallTunnel::ReadyToSend() {
  if (negotiating_ && out_.Length() > 0) {
    SendOut();
    return;
  }
  owner_.OnReadyToSend();
}

void FirewallTunnel::Fail(const char* text) {
  const ByteString copy(text);
  owner_.OnError(kErrTunnel, copy.Data());
  negotiating_ = false;
  RestoreMarker();
  if (copy.Length() > 0) owner_.SetErrorText(copy.Data());
  owner_.OnConnected(kErrTunnel);
  owner_.TcpClient::Disconnect(0);
}

void FirewallTunnel::Disconnected(int code) {
  const bool was_negotiating = negotiating_ && type_ >= 1 && type_ <= 5;
  negotiating_ = false;
  out_.Clear();
  RestoreMarker();
  if (was_negotiating) {
    // The connect is still waiting for the handshake: end it now, not at the time-out.
    owner_.OnError(kErrTunnel, kTextClosedEarly);
    owner_.SetErrorText(kTextClosedEarly);
    owner_.OnConnected(kErrTunnel);
  }
  if (IsSet()) owner_.OnConnectionStatus("Firewall host disconnected.", code);
  owner_.OnDisconnected(code);
}

void FirewallTunnel::RestoreMarker() {
  if (!marker_saved_) return;
  marker_saved_ = false;
  owner_.line_buffer_.SetMarker(saved_marker_.View());
}

void FirewallTunnel::PushBack(std::string_view bytes) {
  if (bytes.empty()) return;
  // What came after the proxy's reply is the start of the tunnelled stream:
  // it goes ahead of anything still unread.
  LineBuffer& lines = owner_.line_buffer_;
  std::string all(bytes);
  const std::string_view rest = lines.TakeAll();
  all.append(rest.data(), rest.size());
  lines.Clear();
  std::string_view left = all;
  while (!left.empty()) {
    const LineBuffer::Room room = lines.FreeRoom();
    if (room.size == 0) break;
    const size_t n = std::min<size_t>(room.size, left.size());
    std::memcpy(room.data, left.data(), n);
    lines.Commit(static_cast<uint32_t>(n));
    left.remove_prefix(n);
  }
  owner_.pending_read_ = true;
}

}  // namespace orvelan
