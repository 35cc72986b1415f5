#include "spcbase/platform/database/connect_text.h"

#include <algorithm>

namespace spcdb {
namespace {

char upper(char c) noexcept { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
bool is_blank(char c) noexcept { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string_view trimmed(std::string_view text) noexcept {
  while (!text.empty() && is_blank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && is_blank(text.back()))
    text.remove_suffix(1);
  return text;
}

/// Reads {value} from an opening brace on; returns the position behind it.
std::size_t read_braced(std::string_view text, std::size_t start, ConnectItem& item) {
  std::size_t i = start + 1;
  for (; i < text.size(); ++i) {
    if (text[i] == '}') {
      if (i + 1 >= text.size() || text[i + 1] != '}') return i + 1;
      ++i;
    }
    item.value += text[i];
  }
  item.closed = false;
  return i;
}

/// Reads a value up to its semicolon; returns the position of that.
std::size_t read_value(std::string_view text, std::size_t start, ConnectItem& item) {
  std::size_t i = start;
  while (i < text.size() && is_blank(text[i]))
    ++i;
  item.value_begin = i;
  if (i < text.size() && text[i] == '{') {
    item.value_end = read_braced(text, i, item);
    return std::min(text.find(';', item.value_end), text.size());
  }
  const auto end = std::min(text.find(';', i), text.size());
  item.value = trimmed(text.substr(i, end - i));
  item.value_end = i + item.value.size();
  return end;
}

}  // namespace

bool same_word(std::string_view a, std::string_view b) noexcept {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return upper(x) == upper(y); });
}

std::vector<ConnectItem> parse_connect_text(std::string_view text) {
  std::vector<ConnectItem> items;
  for (std::size_t i = 0; i < text.size(); ++i) {
    ConnectItem item;
    const auto stop = std::min(text.find_first_of("=;", i), text.size());
    const auto word = trimmed(text.substr(i, stop - i));
    const bool has_key = stop < text.size() && text[stop] == '=';
    if (has_key) item.key = word;
    i = read_value(text, has_key ? stop + 1 : i, item);
    if (has_key || !item.value.empty() || !item.closed) items.push_back(std::move(item));
  }
  return items;
}

const ConnectItem* find_item(const std::vector<ConnectItem>& items, std::string_view key) {
  const auto found =
      std::find_if(items.begin(), items.end(), [&](const ConnectItem& item) { return same_word(item.key, key); });
  return found == items.end() ? nullptr : &*found;
}

}  // namespace spcdb
