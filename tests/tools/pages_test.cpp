// Plan
//   Manual pages: special characters are escaped; groff finds nothing to complain of in any of them; what groff prints
//     has the text of an option as it stands in the table
//   Schemas: strict JSON of the known keywords; they refuse what they should; a recursive one; validators find each
//   kind
//     of fault
//   Every command with JSON prints what its schema tells: each is run
//   spc_pages writes every page
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "tests/tools/json_check.h"
#include "tests/tools/program.h"
#include "tests/tools/schema_check.h"
#include "tools/spc/help.h"
#include "tools/spc/pages.h"

namespace {

using command_test::Answer;
using spc::Command;
using spc::commands;

std::string content_of(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// What a line of a shell prints, both ways.
std::string said_by(const std::string& line) {
  const test_support::ScratchFolder folder;
  const int status = std::system(("{ " + line + "; } >'" + folder.file("said") + "' 2>&1").c_str());
  return content_of(folder.file("said")) + (status == 0 ? "" : "failed\n");
}

TEST(ManualPages, escape_what_groff_would_read_otherwise) {
  const std::string page = spc::manual_of(spc::find_command("sample import"));
  EXPECT_NE(page.find("\\-\\-profile NAME|ID"), std::string::npos) << page;
  EXPECT_NE(page.find("\\(aqPiston rings\\(aq"), std::string::npos) << page;
  EXPECT_EQ(spc::manual_of(spc::find_command("path")).find('"', 60), std::string::npos) << "quotes beyond the title";
}

TEST(ManualPages, are_well_formed_for_groff) {
  const test_support::ScratchFolder folder;
  for (const auto& page : spc::all_pages()) {
    if (!page.file.starts_with("man/")) continue;
    std::ofstream(folder.file("page.1")) << page.content;
    EXPECT_EQ(said_by("groff -man -ww -Tutf8 -z '" + folder.file("page.1") + "'"), "") << page.file;
  }
}

TEST(ManualPages, print_the_texts_of_the_table) {
  const test_support::ScratchFolder folder;
  std::ofstream(folder.file("page.1")) << spc::manual_of(spc::find_command("source add"));
  const std::string printed = said_by("groff -man -Tascii -P-cbou -rLL=300n '" + folder.file("page.1") + "'");
  for (const char* text :
       {"--date-literal PATTERN", "A date in its SQL: DATE '%Y-%m-%d'.", "\"ask\": all of it is typed",
        "spc source add Lab --connection-string 'DSN=lab;UID=spc' --password-fd 3"})
    EXPECT_NE(printed.find(text), std::string::npos) << text << '\n' << printed;
}

json_check::Value schema(const char* path) { return json_check::parse(spc::schema_of(*spc::find_command(path))); }

std::string fault(const char* path, const char* json) {
  return schema_check::fault_in(json_check::parse(json), schema(path));
}

TEST(Schemas, are_json_with_known_keywords_alone) {
  for (const Command& command : commands()) {
    if (command.json == nullptr) continue;
    const auto read = json_check::parse(spc::schema_of(command));
    EXPECT_EQ(read["$schema"].text, "https://json-schema.org/draft/2020-12/schema");
    EXPECT_EQ(read["title"].text, "spc " + std::string(command.path) + " --json");
    EXPECT_NE(schema_check::fault_in(json_check::parse("\"no answer of any command\""), read), "") << command.path;
  }
}

TEST(Schemas, tell_every_kind_of_fault) {
  EXPECT_EQ(fault("settings get", R"({"key": "x", "bytes": 89})"), "");
  EXPECT_EQ(fault("settings get", R"({"key": "x"})"), "$ has no bytes");
  EXPECT_EQ(fault("settings get", R"({"key": "x", "bytes": 8.5})"), "$.bytes is no integer");
  EXPECT_EQ(fault("settings get", R"({"key": 1, "bytes": 8})"), "$.key is no string");
  EXPECT_EQ(fault("settings get", R"({"key": "x", "bytes": 8, "more": 1})"), "$.more is not in the schema");
  EXPECT_EQ(fault("settings get", "[]"), "$ is no object");
  EXPECT_EQ(fault("settings list", R"([{"key": "a", "bytes": 1, "text": "x"}])"), "");
  EXPECT_EQ(fault("settings list", R"([{"key": "a", "bytes": 1, "text": null}])"), "$[0].text is no string");
}

TEST(Schemas, lead_into_what_holds_its_own_kind) {
  const std::string leaf = R"("hidden": false, "cut": false, "monitors": [], "profiles": []})";
  const std::string good = R"({"tree": {"id": 0, "name": "", "folders": [{"id": 1, "name": "a", "folders": [], )" +
                           leaf + "], " + leaf + R"(, "not_reachable": []})";
  EXPECT_EQ(fault("tree", good.c_str()), "");
  const std::string bad = R"({"tree": {"id": 0, "name": "", "folders": [{"id": "1", "name": "a", "folders": [], )" +
                          leaf + "], " + leaf + R"(, "not_reachable": []})";
  EXPECT_EQ(fault("tree", bad.c_str()), "$.tree.folders[0].id is no integer");
}

TEST(SchemaCheck, refuses_keywords_that_it_does_not_know) {
  EXPECT_THROW(schema_check::fault_in(json_check::parse("1"), json_check::parse(R"({"minimum": 2})")),
               std::runtime_error);
  EXPECT_NE(schema_check::fault_in(json_check::parse("\"c\""), json_check::parse(R"({"enum": ["a", "b"]})")), "");
  EXPECT_EQ(schema_check::fault_in(json_check::parse("\"b\""), json_check::parse(R"({"enum": ["a", "b"]})")), "");
}

/// Runs each command that answers in JSON; `program.cpp` holds the answers against the schemas.
class JsonAnswers : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(run({"demo", "--keep", folder_.file("demo.db"), "--json"}).status, 0);
    place_ = "sqlite:" + folder_.file("demo.db");
    std::ofstream rings(file("rings.csv"));
    rings << "sample,piece,Diameter\n";
    for (int piece = 1; piece <= 5; ++piece)
      rings << "1," << piece << ",74.0" << piece << '\n';
  }
  std::string file(const char* name) { return folder_.file(name); }
  static Answer run(const std::vector<std::string>& arguments) { return command_test::run(arguments); }
  void done(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--json", "--connect", place_});
    const Answer answer = run(arguments);
    EXPECT_EQ(answer.status, 0) << arguments[3] << ' ' << arguments.back() << '\n' << answer;
  }

  test_support::ScratchFolder folder_;
  std::string place_;
};

TEST_F(JsonAnswers, are_as_their_schemas_tell_for_every_command) {
  command_test::execute(place_,
                        "INSERT INTO CSINI (QUAL, SECT, KYWORD, SEQNO, OPTVAL) VALUES ('SYSTEM', 'SETTINGS', 'city', "
                        "1, '4BC3B66C6E')");
  EXPECT_EQ(run({"--json", "--connect", "sqlite:" + file("new.db"), "db", "create"}).status, 0);
  done({"db", "check"});
  done({"doctor", "--skip", "server-zone"});
  done({"doctor", "--list"});
  done({"sample", "import", file("rings.csv"), "--profile", "Piston rings", "--set", "Phase=production", "--set",
        "Taken at=2024-03-05", "--set", "Gauge=bore gauge A"});
  done({"sample", "list"});
  done({"sample", "show", "1"});
  done({"path", "/Plant/Forge"});
  done({"tree"});
  done({"numbers", "check"});
  done({"numbers", "repair"});
  done({"settings", "list"});
  done({"settings", "get", "city"});
  done({"payload", "put", "monitor", "1", file("rings.csv")});
  done({"payload", "get", "monitor", "1"});
  done({"payload", "get", "monitor", "1", file("payload.bin")});
  done({"payload", "delete", "monitor", "1"});
  done({"rev", "add", "--type", "1", "--id", "9", "--file", file("rings.csv")});
  done({"rev", "list", "--type", "1", "--id", "9"});
  done({"rev", "show", "--type", "1", "--id", "9"});
  done({"rev", "get", "--type", "1", "--id", "9"});
  done({"rev", "approve", "--type", "1", "--id", "9", "--revision", "1", "--level", "1"});
  done({"rev", "rebuild", "--yes"});
  done({"source", "add", "Lab", "--connection-string", place_});
  done({"source", "edit", "Lab", "--description", "results"});
  done({"source", "list"});
  done({"source", "show", "Lab"});
  done({"source", "test", "Lab"});
  done({"source", "export", "Lab", file("lab.xml")});
  done({"source", "import", file("lab.xml"), "--name", "Lab 2"});
  done({"source", "rewrite"});
  done({"source", "remove", "Lab"});
  done({"range", "today"});
  done({"schedule", "0 8 * * 1"});
  // The reset is beyond SQLite. Without --yes it tells of its plan.
  const test_support::SchemaDatabase server(test_support::ServerKind::mariadb);
  EXPECT_EQ(run({"--json", "--connect", server.connect_text(), "rev", "reset"}).status, 2);
  std::set<std::string> wanted;
  for (const Command& command : commands())
    if (command.json != nullptr) wanted.emplace(command.path);
  EXPECT_EQ(command_test::commands_with_checked_json(), wanted);
}

TEST(SpcPages, writes_every_page_and_the_document) {
  const test_support::ScratchFolder folder;
  EXPECT_EQ(said_by("'" SPC_PAGES "' '" + folder.path().string() + "'"), "");
  const auto pages = spc::all_pages();
  for (const auto& page : pages)
    EXPECT_EQ(content_of(folder.file(page.file)), page.content) << page.file;
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path()))
    files += entry.is_regular_file() ? 1 : 0;
  EXPECT_EQ(files, pages.size());
  EXPECT_EQ(said_by("'" SPC_PAGES "' --document '" + folder.file("commands.md") + "'"), "");
  EXPECT_EQ(content_of(folder.file("commands.md")), spc::commands_document());
}

}  // namespace
