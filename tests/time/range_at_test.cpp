// Plan
//   every choice at a moment that is given is what it is when that moment is the present, in zones on both sides of UTC
//   the moment is local time: a calculation in UTC converts it
//   no moment: status invalid; choices that need none
#include <gtest/gtest.h>

#include <array>

#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/zone_guard.h"
#include "spcbase/time/range.h"
#include "tests/time/moment_text.h"

namespace {

using test_support::HeldClock;
using test_support::utc;
using test_support::ZoneGuard;
using time_tests::text;

constexpr std::array lines = {"today",       "this_week",      "this_month",    "this_quarter",   "this_year",
                              "yesterday",   "last_week",      "last_month",    "last_quarter",   "last_year",
                              "last 5 day",  "last 2 week",    "last 13 month", "last 3 quarter", "last 1 year",
                              "last 7 hour", "last 90 minute", "last 1 second"};

DateTimeRange range_of(const char* line) {
  DateTimeRange range;
  EXPECT_TRUE(range.parse(line)) << line;
  return range;
}

TEST(DateTimeRange_recalculate_at, gives_what_the_present_gives_when_that_moment_is_the_present) {
  for (const char* zone :
       {"America/New_York", "Europe/Berlin", "Asia/Kolkata", "America/St_Johns", "Australia/Sydney"}) {
    const ZoneGuard guard(zone);
    for (const auto& present : {utc(2024, 1, 1, 3, 0, 0), utc(2024, 2, 29, 12, 0, 0), utc(2024, 3, 31, 0, 59, 59),
                                utc(2023, 12, 31, 23, 30, 0)}) {
      COleDateTime local;
      {
        const HeldClock clock(present);
        local = COleDateTime::GetCurrentTime();
      }
      for (const char* line : lines)
        for (int first_day = 1; first_day <= 7; ++first_day)
          for (const bool in_utc : {false, true}) {
            const DateTimeCalculation calculation(first_day, in_utc);
            DateTimeRange now = range_of(line);
            {
              const HeldClock clock(present);
              EXPECT_TRUE(now.Recalculate(calculation));
            }
            DateTimeRange then = range_of(line);
            EXPECT_TRUE(then.recalculate_at(calculation, local));
            EXPECT_EQ(text(then.from, then.to), text(now.from, now.to)) << zone << ' ' << line << ' ' << first_day;
          }
    }
  }
}

TEST(DateTimeRange_recalculate_at, takes_local_time_and_converts_it_for_a_calculation_in_utc) {
  const ZoneGuard zone("America/New_York");
  const COleDateTime evening(2024, 3, 15, 21, 0, 0);
  DateTimeRange range = range_of("today");
  range.recalculate_at(DateTimeCalculation(), evening);
  EXPECT_EQ(text(range.from, range.to), "2024-03-15 00:00:00 .. 2024-03-15 23:59:59");
  range.recalculate_at(DateTimeCalculation(1, true), evening);
  EXPECT_EQ(text(range.from, range.to), "2024-03-16 00:00:00 .. 2024-03-16 23:59:59");
}

TEST(DateTimeRange_recalculate_at, no_moment_gives_none) {
  COleDateTime none;
  none.SetStatus(COleDateTime::invalid);
  for (const char* line : {"today", "this_week", "this_year", "last_quarter", "last 2 month", "last 1 year"}) {
    DateTimeRange range = range_of(line);
    EXPECT_TRUE(range.recalculate_at(DateTimeCalculation(), none));
    EXPECT_EQ(range.from.GetStatus(), COleDateTime::invalid) << line;
    EXPECT_EQ(range.to.GetStatus(), COleDateTime::invalid) << line;
  }
}

TEST(DateTimeRange_recalculate_at, needs_no_moment_for_a_fixed_range_and_for_all_data) {
  COleDateTime none;
  none.SetStatus(COleDateTime::invalid);
  DateTimeRange fixed = range_of("fixed_range 2024-03-01 2024-03-15#12:30:00");
  EXPECT_TRUE(fixed.recalculate_at(DateTimeCalculation(), none));
  EXPECT_EQ(text(fixed.from, fixed.to), "2024-03-01 00:00:00 .. 2024-03-15 12:30:00");
  DateTimeRange all = range_of("all_data");
  EXPECT_TRUE(all.recalculate_at(DateTimeCalculation(), none));
  EXPECT_EQ(all.from.GetStatus(), COleDateTime::null);
  EXPECT_EQ(all.to.GetStatus(), COleDateTime::null);
}

TEST(DateTimeRange_recalculate_at, leaves_a_range_of_an_unknown_type_alone) {
  DateTimeRange range = range_of("fixed_range 2024-03-01 2024-03-15");
  range.type = static_cast<DateTimeRange::RangeType>(14);
  EXPECT_FALSE(range.recalculate_at(DateTimeCalculation(), COleDateTime(2024, 3, 15, 8, 0, 0)));
  EXPECT_EQ(text(range.from, range.to), "2024-03-01 00:00:00 .. 2024-03-15 00:00:00");
}

}  // namespace
