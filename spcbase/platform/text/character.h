/// Single characters of a text: stepping from one to the next, and what kind they are.
///
/// Part of the platform layer. Texts are UTF-8, so a character has one to four bytes. A byte that is no part of a
/// well-formed character is a character of its own and belongs to no class. No locale changes an answer.
///
/// Differs: the number of a multi-byte character is its code point.
#pragma once

#include "spcbase/platform/system/export.h"

/// The start of the next character of a zero-terminated text; at its end, the text itself.
/// Null:   must not be null.
SPCBASE_API char* CharNextA(const char* text) noexcept;

/// The number of the character that a text starts with: its code point, 0 at the end of the text. An ill-formed byte
/// gives 0xFFFFFF00 and the byte, which is no code point.
SPCBASE_API unsigned int _mbsnextc(const unsigned char* text) noexcept;

/// Whether a character parts words: the six white-space characters of ASCII and the other spaces and line ends of
/// Unicode, but for those that forbid a break. Not 0 for yes.
SPCBASE_API int _ismbcspace(unsigned int c) noexcept;

/// Whether a character can be shown, a space among them. Not 0 for yes. Controls cannot, nor can line and paragraph
/// separators, format characters, code points without a meaning of their own and private ones; the two joiners, which
/// some languages spell with, can.
SPCBASE_API int _ismbcprint(unsigned int c) noexcept;

namespace platform {

/// `isspace` and `isdigit` for a byte of a UTF-8 text: a part of a multi-byte character is neither, in every locale.
constexpr bool is_space_byte(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool is_digit_byte(char c) noexcept { return c >= '0' && c <= '9'; }

}  // namespace platform
