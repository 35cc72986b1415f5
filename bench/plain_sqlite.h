/// The plain side on SQLite: sqlite3 calls and nothing else, statements prepared once and kept.
///
/// What runs while the clock does is inline, so that a job written against this class is the C program one would write
/// by hand. plain_odbc.h has the same operations; a job's plain side is written once, as a template.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/plain_moment.h"
#include "bench/tally.h"

namespace bench {

/// One prepared statement. Positions count from 0.
class PlainSqliteStatement {
 public:
  /// `counted_as` is the text under which it is counted.
  PlainSqliteStatement(sqlite3* db, const std::string& sql, const std::string& counted_as);
  ~PlainSqliteStatement() { sqlite3_finalize(statement_); }
  PlainSqliteStatement(const PlainSqliteStatement&) = delete;
  PlainSqliteStatement& operator=(const PlainSqliteStatement&) = delete;

  void set_number(int position, int value) { check(sqlite3_bind_int(statement_, position + 1, value)); }
  void set_real(int position, double value) { check(sqlite3_bind_double(statement_, position + 1, value)); }
  /// The text must live until the statement was executed.
  void set_text(int position, const std::string& value) {
    check(sqlite3_bind_text(statement_, position + 1, value.data(), static_cast<int>(value.size()), SQLITE_STATIC));
  }
  void set_moment(int position, const Moment& value);
  /// The bytes must live until the statement was executed.
  void set_bytes(int position, const std::string& value) {
    check(sqlite3_bind_blob64(statement_, position + 1, value.data(), value.size(), SQLITE_STATIC));
  }
  void set_zeros(int position, std::size_t count) { check(sqlite3_bind_zeroblob64(statement_, position + 1, count)); }
  void set_null(int position) { check(sqlite3_bind_null(statement_, position + 1)); }

  /// Executes a query and steps to its first row; false when there is none.
  bool query() {
    ++sent_;
    return step();
  }
  /// Steps to the next row.
  bool next() { return step(); }
  /// Ends a query.
  void close() { sqlite3_reset(statement_); }
  /// Executes a statement without rows.
  void write() {
    ++sent_;
    step();
    sqlite3_reset(statement_);
  }

  int number_at(int column) { return sqlite3_column_int(statement_, column); }
  double real_at(int column) { return sqlite3_column_double(statement_, column); }
  bool is_null_at(int column) { return sqlite3_column_type(statement_, column) == SQLITE_NULL; }
  Moment moment_at(int column);
  void text_at(int column, std::string& value) { bytes_at(column, value); }
  void bytes_at(int column, std::string& value) {
    const void* bytes = sqlite3_column_blob(statement_, column);
    value.assign(static_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_column_bytes(statement_, column)));
  }

  const std::string& text() const { return text_; }
  long sent() const { return sent_; }

 private:
  bool step() {
    const int result = sqlite3_step(statement_);
    if (result == SQLITE_ROW) return true;
    if (result != SQLITE_DONE) fail();
    return false;
  }
  void check(int result) {
    if (result != SQLITE_OK) fail();
  }
  [[noreturn]] void fail() const;

  sqlite3* db_;
  sqlite3_stmt* statement_ = nullptr;
  std::string text_;
  long sent_ = 0;
};

/// A connection with its prepared statements.
class PlainSqlite {
 public:
  using Statement = PlainSqliteStatement;

  /// Opens a file with the settings that the library uses: write-ahead log, synchronous NORMAL, foreign keys.
  explicit PlainSqlite(const std::string& file);
  ~PlainSqlite();
  PlainSqlite(const PlainSqlite&) = delete;
  PlainSqlite& operator=(const PlainSqlite&) = delete;

  /// Prepares a statement for the life of the connection. The kinds of parameters and columns and the size of blocks
  /// are for the other server.
  Statement& prepare(const std::string& sql, const char* parameter_kinds = "", const char* column_kinds = "",
                     int block_rows = 1);
  /// Prepares a query whose last column is a long value to be streamed. sqlite3 is asked for its row id in place of the
  /// value, which the query itself would read whole else.
  Statement& prepare_long(const std::string& sql, const LongColumn& from, const char* parameter_kinds,
                          const char* column_kinds);
  void begin();
  void commit();
  /// Executes an INSERT whose parameter at `position` is a long value, streamed.
  void insert_long(Statement& insert, int position, const LongColumn& from, const std::string& value);
  /// Streams the long value in the last column of the current row.
  void read_long(Statement& row, int column, const LongColumn& from, std::string& value);
  /// Runs statements once, outside of what is measured.
  void run(const std::string& sql);
  /// What was sent so far.
  Tally tally() const;

 private:
  sqlite3_blob* open_long(const LongColumn& from, sqlite3_int64 row_id, bool to_write);

  sqlite3* db_ = nullptr;
  std::vector<std::unique_ptr<Statement>> statements_;
  std::unique_ptr<Statement> begin_;
  std::unique_ptr<Statement> commit_;
};

}  // namespace bench
