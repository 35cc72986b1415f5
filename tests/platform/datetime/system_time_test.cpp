// Plan
// - every recorded row of the file times and the variant times, both directions
// - what the recordings leave open: days of week after a rounding, days and years out of range, what is no number
// - all days of the variant calendar go both ways
#include "spcbase/platform/datetime/system_time.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "spcbase/platform/datetime/calendar.h"
#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/system/system_error.h"
#include "tests/support/vector_file.h"

namespace {

using test_support::numbers_in;
using test_support::read_vectors;

SYSTEMTIME fields_of(const std::string& text) {
  const std::vector<long> n = numbers_in(text);
  const auto at = [&](std::size_t i) { return static_cast<WORD>(n.at(i)); };
  return {at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7)};
}

std::string text_of(const SYSTEMTIME& f) {
  std::string text;
  for (const WORD field : {f.wYear, f.wMonth, f.wDayOfWeek, f.wDay, f.wHour, f.wMinute, f.wSecond, f.wMilliseconds}) {
    text += (text.empty() ? "" : ",") + std::to_string(field);
  }
  return text;
}

FILETIME file_time_of(const std::string& hex) {
  return {test_support::hex32(hex.substr(8)), test_support::hex32(hex.substr(0, 8))};
}

std::string text_of(const FILETIME& file_time) {
  char text[17];
  std::snprintf(text, sizeof text, "%08X%08X", file_time.dwHighDateTime, file_time.dwLowDateTime);
  return text;
}

TEST(FileTime, recorded_file_times_split_into_their_fields) {
  int rows = 0;
  for (const auto& row : read_vectors("filetime.tsv")) {
    if (row["direction"] != "to_system") continue;
    SCOPED_TRACE(row.place());
    ++rows;
    const FILETIME file_time = file_time_of(row["input"]);
    SYSTEMTIME fields{};
    SetLastError(0);
    const BOOL good = FileTimeToSystemTime(&file_time, &fields);
    EXPECT_EQ(std::to_string(good), row["result"]);
    if (good) {
      EXPECT_EQ(text_of(fields), row["output"]);
    } else {
      EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
  }
  EXPECT_EQ(rows, 43);
}

TEST(FileTime, recorded_fields_make_their_file_times) {
  int rows = 0;
  for (const auto& row : read_vectors("filetime.tsv")) {
    if (row["direction"] != "from_system" || row.is_suspect()) continue;
    SCOPED_TRACE(row.place());
    ++rows;
    const SYSTEMTIME fields = fields_of(row["input"]);
    FILETIME file_time{};
    SetLastError(0);
    const BOOL good = SystemTimeToFileTime(&fields, &file_time);
    EXPECT_EQ(std::to_string(good), row["result"]);
    if (good) {
      EXPECT_EQ(text_of(file_time), row["output"]);
    } else {
      EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
  }
  EXPECT_EQ(rows, 18);
}

TEST(FileTime, a_29_february_needs_a_leap_year) {
  FILETIME file_time{};
  const SYSTEMTIME leap = {2024, 2, 0, 29, 0, 0, 0, 0};
  const SYSTEMTIME common = {2023, 2, 0, 29, 0, 0, 0, 0};
  const SYSTEMTIME century = {1900, 2, 0, 29, 0, 0, 0, 0};
  EXPECT_TRUE(SystemTimeToFileTime(&leap, &file_time));
  EXPECT_FALSE(SystemTimeToFileTime(&common, &file_time));
  EXPECT_FALSE(SystemTimeToFileTime(&century, &file_time));
}

TEST(FileTime, null_pointers_are_refused) {
  SYSTEMTIME fields{};
  FILETIME file_time{};
  EXPECT_FALSE(FileTimeToSystemTime(nullptr, &fields));
  EXPECT_FALSE(FileTimeToSystemTime(&file_time, nullptr));
  EXPECT_FALSE(SystemTimeToFileTime(nullptr, &file_time));
  EXPECT_FALSE(SystemTimeToFileTime(&fields, nullptr));
}

TEST(VariantTime, recorded_fields_make_their_numbers) {
  int rows = 0;
  for (const auto& row : read_vectors("oledate.tsv")) {
    if (row["direction"] != "to_variant" || row.is_suspect()) continue;
    SCOPED_TRACE(row.place());
    ++rows;
    const SYSTEMTIME fields = fields_of(row["input"]);
    double value = 0;
    EXPECT_EQ(std::to_string(SystemTimeToVariantTime(&fields, &value)), row["result"]);
    if (row["result"] == "1") {
      EXPECT_EQ(test_support::bits_of(value), row["bits"]);
    }
  }
  EXPECT_EQ(rows, 136);
}

TEST(VariantTime, recorded_fields_have_their_status_as_a_date) {
  for (const auto& row : read_vectors("oledate.tsv")) {
    if (row["direction"] != "to_variant" || row.is_suspect()) continue;
    SCOPED_TRACE(row.place());
    EXPECT_EQ(std::to_string(COleDateTime(fields_of(row["input"])).GetStatus()), row["status"]);
  }
}

TEST(VariantTime, recorded_numbers_split_into_their_fields) {
  int rows = 0;
  for (const auto& row : read_vectors("oledate.tsv")) {
    const bool wrong_weekday = row["note"] == "suspect-weekday";
    if (row["direction"] != "from_variant" || (row.is_suspect() && !wrong_weekday)) continue;
    SCOPED_TRACE(row.place());
    ++rows;
    SYSTEMTIME fields{};
    const int good = VariantTimeToSystemTime(test_support::from_bits(row["bits"]), &fields);
    EXPECT_EQ(std::to_string(good), row["result"]);
    if (row["result"] != "1") continue;
    SYSTEMTIME expected = fields_of(row["output"]);
    if (wrong_weekday) expected.wDayOfWeek = static_cast<WORD>((expected.wDayOfWeek + 1) % 7);
    EXPECT_EQ(text_of(fields), text_of(expected));
  }
  EXPECT_EQ(rows, 192);
}

TEST(VariantTime, a_month_outside_the_year_is_refused) {
  double value = 7;
  for (const WORD month : {WORD{0}, WORD{13}, WORD{65535}}) {
    const SYSTEMTIME fields = {2024, month, 0, 1, 0, 0, 0, 0};
    EXPECT_EQ(SystemTimeToVariantTime(&fields, &value), 0) << month;
  }
  EXPECT_EQ(value, 7);
}

TEST(VariantTime, a_day_that_the_month_lacks_runs_on) {
  double value = 0;
  const SYSTEMTIME november = {2023, 11, 0, 31, 0, 0, 0, 0};
  EXPECT_EQ(SystemTimeToVariantTime(&november, &value), 1);
  EXPECT_EQ(value, 45261);  // 1 December
}

TEST(VariantTime, two_digit_years_lie_between_1950_and_2049) {
  for (const auto& [year, full] : {std::pair{0, 2000}, {30, 2030}, {49, 2049}, {50, 1950}, {99, 1999}, {100, 100}}) {
    double value = 0;
    double expected = 0;
    const SYSTEMTIME fields = {static_cast<WORD>(year), 6, 0, 1, 0, 0, 0, 0};
    const SYSTEMTIME in_full = {static_cast<WORD>(full), 6, 0, 1, 0, 0, 0, 0};
    EXPECT_EQ(SystemTimeToVariantTime(&fields, &value), 1);
    EXPECT_EQ(SystemTimeToVariantTime(&in_full, &expected), 1);
    EXPECT_EQ(value, expected) << year;
  }
}

TEST(VariantTime, times_beyond_their_range_carry) {
  double value = 0;
  const SYSTEMTIME fields = {2024, 3, 0, 15, 0, 65535, 0, 0};
  EXPECT_EQ(SystemTimeToVariantTime(&fields, &value), 1);
  EXPECT_EQ(value, 45366 + 45 + (12.0 / 24 + 15.0 / 1440));  // 65535 minutes are 45 days, 12 hours and 15 minutes
}

TEST(VariantTime, what_is_no_date_is_refused_and_nothing_is_written) {
  SYSTEMTIME fields = {1, 2, 3, 4, 5, 6, 7, 8};
  for (const double value :
       {std::nan(""), std::numeric_limits<double>::infinity(), 1e300, 2958466.0, -657435.0, 2958465.9999999902}) {
    EXPECT_EQ(VariantTimeToSystemTime(value, &fields), 0) << value;
  }
  EXPECT_EQ(text_of(fields), "1,2,3,4,5,6,7,8");
  double value = 0;
  const SYSTEMTIME beyond = {9999, 12, 0, 31, 24, 0, 0, 0};
  EXPECT_EQ(SystemTimeToVariantTime(&beyond, &value), 0);
  EXPECT_EQ(SystemTimeToVariantTime(nullptr, &value), 0);
  EXPECT_EQ(VariantTimeToSystemTime(1, nullptr), 0);
}

TEST(VariantTime, every_day_goes_both_ways_and_the_weekdays_follow_each_other) {
  int wrong = 0;
  SYSTEMTIME fields{};
  ASSERT_EQ(VariantTimeToSystemTime(-657434, &fields), 1);
  EXPECT_EQ(text_of(fields), "100,1,5,1,0,0,0,0");
  int weekday = fields.wDayOfWeek;
  for (int day = -657433; day <= 2958465; ++day) {
    double back = 0;
    const bool good = VariantTimeToSystemTime(day, &fields) && SystemTimeToVariantTime(&fields, &back) && back == day;
    weekday = (weekday + 1) % 7;
    wrong += good && fields.wDayOfWeek == weekday ? 0 : 1;
  }
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(text_of(fields), "9999,12,5,31,0,0,0,0");
}

TEST(VariantTime, every_second_of_a_day_goes_both_ways_on_both_sides_of_day_0) {
  for (const int day : {-2, 0, 45366}) {
    for (int second = 0; second < 86400; ++second) {
      SYSTEMTIME fields{};
      ASSERT_EQ(VariantTimeToSystemTime(day, &fields), 1);
      fields.wHour = static_cast<WORD>(second / 3600);
      fields.wMinute = static_cast<WORD>(second / 60 % 60);
      fields.wSecond = static_cast<WORD>(second % 60);
      double value = 0;
      ASSERT_EQ(SystemTimeToVariantTime(&fields, &value), 1);
      SYSTEMTIME back{};
      ASSERT_EQ(VariantTimeToSystemTime(value, &back), 1);
      ASSERT_EQ(text_of(back), text_of(fields));
    }
  }
}

}  // namespace
