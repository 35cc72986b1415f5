#include "tools/spc/report/markup.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "tools/spc/report/figures.h"
#include "tools/spc/utf8.h"

namespace spc::report_page {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

void append_escaped(std::string& page, char c) {
  switch (c) {
    case '&':
      page += "&amp;";
      return;
    case '<':
      page += "&lt;";
      return;
    case '>':
      page += "&gt;";
      return;
    case '"':
      page += "&quot;";
      return;
    case '\'':
      page += "&#39;";
      return;
    default:
      break;
  }
  const auto byte = static_cast<unsigned char>(c);
  // A carriage return as it stands would be read as a line end, and a page has no other controls.
  if ((byte < 0x20 && c != '\n' && c != '\t') || byte == 0x7F)
    page += replacement;
  else
    page += c;
}

/// U+FFFE and U+FFFF, which XML does not have.
std::string without_noncharacters(std::string page) {
  for (const std::string_view none : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"})
    for (std::size_t at = page.find(none); at != std::string::npos; at = page.find(none, at))
      page.replace(at, none.size(), replacement);
  return page;
}

/// Elements within a line: a line end before them would be a blank.
bool is_inline(std::string_view name) {
  constexpr std::array<std::string_view, 10> names = {"a",    "bdi",    "code",    "h1",   "span",
                                                      "text", "strong", "summary", "time", "tspan"};
  return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

Attribute::Attribute(std::string_view of, double number) : name(of), value(place_text(number)) {}

std::string escaped(std::string_view text) {
  std::string page;
  page.reserve(text.size());
  while (!text.empty()) {
    const auto bad = find_invalid_utf8(text);
    for (const char c : text.substr(0, bad.value_or(text.size())))
      append_escaped(page, c);
    if (!bad) break;
    page += replacement;
    text.remove_prefix(*bad + 1);
  }
  return without_noncharacters(std::move(page));
}

void Markup::tag(std::string_view name, Attributes attributes) {
  if (!is_inline(name) && page_.ends_with('>')) page_ += '\n';
  page_ += '<';
  page_ += name;
  for (const auto& attribute : attributes) {
    page_ += ' ';
    page_ += attribute.name;
    page_ += "=\"" + escaped(attribute.value) + '"';
  }
}

Markup& Markup::open(std::string_view name, Attributes attributes) {
  tag(name, attributes);
  page_ += '>';
  open_.push_back(name);
  return *this;
}

Markup& Markup::close() {
  if (open_.empty()) throw std::logic_error("no element is open");
  page_ += "</";
  page_ += open_.back();
  page_ += '>';
  open_.pop_back();
  return *this;
}

Markup& Markup::element(std::string_view name, Attributes attributes, std::string_view text) {
  return open(name, attributes).text(text).close();
}

Markup& Markup::empty(std::string_view name, Attributes attributes) {
  tag(name, attributes);
  page_ += "/>";
  return *this;
}

Markup& Markup::text(std::string_view text) { return as_it_stands(escaped(text)); }

Markup& Markup::as_it_stands(std::string_view markup) {
  page_ += markup;
  return *this;
}

std::string Markup::take() {
  if (!open_.empty()) throw std::logic_error("an element has not ended");
  return std::exchange(page_, {});
}

}  // namespace spc::report_page
