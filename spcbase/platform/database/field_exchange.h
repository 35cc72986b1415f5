/// CFieldExchange and the RFX_ functions: the exchange between a recordset's data members and its columns.
///
/// Part of the database platform layer. `DoFieldExchange` names each column once; it is run for several operations, of
/// which a class may test two by number.
///
/// Null is a state of a field, kept apart from its value. A null that was fetched clears the member (0, empty text,
/// zero moment); ask `IsFieldNull`. Between AddNew or Edit and Update a member that is null and was not set holds a
/// value that no column can hold, so that every assignment is noticed, that of 0 and of an empty text too.
#pragma once

#include <cstdint>
#include <string_view>

#include "spcbase/platform/datetime/ctime.h"
#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/datetime/timestamp.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"
#include "spcbase/platform/text/cstring.h"

class CByteArray;
class CLongBinary;
class CRecordset;

namespace spcdb {
class RecordsetCore;
}

/// The operation that runs, and the recordset that it runs for.
class SPCBASE_API CFieldExchange {
 public:
  /// The passes of an exchange.
  enum RFX_Operation : UINT {
    BindParam = 0,          ///< parameters give their values
    BindFieldToColumn = 2,  ///< columns tell kind and width
    Fixup = 3,              ///< the fetched row goes into the members
    Name = 8,               ///< the select list is written
  };
  /// What is described: result columns, or parameters of the filter.
  enum FieldType : UINT { outputColumn = 0, param = 1 };

  /// For one pass.
  CFieldExchange(UINT operation, CRecordset* recordset) : m_nOperation(operation), m_prs(recordset) {}

  /// One of RFX_Operation, and the recordset that is exchanged.
  UINT m_nOperation;
  CRecordset* m_prs;
  /// In the pass `Name`: the statement that is being written. It begins with "SELECT".
  CString* m_pstr = nullptr;

  /// What the RFX_ calls that follow describe.
  void SetFieldType(UINT type) { field_type_ = type; }
  BOOL IsFieldType(UINT type) const { return field_type_ == type; }

 private:
  friend class spcdb::RecordsetCore;

  UINT field_type_ = outputColumn;
  unsigned next_field_ = 0;  ///< position of the next column of this pass
};

/// Exchange a member with a column. Names may stand in square brackets, with the table's before it; what is given is
/// what goes into the statement. In a pass for the other field type than the one set, nothing happens.

/// A whole number of 32 bits.
/// Fails: CDBException* (22003) for a value beyond them.
SPCBASE_API void RFX_Long(CFieldExchange* exchange, const char* name, long& value);
/// A text of at most `max_length` characters (not bytes). A longer one that is read is a failure with
/// AFX_SQL_ERROR_DATA_TRUNCATED; one that is written is the server's to refuse. `column_type` and `scale` are kept for
/// the sake of the signature.
SPCBASE_API void RFX_Text(CFieldExchange* exchange, const char* name, CString& value, int max_length = 255,
                          int column_type = 12, short scale = 0);
/// A moment to the millisecond.
SPCBASE_API void RFX_Date(CFieldExchange* exchange, const char* name, TIMESTAMP_STRUCT& value);
/// A double, to the last bit.
SPCBASE_API void RFX_Double(CFieldExchange* exchange, const char* name, double& value);
/// Long data, read and written in pieces. They are read when a row becomes current and are not kept twice: behind
/// CancelUpdate, or an Update that followed AddNew, the holder has what was put into it. Nothing compares them, so
/// after Edit only SetFieldDirty makes them count as changed; SetFieldNull makes them null and does not mark them. A
/// null frees the holder's block; a value without bytes that is no null has no block either.
/// Fails: CInvalidArgException* for a null exchange or name, or a length beyond the block; CMemoryException*;
///        AFX_SQL_ERROR_ILLEGAL_MODE when a recordset that is not forwardOnly moves and its table has no key.
SPCBASE_API void RFX_LongBinary(CFieldExchange* exchange, const char* name, CLongBinary& value);

namespace spcdb {

/// Bytes through a buffer that is bound to the column, for drivers that cannot read or write in pieces. The buffer has
/// the size that the driver reports for the column, but `maximum_size` where that is greater, or 0 for unknown. A
/// longer value that is read is a failure with AFX_SQL_ERROR_DATA_TRUNCATED. A null shows as one byte, 0xFF; what was
/// put into the array is found by comparing.
/// Fails: CInvalidArgException* for a null exchange or name, or a size below 1.
SPCBASE_API void exchange_bytes(CFieldExchange* exchange, const char* name, CByteArray& value, int maximum_size);

}  // namespace spcdb
