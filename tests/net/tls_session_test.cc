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

struct Outcome { int handshake = TlsSession::kWantMore; std::string plaintext; std::string server_got; };

// Pumps a client session against an OpenSSL server over memory BIOs until
// quiet, handing the server's bytes to the client in pieces of `piece` bytes.
Outcome Exchange(const TestPki& pki, const char* host, int max_version, size_t piece) {
  SslCtxPtr server_ctx(SSL_CTX_new(TLS_server_method()));
  SSL_CTX_use_certificate_chain_file(server_ctx.get(), pki.Path("server.pem").c_str());
  SSL_CTX_use_PrivateKey_file(server_ctx.get(), pki.Path("server.key").c_str(), SSL_FILETYPE_PEM);
  if (max_version != 0) {
    SSL_CTX_set_min_proto_version(server_ctx.get(), TLS1_VERSION);
    SSL_CTX_set_max_proto_version(server_ctx.get(), max_version);
    SSL_CTX_set_security_level(server_ctx.get(), 0);
  }
  SslPtr server(SSL_new(server_ctx.get()));
  BIO* const server_in = BIO_new(BIO_s_mem());
  BIO* const server_out = BIO_new(BIO_s_mem());
  SSL_set_bio(server.get(), server_in, server_out);
  SSL_set_accept_state(server.get());
  SslCtxPtr ctx(SSL_CTX_new(TLS_client_method()));
  SSL_CTX_set_min_proto_version(ctx.get(), TLS1_2_VERSION);
  SSL_CTX_load_verify_locations(ctx.get(), pki.Path("ca.pem").c_str(), nullptr);
  SSL_CTX_set_verify(ctx.get(), SSL_VERIFY_PEER, nullptr);
  TlsSession client;
  EXPECT_TRUE(client.Start(ctx.get(), host, nullptr, nullptr, nullptr));
  Outcome run{client.Handshake(), {}, {}};
  bool sent = false;
  char buffer[4096];
  int n = 0, read = 0;
  for (int round = 0; round < 50 && run.handshake != TlsSession::kFailed; ++round) {
    std::string& to_server = client.Outgoing();
    BIO_write(server_in, to_server.data(), static_cast<int>(to_server.size()));
    to_server.clear();
    if (!SSL_is_init_finished(server.get())) {
      if (SSL_do_handshake(server.get()) <= 0) ERR_clear_error();
    } else {
      while ((n = SSL_read(server.get(), buffer, sizeof buffer)) > 0) run.server_got.append(buffer, n);
      if (!sent) sent = SSL_write(server.get(), "hello over tls", 14) > 0;
    }
    std::string wire;
    while ((n = BIO_read(server_out, buffer, sizeof buffer)) > 0) wire.append(buffer, static_cast<size_t>(n));
    for (size_t at = 0; at < wire.size(); at += piece) {
      client.Feed(std::string_view(wire).substr(at, piece));
      if (run.handshake == TlsSession::kWantMore) {
        run.handshake = client.Handshake();
        if (run.handshake == TlsSession::kDone) client.Write("ping");
      }
      if (run.handshake != TlsSession::kDone) continue;
      while (client.Read(buffer, sizeof buffer, &read) == TlsSession::kDone) run.plaintext.append(buffer, read);
    }
  }
  return run;
}

TEST(TlsSessionTest, HandshakeAndDataDoNotDependOnHowBytesArrive) {
  REQUIRE_PKI(pki);
  for (size_t piece : {size_t{1}, size_t{5}, size_t{100000}}) {
    SCOPED_TRACE("pieces of " + std::to_string(piece));
    const Outcome run = Exchange(pki, "localhost", 0, piece);
    EXPECT_EQ(run.handshake, TlsSession::kDone);
    EXPECT_EQ(run.plaintext, "hello over tls");
    EXPECT_EQ(run.server_got, "ping");
  }
}

TEST(TlsSessionTest, RefusesWhatTheContextForbids) {
  REQUIRE_PKI(pki);
  EXPECT_EQ(Exchange(pki, "localhost", TLS1_1_VERSION, 1000).handshake, TlsSession::kFailed);
  // With peer verification enforced by the context, a host mismatch fails the handshake.
  EXPECT_EQ(Exchange(pki, "bank.example", 0, 1000).handshake, TlsSession::kFailed);
  EXPECT_EQ(Exchange(pki, "127.0.0.1", 0, 1000).handshake, TlsSession::kDone);
}

}  // namespace
}  // namespace orvelan
