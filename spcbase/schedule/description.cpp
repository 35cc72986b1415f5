#include "spcbase/schedule/description.h"

#include "spcbase/foundation/internal/raise.h"
#include "spcbase/platform/automation/var_date.h"

namespace schd {
namespace {

constexpr int all_months = 0x1FFE;

/// A message with its values put in.
template <class... Values>
CString told(UINT id, Values... values) {
  const CString format = load_message(id);
  CString text;
  text.Format(format.GetString(), values...);
  return text;
}

CString time_of_day(int hour, int minute) {
  return COleDateTime(1899, 12, 30, hour, minute, 0).Format(VAR_TIMEVALUEONLY);
}

CString date_text(const _variant_t& value) {
  return value.vt == VT_EMPTY ? CString() : to_ole_datetime(value).Format(VAR_DATEVALUEONLY);
}

UINT unit_word(int unit) {
  switch (unit) {
    case RepeatStringInfo::minutes:
      return msg::minutes;
    case RepeatStringInfo::hours:
      return msg::hours;
    case RepeatStringInfo::seconds:
      return msg::seconds;
    default:
      return msg::days;
  }
}

CString opening(const ScheduleStringInfo& schedule, const RepeatStringInfo* repeat) {
  if (repeat) return told(msg::every_n_units, repeat->interval, load_message(unit_word(repeat->unit)).GetString());
  return schedule.type == ScheduleStringInfo::none ? CString() : load_message(msg::at);
}

CString end_of(const RepeatStringInfo& repeat) {
  if (repeat.end_mode == RepeatStringInfo::until_time)
    return told(msg::until_time, time_of_day(repeat.end_hour, repeat.end_minute).GetString());
  if (repeat.end_mode == RepeatStringInfo::for_length)
    return told(msg::for_hours_and_minutes, repeat.end_hour, repeat.end_minute);
  return {};
}

/// The names of the set bits from `lowest` to `highest`, whose messages follow each other.
CString names(int mask, int lowest, int highest, UINT first_name, const CString& separator) {
  CString list;
  UINT name = first_name;
  for (int bit = lowest; bit <= highest; ++bit, ++name) {
    if ((mask & 1 << bit) == 0) continue;
    if (!list.IsEmpty()) list += separator;
    list += load_message(name);
  }
  return list;
}

/// The separator of weekdays stays as it is in every language; that of months is translated.
CString weekdays(int mask) { return names(mask, 0, 6, msg::sun, ", "); }

CString months(int mask) {
  if ((mask & all_months) == all_months) return load_message(msg::every_month);
  return names(mask, 1, 12, msg::jan, load_message(msg::list_separator));
}

CString days_of(const ScheduleStringInfo& schedule) {
  switch (schedule.type) {
    case ScheduleStringInfo::daily:
      return schedule.value == 1 ? load_message(msg::every_day) : told(msg::every_n_days, schedule.value);
    case ScheduleStringInfo::weekly:
      return told(msg::every_weekday_of_every_week, weekdays(schedule.value).GetString());
    case ScheduleStringInfo::monthly:
      return told(msg::on_day_of_months, schedule.day, months(schedule.value).GetString());
    case ScheduleStringInfo::customised:
      return told(msg::customed, schedule.text.GetString());
    default:
      return {};
  }
}

}  // namespace

CString get_schedule_descriptive_text(const ScheduleStringInfo& schedule, const RepeatStringInfo* repeat,
                                      const _variant_t& start, const _variant_t& end) {
  CString result = opening(schedule, repeat);
  if (schedule.type != ScheduleStringInfo::none) {
    const CString time = time_of_day(schedule.hour, schedule.minute);
    result += " " + (repeat ? told(msg::from_time, time.GetString()) : time);
  }
  if (repeat) result += end_of(*repeat);
  if (schedule.type == ScheduleStringInfo::none) return result;

  if (const CString days = days_of(schedule); !days.IsEmpty()) result += " " + days;
  if (const CString starts = date_text(start); !starts.IsEmpty())
    result += load_message(msg::list_separator) + told(msg::starting, starts.GetString());
  if (const CString ends = date_text(end); !ends.IsEmpty()) result += told(msg::and_ending, ends.GetString());
  return result;
}

}  // namespace schd
