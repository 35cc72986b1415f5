// CSystemTime, the converter between date types.
//
// Plan
//   fields               zero at first; clear; null pointers clear; compare without the day of the week
//   timestamps           fraction times ten and by ten, with the wrap at 65536; weekdays, January and February apart
//   file times           both entries, one that cannot be split
//   automation dates     statuses, a value that cannot be split, recorded statuses of the way back
//   calendar seconds     local fields, refused ranges and times, the daylight rule
//   operators            assignment and order do what the named operations do
#include "spcbase/time/internal/system_time_converter.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/zone_guard.h"
#include "spcbase/time/calendar.h"
#include "tests/support/refusal.h"
#include "tests/support/vector_file.h"

namespace {

using test_support::refuses;
using test_support::ZoneGuard;

void expect_fields(const _SYSTEMTIME& t, const std::vector<int>& expected) {
  const std::vector<int> actual{t.wYear, t.wMonth,  t.wDayOfWeek, t.wDay,
                                t.wHour, t.wMinute, t.wSecond,    t.wMilliseconds};
  EXPECT_EQ(actual, expected);
}

const std::vector<int> all_zero(8, 0);

CSystemTime of(WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second, WORD milliseconds = 0) {
  CSystemTime moment;
  const _SYSTEMTIME fields{year, month, 0, day, hour, minute, second, milliseconds};
  moment.FromSystemTime(&fields);
  return moment;
}

CSystemTime from_timestamp(const tagTIMESTAMP_STRUCT& timestamp) {
  CSystemTime moment;
  moment.FromTimestamp(&timestamp);
  return moment;
}

TEST(CSystemTime, a_new_one_is_all_zero_and_so_is_a_cleared_one) {
  CSystemTime moment;
  expect_fields(moment, all_zero);
  moment = of(2024, 3, 15, 1, 2, 3, 4);
  moment.Clear();
  expect_fields(moment, all_zero);
}

TEST(CSystemTime, a_null_pointer_clears) {
  CSystemTime moment = of(2024, 3, 15, 1, 2, 3, 4);
  moment.FromTimestamp(nullptr);
  expect_fields(moment, all_zero);
  moment = of(2024, 3, 15, 1, 2, 3, 4);
  moment.FromFileTime(nullptr);
  expect_fields(moment, all_zero);
  moment = of(2024, 3, 15, 1, 2, 3, 4);
  moment.FromSystemTime(nullptr);
  expect_fields(moment, all_zero);
  moment = of(2024, 3, 15, 1, 2, 3, 4);
  moment.FromSystemTimeObject(nullptr);
  expect_fields(moment, all_zero);
}

TEST(CSystemTime, compare_of_two_moments_that_differ_only_in_day_of_week_is_0) {
  CSystemTime a = of(2024, 3, 15, 1, 2, 3, 4);
  CSystemTime b = a;
  b.wDayOfWeek = 5;
  EXPECT_EQ(a.Compare(b), 0);
  EXPECT_TRUE(a == b);
}

TEST(CSystemTime, compare_looks_at_all_other_fields_in_order) {
  const CSystemTime base = of(2024, 3, 15, 12, 30, 30, 500);
  const CSystemTime later[] = {of(2025, 1, 1, 0, 0, 0),         of(2024, 4, 1, 0, 0, 0),    of(2024, 3, 16, 0, 0, 0),
                               of(2024, 3, 15, 13, 0, 0),       of(2024, 3, 15, 12, 31, 0), of(2024, 3, 15, 12, 30, 31),
                               of(2024, 3, 15, 12, 30, 30, 501)};
  for (const CSystemTime& moment : later) {
    EXPECT_EQ(base.Compare(moment), -1);
    EXPECT_EQ(moment.Compare(base), 1);
    EXPECT_TRUE(base < moment);
    EXPECT_TRUE(moment > base);
    EXPECT_FALSE(base == moment);
  }
}

TEST(CSystemTime, compare_counts_fields_as_unsigned) {
  EXPECT_EQ(of(0xFFFF, 1, 1, 0, 0, 0).Compare(of(2024, 1, 1, 0, 0, 0)), 1);
}

TEST(CSystemTime, a_fraction_of_7_comes_back_as_7) {
  tagTIMESTAMP_STRUCT back{};
  from_timestamp({2024, 3, 15, 1, 2, 3, 7}).ToTimestamp(&back);
  EXPECT_EQ(back.fraction, 7U);
}

TEST(CSystemTime, a_fraction_of_7000_comes_back_as_446) {
  const CSystemTime moment = from_timestamp({2024, 3, 15, 1, 2, 3, 7000});
  EXPECT_EQ(moment.wMilliseconds, 4464);
  tagTIMESTAMP_STRUCT back{};
  moment.ToTimestamp(&back);
  EXPECT_EQ(back.fraction, 446U);
}

TEST(CSystemTime, a_whole_fraction_wraps_at_32_bits_too) {
  EXPECT_EQ(from_timestamp({2024, 3, 15, 1, 2, 3, 999000000}).wMilliseconds, static_cast<WORD>(999000000U * 10U));
}

TEST(CSystemTime, from_timestamp_copies_the_fields) {
  expect_fields(from_timestamp({2024, 3, 15, 23, 59, 58, 0}), {2024, 3, 5, 15, 23, 59, 58, 0});
}

TEST(CSystemTime, weekdays_follow_the_calendar_from_march_on) {
  EXPECT_EQ(from_timestamp({2024, 3, 15, 0, 0, 0, 0}).wDayOfWeek, 5);   // a Friday
  EXPECT_EQ(from_timestamp({2000, 12, 31, 0, 0, 0, 0}).wDayOfWeek, 0);  // a Sunday
}

TEST(CSystemTime, weekdays_of_january_and_february_are_not_the_calendars) {
  EXPECT_EQ(from_timestamp({2024, 1, 15, 0, 0, 0, 0}).wDayOfWeek, 4);  // in truth a Monday
  EXPECT_EQ(from_timestamp({2023, 2, 1, 0, 0, 0, 0}).wDayOfWeek, 6);   // in truth a Wednesday
}

TEST(CSystemTime, weekdays_before_the_third_of_september_1752_follow_the_old_calendar) {
  EXPECT_EQ(from_timestamp({1752, 9, 2, 0, 0, 0, 0}).wDayOfWeek, 3);  // a Wednesday, the day before Thursday the 14th
  EXPECT_EQ(from_timestamp({1752, 9, 14, 0, 0, 0, 0}).wDayOfWeek, 4);
}

TEST(CSystemTime, to_timestamp_of_null_does_nothing) {
  CSystemTime moment = of(2024, 3, 15, 1, 2, 3, 4);
  moment.ToTimestamp(nullptr);
  expect_fields(moment, {2024, 3, 0, 15, 1, 2, 3, 4});
}

TEST(CSystemTime, to_timestamp_gives_a_tenth_of_the_milliseconds) {
  tagTIMESTAMP_STRUCT timestamp{};
  of(2024, 3, 15, 1, 2, 3, 999).ToTimestamp(&timestamp);
  EXPECT_TRUE((timestamp == tagTIMESTAMP_STRUCT{2024, 3, 15, 1, 2, 3, 99}));
}

TEST(CSystemTime, file_times_come_in_by_both_entries) {
  SYSTEMTIME fields{2024, 3, 5, 15, 1, 2, 3, 456};
  FILETIME file_time{};
  ASSERT_TRUE(SystemTimeToFileTime(&fields, &file_time));
  CSystemTime moment;
  moment.FromFileTime(&file_time);
  expect_fields(moment, {2024, 3, 5, 15, 1, 2, 3, 456});
  moment.Clear();
  moment.FromFileTimeRef(file_time);
  expect_fields(moment, {2024, 3, 5, 15, 1, 2, 3, 456});
  moment.Clear();
  moment = &file_time;
  expect_fields(moment, {2024, 3, 5, 15, 1, 2, 3, 456});
}

TEST(CSystemTime, a_file_time_that_cannot_be_split_gives_zeros) {
  CSystemTime moment = of(2024, 3, 15, 1, 2, 3, 4);
  const FILETIME negative{0, 0x80000000U};
  moment.FromFileTime(&negative);
  expect_fields(moment, all_zero);
}

TEST(CSystemTime, an_automation_date_gives_fields_without_milliseconds) {
  CSystemTime moment = of(2000, 1, 1, 1, 1, 1, 999);
  moment.FromOleDateTime(COleDateTime(2024, 3, 15, 13, 14, 15));
  expect_fields(moment, {2024, 3, 5, 15, 13, 14, 15, 0});
}

TEST(CSystemTime, an_automation_date_that_is_not_valid_gives_zeros) {
  for (const auto status : {COleDateTime::invalid, COleDateTime::null}) {
    COleDateTime date(45000.5);
    date.SetStatus(status);
    CSystemTime moment = of(2024, 3, 15, 1, 2, 3, 4);
    moment.FromOleDateTime(date);
    expect_fields(moment, all_zero);
  }
}

TEST(CSystemTime, a_valid_automation_date_that_cannot_be_split_gives_ffff_and_fffe) {
  CSystemTime moment;
  moment.FromOleDateTime(COleDateTime(1e300));
  expect_fields(moment, {0xFFFF, 0xFFFF, 0xFFFE, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0});
}

TEST(CSystemTime, a_calendar_second_gives_local_fields) {
  const ZoneGuard zone("Europe/Berlin");
  CSystemTime moment;
  moment.FromTime(CTime(1710460800));  // 2024-03-15 00:00:00 UTC
  expect_fields(moment, {2024, 3, 5, 15, 1, 0, 0, 0});
}

TEST(CSystemTime, a_calendar_second_outside_the_platforms_years_gives_no_date) {
  CSystemTime moment;
  moment.FromTime(CTime(-1));
  expect_fields(moment, {0, 0, 0xFFFF, 0, 0xFFFF, 0xFFFF, 0xFFFF, 0});
}

TEST(CSystemTime, to_time_reads_local_fields_and_leaves_daylight_saving_to_the_zone) {
  const ZoneGuard zone("Europe/Berlin");
  CTime moment;
  of(2024, 7, 1, 12, 0, 0).ToTime(&moment);
  EXPECT_EQ(moment.GetTime(), 1719828000);  // 10:00 UTC
  of(2024, 1, 1, 12, 0, 0).ToTime(&moment);
  EXPECT_EQ(moment.GetTime(), 1704106800);  // 11:00 UTC
}

TEST(CSystemTime, to_time_refuses_fields_out_of_range) {
  CTime moment(77);
  const CSystemTime refused[] = {of(1969, 12, 31, 0, 0, 0), of(2024, 0, 1, 0, 0, 0),  of(2024, 13, 1, 0, 0, 0),
                                 of(2024, 1, 0, 0, 0, 0),   of(2024, 1, 32, 0, 0, 0), of(2024, 1, 1, 24, 0, 0),
                                 of(2024, 1, 1, 0, 60, 0),  of(2024, 1, 1, 0, 0, 60)};
  for (const CSystemTime& fields : refused)
    EXPECT_TRUE(refuses([&] { fields.ToTime(&moment); }));
  EXPECT_EQ(moment.GetTime(), 77);
}

TEST(CSystemTime, to_time_refuses_a_time_that_the_platform_cannot_count) {
  const ZoneGuard zone("Asia/Tokyo");
  CTime moment(77);
  EXPECT_TRUE(refuses([&] { of(1970, 1, 1, 0, 0, 0).ToTime(&moment); }));  // 1969 in UTC
  EXPECT_TRUE(refuses([&] { of(3500, 1, 1, 0, 0, 0).ToTime(&moment); }));
  EXPECT_EQ(moment.GetTime(), 77);
}

TEST(CSystemTime, to_time_carries_a_day_that_the_month_lacks) {
  const ZoneGuard zone("UTC");
  CTime moment;
  of(2023, 2, 31, 0, 0, 0).ToTime(&moment);
  EXPECT_EQ(moment.GetMonth(), 3);
  EXPECT_EQ(moment.GetDay(), 3);
}

TEST(CSystemTime, to_ole_date_time_keeps_whole_seconds) {
  COleDateTime date;
  date.SetStatus(COleDateTime::null);
  of(2024, 3, 15, 13, 14, 15, 900).ToOleDateTime(&date);
  EXPECT_EQ(date.GetStatus(), COleDateTime::valid);
  EXPECT_EQ(date, COleDateTime(2024, 3, 15, 13, 14, 15));
}

TEST(CSystemTime, to_ole_date_time_of_fields_that_change_on_the_way_is_invalid) {
  COleDateTime date;
  of(2023, 2, 31, 0, 0, 0).ToOleDateTime(&date);  // mended to 3 March
  EXPECT_EQ(date.GetStatus(), COleDateTime::invalid);
  of(20, 1, 1, 0, 0, 0).ToOleDateTime(&date);  // read as 2020
  EXPECT_EQ(date.GetStatus(), COleDateTime::invalid);
  CSystemTime().ToOleDateTime(&date);
  EXPECT_EQ(date.GetStatus(), COleDateTime::invalid);
}

TEST(CSystemTime, to_ole_date_time_gives_the_recorded_statuses) {
  int compared = 0;
  for (const auto& row : test_support::read_vectors("oledate.tsv")) {
    if (row["direction"] != "to_variant" || row.is_suspect()) continue;
    SCOPED_TRACE(row.place());
    const auto n = test_support::numbers_in(row["input"]);
    ASSERT_EQ(n.size(), 8U);
    const auto word = [&](std::size_t i) { return static_cast<WORD>(n[i]); };
    const _SYSTEMTIME fields{word(0), word(1), word(2), word(3), word(4), word(5), word(6), word(7)};
    CSystemTime moment;
    moment.FromSystemTime(&fields);
    COleDateTime date;
    moment.ToOleDateTime(&date);
    EXPECT_EQ(std::to_string(static_cast<int>(date.GetStatus())), row["status"]);
    ++compared;
  }
  EXPECT_GT(compared, 50);
}

TEST(CSystemTime, set_now_is_the_present_in_utc_with_milliseconds) {
  const ZoneGuard zone("Asia/Tokyo");
  const test_support::HeldClock clock(test_support::utc(2024, 3, 15, 0, 0, 0, 456));
  CSystemTime moment;
  moment.SetNow();
  expect_fields(moment, {2024, 3, 5, 15, 0, 0, 0, 456});
}

TEST(CSystemTime, reserved_gives_0) { EXPECT_EQ(CSystemTime().Reserved(), 0); }

TEST(CSystemTime, assignments_do_what_the_named_operations_do) {
  const ZoneGuard zone("UTC");
  CSystemTime moment;
  CSystemTime& date_result = (moment = COleDateTime(2024, 3, 15, 13, 14, 15));
  EXPECT_EQ(&date_result, &moment);
  expect_fields(moment, {2024, 3, 5, 15, 13, 14, 15, 0});
  moment = CTime(1710460800);
  expect_fields(moment, {2024, 3, 5, 15, 0, 0, 0, 0});
  const CSystemTime other = of(2000, 1, 2, 3, 4, 5, 6);
  moment = other;
  expect_fields(moment, {2000, 1, 0, 2, 3, 4, 5, 6});
}

}  // namespace
