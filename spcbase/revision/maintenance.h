/// Maintenance of the revision tables: versions counted anew, and the whole history thrown away.
///
/// Part of revision control. No revision manager learns of either: one that is alive meanwhile holds stale records.
#pragma once

#include "spcbase/foundation/connection.h"
#include "spcbase/platform/system/export.h"

namespace rev {

/// Gives the revisions of every object the versions 0.1, 0.2, 0.3 ... in the order of their numbers. All major versions
/// are gone then; numbers, approvals and payloads stay.
/// Fails:  `DBException` "Can not open recordset." when the connection is not open, CDBException*; the rows before the
///         failure are changed, unless the caller's transaction undoes it.
/// Kept:   an object id of 0 counts as nothing seen: the object that follows it goes on counting.
SPCBASE_API void rebuild_version(CDatabase* database);

/// Removes all revisions of all objects, what object tables, links and settings tell of them, and the mark that objects
/// were brought under revision control, so that this can be done again. Needs the right to change the table CSREVDAT,
/// whose foreign key is away meanwhile, and a server that can do so. Samples keep the number of their profile's
/// revision.
/// The query timeout is at least 300 seconds meanwhile.
/// Fails:  CDBException*; the statements before it stand, since servers cannot undo all of them.
/// Kept:   after a failure the query timeout stays raised; a timeout of 0, no limit, counts as below 300.
SPCBASE_API void reset_migration(CDatabaseEx& database);

}  // namespace rev
