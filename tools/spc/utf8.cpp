#include "tools/spc/utf8.h"

#include <algorithm>
#include <array>

#include "spcbase/platform/text/unicode.h"

namespace spc {
namespace {

/// One character of a text; length 0 for bytes that are none.
struct Character {
  char32_t code = 0;
  std::size_t length = 0;
};

unsigned byte_at(std::string_view text, std::size_t at) { return static_cast<unsigned char>(text[at]); }

Character decode(std::string_view text, std::size_t at) {
  const unsigned lead = byte_at(text, at);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() - at < length) return {};
  char32_t code = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const unsigned next = byte_at(text, at + i);
    if ((next & 0xC0U) != 0x80U) return {};
    code = code << 6U | (next & 0x3FU);
  }
  constexpr std::array<char32_t, 5> least = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < least.at(length) || surrogate || code > 0x10FFFF) return {};
  return {code, length};
}

struct Range {
  char32_t first;
  char32_t last;
};

constexpr std::array combining = {
    Range{0x0300, 0x036F}, Range{0x0483, 0x0489},  Range{0x0591, 0x05BD}, Range{0x0610, 0x061A}, Range{0x064B, 0x065F},
    Range{0x0E34, 0x0E3A}, Range{0x0E47, 0x0E4E},  Range{0x1AB0, 0x1AFF}, Range{0x1DC0, 0x1DFF}, Range{0x200B, 0x200F},
    Range{0x202A, 0x202E}, Range{0x2060, 0x2064},  Range{0x20D0, 0x20FF}, Range{0xFE00, 0xFE0F}, Range{0xFE20, 0xFE2F},
    Range{0xFEFF, 0xFEFF}, Range{0xE0100, 0xE01EF}};

constexpr std::array wide = {
    Range{0x1100, 0x115F},   Range{0x2E80, 0x303E},   Range{0x3041, 0x33FF},   Range{0x3400, 0x4DBF},
    Range{0x4E00, 0x9FFF},   Range{0xA000, 0xA4CF},   Range{0xA960, 0xA97C},   Range{0xAC00, 0xD7A3},
    Range{0xF900, 0xFAFF},   Range{0xFE30, 0xFE6F},   Range{0xFF00, 0xFF60},   Range{0xFFE0, 0xFFE6},
    Range{0x1F300, 0x1F64F}, Range{0x1F680, 0x1F6FF}, Range{0x1F900, 0x1F9FF}, Range{0x20000, 0x3FFFD}};

template <std::size_t Size>
bool within(const std::array<Range, Size>& ranges, char32_t code) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [code](const Range& range) { return code >= range.first && code <= range.last; });
}

}  // namespace

std::optional<std::size_t> find_invalid_utf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = decode(text, at).length;
    if (length == 0) return at;
    at += length;
  }
  return std::nullopt;
}

std::size_t display_width(std::string_view text) {
  std::size_t width = 0;
  for (std::size_t at = 0; at < text.size();) {
    const Character character = decode(text, at);
    at += std::max<std::size_t>(character.length, 1);
    if (character.length > 1 && within(combining, character.code)) continue;
    width += character.length > 1 && within(wide, character.code) ? 2U : 1U;
  }
  return width;
}

std::string on_one_line(std::string_view text) {
  std::string line(text);
  std::replace_if(
      line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
  return line;
}

std::string quoted(std::string_view text) {
  constexpr std::size_t most = 40;
  std::string shown = on_one_line(text);
  if (platform::utf8_length_chars(shown) > most) {
    std::size_t end = most;
    while (end < shown.size() && (byte_at(shown, end) & 0xC0U) == 0x80U)
      ++end;
    shown = shown.substr(0, end) + "...";
  }
  return '"' + shown + '"';
}

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace spc
