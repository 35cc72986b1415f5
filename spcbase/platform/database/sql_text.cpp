#include "spcbase/platform/database/sql_text.h"

#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/database/moment_text.h"
#include "spcbase/platform/database/sql_scan.h"

namespace spcdb {
namespace {

/// The position behind the literal, quoted name or comment that begins at `start`, or `start` when none begins there.
std::size_t skip_quoted(std::string_view sql, std::size_t start, bool backslash_escapes = false) noexcept {
  const char c = sql[start];
  if (c == '\'') return backslash_escapes ? scan::backslash_literal_end(sql, start) : scan::literal_end(sql, start);
  if (c == '"' || c == '`' || c == '[') return scan::name_end(sql, start);
  return scan::at_comment(sql, start) ? scan::comment_end(sql, start) : start;
}

/// Behind the blanks, comments and semicolons that may stand between statements.
std::size_t skip_between(std::string_view sql, std::size_t start) noexcept {
  for (std::size_t i = start; i < sql.size();) {
    if (scan::at_comment(sql, i))
      i = scan::comment_end(sql, i);
    else if (scan::is_space(sql[i]) || sql[i] == ';')
      ++i;
    else
      return i;
  }
  return sql.size();
}

char lower(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// The parts of one {word 'value'}.
struct Escape {
  std::string word;
  std::string_view literal;  ///< with its apostrophes
  std::size_t end = 0;       ///< behind the closing brace; 0: this is no such escape
};

Escape read_escape(std::string_view sql, std::size_t start) {
  Escape escape;
  std::size_t i = start + 1;
  const auto skip_blanks = [&] {
    while (i < sql.size() && scan::is_space(sql[i]))
      ++i;
  };
  skip_blanks();
  for (; i < sql.size() && lower(sql[i]) >= 'a' && lower(sql[i]) <= 'z'; ++i)
    escape.word += lower(sql[i]);
  skip_blanks();
  if (i >= sql.size() || sql[i] != '\'') return escape;
  const auto literal_end = scan::literal_end(sql, i);
  escape.literal = sql.substr(i, literal_end - i);
  i = literal_end;
  skip_blanks();
  const bool known = escape.word == "ts" || escape.word == "d" || escape.word == "t";
  if (known && i < sql.size() && sql[i] == '}') escape.end = i + 1;
  return escape;
}

void append_plain(std::string& out, const Escape& escape) {
  if (escape.word == "t") {
    out += escape.literal;
    return;
  }
  TIMESTAMP_STRUCT moment{};
  const auto value = escape.literal.substr(1, escape.literal.size() - 2);
  if (!parse_moment(value, moment)) raise(-1, "22007", "\"" + std::string(value) + "\" is not a moment.");
  const auto text = format_moment(moment);
  out += '\'';
  out.append(text.data(), text.size());
  out += '\'';
}

}  // namespace

bool is_blank(std::string_view sql) noexcept { return skip_between(sql, 0) == sql.size(); }

bool holds_two_statements(std::string_view sql, bool backslash_escapes) noexcept {
  auto i = skip_between(sql, 0);
  const auto word_end = scan::word_end(sql, i);
  if (scan::same_word(sql.substr(i, word_end - i), "CREATE")) return false;
  while (i < sql.size()) {
    if (sql[i] == ';') return skip_between(sql, i) < sql.size();
    const auto end = skip_quoted(sql, i, backslash_escapes);
    i = end > i ? end : i + 1;
  }
  return false;
}

std::string translate_odbc_escapes(std::string_view sql) {
  std::string out;
  out.reserve(sql.size());
  for (std::size_t i = 0; i < sql.size();) {
    if (const auto end = skip_quoted(sql, i); end > i) {
      out += sql.substr(i, end - i);
      i = end;
      continue;
    }
    const auto escape = sql[i] == '{' ? read_escape(sql, i) : Escape{};
    if (escape.end != 0) {
      append_plain(out, escape);
      i = escape.end;
    } else {
      out += sql[i++];
    }
  }
  return out;
}

}  // namespace spcdb
