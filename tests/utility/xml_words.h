/// Short words for tests of what is kept as XML.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "spcbase/utility/xml.h"

namespace xml_words {

inline IXMLDOMElementPtr root_of(const char* text) { return load_xml(text)->GetdocumentElement(); }

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

/// The text of the `DBException` that a call throws, which has the code of all of them; empty when it throws nothing.
template <class Call>
CString db_failure_of(Call&& call) {
  try {
    call();
  } catch (const DBException& e) {
    EXPECT_EQ(e.error_code, result_code::failed);
    return e.what();
  }
  return "";
}

}  // namespace xml_words
