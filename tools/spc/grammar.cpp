#include "tools/spc/grammar.h"

#include <CLI/CLI.hpp>
#include <map>
#include <type_traits>

#include "tools/spc/connection_text.h"
#include "tools/spc/problem.h"

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

void add_option(CLI::App& app, const Option& option, Request& request) {
  if (option.target == nullptr) return;
  CLI::Option* added = bind(app, option, option.target(request));
  if (!option.value.empty()) added->type_name(std::string(option.value));
  if (option.required) added->required();
  if (option.commas) added->delimiter(',');
  if (option.within) added->check(CLI::Range(option.within->least, option.within->most));
  if (option.offers == Offers::words)
    added->check(CLI::IsMember(std::vector<std::string>(option.words.begin(), option.words.end())));
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

/// What is wrong with the arguments. A word that is wrong may be a password, given where none may stand.
std::string told(const CLI::ParseError& error) {
  std::string text = error.what();
  const bool repeats_words = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr ||
                             dynamic_cast<const CLI::ConversionError*>(&error) != nullptr ||
                             dynamic_cast<const CLI::ValidationError*>(&error) != nullptr;
  if (!repeats_words || !speaks_of_password(text)) return text;
  return "one of its words is wrong, and not shown since it may be a password";
}

Problem misuse(const std::string& why) {
  return {"cannot read the command line", why, "spc --help tells what there is.", exit_misuse};
}

}  // namespace

Reading read_arguments(int argc, const char* const* argv) {
  Reading reading;
  Grammar grammar(reading);
  try {
    grammar.app().parse(argc, argv);
  } catch (const CLI::CallForVersion&) {
    reading.wish = Reading::Wish::version;
    return reading;
  } catch (const CLI::CallForHelp&) {
    reading.wish = Reading::Wish::help;
    reading.command = grammar.spoken_of();
    return reading;
  } catch (const CLI::ParseError& error) {
    throw misuse(told(error));
  }
  if (reading.command == nullptr) throw misuse("it names no task");
  return reading;
}

}  // namespace spc
