#include "tools/spc/moments.h"

#include <array>
#include <clocale>

#include "spcbase/platform/datetime/system_time.h"
#include "tools/spc/problem.h"
#include "tools/spc/utf8.h"

namespace spc {
namespace {

constexpr std::array weekdays = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
constexpr std::array months = {"January", "February", "March",     "April",   "May",      "June",
                               "July",    "August",   "September", "October", "November", "December"};

/// Numbers of fixed width parted by fixed characters: "9999-99-99 99:99". Nothing when the text is another.
template <std::size_t Count>
bool read_fields(std::string_view text, std::string_view pattern, std::array<int, Count>& fields) {
  if (text.size() != pattern.size()) return false;
  std::size_t field = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (pattern[i] == '9') {
      if (text[i] < '0' || text[i] > '9') return false;
      fields.at(field) = fields.at(field) * 10 + (text[i] - '0');
    } else {
      if (text[i] != pattern[i] && !(pattern[i] == ' ' && text[i] == 'T')) return false;
      ++field;
    }
  }
  return true;
}

}  // namespace

std::optional<COleDateTime> read_moment(std::string_view text) {
  for (const std::string_view pattern : {"9999-99-99", "9999-99-99 99:99", "9999-99-99 99:99:99"}) {
    std::array<int, 6> f{};
    if (!read_fields(text, pattern, f)) continue;
    const COleDateTime moment(f[0], f[1], f[2], f[3], f[4], f[5]);
    if (moment.GetStatus() == COleDateTime::valid) return moment;
  }
  return std::nullopt;
}

COleDateTime moment_of_option(const char* option, const std::string& text) {
  if (const auto moment = read_moment(text)) return *moment;
  throw Problem{"cannot read the command line", std::string(option) + ": " + quoted(text) + " is not a moment",
                std::string("Moments are local time, written ") + moment_example + ".", exit_misuse};
}

std::string moment_text(double day_number) {
  SYSTEMTIME fields{};
  if (VariantTimeToSystemTime(day_number, &fields) == 0) return "?";
  CString text;
  text.Format("%04d-%02d-%02d %02d:%02d:%02d", fields.wYear, fields.wMonth, fields.wDay, fields.wHour, fields.wMinute,
              fields.wSecond);
  return std::string(text.view());
}

void use_dates_of_user() { std::setlocale(LC_TIME, ""); }

const char* weekday_name(int day) { return weekdays.at(static_cast<std::size_t>(day)); }

const char* month_name(int month) { return months.at(static_cast<std::size_t>(month) - 1); }

}  // namespace spc
