/// The table of commands in words: usage lines, what is to be known of an option, and the texts of --help.
///
/// Part of the command.
#pragma once

#include <cstddef>
#include <string>

#include "tools/spc/command_table.h"

namespace spc {

/// What the whole command is for.
inline constexpr std::string_view purpose = "Administers databases of measured samples.";

/// Lines to begin with.
const std::vector<Example>& first_steps();

/// A variable of the environment, or a file, and what it is for.
struct Surrounding {
  std::string_view name;
  std::string_view what;
};
const std::vector<Surrounding>& environment();
const std::vector<Surrounding>& files();

/// "spc sample show [OPTIONS] ID"; of a group "spc sample COMMAND [OPTIONS]"; of null that of the whole command.
std::string usage_of(const Command* command);

/// "--profile NAME|ID", "-h, --help", "FILE".
std::string heading_of(const Option& option);

/// The help of an option as sentences, with what else is to be known of it: that it must be given, its bounds, its
/// values.
std::string explained(const Option& option);

/// The commands directly in a group; of null those at the top.
std::vector<const Command*> members_of(const Command* group);

/// How wide --help is when nobody says how wide a page is.
inline constexpr std::size_t usual_page_width = 80;

/// What --help prints: of a command, of a group, or of everything when it is null. Examples are not parted, so that
/// they can be copied.
std::string help_text(const Command* command, std::size_t page_width = usual_page_width);

/// The paragraphs of a text that are parted by empty lines.
std::vector<std::string> paragraphs_of(std::string_view text);

}  // namespace spc
