// Plan
//   JSON: what is written reads back through a strict reader: texts with quotes, controls, broken UTF-8; doubles to the
//     last bit; no number is null; empty and nested brackets
//   Text: UTF-8 found valid and invalid, display widths, control characters, trimming
//   Tables: columns aligned by display width, no blanks at line ends, a line break in a cell stays on the line
//   Progress: the style that fits; nothing, a bar that is wiped, lines at each tenth, objects at each hundredth
//   Problems: the three lines; what the library throws becomes one
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>

#include "spcbase/foundation/failure.h"
#include "spcbase/platform/database/db_exception.h"
#include "tests/tools/json_check.h"
#include "tools/spc/json.h"
#include "tools/spc/problem.h"
#include "tools/spc/table.h"
#include "tools/spc/terminal.h"
#include "tools/spc/utf8.h"

namespace {

std::string read_back(std::string_view text) {
  std::ostringstream out;
  spc::JsonWriter(out).value(text);
  return json_check::parse(out.str()).text;
}

TEST(JsonWriter, escapes_texts_so_that_they_read_back) {
  for (const std::string text : {"", "plain", "a \"quoted\" \\ text", "line\nend\ttab\x01\x1f\x7f", "größe 日本 😀"})
    EXPECT_EQ(read_back(text), text);
}

TEST(JsonWriter, replaces_bytes_that_are_not_utf8) {
  EXPECT_EQ(read_back("a\xFF"
                      "b\xC3"),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD");
}

TEST(JsonWriter, writes_doubles_that_read_back_to_the_last_bit) {
  for (const double number : {74.03, 0.1, -1e-300, 1e300, std::numeric_limits<double>::denorm_min(), 100.0}) {
    std::ostringstream out;
    spc::JsonWriter(out).value(number);
    EXPECT_EQ(json_check::parse(out.str()).number, number);
  }
  std::ostringstream out;
  spc::JsonWriter(out).value(std::nan(""));
  EXPECT_EQ(json_check::parse(out.str()).kind, json_check::Value::Kind::null);
}

TEST(JsonWriter, nests_brackets) {
  std::ostringstream out;
  spc::JsonWriter json(out);
  json.begin_object().key("none").begin_array().end_array().key("some").begin_array().value(1).value("x").null();
  json.begin_object().end_object().end_array().key("yes").value(true).end_object();
  const auto value = json_check::parse(out.str());
  EXPECT_TRUE(value["none"].items.empty());
  ASSERT_EQ(value["some"].items.size(), 4U);
  EXPECT_EQ(value["some"].items[1].text, "x");
  EXPECT_TRUE(value["yes"].truth);
}

TEST(JsonCheck, refuses_what_is_no_json) {
  for (const char* text :
       {"", "{", "[1,]", "{\"a\":1,}", "nul", "1.", "\"a", "\"\\x\"", "[1 2]", "{\"a\":1,\"a\":2}", "1 2"})
    EXPECT_THROW(json_check::parse(text), std::runtime_error) << text;
}

TEST(Utf8, finds_the_first_byte_that_is_wrong) {
  EXPECT_EQ(spc::find_invalid_utf8("größe 日本 😀"), std::nullopt);
  EXPECT_EQ(spc::find_invalid_utf8("ab\xFF"), 2U);
  EXPECT_EQ(spc::find_invalid_utf8("\xC0\x80"), 0U) << "longer than needed";
  EXPECT_EQ(spc::find_invalid_utf8("\xED\xA0\x80"), 0U) << "half of a pair";
  EXPECT_EQ(spc::find_invalid_utf8("\xF4\x90\x80\x80"), 0U) << "beyond the last character";
  EXPECT_EQ(spc::find_invalid_utf8("a\xE6\x97"), 1U) << "cut off";
}

TEST(Utf8, measures_what_a_terminal_shows) {
  EXPECT_EQ(spc::display_width("größe"), 5U);
  EXPECT_EQ(spc::display_width("日本"), 4U);
  EXPECT_EQ(spc::display_width("e\xCC\x81"), 1U) << "a mark that combines";
}

TEST(Utf8, keeps_a_text_on_one_line_and_trims_it) {
  EXPECT_EQ(spc::on_one_line("a\nb\tc\x7f"), "a b c ");
  EXPECT_EQ(spc::trimmed(" \t a b "), "a b");
  EXPECT_EQ(spc::trimmed(" \t"), "");
}

TEST(Table, aligns_columns_by_what_characters_take) {
  spc::Table table("  ");
  table.add_column("name");
  table.add_column("n", spc::Align::right);
  table.add_column("note");
  table.add_row({"größe", "5", "x\ny"});
  table.add_row({"日本", "1234", ""});
  std::ostringstream out;
  table.print(out);
  EXPECT_EQ(out.str(),
            "  name      n  note\n"
            "  -----  ----  ----\n"
            "  größe     5  x y\n"
            "  日本   1234\n");
}

TEST(Progress, draws_on_a_terminal_alone_and_wipes_itself) {
  std::ostringstream out;
  std::ostringstream err;
  {
    spc::Progress quiet({out, err}, "work", 2);
    quiet.step();
  }
  EXPECT_EQ(err.str(), "");
  {
    spc::Progress shown({out, err, false, false, spc::ProgressStyle::bar}, "work", 2);
    shown.step();
    shown.step();
  }
  EXPECT_NE(err.str().find("work [##############################] 2/2"), std::string::npos) << err.str();
  EXPECT_TRUE(err.str().ends_with("\r\x1b[K"));
  EXPECT_EQ(out.str(), "");
}

std::string told_by(spc::ProgressStyle style, std::size_t steps) {
  std::ostringstream out;
  std::ostringstream err;
  spc::Progress progress({out, err, false, false, style}, "work", steps);
  for (std::size_t i = 0; i < steps; ++i)
    progress.step();
  return err.str();
}

TEST(Progress, tells_in_lines_at_each_tenth) {
  EXPECT_EQ(told_by(spc::ProgressStyle::line, 2), "work: 0 of 2\nwork: 1 of 2\nwork: 2 of 2\n");
  const std::string many = told_by(spc::ProgressStyle::line, 1000);
  EXPECT_EQ(std::ranges::count(many, '\n'), 11);
  EXPECT_NE(many.find("work: 300 of 1000\n"), std::string::npos) << many;
  EXPECT_EQ(told_by(spc::ProgressStyle::line, 0), "");
}

TEST(Progress, tells_in_objects_at_each_hundredth) {
  const std::string many = told_by(spc::ProgressStyle::json, 1000);
  EXPECT_EQ(std::ranges::count(many, '\n'), 101);
  const auto last = json_check::parse(many.substr(many.rfind('\n', many.size() - 2) + 1));
  EXPECT_EQ(last["task"].text, "work");
  EXPECT_EQ(last["done"].number, 1000);
  EXPECT_EQ(last["total"].number, 1000);
}

TEST(Progress, has_the_style_that_fits) {
  using Style = spc::ProgressStyle;
  EXPECT_EQ(spc::progress_style("", true, false, false), Style::bar);
  EXPECT_EQ(spc::progress_style("", false, false, false), Style::none);
  EXPECT_EQ(spc::progress_style("", true, true, false), Style::none) << "for machines";
  EXPECT_EQ(spc::progress_style("", true, false, true), Style::none) << "a trace";
  EXPECT_EQ(spc::progress_style("bar", true, true, false), Style::bar) << "asked for";
  EXPECT_EQ(spc::progress_style("bar", false, false, false), Style::line) << "no terminal";
  EXPECT_EQ(spc::progress_style("bar", true, false, true), Style::line) << "a trace would tear it";
  EXPECT_EQ(spc::progress_style("line", true, false, false), Style::line);
  EXPECT_EQ(spc::progress_style("json", false, true, false), Style::json);
  EXPECT_EQ(spc::progress_style("none", true, false, false), Style::none);
}

TEST(Report, tells_what_failed_why_what_stands_and_what_to_do) {
  std::ostringstream err;
  spc::report(err, {"cannot work", "it is late", "Go home.", spc::exit_failed, "Half of it stands."});
  EXPECT_EQ(err.str(), "spc: cannot work: it is late\n     Half of it stands.\n     Go home.\n");
}

template <class Work>
spc::Problem problem_in(Work work) {
  try {
    spc::doing("cannot work", work);
  } catch (const spc::Problem& problem) {
    return problem;
  }
  return {};
}

TEST(Doing, gives_the_result_of_the_work) {
  EXPECT_EQ(spc::doing("cannot work", [] { return 7; }), 7);
}

TEST(Doing, tells_every_kind_of_failure_as_a_problem) {
  EXPECT_EQ(problem_in([] { throw DBException("no recordset", E_FAIL); }).why, "no recordset");
  EXPECT_EQ(problem_in([] { throw std::runtime_error("no file\nhere"); }).why, "no file here");
  EXPECT_EQ(problem_in([] { throw result_code::open_failed; }).what, "cannot work");
  EXPECT_NE(problem_in([] { throw result_code::open_failed; }).advice, "");
  EXPECT_EQ(problem_in([] { AfxThrowDBException(AFX_SQL_ERROR_CONNECT_FAIL, "no driver"); }).why.substr(0, 9),
            "no driver");
  EXPECT_EQ(problem_in([] { throw spc::Problem{"other", "as it was", "", spc::exit_misuse}; }).what, "other");
}

}  // namespace
