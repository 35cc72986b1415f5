/// The frame of a chart by sample: its scales, axes, phases and the lines across it.
///
/// Part of the command.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tools/spc/report/figures.h"
#include "tools/spc/report/markup.h"
#include "tools/spc/report/measurements.h"

namespace spc::report_page {

/// A name for a place beside the plot.
struct SideLabel {
  double value = 0;
  std::string text;
};

/// What a chart spans.
struct Extent {
  double low = 0;
  double high = 0;

  void include(double value);
  /// With a little room at the ends that are not 0; never empty.
  Extent padded(bool from_zero) const;
};

/// Draws into an `svg` element that the caller has begun by `begin`.
class Plot {
 public:
  Plot(Markup& page, std::size_t samples, const Extent& extent, bool percent, std::vector<SideLabel> labels);

  /// Begins the drawing, with a title and a description for those who do not see it. `id` is free on the page.
  void begin(const std::string& id, const std::string& title, const std::string& description);
  void end();

  void axes();
  /// A line where the phase changes, and the names of the phases above it.
  void phases(const std::vector<Reading>& readings);
  /// A line across, at a height for each sample, in steps.
  void steps(const char* style, const std::vector<double>& heights);
  void side_labels();

  double x(std::size_t sample) const;
  double y(double value) const;
  double bottom() const;
  double pitch() const;  ///< from one sample to the next
  double right() const;

 private:
  std::string tick_text(double value) const;
  void phase_name(std::size_t first, std::size_t end, const std::string& name);

  Markup& page_;
  std::size_t samples_;
  Extent extent_;
  bool percent_;
  std::vector<SideLabel> labels_;
  Ticks ticks_;
  double left_;
  double right_margin_;
};

/// How wide a text is in a drawing, generously, in letters of the size given.
double text_width(const std::string& text, double size);

}  // namespace spc::report_page
