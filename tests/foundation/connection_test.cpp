// Plan, against sessions that play a server
//   find_db_type: each dialect by its probe, none, what is no database failure -> find_db_type.*
//   AutoODBCTransaction: without transactions, a begin, commit or rollback that fails, both kinds of guard, a
//     transaction that the host began -> AutoODBCTransaction.*
//   check_connection: the answers of a driver, a failure of any kind -> check_connection.*
//   check_de_to_date_sp_exist: the statement, only for Oracle -> check_de_to_date_sp_exist.*
//   The questions to a SQL Server: exact statements, answers, none -> sql_server.*
//   What each of the four servers is sent for the common look-ups -> dialect_statements.*
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/foundation/recordset.h"
#include "spcbase/foundation/schema.h"
#include "spcbase/platform/database/connection.h"
#include "spcbase/testkit/scripted_session.h"

namespace {

using test_support::error;
using test_support::SeenCall;
using Statements = std::vector<std::string>;

constexpr const char* probes[] = {"select getdate()", "select sysdate from dual", "select date()", "select curdate()"};

// A connection to a server that a script plays.
class Played {
 public:
  Played() : script(std::make_shared<test_support::Script>()) {}
  CDatabaseEx& open() {
    db.adopt_session(std::make_unique<test_support::ScriptedSession>(script));
    script->forget_calls();
    return db;
  }
  // The calls that begin and end transactions.
  std::vector<std::string> transaction_calls() const {
    std::vector<std::string> names;
    for (const SeenCall& call : script->calls())
      if (call.function == "begin" || call.function == "commit" || call.function == "rollback")
        names.push_back(call.function);
    return names;
  }

  std::shared_ptr<test_support::Script> script;
  CDatabaseEx db;
};

template <class Work>
bool throws_database_failure(Work work) {
  try {
    work();
  } catch (CDBException* e) {
    e->Delete();
    return true;
  }
  return false;
}

// Stands behind the door of a session and throws what no driver throws.
class Rogue : public spcdb::CallHook {
 public:
  std::optional<spcdb::Diagnostic> before_call(const char*) override { throw std::runtime_error("rogue"); }
};

TEST(find_db_type, gives_the_first_dialect_whose_probe_runs) {
  for (int dialect = 0; dialect < 4; ++dialect) {
    Played server;
    Statements expected;
    for (int i = 0; i < 4; ++i) {
      auto& rule = server.script->on(probes[i]);
      if (i < dialect)
        rule.refuse(error("42000", 1, "no such function"));
      else
        rule.answer({"now"}, {{"2024-01-01"}});
      if (i <= dialect) expected.emplace_back(probes[i]);
    }
    EXPECT_EQ(dbcheck::find_db_type(server.open()), dialect);
    EXPECT_EQ(server.script->statements(), expected);
  }
}

TEST(find_db_type, gives_minus_1_when_all_four_probes_fail) {
  Played server;
  for (const char* probe : probes)
    server.script->on(probe).refuse(error("42883", 1, "function does not exist"));
  EXPECT_EQ(dbcheck::find_db_type(server.open()), -1);
  EXPECT_EQ(server.script->statements(), Statements(std::begin(probes), std::end(probes)));
}

TEST(find_db_type, lets_pass_what_is_no_failure_of_the_database) {
  CDatabaseEx db;
  db.OpenEx("sqlite::memory:");
  Rogue rogue;
  db.connection()->session().gate().set_hook(&rogue);
  EXPECT_THROW(dbcheck::find_db_type(db), std::runtime_error);
  db.connection()->session().gate().set_hook(nullptr);
}

TEST(check_de_to_date_sp_exist, asks_oracle_alone) {
  const char* question = "select de_to_date('2019-01-01 00:00:00') from dual";
  for (const bool exists : {true, false}) {
    Played server;
    if (exists)
      server.script->on(question).answer({"d"}, {{"2019-01-01"}});
    else
      server.script->on(question).refuse(error("42S22", 904, "\"DE_TO_DATE\": invalid identifier"));
    server.open();
    EXPECT_EQ(dbcheck::check_de_to_date_sp_exist(server.db, 1), exists);
    EXPECT_EQ(server.script->statements(), Statements{question});
    for (const int other : {-1, 0, 2, 3, 4})
      EXPECT_FALSE(dbcheck::check_de_to_date_sp_exist(server.db, other));
    EXPECT_EQ(server.script->statements().size(), 1U);
  }
}

TEST(AutoODBCTransaction, without_transaction_support_ends_well_and_never_asks_the_database) {
  Played server;
  server.script->transactions(false);
  server.open();
  for (const bool throwing : {false, true}) {
    AutoODBCTransaction guard(server.db, throwing);
    EXPECT_FALSE(server.db.in_transaction);
    EXPECT_TRUE(guard.commit());
    EXPECT_TRUE(guard.rollback());
  }
  EXPECT_TRUE(server.transaction_calls().empty());
}

TEST(AutoODBCTransaction, begins_commits_and_sends_no_rollback_afterwards) {
  Played server;
  server.open();
  {
    AutoODBCTransaction guard(server.db, true);
    EXPECT_TRUE(guard.commit());
  }
  EXPECT_EQ(server.transaction_calls(), (Statements{"begin", "commit"}));
}

TEST(AutoODBCTransaction, rolls_back_once_at_its_end) {
  Played server;
  server.open();
  {
    AutoODBCTransaction outer(server.db, true);
    AutoODBCTransaction inner(server.db, true);
    EXPECT_TRUE(inner.commit());
    EXPECT_TRUE(inner.rollback());
  }
  EXPECT_EQ(server.transaction_calls(), (Statements{"begin", "rollback"}));
  EXPECT_FALSE(server.db.in_transaction);
}

TEST(AutoODBCTransaction, a_failed_begin_is_thrown_by_a_throwing_guard) {
  Played server;
  server.script->refuse_call("begin", error("HY000", 5, "locked"));
  server.open();
  EXPECT_TRUE(throws_database_failure([&] { AutoODBCTransaction guard(server.db, true); }));
  EXPECT_FALSE(server.db.in_transaction);
}

TEST(AutoODBCTransaction, a_failed_begin_lets_the_other_guard_go_on_without_a_transaction) {
  Played server;
  server.script->refuse_call("begin", error("HY000", 5, "locked"));
  server.open();
  {
    AutoODBCTransaction guard(server.db, false);
    EXPECT_FALSE(server.db.in_transaction);
    EXPECT_TRUE(guard.commit());
  }
  EXPECT_EQ(server.transaction_calls(), Statements{"begin"});
}

TEST(AutoODBCTransaction, a_failed_commit_is_thrown_and_the_guards_end_rolls_back) {
  Played server;
  server.script->refuse_call("commit", error("HY000", 5, "locked"));
  server.open();
  {
    AutoODBCTransaction guard(server.db, true);
    EXPECT_TRUE(throws_database_failure([&] { guard.commit(); }));
    EXPECT_TRUE(server.db.in_transaction);
  }
  EXPECT_FALSE(server.db.in_transaction);
  EXPECT_EQ(server.transaction_calls(), (Statements{"begin", "commit", "rollback"}));
}

TEST(AutoODBCTransaction, a_failed_commit_is_false_for_the_other_guard_and_may_be_repeated) {
  Played server;
  server.script->refuse_call("commit", error("HY000", 5, "locked"));
  server.open();
  {
    AutoODBCTransaction guard(server.db, false);
    EXPECT_FALSE(guard.commit());
    EXPECT_TRUE(server.db.in_transaction);
    EXPECT_TRUE(guard.commit());
    EXPECT_FALSE(server.db.in_transaction);
  }
  EXPECT_EQ(server.transaction_calls(), (Statements{"begin", "commit", "commit"}));
}

TEST(AutoODBCTransaction, a_failed_rollback_is_thrown_or_false_and_leaves_the_transaction_open) {
  for (const bool throwing : {true, false}) {
    Played server;
    server.script->refuse_call("rollback", error("08S01", 2006, "gone"));
    server.open();
    AutoODBCTransaction guard(server.db, throwing);
    if (throwing) {
      EXPECT_TRUE(throws_database_failure([&] { guard.rollback(); }));
    } else {
      EXPECT_FALSE(guard.rollback());
    }
    EXPECT_TRUE(server.db.in_transaction);
    EXPECT_TRUE(guard.rollback());
    EXPECT_FALSE(server.db.in_transaction);
  }
}

TEST(AutoODBCTransaction, a_failed_rollback_at_the_guards_end_hides_no_other_failure) {
  Played server;
  server.script->refuse_call("rollback", error("08S01", 2006, "gone"));
  server.open();
  try {
    AutoODBCTransaction guard(server.db, true);
    throw std::runtime_error("the cause");
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ(e.what(), "the cause");
  }
  EXPECT_TRUE(server.db.in_transaction);
}

TEST(AutoODBCTransaction, is_passive_in_a_transaction_that_the_host_began_itself) {
  Played server;
  server.open();
  ASSERT_TRUE(server.db.BeginTrans());
  {
    AutoODBCTransaction guard(server.db, true);
    EXPECT_FALSE(server.db.in_transaction);
    EXPECT_TRUE(guard.commit());
    EXPECT_TRUE(guard.rollback());
  }
  EXPECT_EQ(server.transaction_calls(), Statements{"begin"});
  EXPECT_TRUE(server.db.CommitTrans());
}

TEST(guarded, a_lost_answer_to_a_commit_is_a_commit_in_doubt_and_never_tried_again) {
  for (const char* state : {"08S01", "08007", "40003"}) {
    Played server;
    server.script->lose_answer("commit", error(state, 2006, "Server has gone away"));
    server.open();
    AutoODBCTransaction guard(server.db, true);
    const auto outcome = guarded([&] { return guard.commit(); });
    ASSERT_FALSE(outcome.ok());
    EXPECT_EQ(outcome.failure().failure_class, FailureClass::commit_in_doubt) << state;
    EXPECT_FALSE(outcome.failure().may_retry());
  }
}

TEST(guarded, a_link_that_is_lost_elsewhere_is_no_commit_in_doubt) {
  Played server;
  server.script->on("DELETE FROM CSSTN").refuse(error("08S01", 2006, "Server has gone away"));
  server.script->refuse_call("rollback", error("08S01", 2006, "Server has gone away"));
  server.open();
  EXPECT_EQ(guarded([&] { server.db.ExecuteSQL("DELETE FROM CSSTN"); }).failure().failure_class,
            FailureClass::link_lost);
  AutoODBCTransaction guard(server.db, true);
  EXPECT_EQ(guarded([&] { return guard.rollback(); }).failure().failure_class, FailureClass::link_lost);
}

TEST(check_connection, asks_the_driver_for_information_86_and_takes_0_and_1_for_alive) {
  for (const short code : {short{0}, short{1}, short{-1}, short{-2}, short{100}}) {
    Played server;
    server.script->information(86, code, 7);
    server.open();
    EXPECT_EQ(server.db.check_connection(1), code == 0 || code == 1) << code;
    EXPECT_EQ(server.script->calls(), (std::vector<SeenCall>{{"information", "", "86"}}));
  }
}

TEST(check_connection, fails_when_its_statement_fails) {
  Played server;
  server.script->on("SELECT MONID FROM CSMON WHERE MONID = 0").refuse(error("08S01", 2006, "gone"));
  EXPECT_FALSE(server.open().check_connection(0));
}

TEST(check_connection, takes_a_failure_of_any_kind_for_a_dead_link) {
  CDatabaseEx db;
  db.OpenEx("sqlite::memory:");
  Rogue rogue;
  db.connection()->session().gate().set_hook(&rogue);
  EXPECT_FALSE(db.check_connection(0));
  db.connection()->session().gate().set_hook(nullptr);
}

// A connection to a SQL Server.
class sql_server : public testing::Test, protected Played {
 protected:
  sql_server() { script->quotes('"', '"'); }
  const std::string any_ =
      "SELECT \"object_id\",\"name\",\"index_id\" FROM sys.indexes WHERE name = ? AND object_id = "
      "OBJECT_ID(?)";
};

TEST_F(sql_server, an_index_that_is_not_clustered_is_found_only_when_any_will_do) {
  script->on(any_).answer({"object_id", "name", "index_id"}, {{12, "IXMON2", 2}});
  script->on(any_ + " AND index_id = ?").answer({"object_id", "name", "index_id"}, {});
  open();
  EXPECT_TRUE(check_sql_server_index(&db, "CSMON", "IXMON2", true));
  EXPECT_FALSE(check_sql_server_index(&db, "CSMON", "IXMON2", false));
  const auto calls = script->calls_of("execute");
  ASSERT_EQ(calls.size(), 2U);
  EXPECT_EQ(calls[0].parameters, "'IXMON2', 'CSMON'");
  EXPECT_EQ(calls[1].parameters, "'IXMON2', 'CSMON', 1");
}

TEST_F(sql_server, a_missing_index_is_not_found) {
  script->on(any_).answer({"object_id", "name", "index_id"}, {});
  EXPECT_FALSE(check_sql_server_index(&open(), "CSMON", "NOSUCH", true));
}

TEST_F(sql_server, tells_its_edition) {
  const char* question = "SELECT SERVERPROPERTY('edition')";
  script->on(question).answer({""}, {{"Developer Edition (64-bit)"}});
  EXPECT_EQ(get_sql_server_edition(&open()), "Developer Edition (64-bit)");
  EXPECT_EQ(script->statements(), Statements{question});
}

TEST_F(sql_server, without_a_row_has_no_edition) {
  script->on("SELECT SERVERPROPERTY('edition')").answer({"edition"}, {});
  EXPECT_TRUE(get_sql_server_edition(&open()).IsEmpty());
}

TEST_F(sql_server, oracle_has_no_edition_and_does_not_throw) {
  script->on_prefix("SELECT SERVERPROPERTY").refuse(error("42S22", 904, "\"SERVERPROPERTY\": invalid identifier"));
  EXPECT_TRUE(get_sql_server_edition(&open()).IsEmpty());
}

TEST_F(sql_server, tells_the_type_of_a_column_as_it_writes_it) {
  const char* question =
      "SELECT \"DATA_TYPE\" FROM INFORMATION_SCHEMA.COLUMNS WHERE TABLE_NAME = ? AND COLUMN_NAME = ?";
  script->on(question).once().answer({"DATA_TYPE"}, {{"nVarChar"}, {"int"}});
  script->on(question).answer({"DATA_TYPE"}, {});
  open();
  EXPECT_EQ(get_column_data_type(&db, "CSMON", "NAME"), "nVarChar");
  EXPECT_TRUE(get_column_data_type(&db, "CSMON", "NOSUCH").IsEmpty());
  EXPECT_EQ(script->calls_of("execute")[0].parameters, "'CSMON', 'NAME'");
}

TEST_F(sql_server, another_failure_of_the_question_for_a_type_passes) {
  script->on_prefix("SELECT \"DATA_TYPE\"").refuse(error("42S02", 942, "table or view does not exist"));
  open();
  EXPECT_TRUE(throws_database_failure([&] { get_column_data_type(&db, "CSMON", "NAME"); }));
}

struct Quoting {
  const char* server;
  char open;
  char close;
};

constexpr Quoting quotings[] = {
    {"Microsoft SQL Server", '"', '"'}, {"Oracle", '"', '"'}, {"Microsoft Access", '`', '`'}, {"MySQL", '`', '`'}};

std::string quoted(std::string text, const Quoting& quoting) {
  for (char& c : text)
    c = c == '[' ? quoting.open : c == ']' ? quoting.close : c;
  return text;
}

TEST(dialect_statements, names_get_the_quotes_of_each_server_and_bare_ones_stay_bare) {
  for (const Quoting& quoting : quotings) {
    SCOPED_TRACE(quoting.server);
    Played server;
    server.script->quotes(quoting.open, quoting.close);
    const std::string variable =
        quoted("SELECT [SAMPID],[CHRTID],[PIECENO],[VARVALUE] FROM [CSVDAT] WHERE [SAMPID] = ?", quoting);
    const std::string sample = "SELECT SAMPID,PROFID,PROFREV,CTIME FROM CSSAMP WHERE SAMPID = ?";
    const std::string user = quoted("SELECT USERID,NAME,FULLNAME,PASSWORD FROM [CSUSERV]", quoting);
    const std::string monitor = quoted(
        "SELECT [CSMONV].[MONID],[CSMONV].[NAME],[CSMINNV].[NODEID] FROM [CSMINNV],[CSMONV] WHERE "
        "[CSMONV].[MONID] = [CSMINNV].[MONID]",
        quoting);
    server.script->on(variable).answer({"SAMPID", "CHRTID", "PIECENO", "VARVALUE"}, {{1, 2, 3, 0.5}});
    server.script->on(sample).answer({"SAMPID", "PROFID", "PROFREV", "CTIME"}, {{1, 2, nullptr, nullptr}});
    server.script->on(user).answer({"USERID", "NAME", "FULLNAME", "PASSWORD"}, {{1, "ann", "Ann", nullptr}});
    server.script->on(monitor).answer({"MONID", "NAME", "NODEID"}, {{1, "m", 2}});
    server.open();

    CRSVariable variables(&server.db);
    EXPECT_TRUE(requery_rs_for_read(variables, "[SAMPID] = 1", true));
    EXPECT_EQ(variables.varvalue, 0.5);
    CRSSample samples(&server.db);
    EXPECT_TRUE(requery_rs_for_read(samples, "SAMPID = 1", true));
    EXPECT_TRUE(samples.IsFieldNull(&samples.profrev));
    CRSUsers users(&server.db);
    EXPECT_TRUE(requery_rs_for_read(users, nullptr, true));
    EXPECT_EQ(users.fullname, "Ann");
    RSMonInNode1 monitors(&server.db);
    EXPECT_TRUE(requery_rs_for_read(monitors, RSMonInNode1::join, true));
    EXPECT_EQ(monitors.nodeid, 2);
    EXPECT_EQ(server.script->statements(), (Statements{variable, sample, user, monitor}));
  }
}

TEST(dialect_statements, a_computed_column_is_read_whatever_the_server_calls_it) {
  for (const char* name : {"COUNT(*)", "", "Expr1000", "count"}) {
    Played server;
    server.script->on("SELECT COUNT(*) FROM CSMON").answer({name}, {{5}});
    server.open();
    RSCount count(&server.db, "CSMON", nullptr);
    EXPECT_TRUE(requery_rs_for_read(count, nullptr, true));
    EXPECT_EQ(count.result, 5);
    EXPECT_EQ(count.column_name, name);
    EXPECT_TRUE(requery_rs_for_read(count, nullptr, true));
    EXPECT_EQ(server.script->statements(), (Statements{"SELECT COUNT(*) FROM CSMON", "SELECT COUNT(*) FROM CSMON"}));
  }
}

TEST(dialect_statements, a_driver_that_tells_no_sizes_of_columns_is_read_all_the_same) {
  Played server;
  server.script->column_sizes_zero();
  server.script->quotes('`', '`');
  server.script->on("SELECT `NODEID`,`NAME` FROM `CSNODE`").answer({"NODEID", "NAME"}, {{1, std::string(255, 'x')}});
  server.open();
  RSNode1 rs(&server.db);
  EXPECT_TRUE(requery_rs_for_read(rs, nullptr, true));
  EXPECT_EQ(rs.name.GetLength(), 255);
}

TEST(dialect_statements, an_aggregate_without_any_row_leaves_its_result_at_0) {
  Played server;
  server.script->on("SELECT MAX(MONID) FROM CSMON").answer({"MAX"}, {});
  server.open();
  RSMax max(&server.db, "CSMON", "MONID");
  EXPECT_TRUE(requery_rs_for_read(max, nullptr, true));
  EXPECT_TRUE(max.m_bEOF);
  EXPECT_EQ(max.result, 0);
}

}  // namespace
