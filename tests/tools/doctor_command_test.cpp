// Plan, on SQLite and on a private MariaDB server where a database matters
//   What the demo leaves has no findings
//   A database without the schema is told of as such
//   For people: by severity, then table, with meaning and advice; for machines: everything, in JSON
//   Exit status: 0, also with notes alone; 1 with errors or warnings, and when something could not be looked at; 2
//   --only, --skip, --limit, --list; names that there are not
//   Nothing but SELECTs is sent, and nothing is changed
//   A connection that is lost ends the audit; other failures end one look
#include <gtest/gtest.h>

#include <regex>
#include <sstream>

#include "tests/tools/doctor_faults.h"
#include "tests/tools/json_check.h"
#include "tests/tools/program.h"
#include "tools/spc/doctor/doctor.h"

namespace {

using command_test::Answer;
using test_support::ServerKind;

class DoctorCommand : public command_test::OnDatabase {
 protected:
  /// A zone in which neither test nor server live is no fault of the database.
  static std::vector<std::string> doctor(std::vector<std::string> more = {}) {
    more.insert(more.begin(), {"doctor", "--skip", "server-zone"});
    return more;
  }
};

INSTANTIATE_TEST_SUITE_P(Servers, DoctorCommand, test_support::main_servers(), test_support::server_name);

TEST_P(DoctorCommand, finds_nothing_in_what_the_demo_leaves) {
  command_test::EmptyDatabase empty(kind());
  if (kind() == ServerKind::sqlite) empty.execute("SELECT 1");
  ASSERT_EQ(command_test::run({"--connect", empty.connect_text(), "demo"}).status, 0);
  const Answer checked = command_test::run({"--connect", empty.connect_text(), "doctor", "--skip", "server-zone"});
  EXPECT_EQ(checked.status, 0) << checked;
  EXPECT_TRUE(checked.says(": 0 errors, 0 warnings, 0 notes\n")) << checked;
  EXPECT_FALSE(checked.says("Could not run")) << checked;
  EXPECT_EQ(checked.err, "");
}

TEST_P(DoctorCommand, tells_of_a_database_that_holds_nothing_of_the_schema) {
  command_test::EmptyDatabase empty(kind());
  if (kind() == ServerKind::sqlite) empty.execute("SELECT 1");
  const Answer checked = command_test::run({"--connect", empty.connect_text(), "doctor"});
  EXPECT_EQ(checked.status, 1);
  EXPECT_EQ(checked.out, "");
  EXPECT_TRUE(checked.complains(": the database does not hold the schema\n     spc db create makes it.\n")) << checked;
}

TEST_P(DoctorCommand, tells_people_by_severity_and_table_what_it_means_and_what_to_do) {
  execute("INSERT INTO CSMINN (NODEID, MONID) VALUES (0, 8)");
  execute("INSERT INTO CSMINN (NODEID, MONID) VALUES (0, 9)");
  execute("INSERT INTO CSMINN (NODEID, MONID) VALUES (5, 9)");
  execute("UPDATE CSTSRN SET MAXNO = -1");
  execute("INSERT INTO CSDOC (DOCID, AREV) VALUES (1, 4)");
  execute("UPDATE CSDOCRN SET MAXNO = 1");
  execute("INSERT INTO CSMEXT (MONID) VALUES (9)");
  const Answer checked = spc(
      doctor({"--only", "number-behind,member-without-object", "--only", "object-approval-half-done,payload-null"}));
  EXPECT_EQ(checked.status, 1) << checked;
  const auto line_end = checked.out.find('\n');
  EXPECT_TRUE(checked.out.starts_with("Made 4 checks of ")) << checked;
  EXPECT_EQ(checked.out.substr(checked.out.find(": 2 errors"), line_end - checked.out.find(": 2 errors")),
            ": 2 errors, 1 warning, 1 note");
  EXPECT_EQ(
      checked.out.substr(line_end + 1),
      "\nErrors\n"
      "  CSMINN  member-without-object  MONID 8, 9 (3 rows in all)\n"
      "      A folder holds a monitor or profile that does not exist: the next one that gets this id appears there.\n"
      "      -> Delete the link.\n"
      "  CSTSRN  number-behind  MAXNO -1\n"
      "      MAXNO is -1; the highest id of CSTS is 0\n"
      "      The counter is behind its table: the next new row gets an id that is taken, and is refused.\n"
      "      -> spc numbers repair sets the counters to the highest ids; let nobody add rows meanwhile.\n"
      "\nWarnings\n"
      "  CSDOC  object-approval-half-done  DOCID 1\n"
      "      The object's own summary of its approval has a revision without a level, or a level without a revision.\n"
      "      -> See its revisions (spc rev list), and set AREV and ALEVEL to those of the approved one, or both to "
      "null.\n"
      "\nNotes\n"
      "  CSMEXT  payload-null  MONID 9\n"
      "      The row of a monitor's or profile's data holds none. It reads as no data; whoever saves none deletes the "
      "row.\n"
      "      -> Nothing needs to be done; spc payload delete removes the row.\n");
}

TEST_P(DoctorCommand, tells_machines_everything) {
  execute("INSERT INTO CSLOG VALUES (-2)");
  const Answer checked = spc({"--json", "doctor", "--only", "id-not-positive"});
  EXPECT_EQ(checked.status, 1) << checked;
  const auto json = json_check::parse(checked.out);
  EXPECT_EQ(json["checks"].number, 1);
  EXPECT_EQ(json["errors"].number, 1);
  EXPECT_EQ(json["warnings"].number, 0);
  EXPECT_EQ(json["notes"].number, 0);
  EXPECT_FALSE(json["sound"].truth);
  EXPECT_TRUE(json["not_run"].items.empty());
  ASSERT_EQ(json["findings"].items.size(), 1U);
  const auto& finding = json["findings"].items[0];
  EXPECT_EQ(finding["name"].text, "id-not-positive");
  EXPECT_EQ(finding["severity"].text, "error");
  EXPECT_EQ(finding["table"].text, "CSLOG");
  EXPECT_EQ(finding["column"].text, "LOGID");
  ASSERT_EQ(finding["ids"].items.size(), 1U);
  EXPECT_EQ(finding["ids"].items[0].number, -2);
  EXPECT_EQ(finding["count"].number, 1);
  EXPECT_EQ(finding["detail"].text, "");
  EXPECT_FALSE(finding["meaning"].text.empty());
  EXPECT_FALSE(finding["advice"].text.empty());
}

TEST_P(DoctorCommand, ends_well_with_notes_alone) {
  execute("INSERT INTO CSMON (MONID, NAME) VALUES (1, 'm')");
  execute("UPDATE CSMNRN SET MAXNO = 1");
  execute("INSERT INTO CSMOPB (MONID) VALUES (1)");
  const Answer checked = spc(doctor());
  EXPECT_EQ(checked.status, 0) << checked;
  EXPECT_TRUE(checked.says(": 0 errors, 0 warnings, 1 note\n")) << checked;
}

TEST_P(DoctorCommand, names_as_many_ids_as_wanted_and_counts_all) {
  for (int id = 1; id <= 7; ++id)
    execute("INSERT INTO CSVINL VALUES (1, " + std::to_string(id) + ")");
  execute("INSERT INTO CSLABEL (LABELID, LTYPE) VALUES (1, 'SAMPLE')");
  const std::string begin = "  CSVINL  value-link-without-row  VALUEID";
  const std::vector<std::string> only = {"doctor", "--only", "value-link-without-row"};
  EXPECT_TRUE(spc(only).says(begin + " 1, 2, 3, 4, 5 (7 rows in all)\n"));
  for (const auto& [limit, told] : std::vector<std::pair<std::string, std::string>>{
           {"2", " 1, 2 (7 rows in all)\n"}, {"7", " 1, 2, 3, 4, 5, 6, 7\n"}, {"0", ": 7 rows\n"}}) {
    auto arguments = only;
    arguments.insert(arguments.end(), {"--limit", limit});
    EXPECT_TRUE(spc(arguments).says(begin + told)) << spc(arguments);
  }
}

TEST_P(DoctorCommand, leaves_out_what_is_skipped) {
  execute("INSERT INTO CSLOG VALUES (-2)");
  EXPECT_EQ(spc(doctor({"--only", "id-not-positive,folder-circle"})).status, 1);
  const Answer checked = spc(doctor({"--only", "id-not-positive,folder-circle", "--skip", "id-not-positive"}));
  EXPECT_EQ(checked.status, 0) << checked;
  EXPECT_TRUE(checked.out.starts_with("Made 1 check of ")) << checked;
}

TEST_P(DoctorCommand, sends_nothing_but_selects_and_changes_nothing) {
  doctor_test::build_sound_plant(database());
  for (const auto& fault : doctor_test::faults_in_rows())
    doctor_test::plant(database(), fault);
  const std::string before = doctor_test::dump_of(database());
  const Answer checked = spc({"--trace", "doctor"});
  EXPECT_EQ(checked.status, 1);
  EXPECT_EQ(doctor_test::dump_of(database()), before);
  const std::regex select("trace +[0-9.]+ ms +(failed|[0-9]+ rows?)? *SELECT .*", std::regex::icase);
  std::istringstream lines(checked.err);
  std::size_t statements = 0;
  for (std::string line; std::getline(lines, line); ++statements)
    EXPECT_TRUE(std::regex_match(line, select)) << line;
  EXPECT_GT(statements, 300U);
}

TEST_P(DoctorCommand, fails_when_something_could_not_be_looked_at) {
  database().spoil();
  execute("ALTER TABLE CSSPAPPR DROP COLUMN FLG2");
  const Answer checked = spc(doctor({"--only", "sample-approval-half-done,folder-circle"}));
  EXPECT_EQ(checked.status, 1) << checked;
  EXPECT_TRUE(
      checked.says(": 0 errors, 0 warnings, 0 notes\n\nCould not run\n  sample-approval-half-done on CSSPAPPR: "))
      << checked;
  const auto json = json_check::parse(spc({"--json", "doctor", "--only", "sample-approval-half-done"}).out);
  ASSERT_EQ(json["not_run"].items.size(), 1U);
  EXPECT_EQ(json["not_run"].items[0]["name"].text, "sample-approval-half-done");
  EXPECT_EQ(json["not_run"].items[0]["table"].text, "CSSPAPPR");
  EXPECT_TRUE(json["not_run"].items[0]["failed"].truth);
}

TEST(DoctorMisuse, is_told_of_before_any_database_is_opened) {
  for (const char* option : {"--only", "--skip"}) {
    const Answer answer = command_test::run({"--connect", "sqlite:/nowhere/x.db", "doctor", option, "no-such-check"});
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err,
              "spc: cannot read the command line: there is no check no-such-check\n"
              "     spc doctor --list names all that there are.\n");
  }
  EXPECT_EQ(command_test::run({"doctor", "--only", "folder-circle", "--skip", "folder-circle"}).status, 2);
  EXPECT_EQ(command_test::run({"doctor", "--limit", "-1"}).status, 2);
  EXPECT_EQ(command_test::run({"--connect", "sqlite:/nowhere/x.db", "doctor"}).status, 1);
}

TEST(DoctorList, tells_all_kinds_without_a_database) {
  const Answer people = command_test::run({"doctor", "--list"});
  EXPECT_EQ(people.status, 0);
  const Answer machines = command_test::run({"--json", "doctor", "--list"});
  const auto kinds = json_check::parse(machines.out).items;
  EXPECT_EQ(kinds.size(), spc::doctor::all_checks().size());
  for (const auto& kind : kinds) {
    EXPECT_TRUE(people.says(kind["name"].text + "  (" + kind["severity"].text + "; ")) << kind["name"].text;
    EXPECT_TRUE(people.says("\n    " + kind["meaning"].text + "\n    -> " + kind["advice"].text + "\n"));
  }
  EXPECT_TRUE(people.says("folder-circle  (error; CSNODE)\n"));
  EXPECT_TRUE(people.says("dialect-unknown  (warning; the server)\n"));
}

TEST(DoctorProgress, shows_a_bar_on_a_terminal_and_wipes_it) {
  test_support::SchemaDatabase database(ServerKind::sqlite);
  std::ostringstream out;
  std::ostringstream err;
  const spc::Terminal terminal{out, err, false, false, spc::ProgressStyle::bar};
  EXPECT_EQ(spc::run_doctor({"", database.connect_text()}, {}, terminal), 0);
  EXPECT_NE(err.str().find("examining [###"), std::string::npos);
  EXPECT_TRUE(err.str().ends_with("\r\x1b[K"));
}

}  // namespace
