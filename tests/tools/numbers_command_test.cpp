// Plan, on SQLite and on a private MariaDB server
//   numbers check: every counter with its table, changes nothing; status 1 when one is behind, has no row or several;
//     one that is ahead is no fault; one table; JSON
//   numbers repair: one table, all 27, all or nothing; says what was changed; JSON
//   Bad input: a table without a running number, a database without the schema
#include <gtest/gtest.h>

#include "tests/tools/json_check.h"
#include "tests/tools/program.h"

namespace {

using command_test::Answer;

class NumbersCommand : public command_test::OnDatabase {
 protected:
  void add_sample(int id) { execute("INSERT INTO CSSAMP (SAMPID, PROFID) VALUES (" + std::to_string(id) + ", 1)"); }
};

INSTANTIATE_TEST_SUITE_P(Servers, NumbersCommand, test_support::main_servers(), test_support::server_name);

TEST_P(NumbersCommand, check_finds_nothing_in_a_new_database) {
  const Answer checked = spc({"numbers", "check"});
  EXPECT_EQ(checked.status, 0) << checked;
  EXPECT_TRUE(checked.out.starts_with("table     highest id  counter   MAXNO  difference  state\n")) << checked;
  EXPECT_EQ(json_check::parse(spc({"--json", "numbers", "check"}).out).items.size(), 27U);
}

TEST_P(NumbersCommand, check_shows_a_counter_that_is_behind_and_changes_nothing) {
  add_sample(42);
  execute("UPDATE CSSPRN SET MAXNO = 40");
  const Answer checked = spc({"numbers", "check"});
  EXPECT_EQ(checked.status, 1) << checked;
  EXPECT_TRUE(checked.says("CSSAMP            42  CSSPRN       40          -2  behind\n")) << checked;
  EXPECT_EQ(checked.err,
            "spc: the check found faults: new rows cannot get an id that is free in CSSAMP\n"
            "     spc numbers repair sets the counters to the highest ids; let nobody add rows meanwhile.\n");
  EXPECT_EQ(value("SELECT MAXNO FROM CSSPRN"), "40");
}

TEST_P(NumbersCommand, check_of_one_table_passes_over_the_others) {
  add_sample(42);
  EXPECT_EQ(spc({"numbers", "check", "CSMON"}).status, 0);
  const Answer checked = spc({"--json", "numbers", "check", "cssamp"});
  EXPECT_EQ(checked.status, 1);
  const auto states = json_check::parse(checked.out);
  ASSERT_EQ(states.items.size(), 1U);
  EXPECT_EQ(states.items[0]["table"].text, "CSSAMP");
  EXPECT_EQ(states.items[0]["highest_id"].number, 42);
  EXPECT_EQ(states.items[0]["maxno"].number, 0);
  EXPECT_EQ(states.items[0]["difference"].number, -42);
  EXPECT_TRUE(states.items[0]["faulty"].truth);
}

TEST_P(NumbersCommand, check_tells_a_counter_without_a_row_and_one_with_several) {
  execute("DELETE FROM CSMNRN");
  execute("INSERT INTO CSSPRN (MAXNO) VALUES (7)");
  const Answer checked = spc({"numbers", "check"});
  EXPECT_EQ(checked.status, 1);
  EXPECT_TRUE(checked.says("CSMON              0  CSMNRN        -           -  no row\n")) << checked;
  EXPECT_TRUE(checked.says("CSSAMP             0  CSSPRN        7           7  2 rows\n")) << checked;
  EXPECT_TRUE(checked.complains("in CSMON, CSSAMP\n")) << checked;
}

TEST_P(NumbersCommand, check_finds_no_fault_in_a_counter_that_is_ahead) {
  execute("UPDATE CSSPRN SET MAXNO = 9");
  const Answer checked = spc({"numbers", "check"});
  EXPECT_EQ(checked.status, 0) << checked;
  EXPECT_TRUE(checked.says("CSSAMP             0  CSSPRN        9           9  ahead\n")) << checked;
}

TEST_P(NumbersCommand, repair_sets_one_counter_and_leaves_the_others) {
  add_sample(42);
  execute("UPDATE CSSTRN SET MAXNO = 9");
  const Answer repaired = spc({"numbers", "repair", "CSSAMP"});
  EXPECT_EQ(repaired.status, 0) << repaired;
  EXPECT_TRUE(repaired.out.starts_with("Looked after 1 running number, changed 1\n")) << repaired;
  EXPECT_TRUE(repaired.says("  CSSAMP  CSSPRN           0  42  behind\n")) << repaired;
  EXPECT_EQ(value("SELECT MAXNO FROM CSSPRN"), "42");
  EXPECT_EQ(value("SELECT MAXNO FROM CSSTRN"), "9");
}

TEST_P(NumbersCommand, repair_sets_all_counters) {
  add_sample(42);
  execute("UPDATE CSSTRN SET MAXNO = 9");
  execute("DELETE FROM CSMNRN");
  execute("INSERT INTO CSPFRN (MAXNO) VALUES (7)");
  const Answer repaired = spc({"--json", "numbers", "repair"});
  EXPECT_EQ(repaired.status, 0) << repaired;
  std::size_t changed = 0;
  for (const auto& state : json_check::parse(repaired.out).items)
    changed += state["changed"].truth ? 1 : 0;
  EXPECT_EQ(changed, 4U);
  EXPECT_EQ(value("SELECT MAXNO FROM CSSPRN"), "42");
  EXPECT_EQ(value("SELECT MAXNO FROM CSSTRN"), "0");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSMNRN"), "1");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSPFRN"), "1");
  EXPECT_EQ(spc({"numbers", "check"}).status, 0);
}

TEST_P(NumbersCommand, repair_of_all_is_undone_when_one_is_refused) {
  database().spoil();
  add_sample(42);
  // The last table but one: its counter can be read, but takes no row.
  execute("DROP TABLE CSSERN");
  execute("CREATE VIEW CSSERN AS SELECT COUNT(*) AS MAXNO FROM CSAUSR");
  const Answer repaired = spc({"numbers", "repair"});
  EXPECT_EQ(repaired.status, 1) << repaired;
  EXPECT_TRUE(repaired.err.starts_with("spc: cannot repair the running numbers: ")) << repaired;
  EXPECT_EQ(value("SELECT MAXNO FROM CSSPRN"), "0");
}

TEST_P(NumbersCommand, names_the_tables_that_have_a_running_number_for_a_wrong_one) {
  for (const char* task : {"check", "repair"}) {
    const Answer answer = spc({"numbers", task, "CSSPRN"});
    EXPECT_EQ(answer.status, 2);
    EXPECT_TRUE(
        answer.err.starts_with("spc: cannot find the running number of CSSPRN: no table of this name has one\n"
                               "     Name one of CSCHRT, CSDASH, "))
        << answer;
  }
}

TEST_P(NumbersCommand, tells_of_a_database_without_the_schema) {
  database().spoil();
  execute("DROP TABLE CSCHRN");
  const Answer repaired = spc({"numbers", "repair"});
  EXPECT_EQ(repaired.status, 1);
  EXPECT_TRUE(repaired.err.starts_with("spc: cannot look at the running number of CSCHRT: ")) << repaired;
  EXPECT_TRUE(repaired.complains("spc db check")) << repaired;
}

}  // namespace
