#include "spcbase/utility/xml.h"

#include <algorithm>
#include <array>
#include <unordered_map>

#include "spcbase/foundation/internal/raise.h"
#include "spcbase/platform/text/leading_int.h"
#include "spcbase/utility/internal/xml_elements.h"

namespace {

constexpr std::array words_of_truth = {"true", "yes", "1"};

[[noreturn]] void raise_load_failed(IXMLDOMDocument& document) {
  const IXMLDOMParseErrorPtr error = document.GetparseError();
  const CString format = load_message(msg::load_xml_failed);
  const _bstr_t reason = error->Getreason();
  CString text;
  text.Format(format, error->GeterrorCode(), static_cast<const char*>(reason), error->Getline(), error->Getlinepos());
  throw_db_exception(text);
}

// A document that `load` has filled.
template <class Load>
IXMLDOMDocumentPtr loaded(Load load) {
  IXMLDOMDocumentPtr document = make_document();
  document->Putasync(VARIANT_FALSE);
  prohibit_document_type(document);
  document->PutvalidateOnParse(VARIANT_FALSE);
  if (load(*document) == VARIANT_FALSE) raise_load_failed(*document);
  return document;
}

// An element's value; it stays where it is.
std::string_view value_of(const IXMLDOMNodePtr& node) {
  if (node->GetnodeType() != NODE_ELEMENT) throw_xml_exception();
  if (node->hasChildNodes() == VARIANT_FALSE) return {};
  const std::optional<std::string_view> text = xml_narrow::first_text_of(*node);
  if (!text) throw_xml_exception();
  return *text;
}

}  // namespace

XMLSerializable::~XMLSerializable() = default;

IXMLDOMDocumentPtr make_document() {
  IXMLDOMDocumentPtr document;
  // A document that could not be made shows at the first use of the null pointer.
  create_dom_document(&document);
  return document;
}

void prohibit_document_type(const IXMLDOMDocumentPtr& document) {
  if (const IXMLDOMDocument2Ptr newer = document; newer) newer->setProperty("ProhibitDTD", true);
}

IXMLDOMDocumentPtr load_xml(const _bstr_t& text) {
  return loaded([&](IXMLDOMDocument& document) { return document.loadXML(text); });
}

IXMLDOMDocumentPtr load_xml_text(const CString& text) {
  return loaded([&](IXMLDOMDocument& document) { return xml_narrow::load(document, text.view()); });
}

_bstr_t get_elem_value(const IXMLDOMNodePtr& node) { return xml_narrow::to_wide(value_of(node)); }

CString get_elem_text(const IXMLDOMNodePtr& node) { return CString(value_of(node)); }

int get_elem_int(const IXMLDOMNodePtr& node) { return platform::leading_int(value_of(node)); }

bool check_bool_value(const char* text) {
  const CString given(text);
  return std::any_of(words_of_truth.begin(), words_of_truth.end(),
                     [&](const char* word) { return given.CompareNoCase(word) == 0; });
}

IXMLDOMElementPtr make_text_element(const IXMLDOMDocumentPtr& document, const char* name, const CString& text) {
  IXMLDOMElementPtr element = xml_narrow::create_element(*document, name);
  xml_narrow::put_text(*element, text.view());
  return element;
}

IXMLDOMElementPtr make_int_element(const IXMLDOMDocumentPtr& document, const char* name, int number) {
  CString text;
  text.Format("%d", number);
  return make_text_element(document, name, text);
}

void set_int_attribute(const IXMLDOMElementPtr& element, const char* name, int number) {
  CString text;
  text.Format("%d", number);
  element->setAttribute(name, text.GetString());
}

void get_spec_from_xml(const IXMLDOMElementPtr& element, CString& name, CString& value) {
  walk_child_elements(element, [&](const CString& child_name, const IXMLDOMElementPtr& child) {
    if (child_name == "name") {
      name = get_elem_text(child);
    } else if (child_name == "value") {
      value = get_elem_text(child);
    }
  });
}

void get_spec_list_from_xml(const IXMLDOMElementPtr& element, std::vector<CString>& names,
                            std::vector<CString>& values) {
  // A list may be long: each name is looked up, not searched for. Of equal names the first counts.
  std::unordered_map<CString, std::size_t> places;
  for (std::size_t i = 0; i < names.size(); ++i)
    places.emplace(names[i], i);
  walk_child_elements(element, [&](const CString& child_name, const IXMLDOMElementPtr& child) {
    if (child_name != "specification") return;
    CString name;
    CString value;
    get_spec_from_xml(child, name, value);
    const auto [place, is_new] = places.emplace(name, names.size());
    if (is_new) {
      names.push_back(name);
      values.push_back(value);
    } else {
      values.at(place->second) = value;
    }
  });
}
