/// Lists of the stored definitions, and the rewriting of all.
///
/// Part of the data sources. The maximum size of a blob and the failures are those of definition.h.
#pragma once

#include <memory>
#include <vector>

#include "spcbase/datasource/definition.h"
#include "spcbase/platform/database/database.h"
#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/system/export.h"

/// Appends every live definition of a kind that a user may see, and gives their number; user 0 sees all. `newest`
/// becomes the latest time of writing among them, in UTC and to the second; its status is null when there is none.
/// When one of them cannot be read, none is appended.
SPCBASE_API int get_all_ole_db(CDatabase* database, int maximum_blob_size, int user,
                               std::vector<std::shared_ptr<OLEDBInfo>>& definitions, COleDateTime& newest);
SPCBASE_API int get_all_adonet_db(CDatabase* database, int maximum_blob_size, int user,
                                  std::vector<std::shared_ptr<ADONETDBInfo>>& definitions, COleDateTime& newest);

/// Appends the ids of a kind that the view `CSEXDBV` shows, and gives their number.
SPCBASE_API int get_all_ole_db_id(CDatabase* database, std::vector<int>& ids);
SPCBASE_API int get_all_adonet_db_id(CDatabase* database, std::vector<int>& ids);

/// Writes every definition of a kind in the present form. `found` is the number of ids, `saved` of those that were
/// written. The failure of one is dropped, and the next one follows; who wants to know which failed reads and saves
/// them one by one.
/// Fails: only when the ids cannot be read.
SPCBASE_API void read_and_save_all_ole_db(CDatabase* database, int maximum_blob_size, int& found, int& saved);
SPCBASE_API void read_and_save_all_adonet_db(CDatabase* database, int maximum_blob_size, int& found, int& saved);
