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
#include <string>

#include "spcbase/foundation/connection.h"
#include "spcbase/testkit/schema_database.h"

namespace test_support {

/// The name of a test's parameter.
inline std::string server_name(const testing::TestParamInfo<ServerKind>& info) { return name_of(info.param); }

/// Where every case on a database runs.
inline auto main_servers() { return testing::Values(ServerKind::sqlite, ServerKind::mariadb); }
/// Where the cases run that look at what drivers do.
inline auto all_servers() { return testing::Values(ServerKind::sqlite, ServerKind::mariadb, ServerKind::sqlite_odbc); }

/// A test on a database under test, with an open connection to it.
class DatabaseTest : public testing::TestWithParam<ServerKind> {
 protected:
  DatabaseTest() : database_(GetParam()) { database_.open(db_); }
  ~DatabaseTest() override { db_.Close(); }

  /// The connection under test.
  CDatabaseEx& db() { return db_; }
  /// The database, spoken to beside the connection.
  SchemaDatabase& database() { return database_; }
  /// On which kind of server the test runs.
  ServerKind kind() const { return GetParam(); }

  /// Opens another connection to the same database.
  std::unique_ptr<CDatabaseEx> second_connection() {
    auto other = std::make_unique<CDatabaseEx>();
    database_.open(*other);
    return other;
  }
  void execute(const std::string& statement) { database_.execute(statement); }
  std::string value(const std::string& statement) { return database_.value(statement); }

 private:
  SchemaDatabase database_;
  CDatabaseEx db_;
};

}  // namespace test_support
