/// Raising the failures of revision control.
///
/// Part of revision control; not for hosts.
#pragma once

#include "spcbase/foundation/failure.h"
#include "spcbase/revision/internal/rows.h"

namespace rev {

/// The reasons of RevisionException.
enum class Reason : int { no_revisions = 0, not_latest = 1, already_approved = 2, broken = 3, id_unreadable = 4 };

/// Fails: always, RevisionException.
[[noreturn]] inline void raise_revision(const RevisionKey& key, Reason reason) {
  throw RevisionException(key.object_type, key.object_id, key.revision, static_cast<int>(reason));
}

}  // namespace rev
