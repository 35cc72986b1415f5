#include "tools/spc/grammar.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <map>
#include <type_traits>

#include "tools/spc/misuse.h"

namespace spc {
namespace {

CLI::Option* bind(CLI::App& app, const Option& option, Target target) {
  const std::string name(option.name);
  const std::string help(option.help);
  return std::visit(
      [&](auto* value) -> CLI::Option* {
        using Value = std::remove_pointer_t<decltype(value)>;
        if constexpr (std::is_same_v<Value, bool>) return app.add_flag(name, *value, help);
        CLI::Option* added = app.add_option(name, *value, help);
        // One value each: a list would swallow an argument behind it.
        if constexpr (std::is_same_v<Value, std::vector<std::string>>)
          added->type_size(1)->expected(-1)->allow_extra_args(false);
        return added;
      },
      target);
}

/// Those of the table, else those of what the value is kept in; nothing for a text.
std::optional<Bounds> bounds_of(const Option& option, Request& request) {
  if (option.within) return option.within;
  const Target target = option.target(request);
  const bool is_int = std::holds_alternative<int*>(target) || std::holds_alternative<std::optional<int>*>(target);
  return is_int ? std::optional(Bounds{-largest - 1, largest}) : std::nullopt;
}

void add_option(CLI::App& app, const Option& option, Request& request) {
  if (option.target == nullptr) return;
  CLI::Option* added = bind(app, option, option.target(request));
  if (!option.value.empty()) added->type_name(std::string(option.value));
  if (option.required) added->required();
  if (option.commas) added->delimiter(',');
  if (const auto bounds = bounds_of(option, request))
    added->check([within = *bounds](const std::string& text) { return why_no_number(within, text); });
  if (option.offers == Offers::words)
    added->check([words = option.words](const std::string& text) { return why_no_word(words, text); });
  if (option.problem != nullptr) added->check(option.problem);
  for (const auto other : option.excludes)
    added->excludes(app.get_option(std::string(other)));
}

/// The table as an application. It writes into the reading, which must outlive it.
class Grammar {
 public:
  explicit Grammar(Reading& reading) : app_("Administers databases of measured samples.", "spc"), reading_(reading) {
    app_.fallthrough();
    app_.set_version_flag("--version", "");
    for (const Option& option : global_options())
      add_option(app_, option, reading.request);
    for (const Command& command : commands())
      add(command);
  }

  CLI::App& app() { return app_; }

  /// What was spoken of so far: the innermost subcommand, or null.
  const Command* spoken_of() const {
    const Command* found = nullptr;
    for (const CLI::App* app = &app_; !app->get_subcommands().empty();) {
      app = app->get_subcommands().back();
      found = commands_.at(app);
    }
    return found;
  }

 private:
  void add(const Command& command) {
    CLI::App& group = command.group().empty() ? app_ : *apps_.at(command.group().substr(0, command.group().size() - 1));
    CLI::App* app = group.add_subcommand(std::string(command.word()), std::string(command.help));
    apps_.emplace(command.path, app);
    commands_.emplace(app, &command);
    for (const Option& option : options_of(command))
      add_option(*app, option, reading_.request);
    if (!command.is_group()) app->callback([this, &command] { reading_.command = &command; });
  }

  CLI::App app_;
  Reading& reading_;
  std::map<std::string_view, CLI::App*> apps_;
  std::map<const CLI::App*, const Command*> commands_;
};

/// The words behind "spc". "help WORDS" stands for "WORDS --help".
std::vector<std::string> words_after_program(int argc, const char* const* argv) {
  std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
  if (words.empty() || words.front() != "help") return words;
  words.erase(words.begin());
  words.emplace_back("--help");
  return words;
}

}  // namespace

Reading read_arguments(int argc, const char* const* argv) {
  Reading reading;
  Grammar grammar(reading);
  std::vector<std::string> words = words_after_program(argc, argv);
  // The parser takes them from the end.
  std::ranges::reverse(words);
  try {
    grammar.app().parse(std::move(words));
  } catch (const CLI::CallForVersion&) {
    reading.wish = Reading::Wish::version;
    return reading;
  } catch (const CLI::CallForHelp&) {
    reading.command = grammar.spoken_of();
    const bool is_task = reading.command != nullptr && !reading.command->is_group();
    // Of a task there is help, whatever stands behind it; of a command that there is not there is none.
    if (const auto unknown = grammar.app().remaining(true); !is_task && !unknown.empty())
      throw unexpected_words(reading.command, unknown);
    reading.wish = Reading::Wish::help;
    return reading;
  } catch (const CLI::ParseError& error) {
    // What is missing may be there, mistyped.
    if (const auto unknown = grammar.app().remaining(true); !unknown.empty())
      throw unexpected_words(grammar.spoken_of(), unknown);
    throw refused(grammar.spoken_of(), error.what());
  }
  if (reading.command == nullptr) throw no_task(grammar.spoken_of());
  return reading;
}

}  // namespace spc
