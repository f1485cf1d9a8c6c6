#include "net/tls_channel.h"

#include <string>

#include <gtest/gtest.h>

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

#define REQUIRE_PKI(pki)                                              \
  const TestPki& pki = TestPki::Get();                                \
  if (!pki.ok()) {                                                    \
    if (PeersRequired()) FAIL() << "openssl is required";            \
    GTEST_SKIP() << "openssl not available to make certificates";    \
  }

TEST(TlsChannelTest, ClientCertificateStores) {
  REQUIRE_PKI(pki);
  const struct {
    const char* name;
    int type;
    std::string store;
    const char* password;
    int rc;
    const char* error;
  } cases[] = {
      {"PKCS#12 file", 2, pki.Path("client.p12"), "secret", 0, ""},
      {"PKCS#12, wrong password", 2, pki.Path("client.p12"), "wrong", 271, "Could not parse the store."},
      {"PKCS#12, no such file", 2, pki.Path("missing.p12"), "secret", 271, "Could not open the store."},
      {"PKCS#12, not PKCS#12", 2, pki.Path("client.pem"), "secret", 271, "Could not open the store."},
      {"PKCS#12, name too long", 2, std::string(1025, 'f'), "", 271,
       "File name cannot be greater than 1024 characters."},
      {"PEM file", 6, pki.Path("client_both.pem"), "", 0, ""},
      {"PEM text", 7, pki.Read("client_both.pem"), "", 0, ""},
      {"PEM without key", 7, pki.Read("client.pem"), "", 282, "Unable to read the private key from the store."},
      {"system store", 3, "MY", "", 306,
       "This functionality is not currently available when the provider is OpenSSL."},
      {"P7B file", 11, "x.p7b", "", 306, "P7B support is not available in the Unix edition."},
      {"P7B data", 12, "data", "", 306, "P7B support is not available in the Unix edition."},
  };
  const std::string client_pem = pki.Read("client.pem");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Channel channel;
    EXPECT_EQ(channel.Store(c.type, c.store, c.password), c.rc);
    if (c.rc != 0) {
      EXPECT_STREQ(channel.GetLastError(), c.error);
    } else {
      // The encoding is the PEM body without its armour lines.
      const std::string encoded = channel.Encoded();
      EXPECT_NE(client_pem.find(encoded.substr(0, 64)), std::string::npos);
      EXPECT_EQ(encoded.find("-----"), std::string::npos);
    }
  }
}

TEST(TlsChannelTest, SubjectSelectsOrRefuses) {
  REQUIRE_PKI(pki);
  Channel channel;
  ASSERT_EQ(channel.Store(2, pki.Path("client.p12")), 0);
  EXPECT_EQ(channel.SetSSLCertSubject("/CN=Orvelan Client"), 0);
  EXPECT_EQ(channel.SetSSLCertSubject("/CN=Someone Else"), 272);
  const std::string encoded = channel.Encoded();
  EXPECT_EQ(channel.SetSSLCertEncoded(encoded.data(), static_cast<int32_t>(encoded.size())), 0);
  EXPECT_EQ(channel.SetSSLCertEncoded("AAAA", 4), 272);
  EXPECT_EQ(channel.SetSSLCertStore("", 0), 1);
  EXPECT_STREQ(channel.GetLastError(), "Either the store or its length not set correctly");
}

TEST(TlsChannelTest, KeyWithoutCertificateGetsAPlaceholder) {
  REQUIRE_PKI(pki);
  Channel channel;
  ASSERT_EQ(channel.Store(7, pki.Read("client.key")), 0) << channel.GetLastError();
  EXPECT_EQ(channel.SetSSLCertSubject("/CN=CN=pem_cert"), 0);
  EXPECT_FALSE(channel.Encoded().empty());
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

}  // namespace
}  // namespace orvelan
