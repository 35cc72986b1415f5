// Plan, on SQLite and MariaDB
//   the tree for people: order, numbers, what is hidden, how deep, from a folder on; the same as nested JSON
//   what cannot be reached: missing and null parents, circles, what is in such folders
//   a folder in a circle as the top, a row with the root's number: the listing ends
//   a chain of 1,000 folders and 100,000 folders in one
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/tools/json_check.h"
#include "tests/tools/program.h"

namespace {

using command_test::Answer;

class TreeCommand : public command_test::OnDatabase {
 protected:
  void add_folders(const std::string& rows) {
    execute("INSERT INTO CSNODE (NODEID, NAME, PNODE, VFLG) VALUES " + rows);
  }
  // Plant(1) > Forge(2) > Line 1(3), old(4, hidden) > below(5)
  void add_plant() {
    add_folders(
        "(1, 'Plant', 0, NULL), (2, 'Forge', 1, NULL), (3, 'Line 1', 2, NULL), (4, 'old', 2, 'D'), "
        "(5, 'below', 4, NULL)");
    execute("INSERT INTO CSMON (MONID, NAME) VALUES (31, 'bore')");
    execute("INSERT INTO CSMINN (NODEID, MONID) VALUES (3, 31), (1, 31)");
    execute("INSERT INTO CSPROF (PROFID, NAME) VALUES (41, 'rings'), (42, 'removed')");
    execute("UPDATE CSPROF SET VFLG = 'D' WHERE PROFID = 42");
    execute("INSERT INTO CSPINN (NODEID, PROFID) VALUES (3, 41), (3, 42)");
  }
};

INSTANTIATE_TEST_SUITE_P(Servers, TreeCommand, test_support::main_servers(), test_support::server_name);

TEST_P(TreeCommand, of_an_empty_database_is_the_root) {
  EXPECT_EQ(spc({"tree"}).out, "/\n\n0 folders, 0 monitors, 0 profiles\n");
}

TEST_P(TreeCommand, shows_folders_with_their_monitors_and_profiles) {
  add_plant();
  const Answer shown = spc({"tree"});
  EXPECT_EQ(shown.status, 0) << shown;
  EXPECT_EQ(shown.out,
            "/\n"
            "└── Plant/ (1)\n"
            "    ├── Forge/ (2)\n"
            "    │   └── Line 1/ (3)\n"
            "    │       ├── bore (monitor 31)\n"
            "    │       └── rings (profile 41)\n"
            "    └── bore (monitor 31)\n"
            "\n"
            "3 folders, 2 monitors, 1 profile\n"
            "1 hidden folder left out; --all shows what is hidden\n");
}

TEST_P(TreeCommand, shows_what_is_hidden_when_it_is_asked_to) {
  add_plant();
  const Answer shown = spc({"tree", "--all", "2"});
  EXPECT_EQ(shown.out,
            "Forge (2)\n"
            "├── Line 1/ (3)\n"
            "│   ├── bore (monitor 31)\n"
            "│   └── rings (profile 41)\n"
            "└── old/ (4, hidden)\n"
            "    └── below/ (5)\n"
            "\n"
            "3 folders, 1 monitor, 1 profile\n");
}

TEST_P(TreeCommand, goes_as_deep_as_it_is_told_from_any_folder) {
  add_plant();
  EXPECT_EQ(spc({"tree", "--depth", "1"}).out, "/\n└── Plant/ (1) ...\n\n1 folder, 0 monitors, 0 profiles\n");
  EXPECT_EQ(spc({"tree", "/plant", "--depth", "1"}).out,
            "Plant (1)\n├── Forge/ (2) ...\n└── bore (monitor 31)\n\n1 folder, 1 monitor, 0 profiles\n");
  const Answer missing = spc({"tree", "/Plant/bore"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "spc: cannot find \"/Plant/bore\": Plant (1) holds no folder \"bore\"\n");
  EXPECT_EQ(spc({"tree", "--depth", "0"}).status, 2);
}

TEST_P(TreeCommand, orders_by_name_and_keeps_names_on_one_line) {
  add_folders("(1, 'b', 0, NULL), (2, 'a', 0, NULL), (3, 'line\nbreak', 0, NULL)");
  EXPECT_TRUE(spc({"tree"}).out.starts_with("/\n├── a/ (2)\n├── b/ (1)\n└── line break/ (3)\n"));
}

TEST_P(TreeCommand, answers_in_nested_json) {
  add_plant();
  const auto shown = json_check::parse(spc({"--json", "tree", "--all"}).out);
  const auto& plant = shown["tree"]["folders"].items.at(0);
  EXPECT_EQ(plant["name"].text, "Plant");
  EXPECT_EQ(plant["monitors"].items.at(0)["id"].number, 31);
  const auto& forge = plant["folders"].items.at(0);
  ASSERT_EQ(forge["folders"].items.size(), 2U);
  EXPECT_EQ(forge["folders"].items[0]["profiles"].items.at(0)["name"].text, "rings");
  EXPECT_TRUE(forge["folders"].items[1]["hidden"].truth);
  EXPECT_EQ(forge["folders"].items[1]["folders"].items.at(0)["id"].number, 5);
  EXPECT_TRUE(shown["not_reachable"].items.empty());
  const auto cut = json_check::parse(spc({"--json", "tree", "--depth", "1"}).out);
  EXPECT_TRUE(cut["tree"]["folders"].items.at(0)["cut"].truth);
  EXPECT_TRUE(cut["tree"]["folders"].items.at(0)["folders"].items.empty());
}

TEST_P(TreeCommand, lists_at_the_end_what_cannot_be_reached_and_why) {
  add_plant();
  add_folders(
      "(10, 'orphan', 99, NULL), (11, 'child', 10, NULL), (12, 'loose', NULL, NULL), (13, 'x', 14, NULL), "
      "(14, 'y', 13, NULL), (15, 'self', 15, NULL), (16, 'tail', 13, NULL), (17, 'gone', 98, 'D')");
  execute("INSERT INTO CSMINN (NODEID, MONID) VALUES (97, 31), (11, 31)");
  const Answer shown = spc({"tree"});
  EXPECT_EQ(shown.status, 0) << shown;
  EXPECT_TRUE(shown.says("\nNot reachable from the root:\n\n")) << shown;
  for (const char* line : {"folder       10  orphan  the parent 99 of orphan (10) does not exist\n",
                           "folder       11  child   it is in folder 10, which cannot be reached\n",
                           "folder       12  loose   the parent of loose (12) is null, and not 0, which is the root\n",
                           "folder       15  self    its parents lead in a circle: 15, 15\n",
                           "folder       16  tail    it is in folder 13, which cannot be reached\n",
                           "monitor      31  bore    it is in folder 97, which does not exist\n",
                           "monitor      31  bore    it is in folder 11, which cannot be reached\n"})
    EXPECT_TRUE(shown.says(line)) << line << shown;
  // Which of the two comes first is all the same.
  EXPECT_TRUE(shown.says("its parents lead in a circle: 13, 14, 13\n") ||
              shown.says("its parents lead in a circle: 14, 13, 14\n"))
      << shown;
  EXPECT_FALSE(shown.says("gone")) << shown;
  EXPECT_TRUE(spc({"tree", "--all"}).says("gone"));
  const auto json = json_check::parse(spc({"--json", "tree"}).out);
  EXPECT_EQ(json["not_reachable"].items.size(), 9U);
}

TEST_P(TreeCommand, ends_where_a_circle_or_a_row_of_the_roots_number_leads_back) {
  add_folders("(13, 'x', 14, NULL), (14, 'y', 13, NULL), (16, 'tail', 13, NULL)");
  EXPECT_TRUE(spc({"tree", "13"}).out.starts_with("x (13)\n├── tail/ (16)\n└── y/ (14)\n    └── x/ (13) ...\n"));
  add_folders("(0, 'zero', 0, NULL), (1, 'Plant', 0, NULL)");
  const Answer shown = spc({"tree"});
  EXPECT_TRUE(shown.out.starts_with("/\n├── Plant/ (1)\n└── zero/ (0) ...\n")) << shown;
}

TEST_P(TreeCommand, shows_a_chain_of_1000_folders) {
  std::string rows;
  for (int i = 1; i <= 1000; ++i)
    rows += (i == 1 ? "(" : ", (") + std::to_string(i) + ", 'n" + std::to_string(i) + "', " + std::to_string(i - 1) +
            ", NULL)";
  add_folders(rows);
  const Answer shown = spc({"tree"});
  EXPECT_EQ(shown.status, 0);
  EXPECT_TRUE(shown.says("\n" + std::string(4 * 999, ' ') + "└── n1000/ (1000)\n"));
  EXPECT_TRUE(shown.says("1000 folders, 0 monitors, 0 profiles\n"));
  const Answer json = spc({"--json", "tree"});
  EXPECT_EQ(json.status, 0);
  EXPECT_TRUE(json.says("\"name\": \"n1000\""));
}

TEST_P(TreeCommand, shows_100000_folders_in_one) {
  const bool mariadb = kind() == test_support::ServerKind::mariadb;
  execute("INSERT INTO CSNODE (NODEID, NAME, PNODE) " +
          std::string(mariadb ? "SELECT seq, CONCAT('line ', seq), 0 FROM seq_1_to_100000"
                              : "WITH RECURSIVE N(I) AS (SELECT 1 UNION ALL SELECT I + 1 FROM N WHERE I < 100000) "
                                "SELECT I, 'line ' || I, 0 FROM N"));
  const Answer shown = spc({"tree"});
  EXPECT_EQ(shown.status, 0);
  EXPECT_EQ(std::ranges::count(shown.out, '\n'), 100'003);
  EXPECT_TRUE(shown.says("\n└── line 99999/ (99999)\n"));
}

}  // namespace
