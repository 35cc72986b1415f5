/// CTime and CTimeSpan: seconds since 1970-01-01 UTC, read in local time, and the time between two of them.
///
/// Part of the platform layer.
/// Differs: only the operations that the tree uses. `Format` follows the C library's `strftime`.
#pragma once

#include <ctime>

#include "spcbase/platform/datetime/system_time.h"
#include "spcbase/platform/datetime/zone.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"
#include "spcbase/platform/text/cstring.h"

/// A length of time in seconds.
class SPCBASE_API CTimeSpan {
 public:
  CTimeSpan() noexcept = default;
  /// A number of seconds, or the sum of the parts.
  CTimeSpan(__time64_t seconds) noexcept : seconds_(seconds) {}
  CTimeSpan(long days, int hours, int minutes, int seconds) noexcept
      : seconds_(((days * 24 + hours) * 60 + minutes) * 60 + seconds) {}

  /// The whole length in one unit, cut off towards zero.
  long GetDays() const noexcept { return seconds_ / 86400; }
  long GetTotalHours() const noexcept { return seconds_ / 3600; }
  long GetTotalMinutes() const noexcept { return seconds_ / 60; }
  long GetTotalSeconds() const noexcept { return seconds_; }
  /// The parts below a day, an hour, a minute.
  int GetHours() const noexcept { return static_cast<int>(seconds_ / 3600 % 24); }
  int GetMinutes() const noexcept { return static_cast<int>(seconds_ / 60 % 60); }
  int GetSeconds() const noexcept { return static_cast<int>(seconds_ % 60); }
  /// The whole length in seconds.
  __time64_t GetTimeSpan() const noexcept { return seconds_; }

  /// Sums and differences.
  CTimeSpan operator+(CTimeSpan other) const noexcept { return seconds_ + other.seconds_; }
  CTimeSpan operator-(CTimeSpan other) const noexcept { return seconds_ - other.seconds_; }
  CTimeSpan& operator+=(CTimeSpan other) noexcept { return *this = *this + other; }
  CTimeSpan& operator-=(CTimeSpan other) noexcept { return *this = *this - other; }
  auto operator<=>(const CTimeSpan&) const noexcept = default;

 private:
  __time64_t seconds_ = 0;
};

/// A moment, to the second.
class SPCBASE_API CTime {
 public:
  /// The present.
  static CTime GetCurrentTime() noexcept;

  /// Second 0.
  CTime() noexcept = default;
  /// Seconds since 1970-01-01 00:00 UTC.
  CTime(__time64_t seconds) noexcept : seconds_(seconds) {}
  /// Local fields; `daylight_flag` above 0 is daylight time, 0 standard time, -1 by the zone's rule.
  /// Fails:  E_INVALIDARG by `AtlThrow` for a year below 1900, a field outside its range, or fields that `_mktime64`
  /// refuses.
  CTime(int year, int month, int day, int hour, int minute, int second, int daylight_flag = -1);
  /// Local fields; a year below 1900 gives second 0.
  CTime(const SYSTEMTIME& fields, int daylight_flag = -1);
  /// A file time, which is UTC, cut to the second.
  /// Fails:  E_INVALIDARG by `AtlThrow` when it is no date.
  CTime(const FILETIME& file_time, int daylight_flag = -1);

  /// Seconds since 1970-01-01 00:00 UTC.
  __time64_t GetTime() const noexcept { return seconds_; }
  /// The fields in local time; 0 when the moment has none.
  int GetYear() const noexcept;
  int GetMonth() const noexcept;
  int GetDay() const noexcept;
  int GetHour() const noexcept;
  int GetMinute() const noexcept;
  int GetSecond() const noexcept;
  /// 1 is Sunday.
  int GetDayOfWeek() const noexcept;

  /// All fields in local time (or UTC), written to `fields` and returned; null when the moment has none.
  /// Fails:  E_INVALIDARG by `AtlThrow` for a null pointer.
  std::tm* GetLocalTm(std::tm* fields) const;
  std::tm* GetGmtTm(std::tm* fields) const;
  /// All fields in local time; false, and nothing written, when the moment has none.
  bool GetAsSystemTime(SYSTEMTIME& fields) const noexcept;

  /// The moment in local time by the rules of `strftime`; empty when it has no fields or the format is null.
  CString Format(const char* format) const;
  /// The same in UTC.
  CString FormatGmt(const char* format) const;

  /// A moment moved by a length, and the length between two moments.
  CTime operator+(CTimeSpan span) const noexcept { return seconds_ + span.GetTimeSpan(); }
  CTime operator-(CTimeSpan span) const noexcept { return seconds_ - span.GetTimeSpan(); }
  CTimeSpan operator-(CTime other) const noexcept { return seconds_ - other.seconds_; }
  CTime& operator+=(CTimeSpan span) noexcept { return *this = *this + span; }
  CTime& operator-=(CTimeSpan span) noexcept { return *this = *this - span; }
  auto operator<=>(const CTime&) const noexcept = default;

 private:
  __time64_t seconds_ = 0;
};
