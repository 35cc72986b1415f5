// Periods in several zones, beside an independent reckoning: the zones' offsets from their written rules, the calendar
// from <chrono>.
//
// Plan
//   every period, local and in UTC, for each first day of the week, at moments around both changes of each zone, at the
//   ends of months and years, on the leap day
//   offsets from the end of that day
//   kept: in the repeated hour the present in UTC is that of the first reading
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/zone_guard.h"
#include "spcbase/time/calculation.h"
#include "spcbase/time/internal/present.h"
#include "tests/time/moment_text.h"

namespace {

using namespace std::chrono;
using test_support::HeldClock;
using test_support::utc;
using test_support::ZoneGuard;
using time_tests::range_text;
using time_tests::text;

enum class Rule { none, american, european, australian };

struct Zone {
  const char* name;
  minutes standard;
  Rule rule;
};

const Zone zones[] = {
    {"America/New_York", hours(-5), Rule::american},   {"Europe/Berlin", hours(1), Rule::european},
    {"Asia/Kolkata", minutes(330), Rule::none},        {"America/St_Johns", minutes(-210), Rule::american},
    {"Australia/Sydney", hours(10), Rule::australian}, {"UTC", minutes(0), Rule::none},
};

/// When clocks are put forward and back in a year, by the rules in force since 2012.
std::pair<sys_seconds, sys_seconds> changes_of(const Zone& zone, year y) {
  if (zone.rule == Rule::european)
    return {sys_days{y / March / Sunday[last]} + hours(1), sys_days{y / October / Sunday[last]} + hours(1)};
  if (zone.rule == Rule::american)
    return {sys_days{y / March / Sunday[2]} + hours(2) - zone.standard,
            sys_days{y / November / Sunday[1]} + hours(1) - zone.standard};
  return {sys_days{y / October / Sunday[1]} + hours(2) - zone.standard,
          sys_days{y / April / Sunday[1]} + hours(2) - zone.standard};
}

seconds offset_at(const Zone& zone, sys_seconds moment) {
  if (zone.rule == Rule::none) return zone.standard;
  const year y = year_month_day{floor<days>(moment + zone.standard)}.year();
  const auto [forward, back] = changes_of(zone, y);
  const bool daylight = forward < back ? moment >= forward && moment < back : moment >= forward || moment < back;
  return zone.standard + (daylight ? hours(1) : hours(0));
}

/// The moments of a year at which something may go wrong.
std::vector<sys_seconds> moments_of(const Zone& zone, year y) {
  std::vector<sys_seconds> moments;
  if (zone.rule != Rule::none) {
    const auto [forward, back] = changes_of(zone, y);
    for (const sys_seconds change : {forward, back})
      for (const seconds off : {seconds(-86400), seconds(-3600), seconds(-1), seconds(0), seconds(1800), seconds(3600),
                                seconds(43200), seconds(86400)})
        moments.push_back(change + off);
  }
  // The midnights between months, by UTC and by the zone's clock.
  for (unsigned m = 1; m <= 12; ++m) {
    const sys_seconds midnight = sys_days{y / month(m) / 1};
    for (const seconds off : {seconds(0), seconds(zone.standard), seconds(zone.standard + hours(1))}) {
      moments.push_back(midnight - off - seconds(1));
      moments.push_back(midnight - off);
    }
  }
  moments.push_back(sys_days{y / February / last} + hours(12));
  moments.push_back(sys_days{y / December / 31} + hours(12));
  moments.push_back(sys_days{y / January / 1} + hours(12));
  return moments;
}

std::string date_text(sys_days day) {
  const year_month_day date{day};
  return text(COleDateTime(static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
                           static_cast<int>(static_cast<unsigned>(date.day())), 0, 0, 0))
      .substr(0, 10);
}

std::string period_text(sys_days first, sys_days last_day) {
  return date_text(first) + " 00:00:00 .. " + date_text(last_day) + " 23:59:59";
}

year_month quarter_of(year_month m) { return m - months((static_cast<unsigned>(m.month()) - 1) % 3); }

sys_days first_of(year_month m) { return m / 1; }

days into_week(sys_days day, int first_day_of_week) {
  const int weekday_number = static_cast<int>(weekday{day}.c_encoding()) + 1;
  return days((weekday_number - first_day_of_week + 7) % 7);
}

void expect_week(const DateTimeCalculation& calculation, sys_days today) {
  const sys_days week = today - into_week(today, calculation.first_day_of_week);
  EXPECT_EQ(range_text(calculation, &DateTimeCalculation::GetThisWeek), period_text(week, today));
  EXPECT_EQ(range_text(calculation, &DateTimeCalculation::GetLastWeek), period_text(week - days(7), week - days(1)));
}

void expect_periods(const DateTimeCalculation& calculation, sys_days today) {
  const year_month_day date{today};
  const year_month m = date.year() / date.month();
  const year_month q = quarter_of(m);
  const sys_days this_year = date.year() / January / 1;
  const sys_days last_year = (date.year() - years(1)) / January / 1;
  const auto shown = [&](auto period) { return range_text(calculation, period); };
  EXPECT_EQ(shown(&DateTimeCalculation::GetToday), period_text(today, today));
  EXPECT_EQ(shown(&DateTimeCalculation::GetThisMonth), period_text(first_of(m), today));
  EXPECT_EQ(shown(&DateTimeCalculation::GetThisQuarter), period_text(first_of(q), today));
  EXPECT_EQ(shown(&DateTimeCalculation::GetThisYear), period_text(this_year, today));
  EXPECT_EQ(shown(&DateTimeCalculation::GetYesterday), period_text(today - days(1), today - days(1)));
  EXPECT_EQ(shown(&DateTimeCalculation::GetLastMonth), period_text(first_of(m - months(1)), first_of(m) - days(1)));
  EXPECT_EQ(shown(&DateTimeCalculation::GetLastQuarter), period_text(first_of(q - months(3)), first_of(q) - days(1)));
  EXPECT_EQ(shown(&DateTimeCalculation::GetLastYear), period_text(last_year, this_year - days(1)));
}

void expect_offsets(sys_days today) {
  const year_month_day date{today};
  const year_month m = date.year() / date.month();
  COleDateTime start, end;
  DateTimeCalculation calculation(2);
  calculation.GetToday(start, end);
  for (const int n : {0, 1, 3, 13}) {
    EXPECT_EQ(text(calculation.GetLastNDay(end, n)), date_text(today - days(n)) + " 00:00:00");
    EXPECT_EQ(text(calculation.GetLastNWeek(end, n)),
              date_text(today - into_week(today, 2) - days(7 * n)) + " 23:59:59");
    EXPECT_EQ(text(calculation.GetLastNMonth(end, n)), date_text(first_of(m - months(n))) + " 00:00:00");
    EXPECT_EQ(text(calculation.GetLastNQuarter(end, n)),
              date_text(first_of(quarter_of(m) - months(3 * n))) + " 00:00:00");
    EXPECT_EQ(text(calculation.GetLastNYear(end, n)), date_text((date.year() - years(n)) / January / 1) + " 00:00:00");
  }
}

class CalculationInZone : public testing::TestWithParam<Zone> {};

TEST_P(CalculationInZone, every_period_follows_the_calendar_around_changes_and_ends_of_months) {
  const Zone& zone = GetParam();
  const ZoneGuard guard(zone.name);
  for (const int y : {2023, 2024, 2025}) {
    for (const sys_seconds moment : moments_of(zone, year(y))) {
      const HeldClock clock(moment);
      const sys_days local_day = floor<days>(moment + offset_at(zone, moment));
      const sys_days utc_day = floor<days>(moment);
      SCOPED_TRACE(std::string(zone.name) + ", second " + std::to_string(moment.time_since_epoch().count()));
      for (int first = 1; first <= 7; ++first) {
        expect_week(DateTimeCalculation(first), local_day);
        expect_week(DateTimeCalculation(first, true), utc_day);
      }
      expect_periods(DateTimeCalculation(), local_day);
      expect_periods(DateTimeCalculation(1, true), utc_day);
      expect_offsets(local_day);
      if (HasFailure()) return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Zones, CalculationInZone, testing::ValuesIn(zones), [](const auto& parameter) {
  std::string name = parameter.param.name;
  return name.substr(name.find('/') + 1);
});

TEST(read_present, is_the_local_second_or_the_one_in_utc) {
  const ZoneGuard zone("America/St_Johns");
  const HeldClock clock(utc(2024, 7, 1, 12, 30, 15, 999));
  EXPECT_EQ(text(read_present(false)), "2024-07-01 10:00:15");
  EXPECT_EQ(text(read_present(true)), "2024-07-01 12:30:15");
}

// Kept: the local fields carry no flag of daylight, so both readings of the repeated hour give the same moment in UTC,
// the one of the first.
TEST(read_present, in_the_repeated_hour_is_the_first_reading_in_utc) {
  const ZoneGuard zone("America/New_York");
  {
    const HeldClock first(utc(2024, 11, 3, 5, 30));
    EXPECT_EQ(text(read_present(false)), "2024-11-03 01:30:00");
    EXPECT_EQ(text(read_present(true)), "2024-11-03 05:30:00");
  }
  const HeldClock second(utc(2024, 11, 3, 6, 30));
  EXPECT_EQ(text(read_present(false)), "2024-11-03 01:30:00");
  EXPECT_EQ(text(read_present(true)), "2024-11-03 05:30:00");
}

}  // namespace
