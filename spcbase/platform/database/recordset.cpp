#include "spcbase/platform/database/recordset.h"

#include "spcbase/platform/database/recordset_core.h"

CRecordset::CRecordset(CDatabase* database)
    : m_pDatabase(database), core_(std::make_unique<spcdb::RecordsetCore>(*this)) {}

CRecordset::~CRecordset() {
  if (open_) core_->close();
}

BOOL CRecordset::Open(UINT type, const char* sql, DWORD options) {
  return core_->open(type, sql, options) ? TRUE : FALSE;
}

void CRecordset::Close() {
  if (open_) core_->close();
}

BOOL CRecordset::Requery() {
  core_->requery();
  return TRUE;
}

void CRecordset::Move(long rows, WORD fetch_type) { core_->move(rows, fetch_type); }

BOOL CRecordset::CanUpdate() const { return open_ && core_->can_update(); }
BOOL CRecordset::CanAppend() const { return open_ && core_->can_append(); }
long CRecordset::GetRecordCount() const { return core_->record_count(); }
CString CRecordset::GetSQL() const { return core_->statement(); }

void CRecordset::AddNew() { core_->add_new(); }
void CRecordset::Edit() { core_->edit(); }
BOOL CRecordset::Update() { return core_->update() ? TRUE : FALSE; }
void CRecordset::Delete() { core_->erase(); }
void CRecordset::CancelUpdate() { core_->cancel(); }

BOOL CRecordset::IsFieldNull(const void* field) { return core_->is_null(field) ? TRUE : FALSE; }
BOOL CRecordset::IsFieldDirty(const void* field) { return core_->is_dirty(field) ? TRUE : FALSE; }
void CRecordset::SetFieldNull(const void* field, BOOL is_null) { core_->set_null(field, is_null != FALSE); }
void CRecordset::SetFieldDirty(const void* field, BOOL is_dirty) { core_->set_dirty(field, is_dirty != FALSE); }

short CRecordset::GetODBCFieldCount() const { return static_cast<short>(core_->result_columns()); }

void CRecordset::GetODBCFieldInfo(short index, CODBCFieldInfo& info) {
  if (index < 0 || index >= GetODBCFieldCount())
    spcdb::raise(AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH, "07009", "The result has no column at this position.");
  const auto described = core_->describe(static_cast<unsigned>(index));
  info.m_strName = std::string_view(described.name);
  info.m_nSQLType = described.sql_type;
  info.m_nPrecision = static_cast<DWORD>(described.precision);
  info.m_nScale = described.scale;
  info.m_nNullability = described.nullability;
}

void CRecordset::GetODBCFieldInfo(const char* name, CODBCFieldInfo& info) {
  for (short i = 0; i < GetODBCFieldCount(); ++i) {
    GetODBCFieldInfo(i, info);
    if (info.m_strName.CompareNoCase(name) == 0) return;
  }
  spcdb::raise(AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH, "07009", "The result has no column of this name.");
}
