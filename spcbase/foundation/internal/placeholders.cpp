#include "spcbase/foundation/internal/placeholders.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace {

/// One "%" of a text and what follows.
struct Mark {
  std::string_view text;
  /// 'd' or 's'; 0 for what is no placeholder that we know.
  char type = 0;
  /// 1 for the first value; 0 when the place in the text decides.
  std::size_t number = 0;
};

constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }
constexpr bool is_type(char c) { return c == 'd' || c == 's'; }

/// Reads the mark at the start of a text.
Mark read_mark(std::string_view text) {
  std::size_t at = 1;
  std::size_t number = 0;
  // No message has ten values.
  if (text.size() > 2 && is_digit(text[1]) && text[1] != '0' && text[2] == '$') {
    number = static_cast<std::size_t>(text[1] - '0');
    at = 3;
  }
  if (at < text.size() && is_type(text[at])) return {text.substr(0, at + 1), text[at], number};
  return {text.substr(0, 2), 0, 0};
}

std::vector<Mark> marks_of(std::string_view text) {
  std::vector<Mark> marks;
  for (std::size_t at = text.find('%'); at != std::string_view::npos; at = text.find('%', at)) {
    const Mark mark = read_mark(text.substr(at));
    if (mark.text != "%%") marks.push_back(mark);
    at += mark.text.size();
  }
  return marks;
}

std::string listed(const std::vector<Mark>& marks) {
  std::string list;
  for (const Mark& mark : marks) {
    if (!list.empty()) list += ' ';
    list += mark.text;
  }
  return list.empty() ? "none" : list;
}

/// Whether the marks take the wanted values one after the other.
bool fit_in_order(const std::vector<Mark>& marks, const std::vector<Mark>& wanted) {
  return std::equal(marks.begin(), marks.end(), wanted.begin(), wanted.end(),
                    [](const Mark& a, const Mark& b) { return a.number == 0 && a.type == b.type; });
}

/// Whether every mark names a wanted value by its number, and every wanted value is named.
bool fit_by_number(const std::vector<Mark>& marks, const std::vector<Mark>& wanted) {
  std::vector<bool> named(wanted.size(), false);
  for (const Mark& mark : marks) {
    if (mark.number == 0 || mark.number > wanted.size() || mark.type != wanted[mark.number - 1].type) return false;
    named[mark.number - 1] = true;
  }
  return std::find(named.begin(), named.end(), false) == named.end();
}

}  // namespace

std::string placeholder_problem(std::string_view english, std::string_view translation) {
  const std::vector<Mark> wanted = marks_of(english);
  std::vector<Mark> marks = marks_of(translation);
  if (wanted.empty()) std::erase_if(marks, [](const Mark& mark) { return mark.type == 0; });
  if (fit_in_order(marks, wanted) || fit_by_number(marks, wanted)) return {};
  return "the placeholders must be those of the English text, " + listed(wanted) + ", but are " + listed(marks);
}
