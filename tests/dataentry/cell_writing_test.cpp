// What becomes of each cell: numbers, defects and totals.
//
// Plan
//   numbers              conversions, texts that are none, nulls, empty cells, to the last bit
//   defects              text and count, trimming, empty texts, counts of 0, conversions, widths
//   totals               first row only, 0 and below, sizes that are there or not, conversions
//   filters              each to the letter; equal values left, changed ones changed, on rows that are there
#include <cmath>
#include <limits>

#include "spcbase/dataentry/internal/cell_writers.h"
#include "tests/dataentry/data_entry_fixture.h"

namespace {

using test_support::code_of;
using test_support::DataEntryTest;
using test_support::date_cell;
using test_support::failure_of;
using test_support::null_cell;
using test_support::StatementLog;
using test_support::TestGrid;
using testing::ElementsAre;
using testing::IsEmpty;

oldde::CProfileInfo element(int id, const char* type) {
  oldde::CProfileInfo info;
  info.id = id;
  info.type = type;
  return info;
}

class CellWriting : public DataEntryTest {
 protected:
  CellWriting() {
    plant.profile(6, {{'c', 11}});
    plant.profile(7, {{'c', 12}});
  }
  long save_number(const _variant_t& cell) {
    TestGrid grid(1, 1);
    grid.put(0, 0, cell);
    return save(1, grid);
  }
  long save_pair(int profile, const _variant_t& first, const _variant_t& second) {
    TestGrid grid(2, 1);
    grid.put(0, 0, first).put(1, 0, second);
    return save(profile, grid);
  }
  long defect(const _variant_t& text, const _variant_t& count) { return save_pair(6, text, count); }
  long total(const _variant_t& failures, const _variant_t& size) { return save_pair(7, failures, size); }
  std::vector<std::string> defects() { return rows("SELECT LABVALUE, DEFCOUNT FROM CSDEFDAT ORDER BY SAMPID"); }
  std::vector<std::string> totals() {
    return rows(
        "SELECT NFAIL, CASE WHEN SSIZE IS NULL THEN 'NULL' WHEN SSIZE = 50 THEN '50' ELSE 'other' END FROM "
        "CSDEFTOT ORDER BY SAMPID");
  }
};

// Numbers

TEST_P(CellWriting, numbers_of_every_type_become_doubles) {
  for (const _variant_t& cell : {_variant_t(1.5), _variant_t(3), _variant_t("2.25"), _variant_t(true)})
    save_number(cell);
  std::vector<std::string> cells;
  for (long sample = 1; sample <= 4; ++sample)
    cells.push_back(read(1, sample)[0]);
  EXPECT_THAT(cells, ElementsAre("1.5", "3", "2.25", "-1"));
}

TEST_P(CellWriting, a_text_that_is_no_number_is_bad_value_and_not_a_com_error) {
  EXPECT_EQ(code_of([&] { save_number("seventy"); }), result_code::bad_value);
  EXPECT_EQ(code_of([&] { save_number(""); }), result_code::bad_value);
}

TEST_P(CellWriting, a_null_cell_is_not_empty_and_no_number_either) {
  EXPECT_EQ(code_of([&] { save_number(null_cell()); }), result_code::bad_value);
}

TEST_P(CellWriting, an_empty_cell_writes_nothing) {
  save_number(_variant_t());
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSVDAT"), "0");
}

TEST_P(CellWriting, extreme_numbers_come_back_to_the_last_bit) {
  using limits = std::numeric_limits<double>;
  for (const double number : {limits::max(), limits::min(), -limits::max(), 0.1 + 0.2, 1.0 / 3, 5e-324, 74.03}) {
    const long sample = save_number(_variant_t(number));
    char expected[64];
    std::snprintf(expected, sizeof expected, "%.17g", number);
    EXPECT_EQ(read(1, sample)[0], expected);
  }
}

// Defects

TEST_P(CellWriting, a_defect_is_a_text_and_a_count) {
  defect("scratch", _variant_t(3));
  EXPECT_THAT(rows("SELECT SAMPID, CHRTID, PIECENO, LABVALUE, DEFCOUNT FROM CSDEFDAT"),
              ElementsAre("1|11|1|scratch|3"));
}

TEST_P(CellWriting, a_defect_with_count_0_and_a_text_stores_a_row) {
  defect("scratch", _variant_t(0));
  defect("dent", _variant_t());
  EXPECT_THAT(defects(), ElementsAre("scratch|0", "dent|0"));
}

TEST_P(CellWriting, the_text_of_a_defect_is_trimmed_at_both_ends) {
  defect("  deep scratch \t", _variant_t(1));
  EXPECT_THAT(defects(), ElementsAre("deep scratch|1"));
}

TEST_P(CellWriting, an_empty_or_blank_text_of_a_defect_writes_nothing_whatever_its_count) {
  for (const _variant_t& text : {_variant_t(), _variant_t(""), _variant_t("   ")})
    defect(text, _variant_t(5));
  EXPECT_THAT(defects(), IsEmpty());
}

TEST_P(CellWriting, text_and_count_of_a_defect_are_converted) {
  defect(_variant_t(12), "7");
  defect(_variant_t(1.5), _variant_t(2.5));
  EXPECT_THAT(defects(), ElementsAre("12|7", "1.5|2")) << "half goes to even";
}

TEST_P(CellWriting, a_defect_that_cannot_be_converted_is_bad_value) {
  EXPECT_EQ(code_of([&] { defect("scratch", "many"); }), result_code::bad_value);
  EXPECT_EQ(code_of([&] { defect(null_cell(), _variant_t(1)); }), result_code::bad_value);
  EXPECT_EQ(code_of([&] { defect("scratch", null_cell()); }), result_code::bad_value);
  EXPECT_EQ(code_of([&] { defect("scratch", _variant_t(3e9)); }), result_code::bad_value);
  EXPECT_THAT(defects(), IsEmpty());
}

TEST_P(CellWriting, a_count_that_cannot_be_converted_does_not_matter_without_a_text) {
  EXPECT_EQ(code_of([&] { defect("", "many"); }), 0);
}

TEST_P(CellWriting, a_defect_takes_513_characters_and_no_more) {
  const std::string widest(512, 'x');
  EXPECT_EQ(code_of([&] { defect(_variant_t((widest + "ä").c_str()), _variant_t(1)); }), 0);
  EXPECT_EQ(failure_of([&] { defect(_variant_t((widest + "äö").c_str()), _variant_t(1)); }).failure_class,
            FailureClass::value_too_long);
}

TEST_P(CellWriting, texts_with_quotes_and_backslashes_stay_what_they_are) {
  defect("it's a \\ \"dent\" ?", _variant_t(1));
  EXPECT_THAT(defects(), ElementsAre("it's a \\ \"dent\" ?|1"));
}

// Totals

TEST_P(CellWriting, a_total_is_failures_of_a_size) {
  total(_variant_t(12), _variant_t(50));
  total(_variant_t("3"), "50");
  EXPECT_THAT(totals(), ElementsAre("12|50", "3|50"));
}

TEST_P(CellWriting, a_total_without_a_size_has_a_null_size) {
  total(_variant_t(12), _variant_t());
  total(_variant_t(13), null_cell());
  EXPECT_THAT(totals(), ElementsAre("12|NULL", "13|NULL"));
  EXPECT_EQ(read(7, 1)[0], "#12 | .");
}

TEST_P(CellWriting, a_total_of_0_or_below_writes_nothing) {
  for (const _variant_t& cell : {_variant_t(0), _variant_t(-1), _variant_t(0.4), _variant_t("0"), _variant_t()})
    total(cell, _variant_t(50));
  EXPECT_THAT(totals(), IsEmpty());
}

TEST_P(CellWriting, a_total_that_cannot_be_converted_is_bad_value) {
  EXPECT_EQ(code_of([&] { total("some", _variant_t(50)); }), result_code::bad_value);
  EXPECT_EQ(code_of([&] { total(null_cell(), _variant_t(50)); }), result_code::bad_value);
  EXPECT_EQ(code_of([&] { total(_variant_t(1), "fifty"); }), result_code::bad_value);
  EXPECT_THAT(totals(), IsEmpty());
}

TEST_P(CellWriting, a_total_column_stores_only_the_first_row) {
  TestGrid grid(2, 3);
  grid.put(0, 0, _variant_t(1)).put(1, 0, _variant_t(50));
  grid.put(0, 1, _variant_t(2)).put(0, 2, "not even looked at");
  const long sample = save(7, grid);
  EXPECT_THAT(totals(), ElementsAre("1|50"));
  EXPECT_EQ(read(7, sample)[0], "#1 | 50");
}

// The writers alone, on rows that are there

TEST_P(CellWriting, an_equal_number_is_left_a_changed_one_is_changed_and_an_empty_cell_deletes) {
  oldde::VariableWriter writer(db(), 8);
  const auto info = element(10, "VARIABLE");
  writer.write(info, 2, _variant_t(1.5));
  const StatementLog log(db());
  writer.write(info, 2, _variant_t(1.5));
  EXPECT_EQ(log.statements.size(), 1U) << "only looked up";
  writer.write(info, 2, _variant_t(std::nextafter(1.5, 2.0)));
  EXPECT_EQ(log.count("UPDATE"), 1);
  writer.write(info, 2, _variant_t());
  EXPECT_EQ(log.count("DELETE"), 1);
  writer.write(info, 2, _variant_t());
  EXPECT_EQ(log.count("DELETE"), 1) << "nothing is left to delete";
  EXPECT_EQ(log.count("SAMPID=8 AND CHRTID=10 AND PIECENO=2"), 4);
}

TEST_P(CellWriting, an_equal_defect_is_left_and_case_and_count_matter) {
  oldde::DefectWriter writer(db(), 8);
  const auto info = element(11, "ATTRIBUTE");
  writer.write(info, 2, _variant_t("dent"), _variant_t(1));
  const StatementLog log(db());
  writer.write(info, 2, _variant_t(" dent "), _variant_t(1));
  EXPECT_EQ(log.statements.size(), 1U);
  writer.write(info, 2, _variant_t("Dent"), _variant_t(1));
  EXPECT_EQ(log.count("UPDATE"), 1);
  writer.write(info, 2, _variant_t("Dent"), _variant_t(2));
  EXPECT_EQ(log.count("UPDATE"), 2);
  EXPECT_THAT(defects(), ElementsAre("Dent|2"));
  writer.write(info, 2, _variant_t(" "), _variant_t(2));
  EXPECT_THAT(defects(), IsEmpty());
  EXPECT_EQ(log.count("SAMPID=8 AND CHRTID=11 AND PIECENO=2"), 4);
}

TEST_P(CellWriting, a_total_changes_its_size_to_null_and_goes_with_0) {
  oldde::TotalWriter writer(db(), 8);
  const auto info = element(12, "ATTRIBUTE");
  writer.write(info, 1, _variant_t(4), _variant_t(50));
  EXPECT_THAT(totals(), ElementsAre("4|50"));
  const StatementLog log(db());
  writer.write(info, 1, _variant_t(4), _variant_t());
  EXPECT_THAT(totals(), ElementsAre("4|NULL"));
  writer.write(info, 2, _variant_t(9), _variant_t());
  EXPECT_THAT(totals(), ElementsAre("4|NULL"));
  writer.write(info, 1, _variant_t(0), _variant_t());
  EXPECT_THAT(totals(), IsEmpty());
  EXPECT_EQ(log.count("SAMPID=8 AND CHRTID=12"), 2) << "the second row is not looked up";
}

TEST_P(CellWriting, a_closed_connection_is_open_failed) {
  CDatabase closed;
  EXPECT_EQ(code_of([&] { oldde::VariableWriter(closed, 1).write(element(10, "VARIABLE"), 1, _variant_t(1.0)); }),
            result_code::open_failed);
  EXPECT_EQ(code_of([&] { oldde::DefectWriter(closed, 1).write(element(11, ""), 1, _variant_t("x"), _variant_t()); }),
            result_code::open_failed);
  EXPECT_EQ(code_of([&] { oldde::TotalWriter(closed, 1).write(element(12, ""), 1, _variant_t(1), _variant_t()); }),
            result_code::open_failed);
}

INSTANTIATE_TEST_SUITE_P(Servers, CellWriting, test_support::main_servers(), test_support::server_name);

}  // namespace
