/// Filters with numbers in them, written once for each cell and so without printf and without memory of their own.
///
/// Part of data entry; not for hosts.
#pragma once

#include <charconv>
#include <cstddef>
#include <initializer_list>
#include <string_view>

namespace oldde {

/// A short filter in a buffer of its own.
class FilterText {
 public:
  /// `pattern` with each "%ld" replaced by the next number. At most 256 bytes come out, as many as a pattern of 160
  /// bytes with three numbers can need.
  std::string_view make(std::string_view pattern, std::initializer_list<long> numbers) {
    length_ = 0;
    for (const long number : numbers) {
      const std::size_t place = pattern.find("%ld");
      append(pattern.substr(0, place));
      append(number);
      pattern.remove_prefix(place + 3);
    }
    append(pattern);
    return {buffer_, length_};
  }

 private:
  void append(std::string_view text) { length_ += text.copy(buffer_ + length_, sizeof buffer_ - length_); }
  void append(long number) {
    const auto end = std::to_chars(buffer_ + length_, buffer_ + sizeof buffer_, number).ptr;
    length_ = static_cast<std::size_t>(end - buffer_);
  }

  char buffer_[256];
  std::size_t length_ = 0;
};

}  // namespace oldde
