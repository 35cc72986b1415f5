#include <algorithm>
#include <cmath>

#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/database/moment_text.h"
#include "spcbase/platform/database/sqlite_connection.h"
#include "spcbase/platform/database/value_text.h"

namespace spcdb {
namespace {

std::string_view stored_text(sqlite3_value* stored) noexcept {
  const void* bytes = sqlite3_value_text(stored);
  const int length = sqlite3_value_bytes(stored);
  return {length == 0 ? "" : static_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}

}  // namespace

SqliteStatement::SqliteStatement(SqliteSession& session, sqlite3_stmt* statement)
    : session_(session),
      plain_(statement),
      statement_(statement),
      parameter_count_(sqlite3_bind_parameter_count(statement)),
      columns_(static_cast<unsigned>(sqlite3_column_count(statement))),
      writes_(sqlite3_stmt_readonly(statement) == 0),
      value_(session) {}

SqliteStatement::~SqliteStatement() {
  value_.close();
  session_.gate().release("sqlite3_finalize");
  sqlite3_finalize(plain_);
}

void SqliteStatement::bind_columns(std::span<const ColumnBinding> columns) {
  close();
  if (columns.size() > static_cast<std::size_t>(sqlite3_column_count(plain_)))
    raise(AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH, "07009",
          "The result has " + std::to_string(sqlite3_column_count(plain_)) + " columns, " +
              std::to_string(columns.size()) + " are wanted.");
  widths_.resize(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i)
    widths_[i] = columns[i].kind == ValueKind::text    ? columns[i].width_chars
                 : columns[i].kind == ValueKind::bytes ? columns[i].size_bytes
                                                       : 0;
  choose_form(columns);
}

void SqliteStatement::execute(std::span<const Parameter> parameters) {
  close();
  rows_affected_ = -1;
  if (parameters.size() != static_cast<std::size_t>(parameter_count_))
    raise(AFX_SQL_ERROR_PARAMETER_COUNT, "07002",
          "The statement has " + std::to_string(parameter_count_) + " parameters, " +
              std::to_string(parameters.size()) + " values were given.");
  if (writes_in_pieces(parameters)) return execute_in_pieces(parameters);
  for (int i = 0; i < parameter_count_; ++i)
    bind(i + 1, parameters[static_cast<std::size_t>(i)]);
  const auto changes_before = writes_ ? sqlite3_total_changes64(session_.db()) : 0;
  const bool has_row = step();
  // SQLite prepares anew at the first step when a table has changed.
  if (has_row) columns_ = columns_now();
  state_ = has_row ? State::first_row : State::at_end;
  // A statement that changed nothing leaves the count of the one before it in place.
  if (writes_)
    rows_affected_ = sqlite3_total_changes64(session_.db()) == changes_before ? 0 : sqlite3_changes64(session_.db());
}

unsigned SqliteStatement::columns_now() const {
  const auto added = std::count_if(long_columns_.begin(), long_columns_.end(),
                                   [](const SqliteLongColumn& column) { return column.row_id_at >= 0; });
  return static_cast<unsigned>(sqlite3_data_count(statement_) - 2 * static_cast<int>(added));
}

bool SqliteStatement::fetch() {
  value_.close();
  switch (state_) {
    case State::row:
      if (step()) return true;
      state_ = State::at_end;
      return false;
    case State::first_row:
      state_ = State::row;
      return true;
    case State::closed:
    case State::at_end:
      break;
  }
  return false;
}

void SqliteStatement::close() noexcept {
  value_.close();
  if (state_ == State::first_row || state_ == State::row) {
    session_.gate().release("sqlite3_reset");
    sqlite3_reset(statement_);
  }
  state_ = State::closed;
}

bool SqliteStatement::step() {
  if (session_.gate().refused("sqlite3_step")) fail_step(session_.gate().refusal());
  session_.arm_timeout();
  const int code = sqlite3_step(statement_);
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) fail_step(session_.diagnose(code));
  // Gives locks and the snapshot back at once, not at the next use.
  sqlite3_reset(statement_);
  return false;
}

void SqliteStatement::fail_step(const Diagnostic& diagnostic) {
  sqlite3_reset(statement_);
  state_ = State::closed;
  raise(diagnostic);
}

void SqliteStatement::bind(int position, const Parameter& parameter) {
  if (session_.gate().refused("sqlite3_bind")) raise(session_.gate().refusal());
  int code = SQLITE_OK;
  if (parameter.is_null) {
    code = sqlite3_bind_null(statement_, position);
  } else {
    switch (parameter.kind) {
      case ValueKind::integer:
        code = sqlite3_bind_int64(statement_, position, parameter.integer);
        break;
      case ValueKind::real:
        // SQLite would store a null in its place.
        if (std::isnan(parameter.real)) refuse_nan();
        code = sqlite3_bind_double(statement_, position, parameter.real);
        break;
      case ValueKind::text:
        code = bind_text(position, parameter.text);
        break;
      case ValueKind::moment:
        code = bind_moment(position, parameter.moment);
        break;
      case ValueKind::bytes:
      case ValueKind::long_bytes:
        code = bind_bytes(position, parameter);
        break;
    }
  }
  if (code != SQLITE_OK) raise(session_.diagnose(code));
}

int SqliteStatement::bind_text(int position, std::string_view text) {
  // While rows are read SQLite goes on referring to the parameters, and the caller's text may be gone by then.
  if (columns_ != 0) {
    kept_texts_.resize(static_cast<std::size_t>(parameter_count_));
    auto& kept = kept_texts_[static_cast<std::size_t>(position - 1)];
    kept.assign(text);
    text = kept;
  }
  const char* bytes = text.data() != nullptr ? text.data() : "";
  return sqlite3_bind_text64(statement_, position, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

int SqliteStatement::bind_moment(int position, const TIMESTAMP_STRUCT& moment) {
  if (!is_moment(moment)) refuse_moment();
  const auto text = format_moment(moment);
  kept_texts_.resize(static_cast<std::size_t>(parameter_count_));
  auto& kept = kept_texts_[static_cast<std::size_t>(position - 1)];
  kept.assign(text.data(), text.size());
  return sqlite3_bind_text64(statement_, position, kept.data(), kept.size(), SQLITE_STATIC, SQLITE_UTF8);
}

sqlite3_value* SqliteStatement::value_at(unsigned column) const {
  if (state_ != State::row || column >= columns_) [[unlikely]]
    refuse_column(column);
  // Only one thread uses the connection, so the value may be looked at without SQLite's lock.
  return sqlite3_column_value(statement_, static_cast<int>(column));
}

void SqliteStatement::refuse_column(unsigned column) const {
  if (state_ != State::row) raise(AFX_SQL_ERROR_NO_CURRENT_RECORD, "24000", "There is no current row.");
  raise(
      AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH, "07009",
      "The row has " + std::to_string(columns_) + " columns; column " + std::to_string(column + 1) + " was asked for.");
}

bool SqliteStatement::integer(unsigned column, std::int64_t& value) {
  auto whole = Whole::yes;
  sqlite3_value* const stored = value_at(column);
  switch (sqlite3_value_type(stored)) {
    case SQLITE_INTEGER:
      value = sqlite3_value_int64(stored);
      return true;
    case SQLITE_NULL:
      return false;
    case SQLITE_FLOAT:
      whole = read_whole(sqlite3_value_double(stored), value);
      break;
    case SQLITE_TEXT:
      whole = read_whole(stored_text(stored), value);
      break;
    default:
      whole = Whole::no_whole_number;
  }
  if (whole != Whole::yes) refuse_whole(name_of(column), whole);
  return true;
}

bool SqliteStatement::real(unsigned column, double& value) {
  sqlite3_value* const stored = value_at(column);
  switch (sqlite3_value_type(stored)) {
    case SQLITE_FLOAT:
    case SQLITE_INTEGER:
      value = sqlite3_value_double(stored);
      return true;
    case SQLITE_NULL:
      return false;
    case SQLITE_TEXT:
      if (read_real(stored_text(stored), value)) return true;
      [[fallthrough]];
    default:
      refuse_value(name_of(column), "22018", "a number");
  }
}

bool SqliteStatement::text(unsigned column, std::string_view& value) {
  sqlite3_value* const stored = value_at(column);
  const int type = sqlite3_value_type(stored);
  if (type == SQLITE_NULL) return false;
  const auto read = type == SQLITE_TEXT || type == SQLITE_BLOB ? stored_text(stored) : number_text(column, stored);
  const int width = column < widths_.size() ? widths_[column] : 0;
  if (width > 0 && is_wider(read, width)) refuse_width(name_of(column), width);
  value = read;
  return true;
}

std::string_view SqliteStatement::number_text(unsigned column, sqlite3_value* stored) {
  // SQLite's own conversion keeps 15 digits.
  if (number_texts_.size() < columns_) number_texts_.resize(columns_);
  auto& text = number_texts_[column];
  if (sqlite3_value_type(stored) == SQLITE_INTEGER)
    write_number(text, std::int64_t{sqlite3_value_int64(stored)});
  else
    write_number(text, sqlite3_value_double(stored));
  return text;
}

bool SqliteStatement::moment(unsigned column, TIMESTAMP_STRUCT& value) {
  sqlite3_value* const stored = value_at(column);
  const int type = sqlite3_value_type(stored);
  if (type == SQLITE_NULL) return false;
  if (type != SQLITE_TEXT || !parse_moment(stored_text(stored), value))
    refuse_value(name_of(column), "22007", "a moment");
  return true;
}

std::string SqliteStatement::name_of(unsigned column) const {
  const char* name = sqlite3_column_name(plain_, static_cast<int>(column));
  return name != nullptr ? name : "?";
}

ColumnInfo SqliteStatement::describe(unsigned column) {
  const int index = static_cast<int>(column);
  if (column >= static_cast<unsigned>(sqlite3_column_count(plain_)))
    raise(AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH, "07009", "The statement has no such column.");
  if (session_.gate().refused("sqlite3_column_decltype")) raise(session_.gate().refusal());
  ColumnInfo info;
  info.name = name_of(column);
  const char* declared = sqlite3_column_decltype(plain_, index);
  describe_sqlite_type(declared != nullptr ? declared : "", info);
  const char* table = sqlite3_column_table_name(plain_, index);
  const char* origin = sqlite3_column_origin_name(plain_, index);
  int not_null = 0;
  if (table != nullptr && origin != nullptr &&
      sqlite3_table_column_metadata(session_.db(), sqlite3_column_database_name(plain_, index), table, origin, nullptr,
                                    nullptr, &not_null, nullptr, nullptr) == SQLITE_OK)
    info.nullability = not_null != 0 ? 0 : 1;
  return info;
}

}  // namespace spcdb
