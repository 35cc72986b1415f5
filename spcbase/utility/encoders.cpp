#include "spcbase/utility/encoders.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <limits>
#include <span>
#include <string_view>

#include "spcbase/platform/crypto/secret_buffer.h"
#include "spcbase/utility/internal/stored_constants.h"

namespace {

using platform::SecretBuffer;

constexpr std::string_view hex_digits = "0123456789ABCDEF";
constexpr std::string_view white_space = " \t\n\v\f\r";
constexpr unsigned char no_digit = 0xFF;

/// The value of each character in a set of 16 digits.
constexpr std::array<unsigned char, 256> values_in(std::string_view digits, unsigned char of_others) {
  std::array<unsigned char, 256> values{};
  values.fill(of_others);
  for (std::size_t i = 0; i < digits.size(); ++i)
    values[static_cast<unsigned char>(digits[i])] = static_cast<unsigned char>(i);
  return values;
}

constexpr auto hex_values = values_in(hex_digits, 0);
constexpr auto letter_values = values_in(stored_constants::digit_letters, no_digit);

/// The bytes of a text whose length may be left to its first zero byte.
std::string_view view_of(const char* text, int length) {
  if (!text) return {};
  return length < 0 ? std::string_view(text) : std::string_view(text, static_cast<std::size_t>(length));
}

std::string_view without_right_space(std::string_view text) {
  return text.substr(0, text.find_last_not_of(white_space) + 1);
}

CString write_digits(std::string_view bytes, std::string_view digits) {
  if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()) / 2) AtlThrow(E_OUTOFMEMORY);
  CString text;
  char* target = text.GetBufferSetLength(static_cast<int>(2 * bytes.size()));
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    *target++ = digits[byte >> 4U];
    *target++ = digits[byte & 0x0FU];
  }
  return text;
}

void read_digits(std::string_view text, const std::array<unsigned char, 256>& values, char* output) {
  const auto value = [&](std::size_t i) -> unsigned { return values[static_cast<unsigned char>(text[i])]; };
  for (std::size_t i = 0; i + 1 < text.size(); i += 2)
    *output++ = static_cast<char>(value(i) << 4U | value(i + 1));
}

void mix(std::span<unsigned char> bytes, const char* key) {
  const std::string_view cycle = key ? std::string_view(key) : std::string_view(stored_constants::default_key);
  if (cycle.empty()) return;
  std::size_t next = 0;
  for (unsigned char& byte : bytes) {
    byte ^= static_cast<unsigned char>(cycle[next]);
    if (++next == cycle.size()) next = 0;
  }
}

bool is_all_letters(std::string_view text) {
  for (const char c : text)
    if (letter_values[static_cast<unsigned char>(c)] == no_digit) return false;
  return true;
}

char* chars_of(SecretBuffer& buffer) { return reinterpret_cast<char*>(buffer.data()); }

}  // namespace

CString ConvertToASCII(const char* bytes, int count) { return write_digits(view_of(bytes, count), hex_digits); }

void ConvertFromASCII(const char* text, int length, char* output) {
  if (output) read_digits(view_of(text, length), hex_values, output);
}

CString encode_str(const CString& text, const char* key) {
  const std::string_view clear = without_right_space(text.view());
  SecretBuffer mixed(clear.size());
  if (!clear.empty()) std::memcpy(mixed.data(), clear.data(), clear.size());
  mix(mixed.bytes(), key);
  return write_digits({chars_of(mixed), mixed.size()}, stored_constants::digit_letters);
}

CString decode_str(const CString& text, const char* key) {
  std::string_view letters = without_right_space(text.view());
  if (!is_all_letters(letters)) letters = {};
  SecretBuffer bytes(letters.size() / 2);
  read_digits(letters, letter_values, chars_of(bytes));
  mix(bytes.bytes(), key);
  return {chars_of(bytes), static_cast<int>(bytes.size())};
}
