#include "spcbase/platform/datetime/system_time.h"

#include <chrono>
#include <cmath>

#include "spcbase/platform/datetime/calendar.h"
#include "spcbase/platform/datetime/clock.h"
#include "spcbase/platform/datetime/zone.h"
#include "spcbase/platform/system/system_error.h"

namespace {

using platform::days_from_civil;

constexpr std::int64_t ticks_per_millisecond = 10000;
constexpr std::int64_t ticks_per_day = 86400000 * ticks_per_millisecond;
constexpr std::int64_t first_variant_day = -657434;
constexpr std::int64_t last_variant_day = 2958465;

WORD word(std::int64_t value) { return static_cast<WORD>(value); }

BOOL refuse() {
  SetLastError(ERROR_INVALID_PARAMETER);
  return FALSE;
}

/// Sets year, month, day and day of week.
void put_date(SYSTEMTIME& fields, std::int64_t days) {
  const platform::CivilDate date = platform::civil_from_days(days);
  fields.wYear = word(date.year);
  fields.wMonth = word(date.month);
  fields.wDay = word(date.day);
  fields.wDayOfWeek = word(platform::weekday_from_days(days));
}

bool is_time(const SYSTEMTIME& fields) {
  return fields.wHour < 24 && fields.wMinute < 60 && fields.wSecond < 60 && fields.wMilliseconds < 1000;
}

bool is_date(const SYSTEMTIME& fields) {
  return fields.wYear >= 1601 && fields.wYear <= 30827 && fields.wMonth >= 1 && fields.wMonth <= 12 &&
         fields.wDay >= 1 && fields.wDay <= platform::days_in_month(fields.wYear, fields.wMonth);
}

}  // namespace

BOOL FileTimeToSystemTime(const FILETIME* file_time, SYSTEMTIME* system_time) noexcept {
  constexpr DWORD sign_bit = 0x80000000U;
  if (!file_time || !system_time || (file_time->dwHighDateTime & sign_bit) != 0) return refuse();
  const std::int64_t ticks =
      static_cast<std::int64_t>(file_time->dwHighDateTime) << 32 | static_cast<std::int64_t>(file_time->dwLowDateTime);
  const std::int64_t milliseconds = ticks % ticks_per_day / ticks_per_millisecond;
  put_date(*system_time, ticks / ticks_per_day + platform::file_time_epoch_days);
  system_time->wHour = word(milliseconds / 3600000);
  system_time->wMinute = word(milliseconds / 60000 % 60);
  system_time->wSecond = word(milliseconds / 1000 % 60);
  system_time->wMilliseconds = word(milliseconds % 1000);
  return TRUE;
}

BOOL SystemTimeToFileTime(const SYSTEMTIME* system_time, FILETIME* file_time) noexcept {
  if (!system_time || !file_time || !is_date(*system_time) || !is_time(*system_time)) return refuse();
  const std::int64_t days =
      days_from_civil(system_time->wYear, system_time->wMonth, system_time->wDay) - platform::file_time_epoch_days;
  const std::int64_t seconds = (system_time->wHour * 60 + system_time->wMinute) * 60 + system_time->wSecond;
  const std::int64_t ticks =
      days * ticks_per_day + (seconds * 1000 + system_time->wMilliseconds) * ticks_per_millisecond;
  file_time->dwLowDateTime = static_cast<DWORD>(ticks & 0xFFFFFFFF);
  file_time->dwHighDateTime = static_cast<DWORD>(ticks >> 32);
  return TRUE;
}

int SystemTimeToVariantTime(const SYSTEMTIME* system_time, double* variant_time) noexcept {
  if (!system_time || !variant_time) return 0;
  const std::int64_t year = platform::widen_year(system_time->wYear);
  if (year > 9999 || system_time->wMonth < 1 || system_time->wMonth > 12 || system_time->wDay > 31) return 0;
  const std::int64_t seconds =
      (static_cast<std::int64_t>(system_time->wHour) * 60 + system_time->wMinute) * 60 + system_time->wSecond;
  const std::int64_t days =
      days_from_civil(year, system_time->wMonth, system_time->wDay) - platform::variant_epoch_days + seconds / 86400;
  if (days < first_variant_day || days > last_variant_day) return 0;
  const std::int64_t in_day = seconds % 86400;
  // One field after the other, away from zero: the last bit of the result depends on it.
  const double direction = days < 0 ? -1.0 : 1.0;
  double value = static_cast<double>(days);
  value += direction * static_cast<double>(in_day / 3600) / 24.0;
  value += direction * static_cast<double>(in_day / 60 % 60) / 1440.0;
  value += direction * static_cast<double>(in_day % 60) / 86400.0;
  *variant_time = value;
  return 1;
}

int VariantTimeToSystemTime(double variant_time, SYSTEMTIME* system_time) noexcept {
  if (!system_time || !(variant_time > first_variant_day - 1) || !(variant_time < last_variant_day + 1)) return 0;
  const double whole = std::trunc(variant_time);
  // A half second that lost its last bits to the double's precision still counts as one.
  constexpr double slack_seconds = 1e-6;
  auto days = static_cast<std::int64_t>(whole);
  auto seconds = static_cast<std::int64_t>(std::floor(std::fabs(variant_time - whole) * 86400.0 + 0.5 + slack_seconds));
  if (seconds == 86400) {
    seconds = 0;
    ++days;
  }
  if (days > last_variant_day) return 0;
  put_date(*system_time, days + platform::variant_epoch_days);
  system_time->wHour = word(seconds / 3600);
  system_time->wMinute = word(seconds / 60 % 60);
  system_time->wSecond = word(seconds % 60);
  system_time->wMilliseconds = 0;
  return 1;
}

void GetSystemTimeAsFileTime(FILETIME* file_time) noexcept {
  using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10000000>>;
  const std::int64_t since_1970 = std::chrono::floor<Ticks>(platform::now().time_since_epoch()).count();
  const std::int64_t ticks = since_1970 - platform::file_time_epoch_days * ticks_per_day;
  file_time->dwLowDateTime = static_cast<DWORD>(ticks & 0xFFFFFFFF);
  file_time->dwHighDateTime = static_cast<DWORD>(ticks >> 32);
}

void GetSystemTime(SYSTEMTIME* system_time) noexcept {
  FILETIME file_time;
  GetSystemTimeAsFileTime(&file_time);
  FileTimeToSystemTime(&file_time, system_time);
}

void GetLocalTime(SYSTEMTIME* system_time) noexcept {
  SYSTEMTIME utc;
  GetSystemTime(&utc);
  SystemTimeToTzSpecificLocalTime(nullptr, &utc, system_time);
}
