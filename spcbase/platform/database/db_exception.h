/// CDBException, the failure of the database layer, thrown by pointer.
///
/// Part of the database platform layer. Whoever catches a `CDBException*` reads it and calls `Delete`.
#pragma once

#include <string_view>

#include "spcbase/platform/database/call_gate.h"
#include "spcbase/platform/system/exceptions.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"
#include "spcbase/platform/text/cstring.h"

/// A return code of a database call.
using RETCODE = short;

/// Return codes of failures that the layer itself finds; those of a driver are its own (-1 is SQL_ERROR).
/// Differs: only 1021 is fixed by the documents of the original; the others are of this layer.
inline constexpr RETCODE AFX_SQL_ERROR = 1000;
inline constexpr RETCODE AFX_SQL_ERROR_CONNECT_FAIL = AFX_SQL_ERROR + 2;
inline constexpr RETCODE AFX_SQL_ERROR_RECORDSET_FORWARD_ONLY = AFX_SQL_ERROR + 3;
inline constexpr RETCODE AFX_SQL_ERROR_EMPTY_COLUMN_LIST = AFX_SQL_ERROR + 4;
inline constexpr RETCODE AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH = AFX_SQL_ERROR + 5;
inline constexpr RETCODE AFX_SQL_ERROR_ILLEGAL_MODE = AFX_SQL_ERROR + 6;
inline constexpr RETCODE AFX_SQL_ERROR_MULTIPLE_ROWS_AFFECTED = AFX_SQL_ERROR + 7;
inline constexpr RETCODE AFX_SQL_ERROR_NO_CURRENT_RECORD = AFX_SQL_ERROR + 8;
inline constexpr RETCODE AFX_SQL_ERROR_NO_ROWS_AFFECTED = AFX_SQL_ERROR + 9;
inline constexpr RETCODE AFX_SQL_ERROR_RECORDSET_READONLY = AFX_SQL_ERROR + 10;
inline constexpr RETCODE AFX_SQL_ERROR_PARAMETER_COUNT = AFX_SQL_ERROR + 11;
inline constexpr RETCODE AFX_SQL_ERROR_TRANSACTION_LOST = AFX_SQL_ERROR + 12;
inline constexpr RETCODE AFX_SQL_ERROR_DATA_TRUNCATED = AFX_SQL_ERROR + 21;

/// A failed database operation.
class SPCBASE_API CDBException : public CException {
 public:
  /// The code: one of the AFX_SQL_ERROR numbers, or the driver's own.
  RETCODE m_nRetCode = 0;
  /// The driver's text, for people.
  CString m_strError;
  /// "State:23000,Native:1062,Origin:[ma-3.1.15][10.11.19-MariaDB]", one line for each record of the driver.
  CString m_strStateNativeOrigin;
  /// The statement that failed, as it was given, values of password columns masked; empty when none was sent.
  CString m_strStatement;

  /// A failure that the layer itself finds; the caller sets the text.
  explicit CDBException(RETCODE code = 0) : m_nRetCode(code) {}
  /// Holds what a driver said.
  explicit CDBException(const spcdb::Diagnostic& diagnostic);

  /// The text of m_strError.
  BOOL GetErrorMessage(char* buffer, UINT size, UINT* help_context = nullptr) const override;
};

/// Throws a CDBException* with a code and no text but the layer's own for that code.
[[noreturn]] SPCBASE_API void AfxThrowDBException(RETCODE code, const char* text = nullptr);

namespace spcdb {

/// Throws a CDBException* made from what a driver said.
[[noreturn]] SPCBASE_API void raise(const Diagnostic& diagnostic);

/// Throws a CDBException* for something that the layer itself refuses.
[[noreturn]] SPCBASE_API void raise(RETCODE code, const char* sqlstate, std::string_view text);

}  // namespace spcdb
