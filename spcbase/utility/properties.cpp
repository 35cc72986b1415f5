#include "spcbase/utility/properties.h"

#include "spcbase/utility/internal/xml_elements.h"

namespace spcbaseutil {

IXMLDOMElementPtr PropertyVec::get_xml(IXMLDOMDocumentPtr& document) const {
  IXMLDOMElementPtr properties = document->createElement("properties");
  for (const Property& each : *this) {
    const IXMLDOMElementPtr element = xml_narrow::create_element(*document, "property");
    element->appendChild(make_text_element(document, "name", each.name));
    element->appendChild(make_text_element(document, "value", each.value));
    properties->appendChild(element);
  }
  return properties;
}

void PropertyVec::set_xml(const IXMLDOMElementPtr& properties) {
  clear();
  walk_child_elements(properties, [&](const CString& name, const IXMLDOMElementPtr& child) {
    if (name != "property") return;
    Property property;
    set_property_xml(child, property);
    push_back(std::move(property));
  });
}

void PropertyVec::set_property_xml(const IXMLDOMElementPtr& element, Property& property) {
  walk_child_elements(element, [&](const CString& name, const IXMLDOMElementPtr& child) {
    if (name == "name") {
      property.name = get_elem_text(child);
    } else if (name == "value") {
      property.value = get_elem_text(child);
    }
  });
}

}  // namespace spcbaseutil
