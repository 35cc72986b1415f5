#include "tools/spc/help.h"

#include <algorithm>

#include "tools/spc/utf8.h"
#include "tools/spc/words.h"

namespace spc {
namespace {

constexpr std::size_t widest_heading = 26;

/// A text in lines that fit the page, each behind an indent. The first begins at that column already.
std::string wrapped(std::string_view text, std::size_t indent, std::size_t page_width) {
  std::string lines;
  std::size_t column = indent;
  for (const auto& word : words_of(text, " ")) {
    const std::size_t width = display_width(word);
    if (column > indent && column + 1 + width > page_width) {
      lines += '\n' + std::string(indent, ' ');
      column = indent;
    }
    if (column > indent) lines += ' ';
    column += width + (column > indent ? 1 : 0);
    lines += word;
  }
  return lines + '\n';
}

/// Headings, and texts beside or below them.
using Rows = std::vector<std::pair<std::string, std::string>>;

std::string section(const std::string& title, const Rows& rows, std::size_t page_width) {
  if (rows.empty()) return {};
  const std::size_t widest = std::min(widest_heading, page_width / 3);
  std::size_t width = 0;
  for (const auto& row : rows)
    if (row.first.size() <= widest) width = std::max(width, row.first.size());
  std::string text = '\n' + title + '\n';
  const std::size_t indent = 2 + width + 2;
  for (const auto& [heading, help] : rows) {
    text += "  " + heading;
    text += heading.size() <= width ? std::string(width + 2 - heading.size(), ' ') : '\n' + std::string(indent, ' ');
    text += wrapped(help, indent, page_width);
  }
  return text;
}

Rows rows_of(const std::vector<Option>& options, bool arguments) {
  Rows rows;
  for (const Option& option : options)
    if (option.is_argument() == arguments) rows.emplace_back(heading_of(option), explained(option));
  return rows;
}

Rows rows_of(const std::vector<const Command*>& members) {
  Rows rows;
  for (const Command* member : members)
    rows.emplace_back(std::string(member->word()), std::string(member->help));
  return rows;
}

std::string examples_section(const char* title, const std::vector<Example>& examples, std::size_t page_width) {
  std::string text = examples.empty() ? "" : '\n' + std::string(title) + '\n';
  for (const Example& example : examples)
    text += "  spc " + std::string(example.line) + "\n      " + wrapped(example.what, 6, page_width);
  return text;
}

Rows status_rows(const Command& command) {
  Rows rows;
  for (const auto& [status, meaning] : exit_statuses(command))
    rows.emplace_back(std::to_string(status), meaning);
  return rows;
}

}  // namespace

const std::vector<Example>& first_steps() {
  static const std::vector<Example> all = {
      {"demo --keep plant.db", "make a small plant with data, in a file that does not exist yet"},
      {"--connect sqlite:plant.db sample list", "look around in it"},
      {"--connect sqlite:new.db db create", "make a database of your own"},
      {"--dsn plant db check", "see that a database on a server has all tables"},
  };
  return all;
}

const std::vector<Surrounding>& environment() {
  static const std::vector<Surrounding> all = {
      {"XDG_DATA_HOME, HOME", "Where the user's data folder is: $XDG_DATA_HOME, else ~/.local/share."},
      {"ODBCINI", "Another file of data sources than ~/.odbc.ini."},
      {"COLUMNS", "How wide --help is, from 40 to 100; 80 when it is not set."},
      {"LC_ALL, LC_TIME, LANG",
       "How spc range and spc schedule write dates and times for people, if locale -a lists it."},
      {"TZ", "The zone of local time."},
  };
  return all;
}

const std::vector<Surrounding>& files() {
  static const std::vector<Surrounding> all = {
      {"~/.local/share/spc/spc.db", "The SQLite database that is taken when none is named."},
      {"~/.odbc.ini, /etc/odbc.ini",
       "The data sources for --dsn. A password in a file that you alone can read is seen by nobody else."},
      {"/etc/odbcinst.ini", "The drivers for Driver={...} in a connect text; odbcinst -q -d lists them."},
  };
  return all;
}

std::vector<std::string> paragraphs_of(std::string_view text) {
  std::vector<std::string> paragraphs;
  while (!text.empty()) {
    const auto end = text.find("\n\n");
    paragraphs.emplace_back(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 2);
  }
  return paragraphs;
}

std::string heading_of(const Option& option) {
  std::string text = option.letter != 0 ? std::string("-") + option.letter + ", " : std::string();
  text += option.name;
  return option.value.empty() ? text : text + " " + std::string(option.value);
}

std::string explained(const Option& option) {
  std::string text(option.help);
  const auto add = [&](const std::string& more) { text += ". " + more; };
  if (option.required && !option.is_argument()) add("It must be given");
  if (!option.required && option.is_argument()) add("It may be left out");
  if (option.within && option.within->most == largest)
    add("A number, " + std::to_string(option.within->least) + " or more");
  else if (option.within)
    add("A number from " + std::to_string(option.within->least) + " to " + std::to_string(option.within->most));
  Request request;
  if (option.target != nullptr && std::holds_alternative<std::vector<std::string>*>(option.target(request)))
    add(option.commas ? "It may be given several times, or take several values with commas between them"
                      : "It may be given several times");
  for (const auto other : option.excludes)
    add("Not beside " + std::string(other));
  return text + ".";
}

std::vector<const Command*> members_of(const Command* group) {
  const std::string inside = group == nullptr ? "" : std::string(group->path) + " ";
  std::vector<const Command*> members;
  for (const Command& command : commands())
    if (command.group() == inside) members.push_back(&command);
  return members;
}

std::string usage_of(const Command* command) {
  if (command == nullptr) return "spc COMMAND [OPTIONS]";
  std::string usage = "spc " + std::string(command->path);
  if (command->is_group()) return usage + " COMMAND [OPTIONS]";
  const auto options = options_of(*command);
  for (const Option& option : options)
    if (!option.is_argument() && option.required) usage += " " + heading_of(option);
  usage += " [OPTIONS]";
  for (const Option& option : options)
    if (option.is_argument())
      usage += option.required ? " " + std::string(option.name) : " [" + std::string(option.name) + "]";
  return usage;
}

std::string help_text(const Command* command, std::size_t page_width) {
  std::string text = "Usage: " + usage_of(command) + "\n\n";
  text += command == nullptr ? std::string(purpose) + "\n" : wrapped(std::string(command->help) + ".", 0, page_width);
  if (command != nullptr)
    for (const auto& paragraph : paragraphs_of(command->more))
      text += '\n' + wrapped(paragraph, 0, page_width);
  if (command == nullptr || command->is_group()) {
    text += section("Commands", rows_of(members_of(command)), page_width);
  } else {
    text += section("Arguments", rows_of(options_of(*command), true), page_width);
    text += section("Options", rows_of(options_of(*command), false), page_width);
  }
  text += section("Options of all commands", rows_of(global_options(), false), page_width);
  if (command != nullptr && !command->is_group()) {
    text += examples_section("Examples", command->examples, page_width);
    text += section("Exit status", status_rows(*command), page_width);
  } else {
    if (command == nullptr) text += examples_section("First steps", first_steps(), page_width);
    text += "\n" + usage_of(command).substr(0, usage_of(command).find(" [")) + " --help tells more of a command.\n";
  }
  return text;
}

}  // namespace spc
