/// Watches a text on its way to the parser for an element with too many attributes.
///
/// Part of the platform layer (xml), for the model itself. The parser compares every attribute of an element with all
/// that stand before it, and tells nobody of them till it has done so: a hundred thousand take it seconds, a million
/// minutes. So they are counted before it gets them.
#pragma once

#include <cstddef>
#include <string_view>

namespace xml_model {

class attribute_watch {
 public:
  explicit attribute_watch(std::size_t limit) noexcept : limit_(limit) {}

  /// Takes the next piece of a text in UTF-8. Returns whether no element has had more attributes than the limit so far.
  /// Of a text that is no XML it may see more or less than there is.
  bool take(std::string_view piece) noexcept;
  bool has_too_many() const noexcept { return count_ > limit_; }

 private:
  enum class place { text, opened, start_tag, value, end_tag, marked, comment_opened, comment, section, instruction };

  /// How many of the next bytes change nothing.
  std::size_t length_of_no_account(std::string_view piece) const noexcept;
  /// Takes a byte of account.
  void step(char c) noexcept;
  void open(char c) noexcept;
  void step_in_start_tag(char c) noexcept;
  void skip_to(std::string_view end, char c) noexcept;

  std::size_t limit_;
  /// Of the element whose tag was begun last.
  std::size_t count_ = 0;
  place place_ = place::text;
  char quote_ = 0;
  /// The two bytes before the next one.
  char last_[2] = {};
};

}  // namespace xml_model
