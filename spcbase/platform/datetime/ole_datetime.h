/// COleDateTime and COleDateTimeSpan: variant times with a status, and the time between two of them.
///
/// Part of the platform layer.
/// Differs: only the operations that the tree uses, no serialisation. The strftime form of `Format` follows the C
/// library.
#pragma once

#include <ctime>

#include "spcbase/platform/datetime/date_text.h"
#include "spcbase/platform/datetime/system_time.h"
#include "spcbase/platform/datetime/zone.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"
#include "spcbase/platform/text/cstring.h"

/// A length of time in days.
class SPCBASE_API COleDateTimeSpan {
 public:
  /// Whether it is a length at all.
  enum DateTimeSpanStatus { valid = 0, invalid = 1, null = 2 };

  /// No time, valid.
  COleDateTimeSpan() noexcept = default;
  /// A number of days.
  COleDateTimeSpan(double days) noexcept : m_span(days) { check_range(); }
  /// The sum of the parts.
  COleDateTimeSpan(long days, int hours, int minutes, int seconds) noexcept {
    SetDateTimeSpan(days, hours, minutes, seconds);
  }

  /// Sets the length to the sum of the parts.
  void SetDateTimeSpan(long days, int hours, int minutes, int seconds) noexcept;
  /// The status; setting it leaves the value alone.
  DateTimeSpanStatus GetStatus() const noexcept { return m_status; }
  void SetStatus(DateTimeSpanStatus status) noexcept { m_status = status; }

  /// The whole length in one unit, with its fraction cut off after a rounding to half a second.
  double GetTotalDays() const noexcept;
  double GetTotalHours() const noexcept;
  double GetTotalMinutes() const noexcept;
  double GetTotalSeconds() const noexcept;
  /// The parts: days, then hours below 24, minutes and seconds below 60; negative in a negative span.
  long GetDays() const noexcept;
  long GetHours() const noexcept;
  long GetMinutes() const noexcept;
  long GetSeconds() const noexcept;

  /// The length in days.
  operator double() const noexcept { return m_span; }

  /// Sums and differences; invalid unless both are valid.
  COleDateTimeSpan operator+(const COleDateTimeSpan& other) const noexcept;
  COleDateTimeSpan operator-(const COleDateTimeSpan& other) const noexcept;
  COleDateTimeSpan& operator+=(const COleDateTimeSpan& other) noexcept { return *this = *this + other; }
  COleDateTimeSpan& operator-=(const COleDateTimeSpan& other) noexcept { return *this = *this - other; }
  COleDateTimeSpan operator-() const noexcept { return COleDateTimeSpan(-m_span); }

  /// Equal lengths of equal status.
  bool operator==(const COleDateTimeSpan& other) const noexcept {
    return m_status == other.m_status && m_span == other.m_span;
  }
  bool operator!=(const COleDateTimeSpan& other) const noexcept { return !(*this == other); }
  /// Order by length, whatever the status.
  bool operator<(const COleDateTimeSpan& other) const noexcept { return m_span < other.m_span; }
  bool operator>(const COleDateTimeSpan& other) const noexcept { return m_span > other.m_span; }
  bool operator<=(const COleDateTimeSpan& other) const noexcept { return m_span <= other.m_span; }
  bool operator>=(const COleDateTimeSpan& other) const noexcept { return m_span >= other.m_span; }

  /// The length in days.
  double m_span = 0;
  DateTimeSpanStatus m_status = valid;  ///< what `GetStatus` gives

 private:
  void check_range() noexcept;
};

/// A date and time from the year 100 to 9999, to the second, with a status.
/// Null:   status `null` is "no date", `invalid` is "not a date"; every field reads as -1 then.
class SPCBASE_API COleDateTime {
 public:
  /// Whether it is a moment at all.
  enum DateTimeStatus { error = -1, valid = 0, invalid = 1, null = 2 };

  /// The present second in the current zone; invalid when `_localtime64_s` refuses it.
  static COleDateTime GetCurrentTime() noexcept;

  /// 1899-12-30 00:00, valid.
  COleDateTime() noexcept = default;
  /// A variant time, valid without a check.
  COleDateTime(double date) noexcept : m_dt(date) {}
  /// Seconds since 1970 UTC, in local time; invalid for seconds that `_localtime64_s` refuses.
  COleDateTime(__time64_t seconds) noexcept { *this = seconds; }
  /// Fields; invalid when they are no date.
  COleDateTime(const SYSTEMTIME& fields) noexcept { *this = fields; }
  /// A file time, which is UTC, in local time.
  COleDateTime(const FILETIME& file_time) noexcept { *this = file_time; }
  /// Fields; invalid when they are no date.
  COleDateTime(int year, int month, int day, int hour, int minute, int second) noexcept {
    SetDateTime(year, month, day, hour, minute, second);
  }

  /// As the constructors.
  COleDateTime& operator=(double date) noexcept;
  COleDateTime& operator=(__time64_t seconds) noexcept;
  COleDateTime& operator=(const SYSTEMTIME& fields) noexcept;
  COleDateTime& operator=(const FILETIME& file_time) noexcept;

  /// The status; setting it leaves the value alone.
  DateTimeStatus GetStatus() const noexcept { return m_status; }
  void SetStatus(DateTimeStatus status) noexcept { m_status = status; }

  /// Sets date and time by fields. Returns 0, or 1 when they are no date; the status is the same number then.
  int SetDateTime(int year, int month, int day, int hour, int minute, int second) noexcept;
  /// Sets a date at midnight.
  int SetDate(int year, int month, int day) noexcept { return SetDateTime(year, month, day, 0, 0, 0); }
  /// Sets a time of day on day 0, 1899-12-30.
  int SetTime(int hour, int minute, int second) noexcept { return SetDateTime(1899, 12, 30, hour, minute, second); }

  /// The fields, or -1 when the value is not valid or cannot be split.
  int GetYear() const noexcept;
  int GetMonth() const noexcept;
  int GetDay() const noexcept;
  int GetHour() const noexcept;
  int GetMinute() const noexcept;
  int GetSecond() const noexcept;
  /// 1 is Sunday.
  int GetDayOfWeek() const noexcept;
  /// 1 is the first of January.
  int GetDayOfYear() const noexcept;
  /// All fields at once; false, and nothing written, when the value is not valid or cannot be split.
  bool GetAsSystemTime(SYSTEMTIME& fields) const noexcept;

  /// Sets the date from a text (see date_text.h). False leaves the status invalid and the number 0.
  bool ParseDateTime(const char* text, DWORD flags = 0, LCID locale = 0x400);
  /// The date as the locale writes it. Empty for null; "Invalid DateTime" for one that is not valid.
  CString Format(DWORD flags = 0, LCID locale = 0x400) const;
  /// The date by the rules of `strftime`. Otherwise like the form above.
  CString Format(const char* format) const;

  /// The variant time.
  operator double() const noexcept { return m_dt; }

  /// Adding and subtracting count days evenly through day 0. A null operand gives null, an invalid one invalid; a
  /// result outside the years 100 to 9999 is invalid.
  COleDateTime operator+(const COleDateTimeSpan& span) const noexcept;
  COleDateTime operator-(const COleDateTimeSpan& span) const noexcept;
  COleDateTime& operator+=(const COleDateTimeSpan& span) noexcept { return *this = *this + span; }
  COleDateTime& operator-=(const COleDateTimeSpan& span) noexcept { return *this = *this - span; }
  COleDateTimeSpan operator-(const COleDateTime& other) const noexcept;

  /// Equal numbers of equal status.
  bool operator==(const COleDateTime& other) const noexcept { return m_status == other.m_status && m_dt == other.m_dt; }
  bool operator!=(const COleDateTime& other) const noexcept { return !(*this == other); }
  /// Order in time; false unless both are valid.
  bool operator<(const COleDateTime& other) const noexcept;
  bool operator>(const COleDateTime& other) const noexcept { return other < *this; }
  bool operator<=(const COleDateTime& other) const noexcept;
  bool operator>=(const COleDateTime& other) const noexcept { return other <= *this; }

  /// The variant time.
  double m_dt = 0;
  DateTimeStatus m_status = valid;  ///< what `GetStatus` gives

 private:
  void check_range() noexcept;
};
