// Plan
// - double_to_eng: zeros, signs, sizes, what is no finite number; eng_to_double: beginnings of texts, hostile texts
// - a property: double to text and back is the same double wherever 20 decimal places can hold it
// - is_int_str: signs, bytes above 127, numbers beyond int, null; IsNumericString: the forms, failures, null
// - the table helpers are asked (their own tests are in tests/companion); other locales: text_locale_test.cpp
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <string>

#include "spcbase/utility/text.h"

namespace {

TEST(DoubleToEng, of_1_5_ends_in_1_5_with_no_zeros_after_it) { EXPECT_EQ(double_to_eng(1.5), "1.5"); }

TEST(DoubleToEng, of_2_gives_2_0) {
  EXPECT_EQ(double_to_eng(2.0), "2.0");
  EXPECT_EQ(double_to_eng(100.0), "100.0") << "zeros before the point stay";
}

TEST(DoubleToEng, writes_20_places) {
  EXPECT_EQ(double_to_eng(0.1), "0.10000000000000000555");
  EXPECT_EQ(double_to_eng(-1234.0625), "-1234.0625");
  EXPECT_EQ(double_to_eng(0.0), "0.0");
  EXPECT_EQ(double_to_eng(-0.0), "-0.0");
  EXPECT_EQ(double_to_eng(1e-20), "0.00000000000000000001");
  EXPECT_EQ(double_to_eng(1e-21), "0.0");
}

TEST(DoubleToEng, of_the_largest_numbers_has_every_digit) {
  const CString text = double_to_eng(1e308);
  EXPECT_EQ(text.GetLength(), 309 + 2);
  EXPECT_EQ(text.Left(17), "10000000000000000");
  EXPECT_EQ(text.Right(2), ".0");
  EXPECT_EQ(eng_to_double(text), 1e308);
  EXPECT_EQ(eng_to_double(double_to_eng(-std::numeric_limits<double>::max())), -std::numeric_limits<double>::max());
}

TEST(DoubleToEng, of_what_is_no_finite_number_is_what_the_format_gives) {
  EXPECT_EQ(double_to_eng(std::numeric_limits<double>::infinity()), "inf");
  EXPECT_EQ(double_to_eng(-std::numeric_limits<double>::infinity()), "-inf");
  EXPECT_EQ(double_to_eng(std::copysign(std::nan(""), 1.0)), "nan");
  EXPECT_EQ(double_to_eng(std::copysign(std::nan(""), -1.0)), "-nan");
}

TEST(EngToDouble, reads_the_number_at_the_beginning) {
  EXPECT_EQ(eng_to_double("1.5"), 1.5);
  EXPECT_EQ(eng_to_double("  -2.25e1 mm"), -22.5);
  EXPECT_EQ(eng_to_double("1.2.3"), 1.2);
  EXPECT_EQ(eng_to_double("1,5"), 1.0);
}

TEST(EngToDouble, of_no_number_is_zero) {
  for (const char* text : {"", " ", "mm", ".", "-", "\xFF\xFE"})
    EXPECT_EQ(eng_to_double(text), 0.0) << text;
  EXPECT_EQ(eng_to_double(nullptr), 0.0);
}

TEST(EngToDouble, of_too_large_a_number_is_infinite) {
  EXPECT_EQ(eng_to_double(std::string(1000, '9').c_str()), std::numeric_limits<double>::infinity());
  EXPECT_EQ(eng_to_double("-inf"), -std::numeric_limits<double>::infinity());
}

void expect_same_after_the_text(double value) {
  const double back = eng_to_double(double_to_eng(value));
  ASSERT_EQ(std::bit_cast<std::uint64_t>(back), std::bit_cast<std::uint64_t>(value)) << std::hexfloat << value;
}

TEST(NeutralNumbers, every_double_that_20_places_can_hold_comes_back_the_same) {
  // From here on the step between two doubles is larger than the last place.
  constexpr double least = 0x1p-14;
  std::mt19937_64 random(20240315);
  int held = 0;
  for (int i = 0; i < 20000; ++i) {
    const auto value = std::bit_cast<double>(static_cast<std::uint64_t>(random()));
    if (!std::isfinite(value) || std::fabs(value) < least) continue;
    expect_same_after_the_text(value);
    ++held;
  }
  EXPECT_GT(held, 9000);
  std::uniform_real_distribution<double> measured(-1000.0, 1000.0);
  for (int i = 0; i < 20000; ++i)
    if (const double value = measured(random); std::fabs(value) >= least) expect_same_after_the_text(value);
}

TEST(NeutralNumbers, come_back_the_same_down_to_the_bound_and_not_below_it) {
  expect_same_after_the_text(0x1p-14);
  expect_same_after_the_text(std::nextafter(0x1p-14, 1.0));
  const double below = 4.693274958951011607529227e-05;
  EXPECT_NE(eng_to_double(double_to_eng(below)), below) << "its step is smaller than the last place";
}

TEST(NeutralNumbers, tiny_doubles_with_few_places_come_back_the_same) {
  for (int places = 0; places <= 20; ++places)
    expect_same_after_the_text(std::ldexp(1.0, -places));
  for (const double value : {0.0, -0.0, 1e-20, 3e-20, 1.25e-18})
    expect_same_after_the_text(value);
}

TEST(IsIntStr, of_a_negative_number_is_false) {
  int value = 7;
  EXPECT_FALSE(is_int_str("-5", &value));
  EXPECT_EQ(value, 0) << "it is set to 0 first";
  EXPECT_FALSE(is_int_str("+5", nullptr));
}

TEST(IsIntStr, digits_alone_are_true_and_give_their_number) {
  int value = 0;
  EXPECT_TRUE(is_int_str("0042", &value));
  EXPECT_EQ(value, 42);
  EXPECT_TRUE(is_int_str("2147483647", &value));
  EXPECT_EQ(value, 2147483647);
  EXPECT_TRUE(is_int_str("1", nullptr));
}

TEST(IsIntStr, a_null_or_empty_text_is_false_and_sets_0) {
  for (const char* text : {static_cast<const char*>(nullptr), ""}) {
    int value = 7;
    EXPECT_FALSE(is_int_str(text, &value));
    EXPECT_EQ(value, 0);
    EXPECT_FALSE(is_int_str(text, nullptr));
  }
}

TEST(IsIntStr, other_bytes_are_no_digits) {
  for (const char* text : {" 1", "1 ", "1.0", "1e3", "0x1", "1\xB2", "\xFF", "\u0661", "\uFF11", "1\u00B2"})
    EXPECT_FALSE(is_int_str(text, nullptr)) << text;
}

TEST(IsIntStr, digits_beyond_int_are_true_and_give_the_largest) {
  int value = 0;
  EXPECT_TRUE(is_int_str("2147483648", &value));
  EXPECT_EQ(value, std::numeric_limits<int>::max());
  EXPECT_TRUE(is_int_str(std::string(100000, '9').c_str(), &value));
  EXPECT_EQ(value, std::numeric_limits<int>::max());
}

TEST(IsNumericString, reads_the_forms_of_a_number) {
  double value = 0;
  EXPECT_TRUE(IsNumericString(" -1.5e3 ", value));
  EXPECT_EQ(value, -1500.0);
  EXPECT_TRUE(IsNumericString("1,234.5", value));
  EXPECT_EQ(value, 1234.5);
  EXPECT_TRUE(IsNumericString("(7)", value));
  EXPECT_EQ(value, -7.0);
  EXPECT_TRUE(IsNumericString("&HFF", value));
  EXPECT_EQ(value, 255.0);
}

TEST(IsNumericString, what_is_no_number_leaves_the_value) {
  double value = 7.0;
  for (const char* text : {"", " ", "mm", "1.5 mm", "1.2.3", "1e999", "nan", "inf", "\xFF", "1\xFF", "1\u00E4"}) {
    EXPECT_FALSE(IsNumericString(text, value)) << text;
    EXPECT_EQ(value, 7.0);
  }
  EXPECT_FALSE(IsNumericString(nullptr, value));
  EXPECT_EQ(value, 7.0);
}

TEST(TableTexts, give_their_argument_back) {
  CString text("1.5");
  EXPECT_EQ(&eng_to_i18n(text), &text);
  EXPECT_EQ(&i18n_to_eng(text), &text);
  EXPECT_EQ(text, "1.5");
}

}  // namespace
