#include "tools/spc/report/measurements.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "spcbase/dataentry/sample.h"
#include "tools/spc/layout.h"
#include "tools/spc/problem.h"
#include "tools/spc/profile_shape.h"
#include "tools/spc/sample_view.h"

namespace spc::report_page {
namespace {

/// Where the parts of an element stand in a grid.
struct Place {
  std::vector<GridColumn> columns;
  LONG offset = 0;

  LONG column(std::size_t part) const { return offset + columns.at(part).index; }
};

constexpr LONG no_column = -1;

/// Which columns hold what is reported.
struct Plan {
  std::vector<Series> series;
  std::vector<Place> places;  ///< one for each of the series
  LONG phase = no_column;
};

Measure measure_of(const Place& place) {
  if (place.columns.size() == 1) return Measure::values;
  return place.columns.front().by_piece ? Measure::defects : Measure::totals;
}

Plan plan_of(const oldde::CProfileInfoColl& elements, const std::string& phases) {
  Plan plan;
  LONG offset = 0;
  for (const auto& element : elements) {
    oldde::CProfileInfoColl alone;
    alone.push_back(element);
    const Place place{columns_of(alone), offset};
    offset += grid_width(alone);
    if (place.columns.empty()) continue;
    const std::string name(element.name.view());
    if (element.kind == 0) {
      plan.series.push_back({measure_of(place), name, std::string(element.detail.view()), {}});
      plan.places.push_back(place);
    } else if (!phases.empty() && name == phases && !place.columns.front().by_piece) {
      plan.phase = place.column(0);
    }
  }
  return plan;
}

std::optional<double> number_in(const VARIANT& cell) {
  if (cell.vt == VT_R8 && std::isfinite(cell.dblVal)) return cell.dblVal;
  if (cell.vt == VT_I4) return cell.lVal;
  return std::nullopt;
}

Reading reading_of(const Grid& grid, const Place& place, Measure measure) {
  Reading reading;
  if (grid.rows() == 0) return reading;
  if (measure == Measure::totals) {
    reading.cells.push_back(number_in(grid.at(place.column(0), 0)));
    reading.size = number_in(grid.at(place.column(1), 0));
    return reading;
  }
  const LONG column = place.column(measure == Measure::values ? 0 : 1);
  for (LONG row = 0; row < grid.rows(); ++row)
    reading.cells.push_back(number_in(grid.at(column, row)));
  while (!reading.cells.empty() && !reading.cells.back())
    reading.cells.pop_back();
  return reading;
}

void add_sample(Plan& plan, const Grid& grid, long sample) {
  const bool has_phase = plan.phase != no_column && grid.rows() > 0;
  const std::string phase = has_phase ? cell_text(grid.at(plan.phase, 0)) : std::string();
  for (std::size_t i = 0; i < plan.series.size(); ++i) {
    Reading reading = reading_of(grid, plan.places[i], plan.series[i].measure);
    reading.sample = sample;
    reading.phase = phase;
    plan.series[i].readings.push_back(std::move(reading));
  }
}

}  // namespace

std::vector<double> Reading::present() const {
  std::vector<double> found;
  for (const auto& cell : cells)
    if (cell) found.push_back(*cell);
  return found;
}

std::size_t Series::pieces() const {
  std::size_t most = 0;
  for (const auto& reading : readings)
    most = std::max(most, reading.cells.size());
  return most;
}

Measurements read_measurements(Link& link, const ReportedProfile& profile) {
  Measurements found{profile, profile_name(link, profile.id), 0, {}};
  auto lines = list_samples(link, profile.id, std::numeric_limits<std::size_t>::max());
  std::ranges::reverse(lines);
  found.samples = lines.size();
  doing("cannot read the measurements of " + found.name, [&] {
    oldde::DEHelper helper;
    const long result = helper.load_from_db(link.engine(), link.db(), 0, 0, profile.id);
    if (result < 0) throw result;
    Plan plan = plan_of(helper, profile.phases);
    for (const auto& line : lines) {
      double date = 0;
      const Grid grid(
          helper.get_data(link.engine(), link.db(), static_cast<int>(line.sample), profile.id, 0, 0, 0, &date));
      add_sample(plan, grid, line.sample);
    }
    found.series = std::move(plan.series);
  });
  return found;
}

}  // namespace spc::report_page
