#pragma once
#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pkcs12.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

#include <memory>

// One owner type per OpenSSL resource. The stateless deleter keeps each
// unique_ptr the size of a pointer.
namespace orvelan {

template <auto FreeFn>
struct FreeWith {
  template <typename T>
  void operator()(T* p) const noexcept {
    FreeFn(p);
  }
};
using SslCtxPtr = std::unique_ptr<SSL_CTX, FreeWith<SSL_CTX_free>>;
using SslPtr = std::unique_ptr<SSL, FreeWith<SSL_free>>;
using X509Ptr = std::unique_ptr<X509, FreeWith<X509_free>>;
using EvpPkeyPtr = std::unique_ptr<EVP_PKEY, FreeWith<EVP_PKEY_free>>;
using BioPtr = std::unique_ptr<BIO, FreeWith<BIO_free_all>>;
using Pkcs12Ptr = std::unique_ptr<PKCS12, FreeWith<PKCS12_free>>;

}  // namespace orvelan
