/// The command line: what was asked for, and its answer.
///
/// Part of the command.
#pragma once

#include <ostream>

namespace spc {

/// Runs the command and gives its exit status: 0 done, 1 failed, 2 misuse. `bars` says that `err` is a terminal.
int run(int argc, const char* const* argv, std::ostream& out, std::ostream& err, bool bars);

}  // namespace spc
