// Reading of dates: the text becomes words and numbers with what parts them; the time is taken out, the rest must be a
// date.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "spcbase/platform/datetime/calendar.h"
#include "spcbase/platform/datetime/clock.h"
#include "spcbase/platform/datetime/date_habits.h"
#include "spcbase/platform/datetime/date_text.h"
#include "spcbase/platform/datetime/system_time.h"
#include "spcbase/platform/datetime/user_locale.h"
#include "spcbase/platform/text/locale.h"
#include "spcbase/platform/text/utf8_walk.h"

namespace platform {

namespace {

/// A number or a word, with the mark that parts it from the piece before: '/', '-', ',', '.', ':', a blank, or 0 for
/// nothing.
struct Piece {
  char mark = 0;
  bool is_number = false;
  int number = 0;
  std::string_view word;
};
using Pieces = std::vector<Piece>;

struct TimeOfDay {
  int hour = 0;
  int minute = 0;
  int second = 0;
};

struct Date {
  int year = 0;
  int month = 0;
  int day = 0;
};

constexpr bool is_ascii_digit(char c) { return c >= '0' && c <= '9'; }

/// Reads digits at a position and moves it behind them; nothing for a number that no field can hold.
std::optional<int> read_number(std::string_view text, std::size_t& at) {
  constexpr int too_large = 100000;
  int value = 0;
  for (; at < text.size() && is_ascii_digit(text[at]); ++at) {
    value = std::min(value * 10 + (text[at] - '0'), too_large);
  }
  return value < too_large ? std::optional<int>(value) : std::nullopt;
}

std::string_view read_word(std::string_view text, std::size_t& at) {
  const std::size_t from = at;
  while (at < text.size()) {
    const Utf8Step step = utf8_step(text, at);
    if (!step.valid || !is_alpha(step.code_point)) break;
    at += step.length_bytes;
  }
  return text.substr(from, at - from);
}

/// Reads the mark before a piece, blanks around it left out; nothing when two marks follow each other.
std::optional<char> read_mark(std::string_view text, std::size_t& at) {
  constexpr std::string_view marks = "/-,.:";
  char mark = 0;
  for (; at < text.size(); ++at) {
    const char c = text[at];
    if (c == ' ' || c == '\t') {
      if (mark == 0) mark = ' ';
    } else if (marks.find(c) != std::string_view::npos) {
      if (mark != 0 && mark != ' ') return std::nullopt;
      mark = c;
    } else {
      break;
    }
  }
  return mark;
}

/// Cuts a text into pieces; nothing when it has other characters, or a mark at an end.
std::optional<Pieces> cut(std::string_view text) {
  Pieces pieces;
  for (std::size_t at = 0;;) {
    const std::optional<char> mark = read_mark(text, at);
    if (!mark) return std::nullopt;
    const bool at_edge = pieces.empty() || at == text.size();
    if (at_edge && *mark != 0 && *mark != ' ') return std::nullopt;
    if (at == text.size()) return pieces;
    Piece piece;
    piece.mark = *mark;
    if (is_ascii_digit(text[at])) {
      const std::optional<int> number = read_number(text, at);
      if (!number) return std::nullopt;
      piece.is_number = true;
      piece.number = *number;
    } else {
      piece.word = read_word(text, at);
      if (piece.word.empty()) return std::nullopt;
    }
    pieces.push_back(piece);
  }
}

/// How many numbers follow each other from a position on, parted by one and the same mark.
std::size_t run_length(const Pieces& pieces, std::size_t from, char mark) {
  if (!pieces[from].is_number) return 0;
  std::size_t count = 1;
  while (from + count < pieces.size() && pieces[from + count].is_number && pieces[from + count].mark == mark) {
    ++count;
  }
  return count;
}

/// What a word says about the half of the day: 'a', 'p' or 0.
char half_day(std::string_view word, const DateHabits& habits) {
  for (const std::string_view am : {std::string_view("AM"), std::string_view(habits.am)}) {
    if (compare_no_case(word, am) == 0) return 'a';
  }
  for (const std::string_view pm : {std::string_view("PM"), std::string_view(habits.pm)}) {
    if (compare_no_case(word, pm) == 0) return 'p';
  }
  return 0;
}

/// Makes a time of up to three numbers and a half of the day; nothing when a number has no place on a clock.
std::optional<TimeOfDay> make_time(std::span<const Piece> numbers, char half) {
  TimeOfDay time{numbers[0].number, numbers.size() > 1 ? numbers[1].number : 0,
                 numbers.size() > 2 ? numbers[2].number : 0};
  if (time.hour > 23 || time.minute > 59 || time.second > 59) return std::nullopt;
  if (half == 'a' && time.hour > 12) return std::nullopt;
  if (half == 'a' && time.hour == 12) time.hour = 0;
  if (half == 'p' && time.hour < 12) time.hour += 12;
  return time;
}

/// Where the time stands among the pieces.
struct TimePlace {
  std::size_t from = 0;
  std::size_t numbers = 0;
  bool with_half_day = false;
  std::optional<TimeOfDay> time;
};

/// The time that begins at a position with numbers parted by a mark. A single number is an hour only before AM or PM.
TimePlace time_at(const Pieces& pieces, std::size_t from, char mark, const DateHabits& habits) {
  TimePlace place{from, run_length(pieces, from, mark), false, std::nullopt};
  if (place.numbers == 0 || place.numbers > 3) return {};
  const std::size_t next = from + place.numbers;
  const bool word_follows =
      next < pieces.size() && !pieces[next].is_number && (pieces[next].mark == ' ' || pieces[next].mark == 0);
  const char half = word_follows ? half_day(pieces[next].word, habits) : '\0';
  if (place.numbers == 1 && half == 0) return {};
  place.with_half_day = half != 0;
  place.time = make_time(std::span(pieces).subspan(from, place.numbers), half);
  return place;
}

/// Finds the time: numbers parted by ':' anywhere, else an hour with AM or PM, else numbers parted by '.'.
TimePlace find_time(const Pieces& pieces, const DateHabits& habits) {
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    if (run_length(pieces, i, ':') > 1) return time_at(pieces, i, ':', habits);
  }
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const TimePlace dotted = time_at(pieces, i, '.', habits);
    if (dotted.numbers == 0) continue;
    if (dotted.with_half_day || (dotted.time && !habits.dot_parts_dates)) return dotted;
    i += dotted.numbers - 1;
  }
  return {};
}

std::optional<Date> valid_date(std::int64_t year, int month, int day) {
  const std::int64_t full_year = widen_year(year);
  if (full_year < 100 || full_year > 9999 || month < 1 || month > 12) return std::nullopt;
  if (day < 1 || day > days_in_month(full_year, month)) return std::nullopt;
  return Date{static_cast<int>(full_year), month, day};
}

std::int64_t current_year() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  return now.wYear;
}

/// The first of some readings that is a date.
std::optional<Date> first_valid(std::initializer_list<std::optional<Date>> readings) {
  for (const std::optional<Date>& reading : readings) {
    if (reading) return reading;
  }
  return std::nullopt;
}

/// Three numbers: in the locale's order, year first, in the other order.
std::optional<Date> date_of_three(int a, int b, int c, DateOrder order) {
  const auto month_first = valid_date(c, a, b);
  const auto day_first = valid_date(c, b, a);
  const auto year_first = valid_date(a, b, c);
  switch (order) {
    case DateOrder::month_day_year:
      return first_valid({month_first, year_first, day_first});
    case DateOrder::day_month_year:
      return first_valid({day_first, year_first, month_first});
    default:
      return first_valid({year_first, month_first, day_first});
  }
}

/// Two numbers: day and month of this year, else a month and its year.
std::optional<Date> date_of_two(int a, int b, DateOrder order) {
  const std::int64_t year = current_year();
  const auto month_first = valid_date(year, a, b);
  const auto day_first = valid_date(year, b, a);
  const auto year_last = valid_date(b, a, 1);
  const auto year_first = valid_date(a, b, 1);
  if (order == DateOrder::day_month_year) return first_valid({day_first, month_first, year_last, year_first});
  return first_valid({month_first, day_first, year_last, year_first});
}

/// A month by name with one or two numbers.
std::optional<Date> date_with_name(int month, bool name_first, std::span<const int> numbers, DateOrder order) {
  if (numbers.size() == 1)
    return first_valid({valid_date(current_year(), month, numbers[0]), valid_date(numbers[0], month, 1)});
  const auto day_then_year = valid_date(numbers[1], month, numbers[0]);
  const auto year_then_day = valid_date(numbers[0], month, numbers[1]);
  // Kept: where the month is written first in numbers, "15-Mar-24" is read year first.
  if (name_first || order == DateOrder::day_month_year) return first_valid({day_then_year, year_then_day});
  return first_valid({year_then_day, day_then_year});
}

/// Makes a date of the pieces that are not the time.
std::optional<Date> make_date(const Pieces& pieces, const std::string& locale, DateOrder order) {
  std::vector<int> numbers;
  int month = 0;
  bool name_first = false;
  for (const Piece& piece : pieces) {
    if (piece.mark == ':') return std::nullopt;
    if (piece.is_number) {
      numbers.push_back(piece.number);
      continue;
    }
    if (is_weekday_name(piece.word, locale)) continue;
    const int named = month_named(piece.word, locale);
    if (named == 0 || month != 0) return std::nullopt;
    month = named;
    name_first = numbers.empty();
  }
  if (month != 0) {
    if (numbers.empty() || numbers.size() > 2) return std::nullopt;
    return date_with_name(month, name_first, numbers, order);
  }
  if (numbers.size() == 3) return date_of_three(numbers[0], numbers[1], numbers[2], order);
  if (numbers.size() == 2) return date_of_two(numbers[0], numbers[1], order);
  return std::nullopt;
}

double to_variant(const std::optional<Date>& date, const TimeOfDay& time) {
  const Date day = date.value_or(Date{1899, 12, 30});
  const auto word = [](int value) { return static_cast<WORD>(value); };
  const SYSTEMTIME fields{word(day.year),    word(day.month),   0, word(day.day), word(time.hour),
                          word(time.minute), word(time.second), 0};
  double result = 0;
  SystemTimeToVariantTime(&fields, &result);
  return result;
}

}  // namespace

HRESULT date_from_text(std::string_view utf8, LCID locale, DWORD flags, double& date) {
  std::optional<Pieces> pieces = cut(utf8);
  if (!pieces || pieces->empty()) return DISP_E_TYPEMISMATCH;
  const std::string& name = date_locale(locale);
  const DateHabits& habits = date_habits(name);
  const TimePlace place = find_time(*pieces, habits);
  if (place.numbers > 0) {
    if (!place.time) return DISP_E_TYPEMISMATCH;
    const auto from = pieces->begin() + static_cast<std::ptrdiff_t>(place.from);
    const std::size_t count = place.numbers + (place.with_half_day ? 1 : 0);
    pieces->erase(from, from + static_cast<std::ptrdiff_t>(count));
  }
  std::optional<Date> day;
  if (!pieces->empty()) {
    day = make_date(*pieces, name, habits.order);
    if (!day) return DISP_E_TYPEMISMATCH;
  }
  if ((flags & VAR_TIMEVALUEONLY) != 0) day.reset();
  const bool with_time = place.time && (flags & VAR_DATEVALUEONLY) == 0;
  date = to_variant(day, with_time ? *place.time : TimeOfDay{});
  return S_OK;
}

}  // namespace platform
