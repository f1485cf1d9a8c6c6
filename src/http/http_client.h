#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/byte_string.h"
#include "core/file_handle.h"
#include "http/body_buffer.h"
#include "http/cookie_list.h"
#include "http/http_response_parser.h"
#include "http/url_parts.h"
#include "net/transfer_channel.h"

// The HTTP/1.x client over which the OFX engine posts every request:
//
//   SetContentType("application/x-ofx");
//   SetPostData(request, length);
//   int rc = PostToURL("https://ofx.bank.example/cgi");  // blocks in wait cycles
//   ... TransferredData(), ResponseContentType() ...
//
// It writes the request head, sends the body in 16 KB pieces, parses the
// response through HttpResponseParser (length-delimited, close-delimited or
// chunked; gzip or deflate with AllowHTTPCompression), keeps cookies, and
// turns a non-2xx status into 151 with "HTTP protocol error. <code> <text>.".
// Redirects are not followed. Not thread-safe; a second action from an event
// handler is refused with 143.
namespace orvelan {

inline constexpr char kTextUnknownProxyScheme[] = "Unknown proxy authentication scheme.";

class HttpClient : public TransferChannel, private HttpResponseSink {
 public:
  enum Action : int { kInterrupt = 0, kGet = 1, kPost = 2, kHead = 3, kReset = 4, kPut = 5, kDelete = 6 };

  HttpClient();
  ~HttpClient() override;

  int InitDefaults() override;
  int HandleConfig(ConfigArgument& argument, const char*& out) override;

  // Runs one action (2 POST, 4 reset; 1, 3, 5, 6 GET, HEAD, PUT, DELETE;
  // 0 interrupts the running one). 143 while another action runs.
  int DoAction(int action);
  // Takes the URL apart; a new scheme, host or port drops the connection.
  int SetURL(const char* url);
  int PostToURL(const char* url);
  int SetContentType(const char* type) { return content_type_.Assign(type); }
  int SetPostData(const char* data, int32_t length) { return post_data_.Assign(data, length); }

  const char* ResponseContentType() const { return response_content_type_.Data(); }
  // The body of the last response, at most MaxTransferredData bytes (0 = all).
  std::string_view TransferredData() const { return transferred_data_.View(); }
  int StatusCode() const { return status_code_; }
  const std::vector<std::pair<std::string, std::string>>& ResponseHeaders() const { return headers_; }
  // The header lines of the last response byte for byte, each ended by CR LF.
  const std::string& RawResponseHeaders() const { return raw_headers_; }
  const CookieList& Cookies() const { return cookies_; }
  const UrlParts& Url() const { return url_; }

  // The HTTP proxy (also the settings of the same names). ProxySSL: 0 the
  // URL's scheme decides TLS, 1 always, 2 never, 3 a CONNECT tunnel through
  // the proxy. New credentials make the proxy's header anew; a new scheme
  // drops them (see SetProxyAuthScheme).
  const char* ProxyServer() const { return proxy_server_.Data(); }
  int SetProxyServer(const char* value) { return proxy_server_.Assign(value); }
  int32_t ProxyPort() const { return proxy_port_; }
  int SetProxyPort(int32_t port) {
    proxy_port_ = port;
    return kOk;
  }
  const char* ProxyUser() const { return proxy_user_.Data(); }
  int SetProxyUser(const char* value);
  const char* ProxyPassword() const { return proxy_password_.Data(); }
  int SetProxyPassword(const char* value);
  int32_t ProxySSL() const { return proxy_ssl_; }
  int SetProxySSL(int32_t mode) {
    proxy_ssl_ = static_cast<uint8_t>(mode);
    return kOk;
  }
  int32_t ProxyAuthScheme() const { return proxy_auth_scheme_; }
  // 0 Basic, 4 NTLM, 5 Negotiate, 2 the ProxyAuthorization setting as is.
  // Always forgets the proxy's challenge; a different scheme also empties
  // user, password and header, and NTLM switches KeepAlive on.
  int SetProxyAuthScheme(int32_t scheme);

 protected:
  // Sets scheme "https" and port 443 as the defaults (HttpsClient).
  void SetDefaults(const char* scheme, int32_t port);

  // Exchange hooks for layers that watch the transfer; the OFX chain leaves
  // them empty. Direction 0 is outgoing, 1 incoming. `percent` is -1 while the
  // length is unknown; `bytes` counts every body byte, kept or not.
  virtual void FireStatus(const char* version, int code, const char* description) {
    (void)version, (void)code, (void)description;
  }
  virtual void FireHeader(const char* name, const char* value) { (void)name, (void)value; }
  virtual void FireSetCookie(const Cookie& cookie) { (void)cookie; }
  virtual void FireStartTransfer(int direction) { (void)direction; }
  virtual void FireTransfer(int direction, int64_t bytes, int percent, std::string_view data) {
    (void)direction, (void)bytes, (void)percent, (void)data;
  }
  virtual void FireEndTransfer(int direction) { (void)direction; }

  void FireConnected(int code, const char* description) override;
  void FireDataIn(const char* data, int32_t length, bool end_of_line) override;
  void FireDisconnected(int code, const char* description) override;
  int OnSendProgress(int64_t bytes_done) override;

  int64_t max_transferred_data_ = 32768;

 private:
  // HttpResponseSink
  void OnStatus(std::string_view version, int code, std::string_view description) override;
  void OnHeader(std::string_view line, std::string_view name, std::string_view value) override;
  void OnHeadEnd() override;
  void OnBody(std::string_view data, int64_t received, int percent) override;
  void OnEnd() override;

  int Request(const char* method, bool with_body);
  // Sends head and body on the open connection; 0 or the send's error.
  int SendRequest(const char* method, bool with_body);
  int Route();
  std::string BuildHead(const char* method, int64_t content_length);
  int WaitForResponse();
  int EvaluateResponse(int wait_result);
  // The Authorization and Proxy-Authorization values from the URL's user
  // information and the proxy settings (Basic, or NTLM for the proxy). A token
  // failure leaves the value empty and returns its code with the last error set.
  int ComputeAuthorization();
  int ComputeProxyAuthorization();
  // Base64 NTLM token for `target` into `out`; an empty challenge asks for
  // the Negotiate message.
  int CreateAuthToken(ByteString& out, const char* mechanism, const char* target, const ByteString& challenge);
  void Reset();
  void FailResponse(int code, const char* text);

  HttpResponseParser parser_{this};
  UrlParts url_;
  std::string default_scheme_ = "http";
  int32_t default_port_ = 80;
  CookieList cookies_;
  std::vector<std::pair<std::string, std::string>> headers_;
  std::string raw_headers_;
  BodyBuffer transferred_data_;
  std::string recorded_request_;
  std::string status_line_;
  std::string status_version_;
  std::string status_description_;
  ByteString response_content_type_;
  ByteString content_type_;
  ByteString post_data_;
  ByteString http_version_;
  ByteString user_agent_;
  ByteString accept_encoding_;
  ByteString authorization_;
  ByteString if_modified_since_;
  ByteString proxy_server_;
  ByteString proxy_user_;
  ByteString proxy_password_;
  ByteString proxy_authorization_;
  ByteString proxy_challenge_;  // NTLM parameters of the last Proxy-Authenticate
  ByteString local_file_path_;
  FileHandle local_file_;
  int64_t bytes_received_ = 0;
  int32_t proxy_port_ = 80;
  int32_t proxy_auth_attempts_ = 0;  // 407 retries done for this request
  bool retry_request_ = false;       // the 407 answer asks for one more attempt
  bool tunnel_from_proxy_ = false;   // the firewall settings were made from ProxySSL 3
  int status_code_ = 0;
  int response_error_ = 0;
  // The request waiting for an asynchronous connect (negative Timeout).
  const char* pending_method_ = nullptr;
  bool pending_with_body_ = false;
  uint8_t busy_action_ = 0;
  uint8_t auth_scheme_ = 0;
  uint8_t proxy_auth_scheme_ = 0;
  uint8_t proxy_ssl_ = 0;
  bool keep_alive_ = false;
  bool response_complete_ = false;
  bool allow_compression_ = false;
  bool encode_url_ = false;
  bool record_request_ = false;
  bool debug_trace_ = false;
  bool single_line_mode_ = false;
  bool get_on_302_redirect_ = false;
  bool dont_clear_cookies_ = false;
};

}  // namespace orvelan
