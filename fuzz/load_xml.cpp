// XML from any bytes, as UTF-8 and as UTF-16: loaded, walked, written and loaded again.
// Holds: a text loads or is refused with message 1003; what was loaded is written as a text that loads and gives the
// same nodes; that text is written again as it is; each element is walked, and has a value or is refused with message
// 1002.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "spcbase/utility/xml.h"

namespace {

void expect(bool holds) {
  if (!holds) std::abort();
}

/// The document, or null when the text was refused as it should be.
template <class Text>
IXMLDOMDocumentPtr loaded(const Text& text) {
  try {
    return load_xml(text);
  } catch (const DBException& e) {
    // The parser's words quote the text, so only the first reason is the message's.
    constexpr std::string_view label = "\nreason: ";
    const CString message = e.what();
    const std::string_view told = message.view();
    const std::size_t reason = told.find(label);
    expect(told.starts_with("Load xml failed:\n\nerror code: ") && reason != told.npos);
    expect(!told.substr(reason + label.size()).starts_with('\n'));
    return nullptr;
  }
}

void add_value(const IXMLDOMNodePtr& element, std::string& told) {
  try {
    told += get_elem_value(element);
  } catch (const DBException& e) {
    expect(e.what() == "XML error.");
    told += "(no value)";
  }
}

std::string bytes_of(const _variant_t& value) {
  return value.vt == VT_BSTR ? static_cast<const char*>(static_cast<_bstr_t>(value)) : "(null)";
}

/// Everything below a node in order. An input is small, so it may recurse.
void tell(const IXMLDOMNodePtr& parent, std::string& told) {
  const IXMLDOMNodeListPtr children = parent->GetchildNodes();
  while (const IXMLDOMNodePtr child = children->nextNode()) {
    told += '(' + std::to_string(child->GetnodeType()) + static_cast<const char*>(child->GetnodeName()) + '=' +
            bytes_of(child->GetnodeValue());
    if (const IXMLDOMElementPtr element = child; element) add_value(element, told);
    tell(child, told);
    told += ')';
  }
}

std::string told_of(const IXMLDOMDocumentPtr& document) {
  std::string told;
  tell(document, told);
  return told;
}

void check(const _bstr_t& text) {
  const IXMLDOMDocumentPtr document = loaded(text);
  if (!document) return;
  expect(document->GetdocumentElement());
  const _bstr_t written = document->Getxml();
  const IXMLDOMDocumentPtr again = loaded(written);
  expect(again && told_of(again) == told_of(document) && again->Getxml() == written);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  check(_bstr_t(bytes.c_str()));
  std::vector<char16_t> units(size / 2 + 1);
  if (size > 1) std::memcpy(units.data(), data, size / 2 * 2);
  check(_bstr_t(SysAllocStringLen(units.data(), static_cast<UINT>(size / 2)), false));
  return 0;
}
