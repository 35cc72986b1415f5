#include "tools/spc/completion.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>

#include "spcbase/foundation/running_number.h"
#include "tools/spc/completion_values.h"
#include "tools/spc/doctor/check.h"
#include "tools/spc/help.h"
#include "tools/spc/problem.h"
#include "tools/spc/utf8.h"

namespace spc {
namespace {

namespace fs = std::filesystem;

/// Reads the words before the cursor as the grammar would, but never minds what is wrong or missing.
class Reader {
 public:
  explicit Reader(const std::vector<std::string>& words) {
    for (std::size_t i = 0; i + 1 < words.size(); ++i)
      take(words[i]);
  }

  const Command* command() const { return command_; }
  const Said& said() const { return said_; }
  bool behind_dashes() const { return behind_dashes_; }
  /// The option whose value comes next, or null.
  const Option* open() const { return open_ ? &*open_ : nullptr; }
  /// The options that may stand at the cursor.
  std::vector<Option> options() const {
    std::vector<Option> all = known();
    std::erase_if(all, [](const Option& option) { return option.is_argument(); });
    return all;
  }
  std::optional<Option> find(std::string_view name) const {
    const auto all = options();
    const auto found = std::ranges::find(all, name, &Option::name);
    return found == all.end() ? std::nullopt : std::optional(*found);
  }
  /// The argument that comes next.
  std::optional<Option> argument() const {
    std::vector<Option> all = known();
    std::erase_if(all, [](const Option& option) { return !option.is_argument(); });
    return arguments_ < all.size() ? std::optional(all[arguments_]) : std::nullopt;
  }

 private:
  std::vector<Option> known() const {
    std::vector<Option> all = command_ == nullptr ? std::vector<Option>() : options_of(*command_);
    all.insert(all.end(), global_options().begin(), global_options().end());
    return all;
  }

  void take(const std::string& word) {
    if (open_) {
      keep(*open_, word);
      open_.reset();
    } else if (!behind_dashes_ && word == "--") {
      behind_dashes_ = true;
    } else if (!behind_dashes_ && word.starts_with("--")) {
      take_option(word);
    } else if (command_ == nullptr || command_->is_group()) {
      const std::string inside = command_ == nullptr ? "" : std::string(command_->path) + " ";
      if (const Command* found = find_command(inside + word)) command_ = found;
    } else {
      if (const auto option = argument()) keep(*option, word);
      ++arguments_;
    }
  }

  void take_option(const std::string& word) {
    const auto equals = word.find('=');
    const auto option = find(std::string_view(word).substr(0, equals));
    if (!option || option->is_flag()) return;
    if (equals == std::string::npos)
      open_ = option;
    else
      keep(*option, word.substr(equals + 1));
  }

  void keep(const Option& option, const std::string& value) {
    if (option.name == "--dsn") said_.place.dsn = value;
    if (option.name == "--connect") said_.place.connect = value;
    said_.values[option.name] = value;
  }

  const Command* command_ = nullptr;
  std::optional<Option> open_;
  std::size_t arguments_ = 0;
  bool behind_dashes_ = false;
  Said said_;
};

/// The folder of a beginning of a file's name, where "~/" is the home folder.
fs::path folder_of(const std::string& typed) {
  const std::string folder = typed.substr(0, typed.rfind('/') + 1);
  const char* home = std::getenv("HOME");
  if (folder.starts_with("~/") && home != nullptr) return home + folder.substr(1);
  return folder.empty() ? fs::path(".") : fs::path(folder);
}

/// Files that begin as `typed` does, behind `before`.
std::vector<Candidate> files(const std::string& typed, const std::string& before = {}) {
  const std::string shown_folder = typed.substr(0, typed.rfind('/') + 1);
  const bool wants_hidden = typed.substr(shown_folder.size()).starts_with('.');
  std::vector<Candidate> found;
  std::error_code error;
  for (fs::directory_iterator at(folder_of(typed), error), end; !error && at != end; at.increment(error)) {
    const std::string name = at->path().filename().string();
    if (name.starts_with('.') && !wants_hidden) continue;
    std::error_code unknown;
    found.push_back({before + shown_folder + name + (at->is_directory(unknown) ? "/" : "")});
  }
  return found;
}

std::vector<Candidate> connect_texts(const std::string& typed) {
  constexpr std::string_view scheme = "sqlite:";
  if (typed.starts_with(scheme)) return files(typed.substr(scheme.size()), std::string(scheme));
  return {{std::string(scheme), "an SQLite file"}};
}

std::vector<Candidate> finding_names() {
  std::vector<Candidate> found;
  for (const auto& check : doctor::all_checks())
    found.push_back({check.name, check.meaning});
  return found;
}

std::vector<Candidate> table_names() {
  std::vector<Candidate> found;
  for (const auto& number : running_numbers)
    found.push_back({number.table});
  return found;
}

/// Where several values stand with commas between them, only the last is completed.
std::vector<Candidate> behind_commas(std::vector<Candidate> candidates, const std::string& typed) {
  const std::string before = typed.substr(0, typed.rfind(',') + 1);
  for (Candidate& candidate : candidates)
    candidate.text.insert(0, before);
  return candidates;
}

std::vector<Candidate> values_of(const Option& option, const std::string& typed, const Said& said) {
  switch (option.offers) {
    case Offers::nothing:
      return {};
    case Offers::words:
    case Offers::suggestions: {
      std::vector<Candidate> found;
      for (const auto word : option.words)
        found.push_back({std::string(word)});
      return found;
    }
    case Offers::files:
      return files(typed);
    case Offers::connect_texts:
      return connect_texts(typed);
    case Offers::findings:
      return behind_commas(finding_names(), typed);
    case Offers::number_tables:
      return table_names();
    default:
      return database_values(option.offers, typed, said);
  }
}

std::vector<Candidate> option_names(const Reader& reader) {
  std::vector<Candidate> found;
  for (const Option& option : reader.options())
    found.push_back({std::string(option.name), std::string(option.help)});
  return found;
}

std::vector<Candidate> command_names(const Command* group) {
  std::vector<Candidate> found;
  for (const Command* member : members_of(group))
    found.push_back({std::string(member->word()), std::string(member->help)});
  return found;
}

/// All that may stand there, whatever was typed of it.
std::vector<Candidate> all_for(const Reader& reader, const std::string& typed) {
  if (reader.open() != nullptr) return values_of(*reader.open(), typed, reader.said());
  if (!reader.behind_dashes() && typed.starts_with('-')) {
    const auto equals = typed.find('=');
    if (equals == std::string::npos) return option_names(reader);
    const auto option = reader.find(typed.substr(0, equals));
    if (!option || option->is_flag()) return {};
    auto found = values_of(*option, typed.substr(equals + 1), reader.said());
    for (Candidate& candidate : found)
      candidate.text.insert(0, typed.substr(0, equals + 1));
    return found;
  }
  const Command* command = reader.command();
  if (command == nullptr || command->is_group()) return command_names(command);
  if (const auto argument = reader.argument()) return values_of(*argument, typed, reader.said());
  return typed.empty() ? option_names(reader) : std::vector<Candidate>();
}

}  // namespace

std::vector<Candidate> candidates_for(const std::vector<std::string>& words) {
  if (words.empty()) return {};
  const std::string& typed = words.back();
  auto found = all_for(Reader(words), typed);
  std::erase_if(found, [&](const Candidate& candidate) {
    return !candidate.text.starts_with(typed) || on_one_line(candidate.text) != candidate.text;
  });
  return found;
}

}  // namespace spc
