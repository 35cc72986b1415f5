#include "spcbase/schedule/strings.h"

#include <array>
#include <charconv>
#include <string>
#include <string_view>

#include "spcbase/foundation/internal/raise.h"
#include "spcbase/platform/text/leading_int.h"

namespace schd {
namespace {

constexpr int last_weekday = 6;
constexpr int first_month = 1;
constexpr int last_month = 12;

/// The fields of a text, as many as there is room for, and how many there are.
template <std::size_t Room>
struct Fields {
  std::array<std::string_view, Room> items;
  std::size_t count = 0;

  std::string_view operator[](std::size_t i) const { return items[i]; }
};

/// Cuts a text at runs of blanks and tabs. A count beyond `Room` only says that there are more.
template <std::size_t Room>
Fields<Room> split(std::string_view text) {
  const auto parts = [](char c) { return c == ' ' || c == '\t'; };
  Fields<Room> fields;
  for (std::size_t i = 0; i < text.size() && fields.count <= Room;) {
    if (parts(text[i])) {
      ++i;
      continue;
    }
    const std::size_t start = i;
    while (i < text.size() && !parts(text[i]))
      ++i;
    if (fields.count < Room) fields.items[fields.count] = text.substr(start, i - start);
    ++fields.count;
  }
  return fields;
}

/// Reads numbers parted by commas into a mask. Runs of commas part once, so that commas alone are an empty list.
/// Returns  false when a piece has something else than digits, or a number lies outside `lowest` to `highest`.
bool read_list(std::string_view list, int lowest, int highest, int& mask) {
  int found = 0;
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (list[i] == ',') continue;
    int number = 0;
    for (; i < list.size() && list[i] != ','; ++i) {
      if (list[i] < '0' || list[i] > '9') return false;
      number = number * 10 + (list[i] - '0');
      if (number > highest) return false;
    }
    if (number < lowest) return false;
    found |= 1 << number;
  }
  mask = found;
  return true;
}

/// The step of "*" or "*/N", or 0 when the field is neither.
int day_step(std::string_view field) {
  if (field == "*") return 1;
  return field.size() > 2 && field.starts_with("*/") ? platform::leading_int(field.substr(2)) : 0;
}

void append(std::string& text, int number) {
  std::array<char, 11> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  text.append(digits.data(), end);
}

void append_list(std::string& text, int mask, int lowest, int highest) {
  bool first = true;
  for (int number = lowest; number <= highest; ++number) {
    if ((mask & 1 << number) == 0) continue;
    if (!first) text += ',';
    append(text, number);
    first = false;
  }
}

/// The days on which a schedule runs, out of its last three fields.
void read_days(const Fields<5>& fields, ScheduleStringInfo& schedule) {
  const auto day = fields[2];
  const auto month = fields[3];
  const auto weekday = fields[4];
  if (month == "*" && weekday == "*") {
    if (const int step = day_step(day); step > 0) {
      schedule.type = ScheduleStringInfo::daily;
      schedule.value = step;
      return;
    }
  }
  if (day == "*" && month == "*" && read_list(weekday, 0, last_weekday, schedule.value)) {
    schedule.type = ScheduleStringInfo::weekly;
    return;
  }
  if (month != "*" && weekday == "*" && read_list(month, first_month, last_month, schedule.value)) {
    schedule.type = ScheduleStringInfo::monthly;
    schedule.day = platform::leading_int(day);
    return;
  }
  schedule.type = ScheduleStringInfo::customised;
}

}  // namespace

void ScheduleStringInfo::copy_object(const ScheduleStringInfo& other) {
  if (this == &other) return;
  text = other.text;
  type = other.type;
  hour = other.hour;
  minute = other.minute;
  value = other.value;
  day = other.day;
}

void ScheduleStringInfo::parse_schedule_string(const char* text, ScheduleStringInfo& schedule) {
  schedule.text = text;
  if (schedule.text.IsEmpty()) {
    schedule.type = none;
    return;
  }
  const auto fields = split<5>(schedule.text.view());
  if (fields.count != 5) throw_db_exception_by_id(msg::invalid_schedule);
  if (fields[0] == "*")
    schedule.type = customised;
  else
    schedule.minute = platform::leading_int(fields[0]);
  if (fields[1] == "*")
    schedule.type = customised;
  else
    schedule.hour = platform::leading_int(fields[1]);
  // An object that was customised before stays so: its type was not taken back.
  if (schedule.type != customised) read_days(fields, schedule);
}

CString ScheduleStringInfo::get_rep_str() const {
  if (type == none) return {};
  if (type != daily && type != weekly && type != monthly) return text;
  std::string result;
  append(result, minute);
  result += ' ';
  append(result, hour);
  if (type == daily) {
    result += value == 1 ? " *" : " */";
    if (value != 1) append(result, value);
    result += " * *";
  } else if (type == weekly) {
    result += " * * ";
    append_list(result, value, 0, last_weekday);
  } else {
    result += ' ';
    append(result, day);
    result += ' ';
    append_list(result, value, first_month, last_month);
    result += " *";
  }
  return CString(std::move(result));
}

void RepeatStringInfo::copy_object(const RepeatStringInfo& other) {
  if (this == &other) return;
  interval = other.interval;
  unit = other.unit;
  end_mode = other.end_mode;
  end_hour = other.end_hour;
  end_minute = other.end_minute;
}

void RepeatStringInfo::parse_repeat_string(const char* text, RepeatStringInfo& repeat) {
  const std::string_view whole = text ? std::string_view(text) : std::string_view();
  if (whole.empty()) return;
  const auto fields = split<5>(whole);
  if (fields.count != 3 && fields.count != 5) throw_db_exception_by_id(msg::invalid_repeat);
  repeat.interval = platform::leading_int(fields[0]);
  repeat.unit = fields[1] == "m" ? minutes : fields[1] == "h" ? hours : fields[1] == "s" ? seconds : days;
  repeat.end_mode = platform::leading_int(fields[2]);
  if (fields.count == 3) return;
  repeat.end_hour = platform::leading_int(fields[3]);
  repeat.end_minute = platform::leading_int(fields[4]);
}

CString RepeatStringInfo::get_rep_str() const {
  std::string result;
  append(result, interval);
  result += unit == minutes ? " m " : unit == hours ? " h " : unit == seconds ? " s " : " d ";
  append(result, end_mode);
  if (end_mode != open) {
    result += ' ';
    append(result, end_hour);
    result += ' ';
    append(result, end_minute);
  }
  return CString(std::move(result));
}

}  // namespace schd
