// Plan, on SQLite and MariaDB
//   ids to paths: names, separators, hidden, dangling and circular folders -> Tree.a_path_*
//   names to folders: exact, alike, hidden -> Tree.folders_*
//   paths to monitors and profiles: exact, alike, what is no path -> Tree.objects_*
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "spcbase/foundation/outcome.h"
#include "tests/tree/tree_fixture.h"

namespace {

class Tree : public test_support::TreeTest {};

INSTANTIATE_TEST_SUITE_P(Servers, Tree, test_support::main_servers(), test_support::server_name);

TEST_P(Tree, a_path_of_the_root_is_the_separator_alone) {
  EXPECT_EQ(path(0), "/");
  EXPECT_EQ(path(0, false), "\\");
}

TEST_P(Tree, a_path_has_the_names_from_the_root_down_with_separators_doubled) {
  EXPECT_EQ(path(1), "/plant");
  EXPECT_EQ(path(3), "/plant/Line 4/a//b");
  EXPECT_EQ(path(3, false), "\\plant\\Line 4\\a/b");
}

TEST_P(Tree, a_path_is_made_for_hidden_folders_too) { EXPECT_EQ(path(5), "/plant/hidden/below"); }

TEST_P(Tree, a_path_leaves_out_what_a_name_must_not_hold) {
  add_node(6, "tab\there", 1);
  EXPECT_EQ(path(6), "/plant/tabhere");
}

TEST_P(Tree, a_path_over_a_missing_or_circular_parent_is_empty) {
  add_node(7, "orphan", 99);
  add_node(8, "eight", 9);
  add_node(9, "nine", 8);
  add_node(10, "self", 10);
  EXPECT_EQ(path(7), "");
  EXPECT_EQ(path(8), "");
  EXPECT_EQ(path(10), "");
  EXPECT_EQ(path(4711), "");
}

TEST_P(Tree, folders_are_found_by_their_names) {
  EXPECT_EQ(walk({"plant"}), 1);
  EXPECT_EQ(walk({"plant", "Line 4"}), 2);
  EXPECT_EQ(walk({"plant", "Line 4", "a/b"}), 3);
  EXPECT_EQ(walk({}), 0);
  EXPECT_EQ(walk({"plant", "Line 5"}), 0);
  EXPECT_EQ(walk({"Line 4"}), 0) << "not a child of the root";
}

TEST_P(Tree, folders_are_found_without_regard_to_case_white_space_and_what_names_must_not_hold) {
  EXPECT_EQ(walk({"PLANT", " line 4 "}), 2);
  add_node(6, "  tab\there", 1);
  EXPECT_EQ(walk({"plant", "TABHERE"}), 6);
}

TEST_P(Tree, hidden_folders_take_no_part) {
  EXPECT_EQ(walk({"plant", "hidden"}), 0);
  EXPECT_EQ(walk({"plant", "hidden", "below"}), 0);
}

TEST_P(Tree, only_the_first_names_are_walked) {
  EXPECT_EQ(find_node_from_names(&db(), {"plant", "Line 4", "no such"}, 2), 2);
}

TEST_P(Tree, objects_are_found_by_their_path) {
  add_objects(31, "bore", 2);
  add_objects(32, "bore", 3);
  EXPECT_EQ(id("/plant/Line 4/bore"), 31);
  EXPECT_EQ(id("\\plant\\Line 4\\a/b\\bore"), 32);
  EXPECT_EQ(id("/plant/Line 4/a//b/bore"), 32);
  EXPECT_EQ(id("/PLANT/line 4/ BORE "), 31);
  EXPECT_EQ(id("/plant/bore"), 0);
  EXPECT_EQ(id("/plant/nowhere/bore"), 0);
}

TEST_P(Tree, objects_that_were_removed_are_not_found) {
  add_objects(31, "bore", 2);
  execute("UPDATE CSMON SET VFLG = 'D'");
  execute("UPDATE CSPROF SET VFLG = 'D'");
  EXPECT_EQ(id("/plant/Line 4/bore"), 0);
}

TEST_P(Tree, a_path_of_one_name_and_an_empty_one_are_none) {
  add_objects(31, "bore", 0);
  EXPECT_EQ(id("/bore"), 0);
  EXPECT_EQ(id("bore"), 0);
  EXPECT_EQ(id(""), 0);
  EXPECT_EQ(get_mon_id_from_path(&db(), nullptr), 0);
  EXPECT_EQ(get_prof_id_from_path(&db(), nullptr), 0);
}

TEST_P(Tree, a_revision_word_counts_as_part_of_the_name) {
  add_objects(31, "bore", 2);
  EXPECT_EQ(id("/plant/Line 4/bore|7"), 0);
  CString folder;
  CString name;
  int revision = 0;
  ASSERT_TRUE(analyse_path("enterprise:/plant/Line 4/bore|approved", folder, name, false, false, true, &revision));
  EXPECT_EQ(id((folder + "/" + name).GetString()), 31);
  EXPECT_EQ(revision, latest_approved_revision);
}

TEST_P(Tree, folders_are_found_by_exact_and_slow_look_ups_in_turn) { EXPECT_EQ(walk({"PLANT", "Line 4", "A/B"}), 3); }

TEST_P(Tree, a_connection_that_is_not_open_finds_nothing_or_fails_as_given) {
  CDatabaseEx closed;
  EXPECT_TRUE(get_node_path(&closed, 1, true).IsEmpty());
  EXPECT_EQ(find_node_from_names(&closed, {"plant"}, 1), 0);
  EXPECT_EQ(get_mon_id_from_path(&closed, "/plant/x"), 0);
}

TEST_P(Tree, a_database_error_passes) {
  execute("DROP TABLE CSNODE");
  database().spoil();
  const auto outcome = guarded([&] { get_node_path(&db(), 1, true); });
  ASSERT_FALSE(outcome.ok());
  EXPECT_EQ(outcome.failure().failure_class, FailureClass::no_such_object) << outcome.failure().text;
}

}  // namespace
