// What a revision is found by, and the number that comes next.
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/recordset.h"
#include "spcbase/platform/text/unicode.h"
#include "spcbase/revision/internal/raise_revision.h"
#include "spcbase/revision/internal/rows.h"

namespace rev {

CString filter_for(const RevisionKey& key) {
  CString filter;
  filter.Format("OBJID = %d AND OBJTYPE = %d AND REVISION = %d", key.object_id, key.object_type, key.revision);
  return filter;
}

CString filter_for_highest(int object_type, int object_id) {
  CString filter;
  filter.Format(
      "OBJID = %d AND OBJTYPE = %d AND REVISION = (SELECT MAX(REVISION) FROM CSOBJREV WHERE OBJID = %d AND "
      "OBJTYPE = %d)",
      object_id, object_type, object_id, object_type);
  return filter;
}

CString cut_reason(const CString& reason) {
  constexpr std::size_t longest_reason_bytes = 4000;
  return CString(platform::utf8_cut(reason.view(), longest_reason_bytes));
}

RevisionNumber next_revision(CDatabase* database, int object_id, int object_type, bool major) {
  RSOBJREVWithVersion rows(database);
  rows.m_strFilter = filter_for_highest(object_type, object_id);
  if (!open_for_read(rows)) throw_can_not_open_rs_exception();
  // The first version is 0.1, a major one too.
  RevisionNumber next{1, 0, 1};
  if (!rows.IsEOF()) {
    next.revision = next_number(rows.revision);
    next.majorver = major ? next_number(rows.majorver) : static_cast<int>(rows.majorver);
    next.minorver = major ? 0 : next_number(rows.minorver);
  }
  rows.Close();
  return next;
}

int read_revision_id(CDatabase* database, const RevisionKey& key) {
  RSOBJREV_Minimum rows(database);
  rows.m_strFilter = filter_for(key);
  if (!open_for_read(rows)) throw_can_not_open_rs_exception();
  const int revid = rows.IsEOF() ? 0 : static_cast<int>(rows.revid);
  rows.Close();
  if (revid == 0) raise_revision(key, Reason::id_unreadable);
  return revid;
}

}  // namespace rev
