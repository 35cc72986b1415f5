// Moments on their way between records, rows and the caches' clock.
#include <cmath>
#include <cstdint>

#include "spcbase/revision/internal/rows.h"
#include "spcbase/time/calendar.h"
#include "spcbase/time/internal/system_time_converter.h"

namespace rev {
namespace {

constexpr double half_second_days = 5.787037037037037e-06;
constexpr double seconds_per_day = 86400;
constexpr double longest_span_days = 3615897.0;

/// Days on one even scale: before day 0 the time of day of a variant time counts forward all the same.
double even_days(double date) {
  if (date > -half_second_days) return date;
  const double days = std::ceil(date);
  return days - (date - days);
}

}  // namespace

TIMESTAMP_STRUCT to_utc_timestamp(const COleDateTime& local) {
  COleDateTime utc = local;
  to_utc(utc);
  CSystemTime moment;
  moment.FromOleDateTime(utc);
  TIMESTAMP_STRUCT timestamp{};
  moment.ToTimestamp(&timestamp);
  return timestamp;
}

COleDateTime to_local_moment(const TIMESTAMP_STRUCT& utc) {
  COleDateTime local(utc.year, utc.month, utc.day, utc.hour, utc.minute, utc.second);
  to_local(local);
  // The conversion works to the second.
  local.m_dt += utc.fraction * (1 / (seconds_per_day * 1e9));
  return local;
}

COleDateTime present_utc() {
  COleDateTime now = COleDateTime::GetCurrentTime();
  to_utc(now);
  return now;
}

bool is_expired(int minutes, const COleDateTime& stamp_utc) {
  if (minutes <= 0) return false;
  const double age_days = even_days(present_utc()) - even_days(stamp_utc);
  if (!(std::abs(age_days) <= longest_span_days)) return true;
  const double rounded = age_days + std::copysign(half_second_days, age_days);
  return static_cast<std::int64_t>(rounded * seconds_per_day) > std::int64_t{minutes} * 60;
}

}  // namespace rev
