/// CRecordset: the rows that a statement gives, one at a time, and the editing of a table through them.
///
/// Part of the database platform layer. A host derives a class, names its columns in `DoFieldExchange` and its table in
/// `GetDefaultSQL`:
///
///     struct Stations : CRecordset {
///       long id = 0;
///       CString name;
///       explicit Stations(CDatabase* db) : CRecordset(db) { m_nFields = 2; m_nDefaultType = snapshot; }
///       CString GetDefaultSQL() override { return "[CSSTN]"; }
///       void DoFieldExchange(CFieldExchange* fx) override {
///         fx->SetFieldType(CFieldExchange::outputColumn);
///         RFX_Long(fx, "[STNID]", id);
///         RFX_Text(fx, "[NAME]", name);
///       }
///     };
///
/// How it works: opening is one plain SELECT. Number and text literals of the filter travel as parameters of a
/// statement that the connection keeps by its shape. A `forwardOnly` recordset reads straight from the server in
/// constant memory; every other type takes its rows at opening and holds no cursor, so writing meanwhile does not
/// disturb it. Edit, AddNew and Delete are searched statements: a row is found again by the fetched values of its key.
///
/// Differs: `dynaset` and `dynamic` behave as `snapshot`. Names in square brackets get the server's quote character.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "spcbase/platform/database/database.h"
#include "spcbase/platform/database/field_exchange.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

namespace spcdb {
class RecordsetCore;
}

/// The type that stands for `m_nDefaultType`.
inline constexpr UINT AFX_DB_USE_DEFAULT_TYPE = 0xffffffffU;
/// The fetch type of moving one row on.
inline constexpr WORD SQL_FETCH_NEXT_RECORD = 1;

/// What the server says about a result column.
struct CODBCFieldInfo {
  /// The name, the server's type, its precision and scale, and whether it may be null (0 no, 1 yes, 2 unknown).
  CString m_strName;
  short m_nSQLType = 0;
  DWORD m_nPrecision = 0;
  short m_nScale = 0;
  short m_nNullability = 0;
};

/// The rows of a statement.
class SPCBASE_API CRecordset {
 public:
  /// How rows are taken: `forwardOnly` reads straight from the server, the others hold the rows of the opening.
  enum OpenType : UINT { dynaset = 0, snapshot = 1, forwardOnly = 2, dynamic = 3 };
  /// What may be done with the rows, and how the statement runs. Rows are read with `appendOnly` too: who only adds
  /// filters for the new key, else the whole table is read.
  enum OpenOptions : DWORD {
    none = 0,
    appendOnly = 0x0001,
    readOnly = 0x0004,
    executeDirect = 0x2000,
    /// Ours: a forwardOnly recordset on one table keeps to constant memory even where the driver would hold the whole
    /// result (MariaDB's, for one). It is read there in pages of 10,000 rows in the order of the class's key, so a row
    /// that is written meanwhile may be seen or not. Needs a class that names its key (not null) and no sort.
    inPages = 0x10000,
  };
  /// How `Move` reads its argument: as rows from the present one, or as one of the documented fetch types.
  enum FetchType : WORD { fetchNext = 1, fetchFirst = 2, fetchLast = 3, fetchPrior = 4, fetchRelative = 6 };

  /// A closed recordset on a connection, which must outlive it.
  explicit CRecordset(CDatabase* database = nullptr);
  virtual ~CRecordset();  ///< closes
  CRecordset(const CRecordset&) = delete;
  CRecordset& operator=(const CRecordset&) = delete;

  CDatabase* m_pDatabase = nullptr;  ///< the connection; not owned
  CString m_strFilter;               ///< what stands behind WHERE, without the word; used by the next Open or Requery
  CString m_strSort;                 ///< what stands behind ORDER BY
  UINT m_nFields = 0;                ///< how many columns DoFieldExchange names
  UINT m_nParams = 0;                ///< how many parameters it names
  UINT m_nDefaultType = dynaset;     ///< the OpenType of an Open that names none
  DWORD m_dwOptions = none;          ///< those of the last Open
  BOOL m_bEOF = TRUE;                ///< on an empty result and behind the last row
  BOOL m_bBOF = TRUE;                ///< on an empty result and before the first row

  /// Runs the statement and moves to the first row. `sql` is a table, a list of tables or a whole SELECT; null stands
  /// for GetDefaultSQL. Returns 0 when the recordset has no connection, or one that is not open.
  /// Fails: CDBException* for every database error; also when it is open already (AFX_SQL_ERROR_ILLEGAL_MODE).
  virtual BOOL Open(UINT type = AFX_DB_USE_DEFAULT_TYPE, const char* sql = nullptr, DWORD options = none);
  /// Gives the rows back; the object may be opened again. Harmless when closed.
  virtual void Close();
  /// Runs the statement again with the present filter, sort and parameters. Not for a recordset that was opened with
  /// executeDirect (AFX_SQL_ERROR_ILLEGAL_MODE).
  virtual BOOL Requery();
  /// Moves. A forward-only recordset only moves to the next row (else AFX_SQL_ERROR_RECORDSET_FORWARD_ONLY). Moving
  /// drops an edit that was begun.
  virtual void Move(long rows, WORD fetch_type = fetchRelative);
  /// Moves to the next row, the one before, the first, the last.
  void MoveNext() { Move(1, fetchNext); }
  void MovePrev() { Move(-1, fetchRelative); }
  void MoveFirst() { Move(0, fetchFirst); }
  void MoveLast() { Move(0, fetchLast); }

  /// What state the recordset and its current row are in.
  BOOL IsOpen() const { return open_; }
  BOOL IsEOF() const { return m_bEOF; }
  BOOL IsBOF() const { return m_bBOF; }
  BOOL IsDeleted() const { return deleted_; }
  /// Whether rows may be changed, and added.
  BOOL CanUpdate() const;
  BOOL CanAppend() const;
  /// Rows moved over so far; for all but forward-only recordsets the count of all.
  long GetRecordCount() const;
  /// The statement of the last Open in its given form.
  CString GetSQL() const;

  /// Begins a new row: every field is null and unset.
  /// Fails: CDBException* when the recordset is read-only.
  virtual void AddNew();
  /// Begins a change of the present row.
  /// Fails: CDBException* when the recordset is read-only or appendOnly, or there is no row
  /// (AFX_SQL_ERROR_NO_CURRENT_RECORD).
  virtual void Edit();
  /// Sends what AddNew or Edit began: the fields that were set, changed or marked dirty and no others. Returns 0 and
  /// sends nothing when there is none. After Edit the row stays current; after AddNew the row from before does.
  /// Fails: CDBException* from the server; AFX_SQL_ERROR_NO_ROWS_AFFECTED when the row is gone,
  ///        AFX_SQL_ERROR_MULTIPLE_ROWS_AFFECTED when more than one was hit; the edit is dropped then and the fields
  ///        hold what was fetched.
  virtual BOOL Update();
  /// Deletes the present row; its fields are null then, and IsDeleted is true until the next Move.
  virtual void Delete();
  /// Drops what AddNew or Edit began and restores the fields.
  void CancelUpdate();

  /// Whether a field is null; a null address asks for any field. `field` is the address of a data member.
  BOOL IsFieldNull(const void* field);
  /// Whether a field would be sent by Update; a null address asks for any field.
  BOOL IsFieldDirty(const void* field);
  /// Makes a field null (its value is cleared) or not null; inside an edit this also marks it dirty. A null address
  /// means every field.
  void SetFieldNull(const void* field, BOOL is_null = TRUE);
  /// Makes a field count as changed, or not, whatever its value. A null address means every field.
  void SetFieldDirty(const void* field, BOOL is_dirty = TRUE);

  /// The number of columns of the open result.
  short GetODBCFieldCount() const;
  /// What the server says of a result column, by position from 0 or by name. The recordset must be open or opening.
  void GetODBCFieldInfo(short index, CODBCFieldInfo& info);
  void GetODBCFieldInfo(const char* name, CODBCFieldInfo& info);

  /// What a class overrides.
  virtual CString GetDefaultConnect() { return {}; }
  virtual CString GetDefaultSQL() { return {}; }
  virtual void DoFieldExchange(CFieldExchange* exchange) { static_cast<void>(exchange); }

  /// For this layer.
  spcdb::RecordsetCore& core() { return *core_; }

 protected:
  /// The columns by which a row is found again, as bits by field position: bit 0 is the first column. 0: the class
  /// names none, and the catalogue is asked once for each table and connection.
  std::uint64_t m_keyColumns = 0;

 private:
  friend class spcdb::RecordsetCore;
  friend class CDatabase;
  friend class CFieldExchange;

  std::unique_ptr<spcdb::RecordsetCore> core_;
  bool open_ = false;
  bool deleted_ = false;
};
