/// The demo's page: what of the plant is shown.
///
/// Part of the command.
#pragma once

#include <string>

#include "spcbase/testkit/demo_plant.h"
#include "tools/spc/link.h"

namespace spc {

/// Writes the page of the plant, whose samples and history stand in the database.
/// Fails: Problem, as `report_page::write_report`.
void write_demo_report(Link& link, const plant::DemoPlant& plant, const std::string& file);

}  // namespace spc
