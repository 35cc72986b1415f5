#include "spcbase/platform/text/cstring.h"

#include <algorithm>
#include <cstdio>

#include "spcbase/platform/system/message_source.h"
#include "spcbase/platform/text/locale.h"
#include "spcbase/platform/text/utf8_walk.h"

namespace {

std::size_t size_of(int length) { return static_cast<std::size_t>(length); }

std::string_view checked_view(const char* text, int length) {
  if (length < 0 || (!text && length > 0)) AtlThrow(E_INVALIDARG);
  return length > 0 ? std::string_view(text, size_of(length)) : std::string_view();
}

/// Adds a formatted text to `target`. It is made apart first, since an argument may point into the target.
__attribute__((format(printf, 2, 0))) void append_formatted(std::string& target, const char* format,
                                                            va_list arguments) {
  if (!format) AtlThrow(E_INVALIDARG);
  va_list again;
  va_copy(again, arguments);
  char small[512];
  const int length = std::vsnprintf(small, sizeof small, format, arguments);
  if (length < 0) {
    va_end(again);
    AtlThrow(E_INVALIDARG);
  }
  if (size_of(length) < sizeof small) {
    va_end(again);
    target.append(small, size_of(length));
    return;
  }
  std::string large(size_of(length), '\0');
  std::vsnprintf(large.data(), large.size() + 1, format, again);
  va_end(again);
  target.append(large);
}

}  // namespace

CString::CString(const char* text, int length) : text_(checked_view(text, length)), assigned_(true) {}

void CString::SetString(const char* text, int length) { assign(checked_view(text, length)); }

void CString::SetAt(int index, char c) {
  if (index < 0 || size_of(index) >= text_.size()) AtlThrow(E_INVALIDARG);
  text_[size_of(index)] = c;
  assigned_ = true;
}

void CString::Append(const char* text, int length) { append(checked_view(text, length)); }

CString CString::joined(std::string_view a, std::string_view b) {
  std::string text;
  text.reserve(a.size() + b.size());
  text.append(a).append(b);
  return CString(std::move(text));
}

int CString::CompareNoCase(const char* other) const noexcept {
  return platform::compare_no_case(view(), safe_view(other));
}

int CString::Collate(const char* other) const { return platform::collate(view(), safe_view(other), false); }

int CString::CollateNoCase(const char* other) const { return platform::collate(view(), safe_view(other), true); }

CString& CString::MakeUpper() {
  text_ = platform::to_upper(text_);
  assigned_ = true;
  return *this;
}

CString& CString::MakeLower() {
  text_ = platform::to_lower(text_);
  assigned_ = true;
  return *this;
}

CString& CString::MakeReverse() {
  std::string result(text_.size(), '\0');
  std::size_t end = result.size();
  for (std::size_t i = 0; i < text_.size();) {
    const std::size_t length = platform::utf8_step(text_, i).length_bytes;
    end -= length;
    text_.copy(result.data() + end, length, i);
    i += length;
  }
  text_ = std::move(result);
  assigned_ = true;
  return *this;
}

void CString::Format(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  FormatV(format, arguments);
  va_end(arguments);
}

void CString::FormatV(const char* format, va_list arguments) {
  std::string result;
  append_formatted(result, format, arguments);
  text_ = std::move(result);
  assigned_ = true;
}

void CString::AppendFormat(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  AppendFormatV(format, arguments);
  va_end(arguments);
}

void CString::AppendFormatV(const char* format, va_list arguments) {
  append_formatted(text_, format, arguments);
  assigned_ = true;
  check_size();
}

char* CString::GetBuffer(int min_length) {
  if (min_length < 0) AtlThrow(E_INVALIDARG);
  if (size_of(min_length) > text_.size()) text_.resize(size_of(min_length));
  assigned_ = true;
  return text_.data();
}

char* CString::GetBufferSetLength(int length) {
  if (length < 0) AtlThrow(E_INVALIDARG);
  text_.resize(size_of(length));
  assigned_ = true;
  return text_.data();
}

void CString::ReleaseBuffer(int length) {
  assigned_ = true;
  if (length < -1) AtlThrow(E_INVALIDARG);
  const std::size_t size = length < 0 ? std::strlen(text_.c_str()) : size_of(length);
  if (size > text_.size()) AtlThrow(E_INVALIDARG);
  text_.resize(size);
}

void CString::Preallocate(int length) {
  if (length < 0) AtlThrow(E_INVALIDARG);
  text_.reserve(size_of(length));
}

void CString::FreeExtra() { text_.shrink_to_fit(); }

BOOL CString::LoadString(UINT id) { return LoadString(AfxGetResourceHandle(), id); }

BOOL CString::LoadString(HINSTANCE source, UINT id) {
  const char* text = find_message(source, id);
  if (!text) return FALSE;
  *this = text;
  return TRUE;
}
