/// What is wrong with a command line, and what may have been meant.
///
/// Part of the command. No word that may be a password is repeated.
#pragma once

#include <string>
#include <vector>

#include "tools/spc/command_table.h"
#include "tools/spc/problem.h"

namespace spc {

/// A misuse, with where to read more. `command`: what was spoken of so far, or null.
Problem misuse(const Command* command, const std::string& why, const std::string& hint = {});

/// No task was named.
Problem no_task(const Command* command);

/// Words that nothing is known to do with, the first one first. There is at least one.
Problem unexpected_words(const Command* command, const std::vector<std::string>& words);

/// What the parser refused, its text in the words of the command.
Problem refused(const Command* command, const std::string& text);

/// Why a text is no number within bounds; empty when it is one.
std::string why_no_number(const Bounds& bounds, const std::string& text);

/// Why a text is none of these words; empty when it is one.
std::string why_no_word(const std::vector<std::string_view>& words, const std::string& text);

}  // namespace spc
