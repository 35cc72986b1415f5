/// Reading and writing the rows of revisions.
///
/// Part of revision control; not for hosts.
#pragma once

#include <cstdint>
#include <memory>

#include "spcbase/foundation/blob.h"
#include "spcbase/foundation/schema/revisions.h"
#include "spcbase/revision/record.h"
#include "spcbase/time/internal/row_moment.h"

namespace rev {

/// What a revision is addressed by.
struct RevisionKey {
  int object_type;
  int object_id;
  int revision;
};

/// A number and the version that people see.
struct RevisionNumber {
  int revision;
  int majorver;
  int minorver;
};

/// What `write_new_revision` stores beside the number.
struct Creation {
  const CLongBinary& payload;
  int user_id;
  const char* user;
  const char* reason;
};

/// The number behind another; behind the last of an int comes the first, as in the column.
constexpr int next_number(long number) { return static_cast<int>(static_cast<std::uint32_t>(number) + 1U); }

/// The number and version that come after the highest of the object.
RevisionNumber next_revision(CDatabase* database, int object_id, int object_type, bool major);

/// Inserts the row and the payload of a revision. Returns its time of creation, local.
COleDateTime write_new_revision(CDatabase* database, int maximum_blob_size, int object_id, int object_type,
                                const RevisionNumber& number, const Creation& creation);

/// The id of a row.
/// Fails: RevisionException with reason 4 when there is none.
int read_revision_id(CDatabase* database, const RevisionKey& key);

void write_revision_data(CDatabase* database, int maximum_blob_size, int revid, const CLongBinary& payload);

/// Inserts the row of a record, its approval and its payload. The record keeps the id it has.
void write_revision(CDatabase* database, int maximum_blob_size, int object_type, int object_id,
                    const RevisionInfo& record);

/// Reads a revision, or the latest for number 0; null when there is none.
std::shared_ptr<RevisionInfo> read_revision(CDatabase* database, int maximum_blob_size, const RevisionKey& key);

/// The filters for a revision by its number, and for an object's highest one.
CString filter_for(const RevisionKey& key);
CString filter_for_highest(int object_type, int object_id);

/// The first 4000 bytes of a reason, without half a character at the end.
CString cut_reason(const CString& reason);

/// What the rows of RSOBJREV and RSFullRevisionInfo have in common.
template <class Rows>
void take_row(Rows& rows, const LocalMomentReader& moments, RevisionBaseInfo& record) {
  record.revid = static_cast<int>(rows.revid);
  record.revision = static_cast<int>(rows.revision);
  record.majorver = static_cast<int>(rows.majorver);
  record.minorver = static_cast<int>(rows.minorver);
  record.flag = static_cast<int>(rows.flag);
  if (!rows.IsFieldNull(&rows.ctime)) record.ctime = moments.read(rows.ctime);
  record.cuserid = static_cast<int>(rows.cuserid);
  record.cuser = rows.cuser;
  record.creason = rows.creason;
  // The level alone decides whether a revision is approved.
  if (rows.IsFieldNull(&rows.alevel)) return;
  auto approval = std::make_shared<RevisionApprovalInfo>();
  approval->alevel = static_cast<int>(rows.alevel);
  if (!rows.IsFieldNull(&rows.atype)) approval->atype = static_cast<int>(rows.atype);
  if (!rows.IsFieldNull(&rows.areason)) approval->areason = rows.areason;
  if (!rows.IsFieldNull(&rows.auserid)) approval->auserid = static_cast<int>(rows.auserid);
  if (!rows.IsFieldNull(&rows.auser)) approval->auser = rows.auser;
  if (!rows.IsFieldNull(&rows.atime)) approval->atime = moments.read(rows.atime);
  record.approval = std::move(approval);
}

/// What an approval fills in, of RSOBJREV and RSOBJREVForApprove.
template <class Rows>
void put_approval(Rows& rows, const RevisionApprovalInfo& approval) {
  rows.alevel = approval.alevel;
  rows.atype = approval.atype;
  if (approval.atype == 0) rows.SetFieldNull(&rows.atype);
  rows.areason = cut_reason(approval.areason);
  rows.auserid = approval.auserid;
  rows.auser = approval.auser;
  rows.atime = to_utc_timestamp(approval.atime);
}

/// Whether a variant time lies more than that many minutes before another, in whole seconds.
bool is_older(int minutes, double now_utc, double stamp_utc);

/// Whether a moment in UTC is more than that many minutes ago; never for a lifetime of 0 or less.
bool is_expired(int minutes, const COleDateTime& stamp_utc);

}  // namespace rev
