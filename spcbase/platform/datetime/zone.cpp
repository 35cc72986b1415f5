#include "spcbase/platform/datetime/zone.h"

#include <cerrno>
#include <initializer_list>

#include "spcbase/platform/datetime/calendar.h"
#include "spcbase/platform/datetime/zone_rule.h"
#include "spcbase/platform/system/system_error.h"

namespace {

constexpr std::int64_t seconds_per_day = 86400;
constexpr std::int64_t ticks_per_second = 10000000;
/// 3001-01-01 07:59:59 UTC: the last moment that every zone still calls a documented one.
constexpr std::int64_t last_second = 32535244799;

std::int64_t floor_div(std::int64_t a, std::int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

/// Fields to seconds and the ticks below them; false when they are no date.
bool split(const SYSTEMTIME* fields, std::int64_t& seconds, std::int64_t& ticks) {
  FILETIME file_time;
  if (!SystemTimeToFileTime(fields, &file_time)) return false;
  const std::int64_t all =
      static_cast<std::int64_t>(file_time.dwHighDateTime) << 32 | static_cast<std::int64_t>(file_time.dwLowDateTime);
  ticks = all % ticks_per_second;
  seconds = all / ticks_per_second + platform::file_time_epoch_days * seconds_per_day;
  return true;
}

/// The way back; false when no date of the years 1601 to 30827 comes out.
bool join(std::int64_t seconds, std::int64_t ticks, SYSTEMTIME* fields) {
  const std::int64_t first = platform::file_time_epoch_days * seconds_per_day;
  const std::int64_t end = platform::days_from_civil(30828, 1, 1) * seconds_per_day;
  if (seconds < first || seconds >= end) return false;
  const std::int64_t all = (seconds - first) * ticks_per_second + ticks;
  const FILETIME file_time{static_cast<DWORD>(all & 0xFFFFFFFF), static_cast<DWORD>(all >> 32)};
  return FileTimeToSystemTime(&file_time, fields) != FALSE;
}

BOOL refuse() {
  SetLastError(ERROR_INVALID_PARAMETER);
  return FALSE;
}

void put_fields(std::tm& fields, std::int64_t local_seconds, bool is_daylight) {
  const std::int64_t days = floor_div(local_seconds, seconds_per_day);
  const auto in_day = static_cast<int>(local_seconds - days * seconds_per_day);
  const platform::CivilDate date = platform::civil_from_days(days);
  fields = {};
  fields.tm_year = static_cast<int>(date.year - 1900);
  fields.tm_mon = date.month - 1;
  fields.tm_mday = date.day;
  fields.tm_hour = in_day / 3600;
  fields.tm_min = in_day / 60 % 60;
  fields.tm_sec = in_day % 60;
  fields.tm_wday = platform::weekday_from_days(days);
  fields.tm_yday = static_cast<int>(days - platform::days_from_civil(date.year, 1, 1));
  fields.tm_isdst = is_daylight ? 1 : 0;
}

/// Local seconds of fields that may lie beyond their ranges.
std::int64_t local_seconds_of(const std::tm& fields) {
  const std::int64_t months = static_cast<std::int64_t>(fields.tm_year) * 12 + fields.tm_mon;
  const std::int64_t year = floor_div(months, 12);
  const int month = static_cast<int>(months - year * 12) + 1;
  const std::int64_t days = platform::days_from_civil(year + 1900, month, fields.tm_mday);
  return ((days * 24 + fields.tm_hour) * 60 + fields.tm_min) * 60 + fields.tm_sec;
}

/// Refuses a moment outside the documented range, with every field -1.
int refuse_fields(std::tm* fields) {
  if (fields) {
    *fields = {};
    for (int* field : {&fields->tm_sec, &fields->tm_min, &fields->tm_hour, &fields->tm_mday, &fields->tm_mon,
                       &fields->tm_year, &fields->tm_wday, &fields->tm_yday, &fields->tm_isdst}) {
      *field = -1;
    }
  }
  errno = EINVAL;
  return EINVAL;
}

bool in_range(const __time64_t* seconds) { return seconds && *seconds >= 0 && *seconds <= last_second; }

}  // namespace

BOOL TzSpecificLocalTimeToSystemTime(const void* zone, const SYSTEMTIME* local, SYSTEMTIME* utc) noexcept {
  std::int64_t seconds = 0;
  std::int64_t ticks = 0;
  if (zone || !local || !utc || !split(local, seconds, ticks)) return refuse();
  // A skipped time is read with the offset after the change and a repeated one with that before it: daylight time both
  // times, which is the earlier moment of the two.
  const platform::LocalReadings readings = platform::readings_of(seconds);
  const std::int64_t chosen =
      readings.before_change < readings.after_change ? readings.before_change : readings.after_change;
  return join(chosen, ticks, utc) ? TRUE : refuse();
}

BOOL SystemTimeToTzSpecificLocalTime(const void* zone, const SYSTEMTIME* utc, SYSTEMTIME* local) noexcept {
  std::int64_t seconds = 0;
  std::int64_t ticks = 0;
  if (zone || !utc || !local || !split(utc, seconds, ticks)) return refuse();
  return join(seconds + platform::offset_at(seconds).seconds, ticks, local) ? TRUE : refuse();
}

__time64_t _mktime64(std::tm* fields) noexcept {
  constexpr int last_year = 3000;
  if (!fields) {
    errno = EINVAL;
    return -1;
  }
  const std::int64_t local = local_seconds_of(*fields);
  const std::int64_t seconds = fields->tm_isdst < 0 ? platform::readings_of(local).after_change
                                                    : platform::reading_as(local, fields->tm_isdst > 0);
  if (seconds < 0 || local >= platform::days_from_civil(last_year + 1, 1, 1) * seconds_per_day) {
    errno = EINVAL;
    return -1;
  }
  const platform::ZoneOffset offset = platform::offset_at(seconds);
  put_fields(*fields, seconds + offset.seconds, offset.is_daylight);
  return seconds;
}

int _localtime64_s(std::tm* fields, const __time64_t* seconds) noexcept {
  if (!fields || !in_range(seconds)) return refuse_fields(fields);
  const platform::ZoneOffset offset = platform::offset_at(*seconds);
  put_fields(*fields, *seconds + offset.seconds, offset.is_daylight);
  return 0;
}

int _gmtime64_s(std::tm* fields, const __time64_t* seconds) noexcept {
  if (!fields || !in_range(seconds)) return refuse_fields(fields);
  put_fields(*fields, *seconds, false);
  return 0;
}
