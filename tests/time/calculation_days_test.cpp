// Every day of four hundred years beside the calendar of <chrono>.
//
// Plan: the ten periods around a moment of the day; the five offsets to a date, with counts that change from day to
// day. 1901 to 2300 holds three centuries that are no leap years and one that is.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>

#include "spcbase/time/calculation.h"
#include "spcbase/time/internal/periods.h"

namespace {

using namespace std::chrono;

constexpr long seconds_per_day = 86400;
constexpr sys_days day_0 = sys_days{year(1899) / December / 30};
constexpr sys_days first_day = sys_days{year(1901) / January / 1};
constexpr sys_days last_day = sys_days{year(2300) / December / 31};

/// A moment in seconds from day 0, by its bare number: behind day 0 it counts evenly. -1 for one that is not valid.
long seconds_of(const COleDateTime& moment) {
  return moment.GetStatus() == COleDateTime::valid ? std::lround(moment.m_dt * seconds_per_day) : -1;
}

long start_of(sys_days day) { return (day - day_0).count() * seconds_per_day; }
long end_of(sys_days day) { return start_of(day) + seconds_per_day - 1; }

/// One day: its moment, and what the calendar says about it.
struct Case {
  explicit Case(sys_days d)
      : today(d),
        date(d),
        this_month(date.year() / date.month()),
        quarter(this_month - months((static_cast<unsigned>(date.month()) - 1) % 3)),
        index((d - first_day).count()),
        first_weekday(static_cast<int>(index % 7) + 1),
        second(index * 7919 % seconds_per_day),
        now(static_cast<double>((d - day_0).count()) + static_cast<double>(second) / seconds_per_day) {
    const int weekday_number = static_cast<int>(weekday{d}.c_encoding()) + 1;
    week = d - days((weekday_number - first_weekday + 7) % 7);
  }
  sys_days today;
  year_month_day date;
  year_month this_month;
  year_month quarter;
  long index;
  int first_weekday;
  long second;
  COleDateTime now;
  sys_days week;
};

bool covers(const Period& period, sys_days first, sys_days last) {
  return seconds_of(period.start) == start_of(first) && seconds_of(period.end) == end_of(last);
}

TEST(Periods, cover_the_days_of_the_calendar_on_every_day_of_400_years) {
  for (sys_days day = first_day; day <= last_day; day += days(1)) {
    const Case c(day);
    const sys_days month_start = c.this_month / 1;
    const sys_days quarter_start = c.quarter / 1;
    const sys_days year_start = c.date.year() / January / 1;
    const sys_days last_month = (c.this_month - months(1)) / 1;
    const sys_days last_quarter = (c.quarter - months(3)) / 1;
    const sys_days last_year = (c.date.year() - years(1)) / January / 1;
    ASSERT_TRUE(covers(periods::today(c.now), day, day)) << c.index;
    ASSERT_TRUE(covers(periods::this_week(c.now, c.first_weekday), c.week, day)) << c.index;
    ASSERT_TRUE(covers(periods::this_month(c.now), month_start, day)) << c.index;
    ASSERT_TRUE(covers(periods::this_quarter(c.now), quarter_start, day)) << c.index;
    ASSERT_TRUE(covers(periods::this_year(c.now), year_start, day)) << c.index;
    ASSERT_TRUE(covers(periods::yesterday(c.now), day - days(1), day - days(1))) << c.index;
    ASSERT_TRUE(covers(periods::last_week(c.now, c.first_weekday), c.week - days(7), c.week - days(1))) << c.index;
    ASSERT_TRUE(covers(periods::last_month(c.now), last_month, month_start - days(1))) << c.index;
    ASSERT_TRUE(covers(periods::last_quarter(c.now), last_quarter, quarter_start - days(1))) << c.index;
    ASSERT_TRUE(covers(periods::last_year(c.now), last_year, year_start - days(1))) << c.index;
  }
}

TEST(DateTimeCalculation, offsets_reach_the_days_of_the_calendar_from_every_day_of_400_years) {
  for (sys_days day = first_day; day <= last_day; day += days(1)) {
    const Case c(day);
    DateTimeCalculation calculation(c.first_weekday);
    const int n = static_cast<int>(c.index % 31);
    const sys_days week = c.week - days(7 * n);
    const sys_days month_start = (c.this_month - months(n)) / 1;
    const sys_days quarter_start = (c.quarter - months(3 * n)) / 1;
    const sys_days year_start = (c.date.year() - years(n)) / January / 1;
    ASSERT_EQ(seconds_of(calculation.GetLastNDay(c.now, n)), start_of(day - days(n))) << c.index;
    ASSERT_EQ(seconds_of(calculation.GetLastNWeek(c.now, n)), start_of(week) + c.second) << c.index;
    ASSERT_EQ(seconds_of(calculation.GetLastNMonth(c.now, n)), start_of(month_start)) << c.index;
    ASSERT_EQ(seconds_of(calculation.GetLastNQuarter(c.now, n)), start_of(quarter_start)) << c.index;
    ASSERT_EQ(seconds_of(calculation.GetLastNYear(c.now, n)), start_of(year_start)) << c.index;
  }
}

}  // namespace
