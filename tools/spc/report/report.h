/// A page of HTML that shows what a database holds: charts, samples, a history, ranges, schedules and the tree.
///
/// Part of the command. The page is one file that needs nothing beside it: no script, no picture, no font.
///
///     ReportFacts facts;
///     facts.title = "A small plant";
///     facts.profiles = {{1, "Phase", "set-up"}};
///     facts.now = COleDateTime::GetCurrentTime();
///     write_report(link, facts, "plant.html");
#pragma once

#include <string>
#include <vector>

#include "tools/spc/link.h"
#include "tools/spc/report/history.h"
#include "tools/spc/report/measurements.h"
#include "tools/spc/report/schedules.h"

namespace spc::report_page {

/// What a page is about. All the rest comes from the database.
struct ReportFacts {
  std::string title = {};
  std::vector<ReportedProfile> profiles = {};  ///< charts, and the first sample of each as a grid
  ReportedObject object = {};                  ///< whose history is shown
  COleDateTime now = {};                       ///< local time, valid: what ranges and schedules are reckoned from
  int first_day_of_week = 2;                   ///< 1 is Sunday
  std::vector<std::string> ranges = {};        ///< range lines
  std::vector<ReportedSchedule> schedules = {};
};

/// Sees that a report could be written there. To be called before the work that the report tells of.
/// Fails: Problem when the file is there already.
void refuse_existing(const std::string& file);

/// Writes the page, whole or not at all.
/// Fails: Problem; also when the file is there already, which stays as it is.
void write_report(Link& link, const ReportFacts& facts, const std::string& file);

}  // namespace spc::report_page
