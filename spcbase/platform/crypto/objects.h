/// What stands behind the handles of the provider calls. Internal.
#pragma once

#include <openssl/evp.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "spcbase/platform/crypto/provider.h"
#include "spcbase/platform/crypto/secret_buffer.h"
#include "spcbase/platform/system/system_error.h"

namespace crypto_detail {

/// A provider by name. Lengths of RC4 keys in bits.
struct ProviderKind {
  const char16_t* name;
  DWORD type;
  bool has_triple_des;
  unsigned longest_rc4_key;
  unsigned default_rc4_key;
  bool salts_short_keys;  ///< a key of 40 bits gets a salt
};

/// What kind of thing a handle stands for; wide numbers, so that memory which is none of them is hardly taken for one.
enum class HandleKind : std::uint32_t { released = 0, provider = 0x50524F56, hash = 0x48415348, key = 0x4B455920 };

/// The beginning of everything that a handle stands for.
struct Handled {
  HandleKind handle_kind;
};

struct Provider : Handled {
  static constexpr HandleKind own_kind = HandleKind::provider;
  const ProviderKind* kind = nullptr;

  Provider() noexcept : Handled{own_kind} {}
};

struct FreeDigest {
  void operator()(EVP_MD_CTX* context) const noexcept { EVP_MD_CTX_free(context); }
};

constexpr std::size_t sha1_size = 20;

struct Hash : Handled {
  static constexpr HandleKind own_kind = HandleKind::hash;
  std::unique_ptr<EVP_MD_CTX, FreeDigest> context;  ///< null when the digest has been taken
  std::array<unsigned char, sha1_size> digest{};

  Hash() noexcept : Handled{own_kind} {}
  Hash(const Hash&) = delete;
  Hash& operator=(const Hash&) = delete;
  ~Hash() { platform::wipe(digest.data(), digest.size()); }
};

constexpr std::size_t block_size = 8;
constexpr std::size_t longest_key = 24;

struct Key : Handled {
  static constexpr HandleKind own_kind = HandleKind::key;
  const EVP_CIPHER* cipher = nullptr;
  bool is_block_cipher = false;
  std::size_t key_size = 0;
  std::size_t salt_size = 0;
  std::array<unsigned char, longest_key> bytes{};  ///< the key, and its salt behind it
  std::array<unsigned char, block_size> iv{};

  Key() noexcept : Handled{own_kind} {}
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    platform::wipe(bytes.data(), bytes.size());
    platform::wipe(iv.data(), iv.size());
  }
  unsigned char* salt() noexcept { return bytes.data() + key_size; }
};

/// The object of a handle; null for a null handle and for one of another kind.
template <class Object>
Object* object_of(std::uintptr_t handle) noexcept {
  auto* object = reinterpret_cast<Handled*>(handle);
  return object && object->handle_kind == Object::own_kind ? static_cast<Object*>(object) : nullptr;
}

inline std::uintptr_t handle_of(Handled* object) noexcept { return reinterpret_cast<std::uintptr_t>(object); }

inline BOOL fail(DWORD error) noexcept {
  SetLastError(error);
  return FALSE;
}

}  // namespace crypto_detail
