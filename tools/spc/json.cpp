#include "tools/spc/json.h"

#include <array>
#include <charconv>
#include <cmath>

#include "tools/spc/utf8.h"

namespace spc {
namespace {

void append_escaped(std::string& json, char c) {
  constexpr std::string_view hex = "0123456789abcdef";
  const auto code = static_cast<unsigned char>(c);
  if (c == '"' || c == '\\') {
    json += '\\';
    json += c;
  } else if (c == '\n') {
    json += "\\n";
  } else if (code < 0x20 || code == 0x7F) {
    json += "\\u00";
    json += hex[code >> 4U];
    json += hex[code & 0xFU];
  } else {
    json += c;
  }
}

}  // namespace

std::string json_text(std::string_view text) {
  std::string json = "\"";
  while (!text.empty()) {
    const auto bad = find_invalid_utf8(text);
    for (const char c : text.substr(0, bad.value_or(text.size())))
      append_escaped(json, c);
    if (!bad) break;
    json += "\xEF\xBF\xBD";
    text.remove_prefix(*bad + 1);
  }
  return json + '"';
}

std::string number_text(double number) {
  std::array<char, 32> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
  return {buffer.data(), end};
}

void JsonWriter::new_line() { out_ << '\n' << std::string(2 * has_content_.size(), ' '); }

void JsonWriter::begin_value() {
  if (after_key_) {
    after_key_ = false;
    return;
  }
  if (has_content_.empty()) return;
  if (has_content_.back()) out_ << ',';
  has_content_.back() = true;
  new_line();
}

JsonWriter& JsonWriter::open(char bracket) {
  begin_value();
  out_ << bracket;
  has_content_.push_back(false);
  return *this;
}

JsonWriter& JsonWriter::close(char bracket) {
  const bool had_content = has_content_.back();
  has_content_.pop_back();
  if (had_content) new_line();
  out_ << bracket;
  if (has_content_.empty()) out_ << '\n';
  return *this;
}

JsonWriter& JsonWriter::key(std::string_view name) {
  begin_value();
  out_ << json_text(name) << ": ";
  after_key_ = true;
  return *this;
}

JsonWriter& JsonWriter::value(std::string_view text) {
  begin_value();
  out_ << json_text(text);
  return *this;
}

JsonWriter& JsonWriter::value(long number) {
  begin_value();
  out_ << number;
  return *this;
}

JsonWriter& JsonWriter::value(double number) {
  begin_value();
  out_ << (std::isfinite(number) ? number_text(number) : "null");
  return *this;
}

JsonWriter& JsonWriter::value(bool truth) {
  begin_value();
  out_ << (truth ? "true" : "false");
  return *this;
}

JsonWriter& JsonWriter::null() {
  begin_value();
  out_ << "null";
  return *this;
}

JsonWriter& JsonWriter::whole(std::string_view json) {
  begin_value();
  if (json.ends_with('\n')) json.remove_suffix(1);
  for (const char c : json)
    c == '\n' ? new_line() : static_cast<void>(out_ << c);
  return *this;
}

}  // namespace spc
