// A host that reads a schedule and a repeat, tells them in a sentence, and reckons when they are due.
#include <cstdio>
#include <vector>

#include "spcbase/foundation/outcome.h"
#include "spcbase/schedule/description.h"
#include "spcbase/schedule/occurrence.h"
#include "spcbase/schedule/strings.h"

namespace {

void run() {
  schd::ScheduleStringInfo schedule;
  schd::ScheduleStringInfo::parse_schedule_string("0 8 * * 1,3,5", schedule);
  schd::RepeatStringInfo repeat;
  schd::RepeatStringInfo::parse_repeat_string("4 h 0 17 30", repeat);
  std::printf("type %d, value %d, repeated as %s\n", schedule.type, schedule.value, repeat.get_rep_str().GetString());

  const _variant_t start(COleDateTime(2024, 1, 2, 0, 0, 0), VT_DATE);
  const _variant_t end(COleDateTime(2024, 2, 2, 0, 0, 0), VT_DATE);
  const CString sentence = schd::get_schedule_descriptive_text(schedule, &repeat, start, end);
  std::printf("%s\n", sentence.GetString());

  const COleDateTime now(2024, 1, 3, 13, 0, 0);
  for (const COleDateTime& due : schd::next_moments(schedule, &repeat, start, end, now, 4))
    std::printf("%s\n", due.Format("%Y-%m-%d %H:%M").GetString());

  const auto refused = guarded([&] { schd::ScheduleStringInfo::parse_schedule_string("0 8 * *", schedule); });
  std::printf("%s\n", refused.failure().text.GetString());
}

}  // namespace

int main() {
  const auto done = guarded(run);
  if (!done.ok()) std::printf("%s\n", done.failure().text.GetString());
  return done.ok() ? 0 : 1;
}
