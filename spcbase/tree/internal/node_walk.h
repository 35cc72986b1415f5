/// The walk through the folders.
///
/// Part of the object tree; not for hosts.
#pragma once

#include <vector>

#include "spcbase/platform/database/database.h"
#include "spcbase/platform/text/cstring.h"

/// The id of the folder that the first `count` names lead to from the root, hidden folders left out; 0 when there is
/// none or the recordset does not open.
int find_node_from_names(CDatabase* database, const std::vector<CString>& names, int count);
