// Plan
//   Texts that are not Base64, too short, of another version or row; ciphertexts that were cut or tampered with
//   Wrong keys
//   Texts of 100 MB; sizes of 2 GB and near 4 GB are refused before memory is asked for
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <random>
#include <stdexcept>
#include <string>

#include "spcbase/platform/crypto/base64.h"
#include "spcbase/utility/internal/text_cipher.h"
#include "tests/support/kept_blocks.h"

namespace {

CString base64_of(std::string_view bytes) {
  CString text;
  char* target = text.GetBufferSetLength(static_cast<int>(platform::base64_length(bytes.size())));
  platform::encode_base64({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()}, target);
  return text;
}

/// The text form of a header and a ciphertext.
CString stored(unsigned version, unsigned row, std::string_view ciphertext) {
  std::string bytes = {static_cast<char>(version), static_cast<char>(version >> 8U), static_cast<char>(row),
                       static_cast<char>(row >> 8U)};
  return base64_of(bytes.append(ciphertext));
}

CString decrypt(const char* text) {
  TextCipher cipher;
  return cipher.decrypt(text, "3337");
}

/// What a text is refused with; "read" when it is not.
std::string refusal(const char* text) {
  try {
    decrypt(text);
  } catch (const std::exception& e) {
    return e.what();
  }
  return "read";
}

TEST(TextCipherDecrypt, raises_for_a_version_of_2) {
  EXPECT_THROW(decrypt(stored(2, 0, "8 bytes!")), std::exception);
  for (const unsigned version : {0U, 2U, 3U, 0x0101U, 0x0100U, 0xFFFFU})
    EXPECT_EQ(refusal(stored(version, 0, "8 bytes!")), "The enciphered text has an unknown format.") << version;
}

TEST(TextCipherDecrypt, raises_for_a_row_above_2) {
  for (const unsigned row : {3U, 4U, 255U, 256U, 0x8000U, 0xFFFFU})
    EXPECT_EQ(refusal(stored(1, row, "8 bytes!")), "There is no such provider of ciphers.") << row;
}

TEST(TextCipherDecrypt, looks_at_the_version_before_the_row) {
  EXPECT_EQ(refusal(stored(2, 3, "8 bytes!")), "The enciphered text has an unknown format.");
}

TEST(TextCipherDecrypt, raises_for_what_is_not_base64) {
  TextCipher cipher;
  const CString good = cipher.encrypt("a secret", "3337");
  ASSERT_EQ(good.GetLength(), 28);
  for (int length = 1; length < good.GetLength(); ++length)
    EXPECT_NE(refusal(good.Left(length)), "read") << length;
  for (const char* text : {"?", "=", "====", "no base64 at all", "AQAA\nAAA", " AQAAAAA", "AQAAAA==\r\n",
                           "\xC3\xA4"
                           "AA"})
    EXPECT_EQ(refusal(text), "The text is not an enciphered one.") << text;
  EXPECT_EQ(refusal(good + "\n"), "The text is not an enciphered one.");
}

TEST(TextCipherDecrypt, raises_for_less_than_a_header) {
  for (const std::string_view bytes : {std::string_view("\1", 1), std::string_view("\1\0\0", 3)})
    EXPECT_EQ(refusal(base64_of(bytes)), "The text is not an enciphered one.");
}

TEST(TextCipherDecrypt, raises_for_a_header_alone_where_a_block_must_follow) {
  EXPECT_EQ(refusal(stored(1, 0, "")), "Bad Data.\r\n");
  EXPECT_EQ(refusal(stored(1, 1, "")), "Bad Data.\r\n");
  EXPECT_EQ(decrypt(stored(1, 2, "")), "") << "a stream cipher has no blocks";
}

TEST(TextCipherDecrypt, raises_for_a_ciphertext_of_no_whole_block) {
  for (const std::size_t size : {1U, 7U, 9U, 15U, 17U})
    EXPECT_EQ(refusal(stored(1, 0, std::string(size, 'x'))), "Bad Data.\r\n") << size;
}

TEST(TextCipherDecrypt, raises_for_wrong_padding) {
  EXPECT_EQ(refusal(stored(1, 0, "8 bytes!")), "Bad Data.\r\n");
  EXPECT_EQ(refusal(stored(1, 1, "16 bytes, or so.")), "Bad Data.\r\n");
}

TEST(TextCipherDecrypt, raises_or_gives_another_text_for_another_key) {
  TextCipher cipher;
  const CString text = cipher.encrypt("a secret", "3337");
  int refused = 0;
  for (int key = 0; key < 300; ++key) {
    const std::string key_text = std::to_string(key);
    try {
      EXPECT_NE(cipher.decrypt(text, key_text.c_str()), "a secret");
    } catch (const std::runtime_error&) {
      ++refused;
    }
  }
  EXPECT_GT(refused, 280) << "about one key in 256 happens to give a padding";
}

TEST(TextCipherDecrypt, gives_a_text_or_raises_for_random_bytes_behind_a_good_header) {
  std::mt19937 random(20240504);
  int read = 0;
  for (int round = 0; round < 3000; ++round) {
    std::string bytes(random() % 40, '\0');
    for (char& c : bytes)
      c = static_cast<char>(random() & 0xFFU);
    const std::string what = refusal(stored(1, static_cast<unsigned>(random() % 3), bytes));
    EXPECT_TRUE(what == "read" || what == "Bad Data.\r\n") << what;
    read += what == "read";
  }
  EXPECT_GT(read, 900) << "a stream cipher reads everything";
}

TEST(TextCipherDecrypt, works_on_after_a_hostile_text) {
  TextCipher cipher;
  const CString good = cipher.encrypt("a secret", "3337");
  EXPECT_THROW(cipher.decrypt("?", "3337"), std::exception);
  EXPECT_THROW(cipher.decrypt(stored(1, 1, "8 bytes!"), "3337"), std::exception);
  EXPECT_EQ(cipher.decrypt(good, "3337"), "a secret");
}

TEST(TextCipherLarge, text_of_100_MB_goes_there_and_back) {
  const std::string text(100U << 20U, 'x');
  TextCipher cipher;
  cipher.provider_index = 2;  // the quicker one
  const CString stored_text = cipher.encrypt(text.c_str(), "3337");
  EXPECT_EQ(stored_text.view().size(), platform::base64_length(text.size() + 4));
  EXPECT_TRUE(cipher.decrypt(stored_text, "3337").view() == text);
}

TEST(TextCipherLarge, hostile_text_of_100_MB_is_refused) {
  EXPECT_EQ(refusal(std::string(100U << 20U, 'A').c_str()), "The enciphered text has an unknown format.");
  EXPECT_EQ(refusal(std::string((100U << 20U) + 1, 'A').c_str()), "The text is not an enciphered one.");
  EXPECT_EQ(refusal(std::string(100U << 20U, '=').c_str()), "The text is not an enciphered one.");
}

/// A text of any length in little memory: the same pages again and again. Zero pages follow it.
class RepeatedText {
 public:
  explicit RepeatedText(std::size_t length) : length_(length), mapped_((length / piece + 2) * piece) {
    const int file = memfd_create("text", 0);
    EXPECT_EQ(ftruncate(file, piece), 0);
    void* first = mmap(nullptr, piece, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    std::memset(first, 'A', piece);
    munmap(first, piece);
    base_ = static_cast<char*>(
        mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
    for (std::size_t at = 0; at < length / piece * piece; at += piece)
      EXPECT_NE(mmap(base_ + at, piece, PROT_READ, MAP_SHARED | MAP_FIXED, file, 0), MAP_FAILED);
    std::memset(base_ + length / piece * piece, 'A', length % piece);
    close(file);
  }
  ~RepeatedText() { munmap(base_, mapped_); }
  RepeatedText(const RepeatedText&) = delete;
  RepeatedText& operator=(const RepeatedText&) = delete;

  const char* get() const { return base_; }
  std::string_view view() const { return {base_, length_}; }

 private:
  static constexpr std::size_t piece = std::size_t{16} << 20;
  std::size_t length_;
  std::size_t mapped_;
  char* base_ = nullptr;
};

TEST(TextCipherLarge, sizes_near_4_GB_are_refused_before_memory_is_asked_for) {
  test_support::KeptBlocks memory;
  TextCipherSettings settings;
  settings.memory = &memory;
  TextCipher cipher(settings);
  const RepeatedText text(0xFFFFFFF0U);
  EXPECT_THROW(cipher.encrypt(text.get(), "3337"), std::length_error);
  EXPECT_THROW(cipher.decrypt(text.get(), "3337"), std::length_error);
  EXPECT_THROW(cipher.encrypt("a secret", text.get()), std::length_error);
  for (const std::size_t size : {std::size_t{0xFFFFFFFF}, std::size_t{0x100000000}, std::size_t{0x80000000}})
    EXPECT_THROW(cipher.encrypt_bytes({text.get(), size}, "3337"), std::length_error) << size;
  EXPECT_TRUE(memory.sizes().empty());
}

TEST(TextCipherLarge, first_text_whose_form_would_reach_2_GB_is_refused) {
  test_support::KeptBlocks memory;
  TextCipherSettings settings;
  settings.memory = &memory;
  TextCipher cipher(settings);
  const RepeatedText text(0x60000000U);
  EXPECT_THROW(cipher.encrypt_bytes(text.view(), "3337"), std::length_error);
  EXPECT_TRUE(memory.sizes().empty());
}

}  // namespace
