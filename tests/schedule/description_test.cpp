// Plan
//   each fragment and its place in the sentence -> get_schedule_descriptive_text.*
//   what falls away for a schedule of no days -> get_schedule_descriptive_text.type_3_*
//   dates and times that are none -> get_schedule_descriptive_text.*
//   another language: words, month separator, formats -> get_schedule_descriptive_text.follows_*
#include <gtest/gtest.h>

#include <string>

#include "spcbase/foundation/messages.h"
#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/datetime/user_locale.h"
#include "spcbase/schedule/description.h"
#include "tests/support/german_messages.h"

namespace {

using schd::get_schedule_descriptive_text;
using schd::RepeatStringInfo;
using schd::ScheduleStringInfo;

const _variant_t& no_date() {
  static const _variant_t empty;
  return empty;
}

_variant_t date(int year, int month, int day) {
  return {static_cast<double>(COleDateTime(year, month, day, 12, 0, 0)), VT_DATE};
}

std::string told(const std::string& text, const std::string& repeat_text = "", const _variant_t& start = no_date(),
                 const _variant_t& end = no_date()) {
  ScheduleStringInfo schedule;
  ScheduleStringInfo::parse_schedule_string(text.c_str(), schedule);
  RepeatStringInfo repeat;
  RepeatStringInfo::parse_repeat_string(repeat_text.c_str(), repeat);
  return get_schedule_descriptive_text(schedule, repeat_text.empty() ? nullptr : &repeat, start, end).GetString();
}

TEST(get_schedule_descriptive_text, tells_a_daily_schedule_at_eight_with_a_start) {
  EXPECT_EQ(told("0 8 * * *", "", date(2024, 1, 2)), "At 8:00:00 AM every day, starting 1/2/2024");
}

TEST(get_schedule_descriptive_text, tells_a_repeat_with_its_end_and_both_dates) {
  EXPECT_EQ(told("0 8 * * *", "10 m 0 17 30", date(2024, 1, 2), date(2024, 2, 2)),
            "Every 10 minute(s) from 8:00:00 AM until 5:30:00 PM every day, starting 1/2/2024 and ending 2/2/2024");
}

TEST(get_schedule_descriptive_text, type_3_without_a_repeat_is_empty) {
  EXPECT_EQ(told("", "", date(2024, 1, 2), date(2024, 2, 2)), "");
}

TEST(get_schedule_descriptive_text, type_3_with_a_repeat_is_the_repeat_alone_even_with_dates) {
  EXPECT_EQ(told("", "3 h 2", date(2024, 1, 2), date(2024, 2, 2)), "Every 3 hour(s)");
  EXPECT_EQ(told("", "3 h 0 6 5"), "Every 3 hour(s) until 6:05:00 AM");
}

TEST(get_schedule_descriptive_text, a_step_of_1_is_every_day_and_of_3_every_3_days) {
  EXPECT_EQ(told("0 8 */1 * *"), "At 8:00:00 AM every day");
  EXPECT_EQ(told("0 8 */3 * *"), "At 8:00:00 AM every 3 days");
}

TEST(get_schedule_descriptive_text, weekdays_1_3_5_are_mon_wed_fri) {
  EXPECT_EQ(told("0 8 * * 1,3,5"), "At 8:00:00 AM every Mon, Wed, Fri of every week");
  EXPECT_EQ(told("0 8 * * 0,1,2,3,4,5,6"), "At 8:00:00 AM every Sun, Mon, Tue, Wed, Thu, Fri, Sat of every week");
}

TEST(get_schedule_descriptive_text, a_week_without_days_has_an_empty_list) {
  EXPECT_EQ(told("0 8 * * ,"), "At 8:00:00 AM every  of every week");
}

TEST(get_schedule_descriptive_text, all_twelve_months_are_every_month) {
  EXPECT_EQ(told("0 8 15 1,2,3,4,5,6,7,8,9,10,11,12 *"), "At 8:00:00 AM on day 15 of every month");
}

TEST(get_schedule_descriptive_text, months_have_three_letters_but_for_june) {
  EXPECT_EQ(told("0 8 15 1,2,3,4,5,6 *"), "At 8:00:00 AM on day 15 of Jan, Feb, Mar, Apr, May, June");
  EXPECT_EQ(told("0 8 15 7,8,9,10,11,12 *"), "At 8:00:00 AM on day 15 of Jul, Aug, Sep, Oct, Nov, Dec");
}

TEST(get_schedule_descriptive_text, months_do_not_count_bit_0_or_bits_beyond_12) {
  ScheduleStringInfo schedule;
  schedule.type = ScheduleStringInfo::monthly;
  schedule.value = 0x1FFF | 1 << 20;
  EXPECT_EQ(get_schedule_descriptive_text(schedule, nullptr, no_date(), no_date()),
            "At 12:00:00 AM on day 1 of every month");
  schedule.value = 1 | 1 << 20;
  EXPECT_EQ(get_schedule_descriptive_text(schedule, nullptr, no_date(), no_date()), "At 12:00:00 AM on day 1 of ");
}

TEST(get_schedule_descriptive_text, a_customised_schedule_is_quoted_after_the_time_as_parsed) {
  EXPECT_EQ(told("* 8 * * *"), "At 8:00:00 AM customed \"* 8 * * *\"");
  EXPECT_EQ(told("5 * * * *"), "At 12:05:00 AM customed \"5 * * * *\"");
}

TEST(get_schedule_descriptive_text, a_percent_sign_in_a_customised_schedule_is_only_a_sign) {
  EXPECT_EQ(told("0 8 %s %d %n"), "At 8:00:00 AM customed \"0 8 %s %d %n\"");
}

TEST(get_schedule_descriptive_text, every_unit_has_its_word_and_days_serve_for_the_rest) {
  EXPECT_EQ(told("", "1 s 2"), "Every 1 second(s)");
  EXPECT_EQ(told("", "1 m 2"), "Every 1 minute(s)");
  EXPECT_EQ(told("", "1 h 2"), "Every 1 hour(s)");
  EXPECT_EQ(told("", "1 d 2"), "Every 1 day(s)");
  RepeatStringInfo repeat;
  repeat.unit = 99;
  ScheduleStringInfo schedule;
  schedule.type = ScheduleStringInfo::none;
  EXPECT_EQ(get_schedule_descriptive_text(schedule, &repeat, no_date(), no_date()), "Every 10 day(s)");
}

TEST(get_schedule_descriptive_text, the_end_of_a_repeat_is_a_time_a_length_or_nothing) {
  EXPECT_EQ(told("", "1 h 0 17 30"), "Every 1 hour(s) until 5:30:00 PM");
  EXPECT_EQ(told("", "1 h 1 2 15"), "Every 1 hour(s) for 2 hour(s) and 15 minute(s)");
  EXPECT_EQ(told("", "1 h 2 2 15"), "Every 1 hour(s)");
  EXPECT_EQ(told("", "1 h 7 2 15"), "Every 1 hour(s)");
}

TEST(get_schedule_descriptive_text, an_end_date_without_a_start_has_nothing_ahead_of_it) {
  EXPECT_EQ(told("0 8 * * *", "", no_date(), date(2024, 2, 2)), "At 8:00:00 AM every day and ending 2/2/2024");
}

TEST(get_schedule_descriptive_text, an_unknown_type_has_a_time_and_no_days) {
  ScheduleStringInfo schedule;
  schedule.type = 99;
  EXPECT_EQ(get_schedule_descriptive_text(schedule, nullptr, date(2024, 1, 2), no_date()),
            "At 12:00:00 AM, starting 1/2/2024");
}

TEST(get_schedule_descriptive_text, dates_that_cannot_be_converted_are_told_so_and_a_null_one_is_not_told) {
  EXPECT_EQ(told("0 8 * * *", "", "soon"), "At 8:00:00 AM every day, starting Invalid DateTime");
  _variant_t null;
  null.vt = VT_NULL;
  EXPECT_EQ(told("0 8 * * *", "", null, null), "At 8:00:00 AM every day");
  EXPECT_EQ(told("0 8 * * *", "", "2024-01-02", 45324.0),
            "At 8:00:00 AM every day, starting 1/2/2024 and ending 2/2/2024");
}

TEST(get_schedule_descriptive_text, an_hour_that_is_none_is_told_so) {
  EXPECT_EQ(told("0 25 * * *"), "At Invalid DateTime every day");
}

class get_schedule_descriptive_text_in_german : public testing::Test {
 protected:
  get_schedule_descriptive_text_in_german() { install_messages(test_support::german_messages()); }
  ~get_schedule_descriptive_text_in_german() override { install_messages({}); }
};

TEST_F(get_schedule_descriptive_text_in_german, every_word_is_the_translated_one) {
  EXPECT_EQ(told("0 8 */3 * *", "10 m 0 17 30", date(2024, 1, 2), date(2024, 2, 2)),
            "Alle 10 Minute(n) ab 8:00:00 AM bis 5:30:00 PM alle 3 Tage; beginnend am 1/2/2024 und endend am 2/2/2024");
  EXPECT_EQ(told("", "1 h 1 2 15"), "Alle 1 Stunde(n) für 2 Stunde(n) und 15 Minute(n)");
  EXPECT_EQ(told("5 * * * *"), "Um 12:05:00 AM angepasst \"5 * * * *\"");
}

TEST_F(get_schedule_descriptive_text_in_german, times_and_dates_follow_the_users_locale) {
  const platform::HeldUserLocale users("de_DE.UTF-8");
  EXPECT_EQ(told("0 8 * * *", "10 m 0 17 30", date(2024, 1, 2), date(2024, 2, 2)),
            "Alle 10 Minute(n) ab 08:00:00 bis 17:30:00 jeden Tag; beginnend am 2.1.2024 und endend am 2.2.2024");
}

TEST_F(get_schedule_descriptive_text_in_german, months_take_the_translated_separator_and_weekdays_the_fixed_one) {
  EXPECT_EQ(told("0 8 15 3,5,12 *"), "Um 8:00:00 AM am 15. von März; Mai; Dez");
  EXPECT_EQ(told("0 8 15 1,2,3,4,5,6,7,8,9,10,11,12 *"), "Um 8:00:00 AM am 15. von jedem Monat");
  EXPECT_EQ(told("0 8 * * 1,3,5"), "Um 8:00:00 AM jeden Mo, Mi, Fr jeder Woche");
}

}  // namespace
