/// What depends on language: letter case, order of texts, and the names of locales.
///
/// Part of the platform layer. Case follows Unicode, character by character, so a text never changes its number of
/// characters
/// ("ß" stays "ß" in upper case). Nothing here looks at the process's locale or environment.
#pragma once

#include <string>
#include <string_view>

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

namespace platform {

/// Upper case of a UTF-8 text; ill-formed bytes stay as they are.
SPCBASE_API std::string to_upper(std::string_view text);
/// Lower case of a UTF-8 text; ill-formed bytes stay as they are.
SPCBASE_API std::string to_lower(std::string_view text);

/// Compares two UTF-8 texts character by character without regard to case, in the order of the lower-case characters.
/// Returns -1, 0 or 1.
SPCBASE_API int compare_no_case(std::string_view a, std::string_view b) noexcept;

/// Compares two UTF-8 texts in dictionary order (the root order of the Unicode collation algorithm).
/// With `ignore_case`, texts that differ only in case are equal. Returns -1, 0 or 1.
SPCBASE_API int collate(std::string_view a, std::string_view b, bool ignore_case);

/// Whether a code point is white space.
SPCBASE_API bool is_space(char32_t c) noexcept;
/// Whether a code point is a letter of any language.
SPCBASE_API bool is_alpha(char32_t c) noexcept;
/// Whether a code point is a decimal digit of any language.
SPCBASE_API bool is_digit(char32_t c) noexcept;

/// The locale id that a call means: the neutral and default ones (0, 0x400, 0x800) are US English here; sort order and
/// reserved bits fall away.
SPCBASE_API LCID resolve_locale(LCID locale) noexcept;

/// The name of a locale id as the locale data know it ("en_US", "de_DE"); an unknown one gives "" (the root locale), as
/// does 0x7F, the invariant locale.
SPCBASE_API std::string locale_name(LCID locale);

}  // namespace platform
