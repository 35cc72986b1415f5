#include "spcbase/platform/datetime/ctime.h"

#include <chrono>

#include "spcbase/platform/datetime/calendar.h"
#include "spcbase/platform/datetime/clock.h"
#include "spcbase/platform/datetime/format_fields.h"

namespace {

std::tm local_fields(__time64_t seconds, bool& good) noexcept {
  std::tm fields{};
  good = _localtime64_s(&fields, &seconds) == 0;
  return good ? fields : std::tm{};
}

/// One field, or 0 when the moment has none.
template <typename Pick>
int local_field(__time64_t seconds, Pick pick) noexcept {
  bool good = false;
  const std::tm fields = local_fields(seconds, good);
  return good ? pick(fields) : 0;
}

bool in_ranges(int year, int month, int day, int hour, int minute, int second) {
  return year >= 1900 && month >= 1 && month <= 12 && day >= 1 && day <= 31 && hour >= 0 && hour <= 23 && minute >= 0 &&
         minute <= 59 && second >= 0 && second <= 59;
}

__time64_t seconds_of(int year, int month, int day, int hour, int minute, int second, int daylight_flag) {
  if (!in_ranges(year, month, day, hour, minute, second)) AtlThrow(E_INVALIDARG);
  std::tm fields{};
  fields.tm_year = year - 1900;
  fields.tm_mon = month - 1;
  fields.tm_mday = day;
  fields.tm_hour = hour;
  fields.tm_min = minute;
  fields.tm_sec = second;
  fields.tm_isdst = daylight_flag;
  const __time64_t seconds = _mktime64(&fields);
  if (seconds == -1) AtlThrow(E_INVALIDARG);
  return seconds;
}

}  // namespace

CTime CTime::GetCurrentTime() noexcept {
  return CTime(std::chrono::floor<std::chrono::seconds>(platform::now()).time_since_epoch().count());
}

CTime::CTime(int year, int month, int day, int hour, int minute, int second, int daylight_flag)
    : seconds_(seconds_of(year, month, day, hour, minute, second, daylight_flag)) {}

CTime::CTime(const SYSTEMTIME& fields, int daylight_flag)
    : seconds_(fields.wYear < 1900 ? 0
                                   : seconds_of(fields.wYear, fields.wMonth, fields.wDay, fields.wHour, fields.wMinute,
                                                fields.wSecond, daylight_flag)) {}

CTime::CTime(const FILETIME& file_time, int) {
  constexpr std::int64_t ticks_per_second = 10000000;
  const auto ticks = static_cast<std::int64_t>(static_cast<std::uint64_t>(file_time.dwHighDateTime) << 32 |
                                               static_cast<std::uint64_t>(file_time.dwLowDateTime));
  if (ticks < 0) AtlThrow(E_INVALIDARG);
  seconds_ = ticks / ticks_per_second + platform::file_time_epoch_days * 86400;
}

int CTime::GetYear() const noexcept {
  return local_field(seconds_, [](const std::tm& f) { return f.tm_year + 1900; });
}
int CTime::GetMonth() const noexcept {
  return local_field(seconds_, [](const std::tm& f) { return f.tm_mon + 1; });
}
int CTime::GetDay() const noexcept {
  return local_field(seconds_, [](const std::tm& f) { return f.tm_mday; });
}
int CTime::GetHour() const noexcept {
  return local_field(seconds_, [](const std::tm& f) { return f.tm_hour; });
}
int CTime::GetMinute() const noexcept {
  return local_field(seconds_, [](const std::tm& f) { return f.tm_min; });
}
int CTime::GetSecond() const noexcept {
  return local_field(seconds_, [](const std::tm& f) { return f.tm_sec; });
}
int CTime::GetDayOfWeek() const noexcept {
  return local_field(seconds_, [](const std::tm& f) { return f.tm_wday + 1; });
}

std::tm* CTime::GetLocalTm(std::tm* fields) const {
  if (!fields) AtlThrow(E_INVALIDARG);
  return _localtime64_s(fields, &seconds_) == 0 ? fields : nullptr;
}

std::tm* CTime::GetGmtTm(std::tm* fields) const {
  if (!fields) AtlThrow(E_INVALIDARG);
  return _gmtime64_s(fields, &seconds_) == 0 ? fields : nullptr;
}

bool CTime::GetAsSystemTime(SYSTEMTIME& fields) const noexcept {
  bool good = false;
  const std::tm local = local_fields(seconds_, good);
  if (!good) return false;
  const auto word = [](int value) { return static_cast<WORD>(value); };
  fields = {word(local.tm_year + 1900), word(local.tm_mon + 1), word(local.tm_wday), word(local.tm_mday),
            word(local.tm_hour),        word(local.tm_min),     word(local.tm_sec),  0};
  return true;
}

CString CTime::Format(const char* format) const {
  std::tm fields{};
  if (!format || _localtime64_s(&fields, &seconds_) != 0) return CString("");
  return platform::format_fields(format, fields);
}

CString CTime::FormatGmt(const char* format) const {
  std::tm fields{};
  if (!format || _gmtime64_s(&fields, &seconds_) != 0) return CString("");
  return platform::format_fields(format, fields);
}
