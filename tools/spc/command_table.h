/// The one table of commands: what the command can be asked, with help, examples and exit statuses.
///
/// Part of the command. Everything that a reader or a shell learns of the command comes from here: the grammar
/// (grammar.h), --help, the manual pages, the page docs/commands.md and the schemas of the JSON that it prints
/// (pages.h), and the completions (completion.h).
///
/// To add a command: write its task, then add its entry to one of commands_*.cpp. An option is an entry too; its value
/// goes where `target` says:
///
///     {.name = "--profile", .value = "NAME|ID", .help = "The profile", .target = at<&Request::list_profile>}
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tools/spc/json_shape.h"
#include "tools/spc/request.h"
#include "tools/spc/terminal.h"

namespace spc {

/// Where an option's value goes. A bool makes it a flag; a list, one that may be given several times.
using Target = std::variant<bool*, int*, std::optional<int>*, long*, std::size_t*, std::string*,
                            std::optional<std::string>*, std::vector<std::string>*>;

/// A field of the request, and of what is in that: `at<&Request::import, &ImportRequest::file>`.
template <auto... members>
Target at(Request& request) {
  return &(request.*....*members);
}

/// What a shell may offer for a value. `words` and `suggestions` stand in the entry, the others are asked for.
enum class Offers : unsigned char {
  nothing,
  words,        ///< the only values that there are
  suggestions,  ///< the task itself says what is wrong with others
  files,
  connect_texts,
  profiles,
  stations,
  users,
  user_ids,
  data_sources,
  number_tables,
  settings,
  samples,
  payload_ids,
  revision_types,
  revision_ids,
  revisions,
  nodes,
  findings,
};

/// The least and the greatest of a number.
struct Bounds {
  long least;
  long most;
};
inline constexpr long largest = 2'147'483'647;

/// An option, or an argument by its place.
struct Option {
  std::string_view name;        ///< "--profile"; of an argument "FILE"
  std::string_view value = {};  ///< what stands for the value: "NAME|ID"; empty for a flag and for an argument
  std::string_view help;
  Target (*target)(Request&) = nullptr;  ///< null: the grammar answers by itself, as to --help
  bool required = false;
  bool commas = false;  ///< one value may be several, parted by commas
  std::optional<Bounds> within = {};
  Offers offers = Offers::nothing;
  std::vector<std::string_view> words = {};              ///< with Offers::words and Offers::suggestions
  std::vector<std::string_view> excludes = {};           ///< options that it cannot stand beside, named before it
  std::string (*problem)(const std::string&) = nullptr;  ///< why a text is no value; empty when it is one
  char letter = 0;                                       ///< "-h"; 0: none

  bool is_argument() const { return !name.starts_with("--"); }
  bool is_flag() const { return !is_argument() && value.empty(); }
};

/// A line that can be given. Those on the demo's database are run by the tests.
struct Example {
  std::string_view line;  ///< behind "spc "
  std::string_view what;
};

/// A subcommand with a task, or a group of them.
struct Command {
  std::string_view path;       ///< "sample import"
  std::string_view help;       ///< one line
  std::string_view more = {};  ///< further paragraphs, parted by empty lines
  std::vector<Option> options = {};
  std::vector<Example> examples = {};
  std::string_view failed = {};  ///< when the exit status is 1, if not only for failures
  bool changes = false;          ///< rows or the schema
  Shape (*json)() = nullptr;     ///< what --json prints; null: nothing but what it prints without
  int (*task)(const Request&, const Terminal&) = nullptr;  ///< null for a group

  bool is_group() const { return task == nullptr; }
  std::string_view word() const { return path.substr(path.rfind(' ') + 1); }
  std::string_view group() const { return path.substr(0, path.size() - word().size()); }  ///< with its blank, or empty
};

/// A task on a database, with what of the request it wants.
template <auto work, auto... members>
int on_database(const Request& request, const Terminal& terminal) {
  return work(request.place, request.*members..., terminal);
}
/// A task that needs no database.
template <auto work, auto... members>
int on_its_own(const Request& request, const Terminal& terminal) {
  return work(request.*members..., terminal);
}

/// All commands, groups before what is in them, in the order of the help.
const std::vector<Command>& commands();

/// The command of that path, or null.
const Command* find_command(std::string_view path);

/// The options that stand before or behind any command.
const std::vector<Option>& global_options();

/// The arguments and options that a command takes beside those.
std::vector<Option> options_of(const Command& command);

/// What --json prints, of a dry run too. The command has a shape.
Shape json_of(const Command& command);

/// An exit status and what it says.
struct ExitStatus {
  int status;
  std::string meaning;
};
std::vector<ExitStatus> exit_statuses(const Command& command);

/// The parts of the table, each in a file of its own.
std::vector<Command> database_commands();
std::vector<Command> sample_commands();
std::vector<Command> tree_commands();
std::vector<Command> upkeep_commands();
std::vector<Command> revision_commands();
std::vector<Command> source_commands();
std::vector<Command> time_commands();

/// Why a text is no value where something must stand: a script may have put an empty variable there.
std::string why_not_given(const std::string& text);

/// Options that several commands take.
Option max_size_option(Target (*target)(Request&));

}  // namespace spc
