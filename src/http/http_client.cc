#include "http/http_client.h"

#include <cstring>

#include "base/text_util.h"
#include "core/setting_table.h"

namespace orvelan {
namespace {

constexpr char kDefaultUserAgent[] = "Orvelan OFX Client 3.0";
constexpr int32_t kSendPiece = 16384;
constexpr int64_t kAsyncSendTimeoutMs = 10000;
constexpr char kTextNoServer[] = "No server specified in URL";
constexpr char kTextBadScheme[] = "Specified URLScheme is invalid.";
constexpr char kTextLocalFile[] = "Can't open local file for writing.";

void AppendBasic(ByteString& target, std::string_view user, std::string_view password) {
  std::string credential(user);
  credential += ':';
  credential.append(password.data(), password.size());
  target.Assign("Basic ");
  target.AppendBase64(credential.data(), static_cast<int32_t>(credential.size()), false);
}

}  // namespace

HttpClient::HttpClient() { user_agent_.Assign(kDefaultUserAgent); }

HttpClient::~HttpClient() = default;

void HttpClient::SetDefaults(const char* scheme, int32_t port) {
  default_scheme_ = scheme;
  default_port_ = port;
  url_.scheme = scheme;
  url_.port = url_.default_port = port;
}

int HttpClient::InitDefaults() {
  TransferChannel::InitDefaults();
  http_version_.Assign("1.1");
  accept_encoding_.Assign("gzip, deflate");
  max_transferred_data_ = 32768;
  keep_alive_ = false;
  allow_compression_ = false;
  proxy_port_ = 80;
  return 1;
}

int HttpClient::HandleConfig(ConfigArgument& argument, const char*& out) {
  using R = Setting<HttpClient>;
  using A = const ConfigArgument&;
  static constexpr R kSettings[] = {
      R::Text<&HttpClient::http_version_>("HTTPVersion"),
      R::Text<&HttpClient::user_agent_>("UserAgent"),
      R::Text<&HttpClient::authorization_>("Authorization"),
      R::Text<&HttpClient::accept_encoding_>("AcceptEncoding"),
      R::Text<&HttpClient::proxy_server_>("ProxyServer"),
      // The proxy credentials make the proxy's Basic header anew.
      {"ProxyUser", R::QueryText<&HttpClient::proxy_user_>,
       [](HttpClient& c, A argument) { return c.SetProxyUser(argument.Value()); }},
      {"ProxyPassword", R::QueryText<&HttpClient::proxy_password_>,
       [](HttpClient& c, A argument) { return c.SetProxyPassword(argument.Value()); }},
      R::Text<&HttpClient::proxy_authorization_>("ProxyAuthorization"),
      R::Text<&HttpClient::if_modified_since_>("IfModifiedSince"),
      R::Text<&HttpClient::local_file_path_>("LocalFile"),
      R::TrueFalse<&HttpClient::keep_alive_>("KeepAlive"),
      R::TrueFalse<&HttpClient::allow_compression_>("AllowHTTPCompression"),
      R::TrueFalse<&HttpClient::encode_url_>("EncodeURL"),
      R::TrueFalse<&HttpClient::single_line_mode_>("SingleLineMode"),
      R::TrueFalse<&HttpClient::get_on_302_redirect_>("GetOn302Redirect"),
      R::TrueFalse<&HttpClient::debug_trace_>("DebugTrace"),
      R::TrueFalse<&HttpClient::dont_clear_cookies_>("DontClearCookiesOnUrlChange"),
      {"TransferredData",
       [](HttpClient& c, const char*& out) { return c.ReturnConfigValue(out, c.transferred_data_.c_str()); }},
      {"TransferredRequest",
       [](HttpClient& c, const char*& out) { return c.ReturnConfigValue(out, c.recorded_request_.c_str()); },
       [](HttpClient& c, A argument) {
         c.record_request_ = CompareNoCase(argument.Value(), "on") == 0;
         if (!c.record_request_) c.recorded_request_.clear();
         return kOk;
       }},
      {"MaxTransferredData", R::QueryInt<&HttpClient::max_transferred_data_>,
       [](HttpClient& c, A argument) {
         c.max_transferred_data_ = ParseInt64(argument.Value());
         return kOk;
       }},
      R::Int<&HttpClient::proxy_port_>("ProxyPort"),
      R::Int<&HttpClient::proxy_ssl_>("ProxySSL"),
      {"ProxyAuthScheme", R::QueryInt<&HttpClient::proxy_auth_scheme_>,
       [](HttpClient& c, A argument) { return c.SetProxyAuthScheme(argument.ValueAsInt()); }},
  };
  if (const R* row = FindSetting(kSettings, argument)) return row->Run(*this, argument, out);
  return TransferChannel::HandleConfig(argument, out);
}

int HttpClient::SetProxyUser(const char* value) {
  const int rc = proxy_user_.Assign(value);
  if (rc == kOk) ComputeProxyAuthorization();
  return rc;
}

int HttpClient::SetProxyPassword(const char* value) {
  const int rc = proxy_password_.Assign(value);
  if (rc == kOk) ComputeProxyAuthorization();
  return rc;
}

int HttpClient::SetProxyAuthScheme(int32_t scheme) {
  const auto value = static_cast<uint8_t>(scheme);
  proxy_challenge_.Clear();
  if (value != proxy_auth_scheme_) {
    proxy_user_.Clear();
    proxy_password_.Clear();
    proxy_authorization_.Clear();
  }
  proxy_auth_scheme_ = value;
  if (value == 4) keep_alive_ = true;  // the NTLM handshake needs one connection
  return ComputeProxyAuthorization();
}

int HttpClient::ComputeAuthorization() {
  if (auth_scheme_ == 2) return kOk;  // the value is used as set
  authorization_.Clear();
  if (!url_.user.empty() || !url_.password.empty()) AppendBasic(authorization_, url_.user, url_.password);
  return kOk;
}

int HttpClient::ComputeProxyAuthorization() {
  if (proxy_auth_scheme_ == 2) return kOk;
  proxy_authorization_.Clear();
  if (proxy_user_.Length() == 0 && proxy_password_.Length() == 0) return kOk;
  if (proxy_auth_scheme_ == 0) {
    AppendBasic(proxy_authorization_, proxy_user_.View(), proxy_password_.View());
    return kOk;
  }
  if (proxy_auth_scheme_ != 4) return kOk;
  const char* proxy = proxy_server_.Length() > 0 ? proxy_server_.Data() : url_.host.c_str();
  if (proxy_challenge_.Length() == 0) {
    ntlm_.Reset(false);
    if (int rc = ntlm_.SetCredentials("NTLM", proxy_user_.Data(), proxy_password_.Data()); rc != kOk) return rc;
  }
  ByteString token;
  if (int rc = CreateAuthToken(token, "NTLM", proxy, proxy_challenge_); rc != kOk) return rc;
  proxy_authorization_.Assign("NTLM ");
  return proxy_authorization_.Append(token);
}

int HttpClient::CreateAuthToken(ByteString& out, const char* mechanism, const char* target,
                                const ByteString& challenge) {
  out.Clear();
  ByteString decoded(challenge);
  decoded.DecodeBase64();
  ByteString token;
  const int rc = ntlm_.CreateToken(mechanism, target, decoded.Data(), decoded.Length(), token);
  if (rc != kOk) {
    const char* text = ntlm_.ErrorText();
    SetErrorText(*text != '\0' ? text : rc == kErrOutOfMemory ? kTextOutOfMemory : "");
    return rc;
  }
  return out.AppendBase64(token.Data(), token.Length(), false);
}

void HttpClient::Reset() {
  url_ = UrlParts();
  url_.scheme = default_scheme_;
  url_.port = url_.default_port = default_port_;
  post_data_.Clear();
  content_type_.Clear();
  authorization_.Clear();
  proxy_user_.Clear();
  proxy_password_.Clear();
  proxy_authorization_.Clear();
  proxy_challenge_.Clear();
  proxy_auth_attempts_ = 0;
  if_modified_since_.Clear();
  status_line_.clear();
  local_file_path_.Clear();
  headers_.clear();
  raw_headers_.clear();
  cookies_.Clear();
}

int HttpClient::SetURL(const char* url) {
  const std::string_view text = url == nullptr ? "" : url;
  if (text.empty()) {
    url_.host.clear();
    url_.path = "/";
    url_.user.clear();
    url_.password.clear();
    url_.scheme = default_scheme_;
    url_.port = url_.default_port = default_port_;
    return kOk;
  }
  UrlParts parsed = url_;
  parsed.user.clear();
  parsed.password.clear();
  if (text.substr(0, 5) == "http:") parsed.default_port = 80;
  if (text.substr(0, 6) == "https:") parsed.default_port = 443;
  parsed.Parse(text, encode_url_);
  const bool moved = !EqualsNoCase(parsed.host, url_.host) || parsed.port != url_.port;
  if (moved || !EqualsNoCase(parsed.scheme, url_.scheme)) Disconnect(0);
  if (parsed.ipv6) {
    const char* ignored = nullptr;
    ConfigArgument on;
    on.Parse("UseIPv6=true");
    HandleConfig(on, ignored);
  }
  url_ = parsed;
  proxy_challenge_.Clear();
  proxy_auth_attempts_ = 0;
  if (moved && dont_clear_cookies_) cookies_.RemoveReceived();
  int rc = ComputeAuthorization();
  if (rc == kOk) rc = ComputeProxyAuthorization();
  if (rc != kOk) Disconnect(0);
  return rc;
}

int HttpClient::PostToURL(const char* url) {
  if (int rc = SetURL(url); rc != kOk) return rc;
  return DoAction(kPost);
}

int HttpClient::DoAction(int action) {
  if (action == kInterrupt) {
    Interrupt();
    return kOk;
  }
  if (busy_action_ != 0) return ReportError(kErrBusy, kTextBusy);
  int rc = kOk;
  // A proxy's NTLM challenge runs the same action once more, afresh: a retry
  // that succeeds leaves no trace of the 407 behind.
  do {
    StartDeadline();
    interrupt_requested_ = false;
    interrupted_ = false;
    retry_request_ = false;
    ClearError();
    status_line_.clear();
    status_version_.clear();
    status_description_.clear();
    status_code_ = 0;
    response_complete_ = false;
    busy_action_ = static_cast<uint8_t>(action);
    switch (action) {
      case kReset:
        transferred_data_.Clear();
        get_on_302_redirect_ = false;
        Reset();
        break;
      case kPost:
        rc = Request("POST", true);
        break;
      case kGet:
        rc = Request("GET", false);
        break;
      case kHead:
        rc = Request("HEAD", false);
        break;
      case kPut:
        rc = Request("PUT", true);
        break;
      case kDelete:
        rc = Request("DELETE", false);
        break;
      default:
        break;
    }
    if (interrupted_) rc = kErrTimeout;
    busy_action_ = 0;
  } while (rc == kOk && retry_request_);
  return rc;
}

int HttpClient::Route() {
  const bool plain_proxy = proxy_server_.Length() > 0 && proxy_ssl_ != 3;
  std::string host = url_.host;
  int32_t port = url_.port;
  if (plain_proxy) {
    host = proxy_server_.Data();
    port = proxy_port_;
    // The NTLM answer must go over the connection that got the challenge.
    if (proxy_auth_attempts_ > 0 && socket_.is_valid()) return kOk;
  } else if (!EqualsNoCase(url_.scheme, default_scheme_) && !EqualsNoCase(url_.scheme, "http")) {
    return ReportError(kErrBadScheme, kTextBadScheme);
  }
  // The same host and port keep the connection; anything else starts afresh.
  if (socket_.is_valid() && (host != RemoteHostText() || port != RemotePort())) Disconnect(0);
  bool tls = EqualsNoCase(url_.scheme, "https");
  if (proxy_server_.Length() > 0 && proxy_ssl_ == 1) tls = true;
  if (proxy_server_.Length() > 0 && proxy_ssl_ == 2) tls = false;
  if (proxy_server_.Length() > 0 && proxy_ssl_ == 3 && !socket_.is_valid()) {
    // A tunnel through the proxy: CONNECT, authenticated as the scheme says.
    int type = 0;
    switch (proxy_auth_scheme_) {
      case 0: type = 1; break;
      case 4: type = 4; break;
      case 5: type = 5; break;
      default: return ReportError(kErrBadScheme, kTextUnknownProxyScheme);
    }
    SetFirewallType(type);
    if (int rc = SetFirewallHost(proxy_server_.Data()); rc != kOk) return rc;
    SetFirewallPort(proxy_port_);
    SetFirewallUser(proxy_user_.Data());
    SetFirewallPassword(proxy_password_.Data());
    tunnel_from_proxy_ = true;
  } else if (tunnel_from_proxy_ && !socket_.is_valid() && (proxy_server_.Length() == 0 || proxy_ssl_ != 3)) {
    // The proxy settings no longer ask for the tunnel they made.
    SetFirewallType(0);
    tunnel_from_proxy_ = false;
  }
  if (!socket_.is_valid()) {
    if (host != RemoteHostText()) {
      if (int rc = SetRemoteHost(host.c_str()); rc != kOk) return rc;
    }
    if (int rc = SetRemotePort(port); rc != kOk) return rc;
    if (int rc = EnableTls(tls, url_.host.c_str()); rc != kOk) return rc;
  }
  return kOk;
}

std::string HttpClient::BuildHead(const char* method, int64_t content_length) {
  const bool plain_proxy = proxy_server_.Length() > 0 && proxy_ssl_ != 3;
  std::string port_suffix;
  if (url_.port != url_.default_port) port_suffix = ":" + std::to_string(url_.port);
  std::string head;
  head.reserve(256 + url_.path.size());
  head += method;
  head += ' ';
  if (plain_proxy) head += url_.scheme + "://" + url_.host + port_suffix;
  head += url_.path;
  head += " HTTP/";
  head += http_version_.View();
  head += "\r\nHost: ";
  if (url_.host.find(':') != std::string::npos) {
    head += '[';
    head += url_.host.substr(0, url_.host.find('%'));
    head += ']';
  } else {
    head += url_.host;
  }
  head += port_suffix;
  const std::pair<const char*, const ByteString*> optional[] = {
      {"\r\nAuthorization: ", &authorization_},
      // Through a tunnel the proxy never sees this head.
      {"\r\nProxy-Authorization: ", proxy_ssl_ == 3 && proxy_server_.Length() > 0 ? nullptr : &proxy_authorization_},
      {"\r\nAccept-Encoding: ", allow_compression_ ? &accept_encoding_ : nullptr},
      {"\r\nUser-Agent: ", &user_agent_},
      {"\r\nIf-Modified-Since: ", &if_modified_since_},
  };
  for (const auto& [name, value] : optional) {
    if (value == nullptr || value->Length() == 0) continue;
    head += name;
    head += value->View();
  }
  if (!cookies_.cookies().empty()) {
    head += "\r\nCookie: ";
    head += cookies_.HeaderValue();
  }
  if (!keep_alive_) head += "\r\nConnection: close";
  head += "\r\n";
  if (content_length >= 0) {
    if (content_type_.Length() > 0) {
      head += "Content-Type: ";
      head += content_type_.View();
      head += "\r\n";
    }
    head += "Content-Length: ";
    head += std::to_string(content_length);
    head += "\r\n";
  }
  head += "\r\n";
  return head;
}

int HttpClient::Request(const char* method, bool with_body) {
  headers_.clear();
  raw_headers_.clear();
  transferred_data_.Clear();
  response_content_type_.Clear();
  bytes_received_ = 0;
  response_error_ = 0;
  single_line_mode_ = false;
  if (url_.host.empty()) return ReportError(kErrNoServer, kTextNoServer);
  if (int rc = Route(); rc != kOk) return rc;
  // A kept connection that the server has closed meanwhile would swallow the
  // request; one poll notices the close, and a new connection replaces it.
  if (IsConnected()) PollSocket(0);
  pending_method_ = nullptr;
  if (!IsConnected()) {
    if (Timeout() < 0) {
      // The host pumps the events; the request leaves from the connected hook.
      if (int rc = Connect(true); rc != kOk) return rc;
      pending_method_ = method;
      pending_with_body_ = with_body;
      return kOk;
    }
    if (int rc = ConnectAndWait(); rc != kOk) {
      // A proxy that refused the tunnel may leave its connection open.
      if (rc == kErrTunnel) {
        const ByteString text(GetLastError());
        DropConnection(0);
        SetErrorText(text.Data());
      }
      return rc;
    }
  }
  if (int rc = SendRequest(method, with_body); rc != kOk && status_code_ == 0) return rc;
  return EvaluateResponse(WaitForResponse());
}

int HttpClient::SendRequest(const char* method, bool with_body) {
  response_complete_ = false;
  response_error_ = 0;
  SetEOL("");  // the parser cuts the response itself
  parser_.Begin(allow_compression_, std::strcmp(method, "HEAD") == 0);
  // The first leg of a proxy NTLM handshake only fetches the challenge.
  const bool withhold = proxy_auth_scheme_ == 4 && proxy_auth_attempts_ == 0 && proxy_server_.Length() > 0 &&
                        proxy_ssl_ != 3 && proxy_authorization_.Length() > 0;
  const int32_t body_length = with_body && !withhold ? post_data_.Length() : 0;
  std::string head = BuildHead(method, with_body ? body_length : -1);
  if (record_request_) {
    recorded_request_ = head;
    recorded_request_.append(post_data_.Data(), static_cast<size_t>(body_length));
  }
  if (debug_trace_) {
    FireTransfer(0, static_cast<int64_t>(head.size()), -1, head);
    if (body_length > 0) FireTransfer(0, body_length, -1, post_data_.View());
  }
  // A small body goes out with the head in one send, so the server sees the
  // whole request at once instead of waiting out a delayed acknowledgement.
  const bool together = body_length <= kSendPiece;
  if (together) head.append(post_data_.Data(), static_cast<size_t>(body_length));
  if (body_length > 0) FireStartTransfer(0);
  int rc = SendAll(head.data(), static_cast<int32_t>(head.size()), true);
  if (rc == kOk && !together) rc = SendChunked(post_data_.Data(), body_length, kSendPiece);
  if (body_length > 0) FireEndTransfer(0);
  if (rc != kOk && IsConnected()) {
    // The server may have answered (and closed) before taking the whole body.
    DropConnection(0);
  }
  return rc;
}

int HttpClient::OnSendProgress(int64_t bytes_done) {
  FireTransfer(0, bytes_done, -1, std::string_view());
  return kOk;
}

int HttpClient::WaitForResponse() {
  if (Timeout() < 0) return kOk;  // asynchronous: the response arrives through the events
  while (!response_complete_ && IsConnected()) {
    if (int rc = WaitCycle(); rc != kOk) {
      DropConnection(0);
      return rc;
    }
  }
  return response_error_;
}

int HttpClient::EvaluateResponse(int wait_result) {
  if (wait_result == kErrTimeout) return wait_result;
  if (status_code_ == 0) return wait_result;  // closed without a response
  if (status_code_ >= 200 && status_code_ <= 299) return wait_result;
  std::string text = "HTTP protocol error. " + std::to_string(status_code_) + " " + status_description_;
  if (text.back() != '.') text += '.';
  SetErrorText(text.c_str());
  if (status_code_ == 407 && (proxy_auth_scheme_ == 4 || proxy_auth_scheme_ == 5)) {
    if (proxy_auth_attempts_ == 0) {
      ++proxy_auth_attempts_;
      // A token failure leaves the header out; the proxy's answer ends it.
      ComputeProxyAuthorization();
      retry_request_ = true;
      return kOk;
    }
    proxy_auth_attempts_ = 0;
  }
  return kErrHttp;
}

void HttpClient::FailResponse(int code, const char* text) {
  if (response_error_ == 0) {
    response_error_ = code;
    SetErrorText(text);
  }
  response_complete_ = true;
  DropConnection(0);
}

void HttpClient::FireConnected(int code, const char* description) {
  TransferChannel::FireConnected(code, description);
  const char* method = pending_method_;
  pending_method_ = nullptr;
  if (method == nullptr || code != 0) return;
  // Sending may wait for room in the socket; a negative Timeout sets no
  // deadline, so these waits get one of their own.
  const int64_t saved = timeout_ms_;
  timeout_ms_ = kAsyncSendTimeoutMs;
  StartDeadline();
  const uint32_t text_version = ErrorTextVersion();
  const int rc = SendRequest(method, pending_with_body_);
  timeout_ms_ = saved;
  StartDeadline();
  if (rc != kOk && status_code_ == 0) {
    // The host may have run other calls since the request began.
    FillDefaultErrorTextSince(text_version, rc);
    FireError(rc, GetLastError());
  }
}

void HttpClient::FireDataIn(const char* data, int32_t length, bool /*end_of_line*/) {
  if (response_complete_ || response_error_ != 0) return;
  const int rc = parser_.Feed(std::string_view(data, static_cast<size_t>(length)));
  if (rc != kOk) FailResponse(rc, parser_.ErrorText());
}

void HttpClient::FireDisconnected(int code, const char* description) {
  if (code != 0 && response_error_ == 0 && !response_complete_) {
    response_error_ = code;
    SetErrorText(description);
  }
  parser_.Finish();
  response_complete_ = true;
}

void HttpClient::OnStatus(std::string_view version, int code, std::string_view description) {
  status_version_ = std::string(version);
  status_description_ = std::string(description);
  status_code_ = code;
  status_line_ = status_version_ + " " + std::to_string(code) + " " + status_description_;
  FireStatus(status_version_.c_str(), code, status_description_.c_str());
}

void HttpClient::OnHeader(std::string_view line, std::string_view name, std::string_view value) {
  // Kept as sent, not rebuilt from the split: case, spacing and folding survive.
  raw_headers_.append(line.data(), line.size());
  raw_headers_ += "\r\n";
  headers_.emplace_back(std::string(name), std::string(value));
  FireHeader(headers_.back().first.c_str(), headers_.back().second.c_str());
  if (EqualsNoCase(name, "Content-Type")) {
    response_content_type_.Assign(value);
  } else if (EqualsNoCase(name, "Set-Cookie")) {
    const Cookie cookie = CookieList::ParseSetCookie(value);
    FireSetCookie(cookie);
    cookies_.Add(cookie);
  } else if (EqualsNoCase(name, "WWW-Authenticate")) {
    authorization_.Clear();
  } else if (EqualsNoCase(name, "Proxy-Authenticate")) {
    proxy_authorization_.Clear();
    const size_t blank = value.find(' ');
    if (value.substr(0, blank) == "NTLM") {
      proxy_challenge_.Assign(blank == std::string_view::npos ? std::string_view() : value.substr(blank + 1));
    }
  }
}

void HttpClient::OnHeadEnd() {
  FireStartTransfer(1);
  // Room for a announced body up front saves copying it while it grows; a
  // length no real answer has is not trusted with memory.
  constexpr int64_t kMaxReserve = int64_t{64} << 20;
  int64_t expected = parser_.ContentLength();
  if (max_transferred_data_ > 0 && expected > max_transferred_data_) expected = max_transferred_data_;
  if (expected > 0 && expected <= kMaxReserve && local_file_path_.Length() == 0) {
    transferred_data_.Reserve(static_cast<size_t>(expected));  // growing later still works if this fails
  }
}

void HttpClient::OnBody(std::string_view data, int64_t received, int percent) {
  if (response_error_ != 0) return;  // the rest of a piece inflated after a failure
  bytes_received_ = received;
  FireTransfer(1, received, percent, data);
  if (local_file_path_.Length() > 0 && status_code_ >= 200 && status_code_ <= 299) {
    if (!local_file_.IsOpen() && local_file_.Create(local_file_path_.Data()) != kOk) {
      FireError(kErrLocalFile, kTextLocalFile);
      FailResponse(kErrLocalFile, kTextLocalFile);
      return;
    }
    if (local_file_.Write(data.data(), data.size()) != kOk) FireError(kErrLocalFile, "Error writing to LocalFile.");
    return;
  }
  if (max_transferred_data_ > 0) {
    const int64_t room = max_transferred_data_ - static_cast<int64_t>(transferred_data_.size());
    if (room <= 0) return;
    if (static_cast<int64_t>(data.size()) > room) data = data.substr(0, static_cast<size_t>(room));
  }
  if (!transferred_data_.Append(data.data(), data.size())) FireError(kErrOutOfMemory, "Error appending to TransferredData.");
}

void HttpClient::OnEnd() {
  local_file_.Close();
  if (!response_complete_) FireEndTransfer(1);
  response_complete_ = true;
  if (!keep_alive_) Disconnect(0);
}

}  // namespace orvelan
