// Plan
//   A held clock stands still, is moved on, and gives way to the one around it -> HeldClock, utc
//   A zone holds for a scope, for the library and for C, and what was set before comes back -> ZoneGuard
//   A scratch folder is empty, nobody else's, and gone with its object -> ScratchFolder
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <fstream>

#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/scratch_folder.h"
#include "spcbase/testkit/zone_guard.h"

namespace test_support {
namespace {

std::string present() { return COleDateTime::GetCurrentTime().Format("%Y-%m-%d %H:%M:%S").GetString(); }

TEST(HeldClock, stands_still_and_is_moved_on) {
  const ZoneGuard zone("UTC");
  HeldClock clock(utc(2024, 2, 29, 23, 59, 59));
  EXPECT_EQ(present(), "2024-02-29 23:59:59");
  clock.advance(std::chrono::seconds(1));
  EXPECT_EQ(present(), "2024-03-01 00:00:00");
  clock.advance(std::chrono::hours(-24));
  EXPECT_EQ(present(), "2024-02-29 00:00:00");
}

TEST(HeldClock, gives_way_to_the_one_around_it) {
  const ZoneGuard zone("UTC");
  const HeldClock outer(utc(2024, 1, 1));
  {
    HeldClock inner(utc(2030, 1, 1));
    inner.advance(std::chrono::hours(1));
    EXPECT_EQ(present(), "2030-01-01 01:00:00");
  }
  EXPECT_EQ(present(), "2024-01-01 00:00:00");
}

TEST(HeldClock, lets_time_pass_when_it_is_gone) {
  const auto before = std::chrono::system_clock::now();
  { const HeldClock clock(utc(2000, 1, 1)); }
  EXPECT_GE(platform::now(), before);
}

TEST(utc, is_a_moment_by_its_fields) {
  EXPECT_EQ(utc(1970, 1, 1).time_since_epoch().count(), 0);
  EXPECT_EQ(utc(2000, 3, 1) - utc(2000, 2, 28), std::chrono::hours(48));
  EXPECT_EQ(utc(2024, 1, 1, 1, 2, 3, 4) - utc(2024, 1, 1), std::chrono::milliseconds(3723004));
}

/// The hour of 2024-07-01 12:00 UTC in the process's zone, as C has it.
int hour_of_noon() {
  const std::time_t noon = 1719835200;
  std::tm fields{};
  ::localtime_r(&noon, &fields);
  return fields.tm_hour;
}

TEST(ZoneGuard, holds_for_the_library_and_for_c_and_gives_the_former_zone_back) {
  const HeldClock clock(utc(2024, 7, 1, 12));
  const ZoneGuard outer("Asia/Tokyo");
  {
    const ZoneGuard zone("America/New_York");
    EXPECT_EQ(present(), "2024-07-01 08:00:00");
    EXPECT_EQ(hour_of_noon(), 8);
  }
  EXPECT_EQ(present(), "2024-07-01 21:00:00");
  EXPECT_EQ(hour_of_noon(), 21);
}

TEST(ZoneGuard, takes_the_variable_away_and_gives_it_back) {
  const ZoneGuard outer("Asia/Tokyo");
  {
    const ZoneGuard none(nullptr);
    EXPECT_EQ(std::getenv("TZ"), nullptr);
    { const ZoneGuard zone("UTC"); }
    EXPECT_EQ(std::getenv("TZ"), nullptr) << "what was not there is not there again";
  }
  EXPECT_STREQ(std::getenv("TZ"), "Asia/Tokyo");
}

TEST(ScratchFolder, is_empty_and_gone_with_its_object) {
  std::filesystem::path path;
  {
    const ScratchFolder folder;
    path = folder.path();
    EXPECT_TRUE(path.is_absolute());
    EXPECT_TRUE(std::filesystem::is_empty(path));
    std::filesystem::create_directory(folder.file("sub"));
    std::ofstream(folder.file("sub/x")) << "x";
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(ScratchFolder, is_nobody_elses) {
  const ScratchFolder first;
  const ScratchFolder second;
  EXPECT_NE(first.path(), second.path());
  const auto all = std::filesystem::perms::group_all | std::filesystem::perms::others_all;
  EXPECT_EQ(std::filesystem::status(first.path()).permissions() & all, std::filesystem::perms::none);
}

}  // namespace
}  // namespace test_support
