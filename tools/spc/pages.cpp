#include "tools/spc/pages.h"

#include <algorithm>

#include "tools/spc/completion.h"
#include "tools/spc/help.h"

namespace spc {
namespace {

std::string escaped_for_table(std::string_view text) {
  std::string escaped;
  for (const char c : text)
    escaped += c == '|' ? "\\|" : std::string(1, c);
  return escaped;
}

std::string block(const std::string& line) { return "```text\n" + line + "\n```\n\n"; }

std::string code(std::string_view text) { return "`" + std::string(text) + "`"; }

std::string options_table(const std::vector<Option>& options) {
  if (options.empty()) return {};
  std::string text = "| option | |\n|---|---|\n";
  for (const Option& option : options)
    text += "| " + code(escaped_for_table(heading_of(option))) + " | " + escaped_for_table(explained(option)) + " |\n";
  return text + '\n';
}

std::string command_section(const Command& command) {
  std::string text =
      "### spc " + std::string(command.path) + "\n\n" + block(usage_of(&command)) + std::string(command.help) + ".\n\n";
  for (const auto& paragraph : paragraphs_of(command.more))
    text += paragraph + "\n\n";
  text += options_table(options_of(command));
  for (const Example& example : command.examples)
    text += "Example: " + std::string(example.what) + ".\n\n" + block("spc " + std::string(example.line));
  if (!command.failed.empty()) text += "Exit status 1: " + exit_statuses(command)[1].meaning + "\n\n";
  if (command.json != nullptr)
    text += "With `--json` it prints what " + code(page_name(command) + ".schema.json") + " describes.\n\n";
  return text;
}

std::string surroundings_table(const std::string& title, const std::string& kind, const std::vector<Surrounding>& all) {
  std::string text = "\n## " + title + "\n\n| " + kind + " | |\n|---|---|\n";
  for (const Surrounding& one : all)
    text += "| " + code(one.name) + " | " + escaped_for_table(one.what) + " |\n";
  return text;
}

std::string group_section(const Command& group) {
  std::string text = "## " + std::string(group.path) + "\n\n" + std::string(group.help) + ".\n\n";
  for (const Command* member : members_of(&group))
    text += command_section(*member);
  return text;
}

}  // namespace

std::string page_name(const Command& command) {
  std::string name = "spc-" + std::string(command.path);
  std::ranges::replace(name, ' ', '-');
  return name;
}

std::string commands_document() {
  std::string text =
      "# All commands\n\n"
      "This page is written by `./dev pages` from the table of commands; the guide is [the spc "
      "command](command.md).\n\n" +
      block(usage_of(nullptr)) + "## Options of all commands\n\n" + options_table(global_options()) +
      "## Exit status\n\n| status | |\n|---|---|\n";
  for (const auto& [status, meaning] : exit_statuses({.path = "", .help = ""}))
    text += "| " + std::to_string(status) + " | " + escaped_for_table(meaning) + " |\n";
  text += "\n## First steps\n\n";
  for (const Example& example : first_steps())
    text += "- `spc " + std::string(example.line) + "`: " + std::string(example.what) + "\n";
  text += surroundings_table("Environment", "variable", environment()) + surroundings_table("Files", "file", files());
  text += '\n';
  std::string alone;
  for (const Command* command : members_of(nullptr))
    (command->is_group() ? text : alone) += command->is_group() ? group_section(*command) : command_section(*command);
  text += "## Without a group\n\n" + alone;
  text.pop_back();
  return text;
}

std::vector<Page> all_pages() {
  std::vector<Page> pages = {{"man/man1/spc.1", manual_of(nullptr)}, {"doc/spc/commands.md", commands_document()}};
  for (const Command& command : commands()) {
    if (command.is_group()) continue;
    pages.push_back({"man/man1/" + page_name(command) + ".1", manual_of(&command)});
    if (command.json != nullptr)
      pages.push_back({"spc/schemas/" + page_name(command) + ".schema.json", schema_of(command)});
  }
  pages.push_back({"bash-completion/completions/spc", completion_script("bash")});
  pages.push_back({"zsh/site-functions/_spc", completion_script("zsh")});
  pages.push_back({"fish/vendor_completions.d/spc.fish", completion_script("fish")});
  return pages;
}

}  // namespace spc
