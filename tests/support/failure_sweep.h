/// What a sweep that fails one call into the driver after the other asks of every run.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/platform/database/connection.h"
#include "spcbase/testkit/fail_kth_call.h"

namespace test_support {

/// The calls that made something less the releases that ended it. To be asked when the connection is closed; what is
/// left then is what the connection itself was made of.
inline int calls_without_release(const FailKthCall& hook) {
  int open = 0;
  const auto makes = [](const std::string& f) { return f == "sqlite3_prepare_v3" || f == "SQLAllocHandle"; };
  for (const std::string& function : hook.functions())
    open += makes(function);
  for (const std::string& function : hook.releases())
    open -= function == "sqlite3_finalize" || function == "SQLFreeHandle";
  return open - makes(hook.failed_function());
}

/// The failure is the database's own, with what the driver said.
inline void expect_staged_failure(const Failure& failure) {
  EXPECT_EQ(failure.kind, FailureKind::database);
  EXPECT_THAT(failure.text.GetString(), testing::HasSubstr("staged failure"));
  EXPECT_EQ(failure.native, 4711);
}

/// No recordset and no transaction is open.
inline void expect_nothing_held(const CDatabaseEx& db) {
  EXPECT_TRUE(db.connection()->open_recordsets().empty());
  EXPECT_FALSE(db.in_transaction);
  EXPECT_FALSE(db.connection()->session().in_transaction());
}

}  // namespace test_support
