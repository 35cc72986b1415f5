#include "tools/spc/report/schedules.h"

#include <algorithm>
#include <cmath>

#include "spcbase/schedule/description.h"
#include "spcbase/schedule/occurrence.h"
#include "tools/spc/moments.h"
#include "tools/spc/problem.h"
#include "tools/spc/report/parts.h"
#include "tools/spc/schedule_text.h"

namespace spc::report_page {
namespace {

constexpr int days_drawn = 14;
constexpr std::size_t moments_listed = 5;
/// More in the days that are drawn could not be told apart.
constexpr int moments_drawn = 1000;
constexpr double left = 40;
constexpr double width = 800;
constexpr double head = 44;
constexpr double row_height = 36;
constexpr double day_width = (width - left - 10) / days_drawn;

DueSchedule due(const COleDateTime& now, const ReportedSchedule& stored) {
  DueSchedule due{stored, {}, {}, {}};
  const schd::ScheduleStringInfo schedule = read_schedule(stored.schedule).schedule;
  std::optional<schd::RepeatStringInfo> repeat;
  if (!stored.repeat.empty()) repeat = read_repeat(stored.repeat).repeat;
  const auto* repeats = repeat ? &*repeat : nullptr;
  const _variant_t open;
  due.sentence = schd::get_schedule_descriptive_text(schedule, repeats, open, open).view();
  const auto moments = schd::next_moments(schedule, repeats, open, open, now, moments_drawn);
  due.next.assign(moments.begin(), moments.begin() + static_cast<long>(std::min(moments.size(), moments_listed)));
  const double end = std::floor(now.m_dt) + days_drawn;
  std::ranges::copy_if(moments, std::back_inserter(due.fortnight),
                       [end](const COleDateTime& moment) { return moment.m_dt < end; });
  return due;
}

double x_of(double first_day, double day_number) { return left + (day_number - first_day) * day_width; }

void draw_days(Markup& page, double first_day, double height) {
  for (int i = 0; i <= days_drawn; ++i) {
    const double x = left + i * day_width;
    page.empty("line", {{"class", "grid"}, {"x1", x}, {"x2", x}, {"y1", head - 6}, {"y2", height}});
    if (i == days_drawn) break;
    const COleDateTime day(first_day + i);
    const auto written = [&](double y, const std::string& text, const char* style) {
      page.element("text", {{"class", style}, {"x", x + day_width / 2}, {"y", y}, {"text-anchor", "middle"}}, text);
    };
    written(14, std::string(weekday_name(day.GetDayOfWeek() - 1)).substr(0, 3), "tick");
    written(31, std::to_string(day.GetDay()), i == 0 ? "day now" : "day");
  }
}

void draw(Markup& page, const Schedules& schedules) {
  const double height = head + row_height * static_cast<double>(schedules.all.size());
  const double first_day = std::floor(schedules.now.m_dt);
  page.open("div",
            {{"class", "scroll"}, {"tabindex", "0"}, {"role", "group"}, {"aria-label", "Chart of the schedules"}});
  page.open("svg",
            {{"class", "chart"},
             {"viewBox", "0 0 " + std::to_string(std::lround(width)) + " " + std::to_string(std::lround(height))},
             {"role", "img"},
             {"aria-label", "The moments at which each schedule is due in 14 days; the list below has the next"}});
  draw_days(page, first_day, height);
  const double now = x_of(first_day, schedules.now.m_dt);
  page.empty("line", {{"class", "present"}, {"x1", now}, {"x2", now}, {"y1", head - 6}, {"y2", height}});
  for (std::size_t i = 0; i < schedules.all.size(); ++i) {
    const double y = head + row_height * static_cast<double>(i);
    page.empty("line",
               {{"class", "grid"}, {"x1", left}, {"x2", width - 10}, {"y1", y + row_height}, {"y2", y + row_height}});
    page.element("text", {{"class", "side"}, {"x", 14}, {"y", y + row_height / 2 + 5}}, std::to_string(i + 1));
    for (const auto& moment : schedules.all[i].fortnight) {
      const double x = x_of(first_day, moment.m_dt);
      page.open("g").element("title", {}, moment_text(moment.m_dt));
      page.empty("line", {{"class", "due"}, {"x1", x}, {"x2", x}, {"y1", y + 8}, {"y2", y + row_height - 8}}).close();
    }
  }
  page.close().close();
}

void write_one(Markup& page, const DueSchedule& schedule) {
  page.open("li")
      .open("p", {{"class", "sentence"}})
      .text(schedule.sentence.empty() ? "Never by itself" : schedule.sentence);
  page.close().open("p", {{"class", "quiet"}}).text("Stored as ");
  page.element("code", {}, schedule.stored.schedule);
  if (!schedule.stored.repeat.empty()) page.text(", repeated by ").element("code", {}, schedule.stored.repeat);
  page.close();
  page.open("ul", {{"class", "moments"}});
  for (const auto& moment : schedule.next)
    page.element("li", {}, short_moment(moment.m_dt));
  if (schedule.next.empty()) page.element("li", {}, "not due any more");
  page.close().close();
}

}  // namespace

Schedules read_schedules(const COleDateTime& now, const std::vector<ReportedSchedule>& stored) {
  Schedules schedules{now, {}};
  for (const auto& one : stored)
    schedules.all.push_back(doing("cannot reckon when a schedule is due", [&] { return due(now, one); }));
  return schedules;
}

void write_schedules(Markup& page, const Schedules& schedules) {
  page.element("p", {},
               "The coming 14 days: a stroke for each moment, and the broken line is the present, " +
                   short_moment(schedules.now.m_dt) + ".");
  draw(page, schedules);
  page.open("ol", {{"class", "schedules"}});
  for (const auto& schedule : schedules.all)
    write_one(page, schedule);
  page.close();
}

}  // namespace spc::report_page
