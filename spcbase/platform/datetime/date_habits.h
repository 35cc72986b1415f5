/// How a locale writes dates and times.
///
/// Part of the platform layer; not for hosts.
#pragma once

#include <string>
#include <string_view>

namespace platform {

/// The order of day, month and year in a short date.
enum class DateOrder { month_day_year, day_month_year, year_month_day };

/// The patterns of a locale, in the letters d, M, y, h, H, m, s, a with quoted texts between them.
struct DateHabits {
  std::string date_pattern;
  std::string time_pattern;
  std::string am;
  std::string pm;
  DateOrder order;
  /// The dot parts the fields of a date, so "15.3.24" is a date before it is a time.
  bool dot_parts_dates;
};

/// Locales go by the names that `date_locale` (user_locale.h) gives; the empty one is the invariant locale.

/// The habits of a locale, kept by the thread until it asks for another one.
const DateHabits& date_habits(const std::string& locale);

/// The month, 1 to 12, that a word names in English or in the locale's language, in full or short; 0 for none.
int month_named(std::string_view word, const std::string& locale);
/// Whether a word names a day of the week.
bool is_weekday_name(std::string_view word, const std::string& locale);

}  // namespace platform
