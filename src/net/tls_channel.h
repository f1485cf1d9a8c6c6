#pragma once
#include <cstdint>
#include <string>

#include "base/byte_string.h"
#include "net/openssl_holders.h"
#include "net/tcp_client.h"
#include "net/tls_session.h"

// TLS (OpenSSL 3, client side) between TcpClient and the layers above, and
// the upper hooks those layers override (FireConnected, FireDataIn,
// FireDisconnected, FireReadyToSend). With TLS off the transport hooks pass
// straight up. With it on, received bytes feed a TlsSession, the handshake
// runs as readiness arrives, and "connected" goes up only once the server's
// certificate has been accepted: by the chain check (which includes the host
// name), by SSLAcceptServerCertEncoded, or by the host's SSLServerAuthentication
// handler. Versions below TLS 1.2 are refused. Not thread-safe.
namespace orvelan {

class TlsChannel : public TcpClient {
 public:
  TlsChannel();
  ~TlsChannel() override;

  int InitDefaults() override;
  int HandleConfig(ConfigArgument& argument, const char*& out) override;

  // Sends through TLS when it is on, else straight to TCP; 0, 11 (partial,
  // see AcceptedBytes) or an error code.
  virtual int SendData(const char* data, int32_t length);
  // Bytes of the last SendData that were taken.
  int32_t AcceptedBytes() const { return tls_enabled_ ? tls_accepted_ : BytesLastSent(); }
  // Switches TLS on or off for the next connection; `host` is the name the
  // server's certificate must carry (and the SNI sent).
  // Switching TLS on moves the line end (and SplitCRLF) from the TCP line
  // buffer to the TLS one, so plaintext is cut as plain TCP data would be;
  // switching off moves it back.
  int EnableTls(bool on, const char* host);
  // While TLS is on, the line end cuts the plaintext.
  int SetEOL(std::string_view marker) override;
  // With Linger on, records not yet sent are flushed first; if some still
  // wait, 11 and nothing is closed (the host retries, or sets Linger off to
  // drop them). The TLS connection always ends with a close_notify, whatever
  // GracefullyShutDownSSL says.
  int Disconnect(long event_word = 0) override;
  bool TlsEnabled() const { return tls_enabled_; }
  // While TLS is on the flag holds plaintext back; the TCP layer keeps
  // reading, since the handshake and the records still need its bytes.
  // Switching on hands out what waited (lines first, as data arrives).
  bool AcceptData() const override { return tls_enabled_ ? tls_accept_data_ : TcpClient::AcceptData(); }
  int SetAcceptData(bool on) override;

  // A server certificate trusted without further checks: the base64 body of
  // its PEM form (armour lines and line breaks are ignored).
  int SSLAcceptServerCertEncoded(const char*& data, int32_t& length);
  int SetSSLAcceptServerCertEncoded(const char* data, int32_t length);
  // The selected client certificate's encoding; setting one selects it only
  // when it equals the loaded certificate (else 272).
  int SSLCertEncoded(const char*& data, int32_t& length);
  int SetSSLCertEncoded(const char* data, int32_t length);
  // The client certificate store (file name or data, by type); empty fails with 1.
  int SSLCertStore(const char*& data, int32_t& length);
  int SetSSLCertStore(const char* data, int32_t length);
  const char* SSLCertStorePassword() const { return cert_store_password_.Data(); }
  int SetSSLCertStorePassword(const char* password) { return cert_store_password_.Assign(password); }
  // 2 PKCS#12 file, 6 PEM file, 7 PEM text (an SSH2 encrypted private key
  // too), 8 public-key file, 9 public-key text, 10 either (by length); 3, 11
  // and 12 answer 306.
  int32_t SSLCertStoreType() const { return cert_store_type_; }
  int SetSSLCertStoreType(int32_t type);
  // Selecting a subject loads the store: "*" or the start of the loaded
  // certificate's subject selects it, anything else gives 272.
  const char* SSLCertSubject() const { return cert_subject_.Data(); }
  int SetSSLCertSubject(const char* subject);
  // The server's certificate from the last connection (base64 of its DER).
  int SSLServerCertEncoded(const char*& data, int32_t& length);

 protected:
  // Closes at once, dropping records not yet sent: for failure paths, where
  // the data no longer matters.
  int DropConnection(long event_word = 0) { return TcpClient::Disconnect(event_word); }

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
  friend int VerifyCallback(int preverify_ok, X509_STORE_CTX* store);

  // The description of a failed connect or disconnect: the system text.
  const char* CodeText(int code);
  int EnsureContext();
  // Warning (last-error text) or fatal (Error event, then abort): the message
  // and every queued OpenSSL message; returns the code used.
  int ReportTlsProblem(bool fatal, const char* message, int code);
  void ContinueHandshake();
  bool CheckServerCertificate();
  void ReadPlaintext();
  // Cuts plaintext into lines when a line end is set, else hands it up as it
  // comes; while accept data is off it waits.
  void DeliverPlaintext(std::string_view plaintext);
  // Hands up what waits in the line buffer and the overflow, while accept
  // data stays on: complete lines, then a partial one when no line end is set
  // or the buffer is nearly full.
  void HandOut();
  // Hands up what is left of the last line, as a piece without line end.
  void DeliverRest();
  int FlushOutgoing();
  void AbortTls(int code, const char* text);
  int LoadClientCertificate();
  // The placeholder certificate for `key`, signed by the key itself when it
  // is a private key.
  int MakePlaceholderCertificate(EVP_PKEY* key, bool can_sign);
  int UseLoadedCertificate();

  SslCtxPtr ctx_;
  TlsSession session_;
  LineBuffer tls_lines_{2048};
  std::string overflow_;  // plaintext that did not fit into tls_lines_
  X509Ptr client_cert_;
  EvpPkeyPtr client_key_;
  ByteString code_text_;
  ByteString tls_host_;
  ByteString accept_server_cert_;
  ByteString cert_encoded_;
  ByteString cert_store_;
  ByteString cert_store_password_;
  ByteString cert_subject_;
  ByteString loaded_subject_;
  ByteString server_cert_;
  ByteString ca_file_;
  ByteString ca_dir_;
  ByteString cipher_list_;
  ByteString prng_seed_;
  std::string status_text_;
  int32_t cert_store_type_ = 0;
  int32_t tls_accepted_ = 0;
  bool tls_enabled_ = false;
  bool tls_accept_data_ = true;
  bool handshake_pending_ = false;
  bool verify_ok_ = true;
  bool client_cert_selected_ = false;
};

}  // namespace orvelan
