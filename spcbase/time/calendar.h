/// Calendar arithmetic on plain numbers, the order of date types, and conversion between local time and UTC.
///
/// Part of time. Nothing here touches the database or keeps state. Moments in memory are local, timestamps in tables
/// are UTC, but for `CSSAMP.CTIME`, which is local.
///
///     long day = DateDMYToJulian(2024, 3, 15);            // year first, in spite of the name
///     double noon = TimeHMSToNumber(12, 0, 0);            // 0.5
///     COleDateTime moment = COleDateTime::GetCurrentTime();
///     to_utc(moment);
#pragma once

#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/datetime/system_time.h"
#include "spcbase/platform/datetime/timestamp.h"
#include "spcbase/platform/system/export.h"

/// One month of the table that all calendar code shares. The names are there for readers; only the days are used.
struct MonthInfo {
  char short_name[4];  ///< in English
  int days_common;     ///< days in a year of 365 and of 366 days
  int days_leap;
  char long_name[16];  ///< in English
};

/// The twelve months, January first. For the library's own use: not exported.
extern const MonthInfo month_table[12];

/// Divisible by 4 and not by 100, or by 400.
constexpr bool is_leap_year(int year) noexcept { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

/// A serial day number; 1900-01-01 is 1. Year, month, day in this order.
/// Kept:    the numbers count a 29 February 1900 that the calendar does not have, as spreadsheets do: it is 60, and
///          1900-03-01 is 61. Month and day are not checked.
/// Returns  0 for a year below 1900.
SPCBASE_API long DateDMYToJulian(int year, int month, int day);

/// The length of a month, or -1 when the month is outside 1 to 12. The year is not checked.
SPCBASE_API int GetNDayInMonth(int year, int month);

/// A clock time as a fraction of a day, without a check of its range: 24:00:00 is 1.0.
SPCBASE_API double TimeHMSToNumber(int hour, int minute, int second);

/// Order by fields, from year to second. A moment that is not valid comes before every valid one.
SPCBASE_API bool less_than_dt(const COleDateTime& left, const COleDateTime& right);

/// Equality of the six fields. Two moments that are not valid are equal, whatever their status. For the library's own
/// use: not exported.
bool equal_dt(const COleDateTime& left, const COleDateTime& right);

/// Order and equality by all seven fields, the fraction included.
SPCBASE_API bool operator<(const tagTIMESTAMP_STRUCT& left, const tagTIMESTAMP_STRUCT& right);
SPCBASE_API bool operator==(const tagTIMESTAMP_STRUCT& left, const tagTIMESTAMP_STRUCT& right);

/// Converts between local time of the current zone and UTC, in place. The date converted selects the zone's rule.
/// Returns false, and leaves the fields alone, when they cannot be converted.
SPCBASE_API bool to_utc(_SYSTEMTIME& moment);
SPCBASE_API bool to_local(_SYSTEMTIME& moment);

/// The same for a moment of whole seconds.
/// Kept:    a conversion that the platform refuses leaves the value as it is and still gives true.
/// Returns false, and leaves the moment alone, when it is not valid or cannot be split into fields.
SPCBASE_API bool to_utc(COleDateTime& moment);
SPCBASE_API bool to_local(COleDateTime& moment);
