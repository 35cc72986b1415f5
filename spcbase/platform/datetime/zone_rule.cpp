#include "spcbase/platform/datetime/zone_rule.h"

#include <cctz/civil_time.h>
#include <cctz/time_zone.h>

#include <cstdlib>
#include <ctime>
#include <initializer_list>
#include <limits>
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
std::int64_t seconds_of(Seconds point) { return point.time_since_epoch().count(); }
cctz::civil_second civil(std::int64_t local_seconds) { return cctz::civil_second(1970, 1, 1) + local_seconds; }

/// What holds from one change of a zone up to the next.
struct OffsetSpan {
  std::int64_t begin = 0;
  std::int64_t end = 0;
  ZoneOffset offset{0, false};
};

}  // namespace

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

  /// Remembers between which changes the moment lies: the next one is mostly near.
  ZoneOffset offset_at(std::int64_t utc_seconds) {
    if (posix_) return posix_offset(utc_seconds);
    const std::int64_t seconds = in_rules(utc_seconds);
    if (seconds < last_.begin || seconds >= last_.end) last_ = span_around(seconds);
    return last_.offset;
  }

  LocalReadings readings_of(std::int64_t local_seconds) const {
    if (posix_) return posix_readings(local_seconds);
    const std::int64_t shifted = in_rules(local_seconds);
    // So far from a change only one moment can be meant: offsets differ by less than two days.
    constexpr std::int64_t far_enough = 2 * seconds_per_day;
    const std::int64_t near = shifted - last_.offset.seconds;
    if (near - far_enough >= last_.begin && near + far_enough < last_.end) {
      const std::int64_t meant = local_seconds - last_.offset.seconds;
      return {meant, meant};
    }
    const auto found = zone_.lookup(civil(shifted));
    const std::int64_t back = local_seconds - shifted;
    return {seconds_of(found.pre) + back, seconds_of(found.post) + back};
  }

 private:
  bool load(const char* name) {
    if (!cctz::load_time_zone(name, &zone_)) return false;
    cctz::time_zone::civil_transition first;
    if (zone_.next_transition(Seconds::min(), &first)) first_change_ = seconds_of(zone_.lookup(first.to).trans);
    return true;
  }

  OffsetSpan span_around(std::int64_t seconds) const {
    const auto found = zone_.lookup(moment(seconds));
    OffsetSpan span{seconds, seconds + 1, {found.offset, found.is_dst}};
    // Far away the library knows the offset, but lists no changes.
    if (seconds >= far_future) return span;
    constexpr auto limits = std::numeric_limits<std::int64_t>();
    cctz::time_zone::civil_transition change;
    span.begin =
        zone_.prev_transition(moment(seconds + 1), &change) ? seconds_of(zone_.lookup(change.to).trans) : limits.min();
    span.end = zone_.next_transition(moment(seconds), &change) ? seconds_of(zone_.lookup(change.to).trans) : far_future;
    return span;
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
  OffsetSpan last_;
};

namespace {

/// The zone of the moment; loaded again only when `TZ` has changed since this thread's last call.
const std::shared_ptr<Zone>& current_zone() {
  struct Kept {
    std::optional<std::string> tz;
    std::shared_ptr<Zone> zone;
  };
  thread_local std::optional<Kept> kept;
  const char* tz = std::getenv("TZ");
  const bool same = kept && (tz ? kept->tz && *kept->tz == tz : !kept->tz);
  if (!same) kept = Kept{tz ? std::optional<std::string>(tz) : std::nullopt, std::make_shared<Zone>(Zone::of(tz))};
  return kept->zone;
}

}  // namespace

ZoneOffset offset_at(std::int64_t utc_seconds) { return current_zone()->offset_at(utc_seconds); }

LocalReadings readings_of(std::int64_t local_seconds) { return current_zone()->readings_of(local_seconds); }

std::int64_t reading_as(std::int64_t local_seconds, bool as_daylight) {
  constexpr std::int64_t step = 15 * seconds_per_day;
  constexpr int steps_of_a_year = 25;
  Zone& zone = *current_zone();
  const std::int64_t plain = zone.readings_of(local_seconds).after_change;
  for (int i = 0; i <= steps_of_a_year; ++i) {
    for (const std::int64_t probe : {plain - i * step, plain + i * step}) {
      const ZoneOffset offset = zone.offset_at(probe);
      if (offset.is_daylight == as_daylight) return local_seconds - offset.seconds;
    }
  }
  return plain;
}

CurrentZone::CurrentZone() : zone_(current_zone()) {}

ZoneOffset CurrentZone::offset_at(std::int64_t utc_seconds) const { return zone_->offset_at(utc_seconds); }

}  // namespace platform
