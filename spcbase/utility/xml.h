/// XML: loading a text, reading elements, and what a class does that can be kept as XML.
///
/// Part of the utilities. The library's own formats (data sources, schedules, date ranges, property lists) are read and
/// written with these functions and no others.
///
///     IXMLDOMDocumentPtr document = load_xml("<filter><specification><name>line</name><value>4</value>"
///                                            "</specification></filter>");
///     std::vector<CString> names, values;
///     get_spec_list_from_xml(document->GetdocumentElement(), names, values);
///
/// Every reader goes through the children of an element in one way, the child walk. It ends quietly at the first child
/// that is not an element.
/// Kept: so nothing behind a comment, an instruction or a text among the children is ever read. Stored definitions
///       are read like that everywhere.
///
/// Null:  a null pointer to a document, node or element throws `_com_error` with E_POINTER.
/// Fails: what the document model refuses throws `_com_error` with its code, E_OUTOFMEMORY when memory runs out.
#pragma once

#include <vector>

#include "spcbase/foundation/failure.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"
#include "spcbase/platform/xml/dom.h"

/// What an object does that can be kept as XML.
class SPCBASE_API XMLSerializable {
 public:
  virtual ~XMLSerializable();
  /// Writes the object in a version of its format.
  /// Returns a new element that `document` has created and that stands nowhere yet; the caller puts it in its place.
  virtual _com_ptr_t<IXMLDOMElement> get_xml(int version, _com_ptr_t<IXMLDOMDocument>& document) const = 0;
  /// Overwrites the fields from the children of an element. The element's own name does not matter.
  virtual void set_xml(int version, const _com_ptr_t<IXMLDOMElement>& element) = 0;

 protected:
  XMLSerializable() = default;
  XMLSerializable(const XMLSerializable&) = default;
  XMLSerializable& operator=(const XMLSerializable&) = default;
};

/// Parses a text. Document type declarations are refused; white space alone between tags is dropped.
/// Fails: `DBException` with 0x80004005 and the text "Load xml failed:" with the parser's own code, reason, line and
///        position. So fails also, with the code 1, what takes the parser too long (docs/xml.md).
SPCBASE_API _com_ptr_t<IXMLDOMDocument> load_xml(const _bstr_t& text);

/// The text of an element: its first child that is a text. An element without children has an empty one.
/// Kept:  a CDATA section is no text, and later texts do not count.
/// Fails: `DBException` "XML error." with 0x80004005 when the node is not an element, or has children but no text.
SPCBASE_API _bstr_t get_elem_value(const _com_ptr_t<IXMLDOMNode>& node);

/// Whether a text is "true", "yes" or "1", in any case of letters.
/// Null:  is false.
SPCBASE_API bool check_bool_value(const char* text);

/// Reads one specification by the child walk: "name" and "value". What has no child keeps what it held.
/// Fails: as `get_elem_value`; what was read before the failure stays.
SPCBASE_API void get_spec_from_xml(const _com_ptr_t<IXMLDOMElement>& element, CString& name, CString& value);

/// Merges every "specification" child, found by the child walk, into two parallel vectors. A name that is there
/// already, from before the call too, keeps its place and takes the new value; any other is appended. Names are
/// compared with regard to case, and the empty one is a name like any other.
/// Fails: as `get_elem_value`; the specifications before the failing one stay merged.
SPCBASE_API void get_spec_list_from_xml(const _com_ptr_t<IXMLDOMElement>& element, std::vector<CString>& names,
                                        std::vector<CString>& values);
