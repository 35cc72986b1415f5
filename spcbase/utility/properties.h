/// Property vectors: free-form settings inside a larger XML text.
///
/// Part of the utilities. A vector is an ordered list of name and value pairs. Names need not be unique, and nothing
/// here interprets them. The format, element names exact and with regard to case:
///
///     <properties>
///       <property><name>colour</name><value>blue</value></property>
///       ...
///     </properties>
///
/// Null:  a null document or element throws `_com_error` with E_POINTER.
/// Fails: `_com_error` with the code of the document model that refuses something, a character that XML does not have
///        for example; `DBException` "XML error." where `get_elem_value` finds no text.
#pragma once

#include <vector>

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"
#include "spcbase/platform/xml/dom.h"

namespace spcbaseutil {

/// One setting.
struct Property {
  CString name;   ///< what it is called
  CString value;  ///< as text
};

/// Settings in order.
class SPCBASE_API PropertyVec : public std::vector<Property> {
 public:
  using std::vector<Property>::vector;

  /// A new element "properties" that `document` has created, with one "property" for each entry; it stands nowhere yet,
  /// the caller puts it where it belongs.
  _com_ptr_t<IXMLDOMElement> get_xml(_com_ptr_t<IXMLDOMDocument>& document) const;

  /// Replaces the entries by the children "property" of a "properties" element, read by the child walk: it ends at the
  /// first child that is not an element, and other elements are passed over. A missing "name" or "value" is empty; of
  /// several the last counts.
  /// Fails: the vector is cleared first, and holds what was read up to the failure.
  void set_xml(const _com_ptr_t<IXMLDOMElement>& properties);

 private:
  void set_property_xml(const _com_ptr_t<IXMLDOMElement>& element, Property& property);
};

}  // namespace spcbaseutil
