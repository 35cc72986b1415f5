/// The child walk, and elements written and read in one line each.
///
/// Part of the utilities, for the library's own use. Null and failures are as in xml.h.
#pragma once

#include "spcbase/platform/xml/narrow.h"
#include "spcbase/utility/xml.h"

/// The loop with which every reader goes through an element: calls `visit(name, child)`, a `const CString&` and a
/// `const _com_ptr_t<IXMLDOMElement>&`, for each child in order, up to the first that is not an element.
/// Kept: that child ends the walk quietly; it is not stepped over.
template <class Visit>
void walk_child_elements(const _com_ptr_t<IXMLDOMElement>& element, Visit visit) {
  const IXMLDOMNodeListPtr children = element->GetchildNodes();
  CString name;
  for (;;) {
    // A pointer of another kind asks the object for the interface, and is null when it does not have it.
    const _com_ptr_t<IXMLDOMElement> child = children->nextNode();
    if (!child) return;
    if (child->GetnodeType() != NODE_ELEMENT) continue;
    name = xml_narrow::name_of(*child);
    visit(static_cast<const CString&>(name), child);
  }
}

/// A new document; null when none can be made.
_com_ptr_t<IXMLDOMDocument> make_document();
/// Sets "ProhibitDTD" on a document that has properties.
void prohibit_document_type(const _com_ptr_t<IXMLDOMDocument>& document);

/// A new element with a text; it stands nowhere yet.
_com_ptr_t<IXMLDOMElement> make_text_element(const _com_ptr_t<IXMLDOMDocument>& document, const char* name,
                                             const CString& text);
/// The same with a number, written by "%d".
_com_ptr_t<IXMLDOMElement> make_int_element(const _com_ptr_t<IXMLDOMDocument>& document, const char* name, int number);
/// Sets an attribute to a number, written by "%d", as a string.
void set_int_attribute(const _com_ptr_t<IXMLDOMElement>& element, const char* name, int number);

/// `get_elem_value` as a CString.
CString get_elem_text(const _com_ptr_t<IXMLDOMNode>& node);
/// `get_elem_value` as `atoi` reads it: 0 for what is no number; beyond `int` the nearest one.
int get_elem_int(const _com_ptr_t<IXMLDOMNode>& node);

/// `load_xml` for narrow text.
_com_ptr_t<IXMLDOMDocument> load_xml_text(const CString& text);
