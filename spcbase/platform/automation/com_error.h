/// The exception of automation: a result code, and the error object that came with it.
///
/// Part of the platform layer (automation). It is thrown by value; catch it as `const _com_error&`. It is not a
/// `std::exception`, as in the original.
///
/// Differs: message texts are UTF-8 and come from the system texts of the platform layer.
#pragma once

#include <memory>
#include <string>

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

struct IErrorInfo;
class _bstr_t;

/// A result code that failed, thrown by value, with the error object that goes with it.
class SPCBASE_API _com_error {
 public:
  /// `info`, when given, is the error object of the failure; it is taken over unless `add_reference` is true.
  explicit _com_error(HRESULT code, IErrorInfo* info = nullptr, bool add_reference = false) noexcept;
  _com_error(const _com_error& other) noexcept;
  _com_error& operator=(const _com_error& other) noexcept;
  virtual ~_com_error() noexcept;

  /// The result code.
  HRESULT Error() const noexcept { return code_; }
  /// The code's text without line end, UTF-8: the system's text, "IDispatch error #n" for codes 0x80040200 and up, or
  /// "Unknown error 0x........". Lives as long as the object.
  const char* ErrorMessage() const;
  /// The error object with a reference added, or null.
  /// Owns: the caller.
  IErrorInfo* ErrorInfo() const noexcept;
  /// The error object's description and source; null texts when there is no error object.
  _bstr_t Description() const;
  _bstr_t Source() const;
  /// The code within 0x80040200 to 0x8004FFFF as a small number, else 0.
  static WORD HRESULTToWCode(HRESULT code) noexcept;

 private:
  HRESULT code_;
  IErrorInfo* info_;
  mutable std::shared_ptr<const std::string> message_;
};

/// Throws `_com_error` with this code.
[[noreturn]] SPCBASE_API void _com_issue_error(HRESULT code);

namespace _com_util {
/// Throws `_com_error` when the code means failure.
inline void CheckError(HRESULT code) {
  if (FAILED(code)) _com_issue_error(code);
}
}  // namespace _com_util
