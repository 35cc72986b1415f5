#include "spcbase/platform/text/locale.h"

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/uloc.h>
#include <unicode/unistr.h>

#include <memory>

#include "spcbase/platform/text/utf8_walk.h"

namespace platform {

namespace {

constexpr bool is_ascii(char32_t c) { return c < 0x80; }
constexpr char32_t lower_ascii(char32_t c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; }
constexpr char32_t upper_ascii(char32_t c) { return c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c; }

char32_t lower_char(char32_t c) {
  return is_ascii(c) ? lower_ascii(c) : static_cast<char32_t>(u_tolower(static_cast<UChar32>(c)));
}
char32_t upper_char(char32_t c) {
  return is_ascii(c) ? upper_ascii(c) : static_cast<char32_t>(u_toupper(static_cast<UChar32>(c)));
}

std::string mapped(std::string_view text, char32_t (*map)(char32_t)) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const Utf8Step step = utf8_step(text, i);
    if (step.valid) {
      utf8_append(result, map(step.code_point));
    } else {
      result.push_back(text[i]);
    }
    i += step.length_bytes;
  }
  return result;
}

/// Making a collator is slow, so each thread keeps one for each strength.
const icu::Collator* root_collator(bool ignore_case) {
  thread_local std::unique_ptr<icu::Collator> collators[2];
  auto& collator = collators[ignore_case ? 1 : 0];
  if (!collator) {
    UErrorCode status = U_ZERO_ERROR;
    collator.reset(icu::Collator::createInstance(icu::Locale::getRoot(), status));
    if (collator && ignore_case) collator->setStrength(icu::Collator::SECONDARY);
  }
  return collator.get();
}

icu::StringPiece piece(std::string_view text) { return {text.data(), static_cast<std::int32_t>(text.size())}; }

int sign(int value) noexcept { return (value > 0) - (value < 0); }

}  // namespace

std::string to_upper(std::string_view text) { return mapped(text, upper_char); }

std::string to_lower(std::string_view text) { return mapped(text, lower_char); }

int compare_no_case(std::string_view a, std::string_view b) noexcept {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    const Utf8Step left = utf8_step(a, i);
    const Utf8Step right = utf8_step(b, j);
    if (left.code_point != right.code_point || left.valid != right.valid) {
      const char32_t x = left.valid ? lower_char(left.code_point) : left.code_point;
      const char32_t y = right.valid ? lower_char(right.code_point) : right.code_point;
      if (x != y) return x < y ? -1 : 1;
      if (left.valid != right.valid) return left.valid ? -1 : 1;
    }
    i += left.length_bytes;
    j += right.length_bytes;
  }
  return (i < a.size()) - (j < b.size());
}

int collate(std::string_view a, std::string_view b, bool ignore_case) {
  const icu::Collator* collator = root_collator(ignore_case);
  if (!collator) return ignore_case ? compare_no_case(a, b) : sign(a.compare(b));
  UErrorCode status = U_ZERO_ERROR;
  return sign(collator->compareUTF8(piece(a), piece(b), status));
}

bool is_space(char32_t c) noexcept { return u_isUWhiteSpace(static_cast<UChar32>(c)) != 0; }
bool is_alpha(char32_t c) noexcept { return u_isalpha(static_cast<UChar32>(c)) != 0; }
bool is_digit(char32_t c) noexcept { return u_isdigit(static_cast<UChar32>(c)) != 0; }

LCID resolve_locale(LCID locale) noexcept {
  constexpr LCID us_english = 0x409;
  const LCID language = locale & 0xFFFFU;
  return language == 0 || language == 0x400 || language == 0x800 ? us_english : language;
}

std::string locale_name(LCID locale) {
  constexpr LCID invariant = 0x7F;
  const LCID id = resolve_locale(locale);
  if (id == invariant) return "";
  char name[ULOC_FULLNAME_CAPACITY];
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t length = uloc_getLocaleForLCID(id, name, sizeof name, &status);
  if (U_FAILURE(status) || length <= 0) return "";
  return std::string(name, static_cast<std::size_t>(length));
}

}  // namespace platform
