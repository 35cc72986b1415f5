/// How bytes of a key are made of a hash. Internal.
#pragma once

#include <cstddef>
#include <span>

namespace crypto_detail {

/// Fills `key` from a SHA-1 hash. Up to the hash's 20 bytes the key is the beginning of the hash. A longer one, up to
/// 40 bytes, is the beginning of two further hashes: of 64 bytes 0x36, the hash laid over their beginning by exclusive
/// or, and of 64 bytes 0x5C in the same way. Returns false when OpenSSL fails.
/// Source: the remarks of the public documentation of CryptDeriveKey.
bool derive_key_bytes(std::span<const unsigned char> hash, std::span<unsigned char> key) noexcept;

}  // namespace crypto_detail
