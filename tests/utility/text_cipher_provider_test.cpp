// Plan
//   The calls of enciphering and deciphering, in order, for a row that hashes its salt and for the one that sets it
//   Acquiring: the three sets of flags; what deleting leaves; choosing a row; rows that are none; a provider that is
//   held A failure of each call: what is thrown, nothing is left open, and the object works on
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

#include "spcbase/platform/system/system_error.h"
#include "spcbase/utility/internal/text_cipher.h"
#include "tests/utility/scripted_crypt_calls.h"

namespace {

using Log = std::vector<std::string>;

constexpr DWORD verify = CRYPT_VERIFYCONTEXT;
constexpr DWORD with_new = CRYPT_VERIFYCONTEXT | CRYPT_NEWKEYSET;
constexpr DWORD with_delete = CRYPT_VERIFYCONTEXT | CRYPT_DELETEKEYSET;
/// A number that no system text belongs to.
constexpr DWORD textless = 0xE0001234U;

class TextCipherCalls : public testing::Test {
 protected:
  TextCipherSettings settings() const {
    TextCipherSettings made;
    made.calls = &calls_;
    return made;
  }
  /// "a secret" under "3337" in a row, by an object of its own.
  static CString stored(std::int32_t row) {
    TextCipher writer;
    writer.provider_index = row;
    return writer.encrypt("a secret", "3337");
  }
  /// The calls that acquire, of the log.
  Log acquiring() const {
    Log found;
    for (const auto& line : calls_.log())
      if (line.starts_with("acquire")) found.push_back(line);
    return found;
  }
  ~TextCipherCalls() override { EXPECT_TRUE(calls_.nothing_open()); }

  test_support::ScriptedCryptCalls calls_;
};

/// What a call throws; its text, or "plain" for an exception without one, or "none".
template <class Call>
std::string thrown(Call&& call) {
  try {
    call();
  } catch (const std::runtime_error& e) {
    return e.what();
  } catch (const std::exception& e) {
    return typeid(e) == typeid(std::exception) ? "plain" : e.what();
  }
  return "none";
}

TEST_F(TextCipherCalls, encrypt_in_order_and_give_everything_back) {
  {
    TextCipher cipher(settings());
    cipher.encrypt("a secret", "3337");
    EXPECT_EQ(calls_.log(), (Log{"acquire Enh 1 F0000000", "create_hash 8004", "hash_data Kq7#vL2!xZp",
                                 "hash_data 3337", "derive_key 6603 A80000", "get_key_param 1", "set_key_param 1",
                                 "encrypt null", "encrypt", "destroy_key", "destroy_hash"}));
    EXPECT_EQ(calls_.open_providers(), 1) << "it is held till the end";
  }
  EXPECT_EQ(calls_.log().back(), "release");
  EXPECT_TRUE(calls_.containers_were_null());
}

TEST_F(TextCipherCalls, decrypt_in_order_with_the_row_of_the_text) {
  const CString text = stored(1);
  TextCipher cipher(settings());
  EXPECT_EQ(cipher.decrypt(text, "3337"), "a secret");
  EXPECT_EQ(calls_.log(), (Log{"acquire Str 1 F0000000", "create_hash 8004", "hash_data Kq7#vL2!xZp", "hash_data 3337",
                               "derive_key 6603 A80000", "get_key_param 1", "set_key_param 1", "decrypt", "destroy_key",
                               "destroy_hash"}));
}

// The row that sets its salt on the key hashes the key text alone, and a length of 0 leaves the key without salt.
TEST_F(TextCipherCalls, set_no_salt_where_the_key_takes_none) {
  const CString text = stored(2);
  TextCipher cipher(settings());
  EXPECT_EQ(cipher.decrypt(text, "3337"), "a secret");
  EXPECT_EQ(calls_.log(), (Log{"acquire Bas 1 F0000000", "create_hash 8004", "hash_data 3337", "derive_key 6801 380000",
                               "get_key_param 2", "decrypt", "destroy_key", "destroy_hash"}));
}

TEST_F(TextCipherCalls, cut_or_fill_a_parameter_to_the_length_that_the_key_names) {
  std::string seen;
  DWORD length = 5;
  calls_.on_get_key_param = [&](DWORD, DWORD* size) {
    *size = length;
    return TRUE;
  };
  calls_.on_set_key_param = [&](HCRYPTKEY, DWORD parameter, const BYTE* data) {
    seen = std::to_string(parameter) + ":" + std::string(reinterpret_cast<const char*>(data), length);
    return TRUE;
  };
  TextCipher cipher(settings());
  cipher.provider_index = 2;
  cipher.encrypt("a secret", "3337");
  EXPECT_EQ(seen, "2:Kq7#v");
  length = 14;
  cipher.encrypt("a secret", "3337");
  EXPECT_EQ(seen, "2:Kq7#vL2!xZp" + std::string(3, '\0'));
  TextCipher other(settings());
  length = 10;
  other.encrypt("a secret", "3337");
  EXPECT_EQ(seen, "1:b8R$w1Ne" + std::string(2, '\0'));
}

TEST_F(TextCipherCalls, leave_out_constants_that_are_empty) {
  auto without = settings();
  without.salt_text = {};
  without.iv_text = {};
  TextCipher cipher(without);
  const CString text = cipher.encrypt("a secret", "3337");
  EXPECT_EQ(calls_.hashed(), (Log{"3337"}));
  for (const auto& line : calls_.log())
    EXPECT_EQ(line.find("key_param"), std::string::npos);
  EXPECT_EQ(cipher.decrypt(text, "3337"), "a secret");
}

TEST_F(TextCipherCalls, hash_no_null_key_text) {
  TextCipher cipher(settings());
  cipher.encrypt("a secret", nullptr);
  EXPECT_EQ(calls_.hashed(), (Log{"Kq7#vL2!xZp"}));
}

TEST_F(TextCipherCalls, acquire_with_three_sets_of_flags_in_order) {
  const std::u16string any;
  calls_.refuse_to_acquire(any, verify);
  {
    TextCipher cipher(settings());
    cipher.choose_provider();
    EXPECT_EQ(acquiring(), (Log{"acquire Enh 1 F0000000", "acquire Enh 1 F0000008"}));
  }
  calls_.refuse_to_acquire(any, with_new);
  TextCipher cipher(settings());
  EXPECT_EQ(thrown([&] { cipher.choose_provider(); }), "Keyset does not exist\r\n");
  EXPECT_EQ(acquiring(), (Log{"acquire Enh 1 F0000000", "acquire Enh 1 F0000008",  // the first object's
                              "acquire Enh 1 F0000000", "acquire Enh 1 F0000008", "acquire Enh 1 F0000010",
                              "acquire Enh 1 F0000008", "acquire Str 1 F0000000", "acquire Str 1 F0000008",
                              "acquire Str 1 F0000010", "acquire Str 1 F0000008"}));
  EXPECT_EQ(cipher.provider, 0U) << "what deleting leaves is no provider";
  EXPECT_EQ(cipher.provider_index, -1);
}

TEST_F(TextCipherCalls, acquire_after_a_deletion) {
  calls_.refuse_to_acquire({}, verify);
  calls_.fail(2, NTE_BAD_KEYSET);  // the first with a new container
  TextCipher cipher(settings());
  cipher.choose_provider();
  EXPECT_EQ(acquiring(), (Log{"acquire Enh 1 F0000000", "acquire Enh 1 F0000008", "acquire Enh 1 F0000010",
                              "acquire Enh 1 F0000008"}));
  EXPECT_EQ(cipher.provider_index, 0);
  EXPECT_EQ(calls_.open_providers(), 1);
}

TEST_F(TextCipherCalls, do_not_try_again_when_the_deletion_fails) {
  for (const DWORD flags : {verify, with_new, with_delete})
    calls_.refuse_to_acquire(MS_ENHANCED_PROV, flags);
  TextCipher cipher(settings());
  cipher.choose_provider();
  EXPECT_EQ(acquiring(), (Log{"acquire Enh 1 F0000000", "acquire Enh 1 F0000008", "acquire Enh 1 F0000010",
                              "acquire Str 1 F0000000"}));
  EXPECT_EQ(cipher.provider_index, 1) << "the first that can be had";
}

TEST_F(TextCipherCalls, never_choose_row_2_for_a_new_text) {
  for (const DWORD flags : {verify, with_new, with_delete})
    for (const char16_t* name : {MS_ENHANCED_PROV, MS_STRONG_PROV})
      calls_.refuse_to_acquire(name, flags);
  TextCipher cipher(settings());
  EXPECT_EQ(thrown([&] { cipher.encrypt("a secret", "3337"); }), "Keyset does not exist\r\n");
  for (const auto& line : acquiring())
    EXPECT_EQ(line.find("Bas"), std::string::npos);
  EXPECT_EQ(cipher.decrypt(stored(2), "3337"), "a secret") << "it is read all the same";
}

TEST_F(TextCipherCalls, try_a_row_that_is_set_and_no_other) {
  calls_.refuse_to_acquire(MS_STRONG_PROV, verify);
  calls_.refuse_to_acquire(MS_STRONG_PROV, with_new);
  TextCipher cipher(settings());
  cipher.provider_index = 1;
  EXPECT_EQ(thrown([&] { cipher.choose_provider(); }), "Keyset does not exist\r\n");
  for (const auto& line : acquiring())
    EXPECT_NE(line.find("Str"), std::string::npos);
  EXPECT_EQ(cipher.provider_index, 1);
}

TEST_F(TextCipherCalls, raise_for_a_row_outside_0_to_2) {
  for (const std::int32_t index : {-2, 3, 4, 0x10000, -2147483647 - 1, 2147483647}) {
    TextCipher cipher(settings());
    cipher.provider_index = index;
    EXPECT_THROW(cipher.encrypt("a secret", "3337"), std::exception) << index;
    EXPECT_THROW(cipher.choose_provider(), std::exception) << index;
  }
  EXPECT_TRUE(calls_.log().empty());
}

TEST_F(TextCipherCalls, raise_for_a_choice_when_a_provider_is_held) {
  TextCipher cipher(settings());
  cipher.choose_provider();
  const HCRYPTPROV held = cipher.provider;
  EXPECT_THROW(cipher.choose_provider(), std::exception);
  EXPECT_EQ(cipher.provider, held);
  EXPECT_EQ(acquiring().size(), 1U);
}

TEST_F(TextCipherCalls, keep_a_provider_that_is_held_and_change_it_for_a_text_of_another_row) {
  TextCipher cipher(settings());
  const CString text = cipher.encrypt("a secret", "3337");
  EXPECT_EQ(cipher.decrypt(text, "3337"), "a secret");
  EXPECT_EQ(acquiring().size(), 1U);
  EXPECT_EQ(cipher.decrypt(stored(2), "3337"), "a secret");
  EXPECT_EQ(acquiring(), (Log{"acquire Enh 1 F0000000", "acquire Bas 1 F0000000"}));
  EXPECT_EQ(calls_.open_providers(), 1) << "the first was released";
  EXPECT_EQ(cipher.provider_index, 2);
}

TEST_F(TextCipherCalls, acquire_a_row_that_is_set_but_not_held) {
  TextCipher cipher(settings());
  cipher.provider_index = 0;
  EXPECT_EQ(cipher.decrypt(stored(0), "3337"), "a secret");
  EXPECT_EQ(acquiring().size(), 1U);
}

TEST_F(TextCipherCalls, raise_when_the_row_of_a_text_cannot_be_had) {
  for (const DWORD flags : {verify, with_new, with_delete})
    calls_.refuse_to_acquire(MS_DEF_PROV, flags);
  TextCipher cipher(settings());
  cipher.choose_provider();
  EXPECT_EQ(thrown([&] { cipher.decrypt(stored(2), "3337"); }), "Keyset does not exist\r\n");
  EXPECT_EQ(cipher.provider, 0U) << "the one that was held has been released";
}

/// Fails one call after the other of an operation. A call that may fail without harm is named.
template <class Operation>
void sweep(const std::vector<std::string>& harmless, const Log& expected_calls, Operation&& operation) {
  Log failed;
  for (std::size_t k = 1;; ++k) {
    for (const DWORD error : {NTE_NO_MEMORY, textless}) {
      test_support::ScriptedCryptCalls calls;
      calls.fail(k, error);
      TextCipherSettings settings;
      settings.calls = &calls;
      {
        TextCipher cipher(settings);
        const std::string what = thrown([&] { operation(cipher); });
        if (calls.calls_that_may_fail() < k) {
          EXPECT_EQ(what, "none");
          EXPECT_EQ(failed, expected_calls);
          return;
        }
        EXPECT_EQ(calls.open_hashes() + calls.open_keys(), 0) << k;
        const bool is_harmless = k <= harmless.size() && !harmless[k - 1].empty();
        EXPECT_EQ(what, is_harmless         ? "none"
                        : error == textless ? "plain"
                                            : "Insufficient memory available for the operation.\r\n")
            << k;
        if (error == textless) {
          Log log;
          for (const auto& line : calls.log())
            if (!line.starts_with("destroy")) log.push_back(line.substr(0, line.find(' ')));
          failed.push_back(log.at(k - 1));
        }
        EXPECT_EQ(is_harmless ? "none" : thrown([&] { operation(cipher); }), "none") << "after a failure of call " << k;
      }
      EXPECT_TRUE(calls.nothing_open()) << k;
    }
  }
}

// The first acquiring is tried again, and a length that cannot be asked for leaves the parameter alone.
const std::vector<std::string> harmless_calls = {"acquire", "", "", "", "", "get_key_param"};

TEST(TextCipherFailures, of_each_call_of_encrypt_raise_the_text_of_the_last_error) {
  sweep(harmless_calls,
        {"acquire", "create_hash", "hash_data", "hash_data", "derive_key", "get_key_param", "set_key_param", "encrypt",
         "encrypt"},
        [](TextCipher& cipher) { cipher.encrypt("a secret", "3337"); });
}

TEST(TextCipherFailures, of_each_call_of_decrypt_raise_the_text_of_the_last_error) {
  TextCipher writer;
  const CString text = writer.encrypt("a secret", "3337");
  sweep(harmless_calls,
        {"acquire", "create_hash", "hash_data", "hash_data", "derive_key", "get_key_param", "set_key_param", "decrypt"},
        [&](TextCipher& cipher) { cipher.decrypt(text, "3337"); });
}

// Kept: without the length the initial vector stays zero, and the text can only be read in the same way.
TEST(TextCipherFailures, of_asking_for_a_length_leave_the_parameter_as_it_is) {
  test_support::ScriptedCryptCalls calls;
  calls.on_get_key_param = [](DWORD, DWORD*) { return FALSE; };
  TextCipherSettings settings;
  settings.calls = &calls;
  TextCipher cipher(settings);
  const CString text = cipher.encrypt("a secret", "3337");
  TextCipherSettings without_iv;
  without_iv.iv_text = {};
  TextCipher other(without_iv);
  EXPECT_EQ(text, other.encrypt("a secret", "3337"));
}

}  // namespace
