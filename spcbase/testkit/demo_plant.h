/// The plant of the demo: three lines on which the measurements in tools/spc/data were taken, in folders, and who may
/// see them.
///
///     Plant
///       Forge
///         Line 1               Piston rings, monitor Ring diameter
///         Line 2               monitor Press force
///       Filling / packing      Juice cans, monitor Leaking cans
///       Electronics            Circuit boards, monitor Board defects
///
/// Anna sees the piston rings, since she is listed for them. Bo and Chloé see the juice cans, since their group is. All
/// three see the circuit boards: Anna is listed herself, and so is the group.
#pragma once

#include <cstddef>
#include <string>

#include "spcbase/platform/database/database.h"

namespace plant {

/// A row with an id and a name.
struct Known {
  int id = 0;        ///< of its row
  std::string name;  ///< as the demo shows it; UTF-8
};

/// The demo's plant. Between them the three profiles hold every kind of column.
struct DemoPlant {
  Known forge;  ///< stations
  Known filling_line;
  Known board_assembly;
  Known anna;  ///< users
  Known bo;
  Known chloe;         ///< new at the filling line
  Known piston_rings;  ///< profiles
  Known juice_cans;
  Known circuit_boards;
  Known line_1;  ///< folders with a profile
  Known filling_folder;
  Known electronics;
  Known ring_diameter;  ///< monitors
  Known press_force;
  Known leaking_cans;
  Known board_defects;
  int filling_group = 0;  ///< Bo and Chloé
  std::size_t rows = 0;   ///< how many were added
};

/// Builds it in a database that has the schema.
/// Fails: as plant::Builder.
DemoPlant build_demo_plant(CDatabase& db);

}  // namespace plant
