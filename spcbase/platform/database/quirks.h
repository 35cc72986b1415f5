/// The named facts in which servers and drivers differ, found once after connecting.
///
/// Part of the database platform layer. Whatever behaves by driver asks one of these fields; the table that fills them
/// is in quirks.cpp, one line a fact, with the driver and version on which it was seen.
#pragma once

#include <string>
#include <string_view>

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
  /// The quote characters are these whatever the driver says.
  bool fixed_quotes = false;
  /// An UPDATE that finds a row but changes nothing reports 0 rows: 0 wants a second look.
  bool counts_changed_rows_only = false;
  /// A backslash inside a text literal escapes the next character.
  bool backslash_escapes = false;
  /// Doubles lose digits on their way out and are fetched through this expression; empty: exact. Each "%s" in it stands
  /// for the column, every other percent sign for itself.
  std::string double_expression;
  /// Values are fetched as texts and converted here, since the driver converts what does not fit without a word.
  bool fetch_as_text = false;
  /// A forward-only read takes constant memory; else the driver holds the whole result.
  bool streams_forward = true;
  /// Names without quotes are stored in lower case, and the catalogue wants them so.
  bool folds_names_to_lower = false;
  /// A text may hold several statements and the server would run them all.
  bool runs_several_statements = false;
  /// Sets the longest time of a statement where the driver's own attribute does nothing, "%s" being the seconds.
  std::string timeout_statement;
  /// {ts '...'} and its kin are understood by the driver.
  bool odbc_escapes = true;
  /// The size that the driver reports for a column of bytes says nothing: it counts as unknown.
  bool blob_sizes_unknown = false;
  OneRow one_row = OneRow::none;
};

/// The facts of a server that is reached through ODBC, by the names that its driver gives. The quote characters
/// and, where `backslash_escapes` is set, whether they do so now, depend on a server's settings: the session asks.
/// For the layer's own use: not exported.
Quirks quirks_of(std::string_view dbms_name, std::string_view driver_name);

}  // namespace spcdb
