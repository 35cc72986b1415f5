/// Dates as texts, by the habits of a locale: reading and writing.
///
/// Part of the platform layer. The locales 0, 0x400 and 0x800 are the user's, 0x7F is the invariant one.
///
/// The user's locale is the one that the program chose for dates: `setlocale(LC_TIME, ...)` or `setlocale(LC_ALL, ...)`
/// for the process, `uselocale` for a thread. A program that chose none has the locale "C", and dates in US English;
/// `setlocale(LC_ALL, "")` takes over what the user's environment says. Numbers follow the same choice for LC_NUMERIC.
#pragma once

#include <string>
#include <string_view>

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

/// Only the time of day.
inline constexpr DWORD VAR_TIMEVALUEONLY = 1;
/// Only the date.
inline constexpr DWORD VAR_DATEVALUEONLY = 2;
/// The user's own settings are not looked at: there are none here, so the flag changes nothing.
inline constexpr DWORD LOCALE_NOUSEROVERRIDE = 0x80000000U;

namespace platform {

/// Reads a date, a time of day or both from a UTF-8 text.
///
/// Understood are numbers parted by "/", "-", "," or blanks in the locale's order, in another order when only that
/// makes a date, or year first; months by their English name or the locale's, in full or by three letters; times parted
/// by ":" or "." with or without AM and PM. Two-digit years 00 to 49 are 2000 to 2049, 50 to 99 are 1950 to 1999; a
/// date without a year lies in the current one.
/// Flags:  VAR_TIMEVALUEONLY and VAR_DATEVALUEONLY drop the other half of the result.
/// Returns S_OK, or DISP_E_TYPEMISMATCH with `date` untouched when the text is no date.
SPCBASE_API HRESULT date_from_text(std::string_view utf8, LCID locale, DWORD flags, double& date);

/// Writes a date as UTF-8, rounded to the second: "3/15/2024 2:05:09 PM" in US English.
/// Without flags a time of midnight is left out, and so is the date 1899-12-30 (day 0); both at once are written as a
/// time. Years are written in full, before AM and PM stands a plain blank.
/// Returns S_OK, or E_INVALIDARG with `text` untouched for a number that is no date.
SPCBASE_API HRESULT text_from_date(double date, LCID locale, DWORD flags, std::string& text);

}  // namespace platform
