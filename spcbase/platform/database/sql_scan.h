/// The few lexical rules of SQL text that lifting, quoting and masking share.
///
/// Part of the database platform layer. Each function takes the position at which a token begins and gives the position
/// behind it; a token that does not end gives the end of the text.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace spcdb::scan {

/// What a byte may be, as bits; every byte beyond ASCII belongs to a word.
enum CharClass : unsigned char { begins_word = 1, digit = 2, space = 4 };

inline constexpr auto char_classes = [] {
  std::array<unsigned char, 256> classes{};
  for (unsigned c = 0; c < classes.size(); ++c) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    if (letter || c >= 0x80 || c == '_' || c == '@' || c == '#' || c == '$') classes[c] = begins_word;
    if (c >= '0' && c <= '9') classes[c] = digit;
  }
  for (const char c : {' ', '\t', '\n', '\r', '\f'})
    classes[static_cast<unsigned char>(c)] = space;
  return classes;
}();

constexpr bool is(char c, unsigned classes) noexcept {
  return (char_classes[static_cast<unsigned char>(c)] & classes) != 0;
}
constexpr bool is_digit(char c) noexcept { return is(c, digit); }
constexpr bool is_word_start(char c) noexcept { return is(c, begins_word); }
constexpr bool is_word(char c) noexcept { return is(c, begins_word | digit); }
constexpr bool is_space(char c) noexcept { return is(c, space); }

/// Behind what ends with `close`, which belongs to it where it is doubled.
constexpr std::size_t delimited_end(std::string_view sql, std::size_t at, char close) noexcept {
  for (std::size_t i = at + 1; i < sql.size(); ++i) {
    if (sql[i] != close) continue;
    if (i + 1 >= sql.size() || sql[i + 1] != close) return i + 1;
    ++i;
  }
  return sql.size();
}

/// Behind a text literal: a doubled apostrophe belongs to it.
constexpr std::size_t literal_end(std::string_view sql, std::size_t at) noexcept {
  return delimited_end(sql, at, '\'');
}

/// The same for a server on which a backslash in a literal takes the next character with it.
constexpr std::size_t backslash_literal_end(std::string_view sql, std::size_t at) noexcept {
  for (std::size_t i = at + 1; i < sql.size(); ++i) {
    if (sql[i] == '\\') {
      ++i;
    } else if (sql[i] == '\'') {
      if (i + 1 >= sql.size() || sql[i + 1] != '\'') return i + 1;
      ++i;
    }
  }
  return sql.size();
}

/// Behind a quoted name: [..], "..", `..`; a doubled closing quote belongs to it.
constexpr std::size_t name_end(std::string_view sql, std::size_t at) noexcept {
  return delimited_end(sql, at, sql[at] == '[' ? ']' : sql[at]);
}

/// True where a comment begins.
constexpr bool at_comment(std::string_view sql, std::size_t at) noexcept {
  return at + 1 < sql.size() && ((sql[at] == '-' && sql[at + 1] == '-') || (sql[at] == '/' && sql[at + 1] == '*'));
}

/// Behind a comment.
constexpr std::size_t comment_end(std::string_view sql, std::size_t at) noexcept {
  const std::string_view closing = sql[at] == '-' ? "\n" : "*/";
  const auto end = sql.find(closing, at + 2);
  return end == std::string_view::npos ? sql.size() : end + closing.size();
}

/// Behind an escape in braces, literals inside it respected.
constexpr std::size_t brace_end(std::string_view sql, std::size_t at) noexcept {
  for (std::size_t i = at + 1; i < sql.size();) {
    if (sql[i] == '\'') {
      i = literal_end(sql, i);
    } else if (sql[i] == '}') {
      return i + 1;
    } else {
      ++i;
    }
  }
  return sql.size();
}

/// Behind a word.
constexpr std::size_t word_end(std::string_view sql, std::size_t at) noexcept {
  while (at < sql.size() && is_word(sql[at]))
    ++at;
  return at;
}

/// Compares a word with one in capitals, without regard to case.
constexpr bool same_word(std::string_view word, std::string_view capitals) noexcept {
  if (word.size() != capitals.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    const char c = word[i] >= 'a' && word[i] <= 'z' ? static_cast<char>(word[i] - 'a' + 'A') : word[i];
    if (c != capitals[i]) return false;
  }
  return true;
}

}  // namespace spcdb::scan
