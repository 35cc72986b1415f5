// Plan
//   --version, --help; misuse has status 2 and a line on standard error: no task, unknown words, options that exclude
//     each other, missing and wrong values
//   Where the database is: the user's data folder when nothing is said; no place at all; connect texts that name no
//     driver, no file or no data source; a file that is no database
//   No clear password in what is printed, whatever goes wrong
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/tools/program.h"

namespace {

using command_test::Answer;
using command_test::run;

TEST(Command, tells_its_version_and_what_it_can_do) {
  const Answer version = run({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out, "spc " SPC_VERSION "\n");
  const Answer help = run({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_TRUE(help.says("demo")) << help;
  EXPECT_EQ(run({"sample", "import", "--help"}).status, 0);
}

class Misuse : public testing::TestWithParam<std::vector<std::string>> {};

TEST_P(Misuse, has_status_2_and_says_so_on_standard_error) {
  const Answer answer = run(GetParam());
  EXPECT_EQ(answer.status, 2) << answer;
  EXPECT_EQ(answer.out, "");
  EXPECT_TRUE(answer.err.starts_with("spc: cannot read ")) << answer;
}

INSTANTIATE_TEST_SUITE_P(
    Command, Misuse,
    testing::Values(std::vector<std::string>{}, std::vector<std::string>{"fly"}, std::vector<std::string>{"db"},
                    std::vector<std::string>{"db", "fly"}, std::vector<std::string>{"--fly", "demo"},
                    std::vector<std::string>{"--dsn", "a", "--connect", "b", "db", "check"},
                    std::vector<std::string>{"sample", "show"}, std::vector<std::string>{"sample", "show", "one"},
                    std::vector<std::string>{"sample", "show", "0"},
                    std::vector<std::string>{"sample", "list", "--limit", "0"},
                    std::vector<std::string>{"sample", "import", "a.csv"},
                    std::vector<std::string>{"sample", "import", "--profile", "1"},
                    std::vector<std::string>{"sample", "import", "a.csv", "--profile", "1", "--map", "column"},
                    std::vector<std::string>{"sample", "import", "a.csv", "--profile", "1", "--set", "=x"},
                    std::vector<std::string>{"demo", "--keep", "a", "--connect", "sqlite:b"}));

TEST(Command, keeps_its_database_in_the_users_data_folder) {
  const test_support::ScratchFolder home;
  const Answer none = run({"db", "check"}, home.path().string());
  EXPECT_EQ(none.status, 1) << none;
  EXPECT_TRUE(none.complains("spc: cannot open the database sqlite:" + home.file(".local/share/spc/spc.db") + ": "))
      << none;
  EXPECT_EQ(run({"db", "create"}, home.path().string()).status, 0);
  EXPECT_TRUE(std::filesystem::exists(home.file(".local/share/spc/spc.db")));
  EXPECT_EQ(run({"db", "check"}, home.path().string()).status, 0);
}

TEST(Command, fails_when_there_is_no_place_to_look_in) {
  const Answer answer = run({"db", "check"});
  EXPECT_EQ(answer.status, 1);
  EXPECT_EQ(answer.err,
            "spc: cannot choose a database: neither XDG_DATA_HOME nor HOME names a folder\n"
            "     Name the database with --connect or --dsn.\n");
}

TEST(Command, says_that_a_connect_text_names_no_driver_or_file) {
  for (const char* text : {"Driver={No Such Driver};Database=x", "DSN=no_such_source", "just words",
                           "sqlite:", "sqlite:/no/such/folder/plant.db"}) {
    const Answer answer = run({"--connect", text, "db", "check"});
    EXPECT_EQ(answer.status, 1) << answer;
    EXPECT_TRUE(answer.err.starts_with("spc: cannot open the database " + std::string(text) + ": ")) << answer;
    EXPECT_EQ(answer.out, "");
  }
  const Answer source = run({"--dsn", "no_such_source", "db", "check"});
  EXPECT_EQ(source.status, 1);
  EXPECT_TRUE(source.err.starts_with("spc: cannot open the database DSN=no_such_source: ")) << source;
}

TEST(Command, says_that_a_file_is_no_database) {
  const test_support::ScratchFolder folder;
  std::ofstream(folder.file("notes.txt")) << std::string(5000, 'x');
  const Answer answer = run({"--connect", "sqlite:" + folder.file("notes.txt"), "db", "check"});
  EXPECT_EQ(answer.status, 1);
  EXPECT_TRUE(answer.complains("is not an SQLite database")) << answer;
}

TEST(Command, never_prints_a_password) {
  const std::string secret = "Ge}}heim7";
  for (const std::string& text :
       {"Driver={No Such Driver};UID=u;PWD={" + secret + "};Database=x", "DSN=no_such_source;Password={" + secret + "}",
        "sqlite:/no/such/file;PWD={" + secret + "}",
        test_support::PrivateMariaDb::shared().odbc_connect_text("no_such_database") + ";PWD={" + secret + "}"})
    for (const char* task : {"check", "create"}) {
      const Answer answer = run({"--trace", "--connect", text, "db", task});
      EXPECT_EQ(answer.status, 1) << answer;
      EXPECT_FALSE(answer.complains("heim7")) << answer;
      EXPECT_FALSE(answer.says("heim7")) << answer;
      EXPECT_TRUE(answer.complains("***")) << answer;
    }
}

}  // namespace
