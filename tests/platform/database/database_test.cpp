// Plan
//   connect texts: what each names, and a clear failure for those that name nothing
//   transactions: begin, commit, rollback, nesting refused, a transaction that the server gave up
//   ExecuteSQL: as it is, rows nobody wants, failures with their statement
//   kept statements: one preparation for conditions of one shape
//   the observer: everything that leaves, in order
//   a connection that is to stop: no statement leaves but the end of the transaction
#include "spcbase/platform/database/database.h"

#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <string>
#include <string_view>

#include "spcbase/platform/database/connection.h"
#include "spcbase/testkit/scripted_session.h"
#include "tests/platform/database/database_under_test.h"

namespace {

using namespace database_test;

class CDatabaseTest : public DatabaseTest {};
INSTANTIATE_TEST_SUITE_P(, CDatabaseTest, all_servers, server_name);

TEST(CDatabase, a_text_that_names_nothing_is_a_clear_failure) {
  CDatabase db;
  for (const char* text : {"", "ODBC;", "UID=u;PWD=p", "sqlite:", "sqlite:;Create=1"}) {
    const auto failure = caught([&] { db.OpenEx(text); });
    EXPECT_FALSE(failure.text.empty()) << text;
    EXPECT_FALSE(db.IsOpen()) << text;
  }
  caught([&] { db.OpenEx(nullptr); });
}

TEST(CDatabase, a_file_that_is_not_there_is_not_made_unless_asked) {
  test_support::ScratchFolder folder;
  const std::string text = "sqlite:" + folder.file("none.db");
  CDatabase db;
  const auto failure = caught([&] { db.OpenEx(text.c_str()); });
  EXPECT_NE(failure.text.find("none.db"), std::string::npos) << failure.text;
  EXPECT_FALSE(std::filesystem::exists(folder.file("none.db")));
  EXPECT_TRUE(db.OpenEx((text + ";Create=1").c_str()));
}

TEST(CDatabase, a_file_that_is_no_database_is_refused) {
  test_support::ScratchFolder folder;
  std::ofstream(folder.file("text.db")) << std::string(4096, 'x');
  CDatabase db;
  const std::string text = "sqlite:" + folder.file("text.db");
  EXPECT_NE(caught([&] { db.OpenEx(text.c_str()); }).text.find("is not an SQLite database"), std::string::npos);
}

TEST(CDatabase, without_a_connection_statements_fail_and_close_is_harmless) {
  CDatabase db;
  EXPECT_EQ(caught([&] { db.ExecuteSQL("SELECT 1"); }).code, AFX_SQL_ERROR_CONNECT_FAIL);
  EXPECT_EQ(caught([&] { db.BeginTrans(); }).code, AFX_SQL_ERROR_CONNECT_FAIL);
  DWORD value = 0;
  EXPECT_LT(db.GetInfo(86, value), 0);
  CString text("before");
  EXPECT_LT(db.information_text(17, text), 0);
  EXPECT_EQ(text, "");
  EXPECT_TRUE(db.describe_server().IsEmpty());
  db.Close();
  EXPECT_FALSE(db.IsOpen());
}

TEST_P(CDatabaseTest, knows_its_text_its_server_and_that_it_has_transactions) {
  EXPECT_EQ(db.GetConnect(), connect_text().c_str());
  EXPECT_TRUE(db.CanTransact());
  EXPECT_TRUE(db.CanUpdate());
  EXPECT_GE(db.describe_server().Find(on_mariadb() ? "MariaDB" : "SQLite"), 0);
  EXPECT_FALSE(db.link_is_dead());
  DWORD value = 0;
  EXPECT_TRUE(db.GetInfo(86, value) == 0 || db.GetInfo(86, value) == 1);
  CString text;
  EXPECT_EQ(db.information_text(17, text), 0);
  EXPECT_EQ(text, on_mariadb() ? "MariaDB" : "SQLite");
  EXPECT_EQ(caught([&] { db.OpenEx(connect_text().c_str()); }).code, AFX_SQL_ERROR_ILLEGAL_MODE);
}

TEST_P(CDatabaseTest, a_read_only_connection_refuses_to_write) {
  create_things();
  db.Close();
  db.OpenEx(connect_text().c_str(), CDatabase::openReadOnly);
  EXPECT_FALSE(db.CanUpdate());
  Things rs(&db);
  rs.Open();
  EXPECT_EQ(caught([&] { rs.AddNew(); }).code, AFX_SQL_ERROR_RECORDSET_READONLY);
}

TEST_P(CDatabaseTest, what_is_rolled_back_is_gone_and_what_is_committed_stays) {
  create_things();
  ASSERT_TRUE(db.BeginTrans());
  db.ExecuteSQL("INSERT INTO THINGS (ID) VALUES (1)");
  ASSERT_TRUE(db.Rollback());
  EXPECT_EQ(Things(&db).count("ID=1"), 0);
  ASSERT_TRUE(db.BeginTrans());
  db.ExecuteSQL("INSERT INTO THINGS (ID) VALUES (2)");
  ASSERT_TRUE(db.CommitTrans());
  EXPECT_EQ(Things(&db).count("ID=2"), 1);
  db.ExecuteSQL("INSERT INTO THINGS (ID) VALUES (3)");
  db.Close();
  db.OpenEx(connect_text().c_str());
  EXPECT_EQ(Things(&db).count("ID>0"), 2);
}

TEST_P(CDatabaseTest, closing_with_work_open_drops_it) {
  create_things();
  db.BeginTrans();
  db.ExecuteSQL("INSERT INTO THINGS (ID) VALUES (1)");
  db.Close();
  db.OpenEx(connect_text().c_str());
  EXPECT_EQ(Things(&db).count("ID=1"), 0);
}

TEST_P(CDatabaseTest, a_second_begin_and_an_end_without_a_beginning_return_zero) {
  EXPECT_FALSE(db.CommitTrans());
  EXPECT_FALSE(db.Rollback());
  EXPECT_TRUE(db.BeginTrans());
  EXPECT_FALSE(db.BeginTrans());
  EXPECT_TRUE(db.CommitTrans());
  EXPECT_FALSE(db.CommitTrans());
}

TEST_P(CDatabaseTest, an_error_inside_a_transaction_leaves_the_rest_of_it) {
  create_things();
  db.BeginTrans();
  db.ExecuteSQL("INSERT INTO THINGS (ID) VALUES (1)");
  caught([&] { db.ExecuteSQL("INSERT INTO THINGS (ID) VALUES (1)"); });
  EXPECT_TRUE(db.CommitTrans());
  EXPECT_EQ(Things(&db).count("ID=1"), 1);
}

TEST(CDatabase, a_commit_after_the_server_gave_the_transaction_up_fails_until_it_is_rolled_back) {
  auto script = std::make_shared<test_support::Script>();
  script->on("UPDATE T SET A=1").once().refuse(test_support::error("40001", 1213, "Deadlock found"));
  script->on("UPDATE T SET A=1").affect(1);
  CDatabase db;
  db.adopt_session(std::make_unique<test_support::ScriptedSession>(script));
  db.BeginTrans();
  caught([&] { db.ExecuteSQL("UPDATE T SET A=1"); });
  db.ExecuteSQL("UPDATE T SET A=1");
  EXPECT_EQ(caught([&] { db.CommitTrans(); }).code, AFX_SQL_ERROR_TRANSACTION_LOST);
  EXPECT_TRUE(script->calls_of("commit").empty()) << "the driver would have said that it committed";
  EXPECT_FALSE(db.BeginTrans());
  EXPECT_TRUE(db.Rollback());
  EXPECT_TRUE(db.BeginTrans());
  EXPECT_TRUE(db.CommitTrans());
  EXPECT_EQ(script->calls_of("commit").size(), 1U);
}

TEST(CDatabase, a_commit_that_fails_leaves_the_transaction_open_for_another_try) {
  auto script = std::make_shared<test_support::Script>();
  script->refuse_call("commit", test_support::error("HYT00", 5, "database is locked"));
  CDatabase db;
  db.adopt_session(std::make_unique<test_support::ScriptedSession>(script));
  db.BeginTrans();
  EXPECT_EQ(caught([&] { db.CommitTrans(); }).statement, "COMMIT");
  EXPECT_TRUE(db.CommitTrans());
  EXPECT_FALSE(db.Rollback());
}

TEST(CDatabase, a_session_without_transactions_has_none) {
  auto script = std::make_shared<test_support::Script>();
  script->transactions(false);
  CDatabase db;
  db.adopt_session(std::make_unique<test_support::ScriptedSession>(script));
  EXPECT_FALSE(db.CanTransact());
  EXPECT_FALSE(db.BeginTrans());
  EXPECT_FALSE(db.CommitTrans());
  EXPECT_FALSE(db.Rollback());
  EXPECT_TRUE(script->calls_of("begin").empty());
}

TEST(CDatabase, a_shape_that_the_server_refuses_is_sent_as_it_was_given) {
  auto script = std::make_shared<test_support::Script>();
  script->on_prefix("SELECT ID FROM T WHERE NAME=?")
      .refuse_at_prepare(test_support::error("42000", 1064, "You have an error in your SQL syntax near '?'"));
  script->on("SELECT ID FROM T WHERE NAME='x'").answer({"ID"}, {{7}});
  CDatabase db;
  db.adopt_session(std::make_unique<test_support::ScriptedSession>(script));
  struct Ids : CRecordset {
    long id = 0;
    explicit Ids(CDatabase* database) : CRecordset(database) { m_nFields = 1; }
    CString GetDefaultSQL() override { return "T"; }
    void DoFieldExchange(CFieldExchange* fx) override { RFX_Long(fx, "ID", id); }
  } rs(&db);
  rs.m_strFilter = "NAME='x'";
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(rs.Open());
    EXPECT_EQ(rs.id, 7);
    rs.Close();
  }
}

TEST_P(CDatabaseTest, a_failed_statement_is_told_with_its_text_and_passwords_are_masked) {
  const auto failure = caught([&] { db.ExecuteSQL("UPDATE NOSUCH SET PASSWORD='secret' WHERE ID=1"); });
  EXPECT_EQ(failure.statement, "UPDATE NOSUCH SET PASSWORD='***' WHERE ID=1");
  EXPECT_EQ(failure.state.rfind("State:", 0), 0U);
  EXPECT_NE(failure.state.find(",Native:"), std::string::npos);
}

TEST_P(CDatabaseTest, two_statements_in_one_text_and_an_empty_text_are_refused) {
  create_things();
  caught([&] { db.ExecuteSQL("INSERT INTO THINGS (ID) VALUES (1); INSERT INTO THINGS (ID) VALUES (2)"); });
  caught([&] { db.ExecuteSQL(""); });
  caught([&] { db.ExecuteSQL(nullptr); });
  EXPECT_EQ(Things(&db).count("ID=2"), 0);
}

TEST_P(CDatabaseTest, a_query_timeout_is_never_an_error) {
  db.SetQueryTimeout(60);
  EXPECT_EQ(db.GetQueryTimeout(), 60U);
  create_things();
  EXPECT_EQ(Things(&db).count("ID=1"), 0);
  db.SetQueryTimeout(0);
  EXPECT_EQ(Things(&db).count("ID=1"), 0);
}

TEST_P(CDatabaseTest, conditions_of_one_shape_share_one_prepared_statement) {
  create_things();
  struct Prepared : spcdb::CallHook {
    int prepared = 0;
    std::optional<spcdb::Diagnostic> before_call(const char* function) override {
      if (std::string_view(function).find("repare") != std::string_view::npos) ++prepared;
      return std::nullopt;
    }
  } hook;
  db.connection()->session().gate().set_hook(&hook);
  for (int i = 0; i < 10; ++i)
    Things(&db).count(("ID=" + std::to_string(i) + " AND NAME='n" + std::to_string(i) + "'").c_str());
  db.connection()->session().gate().set_hook(nullptr);
  EXPECT_EQ(hook.prepared, 1);
}

TEST_P(CDatabaseTest, more_shapes_than_are_kept_push_the_oldest_out) {
  create_things();
  for (int i = 0; i < 600; ++i) {
    std::string filter = "ID=1";
    for (int k = 0; k < i % 300; ++k)
      filter += " OR ID=2";
    EXPECT_EQ(Things(&db).count(filter.c_str()), 0);
  }
}

TEST_P(CDatabaseTest, a_connection_that_is_to_stop_sends_nothing_but_the_end_of_the_transaction) {
  create_things();
  db.BeginTrans();
  db.ExecuteSQL("INSERT INTO THINGS (ID) VALUES (1)");
  db.connection()->wants_to_stop = []() noexcept { return true; };
  for (const auto& failure : {caught([&] { db.ExecuteSQL("INSERT INTO THINGS (ID) VALUES (2)"); }),
                              caught([&] { Things(&db).count("ID=1"); })}) {
    EXPECT_TRUE(failure.state.starts_with("State:HY008,")) << failure.state;
    EXPECT_EQ(failure.text, "The program is to stop.");
  }
  EXPECT_TRUE(db.Rollback());
  db.connection()->wants_to_stop = nullptr;
  EXPECT_EQ(Things(&db).count("ID=1"), 0);
  db.connection()->wants_to_stop = []() noexcept { return false; };
  EXPECT_EQ(Things(&db).count("ID=1"), 0) << "it does not want to stop yet";
  db.connection()->wants_to_stop = []() noexcept { return true; };
  EXPECT_TRUE(db.BeginTrans());
  EXPECT_TRUE(db.CommitTrans());
}

TEST_P(CDatabaseTest, the_observer_sees_everything_that_leaves_in_order) {
  Record record;
  create_things();
  db.set_observer(&record);
  db.BeginTrans();
  db.ExecuteSQL("INSERT INTO THINGS (ID) VALUES (1)");
  Things(&db).count("ID=1");
  db.CommitTrans();
  caught([&] { db.ExecuteSQL("NONSENSE"); });
  db.set_observer(nullptr);
  ASSERT_EQ(record.lines.size(), 5U);
  EXPECT_EQ(record.lines[0].statement, "BEGIN");
  EXPECT_EQ(record.lines[1].statement, "INSERT INTO THINGS (ID) VALUES (1)");
  EXPECT_EQ(record.lines[1].rows, 1);
  EXPECT_EQ(record.lines[2].rows, 1);
  EXPECT_EQ(record.lines[3].statement, "COMMIT");
  EXPECT_TRUE(record.lines[4].failed);
}

}  // namespace
