// Plan
//   Links: each leads to a file, and to a heading when it names one; each page under docs/ can be reached from its
//   contents
//   README: two commands first, and short
//   Blocks: each is C++ out of a sample, commands that are run and say what is shown, tasks that exist, what the tests
//   of
//     installing do, or a format with a reason below; the list below has nothing that has gone
//   Samples: each is shown by a page and run there; the whole host fails where it must
//   The reading of documents itself: headings, moved in blocks, continued commands
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "spcbase/testkit/scratch_folder.h"
#include "tests/docs/documents.h"

namespace {

namespace fs = std::filesystem;
using documents::Block;
using documents::Example;

const fs::path tree = SPC_TREE;

/// Written by a program out of its own table; the test of the command's pages compares it with that.
const fs::path written_by_program = "docs/commands.md";

/// What is neither built nor run, and why.
struct Shown {
  const char* document;
  const char* first_line;
  const char* why;
};

constexpr Shown shown_as_it_is[] = {
    {"README.md", "spcbase/       the library", "a map of folders"},
    {"docs/architecture.md", "platform      system, text <- datetime <- automation <- xml, database; crypto on system",
     "a picture of the layers"},
    {"docs/architecture.md", "CRecordset, CFieldExchange, RFX_...   the documented operations; knows no driver",
     "a picture of the database layer"},
    {"docs/benchmarks.md",
     "job                                    | server  |       ours |      plain | ratio |    limit | verdict",
     "the form of a table whose numbers are the machine's"},
    {"docs/command.md", "spc [--dsn NAME | --connect TEXT] [--json] [--trace] [--as-user ID] TASK", "a synopsis"},
    {"docs/command.md", "spc: cannot read the command line: spc sample has no command \"lst\"",
     "a failure; tests/tools/command_line_test.cpp has it"},
    {"docs/command.md", "[plant]", "a file of unixODBC"},
    {"docs/command.md", "spc: cannot import rings.csv: line 7, column Diameter: \"74,03\" is not a number",
     "a failure; tests/tools/import_check_test.cpp has it"},
    {"docs/command.md", "spc: cannot find \"/Plant/Forge/Line 3/x\": there is no folder \"Line 3\" in Forge (2)",
     "a failure; tests/tools/path_command_test.cpp has it"},
    {"docs/command.md",
     "today  this_week  this_month  this_quarter  this_year  yesterday  last_week  last_month  "
     "last_quarter  last_year",
     "the words of a format"},
    {"docs/doctor.md",
     "spc [--dsn NAME | --connect TEXT] [--json] doctor [--only NAME,...] [--skip NAME,...] [--limit N] [--list]",
     "a synopsis"},
    {"docs/paths.md", "enterprise:/plant/line 4/bore|approved", "a format; docs/samples/paths.cpp reads such paths"},
    {"docs/formats/external_database.md",
     "<?xml version=\"1.0\" ?><external_database "
     "version=\"4\"><connection_string_2>AQAAALY1KguRzDWQyaleryvxrS6HOIuX3eNphRlmJHyOAjWMNBkwJK11iSk=</"
     "connection_string_2>...</external_database>",
     "a format; tests/datasource reads and writes it, and kept ones of every version"},
};

bool is_listed(const fs::path& document, const Block& block) {
  const std::string first = block.first_line().substr(block.first_line().find_first_not_of(' '));
  for (const auto& shown : shown_as_it_is)
    if (document == shown.document && first == shown.first_line) return true;
  return false;
}

std::string place(const fs::path& document, std::size_t line) { return document.string() + ':' + std::to_string(line); }

TEST(Documents, have_links_that_lead_to_a_file_and_to_its_heading) {
  std::size_t links = 0;
  for (const auto& document : documents::all(tree))
    for (const auto& link : documents::links_of(tree / document)) {
      ++links;
      const auto mark = link.target.find('#');
      const std::string file = link.target.substr(0, mark);
      const fs::path target = file.empty() ? tree / document : (tree / document).parent_path() / file;
      ASSERT_TRUE(fs::exists(target)) << place(document, link.line) << ": there is no " << link.target;
      if (mark == std::string::npos) continue;
      EXPECT_TRUE(documents::headings_of(target).contains(link.target.substr(mark + 1)))
          << place(document, link.line) << ": no heading for " << link.target;
    }
  EXPECT_GT(links, 60U);
}

TEST(Documents, can_all_be_reached_from_the_table_of_contents) {
  std::set<fs::path> reached;
  std::vector<fs::path> waiting = {tree / "docs" / "README.md"};
  while (!waiting.empty()) {
    const fs::path document = waiting.back();
    waiting.pop_back();
    if (!reached.insert(document).second || document.extension() != ".md") continue;
    for (const auto& link : documents::links_of(document))
      waiting.push_back((document.parent_path() / link.target.substr(0, link.target.find('#'))).lexically_normal());
  }
  for (const auto& document : documents::all(tree)) {
    if (*document.begin() != "docs") continue;
    EXPECT_TRUE(reached.contains(tree / document)) << document << ": nothing leads there";
  }
}

TEST(Documents, begin_with_the_two_commands_and_stay_short) {
  std::istringstream readme(documents::text_of(tree / "README.md"));
  std::size_t count = 0;
  std::string commands;
  for (std::string line; std::getline(readme, line); ++count)
    if (line.starts_with("`./dev")) commands += line.substr(0, line.find('`', 1) + 1);
  EXPECT_LT(count, 130U);
  EXPECT_EQ(commands, "`./dev demo``./dev test`");
}

std::string all_samples() {
  std::string text;
  for (const auto& entry : fs::directory_iterator(tree / "docs" / "samples"))
    text += documents::text_of(entry.path());
  return text;
}

/// The scripts and projects that install the library and link it: what the guide of that shows stands in them.
std::string all_of_installing() {
  std::string text;
  for (const auto& entry : fs::recursive_directory_iterator(tree / "tests" / "install"))
    if (entry.is_regular_file()) text += '\n' + documents::text_of(entry.path());
  return text;
}

bool is_task(const std::string& line) {
  static const std::regex task(R"(^(\./dev|\.ci/run)( ([a-z]+))?.*)");
  std::smatch found;
  if (line.starts_with("export PATH=") || all_of_installing().find('\n' + line + '\n') != std::string::npos)
    return true;
  if (!std::regex_match(line, found, task)) return false;
  if (found[1] == ".ci/run") return fs::exists(tree / ".ci" / "run");
  return documents::text_of(tree / "dev").find("\n./dev " + found[3].str() + ' ') != std::string::npos;
}

/// What the commands of a document say, by the document.
std::string outputs_of(const fs::path& document) {
  std::string outputs;
  for (const auto& block : documents::blocks_of(tree / document))
    if (block.language == "console")
      for (const auto& example : documents::examples_of(block))
        outputs += example.output;
  return outputs;
}

TEST(Documents, show_nothing_that_nobody_tries) {
  const std::string samples = all_samples();
  for (const auto& document : documents::all(tree)) {
    if (document == written_by_program) continue;
    for (const auto& block : documents::blocks_of(tree / document)) {
      const std::string where = place(document, block.line) + "\n" + block.text;
      if (block.language == "cpp") {
        EXPECT_NE(samples.find(block.text), std::string::npos) << where << "stands in no sample of docs/samples";
      } else if (block.language == "cmake") {
        EXPECT_NE(all_of_installing().find(block.text), std::string::npos) << where << "stands in no tests/install";
      } else if (block.language == "sh") {
        std::istringstream lines(block.text);
        for (std::string line; std::getline(lines, line);)
          EXPECT_TRUE(is_task(line)) << where << line << " is no task of the tree";
      } else if (block.language == "xml" && outputs_of(document).find(block.text) != std::string::npos) {
        continue;  // what a sample says, which is compared where it is run
      } else if (block.language != "console") {
        EXPECT_TRUE(is_listed(document, block)) << where << "needs a language, or a line and a reason in this test";
      }
    }
  }
}

TEST(Documents, still_show_what_is_listed_here) {
  for (const auto& shown : shown_as_it_is) {
    if (!fs::exists(tree / shown.document)) continue;
    bool found = false;
    for (const auto& block : documents::blocks_of(tree / shown.document))
      found = found || is_listed(shown.document, block);
    EXPECT_TRUE(found) << shown.document << ": " << shown.first_line;
  }
}

std::string rings() {
  std::string text = "sample,piece,diameter_mm\n";
  for (const char* sample : {"1", "2"})
    for (int piece = 1; piece <= 5; ++piece)
      text += std::string(sample) + "," + std::to_string(piece) + ",74.0" + std::to_string(piece) + "\n";
  return text;
}

/// Runs a line of a shell in a folder that is like a fresh clone; both outputs, then "failed" unless it succeeded.
std::string run_in(const fs::path& folder, const std::string& line) {
  const fs::path out = folder / "out";
  const std::string bin = fs::path(SPC_PROGRAM).parent_path().string();
  const std::string shell = "cd '" + folder.string() + "' && PATH='" + bin + "':$PATH HOME='" + folder.string() +
                            "' LC_ALL=C TZ=UTC && unset XDG_DATA_HOME && export HOME LC_ALL TZ && " + line + " >'" +
                            out.string() + "' 2>&1";
  const int status = std::system(shell.c_str());
  return documents::text_of(out) + (status == 0 ? "" : "failed\n");
}

/// Versions, times and moments are the machine's own; so is the width of their columns.
std::string without_the_machine(std::string text, bool has_times) {
  text = std::regex_replace(text, std::regex("SQLite [0-9.]+"), "SQLite 3.40.1");
  if (!has_times) return text;
  text = std::regex_replace(text, std::regex("[0-9.]+ (us|ms|s)\\b"), "TIME");
  text = std::regex_replace(text, std::regex("20[0-9-]{8} [0-9:]{8}"), "MOMENT");
  return std::regex_replace(text, std::regex("  +|-{2,}"), " ");
}

void expect_example(const fs::path& folder, const fs::path& document, const Example& example) {
  // The runner sets the machine up, builds, and passes the rest on.
  const std::string command = std::regex_replace(example.command, std::regex("^\\./dev demo"), "spc demo");
  std::string said = run_in(folder, command);
  EXPECT_FALSE(said.ends_with("failed\n")) << document << ": " << command << '\n' << said;
  if (example.output.empty()) return;
  const bool has_times = command.starts_with("spc demo");
  std::string wanted = without_the_machine(example.output, has_times);
  said = without_the_machine(said, has_times);
  if (wanted.ends_with("...\n")) {
    wanted.resize(wanted.size() - 4);
    said.resize(std::min(said.size(), wanted.size()));
  }
  EXPECT_EQ(said, wanted) << document << ": " << command;
}

TEST(Documents, show_commands_that_run_and_say_what_is_shown) {
  std::size_t count = 0;
  for (const auto& document : documents::all(tree)) {
    const test_support::ScratchFolder folder;
    std::ofstream(folder.file("rings.csv")) << rings();
    fs::create_directory_symlink(tree / "tools", fs::path(folder.path()) / "tools");
    for (const auto& block : documents::blocks_of(tree / document))
      if (block.language == "console")
        for (const auto& example : documents::examples_of(block)) {
          expect_example(folder.path(), document, example);
          ++count;
        }
  }
  EXPECT_GT(count, 30U);
}

TEST(Samples, are_each_run_by_a_page) {
  std::string commands;
  for (const auto& document : documents::all(tree))
    for (const auto& block : documents::blocks_of(tree / document))
      if (block.language == "console")
        for (const auto& example : documents::examples_of(block))
          commands += example.command + " \n";
  for (const auto& entry : fs::directory_iterator(tree / "docs" / "samples"))
    EXPECT_NE(commands.find("sample_" + entry.path().stem().string() + ' '), std::string::npos) << entry.path();
}

TEST(SampleHost, fails_on_a_database_that_has_no_schema) {
  const test_support::ScratchFolder folder;
  EXPECT_TRUE(run_in(folder.path(), "sample_save_sample sqlite:none.db 1").ends_with("failed\n"));
  EXPECT_TRUE(run_in(folder.path(), "sample_save_sample").ends_with("failed\n"));
}

class Reading : public testing::Test {
 protected:
  fs::path write(const std::string& text) {
    std::ofstream(folder_.file("page.md")) << text;
    return folder_.file("page.md");
  }

 private:
  test_support::ScratchFolder folder_;
};

TEST_F(Reading, gives_headings_the_names_that_links_use) {
  const auto names =
      documents::headings_of(write("# One `two`, three!\n## Again\n## Again\n```sh\n# no heading\n```\n"));
  EXPECT_EQ(names, (std::set<std::string>{"one-two-three", "again", "again-1"}));
}

TEST_F(Reading, finds_fenced_and_moved_in_blocks_and_no_continued_list) {
  const auto blocks =
      documents::blocks_of(write("text\n\n    a\n    b\n\n- item\n    goes on\n\n```cpp\nint a;\n```\n"));
  ASSERT_EQ(blocks.size(), 2U);
  EXPECT_EQ(blocks[0].language, "moved in");
  EXPECT_EQ(blocks[0].text, "    a\n    b\n");
  EXPECT_EQ(blocks[1].language, "cpp");
  EXPECT_EQ(blocks[1].text, "int a;\n");
}

TEST_F(Reading, finds_links_outside_of_blocks_only) {
  const auto links = documents::links_of(write("[a](b.md#c) and [d](https://e.org)\n```text\n[f](g.md)\n```\n"));
  ASSERT_EQ(links.size(), 1U);
  EXPECT_EQ(links[0].target, "b.md#c");
}

TEST_F(Reading, joins_a_command_that_a_backslash_continues) {
  const auto examples = documents::examples_of({"console", "$ a \\\n  b\nsaid\n$ c\n", 1});
  ASSERT_EQ(examples.size(), 2U);
  EXPECT_EQ(examples[0].command, "a \\\n  b");
  EXPECT_EQ(examples[0].output, "said\n");
  EXPECT_EQ(examples[1].command, "c");
}

}  // namespace
