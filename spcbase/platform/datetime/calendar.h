/// Arithmetic of the Gregorian calendar, for the conversions of this folder.
///
/// Part of the platform layer; not for hosts.
#pragma once

#include <cstdint>

namespace platform {

/// A year, month 1 to 12 and day 1 to 31.
struct CivilDate {
  std::int64_t year;  ///< of the Gregorian calendar, also before it was made
  int month;          ///< 1 to 12
  int day;            ///< 1 to 31
};

/// Days since 1970-01-01 of a date; the day may lie outside its month and carries.
constexpr std::int64_t days_from_civil(std::int64_t year, int month, std::int64_t day) noexcept {
  const std::int64_t y = month <= 2 ? year - 1 : year;
  const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
  const std::int64_t year_of_era = y - era * 400;
  const std::int64_t day_of_year = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  return era * 146097 + year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year - 719468;
}

/// The date that lies a number of days after 1970-01-01.
constexpr CivilDate civil_from_days(std::int64_t days) noexcept {
  const std::int64_t z = days + 719468;
  const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const std::int64_t doe = z - era * 146097;
  const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const std::int64_t mp = (5 * doy + 2) / 153;
  const int month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  return {yoe + era * 400 + (month <= 2 ? 1 : 0), month, static_cast<int>(doy - (153 * mp + 2) / 5 + 1)};
}

/// The day of week, 0 is Sunday, of a number of days after 1970-01-01.
constexpr int weekday_from_days(std::int64_t days) noexcept { return static_cast<int>(((days % 7) + 11) % 7); }

/// Whether a year has 366 days.
constexpr bool is_leap_year(std::int64_t year) noexcept {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

/// The length of a month 1 to 12.
constexpr int days_in_month(std::int64_t year, int month) noexcept {
  constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && is_leap_year(year) ? 29 : lengths[month - 1];
}

/// Days between 1899-12-30, the first day of variant times, and 1970-01-01.
inline constexpr std::int64_t variant_epoch_days = -25569;
/// Days between 1601-01-01, the first day of file times, and 1970-01-01.
inline constexpr std::int64_t file_time_epoch_days = -134774;

/// The year that a number of two digits means: 00 to 49 are 2000 to 2049, 50 to 99 are 1950 to 1999. Others stay.
constexpr std::int64_t widen_year(std::int64_t year) noexcept {
  return year < 0 || year > 99 ? year : year + (year < 50 ? 2000 : 1900);
}

}  // namespace platform
