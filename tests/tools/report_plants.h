/// Pages to look at: the demo's at a moment that never changes, and one of a plant whose names do harm where they can.
#pragma once

#include <string>
#include <vector>

#include "tools/spc/link.h"
#include "tools/spc/report/report.h"

namespace report_test {

/// Friday 15 March 2024, 10:30, in a zone where that is UTC.
inline constexpr const char* moment_of_pages = "2024-03-15 10:30";

/// Runs the demo in an empty database and writes its page, at that moment.
void write_demo_page(const std::string& connect_text, const std::string& file);

struct HurtfulPlant {
  spc::report_page::ReportFacts facts;
  std::vector<std::string> names;  ///< each must stand on the page, letter by letter
};

/// Fills a database that has the schema and nothing else: names of markup, quotes, many bytes, both directions and
/// great length; samples of different sizes, one without anything, and a profile without samples.
HurtfulPlant build_hurtful_plant(spc::Link& link);

/// Writes the page of that plant into a file, at that moment.
void write_hurtful_page(const std::string& connect_text, const std::string& file);

}  // namespace report_test
