// Plan
//   each choice, in several zones on days around both changes -> DateTimeRange_Recalculate.*
//   the last units: what they hold beside whole units -> DateTimeRange_Recalculate.*
//   UTC, odd units and types -> DateTimeRange_Recalculate.*
#include <gtest/gtest.h>

#include <string>

#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/zone_guard.h"
#include "spcbase/time/range.h"

namespace {

using test_support::HeldClock;
using test_support::utc;
using test_support::ZoneGuard;

/// "FROM to TO" of a line that is reckoned now.
std::string reckoned(const char* line, const DateTimeCalculation& calculation = DateTimeCalculation()) {
  DateTimeRange range;
  EXPECT_TRUE(range.parse(line)) << line;
  EXPECT_TRUE(range.Recalculate(calculation));
  return std::string(range.from.Format("%Y-%m-%d %H:%M:%S")) + " to " +
         std::string(range.to.Format("%Y-%m-%d %H:%M:%S"));
}

TEST(DateTimeRange_Recalculate, gives_each_named_period_its_own_moments) {
  const ZoneGuard zone("Europe/Berlin");
  const HeldClock clock(utc(2024, 5, 15, 10, 0, 0));  // a Wednesday
  EXPECT_EQ(reckoned("today"), "2024-05-15 00:00:00 to 2024-05-15 23:59:59");
  EXPECT_EQ(reckoned("this_week"), "2024-05-12 00:00:00 to 2024-05-15 23:59:59");
  EXPECT_EQ(reckoned("this_week", DateTimeCalculation(2)), "2024-05-13 00:00:00 to 2024-05-15 23:59:59");
  EXPECT_EQ(reckoned("this_month"), "2024-05-01 00:00:00 to 2024-05-15 23:59:59");
  EXPECT_EQ(reckoned("this_quarter"), "2024-04-01 00:00:00 to 2024-05-15 23:59:59");
  EXPECT_EQ(reckoned("this_year"), "2024-01-01 00:00:00 to 2024-05-15 23:59:59");
  EXPECT_EQ(reckoned("yesterday"), "2024-05-14 00:00:00 to 2024-05-14 23:59:59");
  EXPECT_EQ(reckoned("last_week"), "2024-05-05 00:00:00 to 2024-05-11 23:59:59");
  EXPECT_EQ(reckoned("last_month"), "2024-04-01 00:00:00 to 2024-04-30 23:59:59");
  EXPECT_EQ(reckoned("last_quarter"), "2024-01-01 00:00:00 to 2024-03-31 23:59:59");
  EXPECT_EQ(reckoned("last_year"), "2023-01-01 00:00:00 to 2023-12-31 23:59:59");
}

TEST(DateTimeRange_Recalculate, the_last_units_hold_the_unfinished_one_and_whole_ones_before_it) {
  const ZoneGuard zone("Europe/Berlin");
  const HeldClock clock(utc(2024, 5, 15, 10, 20, 30));
  EXPECT_EQ(reckoned("last 1 day"), "2024-05-14 00:00:00 to 2024-05-15 23:59:59");
  EXPECT_EQ(reckoned("last 0 day"), "2024-05-15 00:00:00 to 2024-05-15 23:59:59");
  EXPECT_EQ(reckoned("last -1 day"), "2024-05-16 00:00:00 to 2024-05-15 23:59:59");
  EXPECT_EQ(reckoned("last 2 month"), "2024-03-01 00:00:00 to 2024-05-15 23:59:59");
  EXPECT_EQ(reckoned("last 2 quarter"), "2023-10-01 00:00:00 to 2024-05-15 23:59:59");
  EXPECT_EQ(reckoned("last 1 year"), "2023-01-01 00:00:00 to 2024-05-15 23:59:59");
}

TEST(DateTimeRange_Recalculate, the_last_week_begins_at_the_last_second_of_the_first_day_of_the_week_before) {
  const ZoneGuard zone("Europe/Berlin");
  const HeldClock clock(utc(2024, 5, 15, 10, 0, 0));
  EXPECT_EQ(reckoned("last 1 week"), "2024-05-05 23:59:59 to 2024-05-15 23:59:59");
}

TEST(DateTimeRange_Recalculate, hours_minutes_and_seconds_end_at_the_present) {
  const ZoneGuard zone("Europe/Berlin");
  const HeldClock clock(utc(2024, 5, 15, 10, 20, 30));
  EXPECT_EQ(reckoned("last 5 hour"), "2024-05-15 07:20:30 to 2024-05-15 12:20:30");
  EXPECT_EQ(reckoned("last 5 minute"), "2024-05-15 12:15:30 to 2024-05-15 12:20:30");
  EXPECT_EQ(reckoned("last 31 second"), "2024-05-15 12:19:59 to 2024-05-15 12:20:30");
}

TEST(DateTimeRange_Recalculate, hours_over_a_change_count_on_the_face_of_the_clock) {
  const ZoneGuard zone("America/New_York");
  const HeldClock clock(utc(2024, 3, 10, 8, 0, 0));  // 04:00, an hour after the change
  EXPECT_EQ(reckoned("last 3 hour"), "2024-03-10 01:00:00 to 2024-03-10 04:00:00");
}

struct AtAnEdge {
  const char* zone;
  platform::Moment now;
  const char* today;
  const char* two_days;
  const char* today_utc;
};

class DateTimeRange_at_an_edge : public testing::TestWithParam<AtAnEdge> {};
INSTANTIATE_TEST_SUITE_P(
    Zones, DateTimeRange_at_an_edge,
    testing::Values(AtAnEdge{"America/New_York", utc(2024, 3, 11, 3, 30), "2024-03-10", "2024-03-08", "2024-03-11"},
                    AtAnEdge{"America/New_York", utc(2024, 11, 3, 5, 30), "2024-11-03", "2024-11-01", "2024-11-03"},
                    AtAnEdge{"Europe/Berlin", utc(2024, 3, 30, 23, 30), "2024-03-31", "2024-03-29", "2024-03-30"},
                    AtAnEdge{"Europe/Berlin", utc(2023, 12, 31, 23, 30), "2024-01-01", "2023-12-30", "2023-12-31"},
                    AtAnEdge{"Asia/Kolkata", utc(2024, 2, 28, 19, 0), "2024-02-29", "2024-02-27", "2024-02-28"},
                    AtAnEdge{"America/St_Johns", utc(2024, 3, 1, 3, 0), "2024-02-29", "2024-02-27", "2024-03-01"},
                    AtAnEdge{"Australia/Sydney", utc(2024, 10, 5, 16, 30), "2024-10-06", "2024-10-04", "2024-10-05"},
                    AtAnEdge{"UTC", utc(2024, 12, 31, 23, 59, 59), "2024-12-31", "2024-12-29", "2024-12-31"}));

TEST_P(DateTimeRange_at_an_edge, today_is_the_date_of_the_clock_and_days_are_whole) {
  const auto& [zone, now, today, two_days, today_utc] = GetParam();
  const ZoneGuard guard(zone);
  const HeldClock clock(now);
  const auto whole = [](const std::string& first, const std::string& last) {
    return first + " 00:00:00 to " + last + " 23:59:59";
  };
  EXPECT_EQ(reckoned("today"), whole(today, today));
  EXPECT_EQ(reckoned("last 2 day"), whole(two_days, today));
  EXPECT_EQ(reckoned("today", DateTimeCalculation(1, true)), whole(today_utc, today_utc));
}

TEST(DateTimeRange_Recalculate, a_fixed_range_keeps_its_moments) {
  EXPECT_EQ(reckoned("fixed_range 2024-03-15#08:05:09 2024-03-16"), "2024-03-15 08:05:09 to 2024-03-16 00:00:00");
}

TEST(DateTimeRange_Recalculate, all_data_and_no_initial_data_have_null_moments_that_keep_their_numbers) {
  for (const char* line : {"all_data", "no_initial_data"}) {
    DateTimeRange range;
    range.from = COleDateTime(2024, 3, 15, 0, 0, 0);
    range.to = COleDateTime(2024, 3, 16, 0, 0, 0);
    ASSERT_TRUE(range.parse(line));
    EXPECT_TRUE(range.Recalculate(DateTimeCalculation()));
    EXPECT_EQ(range.from.GetStatus(), COleDateTime::null);
    EXPECT_EQ(range.to.GetStatus(), COleDateTime::null);
    EXPECT_EQ(range.from.m_dt, 45366.0);
    EXPECT_EQ(range.to.m_dt, 45367.0);
  }
}

TEST(DateTimeRange_Recalculate, a_strange_unit_leaves_the_start_and_sets_the_end) {
  const ZoneGuard zone("UTC");
  const HeldClock clock(utc(2024, 5, 15, 10, 0, 0));
  DateTimeRange range;
  range.type = DateTimeRange::last_units;
  range.time_unit = static_cast<DateTimeRange::RangeUnit>(8);
  range.from = COleDateTime(2001, 1, 1, 0, 0, 0);
  EXPECT_TRUE(range.Recalculate(DateTimeCalculation()));
  EXPECT_EQ(range.from, COleDateTime(2001, 1, 1, 0, 0, 0));
  EXPECT_EQ(range.to, COleDateTime(2024, 5, 15, 23, 59, 59));
}

TEST(DateTimeRange_Recalculate, a_type_outside_the_table_is_false_and_changes_nothing) {
  for (const int type : {-1, 14}) {
    DateTimeRange range;
    range.type = static_cast<DateTimeRange::RangeType>(type);
    EXPECT_FALSE(range.Recalculate(DateTimeCalculation()));
    EXPECT_EQ(range.from.GetStatus(), COleDateTime::null);
  }
}

TEST(DateTimeRange_Recalculate, a_count_beyond_every_year_is_an_invalid_start) {
  const ZoneGuard zone("UTC");
  const HeldClock clock(utc(2024, 5, 15, 10, 0, 0));
  DateTimeRange range;
  ASSERT_TRUE(range.parse("last 2147483647 year"));
  EXPECT_TRUE(range.Recalculate(DateTimeCalculation()));
  EXPECT_EQ(range.from.GetStatus(), COleDateTime::invalid);
  ASSERT_TRUE(range.parse("last -2147483648 year"));
  EXPECT_TRUE(range.Recalculate(DateTimeCalculation()));
  EXPECT_EQ(range.from.GetStatus(), COleDateTime::invalid);
}

}  // namespace
