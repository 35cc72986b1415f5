#include "spcbase/platform/automation/bstr_t.h"

#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/text/unicode.h"

struct _bstr_t::shared_text {
  explicit shared_text(BSTR taken) noexcept : wide(taken) {}
  shared_text(const shared_text&) = delete;
  shared_text& operator=(const shared_text&) = delete;
  ~shared_text() { SysFreeString(wide); }

  BSTR wide;
  std::optional<std::string> narrow;
};

namespace {

std::u16string_view view(BSTR text) {
  return text == nullptr ? std::u16string_view() : std::u16string_view(text, SysStringLen(text));
}

BSTR checked(BSTR text) {
  if (text == nullptr) _com_issue_error(E_OUTOFMEMORY);
  return text;
}

BSTR copy_of(std::u16string_view text) {
  return checked(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())));
}

// A copy of a string byte for byte; null stays null.
BSTR copy_of(BSTR text) {
  if (text == nullptr) return nullptr;
  return checked(SysAllocStringByteLen(reinterpret_cast<const char*>(text), SysStringByteLen(text)));
}

BSTR widened(const char* text) {
  if (text == nullptr) return nullptr;
  try {
    return copy_of(platform::to_utf16(text));
  } catch (const std::bad_alloc&) {
    _com_issue_error(E_OUTOFMEMORY);
  }
}

}  // namespace

_bstr_t::_bstr_t(const char* text) { Attach(widened(text)); }

_bstr_t::_bstr_t(const char16_t* text) {
  if (text != nullptr) Attach(copy_of(std::u16string_view(text)));
}

_bstr_t::_bstr_t(BSTR text, bool copy) { Attach(copy ? copy_of(text) : text); }

unsigned int _bstr_t::length() const noexcept { return SysStringLen(wide()); }

_bstr_t::operator const char*() const { return static_cast<char*>(*this); }

_bstr_t::operator char*() const {
  if (wide() == nullptr) return nullptr;
  try {
    if (!text_->narrow) text_->narrow = platform::to_utf8(view(wide()));
  } catch (const std::bad_alloc&) {
    _com_issue_error(E_OUTOFMEMORY);
  }
  return text_->narrow->data();
}

BSTR _bstr_t::copy(bool copy) const { return copy ? copy_of(wide()) : wide(); }

BSTR _bstr_t::Detach() {
  if (wide() == nullptr) _com_issue_error(E_POINTER);
  BSTR const text = std::exchange(own_text().wide, nullptr);
  text_.reset();
  return text;
}

void _bstr_t::Attach(BSTR text) {
  try {
    text_ = text == nullptr ? nullptr : std::make_shared<shared_text>(text);
  } catch (const std::bad_alloc&) {
    SysFreeString(text);
    _com_issue_error(E_OUTOFMEMORY);
  }
}

void _bstr_t::Assign(BSTR text) { Attach(copy_of(text)); }

BSTR& _bstr_t::GetBSTR() { return own_text().wide; }

BSTR* _bstr_t::GetAddress() {
  text_.reset();
  return &own_text().wide;
}

_bstr_t& _bstr_t::operator+=(const _bstr_t& other) {
  *this = *this + other;
  return *this;
}

_bstr_t operator+(const _bstr_t& left, const _bstr_t& right) {
  try {
    std::u16string text(view(left.wide()));
    text += view(right.wide());
    return _bstr_t(copy_of(text), false);
  } catch (const std::bad_alloc&) {
    _com_issue_error(E_OUTOFMEMORY);
  }
}

bool operator==(const _bstr_t& left, const _bstr_t& right) noexcept { return (left <=> right) == 0; }

bool operator==(const _bstr_t& left, const char* right) { return left == _bstr_t(right); }

bool operator==(const _bstr_t& left, const char16_t* right) noexcept {
  if (left.wide() == nullptr || right == nullptr) return left.wide() == right;
  return view(left.wide()) == right;
}

std::strong_ordering operator<=>(const _bstr_t& left, const _bstr_t& right) noexcept {
  if (left.wide() == nullptr || right.wide() == nullptr) return (left.wide() != nullptr) <=> (right.wide() != nullptr);
  return view(left.wide()) <=> view(right.wide());
}

BSTR _bstr_t::wide() const noexcept { return text_ == nullptr ? nullptr : text_->wide; }

// What is handed out for writing must be nobody else's, and its UTF-8 form may not outlive the write.
_bstr_t::shared_text& _bstr_t::own_text() {
  if (text_ == nullptr || text_.use_count() > 1) {
    BSTR const text = copy_of(wide());
    try {
      text_ = std::make_shared<shared_text>(text);
    } catch (const std::bad_alloc&) {
      SysFreeString(text);
      _com_issue_error(E_OUTOFMEMORY);
    }
  }
  text_->narrow.reset();
  return *text_;
}
