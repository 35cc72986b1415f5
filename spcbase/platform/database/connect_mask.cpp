#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "spcbase/platform/database/connect_text.h"

// A text does not say which spelling it is in: {a;b} is one value to ODBC and two words to ADO.NET, "a;b" the other way
// round. So a value counts as quoted or braced whenever it can, what it holds is searched like a text of its own, and
// as soon as a quote or brace does not come out even, the first password takes the rest of the text with it.

namespace spcdb {
namespace {

constexpr std::string_view mask = "***";
constexpr std::string_view blanks = " \t\r\n\v\f";

bool is_letter_or_digit(char c) noexcept {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool holds(std::string_view text, std::string_view word) noexcept {
  return std::search(text.begin(), text.end(), word.begin(), word.end(), [](char a, char b) {
           return same_word({&a, 1}, {&b, 1});
         }) != text.end();
}

bool ends_with(std::string_view text, std::string_view word) noexcept {
  return text.size() >= word.size() && same_word(text.substr(text.size() - word.size()), word);
}

std::string_view trimmed(std::string_view text) noexcept {
  const auto first = text.find_first_not_of(blanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

std::string_view last_word(std::string_view text) noexcept {
  std::size_t begin = text.size();
  while (begin > 0 && is_letter_or_digit(text[begin - 1]))
    --begin;
  return text.substr(begin);
}

bool names_a_secret(std::string_view key) noexcept {
  key = trimmed(key);
  constexpr std::array<std::string_view, 3> anywhere{"PASSWORD", "PASSWD", "PASSPHRASE"};
  if (std::any_of(anywhere.begin(), anywhere.end(), [&](auto word) { return holds(key, word); })) return true;
  const auto last = last_word(key);
  return ends_with(key, "PWD") || same_word(last, "PASS") || same_word(last, "PW");
}

/// OLE DB has two switches that tell how a password is sent.
bool is_switch(std::string_view key, std::string_view value) noexcept {
  constexpr std::array<std::string_view, 2> keys{"ENCRYPT PASSWORD", "MASK PASSWORD"};
  constexpr std::array<std::string_view, 4> values{"TRUE", "FALSE", "YES", "NO"};
  const auto is = [](std::string_view text) { return [=](std::string_view word) { return same_word(text, word); }; };
  return std::any_of(keys.begin(), keys.end(), is(trimmed(key))) &&
         std::any_of(values.begin(), values.end(), is(trimmed(value)));
}

/// What closes a value that opens with `c`; zero when it does not open one.
char closer_of(char c) noexcept { return c == '{' ? '}' : c == '"' || c == '\'' ? c : '\0'; }

/// The value without its quotes or braces.
std::string unquoted(std::string_view value) {
  const char closer = value.back();
  std::string inner;
  for (std::size_t i = 1; i + 1 < value.size(); ++i) {
    inner += value[i];
    if (value[i] == closer) ++i;
  }
  return inner;
}

std::string quoted(char opener, std::string_view inner) {
  const char closer = closer_of(opener);
  std::string value(1, opener);
  for (const char c : inner)
    value.append(c == closer ? 2 : 1, c);
  return value += closer;
}

/// Rewrites one list of pairs.
class Masker {
 public:
  Masker(std::string_view text, std::vector<std::string>& passwords) : text_(text), passwords_(passwords) {}

  /// Passes over what stands before the first semicolon.
  void skip_first() { at_ = std::min(text_.find(';'), text_.size()); }

  std::string run() {
    while (at_ < text_.size()) {
      const auto stop = text_.find_first_of("=;", at_);
      if (stop == text_.npos) break;
      const auto key = text_.substr(at_, stop - at_);
      at_ = stop + 1;
      if (text_[stop] == '=') take_value(key);
    }
    return std::move(out_.append(text_.substr(copied_)));
  }

  /// Whether a password took the rest of the text with it, and may go on behind it.
  bool ran_over() const { return ran_over_; }

 private:
  /// Where a value in quotes or braces ends that stands at `begin`; nothing when it is not closed or does not end
  /// there.
  std::optional<std::size_t> quoted_end(std::size_t begin) const {
    const char closer = closer_of(text_[begin]);
    auto end = text_.find(closer, begin + 1);
    while (end != text_.npos && end + 1 < text_.size() && text_[end + 1] == closer)
      end = text_.find(closer, end + 2);
    if (end == text_.npos) return std::nullopt;
    ++end;
    const auto next = text_.find_first_not_of(blanks, end);
    if (next != text_.npos && text_[next] != ';') return std::nullopt;
    return end;
  }

  std::size_t plain_end(std::size_t begin) const {
    const auto value = text_.substr(begin, text_.substr(begin).find(';'));
    const auto last = value.find_last_not_of(blanks);
    return last == value.npos ? begin : begin + last + 1;
  }

  bool opens(std::size_t at) const { return at < text_.size() && closer_of(text_[at]) != '\0'; }

  void take_value(std::string_view key) {
    const auto first = text_.find_first_not_of(blanks, at_);
    const auto begin = first == text_.npos || text_[first] == ';' ? at_ : first;
    if (names_a_secret(key) && !is_switch(key, text_.substr(begin, plain_end(begin) - begin))) return hide(begin);
    if (uneven_ || !opens(begin)) return;
    if (const auto end = quoted_end(begin))
      search(key, begin, *end);
    else
      uneven_ = true;
  }

  void hide(std::size_t begin) {
    // One spelling doubles an equals sign that belongs to a key.
    const auto value = std::min(text_.find_first_not_of("= \t\r\n\v\f", begin), text_.size());
    std::optional<std::size_t> end;
    if (!uneven_) end = opens(value) ? quoted_end(value) : plain_end(begin);
    ran_over_ = !end;
    const auto hidden = text_.substr(begin, end.value_or(text_.size()) - begin);
    passwords_.emplace_back(hidden);
    if (end && opens(value))
      passwords_.push_back(unquoted(text_.substr(value, *end - value)));
    else
      remember_pieces(hidden);
    replace(begin, end ? behind_loose_words(*end) : text_.size(), mask);
  }

  /// Who reads quotes and braces in another way takes the password for one of these.
  void remember_pieces(std::string_view hidden) {
    constexpr std::string_view around = "{}\"'= \t\r\n\v\f";
    for (std::size_t at = 0; at < hidden.size();) {
      const auto piece = hidden.substr(at, hidden.substr(at).find(';'));
      at += piece.size() + 1;
      const auto first = piece.find_first_not_of(around);
      if (first == piece.npos) continue;
      passwords_.emplace_back(piece.substr(first, piece.find_last_not_of(around) + 1 - first));
    }
  }

  /// Words that are no pairs belong to the password before them: its writer forgot the quotes around a semicolon.
  std::size_t behind_loose_words(std::size_t end) {
    for (auto at = text_.find(';', end); at < text_.size(); at = text_.find(';', at + 1)) {
      const auto segment = text_.substr(at + 1, text_.substr(at + 1).find(';'));
      if (segment.find('=') != segment.npos) break;
      const auto word = trimmed(segment);
      if (word.empty()) continue;
      passwords_.emplace_back(word);
      end = static_cast<std::size_t>(word.data() - text_.data()) + word.size();
    }
    return end;
  }

  /// A value may be a list of pairs itself, the extended properties of OLE DB for one.
  void search(std::string_view key, std::size_t begin, std::size_t end) {
    const auto inner = unquoted(text_.substr(begin, end - begin));
    const auto known = passwords_.size();
    Masker nested(inner, passwords_);
    // A driver has a name and no pairs; to who reads no braces, pairs begin behind a semicolon.
    if (same_word(trimmed(key), "Driver")) nested.skip_first();
    const auto shown = nested.run();
    at_ = end;
    if (passwords_.size() == known) return;
    ran_over_ = nested.ran_over();
    replace(begin, ran_over_ ? text_.size() : end, quoted(text_[begin], shown));
  }

  void replace(std::size_t begin, std::size_t end, std::string_view replacement) {
    out_.append(text_.substr(copied_, begin - copied_)).append(replacement);
    at_ = copied_ = end;
  }

  std::string_view text_;
  std::vector<std::string>& passwords_;
  std::string out_;
  std::size_t at_ = 0;
  std::size_t copied_ = 0;  ///< up to here the text stands in out_
  bool uneven_ = false;     ///< a quote or brace did not come out even
  bool ran_over_ = false;
};

/// Shorter passwords are part of many a word of a message.
constexpr std::size_t shortest_anywhere = 3;

bool inside_a_word(std::string_view text, std::size_t at, std::size_t length) noexcept {
  return (at > 0 && is_letter_or_digit(text[at - 1])) ||
         (at + length < text.size() && is_letter_or_digit(text[at + length]));
}

/// The file of a data source has its pairs on lines, behind a heading in brackets.
bool is_file(std::string_view text) {
  const auto heading = trimmed(text.substr(0, text.find('\n')));
  return heading.starts_with('[') && heading.ends_with(']') && heading.find_first_of("=;") == heading.npos;
}

}  // namespace

MaskedConnectText mask_passwords(std::string_view text) {
  MaskedConnectText masked;
  const bool by_line = is_file(text);
  for (std::size_t at = 0; at < text.size();) {
    const auto end = by_line ? std::min(text.find('\n', at), text.size() - 1) + 1 : text.size();
    Masker line(text.substr(at, end - at), masked.passwords);
    constexpr std::string_view file_scheme = "sqlite:";
    if (same_word(text.substr(0, file_scheme.size()), file_scheme)) line.skip_first();
    masked.text += line.run();
    if (line.ran_over()) break;
    at = end;
  }
  return masked;
}

std::string mask_passwords_in_message(std::string_view message, std::string_view connect_text) {
  auto passwords = mask_passwords(connect_text).passwords;
  std::sort(passwords.begin(), passwords.end(), [](const auto& a, const auto& b) { return a.size() > b.size(); });
  std::string shown(message);
  for (const auto& password : passwords) {
    if (password.empty() || password == mask) continue;
    for (auto at = shown.find(password); at != shown.npos; at = shown.find(password, at)) {
      if (password.size() < shortest_anywhere && inside_a_word(shown, at, password.size())) {
        ++at;
        continue;
      }
      shown.replace(at, password.size(), mask);
      at += mask.size();
    }
  }
  return shown;
}

std::string mask_password_in_connect_text(std::string_view text) { return mask_passwords(text).text; }

}  // namespace spcdb
