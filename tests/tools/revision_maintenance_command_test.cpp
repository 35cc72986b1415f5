// Plan, on SQLite and on a private MariaDB server
//   rev rebuild: says what it would change and wants --yes; counts anew; all or nothing; bars; JSON
//   rev reset: refused on SQLite before anything is deleted; on MariaDB it says what it would change and wants --yes,
//     works through; refused without the foreign key and without the right to change the table; a statement in the
//     middle that fails is named, with what stands; bars; JSON
#include <gtest/gtest.h>

#include <sstream>

#include "spcbase/testkit/scripted_session.h"
#include "tests/tools/json_check.h"
#include "tests/tools/program.h"
#include "tools/spc/problem.h"
#include "tools/spc/rev_maintenance.h"

namespace {

using command_test::Answer;
using test_support::ServerKind;

class RevisionMaintenance : public command_test::OnDatabase {
 protected:
  RevisionMaintenance() {
    add(1, 0, 1, 1);
    add(2, 1, 0, 2);
    add(3, 1, 1, 3);
  }
  /// A revision of object 5 of type 3.
  void add(int revision, int major, int minor, int row) {
    const std::string id = std::to_string(row);
    execute(
        "INSERT INTO CSOBJREV (REVID, OBJID, OBJTYPE, REVISION, MAJORVER, MINORVER, FLAG, CUSERID, CUSER, CREASON) "
        "VALUES (" +
        id + ", 5, 3, " + std::to_string(revision) + ", " + std::to_string(major) + ", " + std::to_string(minor) +
        ", 0, 7, 'anna', 'because')");
    execute("INSERT INTO CSREVDAT (REVID, DATA) VALUES (" + id + ", 'payload')");
  }
  std::string versions() {
    std::string text;
    for (const auto& row : database().rows("SELECT MAJORVER, MINORVER FROM CSOBJREV ORDER BY REVISION"))
      text += row[0].value_or("") + "." + row[1].value_or("") + " ";
    return text;
  }
};

INSTANTIATE_TEST_SUITE_P(Servers, RevisionMaintenance, test_support::main_servers(), test_support::server_name);

TEST_P(RevisionMaintenance, rebuild_says_what_it_would_change_and_wants_to_be_told) {
  const Answer asked = spc({"rev", "rebuild"});
  EXPECT_EQ(asked.status, 2);
  EXPECT_TRUE(asked.says("  CSOBJREV     3  revisions get the versions 0.1, 0.2, 0.3 and so on")) << asked;
  EXPECT_TRUE(asked.says("  CSOBJREV     2  of them lose their major version")) << asked;
  EXPECT_EQ(asked.err,
            "spc: nothing was changed: this cannot be undone, so it wants --yes\n"
            "     Back up the database, then give the same command with --yes.\n");
  EXPECT_EQ(versions(), "0.1 1.0 1.1 ");
}

TEST_P(RevisionMaintenance, rebuild_counts_the_versions_anew) {
  const Answer done = spc({"rev", "rebuild", "--yes"});
  EXPECT_EQ(done.status, 0) << done;
  EXPECT_TRUE(done.out.ends_with("Done.\n")) << done;
  EXPECT_EQ(versions(), "0.1 0.2 0.3 ");
}

TEST_P(RevisionMaintenance, rebuild_answers_in_json) {
  const Answer asked = spc({"--json", "rev", "rebuild"});
  EXPECT_EQ(asked.status, 2);
  EXPECT_FALSE(json_check::parse(asked.out)["done"].truth);
  const auto done = json_check::parse(spc({"--json", "rev", "rebuild", "--yes"}).out);
  EXPECT_TRUE(done["done"].truth);
  EXPECT_EQ(done["changes"].items.at(1)["rows"].number, 2);
}

TEST_P(RevisionMaintenance, rebuild_shows_a_bar_on_a_terminal) {
  std::ostringstream out;
  std::ostringstream err;
  spc::Link link(database().connect_text(), nullptr);
  spc::rebuild_versions(link, {out, err, false, false, spc::ProgressStyle::bar});
  // The first row has its version already, so it is not written.
  EXPECT_NE(err.str().find("counting versions [" + std::string(20, '#') + std::string(10, ' ') + "] 2/3"),
            std::string::npos)
      << err.str();
}

TEST_P(RevisionMaintenance, rebuild_leaves_all_versions_when_a_row_is_refused) {
  auto other = second_connection();
  other->BeginTrans();
  other->ExecuteSQL("UPDATE CSOBJREV SET FLAG = 1 WHERE REVISION = 3");
  const Answer refused = command_test::run(
      {"--connect",
       database().connect_text() +
           (kind() == ServerKind::sqlite ? ";Timeout=100" : ";INITSTMT={SET innodb_lock_wait_timeout=1}"),
       "rev", "rebuild", "--yes"});
  other->Rollback();
  EXPECT_EQ(refused.status, 1);
  EXPECT_TRUE(refused.err.starts_with("spc: cannot count the versions anew: ")) << refused;
  EXPECT_EQ(versions(), "0.1 1.0 1.1 ");
}

TEST_P(RevisionMaintenance, reset_is_refused_where_the_foreign_key_cannot_be_dropped) {
  if (kind() == ServerKind::mariadb) {
    database().spoil();
    execute("ALTER TABLE CSREVDAT DROP FOREIGN KEY FKREVDAT1");
  }
  const Answer refused = spc({"rev", "reset", "--yes"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.err,
            kind() == ServerKind::sqlite
                ? "spc: cannot reset the revisions: SQLite can neither drop nor add a foreign key, which the reset has "
                  "to do\n     Nothing was changed.\n"
                  "     Make a new database (spc db create), and enter there what is to stay.\n"
                : "spc: cannot reset the revisions: the foreign key FKREVDAT1 of CSREVDAT is missing, which the reset "
                  "drops and adds again\n     Nothing was changed.\n     Add it: ALTER TABLE CSREVDAT ADD CONSTRAINT "
                  "FKREVDAT1 FOREIGN KEY(REVID) REFERENCES CSOBJREV(REVID)\n");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSREVDAT"), "3");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSOBJREV"), "3");
}

/// On a server that can do it.
class RevisionReset : public RevisionMaintenance {
 protected:
  RevisionReset() {
    execute("INSERT INTO CSPROF (PROFID, AREV, ALEVEL) VALUES (5, 3, 1)");
    execute("INSERT INTO CSPROF (PROFID) VALUES (6)");
  }
  /// The command's link with a script in between.
  spc::Link& scripted_link() {
    test_support::play(link_.db(), script_);
    return link_;
  }

  std::shared_ptr<test_support::Script> script_ = std::make_shared<test_support::Script>();
  spc::Link link_{database().connect_text(), nullptr};
};

INSTANTIATE_TEST_SUITE_P(Servers, RevisionReset, testing::Values(ServerKind::mariadb), test_support::server_name);

TEST_P(RevisionReset, says_what_it_would_change_and_wants_to_be_told) {
  const Answer asked = spc({"rev", "reset"});
  EXPECT_EQ(asked.status, 2);
  EXPECT_TRUE(asked.says("  CSREVDAT     3  payloads are deleted\n  CSOBJREV     3  revisions are deleted")) << asked;
  EXPECT_TRUE(asked.says("  CSPROF       1  profiles lose their approval\n")) << asked;
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSREVDAT"), "3");
  EXPECT_EQ(value("SELECT AREV FROM CSPROF WHERE PROFID = 5"), "3");
}

TEST_P(RevisionReset, throws_all_revisions_away_and_keeps_the_foreign_key) {
  const Answer done = spc({"--json", "rev", "reset", "--yes"});
  EXPECT_EQ(done.status, 0) << done;
  const auto told = json_check::parse(done.out);
  EXPECT_TRUE(told["done"].truth);
  EXPECT_EQ(told["changes"].items.size(), 15U);
  for (const char* table : {"CSREVDAT", "CSOBJREV"})
    EXPECT_EQ(value(std::string("SELECT COUNT(*) FROM ") + table), "0") << table;
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSPROF WHERE AREV IS NULL AND ALEVEL IS NULL"), "2");
  EXPECT_THROW(execute("INSERT INTO CSREVDAT (REVID, DATA) VALUES (9, 'x')"), std::runtime_error);
}

TEST_P(RevisionReset, shows_a_bar_on_a_terminal) {
  std::ostringstream out;
  std::ostringstream err;
  spc::reset_revisions(link_, {out, err, false, false, spc::ProgressStyle::bar});
  EXPECT_NE(err.str().find("resetting [" + std::string(30, '#') + "] 17/17"), std::string::npos) << err.str();
}

TEST_P(RevisionReset, names_the_statement_that_failed_and_what_stands) {
  database().spoil();
  // Looking at the table works; changing it does not.
  execute(
      "CREATE TRIGGER REFUSES BEFORE UPDATE ON CSPROF FOR EACH ROW SIGNAL SQLSTATE '45000' SET MESSAGE_TEXT = 'no'");
  const Answer failed = spc({"rev", "reset", "--yes"});
  EXPECT_EQ(failed.status, 1);
  EXPECT_TRUE(failed.err.starts_with("spc: cannot reset the revisions: ")) << failed;
  EXPECT_TRUE(
      failed.complains(" in UPDATE CSPROF SET AREV = NULL, ALEVEL = NULL\n     These statements stand:\n"
                       "       TRUNCATE TABLE CSREVDAT\n"
                       "       ALTER TABLE CSREVDAT DROP FOREIGN KEY FKREVDAT1\n"
                       "       TRUNCATE TABLE CSOBJREV\n"
                       "       ALTER TABLE CSREVDAT ADD CONSTRAINT FKREVDAT1 "))
      << failed;
  EXPECT_TRUE(failed.complains("     Then repeat the reset.\n")) << failed;
  execute("DROP TRIGGER REFUSES");
  EXPECT_EQ(spc({"rev", "reset", "--yes"}).status, 0) << "it can be repeated";
}

spc::Problem problem_of(const std::function<void()>& work) {
  try {
    work();
  } catch (const spc::Problem& problem) {
    return problem;
  }
  return {};
}

TEST_P(RevisionReset, tells_that_the_foreign_key_is_away_when_it_failed_in_between) {
  std::ostringstream sink;
  script_->on("TRUNCATE TABLE CSOBJREV").refuse(test_support::error("HY000", 1021, "Disk full"));
  const auto problem = problem_of([&] { spc::reset_revisions(scripted_link(), {sink, sink}); });
  EXPECT_TRUE(problem.why.ends_with(" in TRUNCATE TABLE CSOBJREV")) << problem.why;
  EXPECT_NE(problem.advice.find("Then add the foreign key again (ALTER TABLE CSREVDAT ADD CONSTRAINT "),
            std::string::npos)
      << problem.advice;
  database().spoil();
}

TEST_P(RevisionReset, is_refused_to_a_login_that_may_not_change_the_table) {
  script_->on("ALTER TABLE CSREVDAT DROP FOREIGN KEY SPCNOKEY")
      .refuse(
          test_support::error("42000", 1142, "ALTER command denied to user 'anna'@'localhost' for table 'CSREVDAT'"));
  const auto problem = problem_of([&] { spc::require_reset_possible(scripted_link()); });
  EXPECT_NE(problem.why.find("(permission, SQLSTATE 42000, native 1142)"), std::string::npos) << problem.why;
  EXPECT_EQ(problem.note, "Nothing was changed.");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSREVDAT"), "3");
}

}  // namespace
