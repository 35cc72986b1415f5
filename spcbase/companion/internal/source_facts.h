/// How names are put together on an outside database, found from what ODBC knows of it.
///
/// Companions only. A fact is asked for by ODBC's number for it (SQLGetInfo).
#pragma once

#include <functional>

#include "spcbase/platform/database/database.h"
#include "spcbase/platform/system/types.h"
#include "spcbase/platform/text/cstring.h"

namespace source_facts {

/// Gives a fact, a number as decimal text. S_FALSE and an empty text: the source does not tell.
using Ask = std::function<HRESULT(WORD type, CString& fact)>;

/// The fact of a connection of ours.
/// Fails: E_UNEXPECTED when it is not open.
HRESULT of_connection(CDatabase& database, WORD type, CString& fact);

/// What stands behind the name of a catalog and of a schema; empty where there are none.
HRESULT catalog_separator(const Ask& ask, CString& separator);
HRESULT schema_separator(const Ask& ask, CString& separator);
/// What stands behind the name of a table, before that of a column: the same everywhere.
inline constexpr char table_separator[] = ".";
/// What stands around an identifier; empty where none can be quoted.
/// Fails: E_FAIL when the source does not tell.
HRESULT identifier_quote(const Ask& ask, CString& quote);

}  // namespace source_facts
