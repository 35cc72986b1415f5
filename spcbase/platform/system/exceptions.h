/// The exceptions that are thrown by pointer, and the operations that throw them.
///
/// Part of the platform layer. An exception of this family is made with `new`, thrown as a pointer, caught as
/// `CException*` (or as its own class) and released by the catcher with `Delete`:
///
///     try { work(); } catch (CException* e) { report(e); e->Delete(); }
///
/// Differs: no run-time class information and no message box; the texts are English.
#pragma once

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

/// Base of every exception thrown by pointer.
class SPCBASE_API CException {
 public:
  /// An exception that `Delete` releases.
  CException() noexcept = default;
  /// `auto_delete` false makes an exception that `Delete` leaves alone, for one that does not stand on the heap.
  explicit CException(BOOL auto_delete) noexcept : auto_delete_(auto_delete != FALSE) {}
  virtual ~CException();
  CException(const CException&) = delete;
  CException& operator=(const CException&) = delete;

  /// Writes the text of the exception.
  /// Shape:  at most `size - 1` bytes and a terminating zero; a longer text is cut there. A null `buffer` or size 0
  ///         gives FALSE. `help_context`, when not null, becomes 0.
  /// Returns TRUE when there is a text; FALSE leaves the buffer an empty text.
  virtual BOOL GetErrorMessage(char* buffer, UINT size, UINT* help_context = nullptr) const;

  /// Releases the exception. The pointer is dead afterwards.
  void Delete() noexcept;

 protected:
  /// What the `GetErrorMessage` of derived classes does with a text they know; null or empty gives FALSE.
  static BOOL write_message(const char* text, char* buffer, UINT size, UINT* help_context) noexcept;

 private:
  bool auto_delete_ = true;
};

/// Memory ran out.
class SPCBASE_API CMemoryException : public CException {
 public:
  using CException::CException;
  BOOL GetErrorMessage(char* buffer, UINT size, UINT* help_context = nullptr) const override;
};

/// What was asked for cannot be done; also every failing code of the text and time code but out of memory.
class SPCBASE_API CNotSupportedException : public CException {
 public:
  using CException::CException;
  BOOL GetErrorMessage(char* buffer, UINT size, UINT* help_context = nullptr) const override;
};

/// An argument is unusable.
class SPCBASE_API CInvalidArgException : public CException {
 public:
  using CException::CException;
  BOOL GetErrorMessage(char* buffer, UINT size, UINT* help_context = nullptr) const override;
};

/// Throws a new `CMemoryException*`.
[[noreturn]] SPCBASE_API void AfxThrowMemoryException();
/// Throws a new `CNotSupportedException*`.
[[noreturn]] SPCBASE_API void AfxThrowNotSupportedException();
/// Throws a new `CInvalidArgException*`.
[[noreturn]] SPCBASE_API void AfxThrowInvalidArgException();

/// The one place where a failing result code of the text and time code becomes an exception.
/// Fails:  `CMemoryException*` for E_OUTOFMEMORY, `CNotSupportedException*` for every other code.
[[noreturn]] SPCBASE_API void AtlThrow(HRESULT hr);
