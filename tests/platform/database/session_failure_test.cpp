// Failures as the drivers really give them, and what is left behind.
//
// Plan
//   what each driver says   duplicate keys, missing references, nulls, tables, columns, syntax, bad UTF-8: one table
//   locks                   a lock that is not given; a deadlock; a snapshot that was overtaken; a commit that must
//   wait time                    a statement that takes too long, and where nothing can stop it the link a server that
//   is killed under a connection staged failures         every call into the driver fails once: the right failure,
//   nothing half-written, nothing kept
#include <algorithm>
#include <future>
#include <set>

#include "spcbase/testkit/fail_kth_call.h"
#include "tests/platform/database/session_under_test.h"

namespace database_test {
namespace {

using spcdb::Reading;

class SessionFailure : public SessionTest {
 protected:
  /// The records of one failed statement: SQLSTATE and native code as the session of this run gives them.
  struct Expected {
    const char* sql;
    std::pair<const char*, long> sqlite;
    std::pair<const char*, long> sqlite_odbc;
    std::pair<const char*, long> mariadb;

    std::pair<const char*, long> on(Server server) const {
      return server == Server::sqlite ? sqlite : server == Server::sqlite_odbc ? sqlite_odbc : mariadb;
    }
  };
};

INSTANTIATE_TEST_SUITE_P(, SessionFailure, all_servers, server_name);

TEST_P(SessionFailure, each_kind_comes_with_the_state_and_number_of_its_driver) {
  session->run("CREATE TABLE P (ID INTEGER NOT NULL PRIMARY KEY)");
  session->run(
      "CREATE TABLE C (A INTEGER NOT NULL, B INTEGER NOT NULL, PID INTEGER, FOREIGN KEY (PID) REFERENCES P (ID))");
  session->run("CREATE UNIQUE INDEX UKC ON C (A, B)");
  session->run("INSERT INTO P VALUES (1)");
  session->run("INSERT INTO C VALUES (1, 1, 1)");
  const Expected table[] = {
      {"INSERT INTO P VALUES (1)", {"23000", 1555}, {"HY000", 19}, {"23000", 1062}},
      {"INSERT INTO C VALUES (1, 1, 1)", {"23000", 2067}, {"HY000", 19}, {"23000", 1062}},
      {"INSERT INTO C VALUES (2, 1, 77)", {"23000", 787}, {"HY000", 19}, {"23000", 1452}},
      {"INSERT INTO C VALUES (2, NULL, 1)", {"23000", 1299}, {"HY000", 19}, {"23000", 1048}},
      {"INSERT INTO C (A) VALUES (2)", {"23000", 1299}, {"HY000", 19}, {"HY000", 1364}},
      {"SELECT * FROM NOSUCH", {"42S02", 1}, {"HY000", 1}, {"42S02", 1146}},
      {"SELECT NOSUCH FROM P", {"42S22", 1}, {"HY000", 1}, {"42S22", 1054}},
      {"INSERT INTO P (NOSUCH) VALUES (1)", {"42S22", 1}, {"HY000", 1}, {"42S22", 1054}},
      {"SELEC 1", {"42000", 1}, {"HY000", 1}, {"42000", 1064}},
      {"CREATE TABLE P (A INTEGER)", {"42S01", 1}, {"HY000", 1}, {"42S01", 1050}},
  };
  for (const auto& row : table) {
    const auto [state, native] = row.on(GetParam());
    for (const auto& failure : {caught([&] { session->run(row.sql); }),
                                caught([&] { session->prepare(row.sql, Reading::all)->execute({}); })}) {
      EXPECT_TRUE(has_state(failure, state) && has_native(failure, native)) << row.sql << ": " << failure.state;
      EXPECT_NE(failure.state.find(std::string("Origin:") + facts().origin), std::string::npos) << failure.state;
      EXPECT_EQ(failure.code, -1);
      EXPECT_FALSE(failure.text.empty());
      EXPECT_FALSE(failure.text.starts_with('[')) << "the origin stands apart: " << failure.text;
    }
  }
}

TEST_P(SessionFailure, a_width_constraint_of_sqlite_is_told_as_a_text_too_long) {
  session->run(
      "CREATE TABLE W (N VARCHAR(3), X INTEGER, CONSTRAINT CK_W_N_WIDTH CHECK (LENGTH(N) <= 3), "
      "CONSTRAINT CK_W_X CHECK (X > 0))");
  const auto wide = caught([&] { session->run("INSERT INTO W VALUES ('abcd', 1)"); });
  const auto other = caught([&] { session->run("INSERT INTO W VALUES ('abc', 0)"); });
  switch (GetParam()) {
    case Server::sqlite:
      EXPECT_TRUE(has_state(wide, "22001") && has_native(wide, 275)) << wide.state;
      EXPECT_TRUE(has_state(other, "23000") && has_native(other, 275)) << other.state;
      break;
    case Server::sqlite_odbc:
      EXPECT_TRUE(has_native(wide, 19) && has_native(other, 19));
      EXPECT_NE(wide.text.find("CK_W_N_WIDTH"), std::string::npos) << wide.text;
      break;
    case Server::mariadb:
      EXPECT_TRUE(has_state(wide, "22001") && has_native(wide, 1406)) << wide.state;
      EXPECT_TRUE(has_state(other, "23000") && has_native(other, 4025)) << other.state;
      break;
  }
}

TEST_P(SessionFailure, bytes_that_are_no_utf_8_are_stored_as_they_are_or_refused) {
  create_table();
  if (on_mariadb()) {
    EXPECT_TRUE(has_state(caught([&] { insert(1, "\xC3("); }), "22007"));
    return;
  }
  insert(1, "\xC3(");
  EXPECT_EQ(text_of("SELECT N FROM T"), "\xC3(");
}

TEST_P(SessionFailure, a_lock_that_is_not_given_fails_in_its_time_and_the_statement_works_later) {
  create_table();
  insert(1);
  const auto other = connect();
  if (on_mariadb()) session->run("SET SESSION innodb_lock_wait_timeout=1");
  other->begin();
  other->run("UPDATE T SET N='theirs' WHERE ID=1");
  const auto failure = caught([&] { session->run("UPDATE T SET N='ours' WHERE ID=1"); });
  const std::pair<const char*, long> expected = on_sqlite()    ? std::pair("HYT00", 5L)
                                                : on_mariadb() ? std::pair("HY000", 1205L)
                                                               : std::pair("HY000", 5L);
  EXPECT_TRUE(has_state(failure, expected.first) && has_native(failure, expected.second)) << failure.state;
  other->rollback();
  EXPECT_EQ(session->run("UPDATE T SET N='ours' WHERE ID=1"), 1);
}

TEST_P(SessionFailure, a_transaction_that_cannot_begin_to_write_is_not_open) {
  create_table();
  const auto other = connect();
  other->begin();
  other->run("INSERT INTO T (ID) VALUES (1)");
  if (on_sqlite()) {
    EXPECT_TRUE(has_state(caught([&] { session->begin(); }), "HYT00"));
    EXPECT_FALSE(session->in_transaction());
  }
  other->commit();
  session->begin();
  session->run("INSERT INTO T (ID) VALUES (2)");
  session->commit();
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM T"), 2);
}

TEST_P(SessionFailure, a_statement_that_takes_too_long_is_stopped_where_anything_can_stop_it) {
  session->set_query_timeout(1);
  const std::string endless =
      on_mariadb() ? "SELECT SLEEP(30)"
                   : "WITH RECURSIVE C (X) AS (VALUES (1) UNION ALL SELECT X+1 FROM C WHERE X<200000000) "
                     "SELECT COUNT(*) FROM C";
  switch (GetParam()) {
    case Server::sqlite:
      EXPECT_TRUE(has_state(caught([&] { query(endless, Kind::integer)->fetch(); }), "HYT00"));
      break;
    case Server::mariadb:
      EXPECT_TRUE(has_native(caught([&] { query(endless, Kind::integer)->fetch(); }), 1969));
      break;
    case Server::sqlite_odbc:
      break;  // this driver keeps 0: setting it was no error, and that is all
  }
  session->set_query_timeout(0);
  EXPECT_EQ(integer_of("SELECT 5"), 5);
}

TEST(SqliteSession, a_transaction_whose_snapshot_was_overtaken_is_told_to_start_again) {
  const test_support::ScratchFolder folder;
  const auto connect = "sqlite:" + folder.file("s.db") + ";Create=1;Timeout=50";
  const auto first = spcdb::open_sqlite(connect, false);
  const auto second = spcdb::open_sqlite(connect, false);
  first->run("CREATE TABLE T (A INTEGER)");
  first->run("BEGIN");
  first->run("SELECT * FROM T");
  second->run("INSERT INTO T VALUES (1)");
  const auto failure = caught([&] { first->run("INSERT INTO T VALUES (2)"); });
  EXPECT_TRUE(has_state(failure, "40001")) << failure.state;
  EXPECT_TRUE(first->in_transaction());
  first->rollback();
  EXPECT_EQ(first->run("INSERT INTO T VALUES (2)"), 1);
}

TEST(SqliteSession, the_query_timeout_also_bounds_the_wait_for_a_lock) {
  const test_support::ScratchFolder folder;
  const auto connect = "sqlite:" + folder.file("s.db") + ";Create=1;Timeout=60000";
  const auto first = spcdb::open_sqlite(connect, false);
  const auto second = spcdb::open_sqlite(connect, false);
  first->run("CREATE TABLE T (A INTEGER)");
  first->begin();
  second->set_query_timeout(1);
  EXPECT_TRUE(has_state(caught([&] { second->run("INSERT INTO T VALUES (1)"); }), "HYT00"));
  first->rollback();
}

TEST(MariaDbSession, after_a_deadlock_a_commit_says_success_and_nothing_stands) {
  const auto database = test_support::PrivateMariaDb::shared().create_database();
  const auto first = spcdb::open_odbc(database.odbc_connect_text(), false);
  const auto second = spcdb::open_odbc(database.odbc_connect_text(), false);
  first->run("CREATE TABLE T (ID INTEGER PRIMARY KEY, N INTEGER)");
  first->run("INSERT INTO T VALUES (1, 0), (2, 0)");
  first->begin();
  second->begin();
  first->run("UPDATE T SET N=1 WHERE ID=1");
  second->run("UPDATE T SET N=2 WHERE ID=2");
  const auto try_to = [](spcdb::Session& session, const char* sql) -> std::string {
    try {
      session.run(sql);
      return {};
    } catch (CDBException* failure) {
      std::string state(failure->m_strStateNativeOrigin.view());
      failure->Delete();
      return state;
    }
  };
  auto waiting = std::async(std::launch::async, [&] { return try_to(*first, "UPDATE T SET N=1 WHERE ID=2"); });
  const auto now = try_to(*second, "UPDATE T SET N=2 WHERE ID=1");
  const auto then = waiting.get();
  EXPECT_NE(now.empty(), then.empty()) << "one of the two loses";
  EXPECT_TRUE((now + then).starts_with("State:40001,Native:1213,")) << now << then;
  auto& loser = now.empty() ? *first : *second;
  EXPECT_NO_THROW(loser.commit());
  (now.empty() ? *second : *first).rollback();
  const auto rows = first->prepare("SELECT SUM(N) FROM T", Reading::all);
  rows->execute({});
  std::int64_t sum = -1;
  ASSERT_TRUE(rows->fetch() && rows->integer(0, sum));
  EXPECT_EQ(sum, 0);
}

TEST(MariaDbSession, a_killed_server_is_noticed_by_the_next_statement_and_by_no_light_check) {
  test_support::PrivateMariaDb server;
  const auto database = server.create_database();
  auto session = spcdb::open_odbc(database.odbc_connect_text(), false);
  session->run("CREATE TABLE T (A INTEGER)");
  auto kept = session->prepare("SELECT A FROM T", Reading::all);
  session->begin();
  session->run("INSERT INTO T VALUES (1)");
  server.kill_hard();
  std::uint32_t value = 0;
  EXPECT_EQ(session->information(86, value), 0) << "the driver answers from memory";
  const auto first = caught([&] { session->run("INSERT INTO T VALUES (2)"); });
  EXPECT_TRUE(has_state(first, "08S01") || has_native(first, 2006) || has_native(first, 2013) ||
              has_native(first, 5014))
      << first.state;
  EXPECT_TRUE(session->link_is_dead());
  EXPECT_NE(caught([&] { kept->execute({}); }).code, 0);
  EXPECT_TRUE(has_state(caught([&] { session->prepare("SELECT 1", Reading::all); }), "08003"));
  EXPECT_NE(caught([&] { session->commit(); }).code, 0);
  server.restart();
  EXPECT_NE(caught([&] { session->run("SELECT 1"); }).code, 0) << "no driver comes back by itself";
  kept.reset();
  session = spcdb::open_odbc(database.odbc_connect_text(), false);
  const auto rows = session->prepare("SELECT COUNT(*) FROM T", Reading::all);
  rows->execute({});
  std::int64_t count = -1;
  ASSERT_TRUE(rows->fetch() && rows->integer(0, count));
  EXPECT_EQ(count, 0);
}

/// Connects, writes two rows in one transaction, reads them back and closes.
void run_of_work(spcdb::Session& session) {
  using spcdb::Parameter;
  session.begin();
  const auto insert = session.prepare("INSERT INTO T (ID, N) VALUES (?,?)", Reading::all);
  for (const int id : {1, 2}) {
    const Parameter values[] = {Parameter::of_integer(id), Parameter::of_text("one")};
    insert->execute(values);
  }
  session.commit();
  const auto rows = session.prepare("SELECT ID, N FROM T ORDER BY ID", Reading::forward);
  const spcdb::ColumnBinding bindings[] = {{spcdb::ValueKind::integer, 0}, {spcdb::ValueKind::text, 20}};
  rows->bind_columns(bindings);
  rows->execute({});
  while (rows->fetch()) {
    std::int64_t id = 0;
    rows->integer(0, id);
  }
}

/// What a sweep's run left behind: as many releases as there were things to release.
void expect_balanced(const test_support::FailKthCall& hook, bool sqlite) {
  const auto count = [](const std::vector<std::string>& calls, const char* function) {
    return std::count(calls.begin(), calls.end(), function);
  };
  const char* take = sqlite ? "sqlite3_prepare_v3" : "SQLAllocHandle";
  const char* give = sqlite ? "sqlite3_finalize" : "SQLFreeHandle";
  const auto taken = count(hook.functions(), take) - (hook.failed_function() == take ? 1 : 0);
  EXPECT_EQ(taken, count(hook.releases(), give)) << hook.failed_function();
}

TEST_P(SessionFailure, a_failure_of_any_call_leaves_all_or_nothing_and_keeps_no_handle) {
  create_table();
  std::set<std::string> failed;
  for (std::size_t k = 1;; ++k) {
    test_support::FailKthCall hook(k);
    std::string native;
    try {
      const auto worker = connect(&hook);
      run_of_work(*worker);
    } catch (CDBException* failure) {
      native = failure->m_strStateNativeOrigin.view();
      failure->Delete();
    }
    expect_balanced(hook, on_sqlite());
    const auto rows = integer_of("SELECT COUNT(*) FROM T");
    ASSERT_TRUE(rows == 0 || rows == 2) << k << " " << hook.failed_function();
    if (!hook.fired()) {
      EXPECT_EQ(native, "");
      EXPECT_EQ(rows, 2);
      break;
    }
    failed.insert(hook.failed_function());
    const bool told = native == "State:HY000,Native:4711,Origin:[test]";
    const bool never_an_error = hook.failed_function() == "SQLSetConnectAttr" && native.empty() && rows == 2;
    EXPECT_TRUE(told || never_an_error) << k << " " << hook.failed_function() << " " << native;
    session->run("DELETE FROM T");
  }
  EXPECT_TRUE(failed.contains(on_sqlite() ? "sqlite3_step" : "SQLEndTran"));
}

}  // namespace
}  // namespace database_test
