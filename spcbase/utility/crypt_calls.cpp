#include "spcbase/utility/internal/crypt_calls.h"

BOOL CryptCalls::acquire_context(HCRYPTPROV* provider, const char16_t* container, const char16_t* name, DWORD type,
                                 DWORD flags) const {
  return CryptAcquireContextW(provider, container, name, type, flags);
}

BOOL CryptCalls::release_context(HCRYPTPROV provider) const { return CryptReleaseContext(provider, 0); }

BOOL CryptCalls::create_hash(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTHASH* hash) const {
  return CryptCreateHash(provider, algorithm, 0, 0, hash);
}

BOOL CryptCalls::hash_data(HCRYPTHASH hash, const BYTE* data, DWORD size_bytes) const {
  return CryptHashData(hash, data, size_bytes, 0);
}

BOOL CryptCalls::destroy_hash(HCRYPTHASH hash) const { return CryptDestroyHash(hash); }

BOOL CryptCalls::derive_key(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTHASH hash, DWORD flags, HCRYPTKEY* key) const {
  return CryptDeriveKey(provider, algorithm, hash, flags, key);
}

BOOL CryptCalls::get_key_param(HCRYPTKEY key, DWORD parameter, BYTE* data, DWORD* size_bytes) const {
  return CryptGetKeyParam(key, parameter, data, size_bytes, 0);
}

BOOL CryptCalls::set_key_param(HCRYPTKEY key, DWORD parameter, const BYTE* data) const {
  return CryptSetKeyParam(key, parameter, data, 0);
}

BOOL CryptCalls::destroy_key(HCRYPTKEY key) const { return CryptDestroyKey(key); }

BOOL CryptCalls::encrypt(HCRYPTKEY key, BYTE* data, DWORD* size_bytes, DWORD buffer_size) const {
  return CryptEncrypt(key, 0, TRUE, 0, data, size_bytes, buffer_size);
}

BOOL CryptCalls::decrypt(HCRYPTKEY key, BYTE* data, DWORD* size_bytes) const {
  return CryptDecrypt(key, 0, TRUE, 0, data, size_bytes);
}

const CryptCalls& CryptCalls::of_platform() noexcept {
  static const CryptCalls calls;
  return calls;
}
