/// The present moment, and dates built from fields: what periods and ranges begin with.
///
/// Part of time; not for hosts.
#pragma once

#include "spcbase/platform/datetime/ole_datetime.h"

/// The present to the second: local fields, or with `use_utc` the same moment in UTC fields.
/// Kept: the present is split into local fields before it goes to UTC. In the hour that a change back to standard time
///       repeats, both readings give the earlier moment. A refused conversion leaves the local fields, with no report.
/// Returns a moment of status invalid when the platform cannot split the present.
COleDateTime read_present(bool use_utc);

/// A date by its fields.
/// Returns status invalid unless the number gives exactly these fields back; so for the -1 that stands for a field of a
/// moment that is not valid, and for a year that does not fit an `int`.
COleDateTime start_of_day(long year, int month, int day);
COleDateTime end_of_day(long year, int month, int day);
