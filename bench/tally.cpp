#include "bench/tally.h"

#include <cctype>

namespace bench {
namespace {

bool is_word(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }
bool is_digit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }
bool separates_nothing(char c) {
  return std::isspace(static_cast<unsigned char>(c)) != 0 || c == '[' || c == ']' || c == '"' || c == '`';
}

/// The end of the word or number that begins at `at`.
std::size_t word_end(std::string_view text, std::size_t at) {
  while (at < text.size() && (is_word(text[at]) || (text[at] == '.' && is_digit(text[at - 1]))))
    ++at;
  return at;
}

std::size_t literal_end(std::string_view text, std::size_t at) {
  for (++at; at < text.size(); ++at) {
    if (text[at] != '\'') continue;
    if (at + 1 >= text.size() || text[at + 1] != '\'') return at + 1;
    ++at;
  }
  return text.size();
}

void report_count(std::string& out, const std::string& shape, long ours, long plain) {
  if (ours == plain) return;
  out += "  ours " + std::to_string(ours) + ", plain " + std::to_string(plain) + ": " + shape + "\n";
}

long count_of(const Tally& tally, const std::string& shape) {
  const auto found = tally.find(shape);
  return found == tally.end() ? 0 : found->second;
}

}  // namespace

std::string shape_of(std::string_view statement) {
  std::string shape;
  for (std::size_t at = 0; at < statement.size();) {
    const char c = statement[at];
    std::size_t end = at + 1;
    if (c == '\'') {
      end = literal_end(statement, at);
      shape += '?';
    } else if (is_word(c)) {
      end = word_end(statement, at + 1);
      if (is_digit(c)) {
        shape += '?';
      } else {
        // Two words must not grow together.
        if (!shape.empty() && is_word(shape.back())) shape += ' ';
        for (const char letter : statement.substr(at, end - at))
          shape += static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
      }
    } else if (!separates_nothing(c)) {
      shape += c;
    }
    at = end;
  }
  return shape;
}

std::string differences(const Tally& ours, const Tally& plain) {
  std::string out;
  for (const auto& [shape, count] : ours)
    report_count(out, shape, count, count_of(plain, shape));
  for (const auto& [shape, count] : plain)
    if (ours.count(shape) == 0) report_count(out, shape, 0, count);
  return out;
}

}  // namespace bench
