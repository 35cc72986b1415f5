/// The records in which revisions travel: one revision with its payload, one without, and an approval.
///
/// Part of revision control. A revision is known by the type and id of its object and by its number, 1 for the first;
/// people see its version, "majorver.minorver". Moments here are local; the tables hold UTC.
#pragma once

#include <memory>

#include "spcbase/foundation/long_bin_wrapper.h"
#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

namespace rev {

/// The number of no revision.
inline constexpr int no_revision = -300;

/// The approval of a revision. Level and type are numbers of the host's own.
struct RevisionApprovalInfo {
  COleDateTime atime = null_moment();  ///< when, in local time
  int auserid = 0;                     ///< who
  CString auser;
  CString areason;  ///< why, in the words of who approved
  int alevel = 0;   ///< a number of the host's
  int atype = 0;

  /// A moment that is not set.
  static COleDateTime null_moment() noexcept {
    COleDateTime none;
    none.SetStatus(COleDateTime::null);
    return none;
  }
};

/// A revision without its payload. A copy has an approval of its own.
class SPCBASE_API RevisionBaseInfo {
 public:
  RevisionBaseInfo() = default;
  RevisionBaseInfo(const RevisionBaseInfo& other);
  RevisionBaseInfo(RevisionBaseInfo&& other) noexcept = default;
  RevisionBaseInfo& operator=(const RevisionBaseInfo& other);
  RevisionBaseInfo& operator=(RevisionBaseInfo&& other) noexcept = default;
  ~RevisionBaseInfo() = default;

  int revid = 0;               ///< of the row
  int revision = no_revision;  ///< counts from 1
  int majorver = 0;            ///< the two parts of the version that people see
  int minorver = 0;
  int flag = 0;                                              ///< a number of the host's
  COleDateTime ctime = RevisionApprovalInfo::null_moment();  ///< when it was saved, in local time
  int cuserid = 0;                                           ///< who saved it
  CString cuser;
  CString creason;                                 ///< why, in the words of who saved it
  std::shared_ptr<RevisionApprovalInfo> approval;  ///< null: not approved
};

/// A revision with its payload.
class SPCBASE_API RevisionInfo : public RevisionBaseInfo {
 public:
  RevisionInfo();
  /// Copies the payload too, and `cached_at` as it stands.
  RevisionInfo(const RevisionInfo& other);
  RevisionInfo& operator=(const RevisionInfo&) = delete;
  ~RevisionInfo() = default;

  LongBinWrapper data;     ///< a null handle: there is no payload, the revision is broken
  COleDateTime cached_at;  ///< when this record was made, in UTC; caches count its age from here
};

}  // namespace rev
