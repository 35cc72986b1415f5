/// A reader of JSON that is strict, for tests of what the command writes.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace json_check {

/// A value. Objects keep no order and must not repeat a key.
struct Value {
  enum class Kind { null, truth, number, text, array, object } kind = Kind::null;
  bool truth = false;
  double number = 0;
  std::string text;
  std::vector<Value> items;
  std::map<std::string, Value> members;

  /// Fails: std::runtime_error when there is no such member.
  const Value& operator[](const std::string& key) const;
};

/// Fails: std::runtime_error that says where the text is no JSON.
Value parse(std::string_view text);

}  // namespace json_check
