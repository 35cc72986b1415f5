// Plan, on SQLite, MariaDB and SQLite's ODBC driver
//   AutoODBCTransaction: commit, rollback, end of scope, nesting, ends by an exception -> AutoODBCTransaction_live.*
//   check_connection: healthy, without CSMON, without a handle, closed -> check_connection_live.*
//   attach: a raw handle works, stays open at the object's end, at a second attach and at Close; a connection of one's
//     own is closed by it; updatable and connect text are kept; a null handle fails -> attach_live.*
//   find_db_type: what each server is taken for; fragments run where they are meant for -> find_db_type_live.*
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/recordset.h"
#include "spcbase/testkit/database_fixture.h"
#include "spcbase/testkit/raw_odbc.h"
#include "spcbase/testkit/statement_log.h"

namespace {

using Statements = std::vector<std::string>;

const char* const insert_station = "INSERT INTO CSSTN (STNID, NAME) VALUES (1, 'north')";
const char* const count_stations = "SELECT COUNT(*) FROM CSSTN";

class AutoODBCTransaction_live : public test_support::DatabaseTest {};
INSTANTIATE_TEST_SUITE_P(Servers, AutoODBCTransaction_live, test_support::all_servers(), test_support::server_name);

TEST_P(AutoODBCTransaction_live, commit_keeps_the_work) {
  {
    AutoODBCTransaction guard(db(), true);
    EXPECT_TRUE(db().in_transaction);
    db().ExecuteSQL(insert_station);
    EXPECT_TRUE(guard.commit());
    EXPECT_FALSE(db().in_transaction);
  }
  EXPECT_EQ(value(count_stations), "1");
}

TEST_P(AutoODBCTransaction_live, rollback_undoes_the_work) {
  AutoODBCTransaction guard(db(), true);
  db().ExecuteSQL(insert_station);
  EXPECT_TRUE(guard.rollback());
  EXPECT_FALSE(db().in_transaction);
  EXPECT_EQ(value(count_stations), "0");
}

TEST_P(AutoODBCTransaction_live, the_end_of_the_scope_undoes_what_was_not_committed) {
  {
    AutoODBCTransaction guard(db(), true);
    db().ExecuteSQL(insert_station);
  }
  EXPECT_FALSE(db().in_transaction);
  EXPECT_EQ(value(count_stations), "0");
}

TEST_P(AutoODBCTransaction_live, inner_commit_does_nothing_and_only_the_outer_reaches_the_database) {
  test_support::StatementLog recorder(db());
  {
    AutoODBCTransaction outer(db(), true);
    {
      AutoODBCTransaction inner(db(), true);
      db().ExecuteSQL(insert_station);
      EXPECT_TRUE(inner.commit());
      EXPECT_TRUE(inner.rollback());
      EXPECT_TRUE(db().in_transaction);
    }
    EXPECT_TRUE(outer.commit());
  }
  EXPECT_EQ(recorder.statements, (Statements{"BEGIN", insert_station, "COMMIT"}));
  EXPECT_EQ(value(count_stations), "1");
}

TEST_P(AutoODBCTransaction_live, an_inner_guard_that_ends_by_an_exception_undoes_nothing_but_the_outer_does) {
  test_support::StatementLog recorder(db());
  try {
    AutoODBCTransaction outer(db(), true);
    db().ExecuteSQL(insert_station);
    try {
      AutoODBCTransaction inner(db(), true);
      db().ExecuteSQL("INSERT INTO CSSTN (STNID, NAME) VALUES (2, 'south')");
      throw std::runtime_error("inside");
    } catch (const std::runtime_error&) {
      EXPECT_EQ(recorder.statements.back().substr(0, 6), "INSERT");
      EXPECT_TRUE(db().in_transaction);
    }
    throw std::runtime_error("outside");
  } catch (const std::runtime_error&) {
    EXPECT_EQ(recorder.statements.back(), "ROLLBACK");
  }
  EXPECT_EQ(value(count_stations), "0");
}

TEST_P(AutoODBCTransaction_live, commit_followed_by_the_end_of_the_scope_sends_no_rollback) {
  test_support::StatementLog recorder(db());
  {
    AutoODBCTransaction guard(db(), true);
    EXPECT_TRUE(guard.commit());
    EXPECT_TRUE(guard.commit());
    EXPECT_TRUE(guard.rollback());
  }
  EXPECT_EQ(recorder.statements, (Statements{"BEGIN", "COMMIT"}));
}

TEST_P(AutoODBCTransaction_live, one_guard_follows_another) {
  for (int i = 1; i <= 3; ++i) {
    AutoODBCTransaction guard(db(), true);
    CString insert;
    insert.Format("INSERT INTO CSSTN (STNID, NAME) VALUES (%d, 'n')", i);
    db().ExecuteSQL(insert);
    if (i != 2) {
      EXPECT_TRUE(guard.commit());
    }
  }
  EXPECT_EQ(value(count_stations), "2");
}

class check_connection_live : public test_support::DatabaseTest {};
INSTANTIATE_TEST_SUITE_P(Servers, check_connection_live, test_support::all_servers(), test_support::server_name);

TEST_P(check_connection_live, a_healthy_database_passes_both_forms) {
  EXPECT_TRUE(db().check_connection(0));
  EXPECT_TRUE(db().check_connection(1));
  EXPECT_TRUE(db().check_connection(-1));
}

TEST_P(check_connection_live, without_CSMON_the_full_form_fails_and_the_light_one_passes) {
  execute("ALTER TABLE CSMON RENAME TO CSMON_AWAY");
  EXPECT_FALSE(db().check_connection(0));
  EXPECT_TRUE(db().check_connection(1));
  execute("ALTER TABLE CSMON_AWAY RENAME TO CSMON");
  EXPECT_TRUE(db().check_connection(0));
}

TEST_P(check_connection_live, without_a_handle_it_fails_and_runs_nothing) {
  CDatabaseEx closed;
  test_support::StatementLog recorder(closed);
  EXPECT_FALSE(closed.check_connection(0));
  EXPECT_FALSE(closed.check_connection(1));
  EXPECT_TRUE(recorder.statements.empty());
  db().Close();
  EXPECT_FALSE(db().check_connection(0));
  EXPECT_FALSE(db().check_connection(1));
}

TEST_P(check_connection_live, the_full_form_runs_this_statement) {
  test_support::StatementLog recorder(db());
  db().check_connection(0);
  db().check_connection(1);
  EXPECT_EQ(recorder.statements, Statements{"SELECT MONID FROM CSMON WHERE MONID = 0"});
}

// Handles of ODBC: there are none on SQLite directly, so its file is reached through its driver.
class attach_live : public test_support::DatabaseTest {
 protected:
  attach_live() { db().Close(); }
  std::unique_ptr<test_support::RawOdbc> connect() {
    return std::make_unique<test_support::RawOdbc>(database().raw_odbc_text());
  }
};
INSTANTIATE_TEST_SUITE_P(Servers, attach_live,
                         testing::Values(test_support::ServerKind::mariadb, test_support::ServerKind::sqlite_odbc),
                         test_support::server_name);

TEST_P(attach_live, makes_a_connection_of_a_raw_handle) {
  const auto raw = connect();
  CDatabaseEx database;
  EXPECT_TRUE(database.attach(raw->handle(), true, "DSN=plant"));
  EXPECT_TRUE(database.attached);
  EXPECT_EQ(database.m_hdbc, raw->handle());
  EXPECT_EQ(database.GetConnect(), "DSN=plant");
  EXPECT_TRUE(database.CanUpdate());
  EXPECT_TRUE(database.CanTransact());
  EXPECT_TRUE(database.check_connection(0));
  EXPECT_TRUE(database.check_connection(1));
  AutoODBCTransaction guard(database, true);
  database.ExecuteSQL(insert_station);
  EXPECT_TRUE(guard.commit());
  RSCount count(&database, "CSSTN", nullptr);
  EXPECT_TRUE(requery_rs_for_read(count, nullptr, true));
  EXPECT_EQ(count.result, 1);
}

TEST_P(attach_live, keeps_whether_rows_may_be_written) {
  const auto raw = connect();
  CDatabaseEx database;
  database.attach(raw->handle(), false, "");
  EXPECT_EQ(database.m_bUpdatable, FALSE);
  database.attach(raw->handle(), true, "");
  EXPECT_EQ(database.m_bUpdatable, TRUE);
}

TEST_P(attach_live, the_end_of_the_object_leaves_the_handle_open) {
  const auto raw = connect();
  {
    CDatabaseEx database;
    database.attach(raw->handle(), true, "");
    database.ExecuteSQL(insert_station);
  }
  EXPECT_EQ(raw->value(count_stations), "1");
}

TEST_P(attach_live, a_second_attach_leaves_the_first_handle_open) {
  const auto first = connect();
  const auto second = connect();
  CDatabaseEx database;
  database.attach(first->handle(), true, "first");
  database.attach(second->handle(), true, "second");
  EXPECT_TRUE(database.attached);
  EXPECT_EQ(database.m_hdbc, second->handle());
  EXPECT_EQ(database.GetConnect(), "second");
  EXPECT_EQ(first->value(count_stations), "0");
  database.ExecuteSQL(insert_station);
  EXPECT_EQ(first->value(count_stations), "1");
}

TEST_P(attach_live, closes_a_connection_of_the_objects_own) {
  class Watched : public CDatabaseEx {
   public:
    void Close() override {
      ++closed;
      CDatabaseEx::Close();
    }
    int closed = 0;
  };
  const auto raw = connect();
  Watched database;
  database.OpenEx(this->database().raw_odbc_text().c_str());
  database.closed = 0;
  database.attach(raw->handle(), true, "");
  EXPECT_EQ(database.closed, 1);
  database.attach(raw->handle(), true, "");
  EXPECT_EQ(database.closed, 1);
  EXPECT_TRUE(database.check_connection(0));
}

TEST_P(attach_live, does_not_look_at_the_transaction_flag) {
  const auto raw = connect();
  CDatabaseEx database;
  database.in_transaction = true;
  database.attach(raw->handle(), true, "");
  EXPECT_TRUE(database.in_transaction);
}

TEST(attach, without_a_handle_fails_and_leaves_the_object_usable) {
  CDatabaseEx database;
  try {
    database.attach(nullptr, true, "nothing");
    ADD_FAILURE() << "nothing was thrown";
  } catch (CDBException* e) {
    e->Delete();
  }
  EXPECT_FALSE(database.attached);
  EXPECT_FALSE(database.check_connection(0));
  database.OpenEx("sqlite::memory:");
  EXPECT_TRUE(database.check_connection(1));
}

TEST(CDatabaseEx, starts_with_both_flags_clear) {
  const CDatabaseEx database;
  EXPECT_FALSE(database.attached);
  EXPECT_FALSE(database.in_transaction);
}

class find_db_type_live : public test_support::DatabaseTest {};
INSTANTIATE_TEST_SUITE_P(Servers, find_db_type_live, test_support::all_servers(), test_support::server_name);

TEST_P(find_db_type_live, takes_each_server_for_the_dialect_whose_probe_it_runs) {
  test_support::StatementLog recorder(db());
  if (kind() == test_support::ServerKind::mariadb) {
    EXPECT_EQ(dbcheck::find_db_type(db()), 3);
    EXPECT_EQ(recorder.statements,
              (Statements{"select getdate()", "select sysdate from dual", "select date()", "select curdate()"}));
  } else {
    // SQLite has a function of that name; it is none of the four.
    EXPECT_EQ(dbcheck::find_db_type(db()), 2);
    EXPECT_EQ(recorder.statements, (Statements{"select getdate()", "select sysdate from dual", "select date()"}));
  }
}

TEST_P(find_db_type_live, works_inside_a_transaction_and_leaves_it_open) {
  AutoODBCTransaction guard(db(), true);
  db().ExecuteSQL(insert_station);
  dbcheck::find_db_type(db());
  EXPECT_TRUE(guard.commit());
  EXPECT_EQ(value(count_stations), "1");
}

TEST_P(find_db_type_live, the_fragments_of_dialect_3_run_where_it_is_found) {
  execute(insert_station);
  const int dialect = 3;
  RSCount by_null(&db(), "CSSTN", dbcheck::make_check_null_function(dialect, "MAX(STNID)", "0"));
  EXPECT_TRUE(requery_rs_for_read(by_null, nullptr, true));
  EXPECT_EQ(by_null.result, 1);
  RSCount by_bits(&db(), "CSSTN", dbcheck::make_bitwise_and_expr(dialect, "STNID", "3"));
  EXPECT_TRUE(requery_rs_for_read(by_bits, nullptr, true));
  EXPECT_EQ(by_bits.result, 1);
  if (kind() == test_support::ServerKind::mariadb) {
    RSMaxDateTime moment(&db(), "CSSTN",
                         dbcheck::make_cast_to_dt_expr(dialect, false, "'2024-02-03 04:05:06'", nullptr));
    EXPECT_TRUE(requery_rs_for_read(moment, nullptr, true));
    EXPECT_EQ(moment.result.day, 3);
  }
}

TEST_P(find_db_type_live, no_server_here_has_the_function_of_an_oracle_installation) {
  test_support::StatementLog recorder(db());
  for (const int dialect : {-1, 0, 2, 3})
    EXPECT_FALSE(dbcheck::check_de_to_date_sp_exist(db(), dialect));
  EXPECT_TRUE(recorder.statements.empty());
  EXPECT_FALSE(dbcheck::check_de_to_date_sp_exist(db(), 1));
  EXPECT_EQ(recorder.statements, Statements{"select de_to_date('2019-01-01 00:00:00') from dual"});
}

}  // namespace
