#include "net/tls_channel.h"

namespace orvelan {
namespace {

int Expose(const ByteString& bytes, const char*& data, int32_t& length) {
  data = bytes.Data();
  length = bytes.Length();
  return kOk;
}

}  // namespace

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
