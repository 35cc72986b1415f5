// Every call into the driver fails once: k = 1, 2, 3 ... until a run comes to its end without the k-th call.
//
// Plan
//   saving               the failure of the database arrives, from the engine with its code; nothing stays of a sample
//                        in the caller's transaction; what the rules swallow leaves a whole sample
//   saving over          a sample that was there before stays what it was
//   reading              the failure arrives and no array; what the rules swallow changes no cell
//   afterwards           nothing is open, locked or held; every statement is released; the connection goes on working
#include "spcbase/platform/database/connection.h"
#include "spcbase/testkit/fail_kth_call.h"
#include "tests/dataentry/data_entry_fixture.h"

namespace {

using test_support::DatabaseTest;
using test_support::date_cell;
using test_support::FailKthCall;
using test_support::RecordingEngine;
using test_support::TestGrid;

/// Calls that make something, and the releases that end it.
int balance(const FailKthCall& hook) {
  int open = 0;
  const std::string failed = hook.failed_function();
  for (const std::string& function : hook.functions())
    if (function == "sqlite3_prepare_v3" || function == "SQLAllocHandle") ++open;
  for (const std::string& function : hook.releases())
    if (function == "sqlite3_finalize" || function == "SQLFreeHandle") --open;
  if (failed == "sqlite3_prepare_v3" || failed == "SQLAllocHandle") --open;
  return open;
}

class FailureSweep : public DatabaseTest {
 protected:
  FailureSweep() : plant_(database()) {
    if (!on_mariadb()) execute(no_waiting);
    plant_.standard();
    grid_.put(0, 0, _variant_t(74.03)).put(0, 1, _variant_t(74.002)).put(1, 0, "A").put(2, 0, "dent");
    grid_.put(3, 0, _variant_t(2)).put(4, 0, _variant_t(12)).put(5, 0, _variant_t(50.0)).put(6, 0, "early");
    grid_.put(7, 0, date_cell(2024, 3, 15, 8, 30)).put(8, 0, "Miller").put(9, 0, "North");
  }

  bool on_mariadb() const { return kind() == test_support::ServerKind::mariadb; }

  /// Hundreds of commits need not reach the disk.
  static constexpr const char* no_waiting = "PRAGMA synchronous = OFF";

  /// One run on a connection of its own, whose k-th call fails.
  struct Run {
    Run(FailureSweep& test, std::size_t k)
        : hook(k), database(test.second_connection()), engine(reference_engine::make(*database)) {
      if (!test.on_mariadb()) database->ExecuteSQL(no_waiting);
      database->connection()->session().gate().set_hook(&hook);
    }
    /// Ends the connection; gives the calls that made something less those that released it.
    int close() {
      pointer = nullptr;
      database->Close();
      return balance(hook);
    }

    FailKthCall hook;
    std::unique_ptr<CDatabaseEx> database;
    RecordingEngine engine;
    SPCLib::IQsmSPCPtr pointer = engine.pointer();
    oldde::DEHelper helper;
  };

  static long save(Run& run, TestGrid& grid, long sample) {
    AutoODBCTransaction transaction(*run.database, true);
    run.helper.set_data(run.pointer, *run.database, &sample, 2, 0, 1, 1, "anna", grid.pointer(), nullptr);
    transaction.commit();
    return sample;
  }

  static void expect_the_staged_failure(const Failure& failure) {
    EXPECT_TRUE(failure.kind == FailureKind::database || failure.kind == FailureKind::automation)
        << static_cast<int>(failure.kind);
    EXPECT_THAT(failure.text.GetString(), testing::HasSubstr("staged failure"));
    EXPECT_EQ(failure.native, 4711);
    EXPECT_TRUE(failure.kind == FailureKind::database || failure.code == long{E_FAIL});
  }

  static void expect_nothing_held(const Run& run) {
    EXPECT_TRUE(run.database->connection()->open_recordsets().empty());
    EXPECT_FALSE(run.database->in_transaction);
    EXPECT_FALSE(run.database->connection()->session().in_transaction());
  }

  void expect_a_whole_sample() {
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSSAMP"), "1");
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSSPAPPR"), "1");
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSVDAT"), "2");
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSDEFDAT"), "1");
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSDEFTOT"), "1");
    // The operator is no column: a failure while it is looked up is passed over, and the label with it.
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSLDAT WHERE LABELID <> 31"), "5");
  }

  /// A connection on which a call failed serves on; a whole sample, now and then, shows it best.
  void expect_to_go_on_working(Run& run, std::size_t k) {
    EXPECT_TRUE(run.database->check_connection(0));
    if (k % 8 != 0) return;
    EXPECT_EQ(save(run, grid_, 0), 1);
    expect_a_whole_sample();
    forget_samples();
  }

  /// Every row that saving may write, as one text.
  std::string all_rows() {
    std::string all;
    for (const char* query :
         {"SELECT SAMPID, PROFID, PROFREV FROM CSSAMP ORDER BY SAMPID", "SELECT SAMPID FROM CSSPAPPR ORDER BY SAMPID",
          "SELECT SAMPID, CHRTID, PIECENO, VARVALUE FROM CSVDAT ORDER BY SAMPID, CHRTID, PIECENO",
          "SELECT SAMPID, CHRTID, PIECENO, LABVALUE, DEFCOUNT FROM CSDEFDAT ORDER BY SAMPID, CHRTID, PIECENO",
          "SELECT SAMPID, CHRTID, NFAIL, SSIZE FROM CSDEFTOT ORDER BY SAMPID, CHRTID",
          "SELECT SAMPID, LABELID, PIECENO, LABVALUE FROM CSLDAT ORDER BY SAMPID, LABELID, PIECENO",
          "SELECT VALUEID, NAME FROM CSVALUE ORDER BY VALUEID", "SELECT LABELID, VALUEID FROM CSVINL",
          "SELECT MAXNO FROM CSSPRN", "SELECT MAXNO FROM CSVLRN"}) {
      for (const auto& row : database().rows(query)) {
        for (const auto& value : row)
          all += value.value_or("NULL") + "|";
        all += '\n';
      }
    }
    return all;
  }

  void forget_samples() {
    for (const char* table : {"CSSAMP", "CSSPAPPR", "CSVDAT", "CSDEFDAT", "CSDEFTOT", "CSLDAT", "CSVALUE", "CSVINL"})
      execute(std::string("DELETE FROM ") + table);
    execute("UPDATE CSSPRN SET MAXNO = 0");
    execute("UPDATE CSVLRN SET MAXNO = 0");
  }

  test_support::Plant plant_;
  TestGrid grid_{10, 2};
};

TEST_P(FailureSweep, a_new_sample_in_the_callers_transaction_is_whole_or_not_there) {
  const std::string before = all_rows();
  Run undisturbed(*this, 0);
  save(undisturbed, grid_, 0);
  const int released = undisturbed.close();
  forget_samples();

  std::size_t failures = 0;
  for (std::size_t k = 1;; ++k) {
    SCOPED_TRACE("call " + std::to_string(k));
    Run run(*this, k);
    const auto saved = guarded([&] { return save(run, grid_, 0); });
    SCOPED_TRACE(run.hook.failed_function());
    expect_nothing_held(run);
    EXPECT_EQ(grid_.get()->cLocks, 0U);
    if (saved.ok()) {
      expect_a_whole_sample();
      forget_samples();
    } else {
      ++failures;
      expect_the_staged_failure(saved.failure());
      ASSERT_EQ(all_rows(), before);
      expect_to_go_on_working(run, k);
    }
    const bool disturbed = run.hook.fired();
    EXPECT_EQ(run.close(), released) << "every statement is released";
    if (HasFailure() || !disturbed) break;
  }
  EXPECT_GT(failures, 100U);
}

TEST_P(FailureSweep, a_sample_that_is_saved_over_stays_what_it_was) {
  const auto put_first = [&] {
    forget_samples();
    TestGrid first(10, 1);
    first.put(0, 0, _variant_t(1.5)).put(2, 0, "scratch").put(4, 0, _variant_t(3)).put(8, 0, "Smith");
    Run run(*this, 0);
    save(run, first, 0);
    run.close();
  };
  put_first();
  const std::string before = all_rows();
  for (std::size_t k = 1;; ++k) {
    SCOPED_TRACE("call " + std::to_string(k));
    Run run(*this, k);
    const auto saved = guarded([&] { return save(run, grid_, 1); });
    SCOPED_TRACE(run.hook.failed_function());
    expect_nothing_held(run);
    if (saved.ok()) {
      expect_a_whole_sample();
      put_first();
    } else {
      expect_the_staged_failure(saved.failure());
    }
    ASSERT_EQ(all_rows(), before);
    const bool disturbed = run.hook.fired();
    run.close();
    if (HasFailure() || !disturbed) break;
  }
}

TEST_P(FailureSweep, a_sample_is_read_as_it_is_or_not_at_all) {
  Run undisturbed(*this, 0);
  const long sample = save(undisturbed, grid_, 0);
  const std::string before = all_rows();
  undisturbed.close();
  const auto read = [&](Run& run) {
    const safe_array_holder grid(
        run.helper.get_data(run.pointer, *run.database, static_cast<int>(sample), 2, 0, 1, 1, nullptr));
    return test_support::texts_of(grid.get());
  };
  Run reading(*this, 0);
  const auto expected = read(reading);
  const int released = reading.close();

  std::size_t failures = 0;
  for (std::size_t k = 1;; ++k) {
    SCOPED_TRACE("call " + std::to_string(k));
    Run run(*this, k);
    const auto grid = guarded([&] { return read(run); });
    SCOPED_TRACE(run.hook.failed_function());
    expect_nothing_held(run);
    if (!grid.ok()) {
      ++failures;
      expect_the_staged_failure(grid.failure());
    }
    EXPECT_EQ(grid.ok() ? grid.value() : read(run), expected);
    const bool disturbed = run.hook.fired();
    EXPECT_EQ(run.close(), released) << "every statement is released";
    if (HasFailure() || !disturbed) break;
  }
  EXPECT_GT(failures, 50U);
  EXPECT_EQ(all_rows(), before);
}

INSTANTIATE_TEST_SUITE_P(Servers, FailureSweep, test_support::main_servers(), test_support::server_name);

}  // namespace
