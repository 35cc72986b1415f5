// Plan, on SQLite and MariaDB
//   a user sees the profiles that list the user, or a group of the user's, and nothing else: in the tree, among paths
//     and numbers, among samples
//   0 sees all; a user who does not exist, and what is no number, are told of
//   the demo's plant: two of its users see different things, and its running numbers are right
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "spcbase/testkit/demo_plant.h"
#include "tests/tools/json_check.h"
#include "tests/tools/program.h"

namespace {

using command_test::Answer;

// Anna (1) is listed for rings (41). Bo (2) is in group 5, which is listed for cans (42). Nobody sees boards (43).
class AsUser : public command_test::OnDatabase {
 protected:
  AsUser() {
    execute("INSERT INTO CSUSER (USERID, NAME) VALUES (1, 'anna'), (2, 'bo'), (3, 'nobody'), (4, 'gone')");
    execute("UPDATE CSUSER SET VFLG = 'D' WHERE USERID = 4");
    execute("INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES (1, 'Plant', 0)");
    execute("INSERT INTO CSMON (MONID, NAME) VALUES (31, 'bore')");
    execute("INSERT INTO CSMINN (NODEID, MONID) VALUES (1, 31)");
    execute("INSERT INTO CSPROF (PROFID, NAME) VALUES (41, 'rings'), (42, 'cans'), (43, 'boards')");
    execute("INSERT INTO CSPINN (NODEID, PROFID) VALUES (1, 41), (1, 42), (1, 43)");
    execute("INSERT INTO CSUINP (PROFID, USERID) VALUES (41, 1)");
    execute("INSERT INTO CSGINP (PROFID, GROUPID) VALUES (42, 5)");
    execute("INSERT INTO CSUSGP (GROUPID, USERID) VALUES (5, 2)");
    // Samples 1 to 3, each of another profile.
    execute(
        "INSERT INTO CSSAMP (SAMPID, PROFID, CTIME) VALUES (1, 41, '2024-03-15 08:30:00'), "
        "(2, 42, '2024-03-15 08:30:00'), (3, 43, '2024-03-15 08:30:00')");
  }
  Answer as(const std::string& user, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--as-user", user});
    return spc(std::move(arguments));
  }
  std::vector<double> profiles_in_tree(const std::string& user) {
    std::vector<double> ids;
    const auto answer = json_check::parse(as(user, {"--json", "tree", "/Plant"}).out);
    for (const auto& profile : answer["tree"]["profiles"].items)
      ids.push_back(profile["id"].number);
    return ids;
  }
  std::vector<double> samples(const std::string& user) {
    std::vector<double> ids;
    for (const auto& sample : json_check::parse(as(user, {"--json", "sample", "list"}).out).items)
      ids.push_back(sample["sample"].number);
    return ids;
  }
};

INSTANTIATE_TEST_SUITE_P(Servers, AsUser, test_support::main_servers(), test_support::server_name);

TEST_P(AsUser, tree_shows_the_profiles_that_the_user_may_see_and_every_folder_and_monitor) {
  EXPECT_THAT(profiles_in_tree("1"), testing::ElementsAre(41));
  EXPECT_THAT(profiles_in_tree("2"), testing::ElementsAre(42));
  EXPECT_THAT(profiles_in_tree("3"), testing::IsEmpty());
  EXPECT_THAT(profiles_in_tree("0"), testing::ElementsAre(43, 42, 41)) << "boards, cans, rings";
  EXPECT_TRUE(as("3", {"tree"}).says("bore (monitor 31)\n"));
}

TEST_P(AsUser, path_does_not_find_what_the_user_may_not_see) {
  EXPECT_TRUE(as("1", {"path", "/Plant/rings"}).says("number    41\n"));
  const Answer refused = as("2", {"path", "/Plant/rings"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.err,
            "spc: cannot find \"/Plant/rings\": Plant (1) holds no folder, monitor or profile \"rings\"\n");
  EXPECT_EQ(as("2", {"path", "41"}).status, 1);
  EXPECT_EQ(as("2", {"path", "42"}).status, 0);
  EXPECT_EQ(as("2", {"path", "/Plant/bore"}).status, 0) << "monitors have no lists";
}

TEST_P(AsUser, sample_list_shows_samples_of_the_profiles_that_the_user_may_see) {
  EXPECT_THAT(samples("1"), testing::ElementsAre(1));
  EXPECT_THAT(samples("2"), testing::ElementsAre(2));
  EXPECT_THAT(samples("3"), testing::IsEmpty());
  EXPECT_THAT(samples("0"), testing::ElementsAre(3, 2, 1));
}

TEST_P(AsUser, sample_list_of_one_profile_names_none_that_the_user_may_not_see) {
  EXPECT_TRUE(as("1", {"sample", "list", "--profile", "rings"}).says("rings"));
  const Answer refused = as("2", {"sample", "list", "--profile", "41"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.err,
            "spc: cannot find the profile \"41\": there is none of that name or number\n"
            "     There is cans (42).\n");
  EXPECT_TRUE(
      as("3", {"sample", "list", "--profile", "rings"}).complains("There is no profile that this user may see."));
}

TEST_P(AsUser, refuses_a_user_who_does_not_exist) {
  for (const char* user : {"99", "4"})
    for (const auto& task : std::vector<std::vector<std::string>>{{"tree"}, {"path", "/Plant"}, {"sample", "list"}}) {
      const Answer refused = as(user, task);
      EXPECT_EQ(refused.status, 1);
      EXPECT_EQ(refused.err, "spc: cannot list as user " + std::string(user) +
                                 ": there is no user of this number\n"
                                 "     There are anna (1), bo (2), nobody (3).\n");
    }
}

TEST_P(AsUser, refuses_what_is_no_number_of_a_user) {
  for (const char* user : {"-1", "anna", "", "1.5", "2147483648"}) {
    const Answer refused = as(user, {"tree"});
    EXPECT_EQ(refused.status, 2) << user;
    EXPECT_TRUE(refused.err.starts_with("spc: cannot read the command line: --as-user: ")) << refused;
  }
}

class DemoPlantUsers : public command_test::OnDatabase {};

INSTANTIATE_TEST_SUITE_P(Servers, DemoPlantUsers, test_support::main_servers(), test_support::server_name);

TEST_P(DemoPlantUsers, see_different_things_and_the_running_numbers_are_right) {
  const auto plant = plant::build_demo_plant(db());
  EXPECT_EQ(spc({"numbers", "check"}).status, 0);
  const Answer anna = spc({"tree", "--as-user", std::to_string(plant.anna.id)});
  const Answer bo = spc({"tree", "--as-user", std::to_string(plant.bo.id)});
  EXPECT_TRUE(anna.says(" Piston rings (profile ")) << anna;
  EXPECT_FALSE(anna.says(" Juice cans (profile ")) << anna;
  EXPECT_FALSE(bo.says(" Piston rings (profile ")) << bo;
  EXPECT_TRUE(bo.says(" Juice cans (profile ")) << bo;
  EXPECT_TRUE(anna.says(" Circuit boards (profile ") && bo.says(" Circuit boards (profile "));
  EXPECT_TRUE(
      spc({"path", "/Plant/Filling // packing/Juice cans"}).says("number    " + std::to_string(plant.juice_cans.id)));
  EXPECT_EQ(spc({"tree"}).out.find("Not reachable"), std::string::npos);
}

}  // namespace
