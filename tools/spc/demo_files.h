/// What the demo enters: which file on which profile, by whom, and what the files leave open.
///
/// Part of the command.
#pragma once

#include <string>
#include <vector>

#include "spcbase/testkit/demo_plant.h"
#include "tools/spc/import_check.h"
#include "tools/spc/import_write.h"

namespace spc {

/// The samples from `first` on, in the order of the file, have this entrant.
struct Shift {
  std::size_t first = 1;
  Entrant entrant;
};

/// One file of measurements.
struct DemoFile {
  std::string name;
  Named profile;
  ImportRules rules;
  std::vector<Shift> shifts;
};

/// The three files.
std::vector<DemoFile> demo_files(const plant::DemoPlant& plant);

}  // namespace spc
