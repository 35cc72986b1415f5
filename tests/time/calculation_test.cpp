// Named periods and offsets.
//
// Plan
//   settings             defaults; plain data, members as hosts call them
//   named cases          each period and offset at the edges of weeks, months, quarters and years
//   kept oddities        periods to date, the week's time of day, clock hours across a change, the repeated hour
//   use_utc              the UTC date that contains the present, on both sides of Greenwich
//   not usable           a present that cannot be split, references that are not valid, counts and settings out of
//   range
// The zones and the long rows of days are in calculation_zones_test.cpp and calculation_days_test.cpp.
#include "spcbase/time/calculation.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/zone_guard.h"
#include "tests/time/moment_text.h"

namespace {

using test_support::HeldClock;
using test_support::utc;
using test_support::ZoneGuard;
using time_tests::range_text;
using time_tests::text;

using PeriodCall = void (DateTimeCalculation::*)(COleDateTime&, COleDateTime&) const;
using OffsetCall = COleDateTime (DateTimeCalculation::*)(const COleDateTime&, int);

constexpr PeriodCall all_periods[] = {&DateTimeCalculation::GetToday,       &DateTimeCalculation::GetThisWeek,
                                      &DateTimeCalculation::GetThisMonth,   &DateTimeCalculation::GetThisQuarter,
                                      &DateTimeCalculation::GetThisYear,    &DateTimeCalculation::GetYesterday,
                                      &DateTimeCalculation::GetLastWeek,    &DateTimeCalculation::GetLastMonth,
                                      &DateTimeCalculation::GetLastQuarter, &DateTimeCalculation::GetLastYear};

/// A period at noon UTC of a date, as "start .. end".
std::string at_noon(PeriodCall call, int year, int month, int day, int first_day_of_week = 1) {
  const ZoneGuard zone("UTC");
  const HeldClock clock(utc(year, month, day, 12));
  return range_text(DateTimeCalculation(first_day_of_week), call);
}

/// An offset, with Monday as the first day of the week.
std::string offset(OffsetCall call, const COleDateTime& reference, int count) {
  DateTimeCalculation calculation(2);
  return text((calculation.*call)(reference, count));
}

const COleDateTime end_of_friday(2024, 3, 15, 23, 59, 59);

TEST(DateTimeCalculation, starts_weeks_on_sunday_and_reads_local_time_unless_told_otherwise) {
  const DateTimeCalculation calculation;
  EXPECT_EQ(calculation.first_day_of_week, 1);
  EXPECT_FALSE(calculation.use_utc);
  EXPECT_EQ(DateTimeCalculation(3).first_day_of_week, 3);
  EXPECT_TRUE(DateTimeCalculation(1, true).use_utc);
}

TEST(DateTimeCalculation, is_a_plain_value) {
  EXPECT_TRUE(std::is_standard_layout_v<DateTimeCalculation>);
  EXPECT_TRUE(std::is_trivially_copyable_v<DateTimeCalculation>);
  EXPECT_FALSE(std::is_polymorphic_v<DateTimeCalculation>);
  EXPECT_FALSE((std::is_convertible_v<int, DateTimeCalculation>));
}

TEST(GetToday, is_the_whole_day) {
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetToday, 2024, 2, 29), "2024-02-29 00:00:00 .. 2024-02-29 23:59:59");
}

TEST(GetThisWeek, with_monday_first_a_sunday_is_six_days_into_the_week) {
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetThisWeek, 2024, 3, 17, 2), "2024-03-11 00:00:00 .. 2024-03-17 23:59:59");
}

TEST(GetThisWeek, with_monday_first_a_monday_subtracts_no_days) {
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetThisWeek, 2024, 3, 11, 2), "2024-03-11 00:00:00 .. 2024-03-11 23:59:59");
}

TEST(GetThisWeek, on_the_first_day_of_the_week_is_exactly_today) {
  // 2024-03-10 is a Sunday.
  for (int first = 1; first <= 7; ++first) {
    EXPECT_EQ(at_noon(&DateTimeCalculation::GetThisWeek, 2024, 3, 9 + first, first),
              at_noon(&DateTimeCalculation::GetToday, 2024, 3, 9 + first))
        << first;
  }
}

TEST(GetThisWeek, reaches_back_over_the_ends_of_months_and_years) {
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetThisWeek, 2025, 1, 1, 2), "2024-12-30 00:00:00 .. 2025-01-01 23:59:59");
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetThisWeek, 2024, 3, 1, 2), "2024-02-26 00:00:00 .. 2024-03-01 23:59:59");
}

// Kept: a period of the present ends today.
TEST(DateTimeCalculation, every_period_of_the_present_is_a_period_to_date) {
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetThisWeek, 2024, 3, 13), "2024-03-10 00:00:00 .. 2024-03-13 23:59:59");
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetThisMonth, 2024, 3, 13), "2024-03-01 00:00:00 .. 2024-03-13 23:59:59");
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetThisQuarter, 2024, 3, 13), "2024-01-01 00:00:00 .. 2024-03-13 23:59:59");
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetThisYear, 2024, 3, 13), "2024-01-01 00:00:00 .. 2024-03-13 23:59:59");
}

TEST(GetThisQuarter, starts_in_january_april_july_and_october) {
  const char* starts[] = {"01", "01", "01", "04", "04", "04", "07", "07", "07", "10", "10", "10"};
  for (int month = 1; month <= 12; ++month) {
    const std::string start = std::string("2023-") + starts[month - 1] + "-01 00:00:00 .. ";
    EXPECT_TRUE(at_noon(&DateTimeCalculation::GetThisQuarter, 2023, month, 28).starts_with(start)) << month;
  }
}

TEST(GetYesterday, on_the_first_of_january_is_the_last_of_december) {
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetYesterday, 2025, 1, 1), "2024-12-31 00:00:00 .. 2024-12-31 23:59:59");
}

TEST(GetYesterday, on_the_first_of_march_is_the_last_of_february) {
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetYesterday, 2024, 3, 1), "2024-02-29 00:00:00 .. 2024-02-29 23:59:59");
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetYesterday, 2023, 3, 1), "2023-02-28 00:00:00 .. 2023-02-28 23:59:59");
}

TEST(GetLastWeek, covers_seven_dates_and_ends_the_day_before_this_week) {
  const ZoneGuard zone("UTC");
  for (int day = 1; day <= 31; ++day) {
    for (int first = 1; first <= 7; ++first) {
      const HeldClock clock(utc(2024, 12, day, 12));
      const DateTimeCalculation calculation(first);
      COleDateTime this_start, this_end, start, end;
      calculation.GetThisWeek(this_start, this_end);
      calculation.GetLastWeek(start, end);
      EXPECT_EQ(text(start + COleDateTimeSpan(7)), text(this_start));
      EXPECT_EQ(text(end + COleDateTimeSpan(0, 0, 0, 1)), text(this_start));
      EXPECT_EQ(start.GetDayOfWeek(), first);
    }
  }
}

TEST(GetLastWeek, ends_at_the_last_second_of_its_seventh_day) {
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetLastWeek, 2024, 3, 13, 2), "2024-03-04 00:00:00 .. 2024-03-10 23:59:59");
}

TEST(GetLastMonth, in_january_is_december_of_the_year_before) {
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetLastMonth, 2024, 1, 31), "2023-12-01 00:00:00 .. 2023-12-31 23:59:59");
}

TEST(GetLastMonth, in_march_of_a_leap_year_ends_on_29_february) {
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetLastMonth, 2024, 3, 31), "2024-02-01 00:00:00 .. 2024-02-29 23:59:59");
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetLastMonth, 2023, 3, 31), "2023-02-01 00:00:00 .. 2023-02-28 23:59:59");
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetLastMonth, 2100, 3, 31), "2100-02-01 00:00:00 .. 2100-02-28 23:59:59");
}

TEST(GetLastQuarter, in_february_is_the_last_quarter_of_the_year_before) {
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetLastQuarter, 2024, 2, 15), "2023-10-01 00:00:00 .. 2023-12-31 23:59:59");
}

TEST(GetLastQuarter, in_april_is_the_first_quarter) {
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetLastQuarter, 2024, 4, 1), "2024-01-01 00:00:00 .. 2024-03-31 23:59:59");
}

TEST(GetLastQuarter, ends_with_its_own_last_month) {
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetLastQuarter, 2024, 9, 30), "2024-04-01 00:00:00 .. 2024-06-30 23:59:59");
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetLastQuarter, 2024, 12, 31), "2024-07-01 00:00:00 .. 2024-09-30 23:59:59");
}

TEST(GetLastYear, is_the_whole_year_before) {
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetLastYear, 2024, 2, 29), "2023-01-01 00:00:00 .. 2023-12-31 23:59:59");
}

TEST(GetLastNDay, one_day_before_a_reference_at_the_end_of_today_is_yesterday_at_midnight_so_two_dates_are_covered) {
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNDay, end_of_friday, 1), "2024-03-14 00:00:00");
}

TEST(GetLastNDay, none_is_the_start_of_the_day_and_a_negative_count_moves_on) {
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNDay, end_of_friday, 0), "2024-03-15 00:00:00");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNDay, end_of_friday, -20), "2024-04-04 00:00:00");
}

// Kept: alone among the offsets to a date it is not cut to midnight.
TEST(GetLastNWeek, keeps_the_time_of_day_of_its_reference) {
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNWeek, end_of_friday, 0), "2024-03-11 23:59:59");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNWeek, end_of_friday, 1), "2024-03-04 23:59:59");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNWeek, COleDateTime(2024, 3, 15, 7, 30, 0), 2), "2024-02-26 07:30:00");
}

TEST(GetLastNWeek, counts_from_the_first_day_of_the_week_that_is_set) {
  const char* expected[] = {"2024-03-03", "2024-03-04", "2024-03-05", "2024-03-06",
                            "2024-03-07", "2024-03-08", "2024-03-02"};
  for (int first = 1; first <= 7; ++first) {
    DateTimeCalculation calculation(first);
    EXPECT_EQ(text(calculation.GetLastNWeek(end_of_friday, 1)), std::string(expected[first - 1]) + " 23:59:59");
  }
}

TEST(GetLastNWeek, a_negative_count_moves_on) {
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNWeek, end_of_friday, -1), "2024-03-18 23:59:59");
}

TEST(GetLastNMonth, none_is_the_first_of_the_references_month) {
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNMonth, end_of_friday, 0), "2024-03-01 00:00:00");
}

TEST(GetLastNMonth, thirteen_before_march_2024_is_february_2023) {
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNMonth, end_of_friday, 13), "2023-02-01 00:00:00");
}

TEST(GetLastNMonth, a_negative_count_makes_no_step) {
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNMonth, end_of_friday, -5), "2024-03-01 00:00:00");
}

TEST(GetLastNMonth, from_the_31st_no_shorter_month_is_left_out) {
  const COleDateTime reference(2024, 3, 31, 12, 0, 0);
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNMonth, reference, 1), "2024-02-01 00:00:00");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNMonth, reference, 4), "2023-11-01 00:00:00");
}

TEST(GetLastNQuarter, counts_whole_quarters_back_from_the_references) {
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNQuarter, end_of_friday, 0), "2024-01-01 00:00:00");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNQuarter, end_of_friday, 1), "2023-10-01 00:00:00");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNQuarter, COleDateTime(2024, 12, 31, 23, 59, 59), 6),
            "2023-04-01 00:00:00");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNQuarter, end_of_friday, -1), "2024-01-01 00:00:00");
}

TEST(GetLastNYear, one_before_any_day_of_2024_is_the_first_of_2023) {
  for (int month = 1; month <= 12; ++month)
    EXPECT_EQ(offset(&DateTimeCalculation::GetLastNYear, COleDateTime(2024, month, 28, 5, 6, 7), 1),
              "2023-01-01 00:00:00");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNYear, COleDateTime(2024, 2, 29, 0, 0, 0), 1), "2023-01-01 00:00:00");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNYear, end_of_friday, -1), "2025-01-01 00:00:00");
}

TEST(GetLastNHour, subtracts_fractions_of_a_day) {
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNHour, end_of_friday, 25), "2024-03-14 22:59:59");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNMinute, end_of_friday, 90), "2024-03-15 22:29:59");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNSecond, end_of_friday, 86400), "2024-03-14 23:59:59");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNHour, end_of_friday, -1), "2024-03-16 00:59:59");
  DateTimeCalculation calculation;
  EXPECT_EQ(calculation.GetLastNHour(45366.75, 6).m_dt, 45366.5);
  EXPECT_EQ(calculation.GetLastNMinute(45366.75, 7).m_dt, 45366.75 - 7 / 1440.0);
  EXPECT_EQ(calculation.GetLastNSecond(45366.75, 7).m_dt, 45366.75 - 7 / 86400.0);
}

// Kept: the hours are those of the clock's face. In New York clocks went from 02:00 to 03:00 on 2024-03-10.
TEST(GetLastNHour, across_a_change_counts_clock_hours_and_not_the_time_that_passed) {
  const ZoneGuard zone("America/New_York");
  const HeldClock clock(utc(2024, 3, 10, 16));  // noon in daylight time
  const COleDateTime now = COleDateTime::GetCurrentTime();
  ASSERT_EQ(text(now), "2024-03-10 12:00:00");
  // Eleven hours passed between these two.
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNHour, now, 12), "2024-03-10 00:00:00");
  // And this clock time never was.
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNMinute, now, 570), "2024-03-10 02:30:00");
}

// Kept: the bare number is reckoned with, whose fraction counts on in both directions from day 0.
TEST(GetLastNHour, across_day_0_the_bare_number_decides) {
  const COleDateTime noon(1899, 12, 30, 12, 0, 0);
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNHour, noon, 24), "1899-12-30 12:00:00");
}

// 1899-12-30 is day 0; the number of a time of day before it counts the other way.
TEST(DateTimeCalculation, months_and_quarters_are_counted_evenly_through_day_0) {
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNMonth, COleDateTime(1899, 12, 31, 18, 0, 0), 1),
            "1899-11-01 00:00:00");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNMonth, COleDateTime(1850, 5, 5, 23, 59, 59), 4),
            "1850-01-01 00:00:00");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNQuarter, COleDateTime(1900, 1, 15, 18, 0, 0), 1),
            "1899-10-01 00:00:00");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNQuarter, COleDateTime(1899, 12, 29, 18, 0, 0), 0),
            "1899-10-01 00:00:00");
  EXPECT_EQ(offset(&DateTimeCalculation::GetLastNDay, COleDateTime(1900, 1, 1, 18, 0, 0), 4), "1899-12-28 00:00:00");
}

TEST(UseUtc, shortly_before_midnight_west_of_greenwich_today_is_already_the_next_date_and_all_follow_it) {
  const ZoneGuard zone("America/New_York");
  const HeldClock clock(utc(2025, 1, 1, 4, 30));  // 23:30 on 31 December
  const DateTimeCalculation local(1), in_utc(1, true);
  const std::pair<const char*, const char*> expected[] = {
      {"2024-12-31 00:00:00 .. 2024-12-31 23:59:59", "2025-01-01 00:00:00 .. 2025-01-01 23:59:59"},
      {"2024-12-29 00:00:00 .. 2024-12-31 23:59:59", "2024-12-29 00:00:00 .. 2025-01-01 23:59:59"},
      {"2024-12-01 00:00:00 .. 2024-12-31 23:59:59", "2025-01-01 00:00:00 .. 2025-01-01 23:59:59"},
      {"2024-10-01 00:00:00 .. 2024-12-31 23:59:59", "2025-01-01 00:00:00 .. 2025-01-01 23:59:59"},
      {"2024-01-01 00:00:00 .. 2024-12-31 23:59:59", "2025-01-01 00:00:00 .. 2025-01-01 23:59:59"},
      {"2024-12-30 00:00:00 .. 2024-12-30 23:59:59", "2024-12-31 00:00:00 .. 2024-12-31 23:59:59"},
      {"2024-12-22 00:00:00 .. 2024-12-28 23:59:59", "2024-12-22 00:00:00 .. 2024-12-28 23:59:59"},
      {"2024-11-01 00:00:00 .. 2024-11-30 23:59:59", "2024-12-01 00:00:00 .. 2024-12-31 23:59:59"},
      {"2024-07-01 00:00:00 .. 2024-09-30 23:59:59", "2024-10-01 00:00:00 .. 2024-12-31 23:59:59"},
      {"2023-01-01 00:00:00 .. 2023-12-31 23:59:59", "2024-01-01 00:00:00 .. 2024-12-31 23:59:59"}};
  for (std::size_t i = 0; i < std::size(all_periods); ++i) {
    EXPECT_EQ(range_text(local, all_periods[i]), expected[i].first) << i;
    EXPECT_EQ(range_text(in_utc, all_periods[i]), expected[i].second) << i;
  }
}

TEST(UseUtc, shortly_after_midnight_east_of_greenwich_today_is_still_the_date_before) {
  const ZoneGuard zone("Asia/Kolkata");
  const HeldClock clock(utc(2024, 2, 29, 20));  // 01:30 on 1 March
  EXPECT_EQ(range_text(DateTimeCalculation(), &DateTimeCalculation::GetThisMonth),
            "2024-03-01 00:00:00 .. 2024-03-01 23:59:59");
  EXPECT_EQ(range_text(DateTimeCalculation(1, true), &DateTimeCalculation::GetThisMonth),
            "2024-02-01 00:00:00 .. 2024-02-29 23:59:59");
}

TEST(UseUtc, an_offset_does_not_look_at_it) {
  const ZoneGuard zone("Australia/Sydney");
  DateTimeCalculation local(4), in_utc(4, true);
  for (const OffsetCall call :
       {&DateTimeCalculation::GetLastNDay, &DateTimeCalculation::GetLastNWeek, &DateTimeCalculation::GetLastNMonth,
        &DateTimeCalculation::GetLastNQuarter, &DateTimeCalculation::GetLastNYear, &DateTimeCalculation::GetLastNHour,
        &DateTimeCalculation::GetLastNMinute, &DateTimeCalculation::GetLastNSecond})
    EXPECT_EQ(text((local.*call)(end_of_friday, 3)), text((in_utc.*call)(end_of_friday, 3)));
}

// The platform's seconds begin in 1970.
TEST(DateTimeCalculation, a_present_that_cannot_be_split_gives_status_invalid_at_both_ends_and_no_failure) {
  const ZoneGuard zone("UTC");
  const HeldClock clock(utc(1969, 12, 31, 23, 59, 59));
  for (const PeriodCall call : all_periods) {
    for (const bool use_utc : {false, true}) {
      for (const int first : {1, 7, INT_MAX, INT_MIN}) {
        COleDateTime start, end;
        (DateTimeCalculation(first, use_utc).*call)(start, end);
        EXPECT_EQ(start.GetStatus(), COleDateTime::invalid);
        EXPECT_EQ(end.GetStatus(), COleDateTime::invalid);
      }
    }
  }
}

TEST(DateTimeCalculation, a_reference_that_is_not_valid_gives_a_valid_result_only_where_numbers_are_subtracted) {
  COleDateTime null(45366.5);
  null.SetStatus(COleDateTime::null);
  DateTimeCalculation calculation(2);
  for (const OffsetCall call :
       {&DateTimeCalculation::GetLastNDay, &DateTimeCalculation::GetLastNWeek, &DateTimeCalculation::GetLastNHour,
        &DateTimeCalculation::GetLastNMinute, &DateTimeCalculation::GetLastNSecond})
    EXPECT_EQ((calculation.*call)(null, 1).GetStatus(), COleDateTime::valid);
  for (const OffsetCall call :
       {&DateTimeCalculation::GetLastNMonth, &DateTimeCalculation::GetLastNQuarter, &DateTimeCalculation::GetLastNYear})
    for (const int count : {1, 0, -1, INT_MAX, INT_MIN})
      EXPECT_EQ((calculation.*call)(null, count).GetStatus(), COleDateTime::invalid);
}

TEST(DateTimeCalculation, counts_that_lead_out_of_the_calendar_are_invalid_where_fields_are_built) {
  DateTimeCalculation calculation;
  for (const OffsetCall call : {&DateTimeCalculation::GetLastNMonth, &DateTimeCalculation::GetLastNQuarter,
                                &DateTimeCalculation::GetLastNYear}) {
    EXPECT_EQ((calculation.*call)(end_of_friday, INT_MAX).GetStatus(), COleDateTime::invalid);
    EXPECT_EQ((calculation.*call)(end_of_friday, 30000).GetStatus(), COleDateTime::invalid);
  }
  EXPECT_EQ(calculation.GetLastNYear(end_of_friday, INT_MIN).GetStatus(), COleDateTime::invalid);
  EXPECT_EQ(calculation.GetLastNYear(end_of_friday, -65536).GetStatus(), COleDateTime::invalid);
  EXPECT_EQ(text(calculation.GetLastNYear(end_of_friday, 1924)), "0100-01-01 00:00:00");
  // 99 and below would be read as years of a century.
  EXPECT_EQ(calculation.GetLastNYear(end_of_friday, 1925).GetStatus(), COleDateTime::invalid);
  EXPECT_EQ(text(calculation.GetLastNMonth(end_of_friday, 1924 * 12 + 2)), "0100-01-01 00:00:00");
  EXPECT_EQ(calculation.GetLastNMonth(end_of_friday, 1924 * 12 + 3).GetStatus(), COleDateTime::invalid);
  EXPECT_EQ(text(calculation.GetLastNQuarter(end_of_friday, 1924 * 4)), "0100-01-01 00:00:00");
  EXPECT_EQ(calculation.GetLastNQuarter(end_of_friday, 1924 * 4 + 1).GetStatus(), COleDateTime::invalid);
}

TEST(DateTimeCalculation, counts_that_lead_out_of_the_calendar_stay_valid_where_numbers_are_subtracted) {
  DateTimeCalculation calculation;
  for (const int count : {INT_MAX, INT_MIN}) {
    EXPECT_EQ(calculation.GetLastNDay(end_of_friday, count).GetStatus(), COleDateTime::valid);
    EXPECT_EQ(calculation.GetLastNDay(end_of_friday, count).GetYear(), -1);
    EXPECT_EQ(calculation.GetLastNWeek(end_of_friday, count).GetStatus(), COleDateTime::valid);
    EXPECT_EQ(calculation.GetLastNHour(end_of_friday, count).GetStatus(), COleDateTime::valid);
  }
}

TEST(DateTimeCalculation, a_first_day_of_the_week_outside_1_to_7_is_reckoned_with_as_it_is) {
  // 0 leaves a Sunday one day into the week, 8 adds 7 to every day.
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetThisWeek, 2024, 3, 10, 0), "2024-03-09 00:00:00 .. 2024-03-10 23:59:59");
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetThisWeek, 2024, 3, 10, 8), "2024-03-10 00:00:00 .. 2024-03-10 23:59:59");
  EXPECT_EQ(at_noon(&DateTimeCalculation::GetThisWeek, 2024, 3, 10, 9), "2024-03-11 00:00:00 .. 2024-03-10 23:59:59");
  DateTimeCalculation far_on(INT_MAX), far_back(INT_MIN);
  EXPECT_EQ(far_on.GetLastNWeek(end_of_friday, INT_MIN).GetYear(), -1);
  EXPECT_EQ(far_back.GetLastNWeek(end_of_friday, INT_MAX).GetYear(), -1);
}

}  // namespace
