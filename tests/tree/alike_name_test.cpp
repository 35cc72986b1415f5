// Plan
//   case, white space at the ends, what names must not hold -> AlikeName.*
//   names of ASCII alone, which are compared without a copy, give what the whole rule gives -> AlikeName.random_*
#include "spcbase/tree/internal/alike_name.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "spcbase/utility/text.h"

namespace {

bool matches(const char* wanted, const CString& stored) { return AlikeName(wanted).matches(stored); }

TEST(AlikeName, passes_over_case_and_white_space_at_the_ends_of_both) {
  EXPECT_TRUE(matches("line 4", "LINE 4"));
  EXPECT_TRUE(matches("  line 4 ", "Line 4"));
  EXPECT_TRUE(matches("line 4", "  Line 4 "));
  EXPECT_TRUE(matches("\xC3\x84rger", "\xC3\xA4RGER"));
  EXPECT_TRUE(matches("\tline\n", "line"));
}

TEST(AlikeName, keeps_white_space_within) {
  EXPECT_FALSE(matches("line 4", "line  4"));
  EXPECT_FALSE(matches("line4", "line 4"));
}

TEST(AlikeName, passes_over_what_names_must_not_hold_in_the_stored_name_alone) {
  EXPECT_TRUE(matches("line", "li\tne"));
  EXPECT_TRUE(matches("line", "line\x01"));
  EXPECT_TRUE(matches("line", "\xFFline"));
  EXPECT_FALSE(matches("li\tne", "line"));
  EXPECT_FALSE(matches("li\tne", "li\tne")) << "the stored one is compared without its tab, the wanted one with it";
}

TEST(AlikeName, of_nothing_matches_what_has_nothing_left) {
  EXPECT_TRUE(matches("", ""));
  EXPECT_TRUE(matches(" ", " \t "));
  EXPECT_FALSE(matches("", "x"));
  EXPECT_FALSE(matches("x", ""));
}

TEST(AlikeName, finds_letters_of_ascii_and_others_that_are_the_same_but_for_case) {
  // The sign of the unit kelvin: its small letter is k.
  EXPECT_TRUE(matches("K", "\xE2\x84\xAA"));
  EXPECT_TRUE(matches("\xE2\x84\xAA", "k"));
}

TEST(AlikeName, random_names_match_as_the_whole_rule_has_it) {
  std::mt19937 random{11};
  const std::vector<std::string> letters = {"a",
                                            "A",
                                            "k",
                                            "K",
                                            "[",
                                            "{",
                                            "@",
                                            "`",
                                            "Z",
                                            "z",
                                            " ",
                                            " ",
                                            "\t",
                                            "\x01",
                                            "~",
                                            "\x7F",
                                            "\xC3\xA4",
                                            "\xC3\x84",
                                            "\xE2\x84\xAA",
                                            "\xC2\xA0",
                                            "\xFF"};
  int matching = 0;
  for (int i = 0; i < 200'000; ++i) {
    std::string wanted;
    std::string stored;
    for (auto k = random() % 4; k > 0; --k)
      wanted += letters[random() % letters.size()];
    for (auto k = random() % 4; k > 0; --k)
      stored += letters[random() % letters.size()];
    CString trimmed(wanted);
    trimmed.Trim();
    CString fixed = fix_spc_name(stored.c_str(), false);
    const bool same = fixed.Trim().CompareNoCase(trimmed) == 0;
    matching += same;
    ASSERT_EQ(matches(wanted.c_str(), stored.c_str()), same) << '"' << wanted << "\" and \"" << stored << '"';
  }
  EXPECT_GT(matching, 1000);
}

}  // namespace
