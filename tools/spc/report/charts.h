/// The measurements of a profile as charts, each with its numbers in a table below.
///
/// Part of the command.
#pragma once

#include "tools/spc/report/control.h"
#include "tools/spc/report/markup.h"
#include "tools/spc/report/measurements.h"

namespace spc::report_page {

/// A chart for each characteristic of a profile.
void write_charts(Markup& page, const Measurements& measurements);

}  // namespace spc::report_page
