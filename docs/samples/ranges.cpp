// A host that reckons back from a moment it has, and shows a unit of time in its user's language.
#include <cstdio>

#include "spcbase/foundation/messages.h"
#include "spcbase/time/calculation.h"
#include "spcbase/time/range.h"
#include "spcbase/time/unit_words.h"

namespace {

void print_moment(const char* what, const COleDateTime& moment) {
  std::printf("%-15s %s\n", what, moment.Format("%Y-%m-%d %H:%M:%S").GetString());
}

// The end of Friday, 15 March 2024, in a plant whose weeks start on Monday.
void print_offsets() {
  const COleDateTime end(2024, 3, 15, 23, 59, 59);
  DateTimeCalculation calculation(2);
  print_moment("1 day back", calculation.GetLastNDay(end, 1));
  print_moment("1 week back", calculation.GetLastNWeek(end, 1));
  print_moment("1 month back", calculation.GetLastNMonth(end, 1));
  print_moment("1 quarter back", calculation.GetLastNQuarter(end, 1));
  print_moment("1 year back", calculation.GetLastNYear(end, 1));
  print_moment("36 hours back", calculation.GetLastNHour(end, 36));
}

// How long the period so far is, whatever the day is on which this runs.
void print_this_week() {
  COleDateTime start, end;
  DateTimeCalculation(2).GetThisWeek(start, end);
  std::printf("this week began on day %d of the week\n", start.GetDayOfWeek());
}

void print_unit() {
  install_messages({{1012, "Quartal"}, {1034, "die letzten %d %s"}});
  std::printf("%s\n", GetQuarterStr().GetString());
  install_messages({});
  std::printf("%s\n", GetQuarterStr().GetString());
}

void print_range() {
  DateTimeRange range;
  if (!range.parse("last 5 day")) return;
  range.Recalculate(DateTimeCalculation(2));
  const CString stored = range.to_string();
  const CString shown = range.get_display_string("Created");
  std::printf("%s: %s\n", stored.GetString(), shown.GetString());
}

}  // namespace

int main() {
  print_offsets();
  print_this_week();
  print_unit();
  print_range();
}
