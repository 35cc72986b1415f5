#include "spcbase/platform/database/sqlite_long_data.h"

#include <algorithm>

#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/database/sql_scan.h"
#include "spcbase/platform/database/sqlite_connection.h"
#include "spcbase/platform/database/value_text.h"

namespace spcdb {
namespace {

/// A SELECT taken apart.
struct SelectParts {
  std::string_view head;  ///< the word and what stands before the first column
  std::vector<std::string_view> columns;
  std::string_view tail;  ///< from the word FROM on
};

/// Behind the token at `at`: a literal, a quoted name, a comment, a word or one character.
std::size_t token_end(std::string_view sql, std::size_t at) {
  if (scan::at_comment(sql, at)) return scan::comment_end(sql, at);
  const char c = sql[at];
  if (c == '\'') return scan::literal_end(sql, at);
  if (c == '[' || c == '"' || c == '`') return scan::name_end(sql, at);
  return scan::is_word(c) ? scan::word_end(sql, at) : at + 1;
}

std::size_t skip_blanks(std::string_view sql, std::size_t at) {
  while (at < sql.size() && (scan::is_space(sql[at]) || scan::at_comment(sql, at)))
    at = token_end(sql, at);
  return at;
}

std::optional<SelectParts> take_apart(std::string_view sql) {
  std::size_t at = skip_blanks(sql, 0);
  auto end = scan::word_end(sql, at);
  if (!scan::same_word(sql.substr(at, end - at), "SELECT")) return std::nullopt;
  at = skip_blanks(sql, end);
  SelectParts parts;
  parts.head = sql.substr(0, at);
  int depth = 0;
  for (std::size_t begin = at; at < sql.size(); at = end) {
    end = token_end(sql, at);
    const auto token = sql.substr(at, end - at);
    if (token == "(") ++depth;
    if (token == ")") --depth;
    if (depth != 0) continue;
    const bool is_from = scan::same_word(token, "FROM");
    if (token != "," && !is_from) continue;
    parts.columns.push_back(sql.substr(begin, at - begin));
    begin = end;
    if (!is_from) continue;
    parts.tail = sql.substr(at);
    return parts;
  }
  return std::nullopt;
}

bool same_name(std::string_view a, std::string_view b) {
  return a.size() == b.size() && sqlite3_strnicmp(a.data(), b.data(), static_cast<int>(a.size())) == 0;
}

/// Whether the row id of this table, by this name, is that of the row from which the column comes: the table stands in
/// the statement once, and rows are neither merged nor united.
bool names_table_once(const SelectParts& parts, std::string_view table) {
  int times = 0;
  for (std::size_t at = 0, end = 0; at < parts.tail.size(); at = end) {
    end = token_end(parts.tail, at);
    const auto token = parts.tail.substr(at, end - at);
    if (!scan::is_word(token.front()) && token.front() != '`' && token.front() != '"' && token.front() != '[') continue;
    for (const char* word : {"UNION", "GROUP", "EXCEPT", "INTERSECT"})
      if (scan::same_word(token, word)) return false;
    const auto next = skip_blanks(parts.tail, end);
    const bool qualifies = next < parts.tail.size() && parts.tail[next] == '.';
    if (!qualifies && same_name(bare_name_of(token), table)) ++times;
  }
  const auto first = parts.columns.front();
  return times == 1 && !scan::same_word(first.substr(0, scan::word_end(first, 0)), "DISTINCT");
}

std::string text_or_empty(const char* text) { return text != nullptr ? text : ""; }

SqliteOrigin origin_of(sqlite3_stmt* statement, int column) {
  return {text_or_empty(sqlite3_column_database_name(statement, column)),
          text_or_empty(sqlite3_column_table_name(statement, column)),
          text_or_empty(sqlite3_column_origin_name(statement, column))};
}

std::string quoted(std::string_view name) {
  std::string text = "`";
  for (const char c : name)
    text.append(c == '`' ? 2U : 1U, c);
  return text + '`';
}

/// Null when SQLite does not take it, which the statement as it was given then stands in for.
SqliteHandle prepared(SqliteSession& session, const std::string& sql) {
  if (session.gate().refused("sqlite3_prepare_v3")) raise(session.gate().refusal());
  sqlite3_stmt* statement = nullptr;
  const int code = sqlite3_prepare_v3(session.db(), sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                                      &statement, nullptr);
  if (code != SQLITE_OK) session.gate().release("sqlite3_finalize");
  return SqliteHandle(code == SQLITE_OK ? statement : nullptr, SqliteFinalizer{&session});
}

}  // namespace

std::string bare_name_of(std::string_view name) {
  std::string bare;
  for (std::size_t at = 0; at < name.size();) {
    const char c = name[at];
    if (c == '.') {
      bare.clear();
      ++at;
    } else if (c == '[' || c == '"' || c == '`') {
      const auto end = scan::name_end(name, at);
      bare.append(name, at + 1, end - at - 2);
      at = end;
    } else {
      bare += c;
      ++at;
    }
  }
  return bare;
}

void SqliteFinalizer::operator()(sqlite3_stmt* statement) const noexcept {
  session->gate().release("sqlite3_finalize");
  sqlite3_finalize(statement);
}

SqliteHandle part_select(SqliteSession& session, sqlite3_stmt* plain, std::vector<SqliteLongColumn>& columns) {
  const auto parts = take_apart(sqlite3_sql(plain));
  const int plain_count = sqlite3_column_count(plain);
  if (!parts || parts->columns.size() != static_cast<std::size_t>(plain_count)) return nullptr;
  std::vector<std::string> items(parts->columns.begin(), parts->columns.end());
  int next = plain_count;
  for (auto& column : columns) {
    column.origin = origin_of(plain, static_cast<int>(column.position));
    if (column.origin.table.empty() || !names_table_once(*parts, column.origin.table)) continue;
    const std::string item(parts->columns[column.position]);
    column.kind_at = next++;
    column.row_id_at = next++;
    items[column.position] =
        " CASE WHEN length(" + item + ")<=" + std::to_string(long_piece_bytes) + " THEN " + item + " END ";
    items.push_back("typeof(" + item + ")");
    items.push_back(quoted(column.origin.table) + ".rowid ");
  }
  std::string sql(parts->head);
  for (std::size_t i = 0; i < items.size(); ++i)
    sql.append(i == 0 ? "" : ",").append(items[i]);
  auto parted = next > plain_count ? prepared(session, sql.append(parts->tail)) : nullptr;
  const bool usable =
      parted != nullptr && std::all_of(columns.begin(), columns.end(), [&](const auto& column) {
        return column.row_id_at < 0 || origin_of(parted.get(), column.row_id_at).table == column.origin.table;
      });
  if (usable) return parted;
  for (auto& column : columns)
    column.kind_at = column.row_id_at = -1;
  return nullptr;
}

SqliteHandle with_row_ids(SqliteSession& session, sqlite3_stmt* plain, const Parameter& target) {
  // A view has no row ids of its own, and no values that could be opened.
  const auto table = bare_name_of(target.table);
  const auto column = bare_name_of(target.column);
  const bool is_stored = !table.empty() && !column.empty() &&
                         sqlite3_table_column_metadata(session.db(), nullptr, table.c_str(), column.c_str(), nullptr,
                                                       nullptr, nullptr, nullptr, nullptr) == SQLITE_OK;
  return is_stored ? prepared(session, std::string(sqlite3_sql(plain)) + " RETURNING rowid") : nullptr;
}

void SqliteValue::open(const SqliteOrigin& origin, sqlite3_int64 row_id, bool for_writing) {
  close();
  if (session_.gate().refused("sqlite3_blob_open")) raise(session_.gate().refusal());
  const int code = sqlite3_blob_open(session_.db(), origin.database.empty() ? "main" : origin.database.c_str(),
                                     origin.table.c_str(), origin.column.c_str(), row_id, for_writing ? 1 : 0, &blob_);
  if (code == SQLITE_OK) return;
  const auto diagnostic = session_.diagnose(code);
  close();
  raise(diagnostic);
}

void SqliteValue::close() noexcept {
  if (blob_ == nullptr) return;
  session_.gate().release("sqlite3_blob_close");
  sqlite3_blob_close(blob_);
  blob_ = nullptr;
}

void SqliteValue::read(std::size_t offset, std::span<std::byte> piece) {
  if (session_.gate().refused("sqlite3_blob_read")) raise(session_.gate().refusal());
  const int code = sqlite3_blob_read(blob_, piece.data(), static_cast<int>(piece.size()), static_cast<int>(offset));
  if (code != SQLITE_OK) raise(session_.diagnose(code));
}

void SqliteValue::write(std::size_t offset, std::string_view piece) {
  if (session_.gate().refused("sqlite3_blob_write")) raise(session_.gate().refusal());
  const int code = sqlite3_blob_write(blob_, piece.data(), static_cast<int>(piece.size()), static_cast<int>(offset));
  if (code != SQLITE_OK) raise(session_.diagnose(code));
}

// The statement's side.

bool SqliteStatement::bytes(unsigned column, std::string_view& value) {
  sqlite3_value* const stored = value_at(column);
  if (sqlite3_value_type(stored) == SQLITE_NULL) return false;
  const void* data = sqlite3_value_blob(stored);
  const auto size = static_cast<std::size_t>(sqlite3_value_bytes(stored));
  const int room = column < widths_.size() ? widths_[column] : 0;
  if (room > 0 && size > static_cast<std::size_t>(room)) refuse_size(name_of(column), size, room);
  value = {size == 0 ? "" : static_cast<const char*>(data), size};
  return true;
}

/// Chooses between the statement as it was given and its parted form.
void SqliteStatement::choose_form(std::span<const ColumnBinding> columns) {
  long_columns_.clear();
  for (unsigned i = 0; i < columns.size(); ++i) {
    if (columns[i].kind != ValueKind::long_bytes) continue;
    long_columns_.emplace_back();
    long_columns_.back().position = i;
  }
  statement_ = plain_;
  if (long_columns_.empty()) return;
  parted_ = part_select(session_, plain_, long_columns_);
  if (parted_ != nullptr) statement_ = parted_.get();
}

SqliteLongColumn& SqliteStatement::long_column(unsigned column) {
  for (auto& one : long_columns_)
    if (one.position == column) return one;
  raise(AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH, "07006", "The column " + name_of(column) + " is not read in pieces.");
}

bool SqliteStatement::long_length(unsigned column, std::int64_t& length) {
  sqlite3_value* const stored = value_at(column);
  const auto& from = long_column(column);
  value_.close();
  long_offset_ = 0;
  if (sqlite3_value_type(stored) != SQLITE_NULL) {
    // Short, or without a row id by which it could be opened: SQLite holds it already.
    length = sqlite3_value_bytes(stored);
    return true;
  }
  if (from.kind_at < 0) return false;
  const void* kind = sqlite3_column_text(statement_, from.kind_at);
  if (kind == nullptr || static_cast<const char*>(kind) == std::string_view("null")) return false;
  value_.open(from.origin, sqlite3_column_int64(statement_, from.row_id_at), false);
  length = static_cast<std::int64_t>(value_.size());
  return true;
}

std::size_t SqliteStatement::read_long(unsigned column, std::span<std::byte> piece) {
  sqlite3_value* const stored = value_at(column);
  const auto size = value_.is_open() ? value_.size() : static_cast<std::size_t>(sqlite3_value_bytes(stored));
  const auto taken = std::min(piece.size(), size - std::min(size, long_offset_));
  if (taken == 0) return 0;
  if (value_.is_open()) {
    value_.read(long_offset_, piece.first(taken));
  } else {
    const auto* bytes = static_cast<const std::byte*>(sqlite3_value_blob(stored));
    std::copy_n(bytes + long_offset_, taken, piece.begin());
  }
  long_offset_ += taken;
  return taken;
}

int SqliteStatement::bind_bytes(int position, const Parameter& parameter) {
  const auto bytes = parameter.text;
  if (statement_ != plain_ && parameter.kind == ValueKind::long_bytes)
    return sqlite3_bind_zeroblob64(statement_, position, bytes.size());
  return sqlite3_bind_blob64(statement_, position, bytes.data() != nullptr ? bytes.data() : "", bytes.size(),
                             columns_ != 0 ? SQLITE_TRANSIENT : SQLITE_STATIC);
}

bool SqliteStatement::writes_in_pieces(std::span<const Parameter> parameters) {
  if (!writes_ || columns_ != 0) return false;
  const auto found = std::find_if(parameters.begin(), parameters.end(), [](const Parameter& parameter) {
    return parameter.kind == ValueKind::long_bytes && !parameter.is_null && parameter.text.size() > long_piece_bytes &&
           !parameter.table.empty();
  });
  if (found == parameters.end()) return false;
  if (!writer_tried_) {
    writer_ = with_row_ids(session_, plain_, *found);
    writer_tried_ = true;
  }
  return writer_ != nullptr;
}

/// Zeros of the right length first, then the bytes; a savepoint makes one step of it.
void SqliteStatement::execute_in_pieces(std::span<const Parameter> parameters) {
  session_.enter_savepoint();
  statement_ = writer_.get();
  try {
    for (int i = 0; i < parameter_count_; ++i)
      bind(i + 1, parameters[static_cast<std::size_t>(i)]);
    const auto changes_before = sqlite3_total_changes64(session_.db());
    std::vector<sqlite3_int64> row_ids;
    while (step())
      row_ids.push_back(sqlite3_column_int64(statement_, 0));
    rows_affected_ = sqlite3_total_changes64(session_.db()) == changes_before ? 0 : sqlite3_changes64(session_.db());
    for (const auto row_id : row_ids)
      for (const auto& parameter : parameters)
        if (parameter.kind == ValueKind::long_bytes && !parameter.is_null) write_pieces(parameter, row_id);
    statement_ = plain_;
    sqlite3_clear_bindings(writer_.get());
    session_.leave_savepoint();
  } catch (...) {
    sqlite3_reset(writer_.get());
    statement_ = plain_;
    session_.undo_savepoint();
    throw;
  }
  state_ = State::at_end;
}

void SqliteStatement::write_pieces(const Parameter& parameter, sqlite3_int64 row_id) {
  SqliteValue value(session_);
  value.open({"", bare_name_of(parameter.table), bare_name_of(parameter.column)}, row_id, true);
  const auto bytes = parameter.text;
  for (std::size_t at = 0; at < bytes.size(); at += long_piece_bytes)
    value.write(at, bytes.substr(at, long_piece_bytes));
}

}  // namespace spcdb
