// What a key does: its parameters, enciphering and deciphering.
#include <cstring>
#include <limits>

#include "spcbase/platform/crypto/algorithms.h"
#include "spcbase/platform/crypto/objects.h"
#include "spcbase/platform/crypto/provider.h"

using namespace crypto_detail;

namespace {

struct FreeCipher {
  void operator()(EVP_CIPHER_CTX* context) const noexcept { EVP_CIPHER_CTX_free(context); }
};
using Context = std::unique_ptr<EVP_CIPHER_CTX, FreeCipher>;

enum class Direction : int { decrypt = 0, encrypt = 1 };

/// OpenSSL counts in `int`; a last block comes to what is enciphered.
constexpr DWORD longest_text = static_cast<DWORD>(std::numeric_limits<int>::max()) - block_size;

/// The parameter's bytes in the key; none for a parameter that the key does not have.
std::span<unsigned char> find_parameter(Key& key, DWORD parameter, bool& found) noexcept {
  found = true;
  if (parameter == KP_SALT) return {key.salt(), key.salt_size};
  if (parameter == KP_IV && key.is_block_cipher) return key.iv;
  found = false;
  return {};
}

BOOL set_salt(Key& key, const CRYPT_DATA_BLOB& salt) noexcept {
  if (key.is_block_cipher) return fail(NTE_BAD_TYPE);
  if (salt.cbData > longest_key - key.key_size) return fail(NTE_BAD_DATA);
  if (!salt.pbData && salt.cbData != 0) return fail(ERROR_INVALID_PARAMETER);
  key.salt_size = salt.cbData;
  if (salt.cbData != 0) std::memcpy(key.salt(), salt.pbData, salt.cbData);
  return TRUE;
}

/// A context with the key and its parameters as they are now, so that every text starts from them.
Context start(const Key& key, Direction direction) noexcept {
  Context context(EVP_CIPHER_CTX_new());
  const int enc = static_cast<int>(direction);
  if (!context || EVP_CipherInit_ex2(context.get(), key.cipher, nullptr, nullptr, enc, nullptr) != 1) return nullptr;
  if (!key.is_block_cipher &&
      EVP_CIPHER_CTX_set_key_length(context.get(), static_cast<int>(key.key_size + key.salt_size)) != 1)
    return nullptr;
  const unsigned char* iv = key.is_block_cipher ? key.iv.data() : nullptr;
  if (EVP_CipherInit_ex2(context.get(), nullptr, key.bytes.data(), iv, enc, nullptr) != 1) return nullptr;
  return context;
}

/// Runs a whole text through in place. False when OpenSSL refuses it, which for a ciphertext means its padding.
bool run(EVP_CIPHER_CTX* context, BYTE* data, DWORD& size) noexcept {
  int head = 0;
  int tail = 0;
  if (EVP_CipherUpdate(context, data, &head, data, static_cast<int>(size)) != 1) return false;
  if (EVP_CipherFinal_ex(context, data + head, &tail) != 1) return false;
  size = static_cast<DWORD>(head + tail);
  return true;
}

/// What both directions ask of their arguments; the error, or 0.
DWORD refusal(const Key* key, HCRYPTHASH hash, BOOL final, DWORD flags, const DWORD* size) noexcept {
  if (!key) return NTE_BAD_KEY;
  if (hash != 0) return NTE_BAD_HASH;
  if (flags != 0) return NTE_BAD_FLAGS;
  if (!final || !size) return ERROR_INVALID_PARAMETER;
  return *size > longest_text ? NTE_BAD_LEN : ERROR_SUCCESS;
}

}  // namespace

BOOL CryptGetKeyParam(HCRYPTKEY key, DWORD parameter, BYTE* data, DWORD* size_bytes, DWORD flags) noexcept {
  auto* object = object_of<Key>(key);
  if (!object) return fail(NTE_BAD_KEY);
  if (!size_bytes) return fail(ERROR_INVALID_PARAMETER);
  if (flags != 0) return fail(NTE_BAD_FLAGS);
  bool found = false;
  const auto bytes = find_parameter(*object, parameter, found);
  if (!found) return fail(NTE_BAD_TYPE);
  const DWORD room = *size_bytes;
  *size_bytes = static_cast<DWORD>(bytes.size());
  if (!data || bytes.empty()) return TRUE;
  if (room < bytes.size()) return fail(ERROR_MORE_DATA);
  std::memcpy(data, bytes.data(), bytes.size());
  return TRUE;
}

BOOL CryptSetKeyParam(HCRYPTKEY key, DWORD parameter, const BYTE* data, DWORD flags) noexcept {
  auto* object = object_of<Key>(key);
  if (!object) return fail(NTE_BAD_KEY);
  if (!data) return fail(ERROR_INVALID_PARAMETER);
  if (flags != 0) return fail(NTE_BAD_FLAGS);
  if (parameter == KP_SALT_EX) {
    CRYPT_DATA_BLOB salt;
    std::memcpy(&salt, data, sizeof salt);
    return set_salt(*object, salt);
  }
  bool found = false;
  const auto bytes = find_parameter(*object, parameter, found);
  if (!found) return fail(NTE_BAD_TYPE);
  if (!bytes.empty()) std::memcpy(bytes.data(), data, bytes.size());
  return TRUE;
}

BOOL CryptEncrypt(HCRYPTKEY key, HCRYPTHASH hash, BOOL final, DWORD flags, BYTE* data, DWORD* size_bytes,
                  DWORD buffer_size) noexcept {
  const auto* object = object_of<Key>(key);
  if (const DWORD error = refusal(object, hash, final, flags, size_bytes)) return fail(error);
  const DWORD text_size = *size_bytes;
  const DWORD cipher_size =
      object->is_block_cipher ? static_cast<DWORD>((text_size / block_size + 1) * block_size) : text_size;
  *size_bytes = cipher_size;
  if (!data) return TRUE;
  if (buffer_size < cipher_size) return fail(ERROR_MORE_DATA);
  const QuietErrors quiet;
  const Context context = start(*object, Direction::encrypt);
  *size_bytes = text_size;
  return context && run(context.get(), data, *size_bytes) ? TRUE : fail(NTE_FAIL);
}

BOOL CryptDecrypt(HCRYPTKEY key, HCRYPTHASH hash, BOOL final, DWORD flags, BYTE* data, DWORD* size_bytes) noexcept {
  const auto* object = object_of<Key>(key);
  if (const DWORD error = refusal(object, hash, final, flags, size_bytes)) return fail(error);
  if (!data) return fail(ERROR_INVALID_PARAMETER);
  if (object->is_block_cipher && (*size_bytes == 0 || *size_bytes % block_size != 0)) return fail(NTE_BAD_DATA);
  const QuietErrors quiet;
  const Context context = start(*object, Direction::decrypt);
  if (!context) return fail(NTE_FAIL);
  return run(context.get(), data, *size_bytes) ? TRUE : fail(NTE_BAD_DATA);
}
