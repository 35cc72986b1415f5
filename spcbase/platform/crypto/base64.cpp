#include "spcbase/platform/crypto/base64.h"

#include <openssl/evp.h>

#include <algorithm>

namespace platform {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr unsigned char no_digit = 0xFF;  // with bits that the value of no digit has
constexpr unsigned digit_bits = 0x3F;

struct DigitValues {
  unsigned char of[256];
};

constexpr DigitValues digit_values = [] {
  DigitValues values{};
  for (unsigned char& value : values.of)
    value = no_digit;
  for (std::size_t i = 0; i < alphabet.size(); ++i)
    values.of[static_cast<unsigned char>(alphabet[i])] = static_cast<unsigned char>(i);
  return values;
}();

unsigned value_of(char c) noexcept { return digit_values.of[static_cast<unsigned char>(c)]; }

bool are_digits(const char* text, std::size_t length) noexcept {
  unsigned seen = 0;
  for (const char* c = text; c != text + length; ++c)
    seen |= digit_values.of[static_cast<unsigned char>(*c)];
  return seen <= digit_bits;
}

std::size_t padding_of(std::string_view text) noexcept {
  if (!text.ends_with('=')) return 0;
  return text.ends_with("==") ? 2 : 1;
}

/// The decoder of OpenSSL is lenient (white space, any number of padding characters, stray bits), so the form is
/// checked ahead of it.
bool is_well_formed(std::string_view text, std::size_t padding) noexcept {
  const std::size_t length = text.size() - padding;
  if (text.size() % 4 != 0 || !are_digits(text.data(), length)) return false;
  const unsigned stray_bits = padding == 0 ? 0U : padding == 1 ? 0x03U : 0x0FU;
  return padding == 0 || (value_of(text[length - 1]) & stray_bits) == 0;
}

/// OpenSSL counts in `int`: longer texts go through in pieces of whole groups.
constexpr std::size_t groups_of_a_piece = std::size_t{1} << 20;

}  // namespace

void encode_base64(std::span<const unsigned char> bytes, char* text) noexcept {
  *text = '\0';
  while (!bytes.empty()) {
    const auto piece = bytes.first(std::min(bytes.size(), groups_of_a_piece * 3));
    text += EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text), piece.data(), static_cast<int>(piece.size()));
    bytes = bytes.subspan(piece.size());
  }
}

std::optional<std::size_t> decode_base64(std::string_view text, std::span<unsigned char> bytes) noexcept {
  const std::size_t padding = padding_of(text);
  if (!is_well_formed(text, padding) || bytes.size() < base64_room(text.size())) return std::nullopt;
  const std::size_t size = base64_room(text.size()) - padding;
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, groups_of_a_piece * 4);
    const int written = EVP_DecodeBlock(bytes.data(), reinterpret_cast<const unsigned char*>(piece.data()),
                                        static_cast<int>(piece.size()));
    if (written < 0) return std::nullopt;
    bytes = bytes.subspan(static_cast<std::size_t>(written));
    text.remove_prefix(piece.size());
  }
  return size;
}

}  // namespace platform
