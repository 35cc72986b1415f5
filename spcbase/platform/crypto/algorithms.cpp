#include "spcbase/platform/crypto/algorithms.h"

#include <openssl/provider.h>

#include <memory>
#include <stdexcept>

namespace crypto_detail {

namespace {

struct Free {
  void operator()(OSSL_LIB_CTX* context) const noexcept { OSSL_LIB_CTX_free(context); }
  void operator()(OSSL_PROVIDER* provider) const noexcept { OSSL_PROVIDER_unload(provider); }
  void operator()(EVP_MD* digest) const noexcept { EVP_MD_free(digest); }
  void operator()(EVP_CIPHER* cipher) const noexcept { EVP_CIPHER_free(cipher); }
};
template <class T>
using Held = std::unique_ptr<T, Free>;

/// A library context with one of OpenSSL's providers. Throws when there is no such provider, so that a static one is
/// tried again at the next need.
struct Context {
  Held<OSSL_LIB_CTX> library{OSSL_LIB_CTX_new()};
  Held<OSSL_PROVIDER> provider;

  explicit Context(const char* provider_name) {
    if (library) provider.reset(OSSL_PROVIDER_load(library.get(), provider_name));
    if (!provider) throw std::runtime_error(provider_name);
  }
};

struct DefaultAlgorithms {
  Context context{"default"};
  Held<EVP_MD> sha1{EVP_MD_fetch(context.library.get(), "SHA1", nullptr)};
  Held<EVP_CIPHER> triple_des{EVP_CIPHER_fetch(context.library.get(), "DES-EDE3-CBC", nullptr)};
};

struct LegacyAlgorithms {
  Context context{"legacy"};
  Held<EVP_CIPHER> rc4{EVP_CIPHER_fetch(context.library.get(), "RC4", nullptr)};
};

template <class Algorithms>
const Algorithms* algorithms() noexcept {
  try {
    const QuietErrors quiet;
    static const Algorithms fetched;
    return &fetched;
  } catch (const std::exception&) {
    return nullptr;
  }
}

}  // namespace

const EVP_MD* sha1() noexcept {
  const auto* fetched = algorithms<DefaultAlgorithms>();
  return fetched ? fetched->sha1.get() : nullptr;
}

const EVP_CIPHER* triple_des() noexcept {
  const auto* fetched = algorithms<DefaultAlgorithms>();
  return fetched ? fetched->triple_des.get() : nullptr;
}

const EVP_CIPHER* rc4() noexcept {
  const auto* fetched = algorithms<LegacyAlgorithms>();
  return fetched ? fetched->rc4.get() : nullptr;
}

}  // namespace crypto_detail
