// Creating, reading, saving and removing the row of a definition. The kinds differ in nothing but their XML.
#include <functional>
#include <memory>

#include "spcbase/datasource/definition.h"
#include "spcbase/datasource/internal/definition_rows.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/blob_retry.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/internal/raise.h"

namespace {

using WayOfOpening = bool (*)(CRecordset&);

/// Opens a recordset on the row of an id. False when there is no such row.
bool open_row(CRecordset& rows, int id, WayOfOpening open) {
  rows.m_strFilter = filter_for_definition(id);
  if (!open(rows)) throw_can_not_open_rs_exception();
  return rows.m_bEOF == FALSE;
}

void require_row(CRecordset& rows, int id, WayOfOpening open) {
  if (!open_row(rows, id, open)) throw_db_exception_by_id(msg::no_such_connection);
}

/// Sets what a new row and a changed one have in common.
template <class Definition>
void put(RSExtDB& row, const Definition& definition, const CString& xml) {
  row.name = definition.name;
  row.descr = definition.description;
  row.type = definition.type;
  row.flg1 = Definition::kind;
  row.flg2 = definition.flag2;
  row.set_blob_data(row, xml);
}

template <class Definition>
void insert_row(CDatabase* database, int buffer_size, const CString& xml, Definition& definition,
                COleDateTime& modified) {
  constexpr int no_row = 0;
  RSExtDB row(database, buffer_size);
  open_row(row, no_row, &open_for_update);
  row.AddNew();
  row.exdbid = definition.id;
  put(row, definition, xml);
  const COleDateTime now = COleDateTime::GetCurrentTime();
  row.mtime = to_utc_timestamp(now);
  // Kept: UTC, where `save` leaves local time.
  modified = DefinitionRows::utc_time(row);
  definition.modified_time = modified;
  row.Update();
  row.Close();
}

template <class Definition>
void update_row(CDatabase* database, int buffer_size, const CString& xml, Definition& definition) {
  RSExtDB row(database, buffer_size);
  require_row(row, definition.id, &open_for_update);
  row.Edit();
  put(row, definition, xml);
  definition.modified_time = COleDateTime::GetCurrentTime();
  row.mtime = to_utc_timestamp(definition.modified_time);
  row.Update();
  row.Close();
}

template <class Definition>
std::unique_ptr<Definition> read_row(CDatabase* database, int buffer_size, int id) {
  RSExtDB row(database, buffer_size);
  require_row(row, id, &open_for_read);
  auto definition = std::make_unique<Definition>();
  definition->id = id;
  DefinitionRows::take(row, LocalMomentReader(), *definition);
  row.Close();
  return definition;
}

template <class Definition>
int read_row_again(CDatabase* database, int buffer_size, Definition& definition) {
  RSExtDB row(database, buffer_size);
  if (!open_row(row, definition.id, &open_for_read)) return refresh_missing;
  const LocalMomentReader moments;
  if (DefinitionRows::local_time(row, moments) == definition.modified_time) return refresh_unchanged;
  DefinitionRows::take(row, moments, definition);
  row.Close();
  return refresh_changed;
}

template <class Definition>
void create_row(CDatabase* database, int maximum_blob_size, Definition& definition, COleDateTime& modified) {
  const CString xml = definition.get_xml(false, false);
  run_with_blob_retry<void>(
      maximum_blob_size, [&](int buffer_size) { insert_row(database, buffer_size, xml, definition, modified); },
      xml.GetLength());
}

template <class Definition>
Definition* retrieve_row(CDatabase* database, int maximum_blob_size, int id) {
  return run_with_blob_retry<std::unique_ptr<Definition>>(
             maximum_blob_size, [&](int buffer_size) { return read_row<Definition>(database, buffer_size, id); })
      .release();
}

template <class Definition>
int refresh_row(CDatabase* database, int maximum_blob_size, Definition& definition) {
  return run_with_blob_retry<int>(maximum_blob_size,
                                  [&](int buffer_size) { return read_row_again(database, buffer_size, definition); });
}

template <class Definition>
void save_row(CDatabase* database, int maximum_blob_size, Definition& definition) {
  const CString xml = definition.get_xml(false, false);
  run_with_blob_retry<void>(
      maximum_blob_size, [&](int buffer_size) { update_row(database, buffer_size, xml, definition); }, xml.GetLength());
}

void remove_row(CDatabase* database, int id) {
  RSExtDBForDelete rows(database);
  mark_as_removed(rows, id);
}

/// What a removal fails with when nothing was changed.
constexpr RETCODE nothing_removed = 1008;

/// Sends the change.
/// Fails: CDBException* with that code too when the row has vanished since it was read.
void require_update(CRecordset& rows) {
  try {
    if (rows.Update() == FALSE) AfxThrowDBException(nothing_removed, "Nothing was removed.");
  } catch (CDBException* failure) {
    if (failure->m_nRetCode == AFX_SQL_ERROR_NO_ROWS_AFFECTED) failure->m_nRetCode = nothing_removed;
    throw;
  }
}

}  // namespace

void mark_as_removed(RSExtDBForDelete& rows, int id) {
  require_row(rows, id, &open_for_update);
  rows.Edit();
  rows.vflg = "D";
  // So that removing a removed row succeeds.
  rows.SetFieldDirty(&rows.vflg, TRUE);
  require_update(rows);
  rows.Close();
}

void OLEDBInfo::create(CDatabase* database, int maximum_blob_size, OLEDBInfo& definition, COleDateTime& modified) {
  create_row(database, maximum_blob_size, definition, modified);
}

OLEDBInfo* OLEDBInfo::retrieve(CDatabase* database, int maximum_blob_size, int id) {
  return retrieve_row<OLEDBInfo>(database, maximum_blob_size, id);
}

int OLEDBInfo::refresh(CDatabase* database, int maximum_blob_size) {
  return refresh_row(database, maximum_blob_size, *this);
}

void OLEDBInfo::remove(CDatabase* database) { remove_row(database, id); }

void OLEDBInfo::save(CDatabase* database, int maximum_blob_size) { save_row(database, maximum_blob_size, *this); }

void ADONETDBInfo::create(CDatabase* database, int maximum_blob_size, ADONETDBInfo& definition,
                          COleDateTime& modified) {
  create_row(database, maximum_blob_size, definition, modified);
}

ADONETDBInfo* ADONETDBInfo::retrieve(CDatabase* database, int maximum_blob_size, int id) {
  return retrieve_row<ADONETDBInfo>(database, maximum_blob_size, id);
}

int ADONETDBInfo::refresh(CDatabase* database, int maximum_blob_size) {
  return refresh_row(database, maximum_blob_size, *this);
}

void ADONETDBInfo::remove(CDatabase* database) { remove_row(database, id); }

void ADONETDBInfo::save(CDatabase* database, int maximum_blob_size) { save_row(database, maximum_blob_size, *this); }
