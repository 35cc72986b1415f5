#include "spcbase/platform/text/number_marks.h"

#include <langinfo.h>

#include <string_view>

#include "spcbase/platform/text/utf8_walk.h"

namespace platform {

namespace {

constexpr char32_t no_break_space = 0xA0;
constexpr char32_t thin_space = 0x2009;
constexpr char32_t narrow_no_break_space = 0x202F;
constexpr char32_t apostrophe = U'\'';
constexpr char32_t curved_apostrophe = 0x2019;

bool is_number_space(char32_t c) noexcept {
  return c == U' ' || c == no_break_space || c == thin_space || c == narrow_no_break_space;
}

bool is_apostrophe(char32_t c) noexcept { return c == apostrophe || c == curved_apostrophe; }

/// The first character of a locale's mark. A byte that is no UTF-8 stands for itself: the marks beyond ASCII of the
/// one-byte encodings are no-break spaces, which have the same number everywhere.
char32_t first_of(const char* mark) noexcept {
  const std::string_view text(mark);
  return text.empty() ? U'\0' : utf8_step(text, 0).code_point;
}

}  // namespace

bool NumberMarks::is_group(char32_t c) const noexcept {
  if (group == 0) return false;
  return c == group || (is_number_space(group) && is_number_space(c)) || (is_apostrophe(group) && is_apostrophe(c));
}

NumberMarks number_marks() noexcept {
  // What `localeconv` tells, from a call that needs no memory shared by all threads.
  const char32_t decimal = first_of(nl_langinfo(RADIXCHAR));
  return {decimal == 0 ? U'.' : decimal, first_of(nl_langinfo(THOUSEP))};
}

std::string decimal_mark() {
  const std::string_view text(nl_langinfo(RADIXCHAR));
  return text.empty() ? "." : std::string(text.substr(0, utf8_step(text, 0).length_bytes));
}

}  // namespace platform
