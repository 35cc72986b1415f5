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
/// The index of the first unit of a UTF-16 text that cannot even be written down in UTF-8 or ends a C text: a zero or
/// half of a pair. npos when there is none.
std::size_t find_unwritable(std::u16string_view text) noexcept;
/// UTF-16 to UTF-8, quick for texts that are mostly ASCII; half of a pair becomes U+FFFD.
std::string to_narrow(std::u16string_view text);
/// UTF-8 to UTF-16; an empty text gives an empty string, not null.
_bstr_t to_wide(std::string_view text);

/// The text as UTF-8. Fails: XML_E_BADCHARDATA when it holds what XML does not have.
std::string checked_text(const _bstr_t& text);
/// The same for narrow text; what is not well-formed becomes U+FFFD. `buffer` holds the result when it had to change.
std::string_view checked_text(std::string_view text, std::string& buffer);

/// The name as UTF-8. Fails: E_FAIL when it is empty, XML_E_BADSTARTNAMECHAR, XML_E_BADNAMECHAR.
std::string checked_name(const _bstr_t& name);
/// The same for a narrow name.
void check_name(std::string_view name);
/// What stands before the colon; empty without one.
std::string_view prefix_of(std::string_view name) noexcept;

}  // namespace xml_model
