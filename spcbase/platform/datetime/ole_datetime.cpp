#include "spcbase/platform/datetime/ole_datetime.h"

#include <chrono>
#include <cmath>
#include <initializer_list>

#include "spcbase/platform/datetime/calendar.h"
#include "spcbase/platform/datetime/clock.h"
#include "spcbase/platform/datetime/format_fields.h"

namespace {

constexpr double max_span_days = 3615897.0;
constexpr double first_day = -657434.0;
constexpr double end_day = 2958466.0;
constexpr double half_second = 1.0 / (2.0 * 86400.0);

/// Days counted evenly: -1.25, which is day -1 at 6 o'clock, is three quarters of a day before day 0.
double even_days(double date) {
  if (date >= 0) return date;
  const double whole = std::ceil(date);
  return whole - (date - whole);
}

double date_of_even_days(double days) {
  if (days >= 0) return days;
  const double whole = std::floor(days);
  return whole - (days - whole);
}

bool same_fields(const SYSTEMTIME& a, const SYSTEMTIME& b) {
  return a.wYear == b.wYear && a.wMonth == b.wMonth && a.wDay == b.wDay && a.wHour == b.wHour &&
         a.wMinute == b.wMinute && a.wSecond == b.wSecond;
}

/// Fields to a number that gives the same fields back; false when there is none.
bool to_date(const SYSTEMTIME& fields, double& date) {
  double value = 0;
  SYSTEMTIME back{};
  if (!SystemTimeToVariantTime(&fields, &value) || !VariantTimeToSystemTime(value, &back)) return false;
  if (!same_fields(fields, back)) return false;
  date = value;
  return true;
}

bool is_word(int value) { return value >= 0 && value <= 0xFFFF; }

/// What a sum is worth by the statuses of its operands; `valid` when both are.
template <typename Left, typename Right>
int joint_status(Left left, Right right) {
  constexpr int null_status = 2;
  constexpr int invalid_status = 1;
  if (static_cast<int>(left) == null_status || static_cast<int>(right) == null_status) return null_status;
  return static_cast<int>(left) != 0 || static_cast<int>(right) != 0 ? invalid_status : 0;
}

/// Cuts a length in some unit to whole ones, half a second being lifted over the edge.
double whole_units(double span, double per_day) {
  const double lifted = span < 0 ? span - half_second : span + half_second;
  return std::trunc(lifted * per_day);
}

}  // namespace

// COleDateTimeSpan

void COleDateTimeSpan::SetDateTimeSpan(long days, int hours, int minutes, int seconds) noexcept {
  m_span = static_cast<double>(days) + hours / 24.0 + minutes / 1440.0 + seconds / 86400.0;
  m_status = valid;
  check_range();
}

void COleDateTimeSpan::check_range() noexcept {
  if (!(std::fabs(m_span) <= max_span_days)) m_status = invalid;
}

double COleDateTimeSpan::GetTotalDays() const noexcept { return whole_units(m_span, 1); }
double COleDateTimeSpan::GetTotalHours() const noexcept { return whole_units(m_span, 24); }
double COleDateTimeSpan::GetTotalMinutes() const noexcept { return whole_units(m_span, 1440); }
double COleDateTimeSpan::GetTotalSeconds() const noexcept { return whole_units(m_span, 86400); }

long COleDateTimeSpan::GetDays() const noexcept { return static_cast<long>(GetTotalDays()); }
long COleDateTimeSpan::GetHours() const noexcept { return static_cast<long>(GetTotalHours()) % 24; }
long COleDateTimeSpan::GetMinutes() const noexcept { return static_cast<long>(GetTotalMinutes()) % 60; }
long COleDateTimeSpan::GetSeconds() const noexcept { return static_cast<long>(GetTotalSeconds()) % 60; }

COleDateTimeSpan COleDateTimeSpan::operator+(const COleDateTimeSpan& other) const noexcept {
  COleDateTimeSpan result;
  result.m_status = static_cast<DateTimeSpanStatus>(joint_status(m_status, other.m_status));
  if (result.m_status != valid) return result;
  result.m_span = m_span + other.m_span;
  result.check_range();
  return result;
}

COleDateTimeSpan COleDateTimeSpan::operator-(const COleDateTimeSpan& other) const noexcept {
  COleDateTimeSpan negative(other);
  negative.m_span = -other.m_span;
  return *this + negative;
}

// COleDateTime

COleDateTime COleDateTime::GetCurrentTime() noexcept {
  const __time64_t seconds = std::chrono::floor<std::chrono::seconds>(platform::now()).time_since_epoch().count();
  return COleDateTime(seconds);
}

COleDateTime& COleDateTime::operator=(double date) noexcept {
  m_dt = date;
  m_status = valid;
  return *this;
}

COleDateTime& COleDateTime::operator=(__time64_t seconds) noexcept {
  std::tm fields{};
  if (_localtime64_s(&fields, &seconds) != 0) {
    m_status = invalid;
    return *this;
  }
  SetDateTime(fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour, fields.tm_min, fields.tm_sec);
  return *this;
}

COleDateTime& COleDateTime::operator=(const SYSTEMTIME& fields) noexcept {
  m_status = to_date(fields, m_dt) ? valid : invalid;
  return *this;
}

COleDateTime& COleDateTime::operator=(const FILETIME& file_time) noexcept {
  SYSTEMTIME utc;
  SYSTEMTIME local;
  if (!FileTimeToSystemTime(&file_time, &utc) || !SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local)) {
    m_status = invalid;
    return *this;
  }
  return *this = local;
}

int COleDateTime::SetDateTime(int year, int month, int day, int hour, int minute, int second) noexcept {
  m_status = invalid;
  for (const int field : {year, month, day, hour, minute, second}) {
    if (!is_word(field)) return m_status;
  }
  const auto word = [](int value) { return static_cast<WORD>(value); };
  *this = SYSTEMTIME{word(year), word(month), 0, word(day), word(hour), word(minute), word(second), 0};
  return m_status;
}

bool COleDateTime::GetAsSystemTime(SYSTEMTIME& fields) const noexcept {
  return m_status == valid && VariantTimeToSystemTime(m_dt, &fields) != 0;
}

int COleDateTime::GetYear() const noexcept {
  SYSTEMTIME fields;
  return GetAsSystemTime(fields) ? fields.wYear : -1;
}
int COleDateTime::GetMonth() const noexcept {
  SYSTEMTIME fields;
  return GetAsSystemTime(fields) ? fields.wMonth : -1;
}
int COleDateTime::GetDay() const noexcept {
  SYSTEMTIME fields;
  return GetAsSystemTime(fields) ? fields.wDay : -1;
}
int COleDateTime::GetHour() const noexcept {
  SYSTEMTIME fields;
  return GetAsSystemTime(fields) ? fields.wHour : -1;
}
int COleDateTime::GetMinute() const noexcept {
  SYSTEMTIME fields;
  return GetAsSystemTime(fields) ? fields.wMinute : -1;
}
int COleDateTime::GetSecond() const noexcept {
  SYSTEMTIME fields;
  return GetAsSystemTime(fields) ? fields.wSecond : -1;
}
int COleDateTime::GetDayOfWeek() const noexcept {
  SYSTEMTIME fields;
  return GetAsSystemTime(fields) ? fields.wDayOfWeek + 1 : -1;
}
int COleDateTime::GetDayOfYear() const noexcept {
  SYSTEMTIME fields;
  if (!GetAsSystemTime(fields)) return -1;
  return static_cast<int>(platform::days_from_civil(fields.wYear, fields.wMonth, fields.wDay) -
                          platform::days_from_civil(fields.wYear, 1, 1)) +
         1;
}

bool COleDateTime::ParseDateTime(const char* text, DWORD flags, LCID locale) {
  double date = 0;
  const bool good = text && SUCCEEDED(platform::date_from_text(text, locale, flags, date));
  m_dt = good ? date : 0;
  m_status = good ? valid : invalid;
  return good;
}

CString COleDateTime::Format(DWORD flags, LCID locale) const {
  if (m_status == null) return CString("");
  std::string text;
  if (m_status != valid || FAILED(platform::text_from_date(m_dt, locale, flags, text))) return "Invalid DateTime";
  return CString(std::move(text));
}

CString COleDateTime::Format(const char* format) const {
  if (m_status == null) return CString("");
  SYSTEMTIME fields;
  if (!format || !GetAsSystemTime(fields)) return "Invalid DateTime";
  std::tm parts{};
  parts.tm_year = fields.wYear - 1900;
  parts.tm_mon = fields.wMonth - 1;
  parts.tm_mday = fields.wDay;
  parts.tm_hour = fields.wHour;
  parts.tm_min = fields.wMinute;
  parts.tm_sec = fields.wSecond;
  parts.tm_wday = fields.wDayOfWeek;
  parts.tm_yday = GetDayOfYear() - 1;
  parts.tm_isdst = -1;
  return platform::format_fields(format, parts);
}

void COleDateTime::check_range() noexcept {
  if (!(m_dt > first_day - 1 && m_dt < end_day)) m_status = invalid;
}

COleDateTime COleDateTime::operator+(const COleDateTimeSpan& span) const noexcept {
  COleDateTime result;
  result.m_status = static_cast<DateTimeStatus>(joint_status(m_status, span.m_status));
  if (result.m_status != valid) return result;
  result.m_dt = date_of_even_days(even_days(m_dt) + span.m_span);
  result.check_range();
  return result;
}

COleDateTime COleDateTime::operator-(const COleDateTimeSpan& span) const noexcept {
  COleDateTimeSpan negative(span);
  negative.m_span = -span.m_span;
  return *this + negative;
}

COleDateTimeSpan COleDateTime::operator-(const COleDateTime& other) const noexcept {
  COleDateTimeSpan result;
  result.m_status = static_cast<COleDateTimeSpan::DateTimeSpanStatus>(joint_status(m_status, other.m_status));
  if (result.m_status == COleDateTimeSpan::valid) result = COleDateTimeSpan(even_days(m_dt) - even_days(other.m_dt));
  return result;
}

bool COleDateTime::operator<(const COleDateTime& other) const noexcept {
  return m_status == valid && other.m_status == valid && even_days(m_dt) < even_days(other.m_dt);
}

bool COleDateTime::operator<=(const COleDateTime& other) const noexcept {
  return m_status == valid && other.m_status == valid && even_days(m_dt) <= even_days(other.m_dt);
}
