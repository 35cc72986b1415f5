#include "spcbase/platform/datetime/date_habits.h"

#include <unicode/datefmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>

#include <algorithm>
#include <memory>
#include <optional>

#include "spcbase/platform/text/locale.h"

namespace platform {

namespace {

constexpr std::string_view us_english = "en_US";

/// The locales whose habits are known exactly; the others follow the locale data.
struct KnownHabits {
  std::string_view locale;
  const char* date_pattern;
  const char* time_pattern;
};

constexpr KnownHabits known_habits[] = {
    {"", "MM/dd/y", "HH:mm:ss"},      {"de_DE", "d.M.y", "HH:mm:ss"}, {"en_US", "M/d/y", "h:mm:ss a"},
    {"fr_FR", "dd/MM/y", "HH:mm:ss"}, {"ja_JP", "y/M/d", "H:mm:ss"},  {"sv_SE", "y-MM-dd", "HH:mm:ss"},
    {"en_GB", "dd/MM/y", "HH:mm:ss"},
};

icu::Locale icu_locale(const std::string& name) {
  return name.empty() ? icu::Locale::getRoot() : icu::Locale(name.c_str());
}

std::string narrow(const icu::UnicodeString& text) {
  std::string result;
  text.toUTF8String(result);
  return result;
}

/// The locale data put narrow and unbreakable blanks into patterns, where the platform has plain ones.
std::string with_plain_blanks(std::string text) {
  for (const std::string_view blank : {"\u202F", "\u00A0"}) {
    for (std::size_t at = text.find(blank); at != std::string::npos; at = text.find(blank)) {
      text.replace(at, blank.size(), " ");
    }
  }
  return text;
}

std::string pattern_of(icu::DateFormat* format, const char* fallback) {
  const std::unique_ptr<icu::DateFormat> owned(format);
  const auto* simple = dynamic_cast<const icu::SimpleDateFormat*>(owned.get());
  if (!simple) return fallback;
  icu::UnicodeString pattern;
  simple->toPattern(pattern);
  return with_plain_blanks(narrow(pattern));
}

DateOrder order_of(std::string_view pattern) {
  const std::size_t day = pattern.find('d');
  const std::size_t month = pattern.find('M');
  const std::size_t year = pattern.find('y');
  if (year < month && year < day) return DateOrder::year_month_day;
  return day < month ? DateOrder::day_month_year : DateOrder::month_day_year;
}

DateHabits make_habits(const std::string& locale) {
  DateHabits habits;
  const auto* known = std::find_if(std::begin(known_habits), std::end(known_habits),
                                   [&](const KnownHabits& row) { return row.locale == locale; });
  const icu::Locale name = icu_locale(locale);
  if (known != std::end(known_habits)) {
    habits.date_pattern = known->date_pattern;
    habits.time_pattern = known->time_pattern;
  } else {
    habits.date_pattern = pattern_of(icu::DateFormat::createDateInstance(icu::DateFormat::kShort, name), "y-MM-dd");
    habits.time_pattern = pattern_of(icu::DateFormat::createTimeInstance(icu::DateFormat::kMedium, name), "HH:mm:ss");
  }
  UErrorCode status = U_ZERO_ERROR;
  const icu::DateFormatSymbols symbols(name, status);
  std::int32_t count = 0;
  const icu::UnicodeString* half_days = U_SUCCESS(status) ? symbols.getAmPmStrings(count) : nullptr;
  habits.am = count >= 2 ? with_plain_blanks(narrow(half_days[0])) : "AM";
  habits.pm = count >= 2 ? with_plain_blanks(narrow(half_days[1])) : "PM";
  habits.order = order_of(habits.date_pattern);
  habits.dot_parts_dates = habits.date_pattern.find('.') != std::string::npos;
  return habits;
}

/// Whether a word is a name, or the name without the dot of a shortened one.
bool is_name(std::string_view word, std::string_view name) {
  if (!name.empty() && name.back() == '.') name.remove_suffix(1);
  return !name.empty() && compare_no_case(word, name) == 0;
}

/// The position of a word in a list of names, in full or short, or -1.
int position(std::string_view word, const char* const* names, int count) {
  for (int i = 0; i < count; ++i) {
    const std::string_view name = names[i];
    if (is_name(word, name) || is_name(word, name.substr(0, 3))) return i;
  }
  return -1;
}

constexpr const char* english_months[] = {"January", "February", "March",     "April",   "May",      "June",
                                          "July",    "August",   "September", "October", "November", "December"};
constexpr const char* english_days[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};

using Symbols = icu::DateFormatSymbols;

/// The position of a word among the locale's own names, or -1. `months` chooses between months and days of the week.
int local_position(std::string_view word, const std::string& locale, bool months) {
  if (locale == us_english) return -1;
  UErrorCode status = U_ZERO_ERROR;
  const Symbols symbols(icu_locale(locale), status);
  if (U_FAILURE(status)) return -1;
  for (const auto context : {Symbols::FORMAT, Symbols::STANDALONE}) {
    for (const auto width : {Symbols::WIDE, Symbols::ABBREVIATED}) {
      std::int32_t count = 0;
      const icu::UnicodeString* names =
          months ? symbols.getMonths(count, context, width) : symbols.getWeekdays(count, context, width);
      for (std::int32_t i = 0; i < count; ++i) {
        if (is_name(word, narrow(names[i]))) return i;
      }
    }
  }
  return -1;
}

}  // namespace

const DateHabits& date_habits(const std::string& locale) {
  struct Kept {
    std::string locale;
    DateHabits habits;
  };
  thread_local std::optional<Kept> kept;
  if (!kept || kept->locale != locale) kept = Kept{locale, make_habits(locale)};
  return kept->habits;
}

int month_named(std::string_view word, const std::string& locale) {
  const int english = position(word, english_months, 12);
  return (english >= 0 ? english : local_position(word, locale, true)) + 1;
}

bool is_weekday_name(std::string_view word, const std::string& locale) {
  return position(word, english_days, 7) >= 0 || local_position(word, locale, false) > 0;
}

}  // namespace platform
