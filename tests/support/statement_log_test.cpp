// Plan
//   A log keeps the statements in order, transactions too, and counts them by what they hold -> StatementLog
//   The observer before it hears nothing meanwhile and goes on afterwards
//   A call is failed on an open connection for as long as the object lives -> FailKthCall on a connection
#include "spcbase/testkit/statement_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "spcbase/foundation/outcome.h"
#include "spcbase/platform/database/connection.h"
#include "spcbase/testkit/database_fixture.h"
#include "spcbase/testkit/fail_kth_call.h"

namespace test_support {
namespace {

using testing::ElementsAre;

class Logged : public DatabaseTest {};

INSTANTIATE_TEST_SUITE_P(Servers, Logged, main_servers(), server_name);

TEST_P(Logged, statements_stand_in_order_with_begin_and_commit) {
  const StatementLog log(db());
  db().BeginTrans();
  db().ExecuteSQL("DELETE FROM CSSTN");
  db().CommitTrans();
  EXPECT_THAT(log.statements, ElementsAre("BEGIN", "DELETE FROM CSSTN", "COMMIT"));
}

TEST_P(Logged, statements_that_fail_are_there_too) {
  const StatementLog log(db());
  EXPECT_FALSE(guarded([&] { db().ExecuteSQL("DELETE FROM NOWHERE"); }));
  EXPECT_THAT(log.statements, ElementsAre("DELETE FROM NOWHERE"));
}

TEST_P(Logged, statements_are_counted_by_what_they_hold) {
  const StatementLog log(db());
  for (const char* statement : {"DELETE FROM CSSTN", "DELETE FROM CSMON", "UPDATE CSSTN SET NAME = 'DELETE'"})
    db().ExecuteSQL(statement);
  EXPECT_EQ(log.count("DELETE FROM"), 2);
  EXPECT_EQ(log.count("CSSTN"), 2);
  EXPECT_EQ(log.count("INSERT"), 0);
  EXPECT_EQ(log.count(""), 3);
}

TEST_P(Logged, a_log_inside_another_takes_its_place_and_gives_it_back) {
  const StatementLog outer(db());
  {
    const StatementLog inner(db());
    db().ExecuteSQL("DELETE FROM CSSTN");
    EXPECT_THAT(inner.statements, ElementsAre("DELETE FROM CSSTN"));
  }
  db().ExecuteSQL("DELETE FROM CSMON");
  EXPECT_THAT(outer.statements, ElementsAre("DELETE FROM CSMON"));
}

class FailedCall : public DatabaseTest {};

INSTANTIATE_TEST_SUITE_P(Servers, FailedCall, main_servers(), server_name);

TEST_P(FailedCall, fails_on_the_connection_until_the_object_goes) {
  {
    const FailKthCall hook(db(), 1);
    const auto failed = guarded([&] { db().ExecuteSQL("DELETE FROM CSSTN"); });
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.failure().sqlstate, "HY000");
    EXPECT_EQ(failed.failure().native, 4711);
    EXPECT_TRUE(hook.fired());
    EXPECT_NE(hook.failed_function(), "");
    EXPECT_TRUE(guarded([&] { db().ExecuteSQL("DELETE FROM CSSTN"); })) << "only the first one";
  }
  EXPECT_EQ(db().connection()->session().gate().hook(), nullptr);
}

TEST_P(FailedCall, with_0_only_counts) {
  const FailKthCall hook(db(), 0);
  db().ExecuteSQL("DELETE FROM CSSTN");
  EXPECT_FALSE(hook.fired());
  EXPECT_EQ(hook.failed_function(), "");
  EXPECT_FALSE(hook.functions().empty());
}

TEST_P(FailedCall, fails_as_the_test_wants_it_to) {
  spcdb::Diagnostic gone = FailKthCall::staged();
  gone.sqlstate = "08S01";
  gone.native = 2006;
  const FailKthCall hook(db(), 1, gone);
  const auto failed = guarded([&] { db().ExecuteSQL("DELETE FROM CSSTN"); });
  ASSERT_FALSE(failed);
  EXPECT_EQ(failed.failure().failure_class, FailureClass::link_lost);
}

TEST_P(FailedCall, outlives_a_connection_that_closes_or_has_another_hook) {
  {
    const FailKthCall hook(db(), 0);
    db().Close();
    EXPECT_FALSE(hook.releases().empty());
  }
  database().open(db());
  FailKthCall other(0);
  {
    const FailKthCall hook(db(), 0);
    db().connection()->session().gate().set_hook(&other);
  }
  EXPECT_EQ(db().connection()->session().gate().hook(), &other) << "which is not its own to take away";
  db().connection()->session().gate().set_hook(nullptr);
}

TEST_P(FailedCall, on_a_closed_connection_is_refused) {
  db().Close();
  EXPECT_THROW(FailKthCall never(db(), 1), std::logic_error);
}

}  // namespace
}  // namespace test_support
