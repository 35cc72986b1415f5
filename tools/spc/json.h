/// JSON for machines.
///
/// Part of the command.
///
///     JsonWriter json(out);
///     json.begin_object();
///     json.key("samples").value(40);
///     json.end_object();
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace spc {

/// Writes one JSON value, indented by two blanks. Whoever calls keeps the order of keys and values right.
class JsonWriter {
 public:
  explicit JsonWriter(std::ostream& out) : out_(out) {}

  JsonWriter& begin_object() { return open('{'); }
  JsonWriter& end_object() { return close('}'); }
  JsonWriter& begin_array() { return open('['); }
  JsonWriter& end_array() { return close(']'); }
  JsonWriter& key(std::string_view name);
  JsonWriter& value(std::string_view text);
  JsonWriter& value(const char* text) { return value(std::string_view(text)); }
  JsonWriter& value(long number);
  JsonWriter& value(int number) { return value(static_cast<long>(number)); }
  JsonWriter& value(std::size_t number) { return value(static_cast<long>(number)); }
  /// The shortest text that reads back as the same number; null for what is no number.
  JsonWriter& value(double number);
  JsonWriter& value(bool truth);
  JsonWriter& null();
  /// A value that another writer has written.
  JsonWriter& whole(std::string_view json);

 private:
  JsonWriter& open(char bracket);
  JsonWriter& close(char bracket);
  void begin_value();
  void new_line();

  std::ostream& out_;
  std::vector<bool> has_content_;  ///< for each open bracket
  bool after_key_ = false;
};

/// A text as JSON, quotes included. Bytes that are not UTF-8 become U+FFFD.
std::string json_text(std::string_view text);

/// The shortest text that reads back as the same number.
std::string number_text(double number);

}  // namespace spc
