#include "tools/spc/report/charts.h"

#include <algorithm>

#include "tools/spc/json.h"
#include "tools/spc/report/figures.h"
#include "tools/spc/report/parts.h"
#include "tools/spc/report/plot.h"
#include "tools/spc/terminal.h"

namespace spc::report_page {
namespace {

/// One chart and where it stands.
struct Drawing {
  const Series& series;
  const ControlChart& chart;
  const ReportedProfile& profile;
  std::string id;
};

std::string figure(const Drawing& drawing, double value) {
  return drawing.chart.is_fraction ? percent_text(value, std::max(0, drawing.chart.decimals - 2))
                                   : fixed_text(value, drawing.chart.decimals);
}

const char* plotted_name(const Drawing& drawing) {
  if (drawing.series.measure == Measure::values) return "mean";
  if (drawing.series.measure == Measure::defects) return "defects";
  return drawing.chart.is_fraction ? "fraction" : "nonconforming";
}

std::string verdict(const Drawing& drawing, std::size_t i) {
  if (drawing.chart.is_above(i)) return "above the upper limit";
  if (drawing.chart.is_below(i)) return "below the lower limit";
  return {};
}

/// What a sample says, for whoever points at it.
std::string told(const Drawing& drawing, std::size_t i) {
  const Reading& reading = drawing.series.readings[i];
  std::string text = "Sample " + std::to_string(i + 1) + " (number " + std::to_string(reading.sample) + "): ";
  if (!drawing.chart.points[i]) return text + "nothing";
  text += std::string(plotted_name(drawing)) + " " + figure(drawing, *drawing.chart.points[i]);
  if (drawing.series.measure == Measure::values) {
    text += ", pieces";
    for (const double value : reading.present())
      text += " " + number_text(value);
  } else if (drawing.chart.is_fraction) {
    text += ", " + number_text(reading.present().front()) + " of " + number_text(*reading.size);
  }
  const std::string found = verdict(drawing, i);
  return found.empty() ? text : text + ", " + found;
}

std::string described(const Drawing& drawing) {
  const auto& chart = drawing.chart;
  std::string text = counted(drawing.series.readings.size(), "sample") + ". ";
  if (chart.centre) text += "Centre line at " + figure(drawing, *chart.centre) + ". ";
  text += chart.rule + " ";
  if (chart.bounds.empty()) return text;
  if (chart.outside() == 0) return text + "No sample lies outside the limits.";
  text += "Outside the limits:";
  for (std::size_t i = 0; i < chart.points.size(); ++i)
    if (chart.is_outside(i)) text += " " + std::to_string(i + 1);
  return text + ".";
}

Extent extent_of(const Drawing& drawing) {
  const bool bars = drawing.series.measure != Measure::values;
  const auto& chart = drawing.chart;
  const double start = bars ? 0 : chart.centre.value_or(0);
  Extent extent{start, start};
  for (const auto& point : chart.points)
    if (point) extent.include(*point);
  for (const auto& bounds : chart.bounds) {
    extent.include(bounds.lower);
    extent.include(bounds.upper);
  }
  if (!bars)
    for (const auto& reading : drawing.series.readings)
      for (const double value : reading.present())
        extent.include(value);
  return extent.padded(bars);
}

std::vector<SideLabel> side_labels(const Drawing& drawing) {
  std::vector<SideLabel> labels;
  const auto& chart = drawing.chart;
  if (!chart.centre) return labels;
  labels.push_back({*chart.centre, "CL " + figure(drawing, *chart.centre)});
  if (chart.bounds.empty()) return labels;
  // Limits that differ from sample to sample have no one number.
  const Bounds& last = chart.bounds.back();
  const bool alike =
      std::ranges::all_of(chart.bounds, [&](const Bounds& bounds) { return bounds.upper == last.upper; });
  labels.push_back({last.upper, alike ? "UCL " + figure(drawing, last.upper) : "UCL"});
  labels.push_back({last.lower, alike ? "LCL " + figure(drawing, last.lower) : "LCL"});
  return labels;
}

void draw_lines(Plot& plot, const ControlChart& chart) {
  if (chart.centre) plot.steps("centre", std::vector<double>(chart.points.size(), *chart.centre));
  if (chart.bounds.empty()) return;
  std::vector<double> upper;
  std::vector<double> lower;
  for (const auto& bounds : chart.bounds) {
    upper.push_back(bounds.upper);
    lower.push_back(bounds.lower);
  }
  plot.steps("limit", upper);
  plot.steps("limit", lower);
}

void draw_mark(Markup& page, double x, double y, bool outside) {
  if (!outside) {
    page.empty("circle", {{"class", "mean-mark"}, {"cx", x}, {"cy", y}, {"r", 3.2}});
    return;
  }
  const auto at = [&](double dx, double dy) { return place_text(x + dx) + " " + place_text(y + dy); };
  page.empty("path", {{"class", "outside"},
                      {"d", "M" + at(0, -6.5) + "L" + at(6.5, 0) + "L" + at(0, 6.5) + "L" + at(-6.5, 0) + "Z"}});
}

void draw_mean_line(Markup& page, const Plot& plot, const ControlChart& chart) {
  std::string path;
  bool pen_down = false;
  for (std::size_t i = 0; i < chart.points.size(); ++i) {
    if (chart.points[i])
      path += (pen_down ? "L" : "M") + place_text(plot.x(i)) + " " + place_text(plot.y(*chart.points[i]));
    pen_down = chart.points[i].has_value();
  }
  page.empty("path", {{"class", "mean"}, {"d", path}});
}

void draw_values(Markup& page, const Plot& plot, const Drawing& drawing) {
  draw_mean_line(page, plot, drawing.chart);
  for (std::size_t i = 0; i < drawing.chart.points.size(); ++i) {
    page.open("g").element("title", {}, told(drawing, i));
    for (const double value : drawing.series.readings[i].present())
      page.empty("circle", {{"class", "piece"}, {"cx", plot.x(i)}, {"cy", plot.y(value)}, {"r", 2.4}});
    if (drawing.chart.points[i])
      draw_mark(page, plot.x(i), plot.y(*drawing.chart.points[i]), drawing.chart.is_outside(i));
    page.close();
  }
}

void draw_bars(Markup& page, const Plot& plot, const Drawing& drawing) {
  const double width = std::min(plot.pitch() * 0.68, 40.0);
  for (std::size_t i = 0; i < drawing.chart.points.size(); ++i) {
    const auto& point = drawing.chart.points[i];
    if (!point) continue;
    const double top = plot.y(std::max(*point, 0.0));
    page.open("g").element("title", {}, told(drawing, i));
    page.empty("rect", {{"class", drawing.chart.is_outside(i) ? "bar bar-outside" : "bar"},
                        {"x", plot.x(i) - width / 2},
                        {"y", top},
                        {"width", width},
                        {"height", plot.y(std::min(*point, 0.0)) - top}});
    if (drawing.chart.is_outside(i)) draw_mark(page, plot.x(i), plot.y(*point), true);
    page.close();
  }
}

void draw(Markup& page, const Drawing& drawing) {
  page.open(
      "div",
      {{"class", "scroll"}, {"tabindex", "0"}, {"role", "group"}, {"aria-label", "Chart of " + drawing.series.name}});
  Plot plot(page, drawing.chart.points.size(), extent_of(drawing), drawing.chart.is_fraction, side_labels(drawing));
  plot.begin(drawing.id, drawing.series.name + " by sample", described(drawing));
  plot.axes();
  plot.phases(drawing.series.readings);
  const bool bars = drawing.series.measure != Measure::values;
  if (bars) draw_bars(page, plot, drawing);
  draw_lines(plot, drawing.chart);
  if (!bars) draw_values(page, plot, drawing);
  plot.side_labels();
  plot.end();
  page.close();
}

void legend_entry(Markup& page, const char* shape, const char* style, const char* path, const std::string& text) {
  page.open("li").open("svg", {{"class", "sample-mark"}, {"viewBox", "0 0 28 14"}, {"aria-hidden", "true"}});
  page.empty(shape, {{"class", style}, {"d", path}});
  page.close().text(text).close();
}

void write_legend(Markup& page, const Drawing& drawing) {
  constexpr const char* across = "M1 7H27";
  constexpr const char* dot = "M11 7a3 3 0 1 0 6 0a3 3 0 1 0 -6 0Z";
  page.open("ul", {{"class", "legend"}});
  if (drawing.series.measure == Measure::values) {
    legend_entry(page, "path", "piece", dot, "value of a piece");
    legend_entry(page, "path", "mean", "M1 10L14 4L27 9", "mean of the sample");
  } else {
    legend_entry(page, "path", "bar", "M9 1H19V13H9Z",
                 drawing.chart.is_fraction ? "fraction of a sample" : "count of a sample");
  }
  if (drawing.chart.centre) legend_entry(page, "path", "centre", across, "centre line (CL)");
  if (!drawing.chart.bounds.empty()) {
    legend_entry(page, "path", "limit", across, "control limits (UCL, LCL)");
    legend_entry(page, "path", "outside", "M14 1L20 7L14 13L8 7Z", "outside the limits");
  }
  page.close();
}

std::vector<std::string> headings(const Drawing& drawing) {
  std::vector<std::string> names = {"sample", "number"};
  if (!drawing.profile.phases.empty()) names.push_back(drawing.profile.phases);
  if (drawing.series.measure == Measure::totals) {
    names.insert(names.end(), {"nonconforming", "inspected"});
    if (drawing.chart.is_fraction) names.emplace_back("fraction");
  } else {
    for (std::size_t piece = 1; piece <= drawing.series.pieces(); ++piece)
      names.push_back("piece " + std::to_string(piece));
    names.emplace_back(drawing.series.measure == Measure::values ? "mean" : "defects");
    if (drawing.series.measure == Measure::values) names.emplace_back("range");
  }
  if (!drawing.chart.bounds.empty()) names.emplace_back("verdict");
  return names;
}

std::vector<std::string> row_of(const Drawing& drawing, std::size_t i) {
  const Reading& reading = drawing.series.readings[i];
  const auto& point = drawing.chart.points[i];
  std::vector<std::string> cells = {std::to_string(i + 1), std::to_string(reading.sample)};
  if (!drawing.profile.phases.empty()) cells.push_back(reading.phase);
  const std::size_t wanted = drawing.series.measure == Measure::totals ? 1 : drawing.series.pieces();
  for (std::size_t piece = 0; piece < wanted; ++piece) {
    const bool has = piece < reading.cells.size() && reading.cells[piece];
    cells.push_back(has ? number_text(*reading.cells[piece]) : std::string());
  }
  if (drawing.series.measure == Measure::totals) {
    cells.push_back(reading.size ? number_text(*reading.size) : std::string());
    if (drawing.chart.is_fraction) cells.push_back(point ? figure(drawing, *point) : std::string());
  } else {
    const bool values = drawing.series.measure == Measure::values;
    cells.push_back(point ? (values ? figure(drawing, *point) : number_text(*point)) : std::string());
    if (values)
      cells.push_back(point ? fixed_text(range_of(reading.present()), drawing.chart.decimals) : std::string());
  }
  if (!drawing.chart.bounds.empty()) cells.push_back(verdict(drawing, i));
  return cells;
}

void write_numbers(Markup& page, const Drawing& drawing) {
  page.open("details").element("summary", {}, "The numbers of " + drawing.series.name);
  TableWriter table(page, "Numbers of " + drawing.series.name, headings(drawing));
  for (std::size_t i = 0; i < drawing.chart.points.size(); ++i)
    table.row(row_of(drawing, i));
  table.end();
  page.close();
}

void write_chart(Markup& page, const Drawing& drawing) {
  page.open("figure", {{"id", drawing.id}, {"class", "measure"}});
  page.open("figcaption").open("strong").name(drawing.series.name).close();
  if (!drawing.series.description.empty()) page.text(", ").name(drawing.series.description);
  page.close();
  if (drawing.series.readings.empty()) {
    page.element("p", {{"class", "quiet"}}, "There is no sample.").close();
    return;
  }
  write_legend(page, drawing);
  draw(page, drawing);
  page.element("p", {{"class", "rule"}}, drawing.chart.rule);
  write_numbers(page, drawing);
  page.close();
}

}  // namespace

void write_charts(Markup& page, const Measurements& measurements) {
  for (std::size_t i = 0; i < measurements.series.size(); ++i) {
    const Series& series = measurements.series[i];
    const ControlChart chart = control_chart(series, measurements.profile);
    const std::string id = "chart-" + std::to_string(measurements.profile.id) + "-" + std::to_string(i + 1);
    write_chart(page, {series, chart, measurements.profile, id});
  }
  if (measurements.series.empty())
    page.element("p", {{"class", "quiet"}}, "Its samples hold labels, and nothing to count or measure.");
}

}  // namespace spc::report_page
