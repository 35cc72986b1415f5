// Plan
//   The table: groups before their members, names of their own, one line of help without an end, examples for all
//   Every command, argument and option stands in --help, in the manual page, in the answers to shells and in
//     docs/commands.md, and is understood by the grammar; global options stand in all of them too
//   docs/commands.md is what the table gives; the guide, docs/command.md, speaks of every command and of no other
//   option Bounds, words, requirements and exclusions of the table are held by the grammar Examples are read as the
//   command that they belong to; those on the demo's database and those without one run
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>

#include "tests/tools/program.h"
#include "tools/spc/command_table.h"
#include "tools/spc/completion.h"
#include "tools/spc/grammar.h"
#include "tools/spc/help.h"
#include "tools/spc/pages.h"
#include "tools/spc/problem.h"
#include "tools/spc/words.h"

namespace {

using spc::Command;
using spc::commands;
using spc::Option;

std::vector<const Command*> tasks() {
  std::vector<const Command*> found;
  for (const Command& command : commands())
    if (!command.is_group()) found.push_back(&command);
  return found;
}

std::vector<Option> own_and_global(const Command& command) {
  auto all = spc::options_of(command);
  all.insert(all.end(), spc::global_options().begin(), spc::global_options().end());
  return all;
}

std::string content_of(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// The text of a page as a reader sees it, lines joined.
std::string read_page(const std::string& page) {
  std::string text = std::regex_replace(page, std::regex(R"(\\\(aq)"), "'");
  text = std::regex_replace(text, std::regex(R"(\\\(dq)"), "\"");
  text = std::regex_replace(text, std::regex(R"(\\(-|&))"), "$1");
  text = std::regex_replace(text, std::regex(R"(\\\|)"), "|");
  return std::regex_replace(text, std::regex(R"(\s+)"), " ");
}

std::string joined(const std::string& text) { return std::regex_replace(text, std::regex(R"(\s+)"), " "); }

/// The line that says what a command is for, what each example shows, and what else is told of it.
void expect_all_paragraphs(const std::string& page, const Command& command) {
  EXPECT_NE(page.find(std::string(command.help) + "."), std::string::npos) << command.path << '\n' << page;
  for (const auto& paragraph : spc::paragraphs_of(command.more))
    EXPECT_NE(page.find(paragraph), std::string::npos) << command.path << ": " << paragraph << '\n' << page;
  for (const auto& example : command.examples)
    EXPECT_NE(page.find(example.what), std::string::npos) << command.path << ": " << example.what << '\n' << page;
}

/// The part of docs/commands.md on one command.
std::string section_of(const std::string& document, const Command& command) {
  const auto begin = document.find("### spc " + std::string(command.path) + "\n");
  if (begin == std::string::npos) return {};
  return document.substr(begin, document.find("\n##", begin + 1) - begin);
}

/// What a shell is offered at the end of a line.
std::vector<std::string> offered(std::vector<std::string> words, const std::string& typed) {
  words.push_back(typed);
  std::vector<std::string> texts;
  for (const auto& candidate : spc::candidates_for(words))
    texts.push_back(candidate.text);
  return texts;
}

bool contains(const std::vector<std::string>& texts, std::string_view text) {
  return std::ranges::find(texts, text) != texts.end();
}

/// The words of an example, without what a shell would take away.
std::vector<std::string> words_of_line(std::string_view line) { return spc::read_bash_line(line).words; }

spc::Reading read(const std::vector<std::string>& words) {
  std::vector<const char*> argv = {"spc"};
  for (const auto& word : words)
    argv.push_back(word.c_str());
  return spc::read_arguments(static_cast<int>(argv.size()), argv.data());
}

TEST(CommandTable, has_names_of_their_own_and_groups_before_their_members) {
  std::set<std::string_view> seen;
  for (const Command& command : commands()) {
    EXPECT_TRUE(seen.insert(command.path).second) << command.path;
    if (const auto group = command.group(); !group.empty()) {
      const Command* found = spc::find_command(group.substr(0, group.size() - 1));
      ASSERT_NE(found, nullptr) << command.path;
      EXPECT_TRUE(found->is_group() && seen.contains(found->path)) << command.path;
    }
    std::set<std::string_view> names;
    for (const Option& option : own_and_global(command))
      EXPECT_TRUE(names.insert(option.name).second) << command.path << ": " << option.name;
  }
  EXPECT_GT(tasks().size(), 30U);
}

TEST(CommandTable, says_in_one_line_what_each_is_for_and_shows_how) {
  const auto is_line = [](std::string_view text) {
    return !text.empty() && !text.ends_with('.') && text.find('\n') == std::string_view::npos &&
           std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
  };
  for (const Command& command : commands()) {
    EXPECT_TRUE(is_line(command.help)) << command.path;
    EXPECT_EQ(command.is_group(), command.examples.empty()) << command.path;
    for (const Option& option : spc::options_of(command)) {
      EXPECT_TRUE(is_line(option.help)) << command.path << ' ' << option.name;
      EXPECT_EQ(option.words.empty(), option.offers != spc::Offers::words && option.offers != spc::Offers::suggestions)
          << option.name;
    }
  }
}

TEST(CommandTable, knows_which_commands_change_something) {
  std::set<std::string_view> changing;
  for (const Command* command : tasks())
    if (command->changes) changing.insert(command->path);
  EXPECT_EQ(changing, (std::set<std::string_view>{"db create", "demo", "sample import", "numbers repair", "payload put",
                                                  "payload delete", "rev add", "rev approve", "rev rebuild",
                                                  "rev reset", "source add", "source edit", "source remove",
                                                  "source test", "source import", "source rewrite"}));
}

TEST(CommandTable, is_told_by_help_with_every_option) {
  for (const Command* command : tasks()) {
    const std::string help = spc::help_text(command);
    EXPECT_TRUE(help.starts_with("Usage: " + spc::usage_of(command) + "\n")) << help;
    for (const Option& option : own_and_global(*command)) {
      EXPECT_NE(help.find("\n  " + spc::heading_of(option)), std::string::npos) << command->path << option.name;
      EXPECT_NE(joined(help).find(spc::explained(option)), std::string::npos) << command->path << option.name;
    }
    for (const auto& example : command->examples)
      EXPECT_NE(help.find("  spc " + std::string(example.line) + "\n"), std::string::npos) << example.line;
    for (const auto& status : spc::exit_statuses(*command))
      EXPECT_NE(joined(help).find(std::to_string(status.status) + " " + status.meaning), std::string::npos) << help;
    expect_all_paragraphs(joined(help), *command);
  }
}

TEST(CommandTable, is_told_by_the_command_itself) {
  const auto all = command_test::run({"--help"});
  EXPECT_EQ(all.out, spc::help_text(nullptr));
  for (const Command* member : spc::members_of(nullptr))
    EXPECT_TRUE(all.says("\n  " + std::string(member->path) + "  ")) << member->path << '\n' << all;
  for (const Command& command : commands()) {
    auto words = spc::words_of(command.path, " ");
    words.emplace_back("-h");
    EXPECT_EQ(command_test::run(words).out, spc::help_text(&command)) << command.path;
  }
}

TEST(CommandTable, is_told_by_the_manual_with_every_option) {
  const std::string whole = read_page(spc::manual_of(nullptr));
  for (const Option& option : spc::global_options())
    EXPECT_NE(whole.find(".B " + spc::heading_of(option) + " " + spc::explained(option)), std::string::npos) << whole;
  for (const Command* command : tasks()) {
    EXPECT_NE(whole.find(".BR " + spc::page_name(*command) + " (1)"), std::string::npos) << command->path;
    const std::string page = read_page(spc::manual_of(command));
    for (const Option& option : own_and_global(*command))
      EXPECT_NE(page.find(".B " + spc::heading_of(option) + " " + spc::explained(option)), std::string::npos)
          << command->path << ' ' << option.name << '\n'
          << page;
    for (const auto& example : command->examples)
      EXPECT_NE(page.find(".B spc " + std::string(example.line)), std::string::npos) << page;
    for (const auto& status : spc::exit_statuses(*command))
      EXPECT_NE(page.find(".B " + std::to_string(status.status) + " " + status.meaning), std::string::npos) << page;
    expect_all_paragraphs(page, *command);
  }
}

TEST(CommandTable, is_told_by_the_document_with_every_option) {
  const std::string document = spc::commands_document();
  const std::string whole = read_page(document);
  for (const Command* command : tasks()) {
    const std::string section = read_page(section_of(document, *command));
    EXPECT_NE(section.find(spc::usage_of(command)), std::string::npos) << command->path << section;
    for (const Option& option : spc::options_of(*command))
      EXPECT_NE(section.find("| `" + spc::heading_of(option) + "` | " + spc::explained(option)), std::string::npos)
          << command->path << ' ' << option.name << '\n'
          << section;
    for (const auto& example : command->examples)
      EXPECT_NE(section.find("spc " + std::string(example.line)), std::string::npos) << section;
    const auto statuses = spc::exit_statuses(*command);
    for (const auto& status : statuses) {
      const bool own = !command->failed.empty() && status.status == spc::exit_failed;
      const std::string text =
          own ? "Exit status 1: " + status.meaning : "| " + std::to_string(status.status) + " | " + status.meaning;
      EXPECT_NE((own ? section : whole).find(text), std::string::npos) << command->path << ' ' << text;
    }
    expect_all_paragraphs(section, *command);
  }
  for (const Option& option : spc::global_options())
    EXPECT_NE(whole.find("| `" + spc::heading_of(option) + "` |"), std::string::npos) << option.name;
}

TEST(CommandTable, is_what_the_kept_document_tells) {
  EXPECT_EQ(content_of(std::string(SPC_TREE) + "/docs/commands.md"), spc::commands_document())
      << "./dev pages writes it anew";
}

TEST(CommandTable, has_what_the_guide_speaks_of) {
  const std::string guide = content_of(std::string(SPC_TREE) + "/docs/command.md");
  std::set<std::string, std::less<>> known;
  for (const Command* command : tasks()) {
    for (const Option& option : own_and_global(*command))
      known.emplace(option.name);
  }
  const std::regex option("--[a-z]+(-[a-z]+)*");
  for (auto at = std::sregex_iterator(guide.begin(), guide.end(), option); at != std::sregex_iterator(); ++at)
    EXPECT_TRUE(known.contains(at->str())) << at->str();
}

TEST(CommandTable, is_offered_to_shells_with_every_option) {
  for (const Command* command : tasks()) {
    const auto words = spc::words_of(command->path, " ");
    EXPECT_TRUE(contains(offered({words.begin(), words.end() - 1}, words.back().substr(0, 2)), words.back()))
        << command->path;
    const auto names = offered(words, "--");
    for (const Option& option : own_and_global(*command)) {
      if (option.is_argument()) continue;
      EXPECT_TRUE(contains(names, option.name)) << command->path << ' ' << option.name;
      auto before = words;
      before.emplace_back(option.name);
      for (const auto word : option.words)
        EXPECT_TRUE(contains(offered(before, ""), word)) << command->path << ' ' << option.name << ' ' << word;
    }
  }
}

/// A value that an option takes, and never its default.
std::string value_for(const Option& option) {
  if (!option.words.empty()) return std::string(option.words.front());
  if (option.problem != nullptr) return "2024-03-15";
  return option.within ? std::to_string(option.within->least + 1) : "7";
}

/// The command with what it requires, and with this value of an option; none for a flag.
std::vector<std::string> line_with(const Command& command, const Option& wanted, const std::string& value) {
  auto words = spc::words_of(command.path, " ");
  const auto add = [&](const Option& option, const std::string& said) {
    if (!option.is_argument()) words.emplace_back(option.name);
    if (!option.is_flag()) words.push_back(said);
  };
  for (const Option& option : spc::options_of(command))
    if (option.required) add(option, option.name == wanted.name ? value : value_for(option));
  if (!wanted.required) add(wanted, value);
  return words;
}

/// What stands where an option's value goes.
std::string text_at(const Option& option, spc::Request& request) {
  return std::visit(
      [](const auto* value) {
        std::ostringstream text;
        const auto add = [&](const auto& part) { text << part; };
        if constexpr (requires { value->has_value(); }) {
          if (*value) add(**value);
        } else if constexpr (
            requires { value->c_str(); } || !requires { value->begin(); }) {
          add(*value);
        } else {
          for (const auto& part : *value)
            add(part);
        }
        return text.str();
      },
      option.target(request));
}

TEST(CommandTable, is_understood_by_the_grammar_with_every_option) {
  for (const Command* command : tasks())
    for (const Option& option : own_and_global(*command)) {
      if (option.target == nullptr) continue;  // --help and --version, which have tests of their own
      try {
        spc::Reading reading = read(line_with(*command, option, value_for(option)));
        EXPECT_EQ(reading.command, command) << command->path;
        EXPECT_EQ(text_at(option, reading.request), option.is_flag() ? "1" : value_for(option))
            << command->path << ' ' << option.name;
      } catch (const spc::Problem& problem) {
        ADD_FAILURE() << command->path << ' ' << option.name << ": " << problem.why;
      }
    }
}

bool is_refused(const std::vector<std::string>& words) {
  try {
    read(words);
    return false;
  } catch (const spc::Problem& problem) {
    return problem.status == spc::exit_misuse;
  }
}

TEST(CommandTable, has_bounds_and_words_that_the_grammar_holds) {
  for (const Command* command : tasks())
    for (const Option& option : own_and_global(*command)) {
      std::vector<std::string> wrong;
      if (option.within)
        wrong = {std::to_string(option.within->least - 1), std::to_string(option.within->most + 1), "x"};
      if (option.offers == spc::Offers::words) wrong = {"no-such-word"};
      if (option.problem != nullptr) wrong = {""};
      for (const auto& value : wrong)
        EXPECT_TRUE(is_refused(line_with(*command, option, value))) << command->path << ' ' << option.name << value;
    }
}

TEST(CommandTable, has_required_and_excluded_options_that_the_grammar_holds) {
  for (const Command* command : tasks()) {
    const auto all = own_and_global(*command);
    for (const Option& option : all) {
      EXPECT_TRUE(!option.required || is_refused(spc::words_of(command->path, " "))) << command->path;
      for (const auto other : option.excludes) {
        const auto found = std::ranges::find(all, other, &Option::name);
        ASSERT_NE(found, all.end()) << option.name << " excludes " << other;
        auto both = line_with(*command, option, value_for(option));
        both.emplace_back(other);
        if (!found->is_flag()) both.push_back(value_for(*found));
        EXPECT_TRUE(is_refused(both)) << command->path << ' ' << option.name << " beside " << other;
      }
    }
  }
}

TEST(CommandTable, has_examples_that_are_read_as_their_commands) {
  for (const Command* command : tasks())
    for (const auto& example : command->examples) {
      try {
        EXPECT_EQ(read(words_of_line(example.line)).command, command) << example.line;
      } catch (const spc::Problem& problem) {
        ADD_FAILURE() << example.line << ": " << problem.why;
      }
    }
}

/// A folder with the demo's database and a file to import, in which examples run one by one.
class Examples : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(command_test::run({"demo", "--keep", folder_.file("kept.db")}).status, 0);
    std::ofstream rings(folder_.file("rings.csv"));
    rings << "sample,piece,diameter_mm\n";
    for (int piece = 1; piece <= 5; ++piece)
      rings << "1," << piece << ",74.0" << piece << '\n';
  }
  /// On a copy of the database. Gives what was said when it failed.
  std::string run(const std::string& line) {
    const std::string shell =
        "cd '" + folder_.path().string() + "' && cp kept.db demo.db && '" SPC_PROGRAM "' " + line + " >said 2>&1";
    return std::system(shell.c_str()) == 0 ? "" : line + "\n" + content_of(folder_.file("said"));
  }

  test_support::ScratchFolder folder_;
};

TEST_F(Examples, on_the_demos_database_and_without_any_do_what_they_say) {
  std::size_t runs = 0;
  for (const Command* command : tasks())
    for (const auto& example : command->examples) {
      const std::string line(example.line);
      const bool alone = line.starts_with("range ") || line.starts_with("schedule ") || line == "doctor --list";
      if (!alone && line.find("sqlite:demo.db") == std::string::npos) continue;
      EXPECT_EQ(run(line), "");
      ++runs;
    }
  EXPECT_GT(runs, 25U);
}

}  // namespace
