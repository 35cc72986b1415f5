#include "spcbase/platform/datetime/local_gap.h"

#include <numeric>

#include "spcbase/platform/datetime/zone_rule.h"

namespace platform {

std::optional<LocalGap> gap_around(std::int64_t local_seconds) {
  const auto readings = readings_of(local_seconds);
  // Only over a gap does the later offset give the earlier moment.
  if (readings.after_change >= readings.before_change) return std::nullopt;
  const std::int64_t offset_before = local_seconds - readings.before_change;
  const std::int64_t offset_after = local_seconds - readings.after_change;
  // The change lies behind the one reading and not behind the other.
  std::int64_t before = readings.after_change;
  std::int64_t change = readings.before_change;
  while (change - before > 1) {
    const std::int64_t middle = std::midpoint(before, change);
    (offset_at(middle).seconds == offset_before ? before : change) = middle;
  }
  return LocalGap{change + offset_before, change + offset_after};
}

}  // namespace platform
