// What a revision is found by, and the number that comes next.
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/recordset.h"
#include "spcbase/platform/text/unicode.h"
#include "spcbase/revision/internal/raise_revision.h"
#include "spcbase/revision/internal/rows.h"

namespace rev {

CString filter_for(const RevisionKey& key) {
  CString filter;
  const int id = key.object_id;
  const int type = key.object_type;
  if (key.revision == 0)
    filter.Format(
        "OBJID = %d AND OBJTYPE = %d AND REVISION = (SELECT MAX(REVISION) FROM CSOBJREV WHERE OBJID = %d AND "
        "OBJTYPE = %d)",
        id, type, id, type);
  else
    filter.Format("OBJID = %d AND OBJTYPE = %d AND REVISION = %d", id, type, key.revision);
  return filter;
}

CString cut_reason(const CString& reason) {
  constexpr std::size_t longest_reason_bytes = 4000;
  return CString(platform::utf8_cut(reason.view(), longest_reason_bytes));
}

RevisionNumber next_revision(CDatabase* database, int object_id, int object_type, bool major) {
  RSOBJREVWithVersion rows(database);
  rows.m_strFilter = filter_for({object_type, object_id, 0});
  if (!open_for_read(rows)) throw_can_not_open_rs_exception();
  // The first version is 0.1, a major one too.
  RevisionNumber next{1, 0, 1};
  if (!rows.IsEOF()) {
    next.revision = static_cast<int>(rows.revision) + 1;
    next.majorver = static_cast<int>(rows.majorver) + (major ? 1 : 0);
    next.minorver = major ? 0 : static_cast<int>(rows.minorver) + 1;
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
