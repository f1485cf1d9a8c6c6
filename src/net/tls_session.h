#pragma once
#include <openssl/ssl.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "net/openssl_holders.h"

namespace orvelan {

// One client TLS connection over a pair of memory BIOs: it never sees a
// descriptor. The owner feeds it the bytes that arrived, sends what
// TakeOutgoing() hands back, and reads plaintext out:
//
//   session.Start(ctx, "ofx.bank.example", this);
//   on bytes in:   session.Feed(bytes); session.Handshake() / session.Read(...)
//   after each:    Send(session.TakeOutgoing())
//
// Would-block is a result, not an error. Not thread-safe.
class TlsSession {
 public:
  enum Result : int { kDone = 0, kWantMore = 1, kClosed = 2, kFailed = 3 };

  TlsSession() = default;
  TlsSession(const TlsSession&) = delete;
  TlsSession& operator=(const TlsSession&) = delete;

  // Creates the connection for `host`: SNI for a name, and the name or IP
  // address checked against the certificate. `owner` goes into the
  // application-data slot (see AppDataIndex). false when OpenSSL fails.
  bool Start(SSL_CTX* ctx, const char* host, void* owner, X509* client_cert, EVP_PKEY* client_key);
  void Close();
  bool IsOpen() const { return ssl_ != nullptr; }
  SSL* ssl() const { return ssl_.get(); }

  void Feed(std::string_view ciphertext);
  int Handshake();
  // Plaintext into `buffer`: *read bytes and kDone, or kWantMore, kClosed
  // (close_notify or the peer went away) or kFailed.
  int Read(char* buffer, int size, int* read);
  // Encrypts all of `plaintext`; the records wait in TakeOutgoing().
  int Write(std::string_view plaintext);
  // Queues close_notify.
  void Shutdown();
  // Ciphertext waiting to go out; the caller sends it and drops what it sent.
  std::string& Outgoing();

  // The process-wide application-data index under which the owner is stored.
  static int AppDataIndex();

 private:
  int Classify(int rc);
  void Drain();

  SslPtr ssl_;
  BIO* in_ = nullptr;   // owned by ssl_
  BIO* out_ = nullptr;  // owned by ssl_
  std::string outgoing_;
};

}  // namespace orvelan
