// Plan
//   the list: the 27 triples in their order -> running_numbers.*
//   one table, on SQLite and MariaDB: empty tables, missing, one and several counter rows, both ways; statements; a
//     connection that is not open; the caller's transaction -> update_running_table_live.*, update_running_table.*
//   all tables: order, one transaction, a failure at the tenth with and without one -> update_all_running_tables.*
//   every call into the driver fails once -> running_number_sweep.*
//   is_pk_violation: the texts of each server, as a script gives them and as the servers themselves do
//     -> is_pk_violation.*, is_pk_violation_live.*
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/foundation/running_number.h"
#include "spcbase/testkit/database_fixture.h"
#include "spcbase/testkit/scripted_session.h"
#include "spcbase/testkit/statement_log.h"
#include "tests/support/failure_sweep.h"

namespace {

using Statements = std::vector<std::string>;
using test_support::FailKthCall;
using test_support::SchemaDatabase;

/// The rows of all counters, each as its numbers parted by "," behind the counter's name.
Statements all_counters(SchemaDatabase& database) {
  std::string query;
  for (const running_number& number : running_numbers) {
    if (!query.empty()) query += " UNION ALL ";
    query += std::string("SELECT '") + number.counter + "' AS NAME, MAXNO FROM " + number.counter;
  }
  std::map<std::string, std::string> numbers;
  for (const auto& row : database.rows(query))
    numbers[row[0].value_or("")] += "," + row[1].value_or("NULL");
  Statements all;
  for (const running_number& number : running_numbers)
    all.push_back(number.counter + numbers[number.counter]);
  return all;
}

/// Every table gets rows up to an id of its own, and every counter a wrong number.
void fill(SchemaDatabase& database) {
  int id = 100;
  for (const running_number& number : running_numbers) {
    const std::string insert = std::string("INSERT INTO ") + number.table + " (" + number.id_column + ") VALUES (" +
                               std::to_string(++id) + ")";
    database.execute(insert);
    database.execute(std::string("UPDATE ") + number.counter + " SET MAXNO = 7");
  }
}

Statements repaired_counters() {
  Statements all;
  int id = 100;
  for (const running_number& number : running_numbers)
    all.push_back(std::string(number.counter) + "," + std::to_string(++id));
  return all;
}

TEST(running_numbers, are_27_triples_in_the_order_of_the_repair) {
  const Statements expected{
      "CSCHRT CHRTID CSCHRN",     "CSDASH DASHID CSDASHRN", "CSGROUP GROUPID CSGPRN",   "CSICON ICONID CSICONRN",
      "CSLABEL LABELID CSLBRN",   "CSMON MONID CSMNRN",     "CSNODE NODEID CSNDRN",     "CSOPT OPTID CSOPRN",
      "CSPROF PROFID CSPFRN",     "CSSAMP SAMPID CSSPRN",   "CSSTN STNID CSSTRN",       "CSTS TSID CSTSRN",
      "CSUSER USERID CSUSRN",     "CSVALUE VALUEID CSVLRN", "CSENT ENT_ID CSENTRN",     "CSHDFS HDFSID CSHDFSRN",
      "CSSBDA SBDAID CSSBDARN",   "CSTIC TICID CSTICRN",    "CSALARM ALARMID CSALRMRN", "CSCOLOR COLORID CSCLRRN",
      "CSDOC DOCID CSDOCRN",      "CSEXDB EXDBID CSEXDBRN", "CSPSQ PSQID CSPSQRN",      "CSDESESS DESESSID CSDESSRN",
      "CSBATCH BATCHID CSBTCHRN", "CSAUSR SESID CSSERN",    "CSLOG LOGID CSLOGRN"};
  Statements triples;
  for (const running_number& number : running_numbers)
    triples.push_back(std::string(number.table) + " " + number.id_column + " " + number.counter);
  EXPECT_EQ(triples, expected);
}

class update_running_table_live : public test_support::DatabaseTest {
 protected:
  void repair(bool rewrite) { update_running_table(&db(), "CSSTN", "STNID", "CSSTRN", rewrite); }
  std::string counter() { return all_counters(database())[10]; }
  void add_stations() { execute("INSERT INTO CSSTN (STNID, NAME) VALUES (3, 'a'), (41, 'b'), (8, 'c')"); }
};
INSTANTIATE_TEST_SUITE_P(Servers, update_running_table_live, test_support::main_servers(), test_support::server_name);

TEST_P(update_running_table_live, an_empty_table_gives_one_row_of_0_and_the_highest_id_is_not_asked) {
  execute("DELETE FROM CSSTRN");
  test_support::StatementLog recorder(db());
  repair(true);
  EXPECT_EQ(counter(), "CSSTRN,0");
  ASSERT_EQ(recorder.statements.size(), 5U) << testing::PrintToString(recorder.statements);
  EXPECT_EQ(recorder.statements[0], "BEGIN");
  EXPECT_THAT(recorder.statements[1], testing::HasSubstr("COUNT(*)"));
  EXPECT_EQ(recorder.statements[2], "DELETE FROM CSSTRN");
  EXPECT_EQ(recorder.statements[3], "INSERT INTO CSSTRN VALUES (0)");
  EXPECT_EQ(recorder.statements[4], "COMMIT");
}

TEST_P(update_running_table_live, an_empty_table_gives_0_by_an_update_too) {
  execute("UPDATE CSSTRN SET MAXNO = 5");
  repair(false);
  EXPECT_EQ(counter(), "CSSTRN,0");
}

TEST_P(update_running_table_live, an_empty_counter_stays_empty_by_an_update_and_gets_one_row_by_a_rewrite) {
  add_stations();
  execute("DELETE FROM CSSTRN");
  repair(false);
  EXPECT_EQ(counter(), "CSSTRN");
  repair(true);
  EXPECT_EQ(counter(), "CSSTRN,41");
}

TEST_P(update_running_table_live, three_counter_rows_become_one_by_a_rewrite) {
  add_stations();
  execute("INSERT INTO CSSTRN VALUES (5), (9)");
  repair(true);
  EXPECT_EQ(counter(), "CSSTRN,41");
}

TEST_P(update_running_table_live, three_counter_rows_all_get_the_number_by_an_update) {
  add_stations();
  execute("INSERT INTO CSSTRN VALUES (5), (9)");
  test_support::StatementLog recorder(db());
  repair(false);
  EXPECT_EQ(counter(), "CSSTRN,41,41,41");
  ASSERT_EQ(recorder.statements.size(), 5U) << testing::PrintToString(recorder.statements);
  EXPECT_THAT(recorder.statements[2], testing::HasSubstr("MAX(STNID)"));
  EXPECT_EQ(recorder.statements[3], "UPDATE CSSTRN SET MAXNO = 41");
}

TEST_P(update_running_table_live, a_counter_that_ran_ahead_comes_back) {
  add_stations();
  execute("UPDATE CSSTRN SET MAXNO = 1000");
  repair(true);
  EXPECT_EQ(counter(), "CSSTRN,41");
}

TEST_P(update_running_table_live, in_the_callers_transaction_the_caller_decides) {
  add_stations();
  {
    AutoODBCTransaction transaction(db(), true);
    repair(true);
    EXPECT_TRUE(db().in_transaction) << "the guard inside is passive";
  }
  EXPECT_EQ(counter(), "CSSTRN,0");
  AutoODBCTransaction transaction(db(), true);
  repair(true);
  transaction.commit();
  EXPECT_EQ(counter(), "CSSTRN,41");
}

TEST_P(update_running_table_live, a_wrong_name_is_the_databases_failure_and_leaves_nothing_open) {
  add_stations();
  const struct {
    const char* table;
    const char* id_column;
    const char* counter;
  } wrong[] = {{"CSNONE", "STNID", "CSSTRN"}, {"CSSTN", "NOID", "CSSTRN"}, {"CSSTN", "STNID", "CSNONERN"}};
  for (const auto& names : wrong) {
    const auto outcome =
        guarded([&] { update_running_table(&db(), names.table, names.id_column, names.counter, true); });
    ASSERT_FALSE(outcome.ok());
    EXPECT_EQ(outcome.failure().failure_class, FailureClass::no_such_object) << outcome.failure().text;
    test_support::expect_nothing_held(db());
    EXPECT_EQ(counter(), "CSSTRN,0");
  }
}

TEST(update_running_table, on_a_connection_that_is_not_open_cannot_open) {
  CDatabaseEx closed;
  const auto outcome = guarded([&] { update_running_table(&closed, "CSSTN", "STNID", "CSSTRN", true); });
  ASSERT_FALSE(outcome.ok());
  EXPECT_EQ(outcome.failure().text, "Can not open recordset.");
}

TEST(update_running_table, where_the_server_refuses_to_begin_the_work_is_done_all_the_same) {
  auto script = std::make_shared<test_support::Script>();
  script->on_regex("SELECT COUNT.*").answer({"n"}, {{0}});
  script->on_regex("(DELETE|INSERT).*").affect(1);
  script->refuse_call("begin", test_support::error("HY000", 1, "not now"));
  CDatabaseEx db;
  db.adopt_session(std::make_unique<test_support::ScriptedSession>(script));
  update_running_table(&db, "CSSTN", "STNID", "CSSTRN", true);
  EXPECT_EQ(script->statements().size(), 3U);
  EXPECT_TRUE(script->calls_of("commit").empty());
}

TEST(update_running_table, a_refused_commit_undoes_the_work_without_a_failure) {
  auto script = std::make_shared<test_support::Script>();
  script->on_regex("SELECT COUNT.*").answer({"n"}, {{0}});
  script->on_regex("(DELETE|INSERT).*").affect(1);
  script->refuse_call("commit", test_support::error("HY000", 1, "not now"));
  CDatabaseEx db;
  db.adopt_session(std::make_unique<test_support::ScriptedSession>(script));
  update_running_table(&db, "CSSTN", "STNID", "CSSTRN", true);
  EXPECT_EQ(script->calls_of("commit").size(), 1U);
  EXPECT_EQ(script->calls_of("rollback").size(), 1U);
}

class update_all_running_tables : public test_support::DatabaseTest {};
INSTANTIATE_TEST_SUITE_P(Servers, update_all_running_tables, test_support::main_servers(), test_support::server_name);

TEST_P(update_all_running_tables, repairs_every_counter_in_order_in_one_transaction) {
  fill(database());
  test_support::StatementLog recorder(db());
  update_running_table(&db());
  EXPECT_EQ(all_counters(database()), repaired_counters());

  Statements written;
  int transactions = 0;
  for (const std::string& statement : recorder.statements) {
    if (statement.starts_with("INSERT INTO ")) written.push_back(statement);
    transactions += statement == "BEGIN" || statement == "COMMIT";
  }
  Statements expected;
  int id = 100;
  for (const running_number& number : running_numbers)
    expected.push_back(std::string("INSERT INTO ") + number.counter + " VALUES (" + std::to_string(++id) + ")");
  EXPECT_EQ(written, expected);
  EXPECT_EQ(transactions, 2);
  EXPECT_EQ(recorder.statements.front(), "BEGIN");
  EXPECT_EQ(recorder.statements.back(), "COMMIT");
}

TEST_P(update_all_running_tables, a_failure_at_the_tenth_rolls_the_nine_before_it_back) {
  database().spoil();
  fill(database());
  Statements before = all_counters(database());
  before.erase(before.begin() + 9);
  execute("DROP TABLE CSSPRN");
  test_support::StatementLog recorder(db());
  EXPECT_FALSE(guarded([&] { update_running_table(&db()); }).ok());
  EXPECT_THAT(recorder.statements, testing::Contains("INSERT INTO CSPFRN VALUES (109)")) << "the ninth was repaired";
  execute("CREATE TABLE CSSPRN (MAXNO INTEGER)");
  Statements after = all_counters(database());
  after.erase(after.begin() + 9);
  EXPECT_EQ(after, before);
  test_support::expect_nothing_held(db());
}

TEST_P(update_all_running_tables, without_transactions_the_nine_before_a_failure_stay) {
  fill(database());
  auto script = std::make_shared<test_support::Script>();
  script->transactions(false);
  script->on("DELETE FROM CSSPRN").refuse(test_support::error("HY000", 1, "not now"));
  test_support::play(db(), script);
  EXPECT_FALSE(guarded([&] { update_running_table(&db()); }).ok());
  EXPECT_TRUE(script->calls_of("begin").empty());
  const Statements repaired = repaired_counters();
  const Statements after = all_counters(database());
  EXPECT_TRUE(std::equal(after.begin(), after.begin() + 9, repaired.begin()));
  EXPECT_EQ(after[9], "CSSPRN,7");
  EXPECT_EQ(after[10], "CSSTRN,7");
}

class running_number_sweep : public test_support::DatabaseTest {
 protected:
  /// Fails each call of `work` once. After a failure all counters are as they were; after none they are either as they
  /// were, since a commit that fails is passed over, or repaired.
  template <class Work>
  int sweep(Work work) {
    if (kind() == test_support::ServerKind::sqlite) execute("PRAGMA synchronous = OFF");
    fill(database());
    const Statements before = all_counters(database());
    int failures = 0;
    for (std::size_t k = 1;; ++k) {
      SCOPED_TRACE("call " + std::to_string(k));
      FailKthCall hook(k);
      const auto run = second_connection();
      if (kind() == test_support::ServerKind::sqlite) run->ExecuteSQL("PRAGMA synchronous = OFF");
      run->connection()->session().gate().set_hook(&hook);
      const auto outcome = guarded([&] { work(*run); });
      test_support::expect_nothing_held(*run);
      const Statements after = all_counters(database());
      if (outcome.ok()) {
        EXPECT_TRUE(after == before || is_repaired(after)) << hook.failed_function();
        for (const running_number& number : running_numbers)
          execute(std::string("UPDATE ") + number.counter + " SET MAXNO = 7");
      } else {
        ++failures;
        test_support::expect_staged_failure(outcome.failure());
        EXPECT_EQ(after, before) << hook.failed_function();
      }
      const bool disturbed = hook.fired();
      run->Close();
      if (released_ == no_count && !disturbed) released_ = test_support::calls_without_release(hook);
      open_.push_back(test_support::calls_without_release(hook));
      if (HasFailure() || !disturbed) break;
    }
    EXPECT_THAT(open_, testing::Each(released_)) << "every statement is released";
    return failures;
  }

  bool is_repaired(const Statements& counters) const {
    Statements expected = repaired_counters();
    for (std::size_t i = 0; i < expected.size(); ++i)
      if (one_ && i != 10) expected[i] = std::string(running_numbers[i].counter) + ",7";
    return counters == expected;
  }

  static constexpr int no_count = -1000;
  bool one_ = false;
  int released_ = no_count;
  std::vector<int> open_;
};
INSTANTIATE_TEST_SUITE_P(Servers, running_number_sweep, test_support::main_servers(), test_support::server_name);

TEST_P(running_number_sweep, one_counter_is_repaired_or_as_it_was) {
  one_ = true;
  const int failures = sweep([](CDatabaseEx& run) { update_running_table(&run, "CSSTN", "STNID", "CSSTRN", true); });
  EXPECT_GT(failures, 6);
}

TEST_P(running_number_sweep, in_the_callers_transaction_one_counter_is_repaired_or_as_it_was) {
  one_ = true;
  const int failures = sweep([](CDatabaseEx& run) {
    AutoODBCTransaction transaction(run, true);
    update_running_table(&run, "CSSTN", "STNID", "CSSTRN", false);
    transaction.commit();
  });
  EXPECT_GT(failures, 6);
}

TEST_P(running_number_sweep, all_counters_are_repaired_or_as_they_were) {
  const int failures = sweep([](CDatabaseEx& run) { update_running_table(&run); });
  EXPECT_GT(failures, 27 * 4);
}

/// What a server's refusal of an INSERT looks like to the host.
bool judged(const spcdb::Diagnostic& refusal, const char* constraint) {
  auto script = std::make_shared<test_support::Script>();
  script->on_prefix("INSERT").refuse(refusal);
  CDatabaseEx db;
  db.adopt_session(std::make_unique<test_support::ScriptedSession>(script));
  try {
    db.ExecuteSQL("INSERT INTO CSSTN (STNID) VALUES (1)");
  } catch (CDBException* failure) {
    const bool answer = is_pk_violation(failure, constraint);
    EXPECT_EQ(failure->m_strError, CString(refusal.text)) << "the exception stays the caller's";
    failure->Delete();
    return answer;
  }
  ADD_FAILURE() << "nothing was thrown";
  return false;
}

using test_support::error;

TEST(is_pk_violation, knows_sql_server_by_its_code_and_the_name) {
  const auto refusal = error("23000", 2627,
                             "Violation of PRIMARY KEY constraint 'PKSTN'. Cannot insert duplicate key in object "
                             "'dbo.CSSTN'. The duplicate key value is (1).");
  EXPECT_TRUE(judged(refusal, "PKSTN"));
  EXPECT_FALSE(judged(refusal, "PKNODE"));
  EXPECT_FALSE(judged(refusal, "pkstn")) << "case counts";
}

TEST(is_pk_violation, knows_oracle_by_a_code_of_four_digits_and_the_name) {
  const auto refusal = error("23000", 1, "ORA-0001: unique constraint (SPC.PKSTN) violated");
  EXPECT_TRUE(judged(refusal, "PKSTN"));
  EXPECT_FALSE(judged(refusal, "PKNODE"));
}

TEST(is_pk_violation, gives_oracles_own_text_of_five_digits_the_same_answer_by_its_last_step) {
  const auto refusal = error("23000", 1, "ORA-00001: unique constraint (SPC.PKSTN) violated");
  EXPECT_EQ(refusal.text.find("ORA-0001"), std::string::npos);
  EXPECT_TRUE(judged(refusal, "PKSTN"));
  EXPECT_FALSE(judged(refusal, "PKNODE"));
}

TEST(is_pk_violation, knows_mysql_by_its_code_and_words_whatever_the_name) {
  const auto refusal = error("23000", 1062, "Duplicate entry '1' for key 'PRIMARY'");
  EXPECT_TRUE(judged(refusal, "PKSTN"));
  EXPECT_TRUE(judged(refusal, "anything"));
}

TEST(is_pk_violation, a_native_code_of_1062_without_the_words_is_none_even_with_the_name) {
  EXPECT_FALSE(judged(error("23000", 1062, "Something about PKSTN"), "PKSTN"));
}

TEST(is_pk_violation, oracle_is_asked_before_mysql_and_sql_server_too) {
  EXPECT_TRUE(judged(error("23000", 1062, "ORA-0001: (SPC.PKSTN)"), "PKSTN"));
  EXPECT_FALSE(judged(error("23000", 1062, "ORA-0001: Duplicate entry"), "PKSTN"));
  EXPECT_FALSE(judged(error("23000", 1062, "Duplicate entry", "[2627]"), "PKSTN"));
}

TEST(is_pk_violation, of_an_unknown_server_a_text_that_names_the_constraint_counts_as_is_meant) {
  EXPECT_TRUE(judged(error("23505", 7, "duplicate key value violates unique constraint \"PKSTN\""), "PKSTN"));
  EXPECT_TRUE(judged(error("42000", 7, "PKSTN cannot be dropped"), "PKSTN"));
  EXPECT_FALSE(judged(error("42000", 7, "syntax error"), "PKSTN"));
  EXPECT_FALSE(judged(error("42000", 7, "syntax error"), nullptr));
}

class is_pk_violation_live : public test_support::DatabaseTest {};
INSTANTIATE_TEST_SUITE_P(Servers, is_pk_violation_live, test_support::all_servers(), test_support::server_name);

TEST_P(is_pk_violation_live, recognises_a_double_key_of_the_server_under_test) {
  execute("INSERT INTO CSSTN (STNID, NAME) VALUES (1, 'a')");
  // SQLite names the columns of a key, not the key.
  const bool mariadb = kind() == test_support::ServerKind::mariadb;
  try {
    db().ExecuteSQL("INSERT INTO CSSTN (STNID, NAME) VALUES (1, 'b')");
    FAIL() << "a second row with this key";
  } catch (CDBException* failure) {
    EXPECT_TRUE(is_pk_violation(failure, mariadb ? "PKSTN" : "CSSTN.STNID")) << failure->m_strError;
    failure->Delete();
  }
  try {
    db().ExecuteSQL("INSERT INTO CSNONE VALUES (1)");
    FAIL() << "there is no such table";
  } catch (CDBException* failure) {
    EXPECT_FALSE(is_pk_violation(failure, "PKSTN")) << failure->m_strError;
    failure->Delete();
  }
}

}  // namespace
