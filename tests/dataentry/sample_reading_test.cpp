// Reading a sample as a grid.
//
// Plan
//   rows of the grid     fixed and dynamic sizes; numbers and labels count, defects do not; labels of the sample as
//                        rows; labels only, of each kind
//   cells                every kind of element, types, nulls, unreadable dates, foreign rows, pieces beyond the grid
//   the date             to the second; another profile's sample
//   the array            shape and bounds; none and nothing lost on failure
//   round trip           what was saved comes back, but for what the rules leave out
//   statements           filters to the letter, one question for each table
#include "spcbase/testkit/held_clock.h"
#include "spcbase/testkit/zone_guard.h"
#include "tests/dataentry/data_entry_fixture.h"

namespace {

using test_support::code_of;
using test_support::DataEntryTest;
using test_support::date_cell;
using test_support::failure_of;
using test_support::HeldClock;
using test_support::StatementLog;
using test_support::TestGrid;
using test_support::utc;
using test_support::ZoneGuard;
using testing::ElementsAre;
using testing::IsEmpty;

class GetData : public DataEntryTest {
 protected:
  void without_system_labels() {
    execute("UPDATE CSLABEL SET NAME = 'Not STATION' WHERE LABELID = 30");
    execute("UPDATE CSLABEL SET NAME = 'Not OPERATOR' WHERE LABELID = 31");
  }
  /// A bare sample: its row and nothing else.
  long bare(int profile, const std::string& created = "2024-03-15 08:30:00") {
    execute("INSERT INTO CSSAMP (SAMPID, PROFID, CTIME) VALUES (500, " + std::to_string(profile) + ", '" + created +
            "')");
    return 500;
  }
  void label(int id, const std::string& piece, const std::string& text) {
    execute("INSERT INTO CSLDAT (SAMPID, CHRTID, LABELID, PIECENO, LABVALUE) VALUES (500, NULL, " + std::to_string(id) +
            ", " + piece + ", '" + text + "')");
  }
  void number(int id, int piece, const std::string& number) {
    execute("INSERT INTO CSVDAT (SAMPID, CHRTID, PIECENO, VARVALUE) VALUES (500, " + std::to_string(id) + ", " +
            std::to_string(piece) + ", " + number + ")");
  }
  void defect(int piece, const std::string& text) {
    execute("INSERT INTO CSDEFDAT (SAMPID, CHRTID, PIECENO, LABVALUE, DEFCOUNT) VALUES (500, 11, " +
            std::to_string(piece) + ", '" + text + "', 1)");
  }
  safe_array_holder get(int profile, long sample, double* date = nullptr) {
    return safe_array_holder(helper.get_data(engine.pointer(), db(), static_cast<int>(sample), profile, 0, 1, 1, date));
  }
};

// Rows

TEST_P(GetData, a_sample_without_data_in_a_profile_of_size_5_gives_five_empty_rows_and_the_date) {
  double date = 0;
  const auto grid = get(1, bare(1), &date);
  EXPECT_THAT(test_support::texts_of(grid.get()), ElementsAre(".", ".", ".", ".", "."));
  EXPECT_EQ(date, COleDateTime(2024, 3, 15, 8, 30, 0).m_dt);
}

TEST_P(GetData, a_profile_of_dynamic_size_and_a_sample_without_data_and_labels_gives_no_rows) {
  const auto grid = get(4, bare(4));
  LONG last_column = 0;
  LONG last_row = 0;
  EXPECT_EQ(SafeArrayGetUBound(grid.get(), 1, &last_column), S_OK);
  EXPECT_EQ(SafeArrayGetUBound(grid.get(), 2, &last_row), S_OK);
  EXPECT_EQ(last_column, 2);
  EXPECT_EQ(last_row, -1);
}

TEST_P(GetData, without_a_piece_the_number_of_sample_labels_stands_for_the_rows) {
  bare(4);
  label(20, "NULL", "early");
  label(22, "NULL", "2024-01-01");
  label(99, "NULL", "of no profile");
  EXPECT_THAT(read(4, 500), ElementsAre(". | 'early' | @2024-01-01 00:00:00", ". | . | .", ". | . | ."));
}

TEST_P(GetData, with_a_piece_the_sample_labels_do_not_count) {
  bare(4);
  label(20, "NULL", "early");
  label(22, "NULL", "2024-01-01");
  number(13, 1, "1.5");
  EXPECT_EQ(read(4, 500).size(), 1U);
}

TEST_P(GetData, the_larger_of_numbers_and_piece_labels_makes_the_rows) {
  bare(2);
  number(10, 6, "1.5");
  EXPECT_EQ(read(2, 500).size(), 6U);
  label(21, "8", "H");
  EXPECT_EQ(read(2, 500).size(), 8U);
}

TEST_P(GetData, a_fixed_size_fills_up_and_a_larger_sample_goes_beyond_it) {
  bare(1);
  number(10, 2, "1.5");
  EXPECT_THAT(read(1, 500), ElementsAre(".", "1.5", ".", ".", "."));
  number(10, 7, "2.5");
  EXPECT_EQ(read(1, 500).size(), 7U);
}

TEST_P(GetData, pieces_with_a_defect_alone_make_no_rows_and_are_passed_over) {
  plant.profile(6, {{'c', 11}});
  bare(6);
  defect(2, "dent");
  defect(7, "scratch");
  EXPECT_THAT(read(6, 500), ElementsAre(". | .", "'dent' | #1", ". | .", ". | .", ". | ."));
}

TEST_P(GetData, a_profile_of_sample_labels_has_one_row) {
  bare(3);
  EXPECT_THAT(read(3, 500), ElementsAre(". | ."));
  label(20, "NULL", "early");
  EXPECT_THAT(read(3, 500), ElementsAre("'early' | ."));
}

TEST_P(GetData, a_profile_of_piece_labels_has_as_many_rows_as_pieces) {
  plant.profile(6, {{'l', 21}});
  bare(6);
  EXPECT_THAT(read(6, 500), IsEmpty());
  label(21, "3", "C");
  EXPECT_THAT(read(6, 500), ElementsAre(".", ".", "'C'"));
}

TEST_P(GetData, a_profile_of_both_kinds_of_labels_has_one_row_at_least) {
  plant.profile(6, {{'l', 21}, {'l', 20}});
  bare(6);
  EXPECT_THAT(read(6, 500), ElementsAre(". | ."));
  label(21, "2", "B");
  EXPECT_THAT(read(6, 500), ElementsAre(". | .", "'B' | ."));
}

TEST_P(GetData, a_profile_that_cannot_be_loaded_has_neither_columns_nor_rows) {
  plant.profile(9, {});
  const auto grid = get(9, bare(9));
  LONG last = 0;
  EXPECT_EQ(SafeArrayGetUBound(grid.get(), 1, &last), S_OK);
  EXPECT_EQ(last, -1);
  EXPECT_EQ(SafeArrayGetUBound(grid.get(), 2, &last), S_OK);
  EXPECT_EQ(last, -1);
}

TEST_P(GetData, pieces_below_0_alone_leave_no_array_to_make) {
  bare(4);
  number(13, -3, "1.5");
  label(21, "-2", "x");
  EXPECT_EQ(code_of([&] { read(4, 500); }), result_code::no_array_or_row);
}

// Cells

TEST_P(GetData, every_kind_of_element_has_its_cells_and_types) {
  without_system_labels();
  TestGrid grid(10, 2);
  grid.put(0, 0, _variant_t(74.03)).put(0, 1, _variant_t(74.002));
  grid.put(1, 0, "A").put(1, 1, "B");
  grid.put(2, 1, "dent").put(3, 1, _variant_t(2));
  grid.put(4, 0, _variant_t(12)).put(5, 0, _variant_t(50.0));
  grid.put(6, 0, "early").put(7, 0, date_cell(2024, 3, 15, 8, 30)).put(8, 0, "Miller").put(9, 0, "North");
  const long sample = save(2, grid);
  const std::string nothing = ". | . | . | . | . | . | . | . | . | .";
  EXPECT_THAT(read(2, sample),
              ElementsAre("74.030000000000001 | 'A' | . | . | #12 | 50 | 'early' | @2024-03-15 08:30:00 | 'Miller' | "
                          "'North'",
                          "74.001999999999995 | 'B' | 'dent' | #2 | . | . | . | . | . | .", nothing, nothing, nothing));
}

TEST_P(GetData, a_date_label_that_cannot_be_parsed_reads_as_empty) {
  bare(3);
  label(22, "NULL", "last Tuesday");
  EXPECT_THAT(read(3, 500), ElementsAre(". | ."));
}

TEST_P(GetData, a_total_without_a_size_has_an_empty_second_cell) {
  plant.profile(6, {{'c', 12}});
  bare(6);
  execute("INSERT INTO CSDEFTOT (SAMPID, CHRTID, NFAIL, SSIZE) VALUES (500, 12, 4, NULL)");
  EXPECT_THAT(read(6, 500), ElementsAre("#4 | ."));
}

TEST_P(GetData, a_total_of_a_grid_without_rows_is_passed_over) {
  plant.profile(6, {{'c', 12}, {'c', 13}});
  bare(6);
  execute("INSERT INTO CSDEFTOT (SAMPID, CHRTID, NFAIL, SSIZE) VALUES (500, 12, 4, NULL)");
  helper.load_from_db(engine.pointer(), db(), 1, 1, 6);
  helper.max_subgroup_size = 0;
  EXPECT_THAT(read(6, 500, 7), IsEmpty());
}

TEST_P(GetData, rows_of_what_the_profile_does_not_hold_and_of_other_samples_are_passed_over) {
  bare(1);
  number(10, 1, "1.5");
  number(13, 2, "9.5");
  label(20, "NULL", "early");
  execute("INSERT INTO CSVDAT (SAMPID, CHRTID, PIECENO, VARVALUE) VALUES (501, 10, 2, 7.5)");
  EXPECT_THAT(read(1, 500), ElementsAre("1.5", ".", ".", ".", "."));
}

TEST_P(GetData, pieces_below_1_are_passed_over) {
  bare(1);
  number(10, 0, "1.5");
  number(10, -1, "2.5");
  EXPECT_THAT(read(1, 500), ElementsAre(".", ".", ".", ".", "."));
}

TEST_P(GetData, an_empty_text_is_a_text) {
  bare(3);
  label(20, "NULL", "");
  EXPECT_THAT(read(3, 500), ElementsAre("'' | ."));
}

TEST_P(GetData, a_label_and_a_characteristic_of_one_number_are_kept_apart) {
  plant.label(10, "Same number", "SAMPLE");
  plant.profile(6, {{'l', 10}, {'c', 10}});
  bare(6);
  number(10, 1, "1.5");
  label(10, "NULL", "text");
  EXPECT_EQ(read(6, 500)[0], "'text' | 1.5");
}

// The date, the array, the cache

TEST_P(GetData, a_sample_of_another_profile_or_no_sample_is_no_row) {
  bare(1);
  EXPECT_EQ(code_of([&] { read(3, 500); }), result_code::no_array_or_row);
  EXPECT_EQ(code_of([&] { read(1, 501); }), result_code::no_array_or_row);
}

TEST_P(GetData, a_sample_of_another_profile_is_found_out_after_the_size_was_asked) {
  bare(1);
  const StatementLog log(db());
  EXPECT_EQ(code_of([&] { read(4, 500); }), result_code::no_array_or_row);
  ASSERT_FALSE(log.statements.empty());
  EXPECT_NE(log.statements.back().find("(SAMPID = 500) AND (PROFID = 4)"), std::string::npos);
  EXPECT_EQ(log.count("MAX(PIECENO)"), 2);
}

TEST_P(GetData, the_date_is_the_local_time_as_it_was_stored_without_parts_of_a_second) {
  const ZoneGuard zone("America/New_York");
  double date = 0;
  get(1, bare(1, "2024-03-10 02:30:15.987"), &date);
  EXPECT_EQ(date, COleDateTime(2024, 3, 10, 2, 30, 15).m_dt) << "a time that the zone skips";
}

TEST_P(GetData, the_array_has_two_dimensions_from_0_of_variants) {
  const auto grid = get(2, bare(2));
  LONG bound = -1;
  EXPECT_EQ(SafeArrayGetDim(grid.get()), 2U);
  EXPECT_EQ(SafeArrayGetLBound(grid.get(), 1, &bound), S_OK);
  EXPECT_EQ(bound, 0);
  EXPECT_EQ(SafeArrayGetLBound(grid.get(), 2, &bound), S_OK);
  EXPECT_EQ(bound, 0);
  EXPECT_EQ(SafeArrayGetUBound(grid.get(), 1, &bound), S_OK);
  EXPECT_EQ(bound, 9);
  VARTYPE type = VT_EMPTY;
  EXPECT_EQ(SafeArrayGetVartype(grid.get(), &type), S_OK);
  EXPECT_EQ(type, VT_VARIANT);
  EXPECT_EQ(grid.get()->cLocks, 0U);
}

TEST_P(GetData, another_revision_uses_the_cache_as_it_stands) {
  bare(3);
  number(10, 1, "1.5");
  helper.load_from_db(engine.pointer(), db(), 1, 1, 1);
  helper.profile_rev = 7;
  EXPECT_THAT(read(3, 500, 7), ElementsAre("1.5", ".", ".", ".", "."));
  EXPECT_EQ(helper.profile_rev, 7);
  EXPECT_THAT(read(3, 500, 0), ElementsAre(". | ."));
  EXPECT_EQ(helper.profile_rev, 0);
}

TEST_P(GetData, a_failing_engine_call_of_the_load_passes) {
  bare(1);
  engine.fail("GetSubgroupSize", DISP_E_OVERFLOW);
  EXPECT_EQ(failure_of([&] { read(1, 500); }).code, long{DISP_E_OVERFLOW});
}

TEST_P(GetData, a_closed_connection_cannot_open_the_recordset_of_the_size) {
  helper.load_from_db(engine.pointer(), db(), 1, 1, 1);
  CDatabase closed;
  const Failure failure = failure_of([&] { helper.get_data(engine.pointer(), closed, 500, 1, 7, 1, 1, nullptr); });
  EXPECT_EQ(failure.kind, FailureKind::library);
  EXPECT_EQ(failure.text, "Can not open recordset.");
  helper.ClearProfileArray();
  EXPECT_EQ(code_of([&] { helper.get_data(engine.pointer(), closed, 500, 1, 7, 1, 1, nullptr); }),
            result_code::open_failed)
      << "without elements the date is the first to be asked for";
}

// Statements

TEST_P(GetData, one_question_goes_to_each_table_with_its_filter_to_the_letter) {
  bare(2);
  number(10, 1, "1.5");
  read(2, 500);
  const StatementLog log(db());
  read(2, 500);
  EXPECT_EQ(log.count("SAMPID = 500 AND CHRTID IN (10)"), 1);
  EXPECT_EQ(log.count("SAMPID = 500 AND CHRTID IN (11)"), 1);
  EXPECT_EQ(log.count("SAMPID = 500 AND CHRTID IN (12)"), 1);
  EXPECT_EQ(log.count("SAMPID = 500 AND LABELID IN (21,20,22,23,30)"), 1);
  EXPECT_EQ(log.count("SAMPID = 500 AND LABELID IS NOT NULL AND PIECENO IS NOT NULL"), 1);
  EXPECT_EQ(log.count("(SAMPID = 500) AND (PROFID = 2)"), 1);
  EXPECT_EQ(log.statements.size(), 7U);
}

TEST_P(GetData, the_sample_labels_are_counted_only_when_no_piece_is_found) {
  bare(2);
  {
    const StatementLog log(db());
    read(2, 500);
    EXPECT_EQ(log.count("SAMPID = 500 AND LABELID IS NOT NULL AND PIECENO IS NULL"), 1);
  }
  number(10, 1, "1.5");
  const StatementLog log(db());
  read(2, 500);
  EXPECT_EQ(log.count("PIECENO IS NULL"), 0);
}

// Round trip

TEST_P(GetData, what_was_saved_comes_back_but_for_rows_beyond_the_first_of_sample_labels_and_totals) {
  TestGrid grid(10, 6);
  for (LONG row = 0; row < 6; ++row) {
    grid.put(0, row, _variant_t(row * 0.1)).put(1, row, "c").put(2, row, "d").put(3, row, _variant_t(row));
    grid.put(4, row, _variant_t(row + 1)).put(5, row, _variant_t(50.0)).put(6, row, "shift");
    grid.put(7, row, date_cell(2024, 1, 1 + row)).put(8, row, "s").put(9, row, "North");
  }
  const auto saved = test_support::texts_of(grid.get());
  const auto back = read(2, save(2, grid));
  ASSERT_EQ(back.size(), saved.size());
  EXPECT_EQ(back[0], saved[0]);
  for (std::size_t row = 1; row < saved.size(); ++row) {
    const std::string pieces = saved[row].substr(0, saved[row].find(" | #", saved[row].find('#') + 1));
    EXPECT_EQ(back[row], pieces + " | . | . | . | . | . | .");
  }
}

INSTANTIATE_TEST_SUITE_P(Servers, GetData, test_support::main_servers(), test_support::server_name);

}  // namespace
