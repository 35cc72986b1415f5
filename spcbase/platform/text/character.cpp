#include "spcbase/platform/text/character.h"

#include <unicode/uchar.h>

#include <cstring>
#include <string_view>

#include "spcbase/platform/text/locale.h"
#include "spcbase/platform/text/utf8_walk.h"

namespace {

constexpr std::size_t longest_character = 4;
constexpr unsigned int ill_formed_mark = 0xFFFFFF00U;

/// The character that a text starts with; a step of 0 bytes at its end.
platform::Utf8Step step_at(const char* text) noexcept {
  const std::string_view head(text, strnlen(text, longest_character));
  return head.empty() ? platform::Utf8Step{0, 0, true} : platform::utf8_step(head, 0);
}

bool forbids_break(char32_t c) noexcept { return c == 0xA0 || c == 0x2007 || c == 0x202F; }

bool is_joiner(UChar32 c) noexcept { return c == 0x200C || c == 0x200D; }

}  // namespace

char* CharNextA(const char* text) noexcept { return const_cast<char*>(text) + step_at(text).length_bytes; }

unsigned int _mbsnextc(const unsigned char* text) noexcept {
  const platform::Utf8Step step = step_at(reinterpret_cast<const char*>(text));
  const auto number = static_cast<unsigned int>(step.code_point);
  return step.valid ? number : ill_formed_mark | number;
}

int _ismbcspace(unsigned int c) noexcept {
  const auto code_point = static_cast<char32_t>(c);
  return platform::is_space(code_point) && !forbids_break(code_point) ? 1 : 0;
}

int _ismbcprint(unsigned int c) noexcept {
  const auto code_point = static_cast<UChar32>(c);
  const auto kind = u_charType(code_point);
  if (kind == U_LINE_SEPARATOR || kind == U_PARAGRAPH_SEPARATOR) return 0;
  return u_isprint(code_point) || is_joiner(code_point) ? 1 : 0;
}
