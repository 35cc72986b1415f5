#include "spcbase/platform/database/value_text.h"

#include <charconv>
#include <cmath>

#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/text/unicode.h"

namespace spcdb {
namespace {

constexpr std::size_t longest_number = 32;

template <typename Number>
std::errc parse(std::string_view text, Number& value) noexcept {
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  return error == std::errc() && stop != end ? std::errc::invalid_argument : error;
}

template <typename Number>
void write(std::string& text, Number value) {
  text.resize(longest_number);
  const auto [end, error] = std::to_chars(text.data(), text.data() + longest_number, value);
  text.resize(error == std::errc() ? static_cast<std::size_t>(end - text.data()) : 0);
}

}  // namespace

Whole read_whole(double real, std::int64_t& value) noexcept {
  constexpr double limit = 9223372036854775808.0;
  if (std::isnan(real)) return Whole::no_whole_number;
  if (!(real >= -limit && real < limit)) return Whole::too_large;
  if (real != std::trunc(real)) return Whole::no_whole_number;
  value = static_cast<std::int64_t>(real);
  return Whole::yes;
}

Whole read_whole(std::string_view text, std::int64_t& value) noexcept {
  std::int64_t whole = 0;
  const auto error = parse(text, whole);
  if (error == std::errc()) {
    value = whole;
    return Whole::yes;
  }
  if (error == std::errc::result_out_of_range) return Whole::too_large;
  double real = 0;
  return read_real(text, real) ? read_whole(real, value) : Whole::no_whole_number;
}

bool read_real(std::string_view text, double& value) noexcept {
  double real = 0;
  const auto error = parse(text, real);
  if (error == std::errc()) {
    value = real;
    return true;
  }
  return false;
}

void write_number(std::string& text, std::int64_t value) { write(text, value); }
void write_number(std::string& text, double value) { write(text, value); }

bool is_wider(std::string_view text, int width) noexcept {
  const auto characters = static_cast<std::size_t>(width);
  return text.size() > characters && platform::utf8_length_chars(text) > characters;
}

void refuse_value(const std::string& column, const char* sqlstate, const char* wanted) {
  raise(-1, sqlstate, "The value of column " + column + " is not " + wanted + ".");
}

void refuse_whole(const std::string& column, Whole why) {
  if (why == Whole::too_large) refuse_value(column, "22003", "a whole number of 64 bits");
  refuse_value(column, "22018", "a whole number");
}

void refuse_width(const std::string& column, int width) {
  raise(AFX_SQL_ERROR_DATA_TRUNCATED, "22001",
        "The text of column " + column + " is longer than " + std::to_string(width) + " characters.");
}

void refuse_size(const std::string& column, std::size_t length_bytes, int room_bytes) {
  raise(AFX_SQL_ERROR_DATA_TRUNCATED, "01004",
        "The value of column " + column + " has " + std::to_string(length_bytes) + " bytes and its buffer " +
            std::to_string(room_bytes) + ".");
}

void refuse_nan() { raise(-1, "22003", "A value that is not a number (NaN) cannot be stored."); }
void refuse_moment() { raise(-1, "22007", "The value is not a moment of the calendar."); }

}  // namespace spcdb
