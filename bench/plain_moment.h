/// Moments and long values on the plain side.
#pragma once

#include <chrono>
#include <cstddef>

namespace bench {

/// A moment of the calendar, to the millisecond.
struct Moment {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;
};

/// The day number of a moment to the second: whole days since the end of 1899, the time of day as the fraction.
inline double day_number(const Moment& moment) {
  using namespace std::chrono;
  const auto date =
      year(moment.year) / month(static_cast<unsigned>(moment.month)) / day(static_cast<unsigned>(moment.day));
  constexpr sys_days beginning = year(1899) / December / day(30);
  const auto days = (sys_days(date) - beginning).count();
  return static_cast<double>(days) + (moment.hour * 3600 + moment.minute * 60 + moment.second) / 86400.0;
}

/// Long values are streamed in pieces of this size.
inline constexpr std::size_t long_piece = 65536;

/// The column of a long value.
struct LongColumn {
  const char* table;
  const char* column;
};

/// The local moment of one in UTC.
Moment local_of(const Moment& utc);
/// The present, local or UTC.
Moment local_now();
Moment utc_now();

}  // namespace bench
