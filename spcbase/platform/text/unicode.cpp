#include "spcbase/platform/text/unicode.h"

#include <unicode/ustring.h>

#include <cstdint>
#include <limits>
#include <stdexcept>

#include "spcbase/platform/text/utf8_walk.h"

namespace platform {

namespace {

constexpr UChar32 replacement = 0xFFFD;

bool is_continuation(char c) noexcept { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

/// ICU counts in 32 bits, and one UTF-16 unit may need three bytes.
std::int32_t icu_length(std::size_t size) {
  if (size > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()) / 3) {
    throw std::length_error("string too long");
  }
  return static_cast<std::int32_t>(size);
}

}  // namespace

std::u16string to_utf16(std::string_view utf8) {
  std::u16string result(utf8.size(), u'\0');
  std::int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8WithSub(result.data(), icu_length(result.size()), &length, utf8.data(), icu_length(utf8.size()),
                       replacement, nullptr, &status);
  result.resize(static_cast<std::size_t>(length));
  return result;
}

std::string to_utf8(std::u16string_view utf16) {
  std::string result(utf16.size() * 3, '\0');
  std::int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t source_length = icu_length(utf16.size());
  u_strToUTF8WithSub(result.data(), static_cast<std::int32_t>(result.size()), &length, utf16.data(), source_length,
                     replacement, nullptr, &status);
  result.resize(static_cast<std::size_t>(length));
  return result;
}

bool is_valid_utf8(std::string_view text) noexcept {
  for (std::size_t i = 0; i < text.size();) {
    const Utf8Step step = utf8_step(text, i);
    if (!step.valid) return false;
    i += step.length_bytes;
  }
  return true;
}

std::size_t utf8_length_chars(std::string_view text) noexcept {
  std::size_t count = 0;
  for (const char c : text) {
    count += is_continuation(c) ? 0U : 1U;
  }
  return count;
}

std::string_view utf8_cut(std::string_view text, std::size_t max_bytes) noexcept {
  if (text.size() <= max_bytes) return text;
  // A character has at most three continuation bytes; more of them are no text, and then any place is as good.
  std::size_t cut = max_bytes;
  while (cut > 0 && max_bytes - cut < 4 && is_continuation(text[cut])) {
    --cut;
  }
  return text.substr(0, is_continuation(text[cut]) ? max_bytes : cut);
}

std::string_view utf8_cut_chars(std::string_view text, std::size_t max_chars) noexcept {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!is_continuation(text[i]) && count++ == max_chars) return text.substr(0, i);
  }
  return text;
}

}  // namespace platform
