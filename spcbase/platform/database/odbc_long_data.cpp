// Bytes through ODBC: in buffers, and in pieces by SQLGetData and SQLPutData.
#include <algorithm>

#include "spcbase/platform/database/odbc_statement.h"

#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/database/value_text.h"

namespace spcdb {

bool OdbcStatement::bytes(unsigned column, std::string_view& value) {
  SQLLEN length = 0;
  auto* place = find(column, length);
  if (place == nullptr) return false;
  if (place->held != ValueKind::bytes)
    raise(AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH, "07006", "The column " + name_of(column) + " is not read as bytes.");
  if (length < 0 || static_cast<std::size_t>(length) > place->stride)
    refuse_size(name_of(column), length < 0 ? place->stride + 1 : static_cast<std::size_t>(length),
                static_cast<int>(place->stride));
  value = {reinterpret_cast<const char*>(place->bytes.get() + row_ * place->stride), static_cast<std::size_t>(length)};
  return true;
}

OdbcColumn& OdbcStatement::long_column(unsigned column) {
  if (!has_row_ || column >= columns_.size()) refuse_column(column);
  if (columns_[column].held != ValueKind::long_bytes)
    raise(AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH, "07006", "The column " + name_of(column) + " is not read in pieces.");
  return columns_[column];
}

/// Asks for the next bytes; `left` is how many there were before, which a driver need not know.
SQLRETURN OdbcStatement::get_data(unsigned column, std::span<std::byte> piece, SQLLEN& left) {
  left = 0;
  return checked("SQLGetData", [&] {
    return SQLGetData(handle_, static_cast<SQLUSMALLINT>(column + 1), SQL_C_BINARY, piece.data(),
                      static_cast<SQLLEN>(piece.size()), &left);
  });
}

bool OdbcStatement::long_length(unsigned column, std::int64_t& length) {
  long_column(column);
  std::byte nothing{};
  SQLLEN left = 0;
  const auto code = get_data(column, {&nothing, 0}, left);
  if (code == SQL_NO_DATA) raise(-1, "HY010", "The value of column " + name_of(column) + " was read already.");
  if (left == SQL_NULL_DATA) return false;
  length = left == SQL_NO_TOTAL ? -1 : left;
  return true;
}

std::size_t OdbcStatement::read_long(unsigned column, std::span<std::byte> piece) {
  long_column(column);
  SQLLEN left = 0;
  const auto code = get_data(column, piece, left);
  if (code == SQL_NO_DATA) return 0;
  const bool fills_it = left == SQL_NO_TOTAL || left > static_cast<SQLLEN>(piece.size());
  return fills_it ? piece.size() : static_cast<std::size_t>(std::max<SQLLEN>(left, 0));
}

/// Bytes are not copied into the place: it points at the caller's own.
void OdbcStatement::give_bytes(SQLUSMALLINT position, OdbcParameter& place, const Parameter& value) {
  const bool in_pieces = value.kind == ValueKind::long_bytes && !value.is_null;
  const auto size = static_cast<SQLLEN>(value.text.size());
  // The form SQL_DATA_AT_EXEC without a length stores nothing at all with one driver, and says so to nobody.
  place.indicator = value.is_null ? SQL_NULL_DATA : in_pieces ? SQL_LEN_DATA_AT_EXEC(size) : size;
  const void* bytes = in_pieces ? static_cast<const void*>(&value) : value.text.empty() ? "" : value.text.data();
  checked("SQLBindParameter", [&] {
    return SQLBindParameter(handle_, position, SQL_PARAM_INPUT, SQL_C_BINARY, SQL_LONGVARBINARY,
                            static_cast<SQLULEN>(std::max<SQLLEN>(size, 1)), 0, const_cast<void*>(bytes), size,
                            &place.indicator);
  });
  place.bound = false;
}

/// One driver keeps the pieces that came before a cancelled rest, and takes them for the next execution's; and it goes
/// on reading a buffer that bytes once stood in when they come in pieces now.
void OdbcStatement::prepare_anew() {
  checked("SQLPrepare", [&] { return SQLPrepare(handle_, odbc_text(sql_), static_cast<SQLINTEGER>(sql_.size())); });
  pieces_left_ = false;
  for (auto& place : parameters_)
    place.bound = false;
}

/// Sends what the driver asks for until it asks no more.
SQLRETURN OdbcStatement::send_pieces() {
  try {
    for (;;) {
      SQLPOINTER wanted = nullptr;
      const auto code = checked("SQLParamData", [&] { return SQLParamData(handle_, &wanted); });
      if (code != SQL_NEED_DATA) return code;
      const auto bytes = static_cast<const Parameter*>(wanted)->text;
      std::size_t at = 0;
      do {  // an empty value takes one piece too
        const auto piece = bytes.substr(at, long_piece_bytes);
        checked("SQLPutData", [&] {
          return SQLPutData(handle_, const_cast<char*>(piece.empty() ? "" : piece.data()),
                            static_cast<SQLLEN>(piece.size()));
        });
        at += piece.size();
      } while (at < bytes.size());
    }
  } catch (...) {
    // The statement waits for its data else.
    session_.gate().release("SQLCancel");
    SQLCancel(handle_);
    pieces_left_ = true;
    throw;
  }
}

}  // namespace spcdb
