// Plan: each class of failure as the servers really tell it
//   On SQLite, MariaDB and SQLite's ODBC driver: duplicate key (primary and unique), missing reference, value too long,
//     missing table and column, syntax, a locked row or file -> failures_live.*
//   SQLite: a full database, a read-only one, a file that is missing or no database, an overtaken snapshot
//   MariaDB: a constraint that is not there, a deadlock between two connections, a lost link, one lost at a commit, a
//     login without rights, a statement out of time, a server that is not there
//   The tools of a host: connect texts that name nothing -> connect_texts.*
#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <string>
#include <thread>

#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/foundation/schema.h"
#include "spcbase/testkit/database_fixture.h"
#include "spcbase/testkit/private_server.h"
#include "spcbase/testkit/raw_odbc.h"
#include "spcbase/testkit/scratch_folder.h"

namespace {

using test_support::ServerKind;

class failures_live : public test_support::DatabaseTest {
 protected:
  Failure failure_of(const char* statement) { return failure_of(db(), statement); }

  static Failure failure_of(CDatabase& database, const char* statement) {
    const auto outcome = guarded([&] { database.ExecuteSQL(statement); });
    if (outcome.ok()) {
      ADD_FAILURE() << "it succeeded: " << statement;
      return {};
    }
    Failure f = outcome.failure();
    EXPECT_EQ(f.kind, FailureKind::database);
    EXPECT_FALSE(f.text.IsEmpty());
    EXPECT_FALSE(f.advice.IsEmpty());
    EXPECT_EQ(f.sqlstate.GetLength(), 5) << f.sqlstate;
    return f;
  }
};
INSTANTIATE_TEST_SUITE_P(Servers, failures_live, test_support::all_servers(), test_support::server_name);

TEST_P(failures_live, a_second_row_with_a_primary_key_is_a_duplicate_key) {
  execute("INSERT INTO CSSTN (STNID, NAME) VALUES (1, 'a')");
  const Failure f = failure_of("INSERT INTO CSSTN (STNID, NAME) VALUES (1, 'b')");
  EXPECT_EQ(f.failure_class, FailureClass::duplicate_key) << f.text;
  EXPECT_FALSE(f.may_retry());
}

TEST_P(failures_live, a_second_row_with_a_unique_key_is_a_duplicate_key) {
  const char* insert = "INSERT INTO CSOBJREV (OBJID, OBJTYPE, REVISION) VALUES (1, 1, 1)";
  execute(insert);
  EXPECT_EQ(failure_of(insert).failure_class, FailureClass::duplicate_key);
}

TEST_P(failures_live, a_payload_without_its_revision_is_a_missing_reference) {
  const Failure f = failure_of("INSERT INTO CSREVDAT (REVID) VALUES (4711)");
  EXPECT_EQ(f.failure_class, FailureClass::missing_reference) << f.sqlstate << " " << f.native << " " << f.text;
}

TEST_P(failures_live, a_text_beyond_its_column_is_too_long) {
  const CString insert = CString("INSERT INTO CSSTN (STNID, NAME) VALUES (1, '") + CString('x', 256) + "')";
  const Failure f = failure_of(insert);
  EXPECT_EQ(f.failure_class, FailureClass::value_too_long) << f.sqlstate << " " << f.native << " " << f.text;
}

TEST_P(failures_live, a_missing_table_or_column_is_no_such_object) {
  EXPECT_EQ(failure_of("DELETE FROM CSNOSUCH").failure_class, FailureClass::no_such_object);
  EXPECT_EQ(failure_of("UPDATE CSSTN SET NOSUCH = 1").failure_class, FailureClass::no_such_object);
  EXPECT_EQ(failure_of("INSERT INTO CSSTN (STNID, NOSUCH) VALUES (1, 1)").failure_class, FailureClass::no_such_object);
}

TEST_P(failures_live, a_missing_column_of_a_recordset_is_no_such_object) {
  RSNode1 rs(&db());
  rs.m_strFilter = "[NOSUCH] = 1";
  const auto outcome = guarded([&] { rs.Open(); });
  ASSERT_FALSE(outcome.ok());
  EXPECT_EQ(outcome.failure().failure_class, FailureClass::no_such_object) << outcome.failure().text;
}

TEST_P(failures_live, what_the_server_does_not_understand_is_syntax) {
  EXPECT_EQ(failure_of("SELEKT 1").failure_class, FailureClass::syntax);
  EXPECT_EQ(failure_of("DELETE FROM WHERE").failure_class, FailureClass::syntax);
}

TEST_P(failures_live, a_null_where_none_may_be_is_another_failure) {
  EXPECT_EQ(failure_of("INSERT INTO CSSTN (STNID, NAME) VALUES (NULL, 'a')").failure_class, FailureClass::other);
}

TEST_P(failures_live, rows_that_another_connection_holds_are_a_lock_timeout) {
  execute("INSERT INTO CSSTN (STNID, NAME) VALUES (1, 'a')");
  const auto other = second_connection();
  AutoODBCTransaction holding(*other, true);
  other->ExecuteSQL("UPDATE CSSTN SET NAME = 'b' WHERE STNID = 1");
  if (kind() == ServerKind::mariadb) {
    db().ExecuteSQL("SET SESSION innodb_lock_wait_timeout = 1");
  } else {
    CString impatient(database().connect_text().c_str());
    if (impatient.Replace("Timeout=2000", "Timeout=50") == 0) impatient += ";Timeout=50";
    db().Close();
    db().OpenEx(impatient);
  }
  const Failure f = failure_of("UPDATE CSSTN SET NAME = 'c' WHERE STNID = 1");
  EXPECT_EQ(f.failure_class, FailureClass::lock_timeout) << f.sqlstate << " " << f.native << " " << f.text;
  EXPECT_FALSE(f.may_retry());
}

class sqlite_failures : public failures_live {};
INSTANTIATE_TEST_SUITE_P(Servers, sqlite_failures, testing::Values(ServerKind::sqlite), test_support::server_name);

TEST_P(sqlite_failures, a_full_database_is_storage_full) {
  db().ExecuteSQL("PRAGMA max_page_count = 1");
  const auto outcome = guarded([&] {
    for (int i = 0; i < 1000; ++i)
      db().ExecuteSQL(
          "INSERT INTO CSLDAT (SAMPID, LABELID, PIECENO, LABVALUE) SELECT COUNT(*), 1, 1, "
          "hex(zeroblob(250)) FROM CSLDAT");
  });
  ASSERT_FALSE(outcome.ok());
  EXPECT_EQ(outcome.failure().failure_class, FailureClass::storage_full) << outcome.failure().text;
}

TEST_P(sqlite_failures, a_connection_that_only_reads_may_not_write) {
  db().Close();
  db().OpenEx(database().connect_text().c_str(), CDatabase::openReadOnly);
  const Failure f = failure_of("INSERT INTO CSSTN (STNID, NAME) VALUES (1, 'a')");
  EXPECT_EQ(f.failure_class, FailureClass::permission) << f.sqlstate << " " << f.text;
}

TEST_P(sqlite_failures, a_transaction_that_another_writer_has_overtaken_may_be_tried_again) {
  // A transaction of the library takes the right to write at once; one that a host begins by itself need not.
  db().ExecuteSQL("BEGIN");
  RSCount count(&db(), "CSSTN", nullptr);
  requery_rs(count, nullptr, true);
  const auto other = second_connection();
  other->ExecuteSQL("INSERT INTO CSSTN (STNID, NAME) VALUES (1, 'a')");
  const Failure f = failure_of("INSERT INTO CSSTN (STNID, NAME) VALUES (2, 'b')");
  EXPECT_EQ(f.failure_class, FailureClass::deadlock) << f.sqlstate << " " << f.native << " " << f.text;
  EXPECT_TRUE(f.may_retry());
  db().ExecuteSQL("ROLLBACK");
}

class mariadb_failures : public failures_live {};
INSTANTIATE_TEST_SUITE_P(Servers, mariadb_failures, testing::Values(ServerKind::mariadb), test_support::server_name);

TEST_P(mariadb_failures, a_constraint_that_is_not_there_to_be_dropped_is_no_such_object) {
  for (const char* statement :
       {"ALTER TABLE CSREVDAT DROP FOREIGN KEY NOSUCH", "ALTER TABLE CSSTN DROP INDEX NOSUCH"}) {
    const Failure f = failure_of(statement);
    EXPECT_EQ(f.failure_class, FailureClass::no_such_object) << f.sqlstate << " " << f.native << " " << f.text;
  }
}

TEST_P(mariadb_failures, two_connections_that_want_each_others_rows_are_a_deadlock) {
  execute("INSERT INTO CSSTN (STNID, NAME) VALUES (1, 'a')");
  execute("INSERT INTO CSSTN (STNID, NAME) VALUES (2, 'b')");
  const auto other = second_connection();
  AutoODBCTransaction ours(db(), true);
  AutoODBCTransaction theirs(*other, true);
  db().ExecuteSQL("UPDATE CSSTN SET NAME = 'c' WHERE STNID = 1");
  other->ExecuteSQL("UPDATE CSSTN SET NAME = 'd' WHERE STNID = 2");
  std::optional<Failure> their_failure;
  std::thread thread([&] {
    const auto outcome = guarded([&] { other->ExecuteSQL("UPDATE CSSTN SET NAME = 'e' WHERE STNID = 1"); });
    if (!outcome.ok()) their_failure = outcome.failure();
    if (outcome.ok()) theirs.rollback();
  });
  const auto outcome = guarded([&] { db().ExecuteSQL("UPDATE CSSTN SET NAME = 'f' WHERE STNID = 2"); });
  if (outcome.ok()) ours.rollback();
  thread.join();
  ASSERT_NE(outcome.ok(), !their_failure.has_value());
  const Failure f = outcome.ok() ? *their_failure : outcome.failure();
  EXPECT_EQ(f.failure_class, FailureClass::deadlock) << f.text;
  EXPECT_EQ(f.sqlstate, "40001");
  EXPECT_TRUE(f.may_retry());

  // The commit of what the server has undone must not pass for one.
  auto& loser = outcome.ok() ? theirs : ours;
  const auto commit = guarded([&] { return loser.commit(); });
  ASSERT_FALSE(commit.ok());
  EXPECT_TRUE(commit.failure().may_retry()) << commit.failure().text;
  EXPECT_TRUE(loser.rollback());
}

TEST_P(mariadb_failures, a_connection_that_the_server_has_ended_is_a_lost_link) {
  RSCount id(&db(), "CSNODE", "CONNECTION_ID() + 0 * COUNT(*)");
  requery_rs(id, nullptr, true);
  EXPECT_FALSE(db().link_is_dead());
  execute("KILL " + std::to_string(id.result));
  const Failure f = failure_of("DELETE FROM CSSTN");
  EXPECT_EQ(f.failure_class, FailureClass::link_lost) << f.sqlstate << " " << f.native << " " << f.text;
  EXPECT_FALSE(f.may_retry());
  EXPECT_FALSE(db().check_connection(0));
  EXPECT_TRUE(db().link_is_dead());
}

TEST_P(mariadb_failures, a_link_that_is_lost_when_the_work_is_committed_leaves_the_commit_in_doubt) {
  RSCount id(&db(), "CSNODE", "CONNECTION_ID() + 0 * COUNT(*)");
  requery_rs(id, nullptr, true);
  AutoODBCTransaction guard(db(), true);
  db().ExecuteSQL("INSERT INTO CSSTN (STNID, NAME) VALUES (1, 'a')");
  execute("KILL " + std::to_string(id.result));
  const auto outcome = guarded([&] { return guard.commit(); });
  ASSERT_FALSE(outcome.ok());
  const Failure& f = outcome.failure();
  EXPECT_EQ(f.failure_class, FailureClass::commit_in_doubt) << f.sqlstate << " " << f.native << " " << f.text;
  EXPECT_FALSE(f.may_retry());
}

TEST_P(mariadb_failures, a_login_without_rights_is_refused_permission) {
  execute("CREATE OR REPLACE USER reader@localhost IDENTIFIED BY 'reader'");
  CString connect(test_support::PrivateMariaDb::shared().odbc_connect_text("").c_str());
  EXPECT_EQ(connect.Replace("UID=spc", "UID=reader"), 1) << connect;
  EXPECT_EQ(connect.Replace("PWD=spc", "PWD=reader"), 1) << connect;
  CDatabaseEx reader;
  reader.OpenEx(connect);
  const std::string table = value("SELECT DATABASE()") + ".CSSTN";
  EXPECT_EQ(failure_of(reader, ("DELETE FROM " + table).c_str()).failure_class, FailureClass::permission);
  connect.Replace("PWD=reader", "PWD=wrong");
  CDatabaseEx stranger;
  const auto outcome = guarded([&] { stranger.OpenEx(connect); });
  ASSERT_FALSE(outcome.ok());
  EXPECT_EQ(outcome.failure().failure_class, FailureClass::permission) << outcome.failure().text;
  reader.Close();
  execute("DROP USER reader@localhost");
}

TEST_P(mariadb_failures, a_statement_out_of_time_is_a_lock_timeout) {
  db().ExecuteSQL("SET SESSION max_statement_time = 0.05");
  const Failure f = failure_of(
      "SELECT COUNT(*) FROM information_schema.COLUMNS A, information_schema.COLUMNS B, "
      "information_schema.COLUMNS C WHERE SLEEP(0.001) = 0");
  EXPECT_EQ(f.failure_class, FailureClass::lock_timeout) << f.sqlstate << " " << f.native << " " << f.text;
}

Failure failure_to_connect(const char* text) {
  CDatabaseEx database;
  const auto outcome = guarded([&] { database.OpenEx(text); });
  if (outcome.ok()) {
    ADD_FAILURE() << "it connected: " << text;
    return {};
  }
  EXPECT_FALSE(database.check_connection(0));
  EXPECT_FALSE(outcome.failure().text.IsEmpty());
  return outcome.failure();
}

TEST(connect_texts, a_file_that_is_missing_cannot_be_reached) {
  const test_support::ScratchFolder folder;
  const std::string text = "sqlite:" + folder.file("missing.db");
  EXPECT_EQ(failure_to_connect(text.c_str()).failure_class, FailureClass::link_lost);
}

TEST(connect_texts, a_file_that_is_no_database_is_told_as_such) {
  const test_support::ScratchFolder folder;
  const std::string file = folder.file("letter.txt");
  std::ofstream(file) << std::string(4096, 'x');
  EXPECT_EQ(failure_to_connect(("sqlite:" + file).c_str()).failure_class, FailureClass::other);
}

TEST(connect_texts, a_server_that_is_not_there_is_a_lost_link) {
  const test_support::ScratchFolder folder;
  const std::string text = "Driver={MariaDB Unicode};SOCKET=" + folder.file("none.sock") + ";UID=u;PWD=p";
  const Failure f = failure_to_connect(text.c_str());
  EXPECT_EQ(f.failure_class, FailureClass::link_lost) << f.sqlstate << " " << f.native << " " << f.text;
}

TEST(connect_texts, that_name_no_file_driver_or_source_have_a_clear_text) {
  for (const char* text : {"sqlite:", "", "Driver=NoSuchDriver;Database=x", "DSN=nosuchsource", "UID=u;PWD=p"})
    EXPECT_GT(failure_to_connect(text).text.GetLength(), 10) << text;
}

}  // namespace
