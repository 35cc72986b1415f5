#include "spcbase/platform/xml/write.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

#include "spcbase/platform/xml/characters.h"

namespace xml_model {

namespace {

constexpr std::string_view declaring = "xmlns:";

/// Goes through the tree without recursion, however deep it is.
class writer {
 public:
  void write_below(const dom_node& top);
  std::string& text() noexcept { return text_; }

 private:
  void enter(const dom_node& node);
  void leave(const dom_node& node);
  void enter_element(const dom_node& element);
  void open_scope(const dom_node& element);
  void close_scope(const dom_node& element);
  void check_prefix(std::string_view name) const;
  void write_text(std::string_view text);
  void write_escaped(std::string_view text, bool is_attribute);
  void write_reference(char c);

  std::string text_;
  /// What xml:space says, for the document and each open element that has attributes.
  std::vector<bool> keeps_blanks_ = {false};
  /// How many of the open elements declare a prefix.
  std::unordered_map<std::string_view, std::size_t> declared_;
};

void writer::write_below(const dom_node& top) {
  const dom_node* node = top.first_node();
  while (node != nullptr) {
    enter(*node);
    if (node->first_node() != nullptr) {
      node = node->first_node();
      continue;
    }
    for (;;) {
      leave(*node);
      if (node->parent() == &top) text_ += "\r\n";
      if (node->next() != nullptr || node->parent() == &top) break;
      node = node->parent();
    }
    node = node->next();
  }
}

void writer::enter(const dom_node& node) {
  switch (node.type()) {
    case NODE_ELEMENT:
      return enter_element(node);
    case NODE_TEXT:
      return write_text(node.value());
    case NODE_CDATA_SECTION:
      text_.append("<![CDATA[").append(node.value()).append("]]>");
      return;
    case NODE_COMMENT:
      text_.append("<!--").append(node.value()).append("-->");
      return;
    case NODE_PROCESSING_INSTRUCTION:
      text_.append("<?").append(node.name());
      if (!node.value().empty()) text_.append(" ").append(node.value());
      text_.append("?>");
      return;
    case NODE_DOCUMENT:
      return;
  }
}

void writer::enter_element(const dom_node& element) {
  if (element.attributes() != nullptr) open_scope(element);
  check_prefix(element.name());
  text_.append("<").append(element.name());
  for (const attribute* each = element.attributes(); each != nullptr; each = each->next) {
    check_prefix(each->name);
    text_.append(" ").append(each->name).append("=\"");
    write_escaped(each->value, true);
    text_.append("\"");
  }
  text_.append(element.has_children() ? ">" : "/>");
  if (const text_block* const lone = element.lone_text()) write_text(lone->view());
}

void writer::leave(const dom_node& node) {
  if (node.has_children()) text_.append("</").append(node.name()).append(">");
  if (node.attributes() != nullptr) close_scope(node);
}

void writer::open_scope(const dom_node& element) {
  bool keeps_blanks = keeps_blanks_.back();
  for (const attribute* each = element.attributes(); each != nullptr; each = each->next) {
    if (each->name == "xml:space") keeps_blanks = each->value == "preserve";
    if (each->name.starts_with(declaring)) ++declared_[each->name.substr(declaring.size())];
  }
  keeps_blanks_.push_back(keeps_blanks);
}

void writer::close_scope(const dom_node& element) {
  for (const attribute* each = element.attributes(); each != nullptr; each = each->next)
    if (each->name.starts_with(declaring)) --declared_[each->name.substr(declaring.size())];
  keeps_blanks_.pop_back();
}

void writer::check_prefix(std::string_view name) const {
  const std::string_view prefix = prefix_of(name);
  if (prefix.empty() || prefix == "xml" || prefix == "xmlns") return;
  const auto found = declared_.find(prefix);
  if (found == declared_.end() || found->second == 0) _com_issue_error(E_FAIL);
}

void writer::write_text(std::string_view text) {
  // White space alone would be dropped by whoever loads it; a reference at its beginning keeps it.
  const bool is_at_risk = !text.empty() && is_blank(text) && !keeps_blanks_.back();
  if (is_at_risk) {
    write_reference(text[0]);
    text.remove_prefix(1);
  }
  write_escaped(text, false);
}

void writer::write_reference(char c) { text_.append("&#").append(std::to_string(static_cast<int>(c))).append(";"); }

void writer::write_escaped(std::string_view text, bool is_attribute) {
  const std::string_view special = is_attribute ? "&<>\"\r\n\t" : "&<>\r";
  for (;;) {
    const std::size_t plain = std::min(text.find_first_of(special), text.size());
    text_.append(text.substr(0, plain));
    if (plain == text.size()) return;
    switch (const char c = text[plain]) {
      case '&':
        text_.append("&amp;");
        break;
      case '<':
        text_.append("&lt;");
        break;
      case '>':
        text_.append("&gt;");
        break;
      case '"':
        text_.append("&quot;");
        break;
      default:
        write_reference(c);
    }
    text.remove_prefix(plain + 1);
  }
}

}  // namespace

std::string write(const dom_node& document, const declaration& head) {
  writer writing;
  if (head.is_present) {
    writing.text().append("<?xml version=\"1.0\"");
    if (head.standalone == 0 || head.standalone == 1)
      writing.text().append(" standalone=\"").append(head.standalone == 1 ? "yes" : "no").append("\"");
    writing.text().append("?>\r\n");
  }
  writing.write_below(document);
  return std::move(writing.text());
}

}  // namespace xml_model
