#pragma once
#include <cstdint>
#include <string_view>

#include "base/byte_string.h"
#include "net/ntlm_auth.h"

namespace orvelan {

// The client side of a proxy tunnel handshake, without a socket: HTTP CONNECT
// (with Basic or NTLM proxy authorization), SOCKS 4 and SOCKS 5.
//
//   TunnelHandshake h;
//   ByteString out;
//   auto result = h.Start(settings, ntlm, out);     // send `out`
//   while (result == TunnelHandshake::kPending) {
//     out.Clear();
//     result = h.Feed(received, n, false, "", out);  // send `out` when not empty
//   }
//   kEstablished: the tunnel is up; Leftover() came after the proxy's reply.
//   kFailed / kRefused: ErrorText() is the last-error text (code 118).
//
// kFailed means the connection is useless and should be dropped; kRefused is
// an HTTP reply that refused the tunnel, whose status line (or NTLM challenge)
// ReplyText() holds. Not thread-safe.
class TunnelHandshake {
 public:
  enum Result { kPending, kEstablished, kFailed, kRefused };

  struct Settings {
    int32_t type = 0;  // 1 CONNECT, 2 SOCKS 4, 3 SOCKS 5, 4 CONNECT+NTLM, 5 CONNECT+"Negotiate"
    const char* host = "";  // the target as the user wrote it
    int32_t port = 0;
    uint32_t address = 0;  // the target's IPv4 address in network order; 0 when it did not resolve
    const char* user = "";
    const char* password = "";
  };

  static constexpr char kTextUnresolved[] = "firewall request failed: the remote host could not be resolved";

  TunnelHandshake() = default;
  TunnelHandshake(const TunnelHandshake&) = delete;
  TunnelHandshake& operator=(const TunnelHandshake&) = delete;

  // Forgets any earlier handshake and puts the opening bytes into `out`. Types
  // 4 and 5 need `ntlm` (null fails them); types outside 1-5 stay pending for
  // ever and send nothing.
  Result Start(const Settings& settings, NtlmAuth* ntlm, ByteString& out);

  // Takes the next received bytes. `end_of_line` says that the owner cut them
  // at its line end `marker`, which is put back. Bytes to send go into `out`.
  // After the handshake ended every call returns the same result again.
  Result Feed(const char* data, int32_t length, bool end_of_line, std::string_view marker, ByteString& out);

  Result result() const { return result_; }
  int32_t step() const { return step_; }
  const char* ErrorText() const { return error_text_.Data(); }
  const char* ReplyText() const { return reply_text_.Data(); }
  // Bytes that came after the proxy's reply once established.
  std::string_view Leftover() const { return leftover_.View(); }

 private:
  Result Fail(const char* text);
  Result FailCode(const char* format, int value);
  Result Refuse(ByteString& text);
  Result FeedConnect();
  Result FeedSocks4();
  Result FeedSocks5(ByteString& out);
  Result FeedNtlm(ByteString& out);
  Result NtlmLine(std::string_view line);
  Result NtlmConnect(const char* challenge, int32_t challenge_length, ByteString& out);
  Result Establish(int32_t consumed);
  Result RefuseStatus(std::string_view status_line, const ByteString& reply);
  int AppendSocks5Connect(ByteString& out);

  ByteString host_;
  ByteString user_;
  ByteString password_;
  ByteString reply_;  // bytes collected; for NTLM the lines not yet processed
  ByteString challenge_;
  ByteString error_text_;
  ByteString reply_text_;
  ByteString leftover_;
  NtlmAuth* ntlm_ = nullptr;
  int64_t body_length_ = 0;
  int64_t body_read_ = 0;
  uint32_t address_ = 0;
  int32_t port_ = 0;
  int32_t type_ = 0;
  int32_t step_ = 0;
  Result result_ = kPending;
};

}  // namespace orvelan
