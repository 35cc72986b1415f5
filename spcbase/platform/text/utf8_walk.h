/// Stepping through UTF-8 one character at a time.
///
/// Part of the platform layer; not for hosts.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace platform {

/// One step: the code point and the bytes it took. An ill-formed byte is a step of its own, not `valid`, with the byte
/// as its number.
struct Utf8Step {
  char32_t code_point;
  std::size_t length_bytes;
  bool valid;
};

/// Reads the character at a position below the text's size.
inline Utf8Step utf8_step(std::string_view text, std::size_t at) noexcept {
  const auto byte = [&](std::size_t i) { return static_cast<char32_t>(static_cast<unsigned char>(text[i])); };
  const char32_t lead = byte(at);
  if (lead < 0x80) return {lead, 1, true};
  const Utf8Step ill_formed{lead, 1, false};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() - at < length) return ill_formed;
  char32_t c = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const char32_t next = byte(at + i);
    if ((next & 0xC0U) != 0x80U) return ill_formed;
    c = c << 6 | (next & 0x3FU);
  }
  constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
  if (c < least[length] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return ill_formed;
  return {c, length, true};
}

/// Adds a code point that is no surrogate.
inline void utf8_append(std::string& text, char32_t c) {
  const auto add = [&](char32_t bits) { text.push_back(static_cast<char>(static_cast<unsigned char>(bits))); };
  if (c < 0x80) return add(c);
  if (c < 0x800) {
    add(0xC0U | c >> 6);
  } else {
    if (c < 0x10000) {
      add(0xE0U | c >> 12);
    } else {
      add(0xF0U | c >> 18);
      add(0x80U | (c >> 12 & 0x3FU));
    }
    add(0x80U | (c >> 6 & 0x3FU));
  }
  add(0x80U | (c & 0x3FU));
}

}  // namespace platform
