/// Raising: each kind of failure has one named function, so that a search for it finds every place that raises it.
///
/// Part of the database foundation, for the library's own use.
#pragma once

#include <memory>

#include "spcbase/foundation/internal/message_table.h"
#include "spcbase/platform/system/types.h"
#include "spcbase/platform/text/cstring.h"

/// Makes the library's own table, in the language that the host installed (messages.h), the thread's current message
/// source for a scope: a host carries a table of its own, which comes back at the end, however the scope is left.
class OwnMessages {
 public:
  OwnMessages();
  ~OwnMessages();
  OwnMessages(const OwnMessages&) = delete;
  OwnMessages& operator=(const OwnMessages&) = delete;

 private:
  std::shared_ptr<const MessageSource> messages_;
  HINSTANCE previous_;
};

/// The text with this number from the library's own table, in the language that the host installed; empty for an
/// unknown number. The thread's current message source is the same before and after.
/// A text is a format only when its English form has placeholders; then it takes the same values in every language.
CString load_message(UINT id);

/// Fails: always, `DBException` with the text and 0x80004005.
[[noreturn]] void throw_db_exception(const char* text);
/// Fails: always, `DBException` with the message and 0x80004005.
[[noreturn]] void throw_db_exception_by_id(UINT id);
/// Fails: always, `DBException` "Invalid argument." with 0x80004005.
[[noreturn]] void throw_invalid_argument();

/// The system's text for one of its error numbers, as it gives it, line end included; empty when it has none.
CString get_system_error_text(DWORD error);

/// Each throws its `long` of namespace `result_code`.
[[noreturn]] void raise_update_failed();
[[noreturn]] void raise_open_failed();
[[noreturn]] void raise_bad_value();
[[noreturn]] void raise_no_array_or_row();
[[noreturn]] void raise_invalid_argument_code();
[[noreturn]] void raise_unexpected();
/// Throws the failing code of a platform call as it stands, as a `long`.
[[noreturn]] void raise_result(HRESULT code);
