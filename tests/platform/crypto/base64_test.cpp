// Plan
//   The examples of RFC 4648; every length to 200 there and back; more than one piece of OpenSSL's
//   Refused: every other character in every place, wrong lengths, padding that is missing, misplaced or too long, bits
//   behind the last byte, too little room
#include "spcbase/platform/crypto/base64.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

std::string encode(std::string_view bytes) {
  std::string text(platform::base64_length(bytes.size()), '?');
  platform::encode_base64({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()}, text.data());
  return text;
}

std::optional<std::string> decode(std::string_view text) {
  std::vector<unsigned char> bytes(platform::base64_room(text.size()));
  const auto size = platform::decode_base64(text, bytes);
  if (!size) return std::nullopt;
  return std::string(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(*size));
}

TEST(Base64, knows_the_examples_of_its_standard) {
  const std::pair<const char*, const char*> examples[] = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="},
      {"fooba", "Zm9vYmE="},
      {"foobar", "Zm9vYmFy"},
  };
  for (const auto& [bytes, text] : examples) {
    EXPECT_EQ(encode(bytes), text);
    EXPECT_EQ(decode(text), bytes);
  }
  EXPECT_EQ(encode("\xFB\xFF\xBF"), "+/+/");
}

TEST(Base64, reads_what_it_wrote_at_every_length) {
  std::mt19937 random(20240501);
  for (std::size_t size = 0; size <= 200; ++size) {
    std::string bytes(size, '\0');
    for (char& c : bytes)
      c = static_cast<char>(random() & 0xFFU);
    EXPECT_EQ(decode(encode(bytes)), bytes) << size;
  }
}

TEST(Base64, goes_beyond_the_piece_that_one_call_takes) {
  const std::size_t piece = std::size_t{3} << 20;
  std::string bytes(piece + 4, 'a');
  bytes[piece - 1] = 'b';
  bytes[piece] = 'c';
  const std::string text = encode(bytes);
  EXPECT_EQ(text.find('='), text.size() - 2);
  EXPECT_EQ(text.find('\n'), std::string::npos);
  EXPECT_TRUE(decode(text) == bytes);
}

TEST(Base64, refuses_every_other_character_in_every_place) {
  const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (int code = 0; code < 256; ++code) {
    const char c = static_cast<char>(code);
    if (alphabet.find(c) != std::string::npos) continue;
    for (std::size_t place = 0; place < 8; ++place) {
      std::string text = "AAAAAAAA";
      text[place] = c;
      const bool is_padding = c == '=' && place == 7;
      EXPECT_EQ(decode(text).has_value(), is_padding) << code << " at " << place;
    }
  }
}

TEST(Base64, refuses_texts_that_it_would_not_write) {
  for (const char* text : {"A",        "AA",    "AAA",       "AAAAA",    "AA=",      "AAA=A",    "=",     "==",
                           "===",      "====",  "A===",      "AAAA====", "AA==AAAA", "AAA=AAAA", " AAAA", "AAAA\n",
                           "AAAA\r\n", "AA AA", "AAAA AAAA", "AAA-",     "AB==",     "AAB="})
    EXPECT_EQ(decode(text), std::nullopt) << text;
}

TEST(Base64, refuses_to_write_beyond_its_room) {
  std::vector<unsigned char> bytes(5);
  EXPECT_EQ(platform::decode_base64("AAAAAAAA", bytes), std::nullopt);
}

}  // namespace
