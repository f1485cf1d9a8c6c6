#include "net/tls_channel.h"

#include "core/error_text_table.h"

namespace orvelan {
namespace {

int Expose(const ByteString& bytes, const char*& data, int32_t& length) {
  data = bytes.Data();
  length = bytes.Length();
  return kOk;
}

}  // namespace

const char* TlsChannel::CodeText(int code) {
  if (code == 0) return "OK";
  if (code == kErrTunnel) return GetLastError();  // the tunnel said why
  code_text_.Assign("[");
  code_text_.AppendInt(code);
  code_text_.Append("] ");
  const char* text = SystemErrorText(code);
  code_text_.Append(text != nullptr ? text : kTextNoDescription);
  return code_text_.Data();
}

int TlsChannel::EnableTls(bool on, const char* host) {
  tls_enabled_ = on;
  return tls_host_.Assign(host);
}

int TlsChannel::SendData(const char* data, int32_t length) { return Send(data, length); }

void TlsChannel::OnConnected(int code) {
  if (code != 0) {
    OnConnectionStatus("Remote host connection failed.", code);
    FireConnected(code, CodeText(code));
    return;
  }
  OnConnectionStatus("Remote host connection complete. Initiating SSL handshake.", 0);
  FireConnected(0, "OK");
}

void TlsChannel::OnDisconnected(int code) {
  OnConnectionStatus("Remote host disconnected.", code);
  FireDisconnected(code, CodeText(code));
}

void TlsChannel::OnDataIn(const char* data, int32_t length, bool end_of_line) {
  FireDataIn(data, length, end_of_line);
}

void TlsChannel::OnReadyToSend() { FireReadyToSend(); }

int TlsChannel::InitDefaults() {
  TcpClient::InitDefaults();
  accept_server_cert_.Clear();
  cert_encoded_.Clear();
  cert_store_.Assign("MY");
  cert_store_password_.Clear();
  cert_subject_.Clear();
  server_cert_.Clear();
  cert_store_type_ = 0;
  return 1;
}

int TlsChannel::SSLAcceptServerCertEncoded(const char*& data, int32_t& length) {
  return Expose(accept_server_cert_, data, length);
}

int TlsChannel::SetSSLAcceptServerCertEncoded(const char* data, int32_t length) {
  return accept_server_cert_.Assign(data, length);
}

int TlsChannel::SSLCertEncoded(const char*& data, int32_t& length) { return Expose(cert_encoded_, data, length); }

int TlsChannel::SetSSLCertEncoded(const char* data, int32_t length) { return cert_encoded_.Assign(data, length); }

int TlsChannel::SSLCertStore(const char*& data, int32_t& length) { return Expose(cert_store_, data, length); }

int TlsChannel::SetSSLCertStore(const char* data, int32_t length) {
  if (data == nullptr || length <= 0) return ReportError(kErrCertStore, kTextCertStoreNotSet);
  return cert_store_.Assign(data, length);
}

int TlsChannel::SetSSLCertStoreType(int32_t type) {
  cert_store_type_ = type;
  return kOk;
}

int TlsChannel::SSLServerCertEncoded(const char*& data, int32_t& length) {
  return Expose(server_cert_, data, length);
}

}  // namespace orvelan
