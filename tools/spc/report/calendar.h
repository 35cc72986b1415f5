/// Named ranges on a calendar: what "last week" and its like mean on a day.
///
/// Part of the command.
#pragma once

#include <string>
#include <vector>

#include "spcbase/time/range.h"
#include "tools/spc/report/markup.h"

namespace spc::report_page {

/// Ranges, and the day that they are reckoned from.
struct Calendar {
  COleDateTime now;
  int first_day_of_week = 2;          ///< as `DateTimeCalculation` counts: 1 is Sunday
  std::vector<DateTimeRange> ranges;  ///< reckoned
};

/// Reads and reckons range lines. The moment is local time and valid.
/// Fails: Problem when a line is none.
Calendar make_calendar(const COleDateTime& now, int first_day_of_week, const std::vector<std::string>& lines);

/// The month of the moment and the one before, with a bar for each range, and a table of all moments.
void write_calendar(Markup& page, const Calendar& calendar);

}  // namespace spc::report_page
