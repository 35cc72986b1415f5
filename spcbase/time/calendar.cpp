#include "spcbase/time/calendar.h"

#include <array>
#include <compare>
#include <tuple>

const MonthInfo month_table[12] = {
    {"Jan", 31, 31, "January"},   {"Feb", 28, 29, "February"}, {"Mar", 31, 31, "March"},    {"Apr", 30, 30, "April"},
    {"May", 31, 31, "May"},       {"Jun", 30, 30, "June"},     {"Jul", 31, 31, "July"},     {"Aug", 31, 31, "August"},
    {"Sep", 30, 30, "September"}, {"Oct", 31, 31, "October"},  {"Nov", 30, 30, "November"}, {"Dec", 31, 31, "December"},
};

namespace {

constexpr double day_per_minute = 0.0006944444444444445;
constexpr double day_per_hour = 0.041666666666666664;
constexpr double day_per_second = 1.1574074074074073e-05;

int days_in(const MonthInfo& month, int year) { return is_leap_year(year) ? month.days_leap : month.days_common; }

using Fields = std::array<int, 6>;

Fields fields_of(const COleDateTime& moment) {
  return {moment.GetYear(), moment.GetMonth(),  moment.GetDay(),
          moment.GetHour(), moment.GetMinute(), moment.GetSecond()};
}

auto key_of(const tagTIMESTAMP_STRUCT& t) {
  return std::make_tuple(t.year, t.month, t.day, t.hour, t.minute, t.second, t.fraction);
}

using ZoneConversion = BOOL (*)(const void* zone, const SYSTEMTIME* from, SYSTEMTIME* to) noexcept;

bool convert(ZoneConversion conversion, _SYSTEMTIME& moment) {
  SYSTEMTIME converted{};
  if (!conversion(nullptr, &moment, &converted)) return false;
  moment = converted;
  return true;
}

bool convert(ZoneConversion conversion, COleDateTime& moment) {
  SYSTEMTIME fields{};
  if (moment.GetStatus() != COleDateTime::valid || !moment.GetAsSystemTime(fields)) return false;
  // Kept: a refused conversion is no failure here, the fields go back as they were.
  static_cast<void>(convert(conversion, fields));
  moment = fields;
  return true;
}

}  // namespace

long DateDMYToJulian(int year, int month, int day) {
  if (year < 1900) return 0;
  // Kept: the day that 1900 did not have, and the day behind it, are literal answers.
  if (year == 1900 && month == 2 && day == 29) return 60;
  if (year == 1900 && month == 3 && day == 1) return 61;
  long days = 0;
  for (int y = 1900; y < year; ++y)
    days += is_leap_year(y) ? 366 : 365;
  for (int m = 1; m < month && m <= 12; ++m)
    days += days_in(month_table[m - 1], year);
  days += day;
  return days - 1 > 59 ? days + 1 : days;
}

int GetNDayInMonth(int year, int month) {
  if (month < 1 || month > 12) return -1;
  return days_in(month_table[month - 1], year);
}

double TimeHMSToNumber(int hour, int minute, int second) {
  // The order of the sum decides the last bit.
  const double minutes = minute * day_per_minute;
  const double hours = hour * day_per_hour;
  const double seconds = second * day_per_second;
  return (minutes + hours) + seconds;
}

bool less_than_dt(const COleDateTime& left, const COleDateTime& right) { return fields_of(left) < fields_of(right); }

bool equal_dt(const COleDateTime& left, const COleDateTime& right) { return fields_of(left) == fields_of(right); }

bool operator<(const tagTIMESTAMP_STRUCT& left, const tagTIMESTAMP_STRUCT& right) {
  return key_of(left) < key_of(right);
}

bool operator==(const tagTIMESTAMP_STRUCT& left, const tagTIMESTAMP_STRUCT& right) {
  return key_of(left) == key_of(right);
}

bool to_utc(_SYSTEMTIME& moment) { return convert(TzSpecificLocalTimeToSystemTime, moment); }
bool to_local(_SYSTEMTIME& moment) { return convert(SystemTimeToTzSpecificLocalTime, moment); }
bool to_utc(COleDateTime& moment) { return convert(TzSpecificLocalTimeToSystemTime, moment); }
bool to_local(COleDateTime& moment) { return convert(SystemTimeToTzSpecificLocalTime, moment); }
