#include "spcbase/platform/database/observer.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "spcbase/platform/database/sql_scan.h"

namespace spcdb {
namespace {

enum class TokenKind : unsigned char { word, name, literal, symbol };

struct Token {
  TokenKind kind;
  std::size_t begin;
  std::size_t end;
  std::string_view text;
};

using Ranges = std::vector<std::pair<std::size_t, std::size_t>>;

bool contains_word(std::string_view text, std::string_view capitals) noexcept {
  for (std::size_t i = 0; i + capitals.size() <= text.size(); ++i)
    if (scan::same_word(text.substr(i, capitals.size()), capitals)) return true;
  return false;
}

Token next_token(std::string_view sql, std::size_t at, bool backslash_escapes) noexcept {
  const char c = sql[at];
  auto kind = TokenKind::symbol;
  std::size_t end = at + 1;
  if (c == '\'') {
    kind = TokenKind::literal;
    end = backslash_escapes ? scan::backslash_literal_end(sql, at) : scan::literal_end(sql, at);
  } else if (c == '[' || c == '"' || c == '`') {
    kind = TokenKind::name;
    end = scan::name_end(sql, at);
  } else if (scan::is_word(c)) {
    kind = TokenKind::word;
    end = scan::word_end(sql, at);
  }
  return {kind, at, end, sql.substr(at, end - at)};
}

std::vector<Token> tokens_of(std::string_view sql, bool backslash_escapes) {
  std::vector<Token> tokens;
  for (std::size_t at = 0; at < sql.size();) {
    if (scan::at_comment(sql, at)) {
      at = scan::comment_end(sql, at);
    } else if (scan::is_space(sql[at])) {
      ++at;
    } else {
      tokens.push_back(next_token(sql, at, backslash_escapes));
      at = tokens.back().end;
    }
  }
  return tokens;
}

/// Finds the literals of one statement that stand for passwords.
class PasswordFinder {
 public:
  PasswordFinder(std::string_view sql, bool backslash_escapes) : tokens_(tokens_of(sql, backslash_escapes)) {}

  void find(Ranges& found) {
    found_ = &found;
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
      if (is_name(i) && (names_a_password(tokens_[i].text) || is_word(i, "IDENTIFIED"))) behind_name(i + 1);
      if (tokens_[i].kind == TokenKind::literal) before_name(i);
      if (is_word(i, "INSERT") || is_word(i, "REPLACE")) insertion(i + 1);
    }
  }

 private:
  bool is_word(std::size_t i, std::string_view capitals) const {
    return i < tokens_.size() && tokens_[i].kind == TokenKind::word && scan::same_word(tokens_[i].text, capitals);
  }
  template <std::size_t Count>
  bool is_one_of(std::size_t i, const std::array<std::string_view, Count>& words) const {
    return std::any_of(words.begin(), words.end(), [&](std::string_view word) { return is_word(i, word); });
  }
  bool is_symbol(std::size_t i, std::string_view any) const {
    return i < tokens_.size() && tokens_[i].kind == TokenKind::symbol && any.find(tokens_[i].text) != any.npos;
  }
  bool is_name(std::size_t i) const {
    return i < tokens_.size() && (tokens_[i].kind == TokenKind::word || tokens_[i].kind == TokenKind::name);
  }
  /// Some servers take "..." for a text.
  bool is_value(std::size_t i) const {
    return tokens_[i].kind == TokenKind::literal ||
           (tokens_[i].kind == TokenKind::name && tokens_[i].text.front() == '"');
  }
  void hide(std::size_t i) { found_->emplace_back(tokens_[i].begin, tokens_[i].end); }

  bool is_comparison(std::size_t i) const {
    constexpr std::array<std::string_view, 13> words{"LIKE",   "ILIKE", "IN",      "NOT", "BETWEEN", "IS",  "BY",
                                                     "REGEXP", "RLIKE", "SIMILAR", "VIA", "WITH",    "GLOB"};
    return is_symbol(i, "=<>!~^(") || is_one_of(i, words);
  }
  bool ends_value(std::size_t i) const {
    constexpr std::array<std::string_view, 19> words{"OR",     "WHERE", "FROM", "ORDER", "GROUP", "HAVING", "LIMIT",
                                                     "SET",    "WHEN",  "THEN", "ELSE",  "END",   "UNION",  "RETURNING",
                                                     "VALUES", "ON",    "AND",  "XOR",   "GO"};
    return is_symbol(i, ",;") || is_one_of(i, words);
  }

  /// NAME = 'x', UPPER(NAME) = 'x', NAME IN ('x', 'y'), NAME BETWEEN 'x' AND 'y', PASSWORD('x'), IDENTIFIED BY 'x'.
  void behind_name(std::size_t i) {
    while (is_symbol(i, ")"))
      ++i;
    if (!is_comparison(i)) return;
    int depth = 0;
    bool between = false;
    for (; i < tokens_.size(); ++i) {
      if (is_symbol(i, "(") && is_word(i + 1, "SELECT")) return;
      if (is_symbol(i, "(")) ++depth;
      if (is_symbol(i, ")") && --depth < 0) return;
      between = between || is_word(i, "BETWEEN");
      if (depth == 0 && between && is_word(i, "AND")) {
        between = false;
        continue;
      }
      if (depth == 0 && ends_value(i)) return;
      if (is_value(i)) hide(i);
    }
  }

  /// 'x' = NAME, 'x' = T.NAME, 'x' = UPPER(NAME).
  void before_name(std::size_t literal) {
    std::size_t i = literal + 1;
    if (!is_symbol(i, "=<>!") && !is_word(i, "LIKE")) return;
    while (is_symbol(i, "=<>!") || is_word(i, "LIKE"))
      ++i;
    for (; is_name(i); i += 2) {
      if (names_a_password(tokens_[i].text)) return hide(literal);
      if (!is_symbol(i + 1, ".(")) return;
    }
  }

  /// INSERT INTO T (A, PWD) VALUES (1, 'x'), (2, 'y') or SELECT 1, 'x'.
  void insertion(std::size_t i) {
    while (is_name(i) || is_symbol(i, "."))
      ++i;
    if (!is_symbol(i, "(")) return;
    std::vector<bool> secret(1, false);
    for (++i; i < tokens_.size() && !is_symbol(i, ")"); ++i) {
      if (is_symbol(i, ",")) secret.push_back(false);
      if (is_name(i) && names_a_password(tokens_[i].text)) secret.back() = true;
    }
    ++i;
    if (is_word(i, "VALUES") || is_word(i, "VALUE")) {
      for (++i; is_symbol(i, "("); i += is_symbol(i, ",") ? 1U : 0U)
        i = list(i + 1, secret);
    } else if (is_word(i, "SELECT")) {
      list(i + 1, secret);
    }
  }

  /// One list of values; gives the position behind it.
  std::size_t list(std::size_t i, const std::vector<bool>& secret) {
    int depth = 0;
    std::size_t column = 0;
    for (; i < tokens_.size(); ++i) {
      if (is_symbol(i, "(")) ++depth;
      if (is_symbol(i, ")") && --depth < 0) return i + 1;
      if (depth == 0 && (is_word(i, "FROM") || is_symbol(i, ";"))) return i;
      if (depth == 0 && is_symbol(i, ",")) ++column;
      if (column < secret.size() && secret[column] && is_value(i)) hide(i);
    }
    return i;
  }

  std::vector<Token> tokens_;
  Ranges* found_ = nullptr;
};

/// Writes a text with ranges, which may overlap, replaced.
std::string with_ranges_replaced(std::string_view text, Ranges& ranges, std::string_view replacement) {
  std::sort(ranges.begin(), ranges.end());
  std::string out;
  std::size_t at = 0;
  for (std::size_t i = 0; i < ranges.size();) {
    const auto begin = ranges[i].first;
    auto end = ranges[i].second;
    for (++i; i < ranges.size() && ranges[i].first < end; ++i)
      end = std::max(end, ranges[i].second);
    out += text.substr(at, begin - at);
    out += replacement;
    at = end;
  }
  out += text.substr(at);
  return out;
}

}  // namespace

bool names_a_password(std::string_view column) noexcept {
  if (const auto dot = column.rfind('.'); dot != std::string_view::npos) column.remove_prefix(dot + 1);
  constexpr std::string_view quotes = "[]\"`";
  while (!column.empty() && quotes.find(column.front()) != quotes.npos)
    column.remove_prefix(1);
  while (!column.empty() && quotes.find(column.back()) != quotes.npos)
    column.remove_suffix(1);
  return contains_word(column, "PASSWORD") || scan::same_word(column, "PWD");
}

std::string mask_password_literals(std::string_view statement) {
  Ranges ranges;
  PasswordFinder(statement, false).find(ranges);
  // Whether a backslash escapes is the server's matter: what is a password by either reading is hidden.
  if (statement.find("\\'") != std::string_view::npos) PasswordFinder(statement, true).find(ranges);
  return with_ranges_replaced(statement, ranges, "'***'");
}

}  // namespace spcdb
