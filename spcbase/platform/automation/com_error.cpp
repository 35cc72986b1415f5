#include "spcbase/platform/automation/com_error.h"

#include <cstdio>

#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/error_info.h"
#include "spcbase/platform/system/system_error.h"

namespace {

constexpr HRESULT first_wcode = make_hresult(0x80040200U);
constexpr HRESULT last_wcode = make_hresult(0x8004FFFFU);

std::string system_text(HRESULT code) {
  char* buffer = nullptr;
  constexpr DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  FormatMessageA(flags, nullptr, static_cast<DWORD>(code), 0, reinterpret_cast<char*>(&buffer), 0, nullptr);
  if (buffer == nullptr) return {};
  std::string text(buffer);
  LocalFree(buffer);
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
    text.pop_back();
  return text;
}

std::string message_of(HRESULT code) {
  std::string text = system_text(code);
  if (!text.empty()) return text;
  char buffer[40];
  if (const WORD number = _com_error::HRESULTToWCode(code); number != 0) {
    std::snprintf(buffer, sizeof buffer, "IDispatch error #%u", static_cast<unsigned>(number));
  } else {
    std::snprintf(buffer, sizeof buffer, "Unknown error 0x%08X", static_cast<unsigned>(code));
  }
  return buffer;
}

}  // namespace

_com_error::_com_error(HRESULT code, IErrorInfo* info, bool add_reference) noexcept : code_(code), info_(info) {
  if (info_ != nullptr && add_reference) info_->AddRef();
}

_com_error::_com_error(const _com_error& other) noexcept
    : code_(other.code_), info_(other.info_), message_(other.message_) {
  if (info_ != nullptr) info_->AddRef();
}

_com_error& _com_error::operator=(const _com_error& other) noexcept {
  if (other.info_ != nullptr) other.info_->AddRef();
  if (info_ != nullptr) info_->Release();
  code_ = other.code_;
  info_ = other.info_;
  message_ = other.message_;
  return *this;
}

_com_error::~_com_error() noexcept {
  if (info_ != nullptr) info_->Release();
}

const char* _com_error::ErrorMessage() const {
  if (message_ == nullptr) message_ = std::make_shared<const std::string>(message_of(code_));
  return message_->c_str();
}

IErrorInfo* _com_error::ErrorInfo() const noexcept {
  if (info_ != nullptr) info_->AddRef();
  return info_;
}

_bstr_t _com_error::Description() const {
  BSTR text = nullptr;
  if (info_ != nullptr) info_->GetDescription(&text);
  return _bstr_t(text, false);
}

_bstr_t _com_error::Source() const {
  BSTR text = nullptr;
  if (info_ != nullptr) info_->GetSource(&text);
  return _bstr_t(text, false);
}

WORD _com_error::HRESULTToWCode(HRESULT code) noexcept {
  return code >= first_wcode && code <= last_wcode ? static_cast<WORD>(code - first_wcode) : WORD{0};
}

void _com_issue_error(HRESULT code) { throw _com_error(code); }
