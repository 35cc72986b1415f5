/// The payloads of monitors and profiles: opaque to the library, one row for each object that has one.
///
/// Part of the database foundation. Each function looks for the object's row and reads, writes or deletes it, inside
/// the blob retry, so that it works on drivers without streaming. In each, `maximum_blob_size` says how the retry goes
/// on when streaming fails: 0 not at all, except that a write goes on with a buffer of the data's length; else with
/// buffers from that many bytes on, doubled ten times at most. No transaction is opened, and revision control knows
/// nothing of these payloads.
///
/// Fails: CDBException* from the database, `DBException` "Can not open recordset." when the connection is not open.
/// Threads: none of their own; the connection's rule holds.
#pragma once

#include "spcbase/platform/database/database.h"
#include "spcbase/platform/database/long_binary.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

/// Reads a monitor's data into `data` and gives their number of bytes. No row and a null are 0 bytes: the block of
/// `data` is freed then.
SPCBASE_API int get_mon_data(CDatabase* database, int maximum_blob_size, int monitor, CLongBinary& data);
/// Stores a monitor's data; empty data delete the row.
SPCBASE_API void set_mon_data(CDatabase* database, int maximum_blob_size, int monitor, const CLongBinary& data);

/// The same for a profile.
SPCBASE_API int get_prof_data(CDatabase* database, int maximum_blob_size, int profile, CLongBinary& data);
SPCBASE_API void set_prof_data(CDatabase* database, int maximum_blob_size, int profile, const CLongBinary& data);

/// A monitor's extra data, a text that may hold zero bytes; empty when there are none.
SPCBASE_API CString get_mon_extra_data(CDatabase* database, int maximum_blob_size, int monitor);
SPCBASE_API void set_mon_extra_data(CDatabase* database, int maximum_blob_size, int monitor, const CString& data);
