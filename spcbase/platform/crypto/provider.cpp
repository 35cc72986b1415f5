#include "spcbase/platform/crypto/provider.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <optional>
#include <string_view>

#include "spcbase/platform/crypto/algorithms.h"
#include "spcbase/platform/crypto/key_derivation.h"
#include "spcbase/platform/crypto/objects.h"

using namespace crypto_detail;

namespace {

constexpr ProviderKind provider_kinds[] = {
    {MS_DEF_PROV, PROV_RSA_FULL, false, 56, 40, true},
    {MS_ENHANCED_PROV, PROV_RSA_FULL, true, 128, 128, false},
    {MS_STRONG_PROV, PROV_RSA_FULL, true, 128, 128, false},
};

constexpr DWORD last_provider_type = 999;
constexpr unsigned triple_des_bits = 168;
constexpr unsigned shortest_rc4_key = 40;
constexpr std::size_t default_salt_size = 11;

const ProviderKind* find_kind(const char16_t* name) noexcept {
  const std::u16string_view wanted(name);
  const auto* found =
      std::ranges::find_if(provider_kinds, [&](const ProviderKind& kind) { return wanted == kind.name; });
  return found == std::end(provider_kinds) ? nullptr : found;
}

bool has_algorithms(const ProviderKind& kind) noexcept {
  return sha1() && (kind.has_triple_des ? triple_des() : rc4());
}

/// Gives a new object to the caller under a handle.
template <class Object>
BOOL hand_out(std::unique_ptr<Object> object, std::uintptr_t* handle) noexcept {
  if (!object) return fail(NTE_NO_MEMORY);
  *handle = handle_of(object.release());
  return TRUE;
}

template <class Object>
std::unique_ptr<Object> make() noexcept {
  return std::unique_ptr<Object>(new (std::nothrow) Object);
}

template <class Object>
BOOL destroy(std::uintptr_t handle, DWORD error) noexcept {
  auto* object = object_of<Object>(handle);
  if (!object) return fail(error);
  object->handle_kind = HandleKind::released;
  delete object;
  return TRUE;
}

/// The size of a key in bytes, or nothing for a length in bits that a provider does not take.
std::optional<std::size_t> key_size(const ProviderKind& kind, ALG_ID algorithm, unsigned bits) noexcept {
  if (algorithm == CALG_3DES) {
    if (bits != 0 && bits != triple_des_bits) return std::nullopt;
    return longest_key;
  }
  if (bits == 0) bits = kind.default_rc4_key;
  if (bits < shortest_rc4_key || bits > kind.longest_rc4_key || bits % 8 != 0) return std::nullopt;
  return bits / 8;
}

/// Takes the digest, once; the hash is closed by it.
bool finish(Hash& hash) noexcept {
  if (!hash.context) return true;
  const bool done = EVP_DigestFinal_ex(hash.context.get(), hash.digest.data(), nullptr) == 1;
  if (done) hash.context.reset();
  return done;
}

}  // namespace

BOOL CryptAcquireContextW(HCRYPTPROV* provider, const char16_t* container, const char16_t* name, DWORD type,
                          DWORD flags) noexcept {
  if (!provider) return fail(ERROR_INVALID_PARAMETER);
  if (type == 0 || type > last_provider_type) return fail(NTE_BAD_PROV_TYPE);
  if (!name) return fail(NTE_PROV_TYPE_NOT_DEF);
  const ProviderKind* kind = find_kind(name);
  if (!kind) return fail(NTE_KEYSET_NOT_DEF);
  if (kind->type != type) return fail(NTE_PROV_TYPE_NO_MATCH);
  const DWORD container_flags = flags & ~CRYPT_VERIFYCONTEXT;
  if (container_flags != 0 && container_flags != CRYPT_NEWKEYSET && container_flags != CRYPT_DELETEKEYSET)
    return fail(NTE_BAD_FLAGS);
  if ((flags & CRYPT_VERIFYCONTEXT) != CRYPT_VERIFYCONTEXT) return fail(NTE_BAD_KEYSET);
  if (container) return fail(NTE_BAD_KEYSET_PARAM);
  if (!has_algorithms(*kind)) return fail(NTE_PROVIDER_DLL_FAIL);
  *provider = 0;
  if (container_flags == CRYPT_DELETEKEYSET) return TRUE;
  auto acquired = make<Provider>();
  if (acquired) acquired->kind = kind;
  return hand_out(std::move(acquired), provider);
}

BOOL CryptReleaseContext(HCRYPTPROV provider, DWORD flags) noexcept {
  if (!destroy<Provider>(provider, NTE_BAD_UID)) return FALSE;
  return flags == 0 ? TRUE : fail(NTE_BAD_FLAGS);
}

BOOL CryptCreateHash(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTKEY key, DWORD flags, HCRYPTHASH* hash) noexcept {
  if (!hash) return fail(ERROR_INVALID_PARAMETER);
  if (!object_of<Provider>(provider)) return fail(NTE_BAD_UID);
  if (algorithm != CALG_SHA1) return fail(NTE_BAD_ALGID);
  if (key != 0) return fail(NTE_BAD_KEY);
  if (flags != 0) return fail(NTE_BAD_FLAGS);
  const QuietErrors quiet;
  auto made = make<Hash>();
  if (!made) return fail(NTE_NO_MEMORY);
  made->context.reset(EVP_MD_CTX_new());
  if (!made->context) return fail(NTE_NO_MEMORY);
  if (EVP_DigestInit_ex2(made->context.get(), sha1(), nullptr) != 1) return fail(NTE_FAIL);
  return hand_out(std::move(made), hash);
}

BOOL CryptHashData(HCRYPTHASH hash, const BYTE* data, DWORD size_bytes, DWORD flags) noexcept {
  auto* object = object_of<Hash>(hash);
  if (!object) return fail(NTE_BAD_HASH);
  if (flags != 0) return fail(NTE_BAD_FLAGS);
  if (!object->context) return fail(NTE_BAD_HASH_STATE);
  if (size_bytes == 0) return TRUE;
  if (!data) return fail(ERROR_INVALID_PARAMETER);
  const QuietErrors quiet;
  return EVP_DigestUpdate(object->context.get(), data, size_bytes) == 1 ? TRUE : fail(NTE_FAIL);
}

BOOL CryptDestroyHash(HCRYPTHASH hash) noexcept { return destroy<Hash>(hash, NTE_BAD_HASH); }

BOOL CryptDeriveKey(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTHASH hash, DWORD flags, HCRYPTKEY* key) noexcept {
  if (!key) return fail(ERROR_INVALID_PARAMETER);
  const auto* owner = object_of<Provider>(provider);
  if (!owner) return fail(NTE_BAD_UID);
  const bool is_block_cipher = algorithm == CALG_3DES;
  if (algorithm != CALG_RC4 && !(is_block_cipher && owner->kind->has_triple_des)) return fail(NTE_BAD_ALGID);
  auto* base = object_of<Hash>(hash);
  if (!base) return fail(NTE_BAD_HASH);
  const auto size = key_size(*owner->kind, algorithm, flags >> 16U);
  if (!size || (flags & 0xFFFFU) != 0) return fail(NTE_BAD_FLAGS);
  const QuietErrors quiet;
  auto made = make<Key>();
  if (!made) return fail(NTE_NO_MEMORY);
  made->cipher = is_block_cipher ? triple_des() : rc4();
  if (!made->cipher) return fail(NTE_PROVIDER_DLL_FAIL);
  made->is_block_cipher = is_block_cipher;
  made->key_size = *size;
  if (!is_block_cipher && *size == shortest_rc4_key / 8 && owner->kind->salts_short_keys)
    made->salt_size = default_salt_size;
  if (!finish(*base) || !derive_key_bytes(base->digest, std::span(made->bytes).first(*size))) return fail(NTE_FAIL);
  return hand_out(std::move(made), key);
}

BOOL CryptDestroyKey(HCRYPTKEY key) noexcept { return destroy<Key>(key, NTE_BAD_KEY); }
