/// Control charts by the textbook's rules: what is plotted of a sample, its centre line and its limits.
///
/// Part of the command. The rules are those of the NIST/SEMATECH e-Handbook of Statistical Methods, chapter 6.3:
///
/// | measure | plotted              | centre              | limits                    | section |
/// |---------|----------------------|---------------------|---------------------------|---------|
/// | values  | the mean of a sample | the mean of means   | centre +- A2 * mean range | 6.3.2.1 |
/// | totals  | failed / inspected   | all failed over all | p +- 3 sqrt(p(1 - p) / n) | 6.3.3.2 |
/// | defects | the count of a sample| the mean count      | c +- 3 sqrt(c)            | 6.3.3.1 |
///
/// Where a rule does not hold (samples of different sizes, an unknown size) there are no limits, and it is said why.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/spc/report/measurements.h"

namespace spc::report_page {

struct Bounds {
  double lower = 0;
  double upper = 0;
};

struct ControlChart {
  std::vector<std::optional<double>> points;  ///< for each reading; nothing where nothing was recorded
  bool is_fraction = false;                   ///< the points are fractions, of totals with known sizes
  std::optional<double> centre;
  std::vector<Bounds> bounds;  ///< for each reading; empty when there are no limits
  std::string rule;            ///< how the limits were computed, or why there are none
  int decimals = 0;            ///< that the centre and the limits deserve

  bool is_above(std::size_t i) const { return has(i) && *points[i] > bounds[i].upper; }
  bool is_below(std::size_t i) const { return has(i) && *points[i] < bounds[i].lower; }
  bool is_outside(std::size_t i) const { return is_above(i) || is_below(i); }
  std::size_t outside() const;

 private:
  bool has(std::size_t i) const { return points[i].has_value() && !bounds.empty(); }
};

/// Reckons a chart. Centre and limits come from the readings of the profile's base phase, if it has one.
ControlChart control_chart(const Series& series, const ReportedProfile& profile);

/// The spread of a sample: its largest value less its smallest.
double range_of(const std::vector<double>& values);

}  // namespace spc::report_page
