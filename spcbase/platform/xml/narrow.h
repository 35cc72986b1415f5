/// The document model in UTF-8, for the library itself: the same operations without the way through UTF-16.
///
/// Part of the platform layer (xml).
/// Fails: as the operations of dom.h, and E_NOINTERFACE for an object that is not of this model. A text that is not
///        well-formed UTF-8 has U+FFFD in the place of what is not, as everywhere on the way to a BSTR; a zero is
///        refused with XML_E_BADCHARDATA.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "spcbase/platform/xml/dom.h"

namespace xml_narrow {

/// `nodeName`, valid as long as the node.
std::string_view name_of(IXMLDOMNode& node);
/// `nodeValue` of a node that has one, else empty; valid until the node changes.
std::string_view value_of(IXMLDOMNode& node);
/// `nodeValue` of the first child that is a text, none when there is no such child; valid until the children change.
std::optional<std::string_view> first_text_of(IXMLDOMNode& node);
/// `createElement`.
IXMLDOMElementPtr create_element(IXMLDOMDocument& document, std::string_view name);
/// `text`.
void put_text(IXMLDOMNode& node, std::string_view text);
/// `loadXML`.
VARIANT_BOOL load(IXMLDOMDocument& document, std::string_view text);
/// `xml`.
std::string xml_of(IXMLDOMDocument& document);
/// A text as the model hands it out.
_bstr_t to_wide(std::string_view text);

}  // namespace xml_narrow
