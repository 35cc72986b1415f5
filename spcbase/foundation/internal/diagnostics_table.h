/// What the diagnostics of servers and drivers mean: one row for each way in which one of them says something.
///
/// Part of the database foundation, for the library's own use. Rows are tried in order, the first that fits decides:
/// what is said by the SQLSTATE alone stands first, then the native codes of drivers whose state says nothing
/// ("HY000"), then texts. A number means different things on different servers, so a native code never stands without a
/// state or a text that only its server uses.
#pragma once

#include "spcbase/foundation/outcome.h"

namespace diagnostics {

/// A row fits when all that it names is there.
struct Rule {
  const char* state_prefix;  ///< the beginning of the SQLSTATE, or null
  long native;               ///< the server's number, or 0 for any
  const char* in_text;       ///< a part of the message, or null
  FailureClass means;
};

inline constexpr Rule rules[] = {
    // Said by the standard, and by every driver that keeps to it.
    {"08007", 0, nullptr, FailureClass::commit_in_doubt},
    {"40003", 0, nullptr, FailureClass::commit_in_doubt},
    {"40001", 0, nullptr, FailureClass::deadlock},
    {"40P01", 0, nullptr, FailureClass::deadlock},
    {"08001", 26, nullptr, FailureClass::other},
    {"08002", 0, nullptr, FailureClass::other},  // connected already: the host's mistake, the link is well
    {"08", 0, nullptr, FailureClass::link_lost},
    {"23505", 0, nullptr, FailureClass::duplicate_key},
    {"23503", 0, nullptr, FailureClass::missing_reference},
    {"22001", 0, nullptr, FailureClass::value_too_long},
    {"HYT00", 0, nullptr, FailureClass::lock_timeout},
    {"HYT01", 0, nullptr, FailureClass::link_lost},
    {"55P03", 0, nullptr, FailureClass::lock_timeout},
    {"57014", 0, nullptr, FailureClass::lock_timeout},
    {"70100", 0, nullptr, FailureClass::lock_timeout},
    {"57P01", 0, nullptr, FailureClass::link_lost},
    {"57P02", 0, nullptr, FailureClass::link_lost},
    {"57P03", 0, nullptr, FailureClass::link_lost},
    {"42P01", 0, nullptr, FailureClass::no_such_object},
    {"42703", 0, nullptr, FailureClass::no_such_object},
    {"42S02", 0, nullptr, FailureClass::no_such_object},
    {"42S22", 0, nullptr, FailureClass::no_such_object},
    {"42501", 0, nullptr, FailureClass::permission},
    {"28", 0, nullptr, FailureClass::permission},
    {"25006", 0, nullptr, FailureClass::permission},
    {"53100", 0, nullptr, FailureClass::storage_full},

    // SQLite, directly: its extended numbers.
    {"23000", 2067, nullptr, FailureClass::duplicate_key},
    {"23000", 1555, nullptr, FailureClass::duplicate_key},
    {"23000", 2579, nullptr, FailureClass::duplicate_key},
    {"23000", 787, nullptr, FailureClass::missing_reference},

    // SQLite through its ODBC driver: everything is HY000 with the plain number.
    {"HY000", 19, "UNIQUE constraint failed", FailureClass::duplicate_key},
    {"HY000", 19, "FOREIGN KEY constraint failed", FailureClass::missing_reference},
    {"HY000", 19, "_WIDTH", FailureClass::value_too_long},
    {"HY000", 1, "no such table", FailureClass::no_such_object},
    {"HY000", 1, "no such column", FailureClass::no_such_object},
    {"HY000", 1, "has no column named", FailureClass::no_such_object},
    {"HY000", 1, "syntax error", FailureClass::syntax},
    {"HY000", 1, "incomplete input", FailureClass::syntax},
    {"HY000", 1, "unrecognized token", FailureClass::syntax},
    {"HY000", 1, "no such function", FailureClass::syntax},
    {"HY000", 5, "locked", FailureClass::lock_timeout},
    {"HY000", 6, "locked", FailureClass::lock_timeout},
    {"HY000", 8, "readonly", FailureClass::permission},
    {"HY000", 13, "full", FailureClass::storage_full},
    {"HY000", 14, nullptr, FailureClass::link_lost},

    // MariaDB and MySQL.
    {"23000", 1062, nullptr, FailureClass::duplicate_key},
    {"23000", 1586, nullptr, FailureClass::duplicate_key},
    {"23000", 1451, nullptr, FailureClass::missing_reference},
    {"23000", 1452, nullptr, FailureClass::missing_reference},
    {"23000", 1216, nullptr, FailureClass::missing_reference},
    {"23000", 1217, nullptr, FailureClass::missing_reference},
    {"HY000", 1205, nullptr, FailureClass::lock_timeout},
    {"HY000", 3572, nullptr, FailureClass::lock_timeout},
    {"HY018", 1969, nullptr, FailureClass::lock_timeout},
    {"HY000", 2002, nullptr, FailureClass::link_lost},
    {"HY000", 2003, nullptr, FailureClass::link_lost},
    {"HY000", 2006, nullptr, FailureClass::link_lost},
    {"HY000", 2013, nullptr, FailureClass::link_lost},
    {"HY000", 5014, nullptr, FailureClass::link_lost},
    // Its driver has no memory for a statement, it says, when the link breaks while the statement is prepared.
    {"HY001", 2006, nullptr, FailureClass::link_lost},
    {"HY001", 2013, nullptr, FailureClass::link_lost},
    {"42000", 1049, nullptr, FailureClass::no_such_object},
    {"42000", 1091, nullptr, FailureClass::no_such_object},
    {"42000", 1044, nullptr, FailureClass::permission},
    {"42000", 1142, nullptr, FailureClass::permission},
    {"42000", 1143, nullptr, FailureClass::permission},
    {"42000", 1227, nullptr, FailureClass::permission},
    {"42000", 1370, nullptr, FailureClass::permission},
    {"HY000", 1290, nullptr, FailureClass::permission},
    {"HY000", 1021, nullptr, FailureClass::storage_full},
    {"HY000", 1114, nullptr, FailureClass::storage_full},

    // SQL Server.
    {"23000", 2627, nullptr, FailureClass::duplicate_key},
    {"23000", 2601, nullptr, FailureClass::duplicate_key},
    {"23000", 547, "FOREIGN KEY", FailureClass::missing_reference},
    {"23000", 547, "REFERENCE", FailureClass::missing_reference},
    {nullptr, 2628, "truncated", FailureClass::value_too_long},
    {nullptr, 8152, "truncated", FailureClass::value_too_long},
    {nullptr, 1222, "Lock request time out", FailureClass::lock_timeout},
    {nullptr, 229, "permission was denied", FailureClass::permission},
    {nullptr, 230, "permission was denied", FailureClass::permission},
    {nullptr, 262, "permission denied", FailureClass::permission},
    {nullptr, 3906, "read-only", FailureClass::permission},
    {nullptr, 1105, "Could not allocate space", FailureClass::storage_full},
    {nullptr, 9002, "log", FailureClass::storage_full},

    // Oracle, whose drivers differ in the state, so that the number and its text speak.
    {nullptr, 1, "unique constraint", FailureClass::duplicate_key},
    {nullptr, 2291, "integrity constraint", FailureClass::missing_reference},
    {nullptr, 2292, "integrity constraint", FailureClass::missing_reference},
    {nullptr, 12899, "value too large for column", FailureClass::value_too_long},
    {nullptr, 1438, "larger than specified precision", FailureClass::value_too_long},
    {nullptr, 60, "deadlock", FailureClass::deadlock},
    {nullptr, 54, "resource busy", FailureClass::lock_timeout},
    {nullptr, 30006, "resource busy", FailureClass::lock_timeout},
    {nullptr, 3113, "end-of-file", FailureClass::link_lost},
    {nullptr, 3114, "not connected", FailureClass::link_lost},
    {nullptr, 942, "does not exist", FailureClass::no_such_object},
    {nullptr, 904, "invalid identifier", FailureClass::no_such_object},
    {nullptr, 1031, "insufficient privileges", FailureClass::permission},
    {nullptr, 1017, "logon denied", FailureClass::permission},
    {nullptr, 1653, "unable to extend", FailureClass::storage_full},
    {nullptr, 1654, "unable to extend", FailureClass::storage_full},
    {nullptr, 1536, "quota exceeded", FailureClass::storage_full},

    // Whoever says no more than its text.
    {"HY000", 0, "server closed the connection", FailureClass::link_lost},
    {"HY000", 0, "no connection to the server", FailureClass::link_lost},
    {nullptr, 0, "No space left on device", FailureClass::storage_full},
    {"42", 0, nullptr, FailureClass::syntax},
    {"37000", 0, nullptr, FailureClass::syntax},
};

}  // namespace diagnostics
