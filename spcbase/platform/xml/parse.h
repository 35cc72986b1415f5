/// From text to nodes.
///
/// Part of the platform layer (xml), for the model itself.
#pragma once

#include <string>
#include <string_view>

#include "spcbase/platform/xml/node.h"

namespace xml_model {

/// What was wrong with a text. The code is 0 when nothing was.
struct parse_failure {
  LONG code = 0;
  std::string reason;
  LONG line = 0;
  LONG line_position = 0;
};

/// The `<?xml ...?>` of a text.
struct declaration {
  bool is_present = false;
  /// 1 yes, 0 no, any other not said.
  int standalone = -1;
};

struct parsed {
  parse_failure failure;
  declaration head;
};

/// No text is longer, in bytes of UTF-8: it is as much as the parser promises to take.
inline constexpr std::size_t longest_text_bytes = 1'000'000'000;

/// Nor has an element more attributes, namespace declarations among them, or more declarations that hold where it
/// stands; nor are there more different names. The parser's time grows by the square of each.
inline constexpr std::size_t most_attributes = 4'000;
inline constexpr std::size_t most_declarations = 4'000;
inline constexpr std::size_t most_names = 100'000;

/// Parses UTF-16, or UTF-8, and links what it holds into an empty document node. What is not well-formed UTF-8 is read
/// as U+FFFD. After a failure the node holds whatever came before it.
/// Fails: std::bad_alloc; nothing else, whatever the text holds.
parsed parse(std::u16string_view text, dom_node& document, std::size_t limit_bytes = longest_text_bytes);
parsed parse(std::string_view text, dom_node& document, std::size_t limit_bytes = longest_text_bytes);

}  // namespace xml_model
