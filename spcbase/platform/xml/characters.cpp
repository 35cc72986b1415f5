#include "spcbase/platform/xml/characters.h"

#include <libxml/tree.h>

#include <algorithm>

#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/text/unicode.h"
#include "spcbase/platform/xml/dom.h"

namespace xml_model {

namespace {

bool is_high_half(char16_t unit) noexcept { return (unit & 0xFC00U) == 0xD800U; }
bool is_half(char16_t unit) noexcept { return (unit & 0xF800U) == 0xD800U; }

// Writes a block when it is all ASCII without zeros. The count is fixed, so that no unit needs a branch.
constexpr std::size_t block_units = 32;
bool put_ascii_block(const char16_t* units, char* out) noexcept {
  unsigned other = 0;
  for (std::size_t i = 0; i < block_units; ++i) {
    other |= (units[i] & 0xFF80U) | (units[i] == 0 ? 1U : 0U);
    out[i] = static_cast<char>(units[i]);
  }
  return other == 0;
}

// Writes a character of two to four bytes and gives the place behind it.
char* put_wide(char32_t c, char* out) noexcept {
  const auto put = [&](char32_t bits) { *out++ = static_cast<char>(static_cast<unsigned char>(bits)); };
  if (c < 0x800) {
    put(0xC0U | c >> 6);
  } else {
    if (c >= 0x10000) put(0xF0U | c >> 18);
    put(c < 0x10000 ? 0xE0U | c >> 12 : 0x80U | (c >> 12 & 0x3FU));
    put(0x80U | (c >> 6 & 0x3FU));
  }
  put(0x80U | (c & 0x3FU));
  return out;
}

// Well-formed UTF-8 holds U+FFFE and U+FFFF as EF BF BE and EF BF BF.
bool has_noncharacter(std::string_view text) noexcept {
  for (std::size_t at = text.find("\xEF\xBF"); at != std::string_view::npos; at = text.find("\xEF\xBF", at + 1)) {
    if (at + 2 < text.size() && static_cast<unsigned char>(text[at + 2]) >= 0xBEU) return true;
  }
  return false;
}

void check_characters(std::string_view text) {
  const auto is_control = [](char c) { return static_cast<unsigned char>(c) < 0x20U && !is_blank(c); };
  if (std::any_of(text.begin(), text.end(), is_control) || has_noncharacter(text)) _com_issue_error(XML_E_BADCHARDATA);
}

bool is_valid_name(std::string_view name) {
  // The checking function reads up to a zero; the caller's view need not end in one.
  const std::string copy(name);
  return xmlValidateQName(reinterpret_cast<const xmlChar*>(copy.c_str()), 0) == 0;
}

}  // namespace

std::u16string_view view(const _bstr_t& text) noexcept {
  const char16_t* const wide = text;
  return wide == nullptr ? std::u16string_view() : std::u16string_view(wide, text.length());
}

bool is_blank(std::string_view text) noexcept {
  return std::all_of(text.begin(), text.end(), [](char c) { return is_blank(c); });
}

// The number of units of the next character: 0 when it is a zero or half of a pair.
std::size_t narrowing::length_here() const noexcept {
  const char16_t unit = text_[at_];
  if (unit == 0) return 0;
  if (!is_half(unit)) return 1;
  const bool has_second = at_ + 1 < text_.size() && is_half(text_[at_ + 1]) && !is_high_half(text_[at_ + 1]);
  return is_high_half(unit) && has_second ? 2 : 0;
}

std::size_t narrowing::read(char* out, std::size_t room_bytes) noexcept {
  char* const begin = out;
  char* const end = out + room_bytes;
  constexpr std::ptrdiff_t longest_character = 4;
  for (std::size_t next_try = at_; at_ < text_.size() && end - out >= longest_character && !is_stuck_;) {
    // Behind a block that is not all ASCII the next one is tried only where it ends.
    const bool has_room = text_.size() - at_ >= block_units && end - out >= static_cast<std::ptrdiff_t>(block_units);
    if (at_ >= next_try && has_room) {
      next_try = at_ + block_units;
      if (!put_ascii_block(&text_[at_], out)) continue;
      at_ += block_units;
      out += block_units;
      continue;
    }
    const char16_t unit = text_[at_];
    if (unit != 0 && unit < 0x80U) {
      *out++ = static_cast<char>(unit);
      ++at_;
      continue;
    }
    const std::size_t length = length_here();
    is_stuck_ = length == 0;
    if (is_stuck_) break;
    out = put_wide(length == 1 ? unit : 0x10000U + ((unit & 0x3FFU) << 10) + (text_[at_ + 1] & 0x3FFU), out);
    at_ += length;
  }
  return static_cast<std::size_t>(out - begin);
}

std::string to_narrow(std::u16string_view text, HRESULT code) {
  narrowing reading(text);
  std::string result;
  char piece[1'024];
  while (const std::size_t count = reading.read(piece, sizeof piece))
    result.append(piece, count);
  if (reading.is_stuck()) _com_issue_error(code);
  return result;
}

std::string checked_text(const _bstr_t& text) {
  std::string narrow = to_narrow(view(text), XML_E_BADCHARDATA);
  check_characters(narrow);
  return narrow;
}

std::string_view checked_text(std::string_view text, std::string& buffer) {
  if (!platform::is_valid_utf8(text)) {
    buffer = platform::to_utf8(platform::to_utf16(text));
    text = buffer;
  }
  check_characters(text);
  return text;
}

std::string checked_name(const _bstr_t& name) {
  std::string narrow = to_narrow(view(name), XML_E_BADNAMECHAR);
  check_name(narrow);
  return narrow;
}

void check_name(std::string_view name) {
  if (name.empty()) _com_issue_error(E_FAIL);
  const bool has_zero = name.find('\0') != std::string_view::npos;
  if (has_zero || !platform::is_valid_utf8(name)) _com_issue_error(XML_E_BADNAMECHAR);
  if (is_valid_name(name)) return;
  _com_issue_error(is_valid_name(platform::utf8_cut_chars(name, 1)) ? XML_E_BADNAMECHAR : XML_E_BADSTARTNAMECHAR);
}

_bstr_t to_wide(std::string_view text) {
  const std::u16string wide = platform::to_utf16(text);
  BSTR const made = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (made == nullptr) _com_issue_error(E_OUTOFMEMORY);
  return _bstr_t(made, false);
}

std::string_view prefix_of(std::string_view name) noexcept {
  const std::size_t colon = name.find(':');
  return colon == std::string_view::npos ? std::string_view() : name.substr(0, colon);
}

}  // namespace xml_model
