#include "tools/spc/words.h"

#include <algorithm>
#include <charconv>

namespace spc {

int plain_number(std::string_view text) {
  int number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end && !text.starts_with('-') ? number : -1;
}

std::vector<std::string> words_of(std::string_view text, std::string_view separators) {
  std::vector<std::string> words;
  for (std::size_t at = text.find_first_not_of(separators); at != std::string_view::npos;
       at = text.find_first_not_of(separators, at)) {
    const std::size_t end = std::min(text.find_first_of(separators, at), text.size());
    words.emplace_back(text.substr(at, end - at));
    at = end;
  }
  return words;
}

std::string either(const std::vector<std::string>& words) {
  std::string list;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i != 0) list += i + 1 == words.size() ? " or " : ", ";
    list += words[i];
  }
  return list;
}

std::string sql_literal(std::string_view text) {
  std::string literal = "'";
  for (const char c : text)
    literal.append(c == '\'' ? 2 : 1, c);
  return literal + "'";
}

}  // namespace spc
