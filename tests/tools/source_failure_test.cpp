// Plan, on SQLite and on a private MariaDB server
//   Each call of adding and of changing a data source fails once: row and number are both there or neither, what was
//     stored stands as it was, and the message is the driver's
//   rewrite goes on behind one whose row the server refuses, and tells of it
//   A locked database is told of
#include <gtest/gtest.h>

#include <optional>

#include "spcbase/platform/database/connection.h"
#include "spcbase/platform/database/session.h"
#include "tests/support/failure_sweep.h"
#include "tests/support/row_texts.h"
#include "tests/tools/source_fixture.h"
#include "tools/spc/problem.h"
#include "tools/spc/source_definition.h"

namespace {

using command_test::Answer;
using test_support::ServerKind;

class SourceFailure : public command_test::OnSources {
 protected:
  SourceFailure() : link_(database().connect_text(), nullptr) {}

  /// Runs `work` with its first call failing, then its second one, and so on until all succeed; what failed must leave
  /// the state as it was. Gives how many runs failed.
  template <class Work>
  std::size_t sweep(Work work) {
    std::size_t failures = 0;
    for (std::size_t k = 1; k < 1000; ++k) {
      const std::string before = state();
      test_support::FailKthCall hook(k);
      link_.db().connection()->session().gate().set_hook(&hook);
      std::optional<spc::Problem> problem;
      try {
        work(k);
      } catch (const spc::Problem& thrown) {
        problem = thrown;
      }
      link_.db().connection()->session().gate().set_hook(nullptr);
      test_support::expect_nothing_held(link_.db());
      if (!hook.fired()) {
        EXPECT_FALSE(problem) << problem->why;
        EXPECT_NE(state(), before);
        return failures;
      }
      // What is only asked for is done without.
      if (!problem) continue;
      ++failures;
      // A write whose count the driver refuses is tried again with a buffer, and meets its own row.
      const bool told =
          problem->why.find("staged failure") != std::string::npos ||
          (hook.failed_function() == "SQLRowCount" && problem->why.find("duplicate key") != std::string::npos);
      EXPECT_TRUE(told) << k << hook.failed_function() << problem->why;
      EXPECT_EQ(state(), before) << k << hook.failed_function();
      if (testing::Test::HasFailure()) return failures;
    }
    ADD_FAILURE() << "it never succeeded";
    return failures;
  }
  /// Every row, and the number that was given last.
  std::string state() {
    std::string all = value("SELECT MAXNO FROM CSEXDBRN");
    for (const auto& row : test_support::row_texts(database(), "SELECT * FROM CSEXDB ORDER BY EXDBID"))
      all += "\n" + row;
    return all;
  }

  spc::Link link_;
};

INSTANTIATE_TEST_SUITE_P(Servers, SourceFailure, test_support::main_servers(), test_support::server_name);

TEST_P(SourceFailure, adding_leaves_row_and_number_or_neither) {
  const auto failures = sweep([&](std::size_t) {
    spc::Definition definition = OLEDBInfo();
    spc::base_of(definition).name = "Warehouse";
    spc::base_of(definition).connection_string = "DSN=wh";
    spc::store_new(link_, definition, 0, "cannot add");
  });
  EXPECT_GT(failures, 4U);
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSEXDB"), value("SELECT MAXNO FROM CSEXDBRN"));
}

TEST_P(SourceFailure, changing_leaves_what_was_stored) {
  add("Warehouse", {"--connection-string", "DSN=wh"});
  const auto failures = sweep([&](std::size_t k) {
    spc::Definition changed = OLEDBInfo();
    spc::base_of(changed).id = 1;
    spc::base_of(changed).name.Format("Store %zu", k);
    spc::store(link_, changed, 0, "cannot edit");
  });
  EXPECT_GT(failures, 1U);
}

TEST_P(SourceFailure, rewriting_goes_on_behind_a_row_that_the_server_refuses) {
  for (const char* name : {"a", "b", "c"})
    add(name);
  // Of an equal row nothing would be written.
  execute("UPDATE CSEXDB SET MTIME = '2024-03-05 08:30:00'");
  database().spoil();
  execute(
      kind() == ServerKind::sqlite
          ? "CREATE TRIGGER GUARD BEFORE UPDATE ON CSEXDB WHEN NEW.EXDBID = 2 BEGIN SELECT RAISE(ABORT, 'keep off'); "
            "END"
          : "CREATE TRIGGER GUARD BEFORE UPDATE ON CSEXDB FOR EACH ROW IF NEW.EXDBID = 2 THEN SIGNAL SQLSTATE '45000' "
            "SET MESSAGE_TEXT = 'keep off'; END IF");
  const auto told = source_json({"rewrite"});
  EXPECT_EQ(told["found"].number, 3);
  EXPECT_EQ(told["saved"].number, 2);
  ASSERT_EQ(told["failed"].items.size(), 1U);
  EXPECT_EQ(told["failed"].items[0]["name"].text, "b");
  EXPECT_NE(told["failed"].items[0]["reason"].text.find("keep off"), std::string::npos)
      << told["failed"].items[0]["reason"].text;
}

TEST_P(SourceFailure, tells_of_a_locked_database) {
  add("Warehouse");
  auto other = second_connection();
  other->BeginTrans();
  other->ExecuteSQL("UPDATE CSEXDB SET NAME = NAME");
  const std::string options =
      kind() == ServerKind::sqlite ? ";Timeout=100" : ";INITSTMT={SET innodb_lock_wait_timeout=1}";
  const Answer answer =
      command_test::run({"--connect", database().connect_text() + options, "source", "remove", "Warehouse"});
  other->Rollback();
  EXPECT_EQ(answer.status, 1);
  EXPECT_TRUE(answer.complains("spc: cannot remove the data source Warehouse: ")) << answer;
  EXPECT_TRUE(answer.complains("(lock time-out, ")) << answer;
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSEXDB WHERE VFLG IS NULL"), "1");
}

}  // namespace
