// Approving the latest revision, in place or as a new major version.
#include "spcbase/foundation/internal/message_table.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/internal/raise.h"
#include "spcbase/foundation/recordset.h"
#include "spcbase/revision/internal/raise_revision.h"
#include "spcbase/revision/manager.h"

namespace rev {
namespace {

/// Fills in the approval of a row that has none. False when there is no such row.
bool approve_row(CDatabase* database, const RevisionKey& key, RevisionApprovalInfo approval) {
  RSOBJREVForApprove rows(database);
  set_rs_where_clause(rows, filter_for(key));
  if (!open_for_update(rows)) throw_can_not_open_rs_exception();
  if (rows.IsEOF()) return false;
  rows.Edit();
  // The record that was asked before may be an old one.
  if (!rows.IsFieldNull(&rows.alevel)) raise_revision(key, Reason::already_approved);
  approval.atime = COleDateTime::GetCurrentTime();
  put_approval(rows, approval);
  rows.Update();
  rows.Close();
  return true;
}

/// The update finds the row only while it has no approval. Where someone else was faster, a second look says so.
bool approve_row_against_others(CDatabase* database, const RevisionKey& key, const RevisionApprovalInfo& approval) {
  try {
    return approve_row(database, key, approval);
  } catch (CDBException* failure) {
    if (failure->m_nRetCode != AFX_SQL_ERROR_NO_ROWS_AFFECTED) throw;
    failure->Delete();
  }
  return approve_row(database, key, approval);
}

CString reason_of_duplicate(const RevisionInfo& record) {
  CString version;
  version.Format("%d.%d", record.majorver, record.minorver);
  CString reason = load_message(msg::duplicate_of_version);
  reason.Replace("%s", version);
  return reason;
}

}  // namespace

std::pair<bool, int> RevisionManager::approve(CDatabase* database, int maximum_blob_size, int object_id, int revision,
                                              int level, int type, int user_id, const char* user, const char* reason,
                                              bool major) {
  const RevisionKey key{objtype_, object_id, revision};
  const auto latest = get_revision_info(database, maximum_blob_size, object_id, 0);
  const int latest_number = latest ? latest->revision : 0;
  if (latest_number == no_revision) raise_revision(key, Reason::no_revisions);
  if (revision != latest_number) raise_revision(key, Reason::not_latest);

  const auto record = get_revision_info(database, maximum_blob_size, object_id, revision);
  if (!record) return {false, revision};
  if (record->approval) raise_revision(key, Reason::already_approved);
  if (record->data.is_null()) raise_revision(key, Reason::broken);

  RevisionApprovalInfo approval;
  approval.alevel = level;
  approval.atype = type;
  approval.auserid = user_id;
  approval.auser = user;
  approval.areason = cut_reason(reason);
  return major ? approve_as_major(database, maximum_blob_size, object_id, *record, approval)
               : approve_in_place(database, object_id, revision, approval);
}

std::pair<bool, int> RevisionManager::approve_in_place(CDatabase* database, int object_id, int revision,
                                                       const RevisionApprovalInfo& approval) {
  if (!approve_row_against_others(database, {objtype_, object_id, revision}, approval)) return {false, revision};
  if (caching()) cache_drop(object_id, revision);
  return {true, revision};
}

std::pair<bool, int> RevisionManager::approve_as_major(CDatabase* database, int maximum_blob_size, int object_id,
                                                       const RevisionInfo& record,
                                                       const RevisionApprovalInfo& approval) {
  // Kept: the copy has the id of the row it was made from, and its age in the cache; number and version follow from the
  // record, which may be one without a version.
  auto copy = std::make_shared<RevisionInfo>(record);
  copy->cuserid = approval.auserid;
  copy->cuser = approval.auser;
  copy->creason = reason_of_duplicate(record);
  copy->approval = std::make_shared<RevisionApprovalInfo>(approval);
  copy->majorver = next_number(record.majorver);
  copy->minorver = 0;
  copy->revision = next_number(record.revision);
  copy->ctime = COleDateTime::GetCurrentTime();
  copy->approval->atime = copy->ctime;
  write_revision(database, maximum_blob_size, objtype_, object_id, *copy);
  const int revision = copy->revision;
  if (caching()) {
    cache_add(object_id, std::move(copy));
    latest_.set_latest(object_id, revision);
  }
  return {true, revision};
}

}  // namespace rev
