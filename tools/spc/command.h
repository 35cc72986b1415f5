/// The command line: what was asked for, and its answer.
///
/// Part of the command.
#pragma once

#include <ostream>

namespace spc {

/// Runs the command and gives its exit status: 0 done, 1 failed, 2 misuse, 130 and 143 interrupted. `is_terminal` is
/// said of `err`.
int run(int argc, const char* const* argv, std::ostream& out, std::ostream& err, bool is_terminal);

}  // namespace spc
