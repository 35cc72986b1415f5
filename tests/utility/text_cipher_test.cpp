// Plan
//   Recorded texts of all three rows are written and read as recorded, in both readings of the salt
//   The stored form: header, Base64, another character for its padding
//   Null and empty texts and keys; round trips over random texts and keys, zero bytes among them; sizes around 1025
//   bytes Secrets are wiped Calls into the provider stand in text_cipher_provider_test.cpp, hostile texts in
//   text_cipher_hostile_test.cpp
#include "spcbase/utility/internal/text_cipher.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "spcbase/platform/crypto/base64.h"
#include "tests/support/hex_bytes.h"
#include "tests/support/kept_blocks.h"
#include "tests/support/vector_file.h"
#include "tests/utility/scripted_crypt_calls.h"

namespace {

using test_support::bytes_of_hex;

std::string from_base64(std::string_view text) {
  std::vector<unsigned char> bytes(platform::base64_room(text.size()));
  const auto size = platform::decode_base64(text, bytes);
  return size ? std::string(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(*size)) : std::string();
}

std::string random_bytes(std::mt19937& random, std::size_t size, unsigned lowest) {
  std::string bytes(size, '\0');
  for (char& c : bytes)
    c = static_cast<char>(lowest + random() % (256U - lowest));
  return bytes;
}

// Rows of the note "salt-length-0" and the public documentation agree that a key of 56 bits has no salt. The
// alternative rows show what a provider with a salt of 9 bytes would do; ours plays it for them.
TEST(TextCipher, writes_and_reads_every_recorded_text) {
  std::map<std::string, int> done;
  for (const auto& row : test_support::read_vectors("crypto.tsv")) {
    SCOPED_TRACE(row.place());
    const std::string salt = bytes_of_hex(row["salt_text"]);
    const std::string iv = bytes_of_hex(row["iv_text"]);
    const std::string key = bytes_of_hex(row["key_text"]);
    const std::string plain = bytes_of_hex(row["plain_hex"]);
    test_support::ScriptedCryptCalls calls;
    if (row["note"] == "salt-length-9 alternative") {
      calls.on_get_key_param = [](DWORD, DWORD* size) {
        *size = 9;
        return TRUE;
      };
      calls.on_set_key_param = [](HCRYPTKEY k, DWORD, const BYTE* data) {
        const CRYPT_DATA_BLOB blob{9, const_cast<BYTE*>(data)};
        return CryptSetKeyParam(k, KP_SALT_EX, reinterpret_cast<const BYTE*>(&blob), 0);
      };
    }
    TextCipherSettings settings;
    settings.salt_text = salt;
    settings.iv_text = iv;
    settings.calls = &calls;
    {
      TextCipher writer(settings);
      writer.provider_index = std::stoi(row["row"]);
      EXPECT_EQ(writer.encrypt_bytes(plain, key.c_str()), row["blob_base64"].c_str());
      TextCipher reader(settings);
      EXPECT_EQ(reader.decrypt(row["blob_base64"].c_str(), key.c_str()).view(), plain);
      EXPECT_EQ(reader.provider_index, std::stoi(row["row"]));
    }
    EXPECT_TRUE(calls.nothing_open());
    ++done[row["row"] + row["note"]];
  }
  EXPECT_EQ(done.size(), 4U) << "three rows, one of them in two readings";
}

TEST(TextCipher, has_the_constants_of_the_recorded_texts_of_class_default) {
  int done = 0;
  for (const auto& row : test_support::read_vectors("crypto.tsv")) {
    if (row["class"].find("-default-") == std::string::npos || row["note"].find("alternative") != std::string::npos)
      continue;
    SCOPED_TRACE(row.place());
    TextCipher cipher;
    const std::string key = bytes_of_hex(row["key_text"]);
    EXPECT_EQ(cipher.decrypt(row["blob_base64"].c_str(), key.c_str()).view(), bytes_of_hex(row["plain_hex"]));
    ++done;
  }
  EXPECT_GT(done, 50);
}

TEST(TextCipher, begins_without_a_provider_and_with_the_usual_padding) {
  const TextCipher cipher;
  EXPECT_EQ(cipher.provider_index, -1);
  EXPECT_EQ(cipher.provider, 0U);
  EXPECT_EQ(cipher.pad_char, '=');
}

TEST(TextCipher, writes_1_0_0_0_ahead_of_a_text_of_row_0) {
  TextCipher cipher;
  const CString text = cipher.encrypt("a secret", "3337");
  EXPECT_EQ(cipher.provider_index, 0);
  EXPECT_EQ(from_base64(text.view()).substr(0, 4), std::string("\1\0\0\0", 4));
}

TEST(TextCipher, writes_its_version_and_the_row_in_two_bytes_each) {
  for (const char index : {'\0', '\1', '\2'}) {
    TextCipher cipher;
    cipher.provider_index = index;
    const std::string header = from_base64(cipher.encrypt("a secret", "3337").view()).substr(0, 4);
    EXPECT_EQ(header, (std::string{'\1', '\0', index, '\0'}));
  }
}

TEST(TextCipher, writes_base64_without_line_breaks) {
  TextCipher cipher;
  const CString text = cipher.encrypt(std::string(5000, 'x').c_str(), "3337");
  EXPECT_EQ(text.SpanIncluding("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/="), text);
}

TEST(TextCipher, gives_an_empty_text_for_null_and_empty_ones_without_a_provider) {
  test_support::ScriptedCryptCalls calls;
  TextCipherSettings settings;
  settings.calls = &calls;
  TextCipher cipher(settings);
  EXPECT_EQ(cipher.encrypt(nullptr, "k"), "");
  EXPECT_EQ(cipher.encrypt("", "k"), "");
  EXPECT_EQ(cipher.decrypt(nullptr, "k"), "");
  EXPECT_EQ(cipher.decrypt("", "k"), "");
  EXPECT_TRUE(calls.log().empty());
}

TEST(TextCipher, takes_a_null_key_for_an_empty_one) {
  TextCipher cipher;
  const CString text = cipher.encrypt("a secret", nullptr);
  EXPECT_EQ(text, cipher.encrypt("a secret", ""));
  EXPECT_EQ(cipher.decrypt(text, nullptr), "a secret");
}

TEST(TextCipher, reads_what_it_wrote_for_random_texts_and_keys) {
  std::mt19937 random(20240502);
  for (int round = 0; round < 600; ++round) {
    const std::string text = random_bytes(random, 1 + random() % 300, 1);
    const std::string key = random_bytes(random, random() % 40, 1);
    TextCipher writer;
    writer.provider_index = round % 3;
    const CString stored = writer.encrypt(text.c_str(), key.c_str());
    TextCipher reader;
    ASSERT_EQ(reader.decrypt(stored, key.c_str()).view(), text) << round;
  }
}

TEST(TextCipher, reads_zero_bytes_inside_a_text) {
  std::mt19937 random(20240503);
  for (int round = 0; round < 100; ++round) {
    const std::string text = random_bytes(random, 1 + random() % 300, 0);
    TextCipher cipher;
    cipher.provider_index = round % 3;
    ASSERT_EQ(cipher.decrypt(cipher.encrypt_bytes(text, "3337"), "3337").view(), text) << round;
  }
  TextCipher cipher;
  EXPECT_EQ(cipher.encrypt("ab\0cd", "k"), cipher.encrypt("ab", "k")) << "a plain text ends at its zero";
}

TEST(TextCipher, takes_texts_on_both_sides_of_1025_bytes) {
  for (std::size_t size = 1010; size < 1035; ++size) {
    TextCipher cipher;
    const std::string text(size, 'x');
    EXPECT_EQ(cipher.decrypt(cipher.encrypt(text.c_str(), "k"), "k").view(), text) << size;
  }
}

TEST(TextCipher, writes_another_character_for_the_padding_when_asked_to) {
  for (const char* text : {"a secret", "a longer secret..", "a secret of 24 bytes...."}) {
    TextCipher usual;
    const CString stored = usual.encrypt(text, "k");
    CString expected(stored);
    expected.Replace('=', '-');
    TextCipher cipher;
    cipher.pad_char = '-';
    EXPECT_EQ(cipher.encrypt(text, "k"), expected);
    TextCipher reader;
    reader.pad_char = '-';
    EXPECT_EQ(reader.decrypt(expected, "k"), text);
    EXPECT_EQ(reader.decrypt(stored, "k"), text) << "the usual padding is read all the same";
  }
}

TEST(TextCipher, gives_the_same_text_for_the_same_secret_and_key) {
  TextCipher one;
  TextCipher two;
  EXPECT_EQ(one.encrypt("a secret", "3337"), two.encrypt("a secret", "3337"));
  EXPECT_NE(one.encrypt("a secret", "3337"), one.encrypt("a secret", "3338"));
}

TEST(TextCipher, asks_for_no_memory_of_its_own_for_a_short_secret) {
  test_support::KeptBlocks memory;
  TextCipherSettings settings;
  settings.memory = &memory;
  TextCipher cipher(settings);
  const std::string text(1013, 'x');  // with padding and header 1020 bytes, of its text form 1021
  EXPECT_EQ(cipher.decrypt(cipher.encrypt(text.c_str(), "k"), "k").view(), text);
  EXPECT_TRUE(memory.sizes().empty());
}

TEST(TextCipher, wipes_the_memory_that_a_long_secret_stood_in) {
  test_support::KeptBlocks memory;
  TextCipherSettings settings;
  settings.memory = &memory;
  TextCipher cipher(settings);
  const std::string text(5000, 'x');
  const CString stored = cipher.encrypt(text.c_str(), "k");
  EXPECT_EQ(memory.sizes().size(), 1U);
  EXPECT_EQ(cipher.decrypt(stored, "k").view(), text);
  EXPECT_EQ(memory.sizes().size(), 2U);
  EXPECT_TRUE(memory.all_wiped());
}

TEST(TextCipher, wipes_the_memory_also_when_a_call_fails) {
  test_support::ScriptedCryptCalls calls;
  test_support::KeptBlocks memory;
  TextCipherSettings settings;
  settings.calls = &calls;
  settings.memory = &memory;
  TextCipher cipher(settings);
  const std::string text(5000, 'x');
  cipher.encrypt(text.c_str(), "k");
  const std::size_t once = calls.calls_that_may_fail();
  calls.fail(once + once - 1, NTE_FAIL);  // the last of the second round, which needs no provider: encrypt in place
  EXPECT_THROW(cipher.encrypt(text.c_str(), "k"), std::exception);
  EXPECT_EQ(calls.log().at(calls.log().size() - 3), "encrypt");
  EXPECT_EQ(memory.sizes().size(), 2U) << "the clear text stood in it when the call failed";
  EXPECT_TRUE(memory.all_wiped());
}

}  // namespace
