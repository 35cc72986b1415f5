#include "spcbase/platform/crypto/key_derivation.h"

#include <algorithm>
#include <array>

#include "spcbase/platform/crypto/algorithms.h"
#include "spcbase/platform/crypto/objects.h"
#include "spcbase/platform/crypto/secret_buffer.h"

namespace crypto_detail {

namespace {

constexpr std::size_t pad_size = 64;

bool hash_over_pad(unsigned char filler, std::span<const unsigned char> hash, unsigned char* result) noexcept {
  std::array<unsigned char, pad_size> pad;
  pad.fill(filler);
  for (std::size_t i = 0; i < hash.size(); ++i)
    pad[i] ^= hash[i];
  const bool done = EVP_Digest(pad.data(), pad.size(), result, nullptr, sha1(), nullptr) == 1;
  platform::wipe(pad.data(), pad.size());
  return done;
}

}  // namespace

bool derive_key_bytes(std::span<const unsigned char> hash, std::span<unsigned char> key) noexcept {
  if (hash.size() != sha1_size || key.size() > 2 * sha1_size) return false;
  if (key.size() <= hash.size()) {
    std::copy_n(hash.begin(), key.size(), key.begin());
    return true;
  }
  std::array<unsigned char, 2 * sha1_size> both;
  const bool done = hash_over_pad(0x36, hash, both.data()) && hash_over_pad(0x5C, hash, both.data() + sha1_size);
  if (done) std::copy_n(both.begin(), key.size(), key.begin());
  platform::wipe(both.data(), both.size());
  return done;
}

}  // namespace crypto_detail
