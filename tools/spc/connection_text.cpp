#include "tools/spc/connection_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <vector>

#include "spcbase/companion/connect_string.h"
#include "tools/spc/utf8.h"

namespace spc {
namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::array<std::string_view, 3> password_words = {"password", "passwd", "pwd"};

std::string lower(std::string_view text) {
  std::string low(text);
  std::ranges::transform(low, low.begin(),
                         [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
  return low;
}

/// One KEY=value, and where the value stands, quotes and braces included.
struct Pair {
  std::string key;  ///< in small letters
  std::string value;
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// Reads a value in braces or quotes whose closing mark stands doubled where it belongs to the value.
std::size_t read_enclosed(std::string_view text, std::size_t at, char close, std::string& value) {
  for (++at; at < text.size(); ++at) {
    if (text[at] == close) {
      if (at + 1 == text.size() || text[at + 1] != close) return at + 1;
      ++at;
    }
    value += text[at];
  }
  return at;
}

std::vector<Pair> pairs_of(std::string_view text) {
  std::vector<Pair> pairs;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto stop = std::min(text.find_first_of("=;", at), text.size());
    if (stop == text.size() || text[stop] == ';') {
      at = stop;
      continue;
    }
    Pair pair;
    pair.key = lower(trimmed(text.substr(at, stop - at)));
    pair.begin = std::min(text.find_first_not_of(blanks, stop + 1), text.size());
    const char first = pair.begin < text.size() ? text[pair.begin] : ';';
    if (first == '{' || first == '"' || first == '\'') {
      pair.end = read_enclosed(text, pair.begin, first == '{' ? '}' : first, pair.value);
      at = std::min(text.find(';', pair.end), text.size());
    } else {
      at = std::min(text.find(';', pair.begin), text.size());
      pair.value = trimmed(text.substr(pair.begin, at - pair.begin));
      pair.end = pair.begin + pair.value.size();
    }
    pairs.push_back(std::move(pair));
  }
  return pairs;
}

bool has_key(const std::vector<Pair>& pairs, std::string_view key) {
  return std::ranges::find(pairs, key, &Pair::key) != pairs.end();
}

/// Other keys are for other passwords, that of an encrypted file for example.
bool is_of_login(const Pair& pair) { return pair.key == "pwd" || pair.key == "password"; }

}  // namespace

Spelling spelling_of(std::string_view connection_string) {
  const auto pairs = pairs_of(connection_string);
  if (has_key(pairs, "provider")) return Spelling::quotes;
  const bool odbc = has_key(pairs, "driver") || has_key(pairs, "dsn") || has_key(pairs, "filedsn");
  return odbc ? Spelling::odbc : Spelling::quotes;
}

bool names_sqlite_file(std::string_view connection_string) {
  return lower(trimmed(connection_string)).starts_with("sqlite:");
}

bool holds_password(const std::string& connection_string) {
  return ConnectStringUtil(CString(connection_string)).HidePassword();
}

std::string written_value(std::string_view value, Spelling spelling) {
  const bool odbc = spelling == Spelling::odbc;
  const std::string_view special = odbc ? "[]{}(),;?*=!@'\"" : ";='\"{}";
  const bool plain =
      !value.empty() && value.find_first_of(special) == value.npos && value.find_first_of(blanks) == value.npos;
  if (plain) return std::string(value);
  const char close = odbc ? '}' : '"';
  std::string written(1, odbc ? '{' : '"');
  for (const char c : value) {
    written += c;
    if (c == close) written += c;
  }
  return written + close;
}

std::string with_password(const std::string& connection_string, std::string_view password) {
  const Spelling spelling = spelling_of(connection_string);
  const std::string written = written_value(password, spelling);
  std::string text = connection_string;
  bool replaced = false;
  auto pairs = pairs_of(connection_string);
  for (auto pair = pairs.rbegin(); pair != pairs.rend(); ++pair) {
    if (!is_of_login(*pair)) continue;
    text.replace(pair->begin, pair->end - pair->begin, written);
    replaced = true;
  }
  if (replaced) return text;
  const auto last = text.find_last_not_of(blanks);
  text.erase(last == std::string::npos ? 0 : last + 1);
  if (!text.empty() && text.back() != ';') text += ';';
  return text + (spelling == Spelling::odbc ? "PWD=" : "Password=") + written;
}

std::string shown_connection(const std::string& connection_string) {
  ConnectStringUtil shown((CString(connection_string)));
  shown.HidePassword();
  return std::string(shown.text.view());
}

bool speaks_of_password(std::string_view text) {
  const std::string low = lower(text);
  return std::ranges::any_of(password_words, [&](auto word) { return low.find(word) != std::string::npos; });
}

}  // namespace spc
