// Plan
// - held, "now" is the same for every reader of the thread; holds nest; other threads see the system's clock; it moves
// on
#include "spcbase/platform/datetime/clock.h"

#include <gtest/gtest.h>

#include <thread>

#include "spcbase/platform/datetime/ctime.h"
#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/zone_guard.h"

namespace {

using test_support::HeldClock;
using test_support::utc;
using test_support::ZoneGuard;

TEST(Clock, held_is_the_same_for_every_reader) {
  const ZoneGuard zone("Europe/Berlin");
  const HeldClock clock(utc(2024, 7, 15, 10, 20, 30, 456));
  SYSTEMTIME fields;
  GetSystemTime(&fields);
  EXPECT_EQ(fields.wYear, 2024);
  EXPECT_EQ(fields.wHour, 10);
  EXPECT_EQ(fields.wMilliseconds, 456);
  EXPECT_EQ(fields.wDayOfWeek, 1);
  GetLocalTime(&fields);
  EXPECT_EQ(fields.wHour, 12);
  EXPECT_EQ(fields.wMilliseconds, 456);
  EXPECT_EQ(CTime::GetCurrentTime().GetTime(), 1721038830);
  EXPECT_STREQ(COleDateTime::GetCurrentTime().Format("%Y-%m-%d %H:%M:%S"), "2024-07-15 12:20:30");
}

TEST(Clock, holds_nest_and_move_on) {
  HeldClock outer(utc(2000, 1, 1));
  {
    const HeldClock inner(utc(2010, 1, 1));
    EXPECT_EQ(platform::now(), utc(2010, 1, 1));
  }
  EXPECT_EQ(platform::now(), utc(2000, 1, 1));
  outer.advance(std::chrono::seconds(5));
  EXPECT_EQ(platform::now(), utc(2000, 1, 1, 0, 0, 5));
}

TEST(Clock, other_threads_are_not_held) {
  const HeldClock clock(utc(2000, 1, 1));
  platform::Moment elsewhere;
  std::thread([&] { elsewhere = platform::now(); }).join();
  EXPECT_GT(elsewhere, utc(2025, 1, 1));
}

}  // namespace
