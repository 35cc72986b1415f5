// Plan, on SQLite and on a private MariaDB server
//   db create: makes a schema that db check finds complete; JSON; refuses what stands there; all or nothing when a
//     statement in the middle is refused
//   db check: an empty database; a missing table, view and column by name; a view whose table is gone; JSON
#include <gtest/gtest.h>

#include "tests/tools/json_check.h"
#include "tests/tools/program.h"

namespace {

using command_test::Answer;
using test_support::ServerKind;

class DatabaseCommand : public testing::TestWithParam<ServerKind> {
 protected:
  Answer spc(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--connect", database_.connect_text()});
    return command_test::run(arguments);
  }
  void execute(const std::string& statement) { database_.execute(statement); }
  bool sqlite() const { return GetParam() == ServerKind::sqlite; }

 private:
  command_test::EmptyDatabase database_{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Servers, DatabaseCommand, test_support::main_servers(), test_support::server_name);

TEST_P(DatabaseCommand, create_makes_a_schema_that_check_finds_complete) {
  const Answer created = spc({"db", "create"});
  EXPECT_EQ(created.status, 0) << created;
  EXPECT_TRUE(created.out.starts_with("Created 89 tables and views in ")) << created;
  EXPECT_EQ(created.err, "");
  const Answer checked = spc({"db", "check"});
  EXPECT_EQ(checked.status, 0) << checked;
  EXPECT_TRUE(checked.says("schema      complete: 77 tables, 12 views\n")) << checked;
  EXPECT_TRUE(checked.says("connection  alive, a statement was answered\n")) << checked;
  // SQLite has no dialect of its own: it answers to the probe for Access.
  EXPECT_TRUE(checked.says(sqlite() ? "dialect     2, Microsoft Access\n" : "dialect     3, MySQL\n")) << checked;
  EXPECT_TRUE(checked.says(sqlite() ? "server      SQLite 3" : "server      MariaDB ")) << checked;
}

TEST_P(DatabaseCommand, answers_in_json) {
  const Answer created = spc({"--json", "db", "create"});
  EXPECT_EQ(json_check::parse(created.out)["objects"].number, 89);
  const auto checked = json_check::parse(spc({"db", "check", "--json"}).out);
  EXPECT_TRUE(checked["answers"].truth);
  EXPECT_FALSE(checked["driver_says_dead"].truth);
  EXPECT_EQ(checked["dialect"].number, sqlite() ? 2 : 3);
  EXPECT_TRUE(checked["missing"].items.empty());
}

TEST_P(DatabaseCommand, create_refuses_what_stands_there_and_leaves_it) {
  EXPECT_EQ(spc({"db", "create"}).status, 0);
  execute("INSERT INTO CSSTN (STNID, NAME) VALUES (1, 'North')");
  const Answer again = spc({"db", "create"});
  EXPECT_EQ(again.status, 1);
  EXPECT_EQ(again.err,
            "spc: cannot create the schema: the database holds CSNODE, CSMON, CSPROF, CSCHRT, CSLABEL and 84 more "
            "already\n     It is complete and ready for use; for a new one, name another database.\n");
  EXPECT_EQ(spc({"db", "check"}).status, 0);
  EXPECT_THROW(execute("INSERT INTO CSSTN (STNID, NAME) VALUES (1, 'North')"), std::runtime_error) << "the row is gone";
}

TEST_P(DatabaseCommand, create_leaves_nothing_when_a_statement_in_the_middle_is_refused) {
  if (sqlite()) {
    execute("CREATE TABLE MINE (A INT)");
    execute("CREATE INDEX IXVALUE1 ON MINE (A)");
  } else {
    execute("CREATE TABLE OTHER (A INT PRIMARY KEY)");
    execute("CREATE TABLE MINE (A INT, CONSTRAINT FKREVDAT1 FOREIGN KEY (A) REFERENCES OTHER (A))");
  }
  const Answer created = spc({"db", "create"});
  EXPECT_EQ(created.status, 1) << created;
  EXPECT_TRUE(created.err.starts_with("spc: cannot create the schema: ")) << created;
  const Answer checked = spc({"db", "check"});
  EXPECT_TRUE(checked.says("schema      none of its 89 tables and views is there\n")) << checked;
  execute("INSERT INTO MINE (A) VALUES (NULL)");
}

TEST_P(DatabaseCommand, check_tells_of_a_database_without_the_schema) {
  execute("CREATE TABLE MINE (A INT)");
  const Answer checked = spc({"db", "check"});
  EXPECT_EQ(checked.status, 1);
  EXPECT_EQ(checked.err,
            "spc: the check found faults: the database does not hold the schema\n     spc db create makes it.\n");
  EXPECT_TRUE(checked.says("connection  alive says the driver; no table is there to ask for\n")) << checked;
  EXPECT_TRUE(checked.says("schema      none of its 89 tables and views is there\n")) << checked;
  EXPECT_FALSE(checked.says("CSSAMP")) << "all names would hide what matters" << checked;
  EXPECT_EQ(json_check::parse(spc({"db", "check", "--json"}).out)["missing"].items.size(), 89U);
}

TEST_P(DatabaseCommand, check_names_each_missing_table_view_and_column) {
  EXPECT_EQ(spc({"db", "create"}).status, 0);
  execute("DROP TABLE CSVDAT");
  execute("DROP VIEW CSVALUEV");
  execute("ALTER TABLE CSSAMP DROP COLUMN PROFREV");
  const Answer checked = spc({"db", "check"});
  EXPECT_EQ(checked.status, 1);
  EXPECT_TRUE(checked.says("  missing column CSSAMP.PROFREV\n  missing table CSVDAT\n  missing view CSVALUEV\n"))
      << checked;
  EXPECT_EQ(checked.err, "spc: the check found faults: 3 things of the schema are missing\n");
  const Answer json = spc({"db", "check", "--json"});
  EXPECT_EQ(json.status, 1);
  const auto missing = json_check::parse(json.out)["missing"];
  ASSERT_EQ(missing.items.size(), 3U);
  EXPECT_EQ(missing.items[0].text, "column CSSAMP.PROFREV");
}

TEST_P(DatabaseCommand, check_finds_a_view_whose_table_is_gone) {
  EXPECT_EQ(spc({"db", "create"}).status, 0);
  execute("DROP TABLE CSEXDB");
  const Answer checked = spc({"db", "check"});
  EXPECT_EQ(checked.status, 1);
  EXPECT_TRUE(checked.says("  missing table CSEXDB\n  missing view CSEXDBV\n")) << checked;
}

TEST_P(DatabaseCommand, sample_commands_tell_of_a_database_without_the_schema) {
  execute("CREATE TABLE MINE (A INT)");
  const Answer listed = spc({"sample", "list"});
  EXPECT_EQ(listed.status, 1);
  EXPECT_TRUE(listed.err.starts_with("spc: cannot list samples: ")) << listed;
  EXPECT_TRUE(listed.complains("no such object")) << listed;
  EXPECT_TRUE(listed.complains("spc db check")) << listed;
}

}  // namespace
