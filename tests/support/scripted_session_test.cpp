// The scripted session and the failing call, on which other tests rest.
#include "spcbase/testkit/scripted_session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/database/sqlite_session.h"
#include "spcbase/testkit/fail_kth_call.h"

namespace test_support {
namespace {

using spcdb::Parameter;
using spcdb::Reading;
using testing::ElementsAre;

template <class Act>
std::string failure_of(Act&& act) {
  try {
    act();
  } catch (CDBException* e) {
    std::string failure(e->m_strStateNativeOrigin.view());
    e->Delete();
    return failure;
  }
  return {};
}

std::int64_t first_integer(spcdb::Session& session, std::string_view sql) {
  const auto rows = session.prepare(sql, Reading::all);
  rows->execute({});
  std::int64_t value = -1;
  if (rows->fetch()) rows->integer(0, value);
  return value;
}

TEST(ScriptedSession, an_answer_is_read_like_rows_of_a_server) {
  const auto script = std::make_shared<Script>();
  script->on("SELECT X")
      .answer({"A", "B", "C"}, {{1, "x", 0.5}, {nullptr, std::string("7"), TIMESTAMP_STRUCT{2024, 2, 3, 0, 0, 0, 0}}});
  ScriptedSession session(script);
  const auto rows = session.prepare("SELECT X", Reading::all);
  EXPECT_EQ(rows->column_count(), 3U);
  EXPECT_EQ(rows->describe(1).name, "B");
  rows->execute({});
  std::int64_t integer = 0;
  std::string_view text;
  double real = 0;
  TIMESTAMP_STRUCT moment{};
  ASSERT_TRUE(rows->fetch());
  EXPECT_TRUE(rows->integer(0, integer) && rows->text(1, text) && rows->real(2, real));
  EXPECT_EQ(integer, 1);
  EXPECT_EQ(text, "x");
  EXPECT_EQ(real, 0.5);
  ASSERT_TRUE(rows->fetch());
  EXPECT_FALSE(rows->integer(0, integer));
  EXPECT_TRUE(rows->integer(1, integer) && rows->moment(2, moment));
  EXPECT_EQ(integer, 7);
  EXPECT_EQ(moment.day, 3);
  EXPECT_FALSE(rows->fetch());
  EXPECT_FALSE(rows->fetch());
}

TEST(ScriptedSession, a_statement_without_a_rule_fails_when_no_real_session_stands_behind) {
  ScriptedSession session(std::make_shared<Script>());
  EXPECT_NE(failure_of([&] { session.run("SELECT 1"); }), "");
  EXPECT_NE(failure_of([&] { session.prepare("SELECT 1", Reading::all); }), "");
}

TEST(ScriptedSession, rules_match_by_text_prefix_and_expression_in_order_and_wear_out) {
  const auto script = std::make_shared<Script>();
  script->on("SELECT 1").once().answer({"A"}, {{10}});
  script->on_prefix("SELECT 1").answer({"A"}, {{20}});
  script->on_regex("select .*").answer({"A"}, {{30}});
  ScriptedSession session(script);
  EXPECT_EQ(first_integer(session, "SELECT 1"), 10);
  EXPECT_EQ(first_integer(session, "SELECT 1"), 20);
  EXPECT_EQ(first_integer(session, "SELECT 2"), 30);
}

TEST(ScriptedSession, statements_are_refused_altered_and_passed_on) {
  const auto script = std::make_shared<Script>();
  script->on_prefix("INSERT").once().refuse(error("23000", 1062, "Duplicate entry"));
  script->on("SELECT 'bad").refuse_at_prepare(error("42000", 1064, "syntax"));
  script->on("SELECT A FROM T").alter("SELECT 2*A FROM T");
  script->on("DELETE FROM T").affect(5);
  ScriptedSession session(script, spcdb::open_sqlite("sqlite::memory:", false));
  session.run("CREATE TABLE T (A INTEGER)");
  EXPECT_TRUE(failure_of([&] { session.run("INSERT INTO T VALUES (4)"); }).starts_with("State:23000,Native:1062,"));
  EXPECT_EQ(session.run("INSERT INTO T VALUES (4)"), 1);
  EXPECT_TRUE(failure_of([&] { session.prepare("SELECT 'bad", Reading::all); }).starts_with("State:42000,"));
  EXPECT_EQ(first_integer(session, "SELECT A FROM T"), 8);
  EXPECT_EQ(session.run("DELETE FROM T"), 5);
  EXPECT_EQ(first_integer(session, "SELECT COUNT(*) FROM T"), 1);
}

TEST(ScriptedSession, every_call_is_written_down_in_order_with_its_values) {
  const auto script = std::make_shared<Script>();
  script->on_prefix("UPDATE").affect(1);
  ScriptedSession session(script);
  session.begin();
  const auto update = session.prepare("UPDATE T SET A=?, B=?, C=?", Reading::all);
  const Parameter values[] = {Parameter::of_integer(1), Parameter::of_text("it's"),
                              Parameter::null_of(spcdb::ValueKind::real)};
  update->execute(values);
  EXPECT_EQ(update->rows_affected(), 1);
  std::uint32_t value = 0;
  session.information(86, value);
  std::string text;
  session.information_text(17, text);
  session.commit();
  EXPECT_THAT(
      script->calls(),
      ElementsAre(SeenCall{"begin", "", ""}, SeenCall{"prepare", "UPDATE T SET A=?, B=?, C=?", ""},
                  SeenCall{"execute", "UPDATE T SET A=?, B=?, C=?", "1, 'it''s', NULL"},
                  SeenCall{"information", "", "86"}, SeenCall{"information", "", "17"}, SeenCall{"commit", "", ""}));
  EXPECT_THAT(script->statements(), ElementsAre("UPDATE T SET A=?, B=?, C=?"));
}

TEST(ScriptedSession, capabilities_are_those_of_the_script) {
  const auto script = std::make_shared<Script>();
  script->transactions(false).quotes('[', ']').information(86, -1, 3).column_sizes_zero().link_is_dead(true);
  script->information_text(17, 0, "Oracle").server("Oracle 11").key("T", {"A"});
  script->on("Q").answer({"A"}, {});
  ScriptedSession session(script);
  EXPECT_FALSE(session.transactions_supported());
  EXPECT_EQ(session.quirks().quote_open, '[');
  EXPECT_EQ(session.quirks().quote_close, ']');
  std::uint32_t value = 0;
  EXPECT_EQ(session.information(86, value), -1);
  EXPECT_EQ(value, 3U);
  std::string text;
  EXPECT_EQ(session.information_text(17, text), 0);
  EXPECT_EQ(text, "Oracle");
  EXPECT_EQ(session.prepare("Q", Reading::all)->describe(0).precision, 0UL);
  EXPECT_TRUE(session.link_is_dead());
  EXPECT_EQ(session.describe_server(), "Oracle 11");
  EXPECT_THAT(session.find_key("T").columns, ElementsAre("A"));
}

TEST(ScriptedSession, a_commit_is_refused_or_its_answer_is_lost) {
  const auto script = std::make_shared<Script>();
  script->refuse_call("commit", error("HY000", 5, "locked"));
  script->lose_answer("commit", error("08007", 0, "link lost"));
  ScriptedSession session(script, spcdb::open_sqlite("sqlite::memory:", false));
  session.run("CREATE TABLE T (A INTEGER)");
  session.begin();
  session.run("INSERT INTO T VALUES (1)");
  EXPECT_TRUE(failure_of([&] { session.commit(); }).starts_with("State:HY000,Native:5,"));
  EXPECT_TRUE(session.in_transaction());
  EXPECT_TRUE(failure_of([&] { session.commit(); }).starts_with("State:08007,"));
  EXPECT_FALSE(session.in_transaction());
  EXPECT_EQ(first_integer(session, "SELECT COUNT(*) FROM T"), 1);
}

TEST(FailKthCall, the_kth_call_fails_once_and_is_told_by_name) {
  FailKthCall hook(2, error("08S01", 2006, "gone"));
  const auto session = spcdb::open_sqlite("sqlite::memory:", false);
  session->gate().set_hook(&hook);
  EXPECT_TRUE(failure_of([&] { session->run("CREATE TABLE T (A INTEGER)"); }).starts_with("State:08S01,Native:2006,"));
  EXPECT_TRUE(hook.fired());
  EXPECT_EQ(hook.failed_function(), "sqlite3_step");
  EXPECT_EQ(hook.functions().size(), 2U);
  EXPECT_THAT(hook.releases(), ElementsAre("sqlite3_finalize"));
  EXPECT_EQ(session->run("CREATE TABLE T (A INTEGER)"), 0);
  session->gate().set_hook(nullptr);
}

}  // namespace
}  // namespace test_support
