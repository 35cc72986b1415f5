#include "spcbase/foundation/internal/raise.h"

#include "spcbase/foundation/failure.h"
#include "spcbase/platform/system/message_source.h"
#include "spcbase/platform/system/system_error.h"

namespace {

// Holds a text that the system allocated.
class SystemText {
 public:
  explicit SystemText(DWORD error) noexcept {
    constexpr DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM;
    constexpr DWORD default_language = 0x400;
    FormatMessageA(flags, nullptr, error, default_language, reinterpret_cast<char*>(&text_), 0, nullptr);
  }
  ~SystemText() { LocalFree(text_); }
  SystemText(const SystemText&) = delete;
  SystemText& operator=(const SystemText&) = delete;

  const char* get() const noexcept { return text_; }

 private:
  char* text_ = nullptr;
};

}  // namespace

OwnMessages::OwnMessages() : messages_(current_messages()), previous_(AfxGetResourceHandle()) {
  AfxSetResourceHandle(messages_->handle());
}

OwnMessages::~OwnMessages() { AfxSetResourceHandle(previous_); }

CString load_message(UINT id) {
  const OwnMessages ours;
  CString text;
  text.LoadString(id);
  return text;
}

void throw_db_exception(const char* text) { throw DBException(text, result_code::failed); }

void throw_db_exception_by_id(UINT id) { throw_db_exception(load_message(id)); }

void throw_invalid_argument() { throw_db_exception_by_id(msg::invalid_argument); }

CString get_system_error_text(DWORD error) { return CString(SystemText(error).get()); }

void raise_update_failed() { throw result_code::update_failed; }

void raise_open_failed() { throw result_code::open_failed; }

void raise_bad_value() { throw result_code::bad_value; }

void raise_no_array_or_row() { throw result_code::no_array_or_row; }

void raise_invalid_argument_code() { throw result_code::invalid_argument; }

void raise_unexpected() { throw result_code::unexpected; }

void raise_result(HRESULT code) { throw static_cast<long>(code); }
