// Key and certificate text the library reads itself before OpenSSL sees it:
// armoured blocks with headers and Triple DES bodies, SSH2 key blocks, the
// store texts, and the comparison of encodings that decides whether a
// certificate is the one a host named. Layout: one option byte, the text up
// to the first NUL, then the pass phrase.
#include <cstddef>
#include <cstdint>
#include <string>

#include "harness.h"
#include "net/pem_block.h"
#include "net/tls_channel.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvelan;
  fuzz::Input in;
  if (!fuzz::Split(data, size, in)) return 0;
  const std::string pass(in.tail);

  static const char* const kMarkers[] = {"SSH2 ENCRYPTED PRIVATE KEY", "SSH2 PUBLIC KEY", "RSA PRIVATE KEY",
                                         "CERTIFICATE"};
  PemBlock block;
  if (block.Read(in.body, kMarkers[in.options & 3])) {
    if (block.Body().Length() < 0) fuzz::Fail();
    block.Header("DEK-Info");
    block.Decrypt(pass);
  }

  // Only the text store types: the others name files.
  static TlsChannel* channel = [] {
    auto* c = new TlsChannel;
    c->InitDefaults();
    return c;
  }();
  const int type = (in.options & 4) != 0 ? 7 : (in.body.size() >= 512 && (in.options & 8) != 0) ? 10 : 9;
  channel->SetSSLCertStoreType(type);
  channel->SetSSLCertStorePassword(pass.c_str());
  channel->SetSSLCertStore(in.body.data(), static_cast<int32_t>(in.body.size()));
  if (channel->SetSSLCertSubject("*") == 0) {
    const char* encoded = nullptr;
    int32_t length = 0;
    channel->SSLCertEncoded(encoded, length);
    // The loaded certificate must select itself by its own encoding.
    if (length > 0 && channel->SetSSLCertEncoded(encoded, length) != 0) fuzz::Fail();
  }
  channel->SetSSLCertEncoded(in.body.data(), static_cast<int32_t>(in.body.size()));
  channel->SetSSLAcceptServerCertEncoded(in.body.data(), static_cast<int32_t>(in.body.size()));
  return 0;
}
