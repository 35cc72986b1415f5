/// The measurements of the demo and the style sheet of its report, compiled in from tools/spc/data and
/// tools/spc/report, so that the program needs no file beside it.
#pragma once

#include <string_view>

namespace spc::embedded {

/// The text of piston_rings.csv, juice_cans.csv or circuit_boards.csv, or report.css; empty for another name.
std::string_view file(std::string_view name);

}  // namespace spc::embedded
