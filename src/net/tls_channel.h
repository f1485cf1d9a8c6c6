#pragma once
#include <cstdint>

#include "base/byte_string.h"
#include "net/tcp_client.h"

// TLS for the connection beneath, and the upper hooks that the transfer and
// HTTP layers override (FireConnected, FireDataIn, FireDisconnected,
// FireReadyToSend). With TLS off the transport hooks pass straight up.
namespace orvelan {

inline constexpr int kErrCertStore = 1;
inline constexpr char kTextCertStoreNotSet[] = "Either the store or its length not set correctly";

class TlsChannel : public TcpClient {
 public:
  TlsChannel() = default;

  int InitDefaults() override;

  // Sends through TLS when it is on, else straight to TCP; 0, 11 (partial,
  // see BytesLastSent) or an error code.
  virtual int SendData(const char* data, int32_t length);
  // Switches TLS on or off for the next connection; `host` is the name the
  // server's certificate must carry (and the SNI sent).
  int EnableTls(bool on, const char* host);
  bool TlsEnabled() const { return tls_enabled_; }

  // A server certificate accepted without further checks (DER or PEM bytes).
  int SSLAcceptServerCertEncoded(const char*& data, int32_t& length);
  int SetSSLAcceptServerCertEncoded(const char* data, int32_t length);
  // The client certificate's encoding.
  int SSLCertEncoded(const char*& data, int32_t& length);
  int SetSSLCertEncoded(const char* data, int32_t length);
  // The client certificate store; an empty store fails with 1.
  int SSLCertStore(const char*& data, int32_t& length);
  int SetSSLCertStore(const char* data, int32_t length);
  const char* SSLCertStorePassword() const { return cert_store_password_.Data(); }
  int SetSSLCertStorePassword(const char* password) { return cert_store_password_.Assign(password); }
  int32_t SSLCertStoreType() const { return cert_store_type_; }
  int SetSSLCertStoreType(int32_t type);
  const char* SSLCertSubject() const { return cert_subject_.Data(); }
  int SetSSLCertSubject(const char* subject) { return cert_subject_.Assign(subject); }
  // The server's certificate from the last connection.
  int SSLServerCertEncoded(const char*& data, int32_t& length);

 protected:
  void OnConnected(int code) override;
  void OnDisconnected(int code) override;
  void OnDataIn(const char* data, int32_t length, bool end_of_line) override;
  void OnReadyToSend() override;

  // Upper hooks: what the layers above see of the connection.
  virtual void FireConnected(int code, const char* description) {
    (void)code;
    (void)description;
  }
  virtual void FireDisconnected(int code, const char* description) {
    (void)code;
    (void)description;
  }
  virtual void FireDataIn(const char* data, int32_t length, bool end_of_line) {
    (void)data;
    (void)length;
    (void)end_of_line;
  }
  virtual void FireReadyToSend() {}

 private:
  // The description of a failed connect or disconnect: the system text.
  const char* CodeText(int code);

  ByteString code_text_;
  ByteString tls_host_;
  bool tls_enabled_ = false;
  ByteString accept_server_cert_;
  ByteString cert_encoded_;
  ByteString cert_store_;
  ByteString cert_store_password_;
  ByteString cert_subject_;
  ByteString server_cert_;
  int32_t cert_store_type_ = 0;
};

}  // namespace orvelan
