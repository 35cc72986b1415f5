/// The ways in which the library opens its recordsets.
///
/// Part of the database foundation, for the library's own use.
#pragma once

#include "spcbase/platform/database/recordset.h"

/// For every look-up that only reads: forward-only, read-only, not kept for a requery. False when it does not open.
inline bool open_for_read(CRecordset& rs) {
  return rs.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly | CRecordset::executeDirect) != FALSE;
}

/// For every path that calls AddNew, Edit or Delete. False when it does not open.
inline bool open_for_update(CRecordset& rs) {
  return rs.Open(AFX_DB_USE_DEFAULT_TYPE, nullptr, CRecordset::none) != FALSE;
}

/// The default type, read-only, as data entry reads: `sql` may be a whole statement. False when it does not open.
inline bool open_read_only(CRecordset& rs, const char* sql = nullptr) {
  return rs.Open(AFX_DB_USE_DEFAULT_TYPE, sql, CRecordset::readOnly) != FALSE;
}
