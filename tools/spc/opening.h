/// What to do when a database could not be opened.
///
/// Part of the command.
#pragma once

#include <string_view>

#include "spcbase/foundation/outcome.h"

namespace spc {

/// Told from what the driver or the file refused: the library's own advice knows nothing of connect texts.
std::string_view advice_for_opening(std::string_view connect_text, const Failure& failure);

}  // namespace spc
