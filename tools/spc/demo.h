/// The demo: a small plant with real measurements, saved, read back and compared.
///
/// Part of the command.
#pragma once

#include <string>

#include "tools/spc/link.h"
#include "tools/spc/terminal.h"

namespace spc {

/// Where the demo works.
struct DemoRequest {
  Place place;              ///< a database that is empty or that an earlier demo has filled; nothing: a file
  std::string keep;         ///< the file to make and keep; empty: a temporary one
  std::string report = {};  ///< the page to write; empty: none
};

/// Builds the plant, saves the 140 samples, reads every one back and compares each cell with the files.
/// Fails: Problem; a cell that came back different is one.
void run_demo(const DemoRequest& request, const Terminal& terminal);

}  // namespace spc
