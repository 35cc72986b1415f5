/// How SQLite's statements read and write long data without holding them.
///
/// Part of the database platform layer, for SQLite's own sources.
///
/// SQLite takes the whole of a value into memory wherever a statement names it, but reads and writes a stored one in
/// pieces when it is told table, column and row id. So a SELECT is prepared a second time with the long column parted
/// into three: the value where it is no longer than a piece, the kind of the value, the row id of its table. And an
/// INSERT or UPDATE is prepared a second time so that it stores zeros of the right length and returns the row ids,
/// behind which the bytes are written.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "spcbase/platform/database/session.h"

namespace spcdb {

class SqliteSession;

struct SqliteFinalizer {
  SqliteSession* session = nullptr;
  void operator()(sqlite3_stmt* statement) const noexcept;
};
using SqliteHandle = std::unique_ptr<sqlite3_stmt, SqliteFinalizer>;

/// Where the values of a result column are stored.
struct SqliteOrigin {
  std::string database;
  std::string table;
  std::string column;
};

/// A stored value that is open for reading or writing in pieces.
class SqliteValue {
 public:
  explicit SqliteValue(SqliteSession& session) : session_(session) {}
  ~SqliteValue() { close(); }
  SqliteValue(const SqliteValue&) = delete;
  SqliteValue& operator=(const SqliteValue&) = delete;

  void open(const SqliteOrigin& origin, sqlite3_int64 row_id, bool for_writing);
  void close() noexcept;
  bool is_open() const noexcept { return blob_ != nullptr; }
  std::size_t size() const noexcept { return static_cast<std::size_t>(sqlite3_blob_bytes(blob_)); }
  void read(std::size_t offset, std::span<std::byte> piece);
  void write(std::size_t offset, std::string_view piece);

 private:
  SqliteSession& session_;
  sqlite3_blob* blob_ = nullptr;
};

/// A long column of a parted SELECT.
struct SqliteLongColumn {
  unsigned position = 0;
  SqliteOrigin origin;
  int kind_at = -1;    ///< the result column with the kind of the value; -1: SQLite gives the whole value at once
  int row_id_at = -1;  ///< and the one with the row id
};

/// The SELECT parted for these columns, or null when it cannot be. Columns that cannot be parted keep `kind_at` -1: an
/// expression, a view's column, a table without row ids or one that the statement names twice or by another name.
SqliteHandle part_select(SqliteSession& session, sqlite3_stmt* plain, std::vector<SqliteLongColumn>& columns);

/// The INSERT or UPDATE that returns row ids; null where the table has none or is none.
SqliteHandle with_row_ids(SqliteSession& session, sqlite3_stmt* plain, const Parameter& target);

/// A name without its quotes.
std::string bare_name_of(std::string_view quoted);

}  // namespace spcdb
