/// The SQL dialects: everything in which the four servers differ for the library's own statements, one row each.
///
/// Part of the database foundation, for the library's own use. No other file of the library names a server's words; a
/// new dialect is one row more.
#pragma once

#include <array>
#include <cstddef>

namespace dialect {

/// The position of a dialect in the table is its identifier.
enum Id : int { unknown = -1, sql_server = 0, oracle = 1, access = 2, mysql = 3 };

/// How the server's refusal of a double key is recognised.
/// Null: not by this.
struct DuplicateMarks {
  const char* in_message;        ///< stands in the message
  const char* in_state;          ///< stands in state and native code
  const char* confirmed_by;      ///< must stand in the message too
  bool confirmed_by_constraint;  ///< the constraint's name must stand in the message too
};

/// One dialect. `%1` is the first argument of a builder and `%2` the second; null stands for an empty text.
struct Row {
  const char* probe;           ///< only this dialect's server runs it
  const char* null_function;   ///< `%1`, or `%2` when it is null
  const char* local_time;      ///< the UTC moment `%1` as the server's local time
  const char* bitwise_and;     ///< of `%1` and `%2`
  const char* cast_to_moment;  ///< `%1` as a moment
  DuplicateMarks duplicate;
  const char* drop_constraint;  ///< drops the foreign key `%2` of the table `%1`
};

inline constexpr std::array<Row, 4> rows{{
    {"select getdate()",
     "ISNULL(%1,%2)",
     "DATEADD(Hour, DATEDIFF(Hour, GETUTCDATE(), GETDATE()), CAST(%1 AS DATETIME))",
     "%1 & %2",
     "CAST(%1 AS DATETIME)",
     {nullptr, "2627", nullptr, true},
     "ALTER TABLE %1 DROP CONSTRAINT %2"},
    {"select sysdate from dual",
     "NVL(%1,%2)",
     // Kept: the _T() wrappers and the colons in the date format go to the server as they stand.
     "CAST(FROM_TZ(CAST(TO_DATE(%1, _T('YYYY:MM:DD HH24:MI:SS')) AS TIMESTAMP), _T('GMT')) AT TIME ZONE "
     "SESSIONTIMEZONE "
     "AS DATE)",
     "BITAND(%1, %2)",
     "CAST(%1 AS DATE)",
     {"ORA-0001", nullptr, nullptr, true},
     "ALTER TABLE %1 DROP CONSTRAINT %2"},
    {"select date()",
     "IIF(ISNULL(%1), %2, %1)",
     "%1",
     "%1 BAND %2",
     "CDate(%1)",
     {nullptr, nullptr, nullptr, true},
     "ALTER TABLE %1 DROP CONSTRAINT %2"},
    {"select curdate()",
     "IFNULL(%1,%2)",
     "%1",
     "%1 & %2",
     "CAST(%1 AS DATETIME)",
     {nullptr, "1062", "Duplicate entry", false},
     "ALTER TABLE %1 DROP FOREIGN KEY %2"},
}};

/// The row of a dialect, or null when it is unknown.
constexpr const Row* find(int id) noexcept {
  return id >= 0 && static_cast<std::size_t>(id) < rows.size() ? &rows[static_cast<std::size_t>(id)] : nullptr;
}

/// What Oracle alone has: a conversion with a format, and a function that an installation may have created.
struct OracleMoments {
  const char* use_cast;        ///< the word that asks for a plain cast
  const char* use_de_to_date;  ///< the word that asks for the installation's function
  const char* de_to_date;      ///< `%1` through the installation's function
  const char* to_date;         ///< `%1` by the format `%2`
  const char* default_format;
  const char* de_to_date_probe;  ///< runs only where the installation's function exists
};

inline constexpr OracleMoments oracle_moments{
    "use cast",          "use de_to_date",        "DE_TO_DATE(%1)",
    "TO_DATE(%1, '%2')", "YYYY-MM-DD HH24:MI:SS", "select de_to_date('2019-01-01 00:00:00') from dual",
};

}  // namespace dialect
