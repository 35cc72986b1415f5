// The clock of the caches.
#include <cmath>
#include <cstdint>

#include "spcbase/revision/internal/rows.h"

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

bool is_older(int minutes, double now_utc, double stamp_utc) {
  const double age_days = even_days(now_utc) - even_days(stamp_utc);
  if (!(std::abs(age_days) <= longest_span_days)) return true;
  const double rounded = age_days + std::copysign(half_second_days, age_days);
  return static_cast<std::int64_t>(rounded * seconds_per_day) > std::int64_t{minutes} * 60;
}

bool is_expired(int minutes, const COleDateTime& stamp_utc) {
  return minutes > 0 && is_older(minutes, present_utc(), stamp_utc);
}

}  // namespace rev
