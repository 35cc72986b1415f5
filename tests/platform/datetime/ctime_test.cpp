// Plan
// - made of seconds, fields, system times and file times; fields read in the current zone; refused arguments
// - arithmetic and order; formats; spans
#include "spcbase/platform/datetime/ctime.h"

#include <gtest/gtest.h>

#include "spcbase/testkit/zone_guard.h"
#include "tests/support/refusal.h"

namespace {

using test_support::refuses;
using test_support::ZoneGuard;

constexpr __time64_t moment = 1710511509;  // 2024-03-15 14:05:09 UTC, a Friday

TEST(CTime, fields_are_read_in_the_current_zone) {
  const CTime time(moment);
  {
    const ZoneGuard zone("UTC");
    EXPECT_EQ(time.GetYear(), 2024);
    EXPECT_EQ(time.GetMonth(), 3);
    EXPECT_EQ(time.GetDay(), 15);
    EXPECT_EQ(time.GetHour(), 14);
    EXPECT_EQ(time.GetMinute(), 5);
    EXPECT_EQ(time.GetSecond(), 9);
    EXPECT_EQ(time.GetDayOfWeek(), 6);
  }
  const ZoneGuard zone("Asia/Kolkata");
  EXPECT_EQ(time.GetHour(), 19);
  EXPECT_EQ(time.GetMinute(), 35);
}

TEST(CTime, fields_make_the_moment_that_shows_them) {
  const ZoneGuard zone("America/New_York");
  EXPECT_EQ(CTime(2024, 3, 15, 10, 5, 9).GetTime(), moment);
  EXPECT_EQ(CTime(2024, 11, 3, 1, 30, 0).GetTime(), 1730615400);
  EXPECT_EQ(CTime(2024, 11, 3, 1, 30, 0, 1).GetTime(), 1730611800);
}

TEST(CTime, fields_out_of_range_are_refused) {
  const ZoneGuard zone("UTC");
  EXPECT_TRUE(refuses([] { CTime(1899, 1, 1, 0, 0, 0); }));
  EXPECT_TRUE(refuses([] { CTime(1969, 1, 1, 0, 0, 0); }));
  EXPECT_TRUE(refuses([] { CTime(3001, 1, 1, 0, 0, 0); }));
  EXPECT_TRUE(refuses([] { CTime(2024, 13, 1, 0, 0, 0); }));
  EXPECT_TRUE(refuses([] { CTime(2024, 1, 32, 0, 0, 0); }));
  EXPECT_TRUE(refuses([] { CTime(2024, 1, 1, 24, 0, 0); }));
  EXPECT_TRUE(refuses([] { CTime(2024, 1, 1, 0, 60, 0); }));
  EXPECT_TRUE(refuses([] { CTime(2024, 1, 1, 0, 0, -1); }));
}

TEST(CTime, is_made_of_system_times_and_file_times) {
  const ZoneGuard zone("America/New_York");
  EXPECT_EQ(CTime(SYSTEMTIME{2024, 3, 0, 15, 10, 5, 9, 999}).GetTime(), moment);
  EXPECT_EQ(CTime(SYSTEMTIME{1899, 1, 0, 1, 0, 0, 0, 0}).GetTime(), 0);
  FILETIME file_time;
  const SYSTEMTIME utc = {2024, 3, 0, 15, 14, 5, 9, 999};
  ASSERT_TRUE(SystemTimeToFileTime(&utc, &file_time));
  EXPECT_EQ(CTime(file_time).GetTime(), moment);
  EXPECT_TRUE(refuses([] { CTime(FILETIME{0, 0x80000000U}); }));
}

TEST(CTime, a_moment_without_fields_reads_as_0) {
  const ZoneGuard zone("UTC");
  const CTime before(-1);
  EXPECT_EQ(before.GetYear(), 0);
  EXPECT_EQ(before.GetDayOfWeek(), 0);
  std::tm fields{};
  EXPECT_EQ(before.GetLocalTm(&fields), nullptr);
  EXPECT_EQ(before.GetGmtTm(&fields), nullptr);
  SYSTEMTIME system_time = {1, 2, 3, 4, 5, 6, 7, 8};
  EXPECT_FALSE(before.GetAsSystemTime(system_time));
  EXPECT_EQ(system_time.wYear, 1);
  EXPECT_STREQ(before.Format("%Y"), "");
}

TEST(CTime, gives_all_fields_at_once) {
  const ZoneGuard zone("Asia/Kolkata");
  const CTime time(moment);
  std::tm fields{};
  ASSERT_EQ(time.GetLocalTm(&fields), &fields);
  EXPECT_EQ(fields.tm_hour, 19);
  ASSERT_EQ(time.GetGmtTm(&fields), &fields);
  EXPECT_EQ(fields.tm_hour, 14);
  SYSTEMTIME system_time{};
  ASSERT_TRUE(time.GetAsSystemTime(system_time));
  EXPECT_EQ(system_time.wHour, 19);
  EXPECT_EQ(system_time.wDayOfWeek, 5);
  EXPECT_TRUE(refuses([&] { (void)time.GetLocalTm(nullptr); }));
}

TEST(CTime, formats_in_local_time_and_utc) {
  const ZoneGuard zone("Asia/Kolkata");
  const CTime time(moment);
  EXPECT_STREQ(time.Format("%Y-%m-%d %H:%M:%S"), "2024-03-15 19:35:09");
  EXPECT_STREQ(time.FormatGmt("%H:%M"), "14:05");
  EXPECT_STREQ(time.Format(""), "");
  EXPECT_STREQ(time.Format(nullptr), "");
  const std::string wide(300, '-');
  EXPECT_EQ(time.Format(wide.c_str()).view(), wide);
}

TEST(CTime, adds_and_subtracts_spans_and_is_ordered) {
  const CTime time(moment);
  EXPECT_EQ((time + CTimeSpan(1, 1, 1, 1)).GetTime(), moment + 90061);
  EXPECT_EQ((time - CTimeSpan(60)).GetTime(), moment - 60);
  EXPECT_EQ((CTime(moment + 5) - time).GetTotalSeconds(), 5);
  CTime moving(moment);
  moving += CTimeSpan(10);
  moving -= CTimeSpan(3);
  EXPECT_EQ(moving.GetTime(), moment + 7);
  EXPECT_LT(time, moving);
  EXPECT_GE(moving, time);
  EXPECT_NE(time, moving);
  EXPECT_EQ(CTime().GetTime(), 0);
}

TEST(CTimeSpan, has_totals_and_parts) {
  const CTimeSpan span(2, 3, 4, 5);
  EXPECT_EQ(span.GetDays(), 2);
  EXPECT_EQ(span.GetHours(), 3);
  EXPECT_EQ(span.GetMinutes(), 4);
  EXPECT_EQ(span.GetSeconds(), 5);
  EXPECT_EQ(span.GetTotalHours(), 51);
  EXPECT_EQ(span.GetTotalMinutes(), 3064);
  EXPECT_EQ(span.GetTotalSeconds(), 183845);
  EXPECT_EQ((span - CTimeSpan(183845)).GetTimeSpan(), 0);
  EXPECT_EQ((span + CTimeSpan(1)).GetTotalSeconds(), 183846);
}

}  // namespace
