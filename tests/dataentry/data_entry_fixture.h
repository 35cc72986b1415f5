/// The standard plant on each kind of server, with an engine that records and hands on to the reference engine.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "spcbase/dataentry/sample.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/testkit/database_fixture.h"
#include "spcbase/testkit/reference_engine.h"
#include "spcbase/testkit/statement_log.h"
#include "tests/support/grid.h"
#include "tests/support/plant.h"
#include "tests/support/recording_engine.h"
#include "tests/support/row_texts.h"

namespace test_support {

/// What `work` throws as a `long`; 0 when it throws nothing, a failed test for everything else.
template <class Work>
long code_of(Work&& work) {
  const auto outcome = guarded(work);
  if (outcome.ok()) return 0;
  EXPECT_EQ(outcome.failure().kind, FailureKind::result_code) << outcome.failure().text;
  return outcome.failure().code;
}

/// What kind of failure `work` ends in; a failed test when it succeeds.
template <class Work>
Failure failure_of(Work&& work) {
  auto outcome = guarded(work);
  if (!outcome.ok()) return outcome.failure();
  ADD_FAILURE() << "nothing was thrown";
  return {};
}

class DataEntryTest : public DatabaseTest {
 protected:
  DataEntryTest() : plant(database()), engine(reference_engine::make(db())) { plant.standard(); }

  /// Saves a grid as station 1 and user 1, "anna"; gives the sample.
  long save(int profile, TestGrid& grid, long sample = 0, long revision = 0) {
    helper.set_data(engine.pointer(), db(), &sample, profile, revision, 1, 1, "anna", grid.pointer(), nullptr);
    return sample;
  }
  /// A new sample without a cell: one grid without rows.
  long save_empty(int profile, long columns) {
    TestGrid grid(columns, 0);
    return save(profile, grid);
  }
  std::vector<std::string> read(int profile, long sample, long revision = 0) {
    const safe_array_holder grid(
        helper.get_data(engine.pointer(), db(), static_cast<int>(sample), profile, revision, 1, 1, nullptr));
    return texts_of(grid.get());
  }
  std::vector<std::string> rows(const std::string& statement) { return row_texts(database(), statement); }

  Plant plant;
  RecordingEngine engine;
  oldde::DEHelper helper;
};

}  // namespace test_support
