#include "tools/spc/report/control.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "tools/spc/report/figures.h"
#include "tools/spc/terminal.h"

namespace spc::report_page {
namespace {

constexpr const char* handbook = "NIST/SEMATECH e-Handbook of Statistical Methods, ";
/// A2 for samples of 2 to 10 pieces.
constexpr std::array factors = {1.880, 1.023, 0.729, 0.577, 0.483, 0.419, 0.373, 0.337, 0.308};

double sum_of(const std::vector<double>& values) { return std::accumulate(values.begin(), values.end(), 0.0); }
double mean_of(const std::vector<double>& values) { return sum_of(values) / static_cast<double>(values.size()); }

using Base = std::vector<const Reading*>;

/// The readings that the limits come from: those of the base phase with something in them.
Base base_of(const Series& series, const ReportedProfile& profile) {
  Base base;
  for (const auto& reading : series.readings)
    if ((profile.base.empty() || reading.phase == profile.base) && !reading.present().empty()) base.push_back(&reading);
  return base;
}

/// "the 25 samples of Phase set-up", "all 54 samples".
std::string named(const Base& base, const ReportedProfile& profile) {
  if (profile.base.empty()) return "all " + counted(base.size(), "sample");
  return "the " + counted(base.size(), "sample") + " with " + profile.phases + " \u201c" + profile.base + "\u201d";
}

/// Whether every reading has as many pieces as the first of the base.
bool same_sizes(const Series& series, std::size_t pieces) {
  return std::ranges::all_of(series.readings, [pieces](const Reading& reading) {
    const auto present = reading.present();
    return present.empty() || present.size() == pieces;
  });
}

int data_decimals(const Series& series) {
  int most = 0;
  for (const auto& reading : series.readings)
    for (const double value : reading.present())
      most = std::max(most, decimals_of(value));
  return most;
}

void bound_all(ControlChart& chart, double lower, double upper) {
  chart.bounds.assign(chart.points.size(), {lower, upper});
}

void chart_values(ControlChart& chart, const Series& series, const ReportedProfile& profile) {
  chart.decimals = data_decimals(series) + 1;
  for (const auto& reading : series.readings) {
    const auto present = reading.present();
    chart.points.push_back(present.empty() ? std::nullopt : std::optional(mean_of(present)));
  }
  const Base base = base_of(series, profile);
  if (base.empty()) return;
  std::vector<double> means;
  std::vector<double> ranges;
  for (const Reading* reading : base) {
    means.push_back(mean_of(reading->present()));
    ranges.push_back(range_of(reading->present()));
  }
  chart.centre = mean_of(means);
  const std::size_t pieces = base.front()->present().size();
  if (!same_sizes(series, pieces)) {
    chart.rule = "No control limits: the rule with the mean range wants as many pieces in every sample.";
    return;
  }
  if (pieces < 2 || pieces - 2 >= factors.size()) {
    chart.rule = "No control limits: the rule with the mean range is for samples of 2 to 10 pieces.";
    return;
  }
  const double factor = factors.at(pieces - 2);
  const double mean_range = mean_of(ranges);
  bound_all(chart, *chart.centre - factor * mean_range, *chart.centre + factor * mean_range);
  chart.rule = "Control limits: mean of the sample means \u00b1 A2 \u00d7 mean range = " +
               fixed_text(*chart.centre, chart.decimals) + " \u00b1 " + fixed_text(factor, 3) + " \u00d7 " +
               fixed_text(mean_range, chart.decimals) + ", from " + named(base, profile) + ". A2 is for samples of " +
               std::to_string(pieces) + " pieces. " + handbook + "6.3.2.1.";
}

void chart_totals(ControlChart& chart, const Series& series, const ReportedProfile& profile) {
  chart.is_fraction = std::ranges::all_of(series.readings, [](const Reading& reading) {
    return reading.present().empty() || reading.size.value_or(0) > 0;
  });
  for (const auto& reading : series.readings) {
    const auto present = reading.present();
    if (present.empty())
      chart.points.emplace_back();
    else
      chart.points.emplace_back(chart.is_fraction ? present.front() / *reading.size : present.front());
  }
  const Base base = base_of(series, profile);
  if (base.empty()) return;
  if (!chart.is_fraction) {
    chart.decimals = 1;
    chart.rule = "Neither fractions nor control limits: not every sample says how many were inspected.";
    return;
  }
  chart.decimals = 5;
  double failed = 0;
  double inspected = 0;
  for (const Reading* reading : base) {
    failed += reading->present().front();
    inspected += *reading->size;
  }
  const double centre = failed / inspected;
  chart.centre = centre;
  if (centre < 0 || centre > 1) {
    chart.rule = "No control limits: the fraction " + fixed_text(centre, chart.decimals) + " is none.";
    return;
  }
  for (const auto& reading : series.readings) {
    const double spread = 3 * std::sqrt(centre * (1 - centre) / reading.size.value_or(inspected));
    chart.bounds.push_back({std::max(0.0, centre - spread), std::min(1.0, centre + spread)});
  }
  chart.rule = "Control limits: p \u00b1 3 \u221a(p (1 \u2212 p) / n), p = " + place_text(failed) + " / " +
               place_text(inspected) + " = " + fixed_text(centre, chart.decimals) + " from " + named(base, profile) +
               ", n the number inspected in a sample; none below 0. " + handbook + "6.3.3.2.";
}

void chart_defects(ControlChart& chart, const Series& series, const ReportedProfile& profile) {
  chart.decimals = 2;
  for (const auto& reading : series.readings) {
    const auto present = reading.present();
    chart.points.push_back(present.empty() ? std::nullopt : std::optional(sum_of(present)));
  }
  const Base base = base_of(series, profile);
  if (base.empty()) return;
  std::vector<double> counts;
  for (const Reading* reading : base)
    counts.push_back(sum_of(reading->present()));
  const double centre = mean_of(counts);
  chart.centre = centre;
  if (!same_sizes(series, base.front()->present().size())) {
    chart.rule = "No control limits: the rule for counts wants as many pieces in every sample.";
    return;
  }
  if (centre < 0) {
    chart.rule = "No control limits: the mean count is below 0.";
    return;
  }
  const double spread = 3 * std::sqrt(centre);
  bound_all(chart, std::max(0.0, centre - spread), centre + spread);
  chart.rule = "Control limits: c \u00b1 3 \u221ac, c = " + fixed_text(centre, chart.decimals) +
               " the mean count, from " + named(base, profile) + "; none below 0. " + handbook + "6.3.3.1.";
}

}  // namespace

std::size_t ControlChart::outside() const {
  std::size_t count = 0;
  for (std::size_t i = 0; i < points.size(); ++i)
    if (is_outside(i)) ++count;
  return count;
}

double range_of(const std::vector<double>& values) {
  if (values.empty()) return 0;
  const auto [least, most] = std::ranges::minmax(values);
  return most - least;
}

ControlChart control_chart(const Series& series, const ReportedProfile& profile) {
  ControlChart chart;
  if (series.measure == Measure::values) chart_values(chart, series, profile);
  if (series.measure == Measure::totals) chart_totals(chart, series, profile);
  if (series.measure == Measure::defects) chart_defects(chart, series, profile);
  if (!chart.centre)
    chart.rule = profile.base.empty()
                     ? "Nothing was recorded."
                     : "No control limits: no sample with " + profile.phases + " \u201c" + profile.base + "\u201d.";
  return chart;
}

}  // namespace spc::report_page
