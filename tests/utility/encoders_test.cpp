// Plan
//   ConvertToASCII: all bytes; counts, negative ones too; null
//   ConvertFromASCII: all pairs of characters; odd lengths; what lies behind the output
//   encode_str, decode_str: the stored form itself; keys null, empty, equal to the text, shorter and longer; white
//   space;
//     unknown letters; zero bytes; long texts; random texts there and back
//   Results that would be too long are refused before memory is asked for
#include "spcbase/utility/encoders.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstdio>
#include <random>
#include <string>

#include "spcbase/platform/system/exceptions.h"
#include "spcbase/utility/internal/stored_constants.h"

namespace {

std::string from_ascii(const std::string& text, int length) {
  std::string output(text.size() / 2 + 2, '?');
  ConvertFromASCII(text.c_str(), length, output.data());
  return output;
}

CString text_of(std::string_view bytes) { return CString(bytes); }

std::string random_bytes(std::mt19937& random, std::size_t size) {
  std::string bytes(size, '\0');
  for (char& c : bytes)
    c = static_cast<char>(random() & 0xFFU);
  return bytes;
}

TEST(ConvertToASCII, writes_00_and_FF_of_two_bytes) { EXPECT_EQ(ConvertToASCII("\x00\xFF", 2), "00FF"); }

TEST(ConvertToASCII, counts_to_the_first_zero_byte_when_the_number_is_negative) {
  EXPECT_EQ(ConvertToASCII("\x00\xFF", -1), "");
  EXPECT_EQ(ConvertToASCII("\x4A\xFF\x00\x11", -1), "4AFF");
  EXPECT_EQ(ConvertToASCII("\x4A\x00", -2147483647 - 1), "4A");
}

TEST(ConvertToASCII, writes_the_high_digit_first_in_upper_case_for_every_byte) {
  for (int code = 0; code < 256; ++code) {
    const char byte = static_cast<char>(code);
    char expected[3];
    std::snprintf(expected, sizeof expected, "%02X", static_cast<unsigned>(code));
    EXPECT_EQ(ConvertToASCII(&byte, 1), expected);
  }
}

TEST(ConvertToASCII, gives_an_empty_text_for_no_bytes) {
  EXPECT_EQ(ConvertToASCII("abc", 0), "");
  EXPECT_EQ(ConvertToASCII(nullptr, 0), "");
  EXPECT_EQ(ConvertToASCII(nullptr, -1), "");
}

TEST(ConvertToASCII, refuses_a_result_of_2_GB_before_it_asks_for_memory) {
  // Pages that nobody touches cost nothing.
  const std::size_t size = std::size_t{1} << 30;
  void* pages = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(pages, MAP_FAILED);
  bool refused = false;
  try {
    ConvertToASCII(static_cast<const char*>(pages), static_cast<int>(size));
  } catch (CMemoryException* e) {
    refused = true;
    e->Delete();
  }
  EXPECT_TRUE(refused);
  munmap(pages, size);
}

TEST(ConvertFromASCII, counts_a_lower_case_digit_as_0) { EXPECT_EQ(from_ascii("4a", 2), "\x40??"); }

TEST(ConvertFromASCII, passes_an_odd_last_character_over) { EXPECT_EQ(from_ascii("414", 3), "\x41??"); }

TEST(ConvertFromASCII, puts_no_zero_behind_the_bytes) { EXPECT_EQ(from_ascii("4142", 4), "AB??"); }

TEST(ConvertFromASCII, counts_to_the_first_zero_byte_when_the_length_is_negative) {
  EXPECT_EQ(from_ascii(std::string("41\0"
                                   "42",
                                   5),
                       -1),
            "A???");
  EXPECT_EQ(from_ascii("", -1), "??");
}

TEST(ConvertFromASCII, does_nothing_without_characters_or_output) {
  EXPECT_EQ(from_ascii("41", 0), "???");
  EXPECT_EQ(from_ascii("41", 1), "???");
  char output = '?';
  ConvertFromASCII(nullptr, -1, &output);
  EXPECT_EQ(output, '?');
  ConvertFromASCII("41", 2, nullptr);
}

// Kept: a character that is no digit is no failure either.
TEST(ConvertFromASCII, counts_every_character_but_upper_case_digits_as_0) {
  const std::string digits = "0123456789ABCDEF";
  for (int high = 0; high < 256; ++high)
    for (int low = 0; low < 256; ++low) {
      const char text[] = {static_cast<char>(high), static_cast<char>(low)};
      char byte = '?';
      ConvertFromASCII(text, 2, &byte);
      const auto value = [&](char c) {
        const auto at = digits.find(c);
        return at == std::string::npos ? std::size_t{0} : at;
      };
      ASSERT_EQ(static_cast<unsigned char>(byte), value(text[0]) * 16 + value(text[1])) << high << ", " << low;
    }
}

TEST(ConvertFromASCII, gives_back_what_ConvertToASCII_took) {
  std::mt19937 random(11);
  for (std::size_t size = 0; size < 200; ++size) {
    const std::string bytes = random_bytes(random, size);
    const CString text = ConvertToASCII(bytes.data(), static_cast<int>(size));
    EXPECT_EQ(from_ascii(text.GetString(), text.GetLength()).substr(0, size), bytes);
  }
}

// The stored form: whoever changes a constant makes every stored text unreadable.
TEST(EncodeStr, writes_the_stored_form) {
  EXPECT_EQ(encode_str("AB", ""), "LHLJ");
  EXPECT_EQ(encode_str(text_of("\x01\x23\x45\x67\x89\xAB\xCD\xEF"), ""), "GHJKLMNPQRSTVWXZ");
  EXPECT_EQ(encode_str("AB", "ab"), "JGJG");
  EXPECT_EQ(encode_str("secret", nullptr), "GJMJLGJSGGGM");
  EXPECT_EQ(decode_str("GJMJLGJSGGGM", nullptr), "secret");
}

TEST(EncodeStr, mixes_with_the_key_in_a_cycle_from_its_start) {
  EXPECT_EQ(encode_str("abcabcab", "abc"), "GGGGGGGGGGGGGGGG");
  EXPECT_EQ(encode_str("ab", "abc"), "GGGG");
}

TEST(EncodeStr, takes_the_own_key_for_a_null_one) {
  EXPECT_EQ(encode_str("a text", nullptr), encode_str("a text", stored_constants::default_key));
  EXPECT_NE(encode_str("a text", nullptr), encode_str("a text", ""));
}

TEST(EncodeStr, gives_an_empty_text_for_an_empty_one) {
  EXPECT_EQ(encode_str("", "key"), "");
  EXPECT_EQ(encode_str("", nullptr), "");
  EXPECT_EQ(encode_str(" \t\r\n", "key"), "") << "nothing but white space is cut to nothing";
}

TEST(EncodeStr, leaves_the_bytes_unmixed_with_an_empty_key) {
  EXPECT_EQ(encode_str("AB", ""), "LHLJ");
  EXPECT_EQ(decode_str("LHLJ", ""), "AB");
}

TEST(EncodeStr, cuts_just_the_white_space_that_a_text_calls_so) {
  for (int code = 0; code < 256; ++code) {
    CString text("a");
    text += static_cast<char>(code);
    CString cut(text);
    cut.TrimRight();
    EXPECT_EQ(decode_str(encode_str(text, ""), ""), cut) << code;
  }
  EXPECT_EQ(decode_str(encode_str("  two  words \t\r\n", "k"), "k"), "  two  words");
}

TEST(EncodeStr, holds_a_byte_that_is_equal_to_the_key) {
  const CString hidden = encode_str("axb", "xxx");
  EXPECT_EQ(hidden, "HRGGHS") << "the middle one is the digits 00";
  const CString clear = decode_str(hidden, "xxx");
  EXPECT_EQ(clear, "axb");
  const CString mixed = decode_str(hidden, "");
  EXPECT_EQ(mixed.GetLength(), 3);
  EXPECT_EQ(mixed.view(), std::string_view("\x19\0\x1A", 3));
}

TEST(EncodeStr, leaves_its_argument_alone) {
  const CString text("a text  ");
  encode_str(text, "k");
  EXPECT_EQ(text, "a text  ");
}

// Kept: a spoilt text counts as none, without a failure.
TEST(DecodeStr, gives_an_empty_text_for_any_other_character) {
  const std::string good = "LHLJ";
  for (int code = 0; code < 256; ++code) {
    const char c = static_cast<char>(code);
    if (stored_constants::digit_letters.find(c) != std::string_view::npos) continue;
    for (std::size_t place = 0; place < good.size(); ++place) {
      std::string text = good;
      text[place] = c;
      const bool is_cut = place + 1 == good.size() && std::string_view(" \t\n\v\f\r").find(c) != std::string_view::npos;
      EXPECT_EQ(decode_str(text_of(text), ""), is_cut ? "A" : "") << code << " at " << place;
    }
  }
  EXPECT_EQ(decode_str("lhlj", ""), "") << "a letter of lower case is another one";
  EXPECT_EQ(decode_str(" LHLJ", ""), "") << "white space at the left end is not cut";
}

TEST(DecodeStr, passes_white_space_at_the_right_end_over) { EXPECT_EQ(decode_str("LHLJ \t\r\n", ""), "AB"); }

TEST(DecodeStr, passes_an_odd_last_letter_over_and_still_wants_it_to_be_one) {
  EXPECT_EQ(decode_str("LHL", ""), "A");
  EXPECT_EQ(decode_str("L", ""), "");
  EXPECT_EQ(decode_str("LH?", ""), "");
}

TEST(DecodeStr, gives_the_text_back_but_for_white_space_at_its_right_end) {
  std::mt19937 random(20240501);
  for (int round = 0; round < 2000; ++round) {
    const CString text = text_of(random_bytes(random, random() % 64));
    std::string key = random_bytes(random, random() % 12);
    for (char& c : key)
      if (c == '\0') c = 'k';
    const char* key_text = round % 10 == 0 ? nullptr : key.c_str();
    CString cut(text);
    cut.TrimRight();
    const CString hidden = encode_str(text, key_text);
    ASSERT_EQ(hidden.GetLength(), 2 * cut.GetLength());
    ASSERT_EQ(decode_str(hidden, key_text).view(), cut.view()) << round;
  }
}

TEST(DecodeStr, takes_texts_on_both_sides_of_1025_bytes) {
  for (const std::size_t size : {1024U, 1025U, 1026U, 2050U, 100000U}) {
    const CString text = text_of(std::string(size, 'x'));
    EXPECT_EQ(decode_str(encode_str(text, "key"), "key").view(), text.view()) << size;
  }
}

TEST(DecodeStr, gives_something_else_for_another_key_but_of_the_same_length) {
  const CString hidden = encode_str("a text", "one");
  const CString other = decode_str(hidden, "two");
  EXPECT_NE(other, "a text");
  EXPECT_EQ(other.GetLength(), 6);
}

}  // namespace
