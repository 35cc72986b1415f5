/// The plain side through ODBC: parameters and columns bound once, statements prepared once and kept.
///
/// The same operations as plain_sqlite.h. Kinds are letters, one for each parameter or column: i a whole number of 32
/// bits, d a double, t a text of up to 255 bytes, m a moment.
#pragma once

// The ODBC headers come before every other of the platform layer.
#include "spcbase/platform/database/odbc_api.h"

#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/plain_moment.h"
#include "bench/tally.h"

namespace bench {

/// One prepared statement. Positions count from 0.
class PlainOdbcStatement {
 public:
  PlainOdbcStatement(SQLHDBC connection, const std::string& sql, const std::string& parameter_kinds,
                     const std::string& column_kinds, int block_rows);
  ~PlainOdbcStatement() { SQLFreeHandle(SQL_HANDLE_STMT, statement_); }
  PlainOdbcStatement(const PlainOdbcStatement&) = delete;
  PlainOdbcStatement& operator=(const PlainOdbcStatement&) = delete;

  void set_number(int position, int value) { put(parameter(position), &value, sizeof value, 0); }
  void set_real(int position, double value) { put(parameter(position), &value, sizeof value, 0); }
  void set_text(int position, const std::string& value) {
    put(parameter(position), value.data(), value.size(), static_cast<SQLLEN>(value.size()));
  }
  void set_moment(int position, const Moment& value);
  /// The bytes must live until the statement was executed.
  void set_bytes(int position, const std::string& value) { bind_bytes(position, value, SQLLEN(value.size())); }
  void set_null(int position) { parameter(position).indicators[0] = SQL_NULL_DATA; }

  /// Executes a query and steps to its first row; false when there is none.
  bool query() {
    ++sent_;
    check(SQLExecute(statement_));
    return fetch_block();
  }
  /// Steps to the next row.
  bool next() { return ++row_ < fetched_ || fetch_block(); }
  /// Ends a query.
  void close() { check(SQLFreeStmt(statement_, SQL_CLOSE)); }
  /// Executes a statement without rows.
  void write() {
    ++sent_;
    check(SQLExecute(statement_));
  }

  /// Executes a statement whose parameter at `position` is sent in pieces.
  void write_long(int position, const std::string& value);

  int number_at(int column) { return value_at<SQLINTEGER>(column); }
  double real_at(int column) { return value_at<double>(column); }
  bool is_null_at(int column) { return indicator_at(column) == SQL_NULL_DATA; }
  Moment moment_at(int column);
  void text_at(int column, std::string& value) {
    const Buffer& buffer = columns_[static_cast<std::size_t>(column)];
    value.assign(buffer.bytes.data() + row_ * buffer.width, static_cast<std::size_t>(buffer.indicators[row_]));
  }
  /// Of a column behind those that `column_kinds` names, in pieces.
  void bytes_at(int column, std::string& value);

  const std::string& text() const { return text_; }
  long sent() const { return sent_; }

 private:
  /// Memory that the driver reads from or writes to: one value for each row of a block.
  struct Buffer {
    SQLSMALLINT c_type = 0;
    SQLSMALLINT sql_type = 0;
    SQLULEN size = 0;
    SQLSMALLINT scale = 0;
    std::size_t width = 0;
    std::vector<char> bytes;
    std::vector<SQLLEN> indicators;
  };

  static Buffer buffer_of(char kind, int rows);
  void bind_parameter(std::size_t position);
  void bind_column(std::size_t position);
  void bind_bytes(int position, const std::string& value, SQLLEN indicator);
  Buffer& parameter(int position) { return parameters_[static_cast<std::size_t>(position)]; }
  static void put(Buffer& buffer, const void* value, std::size_t size, SQLLEN indicator) {
    std::memcpy(buffer.bytes.data(), value, size);
    buffer.indicators[0] = indicator;
  }
  SQLLEN indicator_at(int column) { return columns_[static_cast<std::size_t>(column)].indicators[row_]; }
  template <class Value>
  Value value_at(int column) {
    Value value;
    std::memcpy(&value, columns_[static_cast<std::size_t>(column)].bytes.data() + row_ * sizeof value, sizeof value);
    return value;
  }
  bool fetch_block() {
    row_ = 0;
    const SQLRETURN result = SQLFetch(statement_);
    if (result == SQL_NO_DATA) return false;
    check(result);
    return fetched_ != 0;
  }
  void check(SQLRETURN result) {
    if (!SQL_SUCCEEDED(result) && result != SQL_NO_DATA) fail();
  }
  [[noreturn]] void fail() const;

  SQLHSTMT statement_ = SQL_NULL_HSTMT;
  std::string text_;
  std::vector<Buffer> parameters_;
  std::vector<Buffer> columns_;
  SQLULEN fetched_ = 0;  ///< rows in the present block
  std::size_t row_ = 0;  ///< the current one
  long sent_ = 0;
};

/// A connection with its prepared statements.
class PlainOdbc {
 public:
  using Statement = PlainOdbcStatement;

  explicit PlainOdbc(const std::string& connect_text);
  ~PlainOdbc();
  PlainOdbc(const PlainOdbc&) = delete;
  PlainOdbc& operator=(const PlainOdbc&) = delete;

  /// Prepares a statement for the life of the connection; rows are fetched in blocks of `block_rows`.
  Statement& prepare(const std::string& sql, const char* parameter_kinds = "", const char* column_kinds = "",
                     int block_rows = 1);
  /// As PlainSqlite's.
  Statement& prepare_long(const std::string& sql, const LongColumn& /*from*/, const char* parameter_kinds,
                          const char* column_kinds) {
    return prepare(sql, parameter_kinds, column_kinds);
  }
  void begin();
  void commit();
  void insert_long(Statement& insert, int position, const LongColumn& /*from*/, const std::string& value) {
    insert.write_long(position, value);
  }
  void read_long(Statement& row, int column, const LongColumn& /*from*/, std::string& value) {
    row.bytes_at(column, value);
  }
  /// Runs one statement once, outside of what is measured.
  void run(const std::string& sql);
  /// What was sent so far.
  Tally tally() const;

 private:
  void set_autocommit(bool on);
  void check(SQLRETURN result);

  SQLHENV environment_ = SQL_NULL_HENV;
  SQLHDBC connection_ = SQL_NULL_HDBC;
  std::vector<std::unique_ptr<Statement>> statements_;
  long begun_ = 0;
  long committed_ = 0;
};

}  // namespace bench
