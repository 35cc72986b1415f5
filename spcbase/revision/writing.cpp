// Inserting the row and the payload of a revision.
#include "spcbase/foundation/internal/blob_retry.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/recordset.h"
#include "spcbase/revision/internal/raise_revision.h"
#include "spcbase/revision/internal/rows.h"

namespace rev {
namespace {

void insert_payload(CDatabase* database, int buffer_size, int revid, const CLongBinary& payload) {
  RSOBJDAT rows(database, buffer_size);
  rows.m_strFilter.Format("REVID = %d", revid);
  if (!open_for_update(rows)) throw_can_not_open_rs_exception();
  rows.AddNew();
  rows.revid = revid;
  rows.set_blob_data(rows, payload);
  rows.Update();
  rows.Close();
}

/// Opens an empty set for an insert.
void open_empty(CRecordset& rows, const CString& filter) {
  set_rs_where_clause(rows, filter);
  if (!open_for_update(rows)) throw_can_not_open_rs_exception();
}

}  // namespace

void write_revision_data(CDatabase* database, int maximum_blob_size, int revid, const CLongBinary& payload) {
  run_with_blob_retry<void>(
      maximum_blob_size, [&](int buffer_size) { insert_payload(database, buffer_size, revid, payload); },
      static_cast<int>(payload.m_dwDataLength));
}

COleDateTime write_new_revision(CDatabase* database, int maximum_blob_size, int object_id, int object_type,
                                const RevisionNumber& number, const Creation& creation) {
  const TIMESTAMP_STRUCT created = to_utc_timestamp(COleDateTime::GetCurrentTime());
  {
    RSOBJREVForAdd rows(database);
    CString none;
    none.Format("OBJID = %d AND OBJTYPE = %d AND REVISION = 0", object_id, object_type);
    open_empty(rows, none);
    rows.AddNew();
    rows.objid = object_id;
    rows.objtype = object_type;
    rows.revision = number.revision;
    rows.majorver = number.majorver;
    rows.minorver = number.minorver;
    rows.flag = 0;
    rows.ctime = created;
    rows.cuserid = creation.user_id;
    rows.cuser = creation.user;
    rows.creason = cut_reason(creation.reason);
    rows.Update();
    rows.Close();
  }
  const int revid = read_revision_id(database, {object_type, object_id, number.revision});
  write_revision_data(database, maximum_blob_size, revid, creation.payload);
  return LocalMomentReader().read(created);
}

void write_revision(CDatabase* database, int maximum_blob_size, int object_type, int object_id,
                    const RevisionInfo& record) {
  const RevisionKey key{object_type, object_id, record.revision};
  {
    RSOBJREV rows(database);
    open_empty(rows, filter_for(key));
    rows.AddNew();
    rows.objid = object_id;
    rows.objtype = object_type;
    rows.revision = record.revision;
    rows.majorver = record.majorver;
    rows.minorver = record.minorver;
    rows.flag = 0;
    rows.ctime = to_utc_timestamp(record.ctime);
    rows.cuserid = record.cuserid;
    rows.cuser = record.cuser;
    rows.creason = cut_reason(record.creason);
    if (record.approval) put_approval(rows, *record.approval);
    rows.Update();
    rows.Close();
  }
  write_revision_data(database, maximum_blob_size, read_revision_id(database, key), record.data.long_bin);
}

}  // namespace rev
