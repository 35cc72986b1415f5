/// Moments and periods as texts, so that a failed comparison can be read.
#pragma once

#include <cstdio>
#include <string>

#include "spcbase/time/calculation.h"

namespace time_tests {

/// "2024-03-15 23:59:59", or the status of a moment that is not valid.
inline std::string text(const COleDateTime& moment) {
  SYSTEMTIME f;
  if (!moment.GetAsSystemTime(f)) return "status " + std::to_string(moment.GetStatus());
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d %02d:%02d:%02d", f.wYear, f.wMonth, f.wDay, f.wHour, f.wMinute,
                f.wSecond);
  return buffer;
}

inline std::string text(const COleDateTime& start, const COleDateTime& end) { return text(start) + " .. " + text(end); }

inline std::string range_text(const DateTimeCalculation& calculation,
                              void (DateTimeCalculation::*period)(COleDateTime&, COleDateTime&) const) {
  COleDateTime start, end;
  (calculation.*period)(start, end);
  return text(start, end);
}

}  // namespace time_tests
