#include "spcbase/time/internal/periods.h"

#include "spcbase/time/calendar.h"
#include "spcbase/time/internal/present.h"

namespace periods {

namespace {

/// -1 each for a moment that is not valid; every date built from them is invalid, too.
struct Day {
  explicit Day(const COleDateTime& moment) {
    SYSTEMTIME fields;
    if (!moment.GetAsSystemTime(fields)) return;
    year = fields.wYear;
    month = fields.wMonth;
    day = fields.wDay;
  }
  int year = -1;
  int month = -1;
  int day = -1;
};

COleDateTime end_of(const Day& day) { return end_of_day(day.year, day.month, day.day); }

COleDateTimeSpan days(long count) { return COleDateTimeSpan(static_cast<double>(count)); }

/// Whole months, from the first day of one to the last day of another.
Period months(long year, int first, int last) {
  return {start_of_day(year, first, 1), end_of_day(year, last, GetNDayInMonth(static_cast<int>(year), last))};
}

}  // namespace

long days_into_week(const COleDateTime& moment, int first_day_of_week) {
  long day = moment.GetDayOfWeek();
  if (day < first_day_of_week) day += 7;
  return day - first_day_of_week;
}

Period today(const COleDateTime& now) {
  const Day day(now);
  return {start_of_day(day.year, day.month, day.day), end_of(day)};
}

Period this_week(const COleDateTime& now, int first_day_of_week) {
  Period week = today(now);
  week.start -= days(days_into_week(now, first_day_of_week));
  return week;
}

Period this_month(const COleDateTime& now) {
  const Day day(now);
  return {start_of_day(day.year, day.month, 1), end_of(day)};
}

Period this_quarter(const COleDateTime& now) {
  const Day day(now);
  return {start_of_day(day.year, first_month_of_quarter(day.month), 1), end_of(day)};
}

Period this_year(const COleDateTime& now) {
  const Day day(now);
  return {start_of_day(day.year, 1, 1), end_of(day)};
}

Period yesterday(const COleDateTime& now) {
  const COleDateTime end = end_of(Day(now)) - days(1);
  const Day day(end);
  return {start_of_day(day.year, day.month, day.day), end};
}

Period last_week(const COleDateTime& now, int first_day_of_week) {
  const COleDateTime start = this_week(now, first_day_of_week).start - days(7);
  return {start, end_of(Day(start)) + days(6)};
}

Period last_month(const COleDateTime& now) {
  const Day day(now);
  if (day.month == 1) return months(day.year - 1L, 12, 12);
  return months(day.year, day.month - 1, day.month - 1);
}

Period last_quarter(const COleDateTime& now) {
  const Day day(now);
  const int last_month = first_month_of_quarter(day.month) - 1;
  if (last_month == 0) return months(day.year - 1L, 10, 12);
  return months(day.year, last_month - 2, last_month);
}

Period last_year(const COleDateTime& now) {
  const long year = Day(now).year - 1L;
  return {start_of_day(year, 1, 1), end_of_day(year, 12, 31)};
}

}  // namespace periods
