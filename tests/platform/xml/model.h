/// Short words for tests of the document model.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "spcbase/platform/xml/dom.h"

namespace model {

inline IXMLDOMDocumentPtr new_document() {
  IXMLDOMDocumentPtr document;
  EXPECT_EQ(create_dom_document(&document), S_OK);
  return document;
}

/// Whether a text loads.
inline bool loads(const std::string& text) { return new_document()->loadXML(text.c_str()) == VARIANT_TRUE; }

inline std::string narrow(const _bstr_t& text) {
  const char* const bytes = text;
  return bytes == nullptr ? "(null)" : bytes;
}

/// A document with a text that loads.
inline IXMLDOMDocumentPtr load(const char* text) {
  IXMLDOMDocumentPtr document = new_document();
  EXPECT_EQ(document->loadXML(text), VARIANT_TRUE) << text << '\n' << narrow(document->GetparseError()->Getreason());
  return document;
}

inline std::string xml_of(const IXMLDOMDocumentPtr& document) { return narrow(document->Getxml()); }

inline std::string value_of(const _variant_t& value) {
  return value.vt == VT_NULL ? "null" : narrow(static_cast<_bstr_t>(value));
}

/// The code of the `_com_error` that a call throws; S_OK when it throws nothing.
template <class Call>
HRESULT code_of(Call&& call) {
  try {
    call();
  } catch (const _com_error& e) {
    return e.Error();
  }
  return S_OK;
}

}  // namespace model
