// Plan
// - offsets asked for in any order, near changes and far from them, are those of the C library
// - readings of local times are the same whether the zone remembers a change nearby or nothing
// - a zone that was taken for a call stays the one it was; the next call sees a new `TZ`
#include "spcbase/platform/datetime/zone_rule.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <random>
#include <vector>

#include "spcbase/testkit/zone_guard.h"

namespace {

using test_support::ZoneGuard;

constexpr std::int64_t year_1950 = -631152000;
constexpr std::int64_t year_2300 = 10413792000;

/// The C library's word on it.
platform::ZoneOffset expected_at(std::int64_t utc_seconds) {
  const std::time_t moment = utc_seconds;
  std::tm fields{};
  localtime_r(&moment, &fields);
  return {fields.tm_gmtoff, fields.tm_isdst > 0};
}

/// Moments of all years, in an order that jumps, and the seconds around the changes of three years.
std::vector<std::int64_t> moments_to_ask_for() {
  std::mt19937_64 random(20240331);
  std::uniform_int_distribution<std::int64_t> any(year_1950, year_2300);
  std::vector<std::int64_t> moments;
  for (int i = 0; i < 2000; ++i)
    moments.push_back(any(random));
  constexpr std::int64_t year_2022 = 1640995200;
  constexpr std::int64_t step = 1800;
  for (std::int64_t at = year_2022; at < year_2022 + 3 * 366 * 86400LL; at += step) {
    if (expected_at(at).seconds == expected_at(at + step).seconds) continue;
    for (std::int64_t near = at; near <= at + step; near += step / 2)
      for (const std::int64_t apart : {-1, 0, 1})
        moments.push_back(near + apart);
  }
  std::shuffle(moments.begin(), moments.end(), random);
  return moments;
}

constexpr const char* zones[] = {"UTC",
                                 "Europe/Berlin",
                                 "America/New_York",
                                 "Australia/Lord_Howe",
                                 "Asia/Kathmandu",
                                 "Asia/Tokyo",
                                 "Africa/Casablanca",
                                 "America/Sao_Paulo",
                                 "Asia/Tehran",
                                 "Pacific/Apia",
                                 "Europe/Dublin",
                                 "America/Havana",
                                 "Asia/Gaza",
                                 "CET-1CEST,M3.5.0,M10.5.0/3"};

TEST(ZoneRule, offsets_in_any_order_are_those_of_the_c_library) {
  for (const char* name : zones) {
    SCOPED_TRACE(name);
    const ZoneGuard zone(name);
    tzset();
    const platform::CurrentZone taken;
    for (const std::int64_t moment : moments_to_ask_for()) {
      const platform::ZoneOffset expected = expected_at(moment);
      for (const platform::ZoneOffset& found : {platform::offset_at(moment), taken.offset_at(moment)}) {
        ASSERT_EQ(found.seconds, expected.seconds) << moment;
        ASSERT_EQ(found.is_daylight, expected.is_daylight) << moment;
      }
    }
  }
}

std::vector<std::int64_t> both(const platform::LocalReadings& readings) {
  return {readings.before_change, readings.after_change};
}

TEST(ZoneRule, readings_do_not_depend_on_what_was_asked_for_before) {
  for (const char* name : zones) {
    SCOPED_TRACE(name);
    const auto moments = [&] {
      const ZoneGuard zone(name);
      tzset();
      return moments_to_ask_for();
    }();
    std::vector<std::vector<std::int64_t>> fresh;
    const auto local_of = [](std::int64_t moment, std::int64_t apart) {
      return moment + expected_at(moment).seconds + apart;
    };
    for (const std::int64_t apart : {-3600, 0, 3600}) {
      {
        // Another zone in between makes this one forget.
        const ZoneGuard other("UTC");
        platform::offset_at(0);
      }
      const ZoneGuard zone(name);
      tzset();
      fresh.clear();
      for (const std::int64_t moment : moments)
        fresh.push_back(both(platform::readings_of(local_of(moment, apart))));
      for (std::size_t i = 0; i < moments.size(); ++i) {
        platform::offset_at(moments[i]);
        ASSERT_EQ(both(platform::readings_of(local_of(moments[i], apart))), fresh[i]) << moments[i] << " " << apart;
      }
    }
  }
}

TEST(ZoneRule, a_zone_that_was_taken_stays_and_the_next_one_is_the_new_one) {
  constexpr std::int64_t summer_of_2024 = 1719835200;
  const ZoneGuard berlin("Europe/Berlin");
  const platform::CurrentZone taken;
  const ZoneGuard tokyo("Asia/Tokyo");
  EXPECT_EQ(platform::offset_at(summer_of_2024).seconds, 9 * 3600);
  EXPECT_EQ(platform::CurrentZone().offset_at(summer_of_2024).seconds, 9 * 3600);
  EXPECT_EQ(taken.offset_at(summer_of_2024).seconds, 2 * 3600);
}

}  // namespace
