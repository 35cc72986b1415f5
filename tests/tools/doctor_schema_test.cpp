// Plan, on SQLite and on a private MariaDB server
//   What is missing from the schema, column by column, and the checks that cannot run then; the others go on
//   Columns too narrow, columns that refuse null, keys that are missing, and the double rows that these let in
//   Views that show other rows; what SQLite itself tells; texts that the server takes for equal
//   Definitions that cannot be deciphered under their id, and those of a later version
//   The server's zone and clock against ours
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include "spcbase/datasource/stored.h"
#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/zone_guard.h"
#include "tests/tools/doctor_faults.h"
#include "tools/spc/doctor/doctor.h"

namespace {

using doctor_test::Found;
using spc::doctor::Audit;
using test_support::ServerKind;
using Texts = std::vector<std::string>;

class DoctorOnSchema : public test_support::DatabaseTest {
 protected:
  Audit audit(const Texts& only = {}) {
    spc::Link link(database().connect_text(), nullptr);
    return doctor_test::audit_of(link, only);
  }
  std::vector<Found> findings() { return doctor_test::findings_of(database().connect_text()); }
  bool on_sqlite() const { return kind() == ServerKind::sqlite; }
  /// Makes a column another: by a statement, or on SQLite by making the table anew.
  void alter(const std::string& table, const std::string& mariadb, const std::string& text,
             const std::string& replacement) {
    database().spoil();
    if (on_sqlite())
      doctor_test::remake_sqlite_table(database(), table, text, replacement);
    else
      execute("ALTER TABLE " + table + " " + mariadb);
  }
};

INSTANTIATE_TEST_SUITE_P(Servers, DoctorOnSchema, test_support::main_servers(), test_support::server_name);

TEST_P(DoctorOnSchema, names_a_missing_table_and_goes_on_without_it) {
  database().spoil();
  execute("DROP TABLE CSSPAPPR");
  execute("INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (5, 'lost', 77)");
  const Audit found = audit();
  EXPECT_FALSE(found.sound());
  Texts names;
  for (const auto& finding : found.findings)
    names.push_back(std::string(finding.check->name) + " " + finding.table);
  EXPECT_NE(std::ranges::find(names, "table-missing CSSPAPPR"), names.end());
  EXPECT_NE(std::ranges::find(names, "folder-without-parent CSNODE"), names.end());
  Texts not_run;
  for (const auto& entry : found.not_run) {
    if (!entry.failed) continue;
    not_run.emplace_back(entry.check->name);
    EXPECT_NE(entry.why.find("CSSPAPPR"), std::string::npos) << entry.why;
  }
  EXPECT_EQ(not_run, (Texts{"column-too-narrow", "column-refuses-null", "sample-without-approval",
                            "approval-without-sample", "sample-approval-half-done"}));
}

TEST_P(DoctorOnSchema, names_a_missing_view) {
  database().spoil();
  execute("DROP VIEW CSUSERV");
  const Audit found = audit({"view-missing"});
  ASSERT_EQ(found.findings.size(), 1U);
  EXPECT_EQ(found.findings[0].table, "CSUSERV");
}

TEST_P(DoctorOnSchema, names_a_missing_column) {
  database().spoil();
  execute("ALTER TABLE CSDOC DROP COLUMN ALEVEL");
  const Audit found = audit({"column-missing"});
  ASSERT_EQ(found.findings.size(), 1U);
  EXPECT_EQ(found.findings[0].table, "CSDOC");
  EXPECT_EQ(found.findings[0].subjects.first, Texts{"ALEVEL"});
}

TEST_P(DoctorOnSchema, names_a_text_column_that_is_too_narrow) {
  alter("CSSTN", "MODIFY NAME VARCHAR(40)", "NAME VARCHAR(255)", "NAME VARCHAR(40)");
  EXPECT_EQ(findings(), (std::vector<Found>{{"column-too-narrow", "CSSTN", {"NAME"}}}));
  EXPECT_EQ(audit({"column-too-narrow"}).findings.at(0).subjects.detail, "NAME: 40 characters instead of 255");
}

TEST_P(DoctorOnSchema, names_an_integer_column_that_is_too_narrow) {
  alter("CSDOC", "MODIFY ALEVEL SMALLINT", "ALEVEL INT", "ALEVEL SMALLINT");
  EXPECT_EQ(findings(), (std::vector<Found>{{"column-too-narrow", "CSDOC", {"ALEVEL"}}}));
}

TEST_P(DoctorOnSchema, names_a_real_column_that_loses_digits) {
  alter("CSDEFTOT", "MODIFY SSIZE FLOAT", "SSIZE DOUBLE", "SSIZE REAL");
  const auto found = findings();
  // SQLite's REAL has 64 bits all the same.
  EXPECT_EQ(found,
            on_sqlite() ? std::vector<Found>() : (std::vector<Found>{{"column-too-narrow", "CSDEFTOT", {"SSIZE"}}}));
}

TEST_P(DoctorOnSchema, names_a_column_that_refuses_null) {
  alter("CSSAMP", "MODIFY PROFREV INT NOT NULL", "PROFREV INT", "PROFREV INT NOT NULL");
  EXPECT_EQ(findings(), (std::vector<Found>{{"column-refuses-null", "CSSAMP", {"PROFREV"}}}));
}

TEST_P(DoctorOnSchema, names_a_missing_primary_key) {
  alter("CSVINL", "DROP PRIMARY KEY", "CONSTRAINT PKVINL PRIMARY KEY (LABELID, VALUEID)", "CHECK (1 = 1)");
  const Audit found = audit({"unique-key-missing"});
  ASSERT_EQ(found.findings.size(), 1U);
  EXPECT_EQ(found.findings[0].table, "CSVINL");
  EXPECT_EQ(found.findings[0].subjects.detail, "primary key over LABELID, VALUEID");
}

TEST_P(DoctorOnSchema, names_a_missing_unique_key_over_columns_that_may_be_null) {
  database().spoil();
  execute(on_sqlite() ? "DROP INDEX UKLDAT1" : "ALTER TABLE CSLDAT DROP INDEX UKLDAT1");
  EXPECT_EQ(findings(), (std::vector<Found>{{"unique-key-missing", "CSLDAT", {"UKLDAT1"}}}));
}

TEST_P(DoctorOnSchema, takes_a_key_of_another_name_or_of_fewer_columns_for_the_key) {
  database().spoil();
  execute(on_sqlite() ? "DROP INDEX UKLDAT1" : "ALTER TABLE CSLDAT DROP INDEX UKLDAT1");
  execute("CREATE UNIQUE INDEX OTHER1 ON CSLDAT (LABELID, SAMPID)");
  EXPECT_EQ(findings(), std::vector<Found>());
}

TEST_P(DoctorOnSchema, names_the_double_revisions_that_a_missing_key_lets_in) {
  alter("CSOBJREV", "DROP INDEX UKOBJREV1", "CONSTRAINT UKOBJREV1 UNIQUE (OBJID, OBJTYPE, REVISION)", "CHECK (1 = 1)");
  for (const char* id : {"8", "9"}) {
    execute("INSERT INTO CSOBJREV (REVID, OBJID, OBJTYPE, REVISION, MAJORVER, MINORVER, CTIME) VALUES (" +
            std::string(id) + ", 5, 1, 1, 0, " + id + ", '2024-03-05 08:00:00')");
    execute("INSERT INTO CSREVDAT VALUES (" + std::string(id) + ", X'01')");
  }
  EXPECT_EQ(findings(), (std::vector<Found>{{"revision-doubled", "CSOBJREV", {"8"}},
                                            {"revision-gap", "CSOBJREV", {"5"}},
                                            {"unique-key-missing", "CSOBJREV", {"UKOBJREV1"}}}));
}

TEST_P(DoctorOnSchema, names_a_view_that_shows_removed_rows) {
  database().spoil();
  execute("INSERT INTO CSSTN (STNID, NAME, VFLG) VALUES (1, 'gone', 'D')");
  execute("UPDATE CSSTRN SET MAXNO = 1");
  EXPECT_EQ(findings(), std::vector<Found>());
  execute("DROP VIEW CSSTNV");
  execute("CREATE VIEW CSSTNV AS SELECT STNID, NAME FROM CSSTN");
  const Audit found = audit();
  ASSERT_EQ(found.findings.size(), 1U);
  EXPECT_STREQ(found.findings[0].check->name, "view-shows-other-rows");
  EXPECT_EQ(found.findings[0].table, "CSSTNV");
  EXPECT_EQ(found.findings[0].subjects.detail, "it shows 1 row, CSSTN has 0 live ones");
}

TEST_P(DoctorOnSchema, names_texts_that_the_server_takes_for_equal) {
  alter("CSVALUE", "MODIFY NAME VARCHAR(255) CHARACTER SET utf8mb4 COLLATE utf8mb4_general_ci", "NAME VARCHAR(255)",
        "NAME VARCHAR(255) COLLATE NOCASE");
  const auto found = findings();
  const Found ignores_case{"collation-ignores-case", "CSVALUE", {"NAME"}};
  if (on_sqlite()) {
    EXPECT_EQ(found, std::vector{ignores_case});
  } else {
    EXPECT_EQ(found, (std::vector<Found>{{"collation-ignores-accents", "CSVALUE", {"NAME"}},
                                         {"collation-ignores-blanks", "CSVALUE", {"NAME"}},
                                         ignores_case}));
  }
}

TEST_P(DoctorOnSchema, names_an_entry_whose_flag_is_null) {
  alter("CSLINP", "MODIFY ALFLG VARCHAR(255) NULL", "ALFLG VARCHAR(255) DEFAULT 'NO' NOT NULL", "ALFLG VARCHAR(255)");
  execute("INSERT INTO CSPROF (PROFID) VALUES (1)");
  execute("INSERT INTO CSLABEL (LABELID, LTYPE) VALUES (1, 'PIECE')");
  execute("INSERT INTO CSLINP (PROFID, LABELID, ALFLG) VALUES (1, 1, NULL)");
  for (const char* counter : {"CSPFRN", "CSLBRN"})
    execute("UPDATE " + std::string(counter) + " SET MAXNO = 1");
  EXPECT_EQ(findings(), (std::vector<Found>{{"auto-flag-missing", "CSLINP", {"1"}}}));
}

TEST_P(DoctorOnSchema, names_what_the_check_of_an_sqlite_file_tells) {
  if (on_sqlite()) execute("PRAGMA ignore_check_constraints = ON");
  const Texts not_for = {"foreign-keys-off", "file-damaged"};
  const std::string long_name(on_sqlite() ? 300 : 255, 'n');
  execute("INSERT INTO CSSTN (STNID, NAME) VALUES (1, '" + long_name + "')");
  const Audit found = audit(not_for);
  if (on_sqlite()) {
    ASSERT_EQ(found.findings.size(), 1U);
    EXPECT_STREQ(found.findings[0].check->name, "file-damaged");
    EXPECT_EQ(found.findings[0].subjects.detail, "PRAGMA quick_check tells 1 fault");
  } else {
    EXPECT_EQ(found.findings.size(), 0U);
    EXPECT_EQ(found.not_run.size(), not_for.size());
  }
}

TEST_P(DoctorOnSchema, names_a_connection_that_keeps_no_foreign_keys) {
  spc::Link link(database().connect_text(), nullptr);
  EXPECT_EQ(doctor_test::audit_of(link, {"foreign-keys-off"}).findings.size(), 0U);
  if (on_sqlite()) link.db().ExecuteSQL("PRAGMA foreign_keys = OFF");
  EXPECT_EQ(doctor_test::audit_of(link, {"foreign-keys-off"}).findings.size(), on_sqlite() ? 1U : 0U);
}

TEST_P(DoctorOnSchema, names_a_definition_that_was_enciphered_under_another_id) {
  OLEDBInfo definition;
  definition.id = 4;
  definition.name = "Warehouse";
  definition.connection_string = "Provider=x;Data Source=warehouse;Password=secret";
  COleDateTime written;
  OLEDBInfo::create(&db(), 0, definition, written);
  execute("UPDATE CSEXDBRN SET MAXNO = 9");
  EXPECT_EQ(findings(), std::vector<Found>());
  execute("UPDATE CSEXDB SET EXDBID = 5");
  EXPECT_EQ(findings(), (std::vector<Found>{{"definition-unreadable", "CSEXDB", {"5"}}}));
  const Audit found = audit({"definition-unreadable"});
  EXPECT_NE(found.findings.at(0).subjects.detail.find("cannot be deciphered under the id 5"), std::string::npos);
}

TEST_P(DoctorOnSchema, names_a_definition_of_a_later_version) {
  OLEDBInfo definition;
  definition.id = 4;
  definition.name = "Warehouse";
  COleDateTime written;
  OLEDBInfo::create(&db(), 0, definition, written);
  const CString present = definition.get_xml(false, false);
  std::string later(present.view());
  const std::string version = "version=\"" + std::to_string(definition.version) + "\"";
  const auto at = later.find(version);
  ASSERT_NE(at, std::string::npos) << later;
  later.replace(at, version.size(), "version=\"99\"");
  std::string literal;
  for (const char c : later) {
    constexpr const char* digits = "0123456789ABCDEF";
    literal += digits[static_cast<unsigned char>(c) >> 4U];
    literal += digits[static_cast<unsigned char>(c) & 15U];
  }
  execute("UPDATE CSEXDB SET DATA = X'" + literal + "'");
  execute("UPDATE CSEXDBRN SET MAXNO = 9");
  EXPECT_EQ(findings(), (std::vector<Found>{{"definition-of-later-version", "CSEXDB", {"4"}}}));
}

TEST_P(DoctorOnSchema, notes_a_zone_that_is_not_the_servers) {
  // Two zones that are six hours apart: the server's is one of them at most.
  std::size_t notes = 0;
  for (const char* zone : {"Etc/GMT-9", "Etc/GMT-3"}) {
    const test_support::ZoneGuard guard(zone);
    const Audit found = audit({"server-zone", "server-clock"});
    notes += found.count(spc::doctor::Severity::note);
    EXPECT_EQ(found.count(spc::doctor::Severity::warning), 0U);
    EXPECT_TRUE(found.sound());
    EXPECT_EQ(found.not_run.size(), on_sqlite() ? 2U : 0U);
  }
  EXPECT_EQ(notes > 0, !on_sqlite());
}

TEST_P(DoctorOnSchema, names_a_clock_that_is_not_the_servers) {
  const auto now = std::chrono::time_point_cast<platform::Moment::duration>(std::chrono::system_clock::now());
  for (const auto& ahead : {std::chrono::seconds(400), std::chrono::seconds(1'000'000)}) {
    const platform::HeldClock clock{platform::Moment(now.time_since_epoch() + ahead)};
    const Audit found = audit({"server-clock"});
    EXPECT_EQ(found.findings.size(), on_sqlite() ? 0U : 1U) << ahead.count();
    EXPECT_EQ(found.sound(), on_sqlite());
  }
}

}  // namespace
