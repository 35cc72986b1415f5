#include "spcbase/platform/database/moment_text.h"

namespace spcdb {
namespace {

constexpr std::uint32_t nanoseconds_of_millisecond = 1'000'000;

unsigned days_of_month(int year, unsigned month) noexcept {
  constexpr std::array<unsigned, 12> days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && leap ? 29 : days[month - 1];
}

void put_digits(char* target, unsigned value, int count) noexcept {
  for (int i = count - 1; i >= 0; --i, value /= 10)
    target[i] = static_cast<char>('0' + value % 10);
}

/// Takes digits from a text, piece by piece.
class Digits {
 public:
  explicit Digits(std::string_view text) noexcept : text_(text) {}
  bool take(int count, unsigned& value) noexcept {
    if (text_.size() < static_cast<std::size_t>(count)) return false;
    value = 0;
    for (int i = 0; i < count; ++i) {
      const char c = text_[static_cast<std::size_t>(i)];
      if (c < '0' || c > '9') return false;
      value = value * 10 + static_cast<unsigned>(c - '0');
    }
    text_.remove_prefix(static_cast<std::size_t>(count));
    return true;
  }
  bool take(char wanted) noexcept {
    if (text_.empty() || text_.front() != wanted) return false;
    text_.remove_prefix(1);
    return true;
  }
  /// One to nine digits behind the point, as nanoseconds.
  bool take_fraction(unsigned& nanoseconds) noexcept {
    unsigned digit = 0;
    nanoseconds = 0;
    int count = 0;
    for (unsigned scale = 100'000'000; scale > 0 && take(1, digit); scale /= 10, ++count)
      nanoseconds += digit * scale;
    return count > 0;
  }
  bool at_end() const noexcept { return text_.empty(); }

 private:
  std::string_view text_;
};

bool take_time(Digits& digits, TIMESTAMP_STRUCT& moment) noexcept {
  unsigned hour = 0;
  unsigned minute = 0;
  unsigned second = 0;
  unsigned fraction = 0;
  if (!digits.take(2, hour) || !digits.take(':') || !digits.take(2, minute)) return false;
  if (digits.take(':')) {
    if (!digits.take(2, second)) return false;
    if (digits.take('.') && !digits.take_fraction(fraction)) return false;
  }
  moment.hour = static_cast<unsigned short>(hour);
  moment.minute = static_cast<unsigned short>(minute);
  moment.second = static_cast<unsigned short>(second);
  moment.fraction = fraction;
  return true;
}

}  // namespace

bool is_moment(const TIMESTAMP_STRUCT& m) noexcept {
  return m.year >= 1 && m.year <= 9999 && m.month >= 1 && m.month <= 12 && m.day >= 1 &&
         m.day <= days_of_month(m.year, m.month) && m.hour <= 23 && m.minute <= 59 && m.second <= 59 &&
         m.fraction <= 999'999'999;
}

std::array<char, moment_text_length> format_moment(const TIMESTAMP_STRUCT& m) noexcept {
  std::array<char, moment_text_length> text;
  text.fill('-');
  put_digits(&text[0], static_cast<unsigned>(m.year), 4);
  put_digits(&text[5], m.month, 2);
  put_digits(&text[8], m.day, 2);
  text[10] = ' ';
  put_digits(&text[11], m.hour, 2);
  text[13] = ':';
  put_digits(&text[14], m.minute, 2);
  text[16] = ':';
  put_digits(&text[17], m.second, 2);
  text[19] = '.';
  put_digits(&text[20], m.fraction / nanoseconds_of_millisecond, 3);
  return text;
}

bool parse_moment(std::string_view text, TIMESTAMP_STRUCT& moment) noexcept {
  Digits digits(text);
  unsigned year = 0;
  unsigned month = 0;
  unsigned day = 0;
  if (!digits.take(4, year) || !digits.take('-') || !digits.take(2, month) || !digits.take('-') || !digits.take(2, day))
    return false;
  TIMESTAMP_STRUCT read{};
  read.year = static_cast<short>(year);
  read.month = static_cast<unsigned short>(month);
  read.day = static_cast<unsigned short>(day);
  if (!digits.at_end()) {
    if (!digits.take(' ') && !digits.take('T')) return false;
    if (!take_time(digits, read) || !digits.at_end()) return false;
  }
  if (!is_moment(read)) return false;
  moment = read;
  return true;
}

}  // namespace spcdb
