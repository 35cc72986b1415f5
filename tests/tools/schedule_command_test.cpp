// Plan
//   The answer for people of each type: sentence, fields, next moments; with a repeat and a window; JSON
//   Moments across both changes of daylight saving time, in zones on both sides of UTC; --count, --after, the present
//   No moments: customised, no days, no repeat, impossible days, window; status 0 and the reason
//   The sentence follows the user's locale
//   Wrong fields: which one, what it was, what the library makes of it, what it may be, an example
//   Bad input: numbers of fields, options
#include <gtest/gtest.h>

#include <map>

#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/testkit/zone_guard.h"
#include "tests/support/made_locale.h"
#include "tests/tools/json_check.h"
#include "tests/tools/program.h"

namespace {

using command_test::Answer;
using command_test::run_in_zone;

constexpr const char* berlin = "Europe/Berlin";

Answer schedule(std::vector<std::string> arguments, const std::string& zone = berlin) {
  arguments.insert(arguments.begin(), "schedule");
  return run_in_zone(zone, arguments);
}

/// The next moments by the JSON form, parted by ", ".
std::string moments(std::vector<std::string> arguments, const std::string& zone = berlin) {
  arguments.insert(arguments.end(), "--json");
  const Answer answer = schedule(arguments, zone);
  EXPECT_EQ(answer.status, 0) << answer;
  std::string list;
  const auto json = json_check::parse(answer.out);
  for (const auto& moment : json["moments"].items)
    list += (list.empty() ? "" : ", ") + moment.text;
  return list;
}

TEST(ScheduleCommand, shows_sentence_fields_and_the_next_ten_moments) {
  const Answer answer = schedule({"0 8 * * 1,3,5", "--after", "2024-03-28"});
  EXPECT_EQ(answer.status, 0) << answer;
  EXPECT_EQ(answer.out,
            "schedule  0 8 * * 1,3,5\n"
            "sentence  At 8:00:00 AM every Mon, Wed, Fri of every week\n"
            "type      weekly\n"
            "hour      8\n"
            "minute    0\n"
            "weekdays  Monday, Wednesday, Friday\n"
            "\n"
            "due next             weekday\n"
            "-------------------  ---------\n"
            "2024-03-29 08:00:00  Friday\n"
            "2024-04-01 08:00:00  Monday\n"
            "2024-04-03 08:00:00  Wednesday\n"
            "2024-04-05 08:00:00  Friday\n"
            "2024-04-08 08:00:00  Monday\n"
            "2024-04-10 08:00:00  Wednesday\n"
            "2024-04-12 08:00:00  Friday\n"
            "2024-04-15 08:00:00  Monday\n"
            "2024-04-17 08:00:00  Wednesday\n"
            "2024-04-19 08:00:00  Friday\n");
  EXPECT_EQ(answer.err, "");
}

TEST(ScheduleCommand, shows_a_repeat_and_the_window_with_the_change_to_daylight_saving_time_in_it) {
  const Answer answer = schedule({"30  2 * * *", "--repeat", "30 m 1 1 0", "--start", "2024-03-30", "--end",
                                  "2024-04-01", "--after", "2024-03-29"});
  EXPECT_EQ(answer.status, 0) << answer;
  EXPECT_EQ(answer.out,
            "schedule     30 2 * * *\n"
            "sentence     Every 30 minute(s) from 2:30:00 AM for 1 hour(s) and 0 minute(s) every day, "
            "starting 3/30/2024 and ending 4/1/2024\n"
            "type         daily\n"
            "hour         2\n"
            "minute       30\n"
            "step         1 day\n"
            "repeat       30 m 1 1 0\n"
            "interval     30 minutes\n"
            "repeat ends  after 1 hour and 0 minutes\n"
            "start        2024-03-30 00:00:00\n"
            "end          2024-04-01 00:00:00\n"
            "\n"
            "due next             weekday\n"
            "-------------------  --------\n"
            "2024-03-30 02:30:00  Saturday\n"
            "2024-03-30 03:00:00  Saturday\n"
            "2024-03-30 03:30:00  Saturday\n"
            "2024-03-31 03:00:00  Sunday\n"
            "2024-03-31 03:30:00  Sunday\n"
            "Then no more. It is not due again before its end, 2024-04-01 00:00:00.\n");
}

TEST(ScheduleCommand, tells_the_fields_of_the_other_types) {
  const Answer daily = schedule({"30 6 */2 * *", "--repeat", "1 h 0 7 5"});
  EXPECT_TRUE(daily.says("type         daily\nhour         6\nminute       30\nstep         2 days\n")) << daily;
  EXPECT_TRUE(daily.says("interval     1 hour\nrepeat ends  at 07:05\n")) << daily;
  const Answer monthly = schedule({"0 8 15 1,7 *", "--repeat", "2 d 2"});
  EXPECT_TRUE(monthly.says("sentence     Every 2 day(s) from 8:00:00 AM on day 15 of Jan, Jul\n")) << monthly;
  EXPECT_TRUE(monthly.says("day          15\nmonths       January, July\n")) << monthly;
  EXPECT_TRUE(monthly.says("interval     2 days\nrepeat ends  with the day\n")) << monthly;
  const Answer none = schedule({"", "--repeat", "30 s 2"});
  EXPECT_TRUE(
      none.out.starts_with("schedule     none\nsentence     Every 30 second(s)\ntype         none\n"
                           "repeat       30 s 2\n"))
      << none;
}

TEST(ScheduleCommand, answers_in_json) {
  const Answer answer = schedule({"0 8 15 1,7 *", "--json", "--repeat", "6 h 0 20 0", "--start", "2024-01-01 12:00",
                                  "--after", "2024-07-15 08:00", "--count", "3"});
  const auto json = json_check::parse(answer.out);
  EXPECT_EQ(json["schedule"].text, "0 8 15 1,7 *");
  EXPECT_EQ(json["sentence"].text,
            "Every 6 hour(s) from 8:00:00 AM until 8:00:00 PM on day 15 of Jan, Jul, starting 1/1/2024");
  EXPECT_EQ(json["type"].number, 2);
  EXPECT_EQ(json["type_name"].text, "monthly");
  EXPECT_EQ(json["hour"].number, 8);
  EXPECT_EQ(json["minute"].number, 0);
  EXPECT_EQ(json["value"].number, 130);
  EXPECT_EQ(json["day"].number, 15);
  ASSERT_EQ(json["months"].items.size(), 2U);
  EXPECT_EQ(json["months"].items[1].text, "July");
  EXPECT_EQ(json["repeat"]["repeat"].text, "6 h 0 20 0");
  EXPECT_EQ(json["repeat"]["interval"].number, 6);
  EXPECT_EQ(json["repeat"]["unit"].number, 1);
  EXPECT_EQ(json["repeat"]["unit_name"].text, "hour");
  EXPECT_EQ(json["repeat"]["end_mode"].number, 0);
  EXPECT_EQ(json["repeat"]["end_name"].text, "until");
  EXPECT_EQ(json["repeat"]["end_hour"].number, 20);
  EXPECT_EQ(json["repeat"]["end_minute"].number, 0);
  EXPECT_EQ(json["start"].text, "2024-01-01 12:00:00");
  EXPECT_EQ(json["end"].kind, json_check::Value::Kind::null);
  EXPECT_EQ(json["after"].text, "2024-07-15 08:00:00");
  ASSERT_EQ(json["moments"].items.size(), 3U);
  EXPECT_EQ(json["moments"].items[2].text, "2025-01-15 08:00:00");
  EXPECT_EQ(json["why_none"].kind, json_check::Value::Kind::null);
  EXPECT_TRUE(json["warnings"].items.empty());
  const auto weekly = json_check::parse(schedule({"0 8 * * 0,6", "--json"}).out);
  ASSERT_EQ(weekly["weekdays"].items.size(), 2U);
  EXPECT_EQ(weekly["weekdays"].items[0].text, "Sunday");
  EXPECT_EQ(weekly["repeat"].kind, json_check::Value::Kind::null);
}

TEST(ScheduleCommand, a_skipped_time_is_due_behind_the_gap_and_a_repeated_one_once) {
  EXPECT_EQ(moments({"30 2 * * *", "--after", "2024-03-30 12:00", "--count", "2"}),
            "2024-03-31 03:00:00, 2024-04-01 02:30:00");
  EXPECT_EQ(moments({"30 2 * * *", "--after", "2024-10-26 12:00", "--count", "2"}),
            "2024-10-27 02:30:00, 2024-10-28 02:30:00");
  EXPECT_EQ(moments({"30 2 * * *", "--after", "2024-03-09 12:00", "--count", "2"}, "America/New_York"),
            "2024-03-10 03:00:00, 2024-03-11 02:30:00");
  EXPECT_EQ(moments({"30 2 * * *", "--after", "2024-10-05 12:00", "--count", "2"}, "Australia/Sydney"),
            "2024-10-06 03:00:00, 2024-10-07 02:30:00");
  EXPECT_EQ(moments({"30 2 * * *", "--after", "2024-03-30 12:00", "--count", "1"}, "Asia/Kolkata"),
            "2024-03-31 02:30:00");
}

TEST(ScheduleCommand, counts_a_step_from_the_start_and_keeps_the_window) {
  EXPECT_EQ(moments({"0 8 */3 * *", "--start", "2024-02-27", "--end", "2024-03-04 08:00", "--after", "2024-01-01"}),
            "2024-02-27 08:00:00, 2024-03-01 08:00:00, 2024-03-04 08:00:00");
}

TEST(ScheduleCommand, begins_after_the_present_when_no_moment_is_given) {
  const test_support::ZoneGuard zone("Asia/Kolkata");
  const COleDateTime before = COleDateTime::GetCurrentTime();
  const std::string next = moments({"", "--repeat", "1 s 2", "--count", "1"}, "Asia/Kolkata");
  const COleDateTime after = COleDateTime::GetCurrentTime() + COleDateTimeSpan(0, 0, 0, 1);
  EXPECT_LT(std::string(before.Format("%Y-%m-%d %H:%M:%S")), next);
  EXPECT_GE(std::string(after.Format("%Y-%m-%d %H:%M:%S")), next);
}

TEST(ScheduleCommand, tells_why_a_customised_schedule_has_no_moments_and_is_done) {
  const std::string why =
      "The schedule \"0 8 1-5 * *\" is customised: it is kept and shown, but which moments it means is not known. A "
      "known one is \"0 8 * * 1,3,5\".";
  const Answer answer = schedule({"0 8 1-5 * *"});
  EXPECT_EQ(answer.status, 0) << answer;
  EXPECT_EQ(answer.out,
            "schedule  0 8 1-5 * *\n"
            "sentence  At 8:00:00 AM customed \"0 8 1-5 * *\"\n"
            "type      customised\n"
            "hour      8\n"
            "minute    0\n"
            "\n"
            "No next moments. " +
                why + "\n");
  const auto json = json_check::parse(schedule({"0 8 1-5 * *", "--json"}).out);
  EXPECT_TRUE(json["moments"].items.empty());
  EXPECT_EQ(json["why_none"].text, why);
}

TEST(ScheduleCommand, tells_why_there_are_no_moments) {
  const std::map<std::vector<std::string>, std::string> reasons = {
      {{""}, "It has no days of its own, and no repeat."},
      {{"0 8 * * ,"}, "It names no day of the week."},
      {{"0 8 1 , *"}, "It names no month."},
      {{"0 8 30 2 *"}, "None of its months has a day 30."},
      {{"0 8 30 2 *", "--end", "2030-01-01"}, "None of its months has a day 30."},
      {{"0 8 * * *", "--end", "2023-05-01"}, "It is not due again before its end, 2023-05-01 00:00:00."},
      {{"0 8 15 1 *", "--after", "9999-12-01"}, "It is not due again before the year 10000."},
      {{"61 8 * * *"}, "The schedule has no time of day: minutes go from 0 to 59, hours from 0 to 23."},
      {{"0 8 * * *", "--repeat", "0 m 2"}, "The repeat has no interval; give a whole number of 1 or more."}};
  for (const auto& [arguments, why] : reasons) {
    const Answer answer = schedule(arguments);
    EXPECT_EQ(answer.status, 0) << answer;
    EXPECT_TRUE(answer.out.ends_with("\n\nNo next moments. " + why + "\n")) << answer;
  }
  EXPECT_TRUE(schedule({"0 8 29 2 *", "--after", "9996-01-01"})
                  .out.ends_with("\n9996-02-29 08:00:00  Thursday\nThen no more. It is not due again before the year "
                                 "10000.\n"));
}

TEST(ScheduleCommand, tells_times_and_dates_in_the_users_locale) {
  const test_support::MadeLocale german("de_DE");
  const Answer answer =
      run_in_zone(berlin, {"schedule", "0 18 * * *", "--after", "2024-03-05", "--start", "2024-03-05"},
                  {"LOCPATH=" + german.folder(), "LC_ALL=de_DE"});
  EXPECT_TRUE(answer.says("sentence  At 18:00:00 every day, starting 5.3.2024\n")) << answer;
}

/// A schedule with one field that is hardly meant, and the warning of it.
struct WrongField {
  const char* text;
  const char* warning;
};

class WrongFields : public testing::TestWithParam<WrongField> {};

TEST_P(WrongFields, are_told_with_what_the_library_makes_of_them_and_what_they_may_be) {
  const Answer answer = schedule({"--", GetParam().text});
  EXPECT_EQ(answer.status, 0) << answer;
  EXPECT_TRUE(answer.says("sentence  At ")) << answer;
  EXPECT_EQ(answer.err, "spc: warning: " + std::string(GetParam().warning) + "\n") << answer;
}

INSTANTIATE_TEST_SUITE_P(
    ScheduleCommand, WrongFields,
    testing::Values(
        WrongField{"77 8 * * *", "minute \"77\": read as 77; it may be a number from 0 to 59, as in \"0 8 * * 1,3,5\""},
        WrongField{"5,35 8 * * *",
                   "minute \"5,35\": read as 5; it may be a number from 0 to 59, as in \"0 8 * * 1,3,5\""},
        WrongField{"-5 8 * * *", "minute \"-5\": read as -5; it may be a number from 0 to 59, as in \"0 8 * * 1,3,5\""},
        WrongField{"* 8 * * *",
                   "minute \"*\": makes the schedule customised; it may be a number from 0 to 59, as in "
                   "\"0 8 * * 1,3,5\""},
        WrongField{"0 x * * *", "hour \"x\": read as 0; it may be a number from 0 to 23, as in \"0 8 * * 1,3,5\""},
        WrongField{"0 24 * * *", "hour \"24\": read as 24; it may be a number from 0 to 23, as in \"0 8 * * 1,3,5\""},
        WrongField{
            "0 * * * *",
            "hour \"*\": makes the schedule customised; it may be a number from 0 to 23, as in \"0 8 * * 1,3,5\""},
        WrongField{"0 8 */0 * *",
                   "day of the month \"*/0\": makes the schedule customised; it may be * or a step of 1 "
                   "or more, such as */2, as in \"30 6 */2 * *\""},
        WrongField{"0 8 */2x * *",
                   "day of the month \"*/2x\": read as */2; it may be * or a step of 1 or more, such as "
                   "*/2, as in \"30 6 */2 * *\""},
        WrongField{"0 8 15 * *",
                   "month \"*\": makes the schedule customised; it may be a list beside a day of the "
                   "month, 1,2,3 and so on to 12 for every one, as in \"0 8 15 1,7 *\""},
        WrongField{"0 8 32 1,7 *",
                   "day of the month \"32\": read as 32; it may be a number from 1 to 31 beside these "
                   "months, as in \"0 8 15 1,7 *\""},
        WrongField{"0 8 31 4,6 *",
                   "day of the month \"31\": read as 31; it may be a number from 1 to 30 beside these "
                   "months, as in \"0 8 15 1,7 *\""},
        WrongField{"0 8 * 1 *",
                   "day of the month \"*\": read as 0; it may be a number from 1 to 31 beside these "
                   "months, as in \"0 8 15 1,7 *\""},
        WrongField{"0 8 15 13 *",
                   "month \"13\": makes the schedule customised; it may be numbers from 1 to 12, parted "
                   "by commas, as in \"0 8 15 1,7 *\""},
        WrongField{"0 8 15 , *",
                   "month \",\": read as no month; it may be numbers from 1 to 12, parted by commas, as "
                   "in \"0 8 15 1,7 *\""},
        WrongField{"0 8 * * 9",
                   "day of the week \"9\": makes the schedule customised; it may be numbers from 0, "
                   "Sunday, to 6, parted by commas, as in \"0 8 * * 1,3,5\""},
        WrongField{"0 8 * * Mon",
                   "day of the week \"Mon\": makes the schedule customised; it may be numbers from 0, "
                   "Sunday, to 6, parted by commas, as in \"0 8 * * 1,3,5\""},
        WrongField{"0 8 * * ,,,",
                   "day of the week \",,,\": read as no day; it may be numbers from 0, Sunday, to 6, "
                   "parted by commas, as in \"0 8 * * 1,3,5\""},
        WrongField{"0 8 15 1 2",
                   "month \"1\": makes the schedule customised; it may be * beside days of the week, as "
                   "in \"0 8 * * 1,3,5\""},
        WrongField{"0 8 15 * 2",
                   "day of the month \"15\": makes the schedule customised; it may be * beside days of "
                   "the week, as in \"0 8 * * 1,3,5\""}));

TEST(ScheduleCommand, tells_every_wrong_field_at_once_in_json_too) {
  const auto json = json_check::parse(schedule({"61 x */0 * *", "--json"}).out);
  ASSERT_EQ(json["warnings"].items.size(), 3U);
  const auto& hour = json["warnings"].items[1];
  EXPECT_EQ(hour["field"].text, "hour");
  EXPECT_EQ(hour["text"].text, "x");
  EXPECT_EQ(hour["taken"].text, "read as 0");
  EXPECT_EQ(hour["wanted"].text, "a number from 0 to 23");
  EXPECT_EQ(hour["example"].text, "0 8 * * 1,3,5");
}

TEST(ScheduleCommand, tells_the_wrong_fields_of_a_repeat) {
  const std::string example = ", as in \"10 m 0 17 30\"\n";
  const std::map<std::string, std::string> warnings = {
      {"0 m 2", "interval \"0\": read as 0; it may be a whole number of 1 or more" + example},
      {"ten m 2", "interval \"ten\": read as 0; it may be a whole number of 1 or more" + example},
      {"10 x 2", "unit \"x\": read as d; it may be s, m, h or d" + example},
      {"10 m 7",
       "end \"7\": read as 7, no end; it may be 0 for until a time, 1 for a length of time, 2 for no end" + example},
      {"10 m x 17 30",
       "end \"x\": read as 0; it may be 0 for until a time, 1 for a length of time, 2 for no end" + example},
      {"10 m 0", "end \"0\": read as 0 0 0; it may be followed by an hour and a minute" + example},
      {"10 m 0 25 0", "end's hour \"25\": read as 25; it may be a number from 0 to 24" + example},
      {"10 m 0 17 60", "end's minute \"60\": read as 60; it may be a number from 0 to 59" + example},
      {"10 m 1 x 90", "end's hour \"x\": read as 0; it may be a whole number of 0 or more" + example},
      {"5 h 2 9 9", "end's hour and minute \"9 9\": passed over; it may be left out behind 2, as in \"10 m 2\"\n"}};
  for (const auto& [repeat, warning] : warnings) {
    const Answer answer = schedule({"0 8 * * *", "--repeat", repeat});
    EXPECT_EQ(answer.status, 0) << answer;
    EXPECT_EQ(answer.err, "spc: warning: " + warning) << answer;
  }
}

TEST(ScheduleCommand, finds_nothing_wrong_with_what_is_right) {
  for (const char* text : {"0 0 * * *", "59 23 * * *", "0 8 */1 * *", "0 8 * * 0,6", "0 8 29 2 *", "0 8 31 1,2 *", ""})
    for (const char* repeat : {"10 m 2", "1 s 0 24 0", "1 h 1 0 90", "2 d 2", ""})
      EXPECT_EQ(schedule({text, "--repeat", repeat}).err, "") << text << " / " << repeat;
}

TEST(ScheduleCommand, refuses_a_wrong_number_of_fields) {
  const Answer four = schedule({"0 8 * *"});
  EXPECT_EQ(four.status, 2);
  EXPECT_EQ(four.out, "");
  EXPECT_EQ(
      four.err,
      "spc: cannot read the schedule: invalid schedule string: it has 4 fields\n"
      "     Its 5 fields are minute, hour, day of the month, month and day of the week, as in \"0 8 * * 1,3,5\".\n");
  EXPECT_TRUE(schedule({" \t"}).complains("it has 0 fields"));
  for (const auto& [repeat, count] : std::map<std::string, std::string>{
           {"10", "1 field"}, {"10 m", "2 fields"}, {"10 m 2 0", "4 fields"}, {"10 m 0 17 30 0", "6 fields"}}) {
    const Answer answer = schedule({"0 8 * * *", "--repeat", repeat});
    EXPECT_EQ(answer.status, 2);
    EXPECT_TRUE(answer.err.starts_with("spc: cannot read the repeat: Invalid repeat string: it has " + count + "\n" +
                                       "     It has 3, as in \"10 m 2\""))
        << answer;
  }
}

TEST(ScheduleCommand, refuses_wrong_options) {
  const std::vector<std::vector<std::string>> wrong = {
      {},
      {"0 8 * * *", "--start", "tomorrow"},
      {"0 8 * * *", "--end", "2024-02-30"},
      {"0 8 * * *", "--after", "8:00"},
      {"0 8 * * *", "--start", ""},
      {"0 8 * * *", "--end", ""},
      {"0 8 * * *", "--after", ""},
      {"0 8 * * *", "--count", "0"},
      {"0 8 * * *", "--start", "2024-05-01", "--end", "2024-04-30 23:59:59"},
      {"0 8 * * *", "2024"}};
  for (const auto& arguments : wrong) {
    const Answer answer = schedule(arguments);
    EXPECT_EQ(answer.status, 2) << answer;
    EXPECT_EQ(answer.out, "");
    EXPECT_TRUE(answer.err.starts_with("spc: cannot read the command line: ")) << answer;
  }
  EXPECT_TRUE(schedule(wrong[1]).complains("--start: \"tomorrow\" is not a moment\n"));
}

}  // namespace
