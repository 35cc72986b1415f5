/// A report's page as a test reads it: by the library's own reader of XML.
#pragma once

#include <string>
#include <vector>

#include "spcbase/platform/xml/dom.h"

namespace report_test {

using Rows = std::vector<std::vector<std::string>>;

/// One element of a page.
struct Element {
  std::string name;
  IXMLDOMElementPtr node;

  /// Empty when there is none.
  std::string attribute(const char* of) const;
  /// All text in it.
  std::string text() const;
};

class PageReader {
 public:
  /// Fails: DBException when the page, behind its first line, is not well-formed.
  explicit PageReader(const std::string& page);

  /// In the order of the page.
  const std::vector<Element>& elements() const { return elements_; }
  std::vector<Element> named(const std::string& name) const;
  /// Those in the element with an id.
  std::vector<Element> named(const std::string& name, const std::string& within) const;
  /// The element with an id. Fails: std::out_of_range.
  const Element& with_id(const std::string& id) const;
  std::size_t count(const std::string& name, const std::string& style) const;

  /// The rows of all tables in the element with an id, the headings among them.
  Rows rows(const std::string& within) const;
  std::string text(const std::string& within) const { return with_id(within).text(); }

 private:
  IXMLDOMDocumentPtr document_;
  std::vector<Element> elements_;
};

/// The whole file.
std::string content_of(const std::string& file);

}  // namespace report_test
