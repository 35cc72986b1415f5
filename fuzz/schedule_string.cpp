// Schedules: what is not refused is kept, and its canonical form means the same.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "spcbase/foundation/failure.h"
#include "spcbase/schedule/strings.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using schd::ScheduleStringInfo;
  const std::string text(reinterpret_cast<const char*>(data), size);
  ScheduleStringInfo schedule;
  try {
    ScheduleStringInfo::parse_schedule_string(text.c_str(), schedule);
  } catch (const DBException&) {
    if (schedule.text != text.c_str() || schedule.type != ScheduleStringInfo::daily) std::abort();
    return 0;
  }
  if (schedule.text != text.c_str()) std::abort();
  const bool has_list = schedule.type == ScheduleStringInfo::weekly || schedule.type == ScheduleStringInfo::monthly;
  if (has_list && schedule.value == 0) return 0;  // an empty list cannot be parsed again
  ScheduleStringInfo again;
  ScheduleStringInfo::parse_schedule_string(schedule.get_rep_str(), again);
  if (again.type != schedule.type || again.value != schedule.value || again.minute != schedule.minute ||
      again.hour != schedule.hour || again.day != schedule.day)
    std::abort();
  if (again.get_rep_str() != schedule.get_rep_str()) std::abort();
  return 0;
}
