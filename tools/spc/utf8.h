/// UTF-8 as a terminal and a checker of files see it.
///
/// Part of the command.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace spc {

/// The offset of the first byte that is not well-formed UTF-8; nothing when all is well.
std::optional<std::size_t> find_invalid_utf8(std::string_view text);

/// The columns that a text takes on a terminal: marks that combine take none, wide characters two.
std::size_t display_width(std::string_view text);

/// The text with every control character in it replaced by a blank, so that it stays on its line.
std::string on_one_line(std::string_view text);

/// The text in quotes, on one line; a long one is cut at a whole character, and "..." stands for the rest.
std::string quoted(std::string_view text);

/// The text without blanks and tabs at both ends.
std::string_view trimmed(std::string_view text);

}  // namespace spc
