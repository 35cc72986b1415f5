// What becomes of the cells of labels, and how the list of a dynamic label grows.
//
// Plan
//   labels               of the sample, of a piece, conversions, dates, empty cells and texts, case of the type
//   system labels        the grid wins, empty or not
//   rows that are there  equal left, changed changed, deleted; filters to the letter
//   learning             once, trimmed, quotes, by label; refusals are quiet, the engine's failure is not
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

class LabelWriting : public DataEntryTest {
 protected:
  LabelWriting() {
    plant.profile(6, {{'l', 20}, {'l', 21}, {'l', 22}, {'l', 23}});
    plant.profile(7, {{'l', 23}});
    plant.profile(8, {{'l', 30}});
    // Only what a grid holds shall stand in the rows below.
    execute("UPDATE CSLABEL SET NAME = 'Not STATION' WHERE LABELID = 30");
    execute("UPDATE CSLABEL SET NAME = 'Not OPERATOR' WHERE LABELID = 31");
  }
  enum Column { shift, cavity, poured, supplier };
  long save_cell(Column column, const _variant_t& cell) {
    TestGrid grid(4, 1);
    grid.put(column, 0, cell);
    return save(6, grid);
  }
  std::vector<std::string> labels() {
    return rows("SELECT SAMPID, CHRTID, LABELID, PIECENO, LABVALUE FROM CSLDAT ORDER BY SAMPID, LABELID, PIECENO");
  }
  std::vector<std::string> texts() { return rows("SELECT LABVALUE FROM CSLDAT ORDER BY SAMPID, LABELID, PIECENO"); }
  void supply(const char* text) {
    TestGrid grid(1, 1);
    grid.put(0, 0, _variant_t(text));
    save(7, grid);
  }
  std::vector<std::string> values() {
    return rows(
        "SELECT L.LABELID, V.VALUEID, V.NAME FROM CSVINL L JOIN CSVALUE V ON L.VALUEID = V.VALUEID ORDER BY "
        "V.VALUEID");
  }
  oldde::CProfileInfo element(int id, const char* type, const char* detail = "") {
    oldde::CProfileInfo info;
    info.kind = 1;
    info.id = id;
    info.type = type;
    info.detail = detail;
    return info;
  }
};

TEST_P(LabelWriting, a_sample_label_stores_only_the_first_row_without_a_piece) {
  TestGrid grid(4, 5);
  for (LONG row = 0; row < 5; ++row)
    grid.put(shift, row, _variant_t(("shift " + std::to_string(row)).c_str()));
  save(6, grid);
  EXPECT_THAT(labels(), ElementsAre("1|NULL|20|NULL|shift 0"));
}

TEST_P(LabelWriting, a_piece_label_stores_each_row_with_its_piece) {
  TestGrid grid(4, 3);
  grid.put(cavity, 0, "A").put(cavity, 2, "C");
  save(6, grid);
  EXPECT_THAT(labels(), ElementsAre("1|NULL|21|1|A", "1|NULL|21|3|C"));
}

TEST_P(LabelWriting, the_case_of_a_type_and_of_a_detail_does_not_matter) {
  plant.label(40, "a", "Sample", "DateTime");
  plant.label(41, "b", "piece", "Dynamic");
  plant.profile(9, {{'l', 40}, {'l', 41}});
  TestGrid grid(2, 1);
  grid.put(0, 0, date_cell(2024, 3, 15, 8, 30)).put(1, 0, "new");
  const long sample = save(9, grid);
  EXPECT_THAT(labels(), ElementsAre("1|NULL|40|NULL|2024-03-15 08:30:00", "1|NULL|41|1|new"));
  EXPECT_THAT(values(), ElementsAre("41|1|new"));
  EXPECT_THAT(read(9, sample), ElementsAre("@2024-03-15 08:30:00 | 'new'"));
}

TEST_P(LabelWriting, cells_of_every_type_become_texts) {
  for (const _variant_t& cell : {_variant_t("text"), _variant_t(3), _variant_t(1.5), _variant_t(true)})
    save_cell(shift, cell);
  EXPECT_THAT(texts(), ElementsAre("text", "3", "1.5", "-1"));
}

TEST_P(LabelWriting, texts_are_stored_as_they_are_blanks_and_quotes_included) {
  save_cell(shift, _variant_t("  it's \\ ä \"late\" ? "));
  save_cell(shift, _variant_t(""));
  EXPECT_THAT(texts(), ElementsAre("  it's \\ ä \"late\" ? ", ""));
}

TEST_P(LabelWriting, a_null_cell_is_not_empty_and_no_text_either) {
  EXPECT_EQ(code_of([&] { save_cell(shift, null_cell()); }), result_code::bad_value);
}

TEST_P(LabelWriting, an_empty_cell_writes_nothing) {
  save_cell(shift, _variant_t());
  EXPECT_THAT(labels(), IsEmpty());
}

TEST_P(LabelWriting, a_date_of_a_date_label_is_written_year_first_to_the_second) {
  save_cell(poured, date_cell(2024, 3, 5, 8, 3, 9));
  save_cell(poured, date_cell(1899, 12, 30));
  EXPECT_THAT(texts(), ElementsAre("2024-03-05 08:03:09", "1899-12-30 00:00:00"));
}

TEST_P(LabelWriting, a_text_of_a_date_label_is_stored_as_it_is) {
  save_cell(poured, _variant_t("last Tuesday"));
  EXPECT_THAT(texts(), ElementsAre("last Tuesday"));
}

TEST_P(LabelWriting, a_date_of_any_other_label_is_written_by_the_platforms_rule) {
  save_cell(shift, date_cell(2024, 3, 5, 8, 3, 9));
  EXPECT_THAT(texts(), ElementsAre("3/5/2024 8:03:09 AM"));
}

TEST_P(LabelWriting, a_number_that_is_no_date_is_bad_value_in_a_date_label) {
  EXPECT_EQ(code_of([&] { save_cell(poured, {1e10, VT_DATE}); }), result_code::bad_value);
}

TEST_P(LabelWriting, a_label_takes_513_characters_and_no_more) {
  const std::string widest(512, 'x');
  EXPECT_EQ(code_of([&] { save_cell(shift, _variant_t((widest + "ä").c_str())); }), 0);
  EXPECT_EQ(failure_of([&] { save_cell(shift, _variant_t((widest + "äö").c_str())); }).failure_class,
            FailureClass::value_too_long);
}

// System labels

TEST_P(LabelWriting, a_system_label_whose_column_is_in_the_grid_and_empty_is_deleted) {
  execute("UPDATE CSLABEL SET NAME = 'STATION' WHERE LABELID = 30");
  TestGrid empty(1, 1);
  save(8, empty);
  EXPECT_EQ(engine.count("SetLabelValue"), 1);
  EXPECT_THAT(labels(), IsEmpty());
}

TEST_P(LabelWriting, a_system_label_whose_column_is_in_the_grid_takes_the_grids_text) {
  execute("UPDATE CSLABEL SET NAME = 'STATION' WHERE LABELID = 30");
  TestGrid grid(1, 1);
  grid.put(0, 0, "Elsewhere");
  const long sample = save(8, grid);
  EXPECT_THAT(texts(), ElementsAre("Elsewhere"));
  TestGrid no_rows(1, 0);
  save(8, no_rows, sample);
  EXPECT_THAT(texts(), ElementsAre("North")) << "a grid without rows says nothing about it";
}

// The writer alone, on rows that are there

TEST_P(LabelWriting, an_equal_text_is_left_another_case_is_changed_and_an_empty_cell_deletes) {
  oldde::LabelWriter writer(engine.pointer(), db(), 8);
  const auto info = element(20, "SAMPLE");
  writer.write(info, 1, _variant_t("early"));
  const StatementLog log(db());
  writer.write(info, 1, _variant_t("early"));
  EXPECT_EQ(log.statements.size(), 1U) << "only looked up";
  writer.write(info, 1, _variant_t("Early"));
  EXPECT_EQ(log.count("UPDATE"), 1);
  EXPECT_THAT(texts(), ElementsAre("Early"));
  writer.write(info, 2, _variant_t());
  EXPECT_THAT(texts(), ElementsAre("Early")) << "only the first row counts";
  writer.write(info, 1, _variant_t());
  EXPECT_THAT(labels(), IsEmpty());
  EXPECT_EQ(log.count("SAMPID=8 AND CHRTID IS NULL AND LABELID=20 AND PIECENO IS NULL"), 3);
}

TEST_P(LabelWriting, pieces_are_kept_apart) {
  oldde::LabelWriter writer(engine.pointer(), db(), 8);
  const auto info = element(21, "PIECE");
  writer.write(info, 1, _variant_t("a"));
  writer.write(info, 2, _variant_t("b"));
  const StatementLog log(db());
  writer.write(info, 2, _variant_t("c"));
  EXPECT_THAT(texts(), ElementsAre("a", "c"));
  EXPECT_EQ(log.count("SAMPID=8 AND CHRTID IS NULL AND LABELID=21 AND PIECENO=2"), 1);
}

TEST_P(LabelWriting, a_type_that_is_none_is_unexpected_before_anything_is_looked_up) {
  oldde::LabelWriter writer(engine.pointer(), db(), 8);
  const StatementLog log(db());
  EXPECT_EQ(code_of([&] { writer.write(element(20, "BATCH"), 1, _variant_t("x")); }), result_code::unexpected);
  EXPECT_THAT(log.statements, IsEmpty());
}

TEST_P(LabelWriting, a_closed_connection_is_open_failed) {
  CDatabase closed;
  oldde::LabelWriter writer(engine.pointer(), closed, 8);
  EXPECT_EQ(code_of([&] { writer.write(element(20, "SAMPLE"), 1, _variant_t("x")); }), result_code::open_failed);
}

// Learning

TEST_P(LabelWriting, a_new_value_of_a_dynamic_label_is_added_once) {
  supply("Miller");
  supply("Miller");
  EXPECT_THAT(values(), ElementsAre("23|1|Miller"));
  EXPECT_EQ(engine.count("GetNextRunningNumber") - engine.count("GetNextRunningNumber CSSPRN"), 1);
}

TEST_P(LabelWriting, surrounding_blanks_make_no_new_value) {
  supply("Miller");
  supply("  Miller\t");
  EXPECT_THAT(values(), ElementsAre("23|1|Miller"));
  EXPECT_THAT(texts(), ElementsAre("Miller", "  Miller\t")) << "the cell keeps them";
}

TEST_P(LabelWriting, a_value_with_quotes_is_found_again) {
  supply("O'Hara \"& Sons\" \\ ?");
  supply("O'Hara \"& Sons\" \\ ?");
  EXPECT_THAT(values(), ElementsAre("23|1|O'Hara \"& Sons\" \\ ?"));
}

TEST_P(LabelWriting, a_value_of_another_label_is_learnt_for_this_one_too) {
  execute("INSERT INTO CSVALUE (VALUEID, NAME) VALUES (70, 'Miller')");
  execute("INSERT INTO CSVINL (LABELID, VALUEID) VALUES (99, 70)");
  supply("Miller");
  EXPECT_THAT(values(), ElementsAre("23|1|Miller", "99|70|Miller"));
}

TEST_P(LabelWriting, an_unchanged_text_is_learnt_again_when_its_value_has_left_the_list) {
  oldde::LabelWriter writer(engine.pointer(), db(), 8);
  const auto info = element(23, "SAMPLE", "DYNAMIC");
  writer.write(info, 1, _variant_t("Miller"));
  execute("DELETE FROM CSVINL");
  writer.write(info, 1, _variant_t("Miller"));
  EXPECT_THAT(values(), ElementsAre("23|2|Miller"));
}

TEST_P(LabelWriting, an_empty_cell_and_the_rows_of_a_sample_label_behind_the_first_teach_nothing) {
  TestGrid grid(1, 3);
  grid.put(0, 1, "second").put(0, 2, "third");
  save(7, grid);
  EXPECT_THAT(values(), IsEmpty());
}

TEST_P(LabelWriting, other_labels_teach_nothing) {
  save_cell(shift, _variant_t("early"));
  EXPECT_THAT(values(), IsEmpty());
}

TEST_P(LabelWriting, the_search_goes_out_to_the_letter_with_the_text_as_a_parameter) {
  const StatementLog log(db());
  supply("Miller");
  EXPECT_EQ(log.count("LABELID = 23 AND "), 1);
  EXPECT_EQ(log.count("NAME] = ?") + log.count("NAME\" = ?") + log.count("NAME` = ?"), 1);
  EXPECT_EQ(log.count("WHERE VALUEID=0"), 1);
  EXPECT_EQ(log.count("WHERE LABELID=0 AND VALUEID=0"), 1);
}

TEST_P(LabelWriting, a_value_that_its_list_refuses_keeps_the_cell_and_raises_nothing) {
  execute("INSERT INTO CSVINL (LABELID, VALUEID) VALUES (23, 1)");
  supply("Miller");
  EXPECT_THAT(texts(), ElementsAre("Miller"));
  EXPECT_THAT(rows("SELECT LABELID, VALUEID FROM CSVINL"), ElementsAre("23|1"));
}

TEST_P(LabelWriting, a_value_that_the_values_refuse_keeps_the_cell_and_raises_nothing) {
  execute("INSERT INTO CSVALUE (VALUEID, NAME) VALUES (1, 'Taken')");
  supply("Miller");
  EXPECT_THAT(texts(), ElementsAre("Miller"));
  EXPECT_THAT(values(), IsEmpty());
}

TEST_P(LabelWriting, a_value_beyond_its_column_keeps_the_cell_and_raises_nothing) {
  const std::string wide(300, 'x');
  supply(wide.c_str());
  EXPECT_THAT(texts(), ElementsAre(wide));
  EXPECT_THAT(values(), IsEmpty());
}

TEST_P(LabelWriting, learning_on_a_closed_connection_raises_nothing) {
  CDatabase closed;
  EXPECT_EQ(code_of([&] { oldde::learn_value(engine.pointer(), closed, 23, "Miller"); }), 0);
  EXPECT_EQ(engine.calls.size(), 0U);
}

TEST_P(LabelWriting, an_engine_that_gives_no_number_for_a_value_is_raised_and_the_cell_stays) {
  engine.fail("GetNextRunningNumber", E_FAIL, 2);
  const Failure failure = failure_of([&] { supply("Miller"); });
  EXPECT_EQ(failure.kind, FailureKind::automation);
  EXPECT_EQ(failure.code, long{E_FAIL});
  EXPECT_THAT(texts(), ElementsAre("Miller"));
  EXPECT_THAT(values(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Servers, LabelWriting, test_support::main_servers(), test_support::server_name);

}  // namespace
