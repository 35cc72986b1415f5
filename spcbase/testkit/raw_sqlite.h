/// An SQLite database beside the code under test, spoken to without it.
#pragma once

#include <optional>
#include <string>
#include <vector>

struct sqlite3;

namespace test_support {

/// One open database; it closes when the object goes.
class RawSqlite {
 public:
  /// The values of a row as texts; nothing for a null.
  using Row = std::vector<std::optional<std::string>>;

  /// Opens a file, made when it is missing; ":memory:" is a database of its own. Waits up to 2 seconds for a lock.
  /// Fails: std::runtime_error when the file can be neither opened nor made.
  explicit RawSqlite(const std::string& file);
  ~RawSqlite();
  RawSqlite(const RawSqlite&) = delete;
  RawSqlite& operator=(const RawSqlite&) = delete;

  /// Runs a statement.
  /// Fails: std::runtime_error with the database's text and the statement.
  void execute(const std::string& statement) { rows(statement); }
  /// The same, with the rows that it gives; a null is nothing.
  std::vector<Row> rows(const std::string& statement);

 private:
  sqlite3* database_ = nullptr;
};

}  // namespace test_support
