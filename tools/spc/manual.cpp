// Manual pages of the table of commands.
#include "tools/spc/help.h"
#include "tools/spc/pages.h"

namespace spc {
namespace {

/// A text as groff prints it: what it would read as a request or turn into typographic signs is escaped.
std::string roff(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '\\':
        escaped += "\\e";
        break;
      case '-':
        escaped += "\\-";
        break;
      case '\'':
        escaped += "\\(aq";
        break;
      case '`':
        escaped += "\\(ga";
        break;
      case '^':
        escaped += "\\(ha";
        break;
      case '~':
        escaped += "\\(ti";
        break;
      case '"':
        escaped += "\\(dq";
        break;
      default:
        escaped += c;
    }
  }
  return escaped.starts_with('.') ? "\\&" + escaped : escaped;
}

std::string upper(std::string_view text) {
  std::string large(text);
  for (char& c : large)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return large;
}

std::string head(const std::string& name) {
  return ".TH " + roff(upper(name)) + " 1 \"\" \"spc " + roff(SPCBASE_VERSION) + "\" \"The spc command\"\n";
}

std::string section(std::string_view title) { return ".SH " + std::string(title) + "\n"; }

std::string tagged(const std::string& heading, const std::string& text) {
  return ".TP\n.B " + roff(heading) + "\n" + roff(text) + "\n";
}

std::string options_part(std::string_view title, const std::vector<Option>& options, bool arguments) {
  std::string text;
  for (const Option& option : options)
    if (option.is_argument() == arguments) text += tagged(heading_of(option), explained(option));
  return text.empty() ? text : section(title) + text;
}

std::string examples_part(const std::vector<Example>& examples) {
  if (examples.empty()) return {};
  std::string text = section("EXAMPLES");
  for (const Example& example : examples)
    text += ".TP\n.B " + roff("spc " + std::string(example.line)) + "\n" + roff(example.what) + "\n";
  return text;
}

std::string status_part(const Command& command) {
  std::string text = section("EXIT STATUS");
  for (const auto& [status, meaning] : exit_statuses(command))
    text += tagged(std::to_string(status), meaning);
  return text;
}

std::string reference(const std::string& name) { return ".BR " + roff(name) + " (1)"; }

std::string surroundings_part(std::string_view title, const std::vector<Surrounding>& all) {
  std::string text = section(title);
  for (const Surrounding& one : all)
    text += tagged(std::string(one.name), std::string(one.what));
  return text;
}

std::string manual_of_all() {
  std::string text = head("spc") + section("NAME") + "spc \\- administers databases of measured samples\n" +
                     section("SYNOPSIS") + ".B " + roff(usage_of(nullptr)) + "\n" + section("DESCRIPTION") +
                     roff(purpose) + "\nEach command has a page of its own.\n" + section("COMMANDS");
  for (const Command& command : commands())
    if (!command.is_group()) text += ".TP\n" + reference(page_name(command)) + "\n" + roff(command.help) + ".\n";
  return text + options_part("OPTIONS", global_options(), false) + examples_part(first_steps()) +
         surroundings_part("ENVIRONMENT", environment()) + surroundings_part("FILES", files()) +
         status_part({.path = "", .help = ""});
}

}  // namespace

std::string manual_of(const Command* command) {
  if (command == nullptr) return manual_of_all();
  const std::string name = page_name(*command);
  std::string text = head(name) + section("NAME") + roff(name) + " \\- " + roff(command->help) + "\n" +
                     section("SYNOPSIS") + ".B " + roff(usage_of(command)) + "\n" + section("DESCRIPTION") +
                     roff(command->help) + ".\n";
  for (const auto& paragraph : paragraphs_of(command->more))
    text += ".PP\n" + roff(paragraph) + "\n";
  if (command->json != nullptr)
    text += ".PP\nWith\n.B \\-\\-json\nit prints what the schema\n.I " + roff(name + ".schema.json") + "\ndescribes.\n";
  text += options_part("ARGUMENTS", options_of(*command), true);
  text += options_part("OPTIONS", options_of(*command), false);
  text += options_part("OPTIONS OF ALL COMMANDS", global_options(), false);
  return text + examples_part(command->examples) + status_part(*command) + section("SEE ALSO") + reference("spc") +
         "\n";
}

}  // namespace spc
