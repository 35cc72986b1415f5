/// The named periods around a moment that is given; `DateTimeCalculation` gives them the present.
///
/// Part of time; not for hosts.
#pragma once

#include "spcbase/platform/datetime/ole_datetime.h"

/// Both ends belong to the period.
struct Period {
  COleDateTime start;
  COleDateTime end;
};

/// Each is invalid at both ends for a moment that is not valid.
namespace periods {

Period today(const COleDateTime& now);
Period this_week(const COleDateTime& now, int first_day_of_week);
Period this_month(const COleDateTime& now);
Period this_quarter(const COleDateTime& now);
Period this_year(const COleDateTime& now);
Period yesterday(const COleDateTime& now);
Period last_week(const COleDateTime& now, int first_day_of_week);
Period last_month(const COleDateTime& now);
Period last_quarter(const COleDateTime& now);
Period last_year(const COleDateTime& now);

/// 1, 4, 7 or 10.
constexpr int first_month_of_quarter(int month) noexcept { return (month - 1) / 3 * 3 + 1; }

/// How many days a moment lies behind the first day of its week: 0 to 6 for a first day of 1 to 7.
long days_into_week(const COleDateTime& moment, int first_day_of_week);

}  // namespace periods
