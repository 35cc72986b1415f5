/// What a program asks of the terminal it may be writing to.
///
/// Part of the platform layer.
#pragma once

#include "spcbase/platform/system/export.h"

namespace platform {

/// Whether an open file is a terminal, so that something for people may be drawn on it.
/// `file`: a file descriptor: 0, 1 and 2 are standard input, output and error. False for one that is not open.
SPCBASE_API bool is_terminal(int file) noexcept;

}  // namespace platform
