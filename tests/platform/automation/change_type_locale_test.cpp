// Plan: what VariantChangeType takes from the process's locale
// - texts to numbers and numbers to texts with a decimal comma, with marks of several bytes, with groups by space
// - VariantChangeTypeEx stays with US English; a locale without a group mark has none; the rest of a number's shape
// stays
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "spcbase/platform/automation/holders.h"
#include "spcbase/platform/automation/variant_t.h"
#include "tests/support/number_locale.h"

namespace {

std::optional<double> number_of(const char* text) {
  scoped_variant target;
  const _variant_t source(text);
  if (FAILED(VariantChangeType(target.get(), &source, 0, VT_R8))) return std::nullopt;
  return target->dblVal;
}

std::string text_of(const _variant_t& source) {
  const _bstr_t text(source);
  return static_cast<const char*>(text);
}

TEST(ChangeTypeLocale, texts_are_read_by_a_decimal_comma) {
  const test_support::DecimalComma locale;
  EXPECT_EQ(number_of("1,5"), 1.5);
  EXPECT_EQ(number_of("1.234,5"), 1234.5);
  EXPECT_EQ(number_of("1.5"), 15) << "the point parts groups, whose size nobody checks";
  EXPECT_EQ(number_of("1,5,5"), std::nullopt);
  EXPECT_EQ(number_of("(1,5)"), -1.5);
  EXPECT_EQ(number_of("-1,5e3"), -1500);
  EXPECT_EQ(number_of("&H10"), 16);
}

TEST(ChangeTypeLocale, every_target_reads_by_it) {
  const test_support::DecimalComma locale;
  const _variant_t text("2,6");
  EXPECT_EQ(static_cast<int>(text), 3);
  EXPECT_EQ(static_cast<float>(text), 2.6F);
  EXPECT_EQ(static_cast<CY>(text).int64, 26000);
  EXPECT_EQ(static_cast<bool>(_variant_t("0,0")), false);
}

TEST(ChangeTypeLocale, numbers_are_written_by_it) {
  const test_support::DecimalComma locale;
  EXPECT_EQ(text_of(_variant_t(1234.5)), "1234,5");
  EXPECT_EQ(text_of(_variant_t(0.5F)), "0,5");
  EXPECT_EQ(text_of(_variant_t(CY{-12500})), "-1,25");
  EXPECT_EQ(text_of(_variant_t(7)), "7");
  EXPECT_EQ(text_of(_variant_t(1e300)), "1E+300");
}

TEST(ChangeTypeLocale, marks_of_several_bytes_go_both_ways) {
  const test_support::ArabicMarks locale;
  EXPECT_EQ(number_of("1\u066C234\u066B5"), 1234.5);
  EXPECT_EQ(text_of(_variant_t(-1.5)), "-1\u066B5");
}

TEST(ChangeTypeLocale, groups_by_a_narrow_space_take_any_space) {
  const test_support::NumberLocale locale("<U002C>", "<U202F>");
  EXPECT_EQ(number_of("1 234\u00A0567\u202F890,5 "), 1234567890.5);
  EXPECT_EQ(number_of("1.5"), std::nullopt);
}

TEST(ChangeTypeLocale, without_a_group_mark_the_point_is_not_passed_over) {
  const test_support::NumberLocale locale("<U002C>", "");
  EXPECT_EQ(number_of("1,5"), 1.5);
  EXPECT_EQ(number_of("1.5"), std::nullopt);
}

TEST(ChangeTypeLocale, the_call_with_a_locale_of_its_own_stays_with_us_english) {
  const test_support::DecimalComma locale;
  scoped_variant target;
  const _variant_t source("1,234.5");
  ASSERT_EQ(VariantChangeTypeEx(target.get(), &source, 0x409, 0, VT_R8), S_OK);
  EXPECT_EQ(target->dblVal, 1234.5);
}

}  // namespace
