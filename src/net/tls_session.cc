#include "net/tls_session.h"

#include <arpa/inet.h>
#include <openssl/err.h>
#include <openssl/x509v3.h>

namespace orvelan {
namespace {

bool IsAddressLiteral(const char* host) {
  unsigned char scratch[16];
  return inet_pton(AF_INET, host, scratch) == 1 || inet_pton(AF_INET6, host, scratch) == 1;
}

}  // namespace

int TlsSession::AppDataIndex() {
  static const int index = SSL_get_ex_new_index(0, const_cast<char*>("Application Data"), nullptr, nullptr, nullptr);
  return index;
}

bool TlsSession::Start(SSL_CTX* ctx, const char* host, void* owner, X509* client_cert, EVP_PKEY* client_key) {
  Close();
  SslPtr ssl(SSL_new(ctx));
  if (ssl == nullptr) return false;
  BIO* in = BIO_new(BIO_s_mem());
  BIO* out = BIO_new(BIO_s_mem());
  if (in == nullptr || out == nullptr) {
    BIO_free(in);
    BIO_free(out);
    return false;
  }
  BIO_set_mem_eof_return(in, -1);  // an empty input BIO means "wait", not end of stream
  SSL_set_bio(ssl.get(), in, out);  // the connection owns both BIOs from here
  SSL_set_mode(ssl.get(), SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
  SSL_set_ex_data(ssl.get(), AppDataIndex(), owner);
  if (host != nullptr && *host != '\0') {
    // The chain check includes the host: a mismatch fails verification like
    // any other chain error, so the host's decision still applies.
    if (IsAddressLiteral(host)) {
      if (X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(ssl.get()), host) != 1) return false;
    } else {
      if (SSL_set_tlsext_host_name(ssl.get(), host) != 1) return false;
      if (SSL_set1_host(ssl.get(), host) != 1) return false;
    }
  }
  if (client_cert != nullptr && client_key != nullptr) {
    if (SSL_use_certificate(ssl.get(), client_cert) != 1 || SSL_use_PrivateKey(ssl.get(), client_key) != 1) {
      return false;
    }
  }
  SSL_set_connect_state(ssl.get());
  ssl_ = std::move(ssl);
  in_ = in;
  out_ = out;
  outgoing_.clear();
  return true;
}

void TlsSession::Close() {
  ssl_.reset();
  in_ = nullptr;
  out_ = nullptr;
}

void TlsSession::Feed(std::string_view ciphertext) {
  if (in_ != nullptr && !ciphertext.empty()) BIO_write(in_, ciphertext.data(), static_cast<int>(ciphertext.size()));
}

void TlsSession::Drain() {
  if (out_ == nullptr) return;
  char buffer[16384];
  int n;
  while ((n = BIO_read(out_, buffer, sizeof buffer)) > 0) outgoing_.append(buffer, static_cast<size_t>(n));
}

std::string& TlsSession::Outgoing() {
  Drain();
  return outgoing_;
}

int TlsSession::Classify(int rc) {
  switch (SSL_get_error(ssl_.get(), rc)) {
    case SSL_ERROR_WANT_READ:
    case SSL_ERROR_WANT_WRITE:
      return kWantMore;
    case SSL_ERROR_ZERO_RETURN:
      return kClosed;
    case SSL_ERROR_SYSCALL:
      return ERR_peek_error() == 0 ? kClosed : kFailed;
    default:
      return kFailed;
  }
}

int TlsSession::Handshake() {
  if (!ssl_) return kFailed;
  ERR_clear_error();
  const int rc = SSL_connect(ssl_.get());
  Drain();
  return rc == 1 ? kDone : Classify(rc);
}

int TlsSession::Read(char* buffer, int size, int* read) {
  *read = 0;
  if (!ssl_) return kFailed;
  ERR_clear_error();
  const int rc = SSL_read(ssl_.get(), buffer, size);
  Drain();  // a read may produce records too (a key update)
  if (rc > 0) {
    *read = rc;
    return kDone;
  }
  return Classify(rc);
}

int TlsSession::Write(std::string_view plaintext) {
  if (!ssl_) return kFailed;
  size_t done = 0;
  while (done < plaintext.size()) {
    ERR_clear_error();
    const int rc = SSL_write(ssl_.get(), plaintext.data() + done, static_cast<int>(plaintext.size() - done));
    Drain();
    if (rc <= 0) return Classify(rc);
    done += static_cast<size_t>(rc);
  }
  return kDone;
}

void TlsSession::Shutdown() {
  if (!ssl_) return;
  ERR_clear_error();
  SSL_shutdown(ssl_.get());
  Drain();
  ERR_clear_error();
}

}  // namespace orvelan
