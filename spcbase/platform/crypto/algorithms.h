/// The algorithms as OpenSSL has them, fetched once. Internal.
///
/// They come from library contexts of our own, so that RC4, which needs OpenSSL's legacy provider, does not become
/// known to the host's own use of OpenSSL, and no configuration of the host takes an algorithm away. Making such a
/// context costs a hundred times what enciphering a password does, so each is made when it is first needed and kept
/// until the library is unloaded; nothing in it changes after that, and threads may share it.
#pragma once

#include <openssl/err.h>
#include <openssl/evp.h>

namespace crypto_detail {

/// Null when OpenSSL does not have it.
const EVP_MD* sha1() noexcept;
const EVP_CIPHER* triple_des() noexcept;
const EVP_CIPHER* rc4() noexcept;

/// Takes what OpenSSL notes about failures in its scope out of the thread's queue again: the host reads that queue for
/// its own calls.
class QuietErrors {
 public:
  QuietErrors() noexcept { ERR_set_mark(); }
  ~QuietErrors() { ERR_pop_to_mark(); }
  QuietErrors(const QuietErrors&) = delete;
  QuietErrors& operator=(const QuietErrors&) = delete;
};

}  // namespace crypto_detail
