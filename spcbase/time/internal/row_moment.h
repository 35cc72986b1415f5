/// Moments on their way between table rows, which hold UTC, and records, which hold local time.
///
/// Part of time; not for hosts.
#pragma once

#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/datetime/timestamp.h"
#include "spcbase/platform/datetime/zone_rule.h"

/// The row's timestamp for a local moment, to the second.
tagTIMESTAMP_STRUCT to_utc_timestamp(const COleDateTime& local);

/// The present in UTC, by way of local time.
COleDateTime present_utc();

/// Gives local moments for the timestamps of rows, fractions of a second included. The zone is looked at once, when
/// this is made: make one for each call that reads rows.
class LocalMomentReader {
 public:
  COleDateTime read(const tagTIMESTAMP_STRUCT& utc) const;

 private:
  platform::CurrentZone zone_;
};
