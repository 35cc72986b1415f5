#include "tools/spc/schedule_text.h"

#include <algorithm>

#include "tools/spc/moments.h"
#include "tools/spc/problem.h"
#include "tools/spc/terminal.h"
#include "tools/spc/utf8.h"
#include "tools/spc/words.h"

namespace spc {
namespace {

using schd::RepeatStringInfo;
using schd::ScheduleStringInfo;

constexpr const char* separators = " \t";
constexpr const char* daily_example = "30 6 */2 * *";
constexpr const char* weekly_example = "0 8 * * 1,3,5";
constexpr const char* monthly_example = "0 8 15 1,7 *";
constexpr const char* repeat_example = "10 m 0 17 30";
constexpr const char* step_wanted = "* or a step of 1 or more, such as */2";
constexpr const char* weekdays_wanted = "numbers from 0, Sunday, to 6, parted by commas";
constexpr const char* months_wanted = "numbers from 1 to 12, parted by commas";
constexpr int largest = 2'147'483'647;
constexpr const char* made_customised = "makes the schedule customised";

using Fields = std::vector<std::string>;

std::string read_as(int number) { return "read as " + std::to_string(number); }

/// "a number from 0 to 59".
std::string number_between(int lowest, int highest) {
  return "a number from " + std::to_string(lowest) + " to " + std::to_string(highest);
}

/// The failure of a text with a wrong number of fields as a problem.
Problem wrong_count(const char* what, const Failure& failure, std::size_t count, const std::string& advice) {
  if (failure.kind != FailureKind::library) return problem_of(what, failure);
  CString why = failure.text;
  why.TrimRight('.');
  return {what, std::string(why.view()) + ": it has " + counted(count, "field"), advice, exit_misuse};
}

/// What the library makes of days, with a time that is right.
ScheduleStringInfo days_of(const std::string& day, const std::string& month, const std::string& weekday) {
  ScheduleStringInfo schedule;
  ScheduleStringInfo::parse_schedule_string(("0 0 " + day + " " + month + " " + weekday).c_str(), schedule);
  return schedule;
}

bool is_customised(const std::string& day, const std::string& month, const std::string& weekday) {
  return days_of(day, month, weekday).type == ScheduleStringInfo::customised;
}

void check_time(Warnings& warnings, const char* name, const std::string& text, int read, int highest) {
  if (const int number = plain_number(text); number >= 0 && number <= highest) return;
  warnings.push_back(
      {name, text, text == "*" ? made_customised : read_as(read), number_between(0, highest), weekly_example});
}

/// The longest of the months of a mask.
int most_days(int months) {
  constexpr int longest[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  int most = 0;
  for (int month = 1; month <= 12; ++month)
    if ((months & 1 << month) != 0) most = std::max(most, longest[month - 1]);
  return most;
}

void check_day_of_month(Warnings& warnings, const std::string& day, const ScheduleStringInfo& schedule) {
  const int highest = schedule.value == 0 ? 31 : most_days(schedule.value);
  if (const int number = plain_number(day); number >= 1 && number <= highest) return;
  warnings.push_back({"day of the month", day, read_as(schedule.day),
                      number_between(1, highest) + " beside these months", monthly_example});
}

/// Which of the last three fields makes a schedule customised.
Warning fault_of_days(const std::string& day, const std::string& month, const std::string& weekday) {
  if (weekday != "*" && is_customised("*", "*", weekday))
    return {"day of the week", weekday, made_customised, weekdays_wanted, weekly_example};
  if (month != "*" && is_customised("1", month, "*"))
    return {"month", month, made_customised, months_wanted, monthly_example};
  if (weekday != "*" && month != "*")
    return {"month", month, made_customised, "* beside days of the week", weekly_example};
  if (weekday != "*") return {"day of the month", day, made_customised, "* beside days of the week", weekly_example};
  if (plain_number(day) > 0)
    return {"month", month, made_customised, "a list beside a day of the month, 1,2,3 and so on to 12 for every one",
            monthly_example};
  return {"day of the month", day, made_customised, step_wanted, daily_example};
}

void check_days(Warnings& warnings, const Fields& fields) {
  const auto& day = fields[2];
  const auto& month = fields[3];
  const auto& weekday = fields[4];
  const ScheduleStringInfo schedule = days_of(day, month, weekday);
  if (schedule.type == ScheduleStringInfo::customised) warnings.push_back(fault_of_days(day, month, weekday));
  if (schedule.type == ScheduleStringInfo::weekly && schedule.value == 0)
    warnings.push_back({"day of the week", weekday, "read as no day", weekdays_wanted, weekly_example});
  if (schedule.type == ScheduleStringInfo::daily && day != "*" && plain_number(day.substr(2)) != schedule.value)
    warnings.push_back(
        {"day of the month", day, "read as */" + std::to_string(schedule.value), step_wanted, daily_example});
  if (schedule.type != ScheduleStringInfo::monthly) return;
  if (schedule.value == 0) warnings.push_back({"month", month, "read as no month", months_wanted, monthly_example});
  check_day_of_month(warnings, day, schedule);
}

void check_number(Warnings& warnings, const char* name, const std::string& text, int read, int lowest, int highest,
                  const std::string& wanted) {
  const int number = plain_number(text);
  if (number < lowest || number > highest) warnings.push_back({name, text, read_as(read), wanted, repeat_example});
}

/// Whether the repeats end before their day does.
bool is_end(const RepeatStringInfo& repeat) {
  return repeat.end_mode == RepeatStringInfo::until_time || repeat.end_mode == RepeatStringInfo::for_length;
}

void check_end(Warnings& warnings, const Fields& fields, const RepeatStringInfo& repeat) {
  const bool has_time = fields.size() == 5;
  if (repeat.end_mode == RepeatStringInfo::open) {
    if (has_time)
      warnings.push_back(
          {"end's hour and minute", fields[3] + " " + fields[4], "passed over", "left out behind 2", "10 m 2"});
    return;
  }
  if (!is_end(repeat)) return;
  if (!has_time) {
    warnings.push_back(
        {"end", fields[2], read_as(repeat.end_mode) + " 0 0", "followed by an hour and a minute", repeat_example});
    return;
  }
  const bool until = repeat.end_mode == RepeatStringInfo::until_time;
  const std::string whole = "a whole number of 0 or more";
  check_number(warnings, "end's hour", fields[3], repeat.end_hour, 0, until ? 24 : largest,
               until ? number_between(0, 24) : whole);
  check_number(warnings, "end's minute", fields[4], repeat.end_minute, 0, until ? 59 : largest,
               until ? number_between(0, 59) : whole);
}

std::vector<std::string> names_of(int mask, int lowest, int highest, const char* (*name)(int)) {
  std::vector<std::string> names;
  for (int bit = lowest; bit <= highest; ++bit)
    if ((mask & 1 << bit) != 0) names.emplace_back(name(bit));
  return names;
}

}  // namespace

ReadSchedule read_schedule(const std::string& text) {
  ReadSchedule read;
  const Fields fields = words_of(text, separators);
  const auto outcome = guarded([&] { ScheduleStringInfo::parse_schedule_string(text.c_str(), read.schedule); });
  if (!outcome)
    throw wrong_count("cannot read the schedule", outcome.failure(), fields.size(),
                      "Its 5 fields are minute, hour, day of the month, month and day of the week, as in \"" +
                          std::string(weekly_example) + "\".");
  if (read.schedule.type == ScheduleStringInfo::none) return read;
  check_time(read.warnings, "minute", fields[0], read.schedule.minute, 59);
  check_time(read.warnings, "hour", fields[1], read.schedule.hour, 23);
  check_days(read.warnings, fields);
  return read;
}

ReadRepeat read_repeat(const std::string& text) {
  ReadRepeat read;
  const Fields fields = words_of(text, separators);
  const auto outcome = guarded([&] { RepeatStringInfo::parse_repeat_string(text.c_str(), read.repeat); });
  if (!outcome)
    throw wrong_count("cannot read the repeat", outcome.failure(), fields.size(),
                      "It has 3, as in \"10 m 2\": interval, unit and 2 for no end; or 5, as in \"" +
                          std::string(repeat_example) +
                          "\": 0 for until a time or 1 for a length, then hours and minutes.");
  check_number(read.warnings, "interval", fields[0], read.repeat.interval, 1, largest, "a whole number of 1 or more");
  if (fields[1] != "d" && read.repeat.unit == RepeatStringInfo::days)
    read.warnings.push_back({"unit", fields[1], "read as d", "s, m, h or d", repeat_example});
  if (const int mode = plain_number(fields[2]); mode < 0 || mode > RepeatStringInfo::open)
    read.warnings.push_back({"end", fields[2], read_as(read.repeat.end_mode) + (is_end(read.repeat) ? "" : ", no end"),
                             "0 for until a time, 1 for a length of time, 2 for no end", repeat_example});
  check_end(read.warnings, fields, read.repeat);
  return read;
}

bool has_day(const ScheduleStringInfo& monthly) { return monthly.day >= 1 && monthly.day <= most_days(monthly.value); }

std::vector<std::string> weekdays_of(int mask) { return names_of(mask, 0, 6, weekday_name); }

std::vector<std::string> months_of(int mask) { return names_of(mask, 1, 12, month_name); }

}  // namespace spc
