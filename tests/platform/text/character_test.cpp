// Plan
// - the recorded rows of stepping and of classes, by byte
// - stepping over multi-byte characters, ill-formed bytes, cut characters, the end
// - classes beyond ASCII: spaces that part words and that do not, joiners, separators, letters, what is no character
// - bytes: as the C library has them, and nothing above 127
#include "spcbase/platform/text/character.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "tests/support/hex_bytes.h"
#include "tests/support/vector_file.h"

namespace {

unsigned int number_at(const char* text) { return _mbsnextc(reinterpret_cast<const unsigned char*>(text)); }

// The suspect rows have the classes of single bytes above 127 in the C locale of a code page of one byte. The documents
// say that the classes follow the code page in use; ours is UTF-8, where such a byte alone is no character. Rows of
// stepping backwards are left out: nothing here steps backwards.
TEST(Characters, recorded_steps_and_classes_hold) {
  int steps = 0;
  int classes = 0;
  for (const auto& row : test_support::read_vectors("paths.tsv")) {
    if (row.is_suspect()) continue;
    SCOPED_TRACE(row.place());
    if (row["class"] == "charnext") {
      const std::string text = test_support::bytes_of_hex(row["input"]);
      EXPECT_EQ(std::to_string(CharNextA(text.c_str()) - text.c_str()), row["result"]);
      ++steps;
    } else if (row["class"] == "mbclass") {
      const std::string name = "isspace of byte ";
      const auto byte = std::stoul(row["function"].substr(row["function"].find(name) + name.size()));
      const auto c = static_cast<unsigned int>(byte);
      const auto digit = [](bool value) { return value ? "1" : "0"; };
      EXPECT_EQ(std::string(digit(_ismbcspace(c) != 0)) + ',' + digit(_ismbcprint(c) != 0) + ',' +
                    digit(platform::is_space_byte(static_cast<char>(byte))),
                row["result"]);
      ++classes;
    }
  }
  EXPECT_EQ(steps, 4);
  EXPECT_EQ(classes, 23);
}

TEST(CharNextA, takes_a_multi_byte_character_in_one_step) {
  const std::string text = "a\u00E4\u20AC\U0001F600!";
  const char* at = text.c_str();
  for (const int length : {1, 2, 3, 4, 1}) {
    const char* const next = CharNextA(at);
    EXPECT_EQ(next - at, length);
    at = next;
  }
  EXPECT_EQ(CharNextA(at), at) << "it stays at the end";
}

TEST(CharNextA, an_ill_formed_byte_is_a_step_and_no_step_passes_the_end) {
  for (const char* text : {"\xE4", "\xF0\x9F\x98", "\xC3", "\x80\x80", "\xED\xA0\x80", "\xFF"})
    EXPECT_EQ(CharNextA(text), text + 1);
}

TEST(Mbsnextc, gives_the_code_point_and_marks_what_is_none) {
  EXPECT_EQ(number_at("\u20ACx"), 0x20ACU);
  EXPECT_EQ(number_at("A"), 0x41U);
  EXPECT_EQ(number_at(""), 0U);
  EXPECT_EQ(number_at("\xE4 b"), 0xFFFFFFE4U);
  EXPECT_EQ(_ismbcspace(0xFFFFFF85U), 0);
  EXPECT_EQ(_ismbcprint(0xFFFFFFE4U), 0);
}

TEST(Ismbcspace, knows_the_spaces_that_part_words) {
  for (const unsigned int c : {0x09U, 0x0DU, 0x20U, 0x85U, 0x1680U, 0x2003U, 0x2028U, 0x3000U})
    EXPECT_NE(_ismbcspace(c), 0) << c;
  for (const unsigned int c : {0x0U, 0x1CU, 0xA0U, 0x2007U, 0x202FU, 0x200BU, 0xE4U, 0x110000U})
    EXPECT_EQ(_ismbcspace(c), 0) << c;
}

TEST(Ismbcprint, knows_what_can_be_shown) {
  for (const unsigned int c : {0x20U, 0xA0U, 0xE4U, 0x4E00U, 0x301U, 0x200CU, 0x200DU, 0xFE0FU, 0x1F600U})
    EXPECT_NE(_ismbcprint(c), 0) << c;
  for (const unsigned int c :
       {0x0U, 0x0AU, 0x7FU, 0x85U, 0xADU, 0x2028U, 0x2029U, 0x202EU, 0xFEFFU, 0xD800U, 0xE000U, 0xFFFFU, 0x110000U})
    EXPECT_EQ(_ismbcprint(c), 0) << c;
}

TEST(ByteClasses, are_those_of_the_c_library_below_128_and_empty_above) {
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    EXPECT_EQ(platform::is_space_byte(c), byte < 128 && std::isspace(byte) != 0) << byte;
    EXPECT_EQ(platform::is_digit_byte(c), byte < 128 && std::isdigit(byte) != 0) << byte;
  }
}

}  // namespace
