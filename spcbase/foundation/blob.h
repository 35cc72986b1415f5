/// Blob columns: the field that runs in two modes, the base of the recordsets that have one, and the copies between the
/// holders of blobs and texts.
///
/// Part of the database foundation. In streaming mode, the normal one, a blob travels in pieces to and from a
/// `CLongBinary`; in bound-buffer mode, for drivers on which that fails, through a buffer of a fixed size to and from a
/// `CByteArray`. A text is stored as its bytes, without terminator or conversion; a blob has no mark that says which of
/// the two it is.
///
///     RSMOPB rs(&db, 0);                         // 0: streaming
///     set_rs_where_clause(rs, "[MONID] = 3");
///     ...open and Edit...
///     rs.set_blob_data(rs, payload);
///     rs.Update();
#pragma once

#include <tuple>
#include <type_traits>

#include "spcbase/foundation/recordset.h"
#include "spcbase/foundation/schema/column_table.h"
#include "spcbase/platform/database/long_binary.h"
#include "spcbase/platform/system/byte_array.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

/// Copies of bytes. All give the number of bytes that are in the target then.
///
/// A `CLongBinary` keeps its block where that is large enough, and without bytes it has none.
/// Null:  the source may be null when the count is 0.
/// Fails: CMemoryException* when memory runs out, CInvalidArgException* for a negative count, `DBException` with the
///        system's words when a block cannot be locked.
SPCBASE_API int copy_blob(CLongBinary& target, unsigned char* source, unsigned long count);
/// Kept: copies the whole of the source's block, which may be larger than its data.
SPCBASE_API int copy_blob(CLongBinary& target, const CLongBinary& source);
SPCBASE_API int copy_blob(CLongBinary& target, const CByteArray& source);
SPCBASE_API int copy_blob(CByteArray& target, const CByteArray& source);
SPCBASE_API int copy_blob(CByteArray& target, unsigned char* source, int count);

/// The same as `copy_blob`.
SPCBASE_API int set_blob_data(CLongBinary& target, unsigned char* source, unsigned long count);
SPCBASE_API int set_blob_data(CLongBinary& target, const CString& source);
SPCBASE_API int set_blob_data(CByteArray& target, unsigned char* source, unsigned long count);
SPCBASE_API int set_blob_data(CByteArray& target, const CString& source);

/// The data as a text of exactly their length, zero bytes included; empty when there are none.
SPCBASE_API CString get_blob_data(const CLongBinary& source);
SPCBASE_API CString get_blob_data(const CByteArray& source);

/// The field of a blob column. Its operations take the recordset that it is a field of.
class SPCBASE_API BlobRSHelper {
 public:
  /// `max_size` 0 is streaming mode; any other value is bound-buffer mode with a buffer of that many bytes, and one
  /// below 0 is refused when the recordset opens.
  explicit BlobRSHelper(int max_size);
  /// Kept: the copy is shallow, so both share one holder. It must not outlive the first object, nor be destroyed
  /// together with it.
  BlobRSHelper(const BlobRSHelper& other) = default;
  BlobRSHelper& operator=(const BlobRSHelper&) = delete;
  /// Deletes the holder.
  virtual ~BlobRSHelper();

  /// Whether the field is null or has no bytes.
  bool is_null_or_empty(CRecordset& rs) const;
  /// The bytes as a text; empty for a null.
  CString get_blob_str(CRecordset& rs) const;
  /// Fills the target, or frees its block where there is nothing.
  void get_blob_long_bin(CRecordset& rs, CLongBinary& target) const;
  /// Sets the field, inside AddNew or Edit. An empty value makes a null in streaming mode and a value without bytes in
  /// bound-buffer mode.
  /// Fails: `DBException` "The data is larger than the maximum BLOB size." in bound-buffer mode, and as `copy_blob`.
  void set_blob_data(CRecordset& rs, const CString& data);
  /// Kept: an empty value is not marked dirty, as an empty text is. In bound-buffer mode the length of the data is
  /// tested, and the whole of the block copied.
  void set_blob_data(CRecordset& rs, const CLongBinary& data);
  /// Exchanges the holder with the column.
  /// Fails: CInvalidArgException* for a null argument.
  void DoFieldExchange(CFieldExchange* exchange, const char* column);

  /// What the object was made with: 0 for streaming mode, else the size of the buffer in bytes.
  const int maximum_size;

 private:
  friend void hand_blob_over(BlobRSHelper& field, CRecordset& rs, CLongBinary& target);

  CByteArray& get_byte_array() const;
  CLongBinary& get_long_bin() const;
  /// The address by which the recordset knows the field.
  const void* field() const;
  void require_room(std::size_t count) const;

  CObject* holder_;
};

/// A recordset whose last column is a blob. `Derived` has `source` and `columns`, the last of which is
/// `coltab::blob(name)`.
template <class Derived>
class SingleBlobColumnRecordset : public CRecordsetFix, public BlobRSHelper {
 public:
  /// No parameters.
  static constexpr auto parameters = coltab::table();

  /// `max_size` is that of `BlobRSHelper`.
  SingleBlobColumnRecordset(CDatabase* database, int max_size) : CRecordsetFix(database), BlobRSHelper(max_size) {
    constexpr auto count = std::tuple_size_v<std::remove_cvref_t<decltype(Derived::columns)>>;
    blob_column = std::get<count - 1>(Derived::columns).name;
    m_nFields = count;
    m_keyColumns = coltab::key_bits(Derived::columns);
    m_nDefaultType = CRecordset::snapshot;
  }

  CString GetDefaultConnect() override { return {}; }
  CString GetDefaultSQL() override { return Derived::source; }
  void DoFieldExchange(CFieldExchange* exchange) override {
    coltab::exchange_all(static_cast<Derived&>(*this), Derived::columns, exchange, CFieldExchange::outputColumn);
  }
  /// For the exchange of all columns.
  void exchange_blob(CFieldExchange* exchange) { BlobRSHelper::DoFieldExchange(exchange, blob_column.GetString()); }

  /// The name of the blob column, as statements have it.
  CString blob_column;
};
