// Plan, on SQLite and MariaDB
//   the statements of each walk, to the letter, exactly and by the slow comparison -> Statements.*
//   one recordset for a walk: opened once for reading, then requeried -> OneRecordset.*
//   what an Open that fails gives: nothing, or a DBException for the objects -> FailedOpen.*
//   a failure of the database at any call of the driver passes, and nothing stays open -> WalkSweep.*
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/platform/database/recordset.h"
#include "spcbase/testkit/statement_log.h"
#include "tests/support/failure_sweep.h"
#include "tests/tree/tree_fixture.h"

namespace {

using test_support::StatementLog;
using testing::ElementsAre;
using testing::IsEmpty;

class Statements : public test_support::TreeTest {};

INSTANTIATE_TEST_SUITE_P(Servers, Statements, test_support::main_servers(), test_support::server_name);

TEST_P(Statements, of_a_path_select_each_folder_by_its_id) {
  const StatementLog log(db());
  EXPECT_EQ(path(3), "/plant/Line 4/a//b");
  EXPECT_THAT(log.statements, ElementsAre("SELECT [NODEID],[NAME],[PNODE] FROM [CSNODE] WHERE NODEID = 3",
                                          "SELECT [NODEID],[NAME],[PNODE] FROM [CSNODE] WHERE NODEID = 2",
                                          "SELECT [NODEID],[NAME],[PNODE] FROM [CSNODE] WHERE NODEID = 1"));
}

TEST_P(Statements, of_the_root_are_none) {
  const StatementLog log(db());
  EXPECT_EQ(path(0), "/");
  EXPECT_EQ(walk({}), 0);
  EXPECT_THAT(log.statements, IsEmpty());
}

TEST_P(Statements, of_a_walk_name_each_folder_with_its_apostrophes_doubled) {
  add_node(6, "o'clock", 2);
  const StatementLog log(db());
  EXPECT_EQ(walk({"plant", "Line 4", "o'clock"}), 6);
  EXPECT_THAT(
      log.statements,
      ElementsAre("SELECT [NODEID],[NAME] FROM [CSNODE] WHERE PNODE = 0 AND NAME = 'plant' AND VFLG IS NULL",
                  "SELECT [NODEID],[NAME] FROM [CSNODE] WHERE PNODE = 1 AND NAME = 'Line 4' AND VFLG IS NULL",
                  "SELECT [NODEID],[NAME] FROM [CSNODE] WHERE PNODE = 2 AND NAME = 'o''clock' AND VFLG IS NULL"));
}

TEST_P(Statements, of_a_walk_read_all_children_only_where_the_exact_name_is_not_there) {
  const StatementLog log(db());
  EXPECT_EQ(walk({"plant", " LINE 4", "a/b"}), 3);
  EXPECT_THAT(log.statements,
              ElementsAre("SELECT [NODEID],[NAME] FROM [CSNODE] WHERE PNODE = 0 AND NAME = 'plant' AND VFLG IS NULL",
                          "SELECT [NODEID],[NAME] FROM [CSNODE] WHERE PNODE = 1 AND NAME = ' LINE 4' AND VFLG IS NULL",
                          "SELECT [NODEID],[NAME] FROM [CSNODE] WHERE PNODE = 1 AND VFLG IS NULL",
                          "SELECT [NODEID],[NAME] FROM [CSNODE] WHERE PNODE = 2 AND NAME = 'a/b' AND VFLG IS NULL"));
}

TEST_P(Statements, of_a_walk_end_at_the_first_name_that_is_not_there) {
  const StatementLog log(db());
  EXPECT_EQ(id("/plant/nowhere/Line 4/bore"), 0);
  EXPECT_EQ(log.count("nowhere"), 2) << "once for the monitor, once for the profile";
  EXPECT_EQ(log.count("Line 4"), 0);
  EXPECT_EQ(log.count("CSMON") + log.count("CSPROF"), 0);
}

TEST_P(Statements, of_a_monitor_join_it_with_its_folder) {
  add_objects(31, "o'bore", 1);
  const StatementLog log(db());
  EXPECT_EQ(get_mon_id_from_path(&db(), "/plant/o'bore"), 31);
  EXPECT_THAT(log.statements,
              ElementsAre("SELECT [NODEID],[NAME] FROM [CSNODE] WHERE PNODE = 0 AND NAME = 'plant' AND VFLG IS NULL",
                          "SELECT [CSMONV].[MONID],[CSMONV].[NAME],[CSMINNV].[NODEID] FROM [CSMINNV],[CSMONV] WHERE "
                          "[CSMONV].[MONID] = [CSMINNV].[MONID] AND [NODEID] = 1 AND [NAME] = 'o''bore'"));
}

TEST_P(Statements, of_a_profile_read_the_whole_folder_only_where_the_exact_name_is_not_there) {
  add_objects(31, "bore", 1);
  const StatementLog log(db());
  EXPECT_EQ(get_prof_id_from_path(&db(), "/plant/ BORE"), 31);
  EXPECT_THAT(
      log.statements,
      ElementsAre("SELECT [NODEID],[NAME] FROM [CSNODE] WHERE PNODE = 0 AND NAME = 'plant' AND VFLG IS NULL",
                  "SELECT [CSPROFV].[PROFID],[CSPROFV].[NAME],[CSPINNV].[NODEID] FROM [CSPINNV],[CSPROFV] WHERE "
                  "[CSPROFV].[PROFID] = [CSPINNV].[PROFID] AND [NODEID] = 1 AND [NAME] = ' BORE'",
                  "SELECT [CSPROFV].[PROFID],[CSPROFV].[NAME],[CSPINNV].[NODEID] FROM [CSPINNV],[CSPROFV] WHERE "
                  "[CSPROFV].[PROFID] = [CSPINNV].[PROFID] AND [NODEID] = 1"));
}

TEST_P(Statements, of_a_path_of_one_name_are_none) {
  const StatementLog log(db());
  EXPECT_EQ(id("/plant"), 0);
  EXPECT_THAT(log.statements, IsEmpty());
}

// On a server that is played: names go as parameters, in the server's own quotes.
TEST_P(Statements, reach_the_server_with_names_as_parameters) {
  const auto script = test_support::play(db());
  EXPECT_EQ(walk({"plant", "x' OR '1'='1"}), 0);
  std::vector<std::string> parameters;
  for (const auto& call : script->calls_of("execute")) {
    EXPECT_EQ(call.statement.find("OR"), std::string::npos) << call.statement;
    parameters.push_back(call.parameters);
  }
  EXPECT_THAT(parameters, ElementsAre("0, 'plant'", "1, 'x'' OR ''1''=''1'", "1"));
}

// Looks at the recordset that stands open whenever a statement has ended.
class OneRecordset : public test_support::TreeTest, public spcdb::StatementObserver {
 protected:
  OneRecordset() { db().set_observer(this); }
  ~OneRecordset() override { db().set_observer(nullptr); }
  void on_statement(const spcdb::StatementReport& /*report*/) noexcept override {
    const auto& open = db().connection()->open_recordsets();
    seen_.push_back(open.size() == 1 ? open.front() : nullptr);
    options_.push_back(open.size() == 1 ? open.front()->m_dwOptions : 0);
  }
  // A reopening would be for one execution alone, which the options say.
  void expect_one_that_was_requeried(std::size_t statements) {
    ASSERT_EQ(seen_.size(), statements);
    EXPECT_NE(seen_.front(), nullptr);
    EXPECT_THAT(seen_, testing::Each(seen_.front()));
    EXPECT_THAT(options_, testing::Each(DWORD{CRecordset::readOnly}));
  }

 private:
  std::vector<const CRecordset*> seen_;
  std::vector<DWORD> options_;
};

INSTANTIATE_TEST_SUITE_P(Servers, OneRecordset, test_support::main_servers(), test_support::server_name);

TEST_P(OneRecordset, serves_a_path) {
  path(3);
  expect_one_that_was_requeried(3);
}

TEST_P(OneRecordset, serves_a_walk_with_exact_and_slow_look_ups) {
  walk({" PLANT", "Line 4", " A/B"});
  expect_one_that_was_requeried(5);
}

class FailedOpen : public test_support::TreeTest {};

INSTANTIATE_TEST_SUITE_P(Servers, FailedOpen, test_support::main_servers(), test_support::server_name);

TEST_P(FailedOpen, of_a_folder_gives_nothing) {
  CDatabaseEx closed;
  for (CDatabase* database : {static_cast<CDatabase*>(&closed), static_cast<CDatabase*>(nullptr)}) {
    EXPECT_TRUE(get_node_path(database, 1, true).IsEmpty());
    EXPECT_EQ(find_node_from_names(database, {"plant"}, 1), 0);
    EXPECT_EQ(get_mon_id_from_path(database, "/plant/x"), 0);
    EXPECT_EQ(get_prof_id_from_path(database, "/plant/x"), 0);
  }
}

// Closes the connection when the folders have been walked.
class ClosesAfterWalk : public spcdb::StatementObserver {
 public:
  explicit ClosesAfterWalk(CDatabase& db) : db_(db) { db_.set_observer(this); }
  ~ClosesAfterWalk() override { db_.set_observer(nullptr); }
  void on_statement(const spcdb::StatementReport& /*report*/) noexcept override {
    db_.set_observer(nullptr);
    db_.Close();
  }

 private:
  CDatabase& db_;
};

TEST_P(FailedOpen, of_the_objects_raises) {
  for (const auto& find : {get_mon_id_from_path, get_prof_id_from_path}) {
    const auto connection = second_connection();
    const ClosesAfterWalk closing(*connection);
    const auto outcome = guarded([&] { find(connection.get(), "/plant/bore"); });
    ASSERT_FALSE(outcome.ok());
    EXPECT_EQ(outcome.failure().text, "Can not open recordset.");
  }
}

// Fails each call into the driver in turn.
class WalkSweep : public test_support::TreeTest {
 protected:
  template <class Work>
  void sweep(Work work) {
    add_objects(31, "bore", 2);
    const auto expected = work(db());
    std::vector<int> left;
    for (std::size_t k = 1;; ++k) {
      SCOPED_TRACE("call " + std::to_string(k));
      const auto run = second_connection();
      test_support::FailKthCall hook(k);
      run->connection()->session().gate().set_hook(&hook);
      const auto outcome = guarded([&] { return work(*run); });
      SCOPED_TRACE(hook.failed_function());
      test_support::expect_nothing_held(*run);
      if (!outcome.ok())
        test_support::expect_staged_failure(outcome.failure());
      else
        EXPECT_EQ(outcome.value(), expected);
      run->Close();
      left.push_back(test_support::calls_without_release(hook));
      if (hook.fired()) continue;
      EXPECT_TRUE(outcome.ok());
      EXPECT_GT(k, 5U);
      EXPECT_THAT(left, testing::Each(left.front()));
      return;
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Servers, WalkSweep, test_support::main_servers(), test_support::server_name);

TEST_P(WalkSweep, of_a_path) {
  sweep([](CDatabase& db) { return get_node_path(&db, 3, true); });
}

TEST_P(WalkSweep, of_a_monitor) {
  sweep([](CDatabase& db) { return get_mon_id_from_path(&db, "/plant/ LINE 4/ BORE"); });
}

TEST_P(WalkSweep, of_a_profile) {
  sweep([](CDatabase& db) { return get_prof_id_from_path(&db, "/plant/ LINE 4/ BORE"); });
}

}  // namespace
