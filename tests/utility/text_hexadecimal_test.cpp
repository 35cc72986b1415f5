// Plan
// - byte_to_hex_text: the alphabet, empty and null input, a count beyond what a text can hold
// - hex_text_to_byte: odd, zero and negative lengths, null, characters of no alphabet
// - a property: bytes to text and back are the same bytes, texts of the alphabet too
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "spcbase/foundation/failure.h"
#include "spcbase/utility/text.h"

namespace {

/// The bytes of a text, with the ownership that the call hands out.
std::unique_ptr<BYTE[]> bytes_of(const char* text, int length) {
  return std::unique_ptr<BYTE[]>(hex_text_to_byte(text, length));
}

int byte_of(const char* two) { return bytes_of(two, 2)[0]; }

CString refusal_of(const char* text, int length) {
  try {
    bytes_of(text, length);
  } catch (const DBException& e) {
    return e.what();
  }
  return "";
}

TEST(ByteToHexText, of_the_byte_0xab_is_kl) {
  const BYTE byte = 0xAB;
  EXPECT_EQ(byte_to_hex_text(&byte, 1), "KL");
}

TEST(ByteToHexText, writes_0_to_9_and_k_to_p_as_is_meant) {
  const BYTE bytes[] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};
  EXPECT_EQ(byte_to_hex_text(bytes, 8), "0123456789KLMNOP");
}

TEST(ByteToHexText, no_bytes_give_an_empty_text) {
  const BYTE byte = 1;
  EXPECT_EQ(byte_to_hex_text(&byte, 0), "");
  EXPECT_EQ(byte_to_hex_text(nullptr, 0), "");
  EXPECT_EQ(byte_to_hex_text(&byte, -1), "");
  EXPECT_EQ(byte_to_hex_text(nullptr, std::numeric_limits<int>::min()), "");
}

TEST(ByteToHexText, null_bytes_that_count_are_refused) {
  try {
    byte_to_hex_text(nullptr, 1);
    FAIL();
  } catch (const DBException& e) {
    EXPECT_EQ(e.what(), "Invalid argument.");
  }
}

TEST(ByteToHexText, a_text_beyond_what_a_text_can_hold_is_refused_before_a_byte_is_read) {
  const BYTE byte = 1;
  try {
    byte_to_hex_text(&byte, std::numeric_limits<int>::max() / 2 + 1);
    FAIL();
  } catch (CMemoryException* e) {
    e->Delete();
  }
}

TEST(HexTextToByte, of_kl_is_0xab) { EXPECT_EQ(byte_of("KL"), 0xAB); }

TEST(HexTextToByte, with_length_3_gives_one_byte) {
  // No terminating zero: a sanitizer would see a third or fourth character being read.
  const auto text = std::make_unique<char[]>(3);
  std::memcpy(text.get(), "KLM", 3);
  EXPECT_EQ(bytes_of(text.get(), 3)[0], 0xAB);
  EXPECT_EQ(bytes_of(text.get(), 2)[0], 0xAB);
}

TEST(HexTextToByte, lengths_below_2_give_an_array_without_bytes) {
  for (const int length : {1, 0, -1}) {
    EXPECT_NE(bytes_of("KL", length), nullptr) << length;
    EXPECT_NE(bytes_of(nullptr, length), nullptr) << length;
  }
}

TEST(HexTextToByte, negative_lengths_and_null_texts_that_count_are_refused) {
  EXPECT_EQ(refusal_of("KL", -2), "Invalid argument.");
  EXPECT_EQ(refusal_of("KL", std::numeric_limits<int>::min()), "Invalid argument.");
  EXPECT_EQ(refusal_of(nullptr, 2), "Invalid argument.");
}

TEST(HexTextToByte, text_of_other_encoders_gives_other_bytes) {
  EXPECT_EQ(byte_of("AB"), 0x01);
  EXPECT_EQ(byte_of("0A"), 0x00);
}

TEST(HexTextToByte, what_is_not_of_the_alphabet_counts_by_the_same_rule) {
  EXPECT_EQ(byte_of("QQ"), 0x10) << "a half is 16: its bit falls out of the byte, or into the other half";
  EXPECT_EQ(byte_of("0a"), 'a' - 'A');
  EXPECT_EQ(byte_of("0/"), 0xFF) << "a character below 0 counts as -1";
  EXPECT_EQ(byte_of("0\xFF"), 0xFF - '0') << "a byte above 127 counts from 0";
  EXPECT_EQ(byte_of("0:"), static_cast<BYTE>(':' - 'A')) << "behind the 9 everything counts from A";
}

TEST(Hexadecimal, bytes_come_back_the_same) {
  std::mt19937 random(1903);
  for (int round = 0; round < 500; ++round) {
    std::vector<BYTE> bytes(1 + random() % 300);
    for (BYTE& byte : bytes)
      byte = static_cast<BYTE>(random());
    const CString text = byte_to_hex_text(bytes.data(), static_cast<int>(bytes.size()));
    ASSERT_EQ(text.GetLength(), static_cast<int>(bytes.size()) * 2);
    const auto back = bytes_of(text, text.GetLength());
    ASSERT_EQ(std::memcmp(back.get(), bytes.data(), bytes.size()), 0);
    ASSERT_EQ(byte_to_hex_text(back.get(), static_cast<int>(bytes.size())), text);
  }
}

TEST(Hexadecimal, every_byte_comes_back_the_same) {
  for (int value = 0; value < 256; ++value) {
    const auto byte = static_cast<BYTE>(value);
    const CString text = byte_to_hex_text(&byte, 1);
    EXPECT_EQ(text.SpanIncluding("0123456789KLMNOP"), text);
    EXPECT_EQ(byte_of(text), value);
  }
}

}  // namespace
