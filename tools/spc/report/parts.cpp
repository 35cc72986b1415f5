#include "tools/spc/report/parts.h"

#include "spcbase/platform/datetime/system_time.h"
#include "tools/spc/moments.h"

namespace spc::report_page {
namespace {

bool is_figure(const std::string& cell) {
  const std::size_t digit = cell.starts_with('-') ? 1 : 0;
  return cell.size() > digit && cell[digit] >= '0' && cell[digit] <= '9' &&
         cell.find_first_not_of("-+.0123456789e %") == std::string::npos;
}

std::string first_letters(const char* name) { return std::string(name).substr(0, 3); }

}  // namespace

TableWriter::TableWriter(Markup& page, const std::string& label, const std::vector<std::string>& headings)
    : page_(page) {
  page_.open("div", {{"class", "scroll"}, {"tabindex", "0"}, {"role", "group"}, {"aria-label", label}});
  page_.open("table").open("thead").open("tr");
  for (const auto& heading : headings)
    page_.open("th", {{"scope", "col"}}).name(heading).close();
  page_.close().close().open("tbody");
}

void TableWriter::row(const std::vector<std::string>& cells) {
  page_.open("tr");
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const char* style = is_figure(cells[i]) ? "figure" : "words";
    if (i == 0)
      page_.open("th", {{"scope", "row"}, {"class", style}});
    else
      page_.open("td", {{"class", style}});
    page_.name(cells[i]).close();
  }
  page_.close();
}

void TableWriter::end() { page_.close().close().close(); }

std::string long_date(double day_number) {
  SYSTEMTIME fields{};
  if (VariantTimeToSystemTime(day_number, &fields) == 0) return "?";
  return std::string(weekday_name(fields.wDayOfWeek)) + " " + std::to_string(fields.wDay) + " " +
         month_name(fields.wMonth) + " " + std::to_string(fields.wYear);
}

std::string short_moment(double day_number) {
  SYSTEMTIME fields{};
  if (VariantTimeToSystemTime(day_number, &fields) == 0) return "?";
  return first_letters(weekday_name(fields.wDayOfWeek)) + " " + std::to_string(fields.wDay) + " " +
         first_letters(month_name(fields.wMonth)) + " " + std::to_string(fields.wYear) + ", " +
         moment_text(day_number).substr(11, 5);
}

}  // namespace spc::report_page
