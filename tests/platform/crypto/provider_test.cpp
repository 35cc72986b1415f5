// Plan
//   Acquiring: the three names, the order of refusals, flags that make or remove a container
//   Hashes: what they take, closed by a derived key; handles of another kind
//   Keys: recorded hashes give the recorded keys; algorithms and lengths of each provider; parameters and salts
//   Ciphers stand in cipher_test.cpp
#include "spcbase/platform/crypto/provider.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "spcbase/platform/crypto/key_derivation.h"
#include "spcbase/platform/system/system_error.h"
#include "tests/support/hex_bytes.h"
#include "tests/support/vector_file.h"

namespace {

/// That a call fails and leaves a number.
#define EXPECT_REFUSED(call, error)   \
  do {                                \
    SetLastError(0);                  \
    EXPECT_FALSE(call);               \
    EXPECT_EQ(GetLastError(), error); \
  } while (false)

HCRYPTPROV acquire(const char16_t* name) {
  HCRYPTPROV provider = 0;
  EXPECT_TRUE(CryptAcquireContextW(&provider, nullptr, name, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT));
  return provider;
}

class ProviderCalls : public testing::Test {
 protected:
  ~ProviderCalls() override {
    for (const HCRYPTKEY key : keys_)
      EXPECT_TRUE(CryptDestroyKey(key));
    EXPECT_TRUE(hash_ == 0 || CryptDestroyHash(hash_));
    for (const HCRYPTPROV provider : {base_, enhanced_, strong_})
      EXPECT_TRUE(CryptReleaseContext(provider, 0));
  }

  HCRYPTHASH hash() {
    EXPECT_TRUE(hash_ != 0 || CryptCreateHash(enhanced_, CALG_SHA1, 0, 0, &hash_));
    return hash_;
  }
  HCRYPTKEY key(HCRYPTPROV provider, ALG_ID algorithm, DWORD bits) {
    HCRYPTKEY made = 0;
    EXPECT_TRUE(CryptDeriveKey(provider, algorithm, hash(), bits << 16U, &made));
    keys_.push_back(made);
    return made;
  }
  /// The number that deriving a key leaves; 0 when it works.
  DWORD refusal(HCRYPTPROV provider, ALG_ID algorithm, DWORD flags) {
    HCRYPTKEY made = 0;
    SetLastError(0);
    if (!CryptDeriveKey(provider, algorithm, hash(), flags, &made)) return GetLastError();
    EXPECT_TRUE(CryptDestroyKey(made));
    return 0;
  }
  /// What a parameter holds.
  static std::string parameter(HCRYPTKEY key, DWORD number) {
    DWORD size = 0;
    EXPECT_TRUE(CryptGetKeyParam(key, number, nullptr, &size, 0));
    std::string value(size + 1U, '?');
    EXPECT_TRUE(CryptGetKeyParam(key, number, reinterpret_cast<BYTE*>(value.data()), &size, 0));
    return value.substr(0, size);
  }

  HCRYPTPROV base_ = acquire(MS_DEF_PROV);
  HCRYPTPROV enhanced_ = acquire(MS_ENHANCED_PROV);
  HCRYPTPROV strong_ = acquire(MS_STRONG_PROV);
  HCRYPTHASH hash_ = 0;
  std::vector<HCRYPTKEY> keys_;
};

TEST_F(ProviderCalls, acquire_refuses_in_a_fixed_order) {
  HCRYPTPROV provider = 77;
  const DWORD verify = CRYPT_VERIFYCONTEXT;
  EXPECT_REFUSED(CryptAcquireContextW(nullptr, nullptr, MS_DEF_PROV, 1, verify), ERROR_INVALID_PARAMETER);
  EXPECT_REFUSED(CryptAcquireContextW(&provider, nullptr, nullptr, 0, 0), NTE_BAD_PROV_TYPE);
  EXPECT_REFUSED(CryptAcquireContextW(&provider, nullptr, nullptr, 1000, 0), NTE_BAD_PROV_TYPE);
  EXPECT_REFUSED(CryptAcquireContextW(&provider, nullptr, nullptr, 1, 0), NTE_PROV_TYPE_NOT_DEF);
  EXPECT_REFUSED(CryptAcquireContextW(&provider, nullptr, u"Another Provider", 2, 0), NTE_KEYSET_NOT_DEF);
  EXPECT_REFUSED(CryptAcquireContextW(&provider, nullptr, MS_DEF_PROV, 2, 0), NTE_PROV_TYPE_NO_MATCH);
  EXPECT_REFUSED(CryptAcquireContextW(&provider, nullptr, MS_DEF_PROV, 1, verify | 0x20U), NTE_BAD_FLAGS);
  EXPECT_REFUSED(CryptAcquireContextW(&provider, nullptr, MS_DEF_PROV, 1, verify | 0x18U), NTE_BAD_FLAGS);
  EXPECT_REFUSED(CryptAcquireContextW(&provider, u"box", MS_DEF_PROV, 1, 0), NTE_BAD_KEYSET);
  EXPECT_REFUSED(CryptAcquireContextW(&provider, u"box", MS_DEF_PROV, 1, CRYPT_NEWKEYSET), NTE_BAD_KEYSET);
  EXPECT_REFUSED(CryptAcquireContextW(&provider, u"box", MS_DEF_PROV, 1, verify), NTE_BAD_KEYSET_PARAM);
  EXPECT_EQ(provider, 77U) << "a failed call leaves the handle alone";
}

TEST_F(ProviderCalls, acquire_with_a_flag_for_containers_makes_a_context_or_removes_nothing) {
  HCRYPTPROV provider = 0;
  ASSERT_TRUE(CryptAcquireContextW(&provider, nullptr, MS_STRONG_PROV, 1, CRYPT_VERIFYCONTEXT | CRYPT_NEWKEYSET));
  EXPECT_NE(provider, 0U);
  EXPECT_TRUE(CryptReleaseContext(provider, 0));
  provider = 77;
  EXPECT_TRUE(CryptAcquireContextW(&provider, nullptr, MS_STRONG_PROV, 1, CRYPT_VERIFYCONTEXT | CRYPT_DELETEKEYSET));
  EXPECT_EQ(provider, 0U) << "no handle is left to release";
}

TEST_F(ProviderCalls, release_takes_no_flags_and_releases_all_the_same) {
  const HCRYPTPROV provider = acquire(MS_DEF_PROV);
  EXPECT_REFUSED(CryptReleaseContext(provider, 1), NTE_BAD_FLAGS);  // a leak would fail the run under sanitizers
  EXPECT_REFUSED(CryptReleaseContext(0, 0), NTE_BAD_UID);
}

TEST_F(ProviderCalls, refuse_handles_that_are_null_or_of_another_kind) {
  BYTE data[8] = {};
  DWORD size = 8;
  HCRYPTHASH made = 0;
  HCRYPTKEY key_made = 0;
  const HCRYPTKEY k = key(enhanced_, CALG_3DES, 168);
  EXPECT_REFUSED(CryptReleaseContext(hash(), 0), NTE_BAD_UID);
  EXPECT_REFUSED(CryptCreateHash(0, CALG_SHA1, 0, 0, &made), NTE_BAD_UID);
  EXPECT_REFUSED(CryptCreateHash(k, CALG_SHA1, 0, 0, &made), NTE_BAD_UID);
  EXPECT_REFUSED(CryptHashData(base_, data, 8, 0), NTE_BAD_HASH);
  EXPECT_REFUSED(CryptDestroyHash(k), NTE_BAD_HASH);
  EXPECT_REFUSED(CryptDeriveKey(0, CALG_RC4, hash(), 0, &key_made), NTE_BAD_UID);
  EXPECT_REFUSED(CryptDeriveKey(base_, CALG_RC4, base_, 0, &key_made), NTE_BAD_HASH);
  EXPECT_REFUSED(CryptDestroyKey(hash()), NTE_BAD_KEY);
  EXPECT_REFUSED(CryptDestroyKey(0), NTE_BAD_KEY);
  EXPECT_REFUSED(CryptGetKeyParam(hash(), KP_IV, data, &size, 0), NTE_BAD_KEY);
  EXPECT_REFUSED(CryptSetKeyParam(0, KP_IV, data, 0), NTE_BAD_KEY);
  EXPECT_REFUSED(CryptEncrypt(0, 0, TRUE, 0, data, &size, 8), NTE_BAD_KEY);
  EXPECT_REFUSED(CryptDecrypt(hash(), 0, TRUE, 0, data, &size), NTE_BAD_KEY);
}

TEST_F(ProviderCalls, hash_takes_sha1_without_key_and_flags) {
  HCRYPTHASH made = 0;
  EXPECT_REFUSED(CryptCreateHash(base_, 0x8003, 0, 0, &made), NTE_BAD_ALGID);
  EXPECT_REFUSED(CryptCreateHash(base_, CALG_SHA1, 1, 0, &made), NTE_BAD_KEY);
  EXPECT_REFUSED(CryptCreateHash(base_, CALG_SHA1, 0, 1, &made), NTE_BAD_FLAGS);
  EXPECT_REFUSED(CryptCreateHash(base_, CALG_SHA1, 0, 0, nullptr), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(made, 0U);
  const BYTE data[] = {1};
  EXPECT_REFUSED(CryptHashData(hash(), data, 1, 1), NTE_BAD_FLAGS);
  EXPECT_REFUSED(CryptHashData(hash(), nullptr, 1, 0), ERROR_INVALID_PARAMETER);
  EXPECT_TRUE(CryptHashData(hash(), nullptr, 0, 0));
}

TEST_F(ProviderCalls, hash_is_closed_by_the_first_key_and_gives_more_of_them) {
  const HCRYPTKEY first = key(enhanced_, CALG_3DES, 168);
  const BYTE data[] = {1};
  EXPECT_REFUSED(CryptHashData(hash(), data, 1, 0), NTE_BAD_HASH_STATE);
  const HCRYPTKEY second = key(enhanced_, CALG_3DES, 168);
  const auto enciphered = [](HCRYPTKEY k) {
    std::string text = "a text..";
    DWORD size = 7;
    EXPECT_TRUE(CryptEncrypt(k, 0, TRUE, 0, reinterpret_cast<BYTE*>(text.data()), &size, 8));
    return text;
  };
  EXPECT_EQ(enciphered(first), enciphered(second));
}

TEST_F(ProviderCalls, derive_only_what_the_provider_has) {
  EXPECT_EQ(refusal(base_, CALG_3DES, 168U << 16U), NTE_BAD_ALGID);
  EXPECT_EQ(refusal(base_, 0x6602, 0), NTE_BAD_ALGID);
  EXPECT_EQ(refusal(strong_, 0x6601, 0), NTE_BAD_ALGID);
  for (const HCRYPTPROV provider : {enhanced_, strong_}) {
    EXPECT_EQ(refusal(provider, CALG_3DES, 168U << 16U), 0U);
    EXPECT_EQ(refusal(provider, CALG_3DES, 0), 0U);
    EXPECT_EQ(refusal(provider, CALG_3DES, 112U << 16U), NTE_BAD_FLAGS);
    EXPECT_EQ(refusal(provider, CALG_3DES, 168U << 16U | 1U), NTE_BAD_FLAGS);
    EXPECT_EQ(refusal(provider, CALG_RC4, 128U << 16U), 0U);
    EXPECT_EQ(refusal(provider, CALG_RC4, 136U << 16U), NTE_BAD_FLAGS);
  }
  for (const DWORD bits : {40U, 48U, 56U})
    EXPECT_EQ(refusal(base_, CALG_RC4, bits << 16U), 0U) << bits;
  for (const DWORD bits : {1U, 32U, 39U, 41U, 57U, 64U, 128U, 0xFFFFU})
    EXPECT_EQ(refusal(base_, CALG_RC4, bits << 16U), NTE_BAD_FLAGS) << bits;
  EXPECT_REFUSED(CryptDeriveKey(base_, CALG_RC4, hash(), 0, nullptr), ERROR_INVALID_PARAMETER);
}

TEST_F(ProviderCalls, give_a_salt_to_keys_of_40_bits_of_the_base_provider_alone) {
  EXPECT_EQ(parameter(key(base_, CALG_RC4, 40), KP_SALT), std::string(11, '\0'));
  EXPECT_EQ(parameter(key(base_, CALG_RC4, 0), KP_SALT), std::string(11, '\0')) << "40 bits are its default";
  EXPECT_EQ(parameter(key(base_, CALG_RC4, 56), KP_SALT), "");
  EXPECT_EQ(parameter(key(enhanced_, CALG_RC4, 40), KP_SALT), "");
  EXPECT_EQ(parameter(key(strong_, CALG_3DES, 168), KP_SALT), "");
}

TEST_F(ProviderCalls, keep_parameters_that_were_set) {
  const HCRYPTKEY block = key(strong_, CALG_3DES, 168);
  EXPECT_EQ(parameter(block, KP_IV), std::string(8, '\0'));
  EXPECT_TRUE(CryptSetKeyParam(block, KP_IV, reinterpret_cast<const BYTE*>("initials"), 0));
  EXPECT_EQ(parameter(block, KP_IV), "initials");
  const HCRYPTKEY stream = key(base_, CALG_RC4, 40);
  EXPECT_TRUE(CryptSetKeyParam(stream, KP_SALT, reinterpret_cast<const BYTE*>("eleven byte"), 0));
  EXPECT_EQ(parameter(stream, KP_SALT), "eleven byte");
}

TEST_F(ProviderCalls, take_a_salt_of_another_length_by_its_own_parameter) {
  const HCRYPTKEY stream = key(base_, CALG_RC4, 56);
  std::string salt = "17 bytes at most.!";
  CRYPT_DATA_BLOB blob{17, reinterpret_cast<BYTE*>(salt.data())};
  EXPECT_TRUE(CryptSetKeyParam(stream, KP_SALT_EX, reinterpret_cast<const BYTE*>(&blob), 0));
  EXPECT_EQ(parameter(stream, KP_SALT), salt.substr(0, 17));
  blob.cbData = 18;
  EXPECT_REFUSED(CryptSetKeyParam(stream, KP_SALT_EX, reinterpret_cast<const BYTE*>(&blob), 0), NTE_BAD_DATA);
  blob = {1, nullptr};
  EXPECT_REFUSED(CryptSetKeyParam(stream, KP_SALT_EX, reinterpret_cast<const BYTE*>(&blob), 0),
                 ERROR_INVALID_PARAMETER);
  blob = {0, nullptr};
  EXPECT_TRUE(CryptSetKeyParam(stream, KP_SALT_EX, reinterpret_cast<const BYTE*>(&blob), 0));
  EXPECT_EQ(parameter(stream, KP_SALT), "");
  EXPECT_REFUSED(CryptSetKeyParam(key(strong_, CALG_3DES, 0), KP_SALT_EX, reinterpret_cast<const BYTE*>(&blob), 0),
                 NTE_BAD_TYPE);
}

TEST_F(ProviderCalls, refuse_parameters_that_a_key_does_not_have) {
  BYTE data[16] = {};
  DWORD size = sizeof data;
  const HCRYPTKEY stream = key(base_, CALG_RC4, 56);
  const HCRYPTKEY block = key(strong_, CALG_3DES, 168);
  EXPECT_REFUSED(CryptGetKeyParam(stream, KP_IV, data, &size, 0), NTE_BAD_TYPE);
  EXPECT_REFUSED(CryptSetKeyParam(stream, KP_IV, data, 0), NTE_BAD_TYPE);
  EXPECT_REFUSED(CryptGetKeyParam(block, 99, data, &size, 0), NTE_BAD_TYPE);
  EXPECT_REFUSED(CryptGetKeyParam(block, KP_IV, data, &size, 1), NTE_BAD_FLAGS);
  EXPECT_REFUSED(CryptSetKeyParam(block, KP_IV, data, 1), NTE_BAD_FLAGS);
  EXPECT_REFUSED(CryptGetKeyParam(block, KP_IV, data, nullptr, 0), ERROR_INVALID_PARAMETER);
  EXPECT_REFUSED(CryptSetKeyParam(block, KP_IV, nullptr, 0), ERROR_INVALID_PARAMETER);
  size = 7;
  EXPECT_REFUSED(CryptGetKeyParam(block, KP_IV, data, &size, 0), ERROR_MORE_DATA);
  EXPECT_EQ(size, 8U);
}

TEST(KeyDerivation, makes_the_recorded_keys_of_the_recorded_hashes) {
  std::set<std::size_t> sizes;
  for (const auto& row : test_support::read_vectors("crypto.tsv")) {
    SCOPED_TRACE(row.place());
    const std::string hash = test_support::bytes_of_hex(row["sha1_hex"]);
    std::vector<unsigned char> key(row["key_hex"].size() / 2);
    const auto* bytes = reinterpret_cast<const unsigned char*>(hash.data());
    ASSERT_TRUE(crypto_detail::derive_key_bytes({bytes, hash.size()}, key));
    EXPECT_EQ(test_support::hex_of({reinterpret_cast<const char*>(key.data()), key.size()}), row["key_hex"]);
    sizes.insert(key.size());
  }
  EXPECT_EQ(sizes, (std::set<std::size_t>{7, 24}));
}

TEST(KeyDerivation, refuses_what_a_hash_cannot_give) {
  std::vector<unsigned char> hash(20);
  std::vector<unsigned char> key(41);
  EXPECT_FALSE(crypto_detail::derive_key_bytes(hash, key));
  hash.pop_back();
  key.resize(8);
  EXPECT_FALSE(crypto_detail::derive_key_bytes(hash, key));
}

}  // namespace
