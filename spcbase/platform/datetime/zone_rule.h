/// The current zone's rule: what the offset from UTC is at a moment, and which moments a local time can mean.
///
/// Part of the platform layer; not for hosts. Seconds count from 1970-01-01; local seconds do so in local time.
#pragma once

#include <cstdint>
#include <memory>

namespace platform {

/// What holds at a moment.
struct ZoneOffset {
  std::int64_t seconds;
  bool is_daylight;
};

/// The moments that a local time can mean. For one that occurs once they are the same; for a skipped or repeated one
/// they are the readings with the offset before the change and after it.
struct LocalReadings {
  std::int64_t before_change;
  std::int64_t after_change;
};

/// The offset of the current zone at a moment.
ZoneOffset offset_at(std::int64_t utc_seconds);

/// Both readings of a local time in the current zone.
LocalReadings readings_of(std::int64_t local_seconds);

/// The reading by an offset of the wanted kind, daylight or standard, that the zone has in the year around the local
/// time; the plain reading when it has none.
std::int64_t reading_as(std::int64_t local_seconds, bool as_daylight);

class Zone;

/// The zone that is the current one when this is made; a later change of `TZ` does not reach it. For one call that
/// converts many moments, in one thread.
class CurrentZone {
 public:
  CurrentZone();
  ZoneOffset offset_at(std::int64_t utc_seconds) const;

 private:
  std::shared_ptr<Zone> zone_;
};

}  // namespace platform
