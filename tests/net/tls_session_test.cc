#include "net/tls_session.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <string>

#include <gtest/gtest.h>

#include "net/channel_probe.h"
#include "net/openssl_holders.h"
#include "support/test_pki.h"

namespace orvelan {
namespace {

// A server end made of OpenSSL over memory BIOs: the fake lower layer.
struct FakeServer {
  SslCtxPtr ctx;
  SslPtr ssl;
  BIO* in = nullptr;
  BIO* out = nullptr;

  FakeServer(const TestPki& pki, const char* cert, int max_version) {
    ctx.reset(SSL_CTX_new(TLS_server_method()));
    SSL_CTX_use_certificate_chain_file(ctx.get(), pki.Path(std::string(cert) + ".pem").c_str());
    SSL_CTX_use_PrivateKey_file(ctx.get(), pki.Path(std::string(cert) + ".key").c_str(), SSL_FILETYPE_PEM);
    if (max_version != 0) {
      SSL_CTX_set_min_proto_version(ctx.get(), TLS1_VERSION);
      SSL_CTX_set_max_proto_version(ctx.get(), max_version);
      SSL_CTX_set_security_level(ctx.get(), 0);
    }
    ssl.reset(SSL_new(ctx.get()));
    in = BIO_new(BIO_s_mem());
    out = BIO_new(BIO_s_mem());
    SSL_set_bio(ssl.get(), in, out);
    SSL_set_accept_state(ssl.get());
  }
  std::string TakeOutput() {
    std::string bytes;
    char buffer[4096];
    int n;
    while ((n = BIO_read(out, buffer, sizeof buffer)) > 0) bytes.append(buffer, static_cast<size_t>(n));
    return bytes;
  }
};

SslCtxPtr ClientContext(const TestPki& pki) {
  SslCtxPtr ctx(SSL_CTX_new(TLS_client_method()));
  SSL_CTX_set_min_proto_version(ctx.get(), TLS1_2_VERSION);
  SSL_CTX_load_verify_locations(ctx.get(), pki.Path("ca.pem").c_str(), nullptr);
  SSL_CTX_set_verify(ctx.get(), SSL_VERIFY_PEER, nullptr);
  return ctx;
}

struct Outcome { int handshake = TlsSession::kWantMore; std::string plaintext; std::string server_got; };

// Pumps both ends until quiet, handing the server's bytes to the client in
// pieces of `piece` bytes.
Outcome Exchange(const char* host, const char* cert, int max_version, size_t piece) {
  const TestPki& pki = TestPki::Get();
  FakeServer server(pki, cert, max_version);
  SslCtxPtr ctx = ClientContext(pki);
  TlsSession client;
  EXPECT_TRUE(client.Start(ctx.get(), host, nullptr, nullptr, nullptr));
  Outcome run;
  run.handshake = client.Handshake();
  bool sent = false;
  for (int round = 0; round < 50; ++round) {
    std::string& to_server = client.Outgoing();
    BIO_write(server.in, to_server.data(), static_cast<int>(to_server.size()));
    to_server.clear();
    if (SSL_is_init_finished(server.ssl.get())) {
      char buffer[256];
      int n;
      while ((n = SSL_read(server.ssl.get(), buffer, sizeof buffer)) > 0) run.server_got.append(buffer, n);
      if (!sent) {
        SSL_write(server.ssl.get(), "hello over tls", 14);
        sent = true;
      }
    } else if (SSL_do_handshake(server.ssl.get()) <= 0) {
      ERR_clear_error();
    }
    const std::string wire = server.TakeOutput();
    for (size_t at = 0; at < wire.size(); at += piece) {
      client.Feed(std::string_view(wire).substr(at, piece));
      if (run.handshake == TlsSession::kWantMore) {
        run.handshake = client.Handshake();
        if (run.handshake == TlsSession::kDone) client.Write("ping");
      }
      if (run.handshake != TlsSession::kDone) continue;
      char block[64];
      int read = 0;
      while (client.Read(block, sizeof block, &read) == TlsSession::kDone) run.plaintext.append(block, read);
    }
    if (run.handshake == TlsSession::kFailed) break;
  }
  return run;
}

TEST(TlsSessionTest, HandshakeAndDataDoNotDependOnHowBytesArrive) {
  REQUIRE_PKI(pki);
  for (size_t piece : {size_t{1}, size_t{5}, size_t{1000}, size_t{100000}}) {
    SCOPED_TRACE("pieces of " + std::to_string(piece));
    const Outcome run = Exchange("localhost", "server", 0, piece);
    EXPECT_EQ(run.handshake, TlsSession::kDone);
    EXPECT_EQ(run.plaintext, "hello over tls");
    EXPECT_EQ(run.server_got, "ping");
  }
}

TEST(TlsSessionTest, RefusesWhatTheContextForbids) {
  REQUIRE_PKI(pki);
  EXPECT_EQ(Exchange("localhost", "server", TLS1_1_VERSION, 1000).handshake, TlsSession::kFailed);
  // With peer verification enforced by the context, a host mismatch fails the handshake.
  EXPECT_EQ(Exchange("bank.example", "server", 0, 1000).handshake, TlsSession::kFailed);
  EXPECT_EQ(Exchange("127.0.0.1", "server", 0, 1000).handshake, TlsSession::kDone);
}

}  // namespace
}  // namespace orvelan
