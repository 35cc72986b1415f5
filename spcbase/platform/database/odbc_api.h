/// The ODBC headers, in the one order in which they go together with ours: before every header of the tree.
///
/// Part of the database platform layer.
#pragma once

// Their ULONG follows the machine's long; ours has 32 bits everywhere.
#define ULONG odbc_ulong
#include <sql.h>
#include <sqlext.h>
#undef ULONG
