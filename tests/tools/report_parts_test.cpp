// Plan
//   Escaping: the five characters, what XML has not, bytes that are not UTF-8; elements that do not end
//   Figures: decimals, places, no number; round ticks at both signs, tiny and huge
//   Control charts: the three rules by hand, the base phase, and each reason for having no limits
//   The style sheet: every pair of text and ground has a contrast of 4.5 at least, and shapes 3, in light and dark; no
//     colour stands outside the list
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <regex>
#include <stdexcept>

#include "tools/spc/embedded_data.h"
#include "tools/spc/report/control.h"
#include "tools/spc/report/figures.h"
#include "tools/spc/report/markup.h"

namespace {

using namespace spc::report_page;

TEST(ReportMarkup, escapes_in_texts_and_attributes) {
  Markup page;
  page.open("p", {{"title", "<\"'&>"}}).text("<\"'&>").close();
  EXPECT_EQ(page.take(), "<p title=\"&lt;&quot;&#39;&amp;&gt;\">&lt;&quot;&#39;&amp;&gt;</p>");
}

TEST(ReportMarkup, replaces_what_a_page_cannot_hold) {
  EXPECT_EQ(escaped(std::string_view("a\0b\x01\x7F\r", 6)), "a\uFFFDb\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(escaped("\xFF\xC3"), "\uFFFD\uFFFD");
  EXPECT_EQ(escaped("\xEF\xBF\xBF-\xEF\xBF\xBE"), "\uFFFD-\uFFFD");
  EXPECT_EQ(escaped("tab\t, line\n, é, 直"), "tab\t, line\n, é, 直");
}

TEST(ReportMarkup, gives_no_page_with_an_element_that_is_open) {
  Markup page;
  EXPECT_THROW(page.close(), std::logic_error);
  page.open("p");
  EXPECT_THROW(page.take(), std::logic_error);
}

TEST(ReportFigures, have_the_decimals_asked_for) {
  EXPECT_EQ(fixed_text(74.0125, 2), "74.01");
  EXPECT_EQ(fixed_text(-0.0001, 2), "0.00");
  EXPECT_EQ(fixed_text(1e300, 2), "1e+300");
  EXPECT_EQ(fixed_text(std::numeric_limits<double>::infinity(), 2), "?");
  EXPECT_EQ(place_text(12.5), "12.5");
  EXPECT_EQ(place_text(100), "100");
  EXPECT_EQ(decimals_of(74.002), 3);
  EXPECT_EQ(decimals_of(1e-9), 6);
  EXPECT_EQ(decimals_of(1e22), 0);
  EXPECT_EQ(percent_text(0.125, 1), "12.5 %");
}

std::string ticks_text(double low, double high) {
  const Ticks ticks = round_ticks(low, high, 6);
  std::string text;
  for (const double tick : ticks.at)
    text += (text.empty() ? "" : " ") + fixed_text(tick, ticks.decimals);
  return text;
}

TEST(ReportFigures, tick_at_round_numbers) {
  EXPECT_EQ(ticks_text(73.96, 74.04), "73.96 73.98 74.00 74.02 74.04");
  EXPECT_EQ(ticks_text(-1.2, 1.1), "-1.0 -0.5 0.0 0.5 1.0");
  EXPECT_EQ(ticks_text(0, 42), "0 10 20 30 40");
  EXPECT_EQ(ticks_text(0, 3e-7), "0.00000000 0.00000005 0.00000010 0.00000015 0.00000020 0.00000025 0.00000030");
}

TEST(ReportFigures, end_where_numbers_are_too_large_to_tell_apart) {
  EXPECT_LE(round_ticks(1e17, 1e17 + 16, 6).at.size(), 13U);
}

Series series_of(Measure measure, const std::vector<std::vector<std::optional<double>>>& samples) {
  Series series{measure, "", "", {}};
  for (const auto& cells : samples)
    series.readings.push_back({1, "", cells, std::nullopt});
  return series;
}

TEST(ReportControl, bounds_means_by_the_mean_range) {
  const Series series = series_of(Measure::values, {{1.0, 3.0}, {2.0, 6.0}, {3.0, 3.0}});
  const ControlChart chart = control_chart(series, {});
  EXPECT_EQ(*chart.points[1], 4.0);
  EXPECT_DOUBLE_EQ(*chart.centre, 3.0);
  EXPECT_DOUBLE_EQ(chart.bounds.at(0).upper, 3.0 + 1.880 * 2.0);
  EXPECT_DOUBLE_EQ(chart.bounds.at(2).lower, 3.0 - 1.880 * 2.0);
}

TEST(ReportControl, takes_the_factor_of_ten_pieces_and_none_beyond) {
  std::vector<std::optional<double>> cells(10, 1.0);
  cells.back() = 2.0;
  const ControlChart ten = control_chart(series_of(Measure::values, {cells}), {});
  EXPECT_DOUBLE_EQ(ten.bounds.at(0).upper, 1.1 + 0.308);
  cells.emplace_back(1.0);
  EXPECT_TRUE(control_chart(series_of(Measure::values, {cells}), {}).bounds.empty());
  const ControlChart one = control_chart(series_of(Measure::values, {{1.0}}), {});
  EXPECT_TRUE(one.bounds.empty());
  EXPECT_EQ(one.rule, "No control limits: the rule with the mean range is for samples of 2 to 10 pieces.");
}

TEST(ReportControl, has_its_limits_from_the_base_phase_and_holds_all_against_them) {
  Series series = series_of(Measure::values, {{1.0, 2.0}, {2.0, 3.0}, {9.0, 9.0}, {-9.0, -9.0}});
  series.readings[0].phase = series.readings[1].phase = "base";
  const ControlChart chart = control_chart(series, {1, "Phase", "base"});
  EXPECT_DOUBLE_EQ(*chart.centre, 2.0);
  EXPECT_FALSE(chart.is_outside(0));
  EXPECT_TRUE(chart.is_above(2));
  EXPECT_TRUE(chart.is_below(3));
  EXPECT_EQ(chart.outside(), 2U);
  const ControlChart none = control_chart(series, {1, "Phase", "other"});
  EXPECT_TRUE(none.bounds.empty());
  EXPECT_EQ(none.rule, "No control limits: no sample with Phase “other”.");
}

TEST(ReportControl, bounds_fractions_by_the_size_of_each_sample) {
  Series series = series_of(Measure::totals, {{5.0}, {20.0}, {}});
  series.readings[0].size = 100;
  series.readings[1].size = 25;
  const ControlChart chart = control_chart(series, {});
  EXPECT_TRUE(chart.is_fraction);
  EXPECT_DOUBLE_EQ(*chart.centre, 0.2);
  EXPECT_DOUBLE_EQ(chart.bounds.at(0).upper, 0.2 + 3 * std::sqrt(0.2 * 0.8 / 100));
  EXPECT_EQ(chart.bounds.at(1).lower, 0.0);
  EXPECT_TRUE(chart.is_below(0));
  EXPECT_TRUE(chart.is_above(1));
  EXPECT_FALSE(chart.is_outside(2)) << "a sample without anything";
}

TEST(ReportControl, shows_counts_alone_where_a_size_is_unknown) {
  Series series = series_of(Measure::totals, {{5.0}, {20.0}});
  series.readings[0].size = 100;
  const ControlChart chart = control_chart(series, {});
  EXPECT_FALSE(chart.is_fraction);
  EXPECT_EQ(*chart.points[1], 20.0);
  EXPECT_TRUE(chart.bounds.empty());
  series.readings[1].size = 10;
  EXPECT_TRUE(control_chart(series, {}).bounds.empty() == false);
  series.readings[1].size = 0;
  EXPECT_FALSE(control_chart(series, {}).is_fraction);
}

TEST(ReportControl, bounds_counts_by_their_mean) {
  const ControlChart chart = control_chart(series_of(Measure::defects, {{3.0, 1.0}, {2.0, 2.0}}), {});
  EXPECT_DOUBLE_EQ(*chart.centre, 4.0);
  EXPECT_DOUBLE_EQ(chart.bounds.at(0).upper, 10.0);
  EXPECT_EQ(chart.bounds.at(0).lower, 0.0);
  EXPECT_TRUE(control_chart(series_of(Measure::defects, {{3.0, 1.0}, {2.0}}), {}).bounds.empty());
}

TEST(ReportControl, bears_having_nothing_to_show) {
  for (const auto measure : {Measure::values, Measure::totals, Measure::defects}) {
    const ControlChart chart = control_chart(series_of(measure, {{}, {}}), {});
    EXPECT_FALSE(chart.centre.has_value());
    EXPECT_EQ(chart.rule, "Nothing was recorded.");
  }
}

using Colours = std::map<std::string, std::string>;

Colours colours_of(const std::string& css) {
  Colours colours;
  const std::regex pattern("--([a-z-]+): (#[0-9a-f]{6});");
  for (auto at = std::sregex_iterator(css.begin(), css.end(), pattern); at != std::sregex_iterator(); ++at)
    colours[(*at)[1]] = (*at)[2];
  return colours;
}

double luminance(const std::string& colour) {
  const auto part = [&](std::size_t at) {
    const double share = std::stoi(colour.substr(at, 2), nullptr, 16) / 255.0;
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * part(1) + 0.7152 * part(3) + 0.0722 * part(5);
}

double contrast(const std::string& one, const std::string& other) {
  const auto [low, high] = std::minmax({luminance(one), luminance(other)});
  return (high + 0.05) / (low + 0.05);
}

struct Scheme {
  const char* name;
  Colours colours;
};

std::vector<Scheme> schemes() {
  const std::string css(spc::embedded::file("report.css"));
  const std::size_t dark = css.find("prefers-color-scheme: dark");
  return {{"light", colours_of(css.substr(0, dark))}, {"dark", colours_of(css.substr(dark))}};
}

TEST(ReportStyle, has_the_same_colours_in_light_and_dark) {
  const auto both = schemes();
  ASSERT_EQ(both[0].colours.size(), 12U);
  ASSERT_EQ(both[1].colours.size(), 12U);
  for (const auto& [name, colour] : both[0].colours)
    EXPECT_NE(both[1].colours.at(name), colour) << name;
}

TEST(ReportStyle, lets_every_text_stand_out_from_its_ground) {
  for (const auto& [name, colours] : schemes()) {
    for (const char* text : {"ink", "quiet", "accent", "good", "alarm"})
      for (const char* ground : {"page", "surface"})
        EXPECT_GE(contrast(colours.at(text), colours.at(ground)), 4.5) << name << ": " << text << " on " << ground;
    for (const char* ground : {"past", "to-date"})
      EXPECT_GE(contrast(colours.at("ink"), colours.at(ground)), 4.5) << name << ": ink on " << ground;
    EXPECT_GE(contrast(colours.at("page"), colours.at("accent")), 4.5) << name << ": the number of today";
  }
}

TEST(ReportStyle, lets_shapes_that_mean_something_stand_out) {
  for (const auto& [name, colours] : schemes()) {
    for (const char* shape : {"axis", "accent", "alarm", "ink", "good", "bar"})
      EXPECT_GE(contrast(colours.at(shape), colours.at("page")), 3.0) << name << ": " << shape;
  }
}

TEST(ReportStyle, names_colours_in_one_place) {
  const std::string css(spc::embedded::file("report.css"));
  const std::string rest = std::regex_replace(css, std::regex("--[a-z-]+: #[0-9a-f]{6};"), "");
  EXPECT_FALSE(std::regex_search(rest, std::regex("#[0-9a-fA-F]{3}|rgb|hsl")));
  EXPECT_EQ(css.find_first_of("<&"), std::string::npos) << "they would end the style sheet, or be read as markup";
}

}  // namespace
