#include "spcbase/time/internal/present.h"

#include <limits>

#include "spcbase/time/calendar.h"

namespace {

COleDateTime from_fields(long year, int month, int day, int hour, int minute, int second) {
  const bool fits = year >= 0 && year <= std::numeric_limits<WORD>::max();
  return {fits ? static_cast<int>(year) : -1, month, day, hour, minute, second};
}

}  // namespace

COleDateTime read_present(bool use_utc) {
  COleDateTime now = COleDateTime::GetCurrentTime();
  if (use_utc) to_utc(now);
  return now;
}

COleDateTime start_of_day(long year, int month, int day) { return from_fields(year, month, day, 0, 0, 0); }

COleDateTime end_of_day(long year, int month, int day) { return from_fields(year, month, day, 23, 59, 59); }
