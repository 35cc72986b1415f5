#include "spcbase/companion/table_helpers.h"

#include <string>
#include <string_view>

#include "spcbase/platform/text/character.h"
#include "spcbase/platform/text/number_marks.h"
#include "spcbase/platform/text/utf8_walk.h"

// These two functions stand alone in their object file, and the linker leaves the library's calls to them open
// (spcbase/replaceable_functions.list), so that a product's own come before them.

namespace {

using platform::NumberMarks;

constexpr std::string_view cell_ends = "\t\r\n";

/// Reads one number by some marks and writes it by others.
class NumberRewriter {
 public:
  NumberRewriter(std::string_view cell, const NumberMarks& from, char32_t decimal)
      : cell_(cell), from_(from), decimal_(decimal) {}

  /// Adds the number to `result`; false when the cell is none, and then `result` is as before.
  bool write_to(std::string& result) {
    read_sign();
    if (!read_digits() || !read_exponent() || at_ != cell_.size()) return false;
    result += written_;
    return true;
  }

 private:
  platform::Utf8Step step() const {
    return at_ < cell_.size() ? platform::utf8_step(cell_, at_) : platform::Utf8Step{0, 0, true};
  }
  bool next_is(char c) const { return at_ < cell_.size() && cell_[at_] == c; }
  void take() { written_ += cell_[at_++]; }

  void read_sign() {
    if (next_is('-') || next_is('+')) take();
  }

  std::size_t take_digits() {
    const std::size_t first = at_;
    while (at_ < cell_.size() && platform::is_digit_byte(cell_[at_]))
      take();
    return at_ - first;
  }

  // Groups: one to three digits, then three at a time.
  bool read_groups(std::size_t leading_digits) {
    while (from_.is_group(step().code_point)) {
      if (leading_digits == 0 || leading_digits > 3) return false;
      at_ += step().length_bytes;
      if (take_digits() != 3) return false;
    }
    return true;
  }

  bool read_digits() {
    const std::size_t leading = take_digits();
    if (!read_groups(leading)) return false;
    if (step().code_point != from_.decimal) return leading > 0;
    at_ += step().length_bytes;
    platform::utf8_append(written_, decimal_);
    return take_digits() + leading > 0;
  }

  bool read_exponent() {
    if (!next_is('e') && !next_is('E')) return true;
    take();
    read_sign();
    return take_digits() > 0;
  }

  std::string_view cell_;
  const NumberMarks& from_;
  char32_t decimal_;
  std::string written_;
  std::size_t at_ = 0;
};

/// Adds a cell to `result`, rewritten when it is one number between spaces.
void rewrite_cell(std::string_view cell, const NumberMarks& from, char32_t decimal, std::string& result) {
  const std::size_t first = cell.find_first_not_of(' ');
  const std::size_t last = cell.find_last_not_of(' ');
  if (first == std::string_view::npos) {
    result += cell;
    return;
  }
  const std::string_view inner = cell.substr(first, last + 1 - first);
  result += cell.substr(0, first);
  if (!NumberRewriter(inner, from, decimal).write_to(result)) result += inner;
  result += cell.substr(last + 1);
}

CString rewritten(const CString& text, const NumberMarks& from, char32_t decimal) {
  std::string result;
  for (std::string_view rest = text.view(); !rest.empty();) {
    const std::size_t end = rest.find_first_of(cell_ends);
    rewrite_cell(rest.substr(0, end), from, decimal, result);
    if (end == std::string_view::npos) break;
    result += rest[end];
    rest.remove_prefix(end + 1);
  }
  return CString(std::move(result));
}

}  // namespace

namespace TableHelpers {

CString ParseToLocale(const CString& text) {
  const char32_t decimal = platform::number_marks().decimal;
  if (decimal == U'.') return text;
  return rewritten(text, NumberMarks{U'.', 0}, decimal);
}

CString ParseTextBuffer(int, const CString& text) { return rewritten(text, platform::number_marks(), U'.'); }

}  // namespace TableHelpers
