// Plan
// - upper and lower case of ASCII, of other letters, of letters without a partner, of ill-formed bytes
// - comparison without case: equal letters, order of the lower-case letters, lengths, ill-formed bytes
// - dictionary order; names of locales
#include "spcbase/platform/text/locale.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/hex_bytes.h"
#include "tests/support/vector_file.h"

namespace {

using platform::collate;
using platform::compare_no_case;

TEST(ToUpper, follows_unicode_one_to_one) {
  EXPECT_EQ(platform::to_upper("abc 1\u00E4\u00DF\u03C9\u0436"), "ABC 1\u00C4\u00DF\u03A9\u0416");
  EXPECT_EQ(platform::to_upper("a\xFFz"), "A\xFFZ");
}

TEST(ToLower, follows_unicode_one_to_one) {
  EXPECT_EQ(platform::to_lower("ABC 1\u00C4\u03A9\u0416"), "abc 1\u00E4\u03C9\u0436");
  EXPECT_EQ(platform::to_lower("A\xFFZ"), "a\xFFz");
}

TEST(CompareNoCase, letters_that_differ_in_case_are_equal) {
  EXPECT_EQ(compare_no_case("Line 4", "lINE 4"), 0);
  EXPECT_EQ(compare_no_case("\u00C4pfel", "\u00E4PFEL"), 0);
  EXPECT_EQ(compare_no_case("", ""), 0);
}

// Rows with bytes above 127 were recorded in another code page and are marked.
TEST(CompareNoCase, recorded_comparisons_hold) {
  using test_support::bytes_of_hex;
  int played = 0;
  for (const auto& row : test_support::read_vectors("paths.tsv")) {
    if (row["class"] != "mbsicmp-plain" || row.is_suspect()) continue;
    EXPECT_EQ(std::to_string(compare_no_case(bytes_of_hex(row["input"]), bytes_of_hex(row["input2"]))), row["result"])
        << row.place();
    ++played;
  }
  EXPECT_EQ(played, 19);
}

TEST(CompareNoCase, orders_by_lower_case_letters) {
  EXPECT_EQ(compare_no_case("abc", "ABD"), -1);
  EXPECT_EQ(compare_no_case("B", "a"), 1);
  EXPECT_EQ(compare_no_case("_", "A"), -1);
  EXPECT_EQ(compare_no_case("ab", "a"), 1);
  EXPECT_EQ(compare_no_case("", "a"), -1);
}

TEST(CompareNoCase, ill_formed_bytes_are_no_letters) {
  EXPECT_EQ(compare_no_case("\xE4", "\xE4"), 0);
  EXPECT_NE(compare_no_case("\xE4", "\u00E4"), 0);
  EXPECT_EQ(compare_no_case("\xE4", "\u00E4"), -compare_no_case("\u00E4", "\xE4"));
}

TEST(Collate, follows_the_dictionary) {
  EXPECT_EQ(collate("\u00E4", "b", false), -1);
  EXPECT_EQ(collate("z", "\u00E4", false), 1);
  EXPECT_EQ(collate("a", "A", false), -1);
  EXPECT_EQ(collate("a", "A", true), 0);
  EXPECT_EQ(collate("same", "same", false), 0);
}

TEST(CharacterClasses, know_other_languages) {
  EXPECT_TRUE(platform::is_alpha(0xE4));
  EXPECT_FALSE(platform::is_alpha('1'));
  EXPECT_TRUE(platform::is_digit('1'));
  EXPECT_TRUE(platform::is_digit(0x661));
  EXPECT_TRUE(platform::is_space(0xA0));
  EXPECT_FALSE(platform::is_space('x'));
}

TEST(Locale, default_ids_are_us_english) {
  EXPECT_EQ(platform::resolve_locale(0), 0x409U);
  EXPECT_EQ(platform::resolve_locale(0x400), 0x409U);
  EXPECT_EQ(platform::resolve_locale(0x800), 0x409U);
  EXPECT_EQ(platform::resolve_locale(0x10407), 0x407U);
}

TEST(Locale, ids_have_their_names) {
  EXPECT_EQ(platform::locale_name(0x409), "en_US");
  EXPECT_EQ(platform::locale_name(0x407), "de_DE");
  EXPECT_EQ(platform::locale_name(0x411), "ja_JP");
  EXPECT_EQ(platform::locale_name(0x7F), "");
}

}  // namespace
