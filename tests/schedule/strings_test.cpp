// Plan
//   schedules: the three known kinds, what falls to customised, masks, canonical form -> ScheduleStringInfo.*
//   repeats: units, ends, what the text drops -> RepeatStringInfo.*
//   refused texts and what they leave -> *.fails_*
//   random texts: canonical ones come back, what is not refused is kept -> any_text.*
#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/schedule/strings.h"

namespace {

using schd::RepeatStringInfo;
using schd::ScheduleStringInfo;

ScheduleStringInfo schedule(const std::string& text) {
  ScheduleStringInfo parsed;
  ScheduleStringInfo::parse_schedule_string(text.c_str(), parsed);
  return parsed;
}

RepeatStringInfo repeat(const std::string& text) {
  RepeatStringInfo parsed;
  RepeatStringInfo::parse_repeat_string(text.c_str(), parsed);
  return parsed;
}

std::string formatted(const std::string& text) { return schedule(text).get_rep_str().GetString(); }

void expect_customised(const std::string& text) {
  const auto parsed = schedule(text);
  EXPECT_EQ(parsed.type, ScheduleStringInfo::customised) << text;
  EXPECT_EQ(parsed.text, text.c_str());
  EXPECT_EQ(parsed.get_rep_str(), text.c_str());
}

// The text of a refusal, which must be a DBException with the general code; empty when nothing is refused.
template <class Work>
std::string refusal(Work work) {
  try {
    work();
  } catch (DBException& failure) {
    EXPECT_EQ(failure.error_code, result_code::failed);
    return failure.what().GetString();
  }
  return {};
}

TEST(ScheduleStringInfo, starts_as_a_daily_one_without_a_text) {
  const ScheduleStringInfo fresh;
  EXPECT_TRUE(fresh.text.IsEmpty());
  EXPECT_EQ(fresh.type, 0);
  EXPECT_EQ(fresh.hour, 0);
  EXPECT_EQ(fresh.minute, 0);
  EXPECT_EQ(fresh.value, 0);
  EXPECT_EQ(fresh.day, 1);
}

TEST(ScheduleStringInfo, an_empty_text_is_type_3_and_a_null_pointer_too) {
  EXPECT_EQ(schedule("").type, 3);
  EXPECT_TRUE(schedule("").get_rep_str().IsEmpty());
  ScheduleStringInfo parsed = schedule("30 6 * * *");
  ScheduleStringInfo::parse_schedule_string(nullptr, parsed);
  EXPECT_EQ(parsed.type, 3);
  EXPECT_TRUE(parsed.text.IsEmpty());
  EXPECT_EQ(parsed.hour, 6) << "fields that a text does not speak of stay";
}

TEST(ScheduleStringInfo, every_day_at_8_is_daily_with_step_1_and_formats_back_to_itself) {
  const auto parsed = schedule("0 8 * * *");
  EXPECT_EQ(parsed.type, 0);
  EXPECT_EQ(parsed.hour, 8);
  EXPECT_EQ(parsed.minute, 0);
  EXPECT_EQ(parsed.value, 1);
  EXPECT_EQ(parsed.text, "0 8 * * *");
  EXPECT_EQ(parsed.get_rep_str(), "0 8 * * *");
}

TEST(ScheduleStringInfo, every_second_day_at_half_past_six_is_daily_with_step_2) {
  const auto parsed = schedule("30 6 */2 * *");
  EXPECT_EQ(parsed.type, 0);
  EXPECT_EQ(parsed.hour, 6);
  EXPECT_EQ(parsed.minute, 30);
  EXPECT_EQ(parsed.value, 2);
  EXPECT_EQ(parsed.get_rep_str(), "30 6 */2 * *");
}

TEST(ScheduleStringInfo, a_step_of_1_is_written_without_its_number) {
  EXPECT_EQ(formatted("0 8 */1 * *"), "0 8 * * *");
}

TEST(ScheduleStringInfo, a_step_is_read_up_to_what_is_no_digit) { EXPECT_EQ(formatted("0 8 */3x * *"), "0 8 */3 * *"); }

TEST(ScheduleStringInfo, steps_that_are_none_are_customised_and_format_back_as_given) {
  for (const char* text : {"0 8 */0 * *", "0 8 */x * *", "0 8 */ * *", "0 8 */-2 * *", "0 8 2 * *"})
    expect_customised(text);
}

TEST(ScheduleStringInfo, monday_wednesday_friday_is_weekly_with_mask_42) {
  const auto parsed = schedule("0 8 * * 1,3,5");
  EXPECT_EQ(parsed.type, 1);
  EXPECT_EQ(parsed.value, 42);
  EXPECT_EQ(parsed.get_rep_str(), "0 8 * * 1,3,5");
}

TEST(ScheduleStringInfo, a_weekday_of_7_is_customised) { expect_customised("0 8 * * 7"); }

TEST(ScheduleStringInfo, a_list_in_any_order_with_repeats_is_written_rising_and_once) {
  EXPECT_EQ(formatted("5 4 * * 6,0,6,,3"), "5 4 * * 0,3,6");
  EXPECT_EQ(formatted("5 4 9 12,2,2 *"), "5 4 9 2,12 *");
}

TEST(ScheduleStringInfo, a_list_with_anything_but_digits_is_customised) {
  for (const char* text : {"0 8 * * 1-5", "0 8 * * 1,a", "0 8 * * +1", "0 8 * * 99999999999", "0 8 15 1,-2 *"})
    expect_customised(text);
}

TEST(ScheduleStringInfo, fifteenth_of_january_and_july_is_monthly_with_mask_130) {
  const auto parsed = schedule("0 8 15 1,7 *");
  EXPECT_EQ(parsed.type, 2);
  EXPECT_EQ(parsed.day, 15);
  EXPECT_EQ(parsed.value, 130);
  EXPECT_EQ(parsed.get_rep_str(), "0 8 15 1,7 *");
}

TEST(ScheduleStringInfo, months_of_13_and_0_are_customised) {
  expect_customised("0 8 15 13 *");
  expect_customised("0 8 15 0 *");
}

TEST(ScheduleStringInfo, a_month_without_a_day_is_monthly_with_day_0) {
  const auto parsed = schedule("0 8 * 1 *");
  EXPECT_EQ(parsed.type, 2);
  EXPECT_EQ(parsed.day, 0);
  EXPECT_EQ(parsed.value, 2);
}

TEST(ScheduleStringInfo, the_day_of_a_monthly_one_is_not_checked) { EXPECT_EQ(schedule("0 8 99 1 *").day, 99); }

TEST(ScheduleStringInfo, a_weekday_and_a_month_together_and_a_star_as_minute_are_customised) {
  expect_customised("0 8 15 1 2");
  expect_customised("* 8 * * *");
  expect_customised("0 * * * *");
}

TEST(ScheduleStringInfo, a_star_as_minute_still_reads_the_hour_and_the_other_way_round) {
  EXPECT_EQ(schedule("* 8 * * *").hour, 8);
  EXPECT_EQ(schedule("* 8 * * *").minute, 0);
  EXPECT_EQ(schedule("7 * * * *").minute, 7);
}

TEST(ScheduleStringInfo, commas_alone_are_weekly_with_mask_0) {
  const auto parsed = schedule("0 8 * * ,,,");
  EXPECT_EQ(parsed.type, 1);
  EXPECT_EQ(parsed.value, 0);
  EXPECT_EQ(schedule("0 8 4 , *").type, 2);
}

TEST(ScheduleStringInfo, an_empty_list_leaves_a_gap_in_the_format_that_cannot_be_parsed_again) {
  EXPECT_EQ(formatted("0 8 * * ,,,"), "0 8 * * ");
  EXPECT_EQ(refusal([] { schedule("0 8 * * "); }), "invalid schedule string.");
}

TEST(ScheduleStringInfo, minute_and_hour_are_read_as_their_leading_number) {
  const auto parsed = schedule("5,35 8-17 * * *");
  EXPECT_EQ(parsed.minute, 5);
  EXPECT_EQ(parsed.hour, 8);
  EXPECT_EQ(schedule("x -3 * * *").minute, 0);
  EXPECT_EQ(schedule("x -3 * * *").hour, -3);
  EXPECT_EQ(schedule("99999999999 -99999999999 * * *").minute, 2147483647);
  EXPECT_EQ(schedule("99999999999 -99999999999 * * *").hour, -2147483647 - 1);
}

TEST(ScheduleStringInfo, runs_of_blanks_and_tabs_part_and_other_white_space_does_not) {
  EXPECT_EQ(schedule("\t 0  8\t*\t \t*  * ").type, 0);
  EXPECT_EQ(refusal([] { schedule("0\n8 * * *"); }), "invalid schedule string.");
}

TEST(ScheduleStringInfo, fails_with_message_1036_unless_there_are_5_fields_and_keeps_the_text) {
  for (const char* text : {"0 8 * *", "0 8 * * * *", "x", " ", "\t"}) {
    ScheduleStringInfo parsed = schedule("0 8 * * 1");
    EXPECT_EQ(refusal([&] { ScheduleStringInfo::parse_schedule_string(text, parsed); }), "invalid schedule string.")
        << text;
    EXPECT_EQ(parsed.text, text);
    EXPECT_EQ(parsed.type, 1);
    EXPECT_EQ(parsed.value, 2);
  }
}

TEST(ScheduleStringInfo, a_customised_object_stays_customised_however_good_the_new_text_is) {
  ScheduleStringInfo parsed = schedule("* 1 * * *");
  ScheduleStringInfo::parse_schedule_string("30 6 */2 * *", parsed);
  EXPECT_EQ(parsed.type, 4);
  EXPECT_EQ(parsed.text, "30 6 */2 * *");
  EXPECT_EQ(parsed.hour, 6);
  EXPECT_EQ(parsed.minute, 30);
  EXPECT_EQ(parsed.value, 0);
  EXPECT_EQ(parsed.get_rep_str(), "30 6 */2 * *");
}

TEST(ScheduleStringInfo, other_types_are_renewed_by_a_new_text) {
  ScheduleStringInfo parsed = schedule("");
  ScheduleStringInfo::parse_schedule_string("0 8 * * 1", parsed);
  EXPECT_EQ(parsed.type, 1);
}

TEST(ScheduleStringInfo, may_be_parsed_from_its_own_text) {
  ScheduleStringInfo parsed;
  parsed.text = "0 8 15 1,7 *";
  ScheduleStringInfo::parse_schedule_string(parsed.text, parsed);
  EXPECT_EQ(parsed.text, "0 8 15 1,7 *");
  EXPECT_EQ(parsed.value, 130);
}

TEST(ScheduleStringInfo, copies_every_field_and_itself_without_harm) {
  const auto parsed = schedule("3 4 15 1,7 *");
  ScheduleStringInfo copy;
  copy = parsed;
  const auto& same = copy;
  copy = same;
  EXPECT_EQ(copy.text, parsed.text);
  EXPECT_EQ(copy.type, 2);
  EXPECT_EQ(copy.hour, 4);
  EXPECT_EQ(copy.minute, 3);
  EXPECT_EQ(copy.value, 130);
  EXPECT_EQ(copy.day, 15);
  EXPECT_EQ(ScheduleStringInfo(copy).get_rep_str(), "3 4 15 1,7 *");
}

TEST(RepeatStringInfo, starts_with_10_minutes_and_no_end) {
  const RepeatStringInfo fresh;
  EXPECT_EQ(fresh.interval, 10);
  EXPECT_EQ(fresh.unit, 0);
  EXPECT_EQ(fresh.end_mode, 2);
  EXPECT_EQ(fresh.end_hour, 0);
  EXPECT_EQ(fresh.end_minute, 0);
  EXPECT_EQ(fresh.get_rep_str(), "10 m 2");
}

TEST(RepeatStringInfo, an_empty_text_leaves_it_as_it_was) {
  RepeatStringInfo parsed = repeat("5 h 1 2 3");
  RepeatStringInfo::parse_repeat_string("", parsed);
  RepeatStringInfo::parse_repeat_string(nullptr, parsed);
  EXPECT_EQ(parsed.get_rep_str(), "5 h 1 2 3");
}

TEST(RepeatStringInfo, every_10_minutes_until_half_past_five_formats_back_to_itself) {
  const auto parsed = repeat("10 m 0 17 30");
  EXPECT_EQ(parsed.interval, 10);
  EXPECT_EQ(parsed.unit, RepeatStringInfo::minutes);
  EXPECT_EQ(parsed.end_mode, RepeatStringInfo::until_time);
  EXPECT_EQ(parsed.end_hour, 17);
  EXPECT_EQ(parsed.end_minute, 30);
  EXPECT_EQ(parsed.get_rep_str(), "10 m 0 17 30");
}

TEST(RepeatStringInfo, an_unknown_unit_is_3_and_formats_back_as_days) {
  const auto parsed = repeat("10 x 2");
  EXPECT_EQ(parsed.unit, 3);
  EXPECT_EQ(parsed.get_rep_str(), "10 d 2");
  EXPECT_EQ(repeat("10 M 2").unit, 3) << "case matters";
  EXPECT_EQ(repeat("10 h 2").unit, 1);
  EXPECT_EQ(repeat("10 s 2").unit, 2);
  EXPECT_EQ(repeat("10 mm 2").unit, 3);
}

TEST(RepeatStringInfo, an_open_end_parses_its_two_numbers_and_drops_them_when_formatting) {
  const auto parsed = repeat("5 h 2 9 9");
  EXPECT_EQ(parsed.end_hour, 9);
  EXPECT_EQ(parsed.end_minute, 9);
  EXPECT_EQ(parsed.get_rep_str(), "5 h 2");
}

TEST(RepeatStringInfo, three_fields_leave_the_end_as_it_was) {
  RepeatStringInfo parsed = repeat("10 m 0 17 30");
  RepeatStringInfo::parse_repeat_string("1 s 1", parsed);
  EXPECT_EQ(parsed.get_rep_str(), "1 s 1 17 30");
}

TEST(RepeatStringInfo, an_unknown_end_is_kept_with_its_numbers) {
  EXPECT_EQ(repeat("1 m 7").get_rep_str(), "1 m 7 0 0");
}

TEST(RepeatStringInfo, numbers_are_not_checked) {
  EXPECT_EQ(repeat("-4 m 0 99 x").get_rep_str(), "-4 m 0 99 0");
  EXPECT_EQ(repeat("x m y").get_rep_str(), "0 m 0 0 0");
}

TEST(RepeatStringInfo, fails_with_message_1037_unless_there_are_3_or_5_fields_and_changes_nothing) {
  for (const char* text : {"10 m", "10 m 2 0", "10", " ", "1 m 0 1 2 3"}) {
    RepeatStringInfo parsed = repeat("5 h 1 2 3");
    EXPECT_EQ(refusal([&] { RepeatStringInfo::parse_repeat_string(text, parsed); }), "Invalid repeat string.") << text;
    EXPECT_EQ(parsed.get_rep_str(), "5 h 1 2 3");
  }
}

TEST(RepeatStringInfo, copies_every_field_and_itself_without_harm) {
  RepeatStringInfo copy;
  copy = repeat("5 h 1 2 3");
  const auto& same = copy;
  copy = same;
  EXPECT_EQ(RepeatStringInfo(copy).get_rep_str(), "5 h 1 2 3");
}

// Random texts, the same in every run.
class any_text : public testing::Test {
 protected:
  int below(int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); }
  std::string number(int end) { return std::to_string(below(end)); }
  std::string list_of(int mask, int lowest, int highest) {
    std::string text;
    for (int i = lowest; i <= highest; ++i)
      if ((mask & 1 << i) != 0) text += (text.empty() ? "" : ",") + std::to_string(i);
    return text;
  }
  std::string canonical_schedule() {
    const std::string time = number(60) + " " + number(24) + " ";
    switch (below(3)) {
      case 0: {
        const int step = 1 + below(30);
        return time + (step == 1 ? "*" : "*/" + std::to_string(step)) + " * *";
      }
      case 1:
        return time + "* * " + list_of(1 + below(127), 0, 6);
      default:
        return time + number(32) + " " + list_of((1 + below(4095)) << 1, 1, 12) + " *";
    }
  }
  std::string canonical_repeat() {
    const std::string start = number(1000) + " " + "mhsd"[below(4)];
    const int end = below(3);
    return start + (end == 2 ? " 2" : " " + std::to_string(end) + " " + number(24) + " " + number(60));
  }
  std::string wild() {
    static constexpr std::string_view letters = "0123456789*/,- \tmhsdx\xC3\xA9";
    std::string text;
    for (int i = below(24); i > 0; --i)
      text += letters[static_cast<std::size_t>(below(static_cast<int>(letters.size())))];
    return text;
  }
  std::mt19937 random{20240704};
};

TEST_F(any_text, in_canonical_form_comes_back_from_parse_and_format) {
  for (int i = 0; i < 20000; ++i) {
    const auto wanted = canonical_schedule();
    ASSERT_EQ(formatted(wanted), wanted);
    const auto again = canonical_repeat();
    ASSERT_EQ(repeat(again).get_rep_str(), again.c_str());
  }
}

TEST_F(any_text, that_is_not_refused_is_kept_and_its_format_parses_to_the_same) {
  int refused = 0;
  int kept = 0;
  for (int i = 0; i < 20000; ++i) {
    const auto text = i % 2 == 0 ? wild() : number(60) + " " + number(24) + " " + wild() + " * " + wild();
    std::istringstream words(text);
    std::size_t count = 0;
    for (std::string word; words >> word;)
      ++count;
    ScheduleStringInfo parsed;
    const bool is_refused = !refusal([&] { ScheduleStringInfo::parse_schedule_string(text.c_str(), parsed); }).empty();
    ASSERT_EQ(is_refused, !text.empty() && count != 5) << text;
    ASSERT_EQ(parsed.text, text.c_str());
    ++(is_refused ? refused : kept);
    const bool is_empty_list =
        parsed.value == 0 && (parsed.type == ScheduleStringInfo::weekly || parsed.type == ScheduleStringInfo::monthly);
    if (is_refused || is_empty_list) continue;  // an empty list cannot be parsed again
    const auto again = schedule(parsed.get_rep_str().GetString());
    ASSERT_EQ(again.type, parsed.type) << text;
    if (parsed.type == ScheduleStringInfo::customised) {
      ASSERT_EQ(again.text, parsed.text);
    } else {
      ASSERT_EQ(again.value, parsed.value) << text;
    }
  }
  EXPECT_GT(refused, 1000);
  EXPECT_GT(kept, 1000);
}

}  // namespace
