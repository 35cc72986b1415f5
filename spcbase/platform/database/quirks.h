/// The named facts in which servers and drivers differ, found once after connecting.
///
/// Part of the database platform layer. Whatever behaves by driver asks one of these fields; the table that fills them
/// is in quirks.cpp, one line a fact, with the driver and version on which it was seen.
#pragma once

#include <string>

namespace spcdb {

/// How a statement is made to hit one of several equal rows.
enum class OneRow : unsigned char {
  none,    ///< the server has no way: equal rows are a failure
  limit,   ///< UPDATE ... LIMIT 1
  rowid,   ///< WHERE rowid = (SELECT rowid FROM t WHERE ... LIMIT 1)
  ctid,    ///< WHERE ctid = (SELECT ctid FROM t WHERE ... LIMIT 1)
  top,     ///< UPDATE TOP (1) t ...
  rownum,  ///< ... AND ROWNUM <= 1
};

/// The facts of one connection. The defaults are a server that keeps to the standard.
struct Quirks {
  char quote_open = '"';   ///< stands for '[' in a name
  char quote_close = '"';  ///< stands for ']' in a name
  /// An UPDATE that finds a row but changes nothing reports 0 rows: 0 wants a second look.
  bool counts_changed_rows_only = false;
  /// A backslash inside a text literal escapes the next character.
  bool backslash_escapes = false;
  /// Doubles lose digits on their way out and are fetched through this expression, %s being the column; empty: exact.
  std::string double_expression;
  /// A forward-only read needs the driver to stream or else holds the whole result in memory.
  bool streams_forward = true;
  /// {ts '...'} and its kin are understood by the driver.
  bool odbc_escapes = true;
  OneRow one_row = OneRow::none;
};

}  // namespace spcdb
