/// The system's date types, and the conversions between them.
///
/// Part of the platform layer. A SYSTEMTIME is a date by fields, a FILETIME counts 100 nanoseconds since 1601-01-01, a
/// variant time is a double that counts days since 1899-12-30 with the time of day as fraction. The fraction always
/// counts forward: -1.25 is 1899-12-29 06:00.
#pragma once

#include <cstdint>

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

/// A date and time by fields; day of week 0 is Sunday.
struct _SYSTEMTIME {
  /// The fields as they are on a calendar; months from 1, days of the week from 0 for Sunday.
  WORD wYear;
  WORD wMonth;
  WORD wDayOfWeek;
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
};
/// The documented name.
using SYSTEMTIME = _SYSTEMTIME;

/// 100 nanoseconds since 1601-01-01, in two halves.
struct FILETIME {
  /// The two halves of the number.
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
};

/// A variant time.
using DATE = double;

/// Splits a file time into fields.
/// Fails:  FALSE with last error 87, nothing written, when the number is negative as a signed one.
SPCBASE_API BOOL FileTimeToSystemTime(const FILETIME* file_time, SYSTEMTIME* system_time) noexcept;

/// Makes a file time of fields; the day of week is not looked at.
/// Fails:  FALSE with last error 87, nothing written, for a year outside 1601 to 30827 or a field that no date has.
SPCBASE_API BOOL SystemTimeToFileTime(const SYSTEMTIME* system_time, FILETIME* file_time) noexcept;

/// Makes a variant time of fields; day of week and milliseconds are not looked at.
/// Days are mended: day 0 is the last of the month before, a day up to 31 that the month lacks runs on into the next.
/// Hours, minutes and seconds beyond their range carry. Years 0 to 49 mean 2000 to 2049, 50 to 99 mean 1950 to 1999.
/// Returns 1, or 0 with nothing written for a month outside 1 to 12, a day above 31, a year above 9999.
SPCBASE_API int SystemTimeToVariantTime(const SYSTEMTIME* system_time, double* variant_time) noexcept;

/// Splits a variant time into fields, rounded to the nearest second; milliseconds are 0.
/// Returns 1, or 0 with nothing written for a number outside the years 100 to 9999 or no number at all.
SPCBASE_API int VariantTimeToSystemTime(double variant_time, SYSTEMTIME* system_time) noexcept;

/// The present in UTC, to the millisecond.
SPCBASE_API void GetSystemTime(SYSTEMTIME* system_time) noexcept;
/// The present in the current zone, to the millisecond.
SPCBASE_API void GetLocalTime(SYSTEMTIME* system_time) noexcept;
/// The present in UTC.
SPCBASE_API void GetSystemTimeAsFileTime(FILETIME* file_time) noexcept;
