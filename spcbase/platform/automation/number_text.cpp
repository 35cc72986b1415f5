#include "spcbase/platform/automation/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>
#include <utility>

namespace automation_detail {

namespace {

constexpr bool is_digit(char16_t c) { return c >= u'0' && c <= u'9'; }

constexpr bool is_space(char16_t c) {
  return c == u' ' || (c >= u'\t' && c <= u'\r') || c == u'\u00A0' || c == u'\u3000';
}

// Beyond this every exponent means zero or overflow, and sums of it cannot wrap.
constexpr long long exponent_limit = 1'000'000'000;

class number_reader {
 public:
  number_reader(std::u16string_view text, const platform::NumberMarks& marks, text_number& number)
      : text_(text), marks_(marks), number_(number) {}

  HRESULT read() {
    skip_spaces();
    if (next_is(u'&')) return read_bits();
    if (!read_prefix() || !read_digits() || !read_exponent() || !read_suffix()) return DISP_E_TYPEMISMATCH;
    number_.negative = minus_ || bracket_;
    return S_OK;
  }

 private:
  bool at_end() const { return at_ == text_.size(); }
  bool next_is(char16_t c) const { return !at_end() && text_[at_] == c; }
  void skip_spaces() {
    while (!at_end() && is_space(text_[at_]))
      ++at_;
  }

  // Takes a character that may stand once. False when it stood already.
  bool take_once(bool& seen) {
    ++at_;
    return !std::exchange(seen, true);
  }

  bool take_sign() {
    minus_ = text_[at_] == u'-';
    return take_once(sign_);
  }

  bool read_prefix() {
    for (; !at_end(); skip_spaces()) {
      bool good = true;
      if (next_is(u'-') || next_is(u'+')) {
        good = take_sign();
      } else if (next_is(u'(')) {
        good = take_once(bracket_);
      } else if (next_is(u'$')) {
        good = take_once(currency_);
      } else {
        return true;
      }
      if (!good) return false;
    }
    return false;
  }

  bool read_digits() {
    bool any = false;
    bool point = false;
    for (; !at_end(); ++at_) {
      const char16_t c = text_[at_];
      if (is_digit(c)) {
        any = true;
        if (c != u'0' || !number_.digits.empty()) number_.digits += static_cast<char>(c);
        if (point) --number_.exponent;
      } else if (c == marks_.decimal && !point) {
        point = true;
      } else if (!any || !marks_.is_group(c)) {
        break;
      }
    }
    return any;
  }

  bool read_exponent() {
    if (!next_is(u'e') && !next_is(u'E')) return true;
    if (currency_) return false;
    ++at_;
    const bool minus = next_is(u'-');
    if (minus || next_is(u'+')) ++at_;
    if (at_end() || !is_digit(text_[at_])) return false;
    long long exponent = 0;
    for (; !at_end() && is_digit(text_[at_]); ++at_)
      exponent = std::min(exponent * 10 + (text_[at_] - u'0'), exponent_limit);
    number_.exponent += minus ? -exponent : exponent;
    return true;
  }

  bool read_suffix() {
    bool closed = !bracket_;
    for (skip_spaces(); !at_end(); skip_spaces()) {
      if (!closed && next_is(u')')) {
        closed = true;
        ++at_;
      } else if (bracket_ || !(next_is(u'-') || next_is(u'+')) || !take_sign()) {
        return false;
      }
    }
    return closed;
  }

  // "&H" and "&O" take no sign: the bits have their own.
  HRESULT read_bits() {
    ++at_;
    const bool hexadecimal = next_is(u'H') || next_is(u'h');
    if (!hexadecimal && !next_is(u'O') && !next_is(u'o')) return DISP_E_TYPEMISMATCH;
    const int base = hexadecimal ? 16 : 8;
    std::string digits;
    for (++at_; !at_end() && text_[at_] < 0x80 && !is_space(text_[at_]); ++at_)
      digits += static_cast<char>(text_[at_]);
    skip_spaces();
    const char* const last = digits.data() + digits.size();
    const auto [end, error] = std::from_chars(digits.data(), last, number_.bits, base);
    if (!at_end() || digits.empty() || end != last || error == std::errc::invalid_argument) return DISP_E_TYPEMISMATCH;
    number_.is_bits = true;
    return error == std::errc() ? S_OK : DISP_E_OVERFLOW;
  }

  std::u16string_view text_;
  const platform::NumberMarks& marks_;
  text_number& number_;
  std::size_t at_ = 0;
  bool sign_ = false;
  bool minus_ = false;
  bool bracket_ = false;
  bool currency_ = false;
};

// What 32 bits hold is a LONG, as in the language the notation comes from; more is a 64-bit integer.
std::int64_t signed_bits(std::uint64_t bits) {
  return bits <= std::numeric_limits<std::uint32_t>::max()
             ? std::int64_t{static_cast<std::int32_t>(static_cast<std::uint32_t>(bits))}
             : static_cast<std::int64_t>(bits);
}

whole_number whole_of(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  return {value < 0, value < 0 ? 0 - bits : bits};
}

// Whether the digits from `first` on, read as a fraction, round an integer up that is odd or even.
bool rounds_up(const std::string& digits, std::size_t first, bool odd) {
  if (first >= digits.size() || digits[first] < '5') return false;
  const bool above_half = digits[first] > '5' || digits.find_first_not_of('0', first + 1) != std::string::npos;
  return above_half || odd;
}

}  // namespace

HRESULT read_number(std::u16string_view text, const platform::NumberMarks& marks, text_number& number) {
  return number_reader(text, marks, number).read();
}

HRESULT to_double(const text_number& number, double& value) {
  if (number.is_bits) {
    value = static_cast<double>(signed_bits(number.bits));
    return S_OK;
  }
  value = 0;
  if (!number.digits.empty()) {
    const std::string plain = number.digits + 'e' + std::to_string(number.exponent);
    const auto error = std::from_chars(plain.data(), plain.data() + plain.size(), value).ec;
    const bool large = static_cast<long long>(number.digits.size()) + number.exponent > 0;
    if (error != std::errc() || std::isinf(value)) {
      if (large) return DISP_E_OVERFLOW;
      value = 0;
    }
  }
  if (number.negative) value = -value;
  return S_OK;
}

HRESULT to_whole(const text_number& number, int scale, whole_number& value) {
  if (number.is_bits) {
    value = whole_of(signed_bits(number.bits));
    std::uint64_t factor = 1;
    for (int i = 0; i < scale; ++i)
      factor *= 10;
    return __builtin_mul_overflow(value.magnitude, factor, &value.magnitude) ? DISP_E_OVERFLOW : S_OK;
  }
  value = {number.negative, 0};
  if (number.digits.empty()) return S_OK;
  const long long places = static_cast<long long>(number.digits.size()) + number.exponent + scale;
  if (places < 0) return S_OK;
  if (places > std::numeric_limits<std::uint64_t>::digits10 + 1) return DISP_E_OVERFLOW;
  const auto count = static_cast<std::size_t>(places);
  for (std::size_t i = 0; i < count; ++i) {
    const auto digit = i < number.digits.size() ? static_cast<std::uint64_t>(number.digits[i] - '0') : 0U;
    if (__builtin_mul_overflow(value.magnitude, std::uint64_t{10}, &value.magnitude) ||
        __builtin_add_overflow(value.magnitude, digit, &value.magnitude)) {
      return DISP_E_OVERFLOW;
    }
  }
  const std::uint64_t up = rounds_up(number.digits, count, value.magnitude % 2 != 0) ? 1 : 0;
  return __builtin_add_overflow(value.magnitude, up, &value.magnitude) ? DISP_E_OVERFLOW : S_OK;
}

HRESULT to_whole(double number, whole_number& value) {
  const double size = std::fabs(number);
  double rounded = std::floor(size);
  const double rest = size - rounded;
  if (rest > 0.5 || (rest == 0.5 && std::fmod(rounded, 2.0) != 0)) rounded += 1;
  // Negated, so that what is no number fails too.
  if (!(rounded < 0x1p64)) return DISP_E_OVERFLOW;
  value = {number < 0, static_cast<std::uint64_t>(rounded)};
  return S_OK;
}

whole_number currency_to_whole(std::int64_t value) {
  whole_number result = whole_of(value);
  const std::uint64_t rest = result.magnitude % 10000;
  result.magnitude /= 10000;
  if (rest > 5000 || (rest == 5000 && result.magnitude % 2 != 0)) ++result.magnitude;
  return result;
}

std::string real_text(double value, int digits) {
  if (std::isnan(value)) return "NAN";
  if (std::isinf(value)) return value < 0 ? "-INF" : "INF";
  if (value == 0) return "0";
  char buffer[64];
  char* const end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, digits).ptr;
  std::string text(static_cast<char*>(buffer), end);
  std::replace(text.begin(), text.end(), 'e', 'E');
  return text;
}

std::string currency_text(std::int64_t value) {
  const whole_number all = whole_of(value);
  std::string text = whole_text({all.negative, all.magnitude / 10000});
  std::string fraction = std::to_string(10000 + all.magnitude % 10000).substr(1);
  fraction.erase(fraction.find_last_not_of('0') + 1);
  if (all.negative && text[0] != '-') text.insert(0, 1, '-');
  return fraction.empty() ? text : text + '.' + fraction;
}

std::string whole_text(whole_number value) {
  std::string text = std::to_string(value.magnitude);
  if (value.negative && value.magnitude != 0) text.insert(0, 1, '-');
  return text;
}

}  // namespace automation_detail
