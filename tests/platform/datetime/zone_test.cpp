// Plan
// - every recorded conversion between local time and UTC; where the recording applies one rule to every year, the tz
// database
// - every recorded _mktime64 and _localtime64_s; rows by the rule of the present are left to the tz database
// - TZ: changed between calls, unset, empty, a file, with a colon, in POSIX form, without sense
// - skipped and repeated times at their edges, in the database and in POSIX form
// - ranges, null pointers, fields that carry
#include "spcbase/platform/datetime/zone.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "spcbase/platform/datetime/system_time.h"
#include "spcbase/platform/system/system_error.h"
#include "spcbase/testkit/zone_guard.h"
#include "tests/support/vector_file.h"

namespace {

using test_support::numbers_in;
using test_support::read_vectors;
using test_support::ZoneGuard;

constexpr const char* berlin_rule = "CET-1CEST,M3.5.0,M10.5.0/3";

/// Fields of "year month day hour minute second", with 123 milliseconds.
SYSTEMTIME fields_of(const std::string& text) {
  const std::vector<long> n = numbers_in(text);
  const auto at = [&](std::size_t i) { return static_cast<WORD>(n.at(i)); };
  return {at(0), at(1), 0, at(2), at(3), at(4), at(5), 123};
}

std::string text_of(const SYSTEMTIME& f) {
  std::ostringstream text;
  text << f.wYear << ' ' << f.wMonth << ' ' << f.wDay << ' ' << f.wHour << ' ' << f.wMinute << ' ' << f.wSecond;
  if (f.wMilliseconds != 123) text << '.' << f.wMilliseconds;
  return text.str();
}

/// The converted fields, or "error" with the last error.
std::string converted(bool to_utc, const std::string& input) {
  const SYSTEMTIME from = fields_of(input);
  SYSTEMTIME to{};
  SetLastError(0);
  const BOOL good = to_utc ? TzSpecificLocalTimeToSystemTime(nullptr, &from, &to)
                           : SystemTimeToTzSpecificLocalTime(nullptr, &from, &to);
  return good ? text_of(to) : "error " + std::to_string(GetLastError());
}
std::string to_utc(const std::string& local) { return converted(true, local); }
std::string to_local(const std::string& utc) { return converted(false, utc); }

TEST(Zone, recorded_conversions_hold) {
  int rows = 0;
  for (const auto& row : read_vectors("tz.tsv")) {
    if (row.is_suspect()) continue;
    SCOPED_TRACE(row.place());
    ++rows;
    const ZoneGuard zone(row["zone"].c_str());
    const std::string expected = row["result"] == "1" ? row["output"] : row["note"];
    EXPECT_EQ(converted(row["direction"] == "to_utc", row["input"]), expected);
  }
  EXPECT_EQ(rows, 739);
}

TEST(Zone, other_years_follow_the_tz_database) {
  int rows = 0;
  for (const auto& row : read_vectors("tz.tsv")) {
    const bool one_reading = row["tz_database"].find('|') == std::string::npos;
    if (row["note"] != "differs-from-tz-database suspect" || !one_reading) continue;
    SCOPED_TRACE(row.place());
    ++rows;
    const ZoneGuard zone(row["zone"].c_str());
    EXPECT_EQ(converted(row["direction"] == "to_utc", row["input"]), row["tz_database"]);
  }
  EXPECT_GT(rows, 60);
}

std::tm tm_of(const std::string& text) {
  const std::vector<long> n = numbers_in(text);
  const auto at = [&](std::size_t i) { return static_cast<int>(n.at(i)); };
  std::tm fields{};
  fields.tm_year = at(0) - 1900;
  fields.tm_mon = at(1) - 1;
  fields.tm_mday = at(2);
  fields.tm_hour = at(3);
  fields.tm_min = at(4);
  fields.tm_sec = at(5);
  fields.tm_isdst = n.size() > 6 ? at(6) : -1;
  return fields;
}

std::string text_of(const std::tm& f) {
  std::ostringstream text;
  text << f.tm_year + 1900 << ',' << f.tm_mon + 1 << ',' << f.tm_mday << ',' << f.tm_hour << ',' << f.tm_min << ','
       << f.tm_sec << ',' << f.tm_wday << ',' << f.tm_yday << ',' << f.tm_isdst;
  return text.str();
}

TEST(Mktime64, recorded_fields_give_their_seconds) {
  int rows = 0;
  for (const auto& row : read_vectors("ctime.tsv")) {
    if (row["direction"] != "mktime" || !row["note"].empty()) continue;
    SCOPED_TRACE(row.place());
    ++rows;
    const ZoneGuard zone(row["zone"].c_str());
    std::tm fields = tm_of(row["input"]);
    const std::string before = text_of(fields);
    EXPECT_EQ(std::to_string(_mktime64(&fields)), row["result"]);
    EXPECT_EQ(text_of(fields), row["output"].empty() ? before : row["output"]);
  }
  EXPECT_EQ(rows, 115);
}

TEST(Localtime64, recorded_seconds_give_their_fields) {
  int rows = 0;
  for (const auto& row : read_vectors("ctime.tsv")) {
    if (row["direction"] != "localtime" || !row["note"].empty()) continue;
    SCOPED_TRACE(row.place());
    ++rows;
    const ZoneGuard zone(row["zone"].c_str());
    const __time64_t seconds = std::stoll(row["input"]);
    std::tm fields{};
    EXPECT_EQ(std::to_string(_localtime64_s(&fields, &seconds)), row["result"]);
    EXPECT_EQ(text_of(fields), row["output"].empty() ? "1899,0,-1,-1,-1,-1,-1,-1,-1" : row["output"]);
  }
  EXPECT_EQ(rows, 43);
}

TEST(Zone, a_change_of_TZ_counts_from_the_next_call) {
  const ZoneGuard first("Europe/Berlin");
  EXPECT_EQ(to_local("2024 7 1 12 0 0"), "2024 7 1 14 0 0");
  {
    const ZoneGuard second("Asia/Kolkata");
    EXPECT_EQ(to_local("2024 7 1 12 0 0"), "2024 7 1 17 30 0");
  }
  EXPECT_EQ(to_local("2024 7 1 12 0 0"), "2024 7 1 14 0 0");
}

TEST(Zone, TZ_may_be_a_file_or_have_a_colon) {
  {
    const ZoneGuard zone(":Europe/Berlin");
    EXPECT_EQ(to_local("2024 7 1 12 0 0"), "2024 7 1 14 0 0");
  }
  const ZoneGuard zone("/usr/share/zoneinfo/Europe/Berlin");
  EXPECT_EQ(to_local("2024 7 1 12 0 0"), "2024 7 1 14 0 0");
}

TEST(Zone, an_empty_TZ_and_one_without_sense_are_utc) {
  for (const char* name : {"", ":", "No/Such_Zone", "!!"}) {
    const ZoneGuard zone(name);
    EXPECT_EQ(to_local("2024 7 1 12 0 0"), "2024 7 1 12 0 0") << name;
    EXPECT_EQ(to_utc("2024 7 1 12 0 0"), "2024 7 1 12 0 0") << name;
  }
}

TEST(Zone, without_TZ_the_system_s_own_zone_goes_both_ways) {
  const ZoneGuard zone(nullptr);
  EXPECT_EQ(to_utc(to_local("2024 6 3 12 0 0")), "2024 6 3 12 0 0");
}

TEST(Zone, a_rule_in_POSIX_form_agrees_with_the_zone_it_describes) {
  const char* times[] = {"2024 1 15 12 0 0",  "2024 7 15 12 0 0", "2024 3 31 1 59 59", "2024 3 31 2 30 0",
                         "2024 3 31 3 0 0",   "2024 10 27 1 0 0", "2024 10 27 2 30 0", "2024 10 27 3 0 0",
                         "2024 12 31 23 0 0", "2050 7 1 0 0 0"};
  for (const char* time : times) {
    std::string local;
    std::string utc;
    {
      const ZoneGuard zone("Europe/Berlin");
      local = to_local(time);
      utc = to_utc(time);
    }
    const ZoneGuard zone(berlin_rule);
    EXPECT_EQ(to_local(time), local) << time;
    EXPECT_EQ(to_utc(time), utc) << time;
  }
}

TEST(Zone, a_POSIX_form_without_daylight_time_has_one_offset) {
  const ZoneGuard zone("XYZ-5:45");
  EXPECT_EQ(to_local("2024 7 1 12 0 0"), "2024 7 1 17 45 0");
  EXPECT_EQ(to_utc("2024 1 1 0 0 0"), "2023 12 31 18 15 0");
}

TEST(Mktime64, skipped_and_repeated_times_go_alike_in_both_forms_of_a_zone) {
  for (const char* name : {"Europe/Berlin", berlin_rule}) {
    const ZoneGuard zone(name);
    std::tm skipped = tm_of("2024 3 31 2 30 0");
    EXPECT_EQ(_mktime64(&skipped), 1711845000) << name;  // read with the offset after the change
    EXPECT_EQ(text_of(skipped), "2024,3,31,1,30,0,0,90,0") << name;
    std::tm repeated = tm_of("2024 10 27 2 30 0");
    EXPECT_EQ(_mktime64(&repeated), 1729992600) << name;  // standard time, the later one
    std::tm first = tm_of("2024 10 27 2 30 0 1");
    EXPECT_EQ(_mktime64(&first), 1729989000) << name;  // the flag asks for daylight time
  }
}

TEST(Zone, a_skipped_time_is_read_after_the_change_and_a_repeated_one_before_it) {
  const ZoneGuard zone("Europe/Berlin");
  EXPECT_EQ(to_utc("2024 3 31 2 0 0"), "2024 3 31 0 0 0");
  EXPECT_EQ(to_utc("2024 3 31 2 59 59"), "2024 3 31 0 59 59");
  EXPECT_EQ(to_utc("2024 3 31 3 0 0"), "2024 3 31 1 0 0");
  EXPECT_EQ(to_utc("2024 10 27 2 0 0"), "2024 10 27 0 0 0");
  EXPECT_EQ(to_utc("2024 10 27 2 59 59"), "2024 10 27 0 59 59");
  EXPECT_EQ(to_utc("2024 10 27 3 0 0"), "2024 10 27 2 0 0");
}

TEST(Zone, a_half_hour_change_and_a_skipped_day_are_known) {
  {
    const ZoneGuard zone("Australia/Lord_Howe");
    EXPECT_EQ(to_local("2024 1 1 0 0 0"), "2024 1 1 11 0 0");
    EXPECT_EQ(to_local("2024 7 1 0 0 0"), "2024 7 1 10 30 0");
  }
  const ZoneGuard zone("Pacific/Apia");
  EXPECT_EQ(to_local("2011 12 30 9 59 59"), "2011 12 29 23 59 59");
  EXPECT_EQ(to_local("2011 12 30 10 0 0"), "2011 12 31 0 0 0");
}

TEST(Zone, fields_that_are_no_date_leave_the_target_untouched) {
  const ZoneGuard zone("Europe/Berlin");
  const SYSTEMTIME bad = {2023, 2, 0, 29, 0, 0, 0, 0};
  SYSTEMTIME target = fields_of("2000 1 1 0 0 0");
  EXPECT_FALSE(TzSpecificLocalTimeToSystemTime(nullptr, &bad, &target));
  EXPECT_FALSE(SystemTimeToTzSpecificLocalTime(nullptr, &bad, &target));
  EXPECT_EQ(text_of(target), "2000 1 1 0 0 0");
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST(Zone, a_result_outside_the_calendar_is_refused) {
  const ZoneGuard east("Asia/Kolkata");
  EXPECT_EQ(to_utc("1601 1 1 0 0 0"), "error 87");
  EXPECT_EQ(to_local("30827 12 31 23 0 0"), "error 87");
  EXPECT_EQ(to_local("30827 12 31 1 0 0"), "30827 12 31 6 30 0");
}

TEST(Zone, null_pointers_and_zones_of_the_caller_are_refused) {
  SYSTEMTIME fields = fields_of("2000 1 1 0 0 0");
  EXPECT_FALSE(TzSpecificLocalTimeToSystemTime(nullptr, nullptr, &fields));
  EXPECT_FALSE(TzSpecificLocalTimeToSystemTime(nullptr, &fields, nullptr));
  EXPECT_FALSE(SystemTimeToTzSpecificLocalTime(&fields, &fields, &fields));
  EXPECT_EQ(_mktime64(nullptr), -1);
  const __time64_t seconds = 0;
  std::tm target{};
  EXPECT_EQ(_localtime64_s(nullptr, &seconds), 22);
  EXPECT_EQ(_localtime64_s(&target, nullptr), 22);
  EXPECT_EQ(target.tm_hour, -1);
}

TEST(Mktime64, fields_far_beyond_their_range_carry) {
  const ZoneGuard zone("UTC");
  std::tm fields = tm_of("2024 1 1 0 0 0");
  fields.tm_mon = -1;
  fields.tm_mday = 400;
  fields.tm_min = -61;
  EXPECT_EQ(_mktime64(&fields), 1704067200 - 31 * 86400 + 399 * 86400 - 61 * 60);
  EXPECT_EQ(text_of(fields), "2025,1,2,22,59,0,4,1,0");
}

TEST(Gmtime64, gives_fields_in_utc) {
  const ZoneGuard zone("Europe/Berlin");
  const __time64_t seconds = 1710511509;
  std::tm fields{};
  EXPECT_EQ(_gmtime64_s(&fields, &seconds), 0);
  EXPECT_EQ(text_of(fields), "2024,3,15,14,5,9,5,74,0");
  const __time64_t before = -1;
  EXPECT_EQ(_gmtime64_s(&fields, &before), 22);
}

}  // namespace
