#include "tools/spc/report/report.h"

#include <filesystem>

#include "tools/spc/bytes.h"
#include "tools/spc/embedded_data.h"
#include "tools/spc/moments.h"
#include "tools/spc/problem.h"
#include "tools/spc/report/calendar.h"
#include "tools/spc/report/charts.h"
#include "tools/spc/report/parts.h"
#include "tools/spc/report/tree.h"
#include "tools/spc/sample_view.h"
#include "tools/spc/terminal.h"

namespace spc::report_page {
namespace {

namespace fs = std::filesystem;

/// All that a page shows, read before anything is drawn.
struct Content {
  std::string server;
  std::vector<Measurements> measurements;
  std::vector<SampleView> samples;
  History history;
  Calendar calendar;
  Schedules schedules;
  NodeTree tree;
};

struct Part {
  const char* id;
  const char* heading;
};

constexpr Part measurements_part = {"measurements", "Measurements"};
constexpr Part samples_part = {"samples", "Samples"};
constexpr Part history_part = {"history", "History"};
constexpr Part calendar_part = {"calendar", "Calendar"};
constexpr Part schedules_part = {"schedules", "Schedules"};
constexpr Part tree_part = {"tree", "Tree"};

/// The first sample of each profile that has one.
std::vector<SampleView> first_samples(Link& link, const std::vector<Measurements>& measurements) {
  std::vector<SampleView> samples;
  for (const auto& profile : measurements)
    if (!profile.series.empty() && !profile.series.front().readings.empty())
      samples.push_back(read_sample(link, profile.series.front().readings.front().sample));
  return samples;
}

Content read_content(Link& link, const ReportFacts& facts) {
  std::vector<Measurements> measurements;
  for (const auto& profile : facts.profiles)
    measurements.push_back(read_measurements(link, profile));
  auto samples = first_samples(link, measurements);
  return {std::string(link.db().describe_server().view()),
          std::move(measurements),
          std::move(samples),
          read_history(link, facts.object),
          make_calendar(facts.now, facts.first_day_of_week, facts.ranges),
          read_schedules(facts.now, facts.schedules),
          NodeTree(link, 0)};
}

class Page {
 public:
  Page(const ReportFacts& facts, const Content& content) : facts_(facts), content_(content) {}

  std::string write() {
    page_.as_it_stands("<!DOCTYPE html>\n").open("html", {{"lang", "en"}});
    write_head();
    page_.open("body");
    write_icons(page_);
    write_header();
    page_.open("main");
    part(measurements_part, [&] { write_measurements(); });
    part(samples_part, [&] { write_samples(); });
    part(history_part, [&] { write_history(page_, content_.history); });
    part(calendar_part, [&] { write_calendar(page_, content_.calendar); });
    part(schedules_part, [&] { write_schedules(page_, content_.schedules); });
    part(tree_part, [&] { write_tree(page_, content_.tree); });
    page_.close();
    page_.element("footer", {}, "Written by spc, which read every number on this page from the database.");
    page_.close().close();
    return page_.take() + "\n";
  }

 private:
  void write_head() {
    page_.open("head").empty("meta", {{"charset", "utf-8"}});
    page_.empty("meta", {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}});
    page_.element("title", {}, facts_.title);
    page_.open("style").as_it_stands("\n").as_it_stands(embedded::file("report.css")).close().close();
  }

  void write_header() {
    std::size_t samples = 0;
    for (const auto& profile : content_.measurements)
      samples += profile.samples;
    page_.open("header").open("h1").name(facts_.title).close();
    page_.element("p", {{"class", "lead"}},
                  counted(samples, "sample") + " on " + counted(content_.measurements.size(), "profile") +
                      ", read from " + content_.server + " on " + long_date(facts_.now.m_dt) + " at " +
                      moment_text(facts_.now.m_dt).substr(11, 5) + ".");
    page_.open("nav", {{"aria-label", "Parts of this page"}}).open("ul");
    for (const Part& each : {measurements_part, samples_part, history_part, calendar_part, schedules_part, tree_part})
      page_.open("li").element("a", {{"href", std::string("#") + each.id}}, each.heading).close();
    page_.close().close().close();
  }

  template <class Content_of>
  void part(const Part& which, Content_of write) {
    const std::string heading = std::string(which.id) + "-heading";
    page_.open("section", {{"id", which.id}, {"aria-labelledby", heading}});
    page_.element("h2", {{"id", heading}}, which.heading);
    write();
    page_.close();
  }

  void write_measurements() {
    if (content_.measurements.empty()) page_.element("p", {{"class", "quiet"}}, "There is no profile.");
    for (const auto& profile : content_.measurements) {
      page_.open("article").open("h3").name(profile.name).close();
      page_.element("p", {{"class", "quiet"}}, counted(profile.samples, "sample"));
      write_charts(page_, profile);
      page_.close();
    }
  }

  void write_samples() {
    if (content_.samples.empty()) page_.element("p", {{"class", "quiet"}}, "There is no sample.");
    for (const auto& view : content_.samples) {
      page_.open("article").open("h3").text("Sample " + std::to_string(view.sample) + " of ").name(view.shape.name);
      page_.close().open("p", {{"class", "quiet"}}).text("Taken " + view.taken);
      for (const auto& [name, value] : view.auto_labels)
        page_.text(", ").name(name).text(" ").name(value);
      page_.close();
      write_grid(view);
      page_.close();
    }
  }

  void write_grid(const SampleView& view) {
    std::vector<std::string> headings = {"piece"};
    for (const auto& column : view.shape.columns)
      headings.push_back(column.name);
    TableWriter table(page_, "Sample " + std::to_string(view.sample), headings);
    for (LONG row = 0; row < shown_rows(view); ++row) {
      std::vector<std::string> cells = {std::to_string(row + 1)};
      for (const auto& column : view.shape.columns)
        cells.push_back(cell_text(view.grid.at(column.index, row)));
      table.row(cells);
    }
    table.end();
  }

  const ReportFacts& facts_;
  const Content& content_;
  Markup page_;
};

/// Puts a finished file in its place, unless something stands there by now.
void put_in_place(const std::string& part, const std::string& file) {
  std::error_code error;
  fs::create_hard_link(part, file, error);
  // Where files have but one name each, it is moved.
  if (error && !fs::exists(file)) fs::rename(part, file, error);
  std::error_code ignored;
  fs::remove(part, ignored);
  if (error)
    throw Problem{"cannot write " + file, error.message(), "See that the folder is there, writable and not full."};
}

}  // namespace

void refuse_existing(const std::string& file) {
  std::error_code ignored;
  if (fs::exists(fs::symlink_status(file, ignored)))
    throw Problem{"cannot write the report", "the file " + file + " is there already",
                  "Name a file that does not exist yet."};
}

void write_report(Link& link, const ReportFacts& facts, const std::string& file) {
  refuse_existing(file);
  const Content content = read_content(link, facts);
  const std::string page = Page(facts, content).write();
  const std::string part = file + ".part";
  refuse_existing(part);
  try {
    write_new_file(part, page);
  } catch (const Problem&) {
    std::error_code ignored;
    fs::remove(part, ignored);
    throw;
  }
  put_in_place(part, file);
}

}  // namespace spc::report_page
