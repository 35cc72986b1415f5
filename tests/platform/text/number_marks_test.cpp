// Plan
// - the marks of "C", of a decimal comma, of marks of several bytes
// - which characters count as a group mark
#include "spcbase/platform/text/number_marks.h"

#include <gtest/gtest.h>

#include <clocale>

#include "tests/support/number_locale.h"

namespace {

using platform::number_marks;
using platform::NumberMarks;

TEST(NumberMarks, of_the_locale_c_are_the_point_and_nothing) {
  EXPECT_EQ(number_marks().decimal, U'.');
  EXPECT_EQ(number_marks().group, U'\0');
  EXPECT_EQ(platform::decimal_mark(), ".");
}

TEST(NumberMarks, follow_the_process_locale) {
  const test_support::DecimalComma locale;
  EXPECT_EQ(number_marks().decimal, U',');
  EXPECT_EQ(number_marks().group, U'.');
  EXPECT_EQ(platform::decimal_mark(), std::localeconv()->decimal_point);
}

TEST(NumberMarks, of_several_bytes_are_one_character) {
  const test_support::ArabicMarks locale;
  EXPECT_EQ(number_marks().decimal, U'\u066B');
  EXPECT_EQ(number_marks().group, U'\u066C');
  EXPECT_EQ(platform::decimal_mark(), "\u066B");
}

TEST(IsGroup, knows_the_mark_alone) {
  EXPECT_TRUE(platform::english_marks.is_group(U','));
  EXPECT_FALSE(platform::english_marks.is_group(U'.'));
  EXPECT_FALSE(platform::english_marks.is_group(U' '));
}

TEST(IsGroup, one_space_or_apostrophe_stands_for_another) {
  const NumberMarks french{U',', U'\u202F'};
  for (const char32_t c : {U' ', U'\u00A0', U'\u2009', U'\u202F'})
    EXPECT_TRUE(french.is_group(c));
  EXPECT_FALSE(french.is_group(U'\t'));
  const NumberMarks swiss{U'.', U'\u2019'};
  EXPECT_TRUE(swiss.is_group(U'\''));
  EXPECT_TRUE(swiss.is_group(U'\u2019'));
  EXPECT_FALSE(swiss.is_group(U' '));
}

TEST(IsGroup, without_a_mark_nothing_is_one) {
  const NumberMarks none{U',', 0};
  EXPECT_FALSE(none.is_group(U'\0'));
  EXPECT_FALSE(none.is_group(U'.'));
}

}  // namespace
