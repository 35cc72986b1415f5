#include "spcbase/time/calculation.h"

#include "spcbase/time/calendar.h"
#include "spcbase/time/internal/periods.h"
#include "spcbase/time/internal/present.h"

namespace {

constexpr int earliest_year = 100;

void hand_out(const Period& period, COleDateTime& start, COleDateTime& end) {
  start = period.start;
  end = period.end;
}

/// A walk back through the months, which counts their days.
class MonthWalk {
 public:
  MonthWalk(int year, int month) : year_(year), month_(month) {}

  /// The days of `count` months before the one where the walk stands. Before the first year of dates it ends: no sum
  /// from there on leads to a date.
  double days_back(long count) {
    long days = 0;
    for (; count > 0 && year_ >= earliest_year; --count) {
      step();
      days += GetNDayInMonth(year_, month_);
    }
    return static_cast<double>(days);
  }

 private:
  void step() {
    if (--month_ > 0) return;
    month_ = 12;
    --year_;
  }

  int year_;
  int month_;
};

COleDateTime midnight_of(const COleDateTime& moment) {
  return start_of_day(moment.GetYear(), moment.GetMonth(), moment.GetDay());
}

/// On the bare number, without a look at status or range: the result is valid.
COleDateTime less_days(const COleDateTime& moment, double days) { return {moment.m_dt - days}; }

}  // namespace

void DateTimeCalculation::GetToday(COleDateTime& start, COleDateTime& end) const {
  hand_out(periods::today(read_present(use_utc)), start, end);
}

void DateTimeCalculation::GetThisWeek(COleDateTime& start, COleDateTime& end) const {
  hand_out(periods::this_week(read_present(use_utc), first_day_of_week), start, end);
}

void DateTimeCalculation::GetThisMonth(COleDateTime& start, COleDateTime& end) const {
  hand_out(periods::this_month(read_present(use_utc)), start, end);
}

void DateTimeCalculation::GetThisQuarter(COleDateTime& start, COleDateTime& end) const {
  hand_out(periods::this_quarter(read_present(use_utc)), start, end);
}

void DateTimeCalculation::GetThisYear(COleDateTime& start, COleDateTime& end) const {
  hand_out(periods::this_year(read_present(use_utc)), start, end);
}

void DateTimeCalculation::GetYesterday(COleDateTime& start, COleDateTime& end) const {
  hand_out(periods::yesterday(read_present(use_utc)), start, end);
}

void DateTimeCalculation::GetLastWeek(COleDateTime& start, COleDateTime& end) const {
  hand_out(periods::last_week(read_present(use_utc), first_day_of_week), start, end);
}

void DateTimeCalculation::GetLastMonth(COleDateTime& start, COleDateTime& end) const {
  hand_out(periods::last_month(read_present(use_utc)), start, end);
}

void DateTimeCalculation::GetLastQuarter(COleDateTime& start, COleDateTime& end) const {
  hand_out(periods::last_quarter(read_present(use_utc)), start, end);
}

void DateTimeCalculation::GetLastYear(COleDateTime& start, COleDateTime& end) const {
  hand_out(periods::last_year(read_present(use_utc)), start, end);
}

COleDateTime DateTimeCalculation::GetLastNDay(const COleDateTime& reference, int count) {
  return less_days(midnight_of(reference), count);
}

COleDateTime DateTimeCalculation::GetLastNWeek(const COleDateTime& reference, int count) {
  const long days = periods::days_into_week(reference, first_day_of_week) + 7L * count;
  return less_days(reference, static_cast<double>(days));
}

COleDateTime DateTimeCalculation::GetLastNMonth(const COleDateTime& reference, int count) {
  MonthWalk walk(reference.GetYear(), reference.GetMonth());
  const double days = reference.GetDay() - 1 + walk.days_back(count);
  return midnight_of(reference - COleDateTimeSpan(days));
}

COleDateTime DateTimeCalculation::GetLastNQuarter(const COleDateTime& reference, int count) {
  const int month = periods::first_month_of_quarter(reference.GetMonth());
  const COleDateTime quarter = start_of_day(reference.GetYear(), month, 1);
  MonthWalk walk(reference.GetYear(), month);
  const COleDateTimeSpan into_quarter = reference - quarter;
  return midnight_of(reference - into_quarter - COleDateTimeSpan(walk.days_back(3L * count)));
}

COleDateTime DateTimeCalculation::GetLastNYear(const COleDateTime& reference, int count) {
  return start_of_day(static_cast<long>(reference.GetYear()) - count, 1, 1);
}

COleDateTime DateTimeCalculation::GetLastNHour(const COleDateTime& reference, int count) {
  return less_days(reference, count / 24.0);
}

COleDateTime DateTimeCalculation::GetLastNMinute(const COleDateTime& reference, int count) {
  return less_days(reference, count / 1440.0);
}

COleDateTime DateTimeCalculation::GetLastNSecond(const COleDateTime& reference, int count) {
  return less_days(reference, count / 86400.0);
}
