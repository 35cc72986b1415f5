/// The moments at which a schedule is due.
///
/// Part of scheduling. Nothing here runs anything: a host asks for the next moments and sets its own timer.
///
///     schd::ScheduleStringInfo schedule;
///     schd::ScheduleStringInfo::parse_schedule_string("0 8 * * 1,3,5", schedule);
///     auto due = schd::next_moments(schedule, nullptr, start, end, COleDateTime::GetCurrentTime(), 10);
///
/// Everything is local time of the current zone, by the clock on the wall:
///
/// - Days. Daily: every `value` days from the day of `start` on; without a start, from 1899-12-30 on. Weekly and
///   monthly: the days of the mask; a month without the wanted day is passed over. A schedule of type `none` has no
///   days of its own; with a repeat it is due every day from midnight on.
/// - Within such a day: at hour and minute, then again by the repeat, up to its end, which counts as due itself when
///   the interval meets it. Repeats end with the day. An end before the hour and minute leaves the first moment alone.
/// - Window: from `start` to `end`, both moments included.
/// - Daylight saving: a time that the clocks skip is due at the first moment behind the gap, once for all skipped
///   times; a time that they repeat is due once.
#pragma once

#include <vector>

#include "spcbase/platform/automation/variant_t.h"
#include "spcbase/platform/datetime/ole_datetime.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/schedule/strings.h"

namespace schd {

/// The first `count` moments after `after`, rising; fewer when the window or the year 9999 ends before.
/// `repeat` may be null. `start` and `end` are dates, or empty for an open window.
/// The cost does not depend on how far the moments lie apart.
/// Fails: `DBException`, with what is wrong and what would be right, for a customised schedule, an hour, minute, step
///        or interval that means nothing, dates that are none, an `after` that is not valid, a negative count.
SPCBASE_API std::vector<COleDateTime> next_moments(const ScheduleStringInfo& schedule, const RepeatStringInfo* repeat,
                                                   const _variant_t& start, const _variant_t& end,
                                                   const COleDateTime& after, int count);

}  // namespace schd
