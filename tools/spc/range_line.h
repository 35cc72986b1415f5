/// A range as a person types it.
///
/// Part of the command.
#pragma once

#include <string>

#include "spcbase/time/range.h"
#include "tools/spc/warnings.h"

namespace spc {

struct ReadRange {
  DateTimeRange range;
  Warnings warnings;
};

/// Reads a range line, as `DateTimeRange::parse` does.
/// Fails: Problem that names the wrong word and shows a right line of each kind.
ReadRange read_range(const std::string& line);

}  // namespace spc
