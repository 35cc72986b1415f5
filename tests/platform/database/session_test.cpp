// The behaviour that every session shares.
//
// Plan
//   statements    executing again; results that are left unread; the end, again and again; two results at a time;
//   counts
//                 of rows; several statements or none in a text; wrong numbers of parameters; descriptions; binding
//                 anew
//   transactions  what commits, what rolls back, what closing does, what a failed statement leaves, kept statements
//   facts         information, names of the server, dead links, keys of tables, the query timeout, the door
//   connecting    every way in which a connect text can be wrong; read-only; a host's own handle stays open
#include "tests/platform/database/session_under_test.h"

#include <gmock/gmock.h>

#include <fstream>
#include <set>

#include "spcbase/testkit/fail_kth_call.h"
#include "spcbase/testkit/raw_odbc.h"

namespace database_test {
namespace {

using spcdb::ColumnBinding;
using spcdb::Reading;

INSTANTIATE_TEST_SUITE_P(, SessionTest, all_servers, server_name);

TEST_P(SessionTest, a_statement_is_executed_again_and_again_with_new_values) {
  create_table();
  const auto insert = session->prepare("INSERT INTO T (ID, N) VALUES (?,?)", Reading::all);
  const auto find = session->prepare("SELECT N FROM T WHERE ID=?", Reading::all);
  const ColumnBinding text{Kind::text, 20};
  find->bind_columns({&text, 1});
  for (int id = 1; id <= 10; ++id) {
    const std::string name(static_cast<std::size_t>(id), 'x');
    const P values[] = {P::of_integer(id), P::of_text(name)};
    insert->execute(values);
    EXPECT_EQ(insert->rows_affected(), 1);
    const P key = P::of_integer(id);
    find->execute({&key, 1});
    std::string_view found;
    ASSERT_TRUE(find->fetch());
    ASSERT_TRUE(find->text(0, found));
    EXPECT_EQ(found, name);
  }
}

TEST_P(SessionTest, executing_again_closes_the_result_that_was_left_open) {
  create_table();
  for (int id = 1; id <= 200; ++id)
    insert(id);
  const auto all = query("SELECT ID FROM T ORDER BY ID", Kind::integer);
  ASSERT_TRUE(all->fetch());
  all->execute({});
  std::int64_t id = 0;
  ASSERT_TRUE(all->fetch());
  ASSERT_TRUE(all->integer(0, id));
  EXPECT_EQ(id, 1);
}

TEST_P(SessionTest, a_parameter_of_a_query_may_be_gone_while_rows_are_read) {
  create_table();
  for (int id = 1; id <= 300; ++id)
    insert(id, "left over");
  std::string name = "left over";
  const P value = P::of_text(name);
  const auto rows = query("SELECT ID FROM T WHERE N=? ORDER BY ID", Kind::integer, 0, {value});
  name.assign(name.size(), '#');
  int count = 0;
  while (rows->fetch())
    ++count;
  EXPECT_EQ(count, 300);
}

TEST_P(SessionTest, the_end_of_a_result_comes_again_and_again) {
  create_table();
  insert(1);
  const auto rows = query("SELECT ID FROM T", Kind::integer);
  EXPECT_TRUE(rows->fetch());
  EXPECT_FALSE(rows->fetch());
  EXPECT_FALSE(rows->fetch());
  rows->close();
  EXPECT_FALSE(rows->fetch());
}

TEST_P(SessionTest, every_number_of_rows_around_the_size_of_a_block_is_read_whole) {
  create_table();
  session->begin();
  for (int id = 1; id <= 130; ++id)
    insert(id);
  session->commit();
  const auto rows = session->prepare("SELECT ID FROM T WHERE ID<=? ORDER BY ID", Reading::forward);
  const ColumnBinding integer;
  rows->bind_columns({&integer, 1});
  for (const int wanted : {0, 1, 2, 63, 64, 65, 127, 128, 129, 130}) {
    const P last = P::of_integer(wanted);
    rows->execute({&last, 1});
    std::int64_t id = 0;
    int count = 0;
    while (rows->fetch()) {
      ASSERT_TRUE(rows->integer(0, id));
      ASSERT_EQ(id, ++count);
    }
    EXPECT_EQ(count, wanted);
  }
}

TEST_P(SessionTest, values_are_there_only_while_there_is_a_row) {
  create_table();
  insert(1);
  const auto rows = query("SELECT ID FROM T", Kind::integer);
  std::int64_t value = 0;
  EXPECT_EQ(caught([&] { rows->integer(0, value); }).code, AFX_SQL_ERROR_NO_CURRENT_RECORD);
  ASSERT_TRUE(rows->fetch());
  EXPECT_TRUE(rows->integer(0, value));
  EXPECT_EQ(caught([&] { rows->integer(1, value); }).code, AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH);
  ASSERT_FALSE(rows->fetch());
  EXPECT_EQ(caught([&] { rows->integer(0, value); }).code, AFX_SQL_ERROR_NO_CURRENT_RECORD);
}

TEST_P(SessionTest, two_results_are_read_side_by_side_while_rows_are_written) {
  create_table();
  for (int id = 1; id <= 150; ++id)
    insert(id);
  const auto first = query("SELECT ID FROM T WHERE ID<=150 ORDER BY ID", Kind::integer, 0, {}, Reading::forward);
  const auto second = query("SELECT ID FROM T WHERE ID<=150 ORDER BY ID DESC", Kind::integer, 0, {}, Reading::forward);
  std::int64_t up = 0;
  std::int64_t down = 0;
  for (int i = 1; i <= 150; ++i) {
    ASSERT_TRUE(first->fetch());
    ASSERT_TRUE(second->fetch());
    first->integer(0, up);
    second->integer(0, down);
    ASSERT_EQ(up, i);
    ASSERT_EQ(down, 151 - i);
    if (i % 50 == 0) insert(1000 + i);
  }
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM T"), 153);
}

TEST_P(SessionTest, a_result_stays_readable_over_a_commit_and_a_rollback) {
  create_table();
  for (int id = 1; id <= 100; ++id)
    insert(id);
  session->begin();
  const auto rows = query("SELECT ID FROM T ORDER BY ID", Kind::integer);
  ASSERT_TRUE(rows->fetch());
  session->commit();
  ASSERT_TRUE(rows->fetch());
  std::int64_t id = 0;
  ASSERT_TRUE(rows->integer(0, id));
  EXPECT_EQ(id, 2);
}

TEST_P(SessionTest, rows_are_counted_for_each_kind_of_statement) {
  create_table();
  EXPECT_EQ(insert(1), 1);
  EXPECT_EQ(insert(2), 1);
  EXPECT_EQ(session->run("UPDATE T SET N='y'"), 2);
  EXPECT_EQ(session->run("UPDATE T SET N='y' WHERE ID=77"), 0);
  EXPECT_EQ(session->run("DELETE FROM T WHERE ID=77"), 0);
  EXPECT_EQ(session->run("SELECT ID FROM T"), -1);
  EXPECT_EQ(session->run("DELETE FROM T"), 2);
  const auto update = session->prepare("UPDATE T SET N='y' WHERE ID=77", Reading::all);
  update->execute({});
  EXPECT_EQ(update->rows_affected(), 0);
}

TEST_P(SessionTest, a_wrong_number_of_values_is_refused_before_the_server_sees_it) {
  create_table();
  const auto statement = session->prepare("INSERT INTO T (ID, N) VALUES (?,?)", Reading::all);
  const P one = P::of_integer(1);
  EXPECT_EQ(caught([&] { statement->execute({&one, 1}); }).code, AFX_SQL_ERROR_PARAMETER_COUNT);
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM T"), 0);
}

TEST_P(SessionTest, a_second_statement_in_a_text_is_refused_and_none_is_run) {
  create_table();
  insert(1);
  EXPECT_NE(caught([&] { session->run("DELETE FROM T; DELETE FROM T"); }).code, 0);
  EXPECT_NE(caught([&] { session->prepare("DELETE FROM T; DELETE FROM T", Reading::all)->execute({}); }).code, 0);
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM T"), 1);
}

TEST_P(SessionTest, an_empty_text_is_refused) {
  for (const char* text : {"", " ", "\n\t", ";", "-- nothing", "/* nothing */ ;"}) {
    EXPECT_TRUE(has_state(caught([&] { session->run(text); }), "42000")) << text;
    EXPECT_TRUE(has_state(caught([&] { session->prepare(text, Reading::all); }), "42000")) << text;
  }
}

TEST_P(SessionTest, columns_are_described_before_execution_and_behind_it) {
  create_table();
  insert(1);
  const auto rows = session->prepare("SELECT ID, N, D, M, I FROM T", Reading::all);
  const auto check = [&] {
    EXPECT_EQ(rows->describe(0).name, "ID");
    EXPECT_EQ(rows->describe(0).sql_type, 4);
    EXPECT_EQ(rows->describe(1).sql_type, 12);
    EXPECT_EQ(rows->describe(1).precision, 20UL);
    EXPECT_EQ(rows->describe(2).sql_type, 8);
    EXPECT_EQ(rows->describe(3).sql_type, 93);
    EXPECT_EQ(rows->describe(4).sql_type, -5);
    EXPECT_EQ(caught([&] { rows->describe(5); }).code, AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH);
  };
  ASSERT_EQ(rows->column_count(), 5U);
  check();
  rows->execute({});
  while (rows->fetch()) {
  }
  rows->close();
  check();
}

TEST_P(SessionTest, columns_may_be_bound_anew_to_other_kinds) {
  create_table();
  insert(7, "7");
  const auto rows = query("SELECT ID, N FROM T", Kind::integer);
  std::int64_t number = 0;
  std::string_view text;
  ASSERT_TRUE(rows->fetch());
  ASSERT_TRUE(rows->integer(1, number));
  EXPECT_EQ(number, 7);
  const ColumnBinding texts[] = {{Kind::text, 20}, {Kind::text, 20}};
  rows->bind_columns(texts);
  rows->execute({});
  ASSERT_TRUE(rows->fetch());
  ASSERT_TRUE(rows->text(0, text));
  EXPECT_EQ(text, "7");
}

TEST_P(SessionTest, columns_that_nobody_bound_are_read_as_they_are_described) {
  create_table();
  insert(1, P::of_text("one"), P::of_real(0.5), P::of_moment({2024, 2, 3, 4, 5, 6, 0}), P::of_integer(9));
  const auto rows = session->prepare("SELECT ID, N, D, M FROM T", Reading::all);
  rows->execute({});
  ASSERT_TRUE(rows->fetch());
  std::int64_t id = 0;
  std::string_view name;
  double real = 0;
  TIMESTAMP_STRUCT moment{};
  EXPECT_TRUE(rows->integer(0, id) && rows->text(1, name) && rows->real(2, real) && rows->moment(3, moment));
  EXPECT_EQ(name, "one");
  EXPECT_EQ(real, 0.5);
  EXPECT_EQ(moment.day, 3);
}

TEST_P(SessionTest, more_columns_than_the_result_has_are_refused) {
  create_table();
  const auto rows = session->prepare("SELECT ID FROM T", Reading::all);
  const ColumnBinding two[2] = {};
  EXPECT_EQ(caught([&] { rows->bind_columns(two); }).code, AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH);
}

TEST_P(SessionTest, a_prepared_statement_survives_a_failure_and_works_again) {
  create_table();
  const auto statement = session->prepare("INSERT INTO T (ID) VALUES (?)", Reading::all);
  const P one = P::of_integer(1);
  const P two = P::of_integer(2);
  statement->execute({&one, 1});
  EXPECT_TRUE(has_native(caught([&] { statement->execute({&one, 1}); }), facts().duplicate_native));
  statement->execute({&two, 1});
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM T"), 2);
}

TEST_P(SessionTest, what_a_transaction_wrote_stays_after_a_commit_and_goes_with_a_rollback) {
  create_table();
  session->begin();
  EXPECT_TRUE(session->in_transaction());
  insert(1);
  session->commit();
  EXPECT_FALSE(session->in_transaction());
  session->begin();
  insert(2);
  session->rollback();
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM T"), 1);
  insert(3);
  const auto other = connect();
  const auto count = other->prepare("SELECT COUNT(*) FROM T", Reading::all);
  count->execute({});
  std::int64_t rows = 0;
  ASSERT_TRUE(count->fetch() && count->integer(0, rows));
  EXPECT_EQ(rows, 2) << "a statement behind a transaction commits itself again";
}

TEST_P(SessionTest, a_failed_statement_inside_a_transaction_undoes_itself_alone) {
  create_table();
  session->begin();
  insert(1);
  EXPECT_TRUE(has_native(caught([&] { insert(1); }), facts().duplicate_native));
  insert(2);
  session->commit();
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM T"), 2);
}

TEST_P(SessionTest, a_second_begin_and_a_commit_without_one_are_refused_a_rollback_is_not) {
  EXPECT_TRUE(has_state(caught([&] { session->commit(); }), "25000"));
  EXPECT_NO_THROW(session->rollback());
  session->begin();
  EXPECT_TRUE(has_state(caught([&] { session->begin(); }), "25000"));
  session->rollback();
}

TEST_P(SessionTest, closing_with_work_open_drops_the_work) {
  create_table();
  session->begin();
  insert(1);
  session->close();
  session = connect();
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM T"), 0);
}

TEST_P(SessionTest, transactions_are_reported_and_the_light_check_answers) {
  EXPECT_TRUE(session->transactions_supported());
  std::uint32_t value = 77;
  EXPECT_EQ(session->information(86, value), 0);
  std::uint32_t capable = 0;
  EXPECT_EQ(session->information(46, capable), 0);
  EXPECT_NE(capable, 0U);
  EXPECT_EQ(session->information(64999, value), -1);
  EXPECT_FALSE(session->link_is_dead());
}

TEST_P(SessionTest, facts_that_are_texts_are_given_whole) {
  std::string text = "before";
  EXPECT_EQ(session->information_text(17, text), 0);
  EXPECT_EQ(text, on_mariadb() ? "MariaDB" : "SQLite");
  EXPECT_EQ(session->information_text(18, text), 0);
  EXPECT_TRUE(text.starts_with(on_mariadb() ? "10." : "3.")) << text;
  EXPECT_EQ(session->information_text(29, text), 0);
  EXPECT_EQ(text, GetParam() == Server::sqlite_odbc ? "\"" : "`");
  EXPECT_EQ(session->information_text(10003, text), 0);
  EXPECT_EQ(text, on_mariadb() ? "Y" : "N");
  EXPECT_EQ(session->information_text(64999, text), -1);
  EXPECT_EQ(text, "") << "empty when it is refused";
}

TEST_P(SessionTest, a_refused_question_for_a_text_says_what_the_driver_said) {
  test_support::FailKthCall hook(1);
  session->gate().set_hook(on_sqlite() ? nullptr : &hook);
  std::string text = "before";
  EXPECT_EQ(session->information_text(17, text), on_sqlite() ? 0 : -1) << "without a driver nobody can refuse";
  EXPECT_EQ(text, on_sqlite() ? "SQLite" : "");
  session->gate().set_hook(nullptr);
}

TEST_P(SessionTest, the_server_is_described_for_people) {
  const auto server = session->describe_server();
  EXPECT_TRUE(server.starts_with(on_mariadb() ? "MariaDB 10." : "SQLite 3.")) << server;
  EXPECT_EQ(server.find(" through ") == std::string::npos, on_sqlite()) << server;
}

TEST_P(SessionTest, the_key_of_a_table_is_its_primary_key_else_a_unique_index_without_nulls) {
  session->run("CREATE TABLE K1 (B INTEGER NOT NULL, A INTEGER NOT NULL, C INTEGER, PRIMARY KEY (A, B))");
  session->run("CREATE TABLE K2 (A INTEGER, B INTEGER NOT NULL)");
  session->run("CREATE UNIQUE INDEX UK2A ON K2 (A)");
  session->run("CREATE UNIQUE INDEX UK2B ON K2 (B)");
  session->run("CREATE TABLE K3 (A INTEGER NOT NULL)");
  session->run("CREATE INDEX IK3 ON K3 (A)");
  session->run("CREATE VIEW V AS SELECT * FROM K1");
  EXPECT_THAT(session->find_key("K1").columns, testing::UnorderedElementsAre("A", "B"));
  EXPECT_EQ(session->find_key("K2").columns, (std::vector<std::string>{"B"}));
  EXPECT_TRUE(session->find_key("K3").columns.empty());
  EXPECT_TRUE(session->find_key("V").columns.empty());
  EXPECT_TRUE(session->find_key("NOSUCH").columns.empty());
}

TEST_P(SessionTest, every_call_passes_the_door_and_every_release_is_announced) {
  test_support::FailKthCall hook(0);
  session.reset();
  session = connect(&hook);
  EXPECT_FALSE(hook.functions().empty()) << "connecting";
  create_table();
  insert(1);
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM T"), 1);
  const std::set<std::string> seen(hook.functions().begin(), hook.functions().end());
  const std::set<std::string> wanted =
      on_sqlite() ? std::set<std::string>{"sqlite3_open_v2", "sqlite3_prepare_v3", "sqlite3_bind", "sqlite3_step"}
                  : std::set<std::string>{"SQLDriverConnect", "SQLPrepare", "SQLBindParameter", "SQLExecute",
                                          "SQLFetch",         "SQLBindCol", "SQLExecDirect",    "SQLRowCount"};
  for (const auto& function : wanted)
    EXPECT_TRUE(seen.contains(function)) << function;
  session->close();
  EXPECT_EQ(hook.releases().back(), on_sqlite() ? "sqlite3_close_v2" : "SQLFreeHandle");
}

TEST(open_sqlite, a_text_without_a_file_or_with_an_unknown_option_is_refused) {
  for (const char* text : {"sqlite:", "sqlite:;Create=1", "sqlite:{}"})
    EXPECT_TRUE(has_state(caught([&] { spcdb::open_sqlite(text, false); }), "08001")) << text;
  for (const char* text : {"sqlite:x.db;Kreate=1", "sqlite:x.db;Timeout=soon", "sqlite:x.db;Create", "sqlite:{x.db"})
    EXPECT_TRUE(has_state(caught([&] { spcdb::open_sqlite(text, false); }), "01S00")) << text;
}

TEST(open_sqlite, a_missing_file_a_folder_and_a_file_that_is_no_database_are_told_apart) {
  const test_support::ScratchFolder folder;
  const auto text_of = [](const std::string& connect) {
    return caught([&] { spcdb::open_sqlite(connect, false); }).text;
  };
  EXPECT_NE(text_of("sqlite:" + folder.file("none.db")).find("does not exist"), std::string::npos);
  EXPECT_NE(text_of("sqlite:" + folder.path().string()).find("is a folder"), std::string::npos);
  EXPECT_NE(text_of("sqlite:" + folder.file("no/such.db") + ";Create=1").find("there is no folder"), std::string::npos);
  std::ofstream(folder.file("plain.txt")) << std::string(2000, 'x');
  EXPECT_NE(text_of("sqlite:" + folder.file("plain.txt")).find("is not an SQLite database"), std::string::npos);
}

TEST(open_sqlite, a_file_name_with_semicolons_stands_in_braces_and_backslashes_separate_folders) {
  const test_support::ScratchFolder folder;
  spcdb::open_sqlite("sqlite:{" + folder.file("a;b.db") + "};Create=1", false)->run("CREATE TABLE T (A INTEGER)");
  EXPECT_TRUE(std::filesystem::exists(folder.file("a;b.db")));
  std::filesystem::create_directory(folder.path() / "sub");
  spcdb::open_sqlite("SQLite:" + folder.path().string() + "\\sub\\c.db;CREATE=1", false);
  EXPECT_TRUE(std::filesystem::exists(folder.file("sub/c.db")));
}

TEST(open_sqlite, a_read_only_session_reads_and_refuses_to_write) {
  const test_support::ScratchFolder folder;
  const auto connect = "sqlite:" + folder.file("r.db");
  spcdb::open_sqlite(connect + ";Create=1", false)->run("CREATE TABLE T (A INTEGER)");
  const auto reader = spcdb::open_sqlite(connect, true);
  reader->begin();
  EXPECT_EQ(reader->run("SELECT A FROM T"), -1);
  EXPECT_TRUE(has_state(caught([&] { reader->run("INSERT INTO T VALUES (1)"); }), "25006"));
  reader->rollback();
  EXPECT_TRUE(
      has_state(caught([&] { spcdb::open_sqlite("sqlite:" + folder.file("n.db") + ";Create=1", true); }), "08001"));
}

TEST(open_sqlite, foreign_keys_are_enforced_and_the_file_is_in_wal_mode) {
  const test_support::ScratchFolder folder;
  const auto session = spcdb::open_sqlite("sqlite:" + folder.file("f.db") + ";Create=1", false);
  const auto mode = session->prepare("PRAGMA journal_mode", Reading::all);
  mode->execute({});
  std::string_view text;
  ASSERT_TRUE(mode->fetch() && mode->text(0, text));
  EXPECT_EQ(text, "wal");
  session->run("CREATE TABLE A (ID INTEGER PRIMARY KEY)");
  session->run("CREATE TABLE B (AID INTEGER REFERENCES A (ID))");
  EXPECT_TRUE(has_native(caught([&] { session->run("INSERT INTO B VALUES (1)"); }), 787));
}

TEST(open_odbc, a_text_that_names_neither_driver_nor_data_source_is_refused) {
  for (const char* text : {"", "ODBC;", "ODBC;UID=u;PWD=p", "Driver=;UID=u", "Driver={};Database=x"}) {
    const auto failure = caught([&] { spcdb::open_odbc(text, false); });
    EXPECT_EQ(failure.code, AFX_SQL_ERROR_CONNECT_FAIL) << text;
    EXPECT_NE(failure.text.find("neither a driver"), std::string::npos) << failure.text;
  }
}

TEST(open_odbc, an_unknown_driver_or_data_source_fails_with_the_words_of_the_driver_manager) {
  EXPECT_NE(caught([] { spcdb::open_odbc("Driver=NoSuchDriver", false); }).text.find("NoSuchDriver"),
            std::string::npos);
  EXPECT_TRUE(has_state(caught([] { spcdb::open_odbc("DSN=NoSuchSource", false); }), "IM002"));
}

TEST(open_odbc, no_server_a_wrong_password_and_a_missing_database_are_told_apart) {
  auto& server = test_support::PrivateMariaDb::shared();
  const auto database = server.create_database();
  const auto good = database.odbc_connect_text();
  const auto with = [&](const std::string& key, const std::string& value) {
    auto text = good;
    const auto at = text.find(key + "=") + key.size() + 1;
    return text.replace(at, text.find(';', at) - at, value);
  };
  const auto failure = [](const std::string& text) { return caught([&] { spcdb::open_odbc(text, false); }); };
  EXPECT_TRUE(has_native(failure(with("SOCKET", "/nowhere/s.sock")), 2002));
  const auto password = failure(with("PWD", "wrong"));
  EXPECT_TRUE(has_native(password, 1045) && has_state(password, "28000")) << password.state;
  const auto missing = failure(server.odbc_connect_text("nosuchdatabase"));
  EXPECT_TRUE(has_native(missing, 1049) && has_state(missing, "42000")) << missing.state;
}

TEST(adopt_odbc, a_host_s_connection_works_and_stays_open) {
  const auto database = test_support::PrivateMariaDb::shared().create_database();
  test_support::RawOdbc raw(database.odbc_connect_text());
  {
    const auto session = spcdb::adopt_odbc(raw.handle());
    EXPECT_EQ(session->native_handle(), raw.handle());
    session->run("CREATE TABLE T (A INTEGER)");
    session->begin();
    session->run("INSERT INTO T VALUES (1)");
    session->commit();
    session->begin();
    session->run("INSERT INTO T VALUES (2)");
  }
  EXPECT_EQ(raw.value("SELECT COUNT(*) FROM T"), "1") << "open work is rolled back, the connection goes on";
  raw.execute("INSERT INTO T VALUES (3)");
  test_support::RawOdbc other(database.odbc_connect_text());
  EXPECT_EQ(other.value("SELECT COUNT(*) FROM T"), "2") << "and commits by itself again";
}

TEST(adopt_odbc, a_handle_that_is_not_connected_is_refused) {
  EXPECT_NE(caught([] { spcdb::adopt_odbc(nullptr); }).code, 0);
}

}  // namespace
}  // namespace database_test
