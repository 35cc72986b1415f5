/// Which characters and names XML has.
///
/// Part of the platform layer (xml), for the model itself.
/// Source: Extensible Markup Language 1.0, fifth edition, productions 2 and 4; Namespaces in XML 1.0, productions 4, 7.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "spcbase/platform/automation/bstr_t.h"

namespace xml_model {

/// The four characters that are white space in XML.
constexpr bool is_blank(char c) noexcept { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }
/// Whether a text is nothing but white space; the empty one is.
bool is_blank(std::string_view text) noexcept;

/// The units of a string, none for null.
std::u16string_view view(const _bstr_t& text) noexcept;
/// A UTF-16 text that is read as UTF-8, piece by piece, quickly where it is ASCII.
class narrowing {
 public:
  explicit narrowing(std::u16string_view text) noexcept : text_(text) {}

  /// Writes what fits, whole characters only, and gives the number of bytes; 0 at the end. The room is 4 or more.
  std::size_t read(char* out, std::size_t room_bytes) noexcept;
  /// The index of the next unit.
  std::size_t at() const noexcept { return at_; }
  /// Whether the next unit cannot be written down or would end a C text: half of a pair, or a zero. Reading ends there.
  bool is_stuck() const noexcept { return is_stuck_; }

 private:
  std::size_t length_here() const noexcept;

  std::u16string_view text_;
  std::size_t at_ = 0;
  bool is_stuck_ = false;
};
/// The whole text.
/// Fails: `_com_error` with `code` when reading it gets stuck.
std::string to_narrow(std::u16string_view text, HRESULT code);
/// UTF-8 to UTF-16; an empty text gives an empty string, not null.
_bstr_t to_wide(std::string_view text);

/// The text as UTF-8.
/// Fails: XML_E_BADCHARDATA when it holds what XML does not have.
std::string checked_text(const _bstr_t& text);
/// The same for narrow text; what is not well-formed becomes U+FFFD. `buffer` holds the result when it had to change.
std::string_view checked_text(std::string_view text, std::string& buffer);

/// The name as UTF-8.
/// Fails: E_FAIL when it is empty, XML_E_BADSTARTNAMECHAR, XML_E_BADNAMECHAR.
std::string checked_name(const _bstr_t& name);
/// The same for a narrow name.
void check_name(std::string_view name);
/// What stands before the colon; empty without one.
std::string_view prefix_of(std::string_view name) noexcept;

}  // namespace xml_model
