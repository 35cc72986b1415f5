// Plan
//   lines that are read, and those that are refused and change nothing -> DateTimeRange_parse.*
//   lines that are written -> DateTimeRange_to_string.*
//   there and back over random ranges, in other locales, over all years of dates -> DateTimeRange_line.*
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "spcbase/platform/datetime/user_locale.h"
#include "spcbase/time/range.h"

namespace {

DateTimeRange marked() {
  DateTimeRange range;
  range.type = DateTimeRange::last_year;
  range.count = 77;
  range.time_unit = DateTimeRange::year;
  range.from = COleDateTime(2001, 1, 1, 0, 0, 0);
  range.to = COleDateTime(2002, 1, 1, 0, 0, 0);
  return range;
}

bool is_marked(const DateTimeRange& range) {
  const auto wanted = marked();
  return range.type == wanted.type && range.count == wanted.count && range.time_unit == wanted.time_unit &&
         range.from == wanted.from && range.to == wanted.to;
}

void expect_refused(const char* line) {
  DateTimeRange range = marked();
  EXPECT_FALSE(range.parse(line)) << line;
  EXPECT_TRUE(is_marked(range)) << line;
}

TEST(DateTimeRange_parse, a_keyword_sets_the_type_alone) {
  const std::pair<const char*, int> keywords[] = {{"today", 1},        {"this_week", 2},     {"this_month", 3},
                                                  {"this_quarter", 4}, {"this_year", 5},     {"no_initial_data", 7},
                                                  {"all_data", 8},     {"yesterday", 9},     {"last_week", 10},
                                                  {"last_month", 11},  {"last_quarter", 12}, {"last_year", 13}};
  for (const auto& [word, type] : keywords) {
    DateTimeRange range = marked();
    EXPECT_TRUE(range.parse(word));
    EXPECT_EQ(range.type, type);
    range.type = DateTimeRange::last_year;
    EXPECT_TRUE(is_marked(range)) << "moments, count and unit stay";
  }
}

TEST(DateTimeRange_parse, today_with_blanks_on_both_sides_is_read) {
  DateTimeRange range;
  EXPECT_TRUE(range.parse("   today \t "));
  EXPECT_EQ(range.type, DateTimeRange::today);
}

TEST(DateTimeRange_parse, an_empty_line_and_one_of_blanks_are_refused) {
  expect_refused("");
  expect_refused("   ");
  expect_refused("\t\n");
}

TEST(DateTimeRange_parse, last_5_and_a_unit_in_capitals_are_read) {
  DateTimeRange range = marked();
  EXPECT_TRUE(range.parse("last 5 DAY"));
  EXPECT_EQ(range.type, 6);
  EXPECT_EQ(range.count, 5);
  EXPECT_EQ(range.time_unit, 0);
  EXPECT_EQ(range.from, marked().from);
}

TEST(DateTimeRange_parse, every_unit_is_read_in_any_case) {
  const char* const words[] = {"Day", "wEEK", "month", "QUARTER", "hour", "Minute", "second", "YEAR"};
  for (int unit = 0; unit < 8; ++unit) {
    DateTimeRange range;
    EXPECT_TRUE(range.parse((std::string("last 2 ") + words[unit]).c_str()));
    EXPECT_EQ(range.time_unit, unit);
  }
}

TEST(DateTimeRange_parse, letters_in_place_of_the_number_are_count_0) {
  DateTimeRange range;
  EXPECT_TRUE(range.parse("last few day"));
  EXPECT_EQ(range.count, 0);
  EXPECT_TRUE(range.parse("last -3x day"));
  EXPECT_EQ(range.count, -3);
  EXPECT_TRUE(range.parse("last 99999999999 day"));
  EXPECT_EQ(range.count, 2147483647);
}

TEST(DateTimeRange_parse, a_unit_that_is_missing_or_none_is_refused) {
  expect_refused("last 5");
  expect_refused("last");
  expect_refused("last 5 days");
  expect_refused("last 5 fortnight");
  expect_refused("last day");
}

TEST(DateTimeRange_parse, a_fixed_range_sets_both_moments_valid_and_leaves_count_and_unit) {
  DateTimeRange range = marked();
  range.from.SetStatus(COleDateTime::null);
  EXPECT_TRUE(range.parse("fixed_range  2024-03-15#08:05:09   2024-03-16#17:30:00"));
  EXPECT_EQ(range.type, 0);
  EXPECT_EQ(range.from, COleDateTime(2024, 3, 15, 8, 5, 9));
  EXPECT_EQ(range.to, COleDateTime(2024, 3, 16, 17, 30, 0));
  EXPECT_EQ(range.count, 77);
}

TEST(DateTimeRange_parse, moments_are_read_as_the_user_writes_them) {
  DateTimeRange range;
  EXPECT_TRUE(range.parse("fixed_range 3/15/2024 March#16,#2024#5:30#PM"));
  EXPECT_EQ(range.from, COleDateTime(2024, 3, 15, 0, 0, 0));
  EXPECT_EQ(range.to, COleDateTime(2024, 3, 16, 17, 30, 0));
}

TEST(DateTimeRange_parse, a_fixed_range_with_only_one_moment_or_a_bad_one_is_refused) {
  expect_refused("fixed_range");
  expect_refused("fixed_range 2024-03-15#08:00:00");
  expect_refused("fixed_range 2024-03-15#08:00:00 soon");
  expect_refused("fixed_range soon 2024-03-15#08:00:00");
  expect_refused("fixed_range 2024-02-30#08:00:00x 2024-03-15#08:00:00");
}

TEST(DateTimeRange_parse, words_behind_the_end_are_passed_over) {
  DateTimeRange range;
  EXPECT_TRUE(range.parse("today or tomorrow"));
  EXPECT_TRUE(range.parse("last 5 day or so"));
  EXPECT_TRUE(range.parse("fixed_range 2024-03-15 2024-03-16 2024-03-17"));
}

TEST(DateTimeRange_parse, other_words_are_refused_and_case_counts_in_keywords) {
  expect_refused("tomorrow");
  expect_refused("Today");
  expect_refused("all");
  expect_refused("user_defined");
  expect_refused("today,");
  expect_refused("last\t5\tday");
}

TEST(DateTimeRange_to_string, each_choice_has_its_word) {
  const char* const lines[] = {"fixed_range 2001-01-01#00:00:00 2002-01-01#00:00:00",
                               "today",
                               "this_week",
                               "this_month",
                               "this_quarter",
                               "this_year",
                               "last 77 year",
                               "no_initial_data",
                               "all_data",
                               "yesterday",
                               "last_week",
                               "last_month",
                               "last_quarter",
                               "last_year"};
  for (int type = 0; type < 14; ++type) {
    DateTimeRange range = marked();
    range.type = static_cast<DateTimeRange::RangeType>(type);
    EXPECT_EQ(range.to_string(), lines[type]);
  }
}

TEST(DateTimeRange_to_string, a_strange_unit_leaves_an_empty_word) {
  DateTimeRange range = marked();
  range.type = DateTimeRange::last_units;
  range.time_unit = static_cast<DateTimeRange::RangeUnit>(8);
  EXPECT_EQ(range.to_string(), "last 77 ");
}

TEST(DateTimeRange_line, comes_back_equal_for_any_range) {
  std::mt19937 random{99};
  std::uniform_real_distribution<double> days(-300000, 2900000);  // the years 1078 to 9839
  for (int i = 0; i < 5000; ++i) {
    DateTimeRange range;
    range.type = static_cast<DateTimeRange::RangeType>(i % 14);
    range.from = COleDateTime(days(random));
    range.to = COleDateTime(days(random));
    range.count = static_cast<int>(random());
    range.time_unit = static_cast<DateTimeRange::RangeUnit>(random() % 8);
    DateTimeRange read = marked();
    ASSERT_TRUE(read.parse(range.to_string())) << range.to_string();
    ASSERT_TRUE(read == range) << range.to_string();
  }
}

TEST(DateTimeRange_line, comes_back_equal_from_any_year_of_dates_in_every_locale) {
  std::mt19937 random{100};
  std::uniform_int_distribution<int> days(-657434, 2958465);  // 100-01-01 to 9999-12-31
  std::uniform_int_distribution<int> seconds(0, 86399);
  const auto moment = [&] { return COleDateTime(days(random) * 1.0) + COleDateTimeSpan(0, 0, 0, seconds(random)); };
  for (const char* locale : {"C", "de_DE", "en_GB", "fr_FR", "ja_JP", "sv_SE", "fi_FI", "th_TH", "ar_SA", "fa_IR"}) {
    const platform::HeldUserLocale users(locale);
    for (int i = 0; i < 500; ++i) {
      DateTimeRange range;
      range.type = DateTimeRange::fixed_range;
      range.from = moment();
      range.to = moment();
      DateTimeRange read = marked();
      ASSERT_TRUE(read.parse(range.to_string())) << locale << ' ' << range.to_string();
      ASSERT_TRUE(read == range) << locale << ' ' << range.to_string();
    }
  }
}

TEST(DateTimeRange_line, a_year_of_three_digits_is_read_with_and_without_a_leading_zero) {
  DateTimeRange range;
  ASSERT_TRUE(range.parse("fixed_range 0100-01-01 0999-12-31#23:59:59"));
  EXPECT_EQ(range.from, COleDateTime(100, 1, 1, 0, 0, 0));
  EXPECT_EQ(range.to, COleDateTime(999, 12, 31, 23, 59, 59));
  DateTimeRange again;
  ASSERT_TRUE(again.parse("fixed_range 100-01-01 999-12-31#23:59:59"));
  EXPECT_TRUE(again == range);
  ASSERT_TRUE(again.parse(range.to_string())) << range.to_string();
  EXPECT_TRUE(again == range) << range.to_string();
}

}  // namespace
