/// The characters that part a number's digits in the current locale.
///
/// Part of the platform layer. The current locale is the one that the process chose with `setlocale`, or the calling
/// thread with `uselocale`; a program that chose none has the locale "C". It is only asked here, never set.
/// Threads: safe from several at once, as long as none changes the locale.
#pragma once

#include <string>

namespace platform {

/// The two marks as code points.
struct NumberMarks {
  /// Before the fraction: a point in English, a comma in German.
  char32_t decimal = U'.';
  /// Between groups of digits: a comma in English, a point in German; 0 where there is none.
  char32_t group = U',';

  /// Whether a character is the group mark. A locale that groups by a space of some kind is content with each of them,
  /// and one that groups by an apostrophe with both forms: keyboards have one only.
  bool is_group(char32_t c) const noexcept;
};

/// The marks of US English.
inline constexpr NumberMarks english_marks{};

/// The marks of the current locale; "C" has no group mark.
NumberMarks number_marks() noexcept;

/// The decimal mark of the current locale as `printf` writes it and `strtod` reads it: the first character of what
/// `localeconv` tells, in the locale's own encoding.
std::string decimal_mark();

}  // namespace platform
