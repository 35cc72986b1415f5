/// Schedules: what they say in a sentence, and when they are due.
///
/// Part of the command.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "spcbase/platform/datetime/ole_datetime.h"
#include "tools/spc/report/markup.h"

namespace spc::report_page {

/// A schedule and its repeat as they are stored.
struct ReportedSchedule {
  std::string schedule = {};
  std::string repeat = {};  ///< empty: none
};

struct DueSchedule {
  ReportedSchedule stored;
  std::string sentence;
  std::vector<COleDateTime> next;       ///< the next few moments
  std::vector<COleDateTime> fortnight;  ///< all that lie in the days that are drawn
};

struct Schedules {
  COleDateTime now;
  std::vector<DueSchedule> all;
};

/// Reckons when each is due behind a moment, which is local time and valid.
/// Fails: Problem when one is no schedule or repeat.
Schedules read_schedules(const COleDateTime& now, const std::vector<ReportedSchedule>& stored);

void write_schedules(Markup& page, const Schedules& schedules);

}  // namespace spc::report_page
