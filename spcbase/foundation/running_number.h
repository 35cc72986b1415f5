/// Running numbers: the repair of the counters that ids are taken from, and the test for a double key.
///
/// Part of the database foundation. An object's id is the next number of its table's counter (schema/running_numbers.h
/// has the list). After an import, a restore or a manual change a counter may lag behind its table; new rows are then
/// refused as double. The repair sets it back to the truth:
///
///     update_running_table(&db, "CSSAMP", "SAMPID", "CSSPRN", true);   // one counter
///     update_running_table(&db);                                       // all of them, or none
///
/// It takes no lock beyond its transaction: a writer that is at work meanwhile can move past the number that it writes.
#pragma once

#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/schema/running_numbers.h"
#include "spcbase/platform/system/export.h"

/// Sets the counter of one table to the highest id in use, or to 0 for a table without rows, in a transaction of its
/// own unless the caller has one open. With `rewrite` the counter's rows are replaced by one, which also creates a
/// missing row and removes extra ones; without it every row that is there gets the number, and nothing happens when
/// there is none.
///
/// Null:   no argument may be.
/// Fails:  `DBException` "Can not open recordset." when the connection is not open, CDBException* from the database;
///         the counter is as it was then, where the server has transactions.
/// Kept:   where the server refuses to begin a transaction the work is done without one, and a refused commit undoes
///         the work without a failure.
SPCBASE_API void update_running_table(CDatabaseEx* database, const char* table, const char* id_column,
                                      const char* counter, bool rewrite);

/// Sets all counters, in the order of `running_numbers`, each replaced by one row, in one transaction.
/// Fails:  as above; all counters are as they were then, where the server has transactions.
SPCBASE_API void update_running_table(CDatabaseEx* database);

/// Whether a failure is the refusal of a row whose key exists already, on any of the known servers.
///
/// `constraint` is the name of the key. It decides for every server but MySQL, whose text names keys in a form that is
/// not stable: there any double key counts.
/// Null:   a null name is contained in no text.
/// Kept:   a text of an unknown server that holds the name counts as a double key, whatever else it says.
/// Owns:   the exception stays the caller's.
SPCBASE_API bool is_pk_violation(CDBException* exception, const char* constraint);
