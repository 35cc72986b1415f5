#include "tests/tools/report_page_reader.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "spcbase/utility/xml.h"

namespace report_test {
namespace {

std::string narrow(const _bstr_t& text) { return text.length() == 0 ? "" : static_cast<const char*>(text); }

void gather(const IXMLDOMElementPtr& element, std::vector<Element>& found) {
  found.push_back({narrow(element->GetnodeName()), element});
  const auto children = element->GetchildNodes();
  while (const IXMLDOMNodePtr child = children->nextNode())
    if (child->GetnodeType() == NODE_ELEMENT) gather(IXMLDOMElementPtr(child), found);
}

void append_text(const IXMLDOMNodePtr& node, std::string& text) {
  const auto children = node->GetchildNodes();
  while (const IXMLDOMNodePtr child = children->nextNode()) {
    if (child->GetnodeType() == NODE_TEXT)
      text += narrow(_bstr_t(child->GetnodeValue()));
    else
      append_text(child, text);
  }
}

std::vector<Element> all_in(const Element& element) {
  std::vector<Element> found;
  gather(element.node, found);
  return found;
}

std::vector<Element> only(const std::vector<Element>& elements, const std::string& name) {
  std::vector<Element> found;
  std::ranges::copy_if(elements, std::back_inserter(found), [&](const Element& each) { return each.name == name; });
  return found;
}

}  // namespace

std::string Element::attribute(const char* of) const {
  const _variant_t value = node->getAttribute(of);
  return value.vt == VT_NULL ? std::string() : narrow(_bstr_t(value));
}

std::string Element::text() const {
  std::string all;
  append_text(node, all);
  return all;
}

PageReader::PageReader(const std::string& page)
    : document_(load_xml(_bstr_t(page.substr(page.find('\n') + 1).c_str()))) {
  gather(document_->GetdocumentElement(), elements_);
}

std::vector<Element> PageReader::named(const std::string& name) const { return only(elements_, name); }

std::vector<Element> PageReader::named(const std::string& name, const std::string& within) const {
  return only(all_in(with_id(within)), name);
}

const Element& PageReader::with_id(const std::string& id) const {
  const auto found = std::ranges::find_if(elements_, [&](const Element& each) { return each.attribute("id") == id; });
  if (found == elements_.end()) throw std::out_of_range("the page has no " + id);
  return *found;
}

std::size_t PageReader::count(const std::string& name, const std::string& style) const {
  const auto all = named(name);
  return static_cast<std::size_t>(
      std::ranges::count_if(all, [&](const Element& each) { return each.attribute("class") == style; }));
}

Rows PageReader::rows(const std::string& within) const {
  Rows found;
  for (const auto& row : named("tr", within)) {
    auto& cells = found.emplace_back();
    for (const auto& each : all_in(row))
      if (each.name == "td" || each.name == "th") cells.push_back(each.text());
  }
  return found;
}

std::string content_of(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace report_test
