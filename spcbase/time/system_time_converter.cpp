#include "spcbase/time/internal/system_time_converter.h"

#include <cstdint>
#include <ctime>
#include <tuple>

#include "spcbase/platform/datetime/zone.h"
#include "spcbase/platform/system/exceptions.h"

namespace {

WORD to_word(int value) { return static_cast<WORD>(value); }

/// 0 is Sunday, by the calendar, but for January and February.
/// Kept: their year should go down by one and goes up instead; stored days of the week rest on it.
WORD weekday_of(int year, int month, int day) {
  int y = year;
  int m = month;
  if (m <= 2) {
    ++y;
    m += 12;
  }
  const int t = static_cast<int>((m + 1) * 3.0 / 5.0);
  int n = t + y / 4 + y + 2 * m + day - y / 100 + y / 400 + 1;
  const bool before_reform = y < 1752 || (y == 1752 && (m < 9 || (m == 9 && day <= 2)));
  if (before_reform) n -= 10;
  return static_cast<WORD>(static_cast<std::uint32_t>(n) % 7U);
}

auto key_of(const _SYSTEMTIME& t) {
  return std::make_tuple(t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond, t.wMilliseconds);
}

bool same_to_the_second(const _SYSTEMTIME& a, const _SYSTEMTIME& b) {
  return a.wYear == b.wYear && a.wMonth == b.wMonth && a.wDay == b.wDay && a.wHour == b.wHour &&
         a.wMinute == b.wMinute && a.wSecond == b.wSecond;
}

bool may_be_a_calendar_second(const _SYSTEMTIME& t) {
  return t.wYear >= 1970 && t.wMonth >= 1 && t.wMonth <= 12 && t.wDay >= 1 && t.wDay <= 31 && t.wHour <= 23 &&
         t.wMinute <= 59 && t.wSecond <= 59;
}

}  // namespace

CSystemTime::~CSystemTime() { CSystemTime::Clear(); }

void CSystemTime::Clear() { static_cast<_SYSTEMTIME&>(*this) = _SYSTEMTIME{}; }

int CSystemTime::Compare(const CSystemTime& other) const {
  const auto left = key_of(*this);
  const auto right = key_of(other);
  if (left == right) return 0;
  return left < right ? -1 : 1;
}

void CSystemTime::FromTimestamp(const tagTIMESTAMP_STRUCT* timestamp) {
  if (timestamp == nullptr) return Clear();
  wYear = static_cast<WORD>(timestamp->year);
  wMonth = timestamp->month;
  wDay = timestamp->day;
  wHour = timestamp->hour;
  wMinute = timestamp->minute;
  wSecond = timestamp->second;
  wMilliseconds = static_cast<WORD>(timestamp->fraction * 10U);
  wDayOfWeek = weekday_of(timestamp->year, timestamp->month, timestamp->day);
}

void CSystemTime::FromFileTime(const FILETIME* file_time) {
  _SYSTEMTIME fields{};
  if (file_time == nullptr || !FileTimeToSystemTime(file_time, &fields)) return Clear();
  FromSystemTime(&fields);
}

void CSystemTime::FromSystemTime(const _SYSTEMTIME* system_time) {
  if (system_time == nullptr) return Clear();
  static_cast<_SYSTEMTIME&>(*this) = *system_time;
}

void CSystemTime::FromOleDateTime(const COleDateTime& moment) {
  if (moment.GetStatus() != COleDateTime::valid) return Clear();
  wYear = to_word(moment.GetYear());
  wMonth = to_word(moment.GetMonth());
  wDay = to_word(moment.GetDay());
  wHour = to_word(moment.GetHour());
  wMinute = to_word(moment.GetMinute());
  wSecond = to_word(moment.GetSecond());
  wDayOfWeek = to_word(moment.GetDayOfWeek() - 1);
  wMilliseconds = 0;
}

void CSystemTime::FromTime(const CTime& moment) {
  const __time64_t seconds = moment.GetTime();
  std::tm fields{};
  const bool known = _localtime64_s(&fields, &seconds) == 0;
  wYear = known ? to_word(fields.tm_year + 1900) : WORD{0};
  wMonth = known ? to_word(fields.tm_mon + 1) : WORD{0};
  wDay = known ? to_word(fields.tm_mday) : WORD{0};
  wDayOfWeek = to_word(known ? fields.tm_wday : -1);
  wHour = to_word(known ? fields.tm_hour : -1);
  wMinute = to_word(known ? fields.tm_min : -1);
  wSecond = to_word(known ? fields.tm_sec : -1);
  wMilliseconds = 0;
}

void CSystemTime::FromFileTimeRef(const FILETIME& file_time) { FromFileTime(&file_time); }

void CSystemTime::FromSystemTimeObject(const CSystemTime* other) { FromSystemTime(other); }

void CSystemTime::ToTimestamp(tagTIMESTAMP_STRUCT* timestamp) const {
  if (timestamp == nullptr) return;
  timestamp->year = static_cast<short>(wYear);
  timestamp->month = wMonth;
  timestamp->day = wDay;
  timestamp->hour = wHour;
  timestamp->minute = wMinute;
  timestamp->second = wSecond;
  timestamp->fraction = wMilliseconds / 10U;
}

void CSystemTime::ToTime(CTime* moment) const {
  if (!may_be_a_calendar_second(*this)) AtlThrow(E_FAIL);
  const CTime local(static_cast<const SYSTEMTIME&>(*this));
  if (moment != nullptr) *moment = local;
}

void CSystemTime::ToOleDateTime(COleDateTime* moment) const {
  if (moment == nullptr) return;
  const _SYSTEMTIME fields{wYear, wMonth, 0, wDay, wHour, wMinute, wSecond, 0};
  _SYSTEMTIME back{};
  double days = 0;
  const bool exact = SystemTimeToVariantTime(&fields, &days) && VariantTimeToSystemTime(days, &back) &&
                     same_to_the_second(fields, back);
  moment->m_dt = days;
  moment->SetStatus(exact ? COleDateTime::valid : COleDateTime::invalid);
}

void CSystemTime::SetNow() { GetSystemTime(this); }

int CSystemTime::Reserved() { return 0; }

CSystemTime& CSystemTime::operator=(const COleDateTime& moment) {
  FromOleDateTime(moment);
  return *this;
}

CSystemTime& CSystemTime::operator=(const CTime& moment) {
  FromTime(moment);
  return *this;
}

CSystemTime& CSystemTime::operator=(const FILETIME* file_time) {
  FromFileTime(file_time);
  return *this;
}

CSystemTime& CSystemTime::operator=(const CSystemTime& other) {
  FromSystemTimeObject(&other);
  return *this;
}

bool CSystemTime::operator==(const CSystemTime& other) const { return Compare(other) == 0; }
bool CSystemTime::operator>(const CSystemTime& other) const { return Compare(other) > 0; }
bool CSystemTime::operator<(const CSystemTime& other) const { return Compare(other) < 0; }
