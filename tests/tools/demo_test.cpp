// Plan, on SQLite and on a private MariaDB server
//   The demo builds, saves and reads back, and shows a history of revisions, the tree, objects by path, data sources as
//     two users see them, and an old definition before and after; JSON; a trace that masks passwords; what stands is
//     what the files say
//   A second run begins anew; a database in use, and one with other samples, are left
//     alone
//   A temporary file goes; --keep keeps one that the other commands work on, and refuses one that exists
//   What is compiled in is what stands in tools/spc/data
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>

#include "tests/tools/json_check.h"
#include "tests/tools/program.h"
#include "tools/spc/csv.h"
#include "tools/spc/embedded_data.h"

namespace {

using command_test::Answer;

class Demo : public testing::TestWithParam<test_support::ServerKind> {
 protected:
  Answer spc(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--connect", database_.connect_text()});
    return command_test::run(arguments);
  }
  void execute(const std::string& statement) { database_.execute(statement); }

  command_test::EmptyDatabase database_{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Servers, Demo, test_support::main_servers(), test_support::server_name);

TEST_P(Demo, saves_the_measurements_and_finds_them_as_they_were) {
  const Answer demo = spc({"demo"});
  EXPECT_EQ(demo.status, 0) << demo;
  EXPECT_TRUE(demo.says("  140 samples, 1154 cells, all as in the files\n")) << demo;
  EXPECT_TRUE(demo.says("      2                                 74.002  bore gauge B\n")) << demo;
  EXPECT_EQ(demo.err, "");
  EXPECT_EQ(spc({"db", "check"}).status, 0);
  EXPECT_EQ(json_check::parse(spc({"--json", "sample", "list", "--limit", "1000"}).out).items.size(), 140U);
}

TEST_P(Demo, traces_statements_and_masks_passwords) {
  const Answer demo = spc({"--trace", "demo"});
  EXPECT_EQ(demo.status, 0);
  EXPECT_TRUE(demo.complains("[3, 'chloé', 'Chloé Martin', '***']\n")) << "the user's row";
}

TEST_P(Demo, stores_what_the_files_say) {
  EXPECT_EQ(spc({"--json", "demo"}).status, 0);
  const auto boards = spc::parse_csv("boards", spc::embedded::file("circuit_boards.csv"));
  for (const std::size_t i : {0U, 22U, 45U}) {
    const auto sample = json_check::parse(spc({"--json", "sample", "show", std::to_string(95 + i)}).out);
    EXPECT_EQ(sample["profile_name"].text, "Circuit boards");
    const auto& row = sample["rows"].items.at(0).items;
    EXPECT_EQ(std::to_string(static_cast<int>(row.at(1).number)), boards.rows.at(i).fields.at(1));
    EXPECT_EQ(row.at(2).text, boards.rows.at(i).fields.at(2));
  }
  const auto can = json_check::parse(spc({"--json", "sample", "show", "63"}).out);
  EXPECT_EQ(can["auto_labels"]["OPERATOR"].text, "chloé") << "the new operator at sample 23 of the cans";
}

TEST_P(Demo, tells_its_steps_in_json) {
  const Answer demo = spc({"demo", "--json"});
  ASSERT_EQ(demo.status, 0) << demo;
  const auto told = json_check::parse(demo.out);
  ASSERT_EQ(told["steps"].items.size(), 10U);
  EXPECT_EQ(told["steps"].items[2]["step"].text, "import piston_rings.csv");
  EXPECT_EQ(told["steps"].items[2]["rows"].number, 200);
  EXPECT_EQ(told["examples"].items.size(), 3U);
  ASSERT_EQ(told["history"].items.size(), 5U);
  EXPECT_EQ(told["history"].items[0]["approval"]["user"].text, "bo");
}

TEST_P(Demo, shows_how_a_profile_came_to_be) {
  const Answer demo = spc({"demo"});
  const std::string shown = std::regex_replace(demo.out, std::regex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9:]{8}"), "TIME");
  EXPECT_NE(shown.find("The history of Piston rings\n\n  revision  version  saved "), std::string::npos) << demo;
  for (const char* line :
       {"         5      1.0  TIME  bo     Duplicate of version 0.4 (major version on approval)  TIME  bo      2  "
        "Released for production\n",
        "         4      0.4  TIME  anna   Five pieces in each sample\n",
        "         3      0.3  TIME  chloé  Control limits of the set-up phase\n",
        "         2      0.2  TIME  anna   Tolerance of the drawing                              TIME  bo      1  "
        "Compared with the drawing\n",
        "         1      0.1  TIME  anna   First draft\n"})
    EXPECT_NE(shown.find(line), std::string::npos) << line << demo;
}

TEST_P(Demo, shows_the_tree_and_finds_objects_by_path) {
  const Answer demo = spc({"demo"});
  for (const char* line :
       {"└── Plant/ (1)\n", "        ├── Line 1/ (3)\n", "        │   └── Piston rings (profile 1)\n",
        "  enterprise:/Plant/Forge/Line 1/Piston rings|approved  profile       1  latest approved  5, version 1.0\n",
        "  \\Plant\\Forge\\Line 1\\Piston rings|2                    profile       1  2                2, version "
        "0.2\n",
        "  /plant/electronics/BOARD DEFECTS                      monitor       4  latest\n"})
    EXPECT_TRUE(demo.says(line)) << line << demo;
  const auto told = json_check::parse(spc({"--json", "demo"}).out);
  ASSERT_EQ(told["paths"].items.size(), 4U);
  EXPECT_EQ(told["paths"].items[0]["asked"].text, "latest approved");
  EXPECT_EQ(told["paths"].items[0]["revision"].text, "5, version 1.0");
  EXPECT_EQ(told["tree"].kind, json_check::Value::Kind::object);
}

TEST_P(Demo, shows_what_two_users_see_of_the_data_sources) {
  const auto told = json_check::parse(spc({"--json", "demo"}).out);
  ASSERT_EQ(told["data_sources"].items.size(), 3U);
  std::vector<std::string> seen;
  for (const auto& source : told["data_sources"].items) {
    std::string& by = seen.emplace_back();
    for (const auto& user : source["seen_by"].items)
      by += user.text + " ";
  }
  EXPECT_EQ(seen, (std::vector<std::string>{"anna ", "bo ", "anna bo "}));
  EXPECT_EQ(json_check::parse(spc({"--json", "--as-user", "1", "source", "list"}).out).items.size(), 2U);
  EXPECT_EQ(json_check::parse(spc({"--json", "--as-user", "2", "source", "list"}).out).items.size(), 2U);
  EXPECT_EQ(json_check::parse(spc({"--json", "source", "list"}).out).items.size(), 4U) << "and the old one";
}

TEST_P(Demo, renews_an_old_definition) {
  const Answer demo = spc({"demo"});
  EXPECT_TRUE(demo.says("  connection_string  DSN=archive;Trusted_Connection=yes  connection_string_2  AQAA")) << demo;
  EXPECT_TRUE(demo.says("  identifier_quote  \"                                    quote_prefix  \"\n")) << demo;
  EXPECT_TRUE(spc({"source", "show", "Archive"}).says("connection   DSN=archive;Trusted_Connection=yes\n"));
}

TEST_P(Demo, shows_no_password) {
  const Answer demo = spc({"--trace", "demo"});
  EXPECT_TRUE(demo.says("Provider=MSDASQL;Data Source=goods;User ID=spc;Password=***")) << demo;
  EXPECT_FALSE(demo.says("conveyor"));
  EXPECT_FALSE(demo.complains("conveyor"));
}

TEST_P(Demo, begins_anew_in_the_database_of_an_earlier_demo) {
  EXPECT_EQ(spc({"demo"}).status, 0);
  const Answer again = spc({"demo"});
  EXPECT_EQ(again.status, 0) << again;
  EXPECT_TRUE(again.says("Sample 1 of Piston rings")) << again;
  EXPECT_EQ(json_check::parse(spc({"--json", "sample", "list", "--limit", "1000"}).out).items.size(), 140U);
}

TEST_P(Demo, leaves_a_database_in_use_alone) {
  EXPECT_EQ(spc({"db", "create"}).status, 0);
  const Answer demo = spc({"demo"});
  EXPECT_EQ(demo.status, 1);
  EXPECT_EQ(demo.err,
            "spc: cannot run the demo: the database is in use: it holds CSNODE and more of the schema\n"
            "     The demo wants an empty database, or one that it has filled before.\n");
  EXPECT_EQ(spc({"db", "check"}).status, 0);
}

TEST_P(Demo, leaves_samples_alone_that_are_not_its_own) {
  EXPECT_EQ(spc({"demo"}).status, 0);
  execute("INSERT INTO CSSAMP (SAMPID, PROFID) VALUES (1000, 1)");
  const Answer demo = spc({"demo"});
  EXPECT_EQ(demo.status, 1);
  EXPECT_TRUE(demo.complains("holds samples that are not the demo's")) << demo;
  EXPECT_EQ(json_check::parse(spc({"--json", "sample", "list", "--limit", "1000"}).out).items.size(), 141U);
}

TEST(DemoFile, is_temporary_unless_it_is_kept) {
  const Answer demo = command_test::run({"demo"});
  EXPECT_EQ(demo.status, 0) << demo;
  EXPECT_TRUE(demo.says("The database was temporary and is gone")) << demo;
}

TEST(DemoFile, is_kept_for_the_other_commands) {
  const test_support::ScratchFolder folder;
  const std::string file = folder.file("my;plant.db");
  EXPECT_EQ(command_test::run({"demo", "--keep", file}).status, 0);
  EXPECT_TRUE(std::filesystem::exists(file));
  EXPECT_EQ(command_test::run({"--connect", "sqlite:{" + file + "}", "sample", "show", "140"}).status, 0);
  const Answer again = command_test::run({"demo", "--keep", file});
  EXPECT_EQ(again.status, 1);
  EXPECT_TRUE(again.complains("the file " + file + " is there already")) << again;
}

TEST(DemoData, is_compiled_in_as_it_stands_in_the_tree) {
  for (const char* name : {"piston_rings.csv", "juice_cans.csv", "circuit_boards.csv"}) {
    std::ifstream file(std::string(SPC_DATA "/") + name, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(spc::embedded::file(name), text) << name;
  }
}

}  // namespace
