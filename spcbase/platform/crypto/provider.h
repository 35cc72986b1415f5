/// The cryptographic provider calls: acquiring a provider, hashing, a key from a hash, enciphering and deciphering.
///
/// Part of the platform layer, for the library's own use: it serves texts that were enciphered long ago, so it has
/// their algorithms and no others (SHA-1, triple DES with three keys in cipher block chaining, RC4).
///
///     HCRYPTPROV provider = 0;
///     CryptAcquireContextW(&provider, nullptr, MS_ENHANCED_PROV, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT);
///     HCRYPTHASH hash = 0;
///     CryptCreateHash(provider, CALG_SHA1, 0, 0, &hash);
///     CryptHashData(hash, bytes, size, 0);
///     HCRYPTKEY key = 0;
///     CryptDeriveKey(provider, CALG_3DES, hash, 168U << 16, &key);
///
/// Every call gives TRUE, or FALSE and leaves a number for `GetLastError`; none throws. A handle is checked for null
/// and for the kind of thing that it stands for; one that was released is not recognised, and using it is undefined.
///
/// Differs: no key is ever stored, so there are no key containers and no public keys: a context is acquired with
/// `CRYPT_VERIFYCONTEXT` alone or with a flag that makes or removes a container, which then does nothing. A text is
/// enciphered and deciphered by one call, `final` true, of less than 2 GB. A key is one from `CryptDeriveKey`.
/// Source: the platform's public documentation of these calls; OpenSSL does the cryptography.
#pragma once

#include <cstdint>

#include "spcbase/platform/system/types.h"

/// An algorithm, and handles that are only passed back.
using ALG_ID = unsigned int;
using HCRYPTPROV = std::uintptr_t;
using HCRYPTHASH = std::uintptr_t;
using HCRYPTKEY = std::uintptr_t;

/// The type that all three providers have.
inline constexpr DWORD PROV_RSA_FULL = 1;

/// The three providers.
inline constexpr char16_t MS_DEF_PROV[] = u"Microsoft Base Cryptographic Provider v1.0";
inline constexpr char16_t MS_ENHANCED_PROV[] = u"Microsoft Enhanced Cryptographic Provider v1.0";
inline constexpr char16_t MS_STRONG_PROV[] = u"Microsoft Strong Cryptographic Provider";

/// Flags of `CryptAcquireContextW`: the first must be given; with the last nothing is acquired.
inline constexpr DWORD CRYPT_VERIFYCONTEXT = 0xF0000000U;
inline constexpr DWORD CRYPT_NEWKEYSET = 0x00000008U;
inline constexpr DWORD CRYPT_DELETEKEYSET = 0x00000010U;

/// The hash and the two ciphers.
inline constexpr ALG_ID CALG_SHA1 = 0x00008004U;
inline constexpr ALG_ID CALG_3DES = 0x00006603U;
inline constexpr ALG_ID CALG_RC4 = 0x00006801U;

/// What `CryptSetKeyParam` sets.
inline constexpr DWORD KP_IV = 1;
inline constexpr DWORD KP_SALT = 2;
inline constexpr DWORD KP_SALT_EX = 10;

/// What the calls leave as the last error.
inline constexpr DWORD NTE_BAD_UID = 0x80090001U;
inline constexpr DWORD NTE_BAD_HASH = 0x80090002U;
inline constexpr DWORD NTE_BAD_KEY = 0x80090003U;
inline constexpr DWORD NTE_BAD_LEN = 0x80090004U;
inline constexpr DWORD NTE_BAD_DATA = 0x80090005U;
inline constexpr DWORD NTE_BAD_ALGID = 0x80090008U;
inline constexpr DWORD NTE_BAD_FLAGS = 0x80090009U;
inline constexpr DWORD NTE_BAD_TYPE = 0x8009000AU;
inline constexpr DWORD NTE_BAD_HASH_STATE = 0x8009000CU;
inline constexpr DWORD NTE_NO_MEMORY = 0x8009000EU;
inline constexpr DWORD NTE_BAD_PROV_TYPE = 0x80090014U;
inline constexpr DWORD NTE_BAD_KEYSET = 0x80090016U;
inline constexpr DWORD NTE_PROV_TYPE_NOT_DEF = 0x80090017U;
inline constexpr DWORD NTE_KEYSET_NOT_DEF = 0x80090019U;
inline constexpr DWORD NTE_PROV_TYPE_NO_MATCH = 0x8009001BU;
inline constexpr DWORD NTE_PROVIDER_DLL_FAIL = 0x8009001DU;
inline constexpr DWORD NTE_BAD_KEYSET_PARAM = 0x8009001FU;
inline constexpr DWORD NTE_FAIL = 0x80090020U;

/// A block of bytes with its length, as `KP_SALT_EX` takes it.
struct CRYPT_DATA_BLOB {
  DWORD cbData;  ///< the length in bytes
  BYTE* pbData;  ///< the bytes
};

/// Acquires a provider by its name, one of the three above.
/// Null:   the container must be null, since there are none. A null name asks for the user's default, and there is
///         none.
/// Fails:  NTE_PROV_TYPE_NOT_DEF for a null name, NTE_BAD_PROV_TYPE for a type that is none, NTE_KEYSET_NOT_DEF for
///         another name, NTE_PROV_TYPE_NO_MATCH for another type, NTE_BAD_FLAGS for other flags, NTE_BAD_KEYSET without
///         `CRYPT_VERIFYCONTEXT`, NTE_BAD_KEYSET_PARAM for a container, NTE_PROVIDER_DLL_FAIL when the algorithms of
///         the provider are not to be had on this machine.
/// Owns:   the caller releases the handle with `CryptReleaseContext`. With `CRYPT_DELETEKEYSET` there is none: it is 0.
BOOL CryptAcquireContextW(HCRYPTPROV* provider, const char16_t* container, const char16_t* name, DWORD type,
                          DWORD flags) noexcept;
/// Releases a provider. `flags` must be 0: other flags fail with NTE_BAD_FLAGS, and the provider is released all the
/// same.
BOOL CryptReleaseContext(HCRYPTPROV provider, DWORD flags) noexcept;

/// Makes an empty hash. `algorithm` is CALG_SHA1, `key` and `flags` are 0.
/// Fails:  NTE_BAD_ALGID, NTE_BAD_KEY, NTE_BAD_FLAGS.
/// Owns:   the caller releases it with `CryptDestroyHash`.
BOOL CryptCreateHash(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTKEY key, DWORD flags, HCRYPTHASH* hash) noexcept;
/// Adds bytes to a hash. `flags` is 0.
/// Fails:  NTE_BAD_HASH_STATE when a key was derived from it, NTE_BAD_FLAGS.
BOOL CryptHashData(HCRYPTHASH hash, const BYTE* data, DWORD size_bytes, DWORD flags) noexcept;
/// Releases a hash.
/// Fails: NTE_BAD_HASH for what is none.
BOOL CryptDestroyHash(HCRYPTHASH hash) noexcept;

/// Derives a key from a hash, which takes no more data after that.
/// The high 16 bits of `flags` are the length of the key in bits, 0 for the default of the provider; the low ones are
/// 0. Triple DES takes 168 bits, which are 24 bytes with their parity. RC4 takes 40 to 56 bits in the base provider (40
/// by default) and 40 to 128 in the others (128), whole bytes only; a key of 40 bits of the base provider gets a salt
/// of 11 zero bytes, any other key none. The initial vector is zero.
/// Fails:  NTE_BAD_ALGID for an algorithm that the provider does not have, NTE_BAD_FLAGS for a length that it does not
///         take and for other flags, NTE_BAD_HASH.
/// Owns:   the caller releases it with `CryptDestroyKey`.
/// Source: the remarks of the public documentation of CryptDeriveKey.
BOOL CryptDeriveKey(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTHASH hash, DWORD flags, HCRYPTKEY* key) noexcept;
/// Releases a key.
/// Fails: NTE_BAD_KEY for what is none.
BOOL CryptDestroyKey(HCRYPTKEY key) noexcept;

/// Reads `KP_SALT`, or `KP_IV` of a block cipher. `flags` is 0.
/// Null:   with a null buffer `*size_bytes` becomes the length alone.
/// Fails:  NTE_BAD_TYPE for another parameter, NTE_BAD_FLAGS, ERROR_MORE_DATA with the length in `*size_bytes` when the
///         buffer is too small.
BOOL CryptGetKeyParam(HCRYPTKEY key, DWORD parameter, BYTE* data, DWORD* size_bytes, DWORD flags) noexcept;
/// Sets `KP_IV` of a block cipher or `KP_SALT`, whose lengths `CryptGetKeyParam` tells, or the salt of a stream cipher
/// by `KP_SALT_EX`, in any length up to 24 bytes that key and salt have together. `flags` is 0.
/// Fails:  NTE_BAD_TYPE for another parameter, NTE_BAD_FLAGS, NTE_BAD_DATA for a salt that is too long.
BOOL CryptSetKeyParam(HCRYPTKEY key, DWORD parameter, const BYTE* data, DWORD flags) noexcept;

/// Enciphers a text in place; a block cipher pads it to whole blocks first, so that it grows by 1 to 8 bytes.
/// `hash` and `flags` are 0. `*size_bytes` is the length of the text and becomes that of the ciphertext.
/// Null:   with a null buffer `*size_bytes` becomes the length alone.
/// Fails:  ERROR_MORE_DATA with the length in `*size_bytes` when the buffer of `buffer_size` bytes is too small,
///         NTE_BAD_LEN from 2 GB on, NTE_BAD_HASH, NTE_BAD_FLAGS, ERROR_INVALID_PARAMETER unless `final`.
BOOL CryptEncrypt(HCRYPTKEY key, HCRYPTHASH hash, BOOL final, DWORD flags, BYTE* data, DWORD* size_bytes,
                  DWORD buffer_size) noexcept;
/// Deciphers a text in place. `*size_bytes` is the length of the ciphertext and becomes that of the text.
/// Fails:  NTE_BAD_DATA for a ciphertext of no whole blocks or none, and for one whose padding is wrong; else as
///         `CryptEncrypt`. After a failure the buffer holds nothing that can be used.
BOOL CryptDecrypt(HCRYPTKEY key, HCRYPTHASH hash, BOOL final, DWORD flags, BYTE* data, DWORD* size_bytes) noexcept;
