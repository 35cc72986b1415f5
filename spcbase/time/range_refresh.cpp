// What the choice of a range means at a moment.
#include <optional>

#include "spcbase/time/calendar.h"
#include "spcbase/time/internal/periods.h"
#include "spcbase/time/internal/present.h"
#include "spcbase/time/range.h"

namespace {

/// The named period around a moment; nothing for other choices.
std::optional<Period> period_of(DateTimeRange::RangeType type, const COleDateTime& now, int first_day_of_week) {
  switch (type) {
    case DateTimeRange::today:
      return periods::today(now);
    case DateTimeRange::this_week:
      return periods::this_week(now, first_day_of_week);
    case DateTimeRange::this_month:
      return periods::this_month(now);
    case DateTimeRange::this_quarter:
      return periods::this_quarter(now);
    case DateTimeRange::this_year:
      return periods::this_year(now);
    case DateTimeRange::yesterday:
      return periods::yesterday(now);
    case DateTimeRange::last_week:
      return periods::last_week(now, first_day_of_week);
    case DateTimeRange::last_month:
      return periods::last_month(now);
    case DateTimeRange::last_quarter:
      return periods::last_quarter(now);
    case DateTimeRange::last_year:
      return periods::last_year(now);
    default:
      return std::nullopt;
  }
}

void reckon_last_units(DateTimeRange& range, DateTimeCalculation calculation, const COleDateTime& now) {
  range.to = end_of_day(now.GetYear(), now.GetMonth(), now.GetDay());
  switch (range.time_unit) {
    case DateTimeRange::day:
      range.from = calculation.GetLastNDay(range.to, range.count);
      break;
    case DateTimeRange::week:
      range.from = calculation.GetLastNWeek(range.to, range.count);
      break;
    case DateTimeRange::month:
      range.from = calculation.GetLastNMonth(range.to, range.count);
      break;
    case DateTimeRange::quarter:
      range.from = calculation.GetLastNQuarter(range.to, range.count);
      break;
    case DateTimeRange::hour:
      range.to = now;
      range.from = calculation.GetLastNHour(range.to, range.count);
      break;
    case DateTimeRange::minute:
      range.to = now;
      range.from = calculation.GetLastNMinute(range.to, range.count);
      break;
    case DateTimeRange::second:
      range.to = now;
      range.from = calculation.GetLastNSecond(range.to, range.count);
      break;
    case DateTimeRange::year:
      range.from = start_of_day(long{range.to.GetYear()} - range.count, 1, 1);
      break;
    default:
      break;
  }
}

}  // namespace

bool DateTimeRange::Recalculate(const DateTimeCalculation& calculation) {
  return recalculate_at(calculation, COleDateTime::GetCurrentTime());
}

bool DateTimeRange::recalculate_at(const DateTimeCalculation& calculation, const COleDateTime& now) {
  if (type == all_data || type == no_initial_data) {
    from.SetStatus(COleDateTime::null);
    to.SetStatus(COleDateTime::null);
    return true;
  }
  if (type == fixed_range) return true;
  COleDateTime moment = now;
  if (calculation.use_utc) to_utc(moment);
  if (type == last_units) {
    reckon_last_units(*this, calculation, moment);
    return true;
  }
  const auto period = period_of(type, moment, calculation.first_day_of_week);
  if (!period) return false;
  from = period->start;
  to = period->end;
  return true;
}
