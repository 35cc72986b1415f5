/// A schedule and a repeat as a person types them.
///
/// Part of the command. The library keeps whatever has the right number of fields; here each field that hardly means
/// what it says becomes a warning, with what the library makes of it.
#pragma once

#include <string>
#include <vector>

#include "spcbase/schedule/strings.h"
#include "tools/spc/warnings.h"

namespace spc {

struct ReadSchedule {
  schd::ScheduleStringInfo schedule;
  Warnings warnings;
};

struct ReadRepeat {
  schd::RepeatStringInfo repeat;
  Warnings warnings;
};

/// Reads a schedule.
/// Fails: Problem when it has not five fields.
ReadSchedule read_schedule(const std::string& text);

/// Reads a repeat, which is not empty.
/// Fails: Problem when it has neither three nor five fields.
ReadRepeat read_repeat(const std::string& text);

/// Whether one of the months of a monthly schedule has its day, be it in leap years alone.
bool has_day(const schd::ScheduleStringInfo& monthly);

/// The days of a mask from 0 to 6, the months of one from 1 to 12, by name.
std::vector<std::string> weekdays_of(int mask);
std::vector<std::string> months_of(int mask);

}  // namespace spc
