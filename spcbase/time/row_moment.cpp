#include "spcbase/time/internal/row_moment.h"

#include <cstdint>

#include "spcbase/platform/datetime/calendar.h"
#include "spcbase/time/calendar.h"
#include "spcbase/time/internal/present.h"
#include "spcbase/time/internal/system_time_converter.h"

namespace {

constexpr std::int64_t seconds_per_day = 86400;

/// Whether fields are a date and time whose local moment lies within every range, whatever the zone.
bool is_everyday(const tagTIMESTAMP_STRUCT& t) {
  return t.year > 1601 && t.year < 9999 && t.month >= 1 && t.month <= 12 && t.day >= 1 &&
         t.day <= platform::days_in_month(t.year, t.month) && t.hour < 24 && t.minute < 60 && t.second < 60;
}

/// Days since 1970 to a variant time, with the same last bit as `SystemTimeToVariantTime` gives.
double variant_time(std::int64_t seconds) {
  const std::int64_t days = seconds / seconds_per_day - (seconds % seconds_per_day < 0 ? 1 : 0);
  const auto in_day = static_cast<int>(seconds - days * seconds_per_day);
  const std::int64_t variant_days = days - platform::variant_epoch_days;
  const double direction = variant_days < 0 ? -1.0 : 1.0;
  double value = static_cast<double>(variant_days);
  value += direction * (in_day / 3600) / 24.0;
  value += direction * (in_day / 60 % 60) / 1440.0;
  value += direction * (in_day % 60) / 86400.0;
  return value;
}

}  // namespace

tagTIMESTAMP_STRUCT to_utc_timestamp(const COleDateTime& local) {
  COleDateTime utc = local;
  to_utc(utc);
  CSystemTime moment;
  moment.FromOleDateTime(utc);
  tagTIMESTAMP_STRUCT timestamp{};
  moment.ToTimestamp(&timestamp);
  return timestamp;
}

COleDateTime present_utc() { return read_present(true); }

COleDateTime LocalMomentReader::read(const tagTIMESTAMP_STRUCT& utc) const {
  constexpr double days_per_nanosecond = 1 / (seconds_per_day * 1e9);
  COleDateTime local;
  if (is_everyday(utc)) {
    // What the conversions below come to, without their ways through fields.
    const std::int64_t seconds = platform::days_from_civil(utc.year, utc.month, utc.day) * seconds_per_day +
                                 (utc.hour * 60 + utc.minute) * 60 + utc.second;
    local.m_dt = variant_time(seconds + zone_.offset_at(seconds).seconds);
  } else {
    local.SetDateTime(utc.year, utc.month, utc.day, utc.hour, utc.minute, utc.second);
    to_local(local);
  }
  // The conversion works to the second.
  local.m_dt += utc.fraction * days_per_nanosecond;
  return local;
}
