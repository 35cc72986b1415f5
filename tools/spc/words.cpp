#include "tools/spc/words.h"

#include <algorithm>
#include <charconv>
#include <numeric>
#include <utility>

namespace spc {
namespace {

/// How many letters must be put in, left out or changed to make one of the other.
std::size_t difference(std::string_view left, std::string_view right) {
  std::vector<std::size_t> row(right.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= left.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i);
    for (std::size_t j = 1; j <= right.size(); ++j) {
      const std::size_t changed = diagonal + (left[i - 1] == right[j - 1] ? 0 : 1);
      diagonal = std::exchange(row[j], std::min({changed, row[j] + 1, row[j - 1] + 1}));
    }
  }
  return row.back();
}

std::string lower(std::string_view text) {
  std::string low(text);
  for (char& c : low)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return low;
}

}  // namespace

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

std::string nearest(std::string_view mistyped, const std::vector<std::string>& words) {
  // Two letters that changed places count as two differences.
  constexpr std::size_t most = 2;
  constexpr std::size_t telling_beginning = 3;
  const std::string word = lower(mistyped);
  const std::size_t letters = word.size() - std::min(word.find_first_not_of('-'), word.size());
  std::string found;
  std::size_t least = std::min(most, letters / 2) + 1;
  for (const auto& candidate : words) {
    const std::size_t differs =
        letters >= telling_beginning && candidate.starts_with(word) ? 1 : difference(word, candidate);
    if (differs < least) {
      least = differs;
      found = candidate;
    }
  }
  return found;
}

std::string sql_literal(std::string_view text) {
  std::string literal = "'";
  for (const char c : text)
    literal.append(c == '\'' ? 2 : 1, c);
  return literal + "'";
}

}  // namespace spc
