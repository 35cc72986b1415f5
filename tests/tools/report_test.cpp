// Plan
//   The demo's page, on SQLite and on a private MariaDB server, at a moment that never changes: well-formed, every
//   part,
//     its numbers are the database's, limits that can be reckoned by hand, calendar, schedules, history, tree; nothing
//     outside the file; the same page each time
//   A plant of hurtful names: every name stands there letter by letter and is nothing but a name; samples of different
//     sizes, without anything, a profile without samples; a tree deeper than pages may be
//   The file: one that exists is refused before any work; nothing is left when it cannot be written
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "spcbase/foundation/schema.h"
#include "tests/tools/program.h"
#include "tests/tools/report_page_reader.h"
#include "tests/tools/report_plants.h"
#include "tools/spc/problem.h"

namespace {

using command_test::Answer;
using report_test::PageReader;
using report_test::Rows;
using test_support::ServerKind;

/// The demo's page and the database behind it, made once for each kind of server.
struct DemoPage {
  explicit DemoPage(ServerKind kind) : database(kind) {
    report_test::write_demo_page(database.connect_text(), folder.file("page.html"));
    text = report_test::content_of(folder.file("page.html"));
  }
  command_test::EmptyDatabase database;
  test_support::ScratchFolder folder;
  std::string text;
};

class DemoReport : public testing::TestWithParam<ServerKind> {
 protected:
  DemoPage page_{GetParam()};
  PageReader reader_{page_.text};
};

INSTANTIATE_TEST_SUITE_P(Servers, DemoReport, test_support::main_servers(), test_support::server_name);

Rows body(Rows rows) {
  std::erase_if(rows, [](const auto& row) { return row.front() == "sample" || row.front() == "key"; });
  return rows;
}

/// A column of all rows of a table, by sample and piece.
template <class Table, class Member>
std::vector<double> column_of(const DemoPage& page, Member Table::*column, const char* order) {
  spc::Link link(page.database.connect_text(), nullptr);
  Table rows(&link.db());
  rows.m_strSort = order;
  std::vector<double> found;
  for (rows.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly); !rows.m_bEOF; rows.MoveNext())
    found.push_back(static_cast<double>(rows.*column));
  return found;
}

TEST_P(DemoReport, holds_every_part_with_a_link_to_it) {
  for (const char* part : {"measurements", "samples", "history", "calendar", "schedules", "tree"}) {
    EXPECT_GT(reader_.text(part).size(), 100U) << part;
    EXPECT_NE(page_.text.find(std::string("<a href=\"#") + part + "\">"), std::string::npos) << part;
  }
  EXPECT_EQ(reader_.count("svg", "chart"), 4U) << "three profiles and the schedules";
  EXPECT_EQ(reader_.named("article", "samples").size(), 3U);
}

TEST_P(DemoReport, needs_nothing_beside_itself) {
  for (const char* outside :
       {"http:", "https:", "src=", "url(", "@import", "<script", "<link", "<iframe", "javascript"})
    EXPECT_EQ(page_.text.find(outside), std::string::npos) << outside;
  for (const auto& element : reader_.elements()) {
    const std::string href = element.attribute("href");
    EXPECT_TRUE(href.empty() || href.starts_with('#')) << href;
    if (href.empty()) continue;
    EXPECT_NO_THROW(reader_.with_id(href.substr(1))) << href;
  }
}

TEST_P(DemoReport, shows_the_values_that_the_database_holds) {
  const auto values = column_of(page_, &CRSVariable::varvalue, "SAMPID, PIECENO");
  const Rows rows = body(reader_.rows("chart-1-1"));
  ASSERT_EQ(rows.size(), 40U);
  ASSERT_EQ(values.size(), 200U);
  for (std::size_t i = 0; i < values.size(); ++i)
    EXPECT_EQ(std::stod(rows[i / 5].at(3 + i % 5)), values[i]) << i;
}

TEST_P(DemoReport, shows_the_totals_and_the_counts_that_the_database_holds) {
  const auto failed = column_of(page_, &CRSDEFTOT::nfail, "SAMPID");
  const auto inspected = column_of(page_, &CRSDEFTOT::ssize, "SAMPID");
  const Rows totals = body(reader_.rows("chart-2-1"));
  ASSERT_EQ(totals.size(), 54U);
  ASSERT_EQ(failed.size(), 54U);
  for (std::size_t i = 0; i < failed.size(); ++i) {
    EXPECT_EQ(std::stod(totals[i].at(3)), failed[i]) << i;
    EXPECT_EQ(std::stod(totals[i].at(4)), inspected[i]) << i;
    EXPECT_NEAR(std::stod(totals[i].at(5)), 100 * failed[i] / inspected[i], 0.0006) << i;
  }
  const auto counts = column_of(page_, &CRSDefectData::defcount, "SAMPID, PIECENO");
  const Rows defects = body(reader_.rows("chart-3-1"));
  ASSERT_EQ(defects.size(), 46U);
  ASSERT_EQ(counts.size(), 46U);
  for (std::size_t i = 0; i < counts.size(); ++i)
    EXPECT_EQ(std::stod(defects[i].at(2)), counts[i]) << i;
}

TEST_P(DemoReport, draws_each_value_once_and_marks_what_is_outside) {
  EXPECT_EQ(reader_.count("circle", "piece"), 200U);
  EXPECT_EQ(reader_.count("circle", "mean-mark"), 37U);
  const std::string rings = reader_.text("chart-1-1");
  EXPECT_NE(rings.find("Outside the limits: 37 38 39."), std::string::npos) << rings.substr(0, 600);
  EXPECT_EQ(body(reader_.rows("chart-1-1"))[37].back(), "above the upper limit");
  EXPECT_EQ(reader_.named("rect", "chart-2-1").size(), 54U);
  EXPECT_EQ(reader_.named("rect", "chart-3-1").size(), 46U);
}

TEST_P(DemoReport, says_by_which_rule_the_limits_were_computed) {
  EXPECT_NE(reader_.text("chart-1-1")
                .find("mean of the sample means ± A2 × mean range = 74.0012 ± 0.577 × 0.0228, from the 25 samples with "
                      "Phase “set-up”. A2 is for samples of 5 pieces. NIST/SEMATECH e-Handbook of Statistical Methods, "
                      "6.3.2.1."),
            std::string::npos)
      << reader_.text("chart-1-1").substr(0, 900);
  for (const char* limit : {"UCL 74.0143", "CL 74.0012", "LCL 73.9880"})
    EXPECT_NE(reader_.text("chart-1-1").find(limit), std::string::npos) << limit;
  EXPECT_NE(reader_.text("chart-2-1").find("p = 480 / 2700 = 0.17778 from all 54 samples"), std::string::npos);
  EXPECT_NE(reader_.text("chart-3-1").find("6.3.3.1."), std::string::npos);
}

TEST_P(DemoReport, shows_the_first_sample_of_each_profile_as_a_grid) {
  const Rows rows = reader_.rows("samples");
  ASSERT_EQ(rows.size(), 3U + 5 + 1 + 1);
  EXPECT_EQ(rows[1], (std::vector<std::string>{"1", "set-up", "2024-03-04 06:00:00", "74.03", "bore gauge A"}));
}

TEST_P(DemoReport, tells_the_history_with_its_approvals) {
  EXPECT_EQ(reader_.named("li", "history").size(), 5U);
  EXPECT_EQ(reader_.count("svg", "mark approved"), 2U);
  const std::string told = reader_.text("history");
  EXPECT_NE(told.find("Version 0.2Saved by anna, 2024-03-15 10:30:00Tolerance of the drawing"), std::string::npos)
      << told;
  EXPECT_NE(told.find("Approved by bo, level 2, 2024-03-15 10:30:00Released for production"), std::string::npos)
      << told;
}

TEST_P(DemoReport, reckons_the_ranges_from_its_moment_with_weeks_from_monday) {
  const Rows rows = body(reader_.rows("calendar"));
  ASSERT_EQ(rows.size(), 9U);
  EXPECT_EQ(rows[2],
            (std::vector<std::string>{"C", "this week", "2024-03-11 00:00:00", "2024-03-15 23:59:59", "this_week"}));
  EXPECT_EQ(rows[3].at(2), "2024-03-04 00:00:00");
  EXPECT_EQ(rows[6],
            (std::vector<std::string>{"G", "last month", "2024-02-01 00:00:00", "2024-02-29 23:59:59", "last_month"}));
  const auto texts = reader_.named("text", "calendar");
  ASSERT_GT(texts.size(), 7U + 29);
  EXPECT_EQ(texts[0].text() + texts[6].text(), "MonSun");
  EXPECT_EQ(reader_.named("figcaption", "calendar")[0].text(), "February 2024");
}

TEST_P(DemoReport, says_schedules_in_sentences_with_their_next_moments) {
  const std::string told = reader_.text("schedules");
  EXPECT_NE(told.find("At 8:00:00 AM every Mon, Wed, Fri of every week"), std::string::npos) << told;
  EXPECT_NE(told.find("Mon 18 Mar 2024, 08:00Wed 20 Mar 2024, 08:00"), std::string::npos) << told;
  EXPECT_EQ(reader_.count("line", "due"), 13U + 5 + 7 * 9 + 4)
      << "daily, on five days, seven times on nine days and four times today, and not in this fortnight";
}

TEST_P(DemoReport, shows_the_tree) {
  const std::string told = reader_.text("tree");
  EXPECT_NE(told.find("Filling / packingfolder 5"), std::string::npos) << told;
  EXPECT_NE(told.find("6 folders, 4 monitors, 3 profiles."), std::string::npos) << told;
}

TEST_P(DemoReport, is_the_same_page_at_the_same_moment) {
  const std::string again = page_.folder.file("again.html");
  report_test::write_demo_page(page_.database.connect_text(), again);
  EXPECT_EQ(report_test::content_of(again), page_.text);
}

class HurtfulReport : public test_support::DatabaseTest {
 protected:
  HurtfulReport() {
    spc::Link link(database().connect_text(), nullptr);
    plant_ = report_test::build_hurtful_plant(link);
    write_report(link, plant_.facts, folder_.file("page.html"));
    page_ = report_test::content_of(folder_.file("page.html"));
  }
  test_support::ScratchFolder folder_;
  report_test::HurtfulPlant plant_;
  std::string page_;
};

INSTANTIATE_TEST_SUITE_P(Servers, HurtfulReport, test_support::main_servers(), test_support::server_name);

TEST_P(HurtfulReport, keeps_names_from_being_anything_but_names) {
  const PageReader reader(page_);
  EXPECT_TRUE(reader.named("b").empty());
  EXPECT_EQ(page_.find("<!-- "), std::string::npos);
  for (const auto& element : reader.elements())
    EXPECT_EQ(element.attribute("onclick"), "");
  for (const char* part : {"measurements", "history", "tree"}) {
    const std::string told = reader.text(part);
    for (const auto& name : plant_.names)
      EXPECT_NE(told.find(name), std::string::npos) << part << ": " << name;
  }
  EXPECT_NE(reader.text("samples").find(plant_.names[0]), std::string::npos);
  EXPECT_EQ(reader.named("h1").at(0).text(), plant_.facts.title);
}

TEST_P(HurtfulReport, gives_no_limits_where_samples_differ_in_size) {
  const PageReader reader(page_);
  const std::string told = reader.text("chart-1-1");
  EXPECT_NE(told.find("No control limits: the rule with the mean range wants as many pieces in every sample."),
            std::string::npos)
      << told;
  EXPECT_EQ(told.find("UCL"), std::string::npos);
  const Rows rows = body(reader.rows("chart-1-1"));
  ASSERT_EQ(rows.size(), 11U);
  EXPECT_EQ(rows[0].at(3), "1e+09");
  EXPECT_EQ(rows[0].at(5), "") << "a piece that the sample has not";
  EXPECT_EQ(rows[10].at(3), "") << "a sample without anything";
}

TEST_P(HurtfulReport, says_that_a_profile_has_no_sample) {
  EXPECT_NE(PageReader(page_).text("chart-2-1").find("There is no sample."), std::string::npos);
}

TEST_P(HurtfulReport, cuts_a_tree_that_is_deeper_than_pages_may_be) {
  const std::string told = PageReader(page_).text("tree");
  EXPECT_NE(told.find("What it holds lies too deep to be shown."), std::string::npos);
}

TEST_P(HurtfulReport, shows_schedules_that_are_never_due) {
  const std::string told = PageReader(page_).text("schedules");
  EXPECT_NE(told.find("Never by itself"), std::string::npos) << told;
  EXPECT_NE(told.find("0 0 30 2 *not due any more"), std::string::npos) << told;
}

TEST_P(HurtfulReport, leaves_a_file_that_exists) {
  spc::Link link(database().connect_text(), nullptr);
  EXPECT_THROW(write_report(link, plant_.facts, folder_.file("page.html")), spc::Problem);
  EXPECT_EQ(report_test::content_of(folder_.file("page.html")), page_);
}

TEST_P(HurtfulReport, leaves_nothing_when_it_cannot_be_written_whole) {
  spc::Link link(database().connect_text(), nullptr);
  EXPECT_THROW(write_report(link, plant_.facts, folder_.file("no folder") + "/page.html"), spc::Problem);
  plant_.facts.ranges.emplace_back("no range");
  EXPECT_THROW(write_report(link, plant_.facts, folder_.file("other.html")), spc::Problem);
  std::vector<std::string> left;
  for (const auto& entry : std::filesystem::directory_iterator(folder_.path()))
    left.push_back(entry.path().filename().string());
  EXPECT_EQ(left, std::vector<std::string>{"page.html"});
}

TEST_P(HurtfulReport, leaves_an_unfinished_page_of_somebody_else) {
  const std::string other = folder_.file("other.html.part");
  std::ofstream(other) << "theirs";
  spc::Link link(database().connect_text(), nullptr);
  EXPECT_THROW(write_report(link, plant_.facts, folder_.file("other.html")), spc::Problem);
  EXPECT_EQ(report_test::content_of(other), "theirs");
  EXPECT_FALSE(std::filesystem::exists(folder_.file("other.html")));
}

TEST(ReportCommand, writes_the_page_and_says_where) {
  const test_support::ScratchFolder folder;
  const std::string file = folder.file("plant.html");
  const Answer demo = command_test::run({"demo", "--report", file});
  EXPECT_EQ(demo.status, 0) << demo;
  EXPECT_TRUE(demo.says("The report: " + file + "\n")) << demo;
  const std::string page = report_test::content_of(file);
  EXPECT_TRUE(page.starts_with("<!DOCTYPE html>\n"));
  EXPECT_EQ(PageReader(page).count("svg", "chart"), 4U);
}

TEST(ReportCommand, refuses_a_file_that_exists_before_it_does_anything) {
  const test_support::ScratchFolder folder;
  std::ofstream(folder.file("plant.html")) << "mine";
  const Answer demo =
      command_test::run({"demo", "--keep", folder.file("plant.db"), "--report", folder.file("plant.html")});
  EXPECT_EQ(demo.status, 1);
  EXPECT_TRUE(demo.complains("the file " + folder.file("plant.html") + " is there already")) << demo;
  EXPECT_EQ(report_test::content_of(folder.file("plant.html")), "mine");
  EXPECT_FALSE(std::filesystem::exists(folder.file("plant.db")));
}

}  // namespace
