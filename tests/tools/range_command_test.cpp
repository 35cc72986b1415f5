// Plan
//   The answer for people, whole; a range without moments; XML alone, which gives the range back to the last bit; JSON
//   Every keyword and unit at a moment that is given; weeks from every day on, by name and number
//   Zones: UTC on the other side of midnight; clock hours across both changes of daylight saving time
//   Without --at the present
//   Display dates follow the user's locale, log dates do not
//   Bad input: each word that is wrong is named, with a right line of each kind; what is passed over; options; moments
//     outside the years of dates
#include <gtest/gtest.h>

#include <map>

#include "spcbase/testkit/zone_guard.h"
#include "spcbase/time/range.h"
#include "tests/support/made_locale.h"
#include "tests/tools/json_check.h"
#include "tests/tools/program.h"

namespace {

using command_test::Answer;
using command_test::run_in_zone;

constexpr const char* berlin = "Europe/Berlin";
constexpr const char* advice =
    "     Right ones are today, this_week, this_month, this_quarter, this_year, no_initial_data, all_data, yesterday, "
    "last_week, last_month, last_quarter or last_year; \"last 5 day\"; "
    "\"fixed_range 2024-03-01#00:00:00 2024-03-15#23:59:59\".\n";

/// "FROM to TO" of a range at a moment, by the JSON form.
std::string reckoned(const std::string& zone, const std::string& line, const std::string& at,
                     std::vector<std::string> more = {}) {
  more.insert(more.begin(), {"--json", "range", line, "--at", at});
  const Answer answer = run_in_zone(zone, more);
  EXPECT_EQ(answer.status, 0) << answer;
  const auto json = json_check::parse(answer.out);
  return json["from"].text + " to " + json["to"].text;
}

TEST(RangeCommand, shows_the_choice_its_moments_and_its_forms) {
  const Answer answer = run_in_zone(berlin, {"range", "last 5 DAY", "--at", "2024-03-15 08:00"});
  EXPECT_EQ(answer.status, 0) << answer;
  EXPECT_EQ(answer.out,
            "range    last 5 day\n"
            "from     2024-03-10 00:00:00\n"
            "to       2024-03-15 23:59:59\n"
            "display  last 5 day\n"
            "log      last 5 day\n"
            "xml      <range><type>user_defined_range</type><count>5</count><time_unit>day</time_unit>"
            "<from>45361.0</from><to>45366.99998842593049630523</to></range>\n");
  EXPECT_EQ(answer.err, "");
}

TEST(RangeCommand, shows_a_fixed_range_as_it_was_given_whatever_the_zone) {
  const Answer answer =
      run_in_zone("America/New_York", {"range", "fixed_range 2024-03-01 2024-03-15#12:30:00", "--utc"});
  EXPECT_TRUE(
      answer.out.starts_with("range    fixed_range 2024-03-01#00:00:00 2024-03-15#12:30:00\n"
                             "from     2024-03-01 00:00:00\n"
                             "to       2024-03-15 12:30:00\n"
                             "display  between 3/1/2024 and 3/15/2024 12:30:00 PM\n"
                             "log      from [3/1/2024] to [3/15/2024 12:30:00 PM]\n"
                             "xml      <range><type>user_defined</type>"))
      << answer;
}

TEST(RangeCommand, shows_that_all_data_and_no_initial_data_have_no_moments) {
  const Answer all = run_in_zone(berlin, {"range", "all_data", "--utc"});
  EXPECT_TRUE(all.out.starts_with("range    all_data\nfrom     none\nto       none\ndisplay  All data\n")) << all;
  const auto none = json_check::parse(run_in_zone(berlin, {"range", "no_initial_data", "--json"}).out);
  EXPECT_EQ(none["from"].kind, json_check::Value::Kind::null);
  EXPECT_EQ(none["to"].kind, json_check::Value::Kind::null);
}

TEST(RangeCommand, prints_xml_alone_that_gives_the_range_back) {
  const Answer answer = run_in_zone(berlin, {"range", "last 7 minute", "--at", "2024-03-15 08:00:01", "--xml"});
  EXPECT_EQ(answer.status, 0) << answer;
  IXMLDOMDocumentPtr document;
  ASSERT_EQ(create_dom_document(&document), S_OK);
  ASSERT_NE(document->loadXML(answer.out.c_str()), VARIANT_FALSE) << answer;
  DateTimeRange range;
  range.set_xml(document->GetdocumentElement());
  EXPECT_EQ(range.to_string(), "last 7 minute");
  const COleDateTime to(2024, 3, 15, 8, 0, 1);
  EXPECT_EQ(range.to.m_dt, to.m_dt);
  EXPECT_EQ(range.from.m_dt, to.m_dt - 7 / 1440.0);
  EXPECT_EQ(answer.out.find('\n'), answer.out.size() - 1);
}

TEST(RangeCommand, answers_in_json) {
  const auto json =
      json_check::parse(run_in_zone(berlin, {"--json", "range", "last 2 quarter", "--at", "2024-03-15", "--utc"}).out);
  EXPECT_EQ(json["range"].text, "last 2 quarter");
  EXPECT_EQ(json["type"].number, 6);
  EXPECT_EQ(json["count"].number, 2);
  EXPECT_EQ(json["unit"].text, "quarter");
  EXPECT_TRUE(json["utc"].truth);
  EXPECT_EQ(json["display"].text, "last 2 quarter");
  EXPECT_EQ(json["log"].text, "last 2 quarter");
  EXPECT_TRUE(json["xml"].text.starts_with("<range><type>user_defined_range</type><count>2</count>"));
  EXPECT_TRUE(json["warnings"].items.empty());
}

TEST(RangeCommand, reckons_every_choice_at_the_moment_that_is_given) {
  const std::map<std::string, std::string> expected = {
      {"today", "2024-05-15 00:00:00 to 2024-05-15 23:59:59"},
      {"this_week", "2024-05-12 00:00:00 to 2024-05-15 23:59:59"},
      {"this_month", "2024-05-01 00:00:00 to 2024-05-15 23:59:59"},
      {"this_quarter", "2024-04-01 00:00:00 to 2024-05-15 23:59:59"},
      {"this_year", "2024-01-01 00:00:00 to 2024-05-15 23:59:59"},
      {"yesterday", "2024-05-14 00:00:00 to 2024-05-14 23:59:59"},
      {"last_week", "2024-05-05 00:00:00 to 2024-05-11 23:59:59"},
      {"last_month", "2024-04-01 00:00:00 to 2024-04-30 23:59:59"},
      {"last_quarter", "2024-01-01 00:00:00 to 2024-03-31 23:59:59"},
      {"last_year", "2023-01-01 00:00:00 to 2023-12-31 23:59:59"},
      {"last 1 day", "2024-05-14 00:00:00 to 2024-05-15 23:59:59"},
      {"last 1 week", "2024-05-05 23:59:59 to 2024-05-15 23:59:59"},
      {"last 3 month", "2024-02-01 00:00:00 to 2024-05-15 23:59:59"},
      {"last 1 quarter", "2024-01-01 00:00:00 to 2024-05-15 23:59:59"},
      {"last 1 year", "2023-01-01 00:00:00 to 2024-05-15 23:59:59"},
      {"last 12 hour", "2024-05-14 22:20:30 to 2024-05-15 10:20:30"},
      {"last 21 minute", "2024-05-15 09:59:30 to 2024-05-15 10:20:30"},
      {"last 31 second", "2024-05-15 10:19:59 to 2024-05-15 10:20:30"}};
  for (const auto& [line, moments] : expected)
    EXPECT_EQ(reckoned(berlin, line, "2024-05-15 10:20:30"), moments) << line;
}

TEST(RangeCommand, takes_the_first_day_of_the_week_by_number_and_by_name) {
  const std::vector<std::string> names = {"Sunday", "monday", "TUE", "Wednesday", "thu", "Friday", "Sat"};
  const std::vector<std::string> starts = {"12", "13", "14", "15", "09", "10", "11"};
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string expected = "2024-05-" + starts[i] + " 00:00:00 to 2024-05-15 23:59:59";
    EXPECT_EQ(reckoned(berlin, "this_week", "2024-05-15", {"--week-start", names[i]}), expected);
    EXPECT_EQ(reckoned(berlin, "this_week", "2024-05-15", {"--week-start", std::to_string(i + 1)}), expected);
  }
}

TEST(RangeCommand, takes_the_day_of_utc_that_holds_the_local_moment) {
  EXPECT_EQ(reckoned("America/New_York", "today", "2024-03-15 21:00", {"--utc"}),
            "2024-03-16 00:00:00 to 2024-03-16 23:59:59");
  EXPECT_EQ(reckoned("Asia/Kolkata", "today", "2024-03-15 05:29:59", {"--utc"}),
            "2024-03-14 00:00:00 to 2024-03-14 23:59:59");
  EXPECT_EQ(reckoned("America/St_Johns", "last 1 hour", "2024-07-01 12:00", {"--utc"}),
            "2024-07-01 13:30:00 to 2024-07-01 14:30:00");
  const Answer shown = run_in_zone("Asia/Kolkata", {"range", "today", "--at", "2024-03-15 05:29:59", "--utc"});
  EXPECT_TRUE(shown.says("from     2024-03-14 00:00:00 UTC\n")) << shown;
}

TEST(RangeCommand, counts_clock_hours_and_whole_days_across_both_changes) {
  for (const char* day : {"2024-03-31", "2024-10-27"}) {
    const std::string date = day;
    EXPECT_EQ(reckoned(berlin, "last 12 hour", date + " 12:00"), date + " 00:00:00 to " + date + " 12:00:00");
    EXPECT_EQ(reckoned(berlin, "today", date + " 12:00"), date + " 00:00:00 to " + date + " 23:59:59");
  }
  EXPECT_EQ(reckoned(berlin, "last 1 hour", "2024-03-31 12:00", {"--utc"}),
            "2024-03-31 09:00:00 to 2024-03-31 10:00:00");
  EXPECT_EQ(reckoned(berlin, "last 1 hour", "2024-10-27 12:00", {"--utc"}),
            "2024-10-27 10:00:00 to 2024-10-27 11:00:00");
}

TEST(RangeCommand, reckons_at_the_present_without_a_moment) {
  const test_support::ZoneGuard zone("Australia/Sydney");
  const COleDateTime before = COleDateTime::GetCurrentTime();
  const auto json = json_check::parse(run_in_zone("Australia/Sydney", {"--json", "range", "last 0 second"}).out);
  const COleDateTime after = COleDateTime::GetCurrentTime();
  EXPECT_LE(std::string(before.Format("%Y-%m-%d %H:%M:%S")), json["to"].text);
  EXPECT_GE(std::string(after.Format("%Y-%m-%d %H:%M:%S")), json["to"].text);
}

TEST(RangeCommand, displays_dates_in_the_users_locale_and_logs_them_in_american_english) {
  const test_support::MadeLocale german("de_DE");
  const Answer answer = run_in_zone(berlin, {"range", "fixed_range 2024-03-01 2024-03-15#12:30:00"},
                                    {"LOCPATH=" + german.folder(), "LC_ALL=de_DE"});
  EXPECT_TRUE(answer.says("display  between 1.3.2024 and 15.3.2024 12:30:00\n")) << answer;
  EXPECT_TRUE(answer.says("log      from [3/1/2024] to [3/15/2024 12:30:00 PM]\n")) << answer;
}

TEST(RangeCommand, names_the_word_that_is_wrong_and_shows_a_right_line_of_each_kind) {
  const std::map<std::string, std::string> faults = {
      {"", "the line is empty"},
      {"  ", "the line is empty"},
      {"tomorrow", "\"tomorrow\" is not a choice, and capital letters count"},
      {"Today", "\"Today\" is not a choice, and capital letters count"},
      {"last", "the number and the unit are missing"},
      {"last 5", "the unit behind \"5\" is missing"},
      {"last day 5", "\"5\" is not a unit; units are day, week, month, quarter, hour, minute, second or year"},
      {"last 5 days", "\"days\" is not a unit; units are day, week, month, quarter, hour, minute, second or year"},
      {"fixed_range", "the first moment is missing"},
      {"fixed_range 2024-13-01 2024-03-15", "\"2024-13-01\" is not a moment"},
      {"fixed_range 2024-03-01", "the second moment is missing"},
      {"fixed_range 2024-03-01 12:00x", "\"12:00x\" is not a moment"}};
  for (const auto& [line, fault] : faults) {
    const Answer answer = run_in_zone(berlin, {"range", line});
    EXPECT_EQ(answer.status, 2) << answer;
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, "spc: cannot read the range: " + fault + "\n" + advice);
  }
}

TEST(RangeCommand, warns_of_what_is_read_otherwise_than_it_stands) {
  const Answer answer = run_in_zone(berlin, {"range", "last five day ago", "--at", "2024-03-15"});
  EXPECT_EQ(answer.status, 0) << answer;
  EXPECT_TRUE(answer.out.starts_with("range    last 0 day\nfrom     2024-03-15 00:00:00\n")) << answer;
  EXPECT_EQ(
      answer.err,
      "spc: warning: number \"five\": read as 0; it may be a whole number below 2147483648, as in \"last 5 day\"\n"
      "spc: warning: word \"ago\": passed over; it may be left out, as in \"last 5 day\"\n");
  const auto json = json_check::parse(run_in_zone(berlin, {"--json", "range", "today or so"}).out);
  ASSERT_EQ(json["warnings"].items.size(), 2U);
  EXPECT_EQ(json["warnings"].items[1]["text"].text, "so");
  EXPECT_EQ(json["warnings"].items[1]["example"].text, "today");
  EXPECT_TRUE(run_in_zone(berlin, {"range", "fixed_range 2024-03-15 2024-03-01"})
                  .complains("spc: warning: second moment \"2024-03-01\": before the first one"));
  EXPECT_TRUE(
      run_in_zone(berlin, {"range", "last -5 day"})
          .complains("spc: warning: number \"-5\": reaches into the future, and ends before it begins; it may be a "
                     "number of 1 or more, as in \"last 5 day\"\n"));
  EXPECT_EQ(run_in_zone(berlin, {"range", "last 0 day"}).err, "");
}

TEST(RangeCommand, refuses_wrong_options) {
  const std::map<std::string, std::vector<std::string>> faults = {
      {"spc: cannot read the command line: --week-start: \"8\" is not a weekday\n"
       "     Weekdays are named, as in Monday or Mon, or numbered from 1, Sunday, to 7, Saturday.\n",
       {"range", "today", "--week-start", "8"}},
      {"spc: cannot read the command line: --at: \"15.03.2024\" is not a moment\n"
       "     Moments are local time, written 2024-03-05 or 2024-03-05 08:30:00.\n",
       {"range", "today", "--at", "15.03.2024"}},
      {"spc: cannot read the command line: --at: \"2023-02-29\" is not a moment\n"
       "     Moments are local time, written 2024-03-05 or 2024-03-05 08:30:00.\n",
       {"range", "today", "--at", "2023-02-29"}},
      {"spc: cannot read the command line: --at: \"\" is not a moment, such as 2024-03-05 or 2024-03-05 08:30:00\n"
       "     spc range --help tells more.\n",
       {"range", "today", "--at", ""}},
      {"spc: cannot read the command line: --xml prints XML, --json JSON\n     Give one of them.\n",
       {"range", "today", "--xml", "--json"}},
      {"spc: cannot read the command line: LINE is missing\n"
       "     Usage: spc range [OPTIONS] LINE. spc range --help tells more.\n",
       {"range"}},
      {"spc: cannot read the command line: \"5\" is a word too many\n"
       "     A text with blanks in it stands in quotes. spc range --help tells more.\n",
       {"range", "last", "5", "day"}}};
  for (const auto& [told, arguments] : faults) {
    const Answer answer = run_in_zone(berlin, arguments);
    EXPECT_EQ(answer.status, 2) << answer;
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, told);
  }
}

TEST(RangeCommand, fails_when_a_moment_lies_outside_the_years_of_dates) {
  for (const char* line : {"last 9999 year", "last 2000000000 month", "last 9999999 day", "last 2147483647 hour"}) {
    const Answer answer = run_in_zone(berlin, {"range", line, "--at", "2024-03-15"});
    EXPECT_EQ(answer.status, 1) << answer;
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err,
              "spc: cannot reckon the range: it begins outside the years 100 to 9999\n"
              "     Take a number nearer to 0, as in \"last 5 day\".\n");
  }
}

}  // namespace
