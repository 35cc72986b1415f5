// From a grid to rows: the steps of saving, apart from what each kind of cell does.
//
// Plan
//   new samples          created with approval and system labels before the grid is looked at
//   existing samples     replaced as a whole, the row and its approval stay, the revision is set; another profile's
//   the grid             none, bounds, width, shape, element type; its number of rows is its own; no rows
//   the cache            loaded for revision 0, used as it stands for every other
//   unknown elements     a kind that is none, a label type that is none, a characteristic of a type nobody knows
//   transactions         none of its own; the caller's undoes everything
//   the engine           failing numbers, failing system labels
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

class SetData : public DataEntryTest {
 protected:
  bool set(int profile, long& sample, SAFEARRAY** grid, long revision = 0, double* date = nullptr) {
    return helper.set_data(engine.pointer(), db(), &sample, profile, revision, 1, 1, "anna", grid, date);
  }
  /// A sample of profile 1 with the numbers 1 to 5.
  long five_numbers() {
    TestGrid grid(1, 5);
    for (LONG row = 0; row < 5; ++row)
      grid.put(0, row, _variant_t(row + 1.0));
    return save(1, grid);
  }
  std::string count(const std::string& table) { return value("SELECT COUNT(*) FROM " + table); }
};

TEST_P(SetData, sample_0_creates_a_sample_with_its_rows) {
  TestGrid grid(1, 2);
  grid.put(0, 0, _variant_t(74.03)).put(0, 1, _variant_t(74.002));
  long sample = 0;
  EXPECT_TRUE(set(1, sample, grid.pointer()));
  EXPECT_EQ(sample, 1);
  EXPECT_THAT(rows("SELECT SAMPID, CHRTID, PIECENO FROM CSVDAT ORDER BY PIECENO"), ElementsAre("1|10|1", "1|10|2"));
  EXPECT_EQ(count("CSSPAPPR"), "1");
}

TEST_P(SetData, a_new_sample_stands_with_approval_and_system_labels_before_the_grid_is_looked_at) {
  TestGrid narrow(3, 5);
  long sample = 0;
  EXPECT_EQ(code_of([&] { set(2, sample, narrow.pointer()); }), result_code::bad_value);
  EXPECT_EQ(sample, 1);
  EXPECT_THAT(rows("SELECT SAMPID, PROFID FROM CSSAMP"), ElementsAre("1|2"));
  EXPECT_THAT(rows("SELECT SAMPID FROM CSSPAPPR"), ElementsAre("1"));
  EXPECT_THAT(rows("SELECT LABELID, LABVALUE FROM CSLDAT ORDER BY LABELID"), ElementsAre("30|North", "31|anna"));
}

TEST_P(SetData, without_a_grid_a_new_sample_stands_too) {
  long sample = 0;
  EXPECT_EQ(code_of([&] { set(1, sample, nullptr); }), result_code::invalid_argument);
  SAFEARRAY* none = nullptr;
  EXPECT_EQ(code_of([&] { set(1, sample, &none); }), result_code::invalid_argument);
  EXPECT_EQ(count("CSSAMP"), "1") << "the second call had its number";
}

TEST_P(SetData, gives_the_samples_local_date_to_the_second) {
  const ZoneGuard zone("Asia/Tokyo");
  const HeldClock clock(utc(2024, 3, 15, 20, 30, 40, 567));
  TestGrid grid(1, 0);
  long sample = 0;
  double date = 0;
  set(1, sample, grid.pointer(), 0, &date);
  EXPECT_EQ(date, COleDateTime(2024, 3, 16, 5, 30, 40).m_dt);
}

TEST_P(SetData, another_save_replaces_the_whole_of_the_data) {
  const long sample = five_numbers();
  TestGrid grid(1, 2);
  grid.put(0, 1, _variant_t(9.5));
  long again = sample;
  EXPECT_FALSE(set(1, again, grid.pointer()));
  EXPECT_EQ(again, sample);
  EXPECT_THAT(rows("SELECT PIECENO, VARVALUE FROM CSVDAT"), ElementsAre(testing::StartsWith("2|9.5")));
  EXPECT_EQ(count("CSSAMP"), "1");
}

TEST_P(SetData, a_second_save_touches_neither_the_date_nor_the_approval) {
  const ZoneGuard zone("UTC");
  HeldClock clock(utc(2024, 3, 15, 12, 0, 0));
  const long sample = five_numbers();
  execute("UPDATE CSSPAPPR SET ASTAT = 3");
  const auto before = rows("SELECT CTIME FROM CSSAMP");
  clock.advance(std::chrono::hours(24));
  TestGrid grid(1, 0);
  save(1, grid, sample);
  EXPECT_EQ(rows("SELECT CTIME FROM CSSAMP"), before);
  EXPECT_THAT(rows("SELECT ASTAT, MUSER FROM CSSPAPPR"), ElementsAre("3|anna"));
}

TEST_P(SetData, a_grid_with_no_rows_for_an_existing_sample_deletes_its_data_and_writes_back_only_the_system_labels) {
  TestGrid full(10, 1);
  full.put(0, 0, _variant_t(1.0)).put(2, 0, "scratch").put(4, 0, _variant_t(2)).put(6, 0, "early");
  const long sample = save(2, full);
  EXPECT_EQ(count("CSVDAT") + count("CSDEFDAT") + count("CSDEFTOT"), "111");
  TestGrid nothing(10, 0);
  save(2, nothing, sample);
  EXPECT_EQ(count("CSVDAT") + count("CSDEFDAT") + count("CSDEFTOT"), "000");
  EXPECT_THAT(rows("SELECT LABELID, LABVALUE FROM CSLDAT ORDER BY LABELID"), ElementsAre("30|North", "31|anna"));
}

TEST_P(SetData, the_four_deletions_go_out_in_order_and_to_the_letter) {
  const long sample = five_numbers();
  const StatementLog log(db());
  TestGrid grid(1, 0);
  save(1, grid, sample);
  std::vector<std::string> deletions;
  for (const std::string& statement : log.statements)
    if (statement.starts_with("DELETE FROM")) deletions.push_back(statement);
  EXPECT_THAT(deletions, ElementsAre("DELETE FROM CSVDAT WHERE SAMPID = 1", "DELETE FROM CSDEFDAT WHERE SAMPID = 1",
                                     "DELETE FROM CSDEFTOT WHERE SAMPID = 1", "DELETE FROM CSLDAT WHERE SAMPID = 1"));
  EXPECT_EQ(log.count("(SAMPID = 1) AND (PROFID = 1)"), 1);
  EXPECT_EQ(log.count("WHERE SAMPID = 1"), 7) << "the deletions, the two highest pieces, the revision";
}

TEST_P(SetData, nobody_elses_sample_is_deleted) {
  const long first = five_numbers();
  const long second = five_numbers();
  TestGrid grid(1, 0);
  save(1, grid, first);
  EXPECT_THAT(rows("SELECT DISTINCT SAMPID FROM CSVDAT"), ElementsAre(std::to_string(second)));
}

TEST_P(SetData, a_sample_of_another_profile_is_no_row_and_nothing_is_deleted) {
  const long sample = five_numbers();
  TestGrid grid(2, 1);
  long same = sample;
  EXPECT_EQ(code_of([&] { set(3, same, grid.pointer()); }), result_code::no_array_or_row);
  EXPECT_EQ(count("CSVDAT"), "5");
  long unknown = 77;
  EXPECT_EQ(code_of([&] { set(1, unknown, grid.pointer()); }), result_code::no_array_or_row);
}

TEST_P(SetData, a_grid_with_a_column_too_few_or_too_many_is_bad_value_and_nothing_is_deleted) {
  TestGrid full(10, 1);
  full.put(0, 0, _variant_t(1.0)).put(6, 0, "early");
  long sample = save(2, full);
  for (const long columns : {9L, 11L, 0L}) {
    TestGrid grid(columns, 1);
    EXPECT_EQ(code_of([&] { set(2, sample, grid.pointer()); }), result_code::bad_value) << columns;
  }
  EXPECT_EQ(count("CSVDAT"), "1");
  EXPECT_EQ(value("SELECT LABVALUE FROM CSLDAT WHERE LABELID = 20"), "early");
}

TEST_P(SetData, no_grid_for_an_existing_sample_is_invalid_argument_and_nothing_is_deleted) {
  long sample = five_numbers();
  EXPECT_EQ(code_of([&] { set(1, sample, nullptr); }), result_code::invalid_argument);
  EXPECT_EQ(count("CSVDAT"), "5");
}

TEST_P(SetData, a_lower_bound_other_than_0_is_invalid_argument_even_when_the_width_is_wrong) {
  long sample = five_numbers();
  TestGrid first_column(1, 5, 1, 0);
  EXPECT_EQ(code_of([&] { set(1, sample, first_column.pointer()); }), result_code::invalid_argument);
  TestGrid first_row(3, 5, 0, 1);
  EXPECT_EQ(code_of([&] { set(1, sample, first_row.pointer()); }), result_code::invalid_argument);
  TestGrid negative(1, 5, 0, -1);
  EXPECT_EQ(code_of([&] { set(1, sample, negative.pointer()); }), result_code::invalid_argument);
  EXPECT_EQ(count("CSVDAT"), "5");
}

TEST_P(SetData, an_array_of_one_dimension_fails_with_the_code_of_the_bound_that_is_not_there) {
  long sample = five_numbers();
  const safe_array_holder line(SafeArrayCreateVector(VT_VARIANT, 0, 1));
  SAFEARRAY* array = line.get();
  EXPECT_EQ(code_of([&] { set(1, sample, &array); }), long{DISP_E_BADINDEX});
  EXPECT_EQ(count("CSVDAT"), "5");
}

TEST_P(SetData, an_array_of_other_elements_or_of_three_dimensions_is_invalid_argument) {
  long sample = five_numbers();
  SAFEARRAYBOUND bounds[3] = {{1, 0}, {5, 0}, {2, 0}};
  const safe_array_holder numbers(SafeArrayCreate(VT_R8, 2, bounds));
  const safe_array_holder cube(SafeArrayCreate(VT_VARIANT, 3, bounds));
  for (const safe_array_holder* holder : {&numbers, &cube}) {
    SAFEARRAY* array = holder->get();
    EXPECT_EQ(code_of([&] { set(1, sample, &array); }), result_code::invalid_argument);
  }
  EXPECT_EQ(count("CSVDAT"), "5");
}

TEST_P(SetData, the_number_of_rows_is_the_grids_own) {
  TestGrid grid(1, 8);
  for (LONG row = 0; row < 8; ++row)
    grid.put(0, row, _variant_t(row * 0.5));
  save(1, grid);
  EXPECT_EQ(value("SELECT MAX(PIECENO) FROM CSVDAT"), "8") << "more than the profile's five";
}

TEST_P(SetData, leaves_the_grid_as_it_is_and_unlocked) {
  TestGrid grid(1, 2);
  grid.put(0, 0, "1.5").put(0, 1, _variant_t(2.0));
  save(1, grid);
  EXPECT_THAT(test_support::texts_of(grid.get()), ElementsAre("'1.5'", "2"));
  EXPECT_EQ(grid.get()->cLocks, 0U);
  TestGrid bad(1, 1);
  bad.put(0, 0, "no number");
  EXPECT_EQ(code_of([&] { save(1, bad); }), result_code::bad_value);
  EXPECT_EQ(bad.get()->cLocks, 0U);
}

// Revisions

TEST_P(SetData, an_existing_sample_takes_the_revision_of_the_call) {
  long sample = five_numbers();
  TestGrid grid(1, 1);
  EXPECT_FALSE(set(1, sample, grid.pointer(), 7));
  EXPECT_EQ(value("SELECT PROFREV FROM CSSAMP"), "7");
  EXPECT_FALSE(set(1, sample, grid.pointer(), 7));
  EXPECT_EQ(value("SELECT PROFREV FROM CSSAMP"), "7") << "an equal revision is no failure";
  EXPECT_FALSE(set(1, sample, grid.pointer(), 0));
  EXPECT_EQ(value("SELECT PROFREV FROM CSSAMP"), "NULL");
}

TEST_P(SetData, revision_0_loads_the_current_profile_and_says_so) {
  helper.profile_rev = 7;
  five_numbers();
  EXPECT_EQ(helper.profile_rev, 0);
  EXPECT_EQ(helper.profile_id, 1);
}

TEST_P(SetData, another_revision_uses_the_cache_as_it_stands) {
  five_numbers();
  helper.profile_rev = 7;
  TestGrid grid(1, 1);
  grid.put(0, 0, _variant_t(1.0));
  const StatementLog log(db());
  const long sample = save(3, grid, 0, 7);
  EXPECT_EQ(helper.profile_id, 1);
  EXPECT_EQ(helper.profile_rev, 7);
  EXPECT_EQ(log.count("CSLINP"), 0);
  EXPECT_EQ(value("SELECT PROFID FROM CSSAMP WHERE SAMPID = " + std::to_string(sample)), "3");
  EXPECT_EQ(value("SELECT PROFREV FROM CSSAMP WHERE SAMPID = " + std::to_string(sample)), "7");
  EXPECT_EQ(value("SELECT CHRTID FROM CSVDAT WHERE SAMPID = " + std::to_string(sample)), "10");
}

TEST_P(SetData, a_profile_that_cannot_be_loaded_takes_a_grid_without_columns) {
  plant.profile(9, {});
  TestGrid none(0, 3);
  EXPECT_EQ(save(9, none), 1);
  TestGrid one(1, 3);
  EXPECT_EQ(code_of([&] { save(9, one); }), result_code::bad_value);
}

TEST_P(SetData, a_kept_profile_of_fixed_size_costs_no_question_about_profiles) {
  five_numbers();
  const StatementLog log(db());
  const int flags = engine.count("GetCharacteristicFlags") + engine.count("GetSubgroupSize");
  five_numbers();
  for (const char* table : {"CSLINP", "CSCINP", "CSLABELV", "CSSTNV", "CSUSERV"})
    EXPECT_EQ(log.count(table), 0) << table;
  EXPECT_EQ(engine.count("GetCharacteristicFlags") + engine.count("GetSubgroupSize"), flags);
}

// Elements that nobody knows

TEST_P(SetData, an_element_of_a_kind_that_is_none_is_unexpected_in_the_first_row_only) {
  five_numbers();
  oldde::CProfileInfo strange;
  strange.kind = 2;
  strange.id = 10;
  strange.type = "VARIABLE";
  helper.push_back(strange);
  TestGrid no_rows(3, 0);
  EXPECT_EQ(code_of([&] { save(1, no_rows, 0, 5); }), 0);
  TestGrid grid(3, 1);
  EXPECT_EQ(code_of([&] { save(1, grid, 0, 5); }), result_code::unexpected);
}

TEST_P(SetData, a_label_of_a_type_that_is_none_is_unexpected) {
  plant.label(50, "Odd", "BATCH");
  plant.profile(9, {{'l', 50}});
  TestGrid grid(1, 1);
  EXPECT_EQ(code_of([&] { save(9, grid); }), result_code::unexpected);
}

TEST_P(SetData, a_characteristic_of_a_type_nobody_knows_is_written_as_a_total_and_never_read) {
  plant.characteristic(50, "Odd", "RANGE", 2);
  plant.profile(9, {{'c', 50}});
  TestGrid grid(2, 1);
  grid.put(0, 0, _variant_t(3)).put(1, 0, _variant_t(50.0));
  const long sample = save(9, grid);
  EXPECT_THAT(rows("SELECT CHRTID, NFAIL FROM CSDEFTOT"), ElementsAre("50|3"));
  EXPECT_THAT(read(9, sample), ElementsAre(". | .", ". | ."));
}

// Transactions and failures

TEST_P(SetData, opens_no_transaction_so_that_what_was_written_stays) {
  const StatementLog log(db());
  test_support::RecordingEngine own;
  TestGrid grid(1, 2);
  grid.put(0, 0, _variant_t(1.0)).put(0, 1, "no number");
  own.sizes[10] = 5;
  long sample = 0;
  EXPECT_EQ(
      code_of([&] { helper.set_data(own.pointer(), db(), &sample, 1, 0, 1, 1, "anna", grid.pointer(), nullptr); }),
      result_code::bad_value);
  EXPECT_EQ(log.count("BEGIN"), 0);
  EXPECT_EQ(count("CSVDAT"), "1");
  EXPECT_EQ(count("CSSAMP"), "1");
}

TEST_P(SetData, the_callers_transaction_undoes_everything) {
  {
    AutoODBCTransaction transaction(db(), true);
    five_numbers();
  }
  for (const char* table : {"CSSAMP", "CSSPAPPR", "CSVDAT", "CSLDAT"})
    EXPECT_EQ(count(table), "0") << table;
  EXPECT_EQ(value("SELECT MAXNO FROM CSSPRN"), "0") << "the number too";
}

TEST_P(SetData, the_callers_transaction_keeps_everything_on_commit) {
  {
    AutoODBCTransaction transaction(db(), true);
    five_numbers();
    transaction.commit();
  }
  EXPECT_EQ(count("CSVDAT"), "5");
  EXPECT_EQ(value("SELECT MAXNO FROM CSSPRN"), "1");
}

TEST_P(SetData, a_failing_engine_call_is_raised_with_its_own_code) {
  TestGrid grid(1, 1);
  engine.fail("SetLabelValue", DISP_E_OVERFLOW);
  const Failure failure = failure_of([&] { save(1, grid); });
  EXPECT_EQ(failure.kind, FailureKind::automation);
  EXPECT_EQ(failure.code, long{DISP_E_OVERFLOW});
  EXPECT_EQ(count("CSSAMP"), "1");
  EXPECT_EQ(count("CSVDAT"), "0");
}

TEST_P(SetData, system_labels_that_fail_for_an_existing_sample_leave_it_cleared) {
  long sample = five_numbers();
  engine.fail("SetLabelValue", DISP_E_OVERFLOW);
  TestGrid grid(1, 1);
  EXPECT_EQ(failure_of([&] { set(1, sample, grid.pointer()); }).code, long{DISP_E_OVERFLOW});
  EXPECT_EQ(count("CSVDAT"), "0");
}

TEST_P(SetData, a_closed_connection_is_open_failed) {
  five_numbers();
  CDatabase closed;
  TestGrid grid(1, 1);
  long sample = 1;
  const auto work = [&] {
    helper.set_data(engine.pointer(), closed, &sample, 1, 5, 1, 1, "anna", grid.pointer(), nullptr);
  };
  EXPECT_EQ(code_of(work), result_code::open_failed);
}

INSTANTIATE_TEST_SUITE_P(Servers, SetData, test_support::main_servers(), test_support::server_name);

}  // namespace
