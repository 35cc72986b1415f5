/// Texts as lists of words, and words as numbers.
///
/// Part of the command.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace spc {

/// The number of a text of nothing but digits; -1 for any other, and for one beyond the numbers.
int plain_number(std::string_view text);

/// The words of a text, parted by any of these characters.
std::vector<std::string> words_of(std::string_view text, std::string_view separators);

/// "day, week or month".
std::string either(const std::vector<std::string>& words);

/// The word that a mistyped one stands for: it begins with it, or differs from it in so few letters that nothing else
/// can be meant; empty when there is none.
std::string nearest(std::string_view mistyped, const std::vector<std::string>& words);

/// A text as a literal of SQL.
std::string sql_literal(std::string_view text);

}  // namespace spc
