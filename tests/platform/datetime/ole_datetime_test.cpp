// Plan
// - made of numbers, seconds, fields, system times and file times, with the status each gives
// - fields read as -1 when not valid or not to be split; rounding to the second
// - arithmetic through day 0, statuses of results, range; order and equality
// - texts: Format in both forms, ParseDateTime; spans
#include "spcbase/platform/datetime/ole_datetime.h"

#include <gtest/gtest.h>

#include <cmath>

#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/zone_guard.h"

namespace {

using test_support::ZoneGuard;

COleDateTime with_status(COleDateTime::DateTimeStatus status) {
  COleDateTime date(1.0);
  date.SetStatus(status);
  return date;
}

TEST(COleDateTime, a_new_one_is_day_0_and_valid) {
  const COleDateTime date;
  EXPECT_EQ(date.m_dt, 0);
  EXPECT_EQ(date.GetStatus(), COleDateTime::valid);
  EXPECT_EQ(date.GetYear(), 1899);
  EXPECT_EQ(date.GetMonth(), 12);
  EXPECT_EQ(date.GetDay(), 30);
}

TEST(COleDateTime, fields_make_a_number_and_read_back) {
  const COleDateTime date(2024, 3, 15, 14, 5, 9);
  EXPECT_EQ(date.m_dt, 45366.586909722224);
  EXPECT_EQ(date.GetYear(), 2024);
  EXPECT_EQ(date.GetMonth(), 3);
  EXPECT_EQ(date.GetDay(), 15);
  EXPECT_EQ(date.GetHour(), 14);
  EXPECT_EQ(date.GetMinute(), 5);
  EXPECT_EQ(date.GetSecond(), 9);
  EXPECT_EQ(date.GetDayOfWeek(), 6);
  EXPECT_EQ(date.GetDayOfYear(), 75);
}

TEST(COleDateTime, fields_that_are_no_date_make_an_invalid_one) {
  EXPECT_EQ(COleDateTime(2023, 2, 29, 0, 0, 0).GetStatus(), COleDateTime::invalid);
  EXPECT_EQ(COleDateTime(2024, 13, 1, 0, 0, 0).GetStatus(), COleDateTime::invalid);
  EXPECT_EQ(COleDateTime(2024, 1, 1, 24, 0, 0).GetStatus(), COleDateTime::invalid);
  EXPECT_EQ(COleDateTime(-1, 1, 1, 0, 0, 0).GetStatus(), COleDateTime::invalid);
  EXPECT_EQ(COleDateTime(67560, 1, 1, 0, 0, 0).GetStatus(), COleDateTime::invalid);  // 2024 in the low 16 bits
  EXPECT_EQ(COleDateTime(99, 1, 1, 0, 0, 0).GetStatus(), COleDateTime::invalid);
}

TEST(COleDateTime, sets_date_and_time_apart) {
  COleDateTime date;
  EXPECT_EQ(date.SetDate(2024, 2, 29), 0);
  EXPECT_EQ(date.m_dt, 45351);
  EXPECT_EQ(date.SetTime(18, 0, 0), 0);
  EXPECT_EQ(date.m_dt, 0.75);
  EXPECT_EQ(date.SetDate(2023, 2, 29), 1);
  EXPECT_EQ(date.GetStatus(), COleDateTime::invalid);
  EXPECT_EQ(date.SetTime(25, 0, 0), 1);
  EXPECT_EQ(date.SetDateTime(1900, 1, 1, 0, 0, 0), 0);
  EXPECT_EQ(date.GetStatus(), COleDateTime::valid);
}

TEST(COleDateTime, seconds_and_file_times_become_local_time) {
  const ZoneGuard zone("Asia/Kolkata");
  const __time64_t moment = 1710511509;
  EXPECT_STREQ(COleDateTime(moment).Format("%Y-%m-%d %H:%M:%S"), "2024-03-15 19:35:09");
  EXPECT_EQ(COleDateTime(static_cast<__time64_t>(-1)).GetStatus(), COleDateTime::invalid);
  FILETIME file_time;
  const SYSTEMTIME utc = {2024, 7, 0, 1, 12, 0, 0, 0};
  ASSERT_TRUE(SystemTimeToFileTime(&utc, &file_time));
  EXPECT_EQ(COleDateTime(file_time).GetHour(), 17);
  EXPECT_EQ(COleDateTime(FILETIME{0, 0xFFFFFFFFU}).GetStatus(), COleDateTime::invalid);
}

TEST(COleDateTime, a_number_is_valid_without_a_check_and_reads_as_minus_1_when_it_cannot_be_split) {
  const COleDateTime date(1e300);
  EXPECT_EQ(date.GetStatus(), COleDateTime::valid);
  EXPECT_EQ(date.GetYear(), -1);
  EXPECT_EQ(date.GetSecond(), -1);
  EXPECT_EQ(date.GetDayOfWeek(), -1);
  EXPECT_EQ(date.GetDayOfYear(), -1);
  EXPECT_EQ(COleDateTime(std::nan("")).GetYear(), -1);
}

TEST(COleDateTime, every_field_reads_as_minus_1_unless_valid) {
  for (const auto status : {COleDateTime::null, COleDateTime::invalid, COleDateTime::error}) {
    const COleDateTime date = with_status(status);
    for (const int field : {date.GetYear(), date.GetMonth(), date.GetDay(), date.GetHour(), date.GetMinute(),
                            date.GetSecond(), date.GetDayOfWeek(), date.GetDayOfYear()}) {
      EXPECT_EQ(field, -1);
    }
    SYSTEMTIME fields = {7, 7, 7, 7, 7, 7, 7, 7};
    EXPECT_FALSE(date.GetAsSystemTime(fields));
    EXPECT_EQ(fields.wYear, 7);
  }
}

TEST(COleDateTime, assignment_gives_the_status_anew) {
  COleDateTime date = with_status(COleDateTime::null);
  date = 2.0;
  EXPECT_EQ(date.GetStatus(), COleDateTime::valid);
  date = SYSTEMTIME{2024, 2, 0, 30, 0, 0, 0, 0};
  EXPECT_EQ(date.GetStatus(), COleDateTime::invalid);
  date = SYSTEMTIME{2024, 2, 9, 29, 1, 2, 3, 999};
  EXPECT_EQ(date.GetStatus(), COleDateTime::valid);
  EXPECT_EQ(date.GetSecond(), 3);
}

TEST(COleDateTime, rounds_to_the_nearest_second) {
  const double half = 0.5 / 86400;
  EXPECT_EQ(COleDateTime(45366 + half * 0.99).GetSecond(), 0);
  EXPECT_EQ(COleDateTime(45366 + half * 1.01).GetSecond(), 1);
  const COleDateTime next_day(45367 - half * 0.9);
  EXPECT_EQ(next_day.GetDay(), 16);
  EXPECT_EQ(next_day.GetHour(), 0);
  EXPECT_EQ(next_day.GetDayOfWeek(), 7);
}

TEST(COleDateTime, arithmetic_counts_evenly_through_day_0) {
  const COleDateTime before(1899, 12, 29, 18, 0, 0);
  EXPECT_EQ(before.m_dt, -1.75);
  EXPECT_EQ((before + COleDateTimeSpan(0.5)).m_dt, 0.25);
  EXPECT_EQ((COleDateTime(0.25) - COleDateTimeSpan(0.5)).m_dt, -1.75);
  EXPECT_EQ((COleDateTime(0.25) - before).m_span, 0.5);
  EXPECT_EQ((COleDateTime(-1.0) + COleDateTimeSpan(0.25)).m_dt, -1.25);
  COleDateTime moving(45366.0);
  moving += COleDateTimeSpan(1, 6, 0, 0);
  moving -= COleDateTimeSpan(0, 0, 0, 86400);
  EXPECT_EQ(moving.m_dt, 45366.25);
}

TEST(COleDateTime, arithmetic_with_what_is_not_valid_says_so) {
  COleDateTimeSpan null_span(1.0);
  null_span.SetStatus(COleDateTimeSpan::null);
  EXPECT_EQ((with_status(COleDateTime::null) + COleDateTimeSpan(1.0)).GetStatus(), COleDateTime::null);
  EXPECT_EQ((with_status(COleDateTime::invalid) + COleDateTimeSpan(1.0)).GetStatus(), COleDateTime::invalid);
  EXPECT_EQ((COleDateTime(1.0) + null_span).GetStatus(), COleDateTime::null);
  EXPECT_EQ((with_status(COleDateTime::invalid) - null_span).GetStatus(), COleDateTime::null);
  EXPECT_EQ((with_status(COleDateTime::null) - COleDateTime(1.0)).GetStatus(), COleDateTimeSpan::null);
  EXPECT_EQ((COleDateTime(2958465.0) + COleDateTimeSpan(1.0)).GetStatus(), COleDateTime::invalid);
  EXPECT_EQ((COleDateTime(-657434.0) - COleDateTimeSpan(2.0)).GetStatus(), COleDateTime::invalid);
}

TEST(COleDateTime, order_follows_time_and_needs_two_valid_values) {
  const COleDateTime early(1899, 12, 29, 6, 0, 0);   // -1.25
  const COleDateTime later(1899, 12, 29, 18, 0, 0);  // -1.75
  EXPECT_TRUE(early < later);
  EXPECT_TRUE(later > early);
  EXPECT_TRUE(early <= early);
  EXPECT_TRUE(early >= early);
  EXPECT_FALSE(later < early);
  const COleDateTime null = with_status(COleDateTime::null);
  EXPECT_FALSE(null < early);
  EXPECT_FALSE(early < null);
  EXPECT_FALSE(null <= null);
}

TEST(COleDateTime, equality_looks_at_number_and_status) {
  EXPECT_TRUE(COleDateTime(1.0) == COleDateTime(1.0));
  EXPECT_TRUE(COleDateTime(1.0) != COleDateTime(1.5));
  EXPECT_TRUE(with_status(COleDateTime::null) == with_status(COleDateTime::null));
  EXPECT_TRUE(with_status(COleDateTime::null) != COleDateTime(1.0));
}

TEST(COleDateTime, formats_by_locale_and_by_strftime) {
  const COleDateTime date(2024, 3, 15, 14, 5, 9);
  EXPECT_STREQ(date.Format(), "3/15/2024 2:05:09 PM");
  EXPECT_STREQ(date.Format(VAR_DATEVALUEONLY), "3/15/2024");
  EXPECT_STREQ(date.Format(VAR_TIMEVALUEONLY, 0x407), "14:05:09");
  EXPECT_STREQ(date.Format("%d.%m.%y, day %j"), "15.03.24, day 075");
  EXPECT_STREQ(COleDateTime(1850, 5, 5, 5, 5, 5).Format("%Y-%m-%d %H:%M:%S"), "1850-05-05 05:05:05");
}

TEST(COleDateTime, null_formats_as_nothing_and_invalid_says_so) {
  EXPECT_STREQ(with_status(COleDateTime::null).Format(), "");
  EXPECT_STREQ(with_status(COleDateTime::null).Format("%Y"), "");
  EXPECT_STREQ(with_status(COleDateTime::invalid).Format(), "Invalid DateTime");
  EXPECT_STREQ(with_status(COleDateTime::invalid).Format("%Y"), "Invalid DateTime");
  EXPECT_STREQ(COleDateTime(1e300).Format(), "Invalid DateTime");
}

TEST(COleDateTime, parses_texts) {
  COleDateTime date;
  EXPECT_TRUE(date.ParseDateTime("3/15/2024 2:05:09 PM"));
  EXPECT_EQ(date.m_dt, 45366.586909722224);
  EXPECT_TRUE(date.ParseDateTime("15.3.2024", 0, 0x407));
  EXPECT_EQ(date.m_dt, 45366);
  EXPECT_FALSE(date.ParseDateTime("no date"));
  EXPECT_EQ(date.GetStatus(), COleDateTime::invalid);
  EXPECT_EQ(date.m_dt, 0);
  EXPECT_FALSE(date.ParseDateTime(nullptr));
  EXPECT_TRUE(date.ParseDateTime("12:00"));
  EXPECT_EQ(date.GetStatus(), COleDateTime::valid);
}

TEST(COleDateTimeSpan, has_totals_and_parts) {
  const COleDateTimeSpan span(2, 3, 4, 5);
  EXPECT_EQ(span.GetDays(), 2);
  EXPECT_EQ(span.GetHours(), 3);
  EXPECT_EQ(span.GetMinutes(), 4);
  EXPECT_EQ(span.GetSeconds(), 5);
  EXPECT_EQ(span.GetTotalHours(), 51);
  EXPECT_EQ(span.GetTotalMinutes(), 3064);
  EXPECT_EQ(span.GetTotalSeconds(), 183845);
  EXPECT_EQ((-span).GetDays(), -2);
  EXPECT_EQ((-span).GetSeconds(), -5);
}

TEST(COleDateTimeSpan, a_second_lost_to_rounding_comes_back) {
  EXPECT_EQ(COleDateTimeSpan(0, 0, 0, 59).GetSeconds(), 59);
  for (int seconds = 0; seconds < 86400; ++seconds) {
    ASSERT_EQ(COleDateTimeSpan(seconds / 86400.0).GetTotalSeconds(), seconds);
  }
}

TEST(COleDateTimeSpan, adds_subtracts_and_keeps_the_status) {
  COleDateTimeSpan span(1.5);
  span += COleDateTimeSpan(0.25);
  span -= COleDateTimeSpan(1.0);
  EXPECT_EQ(span.m_span, 0.75);
  EXPECT_TRUE(COleDateTimeSpan(1.0) < COleDateTimeSpan(2.0));
  EXPECT_TRUE(COleDateTimeSpan(1.0) == COleDateTimeSpan(1.0));
  span.SetStatus(COleDateTimeSpan::null);
  EXPECT_EQ((span + COleDateTimeSpan(1.0)).GetStatus(), COleDateTimeSpan::null);
  EXPECT_EQ(COleDateTimeSpan(1e9).GetStatus(), COleDateTimeSpan::invalid);
}

}  // namespace
