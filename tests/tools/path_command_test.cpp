// Plan, on SQLite and MariaDB
//   a path: kind, number, revision, folders; a monitor and a profile of one name; one kind alone; the root; JSON
//   a number: its paths, several and none; what has the number in each kind
//   what is told of a path that leads nowhere: which name, where, hidden folders, one name, no revision word
//   parents in a circle and parents that are missing or null
//   names that hurt, and a chain of 1,000 folders
#include <gtest/gtest.h>

#include "tests/tools/json_check.h"
#include "tests/tools/program.h"

namespace {

using command_test::Answer;

// Plant(1) > Forge(2) > Line 1(3);  Plant(1) > old(4, hidden) > below(5)
class PathCommand : public command_test::OnDatabase {
 protected:
  PathCommand() {
    execute(
        "INSERT INTO CSNODE (NODEID, NAME, PNODE, VFLG) VALUES (1, 'Plant', 0, NULL), (2, 'Forge', 1, NULL), "
        "(3, 'Line 1', 2, NULL), (4, 'old', 1, 'D'), (5, 'below', 4, NULL)");
    execute("INSERT INTO CSMON (MONID, NAME) VALUES (31, 'bore'), (32, 'alone')");
    execute("INSERT INTO CSMINN (NODEID, MONID) VALUES (3, 31)");
    execute("INSERT INTO CSPROF (PROFID, NAME) VALUES (41, 'bore'), (2, 'rings'), (43, 'nowhere')");
    execute("INSERT INTO CSPINN (NODEID, PROFID) VALUES (3, 41), (2, 2), (3, 2)");
  }
  std::string error_of(const std::string& path) {
    const Answer answer = spc({"path", path});
    EXPECT_EQ(answer.status, 1) << answer;
    EXPECT_EQ(answer.out, "");
    return answer.err;
  }
};

INSTANTIATE_TEST_SUITE_P(Servers, PathCommand, test_support::main_servers(), test_support::server_name);

TEST_P(PathCommand, tells_kind_number_revision_and_folders) {
  const Answer told = spc({"path", "enterprise:/plant/FORGE/rings|approved"});
  EXPECT_EQ(told.status, 0) << told;
  EXPECT_EQ(told.out,
            "kind      profile\n"
            "number    2\n"
            "name      rings\n"
            "revision  latest approved\n"
            "path      /Plant/Forge/rings\n"
            "folders   Plant (1), Forge (2)\n");
}

TEST_P(PathCommand, tells_both_where_a_monitor_and_a_profile_have_the_name) {
  const Answer told = spc({"path", "\\Plant\\Forge\\Line 1\\bore|7"});
  EXPECT_EQ(told.status, 0) << told;
  EXPECT_TRUE(told.says("kind      monitor\nnumber    31\n")) << told;
  EXPECT_TRUE(told.says("kind      profile\nnumber    41\n")) << told;
  EXPECT_TRUE(told.says("revision  7\n")) << told;
  const Answer monitor = spc({"path", "/Plant/Forge/Line 1/bore", "--kind", "monitor"});
  EXPECT_FALSE(monitor.says("profile")) << monitor;
  EXPECT_TRUE(monitor.says("revision  latest\n")) << monitor;
}

TEST_P(PathCommand, tells_folders_and_the_root) {
  EXPECT_EQ(spc({"path", "/plant/forge"}).out,
            "kind     folder\nnumber   2\nname     Forge\npath     /Plant/Forge\nfolders  Plant (1), Forge (2)\n");
  EXPECT_TRUE(spc({"path", "Plant"}).says("number   1\n"));
  for (const char* root : {"/", "enterprise:/", "0"})
    EXPECT_EQ(spc({"path", root}).out, "kind    folder\nnumber  0\nname    none, it is the root\npath    /\n");
}

TEST_P(PathCommand, answers_in_json) {
  const auto told = json_check::parse(spc({"--json", "path", "/Plant/Forge/Line 1/bore|latestapproved"}).out);
  EXPECT_EQ(told["asked"].text, "/Plant/Forge/Line 1/bore|latestapproved");
  EXPECT_EQ(told["revision"].number, -100);
  EXPECT_EQ(told["revision_text"].text, "latest approved");
  ASSERT_EQ(told["found"].items.size(), 2U);
  const auto& monitor = told["found"].items[0];
  EXPECT_EQ(monitor["kind"].text, "monitor");
  EXPECT_EQ(monitor["id"].number, 31);
  ASSERT_EQ(monitor["locations"].items.size(), 1U);
  const auto& location = monitor["locations"].items[0];
  EXPECT_EQ(location["path"].text, "/Plant/Forge/Line 1/bore");
  ASSERT_EQ(location["folders"].items.size(), 3U);
  EXPECT_EQ(location["folders"].items[2]["id"].number, 3);
  EXPECT_EQ(location["folders"].items[2]["name"].text, "Line 1");
}

TEST_P(PathCommand, of_a_number_tells_every_path_of_everything_that_has_it) {
  const Answer told = spc({"path", "2"});
  EXPECT_EQ(told.status, 0) << told;
  EXPECT_EQ(told.out,
            "kind     folder\nnumber   2\nname     Forge\npath     /Plant/Forge\nfolders  Plant (1), Forge (2)\n"
            "\n"
            "kind     profile\nnumber   2\nname     rings\n"
            "path     /Plant/Forge/rings\nfolders  Plant (1), Forge (2)\n"
            "path     /Plant/Forge/Line 1/rings\nfolders  Plant (1), Forge (2), Line 1 (3)\n");
  EXPECT_FALSE(spc({"path", "2", "--kind", "profile"}).says("folder\n"));
  EXPECT_TRUE(spc({"path", "32"}).says("path    none, it stands in no folder\n"));
}

TEST_P(PathCommand, of_a_number_that_nothing_has_says_so) {
  EXPECT_EQ(error_of("99"),
            "spc: cannot find number 99: no folder, monitor or profile has this number\n"
            "     A name that is a number is found as a path: /99.\n");
  const Answer monitor = spc({"path", "41", "--kind", "monitor"});
  EXPECT_EQ(monitor.status, 1);
  EXPECT_TRUE(monitor.complains("no monitor has this number\n")) << monitor;
}

TEST_P(PathCommand, names_the_first_name_that_is_not_there_and_where) {
  EXPECT_EQ(error_of("/Plant/Forge/Line 2/x/bore"),
            "spc: cannot find \"/Plant/Forge/Line 2/x/bore\": there is no folder \"Line 2\" in Forge (2)\n");
  EXPECT_EQ(error_of("/Plent/Forge/bore"),
            "spc: cannot find \"/Plent/Forge/bore\": there is no folder \"Plent\" in the root\n");
  EXPECT_EQ(error_of("/Plant/Forge/bore|7"),
            "spc: cannot find \"/Plant/Forge/bore|7\": Forge (2) holds no folder, monitor or profile \"bore\"\n");
}

TEST_P(PathCommand, says_that_one_name_alone_is_no_path_of_a_monitor_or_profile) {
  for (const char* path : {"bore", "/bore", "enterprise:/bore"})
    EXPECT_EQ(error_of(path), "spc: cannot find \"" + std::string(path) +
                                  "\": there is no folder \"bore\" in the root\n"
                                  "     A monitor or profile needs the folder that holds it before its name: "
                                  "/FOLDER/NAME.\n");
}

TEST_P(PathCommand, says_that_a_folder_on_the_way_is_hidden) {
  EXPECT_EQ(error_of("/Plant/old/below"),
            "spc: cannot find \"/Plant/old/below\": old (4) in Plant (1) is hidden, and paths lead through no hidden "
            "folder\n"
            "     A folder is hidden when its VFLG in CSNODE is not null; spc tree --all shows it.\n");
  const Answer told = spc({"path", "5", "--kind", "folder"});
  EXPECT_EQ(told.status, 0) << told;
  EXPECT_TRUE(told.says("folders  Plant (1), old (4) hidden, below (5)\n")) << told;
}

TEST_P(PathCommand, says_that_a_word_is_no_revision_and_stays_in_the_name) {
  EXPECT_EQ(error_of("/Plant/Forge/rings|aproved"),
            "spc: cannot find \"/Plant/Forge/rings|aproved\": Forge (2) holds no folder, monitor or profile "
            "\"rings|aproved\"\n"
            "     \"aproved\" is no revision word, so the bar before it belongs to the name; latest, latestapproved, "
            "approved and numbers are.\n");
  execute("UPDATE CSPROF SET NAME = 'rings|aproved' WHERE PROFID = 2");
  const Answer told = spc({"path", "/Plant/Forge/rings|aproved"});
  EXPECT_EQ(told.status, 0) << told;
  EXPECT_TRUE(told.says("number    2\n")) << told;
  EXPECT_TRUE(told.says("revision  latest\n")) << told;
  EXPECT_TRUE(told.says("\n\"aproved\" is no revision word")) << told;
}

TEST_P(PathCommand, tells_of_parents_in_a_circle) {
  execute("INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (8, 'eight', 9), (9, 'nine', 8), (10, 'tail', 8)");
  const Answer told = spc({"path", "10"});
  EXPECT_EQ(told.status, 1);
  EXPECT_TRUE(told.says("path     none, the parents lead in a circle: 8, 9, 8\n")) << told;
  EXPECT_EQ(told.err,
            "spc: cannot tell a path of folder 10: the parents lead in a circle: 8, 9, 8\n"
            "     PNODE in CSNODE names the parent of a folder, 0 is the root; spc tree lists what it cannot reach.\n");
  const auto json = json_check::parse(spc({"--json", "path", "10"}).out);
  EXPECT_EQ(json["found"].items[0]["locations"].items[0]["broken"].text, "the parents lead in a circle: 8, 9, 8");
}

TEST_P(PathCommand, tells_of_parents_that_are_missing_or_null) {
  execute("INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (8, 'orphan', 99), (9, 'loose', NULL)");
  execute("INSERT INTO CSPINN (NODEID, PROFID) VALUES (8, 41)");
  EXPECT_TRUE(
      spc({"path", "8"}).complains("cannot tell a path of folder 8: the parent 99 of orphan (8) does not exist"));
  EXPECT_TRUE(spc({"path", "9"}).complains("the parent of loose (9) is null, and not 0, which is the root"));
  const Answer profile = spc({"path", "41"});
  EXPECT_EQ(profile.status, 1);
  EXPECT_TRUE(profile.says("path     /Plant/Forge/Line 1/bore\n")) << profile;
  EXPECT_TRUE(profile.complains("cannot tell a path of profile 41: the parent 99 of orphan (8)")) << profile;
}

TEST_P(PathCommand, finds_names_that_hurt_and_nothing_else) {
  execute(
      "INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (20, 'x'' OR ''1''=''1', 0), (21, '%_[a]{b}?', 20), "
      "(22, 'n/m', 21)");
  const Answer told = spc({"path", "/x' OR '1'='1/%_[a]{b}?/n//m"});
  EXPECT_TRUE(told.says("folders  x' OR '1'='1 (20), %_[a]{b}? (21), n/m (22)\n")) << told;
  EXPECT_TRUE(spc({"path", "22"}).says("path     /x' OR '1'='1/%_[a]{b}?/n//m\n"));
  EXPECT_EQ(spc({"path", "/x' OR 1=1 --"}).status, 1);
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSNODE"), "8");
}

TEST_P(PathCommand, follows_a_chain_of_1000_folders) {
  std::string rows;
  std::string path;
  for (int i = 1; i <= 1000; ++i) {
    const auto name = std::to_string(i);
    rows += (i == 1 ? "(" : ", (") + std::to_string(1000 + i) + ", 'n" + name + "', " +
            std::to_string(i == 1 ? 0 : 999 + i) + ")";
    path += "/n" + name;
  }
  execute("INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES " + rows);
  EXPECT_TRUE(spc({"path", "2000"}).says("path     " + path + "\n"));
  EXPECT_TRUE(spc({"path", path}).says("number   2000\n"));
}

TEST_P(PathCommand, refuses_an_empty_path_and_an_unknown_kind) {
  const Answer empty = spc({"path", " "});
  EXPECT_EQ(empty.status, 2);
  EXPECT_EQ(empty.err, "spc: cannot find a path: it is empty\n     The root is /.\n");
  const Answer kind = spc({"path", "/Plant", "--kind", "sample"});
  EXPECT_EQ(kind.status, 2);
  EXPECT_EQ(kind.err, "spc: cannot read --kind \"sample\": it is folder, monitor or profile\n");
}

TEST_P(PathCommand, tells_of_a_database_without_the_schema) {
  database().spoil();
  execute("DROP TABLE CSNODE");
  const Answer answer = spc({"path", "/Plant/x"});
  EXPECT_EQ(answer.status, 1);
  EXPECT_TRUE(answer.err.starts_with("spc: cannot read the folders: ")) << answer;
}

}  // namespace
