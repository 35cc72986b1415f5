/// Databases with the whole schema in them and no rows, on each kind of server.
///
///     test_support::SchemaDatabase database(test_support::ServerKind::sqlite);
///     CDatabaseEx db;
///     database.open(db);
///
/// Part of the test kit.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "spcbase/platform/database/database.h"

namespace test_support {

/// The kinds of servers that tests run on.
enum class ServerKind {
  sqlite,       ///< SQLite, directly
  mariadb,      ///< the private MariaDB server, through ODBC
  sqlite_odbc,  ///< SQLite through its ODBC driver
};

/// "sqlite", "mariadb" or "sqlite_odbc".
const char* name_of(ServerKind kind);

/// A database with the schema and no rows but the running numbers, which are 0; no other object has it. On SQLite a
/// file copied from one that was made once, on MariaDB a database that a former object left, emptied, else a new one.
/// Close the connections to it first.
class SchemaDatabase {
 public:
  /// The values of a row as texts; nothing for a null.
  using Row = std::vector<std::optional<std::string>>;

  /// Fails: std::runtime_error when the database cannot be made; so do `execute`, `rows` and `value`.
  [[nodiscard]] explicit SchemaDatabase(ServerKind kind);
  ~SchemaDatabase();
  SchemaDatabase(const SchemaDatabase&) = delete;
  SchemaDatabase& operator=(const SchemaDatabase&) = delete;

  /// On which kind of server it stands.
  ServerKind kind() const;
  /// Connects to it.
  /// Fails: std::runtime_error with the driver's text, which a test program shows where it says nothing of a
  ///        CDBException*.
  void open(CDatabase& connection) const;
  /// What `CDatabase::OpenEx` connects to it by.
  std::string connect_text() const;
  /// The text for a connection in plain ODBC, for SQLite too.
  std::string raw_odbc_text() const;

  /// Runs a statement, or reads, on a connection of the test's own, which commits at once.
  void execute(const std::string& statement);
  std::vector<Row> rows(const std::string& statement);
  /// The first column of the first row; "NULL" for a null, "no row" when there is none.
  std::string value(const std::string& statement);

  /// To be called by a test that changes the schema: nobody gets this database after it.
  void spoil();

  /// One kind of server's part of it.
  class Place;

 private:
  std::unique_ptr<Place> place_;
};

}  // namespace test_support
