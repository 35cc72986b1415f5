#include "tools/spc/misuse.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "tools/spc/connection_text.h"
#include "tools/spc/help.h"
#include "tools/spc/utf8.h"
#include "tools/spc/words.h"

namespace spc {
namespace {

constexpr const char* hidden_word = "one of its words is wrong, and not shown since it may be a password";

bool is_task(const Command* command) { return command != nullptr && !command->is_group(); }

std::string name_of(const Command* command) { return command == nullptr ? "spc" : "spc " + std::string(command->path); }

std::vector<std::string> option_names(const Command* command) {
  std::vector<std::string> names;
  const auto add = [&](const std::vector<Option>& options) {
    for (const Option& option : options)
      if (!option.is_argument()) names.emplace_back(option.name);
  };
  if (is_task(command)) add(options_of(*command));
  add(global_options());
  return names;
}

std::vector<std::string> member_words(const Command* group) {
  std::vector<std::string> words;
  for (const Command* member : members_of(group))
    words.emplace_back(member->word());
  return words;
}

std::string did_you_mean(const std::string& text) { return text.empty() ? "" : "Did you mean " + text + "?"; }

/// "spc sample import or spc source import": where a command of that word is.
std::string commands_called(std::string_view word) {
  std::vector<std::string> found;
  for (const Command& command : commands())
    if (command.word() == word) found.push_back(name_of(&command));
  return either(found);
}

bool has_option(const Command& command, std::string_view name) {
  return std::ranges::any_of(options_of(command), [&](const Option& option) { return option.name == name; });
}

bool has_arguments(const Command& command) {
  return std::ranges::any_of(command.options, [](const Option& option) { return option.is_argument(); });
}

Problem unknown_option(const Command* command, const std::string& name, bool hidden) {
  if (is_task(command) && has_option(*command, name))
    return misuse(command, name + " stands before its command",
                  "It goes behind: " + name_of(command) + " " + name + ".");
  const std::string why = is_task(command) ? name_of(command) + " has no option " + name : "there is no option " + name;
  return misuse(command, hidden ? hidden_word : why, did_you_mean(nearest(name, option_names(command))));
}

Problem unknown_command(const Command* group, const std::string& word) {
  const std::string why = group == nullptr ? "there is no command " : name_of(group) + " has no command ";
  std::string meant = nearest(word, member_words(group));
  if (!meant.empty()) meant = name_of(group) + " " + meant;
  if (meant.empty()) meant = commands_called(word);
  if (meant.empty() && std::ranges::count(option_names(nullptr), "--" + word) != 0)
    meant = name_of(group) + " --" + word;
  return misuse(group, why + quoted(word), did_you_mean(meant));
}

/// The name of an option or argument with which a text begins, when this follows it. What was typed is no name.
std::optional<std::string> name_before(const std::string& text, std::string_view end) {
  const auto at = text.find(end);
  if (at == std::string::npos || text.substr(0, at).find_first_of(" \"=") != std::string::npos) return std::nullopt;
  return text.substr(0, at);
}

}  // namespace

Problem misuse(const Command* command, const std::string& why, const std::string& hint) {
  const std::string more = name_of(command) + " --help tells " + (is_task(command) ? "more." : "what there is.");
  return {"cannot read the command line", why, hint.empty() ? more : hint + " " + more, exit_misuse};
}

Problem no_task(const Command* command) {
  if (command == nullptr) return misuse(nullptr, "it names no command");
  return misuse(command, name_of(command) + " wants to know which command: " + either(member_words(command)));
}

Problem unexpected_words(const Command* command, const std::vector<std::string>& words) {
  const bool hidden = std::ranges::any_of(words, [](const std::string& word) { return speaks_of_password(word); });
  const std::string& first = words.front();
  if (first.size() > 1 && first.starts_with('-'))
    return unknown_option(command, first.substr(0, first.find('=')), hidden);
  if (hidden) return misuse(command, hidden_word);
  if (!is_task(command)) return unknown_command(command, first);
  return misuse(command, quoted(first) + " is a word too many",
                has_arguments(*command) ? "A text with blanks in it stands in quotes." : "");
}

Problem refused(const Command* command, const std::string& text) {
  const std::string usage = is_task(command) ? "Usage: " + usage_of(command) + "." : "";
  if (const auto name = name_before(text, ": At Most 1 required"))
    return misuse(command, *name + " is given more than once");
  if (const auto name = name_before(text, ": 1 required "))
    return misuse(command, *name + " wants a value behind it", usage);
  if (const auto name = name_before(text, " is required")) return misuse(command, *name + " is missing", usage);
  if (const auto name = name_before(text, " excludes "))
    return misuse(command, *name + " cannot stand beside " + text.substr(text.rfind(' ') + 1));
  constexpr std::string_view not_converted = "Could not convert: ";
  // Values of numbers have been looked at by then: what is left is a flag with a value.
  if (text.starts_with(not_converted))
    if (const auto name = name_before(text.substr(not_converted.size()), " = "))
      return misuse(command, *name + " takes no value");
  return misuse(command, speaks_of_password(text) ? hidden_word : text);
}

std::string why_no_number(const Bounds& bounds, const std::string& text) {
  long number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error == std::errc() && stop == end && number >= bounds.least && number <= bounds.most) return {};
  if (bounds.most == largest && bounds.least >= -1)
    return quoted(text) + " is not a number of " + std::to_string(bounds.least) + " or more" +
           (error == std::errc::result_out_of_range || number > largest ? ", up to " + std::to_string(largest) : "");
  return quoted(text) + " is not a number from " + std::to_string(bounds.least) + " to " + std::to_string(bounds.most);
}

std::string why_no_word(const std::vector<std::string_view>& words, const std::string& text) {
  if (std::ranges::find(words, text) != words.end()) return {};
  return quoted(text) + " is not " + either({words.begin(), words.end()});
}

}  // namespace spc
