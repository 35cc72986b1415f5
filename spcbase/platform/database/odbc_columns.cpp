#include "spcbase/platform/database/odbc_statement.h"

#include <algorithm>

#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/database/moment_text.h"
#include "spcbase/platform/database/value_text.h"

namespace spcdb {
namespace {

constexpr std::size_t block_bytes = 256UL * 1024;
constexpr SQLULEN most_rows_of_block = 64;
/// Longest text of a number or moment, with room to see that it is none.
constexpr std::size_t number_bytes = 64;
constexpr std::size_t bytes_of_character = 4;
/// Texts of unknown width: what a server calls long is taken up to here.
constexpr int widest_unknown = 16384;

std::size_t text_bytes(int width_chars) noexcept {
  return static_cast<std::size_t>(width_chars) * bytes_of_character + 1;
}

/// How the driver is asked for a kind.
SQLSMALLINT c_type(ValueKind kind) noexcept {
  switch (kind) {
    case ValueKind::integer:
      return SQL_C_SBIGINT;
    case ValueKind::real:
      return SQL_C_DOUBLE;
    case ValueKind::moment:
      return SQL_C_TYPE_TIMESTAMP;
    case ValueKind::bytes:
    case ValueKind::long_bytes:
      return SQL_C_BINARY;
    case ValueKind::text:
      break;
  }
  return SQL_C_CHAR;
}

bool is_bytes(ValueKind kind) noexcept { return kind == ValueKind::bytes || kind == ValueKind::long_bytes; }

std::size_t stride_of(const OdbcColumn& column) noexcept {
  if (column.held == ValueKind::bytes) return static_cast<std::size_t>(std::max(column.size_bytes, 1));
  if (column.held == ValueKind::long_bytes) return 0;
  if (column.held == ValueKind::text)
    return column.wanted == ValueKind::text ? text_bytes(column.width_chars) : number_bytes;
  return column.held == ValueKind::moment ? sizeof(SQL_TIMESTAMP_STRUCT) : sizeof(std::int64_t);
}

ValueKind kind_of(short sql_type) noexcept {
  switch (sql_type) {
    case SQL_INTEGER:
    case SQL_SMALLINT:
    case SQL_TINYINT:
    case SQL_BIGINT:
    case SQL_BIT:
      return ValueKind::integer;
    case SQL_DOUBLE:
    case SQL_FLOAT:
    case SQL_REAL:
      return ValueKind::real;
    case SQL_TYPE_TIMESTAMP:
    case SQL_TYPE_DATE:
      return ValueKind::moment;
    default:
      return ValueKind::text;
  }
}

}  // namespace

ValueKind OdbcStatement::kind_of_column(unsigned column) {
  if (session_.quirks().fetch_as_text) return ValueKind::text;
  const auto type = infos_[column].sql_type;
  if (type != SQL_BIGINT) return kind_of(type);
  // The upper half of an unsigned column would come as negative numbers.
  SQLLEN is_unsigned = SQL_FALSE;
  checked("SQLColAttribute", [&] {
    return SQLColAttribute(handle_, static_cast<SQLUSMALLINT>(column + 1), SQL_DESC_UNSIGNED, nullptr, 0, nullptr,
                           &is_unsigned);
  });
  return is_unsigned == SQL_TRUE ? ValueKind::text : ValueKind::integer;
}

void OdbcStatement::bind_columns(std::span<const ColumnBinding> columns) {
  close();
  if (columns.size() > columns_in_result_)
    raise(AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH, "07009",
          "The result has " + std::to_string(columns_in_result_) + " columns, " + std::to_string(columns.size()) +
              " are wanted.");
  columns_.clear();
  columns_.resize(columns.size());
  for (unsigned i = 0; i < columns.size(); ++i) {
    auto& column = columns_[i];
    column.wanted = columns[i].kind;
    column.held = is_bytes(column.wanted) ? column.wanted : kinds_[i];
    column.size_bytes = columns[i].size_bytes;
    column.width_chars = columns[i].width_chars;
    if (column.wanted == ValueKind::text && column.width_chars <= 0) {
      const auto size = infos_[i].precision;
      column.width_chars = size == 0 || size > widest_unknown ? widest_unknown : static_cast<int>(size);
    }
  }
  bind_arrays();
}

void OdbcStatement::bind_as_described() {
  std::vector<ColumnBinding> bindings(columns_in_result_);
  for (unsigned i = 0; i < columns_in_result_; ++i)
    bindings[i].kind = kinds_[i];
  bind_columns(bindings);
}

void OdbcStatement::bind_arrays() {
  std::size_t row_bytes = 0;
  for (auto& column : columns_) {
    column.stride = stride_of(column);
    row_bytes += column.stride + sizeof(SQLLEN);
  }
  rows_per_block_ = std::clamp<SQLULEN>(block_bytes / std::max<std::size_t>(row_bytes, 1), 1, most_rows_of_block);
  // Long data are read of the one row on which the cursor stands.
  const auto is_long = [](const OdbcColumn& column) { return column.held == ValueKind::long_bytes; };
  if (std::any_of(columns_.begin(), columns_.end(), is_long)) rows_per_block_ = 1;
  row_status_.assign(rows_per_block_, SQL_ROW_SUCCESS);
  session_.gate().release("SQLFreeStmt");
  SQLFreeStmt(handle_, SQL_UNBIND);
  const auto set = [&](SQLINTEGER name, SQLPOINTER value) {
    checked("SQLSetStmtAttr", [&] { return SQLSetStmtAttr(handle_, name, value, 0); });
  };
  set(SQL_ATTR_ROW_ARRAY_SIZE, reinterpret_cast<SQLPOINTER>(rows_per_block_));
  set(SQL_ATTR_ROWS_FETCHED_PTR, &rows_in_block_);
  set(SQL_ATTR_ROW_STATUS_PTR, row_status_.data());
  SQLUSMALLINT number = 0;
  for (auto& column : columns_) {
    ++number;
    if (is_long(column)) continue;
    // One byte to spare: a driver may fill a text's place to the last one and end it behind that.
    column.bytes = std::make_unique_for_overwrite<std::byte[]>(column.stride * rows_per_block_ + 1);
    column.indicators = std::make_unique<SQLLEN[]>(rows_per_block_);
    checked("SQLBindCol", [&] {
      return SQLBindCol(handle_, number, c_type(column.held), column.bytes.get(), static_cast<SQLLEN>(column.stride),
                        column.indicators.get());
    });
  }
}

OdbcColumn* OdbcStatement::find(unsigned column, SQLLEN& length) {
  if (!has_row_ || column >= columns_.size()) [[unlikely]]
    refuse_column(column);
  auto& place = columns_[column];
  if (place.held == ValueKind::long_bytes) [[unlikely]]
    raise(AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH, "07006", "The column " + name_of(column) + " is read in pieces.");
  length = place.indicators[row_];
  return length == SQL_NULL_DATA ? nullptr : &place;
}

void OdbcStatement::refuse_column(unsigned column) const {
  if (!has_row_) raise(AFX_SQL_ERROR_NO_CURRENT_RECORD, "24000", "There is no current row.");
  raise(
      AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH, "07009",
      std::to_string(columns_.size()) + " columns are bound; column " + std::to_string(column + 1) + " was asked for.");
}

std::string_view OdbcStatement::held_text(unsigned column, OdbcColumn& place, SQLLEN length) {
  const char* bytes = reinterpret_cast<const char*>(place.bytes.get() + row_ * place.stride);
  const bool whole = length >= 0 && static_cast<std::size_t>(length) < place.stride;
  if (!whole) {
    if (place.wanted == ValueKind::text) refuse_width(name_of(column), place.width_chars);
    refuse_value(name_of(column), "22018", "a value of the kind that is wanted");
  }
  return {bytes, static_cast<std::size_t>(length)};
}

bool OdbcStatement::integer(unsigned column, std::int64_t& value) {
  SQLLEN length = 0;
  auto* place = find(column, length);
  if (place == nullptr) return false;
  auto whole = Whole::no_whole_number;
  switch (place->held) {
    case ValueKind::integer:
      value = place->value<std::int64_t>(row_);
      return true;
    case ValueKind::real:
      whole = read_whole(place->value<double>(row_), value);
      break;
    case ValueKind::text:
      whole = read_whole(held_text(column, *place, length), value);
      break;
    case ValueKind::moment:
    case ValueKind::bytes:
    case ValueKind::long_bytes:
      break;
  }
  if (whole != Whole::yes) refuse_whole(name_of(column), whole);
  return true;
}

bool OdbcStatement::real(unsigned column, double& value) {
  SQLLEN length = 0;
  auto* place = find(column, length);
  if (place == nullptr) return false;
  switch (place->held) {
    case ValueKind::real:
      value = place->value<double>(row_);
      return true;
    case ValueKind::integer:
      value = static_cast<double>(place->value<std::int64_t>(row_));
      return true;
    case ValueKind::text:
      if (read_real(held_text(column, *place, length), value)) return true;
      break;
    case ValueKind::moment:
    case ValueKind::bytes:
    case ValueKind::long_bytes:
      break;
  }
  refuse_value(name_of(column), "22018", "a number");
}

bool OdbcStatement::text(unsigned column, std::string_view& value) {
  SQLLEN length = 0;
  auto* place = find(column, length);
  if (place == nullptr) return false;
  switch (place->held) {
    case ValueKind::text: {
      const auto read = held_text(column, *place, length);
      if (place->wanted == ValueKind::text && is_wider(read, place->width_chars))
        refuse_width(name_of(column), place->width_chars);
      value = read;
      return true;
    }
    case ValueKind::integer:
      write_number(place->number_text, place->value<std::int64_t>(row_));
      break;
    case ValueKind::real:
      write_number(place->number_text, place->value<double>(row_));
      break;
    case ValueKind::moment: {
      const auto text = format_moment(place->value<SQL_TIMESTAMP_STRUCT>(row_));
      place->number_text.assign(text.data(), text.size());
      break;
    }
    case ValueKind::bytes:
    case ValueKind::long_bytes:
      refuse_value(name_of(column), "07006", "read as a text");
  }
  if (place->wanted == ValueKind::text && is_wider(place->number_text, place->width_chars))
    refuse_width(name_of(column), place->width_chars);
  value = place->number_text;
  return true;
}

bool OdbcStatement::moment(unsigned column, TIMESTAMP_STRUCT& value) {
  SQLLEN length = 0;
  auto* place = find(column, length);
  if (place == nullptr) return false;
  if (place->held == ValueKind::moment) {
    value = place->value<SQL_TIMESTAMP_STRUCT>(row_);
    return true;
  }
  if (place->held != ValueKind::text || !parse_moment(held_text(column, *place, length), value))
    refuse_value(name_of(column), "22007", "a moment");
  return true;
}

}  // namespace spcdb
