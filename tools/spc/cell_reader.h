/// One field of a file as a value for a grid.
///
/// Part of the command.
#pragma once

#include <string>
#include <string_view>

#include "spcbase/platform/automation/variant_t.h"
#include "tools/spc/layout.h"

namespace spc {

/// A value, or what is wrong with the field.
struct ReadCell {
  _variant_t value;   ///< empty for an empty field
  std::string wrong;  ///< empty when all is well
  std::string advice;
};

/// Reads a field for a column. Blanks around numbers and moments are passed over; a point parts decimals; a moment is
/// YYYY-MM-DD, with HH:MM or HH:MM:SS behind it if wanted, parted by a blank or a T.
ReadCell read_cell(std::string_view field, const GridColumn& column);

}  // namespace spc
