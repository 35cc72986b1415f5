// Plan: the default of the table helpers
// - numbers to the user's locale and back; cells of a table; spaces stay; what is no number stays
// - group marks are read where they part threes, and never written; several bytes; the locale "C"; ill-formed bytes,
// zeros
// - a property: neutral tables come back from the user's locale as they were
#include "spcbase/companion/table_helpers.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/support/number_locale.h"

namespace {

using TableHelpers::ParseTextBuffer;
using TableHelpers::ParseToLocale;

TEST(ParseToLocale, numbers_get_the_decimal_comma) {
  const test_support::DecimalComma locale;
  EXPECT_EQ(ParseToLocale("1.5"), "1,5");
  EXPECT_EQ(ParseToLocale("-0.25e-3"), "-0,25e-3");
  EXPECT_EQ(ParseToLocale(".5"), ",5");
  EXPECT_EQ(ParseToLocale("5."), "5,");
  EXPECT_EQ(ParseToLocale("1234567.5"), "1234567,5") << "no group marks are put in";
}

TEST(ParseToLocale, goes_cell_by_cell_and_keeps_spaces_and_ends) {
  const test_support::DecimalComma locale;
  EXPECT_EQ(ParseToLocale("1.5\tbore 1.5\t 2.25 \r\n\t3.5\n"), "1,5\tbore 1.5\t 2,25 \r\n\t3,5\n");
}

TEST(ParseToLocale, what_is_no_number_stays) {
  const test_support::DecimalComma locale;
  for (const char* text : {"", " ", "v1.2.3", "1.2.3", "1.5 mm", "1.5e", "e5", ".", "-", "- 1.5", "1,5", "0x1.8p1",
                           "1.5;2.5", "nan", "--1.5", "1.5\xFF", "24.12.2024"})
    EXPECT_EQ(ParseToLocale(text), text);
}

TEST(ParseTextBuffer, numbers_get_the_point) {
  const test_support::DecimalComma locale;
  EXPECT_EQ(ParseTextBuffer(0, "1,5"), "1.5");
  EXPECT_EQ(ParseTextBuffer(0, " -0,25E+3 \t,5\r\nbore 1,5"), " -0.25E+3 \t.5\r\nbore 1,5");
  EXPECT_EQ(ParseTextBuffer(7, "1,5"), "1.5") << "the kind of text makes no difference";
}

TEST(ParseTextBuffer, group_marks_go_where_they_part_threes) {
  const test_support::DecimalComma locale;
  EXPECT_EQ(ParseTextBuffer(0, "1.234,5"), "1234.5");
  EXPECT_EQ(ParseTextBuffer(0, "12.345.678"), "12345678");
  EXPECT_EQ(ParseTextBuffer(0, "1.234"), "1234");
  for (const char* text :
       {"1.5", "1234.567", "1.23.456", "1.2345", ".123", "1..234", "1.234.", "24.12.2024", "1,234.5"})
    EXPECT_EQ(ParseTextBuffer(0, text), text);
}

TEST(ParseTextBuffer, takes_any_space_where_the_locale_groups_by_one) {
  const test_support::NumberLocale locale("<U002C>", "<U202F>");
  EXPECT_EQ(ParseTextBuffer(0, "1 234\u202F567,5 "), "1234567.5 ");
  EXPECT_EQ(ParseTextBuffer(0, "12 34"), "12 34");
}

TEST(TableHelpers, marks_of_several_bytes_go_both_ways) {
  const test_support::ArabicMarks locale;
  EXPECT_EQ(ParseToLocale("1234.5"), "1234\u066B5");
  EXPECT_EQ(ParseTextBuffer(0, "1\u066C234\u066B5"), "1234.5");
}

TEST(TableHelpers, under_the_locale_c_a_text_stays) {
  for (const char* text : {"1.5", "1,5", "1,234.5", "1.234\t2"}) {
    EXPECT_EQ(ParseToLocale(text), text);
    EXPECT_EQ(ParseTextBuffer(0, text), text);
  }
}

TEST(TableHelpers, zeros_and_ill_formed_bytes_pass) {
  const test_support::DecimalComma locale;
  const CString text("1.5\0\t2.5\t\xE2\x80", 10);
  EXPECT_EQ(ParseToLocale(text), CString("1.5\0\t2,5\t\xE2\x80", 10));
  EXPECT_EQ(ParseTextBuffer(0, ParseToLocale(text)), text);
}

TEST(TableHelpers, neutral_tables_come_back_as_they_were) {
  const test_support::DecimalComma locale;
  std::mt19937 random(20241);
  const auto below = [&](unsigned int limit) { return static_cast<unsigned int>(random() % limit); };
  for (int round = 0; round < 2000; ++round) {
    CString table;
    for (unsigned int cells = below(8); cells > 0; --cells) {
      // A fraction of three places or fewer than that: both look like groups to a careless reader.
      table.AppendFormat("%s%u.%u%s", below(2) != 0 ? "-" : "", below(100000), below(100000),
                         below(3) == 0 ? "e-5" : "");
      table += "\t\n\r"[below(3)];
      table += below(4) == 0 ? "part\t" : "\t";
    }
    const CString shown = ParseToLocale(table);
    EXPECT_EQ(shown.Find('.'), -1);
    ASSERT_EQ(ParseTextBuffer(0, shown), table);
  }
}

}  // namespace
