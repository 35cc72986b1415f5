// Plan
//   A host uses OpenSSL too: its algorithms, its configuration and its queue of failures stay as they were
//   Where OpenSSL has no legacy provider, its algorithm alone is missing
//   Threads may derive and encipher at once
#include <gtest/gtest.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/provider.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "spcbase/platform/crypto/provider.h"
#include "spcbase/platform/system/system_error.h"

namespace {

/// Enciphers by one provider; empty when a call fails.
std::string encipher(const char16_t* name, ALG_ID algorithm, DWORD bits, std::string text) {
  HCRYPTPROV provider = 0;
  HCRYPTHASH hash = 0;
  HCRYPTKEY key = 0;
  auto size = static_cast<DWORD>(text.size());
  text.resize(text.size() + 8);
  const bool done =
      CryptAcquireContextW(&provider, nullptr, name, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT) &&
      CryptCreateHash(provider, CALG_SHA1, 0, 0, &hash) &&
      CryptHashData(hash, reinterpret_cast<const BYTE*>("3337"), 4, 0) &&
      CryptDeriveKey(provider, algorithm, hash, bits << 16U, &key) &&
      CryptEncrypt(key, 0, TRUE, 0, reinterpret_cast<BYTE*>(text.data()), &size, static_cast<DWORD>(text.size()));
  CryptDestroyKey(key);
  CryptDestroyHash(hash);
  CryptReleaseContext(provider, 0);
  return done ? text.substr(0, size) : std::string();
}

TEST(HostsOpenSsl, does_not_learn_of_rc4) {
  ASSERT_EQ(encipher(MS_DEF_PROV, CALG_RC4, 56, "text").size(), 4U);
  EVP_CIPHER* rc4 = EVP_CIPHER_fetch(nullptr, "RC4", nullptr);
  EXPECT_EQ(rc4, nullptr);
  EVP_CIPHER_free(rc4);
  EXPECT_EQ(OSSL_PROVIDER_available(nullptr, "legacy"), 0);
  ERR_clear_error();
}

TEST(HostsOpenSsl, keeps_its_queue_of_failures) {
  HCRYPTPROV provider = 0;
  HCRYPTHASH hash = 0;
  HCRYPTKEY key = 0;
  ASSERT_TRUE(CryptAcquireContextW(&provider, nullptr, MS_ENHANCED_PROV, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT));
  ASSERT_TRUE(CryptCreateHash(provider, CALG_SHA1, 0, 0, &hash));
  ASSERT_TRUE(CryptDeriveKey(provider, CALG_3DES, hash, 0, &key));
  const auto fail_to_decipher = [&] {
    BYTE data[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    DWORD size = sizeof data;
    EXPECT_FALSE(CryptDecrypt(key, 0, TRUE, 0, data, &size)) << "the padding is wrong";
  };
  ERR_clear_error();
  fail_to_decipher();
  EXPECT_EQ(ERR_peek_error(), 0U);

  ERR_raise(ERR_LIB_USER, 4711);
  const unsigned long own = ERR_peek_last_error();
  fail_to_decipher();
  EXPECT_EQ(ERR_get_error(), own);
  EXPECT_EQ(ERR_get_error(), 0U);
  CryptDestroyKey(key);
  CryptDestroyHash(hash);
  CryptReleaseContext(provider, 0);
}

// OpenSSL looks for its legacy provider in the folder that its own variable names.
void exit_well_when_rc4_is_missed_and_then_found() {
  setenv("OPENSSL_MODULES", "/nowhere", 1);
  HCRYPTPROV provider = 0;
  const bool missed = !CryptAcquireContextW(&provider, nullptr, MS_DEF_PROV, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT) &&
                      GetLastError() == NTE_PROVIDER_DLL_FAIL && ERR_peek_error() == 0;
  const bool others_work = encipher(MS_ENHANCED_PROV, CALG_3DES, 168, "a text").size() == 8;
  unsetenv("OPENSSL_MODULES");
  const bool found = encipher(MS_DEF_PROV, CALG_RC4, 56, "a text").size() == 6;
  std::exit(missed && others_work && found ? 0 : 1);
}

TEST(MissingLegacyProvider, fails_the_base_provider_alone_and_is_looked_for_again) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";  // a program of its own, which has not used RC4 yet
  EXPECT_EXIT(exit_well_when_rc4_is_missed_and_then_found(), testing::ExitedWithCode(0), "");
}

TEST(ProvidersOfThreads, work_at_once) {
  const std::string block = encipher(MS_STRONG_PROV, CALG_3DES, 168, "a text");
  const std::string stream = encipher(MS_DEF_PROV, CALG_RC4, 56, "a text");
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&] {
      for (int round = 0; round < 100; ++round) {
        wrong += encipher(MS_STRONG_PROV, CALG_3DES, 168, "a text") != block;
        wrong += encipher(MS_DEF_PROV, CALG_RC4, 56, "a text") != stream;
      }
    });
  for (auto& thread : threads)
    thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(block.size(), 8U);
  EXPECT_EQ(stream.size(), 6U);
}

}  // namespace
