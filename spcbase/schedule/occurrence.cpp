#include "spcbase/schedule/occurrence.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "spcbase/foundation/internal/raise.h"
#include "spcbase/platform/automation/var_date.h"
#include "spcbase/platform/datetime/calendar.h"
#include "spcbase/platform/datetime/local_gap.h"

namespace schd {
namespace {

/// Days and seconds of local time since 1970-01-01.
using Day = std::int64_t;
using Seconds = std::int64_t;

constexpr Seconds minute = 60;
constexpr Seconds hour = 60 * minute;
constexpr Seconds day_length = 24 * hour;
constexpr Seconds last_of_day = day_length - 1;
constexpr Day last_day = platform::days_from_civil(9999, 12, 31);
// Eight years may lie between two 29 Februaries.
constexpr int months_to_search = 12 * 9;

constexpr Day day_of(Seconds moment) {
  const Day day = moment / day_length;
  return moment % day_length < 0 ? day - 1 : day;
}

constexpr std::int64_t steps_up(std::int64_t distance, std::int64_t step) {
  return distance > 0 ? (distance + step - 1) / step : -(-distance / step);
}

Seconds seconds_of(const COleDateTime& moment, const char* name) {
  SYSTEMTIME fields;
  if (!moment.GetAsSystemTime(fields))
    throw_db_exception((std::string(name) + " is not a date, such as 2024-03-15 08:00:00.").c_str());
  return platform::days_from_civil(fields.wYear, fields.wMonth, fields.wDay) * day_length + fields.wHour * hour +
         fields.wMinute * minute + fields.wSecond;
}

COleDateTime moment_of(Seconds seconds) {
  const Day day = day_of(seconds);
  const auto date = platform::civil_from_days(day);
  const int rest = static_cast<int>(seconds - day * day_length);
  return {static_cast<int>(date.year), date.month, date.day, rest / 3600, rest / 60 % 60, rest % 60};
}

/// A side of the window; nothing for an empty variant.
std::optional<Seconds> bound_of(const _variant_t& date, const char* name) {
  if (date.vt == VT_EMPTY) return std::nullopt;
  return seconds_of(to_ole_datetime(date), name);
}

/// On which days a schedule is due.
class Days {
 public:
  Days(const ScheduleStringInfo& schedule, bool repeats, std::optional<Seconds> start)
      : type_(schedule.type), value_(schedule.value), day_(schedule.day) {
    if (start) first_ = day_of(*start);
    if (type_ == ScheduleStringInfo::none && repeats) {
      type_ = ScheduleStringInfo::daily;
      value_ = 1;
    }
  }

  /// The first such day from a day on.
  std::optional<Day> from(Day day) const {
    switch (type_) {
      case ScheduleStringInfo::daily:
        return first_ + std::max<std::int64_t>(steps_up(day - first_, value_), 0) * value_;
      case ScheduleStringInfo::weekly:
        return weekday_from(day);
      case ScheduleStringInfo::monthly:
        return month_day_from(day);
      default:
        return std::nullopt;
    }
  }

 private:
  std::optional<Day> weekday_from(Day day) const {
    for (Day candidate = day; candidate < day + 7; ++candidate)
      if ((value_ & 1 << platform::weekday_from_days(candidate)) != 0) return candidate;
    return std::nullopt;
  }

  std::optional<Day> month_day_from(Day day) const {
    auto [year, month, of_month] = platform::civil_from_days(day);
    if (of_month > day_) ++month;
    for (int i = 0; i < months_to_search; ++i, ++month) {
      if (month > 12) {
        month = 1;
        ++year;
      }
      if ((value_ & 1 << month) != 0 && day_ >= 1 && day_ <= platform::days_in_month(year, month))
        return platform::days_from_civil(year, month, day_);
    }
    return std::nullopt;
  }

  int type_;
  int value_;
  int day_;
  Day first_ = platform::variant_epoch_days;
};

/// When a schedule is due within one of its days, in seconds from midnight.
struct Times {
  Seconds first;
  Seconds interval;  ///< 0 without a repeat
  Seconds last;

  /// The first such time from a time on.
  std::optional<Seconds> from(Seconds time) const {
    if (time <= first) return first;
    if (interval == 0) return std::nullopt;
    const Seconds next = first + steps_up(time - first, interval) * interval;
    return next <= last ? std::optional(next) : std::nullopt;
  }
};

Seconds unit_length(int unit) {
  switch (unit) {
    case RepeatStringInfo::minutes:
      return minute;
    case RepeatStringInfo::hours:
      return hour;
    case RepeatStringInfo::seconds:
      return 1;
    default:
      return day_length;
  }
}

Seconds last_time(const RepeatStringInfo& repeat, Seconds first) {
  const Seconds end = repeat.end_hour * hour + repeat.end_minute * minute;
  if (repeat.end_mode == RepeatStringInfo::until_time) {
    if (repeat.end_hour < 0 || repeat.end_minute < 0 || repeat.end_minute > 59 || end > day_length)
      throw_db_exception("The end of the repeat is not a time of day: hours go from 0 to 24, minutes from 0 to 59.");
    return std::min(end, last_of_day);
  }
  if (repeat.end_mode == RepeatStringInfo::for_length) {
    if (repeat.end_hour < 0 || repeat.end_minute < 0)
      throw_db_exception("The repeat goes on for a negative time; give hours and minutes of 0 or more.");
    return std::min(first + end, last_of_day);
  }
  return last_of_day;
}

Times times_of(const ScheduleStringInfo& schedule, const RepeatStringInfo* repeat) {
  Times times{0, 0, 0};
  if (schedule.type != ScheduleStringInfo::none) {
    if (schedule.hour < 0 || schedule.hour > 23 || schedule.minute < 0 || schedule.minute > 59)
      throw_db_exception("The schedule has no time of day: minutes go from 0 to 59, hours from 0 to 23.");
    times.first = schedule.hour * hour + schedule.minute * minute;
  }
  if (!repeat) return times;
  if (repeat->interval < 1) throw_db_exception("The repeat has no interval; give a whole number of 1 or more.");
  times.interval = repeat->interval * unit_length(repeat->unit);
  times.last = last_time(*repeat, times.first);
  return times;
}

void check(const ScheduleStringInfo& schedule, int count) {
  if (count < 0) throw_db_exception("A negative number of moments was asked for.");
  if (schedule.type == ScheduleStringInfo::customised) {
    const std::string text = "The schedule \"" + std::string(schedule.text.view()) +
                             "\" is customised: it is kept and shown, but which moments it means is not known. "
                             "A known one is \"0 8 * * 1,3,5\".";
    throw_db_exception(text.c_str());
  }
  if (schedule.type == ScheduleStringInfo::daily && schedule.value < 1)
    throw_db_exception("The daily schedule has no step; give a number of days of 1 or more.");
}

/// The first time that is due from a time on, by the calendar alone.
std::optional<Seconds> due_from(const Days& days, const Times& times, Seconds moment) {
  const Day today = day_of(moment);
  auto day = days.from(today);
  if (day == today) {
    if (const auto time = times.from(moment - today * day_length)) return today * day_length + *time;
    day = days.from(today + 1);
  }
  if (!day) return std::nullopt;
  return *day * day_length + times.first;
}

}  // namespace

std::vector<COleDateTime> next_moments(const ScheduleStringInfo& schedule, const RepeatStringInfo* repeat,
                                       const _variant_t& start, const _variant_t& end, const COleDateTime& after,
                                       int count) {
  check(schedule, count);
  const auto opens = bound_of(start, "The start of the window");
  const auto closes = bound_of(end, "The end of the window");
  const Days days(schedule, repeat != nullptr, opens);
  const Times times = times_of(schedule, repeat);

  Seconds from = seconds_of(after, "The moment to begin after") + 1;
  if (opens) from = std::max(from, *opens);
  // Skipped times are due right behind their gap.
  if (const auto gap = platform::gap_around(from - 1)) from = gap->begin;
  const Seconds until = std::min(closes.value_or(std::numeric_limits<Seconds>::max()), (last_day + 1) * day_length - 1);

  std::vector<COleDateTime> moments;
  while (static_cast<int>(moments.size()) < count) {
    const auto due = due_from(days, times, from);
    if (!due || *due > until) break;
    const auto gap = platform::gap_around(*due);
    const Seconds moment = gap ? gap->end : *due;
    if (moment > until) break;
    moments.push_back(moment_of(moment));
    from = moment + 1;
  }
  return moments;
}

}  // namespace schd
