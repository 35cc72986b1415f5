/// The two works on all revisions at once: what they are about to change, whether they can, and the work itself.
///
/// Part of the command.
#pragma once

#include <string>
#include <vector>

#include "tools/spc/link.h"
#include "tools/spc/terminal.h"

namespace spc {

/// One line of what is about to happen.
struct PlannedChange {
  std::string table;
  long rows = 0;  ///< that are not yet as they are to be
  std::string what;
};

/// Fails: Problem; so do the others.
std::vector<PlannedChange> plan_rebuild(Link& link);
std::vector<PlannedChange> plan_reset(Link& link);

/// Counts all versions anew, or none.
void rebuild_versions(Link& link, const Terminal& terminal);

/// Sees that the foreign key of the payloads is there and that the server can and may drop it, and changes nothing. On
/// a server of no known kind, which keeps its keys, it must not be there.
/// Fails: Problem when it is not so.
void require_reset_possible(Link& link);

/// Removes all revisions.
/// Fails: Problem that names the statement which failed; its note says what stands.
void reset_revisions(Link& link, const Terminal& terminal);

}  // namespace spc
