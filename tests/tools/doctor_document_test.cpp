// Plan
//   docs/doctor.md has each kind of finding, with the severity, tables, meaning and advice that the checks have
//   Every check has a name of its own in small letters and dashes, and advice names commands that there are
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>

#include "tests/tools/program.h"
#include "tools/spc/command_table.h"
#include "tools/spc/doctor/check.h"
#include "tools/spc/words.h"

namespace {

using spc::doctor::all_checks;

std::vector<std::string> table_lines() {
  std::ifstream document(std::string(SPC_TREE) + "/docs/doctor.md");
  std::vector<std::string> lines;
  for (std::string line; std::getline(document, line);)
    if (line.starts_with("| `")) lines.push_back(line);
  return lines;
}

TEST(DoctorDocument, tells_of_each_finding_what_the_checks_tell) {
  std::vector<std::string> wanted;
  for (const auto& check : all_checks()) {
    const std::string tables = check.tables();
    wanted.push_back("| `" + std::string(check.name) + "` | " + spc::doctor::word_of(check.severity) + " | " +
                     (tables.empty() ? "the server" : tables) + " | " + check.meaning + " | " + check.advice + " |");
  }
  EXPECT_EQ(table_lines(), wanted);
}

TEST(DoctorChecks, have_names_of_their_own_in_one_form) {
  std::set<std::string> names;
  for (const auto& check : all_checks()) {
    EXPECT_TRUE(std::regex_match(check.name, std::regex("[a-z]+(-[a-z]+)+"))) << check.name;
    EXPECT_TRUE(names.insert(check.name).second) << check.name;
    EXPECT_EQ(spc::doctor::find_check(check.name), &check);
    EXPECT_TRUE(check.look != nullptr || !check.queries.empty()) << check.name;
    for (const std::string text : {check.meaning, check.advice})
      EXPECT_TRUE(text.size() > 10 && text.ends_with('.')) << check.name << ": " << text;
  }
  EXPECT_EQ(spc::doctor::find_check("no-such-check"), nullptr);
  EXPECT_GE(names.size(), 20U);
}

TEST(DoctorChecks, advise_commands_that_there_are) {
  const std::regex command("spc ([a-z]+)( [a-z]+)?");
  std::set<std::string> advised;
  for (const auto& check : all_checks()) {
    const std::string advice = check.advice;
    for (auto at = std::sregex_iterator(advice.begin(), advice.end(), command); at != std::sregex_iterator(); ++at)
      advised.insert((*at)[0]);
  }
  EXPECT_GE(advised.size(), 5U);
  for (const auto& line : advised) {
    auto words = spc::words_of(line.substr(4), " ");
    // A word of the sentence may follow a command that has none behind it.
    if (words.size() > 1 && spc::find_command(words[0]) != nullptr && !spc::find_command(words[0])->is_group())
      words.resize(1);
    words.emplace_back("--help");
    EXPECT_EQ(command_test::run(words).status, 0) << line;
  }
}

}  // namespace
