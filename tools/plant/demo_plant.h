/// The plant of the demo: three lines on which the measurements in tools/spc/data were taken.
#pragma once

#include <cstddef>
#include <string>

#include "spcbase/platform/database/database.h"

namespace plant {

/// A row with an id and a name.
struct Known {
  int id = 0;
  std::string name;
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
  std::size_t rows = 0;  ///< how many were added
};

/// Builds it in a database that has the schema.
/// Fails: as plant::Builder.
DemoPlant build_demo_plant(CDatabase& db);

}  // namespace plant
