#include "tests/tools/json_check.h"

#include <cctype>
#include <charconv>
#include <stdexcept>

#include "tools/spc/utf8.h"

namespace json_check {
namespace {

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  Value whole() {
    if (spc::find_invalid_utf8(text_)) throw std::runtime_error("the JSON is not UTF-8");
    Value found = value();
    blanks();
    if (at_ != text_.size()) fail("something behind the value");
    return found;
  }

 private:
  [[noreturn]] void fail(const std::string& why) const {
    throw std::runtime_error("no JSON at byte " + std::to_string(at_) + ": " + why);
  }
  char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  char take() {
    if (at_ == text_.size()) fail("the text ends");
    return text_[at_++];
  }
  void want(char c) {
    if (take() != c) fail(std::string("wanted ") + c);
  }
  void blanks() {
    while (peek() == ' ' || peek() == '\n' || peek() == '\t' || peek() == '\r')
      ++at_;
  }
  bool word(std::string_view wanted) {
    if (text_.substr(at_, wanted.size()) != wanted) return false;
    at_ += wanted.size();
    return true;
  }

  Value value() {
    blanks();
    Value made;
    if (peek() == '{') return object();
    if (peek() == '[') return array();
    if (peek() == '"') {
      made.kind = Value::Kind::text;
      made.text = text();
    } else if (word("true")) {
      made.kind = Value::Kind::truth;
      made.truth = true;
    } else if (word("false")) {
      made.kind = Value::Kind::truth;
    } else if (!word("null")) {
      return number();
    }
    return made;
  }

  Value number() {
    Value made;
    made.kind = Value::Kind::number;
    const auto [stop, error] = std::from_chars(text_.data() + at_, text_.data() + text_.size(), made.number);
    const std::size_t length = static_cast<std::size_t>(stop - (text_.data() + at_));
    const std::string_view digits = text_.substr(at_, length);
    const bool form = length > 0 && (std::isdigit(static_cast<unsigned char>(digits.back())) != 0) &&
                      digits.find_first_not_of("-+.eE0123456789") == std::string_view::npos;
    if (error != std::errc() || !form) fail("no value");
    at_ += length;
    return made;
  }

  std::string text() {
    want('"');
    std::string made;
    for (char c = take(); c != '"'; c = take()) {
      if (static_cast<unsigned char>(c) < 0x20) fail("a control character in a text");
      made += c == '\\' ? escaped() : c;
    }
    return made;
  }

  char escaped() {
    const char c = take();
    if (c == '"' || c == '\\' || c == '/') return c;
    if (c == 'n') return '\n';
    if (c != 'u') fail("an unknown escape");
    unsigned code = 0;
    for (int i = 0; i < 4; ++i) {
      const char digit = take();
      if (std::isxdigit(static_cast<unsigned char>(digit)) == 0) fail("no hexadecimal digit");
      code = code * 16 + static_cast<unsigned>(std::stoi(std::string(1, digit), nullptr, 16));
    }
    if (code > 0x7F) fail("the writer escapes control characters alone");
    return static_cast<char>(code);
  }

  Value array() {
    Value made;
    made.kind = Value::Kind::array;
    want('[');
    blanks();
    if (peek() == ']') return take(), made;
    do {
      made.items.push_back(value());
      blanks();
    } while (next(']'));
    return made;
  }

  Value object() {
    Value made;
    made.kind = Value::Kind::object;
    want('{');
    blanks();
    if (peek() == '}') return take(), made;
    do {
      blanks();
      const std::string key = text();
      blanks();
      want(':');
      if (!made.members.emplace(key, value()).second) fail("the key " + key + " comes twice");
      blanks();
    } while (next('}'));
    return made;
  }

  /// A comma: go on. The closing bracket: done.
  bool next(char closing) {
    const char c = take();
    if (c != ',' && c != closing) fail("neither a comma nor a bracket");
    return c == ',';
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

const Value& Value::operator[](const std::string& key) const {
  const auto found = members.find(key);
  if (found == members.end()) throw std::runtime_error("there is no member " + key);
  return found->second;
}

Value parse(std::string_view text) { return Parser(text).whole(); }

}  // namespace json_check
