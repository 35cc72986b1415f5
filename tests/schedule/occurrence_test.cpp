// Plan
//   days of each kind, their first one, months without the day -> next_moments.*
//   repeats and their ends; the window; what is refused -> next_moments.*
//   skipped and repeated local times in several zones -> next_moments_over_a_change.*
//   the same moments as a walk through every minute of ten years -> walk.*
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "spcbase/foundation/failure.h"
#include "spcbase/platform/datetime/calendar.h"
#include "spcbase/platform/datetime/zone_rule.h"
#include "spcbase/schedule/occurrence.h"
#include "spcbase/testkit/zone_guard.h"

namespace {

using schd::RepeatStringInfo;
using schd::ScheduleStringInfo;
using Texts = std::vector<std::string>;

COleDateTime moment(const std::string& text) {
  COleDateTime parsed;
  EXPECT_TRUE(parsed.ParseDateTime(text.c_str(), 0, 0x409)) << text;
  return parsed;
}

std::string text_of(const COleDateTime& moment) { return moment.Format("%Y-%m-%d %H:%M:%S").GetString(); }

_variant_t date(const std::string& text) {
  return text.empty() ? _variant_t() : _variant_t(static_cast<double>(moment(text)), VT_DATE);
}

struct Question {
  std::string schedule = "0 8 * * *";
  std::string repeat = {};
  std::string start = {};
  std::string end = {};
  std::string after = "2024-03-15 08:00:00";
  int count = 3;
};

std::vector<COleDateTime> moments(const Question& question) {
  ScheduleStringInfo schedule;
  ScheduleStringInfo::parse_schedule_string(question.schedule.c_str(), schedule);
  RepeatStringInfo repeat;
  RepeatStringInfo::parse_repeat_string(question.repeat.c_str(), repeat);
  return schd::next_moments(schedule, question.repeat.empty() ? nullptr : &repeat, date(question.start),
                            date(question.end), moment(question.after), question.count);
}

Texts due(const Question& question) {
  Texts texts;
  for (const COleDateTime& found : moments(question))
    texts.push_back(text_of(found));
  return texts;
}

std::string refusal(const Question& question) {
  try {
    moments(question);
  } catch (const DBException& failure) {
    return failure.what().GetString();
  }
  return "nothing was refused";
}

class next_moments : public testing::Test {
  test_support::ZoneGuard zone_{"UTC"};
};

TEST_F(next_moments, daily_ones_come_after_the_moment_given_and_not_at_it) {
  EXPECT_EQ(due({}), (Texts{"2024-03-16 08:00:00", "2024-03-17 08:00:00", "2024-03-18 08:00:00"}));
  EXPECT_EQ(due({.after = "2024-03-15 07:59:59", .count = 1}), Texts{"2024-03-15 08:00:00"});
  EXPECT_EQ(due({.after = "2024-12-30 09:00:00", .count = 2}), (Texts{"2024-12-31 08:00:00", "2025-01-01 08:00:00"}));
}

TEST_F(next_moments, none_are_asked_for_and_none_come) { EXPECT_TRUE(due({.count = 0}).empty()); }

TEST_F(next_moments, a_step_counts_from_the_day_of_the_start) {
  EXPECT_EQ(due({.schedule = "30 6 */3 * *", .start = "2024-02-27 12:00:00", .after = "2024-01-01 00:00:00"}),
            (Texts{"2024-03-01 06:30:00", "2024-03-04 06:30:00", "2024-03-07 06:30:00"}));
  EXPECT_EQ(
      due({.schedule = "30 6 */3 * *", .start = "2024-02-27 06:30:00", .after = "2024-01-01 00:00:00", .count = 1}),
      Texts{"2024-02-27 06:30:00"});
}

TEST_F(next_moments, a_step_without_a_start_counts_from_the_first_day_of_variant_times) {
  for (const auto& found : moments({.schedule = "0 0 */7 * *", .count = 20}))
    EXPECT_EQ(static_cast<long>(static_cast<double>(found)) % 7, 0);
  EXPECT_EQ(due({.after = "1799-05-05 00:00:00", .count = 1}), Texts{"1899-12-30 08:00:00"});
}

TEST_F(next_moments, weekly_ones_fall_on_their_weekdays) {
  EXPECT_EQ(due({.schedule = "0 8 * * 1,3,5", .count = 4}),
            (Texts{"2024-03-18 08:00:00", "2024-03-20 08:00:00", "2024-03-22 08:00:00", "2024-03-25 08:00:00"}));
  EXPECT_EQ(due({.schedule = "0 8 * * 0", .count = 1}), Texts{"2024-03-17 08:00:00"});
  EXPECT_EQ(due({.schedule = "0 8 * * 6", .count = 1}), Texts{"2024-03-16 08:00:00"});
}

TEST_F(next_moments, a_week_without_days_is_never_due) { EXPECT_TRUE(due({.schedule = "0 8 * * ,"}).empty()); }

TEST_F(next_moments, monthly_ones_pass_over_months_without_the_day) {
  EXPECT_EQ(due({.schedule = "0 8 31 1,2,3,4,5 *", .after = "2024-01-31 08:00:00"}),
            (Texts{"2024-03-31 08:00:00", "2024-05-31 08:00:00", "2025-01-31 08:00:00"}));
}

TEST_F(next_moments, a_29_february_is_found_over_a_century_without_leap_year) {
  EXPECT_EQ(due({.schedule = "0 8 29 2 *", .after = "1896-03-01 00:00:00", .count = 2}),
            (Texts{"1904-02-29 08:00:00", "1908-02-29 08:00:00"}));
}

TEST_F(next_moments, a_day_that_no_month_has_is_never_due) {
  EXPECT_TRUE(due({.schedule = "0 8 * 1 *"}).empty()) << "\"*\" reads as day 0";
  EXPECT_TRUE(due({.schedule = "0 8 32 1 *"}).empty());
  EXPECT_TRUE(due({.schedule = "0 8 30 2 *"}).empty());
}

TEST_F(next_moments, a_schedule_of_no_days_is_due_only_by_its_repeat_from_midnight_on) {
  EXPECT_TRUE(due({.schedule = ""}).empty());
  EXPECT_EQ(due({.schedule = "", .repeat = "7 h 2"}),
            (Texts{"2024-03-15 14:00:00", "2024-03-15 21:00:00", "2024-03-16 00:00:00"}));
}

TEST_F(next_moments, repeats_go_on_until_a_time_of_day_that_counts_itself) {
  EXPECT_EQ(due({.repeat = "30 m 0 9 0", .count = 4}),
            (Texts{"2024-03-15 08:30:00", "2024-03-15 09:00:00", "2024-03-16 08:00:00", "2024-03-16 08:30:00"}));
}

TEST_F(next_moments, repeats_go_on_for_a_length_of_time_that_counts_itself) {
  EXPECT_EQ(due({.repeat = "20 m 1 0 45", .count = 3}),
            (Texts{"2024-03-15 08:20:00", "2024-03-15 08:40:00", "2024-03-16 08:00:00"}));
}

TEST_F(next_moments, repeats_without_an_end_stop_with_the_day) {
  EXPECT_EQ(due({.schedule = "0 22 * * *", .repeat = "1 h 2", .after = "2024-03-15 22:30:00", .count = 2}),
            (Texts{"2024-03-15 23:00:00", "2024-03-16 22:00:00"}));
  EXPECT_EQ(due({.schedule = "0 22 * * *", .repeat = "1 h 1 9 0", .after = "2024-03-15 22:30:00", .count = 2}),
            (Texts{"2024-03-15 23:00:00", "2024-03-16 22:00:00"}));
  EXPECT_EQ(due({.schedule = "0 22 * * *", .repeat = "1 h 0 24 0", .after = "2024-03-15 22:30:00", .count = 2}),
            (Texts{"2024-03-15 23:00:00", "2024-03-16 22:00:00"}));
}

TEST_F(next_moments, an_end_before_the_first_time_leaves_that_alone) {
  EXPECT_EQ(due({.repeat = "10 m 0 7 0", .count = 2}), (Texts{"2024-03-16 08:00:00", "2024-03-17 08:00:00"}));
}

TEST_F(next_moments, repeats_of_days_do_not_repeat_within_one) {
  EXPECT_EQ(due({.repeat = "2 d 2", .count = 2}), (Texts{"2024-03-16 08:00:00", "2024-03-17 08:00:00"}));
}

TEST_F(next_moments, repeats_of_seconds_come_at_once) {
  EXPECT_EQ(due({.repeat = "7 s 2"}), (Texts{"2024-03-15 08:00:07", "2024-03-15 08:00:14", "2024-03-15 08:00:21"}));
  EXPECT_EQ(moments({.repeat = "1 s 2", .count = 60000}).size(), 60000U);
}

TEST_F(next_moments, the_window_holds_its_start_and_its_end) {
  EXPECT_EQ(due({.start = "2024-04-01 08:00:00", .end = "2024-04-02 08:00:00", .count = 9}),
            (Texts{"2024-04-01 08:00:00", "2024-04-02 08:00:00"}));
  EXPECT_EQ(due({.start = "2024-04-01 08:00:01", .end = "2024-04-02 07:59:59", .count = 9}), Texts{});
  EXPECT_EQ(due({.end = "2024-03-15 08:00:00"}), Texts{}) << "over before it begins";
}

TEST_F(next_moments, the_years_end_with_9999) {
  EXPECT_EQ(due({.after = "9999-12-30 08:00:00", .count = 9}), Texts{"9999-12-31 08:00:00"});
}

TEST_F(next_moments, dates_of_the_window_may_be_texts_and_numbers) {
  ScheduleStringInfo schedule;
  ScheduleStringInfo::parse_schedule_string("0 8 * * *", schedule);
  const auto found =
      schd::next_moments(schedule, nullptr, _variant_t(45366.5), _variant_t("2024-03-17"), moment("2024-01-01"), 9);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(text_of(found[0]), "2024-03-16 08:00:00");
}

TEST_F(next_moments, a_customised_schedule_is_refused_and_named) {
  EXPECT_EQ(
      refusal({.schedule = "0 8 1-5 * *"}),
      "The schedule \"0 8 1-5 * *\" is customised: it is kept and shown, but which moments it means is not known. "
      "A known one is \"0 8 * * 1,3,5\".");
}

TEST_F(next_moments, numbers_that_mean_nothing_are_refused) {
  const std::string no_time = "The schedule has no time of day: minutes go from 0 to 59, hours from 0 to 23.";
  EXPECT_EQ(refusal({.schedule = "60 8 * * *"}), no_time);
  EXPECT_EQ(refusal({.schedule = "-1 8 * * *"}), no_time);
  EXPECT_EQ(refusal({.schedule = "0 24 * * *"}), no_time);
  EXPECT_EQ(refusal({.repeat = "0 m 2"}), "The repeat has no interval; give a whole number of 1 or more.");
  EXPECT_EQ(refusal({.repeat = "1 m 0 24 1"}),
            "The end of the repeat is not a time of day: hours go from 0 to 24, minutes from 0 to 59.");
  EXPECT_EQ(refusal({.repeat = "1 m 1 0 -1"}),
            "The repeat goes on for a negative time; give hours and minutes of 0 or more.");
  EXPECT_EQ(refusal({.count = -1}), "A negative number of moments was asked for.");
}

TEST_F(next_moments, a_daily_one_that_was_never_parsed_has_no_step) {
  EXPECT_THROW(schd::next_moments({}, nullptr, {}, {}, moment("2024-03-15"), 1), DBException);
}

TEST_F(next_moments, dates_that_are_none_are_refused) {
  const ScheduleStringInfo none = [] {
    ScheduleStringInfo parsed;
    ScheduleStringInfo::parse_schedule_string("", parsed);
    return parsed;
  }();
  const auto refusal_of = [&](const _variant_t& start, const _variant_t& end, const COleDateTime& after) {
    try {
      schd::next_moments(none, nullptr, start, end, after, 1);
    } catch (const DBException& failure) {
      return std::string(failure.what().GetString());
    }
    return std::string();
  };
  const auto today = moment("2024-03-15");
  COleDateTime null;
  null.SetStatus(COleDateTime::null);
  const std::string rest = " is not a date, such as 2024-03-15 08:00:00.";
  EXPECT_EQ(refusal_of("soon", {}, today), "The start of the window" + rest);
  EXPECT_EQ(refusal_of({}, "never", today), "The end of the window" + rest);
  EXPECT_EQ(refusal_of({}, {}, null), "The moment to begin after" + rest);
}

TEST(next_moments_over_a_change, a_skipped_time_is_due_at_the_moment_behind_the_gap) {
  const test_support::ZoneGuard zone("America/New_York");
  EXPECT_EQ(due({.schedule = "30 2 * * *", .after = "2024-03-09 02:30:00"}),
            (Texts{"2024-03-10 03:00:00", "2024-03-11 02:30:00", "2024-03-12 02:30:00"}));
}

TEST(next_moments_over_a_change, all_skipped_times_are_due_once_together) {
  const test_support::ZoneGuard zone("Europe/Berlin");
  EXPECT_EQ(due({.schedule = "0 0 * * *", .repeat = "10 m 2", .after = "2024-03-31 01:40:00"}),
            (Texts{"2024-03-31 01:50:00", "2024-03-31 03:00:00", "2024-03-31 03:10:00"}));
}

TEST(next_moments_over_a_change, a_repeated_time_is_due_once) {
  const test_support::ZoneGuard zone("Europe/Berlin");
  EXPECT_EQ(due({.schedule = "30 2 * * *", .after = "2024-10-26 03:00:00", .count = 2}),
            (Texts{"2024-10-27 02:30:00", "2024-10-28 02:30:00"}));
}

TEST(next_moments_over_a_change, a_gap_of_half_an_hour_is_half_an_hour) {
  const test_support::ZoneGuard zone("Australia/Lord_Howe");
  EXPECT_EQ(due({.schedule = "15 2 * * *", .after = "2024-10-05 12:00:00", .count = 1}), Texts{"2024-10-06 02:30:00"});
}

TEST(next_moments_over_a_change, a_skipped_day_is_due_with_the_next_one) {
  const test_support::ZoneGuard zone("Pacific/Apia");
  EXPECT_EQ(due({.after = "2011-12-29 08:00:00", .count = 2}), (Texts{"2011-12-31 00:00:00", "2011-12-31 08:00:00"}));
}

TEST(next_moments_over_a_change, a_moment_within_the_gap_is_before_what_comes_behind_it) {
  const test_support::ZoneGuard zone("America/New_York");
  EXPECT_EQ(due({.schedule = "30 2 * * *", .after = "2024-03-10 02:45:00", .count = 1}), Texts{"2024-03-10 03:00:00"});
  EXPECT_EQ(due({.schedule = "30 2 * * *", .after = "2024-03-10 03:00:00", .count = 1}), Texts{"2024-03-11 02:30:00"});
}

TEST(next_moments_over_a_change, a_window_that_opens_behind_the_gap_holds_what_was_skipped) {
  const test_support::ZoneGuard zone("America/New_York");
  EXPECT_EQ(due({.schedule = "30 2 * * *", .start = "2024-03-10 03:00:00", .after = "2024-03-01", .count = 1}),
            Texts{"2024-03-10 03:00:00"});
  EXPECT_EQ(due({.schedule = "30 2 * * *", .end = "2024-03-10 02:59:59", .after = "2024-03-09 12:00:00"}), Texts{});
}

// Whether a schedule means a local minute, asked field by field as a person would.
class Minute {
 public:
  explicit Minute(std::int64_t minute)
      : day_(minute >= 0 ? minute / 1440 : (minute - 1439) / 1440), of_day_(static_cast<int>(minute - day_ * 1440)) {}

  bool is_meant(const ScheduleStringInfo& schedule, int every, int until) const {
    const int first = schedule.hour * 60 + schedule.minute;
    const bool at_time =
        of_day_ == first || (every > 0 && of_day_ > first && of_day_ <= until && (of_day_ - first) % every == 0);
    return at_time && is_day(schedule);
  }

 private:
  bool is_day(const ScheduleStringInfo& schedule) const {
    if (schedule.type == ScheduleStringInfo::daily) return (day_ + 25569) % schedule.value == 0;
    if (schedule.type == ScheduleStringInfo::weekly) return (schedule.value >> ((day_ + 4) % 7) & 1) != 0;
    const auto date = platform::civil_from_days(day_);
    return date.day == schedule.day && (schedule.value >> date.month & 1) != 0;
  }

  std::int64_t day_;
  int of_day_;
};

struct Walked {
  const char* zone;
  const char* schedule;
  const char* repeat;
  int every;  // the repeat in minutes, and the last minute of the day at which it stands
  int until;
};

class walk : public testing::TestWithParam<Walked> {};
INSTANTIATE_TEST_SUITE_P(Zones, walk,
                         testing::Values(Walked{"America/New_York", "30 2 * * *", "", 0, 0},
                                         Walked{"Europe/Berlin", "0 1 * * 0", "7 m 0 4 0", 7, 240},
                                         Walked{"Asia/Kolkata", "15 6 31 1,3,5 *", "", 0, 0},
                                         Walked{"America/St_Johns", "59 1 */2 * *", "1 h 2", 60, 1439},
                                         Walked{"Australia/Sydney", "30 2 5 4,10 *", "90 m 0 12 0", 90, 720},
                                         Walked{"UTC", "0 0 29 2 *", "", 0, 0},
                                         Walked{"Australia/Lord_Howe", "10 2 * * 0,6", "5 m 0 2 40", 5, 160}));

TEST_P(walk, through_every_minute_of_ten_years_finds_the_same_moments) {
  const auto& [zone, text, repeat_text, every, until] = GetParam();
  const test_support::ZoneGuard guard(zone);
  ScheduleStringInfo schedule;
  ScheduleStringInfo::parse_schedule_string(text, schedule);
  RepeatStringInfo repeat;
  RepeatStringInfo::parse_repeat_string(repeat_text, repeat);

  std::vector<std::int64_t> walked;
  const std::int64_t start = platform::days_from_civil(2015, 1, 2) * 1440;
  std::int64_t shown = start - 1;  // the latest local minute that a clock has shown so far
  for (std::int64_t minute = start - 1440; minute < start + 3652 * 1440; ++minute) {
    const std::int64_t local = minute + platform::offset_at(minute * 60).seconds / 60;
    if (local <= shown) continue;
    bool is_due = false;
    for (std::int64_t passed = shown + 1; passed <= local; ++passed)
      is_due = is_due || Minute(passed).is_meant(schedule, every, until);
    if (is_due) walked.push_back(local);
    shown = local;
  }

  const auto found = schd::next_moments(schedule, *repeat_text ? &repeat : nullptr, {}, {},
                                        moment("2015-01-01 23:59:59"), static_cast<int>(walked.size()));
  ASSERT_EQ(found.size(), walked.size());
  ASSERT_GE(walked.size(), 2U);
  for (std::size_t i = 0; i < walked.size(); ++i) {
    const auto date = platform::civil_from_days(walked[i] / 1440);
    const auto of_day = static_cast<int>(walked[i] % 1440);
    ASSERT_EQ(text_of(found[i]),
              text_of(COleDateTime(static_cast<int>(date.year), date.month, date.day, of_day / 60, of_day % 60, 0)));
  }
}

}  // namespace
