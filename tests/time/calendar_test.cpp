// Calendar arithmetic, the order of date types, local time and UTC.
//
// Plan
//   month table          names and lengths; days of a month, months that are none, 1900 and 2000
//   serial days          the literal days of 1900, years before it, every day of two centuries in sequence
//   fraction of a day    the order of the sum to the last bit, values outside a day
//   less_than, equal     fields and not numbers decide; not valid before valid; two not valid are equal
//   timestamps           every field takes part, the year is signed
//   zones                both overloads; a refused conversion is false for fields and true for a moment
#include "spcbase/time/calendar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "spcbase/testkit/zone_guard.h"

namespace {

using test_support::ZoneGuard;

COleDateTime with_status(COleDateTime::DateTimeStatus status) {
  COleDateTime moment(45000.5);
  moment.SetStatus(status);
  return moment;
}

TEST(MonthTable, holds_names_and_lengths) {
  EXPECT_STREQ(month_table[0].short_name, "Jan");
  EXPECT_STREQ(month_table[8].long_name, "September");
  int common = 0;
  int leap = 0;
  for (const MonthInfo& month : month_table) {
    common += month.days_common;
    leap += month.days_leap;
  }
  EXPECT_EQ(common, 365);
  EXPECT_EQ(leap, 366);
}

TEST(GetNDayInMonth, february_1900_has_28_days_though_the_serial_numbers_count_29) {
  EXPECT_EQ(GetNDayInMonth(1900, 2), 28);
  EXPECT_EQ(DateDMYToJulian(1900, 2, 29), 60);
}

TEST(GetNDayInMonth, february_2000_has_29_days) { EXPECT_EQ(GetNDayInMonth(2000, 2), 29); }

TEST(GetNDayInMonth, a_month_outside_1_to_12_gives_minus_1) {
  EXPECT_EQ(GetNDayInMonth(2023, 13), -1);
  EXPECT_EQ(GetNDayInMonth(2023, 0), -1);
  EXPECT_EQ(GetNDayInMonth(2023, -5), -1);
}

TEST(GetNDayInMonth, the_year_is_not_checked) {
  EXPECT_EQ(GetNDayInMonth(-4, 2), 29);
  EXPECT_EQ(GetNDayInMonth(0, 12), 31);
}

TEST(DateDMYToJulian, days_around_the_day_that_1900_did_not_have) {
  EXPECT_EQ(DateDMYToJulian(1900, 1, 1), 1);
  EXPECT_EQ(DateDMYToJulian(1900, 2, 28), 59);
  EXPECT_EQ(DateDMYToJulian(1900, 2, 29), 60);
  EXPECT_EQ(DateDMYToJulian(1900, 3, 1), 61);
  EXPECT_EQ(DateDMYToJulian(1900, 3, 2), 62);
  EXPECT_EQ(DateDMYToJulian(1901, 1, 1), 367);
}

TEST(DateDMYToJulian, a_year_below_1900_gives_0) {
  EXPECT_EQ(DateDMYToJulian(1899, 12, 31), 0);
  EXPECT_EQ(DateDMYToJulian(-1, 1, 1), 0);
}

TEST(DateDMYToJulian, numbers_rise_by_one_from_day_to_day) {
  long expected = 61;
  for (int year = 1900; year < 2101; ++year)
    for (int month = year == 1900 ? 3 : 1; month <= 12; ++month)
      for (int day = 1; day <= GetNDayInMonth(year, month); ++day)
        ASSERT_EQ(DateDMYToJulian(year, month, day), expected++) << year << '-' << month << '-' << day;
}

TEST(DateDMYToJulian, month_and_day_are_not_checked) {
  EXPECT_EQ(DateDMYToJulian(2023, 1, 60), DateDMYToJulian(2023, 3, 1));
  EXPECT_EQ(DateDMYToJulian(2023, 0, 5), DateDMYToJulian(2023, 1, 5));
}

TEST(TimeHMSToNumber, twenty_four_hours_are_1_with_no_wrap) { EXPECT_EQ(TimeHMSToNumber(24, 0, 0), 1.0); }

TEST(TimeHMSToNumber, minutes_and_hours_are_added_before_seconds) {
  for (int hour = 0; hour < 24; ++hour)
    for (int minute = 0; minute < 60; ++minute) {
      const double sum = minute * (1.0 / 1440) + hour * (1.0 / 24);
      ASSERT_EQ(TimeHMSToNumber(hour, minute, 59), sum + 59 * (1.0 / 86400)) << hour << ':' << minute;
    }
}

TEST(TimeHMSToNumber, values_outside_a_day_are_not_refused) {
  EXPECT_EQ(TimeHMSToNumber(-24, 0, 0), -1.0);
  EXPECT_EQ(TimeHMSToNumber(48, 0, 0), 2.0);
}

TEST(less_than_dt, a_moment_that_is_not_valid_comes_before_every_valid_one) {
  const COleDateTime earliest(100, 1, 1, 0, 0, 0);
  for (const auto status : {COleDateTime::null, COleDateTime::invalid}) {
    EXPECT_TRUE(less_than_dt(with_status(status), earliest));
    EXPECT_FALSE(less_than_dt(earliest, with_status(status)));
  }
}

TEST(less_than_dt, two_moments_that_are_not_valid_are_not_less_than_each_other) {
  EXPECT_FALSE(less_than_dt(with_status(COleDateTime::null), with_status(COleDateTime::invalid)));
  EXPECT_FALSE(less_than_dt(with_status(COleDateTime::invalid), with_status(COleDateTime::null)));
}

TEST(less_than_dt, the_first_field_that_differs_decides) {
  const COleDateTime base(2024, 3, 15, 12, 30, 30);
  EXPECT_TRUE(less_than_dt(base, COleDateTime(2025, 1, 1, 0, 0, 0)));
  EXPECT_TRUE(less_than_dt(base, COleDateTime(2024, 4, 1, 0, 0, 0)));
  EXPECT_TRUE(less_than_dt(base, COleDateTime(2024, 3, 16, 0, 0, 0)));
  EXPECT_TRUE(less_than_dt(base, COleDateTime(2024, 3, 15, 13, 0, 0)));
  EXPECT_TRUE(less_than_dt(base, COleDateTime(2024, 3, 15, 12, 31, 0)));
  EXPECT_TRUE(less_than_dt(base, COleDateTime(2024, 3, 15, 12, 30, 31)));
  EXPECT_FALSE(less_than_dt(base, base));
}

TEST(less_than_dt, parts_of_a_second_are_not_seen) {
  const COleDateTime whole(2024, 3, 15, 12, 30, 30);
  const COleDateTime later(whole.m_dt + 0.2 / 86400);
  EXPECT_FALSE(less_than_dt(whole, later));
  EXPECT_TRUE(equal_dt(whole, later));
}

TEST(equal_dt, two_moments_that_are_not_valid_are_equal_whatever_their_status) {
  EXPECT_TRUE(equal_dt(with_status(COleDateTime::null), with_status(COleDateTime::invalid)));
  EXPECT_FALSE(equal_dt(with_status(COleDateTime::null), COleDateTime(45000.5)));
}

TEST(Timestamp, every_field_takes_part_in_order_and_equality) {
  const tagTIMESTAMP_STRUCT base{2024, 3, 15, 12, 30, 30, 500};
  EXPECT_TRUE(base == base);
  EXPECT_FALSE(base < base);
  const tagTIMESTAMP_STRUCT later[] = {{2025, 1, 1, 0, 0, 0, 0},      {2024, 4, 1, 0, 0, 0, 0},
                                       {2024, 3, 16, 0, 0, 0, 0},     {2024, 3, 15, 13, 0, 0, 0},
                                       {2024, 3, 15, 12, 31, 0, 0},   {2024, 3, 15, 12, 30, 31, 0},
                                       {2024, 3, 15, 12, 30, 30, 501}};
  for (const auto& moment : later) {
    EXPECT_TRUE(base < moment);
    EXPECT_FALSE(moment < base);
    EXPECT_FALSE(base == moment);
  }
}

TEST(Timestamp, the_year_is_signed_and_the_fraction_is_not) {
  EXPECT_TRUE((tagTIMESTAMP_STRUCT{-1, 1, 1, 0, 0, 0, 0} < tagTIMESTAMP_STRUCT{1, 1, 1, 0, 0, 0, 0}));
  EXPECT_TRUE((tagTIMESTAMP_STRUCT{1, 1, 1, 0, 0, 0, 1} < tagTIMESTAMP_STRUCT{1, 1, 1, 0, 0, 0, 0xF0000000U}));
}

TEST(Zones, a_system_time_goes_to_utc_and_back_with_its_milliseconds) {
  const ZoneGuard zone("Europe/Berlin");
  SYSTEMTIME moment{2024, 7, 0, 1, 12, 0, 0, 123};
  ASSERT_TRUE(to_utc(moment));
  EXPECT_EQ(moment.wHour, 10);
  EXPECT_EQ(moment.wMilliseconds, 123);
  ASSERT_TRUE(to_local(moment));
  EXPECT_EQ(moment.wHour, 12);
}

TEST(Zones, the_date_that_is_converted_selects_the_rule) {
  const ZoneGuard zone("Europe/Berlin");
  COleDateTime winter(2024, 1, 1, 12, 0, 0);
  COleDateTime summer(2024, 7, 1, 12, 0, 0);
  ASSERT_TRUE(to_utc(winter));
  ASSERT_TRUE(to_utc(summer));
  EXPECT_EQ(winter.GetHour(), 11);
  EXPECT_EQ(summer.GetHour(), 10);
  ASSERT_TRUE(to_local(winter));
  ASSERT_TRUE(to_local(summer));
  EXPECT_EQ(winter.GetHour(), 12);
  EXPECT_EQ(summer.GetHour(), 12);
}

TEST(Zones, fields_that_cannot_be_converted_stay_and_give_false) {
  SYSTEMTIME moment{2024, 13, 0, 1, 12, 0, 0, 0};
  EXPECT_FALSE(to_utc(moment));
  EXPECT_FALSE(to_local(moment));
  EXPECT_EQ(moment.wMonth, 13);
  EXPECT_EQ(moment.wHour, 12);
}

TEST(Zones, a_moment_that_the_platform_refuses_stays_and_gives_true) {
  const ZoneGuard zone("Europe/Berlin");
  // Fields of a zone conversion begin with the year 1601.
  COleDateTime early(1500, 6, 1, 12, 0, 0);
  const double before = early.m_dt;
  EXPECT_TRUE(to_utc(early));
  EXPECT_EQ(early.m_dt, before);
  EXPECT_EQ(early.GetStatus(), COleDateTime::valid);
  EXPECT_TRUE(to_local(early));
  EXPECT_EQ(early.m_dt, before);
}

TEST(Zones, a_moment_that_is_not_valid_or_cannot_be_split_stays_and_gives_false) {
  COleDateTime null_moment = with_status(COleDateTime::null);
  EXPECT_FALSE(to_utc(null_moment));
  EXPECT_EQ(null_moment.GetStatus(), COleDateTime::null);
  COleDateTime beyond(1e300);
  EXPECT_FALSE(to_local(beyond));
  EXPECT_EQ(beyond.m_dt, 1e300);
}

TEST(Zones, a_moment_loses_its_parts_of_a_second) {
  const ZoneGuard zone("UTC");
  COleDateTime moment(COleDateTime(2024, 3, 15, 12, 30, 30).m_dt + 0.2 / 86400);
  ASSERT_TRUE(to_utc(moment));
  EXPECT_EQ(moment.m_dt, COleDateTime(2024, 3, 15, 12, 30, 30).m_dt);
}

}  // namespace
