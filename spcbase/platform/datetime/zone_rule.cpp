#include "spcbase/platform/datetime/zone_rule.h"

#include <cctz/civil_time.h>
#include <cctz/time_zone.h>

#include <cstdlib>
#include <ctime>
#include <initializer_list>
#include <optional>
#include <string>

namespace platform {

namespace {

using Seconds = cctz::time_point<cctz::seconds>;

constexpr std::int64_t seconds_per_day = 86400;
// The calendar repeats after 400 years, weekdays included, and so do the rules of a zone.
constexpr std::int64_t cycle_seconds = 146097 * seconds_per_day;
constexpr std::int64_t far_future = 4102444800;  // 2100-01-01, beyond every single change in the tz database

Seconds moment(std::int64_t seconds) { return Seconds(cctz::seconds(seconds)); }
cctz::civil_second civil(std::int64_t local_seconds) { return cctz::civil_second(1970, 1, 1) + local_seconds; }

/// One zone of the tz database, or a rule in POSIX form that the C library knows.
class Zone {
 public:
  /// The zone that a value of `TZ` names; null is the system's own.
  static Zone of(const char* tz) {
    Zone zone;
    if (!tz) {
      zone.load("/etc/localtime");
    } else {
      const char* name = *tz == ':' ? tz + 1 : tz;
      if (*name != '\0' && !zone.load(name)) {
        tzset();
        zone.posix_ = true;
      }
    }
    return zone;
  }

  ZoneOffset offset_at(std::int64_t utc_seconds) const {
    if (posix_) return posix_offset(utc_seconds);
    const auto found = zone_.lookup(moment(in_rules(utc_seconds)));
    return {found.offset, found.is_dst};
  }

  LocalReadings readings_of(std::int64_t local_seconds) const {
    if (posix_) return posix_readings(local_seconds);
    const std::int64_t shifted = in_rules(local_seconds);
    const auto found = zone_.lookup(civil(shifted));
    const std::int64_t back = local_seconds - shifted;
    return {found.pre.time_since_epoch().count() + back, found.post.time_since_epoch().count() + back};
  }

 private:
  bool load(const char* name) {
    if (!cctz::load_time_zone(name, &zone_)) return false;
    cctz::time_zone::civil_transition first;
    if (zone_.next_transition(Seconds::min(), &first)) {
      first_change_ = zone_.lookup(first.to).trans.time_since_epoch().count();
    }
    return true;
  }

  /// Before its first change the database knows only the place's mean solar time, which no clock here shows. Such
  /// moments follow the rule of the present, as moments of a far year do that has the same calendar.
  std::int64_t in_rules(std::int64_t seconds) const {
    if (!first_change_ || seconds >= *first_change_) return seconds;
    const std::int64_t cycles = (far_future - seconds) / cycle_seconds + 1;
    return seconds + cycles * cycle_seconds;
  }

  static ZoneOffset posix_offset(std::int64_t utc_seconds) {
    const std::time_t time = utc_seconds;
    std::tm fields{};
    if (!localtime_r(&time, &fields)) return {0, false};
    return {fields.tm_gmtoff, fields.tm_isdst > 0};
  }

  /// No two changes of such a rule lie within two days of each other.
  static LocalReadings posix_readings(std::int64_t local_seconds) {
    const std::int64_t before = posix_offset(local_seconds - seconds_per_day).seconds;
    const std::int64_t after = posix_offset(local_seconds + seconds_per_day).seconds;
    const std::int64_t first = local_seconds - before;
    const std::int64_t second = local_seconds - after;
    const bool first_holds = posix_offset(first).seconds == before;
    const bool second_holds = posix_offset(second).seconds == after;
    if (first_holds == second_holds) return {first, second};
    return first_holds ? LocalReadings{first, first} : LocalReadings{second, second};
  }

  cctz::time_zone zone_;
  std::optional<std::int64_t> first_change_;
  bool posix_ = false;
};

/// The zone of the moment; loaded again only when `TZ` has changed since this thread's last call.
const Zone& current_zone() {
  struct Kept {
    std::optional<std::string> tz;
    Zone zone;
  };
  thread_local std::optional<Kept> kept;
  const char* tz = std::getenv("TZ");
  const bool same = kept && (tz ? kept->tz && *kept->tz == tz : !kept->tz);
  if (!same) kept = Kept{tz ? std::optional<std::string>(tz) : std::nullopt, Zone::of(tz)};
  return kept->zone;
}

}  // namespace

ZoneOffset offset_at(std::int64_t utc_seconds) { return current_zone().offset_at(utc_seconds); }

LocalReadings readings_of(std::int64_t local_seconds) { return current_zone().readings_of(local_seconds); }

std::int64_t reading_as(std::int64_t local_seconds, bool as_daylight) {
  constexpr std::int64_t step = 15 * seconds_per_day;
  constexpr int steps_of_a_year = 25;
  const Zone& zone = current_zone();
  const std::int64_t plain = zone.readings_of(local_seconds).after_change;
  for (int i = 0; i <= steps_of_a_year; ++i) {
    for (const std::int64_t probe : {plain - i * step, plain + i * step}) {
      const ZoneOffset offset = zone.offset_at(probe);
      if (offset.is_daylight == as_daylight) return local_seconds - offset.seconds;
    }
  }
  return plain;
}

}  // namespace platform
