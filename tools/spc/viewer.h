/// The user for whom lists are cut down.
///
/// Part of the command.
#pragma once

#include "tools/spc/link.h"

namespace spc {

/// Sees that lists can be shown as this user sees them: one who exists, or 0 for everyone. An id that was mistyped
/// would look like a user who may see nothing.
/// Fails: Problem.
void check_viewer(Link& link, int user);

/// The condition for the profiles that a user may see, by their column as it stands in the statement; empty for 0.
CString visible_profiles(const char* column, int user);

}  // namespace spc
