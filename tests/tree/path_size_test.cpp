// Plan, on SQLite and MariaDB
//   a chain of 1,000 folders: id to path, path to folder, path to objects at its end -> BigTree.chain_*
//   100,000 folders, or 20,000 monitors and as many profiles, in one folder: exactly, by the slow comparison, not at
//   all -> BigTree.crowd_* parents that lead in a circle, short or long, or to nothing: the walk ends -> BigTree.*
#include "tests/tree/tree_fixture.h"

namespace {

constexpr int levels = 1000;
constexpr int children = 100'000;
constexpr int objects = 20'000;
constexpr const char* columns_of_folders = "CSNODE (NODEID, NAME, PNODE)";

class BigTree : public test_support::TreeTest {
 protected:
  // Ids from 1001 on; the first one stands in the root.
  void add_chain() {
    add_many(columns_of_folders, "1000 + I, " + numbered("level ") + ", CASE WHEN I = 1 THEN 0 ELSE 999 + I END", 1,
             levels);
  }
  void add_crowd() { add_many(columns_of_folders, "10000 + I, " + numbered("Line ") + ", 2", 1, children); }
  static std::string chain_path(const char* word) {
    std::string path;
    for (int i = 1; i <= levels; ++i)
      path += "/" + (word + std::to_string(i));
    return path;
  }
};

INSTANTIATE_TEST_SUITE_P(Servers, BigTree, test_support::main_servers(), test_support::server_name);

TEST_P(BigTree, chain_of_1000_folders_has_a_path_and_is_found_by_it) {
  add_chain();
  add_objects(31, "bore", 1000 + levels);
  const std::string expected = chain_path("level ");
  EXPECT_EQ(path(1000 + levels), expected);
  EXPECT_EQ(id(expected + "/bore"), 31);
  EXPECT_EQ(id(expected + "/bare"), 0);
}

TEST_P(BigTree, chain_of_1000_folders_is_found_by_the_slow_comparison_too) {
  add_chain();
  add_objects(31, "bore", 1000 + levels);
  EXPECT_EQ(id(chain_path(" LEVEL ") + "/ Bore"), 31);
}

TEST_P(BigTree, crowd_of_100000_folders_is_told_apart_exactly_and_slowly) {
  add_crowd();
  EXPECT_EQ(walk({"plant", "Line 4", "Line 99999"}), 109999);
  EXPECT_EQ(walk({"plant", "Line 4", " LINE 99999"}), 109999);
  EXPECT_EQ(walk({"plant", "Line 4", "Line 100001"}), 0);
  EXPECT_EQ(path(110000), "/plant/Line 4/Line 100000");
}

TEST_P(BigTree, crowd_of_20000_objects_is_told_apart_exactly_and_slowly) {
  add_many("CSMON (MONID, NAME)", "I, " + numbered("Bore "), 1, objects);
  add_many("CSPROF (PROFID, NAME)", "I, " + numbered("Bore "), 1, objects);
  add_many("CSMINN (NODEID, MONID)", "2, I", 1, objects);
  add_many("CSPINN (NODEID, PROFID)", "2, I", 1, objects);
  EXPECT_EQ(id("/plant/Line 4/Bore 19999"), 19999);
  EXPECT_EQ(id("/plant/Line 4/ BORE 19999"), 19999);
  EXPECT_EQ(id("/plant/Line 4/Bore 20001"), 0);
}

TEST_P(BigTree, circle_of_1000_folders_has_no_path) {
  add_chain();
  execute("UPDATE CSNODE SET PNODE = 2000 WHERE NODEID = 1001");
  EXPECT_EQ(path(1001), "");
  EXPECT_EQ(path(2000), "");
  EXPECT_EQ(walk({"level 1"}), 0) << "no way from the root leads there";
}

TEST_P(BigTree, folder_that_is_its_own_parent_has_no_path_and_is_not_found) {
  add_node(8, "self", 8);
  EXPECT_EQ(path(8), "");
  EXPECT_EQ(walk({"self"}), 0);
}

TEST_P(BigTree, folder_that_leads_into_a_circle_has_no_path) {
  add_node(8, "eight", 9);
  add_node(9, "nine", 8);
  add_node(10, "tail", 8);
  EXPECT_EQ(path(10), "");
}

TEST_P(BigTree, chain_that_ends_at_a_missing_folder_has_no_path) {
  add_chain();
  execute("DELETE FROM CSNODE WHERE NODEID = 1001");
  EXPECT_EQ(path(2000), "");
  EXPECT_EQ(walk({"level 2"}), 0);
}

TEST_P(BigTree, folder_whose_parent_is_null_stands_nowhere_but_ends_a_path) {
  execute("INSERT INTO CSNODE (NODEID, NAME) VALUES (8, 'loose')");
  EXPECT_EQ(path(8), "/loose") << "a null reads as 0";
  EXPECT_EQ(walk({"loose"}), 0) << "but no child of the root is searched by a null";
}

}  // namespace
