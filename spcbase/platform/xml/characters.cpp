#include "spcbase/platform/xml/characters.h"

#include <libxml/tree.h>

#include <algorithm>

#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/text/unicode.h"
#include "spcbase/platform/xml/dom.h"

namespace xml_model {

namespace {

bool is_high_half(char16_t unit) noexcept { return (unit & 0xFC00U) == 0xD800U; }
bool is_low_half(char16_t unit) noexcept { return (unit & 0xFC00U) == 0xDC00U; }

bool is_suspicious(char16_t unit) noexcept { return unit == 0 || (unit & 0xF800U) == 0xD800U; }

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

std::size_t find_unwritable(std::u16string_view text) noexcept {
  // Whole blocks first, without a branch for each unit: nearly every text has nothing to look at.
  constexpr std::size_t block = 64;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.size(), at + block);
    bool any = false;
    for (std::size_t i = at; i < end; ++i)
      any |= is_suspicious(text[i]);
    for (; any && at < end; ++at) {
      if (!is_suspicious(text[at])) continue;
      const bool is_pair = is_high_half(text[at]) && at + 1 < text.size() && is_low_half(text[at + 1]);
      if (!is_pair) return at;
      ++at;
    }
    at = std::max(at, end);
  }
  return std::u16string_view::npos;
}

std::string to_narrow(std::u16string_view text) {
  constexpr std::size_t block = 64;
  constexpr std::ptrdiff_t longest_run = 1 << 20;
  std::string narrow;
  narrow.reserve(text.size() + text.size() / 8);
  const auto is_wide = [](char16_t unit) { return unit >= 0x80U; };
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.size(), at + block);
    char ascii[block];
    char16_t seen = 0;
    for (std::size_t i = at; i < end; ++i) {
      seen |= text[i];
      ascii[i - at] = static_cast<char>(text[i]);
    }
    if (!is_wide(seen)) {
      narrow.append(ascii, end - at);
      at = end;
      continue;
    }
    const auto* const first = std::find_if(text.begin() + at, text.end(), is_wide);
    const auto* last = std::find_if_not(first, std::min(text.end(), first + longest_run), is_wide);
    if (is_high_half(last[-1])) ++last;
    narrow.append(text.begin() + at, first);
    narrow += platform::to_utf8({first, static_cast<std::size_t>(last - first)});
    at = static_cast<std::size_t>(last - text.begin());
  }
  return narrow;
}

std::string checked_text(const _bstr_t& text) {
  if (find_unwritable(view(text)) != std::u16string_view::npos) _com_issue_error(XML_E_BADCHARDATA);
  std::string narrow = to_narrow(view(text));
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
  if (find_unwritable(view(name)) != std::u16string_view::npos) _com_issue_error(XML_E_BADNAMECHAR);
  std::string narrow = to_narrow(view(name));
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
