// Plan
//   The doctor on the servers that a script plays: SQL Server, Oracle, Access and one of no known kind
//     the texts of the questions, in each server's quotes; nothing that one of them does not understand
//     the catalogue of keys: asked by each server's own question, or not at all
//   What in a server will surprise: no transactions, dirty reads, no dialect, another one's dialect, its clock
//   A connection that is lost ends the audit
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/scratch_folder.h"
#include "spcbase/testkit/scripted_session.h"
#include "spcbase/testkit/zone_guard.h"
#include "tests/tools/doctor_faults.h"
#include "tools/spc/problem.h"

namespace {

using spc::doctor::Audit;
using test_support::error;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Texts = std::vector<std::string>;

/// A link on a script that answers every count with 0.
class Elsewhere : public testing::Test {
 protected:
  Elsewhere() : link_("sqlite:" + folder_.file("x.db") + ";Create=1", nullptr) {}

  void play(const std::string& server, const std::string& probe, char open = '"', char close = '"') {
    script_->server(server).quotes(open, close);
    for (const char* known : {"select getdate()", "select sysdate from dual", "select date()", "select curdate()"}) {
      if (known == probe)
        script_->on(known).answer({"now"}, {{"2024-01-01"}});
      else
        script_->on(known).refuse(error("42000", 1, "no such function"));
    }
  }
  Audit audit(const Texts& only = {}) {
    script_->on_regex("SELECT COUNT.*").answer({"N"}, {{0}});
    link_.db().adopt_session(std::make_unique<test_support::ScriptedSession>(script_));
    return doctor_test::audit_of(link_, only);
  }
  /// The names of what an audit found, and what it tells of each.
  static Texts told(const Audit& audit) {
    Texts texts;
    for (const auto& finding : audit.findings)
      texts.push_back(std::string(finding.check->name) + ": " + finding.subjects.detail);
    return texts;
  }
  bool asked(const std::string& statement) const {
    const auto statements = script_->statements();
    return std::ranges::find(statements, statement) != statements.end();
  }

  test_support::ScratchFolder folder_;
  spc::Link link_;
  std::shared_ptr<test_support::Script> script_ = std::make_shared<test_support::Script>();
};

TEST_F(Elsewhere, asks_sql_server_and_oracle_in_words_of_the_standard) {
  play("Microsoft SQL Server 16.00.1000", "select getdate()");
  audit({"revision-without-payload", "member-without-folder", "folder-without-parent", "revision-doubled"});
  EXPECT_THAT(
      script_->statements(),
      testing::UnorderedElementsAre(
          "SELECT COUNT(*) FROM \"CSOBJREV\" WHERE \"ALEVEL\" IS NULL AND NOT EXISTS (SELECT "
          "\"CSREVDAT\".\"REVID\" FROM \"CSREVDAT\" WHERE \"CSREVDAT\".\"REVID\" = \"CSOBJREV\".\"REVID\" AND "
          "\"CSREVDAT\".\"DATA\" IS NOT NULL)",
          "SELECT COUNT(*) FROM \"CSMINN\" WHERE \"CSMINN\".\"NODEID\" IS NOT NULL AND NOT EXISTS (SELECT "
          "\"CSNODE\".\"NODEID\" FROM \"CSNODE\" WHERE \"CSNODE\".\"NODEID\" = \"CSMINN\".\"NODEID\") AND "
          "\"CSMINN\".\"NODEID\" <> ?",
          "SELECT COUNT(*) FROM \"CSPINN\" WHERE \"CSPINN\".\"NODEID\" IS NOT NULL AND NOT EXISTS (SELECT "
          "\"CSNODE\".\"NODEID\" FROM \"CSNODE\" WHERE \"CSNODE\".\"NODEID\" = \"CSPINN\".\"NODEID\") AND "
          "\"CSPINN\".\"NODEID\" <> ?",
          "SELECT COUNT(*) FROM \"CSNODE\" WHERE \"CSNODE\".\"PNODE\" IS NOT NULL AND \"CSNODE\".\"PNODE\" <> ? "
          "AND NOT EXISTS (SELECT P.\"NODEID\" FROM \"CSNODE\" P WHERE P.\"NODEID\" = \"CSNODE\".\"PNODE\")",
          "SELECT COUNT(*) FROM (SELECT MIN(\"REVID\") AS FIRSTID FROM \"CSOBJREV\" GROUP BY \"OBJTYPE\", "
          "\"OBJID\", \"REVISION\" HAVING COUNT(*) > 1) D"));
}

TEST_F(Elsewhere, asks_for_the_ids_one_behind_the_other) {
  play("Oracle 19.00.0000", "select sysdate from dual");
  script_->on_prefix("SELECT COUNT(*) FROM \"CSLOG\" WHERE").answer({"N"}, {{3}});
  script_->on("SELECT MIN(\"LOGID\") FROM \"CSLOG\" WHERE \"LOGID\" < ?").answer({"M"}, {{-7}});
  script_->on_prefix("SELECT MIN(\"LOGID\") FROM \"CSLOG\" WHERE (\"LOGID\" < ?) AND \"LOGID\" > ")
      .once()
      .answer({"M"}, {{0}});
  script_->on_prefix("SELECT MIN(").answer({"M"}, {{nullptr}});
  const Audit found = audit({"id-not-positive"});
  ASSERT_EQ(found.findings.size(), 1U);
  EXPECT_EQ(found.findings[0].table, "CSLOG");
  EXPECT_THAT(found.findings[0].subjects.first, ElementsAre("-7", "0"));
  EXPECT_EQ(found.findings[0].subjects.count, 3);
}

TEST_F(Elsewhere, quotes_names_for_access) {
  play("ACCESS 04.00.0000", "select date()", '`', '`');
  audit({"approval-without-sample"});
  EXPECT_TRUE(
      asked("SELECT COUNT(*) FROM `CSSPAPPR` WHERE `CSSPAPPR`.`SAMPID` IS NOT NULL AND NOT EXISTS (SELECT "
            "`CSSAMP`.`SAMPID` FROM `CSSAMP` WHERE `CSSAMP`.`SAMPID` = `CSSPAPPR`.`SAMPID`)"));
}

TEST_F(Elsewhere, sends_no_word_that_one_of_the_servers_lacks_in_any_condition) {
  for (const auto& check : spc::doctor::all_checks())
    for (const auto& query : check.queries) {
      const std::string text = " " + query.source + " " + query.condition + " ";
      for (const char* word : {" LIMIT ", " TOP ", "COALESCE", "IFNULL", "NVL", "CASE ", "UPPER(", " JOIN ", "EXCEPT",
                               "MINUS", " WITH ", "OVER (", "||", " AS [", "TRUE", "!="})
        EXPECT_THAT(text, Not(HasSubstr(word))) << check.name;
    }
}

TEST_F(Elsewhere, asks_each_catalogue_for_keys_in_its_own_words) {
  play("Microsoft SQL Server 16.00.1000", "select getdate()");
  script_->on_regex("SELECT T\\.\"name\", I\\.\"name\", C\\.\"name\" FROM sys\\.tables T, sys\\.indexes I.*")
      .answer({"T", "I", "C"},
              {{"CSLOG", "PKLOG", "LOGID"}, {"CSVINL", "PKVINL", "LABELID"}, {"CSVINL", "PKVINL", "VALUEID"}});
  script_->on_regex("SELECT .* WHERE 1=0").answer({"N"}, {});
  const Audit found = audit({"unique-key-missing"});
  EXPECT_THAT(found.not_run, IsEmpty());
  const auto names_table = [&](const std::string& table) {
    return std::ranges::any_of(found.findings, [&](const auto& finding) { return finding.table == table; });
  };
  EXPECT_FALSE(names_table("CSLOG"));
  EXPECT_FALSE(names_table("CSVINL"));
  EXPECT_TRUE(names_table("CSOBJREV"));
}

TEST_F(Elsewhere, takes_a_catalogue_that_shows_no_key_at_all_for_one_that_may_not_be_seen) {
  play("Oracle 19.00.0000", "select sysdate from dual");
  script_->on_prefix("SELECT I.TABLE_NAME, I.INDEX_NAME, C.COLUMN_NAME FROM USER_INDEXES I, USER_IND_COLUMNS C")
      .answer({"T", "I", "C"}, {});
  const Audit found = audit({"unique-key-missing"});
  EXPECT_THAT(found.findings, IsEmpty());
  ASSERT_EQ(found.not_run.size(), 1U);
  EXPECT_TRUE(found.not_run[0].failed);
  EXPECT_THAT(found.not_run[0].why, HasSubstr("may not see them"));
}

TEST_F(Elsewhere, asks_access_for_no_keys_and_counts_that_as_no_failure) {
  play("ACCESS 04.00.0000", "select date()", '`', '`');
  const Audit found = audit({"unique-key-missing"});
  ASSERT_EQ(found.not_run.size(), 1U);
  EXPECT_FALSE(found.not_run[0].failed);
  EXPECT_TRUE(found.sound());
}

TEST_F(Elsewhere, names_a_server_without_transactions) {
  play("Text Driver 1.0", "");
  script_->transactions(false);
  EXPECT_THAT(told(audit({"transactions-missing"})), ElementsAre("transactions-missing: Text Driver 1.0"));
}

TEST_F(Elsewhere, names_dirty_reads) {
  play("Microsoft SQL Server 16.00.1000", "select getdate()");
  script_->information(26, 0, 1);
  EXPECT_THAT(told(audit({"dirty-reads"})), ElementsAre("dirty-reads: transactions begin as READ UNCOMMITTED"));
}

TEST_F(Elsewhere, names_no_dirty_reads_where_the_driver_does_not_tell_or_is_stricter) {
  play("Microsoft SQL Server 16.00.1000", "select getdate()");
  script_->information(26, 0, 2);
  EXPECT_THAT(told(audit({"dirty-reads"})), IsEmpty());
  script_->information(26, -1, 1);
  EXPECT_THAT(told(audit({"dirty-reads"})), IsEmpty());
}

TEST_F(Elsewhere, names_a_server_without_a_dialect) {
  play("PostgreSQL 16.1", "");
  const Audit found = audit({"dialect-unknown", "dialect-of-another-server"});
  EXPECT_THAT(told(found), ElementsAre("dialect-unknown: PostgreSQL 16.1"));
  EXPECT_FALSE(found.sound());
}

TEST_F(Elsewhere, names_a_server_that_answers_as_another) {
  play("PostgreSQL 16.1", "select curdate()");
  EXPECT_THAT(told(audit({"dialect-unknown", "dialect-of-another-server"})),
              ElementsAre("dialect-of-another-server: PostgreSQL 16.1 answers as MySQL"));
}

TEST_F(Elsewhere, takes_each_server_for_itself) {
  for (const auto& [server, probe] : std::vector<std::pair<std::string, std::string>>{
           {"Microsoft SQL Server 16.00.1000", "select getdate()"},
           {"Oracle 19.00.0000", "select sysdate from dual"},
           {"ACCESS 04.00.0000", "select date()"},
           {"MariaDB 10.11.19 through libmaodbc.so", "select curdate()"}}) {
    script_ = std::make_shared<test_support::Script>();
    play(server, probe);
    EXPECT_THAT(told(audit({"dialect-unknown", "dialect-of-another-server"})), IsEmpty()) << server;
  }
}

TEST_F(Elsewhere, compares_the_servers_clock_with_ours) {
  const test_support::ZoneGuard zone("UTC");
  const test_support::HeldClock clock(test_support::utc(2024, 3, 5, 8, 0, 0));
  struct {
    TIMESTAMP_STRUCT moment;
    Texts found;
  } const cases[] = {
      {{2024, 3, 5, 8, 0, 59, 0}, {}},
      {{2024, 3, 5, 7, 59, 1, 0}, {}},
      {{2024, 3, 5, 8, 1, 30, 0}, {"server-clock: its clock is 90 seconds ahead of this machine's"}},
      {{2024, 3, 5, 7, 58, 0, 0}, {"server-clock: its clock is -120 seconds ahead of this machine's"}},
      {{2024, 3, 5, 13, 45, 10, 0}, {"server-zone: its local time is 345 minutes ahead of this machine's"}},
      {{2024, 3, 5, 3, 2, 0, 0},
       {"server-zone: its local time is -300 minutes ahead of this machine's",
        "server-clock: its clock is 120 seconds ahead of this machine's"}},
      {{2020, 1, 1, 0, 0, 0, 0}, {"server-clock: its clock is -131788800 seconds ahead of this machine's"}},
  };
  for (const auto& one : cases) {
    script_ = std::make_shared<test_support::Script>();
    play("Microsoft SQL Server 16.00.1000", "select getdate()");
    script_->on("SELECT MAX(CURRENT_TIMESTAMP) FROM \"CSSPRN\"").answer({"M"}, {{one.moment}});
    EXPECT_EQ(told(audit({"server-zone", "server-clock"})), one.found);
  }
}

TEST_F(Elsewhere, cannot_compare_clocks_without_a_row_to_ask_with) {
  play("Oracle 19.00.0000", "select sysdate from dual");
  script_->on_prefix("SELECT MAX(").answer({"M"}, {{nullptr}});
  const Audit found = audit({"server-clock"});
  ASSERT_EQ(found.not_run.size(), 1U);
  EXPECT_TRUE(found.not_run[0].failed);
  EXPECT_EQ(found.not_run[0].why, "CSSPRN has no row, which the question needs");
}

TEST_F(Elsewhere, ends_when_the_connection_is_lost) {
  play("Oracle 19.00.0000", "select sysdate from dual");
  script_->on_prefix("SELECT COUNT(*) FROM \"CSMINN\"")
      .refuse_at_prepare(error("08S01", 3113, "end-of-file on communication channel"));
  try {
    audit();
    FAIL() << "the audit went on";
  } catch (const spc::Problem& problem) {
    EXPECT_EQ(problem.what, "cannot go on with the audit");
    EXPECT_THAT(problem.why, HasSubstr("link lost"));
  }
}

TEST_F(Elsewhere, goes_on_after_a_refusal) {
  play("Oracle 19.00.0000", "select sysdate from dual");
  script_->on_prefix("SELECT COUNT(*) FROM \"CSMINN\"")
      .refuse_at_prepare(error("42000", 942, "ORA-00942: table or view does not exist"));
  const Audit found = audit({"member-without-folder", "member-without-object"});
  Texts failed;
  for (const auto& entry : found.not_run)
    failed.push_back(std::string(entry.check->name) + " " + entry.table);
  EXPECT_THAT(failed, ElementsAre("member-without-folder CSMINN", "member-without-object CSMINN"));
  EXPECT_THAT(found.not_run.at(0).why, HasSubstr("ORA-00942"));
  EXPECT_EQ(found.checks, 2U);
}

}  // namespace
