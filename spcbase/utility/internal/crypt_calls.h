/// The way of `TextCipher` to the cryptographic provider, as a seam: a test derives from it, records what is called and
/// fails what it wants to.
///
/// Part of utilities, for the library's own use. Each member is the documented call of like name (provider.h), with the
/// arguments that never differ left out.
#pragma once

#include "spcbase/platform/crypto/provider.h"

class CryptCalls {
 public:
  virtual ~CryptCalls() = default;
  virtual BOOL acquire_context(HCRYPTPROV* provider, const char16_t* container, const char16_t* name, DWORD type,
                               DWORD flags) const;
  virtual BOOL release_context(HCRYPTPROV provider) const;
  virtual BOOL create_hash(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTHASH* hash) const;
  virtual BOOL hash_data(HCRYPTHASH hash, const BYTE* data, DWORD size_bytes) const;
  virtual BOOL destroy_hash(HCRYPTHASH hash) const;
  virtual BOOL derive_key(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTHASH hash, DWORD flags, HCRYPTKEY* key) const;
  virtual BOOL get_key_param(HCRYPTKEY key, DWORD parameter, BYTE* data, DWORD* size_bytes) const;
  virtual BOOL set_key_param(HCRYPTKEY key, DWORD parameter, const BYTE* data) const;
  virtual BOOL destroy_key(HCRYPTKEY key) const;
  virtual BOOL encrypt(HCRYPTKEY key, BYTE* data, DWORD* size_bytes, DWORD buffer_size) const;
  virtual BOOL decrypt(HCRYPTKEY key, BYTE* data, DWORD* size_bytes) const;

  /// The calls of the platform.
  static const CryptCalls& of_platform() noexcept;
};
