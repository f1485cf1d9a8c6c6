#include "net/tunnel_handshake.h"

#include <cstdio>
#include <cstring>

#include "base/error_codes.h"
#include "base/text_util.h"

namespace orvelan {
namespace {

constexpr int32_t kMaxStatusWait = 1024;  // a refused CONNECT waits this long for its line end

const char* Mechanism(int32_t type) { return type == 5 ? "Negotiate" : "NTLM"; }

bool HasPrefixNoCase(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  for (size_t i = 0; i < prefix.size(); ++i) {
    if (ToLowerAscii(text[i]) != ToLowerAscii(prefix[i])) return false;
  }
  return true;
}

// The status code of an HTTP status line, and the text after it.
void SplitStatus(std::string_view line, std::string_view* code, std::string_view* reason) {
  size_t at = line.find(' ');
  at = at == std::string_view::npos ? line.size() : at;
  while (at < line.size() && line[at] == ' ') ++at;
  size_t end = line.find(' ', at);
  end = end == std::string_view::npos ? line.size() : end;
  *code = line.substr(at, end - at);
  while (end < line.size() && line[end] == ' ') ++end;
  *reason = line.substr(end);
}

void AppendConnect(ByteString& out, const ByteString& host, int32_t port) {
  out.Append("CONNECT ");
  out.Append(host);
  out.AppendChar(':');
  out.AppendInt(port);
  out.Append(" HTTP/1.0\r\n");
}

}  // namespace

TunnelHandshake::Result TunnelHandshake::Start(const Settings& settings, NtlmAuth* ntlm, ByteString& out) {
  type_ = settings.type;
  port_ = settings.port;
  address_ = settings.address;
  ntlm_ = ntlm;
  host_.Assign(settings.host);
  user_.Assign(settings.user);
  password_.Assign(settings.password);
  reply_.Clear();
  challenge_.Clear();
  error_text_.Clear();
  reply_text_.Clear();
  leftover_.Clear();
  body_length_ = body_read_ = 0;
  step_ = 0;
  result_ = kPending;
  switch (type_) {
    case 1:
      AppendConnect(out, host_, port_);
      if (user_.Length() > 0 || password_.Length() > 0) {
        ByteString credential(user_);
        credential.AppendChar(':');
        credential.Append(password_);
        out.Append("Proxy-Authorization: Basic ");
        out.AppendBase64(credential.Data(), credential.Length(), false);
        out.Append("\r\n");
      }
      out.Append("\r\n");
      return kPending;
    case 2: {
      if (address_ == 0) return Fail(kTextUnresolved);
      const uint8_t* a = reinterpret_cast<const uint8_t*>(&address_);
      const char request[8] = {4, 1, static_cast<char>(port_ >> 8 & 0xFF), static_cast<char>(port_ & 0xFF),
                               static_cast<char>(a[0]), static_cast<char>(a[1]), static_cast<char>(a[2]),
                               static_cast<char>(a[3])};
      out.Append(request, 8);
      out.Append(user_);
      out.AppendChar('\0');
      return kPending;
    }
    case 3:
      if (user_.Length() > 0 && password_.Length() > 0) {
        out.Append(std::string_view("\x05\x02\x00\x02", 4));
      } else {
        out.Append(std::string_view("\x05\x01\x00", 3));
      }
      step_ = 1;
      return kPending;
    case 4:
    case 5:
      if (ntlm_ == nullptr) return Fail("NTLM authentication is not available.");
      ntlm_->Reset(false);
      if (ntlm_->SetCredentials(Mechanism(type_), user_.Data(), password_.Data()) != kOk) {
        return Fail(kTextOutOfMemory);
      }
      step_ = 1;
      return NtlmConnect(nullptr, 0, out);
    default:
      return kPending;
  }
}

TunnelHandshake::Result TunnelHandshake::NtlmConnect(const char* challenge, int32_t challenge_length,
                                                     ByteString& out) {
  ByteString token;
  const int rc = ntlm_->CreateToken(Mechanism(type_), host_.Data(), challenge, challenge_length, token);
  if (rc != kOk) {
    const char* text = ntlm_->ErrorText();
    return Fail(*text != '\0' ? text : rc == kErrOutOfMemory ? kTextOutOfMemory : "NTLM token failure.");
  }
  AppendConnect(out, host_, port_);
  out.Append("Proxy-Authorization: ");
  out.Append(Mechanism(type_));
  out.AppendChar(' ');
  out.AppendBase64(token.Data(), token.Length(), false);
  out.Append("\r\nProxy-Connection: Keep-Alive\r\n\r\n");
  return kPending;
}

TunnelHandshake::Result TunnelHandshake::Fail(const char* text) {
  error_text_.Assign(text);
  reply_text_.Assign(text);
  result_ = kFailed;
  return result_;
}

TunnelHandshake::Result TunnelHandshake::FailCode(const char* format, int value) {
  char text[96];
  std::snprintf(text, sizeof text, format, value);
  return Fail(text);
}

TunnelHandshake::Result TunnelHandshake::Establish(int32_t consumed) {
  if (consumed < reply_.Length()) leftover_.Assign(reply_.Data() + consumed, reply_.Length() - consumed);
  reply_.Clear();
  result_ = kEstablished;
  return result_;
}

TunnelHandshake::Result TunnelHandshake::Feed(const char* data, int32_t length, bool end_of_line,
                                              std::string_view marker, ByteString& out) {
  if (result_ != kPending || type_ < 1 || type_ > 5) return result_;
  if (data != nullptr && length > 0 && reply_.Append(data, length) != kOk) return Fail(kTextOutOfMemory);
  if (end_of_line && reply_.Append(marker) != kOk) return Fail(kTextOutOfMemory);
  switch (type_) {
    case 1:
      return FeedConnect();
    case 2:
      return FeedSocks4();
    case 3:
      return FeedSocks5(out);
    default:
      return FeedNtlm(out);
  }
}

TunnelHandshake::Result TunnelHandshake::FeedConnect() {
  const std::string_view reply = reply_.View();
  if (reply.size() <= 9) return kPending;
  size_t at = reply.find_first_of(" \t");
  at = at == std::string_view::npos ? reply.size() : at;
  while (at < reply.size() && (reply[at] == ' ' || reply[at] == '\t')) ++at;
  if (at >= reply.size()) return kPending;
  if (reply[at] != '2') {
    // Wait for the whole status line: the text quotes it.
    const size_t end = reply.find_first_of("\r\n");
    if (end == std::string_view::npos && reply.size() < kMaxStatusWait) return kPending;
    return RefuseStatus(reply.substr(0, end), reply_);
  }
  size_t head_end = reply.find("\r\n\r\n");
  size_t terminator = 4;
  const size_t lf_end = reply.find("\n\n");
  if (lf_end != std::string_view::npos && (head_end == std::string_view::npos || lf_end < head_end)) {
    head_end = lf_end;
    terminator = 2;
  }
  if (head_end == std::string_view::npos) return kPending;
  return Establish(static_cast<int32_t>(head_end + terminator));
}

TunnelHandshake::Result TunnelHandshake::RefuseStatus(std::string_view status_line, const ByteString& reply) {
  ByteString text("Firewall error. ");
  text.Append(status_line);
  if (!text.EndsWith(".")) text.AppendChar('.');
  reply_text_.Assign(reply);
  return Refuse(text);
}

TunnelHandshake::Result TunnelHandshake::Refuse(ByteString& text) {
  error_text_.Swap(text);
  result_ = kRefused;
  return result_;
}

TunnelHandshake::Result TunnelHandshake::FeedSocks4() {
  if (reply_.Length() <= 7) return kPending;
  const int code = static_cast<signed char>(reply_.Data()[1]);
  switch (code) {
    case 90:
      return Establish(8);
    case 91:
      return Fail("firewall request rejected or failed");
    case 92:
      return Fail("firewall request rejected because identd is not available");
    case 93:
      return Fail("firewall request rejected because identd reports different user");
    default:
      return FailCode("unknown firewall error: %d", code);
  }
}

int TunnelHandshake::AppendSocks5Connect(ByteString& out) {
  out.Append(std::string_view("\x05\x01\x00", 3));
  if (host_.StartsWith("*")) {
    const int32_t n = host_.Length() - 1;
    if (n > 255) return -1;
    out.AppendChar(3);
    out.AppendChar(static_cast<char>(n));
    out.Append(host_.Data() + 1, n);
  } else {
    if (address_ == 0) return -1;
    out.AppendChar(1);
    out.Append(reinterpret_cast<const char*>(&address_), 4);
  }
  out.AppendChar(static_cast<char>(port_ >> 8 & 0xFF));
  out.AppendChar(static_cast<char>(port_ & 0xFF));
  return kOk;
}

TunnelHandshake::Result TunnelHandshake::FeedSocks5(ByteString& out) {
  const auto* r = reinterpret_cast<const uint8_t*>(reply_.Data());
  switch (step_) {
    case 1:
      if (reply_.Length() < 2) return kPending;
      if (r[1] == 255) return Fail("no acceptable firewall authentication methods");
      if (r[1] == 0) {
        reply_.RemovePrefix(2);
        if (AppendSocks5Connect(out) != kOk) return Fail(kTextUnresolved);
        step_ = 3;
        return FeedSocks5(out);  // bytes of the next reply may have come along
      }
      if (r[1] == 2) {
        reply_.RemovePrefix(2);
        out.AppendChar(1);
        out.AppendChar(static_cast<char>(user_.Length()));
        out.Append(user_);
        out.AppendChar(static_cast<char>(password_.Length()));
        out.Append(password_);
        step_ = 2;
        return FeedSocks5(out);
      }
      return Fail("unknown firewall authentication method");
    case 2:
      if (reply_.Length() < 2) return kPending;
      if (r[1] != 0) return FailCode("firewall authentication failed: %d", static_cast<signed char>(r[1]));
      reply_.RemovePrefix(2);
      if (AppendSocks5Connect(out) != kOk) return Fail(kTextUnresolved);
      step_ = 3;
      return FeedSocks5(out);
    default: {
      if (reply_.Length() <= 9) {
        // An error reply can be as short as an IPv4 one; it ends the talk.
        if (reply_.Length() < 2 || r[1] == 0) return kPending;
      }
      const int code = static_cast<signed char>(r[1]);
      switch (code) {
        case 0: {
          // The bound address decides the reply's length.
          int32_t length = 10;
          if (r[3] == 4) length = 22;
          if (r[3] == 3) length = 7 + (reply_.Length() > 4 ? r[4] : 0);
          if (reply_.Length() < length || (r[3] == 3 && reply_.Length() < 5)) return kPending;
          return Establish(length);
        }
        case 1:
          return Fail("general SOCKS server failure");
        case 2:
          return Fail("connection not allowed by ruleset");
        case 3:
          return Fail("network unreachable");
        case 4:
          return Fail("host unreachable");
        case 5:
          return Fail("connection refused");
        case 6:
          return Fail("TTL expired");
        case 7:
          return Fail("command not supported");
        case 8:
          return Fail("address type not supported");
        default:
          return FailCode("unknown firewall error: %d", code);
      }
    }
  }
}

TunnelHandshake::Result TunnelHandshake::FeedNtlm(ByteString& out) {
  for (;;) {
    if (step_ == 3) {
      // The body of the challenge reply: counted, not read.
      const int64_t want = body_length_ - body_read_;
      const int64_t take = want < reply_.Length() ? want : reply_.Length();
      body_read_ += take;
      reply_.RemovePrefix(static_cast<int32_t>(take));
      if (body_read_ < body_length_) return kPending;
      ByteString challenge(challenge_);
      challenge.DecodeBase64();
      step_ = 4;
      if (NtlmConnect(challenge.Data(), challenge.Length(), out) != kPending) return result_;
      continue;
    }
    const int32_t end = reply_.Find("\n");
    if (end < 0) return kPending;
    std::string_view line(reply_.Data(), static_cast<size_t>(end));
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    ByteString copy(line);
    if (step_ == 5 && copy.Length() == 0) return Establish(end + 1);
    reply_.RemovePrefix(end + 1);
    if (NtlmLine(copy.View()) != kPending) return result_;
  }
}

TunnelHandshake::Result TunnelHandshake::NtlmLine(std::string_view line) {
  switch (step_) {
    case 1:
    case 4: {
      if (line.empty()) return kPending;  // stray line end before the status
      std::string_view code;
      std::string_view reason;
      SplitStatus(line, &code, &reason);
      const bool ok = step_ == 1 ? (code == "401" || code == "407") : (!code.empty() && code[0] == '2');
      if (!ok) {
        ByteString text("Firewall error: ");
        text.Append(code);
        text.AppendChar(' ');
        text.Append(reason);
        reply_text_.Assign(step_ == 1 ? ByteString(line) : challenge_);
        return Refuse(text);
      }
      step_ = step_ == 1 ? 2 : 5;
      return kPending;
    }
    case 2:
      if (line.empty()) {
        step_ = 3;
        return kPending;
      }
      if (HasPrefixNoCase(line, "Content-Length:")) {
        std::string_view number = line.substr(15);
        while (!number.empty() && (number.front() == ' ' || number.front() == '\t')) number.remove_prefix(1);
        body_length_ = ParseInt64(ByteString(number).Data());
        if (body_length_ < 0) body_length_ = 0;
      } else if (HasPrefixNoCase(line, "Proxy-Authenticate:")) {
        std::string_view value = line.substr(19);
        while (!value.empty() && value.front() == ' ') value.remove_prefix(1);
        const size_t blank = value.find(' ');
        const std::string_view scheme = value.substr(0, blank);
        const std::string_view parameters = blank == std::string_view::npos ? "" : value.substr(blank + 1);
        // A proxy offering several schemes names ours in one of the headers.
        const std::string_view ours = Mechanism(type_);
        if (challenge_.Length() == 0 || (scheme.size() == ours.size() && HasPrefixNoCase(scheme, ours))) {
          challenge_.Assign(parameters);
        }
      }
      return kPending;
    default:  // 5: headers of the reply that opened the tunnel
      return kPending;
  }
}

}  // namespace orvelan
