/// A page of HTML that is well-formed XML too.
///
/// Part of the command. Every text and every attribute passes one place, which escapes it, so that a name from the
/// database can be nothing but a name.
///
///     Markup page;
///     page.open("p", {{"class", "lead"}}).text("5 < 6").close();
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace spc::report_page {

/// An attribute of an element. Numbers are written with at most two decimals: they are places in a drawing.
struct Attribute {
  // NOLINTBEGIN(google-explicit-constructor): they are given in lists.
  Attribute(std::string_view of, std::string_view text) : name(of), value(text) {}
  Attribute(std::string_view of, const char* text) : name(of), value(text) {}
  Attribute(std::string_view of, std::string text) : name(of), value(std::move(text)) {}
  Attribute(std::string_view of, double number);
  // NOLINTEND(google-explicit-constructor)

  std::string_view name;
  std::string value;
};

using Attributes = std::initializer_list<Attribute>;

/// Gathers a page. Names of elements and attributes are literals.
class Markup {
 public:
  /// Begins an element, and ends the one begun last.
  Markup& open(std::string_view name, Attributes attributes = {});
  Markup& close();
  /// An element with a text in it.
  Markup& element(std::string_view name, Attributes attributes, std::string_view text);
  /// An element that never holds anything: a shape, or `meta`.
  Markup& empty(std::string_view name, Attributes attributes);
  Markup& text(std::string_view text);
  /// A name as people have given it, in whatever direction it is written.
  Markup& name(std::string_view text) { return element("bdi", {}, text); }
  /// What is markup already, or a style sheet.
  Markup& as_it_stands(std::string_view markup);

  /// The page; every element must have ended.
  /// Fails: std::logic_error when one has not.
  std::string take();

 private:
  void tag(std::string_view name, Attributes attributes);

  std::string page_;
  std::vector<std::string_view> open_;
};

/// The text with & < > " ' as references. What XML has no character for, and bytes that are not UTF-8, become U+FFFD.
std::string escaped(std::string_view text);

}  // namespace spc::report_page
