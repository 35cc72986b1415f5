// Plan
//   to the row: UTC by the rule of the moment's own date, the hour that comes twice -> to_utc_timestamp.*
//   from the row: bit by bit what the documented conversions give, for every kind of date; changes of daylight saving;
//     fractions; timestamps that are no date; the zone of the reader -> LocalMomentReader.*
#include "spcbase/time/internal/row_moment.h"

#include <gtest/gtest.h>

#include <bit>
#include <random>

#include "spcbase/testkit/zone_guard.h"
#include "spcbase/time/calendar.h"

namespace {

using test_support::ZoneGuard;

std::string row_text(const TIMESTAMP_STRUCT& t) {
  CString text;
  text.Format("%04d-%02d-%02d %02d:%02d:%02d.%u", t.year, t.month, t.day, t.hour, t.minute, t.second, t.fraction);
  return text.GetString();
}

std::string read_text(const TIMESTAMP_STRUCT& row) {
  return LocalMomentReader().read(row).Format("%Y-%m-%d %H:%M:%S").GetString();
}

TEST(to_utc_timestamp, goes_by_the_rule_of_the_moments_date) {
  const ZoneGuard zone("Europe/Berlin");
  EXPECT_EQ(row_text(to_utc_timestamp({2024, 1, 15, 8, 30, 1})), "2024-01-15 07:30:01.0");
  EXPECT_EQ(row_text(to_utc_timestamp({2024, 7, 15, 8, 30, 1})), "2024-07-15 06:30:01.0");
}

TEST(to_utc_timestamp, takes_the_hour_that_comes_twice_for_the_first) {
  const ZoneGuard zone("Europe/Berlin");
  EXPECT_EQ(row_text(to_utc_timestamp({2024, 10, 27, 2, 30, 0})), "2024-10-27 00:30:00.0");
}

/// The conversions step by step.
COleDateTime expected_local(const TIMESTAMP_STRUCT& utc) {
  COleDateTime local(utc.year, utc.month, utc.day, utc.hour, utc.minute, utc.second);
  to_local(local);
  local.m_dt += utc.fraction * (1 / 86400e9);
  return local;
}

void expect_same_bits(const TIMESTAMP_STRUCT& row) {
  const COleDateTime expected = expected_local(row);
  const COleDateTime read = LocalMomentReader().read(row);
  ASSERT_EQ(std::bit_cast<std::uint64_t>(read.m_dt), std::bit_cast<std::uint64_t>(expected.m_dt)) << row_text(row);
  ASSERT_EQ(read.GetStatus(), expected.GetStatus()) << row_text(row);
}

TEST(LocalMomentReader, gives_bit_by_bit_what_the_conversions_give) {
  for (const char* name :
       {"UTC", "Europe/Berlin", "America/New_York", "Asia/Kathmandu", "CET-1CEST,M3.5.0,M10.5.0/3"}) {
    SCOPED_TRACE(name);
    const ZoneGuard zone(name);
    std::mt19937 random(7);
    const auto up_to = [&](int end) { return static_cast<unsigned short>(random() % static_cast<unsigned>(end)); };
    for (int i = 0; i < 20000; ++i) {
      // Every second one is near the present; days run over the ends of months.
      const int year = i % 2 == 0 ? 1990 + up_to(60) : 90 + up_to(9950);
      const TIMESTAMP_STRUCT row{static_cast<short>(year),
                                 up_to(14),
                                 up_to(33),
                                 up_to(25),
                                 up_to(61),
                                 up_to(61),
                                 static_cast<unsigned>(random() % 1000000000U)};
      expect_same_bits(row);
      if (HasFailure()) return;
    }
  }
}

TEST(LocalMomentReader, gives_the_same_at_the_ends_of_the_ranges_and_around_day_0) {
  for (const char* name : {"UTC", "Asia/Tokyo", "America/New_York"}) {
    SCOPED_TRACE(name);
    const ZoneGuard zone(name);
    for (const int year : {-1, 0, 1, 99, 100, 1600, 1601, 1602, 1899, 1900, 9998, 9999, 10000, 32767}) {
      expect_same_bits({static_cast<short>(year), 1, 1, 0, 0, 0, 0});
      expect_same_bits({static_cast<short>(year), 12, 29, 6, 0, 0, 250000000});
      expect_same_bits({static_cast<short>(year), 12, 30, 12, 0, 1, 0});
      expect_same_bits({static_cast<short>(year), 12, 31, 23, 59, 59, 999999999});
    }
  }
}

TEST(LocalMomentReader, the_hour_that_is_skipped_is_no_local_time_of_a_row) {
  const ZoneGuard zone("Europe/Berlin");
  EXPECT_EQ(read_text({2024, 3, 31, 0, 59, 59, 0}), "2024-03-31 01:59:59");
  EXPECT_EQ(read_text({2024, 3, 31, 1, 0, 0, 0}), "2024-03-31 03:00:00");
}

TEST(LocalMomentReader, the_hour_that_comes_twice_shows_twice) {
  const ZoneGuard zone("Europe/Berlin");
  EXPECT_EQ(read_text({2024, 10, 27, 0, 30, 0, 0}), "2024-10-27 02:30:00");
  EXPECT_EQ(read_text({2024, 10, 27, 1, 30, 0, 0}), "2024-10-27 02:30:00");
}

TEST(LocalMomentReader, a_fraction_of_a_second_survives) {
  const ZoneGuard zone("Europe/Berlin");
  const double whole = LocalMomentReader().read({2024, 7, 15, 8, 30, 1, 0}).m_dt;
  EXPECT_EQ(LocalMomentReader().read({2024, 7, 15, 8, 30, 1, 750000000}).m_dt, whole + 750000000 * (1 / 86400e9));
}

TEST(LocalMomentReader, a_timestamp_that_is_no_date_is_invalid) {
  EXPECT_EQ(LocalMomentReader().read({}).GetStatus(), COleDateTime::invalid);
  EXPECT_EQ(LocalMomentReader().read({2023, 2, 29, 0, 0, 0, 0}).GetStatus(), COleDateTime::invalid);
}

TEST(LocalMomentReader, sees_the_zone_of_the_moment_in_which_it_is_made) {
  const TIMESTAMP_STRUCT row{2024, 7, 1, 12, 0, 0, 0};
  const ZoneGuard berlin("Europe/Berlin");
  const LocalMomentReader made_in_berlin;
  const ZoneGuard tokyo("Asia/Tokyo");
  EXPECT_EQ(read_text(row), "2024-07-01 21:00:00");
  EXPECT_EQ(made_in_berlin.read(row).Format("%H"), "14");
}

}  // namespace
