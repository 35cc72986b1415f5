#include "spcbase/companion/syntax_info.h"

#include <optional>
#include <string_view>

#include "spcbase/foundation/failure.h"
#include "spcbase/platform/xml/narrow.h"

namespace {

struct Part {
  std::string_view name;
  CString UserDefinedSyntaxInfo::*text;
};

constexpr Part parts[] = {
    {"date_literal", &UserDefinedSyntaxInfo::date_literal},
    {"time_literal", &UserDefinedSyntaxInfo::time_literal},
    {"timestamp_literal", &UserDefinedSyntaxInfo::timestamp_literal},
    {"concatenation", &UserDefinedSyntaxInfo::concatenation},
};

/// The text of an element, by the rule of every format of the library: none is an empty one, other content a failure.
CString text_of(IXMLDOMElement& element) {
  const std::optional<std::string_view> text = xml_narrow::first_text_of(element);
  if (!text && element.hasChildNodes() != VARIANT_FALSE) throw_xml_exception();
  return CString(text.value_or(std::string_view()));
}

}  // namespace

IXMLDOMElementPtr UserDefinedSyntaxInfo::get_xml(IXMLDOMDocumentPtr& document, const char* name) const {
  IXMLDOMElementPtr element = document->createElement(name);
  for (const Part& part : parts) {
    const IXMLDOMElementPtr child = xml_narrow::create_element(*document, part.name);
    xml_narrow::put_text(*child, (this->*part.text).view());
    element->appendChild(child);
  }
  return element;
}

void UserDefinedSyntaxInfo::set_xml(const IXMLDOMElementPtr& element) {
  const IXMLDOMNodeListPtr children = element->GetchildNodes();
  // What is no element ends the reading, as in every format of the library.
  while (const IXMLDOMElementPtr child = children->nextNode()) {
    const std::string_view name = xml_narrow::name_of(*child);
    for (const Part& part : parts)
      if (name == part.name) this->*part.text = text_of(*child);
  }
}

std::shared_ptr<UserDefinedSyntaxInfo> get_default_user_defined_syntax_info() {
  auto syntax = std::make_shared<UserDefinedSyntaxInfo>();
  syntax->date_literal = "DATE '%Y-%m-%d'";
  syntax->time_literal = "TIME '%H:%M:%S'";
  syntax->timestamp_literal = "TIMESTAMP '%Y-%m-%d %H:%M:%S'";
  syntax->concatenation = "||";
  return syntax;
}
