/// Conversions between UTC and the current zone's local time.
///
/// Part of the platform layer. The current zone is the system's at the moment of each call: what the environment
/// variable `TZ` names, or /etc/localtime when it is unset. `TZ` may name a zone of the system's tz database
/// ("Europe/Berlin", also with a leading colon), a file of that form by its full path, or a rule in POSIX form
/// ("CET-1CEST,M3.5.0,M10.5.0/3"). An empty `TZ` is UTC, and so is one that makes no sense. The date converted selects
/// the rule; dates before the database's first change of a zone, for which it has only the place's mean solar time,
/// follow the rule of the present.
///
/// A local time may be skipped (clocks put forward over it) or repeated (clocks put back); the two families differ:
///
/// | conversion                        | skipped, read with          | repeated, read with         |
/// |-----------------------------------|-----------------------------|-----------------------------|
/// | `TzSpecificLocalTimeToSystemTime` | the offset after the change | the offset before (daylight)|
/// | `_mktime64` with flag -1          | the offset after the change | the offset after (standard) |
///
/// Threads: each thread keeps the zone it used last. `TZ` must not be changed while another thread converts. A change
/// of the file /etc/localtime is seen by threads that converted nothing before it.
#pragma once

#include <cstdint>
#include <ctime>

#include "spcbase/platform/datetime/system_time.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

/// Seconds since 1970-01-01 UTC.
using __time64_t = std::int64_t;

/// Local time of the current zone to UTC. Milliseconds are kept, the day of week is made anew.
/// `zone` must be null: there are no zones but the current one.
/// Fails:  FALSE with last error 87, nothing written, for fields that are no date of the years 1601 to 30827 or a
/// result outside them.
SPCBASE_API BOOL TzSpecificLocalTimeToSystemTime(const void* zone, const SYSTEMTIME* local, SYSTEMTIME* utc) noexcept;

/// UTC to local time of the current zone; otherwise like the conversion above.
SPCBASE_API BOOL SystemTimeToTzSpecificLocalTime(const void* zone, const SYSTEMTIME* utc, SYSTEMTIME* local) noexcept;

/// Local fields to seconds since 1970-01-01 UTC. Fields beyond their range carry, and all are written back as they came
/// out. The daylight flag: above 0 the fields are daylight time, 0 they are standard time, below 0 the zone's rule
/// decides. Returns -1, nothing written, for a null pointer, before 1970-01-01 UTC and after the local year 3000.
SPCBASE_API __time64_t _mktime64(std::tm* fields) noexcept;

/// Seconds since 1970-01-01 UTC to local fields.
/// Returns 0, or 22 for null pointers and for seconds below 0 or above 32535244799; then all fields are -1.
SPCBASE_API int _localtime64_s(std::tm* fields, const __time64_t* seconds) noexcept;

/// Seconds since 1970-01-01 UTC to fields in UTC. Results as above.
SPCBASE_API int _gmtime64_s(std::tm* fields, const __time64_t* seconds) noexcept;
