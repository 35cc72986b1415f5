// Plan
//   Null and empty stay apart, long texts come whole -> RawOdbc, RawSqlite
//   A refused statement throws with what the driver says, and so does one that fails while it is read
//   What cannot be opened is told; a driver that is missing by its package
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>

#include "spcbase/testkit/private_server.h"
#include "spcbase/testkit/raw_odbc.h"
#include "spcbase/testkit/raw_sqlite.h"
#include "spcbase/testkit/schema_database.h"
#include "spcbase/testkit/scratch_folder.h"
#include "tests/support/environment_guard.h"

namespace test_support {
namespace {

template <class Act>
std::string failure_of(Act&& act) {
  try {
    act();
  } catch (const std::runtime_error& failure) {
    return failure.what();
  }
  return {};
}

TEST(RawOdbc, keeps_null_apart_from_empty_and_reads_long_texts_whole) {
  RawOdbc connection(PrivateMariaDb::shared().odbc_connect_text({}));
  const auto rows = connection.rows("SELECT NULL, '', REPEAT('x', 4095), REPEAT('x', 4096), REPEAT('x', 10000)");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0][0], std::nullopt);
  EXPECT_EQ(rows[0][1], "");
  EXPECT_EQ(rows[0][2], std::string(4095, 'x'));
  EXPECT_EQ(rows[0][3], std::string(4096, 'x'));
  EXPECT_EQ(rows[0][4], std::string(10000, 'x'));
}

TEST(RawOdbc, gives_the_first_value_and_an_empty_text_for_null_and_no_row) {
  RawOdbc connection(PrivateMariaDb::shared().odbc_connect_text({}));
  EXPECT_EQ(connection.value("SELECT 7, 8"), "7");
  EXPECT_EQ(connection.value("SELECT NULL"), "");
  EXPECT_EQ(connection.value("SELECT 7 FROM DUAL WHERE 1 = 0"), "");
}

TEST(RawOdbc, a_refused_statement_throws_with_state_number_and_its_text) {
  RawOdbc connection(PrivateMariaDb::shared().odbc_connect_text({}));
  const std::string failure = failure_of([&] { connection.execute("SELECT nothing FROM nowhere.nothing"); });
  EXPECT_TRUE(failure.starts_with("42S02 ")) << failure;
  EXPECT_TRUE(failure.ends_with(" in: SELECT nothing FROM nowhere.nothing")) << failure;
}

TEST(RawOdbc, an_answer_that_fails_on_its_way_is_no_short_one) {
  const ScratchFolder folder;
  RawOdbc connection("Driver=SQLite3;Database=" + folder.file("a.db"));
  EXPECT_THAT(failure_of([&] { connection.rows("SELECT 1 UNION ALL SELECT abs(-9223372036854775807 - 1)"); }),
              testing::HasSubstr("integer overflow"));
}

TEST(RawOdbc, a_connection_that_is_refused_throws_with_the_drivers_text) {
  const std::string failure = failure_of([] { RawOdbc("Driver={MariaDB Unicode};SOCKET=missing;UID=spc"); });
  EXPECT_THAT(failure, testing::HasSubstr("Can't connect"));
  EXPECT_THAT(failure, testing::Not(testing::HasSubstr("package"))) << "the driver is there";
}

/// In a process of its own, since the driver manager reads its lists once.
class WithoutDrivers : public testing::Test {
 protected:
  WithoutDrivers() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
  ~WithoutDrivers() override { GTEST_FLAG_SET(death_test_style, "fast"); }

  template <class Act>
  [[noreturn]] static void tell_failure(Act&& act) {
    std::fputs(failure_of(std::forward<Act>(act)).c_str(), stderr);
    ::_exit(3);
  }

 private:
  ScratchFolder bare_;
  EnvironmentGuard lists_{"ODBCSYSINI", bare_.path().string()};
  EnvironmentGuard home_{"HOME", bare_.path().string()};
};

TEST_F(WithoutDrivers, the_package_of_the_one_for_mariadb_is_named) {
  EXPECT_EXIT(tell_failure([] { RawOdbc("Driver={MariaDB Unicode};SOCKET=missing"); }), testing::ExitedWithCode(3),
              "the ODBC driver MariaDB Unicode is missing; the package odbc-mariadb has it");
}

TEST_F(WithoutDrivers, the_package_of_the_one_for_sqlite_is_named_when_a_database_is_wanted) {
  EXPECT_EXIT(tell_failure([] { const SchemaDatabase database(ServerKind::sqlite_odbc); }), testing::ExitedWithCode(3),
              "the ODBC driver SQLite3 is missing; the package libsqliteodbc has it");
}

TEST_F(WithoutDrivers, an_unknown_one_is_told_in_the_driver_managers_words) {
  EXPECT_EXIT(tell_failure([] { RawOdbc("Driver={Nobody's}"); }), testing::ExitedWithCode(3), "Nobody's[^;]*$");
}

TEST(RawSqlite, keeps_null_apart_from_empty) {
  RawSqlite database(":memory:");
  const auto rows = database.rows("SELECT NULL, '', 7 UNION ALL SELECT 1, 2, 3");
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0], (RawSqlite::Row{std::nullopt, "", "7"}));
}

TEST(RawSqlite, makes_a_file_that_stays) {
  const ScratchFolder folder;
  RawSqlite(folder.file("a.db")).execute("CREATE TABLE T AS SELECT 7 AS A");
  EXPECT_EQ(RawSqlite(folder.file("a.db")).rows("SELECT A FROM T").size(), 1U);
}

TEST(RawSqlite, a_refused_statement_throws_with_its_text) {
  RawSqlite database(":memory:");
  EXPECT_EQ(failure_of([&] { database.execute("DROP TABLE T"); }), "no such table: T in: DROP TABLE T");
}

TEST(RawSqlite, a_file_that_cannot_be_opened_is_told_with_the_reason) {
  const ScratchFolder folder;
  const std::string file = folder.file("no/folder.db");
  EXPECT_EQ(failure_of([&] { RawSqlite{file}; }), "cannot open " + file + ": unable to open database file");
}

}  // namespace
}  // namespace test_support
