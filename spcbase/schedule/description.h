/// A schedule told in a sentence.
///
/// Part of scheduling. Every word comes from the message table, so that a translated table (foundation/messages.h)
/// gives a translated sentence; dates and times of day follow the user's locale.
///
///     "At 8:00:00 AM every day, starting 1/2/2024"
///     "Every 10 minute(s) from 8:00:00 AM until 5:30:00 PM every day, starting 1/2/2024 and ending 2/2/2024"
#pragma once

#include "spcbase/platform/automation/variant_t.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"
#include "spcbase/schedule/strings.h"

namespace schd {

/// The sentence.
/// `repeat` may be null. `start` and `end` are the window's dates; an empty variant is no date and is not spoken of.
/// One that cannot be converted reads "Invalid DateTime", and so does an hour or minute that is none.
/// Kept: a schedule of type `none` gives an empty text, or the repeat alone; days and dates are left out then.
/// Kept: an end without a start follows the days without a comma.
SPCBASE_API CString get_schedule_descriptive_text(const ScheduleStringInfo& schedule, const RepeatStringInfo* repeat,
                                                  const _variant_t& start, const _variant_t& end);

}  // namespace schd
