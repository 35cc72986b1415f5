// Plan
//   Every recorded row enciphers and deciphers as recorded, call by call; rows of both readings of the salt
//   Sizes: the question for the size, buffers that are too small, padding at every length, texts of 2 GB and more
//   Refusals of both directions; ciphertexts that were tampered with; a key serves many texts
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

#include "spcbase/platform/crypto/provider.h"
#include "spcbase/platform/system/system_error.h"
#include "tests/support/hex_bytes.h"
#include "tests/support/vector_file.h"

namespace {

const BYTE* bytes_of(const std::string& text) { return reinterpret_cast<const BYTE*>(text.data()); }
BYTE* bytes_of(std::string& text) { return reinterpret_cast<BYTE*>(text.data()); }

/// A provider with one key, by the calls that a reader of old texts makes.
class KeyOfText {
 public:
  KeyOfText(const char16_t* name, ALG_ID algorithm, DWORD bits, const std::string& hashed) {
    EXPECT_TRUE(CryptAcquireContextW(&provider_, nullptr, name, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT));
    EXPECT_TRUE(CryptCreateHash(provider_, CALG_SHA1, 0, 0, &hash_));
    EXPECT_TRUE(CryptHashData(hash_, bytes_of(hashed), static_cast<DWORD>(hashed.size()), 0));
    EXPECT_TRUE(CryptDeriveKey(provider_, algorithm, hash_, bits << 16U, &key_));
  }
  ~KeyOfText() {
    EXPECT_TRUE(CryptDestroyKey(key_));
    EXPECT_TRUE(CryptDestroyHash(hash_));
    EXPECT_TRUE(CryptReleaseContext(provider_, 0));
  }
  KeyOfText(const KeyOfText&) = delete;
  KeyOfText& operator=(const KeyOfText&) = delete;

  HCRYPTKEY get() const { return key_; }

  std::string encrypt(const std::string& text) const {
    auto size = static_cast<DWORD>(text.size());
    EXPECT_TRUE(CryptEncrypt(key_, 0, TRUE, 0, nullptr, &size, 0));
    std::string buffer = text;
    buffer.resize(size);
    auto length = static_cast<DWORD>(text.size());
    EXPECT_TRUE(CryptEncrypt(key_, 0, TRUE, 0, bytes_of(buffer), &length, size)) << GetLastError();
    EXPECT_EQ(length, size);
    return buffer;
  }
  /// The text; nothing with the last error when it fails.
  std::optional<std::string> decrypt(std::string text) const {
    auto size = static_cast<DWORD>(text.size());
    SetLastError(0);
    if (!CryptDecrypt(key_, 0, TRUE, 0, bytes_of(text), &size)) return std::nullopt;
    return text.substr(0, size);
  }

 private:
  HCRYPTPROV provider_ = 0;
  HCRYPTHASH hash_ = 0;
  HCRYPTKEY key_ = 0;
};

struct Row {
  const char16_t* name;
  ALG_ID algorithm;
  DWORD bits;
};
constexpr Row rows[] = {
    {MS_ENHANCED_PROV, CALG_3DES, 168}, {MS_STRONG_PROV, CALG_3DES, 168}, {MS_DEF_PROV, CALG_RC4, 56}};

// The public documentation of salt values has salt for keys of exactly 40 bits only, so a key of 56 bits has none; the
// rows "row2salted" are the other reading, which only a caller that sets a salt of its own gets.
void set_salt(const KeyOfText& key, std::string salt) {
  const CRYPT_DATA_BLOB blob{static_cast<DWORD>(salt.size()), bytes_of(salt)};
  ASSERT_TRUE(CryptSetKeyParam(key.get(), KP_SALT_EX, reinterpret_cast<const BYTE*>(&blob), 0));
}

TEST(Cipher, does_every_recorded_row_as_recorded) {
  std::map<std::string, int> done;
  for (const auto& row : test_support::read_vectors("crypto.tsv")) {
    SCOPED_TRACE(row.place());
    const int index = std::stoi(row["row"]);
    const std::string salt = test_support::bytes_of_hex(row["salt_text"]);
    const std::string iv = test_support::bytes_of_hex(row["iv_text"]);
    const bool is_block_cipher = index != 2;
    const KeyOfText key(rows[index].name, rows[index].algorithm, rows[index].bits,
                        (is_block_cipher ? salt : "") + test_support::bytes_of_hex(row["key_text"]));
    if (is_block_cipher) {
      ASSERT_TRUE(CryptSetKeyParam(key.get(), KP_IV, bytes_of(iv), 0));
    }
    const bool is_salted = row["note"] == "salt-length-9 alternative";
    if (is_salted) set_salt(key, salt.substr(0, 9));
    const std::string plain = test_support::bytes_of_hex(row["plain_hex"]);
    EXPECT_EQ(test_support::hex_of(key.encrypt(plain)), row["cipher_hex"]);
    EXPECT_EQ(key.decrypt(test_support::bytes_of_hex(row["cipher_hex"])), plain);
    ++done[row["row"] + (is_salted ? " salted" : "")];
  }
  EXPECT_EQ(done.size(), 4U);
  for (const auto& [kind, count] : done)
    EXPECT_GT(count, 5) << kind;
}

TEST(Cipher, appends_the_salt_to_a_short_key) {
  // A key of 40 bits with its 11 zero bytes is the key of 128 bits that begins with them.
  const KeyOfText plain_salt(MS_DEF_PROV, CALG_RC4, 40, "key");
  const KeyOfText own_salt(MS_DEF_PROV, CALG_RC4, 40, "key");
  ASSERT_TRUE(CryptSetKeyParam(own_salt.get(), KP_SALT, bytes_of("eleven byte"), 0));
  const KeyOfText none(MS_ENHANCED_PROV, CALG_RC4, 40, "key");
  const std::string text = "a text";
  EXPECT_NE(plain_salt.encrypt(text), none.encrypt(text)) << "zeros are salt too";
  EXPECT_NE(plain_salt.encrypt(text), own_salt.encrypt(text));
  set_salt(none, "eleven byte");
  EXPECT_EQ(none.encrypt(text), own_salt.encrypt(text));
}

TEST(Cipher, serves_many_texts_each_from_the_same_beginning) {
  for (const Row& row : rows) {
    const KeyOfText key(row.name, row.algorithm, row.bits, "key");
    const std::string first = key.encrypt("the same text");
    EXPECT_EQ(key.encrypt("another"), key.encrypt("another"));
    EXPECT_EQ(key.encrypt("the same text"), first);
    EXPECT_EQ(key.decrypt(first), "the same text");
    EXPECT_EQ(key.decrypt(first), "the same text");
  }
}

TEST(Cipher, pads_to_whole_blocks_by_1_to_8_bytes) {
  const KeyOfText key(MS_ENHANCED_PROV, CALG_3DES, 168, "key");
  for (std::size_t size = 0; size < 50; ++size) {
    const std::string text(size, 'x');
    const std::string cipher = key.encrypt(text);
    EXPECT_EQ(cipher.size(), (size / 8 + 1) * 8);
    EXPECT_EQ(key.decrypt(cipher), text);
  }
}

TEST(Cipher, keeps_the_length_with_a_stream_cipher) {
  const KeyOfText key(MS_DEF_PROV, CALG_RC4, 56, "key");
  for (std::size_t size = 0; size < 50; ++size) {
    const std::string cipher = key.encrypt(std::string(size, 'x'));
    EXPECT_EQ(cipher.size(), size);
    EXPECT_EQ(key.decrypt(cipher), std::string(size, 'x'));
  }
}

TEST(Cipher, tells_the_size_that_a_buffer_lacks) {
  const KeyOfText key(MS_ENHANCED_PROV, CALG_3DES, 168, "key");
  BYTE data[16] = "seven..";
  DWORD size = 7;
  EXPECT_FALSE(CryptEncrypt(key.get(), 0, TRUE, 0, data, &size, 7));
  EXPECT_EQ(GetLastError(), ERROR_MORE_DATA);
  EXPECT_EQ(size, 8U);
  EXPECT_STREQ(reinterpret_cast<char*>(data), "seven..");
}

TEST(Cipher, refuses_sizes_from_2_GB_on_before_it_looks_at_the_bytes) {
  const KeyOfText key(MS_ENHANCED_PROV, CALG_3DES, 168, "key");
  BYTE data[16] = {};
  for (const DWORD wanted : {0x7FFFFFF8U, 0x80000000U, 0xFFFFFFF8U, 0xFFFFFFFFU}) {
    DWORD size = wanted;
    EXPECT_FALSE(CryptEncrypt(key.get(), 0, TRUE, 0, nullptr, &size, 0));
    EXPECT_EQ(GetLastError(), NTE_BAD_LEN);
    EXPECT_FALSE(CryptEncrypt(key.get(), 0, TRUE, 0, data, &size, 0xFFFFFFFFU));
    EXPECT_EQ(GetLastError(), NTE_BAD_LEN);
    EXPECT_FALSE(CryptDecrypt(key.get(), 0, TRUE, 0, data, &size));
    EXPECT_EQ(GetLastError(), NTE_BAD_LEN);
    EXPECT_EQ(size, wanted);
  }
  DWORD size = 0x7FFFFFF7U;
  EXPECT_TRUE(CryptEncrypt(key.get(), 0, TRUE, 0, nullptr, &size, 0));
  EXPECT_EQ(size, 0x7FFFFFF8U);
}

TEST(Cipher, refuses_what_it_does_not_do) {
  const KeyOfText key(MS_ENHANCED_PROV, CALG_3DES, 168, "key");
  BYTE data[16] = {};
  DWORD size = 8;
  const auto refusals = [&](HCRYPTHASH hash, BOOL final, DWORD flags, BYTE* bytes, DWORD* length) {
    SetLastError(0);
    EXPECT_FALSE(CryptEncrypt(key.get(), hash, final, flags, bytes, length, 16));
    const DWORD first = GetLastError();
    SetLastError(0);
    EXPECT_FALSE(CryptDecrypt(key.get(), hash, final, flags, bytes, length));
    EXPECT_EQ(GetLastError(), first);
    return first;
  };
  EXPECT_EQ(refusals(1, TRUE, 0, data, &size), NTE_BAD_HASH);
  EXPECT_EQ(refusals(0, TRUE, 1, data, &size), NTE_BAD_FLAGS);
  EXPECT_EQ(refusals(0, FALSE, 0, data, &size), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(refusals(0, TRUE, 0, data, nullptr), ERROR_INVALID_PARAMETER);
  EXPECT_FALSE(CryptDecrypt(key.get(), 0, TRUE, 0, nullptr, &size));
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST(Cipher, calls_a_ciphertext_of_no_whole_block_bad_data) {
  const KeyOfText key(MS_ENHANCED_PROV, CALG_3DES, 168, "key");
  for (const std::size_t size : {0U, 1U, 7U, 9U, 15U}) {
    EXPECT_EQ(key.decrypt(std::string(size, 'x')), std::nullopt) << size;
    EXPECT_EQ(GetLastError(), NTE_BAD_DATA);
  }
}

TEST(Cipher, calls_wrong_padding_bad_data) {
  const KeyOfText key(MS_ENHANCED_PROV, CALG_3DES, 168, "key");
  const std::string cipher = key.encrypt("a text of two blocks");
  int refused = 0;
  for (int bit = 0; bit < 64; ++bit) {
    std::string tampered = cipher;
    // A bit of the block before the last one turns the same bit of the last text block, its padding of 4 bytes too.
    const std::size_t at = 8 + static_cast<std::size_t>(bit) / 8;
    tampered[at] = static_cast<char>(tampered[at] ^ (1 << (bit % 8)));
    if (key.decrypt(tampered)) continue;
    EXPECT_EQ(GetLastError(), NTE_BAD_DATA);
    ++refused;
  }
  EXPECT_EQ(refused, 32);
  EXPECT_EQ(key.decrypt(cipher.substr(0, 8)), std::nullopt) << "a cut text ends in no padding";
}

}  // namespace
