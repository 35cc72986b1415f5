// Plan
//   play puts a script before an open connection, which is opened again: what was open on it closes, its rows stay
//   A connection that is closed, in a transaction, or without a text to be opened by is refused, and stays as it was
//   Another script takes the place of the first; one that is made before tells capabilities
//   A rule for a call that can have none is refused -> Script
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "spcbase/foundation/outcome.h"
#include "spcbase/foundation/recordset.h"
#include "spcbase/testkit/database_fixture.h"
#include "spcbase/testkit/private_server.h"
#include "spcbase/testkit/raw_odbc.h"
#include "spcbase/testkit/scripted_session.h"

namespace test_support {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* add_station = "INSERT INTO CSSTN (STNID, NAME) VALUES (1, 'Forge 2')";

/// What a refused `play` says; empty when it plays.
std::string refusal_of_play(CDatabase& db) {
  try {
    play(db);
  } catch (const std::logic_error& refusal) {
    return refusal.what();
  }
  return {};
}

class Play : public DatabaseTest {};

INSTANTIATE_TEST_SUITE_P(Servers, Play, all_servers(), server_name);

TEST_P(Play, puts_a_script_before_the_connection_which_goes_on_to_the_server) {
  db().ExecuteSQL(add_station);
  const auto script = play(db());
  script->on_prefix("DELETE").once().refuse(error("40001", 1213, "Deadlock found"));
  EXPECT_EQ(guarded([&] { db().ExecuteSQL("DELETE FROM CSSTN"); }).failure().failure_class, FailureClass::deadlock);
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSTN"), "1");
  db().ExecuteSQL("DELETE FROM CSSTN");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSTN"), "0");
  EXPECT_THAT(script->statements(), ElementsAre("DELETE FROM CSSTN", "DELETE FROM CSSTN"));
}

TEST_P(Play, closes_what_is_open) {
  RSCount count(&db(), "CSSTN", nullptr);
  count.Open();
  ASSERT_TRUE(count.IsOpen());
  play(db());
  EXPECT_FALSE(count.IsOpen());
  EXPECT_TRUE(db().IsOpen());
}

TEST_P(Play, another_script_takes_the_place_of_the_first) {
  const auto first = play(db());
  first->on_prefix("DELETE").refuse(error("HY000", 1, "no"));
  const auto second = play(db());
  db().ExecuteSQL("DELETE FROM CSSTN");
  EXPECT_THAT(second->statements(), ElementsAre("DELETE FROM CSSTN"));
  EXPECT_THAT(first->statements(), ElementsAre());
}

TEST_P(Play, a_script_that_is_made_before_tells_capabilities) {
  ASSERT_TRUE(db().CanTransact());
  auto script = std::make_shared<Script>();
  script->transactions(false);
  EXPECT_EQ(play(db(), script), script);
  EXPECT_FALSE(db().CanTransact());
}

TEST_P(Play, a_connection_for_reading_stays_one) {
  CDatabaseEx reader;
  reader.OpenEx(database().connect_text().c_str(), CDatabase::openReadOnly);
  play(reader);
  EXPECT_FALSE(reader.CanUpdate());
}

TEST_P(Play, on_a_closed_connection_is_refused) {
  CDatabaseEx never;
  EXPECT_EQ(refusal_of_play(never), "play: the connection is not open");
  db().Close();
  EXPECT_EQ(refusal_of_play(db()), "play: the connection is not open");
}

TEST_P(Play, inside_a_transaction_is_refused_and_the_transaction_goes_on) {
  {
    AutoODBCTransaction transaction(db(), true);
    db().ExecuteSQL(add_station);
    EXPECT_THAT(refusal_of_play(db()), HasSubstr("a transaction is open"));
    transaction.commit();
  }
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSTN"), "1");
  EXPECT_EQ(refusal_of_play(db()), "") << "after its end a script is welcome";
}

TEST_P(Play, plays_a_transaction_that_begins_after_it) {
  const auto script = play(db());
  script->refuse_call("commit", error("40001", 1213, "Deadlock found"));
  const auto failed = guarded([&] {
    AutoODBCTransaction transaction(db(), true);
    db().ExecuteSQL(add_station);
    transaction.commit();
  });
  ASSERT_FALSE(failed);
  EXPECT_EQ(failed.failure().failure_class, FailureClass::deadlock);
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSTN"), "0");
  EXPECT_EQ(script->calls_of("rollback").size(), 1U);
}

TEST(play, is_refused_inside_a_transaction_that_a_statement_began) {
  const SchemaDatabase database(ServerKind::sqlite);
  CDatabaseEx db;
  database.open(db);
  db.ExecuteSQL("BEGIN");
  EXPECT_THAT(refusal_of_play(db), HasSubstr("a transaction is open"));
  db.ExecuteSQL("ROLLBACK");
}

TEST(play, on_a_handle_that_came_without_a_text_is_refused) {
  const SchemaDatabase database(ServerKind::sqlite_odbc);
  const RawOdbc host(database.raw_odbc_text());
  CDatabaseEx db;
  db.attach(host.handle(), true, "");
  EXPECT_EQ(refusal_of_play(db), "play: the connection has no connect text to be opened by again");
  EXPECT_TRUE(db.check_connection(0)) << "it is as it was";
}

TEST(play, leaves_a_connection_as_it_was_when_it_cannot_be_opened_again) {
  const SchemaDatabase database(ServerKind::sqlite_odbc);
  const RawOdbc host(database.raw_odbc_text());
  CDatabaseEx db;
  db.attach(host.handle(), true, "Driver={Nobody's}");
  const auto played = guarded([&] { play(db); });
  ASSERT_FALSE(played);
  EXPECT_EQ(played.failure().kind, FailureKind::database);
  EXPECT_TRUE(db.check_connection(0));
}

TEST(play, begins_a_database_in_memory_anew) {
  CDatabaseEx db;
  db.OpenEx("sqlite::memory:");
  db.ExecuteSQL("CREATE TABLE T (A INTEGER)");
  play(db);
  db.ExecuteSQL("CREATE TABLE T (A INTEGER)");
}

TEST(Script, refuses_a_rule_for_a_call_that_can_have_none) {
  Script script;
  const auto why = error("HY000", 1, "no");
  EXPECT_THROW(script.refuse_call("comit", why), std::invalid_argument);
  EXPECT_THROW(script.refuse_call("execute", why), std::invalid_argument);
  EXPECT_THROW(script.lose_answer("find_key", why), std::invalid_argument);
  for (const char* function : {"begin", "commit", "rollback", "find_key"})
    EXPECT_NO_THROW(script.refuse_call(function, why)) << function;
  for (const char* function : {"begin", "commit", "rollback"})
    EXPECT_NO_THROW(script.lose_answer(function, why)) << function;
}

}  // namespace
}  // namespace test_support
