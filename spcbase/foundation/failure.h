/// The failure model: what the library throws, and the helpers that read and build the automation error object.
///
/// Part of the database foundation. There is no single error type. Seven kinds of failure reach a host, chosen by the
/// layer that fails, and an exported function lets whatever was raised below it pass:
///
///     DBException                        by value    the library's own rules, with a text from its message table
///     rev::RevisionException             by value    the rules of revision control
///     long                               by value    data entry and safe arrays: a result code
///     CDBException*                      by pointer  the database; release with Delete
///     CMemoryException* and its kin      by pointer  the platform; caught as CException*, released with Delete
///     _com_error                         by value    automation objects and XML
///     std::exception                     by value    cryptography and the standard containers
///
/// `guarded` (outcome.h) catches all of them in one place.
#pragma once

#include <utility>

#include "spcbase/platform/automation/com_ptr.h"
#include "spcbase/platform/automation/error_info.h"
#include "spcbase/platform/system/exceptions.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/guid.h"
#include "spcbase/platform/system/types.h"
#include "spcbase/platform/text/cstring.h"

/// The result codes that the library throws or returns as a `long`: an HRESULT with its sign extended.
namespace result_code {

/// The code of every `DBException` but the one of a failed lock.
inline constexpr long failed = E_FAIL;
/// An argument is unusable, or an array holds another type than the one asked for.
inline constexpr long invalid_argument = E_INVALIDARG;
/// Something happened that the rules do not foresee.
inline constexpr long unexpected = E_UNEXPECTED;
/// `CRecordset::Update` returned false.
inline constexpr long update_failed = make_hresult(0x80041507U);
/// `CRecordset::Open` returned false, or a step that was needed to read the data failed.
inline constexpr long open_failed = make_hresult(0x80041508U);
/// A cell's value could not be converted, or an argument is unusable.
inline constexpr long bad_value = make_hresult(0x8004150aU);
/// A safe array could not be built or filled, or a read found no usable row.
inline constexpr long no_array_or_row = make_hresult(0x8004150dU);

}  // namespace result_code

/// A failure of the library's own rules. Thrown and caught by value.
class SPCBASE_API DBException {
 public:
  /// Null: a null text stands for an empty one.
  DBException(const char* text, long code);
  DBException(const DBException& other);
  DBException& operator=(const DBException& other);

  /// The text for people.
  virtual CString what() const;
  virtual ~DBException();

  CString message;      ///< what `what` returns
  long error_code = 0;  ///< the result code that goes with the text
};

namespace rev {

/// A failure of revision control. Its message stays empty and its code is 0x80004005; the text follows from the reason.
class SPCBASE_API RevisionException : public DBException {
 public:
  /// Holds the four numbers; the text follows from the reason.
  RevisionException(int object_type, int object_id, int revision, int reason);

  /// The text for the reason: 0 no revisions, 1 not the latest revision, 2 already approved, 3 a broken revision; empty
  /// for a reason that is not known.
  /// Kept: reason 4, a revision id that cannot be read, has the text of reason 3.
  CString what() const override;
  ~RevisionException() override;

  /// The type and id of the object, the number of the revision, and the reason, as `what` tells it.
  int object_type;
  int object_id;
  int revision;
  int reason;
};

}  // namespace rev

/// The usual end of a `CRecordset::Open` that returned false.
/// Fails: always, `DBException` "Can not open recordset." with 0x80004005.
[[noreturn]] SPCBASE_API void throw_can_not_open_rs_exception();

/// The end of a `GlobalLock` that gave null; reads the thread's last error.
/// Fails: always, `DBException` with number and text of the last error. A positive number becomes the code
/// 0x80070000 with its low 16 bits; 0 or a negative number is the code itself.
[[noreturn]] SPCBASE_API void throw_global_lock_error_exception();

/// Fails: always, `DBException` "XML error." with 0x80004005.
[[noreturn]] SPCBASE_API void throw_xml_exception();

/// The whole text of an exception, however long; "An unknown error occurred" when it has none.
/// Owns: the exception stays the caller's.
SPCBASE_API CString get_exception_error_message(CException* exception);

/// Takes the thread's automation error object, which clears it.
/// Null:    `guid` may be null.
/// Returns false when there is no object; nothing is written then. A text that the object does not give stays as it
/// was.
SPCBASE_API bool get_err_info_data(CString& description, CString& source, _GUID* guid);

/// Makes an automation error object and publishes it as the thread's current one.
/// Null:    each argument may be: what is not given is not set. The source is the programmatic id of `class_id`.
/// Returns the result code of the creation, and the object (null when it failed), of which the pair owns a reference.
SPCBASE_API std::pair<long, ATL::CComPtr<IErrorInfo>> create_err_object(const _GUID* class_id,
                                                                        const _GUID* interface_id,
                                                                        const char* description);
