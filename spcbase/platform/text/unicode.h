/// Conversion between the two text forms, UTF-8 and UTF-16, and counting and cutting by characters.
///
/// Part of the platform layer. The process code page is UTF-8: every narrow text is UTF-8. A character is a code point.
/// Valid text goes both ways without loss. What is not valid becomes U+FFFD, one for each ill-formed sequence (an
/// unpaired surrogate, in UTF-16); nothing here fails but by lack of memory.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "spcbase/platform/system/export.h"

namespace platform {

/// UTF-8 to UTF-16. Zeros inside the text are kept.
SPCBASE_API std::u16string to_utf16(std::string_view utf8);

/// UTF-16 to UTF-8. Zeros inside the text are kept.
SPCBASE_API std::string to_utf8(std::u16string_view utf16);

/// Whether a text is well-formed UTF-8.
SPCBASE_API bool is_valid_utf8(std::string_view text) noexcept;

/// The number of characters of a UTF-8 text. An ill-formed byte that continues nothing adds none.
SPCBASE_API std::size_t utf8_length_chars(std::string_view text) noexcept;

/// The longest beginning of a UTF-8 text that has at most `max_bytes` bytes and does not split a character.
SPCBASE_API std::string_view utf8_cut(std::string_view text, std::size_t max_bytes) noexcept;

/// The longest beginning of a UTF-8 text that has at most `max_chars` characters.
SPCBASE_API std::string_view utf8_cut_chars(std::string_view text, std::size_t max_chars) noexcept;

}  // namespace platform
