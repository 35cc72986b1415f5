// Plan
//   Relative links of every document lead to a file; the README stays short and shows the two commands first
//   Every "$ spc ..." of docs/command.md runs in one folder, in order, and says what the document says
//   The sample host of docs/samples saves and reads a sample
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>

#include "tests/tools/program.h"
#include "tools/plant/plant.h"

namespace {

namespace fs = std::filesystem;

const fs::path tree = SPC_TREE;

std::vector<std::string> lines_of(const fs::path& file) {
  std::ifstream stream(file);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

std::vector<fs::path> documents() {
  std::vector<fs::path> found = {tree / "README.md", tree / "CONTRIBUTING.md", tree / "CHANGELOG.md"};
  for (const auto& entry : fs::recursive_directory_iterator(tree / "docs"))
    if (entry.path().extension() == ".md") found.push_back(entry.path());
  return found;
}

TEST(Documents, have_links_that_lead_somewhere) {
  const std::regex link(R"(\]\(([^)#]+)[^)]*\))");
  std::size_t links = 0;
  for (const auto& document : documents())
    for (const auto& line : lines_of(document))
      for (auto at = std::sregex_iterator(line.begin(), line.end(), link); at != std::sregex_iterator(); ++at) {
        const std::string target = (*at)[1];
        if (target.find("://") != std::string::npos) continue;
        ++links;
        EXPECT_TRUE(fs::exists(document.parent_path() / target)) << document << ": " << target;
      }
  EXPECT_GT(links, 10U);
}

TEST(Documents, begin_with_the_two_commands_and_stay_short) {
  const auto readme = lines_of(tree / "README.md");
  EXPECT_LT(readme.size(), 120U);
  std::string commands;
  for (const auto& line : readme)
    if (line.starts_with("`./dev")) commands += line.substr(0, line.find('`', 1) + 1);
  EXPECT_EQ(commands, "`./dev demo``./dev test`");
}

/// A command of a document and the lines that it shows below it.
struct Example {
  std::string command;
  std::string output;
};

std::vector<Example> examples_of(const fs::path& document) {
  std::vector<Example> examples;
  bool inside = false;
  for (const auto& line : lines_of(document)) {
    if (line.starts_with("```"))
      inside = line == "```console";
    else if (inside && line.starts_with("$ "))
      examples.push_back({line.substr(2), {}});
    else if (inside)
      examples.back().output += line + "\n";
  }
  return examples;
}

std::string rings() {
  std::string text = "sample,piece,diameter_mm\n";
  for (const char* sample : {"1", "2"})
    for (int piece = 1; piece <= 5; ++piece)
      text += std::string(sample) + "," + std::to_string(piece) + ",74.0" + std::to_string(piece) + "\n";
  return text;
}

/// Runs a line of a shell in a folder; standard output, then "status N".
std::string run_in(const fs::path& folder, const std::string& line) {
  const fs::path out = folder / "out";
  const fs::path bin = fs::path(SPC_PROGRAM).parent_path();
  const std::string shell = "cd '" + folder.string() + "' && PATH='" + bin.string() +
                            "':$PATH LC_ALL=C TZ=UTC && export LC_ALL TZ && " + line + " >'" + out.string() + "' 2>&1";
  const int status = std::system(shell.c_str());
  std::ifstream stream(out);
  const std::string said{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  return said + (status == 0 ? "" : "failed\n");
}

TEST(Documents, show_commands_that_run_and_say_what_is_shown) {
  const test_support::ScratchFolder folder;
  std::ofstream(folder.file("rings.csv")) << rings();
  const auto examples = examples_of(tree / "docs" / "command.md");
  ASSERT_GE(examples.size(), 6U);
  for (const auto& example : examples) {
    std::string said = run_in(folder.path(), example.command);
    EXPECT_FALSE(said.ends_with("failed\n")) << example.command << '\n' << said;
    if (example.output.empty()) continue;
    // The version is the machine's own.
    said = std::regex_replace(said, std::regex("SQLite [0-9.]+"), "SQLite 3.40.1");
    EXPECT_EQ(said, example.output) << example.command;
  }
}

TEST(SampleHost, saves_a_sample_and_reads_it_back) {
  test_support::SchemaDatabase database(test_support::ServerKind::sqlite);
  int profile = 0;
  {
    CDatabaseEx db;
    db.OpenEx(database.connect_text().c_str());
    plant::Builder builder(db);
    profile = builder.add_profile(
        "Rings", "", {plant::characteristic(builder.add_characteristic({"Width", "", plant::Kind::number, 2}))});
  }
  const test_support::ScratchFolder folder;
  const std::string host = SPC_SAMPLE_HOST;
  EXPECT_EQ(run_in(folder.path(), host + " '" + database.connect_text() + "' " + std::to_string(profile)),
            "sample 1, second piece 75.03\n");
  EXPECT_TRUE(run_in(folder.path(), host + " sqlite:none.db 1").ends_with("failed\n"));
}

}  // namespace
