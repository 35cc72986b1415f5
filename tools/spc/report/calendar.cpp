#include "tools/spc/report/calendar.h"

#include <algorithm>
#include <cmath>

#include "tools/spc/moments.h"
#include "tools/spc/range_line.h"
#include "tools/spc/report/parts.h"
#include "tools/spc/report/plot.h"

namespace spc::report_page {
namespace {

constexpr double cell = 50;
constexpr double number_room = 24;
constexpr double lane = 18;
constexpr double head = 24;
constexpr double letter = 11;

/// A day by its number, from the day on which automation dates begin.
using Day = long;

Day day_of(const COleDateTime& moment) { return static_cast<Day>(std::floor(moment.m_dt)); }

/// The range as people say it, without underscores and with a day for each.
std::string range_name(const DateTimeRange& range) { return std::string(range.get_log_str().view()); }

/// "A" for the first range, "AA" for the 27th.
std::string key_of(std::size_t index) {
  constexpr std::size_t letters = 26;
  return std::string(index / letters + 1, static_cast<char>('A' + index % letters));
}

/// A month as the days that it has.
struct Month {
  int year;
  int month;
  Day first;
  Day last;
};

Month month_of(int year, int month) {
  const int next_year = month == 12 ? year + 1 : year;
  const int next_month = month == 12 ? 1 : month + 1;
  return {year, month, day_of(COleDateTime(year, month, 1, 0, 0, 0)),
          day_of(COleDateTime(next_year, next_month, 1, 0, 0, 0)) - 1};
}

class MonthDrawing {
 public:
  MonthDrawing(Markup& page, const Calendar& calendar, const Month& month)
      : page_(page), calendar_(calendar), month_(month) {}

  void draw() {
    const std::string name = std::string(month_name(month_.month)) + " " + std::to_string(month_.year);
    page_.open("figure").element("figcaption", {}, name);
    const double height = total_height();
    page_.open("svg", {{"viewBox", "0 0 352 " + std::to_string(std::lround(height))},
                       {"role", "img"},
                       {"aria-label", "Calendar of " + name +
                                          " with the ranges as bars; the table below has their "
                                          "moments"}});
    draw_head();
    double top = head;
    for (Day start = first_week(); start <= month_.last; start += 7) {
      draw_week(start, top);
      top += week_height(start);
    }
    page_.close().close();
  }

 private:
  /// The column of a day: 0 for the day on which weeks start.
  int column(Day day) const {
    // Day 1 was a Sunday, 31 December 1899.
    const int weekday = static_cast<int>(((day - 1) % 7 + 7) % 7);
    return (weekday - (calendar_.first_day_of_week - 1) + 7) % 7;
  }
  Day first_week() const { return month_.first - column(month_.first); }

  /// The part of a range within a week of this month; nothing when `last` comes before `first`.
  struct Piece {
    std::size_t range;
    Day first;
    Day last;
  };
  std::vector<Piece> pieces(Day start) const {
    std::vector<Piece> found;
    for (std::size_t i = 0; i < calendar_.ranges.size(); ++i) {
      const auto& range = calendar_.ranges[i];
      if (range.from.GetStatus() != COleDateTime::valid || range.to.GetStatus() != COleDateTime::valid) continue;
      const Day first = std::max({day_of(range.from), start, month_.first});
      const Day last = std::min({day_of(range.to), start + 6, month_.last});
      if (first <= last) found.push_back({i, first, last});
    }
    return found;
  }

  /// The pieces of a week, each on the first lane that is free there.
  std::vector<std::vector<Piece>> lanes(Day start) const {
    std::vector<std::vector<Piece>> found;
    for (const Piece& piece : pieces(start)) {
      const auto is_free = [&](const std::vector<Piece>& on) {
        return std::ranges::all_of(
            on, [&](const Piece& other) { return other.last < piece.first || piece.last < other.first; });
      };
      auto free = std::ranges::find_if(found, is_free);
      if (free == found.end()) free = found.insert(found.end(), std::vector<Piece>());
      free->push_back(piece);
    }
    return found;
  }

  double week_height(Day start) const {
    return number_room + lane * static_cast<double>(std::max<std::size_t>(lanes(start).size(), 1)) + 5;
  }
  double total_height() const {
    double height = head + 1;
    for (Day start = first_week(); start <= month_.last; start += 7)
      height += week_height(start);
    return height;
  }

  void draw_head() {
    for (int i = 0; i < 7; ++i)
      page_.element("text", {{"class", "tick"}, {"x", 1 + cell * (i + 0.5)}, {"y", 15}, {"text-anchor", "middle"}},
                    std::string(weekday_name((calendar_.first_day_of_week - 1 + i) % 7)).substr(0, 3));
  }

  void draw_week(Day start, double top) {
    page_.empty("line", {{"class", "grid"}, {"x1", 1}, {"x2", 1 + 7 * cell}, {"y1", top}, {"y2", top}});
    for (Day day = std::max(start, month_.first); day <= std::min(start + 6, month_.last); ++day)
      draw_day(day, top);
    double at = top + number_room;
    for (const auto& on : lanes(start)) {
      for (const Piece& piece : on)
        draw_piece(piece, at);
      at += lane;
    }
  }

  void draw_day(Day day, double top) {
    const double middle = 1 + cell * (column(day) + 0.5);
    const bool today = day == day_of(calendar_.now);
    if (today)
      page_.empty("rect",
                  {{"class", "today"}, {"x", middle - 13}, {"y", top + 3}, {"width", 26}, {"height", 18}, {"rx", 9}});
    page_.element("text",
                  {{"class", today ? "day now" : "day"}, {"x", middle}, {"y", top + 16}, {"text-anchor", "middle"}},
                  std::to_string(day - month_.first + 1));
  }

  void draw_piece(const Piece& piece, double top) {
    const auto& range = calendar_.ranges[piece.range];
    const double x = 1 + cell * column(piece.first) + 2;
    const double width = cell * static_cast<double>(piece.last - piece.first + 1) - 4;
    const bool to_date = day_of(range.to) >= day_of(calendar_.now);
    const std::string key = key_of(piece.range);
    page_.open("g").element("title", {}, range_name(range));
    page_.empty("rect", {{"class", to_date ? "range to-date" : "range"},
                         {"x", x},
                         {"y", top},
                         {"width", width},
                         {"height", lane - 3},
                         {"rx", 4}});
    page_.open("text", {{"class", "range-name"}, {"x", x + 6}, {"y", top + 11.5}});
    page_.element("tspan", {{"class", "key"}}, key);
    const std::string name = " " + range_name(range);
    if (text_width(key + name, letter) <= width - 10) page_.text(name);
    page_.close();
    page_.close();
  }

  Markup& page_;
  const Calendar& calendar_;
  Month month_;
};

std::string moment_or_none(const COleDateTime& moment) {
  return moment.GetStatus() == COleDateTime::valid ? moment_text(moment.m_dt) : std::string("none");
}

}  // namespace

Calendar make_calendar(const COleDateTime& now, int first_day_of_week, const std::vector<std::string>& lines) {
  Calendar calendar{now, first_day_of_week, {}};
  const DateTimeCalculation calculation(first_day_of_week);
  for (const auto& line : lines) {
    calendar.ranges.push_back(read_range(line).range);
    calendar.ranges.back().recalculate_at(calculation, now);
  }
  return calendar;
}

void write_calendar(Markup& page, const Calendar& calendar) {
  page.element("p", {},
               "What the named ranges mean on " + long_date(calendar.now.m_dt) + ", with weeks that start on " +
                   weekday_name(calendar.first_day_of_week - 1) +
                   ". A range of the present runs to the end of today and is drawn with a stronger edge.");
  const int year = calendar.now.GetYear();
  const int month = calendar.now.GetMonth();
  page.open("div", {{"class", "months"}});
  MonthDrawing(page, calendar, month == 1 ? month_of(year - 1, 12) : month_of(year, month - 1)).draw();
  MonthDrawing(page, calendar, month_of(year, month)).draw();
  page.close();
  TableWriter table(page, "The named ranges", {"key", "range", "from", "to", "stored as"});
  for (std::size_t i = 0; i < calendar.ranges.size(); ++i) {
    const auto& range = calendar.ranges[i];
    table.row({key_of(i), range_name(range), moment_or_none(range.from), moment_or_none(range.to),
               std::string(range.to_string().view())});
  }
  table.end();
}

}  // namespace spc::report_page
