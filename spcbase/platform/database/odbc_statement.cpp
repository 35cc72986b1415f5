#include "spcbase/platform/database/odbc_statement.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/database/moment_text.h"
#include "spcbase/platform/database/value_text.h"

namespace spcdb {
namespace {

constexpr std::size_t smallest_text = 256;
/// Servers take longer texts only as a long type.
constexpr std::size_t longest_varchar = 4000;
constexpr SQLULEN moment_size = 23;
constexpr SQLSMALLINT moment_digits = 3;
constexpr SQLULEN integer_size = 19;
constexpr SQLULEN real_size = 15;
constexpr SQLUINTEGER nanoseconds_of_millisecond = 1'000'000;

SQL_TIMESTAMP_STRUCT to_milliseconds(SQL_TIMESTAMP_STRUCT moment) noexcept {
  moment.fraction -= moment.fraction % nanoseconds_of_millisecond;
  return moment;
}

SQLPOINTER attribute(std::uintptr_t value) noexcept { return reinterpret_cast<SQLPOINTER>(value); }

}  // namespace

OdbcStatement::OdbcStatement(OdbcSession& session, std::string_view sql) : session_(session) {
  handle_ = session_.allocate_statement();
  try {
    prepare(sql);
  } catch (...) {
    session_.gate().release("SQLFreeHandle");
    SQLFreeHandle(SQL_HANDLE_STMT, handle_);
    throw;
  }
}

OdbcStatement::~OdbcStatement() {
  session_.gate().release("SQLFreeHandle");
  SQLFreeHandle(SQL_HANDLE_STMT, handle_);
}

void OdbcStatement::prepare(std::string_view sql) {
  checked("SQLPrepare", [&] { return SQLPrepare(handle_, odbc_text(sql), static_cast<SQLINTEGER>(sql.size())); });
  SQLSMALLINT count = 0;
  checked("SQLNumParams", [&] { return SQLNumParams(handle_, &count); });
  parameters_.resize(static_cast<std::size_t>(count));
  count = 0;
  checked("SQLNumResultCols", [&] { return SQLNumResultCols(handle_, &count); });
  columns_in_result_ = static_cast<unsigned>(count);
  if (columns_in_result_ == 0) sql_ = sql;
  // Now: one driver forgets them when the first result is closed.
  infos_.reserve(columns_in_result_);
  kinds_.reserve(columns_in_result_);
  for (unsigned i = 0; i < columns_in_result_; ++i) {
    infos_.push_back(ask_column(i));
    kinds_.push_back(kind_of_column(i));
  }
}

/// Whether bytes come in pieces where they came whole before, or the other way round.
bool OdbcStatement::changes_form(std::span<const Parameter> parameters) const {
  const auto differ = [](const OdbcParameter& place, const Parameter& value) {
    return (place.kind == ValueKind::bytes && value.kind == ValueKind::long_bytes) ||
           (place.kind == ValueKind::long_bytes && value.kind == ValueKind::bytes);
  };
  return !std::equal(parameters_.begin(), parameters_.end(), parameters.begin(),
                     [&](const OdbcParameter& place, const Parameter& value) { return !differ(place, value); });
}

void OdbcStatement::execute(std::span<const Parameter> parameters) {
  close();
  rows_affected_ = -1;
  if (parameters.size() != parameters_.size())
    raise(AFX_SQL_ERROR_PARAMETER_COUNT, "07002",
          "The statement has " + std::to_string(parameters_.size()) + " parameters, " +
              std::to_string(parameters.size()) + " values were given.");
  session_.settle();
  if (applied_timeout_s_ != session_.query_timeout_s()) [[unlikely]]
    apply_timeout();
  if (pieces_left_ || changes_form(parameters)) [[unlikely]]
    prepare_anew();
  for (std::size_t i = 0; i < parameters.size(); ++i)
    give(static_cast<SQLUSMALLINT>(i + 1), parameters_[i], parameters[i]);
  if (columns_in_result_ != 0 && columns_.empty()) bind_as_described();
  auto code = checked("SQLExecute", [&] { return SQLExecute(handle_); });
  if (code == SQL_NEED_DATA) code = send_pieces();
  if (columns_in_result_ != 0) {
    cursor_open_ = true;
    row_ = rows_in_block_ = rows_per_block_;
  } else if (code == SQL_NO_DATA) {
    rows_affected_ = 0;
  } else {
    SQLLEN rows = -1;
    checked("SQLRowCount", [&] { return SQLRowCount(handle_, &rows); });
    rows_affected_ = rows;
  }
}

void OdbcStatement::apply_timeout() {
  applied_timeout_s_ = session_.query_timeout_s();
  // Never an error: one driver keeps 0 without a word, another with a warning that has no text.
  if (!session_.gate().refused("SQLSetStmtAttr"))
    SQLSetStmtAttr(handle_, SQL_ATTR_QUERY_TIMEOUT, attribute(applied_timeout_s_), 0);
}

void OdbcStatement::give(SQLUSMALLINT position, OdbcParameter& place, const Parameter& value) {
  if (place.kind != value.kind) {
    place.kind = value.kind;
    place.bound = false;
  }
  if (value.kind == ValueKind::bytes || value.kind == ValueKind::long_bytes) return give_bytes(position, place, value);
  place.indicator = 0;
  if (value.is_null) {
    place.indicator = SQL_NULL_DATA;
    if (value.kind == ValueKind::text && place.text.empty()) place.text.resize(smallest_text);
  } else {
    switch (value.kind) {
      case ValueKind::integer:
        place.integer = value.integer;
        break;
      case ValueKind::real:
        // Some servers refuse it, some store a null in its place.
        if (std::isnan(value.real)) refuse_nan();
        place.real = value.real;
        break;
      case ValueKind::text:
        give_text(place, value.text);
        break;
      case ValueKind::moment:
        if (!is_moment(value.moment)) refuse_moment();
        place.moment = to_milliseconds(value.moment);
        break;
      case ValueKind::bytes:
      case ValueKind::long_bytes:
        break;  // give_bytes
    }
  }
  if (!place.bound) [[unlikely]]
    bind_parameter(position, place);
}

void OdbcStatement::give_text(OdbcParameter& place, std::string_view text) {
  if (place.text.size() < text.size() + 1) {
    std::size_t size = std::max(place.text.size(), smallest_text);
    while (size < text.size() + 1)
      size *= 2;
    place.text.resize(size);
    place.bound = false;
  }
  if (!text.empty()) std::memcpy(place.text.data(), text.data(), text.size());
  place.indicator = static_cast<SQLLEN>(text.size());
}

void OdbcStatement::bind_parameter(SQLUSMALLINT position, OdbcParameter& place) {
  const auto bind = [&](SQLSMALLINT c_type, SQLSMALLINT sql_type, SQLULEN size, SQLSMALLINT digits, SQLPOINTER value,
                        SQLLEN bytes) {
    checked("SQLBindParameter", [&] {
      return SQLBindParameter(handle_, position, SQL_PARAM_INPUT, c_type, sql_type, size, digits, value, bytes,
                              &place.indicator);
    });
  };
  switch (place.kind) {
    case ValueKind::integer:
      bind(SQL_C_SBIGINT, SQL_BIGINT, integer_size, 0, &place.integer, sizeof place.integer);
      break;
    case ValueKind::real:
      bind(SQL_C_DOUBLE, SQL_DOUBLE, real_size, 0, &place.real, sizeof place.real);
      break;
    case ValueKind::text:
      bind(SQL_C_CHAR, place.text.size() > longest_varchar ? SQL_LONGVARCHAR : SQL_VARCHAR, place.text.size(), 0,
           place.text.data(), static_cast<SQLLEN>(place.text.size()));
      break;
    case ValueKind::moment:
      bind(SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, moment_size, moment_digits, &place.moment, sizeof place.moment);
      break;
    case ValueKind::bytes:
    case ValueKind::long_bytes:
      break;  // give_bytes
  }
  place.bound = true;
}

bool OdbcStatement::fetch() {
  if (!cursor_open_) return false;
  if (++row_ < rows_in_block_) return true;
  // A block that is not full was the last one.
  has_row_ = rows_in_block_ == rows_per_block_ && fetch_block();
  if (!has_row_) close();
  return has_row_;
}

bool OdbcStatement::fetch_block() {
  rows_in_block_ = 0;
  has_row_ = false;
  const auto code = checked("SQLFetch", [&] { return SQLFetch(handle_); });
  if (code == SQL_NO_DATA) return false;
  if (code == SQL_SUCCESS_WITH_INFO) [[unlikely]]
    check_rows();
  row_ = 0;
  return rows_in_block_ > 0;
}

void OdbcStatement::check_rows() {
  const auto rows = row_status_.begin();
  const bool failed = std::find(rows, rows + static_cast<std::ptrdiff_t>(rows_in_block_), SQL_ROW_ERROR) !=
                      rows + static_cast<std::ptrdiff_t>(rows_in_block_);
  auto diagnostic = read_diagnostic(SQL_HANDLE_STMT, handle_, SQL_SUCCESS_WITH_INFO);
  if (failed) {
    diagnostic.return_code = SQL_ERROR;
    raise(diagnostic);
  }
  // What was cut off shows in the indicators; digits that a number lost show here alone.
  const auto lost = [](const Diagnostic& one) { return one.sqlstate == "01S07" || one.sqlstate == "22018"; };
  if (lost(diagnostic) || std::any_of(diagnostic.further.begin(), diagnostic.further.end(), lost))
    raise(-1, "22018", "A fetched value is not a number of the kind that is wanted: " + diagnostic.text);
}

void OdbcStatement::close() noexcept {
  has_row_ = false;
  if (!cursor_open_) return;
  cursor_open_ = false;
  session_.gate().release("SQLFreeStmt");
  SQLFreeStmt(handle_, SQL_CLOSE);
}

ColumnInfo OdbcStatement::ask_column(unsigned column) {
  std::array<char, 256> name{};
  SQLSMALLINT length = 0;
  SQLSMALLINT type = 0;
  SQLULEN size = 0;
  SQLSMALLINT digits = 0;
  SQLSMALLINT nullable = SQL_NULLABLE_UNKNOWN;
  checked("SQLDescribeCol", [&] {
    return SQLDescribeCol(handle_, static_cast<SQLUSMALLINT>(column + 1), odbc_text({name.data(), name.size()}),
                          static_cast<SQLSMALLINT>(name.size() - 1), &length, &type, &size, &digits, &nullable);
  });
  const bool is_binary = type == SQL_BINARY || type == SQL_VARBINARY || type == SQL_LONGVARBINARY;
  if (is_binary && session_.quirks().blob_sizes_unknown) size = 0;
  return {name.data(), type, size, digits, nullable};
}

ColumnInfo OdbcStatement::describe(unsigned column) {
  if (column >= columns_in_result_)
    raise(AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH, "07009", "The statement has no such column.");
  return infos_[column];
}

}  // namespace spcdb
