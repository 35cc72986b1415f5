#include "tools/spc/report/plot.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "tools/spc/utf8.h"

namespace spc::report_page {
namespace {

constexpr double width = 800;
constexpr double height = 330;
constexpr double top = 30;
constexpr double bottom_margin = 50;
constexpr double letter = 12;
constexpr double line_height = 15;

double widest(const std::vector<std::string>& texts) {
  double most = 0;
  for (const auto& text : texts)
    most = std::max(most, text_width(text, letter));
  return most;
}

/// Every so many samples one has its number written below.
std::size_t stride_of(std::size_t samples) {
  std::size_t stride = 1;
  for (const std::size_t next : {2U, 5U, 10U, 20U, 50U, 100U, 200U, 500U, 1000U})
    if (samples / stride > 12) stride = next;
  return std::max(stride, samples / 12);
}

}  // namespace

void Extent::include(double value) {
  low = std::min(low, value);
  high = std::max(high, value);
}

Extent Extent::padded(bool from_zero) const {
  constexpr double share = 0.06;
  if (!(low < high)) return {from_zero && low >= 0 ? 0 : low - 1, high + 1};
  const double room = (high - low) * share;
  return {from_zero && low >= 0 ? 0 : low - room, high + room};
}

Plot::Plot(Markup& page, std::size_t samples, const Extent& extent, bool percent, std::vector<SideLabel> labels)
    : page_(page),
      samples_(samples),
      extent_(extent),
      percent_(percent),
      labels_(std::move(labels)),
      ticks_(round_ticks(extent.low, extent.high, 6)),
      left_(0),
      right_margin_(0) {
  std::vector<std::string> ticks;
  for (const double tick : ticks_.at)
    ticks.push_back(tick_text(tick));
  std::vector<std::string> sides;
  for (const auto& label : labels_)
    sides.push_back(label.text);
  left_ = widest(ticks) + 14;
  right_margin_ = std::max(widest(sides) + 12, 16.0);
}

std::string Plot::tick_text(double value) const {
  return percent_ ? percent_text(value, std::max(0, ticks_.decimals - 2)) : fixed_text(value, ticks_.decimals);
}

void Plot::begin(const std::string& id, const std::string& title, const std::string& description) {
  page_.open("svg", {{"class", "chart"},
                     {"viewBox", "0 0 " + place_text(width) + " " + place_text(height)},
                     {"role", "img"},
                     {"aria-labelledby", id + "-title " + id + "-desc"}});
  page_.element("title", {{"id", id + "-title"}}, title);
  page_.element("desc", {{"id", id + "-desc"}}, description);
}

void Plot::end() { page_.close(); }

double Plot::right() const { return width - right_margin_; }
double Plot::bottom() const { return height - bottom_margin; }
double Plot::pitch() const { return (right() - left_) / static_cast<double>(std::max<std::size_t>(samples_, 1)); }
double Plot::x(std::size_t sample) const { return left_ + (static_cast<double>(sample) + 0.5) * pitch(); }
double Plot::y(double value) const {
  return bottom() - (value - extent_.low) / (extent_.high - extent_.low) * (bottom() - top);
}

void Plot::axes() {
  for (const double tick : ticks_.at) {
    page_.empty("line", {{"class", "grid"}, {"x1", left_}, {"x2", right()}, {"y1", y(tick)}, {"y2", y(tick)}});
    page_.element("text", {{"class", "tick"}, {"x", left_ - 8}, {"y", y(tick) + 4}, {"text-anchor", "end"}},
                  tick_text(tick));
  }
  page_.empty("line", {{"class", "axis"}, {"x1", left_}, {"x2", right()}, {"y1", bottom()}, {"y2", bottom()}});
  const std::size_t stride = stride_of(samples_);
  for (std::size_t number = 1; number <= samples_; ++number) {
    if (number != 1 && number % stride != 0) continue;
    if (number == 1 && stride == 2) continue;
    const double at = x(number - 1);
    page_.empty("line", {{"class", "axis"}, {"x1", at}, {"x2", at}, {"y1", bottom()}, {"y2", bottom() + 5}});
    page_.element("text", {{"class", "tick"}, {"x", at}, {"y", bottom() + 18}, {"text-anchor", "middle"}},
                  std::to_string(number));
  }
  page_.element("text",
                {{"class", "tick"}, {"x", (left_ + right()) / 2}, {"y", bottom() + 40}, {"text-anchor", "middle"}},
                "Sample of the profile, in the order of their numbers");
}

void Plot::phase_name(std::size_t first, std::size_t end, const std::string& name) {
  const double from = x(first) - pitch() / 2;
  const double to = x(end - 1) + pitch() / 2;
  if (name.empty() || text_width(name, letter) > to - from - 8) return;
  page_.element("text", {{"class", "phase"}, {"x", (from + to) / 2}, {"y", top - 10}, {"text-anchor", "middle"}}, name);
}

void Plot::phases(const std::vector<Reading>& readings) {
  std::size_t first = 0;
  for (std::size_t i = 1; i <= readings.size(); ++i) {
    if (i < readings.size() && readings[i].phase == readings[first].phase) continue;
    phase_name(first, i, readings[first].phase);
    first = i;
    if (i == readings.size()) break;
    const double at = x(i) - pitch() / 2;
    page_.empty("line", {{"class", "divider"}, {"x1", at}, {"x2", at}, {"y1", top - 22}, {"y2", bottom()}});
  }
}

void Plot::steps(const char* style, const std::vector<double>& heights) {
  std::string path;
  for (std::size_t i = 0; i < heights.size(); ++i) {
    const std::string at = place_text(y(heights[i]));
    if (i == 0)
      path = "M" + place_text(left_) + " " + at;
    else if (heights[i] != heights[i - 1])
      path += "V" + at;
    path += "H" + place_text(i + 1 == heights.size() ? right() : x(i) + pitch() / 2);
  }
  page_.empty("path", {{"class", style}, {"d", path}});
}

void Plot::side_labels() {
  std::ranges::sort(labels_, std::greater<>(), &SideLabel::value);
  std::vector<double> places;
  for (const auto& label : labels_)
    places.push_back(y(label.value) + 4);
  // Pushed apart downwards, and back up from the bottom where that is not enough.
  for (std::size_t i = 1; i < places.size(); ++i)
    places[i] = std::max(places[i], places[i - 1] + line_height);
  if (!places.empty()) places.back() = std::min(places.back(), bottom() + 4);
  for (std::size_t i = places.size(); i-- > 1;)
    places[i - 1] = std::min(places[i - 1], places[i] - line_height);
  for (std::size_t i = 0; i < places.size(); ++i)
    page_.element("text", {{"class", "side"}, {"x", right() + 7}, {"y", places[i]}}, labels_[i].text);
}

double text_width(const std::string& text, double size) {
  constexpr std::string_view broad = "MWmw@%&";
  double letters = 0.62 * static_cast<double>(display_width(text));
  for (const char c : text) {
    if (broad.find(c) != std::string_view::npos)
      letters += 0.4;
    else if (c >= 'A' && c <= 'Z')
      letters += 0.15;
  }
  return letters * size;
}

}  // namespace spc::report_page
