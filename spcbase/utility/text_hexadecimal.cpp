#include <limits>
#include <memory>
#include <string>

#include "spcbase/foundation/internal/raise.h"
#include "spcbase/utility/text.h"

namespace {

char digit_of(unsigned int half) { return static_cast<char>(half < 10 ? '0' + half : 'A' + half); }

/// What a character counts, within a byte. One above 127 counts from "0", as it does where characters have a sign.
unsigned int half_of(char digit) {
  const auto byte = static_cast<BYTE>(digit);
  return static_cast<BYTE>(byte - (byte <= '9' || byte > 127 ? '0' : 'A'));
}

}  // namespace

CString byte_to_hex_text(const BYTE* bytes, int count) {
  if (count <= 0) return {};
  if (bytes == nullptr) throw_invalid_argument();
  if (count > std::numeric_limits<int>::max() / 2) AfxThrowMemoryException();
  std::string text;
  text.reserve(static_cast<std::size_t>(count) * 2);
  for (int i = 0; i < count; ++i) {
    text += digit_of(bytes[i] >> 4U);
    text += digit_of(bytes[i] & 0xFU);
  }
  return CString(std::move(text));
}

BYTE* hex_text_to_byte(const char* text, int length_chars) {
  const int count = length_chars / 2;
  if (count < 0 || (text == nullptr && count > 0)) throw_invalid_argument();
  auto bytes = std::make_unique_for_overwrite<BYTE[]>(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    const char* const digits = text + std::ptrdiff_t{i} * 2;
    bytes[static_cast<std::size_t>(i)] = static_cast<BYTE>(half_of(digits[0]) << 4U | half_of(digits[1]));
  }
  return bytes.release();
}
