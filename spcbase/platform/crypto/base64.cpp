#include "spcbase/platform/crypto/base64.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>

namespace platform {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr unsigned char no_digit = 0xFF;

constexpr std::array<unsigned char, 256> digit_values = [] {
  std::array<unsigned char, 256> values{};
  values.fill(no_digit);
  for (std::size_t i = 0; i < alphabet.size(); ++i)
    values[static_cast<unsigned char>(alphabet[i])] = static_cast<unsigned char>(i);
  return values;
}();

unsigned char value_of(char c) noexcept { return digit_values[static_cast<unsigned char>(c)]; }

std::size_t padding_of(std::string_view text) noexcept {
  if (!text.ends_with('=')) return 0;
  return text.ends_with("==") ? 2 : 1;
}

/// The decoder of OpenSSL is lenient (white space, any number of padding characters, stray bits), so the form is
/// checked ahead of it.
bool is_well_formed(std::string_view text, std::size_t padding) noexcept {
  if (text.size() % 4 != 0) return false;
  const std::string_view digits = text.substr(0, text.size() - padding);
  if (!std::ranges::all_of(digits, [](char c) { return value_of(c) != no_digit; })) return false;
  const unsigned stray_bits = padding == 0 ? 0U : padding == 1 ? 0x03U : 0x0FU;
  return (padding == 0) || (value_of(digits.back()) & stray_bits) == 0;
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
