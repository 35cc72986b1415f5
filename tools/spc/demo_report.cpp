#include "tools/spc/demo_report.h"

#include "tools/spc/demo_history.h"
#include "tools/spc/report/report.h"

namespace spc {

void write_demo_report(Link& link, const plant::DemoPlant& plant, const std::string& file) {
  report_page::ReportFacts facts;
  facts.title = "A small plant with real measurements";
  // The rings ran well while they were set up. The cans and the boards have no such time.
  facts.profiles = {{plant.piston_rings.id, "Phase", "set-up"},
                    {plant.juice_cans.id, "Cardboard", ""},
                    {plant.circuit_boards.id, "", ""}};
  facts.object = {{demo_profile_type, plant.piston_rings.id}, plant.piston_rings.name};
  facts.now = COleDateTime::GetCurrentTime();
  facts.ranges = {"today",      "yesterday",  "this_week",    "last_week",   "last 5 day",
                  "this_month", "last_month", "this_quarter", "last_quarter"};
  facts.schedules = {
      {"30 6 * * *", ""}, {"0 8 * * 1,3,5", ""}, {"0 6 * * 1,2,3,4,5", "2 h 0 18 0"}, {"0 7 15 1,4,7,10 *", ""}};
  report_page::write_report(link, facts, file);
}

}  // namespace spc
