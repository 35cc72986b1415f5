#include "tools/spc/command_table.h"

#include <algorithm>
#include <iterator>

#include "tools/spc/dry_run_answer.h"
#include "tools/spc/interruption.h"
#include "tools/spc/problem.h"

namespace spc {
namespace {

std::vector<Command> gathered() {
  std::vector<Command> all;
  for (auto* part : {database_commands, sample_commands, tree_commands, upkeep_commands, revision_commands,
                     source_commands, time_commands})
    std::ranges::move(part(), std::back_inserter(all));
  return all;
}

}  // namespace

const std::vector<Command>& commands() {
  static const std::vector<Command> all = gathered();
  return all;
}

const Command* find_command(std::string_view path) {
  const auto found = std::ranges::find(commands(), path, &Command::path);
  return found == commands().end() ? nullptr : &*found;
}

const std::vector<Option>& global_options() {
  static const std::vector<Option> all = {
      {.name = "--dsn",
       .value = "NAME",
       .help = "The ODBC data source of the database",
       .target = at<&Request::place, &Place::dsn>,
       .problem = why_not_given},
      {.name = "--connect",
       .value = "TEXT",
       .help = "An ODBC connect text, or sqlite:FILE; without it and --dsn: spc/spc.db in the user's data folder. "
               "Other users of the machine can see a password in it: let a data source (--dsn) hold it",
       .target = at<&Request::place, &Place::connect>,
       .offers = Offers::connect_texts,
       .excludes = {"--dsn"},
       .problem = why_not_given},
      {.name = "--json", .help = "Answer in JSON", .target = at<&Request::json>},
      {.name = "--trace",
       .help = "Show every statement, its rows and its time on standard error",
       .target = at<&Request::trace>},
      {.name = "--progress",
       .value = "bar|line|json|none",
       .help = "How long work tells how far it is, on standard error; a bar on a terminal and nothing elsewhere when "
               "not given; without a terminal a bar counts as lines",
       .target = at<&Request::progress>,
       .offers = Offers::words,
       .words = {"bar", "line", "json", "none"}},
      {.name = "--as-user",
       .value = "ID",
       .help = "List only what this user may see; 0, which is everything, when not given",
       .target = at<&Request::as_user>,
       .within = Bounds{0, largest},
       .offers = Offers::user_ids},
      {.name = "--help", .help = "Tell what a command does and takes", .letter = 'h'},
      {.name = "--version", .help = "Tell the version"},
  };
  return all;
}

std::vector<Option> options_of(const Command& command) {
  std::vector<Option> all = command.options;
  if (command.changes)
    all.push_back({.name = "--dry-run",
                   .help = "Do all of it, tell the rows that it touched, and take it back: nothing is changed",
                   .target = at<&Request::dry_run>});
  return all;
}

Shape json_of(const Command& command) {
  const Shape answer = command.json();
  return command.changes ? shapes::any_of({answer, dry_run_shape(answer)}) : answer;
}

std::vector<ExitStatus> exit_statuses(const Command& command) {
  std::string failed = "It failed, and standard error tells why.";
  if (!command.failed.empty()) failed += " " + std::string(command.failed);
  return {{exit_done, "Done."},
          {exit_failed, std::move(failed)},
          {exit_misuse, "The command line is wrong; nothing was changed."},
          {exit_interrupted,
           "Ctrl-C ended it at a safe point, and standard error tells what stands and what does not. A "
           "second one ends it at once."},
          {exit_terminated, "The same for SIGTERM."}};
}

std::string why_not_given(const std::string& text) { return text.empty() ? "the value is empty" : ""; }

Option max_size_option(Target (*target)(Request&)) {
  return {.name = "--max-size",
          .value = "BYTES",
          .help = "For drivers that cannot stream: the bytes that a buffer begins with; 0 for none",
          .target = target,
          .within = Bounds{0, largest}};
}

}  // namespace spc
