#include "spcbase/platform/database/sql_text.h"

#include <algorithm>

#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/database/moment_text.h"

namespace spcdb {
namespace {

std::size_t skip_to(std::string_view sql, std::size_t start, std::string_view end) noexcept {
  const auto found = sql.find(end, start);
  return found == std::string_view::npos ? sql.size() : found + end.size();
}

std::size_t skip_doubled(std::string_view sql, std::size_t start, char close) noexcept {
  for (std::size_t i = start + 1; i < sql.size(); ++i) {
    if (sql[i] != close) continue;
    if (i + 1 < sql.size() && sql[i + 1] == close)
      ++i;
    else
      return i + 1;
  }
  return sql.size();
}

bool is_blank(char c) noexcept { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
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
    while (i < sql.size() && is_blank(sql[i]))
      ++i;
  };
  skip_blanks();
  for (; i < sql.size() && lower(sql[i]) >= 'a' && lower(sql[i]) <= 'z'; ++i)
    escape.word += lower(sql[i]);
  skip_blanks();
  if (i >= sql.size() || sql[i] != '\'') return escape;
  const auto literal_end = skip_quoted(sql, i);
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

std::size_t skip_quoted(std::string_view sql, std::size_t start) noexcept {
  switch (sql[start]) {
    case '\'':
    case '"':
    case '`':
      return skip_doubled(sql, start, sql[start]);
    case '[':
      return skip_to(sql, start, "]");
    case '-':
      return sql.substr(start, 2) == "--" ? skip_to(sql, start, "\n") : start;
    case '/':
      return sql.substr(start, 2) == "/*" ? skip_to(sql, start + 2, "*/") : start;
    default:
      return start;
  }
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

std::size_t count_characters(std::string_view utf8) noexcept {
  return static_cast<std::size_t>(
      std::count_if(utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

}  // namespace spcdb
