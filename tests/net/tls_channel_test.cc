#include "net/tls_channel.h"

#include <openssl/pem.h>
#include <openssl/ssl.h>

#include <atomic>
#include <cstdlib>
#include <chrono>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "net/channel_probe.h"
#include "support/loopback_server.h"
#include "support/test_pki.h"

namespace orvelan {
namespace {

class Channel : public TlsChannel {
 public:
  Channel() { InitDefaults(); }
  std::string Encoded() {
    const char* data = nullptr;
    int32_t length = 0;
    SSLCertEncoded(data, length);
    return std::string(data, static_cast<size_t>(length));
  }
  int Store(int type, const std::string& store, const char* password = "secret") {
    SetSSLCertStoreType(type);
    if (int rc = SetSSLCertStore(store.data(), static_cast<int32_t>(store.size())); rc != 0) return rc;
    SetSSLCertStorePassword(password);
    return SetSSLCertSubject("*");
  }
};

std::string Replace(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// Every store kind ends in the client key's certificate, the real one or a
// placeholder that carries the key; the failures say which step failed.
TEST(TlsChannelTest, CertificateStores) {
  REQUIRE_PKI(pki);
  ASSERT_TRUE(RunQuietly("cd '" + pki.dir() + "' && "
                         "openssl rsa -in client.key -traditional -des3 -passout pass:secret -out client_3des.key && "
                         "openssl rsa -in client.key -pubout -out client_pub.pem && "
                         "openssl rsa -in client.key -RSAPublicKey_out -out client_rsapub.pem"));
  BioPtr key_bio(BIO_new_file(pki.Path("client.key").c_str(), "r"));
  EvpPkeyPtr client_key(PEM_read_bio_PrivateKey(key_bio.get(), nullptr, nullptr, nullptr));

  // The traditional PEM key re-armoured as an SSH2 private key block.
  const std::string ssh2 = Replace(pki.Read("client_3des.key"), "RSA PRIVATE", "SSH2 ENCRYPTED PRIVATE");
  const size_t iv_at = ssh2.find("DES-EDE3-CBC,") + 13;
  // The IV continued on a second line, a comment header before it, the other cipher name.
  const std::string ssh2_continued =
      Replace(Replace(ssh2.substr(0, iv_at + 6) + "\\\n" + ssh2.substr(iv_at + 6), "DES-EDE3-CBC", "3des-cbc"),
              "Proc-Type:", "Comment: made by a test\nProc-Type:");
  std::ofstream(pki.Path("client_ssh2.key")) << ssh2;
  const std::string public_pem = pki.Read("client_pub.pem");  // under 512 bytes: "either" takes a file name
  const char* const kClient = "/CN=Orvelan Client";
  const char* const kPlaceholder = "/CN=CN=pem_cert";
  const char* const kCannotDecode = "Cannot decode SSH2 private encrypted key.";
  // text: the error, or on success the subject of the certificate.
  const struct { const char* name; int type; std::string store; const char* password; int rc;
                 const char* text; } cases[] = {
      {"PKCS#12 file", 2, pki.Path("client.p12"), "secret", 0, kClient},
      {"PKCS#12, wrong password", 2, pki.Path("client.p12"), "wrong", 271, "Could not parse the store."},
      {"PKCS#12, name too long", 2, std::string(1025, 'f'), "", 271,
       "File name cannot be greater than 1024 characters."},
      {"PEM text", 7, pki.Read("client_both.pem"), "", 0, kClient},
      {"PEM without key", 7, pki.Read("client.pem"), "", 282, "Unable to read the private key from the store."},
      {"PEM key without certificate", 7, pki.Read("client.key"), "", 0, kPlaceholder},
      {"P7B file", 11, "x.p7b", "", 306, "P7B support is not available in the Unix edition."},
      {"SSH2, continued header, 3des-cbc", 7, ssh2_continued, "secret", 0, kPlaceholder},
      {"SSH2 key file", 6, pki.Path("client_ssh2.key"), "secret", 0, kPlaceholder},
      {"SSH2, wrong password", 7, ssh2, "wrong", 282, kCannotDecode},
      {"SSH2, other cipher", 7, Replace(ssh2, "DES-EDE3-CBC", "AES-128-CBC"), "secret", 282, kCannotDecode},
      {"PUBLIC KEY text", 9, public_pem, "", 0, kPlaceholder},
      {"public key file", 8, pki.Path("client_rsapub.pem"), "", 0, kPlaceholder},
      {"either: long is key text", 10, std::string(120, '#') + "\n" + public_pem, "", 0, kPlaceholder},
      {"either: short key text is a file name", 10, public_pem, "", 282, "The public key file could not be opened."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Channel channel;
    ASSERT_EQ(channel.Store(c.type, c.store, c.password), c.rc) << channel.GetLastError();
    if (c.rc != 0) {
      EXPECT_STREQ(channel.GetLastError(), c.text);
      continue;
    }
    EXPECT_EQ(channel.SetSSLCertSubject(c.text), 0);
    ByteString der(channel.Encoded().c_str());  // the DER without PEM armour
    ASSERT_EQ(der.DecodeBase64(), 0);
    const auto* p = reinterpret_cast<const unsigned char*>(der.Data());
    X509Ptr cert(d2i_X509(nullptr, &p, der.Length()));
    ASSERT_NE(cert, nullptr);
    EXPECT_EQ(EVP_PKEY_eq(X509_get0_pubkey(cert.get()), client_key.get()), 1);
  }
  Channel channel;  // a subject the store lacks, an encoded certificate that does not parse
  ASSERT_EQ(channel.Store(2, pki.Path("client.p12")), 0);
  EXPECT_EQ(channel.SetSSLCertSubject("/CN=Someone Else"), 272);
  EXPECT_EQ(channel.SetSSLCertEncoded("AAAA", 4), 272);
}

TEST(TlsChannelTest, CipherListIsStoredBeforeAndCheckedAfterTheContext) {
  Channel channel;
  const char* out = nullptr;
  EXPECT_EQ(channel.Config("OpenSSLCipherList=NO-SUCH-CIPHER", out), 0);  // no context yet: stored only
  channel.Config("OpenSSLCipherList", out);
  EXPECT_STREQ(out, "NO-SUCH-CIPHER");
  ASSERT_EQ(channel.EnableTls(true, "localhost"), 0);  // creates the context, which warns
  EXPECT_EQ(std::string(channel.GetLastError()).rfind("SSL unable to load the cipher list.", 0), 0u);
  EXPECT_EQ(channel.Config("OpenSSLCipherList=ALSO-BAD", out), 282);
  EXPECT_EQ(std::string(channel.GetLastError()).rfind("SSL could not load cipher list.", 0), 0u);
  EXPECT_EQ(channel.Config("OpenSSLCipherList=HIGH", out), 0);
  EXPECT_EQ(channel.Config("OpenSSLCAFile=/no/such/file", out), 282);
  EXPECT_EQ(std::string(channel.GetLastError()).rfind("SSL could not load verification file.", 0), 0u);
}

// A TLS server end on a loopback socket: blocking OpenSSL on the server's
// thread, running `script` once the handshake is done.
class TlsLoopback {
 public:
  TlsLoopback(const TestPki& pki, std::function<void(SSL*)> script)
      : ctx_(SSL_CTX_new(TLS_server_method())), script_(std::move(script)), server_([this](int fd) {
          SslPtr ssl(SSL_new(ctx_.get()));
          SSL_set_fd(ssl.get(), fd);
          if (SSL_accept(ssl.get()) == 1) script_(ssl.get());
        }) {
    SSL_CTX_use_certificate_chain_file(ctx_.get(), pki.Path("server.pem").c_str());
    SSL_CTX_use_PrivateKey_file(ctx_.get(), pki.Path("server.key").c_str(), SSL_FILETYPE_PEM);
  }
  int port() const { return server_.port(); }

 private:
  SslCtxPtr ctx_;
  std::function<void(SSL*)> script_;
  LoopbackServer server_;
};

// A probe over TLS that trusts the test CA unless told not to.
struct TlsProbe : Probe {
  explicit TlsProbe(const TestPki& pki, bool trust_test_ca = true) {
    if (trust_test_ca) Set("OpenSSLCAFile=" + pki.Path("ca.pem"));
  }
  int Open(int port, int seconds = 5) { return Probe::Open(port, seconds, true); }
};

// Blocks until `done`, for at most five seconds.
void Await(const std::function<bool()>& done) {
  for (int i = 0; i < 500 && !done(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

// Records are queued when the server stops reading; with Linger on they hold
// the close back, and even without GracefullyShutDownSSL the server then gets
// every byte and a close_notify. With Linger off they are dropped.
TEST(TlsChannelTest, QueuedRecordsHoldTheCloseWhileLingerIsOn) {
  REQUIRE_PKI(pki);
  for (bool linger : {true, false}) {
    SCOPED_TRACE(linger);
    std::atomic<bool> release{false}, got_close_notify{false};
    std::atomic<size_t> server_got{0};
    TlsLoopback server(pki, [&](SSL* ssl) {
      Await([&] { return release.load(); });
      char buffer[65536];
      int n;
      while ((n = SSL_read(ssl, buffer, sizeof buffer)) > 0) server_got += static_cast<size_t>(n);
      got_close_notify = SSL_get_error(ssl, n) == SSL_ERROR_ZERO_RETURN;
    });
    TlsProbe probe(pki);
    ASSERT_EQ(probe.Set("GracefullyShutDownSSL=False"), 0);
    ASSERT_EQ(probe.Open(server.port()), 0) << probe.GetLastError();
    const std::string chunk(1 << 20, 'x');
    size_t sent = 0;
    int rc = 0;
    while (sent < chunk.size() * 256 && (rc = probe.SendData(chunk.data(), 1 << 20)) == 0) sent += chunk.size();
    ASSERT_EQ(rc, 11) << "the server's buffers never filled";
    ASSERT_EQ(probe.SetLinger(linger), 0);
    EXPECT_EQ(probe.Disconnect(), linger ? 11 : 0);
    EXPECT_EQ(probe.IsConnected(), linger);
    release = true;
    if (!linger) continue;
    EXPECT_STREQ(probe.GetLastError(), "Operation would block. (To force disconnection, set Linger FALSE).");
    ASSERT_EQ(probe.WaitUntil([&] { return (rc = probe.Disconnect()) != 11; }), 0);
    EXPECT_EQ(rc, 0);
    EXPECT_FALSE(probe.IsConnected());
    Await([&] { return got_close_notify.load(); });  // set once the server has read to the end
    EXPECT_EQ(server_got.load(), sent);
    EXPECT_TRUE(got_close_notify.load());
  }
}

// With accept data off (from the start, or from the first delivery on) the
// plaintext waits, beyond the line buffer too, while the records keep being
// read; switching on hands it out at once, cut into lines as it would have been.
TEST(TlsChannelTest, AcceptDataHoldsThePlaintextBack) {
  REQUIRE_PKI(pki);
  const std::string long_line(5000, 'y');
  const struct { std::string first; bool off_in_hook; std::string on, second, last; } cases[] = {
      {"one\r\n" + long_line + "\r\nthr", false, "one|" + long_line + "|", "ee\r\n", "one|" + long_line + "|three|"},
      {"one\r\ntwo\r\n", true, "one|two|", "x\r\n", "one|two|x|"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.first.substr(0, 8));
    std::atomic<bool> written{false}, go{false};
    TlsLoopback server(pki, [&](SSL* ssl) {
      SSL_write(ssl, c.first.data(), static_cast<int>(c.first.size()));
      written = true;
      Await([&] { return go.load(); });
      SSL_write(ssl, c.second.data(), static_cast<int>(c.second.size()));
      SSL_shutdown(ssl);
    });
    TlsProbe probe(pki);
    probe.SetEOL("\r\n");
    ASSERT_EQ(probe.Open(server.port()), 0) << probe.GetLastError();
    probe.on_data = [&] { probe.SetAcceptData(false); };
    if (!c.off_in_hook) probe.SetAcceptData(false);
    Await([&] { return written.load(); });
    int cycles = 0;
    ASSERT_EQ(probe.WaitUntil([&] { return ++cycles > 10; }), 0);  // the records arrive meanwhile
    EXPECT_EQ(probe.received, c.off_in_hook ? "one|" : "");
    probe.on_data = nullptr;
    ASSERT_EQ(probe.SetAcceptData(true), 0);
    EXPECT_EQ(probe.received, c.on);
    go = true;
    ASSERT_EQ(probe.WaitUntil([&] { return !probe.IsConnected(); }), 0);
    EXPECT_EQ(probe.received, c.last);
  }
}

// The system's default CA file is read once per process and shared; each
// case runs in a fresh process so that its SSL_CERT_FILE is the one read.
TEST(TlsChannelTest, DefaultCaFileDecidesTrust) {
  REQUIRE_PKI(pki);
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto connect_trusting = [&](const std::string& ca_file) {
    setenv("SSL_CERT_FILE", ca_file.c_str(), 1);
    int rc = 0;
    {
      TlsLoopback server(pki, [](SSL* ssl) { SSL_shutdown(ssl); });
      for (int round = 0; round < 2 && rc == 0; ++round) {  // the second context uses the shared copy
        TlsProbe probe(pki, false);
        rc = probe.Open(server.port());
        probe.Disconnect();
      }
    }  // the server's thread is joined before exit runs the process's clean-up
    std::exit(rc == 0 ? 0 : rc == 276 ? 2 : 3);
  };
  EXPECT_EXIT(connect_trusting(pki.Path("ca.pem")), ::testing::ExitedWithCode(0), "");
  EXPECT_EXIT(connect_trusting(pki.Path("no-such-ca.pem")), ::testing::ExitedWithCode(2), "");
}

// Decrypted data that is ready never waits for the next wait cycle: 50
// ping-pongs with a 1 s select wait would take 50 s if it did.
TEST(TlsChannelTest, ReadyDataIsDeliveredWithoutWaitingACycle) {
  REQUIRE_PKI(pki);
  TlsLoopback server(pki, [](SSL* ssl) {
    char buffer[64];
    for (int i = 0; i < 50 && SSL_read(ssl, buffer, sizeof buffer) > 0; ++i) SSL_write(ssl, "pong\n", 5);
  });
  TlsProbe probe(pki);
  ASSERT_EQ(probe.Set("SelectWaitMillis=1000"), 0);
  ASSERT_EQ(probe.Open(server.port(), 10), 0) << probe.GetLastError();
  probe.SetEOL("\n");
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 50; ++i) {
    const size_t want = probe.received.size() + 5;
    ASSERT_EQ(probe.SendAll("ping\n", 5, false), 0);
    ASSERT_EQ(probe.WaitUntil([&] { return probe.received.size() >= want; }), 0);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(900));
}

}  // namespace
}  // namespace orvelan
