// Plan: the number functions under other locales
// - neutral texts stay neutral; what is read by the locale; the table helpers; names and words do not depend on it
// - the library never changes the locale: every function of text.h, under "C" and under a decimal comma
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <memory>
#include <random>
#include <string>

#include "spcbase/platform/automation/variant_t.h"
#include "spcbase/testkit/scratch_folder.h"
#include "spcbase/utility/text.h"
#include "tests/support/number_locale.h"

namespace {

TEST(DecimalComma, neutral_numbers_keep_their_point) {
  const test_support::DecimalComma locale;
  CString by_the_locale;
  by_the_locale.Format("%.1f", 1.5);
  ASSERT_EQ(by_the_locale, "1,5") << "the locale of this test is not in force";
  EXPECT_EQ(double_to_eng(1.5), "1.5");
  EXPECT_EQ(double_to_eng(-2.0), "-2.0");
  EXPECT_EQ(double_to_eng(std::nan("")), "nan");
  EXPECT_EQ(eng_to_double("1.5"), 1.5);
  EXPECT_EQ(eng_to_double(" -1234.25e1 mm"), -12342.5);
  EXPECT_EQ(eng_to_double("1.2.3"), 1.2);
}

TEST(DecimalComma, neutral_numbers_come_back_the_same) {
  const test_support::DecimalComma locale;
  std::mt19937_64 random(5);
  std::uniform_real_distribution<double> measured(-1e6, 1e6);
  for (int i = 0; i < 2000; ++i) {
    const double value = measured(random);
    ASSERT_EQ(eng_to_double(double_to_eng(value)), value);
  }
}

TEST(DecimalComma, is_what_a_numeric_string_has) {
  const test_support::DecimalComma locale;
  double value = 0;
  EXPECT_TRUE(IsNumericString("1.234,5", value));
  EXPECT_EQ(value, 1234.5);
  EXPECT_FALSE(IsNumericString("1,234,5", value));
}

TEST(DecimalComma, values_become_neutral) {
  const test_support::DecimalComma locale;
  const auto eng = [](const _variant_t& value) { return variant_to_eng(&value); };
  EXPECT_EQ(eng(_variant_t(1.5)), "1.5");
  EXPECT_EQ(eng(_variant_t("1,5")), "1.5");
  EXPECT_EQ(eng(_variant_t("007")), "7");
  EXPECT_EQ(eng(_variant_t("7,5 mm")), "7,5 mm");
  EXPECT_EQ(eng(_variant_t(CY{12500})), "1,25") << "the platform changes it, by the locale";
}

TEST(DecimalComma, texts_go_to_the_user_and_back) {
  const test_support::DecimalComma locale;
  CString text("1.5\tBore");
  EXPECT_EQ(eng_to_i18n(text), "1,5\tBore");
  EXPECT_EQ(i18n_to_eng(text), "1.5\tBore");
}

TEST(MarksOfSeveralBytes, neutral_numbers_keep_their_point) {
  const test_support::ArabicMarks locale;
  CString by_the_locale;
  by_the_locale.Format("%.1f", 1.5);
  ASSERT_EQ(by_the_locale, "1\u066B5") << "the locale of this test is not in force";
  EXPECT_EQ(double_to_eng(1.5), "1.5");
  EXPECT_EQ(eng_to_double("1.5"), 1.5);
  double value = 0;
  EXPECT_TRUE(IsNumericString("1\u066B5", value));
  EXPECT_EQ(value, 1.5);
}

TEST(OtherLocales, words_names_and_digits_are_the_same_in_each) {
  const test_support::DecimalComma locale;
  EXPECT_EQ(GetFirstWord("\u3000Pr\u00FCfstand 7"), "Pr\u00FCfstand");
  EXPECT_EQ(fix_spc_name("\u76F4\u5F84\t\u00D8", false), "\u76F4\u5F84\u00D8");
  EXPECT_TRUE(is_int_str("007", nullptr));
  EXPECT_FALSE(is_int_str("7,5", nullptr));
  CString parameter;
  EXPECT_STREQ(GetNextParm("\u5DE5\u5834\tx", parameter), "\tx");
  EXPECT_EQ(parameter, "\u5DE5\u5834");
}

/// All that a program can see of its locale.
std::string locale_now() {
  const lconv& marks = *std::localeconv();
  return std::string(std::setlocale(LC_ALL, nullptr)) + '|' + marks.decimal_point + '|' + marks.thousands_sep + '|' +
         marks.grouping;
}

/// Calls every function of text.h.
void call_all() {
  const test_support::ScratchFolder folder;
  CString text("  a\t1.5 ");
  const CString hex = byte_to_hex_text(reinterpret_cast<const BYTE*>("\xAB"), 1);
  const std::unique_ptr<BYTE[]> bytes(hex_text_to_byte(hex, hex.GetLength()));
  EXPECT_EQ(bytes[0], 0xAB);
  EXPECT_EQ(GetFirstWord(text), "a");
  RemoveFirstWord(text);
  RemoveWhiteSpace(text);
  EXPECT_EQ(eng_to_double(i18n_to_eng(eng_to_i18n(text))), 1.5);
  EXPECT_EQ(double_to_eng(1.5), "1.5");
  double number = 0;
  EXPECT_TRUE(IsNumericString("7", number));
  int whole = 0;
  EXPECT_TRUE(is_int_str("7", &whole));
  const _variant_t value(1.5);
  const _variant_t numeric("-7");
  EXPECT_EQ(variant_to_eng(&value), "1.5");
  EXPECT_EQ(variant_to_eng(&numeric), "-7.0");
  EXPECT_EQ(fix_spc_name("a\tb", false), "ab");
  CString parameter;
  GetNextParm("/n x", parameter);
  EXPECT_EQ(parameter, "/n");
  std::ofstream(folder.file("reason")) << "1,5";
  EXPECT_EQ(get_reason_param(("/n " + folder.file("reason")).c_str()), "1,5");
  EXPECT_EQ(get_iid_string(GUID_NULL).length(), 38U);
  EXPECT_EQ(create_uuid_str().GetLength(), 36);
}

TEST(TheLocale, is_never_changed_by_the_library) {
  const std::string in_c = locale_now();
  call_all();
  EXPECT_EQ(locale_now(), in_c);
  const test_support::DecimalComma locale;
  const std::string with_comma = locale_now();
  ASSERT_NE(with_comma, in_c);
  call_all();
  EXPECT_EQ(locale_now(), with_comma);
}

}  // namespace
