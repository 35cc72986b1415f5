#include "spcbase/platform/xml/attribute_watch.h"

#include <algorithm>

namespace xml_model {

bool attribute_watch::take(std::string_view piece) noexcept {
  while (!piece.empty() && !has_too_many()) {
    const std::size_t passed = length_of_no_account(piece);
    if (passed == piece.size()) break;
    step(piece[passed]);
    piece.remove_prefix(passed + 1);
  }
  return !has_too_many();
}

std::size_t attribute_watch::length_of_no_account(std::string_view piece) const noexcept {
  const auto until = [piece](auto counts) {
    std::size_t i = 0;
    while (i < piece.size() && !counts(piece[i]))
      ++i;
    return i;
  };
  switch (place_) {
    case place::text:
      return std::min(piece.find('<'), piece.size());
    case place::value:
      return std::min(piece.find(quote_), piece.size());
    case place::start_tag:
      return until([](char c) { return c == '>' || c == '"' || c == '\''; });
    case place::end_tag:
      return until([](char c) { return c == '>'; });
    default:
      return 0;
  }
}

void attribute_watch::step(char c) noexcept {
  switch (place_) {
    case place::text:
      place_ = place::opened;
      return;
    case place::opened:
      return open(c);
    case place::start_tag:
      return step_in_start_tag(c);
    case place::value:
      place_ = place::start_tag;
      return;
    case place::end_tag:
      place_ = place::text;
      return;
    case place::marked:
      // What is neither is a document type, at which the parser stops.
      place_ = c == '-' ? place::comment_opened : c == '[' ? place::section : place::text;
      return;
    case place::comment_opened:
      place_ = place::comment;
      return;
    case place::comment:
      return skip_to("--", c);
    case place::section:
      return skip_to("]]", c);
    case place::instruction:
      return skip_to("?", c);
  }
}

void attribute_watch::open(char c) noexcept {
  last_[0] = last_[1] = 0;
  place_ = c == '!' ? place::marked : c == '?' ? place::instruction : c == '/' ? place::end_tag : place::start_tag;
  if (place_ == place::start_tag) count_ = 0;
}

void attribute_watch::step_in_start_tag(char c) noexcept {
  place_ = c == '>' ? place::text : place::value;
  if (place_ == place::text) return;
  quote_ = c;
  ++count_;
}

void attribute_watch::skip_to(std::string_view end, char c) noexcept {
  if (c == '>' && std::string_view(last_, 2).ends_with(end)) place_ = place::text;
  last_[0] = last_[1];
  last_[1] = c;
}

}  // namespace xml_model
