// Plan
//   --version, --help; misuse has status 2 and a line on standard error: no task, unknown words, options that exclude
//     each other, missing and wrong values
//   Misuse names what may have been meant: a mistyped command or option, one of another group, an option before its
//     command, a text without quotes; values that are missing, wrong, empty or given twice; "help WORDS"
//   --help fits the page that COLUMNS tells of
//   Standard output that takes nothing is a failure, also when the work is done
//   Where the database is: the user's data folder when nothing is said; no place at all; connect texts that name no
//     driver, no file or no data source; a file that is no database
//     What to do when one cannot be opened fits what was refused
//   No clear password in what is printed, whatever goes wrong
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

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

/// A misuse: the words, why, and what to do.
struct Slip {
  std::vector<std::string> words;
  std::string why;
  std::string advice;
};

void PrintTo(const Slip& slip, std::ostream* out) { *out << slip.why; }

class MisuseText : public testing::TestWithParam<Slip> {};

TEST_P(MisuseText, tells_what_may_have_been_meant) {
  const Answer answer = run(GetParam().words);
  EXPECT_EQ(answer.status, 2) << answer;
  EXPECT_EQ(answer.err, "spc: cannot read the command line: " + GetParam().why + "\n     " + GetParam().advice + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    OfWords, MisuseText,
    testing::Values(Slip{{}, "it names no command", "spc --help tells what there is."},
                    Slip{{"rev"},
                         "spc rev wants to know which command: add, list, show, get, approve, rebuild or reset",
                         "spc rev --help tells what there is."},
                    Slip{{"smaple", "list"},
                         "there is no command \"smaple\"",
                         "Did you mean spc sample? spc --help tells what there is."},
                    Slip{{"SAMPLE", "list"},
                         "there is no command \"SAMPLE\"",
                         "Did you mean spc sample? spc --help tells what there is."},
                    Slip{{"sample", "lst", "--limit", "3"},
                         "spc sample has no command \"lst\"",
                         "Did you mean spc sample list? spc sample --help tells what there is."},
                    Slip{{"import", "a.csv"},
                         "there is no command \"import\"",
                         "Did you mean spc sample import or spc source import? spc --help tells what there is."},
                    Slip{{"version"},
                         "there is no command \"version\"",
                         "Did you mean spc --version? spc --help tells what there is."},
                    Slip{{"xyzzy"}, "there is no command \"xyzzy\"", "spc --help tells what there is."},
                    Slip{{"help", "sample", "lst"},
                         "spc sample has no command \"lst\"",
                         "Did you mean spc sample list? spc sample --help tells what there is."},
                    Slip{{"sample", "list", "--limt", "3"},
                         "spc sample list has no option --limt",
                         "Did you mean --limit? spc sample list --help tells more."},
                    Slip{{"sample", "import", "a.csv", "--prof=1"},
                         "spc sample import has no option --prof",
                         "Did you mean --profile? spc sample import --help tells more."},
                    Slip{{"--limit", "3", "sample", "list"},
                         "--limit stands before its command",
                         "It goes behind: spc sample list --limit. spc sample list --help tells more."},
                    Slip{{"source", "show", "Goods", "received"},
                         "\"received\" is a word too many",
                         "A text with blanks in it stands in quotes. spc source show --help tells more."},
                    Slip{{"tree", "--unlikely"}, "spc tree has no option --unlikely", "spc tree --help tells more."}));

INSTANTIATE_TEST_SUITE_P(
    OfValues, MisuseText,
    testing::Values(
        Slip{{"sample", "show"},
             "ID is missing",
             "Usage: spc sample show [OPTIONS] ID. spc sample show --help tells more."},
        Slip{{"sample", "import", "a.csv"},
             "--profile is missing",
             "Usage: spc sample import --profile NAME|ID [OPTIONS] FILE. spc sample import --help tells more."},
        Slip{{"sample", "list", "--limit"},
             "--limit wants a value behind it",
             "Usage: spc sample list [OPTIONS]. spc sample list --help tells more."},
        Slip{{"sample", "list", "--limit", "0"},
             "--limit: \"0\" is not a number from 1 to 1000000",
             "spc sample list --help tells more."},
        Slip{{"sample", "show", "one"},
             "ID: \"one\" is not a number of 1 or more",
             "spc sample show --help tells more."},
        Slip{{"sample", "show", "2147483648"},
             "ID: \"2147483648\" is not a number of 1 or more, up to 2147483647",
             "spc sample show --help tells more."},
        Slip{{"source", "add", "X", "--flag", "99999999999"},
             "--flag: \"99999999999\" is not a number from -2147483648 to 2147483647",
             "spc source add --help tells more."},
        Slip{{"--progress", "bra", "tree"},
             "--progress: \"bra\" is not bar, line, json or none",
             "spc tree --help tells more."},
        Slip{{"--json=maybe", "tree"}, "--json takes no value", "spc tree --help tells more."},
        Slip{{"--dsn", "a", "--dsn", "b", "tree"}, "--dsn is given more than once", "spc tree --help tells more."},
        Slip{{"--dsn", "a", "--connect", "b", "tree"},
             "--dsn cannot stand beside --connect",
             "spc tree --help tells more."},
        Slip{{"--connect", "", "tree"}, "--connect: the value is empty", "spc tree --help tells more."},
        Slip{{"--dsn", "", "tree"}, "--dsn: the value is empty", "spc tree --help tells more."},
        Slip{{"sample", "import", "a.csv", "--profile", "1", "--station", ""},
             "--station: the value is empty",
             "spc sample import --help tells more."}));

TEST(Command, repeats_no_word_that_may_be_a_password) {
  const Answer answer = run({"source", "add", "X", "--password", "geheim"});
  EXPECT_EQ(answer.err,
            "spc: cannot read the command line: one of its words is wrong, and not shown since it may be a password\n"
            "     Did you mean --password-fd? spc source add --help tells more.\n");
  const Answer value = run({"--as-user", "PWD=geheim", "tree"});
  EXPECT_EQ(value.status, 2);
  EXPECT_FALSE(value.complains("geheim")) << value;
}

TEST(Command, takes_help_as_a_word_too) {
  EXPECT_EQ(run({"help"}).out, run({"--help"}).out);
  EXPECT_EQ(run({"help", "sample"}).out, run({"sample", "--help"}).out);
  EXPECT_EQ(run({"help", "sample", "import"}).out, run({"sample", "import", "--help"}).out);
}

std::size_t longest_line_before_examples(const std::string& help) {
  std::istringstream lines(help.substr(0, help.find("\nExamples\n")));
  std::size_t longest = 0;
  for (std::string line; std::getline(lines, line);)
    longest = std::max(longest, line.size());
  return longest;
}

TEST(Command, help_fits_the_page_that_the_shell_tells_of) {
  const auto width = [](const std::string& columns) {
    return longest_line_before_examples(
        command_test::run_in_zone("UTC", {"doctor", "--help"}, {"COLUMNS=" + columns}).out);
  };
  EXPECT_LE(longest_line_before_examples(run({"doctor", "--help"}).out), 80U);
  EXPECT_LE(width("60"), 60U);
  EXPECT_LE(width("40"), 40U);
  EXPECT_GT(width("1000"), 80U);
  EXPECT_LE(width("1000"), 100U) << "longer lines are hard to read";
  EXPECT_LE(width("7"), 40U) << "nothing fits into less";
  EXPECT_EQ(width("wide"), width("80"));
}

/// Runs with standard output on a disk without room.
Answer run_on_full_disk(const std::vector<std::string>& arguments) {
  return command_test::run_prepared(arguments, [] { ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO); });
}

TEST(Command, fails_when_standard_output_takes_nothing) {
  const std::string advice = "     See that the disk is not full, and that whatever reads the answer still runs.\n";
  const Answer help = run_on_full_disk({"--help"});
  EXPECT_EQ(help.status, 1);
  EXPECT_EQ(help.err, "spc: cannot write the answer: standard output does not take it\n" + advice);
  const test_support::ScratchFolder folder;
  const std::string plant = "sqlite:" + folder.file("plant.db");
  const Answer created = run_on_full_disk({"--connect", plant, "db", "create"});
  EXPECT_EQ(created.status, 1);
  EXPECT_EQ(created.err,
            "spc: cannot write the answer: standard output does not take it\n     The work itself is done.\n" + advice);
  EXPECT_EQ(run({"--connect", plant, "db", "check"}).status, 0) << "it said that the work is done";
  const Answer dry = run_on_full_disk({"--connect", plant, "numbers", "repair", "--dry-run"});
  EXPECT_EQ(dry.status, 1);
  EXPECT_FALSE(dry.complains("is done")) << dry;
  const Answer listed = run_on_full_disk({"--connect", plant, "--json", "numbers", "check"});
  EXPECT_EQ(listed.status, 1);
  EXPECT_FALSE(listed.complains("is done")) << listed;
}

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

TEST(Command, says_what_to_do_when_a_database_cannot_be_opened) {
  const auto advice = [](const std::string& text) {
    const Answer answer = run({"--connect", text, "tree"});
    EXPECT_EQ(answer.status, 1) << answer;
    const auto end = answer.err.find("\n     ");
    return end == std::string::npos ? answer.err : answer.err.substr(end + 6);
  };
  const test_support::ScratchFolder folder;
  EXPECT_EQ(advice("sqlite:" + folder.file("none.db")),
            "spc db create makes it with all tables; spc demo --keep FILE makes one with data to look at.\n");
  EXPECT_EQ(advice("sqlite:" + folder.path().string()),
            "See that the file and its folder are there, and that you may read and write them.\n");
  EXPECT_EQ(advice("sqlite:plant;x.db"), "Write sqlite:FILE; a name with ; in it stands in {braces}.\n");
  EXPECT_EQ(advice("plant.db"),
            "An SQLite file is named sqlite:FILE, a server Driver={...};SERVER=...;DB=...;UID=...;PWD=...\n");
  const std::string drivers =
      "odbcinst -q -d lists the installed drivers for Driver={...}, odbcinst -q -s the data sources for DSN=...\n";
  EXPECT_EQ(advice("Driver={No Such Driver};UID=u"), drivers);
  EXPECT_EQ(advice("DSN=no_such_source"), drivers);
  const std::string server = test_support::PrivateMariaDb::shared().odbc_connect_text("no_such_database");
  EXPECT_EQ(advice(server + ";UID=nobody_such;PWD=wrong"),
            "See that user and password are right, and that this user may log in from this machine.\n");
}

TEST(Command, says_that_the_data_folder_cannot_be_made) {
  const Answer answer = run({"db", "create"}, "/dev/null");
  EXPECT_EQ(answer.status, 1);
  EXPECT_EQ(answer.err,
            "spc: cannot make the folder /dev/null/.local/share/spc: Not a directory\n"
            "     Name the database with --connect or --dsn, or another place in XDG_DATA_HOME.\n");
}

TEST(Command, says_that_a_file_is_no_database) {
  const test_support::ScratchFolder folder;
  std::ofstream(folder.file("notes.txt")) << std::string(5000, 'x');
  const Answer answer = run({"--connect", "sqlite:" + folder.file("notes.txt"), "db", "check"});
  EXPECT_EQ(answer.status, 1);
  EXPECT_TRUE(answer.complains("is not an SQLite database")) << answer;
  EXPECT_TRUE(answer.complains("Name a file that spc db create or spc demo has made.")) << answer;
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
