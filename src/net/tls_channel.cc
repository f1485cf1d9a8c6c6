#include "net/tls_channel.h"

#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/param_build.h>
#include <openssl/x509v3.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <vector>

#include "core/error_text_table.h"
#include "core/setting_table.h"
#include "net/pem_block.h"

namespace orvelan {
namespace {

constexpr int kReadBlock = 16384;

int Expose(const ByteString& bytes, const char*& data, int32_t& length) {
  data = bytes.Data();
  length = bytes.Length();
  return kOk;
}

// The base64 body of a certificate's PEM form, one line, for comparing.
std::string Normalized(std::string_view text) {
  std::string out;
  size_t at = 0;
  while (at < text.size()) {
    size_t end = text.find('\n', at);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(at, end - at);
    if (line.substr(0, 5) != "-----") {
      for (char c : line) {
        if (c != '\r' && c != ' ' && c != '\t') out += c;
      }
    }
    at = end + 1;
  }
  return out;
}

// PEM of `cert` without its armour lines, as the host sees certificates.
bool EncodeCertificate(X509* cert, ByteString* out) {
  BioPtr bio(BIO_new(BIO_s_mem()));
  if (bio == nullptr || PEM_write_bio_X509(bio.get(), cert) != 1) return false;
  char* data = nullptr;
  const long length = BIO_get_mem_data(bio.get(), &data);
  std::string_view pem(data, static_cast<size_t>(length));
  constexpr std::string_view kBegin = "-----BEGIN CERTIFICATE-----\n";
  constexpr std::string_view kEnd = "\n-----END CERTIFICATE-----";
  if (pem.substr(0, kBegin.size()) == kBegin) pem.remove_prefix(kBegin.size());
  const size_t end = pem.find(kEnd);
  if (end != std::string_view::npos) pem = pem.substr(0, end);
  return out->Assign(pem) == kOk;
}

std::string OneLine(X509_NAME* name) {
  char text[4096] = "";
  if (name != nullptr) X509_NAME_oneline(name, text, sizeof text);
  return text;
}

int PasswordCallback(char* buffer, int size, int /*rwflag*/, void* password) {
  const char* text = static_cast<const char*>(password);
  const int length = static_cast<int>(std::strlen(text));
  if (length > size) return 0;
  std::memcpy(buffer, text, static_cast<size_t>(length));
  return length;
}

void InitialiseOpenSsl() {
  static std::once_flag once;
  std::call_once(once, [] {
    OPENSSL_init_ssl(OPENSSL_INIT_LOAD_SSL_STRINGS | OPENSSL_INIT_LOAD_CRYPTO_STRINGS, nullptr);
    OPENSSL_init_crypto(OPENSSL_INIT_ADD_ALL_CIPHERS | OPENSSL_INIT_ADD_ALL_DIGESTS, nullptr);
    TlsSession::AppDataIndex();
  });
}

bool TakeSeedingChance() {
  static std::once_flag once;
  bool first = false;
  std::call_once(once, [&first] { first = true; });
  return first;
}

bool ReadWholeFile(const char* path, std::string* text) {
  BioPtr bio(BIO_new_file(path, "rb"));
  if (bio == nullptr) return false;
  char buffer[4096];
  int n;
  while ((n = BIO_read(bio.get(), buffer, sizeof buffer)) > 0) text->append(buffer, static_cast<size_t>(n));
  return true;
}

// The key of an "SSH2 ENCRYPTED PRIVATE KEY" block: DER (PKCS#1, PKCS#8 or
// SEC1) once decrypted.
EvpPkeyPtr ReadSsh2PrivateKey(std::string_view text, std::string_view password) {
  PemBlock block;
  if (!block.Read(text, "SSH2 ENCRYPTED PRIVATE KEY") || !block.Decrypt(password)) return nullptr;
  const auto* der = reinterpret_cast<const unsigned char*>(block.Body().Data());
  return EvpPkeyPtr(d2i_AutoPrivateKey(nullptr, &der, block.Body().Length()));
}

// SSH wire format: a 32-bit big-endian length and that many bytes.
bool TakeSshString(std::string_view& data, std::string_view* out) {
  if (data.size() < 4) return false;
  const uint32_t length = (uint32_t{static_cast<uint8_t>(data[0])} << 24) |
                          (uint32_t{static_cast<uint8_t>(data[1])} << 16) |
                          (uint32_t{static_cast<uint8_t>(data[2])} << 8) | uint32_t{static_cast<uint8_t>(data[3])};
  if (data.size() - 4 < length) return false;
  *out = data.substr(4, length);
  data.remove_prefix(4 + length);
  return true;
}

// An "SSH2 PUBLIC KEY" block: "ssh-rsa" with e and n, or "ssh-dss" with p, q, g and y.
EvpPkeyPtr ReadSsh2PublicKey(std::string_view text) {
  PemBlock block;
  if (!block.Read(text, "SSH2 PUBLIC KEY")) return nullptr;
  std::string_view data = block.Body().View();
  std::string_view type;
  if (!TakeSshString(data, &type)) return nullptr;
  std::vector<const char*> names;
  const char* key_type;
  if (type == "ssh-rsa") {
    names = {"e", "n"};
    key_type = "RSA";
  } else if (type == "ssh-dss") {
    names = {"p", "q", "g", "pub"};
    key_type = "DSA";
  } else {
    return nullptr;
  }
  std::unique_ptr<OSSL_PARAM_BLD, FreeWith<OSSL_PARAM_BLD_free>> build(OSSL_PARAM_BLD_new());
  std::vector<std::unique_ptr<BIGNUM, FreeWith<BN_free>>> numbers;
  if (build == nullptr) return nullptr;
  for (const char* name : names) {
    std::string_view mpint;
    if (!TakeSshString(data, &mpint)) return nullptr;
    numbers.emplace_back(BN_bin2bn(reinterpret_cast<const unsigned char*>(mpint.data()),
                                   static_cast<int>(mpint.size()), nullptr));
    if (numbers.back() == nullptr || OSSL_PARAM_BLD_push_BN(build.get(), name, numbers.back().get()) != 1) {
      return nullptr;
    }
  }
  std::unique_ptr<OSSL_PARAM, FreeWith<OSSL_PARAM_free>> params(OSSL_PARAM_BLD_to_param(build.get()));
  std::unique_ptr<EVP_PKEY_CTX, FreeWith<EVP_PKEY_CTX_free>> ctx(EVP_PKEY_CTX_new_from_name(nullptr, key_type, nullptr));
  EVP_PKEY* key = nullptr;
  if (params == nullptr || ctx == nullptr || EVP_PKEY_fromdata_init(ctx.get()) != 1 ||
      EVP_PKEY_fromdata(ctx.get(), &key, EVP_PKEY_PUBLIC_KEY, params.get()) != 1) {
    return nullptr;
  }
  return EvpPkeyPtr(key);
}

// The first public key in `text`: PEM "PUBLIC KEY", "RSA PUBLIC KEY" or
// "DSA PUBLIC KEY", or an SSH2 block.
EvpPkeyPtr ReadPublicKey(std::string_view text) {
  if (text.find("SSH2 PUBLIC KEY") != std::string_view::npos) return ReadSsh2PublicKey(text);
  BioPtr bio(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
  if (bio == nullptr) return nullptr;
  for (;;) {
    char* name = nullptr;
    char* header = nullptr;
    unsigned char* der = nullptr;
    long length = 0;
    if (PEM_read_bio(bio.get(), &name, &header, &der, &length) != 1) return nullptr;
    const std::string kind(name);
    const unsigned char* p = der;
    EVP_PKEY* key = nullptr;
    if (kind == "PUBLIC KEY") {
      key = d2i_PUBKEY(nullptr, &p, length);
    } else if (kind == "RSA PUBLIC KEY") {
      key = d2i_PublicKey(EVP_PKEY_RSA, nullptr, &p, length);
    } else if (kind == "DSA PUBLIC KEY") {
      key = d2i_PublicKey(EVP_PKEY_DSA, nullptr, &p, length);
    }
    OPENSSL_free(name);
    OPENSSL_free(header);
    OPENSSL_free(der);
    if (key != nullptr) return EvpPkeyPtr(key);
    if (kind == "PUBLIC KEY" || kind == "RSA PUBLIC KEY" || kind == "DSA PUBLIC KEY") return nullptr;
  }
}

// The certificates of the system's default CA file (SSL_CERT_FILE, else
// OpenSSL's default), read once per process. Letting every context parse the
// bundle again cost about 25 ms per connection, more than decrypting 50 MB.
// Kept until exit, reachable through this pointer.
STACK_OF(X509)* DefaultFileCertificates() {
  static STACK_OF(X509)* const certs = [] {
    STACK_OF(X509)* out = nullptr;
    const char* file = std::getenv(X509_get_default_cert_file_env());
    if (file == nullptr) file = X509_get_default_cert_file();
    std::unique_ptr<X509_STORE, FreeWith<X509_STORE_free>> store(X509_STORE_new());
    if (store != nullptr && X509_STORE_load_file(store.get(), file) == 1) out = X509_STORE_get1_all_certs(store.get());
    ERR_clear_error();  // no default file is no error, as with OpenSSL's own default paths
    return out != nullptr ? out : sk_X509_new_null();
  }();
  return certs;
}

// What SSL_CTX_set_default_verify_paths does, with the default file's
// certificates shared: the default directory (SSL_CERT_DIR, else OpenSSL's
// default) is looked up on demand, the file's certificates are in the store.
bool UseDefaultVerifyPaths(SSL_CTX* ctx) {
  X509_STORE* store = SSL_CTX_get_cert_store(ctx);
  X509_LOOKUP* dir = X509_STORE_add_lookup(store, X509_LOOKUP_hash_dir());
  if (dir == nullptr || X509_LOOKUP_add_dir(dir, nullptr, X509_FILETYPE_DEFAULT) != 1) return false;
  STACK_OF(X509)* certs = DefaultFileCertificates();
  if (certs == nullptr) return false;
  for (int i = 0; i < sk_X509_num(certs); ++i) X509_STORE_add_cert(store, sk_X509_value(certs, i));
  ERR_clear_error();  // a certificate the store holds already is no failure
  return true;
}

}  // namespace

// Lets the handshake continue whatever the chain says: the decision is taken
// afterwards, where the host can overrule it.
int VerifyCallback(int preverify_ok, X509_STORE_CTX* store) {
  if (preverify_ok) return 1;
  SSL* ssl = static_cast<SSL*>(X509_STORE_CTX_get_ex_data(store, SSL_get_ex_data_X509_STORE_CTX_idx()));
  auto* owner = ssl == nullptr ? nullptr : static_cast<TlsChannel*>(SSL_get_ex_data(ssl, TlsSession::AppDataIndex()));
  if (owner == nullptr) return 1;
  ByteString encoded;
  X509* cert = X509_STORE_CTX_get_current_cert(store);
  const bool is_accepted = owner->accept_server_cert_.Length() > 0 && cert != nullptr &&
                           EncodeCertificate(cert, &encoded) &&
                           Normalized(encoded.View()) == Normalized(owner->accept_server_cert_.View());
  if (!is_accepted) owner->verify_ok_ = false;
  return 1;
}

TlsChannel::TlsChannel() { InitialiseOpenSsl(); }

TlsChannel::~TlsChannel() = default;

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

int TlsChannel::HandleConfig(ConfigArgument& argument, const char*& out) {
  struct Verify {
    // Stores the value, then hands it to a live context at once; a value the
    // context refuses stays stored and is reported as a warning.
    static int Set(TlsChannel& c, ByteString& value, const ConfigArgument& argument, const char* warning) {
      if (int rc = value.Assign(argument.Value()); rc != kOk) return rc;
      if (c.ctx_ == nullptr || value.Length() == 0) return kOk;
      ERR_clear_error();
      int ok;
      if (&value == &c.ca_file_) {
        ok = SSL_CTX_load_verify_locations(c.ctx_.get(), c.ca_file_.Data(), nullptr);
      } else if (&value == &c.ca_dir_) {
        ok = SSL_CTX_load_verify_locations(c.ctx_.get(), nullptr, c.ca_dir_.Data());
      } else {
        ok = SSL_CTX_set_cipher_list(c.ctx_.get(), c.cipher_list_.Data());
      }
      return ok == 1 ? kOk : c.ReportTlsProblem(false, warning, kErrTlsSetup);
    }
  };
  using R = Setting<TlsChannel>;
  using A = const ConfigArgument&;
  static constexpr R kSettings[] = {
      {"OpenSSLCAFile", R::QueryText<&TlsChannel::ca_file_>,
       [](TlsChannel& c, A argument) {
         return Verify::Set(c, c.ca_file_, argument, "SSL could not load verification file.");
       }},
      {"OpenSSLCADir", R::QueryText<&TlsChannel::ca_dir_>,
       [](TlsChannel& c, A argument) {
         return Verify::Set(c, c.ca_dir_, argument, "SSL could not load verification directory.");
       }},
      {"OpenSSLCipherList", R::QueryText<&TlsChannel::cipher_list_>,
       [](TlsChannel& c, A argument) {
         return Verify::Set(c, c.cipher_list_, argument, "SSL could not load cipher list.");
       }},
      {"OpenSSLPrngSeedData", R::QueryText<&TlsChannel::prng_seed_>,
       [](TlsChannel& c, A argument) {
         if (int rc = c.prng_seed_.Assign(argument.Value()); rc != kOk) return rc;
         if (TakeSeedingChance() && c.prng_seed_.Length() > 0) RAND_seed(c.prng_seed_.Data(), c.prng_seed_.Length());
         return kOk;
       }},
  };
  if (const R* row = FindSetting(kSettings, argument)) return row->Run(*this, argument, out);
  return TcpClient::HandleConfig(argument, out);
}

const char* TlsChannel::CodeText(int code) {
  if (code == 0) return "OK";
  if (code == kErrTunnel || code == kErrCertRejected) return GetLastError();
  code_text_.Assign("[");
  code_text_.AppendInt(code);
  code_text_.Append("] ");
  const char* text = SystemErrorText(code);
  code_text_.Append(text != nullptr ? text : kTextNoDescription);
  return code_text_.Data();
}

int TlsChannel::ReportTlsProblem(bool fatal, const char* message, int code) {
  std::string text(message, strnlen(message, 2048));
  unsigned long last = 0;
  while (unsigned long e = ERR_get_error()) {
    char line[256];
    ERR_error_string_n(e, line, sizeof line);
    text += "\n SSL Library Message:";
    text += line;
    last = e;
  }
  if (code == kErrTlsFailure) code = last != 0 ? static_cast<int>(last) : errno;
  if (fatal) {
    FireError(code, text.c_str());
  }
  SetErrorText(text.c_str());
  return code;
}

int TlsChannel::EnsureContext() {
  if (ctx_ != nullptr) return kOk;
  if (TakeSeedingChance() && prng_seed_.Length() > 0) RAND_seed(prng_seed_.Data(), prng_seed_.Length());
  ERR_clear_error();
  SslCtxPtr ctx(SSL_CTX_new(TLS_client_method()));
  if (ctx == nullptr) return ReportTlsProblem(true, "Cannot enable SSL", kErrTlsSetup);
  SSL_CTX_set_min_proto_version(ctx.get(), TLS1_2_VERSION);
  if (!UseDefaultVerifyPaths(ctx.get())) {
    ReportTlsProblem(false, "SSL unable to set default verify paths.", kErrTlsSetup);
  }
  if (ca_file_.Length() > 0 && SSL_CTX_load_verify_locations(ctx.get(), ca_file_.Data(), nullptr) != 1) {
    ReportTlsProblem(false, "SSL unable to load verify file location.", kErrTlsSetup);
  }
  if (ca_dir_.Length() > 0 && SSL_CTX_load_verify_locations(ctx.get(), nullptr, ca_dir_.Data()) != 1) {
    ReportTlsProblem(false, "SSL unable to load verify directory location.", kErrTlsSetup);
  }
  SSL_CTX_set_verify(ctx.get(), SSL_VERIFY_PEER, VerifyCallback);
  SSL_CTX_set_options(ctx.get(), SSL_OP_ALL);
  if (cipher_list_.Length() > 0 && SSL_CTX_set_cipher_list(ctx.get(), cipher_list_.Data()) != 1) {
    ReportTlsProblem(false, "SSL unable to load the cipher list.", kErrTlsSetup);
  }
  ctx_ = std::move(ctx);
  return kOk;
}

int TlsChannel::EnableTls(bool on, const char* host) {
  if (on != tls_enabled_) {
    LineBuffer& from = on ? line_buffer_ : tls_lines_;
    LineBuffer& to = on ? tls_lines_ : line_buffer_;
    if (from.SplitAny()) {
      to.SetSplitAny(true);
    } else {
      to.SetMarker(from.Marker());
    }
    from.SetMarker("");
  }
  tls_enabled_ = on;
  secure_ = on;
  if (on) {
    if (int rc = EnsureContext(); rc != kOk) return rc;
  }
  return tls_host_.Assign(host);
}

int TlsChannel::SetEOL(std::string_view marker) {
  if (!tls_enabled_) return TcpClient::SetEOL(marker);
  tls_lines_.SetMarker(marker);
  return kOk;
}

int TlsChannel::SendData(const char* data, int32_t length) {
  if (!tls_enabled_) return Send(data, length);
  tls_accepted_ = 0;
  if (!session_.IsOpen() || handshake_pending_) {
    errno = kErrNotConnected;
    return kErrNotConnected;
  }
  // Earlier records still waiting hold the new data back.
  if (int rc = FlushOutgoing(); rc != kOk) return rc;
  if (length <= 0) return kOk;
  const int result = session_.Write(std::string_view(data, static_cast<size_t>(length)));
  if (result == TlsSession::kFailed) {
    const int code = ReportTlsProblem(true, "Error in writing to SSL Connection", kErrTlsFailure);
    AbortTls(code, GetLastError());
    return code;
  }
  tls_accepted_ = length;
  char status[64];
  std::snprintf(status, sizeof status, "Wrote %d bytes over the SSL connection.", length);
  FireSSLStatus(status);
  const int rc = FlushOutgoing();
  return rc == kErrWouldBlock ? kOk : rc;  // the data was taken; the records follow on write readiness
}

int TlsChannel::Disconnect(long event_word) {
  if (tls_enabled_ && session_.IsOpen() && !handshake_pending_ && Linger() && !session_.Outgoing().empty() &&
      FlushOutgoing() == kErrWouldBlock) {
    return ReportError(kErrWouldBlock, "Operation would block. (To force disconnection, set Linger FALSE).");
  }
  return TcpClient::Disconnect(event_word);
}

int TlsChannel::FlushOutgoing() {
  std::string& out = session_.Outgoing();
  while (!out.empty()) {
    const int rc = Send(out.data(), static_cast<int32_t>(out.size()));
    if (rc == kOk) {
      out.clear();
      break;
    }
    if (rc == kErrWouldBlock) {
      out.erase(0, static_cast<size_t>(BytesLastSent()));
      return kErrWouldBlock;
    }
    return rc;
  }
  return kOk;
}

void TlsChannel::OnConnected(int code) {
  if (code != 0) {
    OnConnectionStatus("Remote host connection failed.", code);
    FireConnected(code, CodeText(code));
    return;
  }
  OnConnectionStatus("Remote host connection complete. Initiating SSL handshake.", 0);
  if (!tls_enabled_) {
    FireConnected(0, "OK");
    return;
  }
  FireSSLStatus("Socket connection established.");
  verify_ok_ = true;
  server_cert_.Clear();
  ERR_clear_error();
  if (EnsureContext() != kOk ||
      !session_.Start(ctx_.get(), tls_host_.Data(), this, client_cert_selected_ ? client_cert_.get() : nullptr,
                      client_cert_selected_ ? client_key_.get() : nullptr)) {
    const int rc = ReportTlsProblem(true, "SSL unable to connect", kErrTlsSetup);
    AbortTls(rc, GetLastError());
    return;
  }
  handshake_pending_ = true;
  tls_lines_.Clear();
  overflow_.clear();
  FireSSLStatus("Starting to establish secure channel.");
  ContinueHandshake();
}

void TlsChannel::ContinueHandshake() {
  const int result = session_.Handshake();
  FlushOutgoing();
  if (result == TlsSession::kWantMore) return;
  if (result != TlsSession::kDone) {
    const int code = result == TlsSession::kClosed
                         ? ReportTlsProblem(true, "Error in making an SSL Connection", kErrTlsSetup)
                         : ReportTlsProblem(true, "Error in making an SSL Connection", kErrTlsFailure);
    AbortTls(code, GetLastError());
    return;
  }
  handshake_pending_ = false;
  FireSSLStatus("Secure channel established.");
  if (!CheckServerCertificate()) {
    FireSSLStatus("Server certificate verification failed. Aborting connection...");
    SetErrorText("Server certificate verification failed. Connection aborted.");
    AbortTls(kErrCertRejected, GetLastError());
    return;
  }
  FireSSLStatus("SSL connection established.");
  FireConnected(0, "OK");
  ReadPlaintext();  // application data may have come with the last handshake records
}

bool TlsChannel::CheckServerCertificate() {
  status_text_ = "NOT OK";
  X509Ptr cert(SSL_get1_peer_certificate(session_.ssl()));
  int accept = 0;
  if (cert == nullptr) {
    status_text_ = "Server presented no certificate.";
    FireSSLServerAuthentication("", 0, "", "", status_text_.c_str(), accept);
    return accept != 0;
  }
  if (!EncodeCertificate(cert.get(), &server_cert_)) {
    FireError(kErrTlsSetup,
              "The server presented a certificate, which could not be encoded.It will NOT be available through a "
              "call to GetSSLServerCert.");
  }
  const bool is_accepted = accept_server_cert_.Length() > 0 &&
                           Normalized(server_cert_.View()) == Normalized(accept_server_cert_.View());
  const std::string issuer = OneLine(X509_get_issuer_name(cert.get()));
  const std::string subject = OneLine(X509_get_subject_name(cert.get()));
  const long verify = SSL_get_verify_result(session_.ssl());
  if (is_accepted) {
    status_text_ = "OK";
    accept = 1;
  } else if (verify != X509_V_OK || !verify_ok_) {
    status_text_ = X509_verify_cert_error_string(verify);
  } else {
    status_text_ = "OK";
    accept = 1;
  }
  FireSSLServerAuthentication(server_cert_.Data(), server_cert_.Length(), subject.c_str(), issuer.c_str(),
                              status_text_.c_str(), accept);
  return accept != 0;
}

void TlsChannel::AbortTls(int code, const char* text) {
  const std::string description(text);
  const bool was_handshaking = handshake_pending_ || code == kErrCertRejected;
  handshake_pending_ = false;
  session_.Close();
  tls_accept_data_ = true;
  overflow_.clear();
  FireSSLStatus("SSL connection closed.");
  if (was_handshaking) FireConnected(code, description.c_str());
  SetErrorText(description.c_str());
  TcpClient::Disconnect(0);  // an abort drops whatever is still queued
}

void TlsChannel::OnDataIn(const char* data, int32_t length, bool end_of_line) {
  if (!tls_enabled_ || !session_.IsOpen()) {
    if (!tls_enabled_) FireDataIn(data, length, end_of_line);
    return;
  }
  session_.Feed(std::string_view(data, static_cast<size_t>(length)));
  if (handshake_pending_) {
    ContinueHandshake();
    return;
  }
  ReadPlaintext();
}

void TlsChannel::ReadPlaintext() {
  char block[kReadBlock];
  while (session_.IsOpen() && !handshake_pending_) {
    int read = 0;
    const int result = session_.Read(block, sizeof block, &read);
    if (result == TlsSession::kDone) {
      char status[64];
      std::snprintf(status, sizeof status, "Read %d bytes over the SSL connection.", read);
      FireSSLStatus(status);
      DeliverPlaintext(std::string_view(block, static_cast<size_t>(read)));
      continue;
    }
    FlushOutgoing();
    if (result == TlsSession::kWantMore) return;
    if (result == TlsSession::kClosed) {
      // close_notify: the peer is done; the TCP close follows.
      TcpClient::Disconnect(0);
      return;
    }
    const int code = ReportTlsProblem(true, "Error in reading from SSL Connection", kErrTlsFailure);
    AbortTls(code, GetLastError());
    return;
  }
}

void TlsChannel::DeliverPlaintext(std::string_view plaintext) {
  if (tls_accept_data_ && tls_lines_.Marker().empty() && tls_lines_.Unread() == 0 && overflow_.empty()) {
    FireDataIn(plaintext.data(), static_cast<int32_t>(plaintext.size()), false);  // bulk data: no copy
    return;
  }
  overflow_.append(plaintext.data(), plaintext.size());
  HandOut();
}

void TlsChannel::HandOut() {
  // Below this much room a partial line goes up as a piece, so a line longer
  // than the buffer still moves.
  constexpr uint32_t kMinLineRoom = 256;
  // A hook may disconnect or switch accept data off; what is left then waits.
  const auto may_deliver = [this] { return session_.IsOpen() && tls_accept_data_; };
  while (may_deliver()) {
    if (!overflow_.empty()) {
      const LineBuffer::Room room = tls_lines_.FreeRoom();
      const size_t n = std::min<size_t>(room.size, overflow_.size());
      std::memcpy(room.data, overflow_.data(), n);
      tls_lines_.Commit(static_cast<uint32_t>(n));
      overflow_.erase(0, n);
    }
    const bool cutting = !tls_lines_.Marker().empty();
    std::string_view line;
    while (cutting && may_deliver() && tls_lines_.NextLine(&line)) {
      FireDataIn(line.data(), static_cast<int32_t>(line.size()), true);
    }
    if (!may_deliver()) return;
    if (!cutting || tls_lines_.Capacity() - tls_lines_.Unread() < kMinLineRoom) DeliverRest();
    if (overflow_.empty()) return;
  }
}

void TlsChannel::DeliverRest() {
  if (tls_lines_.Unread() == 0) return;
  const std::string_view rest = tls_lines_.TakeAll();
  FireDataIn(rest.data(), static_cast<int32_t>(rest.size()), false);
}

int TlsChannel::SetAcceptData(bool on) {
  if (!tls_enabled_) return TcpClient::SetAcceptData(on);
  tls_accept_data_ = on;
  if (on) TcpClient::SetAcceptData(true);
  HandOut();
  return kOk;
}

void TlsChannel::OnReadyToSend() {
  if (tls_enabled_ && session_.IsOpen()) {
    if (FlushOutgoing() != kOk) return;
    if (handshake_pending_) return;
  }
  FireReadyToSend();
}

void TlsChannel::OnDisconnected(int code) {
  OnConnectionStatus("Remote host disconnected.", code);
  if (session_.IsOpen() && tls_accept_data_) {
    HandOut();
    DeliverRest();  // a last line without its line end is still data
  }
  if (session_.IsOpen()) {
    // Best effort close_notify: the socket is about to close.
    session_.Shutdown();
    const std::string& out = session_.Outgoing();
    if (!out.empty() && socket_.is_valid()) {
      [[maybe_unused]] ssize_t ignored = send(socket_.get(), out.data(), out.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    }
    FireSSLStatus("Closing SSL connection.");
    session_.Close();
    FireSSLStatus("SSL connection closed.");
  }
  handshake_pending_ = false;
  tls_accept_data_ = true;  // as the TCP layer's flag after a disconnect
  overflow_.clear();
  FireDisconnected(code, CodeText(code));
}

int TlsChannel::SSLAcceptServerCertEncoded(const char*& data, int32_t& length) {
  return Expose(accept_server_cert_, data, length);
}

int TlsChannel::SetSSLAcceptServerCertEncoded(const char* data, int32_t length) {
  return accept_server_cert_.Assign(data, length);
}

int TlsChannel::SSLCertEncoded(const char*& data, int32_t& length) { return Expose(cert_encoded_, data, length); }

int TlsChannel::SetSSLCertEncoded(const char* data, int32_t length) {
  if (length <= 0) {
    client_cert_selected_ = false;
    return cert_encoded_.Assign(data, length);
  }
  if (client_cert_ == nullptr) LoadClientCertificate();
  ByteString loaded;
  if (client_cert_ == nullptr || !EncodeCertificate(client_cert_.get(), &loaded) ||
      Normalized(loaded.View()) != Normalized(std::string_view(data, static_cast<size_t>(length)))) {
    return ReportError(kErrNoMatchingCert, "No certificate matches the given encoding.");
  }
  client_cert_selected_ = true;
  return cert_encoded_.Assign(loaded);
}

int TlsChannel::SSLCertStore(const char*& data, int32_t& length) { return Expose(cert_store_, data, length); }

int TlsChannel::SetSSLCertStore(const char* data, int32_t length) {
  if (data == nullptr || length <= 0) return ReportError(kErrCertStore, kTextCertStoreNotSet);
  client_cert_.reset();
  client_key_.reset();
  client_cert_selected_ = false;
  return cert_store_.Assign(data, length);
}

int TlsChannel::SetSSLCertStoreType(int32_t type) {
  cert_store_type_ = type;
  client_cert_.reset();
  client_key_.reset();
  client_cert_selected_ = false;
  return kOk;
}

int TlsChannel::SetSSLCertSubject(const char* subject) {
  if (int rc = cert_subject_.Assign(subject); rc != kOk) return rc;
  client_cert_selected_ = false;
  if (cert_subject_.Length() == 0) return kOk;
  if (int rc = LoadClientCertificate(); rc != kOk) return rc;
  if (client_cert_ == nullptr) return kOk;  // an empty store loads nothing
  const std::string_view wanted = cert_subject_.View();
  if (wanted != "*" && wanted.substr(0, static_cast<size_t>(loaded_subject_.Length())) != loaded_subject_.View()) {
    return ReportError(kErrNoMatchingCert, "No certificate matches the given subject.");
  }
  client_cert_selected_ = true;
  return kOk;
}

int TlsChannel::LoadClientCertificate() {
  client_cert_.reset();
  client_key_.reset();
  if (cert_store_.Length() == 0) return kOk;
  ERR_clear_error();
  void* password = const_cast<char*>(cert_store_password_.Data());
  switch (cert_store_type_) {
    case 2: {
      if (cert_store_.Length() > 1024) {
        return ReportError(kErrPfxStore, "File name cannot be greater than 1024 characters.");
      }
      FILE* file = std::fopen(cert_store_.Data(), "rb");
      if (file == nullptr) return ReportError(kErrPfxStore, "Could not open the store.");
      Pkcs12Ptr p12(d2i_PKCS12_fp(file, nullptr));
      std::fclose(file);
      if (p12 == nullptr) return ReportError(kErrPfxStore, "Could not open the store.");
      EVP_PKEY* key = nullptr;
      X509* cert = nullptr;
      const int ok = PKCS12_parse(p12.get(), cert_store_password_.Data(), &key, &cert, nullptr);
      client_key_.reset(key);
      client_cert_.reset(cert);
      if (ok != 1 || key == nullptr || cert == nullptr) {
        client_cert_.reset();
        client_key_.reset();
        return ReportError(kErrPfxStore, "Could not parse the store.");
      }
      break;
    }
    case 6:
    case 7: {
      std::string text;
      if (cert_store_type_ == 7) {
        text.assign(cert_store_.View());
      } else if (!ReadWholeFile(cert_store_.Data(), &text)) {
        return ReportError(kErrTlsSetup, "Cannot open store file.");
      }
      if (text.find("SSH2") != std::string::npos) {
        client_key_ = ReadSsh2PrivateKey(text, cert_store_password_.View());
        if (client_key_ == nullptr) return ReportError(kErrTlsSetup, "Cannot decode SSH2 private encrypted key.");
      } else {
        BioPtr key_bio(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
        client_key_.reset(PEM_read_bio_PrivateKey(key_bio.get(), nullptr, PasswordCallback, password));
        if (client_key_ == nullptr) return ReportError(kErrTlsSetup, "Unable to read the private key from the store.");
      }
      if (text.find("CERTIFICATE") != std::string::npos) {
        BioPtr cert_bio(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
        client_cert_.reset(PEM_read_bio_X509(cert_bio.get(), nullptr, PasswordCallback, password));
        if (client_cert_ == nullptr) {
          client_key_.reset();
          return ReportError(kErrTlsSetup, "Unable to read the certificate from the store.");
        }
      } else if (int rc = MakePlaceholderCertificate(client_key_.get(), true); rc != kOk) {
        return rc;
      }
      break;
    }
    case 8:
    case 9:
    case 10: {
      // Type 10 tells a file name from key text by its length.
      constexpr int32_t kShortestKeyText = 512;
      const bool is_file =
          cert_store_type_ == 8 || (cert_store_type_ == 10 && cert_store_.Length() < kShortestKeyText);
      std::string text;
      if (!is_file) {
        text.assign(cert_store_.View());
      } else if (!ReadWholeFile(cert_store_.Data(), &text)) {
        return ReportError(kErrTlsSetup, "The public key file could not be opened.");
      }
      EvpPkeyPtr key = ReadPublicKey(text);
      if (key == nullptr) return ReportError(kErrTlsSetup, "Unable to read the public key from the store.");
      // Only a public key: the certificate can be shown and selected, but
      // without a private key it is never offered to a server.
      if (int rc = MakePlaceholderCertificate(key.get(), false); rc != kOk) return rc;
      break;
    }
    case 3:
      return ReportError(kErrStoreTypeNotSupported,
                         "This functionality is not currently available when the provider is OpenSSL.");
    case 11:
    case 12:
      return ReportError(kErrStoreTypeNotSupported, "P7B support is not available in the Unix edition.");
    default:
      return kOk;
  }
  return UseLoadedCertificate();
}

int TlsChannel::UseLoadedCertificate() {
  if (!EncodeCertificate(client_cert_.get(), &cert_encoded_)) {
    return ReportError(kErrTlsSetup, "Could not get the certificate from the store.");
  }
  loaded_subject_.Assign(OneLine(X509_get_subject_name(client_cert_.get())).c_str());
  return kOk;
}

int TlsChannel::MakePlaceholderCertificate(EVP_PKEY* key, bool can_sign) {
  X509Ptr cert(X509_new());
  if (cert == nullptr) return ReportError(kErrTlsFailure, "Unable to create empty certificate.");
  X509_set_version(cert.get(), 2);
  ASN1_INTEGER_set(X509_get_serialNumber(cert.get()), 0);
  X509_set_pubkey(cert.get(), key);
  X509_NAME* name = X509_NAME_new();
  if (name == nullptr) return ReportError(kErrTlsFailure, "Unable to create empty X509_NAME.");
  if (X509_NAME_add_entry_by_NID(name, NID_commonName, MBSTRING_ASC,
                                 reinterpret_cast<const unsigned char*>("CN=pem_cert"), -1, -1, 0) != 1) {
    X509_NAME_free(name);
    return ReportTlsProblem(false, "Error creating Name entry from NID", kErrTlsFailure);
  }
  X509_set_subject_name(cert.get(), name);
  X509_set_issuer_name(cert.get(), name);
  X509_NAME_free(name);
  if (X509_gmtime_adj(X509_getm_notBefore(cert.get()), 0) == nullptr) {
    return ReportError(kErrTlsFailure, "Could not set notBefore.");
  }
  if (X509_gmtime_adj(X509_getm_notAfter(cert.get()), 31536000) == nullptr) {
    return ReportError(kErrTlsFailure, "Could not set notAfter.");
  }
  // An unsigned certificate cannot be encoded at all, so the key signs its own
  // placeholder, or for a bare public key a throwaway key does; nothing checks
  // that signature.
  EvpPkeyPtr throwaway(can_sign ? nullptr : EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"));
  const int signed_ok = can_sign ? X509_sign(cert.get(), key, EVP_sha256())
                                 : throwaway != nullptr ? X509_sign(cert.get(), throwaway.get(), nullptr) : 0;
  if (signed_ok <= 0) return ReportTlsProblem(false, "Unable to create empty certificate.", kErrTlsFailure);
  client_cert_ = std::move(cert);
  return kOk;
}

int TlsChannel::SSLServerCertEncoded(const char*& data, int32_t& length) {
  return Expose(server_cert_, data, length);
}

}  // namespace orvelan
