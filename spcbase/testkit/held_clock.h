/// Holds "now" still for a scope.
#pragma once

#include <chrono>

#include "spcbase/platform/datetime/calendar.h"
#include "spcbase/platform/datetime/clock.h"

namespace test_support {

/// A moment in UTC by its fields.
inline platform::Moment utc(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
                            int milliseconds = 0) {
  return platform::Moment(std::chrono::hours(24 * platform::days_from_civil(year, month, day)) +
                          std::chrono::hours(hour) + std::chrono::minutes(minute) + std::chrono::seconds(second) +
                          std::chrono::milliseconds(milliseconds));
}

using platform::HeldClock;

}  // namespace test_support
