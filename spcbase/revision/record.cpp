#include "spcbase/revision/record.h"

#include "spcbase/foundation/blob.h"
#include "spcbase/revision/internal/rows.h"

namespace rev {

RevisionBaseInfo::RevisionBaseInfo(const RevisionBaseInfo& other) { *this = other; }

RevisionBaseInfo& RevisionBaseInfo::operator=(const RevisionBaseInfo& other) {
  if (this == &other) return *this;
  revid = other.revid;
  revision = other.revision;
  majorver = other.majorver;
  minorver = other.minorver;
  flag = other.flag;
  ctime = other.ctime;
  cuserid = other.cuserid;
  cuser = other.cuser;
  creason = other.creason;
  approval = other.approval ? std::make_shared<RevisionApprovalInfo>(*other.approval) : nullptr;
  return *this;
}

RevisionInfo::RevisionInfo() : cached_at(present_utc()) {}

RevisionInfo::RevisionInfo(const RevisionInfo& other) : RevisionBaseInfo(other), cached_at(other.cached_at) {
  copy_blob(data.long_bin, other.data.long_bin);
}

}  // namespace rev
