/// Databases under test: each test gets one with the whole schema in it and no rows, on each kind of server.
///
///     class Saving : public test_support::DatabaseTest {};
///     TEST_P(Saving, keeps_what_was_saved) {
///       db().ExecuteSQL("INSERT ...");
///       EXPECT_EQ(value("SELECT ..."), "1");    // beside the connection under test
///     }
///     INSTANTIATE_TEST_SUITE_P(Servers, Saving, test_support::main_servers(), test_support::server_name);
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "spcbase/foundation/connection.h"

namespace test_support {

enum class ServerKind {
  sqlite,       ///< SQLite, directly
  mariadb,      ///< the private MariaDB server, through ODBC
  sqlite_odbc,  ///< SQLite through its ODBC driver
};

/// "sqlite", "mariadb" or "sqlite_odbc".
const char* name_of(ServerKind kind);

/// The name of a test's parameter.
std::string server_name(const testing::TestParamInfo<ServerKind>& info);

/// Where every case on a database runs.
inline auto main_servers() { return testing::Values(ServerKind::sqlite, ServerKind::mariadb); }
/// Where the cases run that look at what drivers do.
inline auto all_servers() { return testing::Values(ServerKind::sqlite, ServerKind::mariadb, ServerKind::sqlite_odbc); }

/// A database with the schema and no rows but the running numbers, which are 0. On SQLite a file of its own, copied
/// from one that was made once; on MariaDB one database for the whole program, which is emptied.
class SchemaDatabase {
 public:
  using Row = std::vector<std::optional<std::string>>;

  /// Fails: std::runtime_error when the database cannot be made; so do `execute`, `rows` and `value`.
  explicit SchemaDatabase(ServerKind kind);
  ~SchemaDatabase();
  SchemaDatabase(const SchemaDatabase&) = delete;
  SchemaDatabase& operator=(const SchemaDatabase&) = delete;

  ServerKind kind() const;
  /// What `CDatabase::OpenEx` connects to it by.
  std::string connect_text() const;
  /// The text for a connection in plain ODBC, for SQLite too.
  std::string raw_odbc_text() const;

  /// Runs a statement, or reads, on a connection of the test's own, which commits at once.
  void execute(const std::string& statement);
  std::vector<Row> rows(const std::string& statement);
  /// The first column of the first row; "NULL" for a null, "no row" when there is none.
  std::string value(const std::string& statement);

  /// To be called by a test that changes the schema: nobody else gets this database.
  void spoil();

  /// One kind of server's part of it.
  class Place;

 private:
  std::unique_ptr<Place> place_;
};

/// A test on a database under test, with an open connection to it.
class DatabaseTest : public testing::TestWithParam<ServerKind> {
 protected:
  DatabaseTest();
  ~DatabaseTest() override;

  CDatabaseEx& db() { return db_; }
  SchemaDatabase& database() { return database_; }
  ServerKind kind() const { return GetParam(); }

  /// Opens another connection to the same database.
  std::unique_ptr<CDatabaseEx> second_connection();
  void execute(const std::string& statement) { database_.execute(statement); }
  std::string value(const std::string& statement) { return database_.value(statement); }

 private:
  SchemaDatabase database_;
  CDatabaseEx db_;
};

}  // namespace test_support
