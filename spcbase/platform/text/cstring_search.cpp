// The operations of CString that look for something in the text, and change it there.
#include <algorithm>

#include "spcbase/platform/text/cstring.h"
#include "spcbase/platform/text/utf8_walk.h"

namespace {

constexpr std::string_view white_space = " \t\n\v\f\r";

int index_of(std::size_t position) { return position == std::string_view::npos ? -1 : static_cast<int>(position); }

std::size_t size_of(int length) { return length > 0 ? static_cast<std::size_t>(length) : 0U; }

/// Whether the character at a position is one of a set.
bool in_set(std::string_view text, std::size_t at, std::size_t length, std::string_view set) {
  if (length == 1) return set.find(text[at]) != std::string_view::npos;
  // A multi-byte character's bytes occur in a UTF-8 text only as that character.
  return set.find(text.substr(at, length)) != std::string_view::npos;
}

/// The first position at or after `at` whose character is in the set (or is not, when `wanted` is false), else the
/// size.
std::size_t find_in_set(std::string_view text, std::size_t at, std::string_view set, bool wanted) {
  while (at < text.size()) {
    const std::size_t length = platform::utf8_step(text, at).length_bytes;
    if (in_set(text, at, length, set) == wanted) break;
    at += length;
  }
  return at;
}

/// Where the characters of a set at the end of a text begin.
std::size_t begin_of_tail(std::string_view text, std::string_view set) {
  std::size_t tail = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = platform::utf8_step(text, at).length_bytes;
    if (!in_set(text, at, length, set)) tail = at + length;
    at += length;
  }
  return tail;
}

}  // namespace

CString CString::Mid(int first, int count) const {
  const std::size_t from = size_of(first);
  if (from >= text_.size() || count <= 0) return CString("");
  return CString(view().substr(from, size_of(count)));
}

CString CString::Right(int count) const {
  const std::size_t wanted = std::min(size_of(count), text_.size());
  return CString(view().substr(text_.size() - wanted));
}

CString CString::SpanIncluding(const char* set) const {
  return CString(view().substr(0, find_in_set(text_, 0, safe_view(set), false)));
}

CString CString::SpanExcluding(const char* set) const {
  return CString(view().substr(0, find_in_set(text_, 0, safe_view(set), true)));
}

int CString::Find(char c, int start) const noexcept {
  if (start < 0 || start >= GetLength()) return -1;
  return index_of(view().find(c, size_of(start)));
}

int CString::Find(const char* text, int start) const noexcept {
  if (!text || start < 0 || start > GetLength()) return -1;
  return index_of(view().find(text, size_of(start)));
}

int CString::ReverseFind(char c) const noexcept { return index_of(view().rfind(c)); }

int CString::FindOneOf(const char* set) const noexcept {
  const std::size_t found = find_in_set(text_, 0, safe_view(set), true);
  return found < text_.size() ? static_cast<int>(found) : -1;
}

int CString::Replace(char old_char, char new_char) {
  assigned_ = true;
  if (old_char == new_char) return 0;
  int count = 0;
  for (char& c : text_) {
    if (c != old_char) continue;
    c = new_char;
    ++count;
  }
  return count;
}

int CString::Replace(const char* old_text, const char* new_text) {
  assigned_ = true;
  const std::string_view wanted = safe_view(old_text);
  const std::string_view replacement = safe_view(new_text);
  if (wanted.empty()) return 0;
  std::string result;
  int count = 0;
  std::size_t from = 0;
  for (std::size_t at = text_.find(wanted); at != std::string::npos; at = text_.find(wanted, from)) {
    result.append(text_, from, at - from).append(replacement);
    from = at + wanted.size();
    ++count;
  }
  if (count == 0) return 0;
  result.append(text_, from);
  text_ = std::move(result);
  check_size();
  return count;
}

int CString::Remove(char c) {
  assigned_ = true;
  return static_cast<int>(std::erase(text_, c));
}

int CString::Insert(int index, char c) {
  text_.insert(std::min(size_of(index), text_.size()), 1, c);
  assigned_ = true;
  return GetLength();
}

int CString::Insert(int index, const char* text) {
  // The text may lie in this CString, and std::string allows that.
  text_.insert(std::min(size_of(index), text_.size()), text ? text : "");
  assigned_ = true;
  check_size();
  return GetLength();
}

int CString::Delete(int index, int count) {
  assigned_ = true;
  if (size_of(index) < text_.size()) text_.erase(size_of(index), size_of(count));
  return GetLength();
}

void CString::Truncate(int length) {
  if (length < 0) AtlThrow(E_INVALIDARG);
  assigned_ = true;
  if (size_of(length) < text_.size()) text_.resize(size_of(length));
}

CString& CString::TrimLeft() {
  text_.erase(0, std::min(text_.find_first_not_of(white_space), text_.size()));
  assigned_ = true;
  return *this;
}

CString& CString::TrimRight() {
  text_.resize(text_.find_last_not_of(white_space) + 1);
  assigned_ = true;
  return *this;
}

CString& CString::TrimLeft(char c) {
  text_.erase(0, std::min(text_.find_first_not_of(c), text_.size()));
  assigned_ = true;
  return *this;
}

CString& CString::TrimRight(char c) {
  text_.resize(text_.find_last_not_of(c) + 1);
  assigned_ = true;
  return *this;
}

CString& CString::TrimLeft(const char* set) {
  text_.erase(0, find_in_set(text_, 0, safe_view(set), false));
  assigned_ = true;
  return *this;
}

CString& CString::TrimRight(const char* set) {
  text_.resize(begin_of_tail(text_, safe_view(set)));
  assigned_ = true;
  return *this;
}

CString CString::Tokenize(const char* separators, int& start) const {
  if (start < 0) AtlThrow(E_INVALIDARG);
  const std::string_view set = safe_view(separators);
  const std::size_t from = find_in_set(text_, size_of(start), set, false);
  if (from >= text_.size()) {
    start = -1;
    return CString("");
  }
  const std::size_t end = find_in_set(text_, from, set, true);
  // Behind the separator, or at the end where there is none: the call after that finds nothing more.
  start = static_cast<int>(end < text_.size() ? end + platform::utf8_step(text_, end).length_bytes : end);
  return CString(view().substr(from, end - from));
}
