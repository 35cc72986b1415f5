#include "spcbase/platform/datetime/date_text.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "spcbase/platform/datetime/date_habits.h"
#include "spcbase/platform/datetime/system_time.h"
#include "spcbase/platform/datetime/user_locale.h"

namespace platform {

namespace {

void append_number(std::string& text, int value, std::size_t least_digits) {
  const std::string digits = std::to_string(value);
  if (digits.size() < least_digits) text.append(least_digits - digits.size(), '0');
  text += digits;
}

/// Writes one field of a pattern: a letter that stands `count` times. A letter that is no field writes nothing.
void append_field(std::string& text, char letter, std::size_t count, const SYSTEMTIME& fields,
                  const DateHabits& habits) {
  switch (letter) {
    case 'd':
      return append_number(text, fields.wDay, count);
    case 'M':
    case 'L':
      return append_number(text, fields.wMonth, count > 2 ? 2 : count);
    case 'y':
    case 'u':
      return append_number(text, fields.wYear, 1);
    case 'H':
      return append_number(text, fields.wHour, count);
    case 'h':
      return append_number(text, (fields.wHour + 11) % 12 + 1, count);
    case 'K':
      return append_number(text, fields.wHour % 12, count);
    case 'k':
      return append_number(text, (fields.wHour + 23) % 24 + 1, count);
    case 'm':
      return append_number(text, fields.wMinute, count);
    case 's':
      return append_number(text, fields.wSecond, count);
    case 'a':
    case 'b':
    case 'B':
      text += fields.wHour < 12 ? habits.am : habits.pm;
      return;
    default:
      return;
  }
}

constexpr bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

void append_by_pattern(std::string& text, const std::string& pattern, const SYSTEMTIME& fields,
                       const DateHabits& habits) {
  bool quoted = false;
  for (std::size_t i = 0; i < pattern.size();) {
    const char c = pattern[i];
    if (c == '\'') {
      quoted = !quoted;
      ++i;
    } else if (!quoted && is_letter(c)) {
      const std::size_t end = std::min(pattern.find_first_not_of(c, i), pattern.size());
      append_field(text, c, end - i, fields, habits);
      i = end;
    } else {
      text.push_back(c);
      ++i;
    }
  }
}

}  // namespace

HRESULT text_from_date(double date, LCID locale, DWORD flags, std::string& text) {
  SYSTEMTIME fields;
  if (!VariantTimeToSystemTime(date, &fields)) return E_INVALIDARG;
  // What is left out is decided by the number as it is, not by the rounded fields.
  const double whole = std::trunc(date);
  bool with_date = whole != 0;
  bool with_time = date != whole || !with_date;
  if ((flags & VAR_TIMEVALUEONLY) != 0) {
    with_time = true;
    with_date = false;
  } else if ((flags & VAR_DATEVALUEONLY) != 0) {
    with_time = false;
    with_date = true;
  }
  const DateHabits& habits = date_habits(date_locale(locale));
  std::string result;
  if (with_date) append_by_pattern(result, habits.date_pattern, fields, habits);
  if (with_date && with_time) result.push_back(' ');
  if (with_time) append_by_pattern(result, habits.time_pattern, fields, habits);
  text = std::move(result);
  return S_OK;
}

}  // namespace platform
