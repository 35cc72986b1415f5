#include "bench/plain_odbc.h"

#include <algorithm>

#include "spcbase/testkit/raw_odbc.h"

namespace bench {
namespace {

SQLCHAR* writable(const std::string& text) {
  return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str()));  // ODBC takes texts to read as writable
}

SQLPOINTER as_pointer(SQLULEN value) {
  return reinterpret_cast<SQLPOINTER>(value);  // NOLINT(performance-no-int-to-ptr): ODBC's way
}

}  // namespace

PlainOdbcStatement::Buffer PlainOdbcStatement::buffer_of(char kind, int rows) {
  Buffer buffer;
  switch (kind) {
    case 'i':
      buffer = {SQL_C_SLONG, SQL_INTEGER, 0, 0, sizeof(SQLINTEGER), {}, {}};
      break;
    case 'd':
      buffer = {SQL_C_DOUBLE, SQL_DOUBLE, 0, 0, sizeof(double), {}, {}};
      break;
    case 't':
      buffer = {SQL_C_CHAR, SQL_VARCHAR, 255, 0, 256, {}, {}};
      break;
    case 'T':
      buffer = {SQL_C_CHAR, SQL_VARCHAR, 4000, 0, 4001, {}, {}};
      break;
    case 'b':  // bound to the caller's bytes
      buffer = {SQL_C_BINARY, SQL_LONGVARBINARY, 1, 0, 0, {}, {}};
      break;
    case 'm':
      buffer = {SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, 23, 3, sizeof(SQL_TIMESTAMP_STRUCT), {}, {}};
      break;
    default:
      throw std::logic_error(std::string("no such kind of value: ") + kind);
  }
  buffer.bytes.resize(buffer.width * static_cast<std::size_t>(rows));
  buffer.indicators.resize(static_cast<std::size_t>(rows));
  return buffer;
}

PlainOdbcStatement::PlainOdbcStatement(SQLHDBC connection, const std::string& sql, const std::string& parameter_kinds,
                                       const std::string& column_kinds, int block_rows)
    : text_(sql) {
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection, &statement_)))
    throw std::runtime_error(test_support::odbc_diagnostic(SQL_HANDLE_DBC, connection));
  check(SQLPrepare(statement_, writable(sql), SQL_NTS));
  for (const char kind : parameter_kinds)
    parameters_.push_back(buffer_of(kind, 1));
  for (std::size_t i = 0; i < parameters_.size(); ++i)
    bind_parameter(i);
  for (const char kind : column_kinds)
    columns_.push_back(buffer_of(kind, block_rows));
  if (columns_.empty()) return;
  check(SQLSetStmtAttr(statement_, SQL_ATTR_ROW_ARRAY_SIZE, as_pointer(static_cast<SQLULEN>(block_rows)), 0));
  check(SQLSetStmtAttr(statement_, SQL_ATTR_ROWS_FETCHED_PTR, &fetched_, 0));
  for (std::size_t i = 0; i < columns_.size(); ++i)
    bind_column(i);
}

void PlainOdbcStatement::bind_parameter(std::size_t position) {
  auto& buffer = parameters_[position];
  check(SQLBindParameter(statement_, static_cast<SQLUSMALLINT>(position + 1), SQL_PARAM_INPUT, buffer.c_type,
                         buffer.sql_type, buffer.size, buffer.scale, buffer.bytes.data(),
                         static_cast<SQLLEN>(buffer.width), buffer.indicators.data()));
}

void PlainOdbcStatement::bind_column(std::size_t position) {
  auto& buffer = columns_[position];
  check(SQLBindCol(statement_, static_cast<SQLUSMALLINT>(position + 1), buffer.c_type, buffer.bytes.data(),
                   static_cast<SQLLEN>(buffer.width), buffer.indicators.data()));
}

void PlainOdbcStatement::set_moment(int position, const Moment& value) {
  const SQL_TIMESTAMP_STRUCT moment{static_cast<SQLSMALLINT>(value.year),
                                    static_cast<SQLUSMALLINT>(value.month),
                                    static_cast<SQLUSMALLINT>(value.day),
                                    static_cast<SQLUSMALLINT>(value.hour),
                                    static_cast<SQLUSMALLINT>(value.minute),
                                    static_cast<SQLUSMALLINT>(value.second),
                                    static_cast<SQLUINTEGER>(value.millisecond) * 1'000'000U};
  put(parameter(position), &moment, sizeof moment, 0);
}

void PlainOdbcStatement::bind_bytes(int position, const std::string& value, SQLLEN indicator) {
  Buffer& buffer = parameter(position);
  buffer.indicators[0] = indicator;
  check(SQLBindParameter(statement_, static_cast<SQLUSMALLINT>(position + 1), SQL_PARAM_INPUT, buffer.c_type,
                         buffer.sql_type, value.size(), 0, const_cast<char*>(value.data()),
                         static_cast<SQLLEN>(value.size()), buffer.indicators.data()));
}

void PlainOdbcStatement::write_long(int position, const std::string& value) {
  ++sent_;
  bind_bytes(position, value, SQL_LEN_DATA_AT_EXEC(static_cast<SQLLEN>(value.size())));
  if (SQLExecute(statement_) != SQL_NEED_DATA) fail();
  SQLPOINTER wanted = nullptr;
  if (SQLParamData(statement_, &wanted) != SQL_NEED_DATA) fail();
  for (std::size_t at = 0; at < value.size(); at += long_piece)
    check(SQLPutData(statement_, const_cast<char*>(value.data()) + at,
                     static_cast<SQLLEN>(std::min(long_piece, value.size() - at))));
  check(SQLParamData(statement_, &wanted));
}

void PlainOdbcStatement::bytes_at(int column, std::string& value) {
  const auto position = static_cast<SQLUSMALLINT>(column + 1);
  char nothing = 0;
  SQLLEN length = 0;
  check(SQLGetData(statement_, position, SQL_C_BINARY, &nothing, 0, &length));
  value.resize(static_cast<std::size_t>(length));
  SQLLEN left = 0;
  for (std::size_t at = 0; at < value.size(); at += long_piece)
    check(SQLGetData(statement_, position, SQL_C_BINARY, value.data() + at,
                     static_cast<SQLLEN>(std::min(long_piece, value.size() - at)), &left));
}

Moment PlainOdbcStatement::moment_at(int column) {
  const auto moment = value_at<SQL_TIMESTAMP_STRUCT>(column);
  return {moment.year,
          moment.month,
          moment.day,
          moment.hour,
          moment.minute,
          moment.second,
          static_cast<int>(moment.fraction / 1'000'000U)};
}

void PlainOdbcStatement::fail() const {
  throw std::runtime_error(test_support::odbc_diagnostic(SQL_HANDLE_STMT, statement_) + " in: " + text_);
}

PlainOdbc::PlainOdbc(const std::string& connect_text) {
  SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_);
  SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, as_pointer(SQL_OV_ODBC3), 0);
  SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_);
  check(SQLDriverConnect(connection_, nullptr, writable(connect_text), SQL_NTS, nullptr, 0, nullptr,
                         SQL_DRIVER_NOPROMPT));
}

PlainOdbc::~PlainOdbc() {
  statements_.clear();
  SQLDisconnect(connection_);
  SQLFreeHandle(SQL_HANDLE_DBC, connection_);
  SQLFreeHandle(SQL_HANDLE_ENV, environment_);
}

void PlainOdbc::check(SQLRETURN result) {
  if (!SQL_SUCCEEDED(result)) throw std::runtime_error(test_support::odbc_diagnostic(SQL_HANDLE_DBC, connection_));
}

PlainOdbc::Statement& PlainOdbc::prepare(const std::string& sql, const char* parameter_kinds, const char* column_kinds,
                                         int block_rows) {
  return *statements_.emplace_back(
      std::make_unique<Statement>(connection_, sql, parameter_kinds, column_kinds, block_rows));
}

void PlainOdbc::set_autocommit(bool on) {
  check(
      SQLSetConnectAttr(connection_, SQL_ATTR_AUTOCOMMIT, as_pointer(on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF), 0));
}

void PlainOdbc::begin() {
  ++begun_;
  set_autocommit(false);
}

void PlainOdbc::commit() {
  ++committed_;
  check(SQLEndTran(SQL_HANDLE_DBC, connection_, SQL_COMMIT));
  set_autocommit(true);
}

void PlainOdbc::run(const std::string& sql) {
  SQLHSTMT statement = SQL_NULL_HSTMT;
  check(SQLAllocHandle(SQL_HANDLE_STMT, connection_, &statement));
  const SQLRETURN result = SQLExecDirect(statement, writable(sql), SQL_NTS);
  const bool done = SQL_SUCCEEDED(result) || result == SQL_NO_DATA;
  const std::string why =
      done ? std::string() : test_support::odbc_diagnostic(SQL_HANDLE_STMT, statement) + " in: " + sql;
  SQLFreeHandle(SQL_HANDLE_STMT, statement);
  if (!done) throw std::runtime_error(why);
}

Tally PlainOdbc::tally() const {
  Tally tally;
  for (const auto& statement : statements_)
    if (statement->sent() != 0) tally[shape_of(statement->text())] += statement->sent();
  if (begun_ != 0) tally["BEGIN"] = begun_;
  if (committed_ != 0) tally["COMMIT"] = committed_;
  return tally;
}

}  // namespace bench
