// What drivers do that nobody would expect, each with the test that shows that it does no harm here.
//
// Plan: a test for each, named after what the driver does.

#include "spcbase/testkit/raw_odbc.h"
#include "tests/platform/database/session_under_test.h"
#include "tests/support/memory_meter.h"

namespace database_test {
namespace {

using spcdb::Reading;

class DriverTraps : public SessionTest {};
INSTANTIATE_TEST_SUITE_P(, DriverTraps, all_servers, server_name);

class SqliteTraps : public SessionTest {};
INSTANTIATE_TEST_SUITE_P(, SqliteTraps, testing::Values(Server::sqlite, Server::sqlite_odbc), server_name);

class MariaDbTraps : public SessionTest {
 protected:
  std::unique_ptr<spcdb::Session> adopt(test_support::RawOdbc& raw) const { return spcdb::adopt_odbc(raw.handle()); }
};
INSTANTIATE_TEST_SUITE_P(, MariaDbTraps, testing::Values(Server::mariadb), server_name);

TEST_P(DriverTraps, a_double_loses_digits_in_one_driver_unless_it_is_selected_through_the_expression) {
  create_table();
  const double third = 1.0 / 3;
  insert(1, P::of_text("x"), P::of_real(third), P::null_of(Kind::moment), P::null_of(Kind::integer));
  const auto read = [&](const std::string& column) {
    const auto rows = query("SELECT " + column + " FROM T", Kind::real);
    double value = 0;
    EXPECT_TRUE(rows->fetch() && rows->real(0, value));
    return value;
  };
  EXPECT_EQ(read(double_column("D")), third);
  EXPECT_EQ(read("D") == third, GetParam() != Server::sqlite_odbc);
}

TEST_P(DriverTraps, the_expression_for_doubles_keeps_nulls_whole_numbers_and_texts_as_they_are) {
  create_table();
  insert(1);
  session->run("UPDATE T SET D=5");
  const auto rows = query("SELECT " + double_column("D") + " FROM T", Kind::real);
  double value = 0;
  ASSERT_TRUE(rows->fetch() && rows->real(0, value));
  EXPECT_EQ(value, 5);
  session->run("UPDATE T SET D=NULL");
  rows->execute({});
  ASSERT_TRUE(rows->fetch());
  EXPECT_FALSE(rows->real(0, value));
  if (on_mariadb()) return;
  session->run("UPDATE T SET D='abc'");
  rows->execute({});
  ASSERT_TRUE(rows->fetch());
  EXPECT_TRUE(has_state(caught([&] { rows->real(0, value); }), "22018")) << "a text is not quietly 0";
}

TEST_P(DriverTraps, a_text_that_is_cut_off_in_a_bound_column_is_not_terminated) {
  session->run("CREATE TABLE L (ID INTEGER PRIMARY KEY, N VARCHAR(4000))");
  const std::string text(4000, 'x');
  const P values[] = {P::of_integer(1), P::of_text(text)};
  session->prepare("INSERT INTO L VALUES (?,?)", Reading::all)->execute(values);
  for (const int width : {1, 2, 999, 1000, 3999}) {
    const auto rows = query("SELECT N, N FROM L", Kind::text, width);
    std::string_view read;
    ASSERT_TRUE(rows->fetch());
    for (const unsigned column : {0U, 1U})
      EXPECT_EQ(caught([&] { rows->text(column, read); }).code, AFX_SQL_ERROR_DATA_TRUNCATED) << width;
  }
}

TEST_P(DriverTraps, several_texts_that_are_too_wide_are_each_told_by_their_own_column) {
  session->run("CREATE TABLE L (A VARCHAR(20), B VARCHAR(20), C VARCHAR(20))");
  session->run("INSERT INTO L VALUES ('abcdefghijk', 'ok', 'lmnopqrstuv')");
  const auto rows = query("SELECT A, B, C FROM L", Kind::text, 2);
  std::string_view read;
  ASSERT_TRUE(rows->fetch());
  EXPECT_NE(caught([&] { rows->text(0, read); }).text.find("column A"), std::string::npos);
  EXPECT_TRUE(rows->text(1, read));
  EXPECT_NE(caught([&] { rows->text(2, read); }).text.find("column C"), std::string::npos);
}

TEST_P(DriverTraps, a_searched_statement_without_a_row_is_no_data_on_some_and_never_an_error) {
  create_table();
  EXPECT_EQ(session->run("UPDATE T SET N='x' WHERE ID=1"), 0);
  const auto remove = session->prepare("DELETE FROM T WHERE ID=?", Reading::all);
  const P id = P::of_integer(5);
  remove->execute({&id, 1});
  EXPECT_EQ(remove->rows_affected(), 0);
}

TEST_P(SqliteTraps, an_insert_that_a_trigger_carries_out_on_a_view_is_no_error_though_no_row_is_counted) {
  create_table();
  session->run("CREATE VIEW V AS SELECT ID, N FROM T");
  session->run("CREATE TRIGGER TV INSTEAD OF INSERT ON V BEGIN INSERT INTO T (ID, N) VALUES (NEW.ID, NEW.N); END");
  const auto insert_row = session->prepare("INSERT INTO V (ID, N) VALUES (?,?)", Reading::all);
  const P values[] = {P::of_integer(1), P::of_text("x")};
  EXPECT_NO_THROW(insert_row->execute(values));
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM T"), 1);
}

TEST_P(DriverTraps, an_update_to_the_present_value_counts_the_row_that_it_found) {
  create_table();
  insert(1, "same");
  EXPECT_EQ(session->run("UPDATE T SET N='same' WHERE ID=1"), 1);
}

TEST_P(MariaDbTraps, a_host_s_connection_may_count_changed_rows_only_and_the_facts_say_so) {
  create_table();
  insert(1, "same");
  auto text = connect_text();
  if (const auto option = text.find("OPTION="); option != std::string::npos)
    text.erase(option,
               text.find(';', option) == std::string::npos ? std::string::npos : text.find(';', option) + 1 - option);
  test_support::RawOdbc raw(text);
  const auto adopted = adopt(raw);
  EXPECT_EQ(adopted->run("UPDATE T SET N='same' WHERE ID=1"), 0);
  EXPECT_TRUE(adopted->quirks().counts_changed_rows_only);
}

TEST_P(SqliteTraps, a_name_in_double_quotes_that_is_no_column_becomes_a_text_so_names_stand_in_back_quotes) {
  create_table();
  insert(1);
  EXPECT_EQ(session->quirks().quote_open, '`');
  EXPECT_EQ(session->quirks().quote_close, '`');
  EXPECT_NE(caught([&] { session->run("SELECT `NOSUCH` FROM T"); }).text.find("no such column"), std::string::npos);
  EXPECT_NE(caught([&] { session->run("SELECT [NOSUCH] FROM T"); }).text.find("no such column"), std::string::npos);
  if (on_sqlite())
    EXPECT_TRUE(has_state(caught([&] { session->run("SELECT \"NOSUCH\" FROM T"); }), "42S22"));
  else
    EXPECT_EQ(text_of("SELECT \"NOSUCH\" FROM T"), "NOSUCH");
}

TEST_P(DriverTraps, names_stand_in_the_quote_characters_of_the_facts) {
  create_table();
  insert(3);
  const auto quoted = [&](const std::string& name) {
    return session->quirks().quote_open + name + session->quirks().quote_close;
  };
  EXPECT_EQ(integer_of("SELECT " + quoted("T") + "." + quoted("ID") + " FROM " + quoted("T")), 3);
}

TEST_P(MariaDbTraps, ansi_quotes_and_backslashes_depend_on_the_mode_of_the_connection) {
  EXPECT_EQ(session->quirks().quote_open, '`');
  EXPECT_TRUE(session->quirks().backslash_escapes);
  test_support::RawOdbc raw(connect_text());
  raw.execute("SET SESSION sql_mode='ANSI_QUOTES,NO_BACKSLASH_ESCAPES'");
  const auto adopted = adopt(raw);
  EXPECT_FALSE(adopted->quirks().backslash_escapes);
  adopted->run("CREATE TABLE Q (A INTEGER)");
  const std::string quote(1, adopted->quirks().quote_open);
  EXPECT_EQ(adopted->run("INSERT INTO " + quote + "Q" + quote + " VALUES (1)"), 1);
}

TEST_P(DriverTraps, the_light_check_and_the_timeout_are_answered_by_every_driver) {
  std::uint32_t value = 1;
  EXPECT_EQ(session->information(86, value), 0);
  EXPECT_NO_THROW(session->set_query_timeout(30));
  EXPECT_EQ(integer_of("SELECT 1"), 1);
  EXPECT_NO_THROW(session->set_query_timeout(0));
  EXPECT_EQ(integer_of("SELECT 1"), 1);
}

TEST_P(SqliteTraps, a_commit_may_have_to_wait_and_can_be_repeated) {
  create_table();
  insert(1);
  session->run("PRAGMA journal_mode = DELETE");
  const auto reader = connect();
  reader->run("PRAGMA journal_mode = DELETE");
  session->begin();
  insert(2);
  const auto rows = reader->prepare("SELECT A.ID FROM T A, T B", Reading::forward);
  reader->run("BEGIN");
  rows->execute({});
  ASSERT_TRUE(rows->fetch());
  const auto failure = caught([&] { session->commit(); });
  EXPECT_TRUE(has_native(failure, 5)) << failure.state;
  EXPECT_TRUE(session->in_transaction());
  rows->close();
  reader->run("COMMIT");
  EXPECT_NO_THROW(session->commit());
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM T"), 2);
}

TEST_P(SqliteTraps, readers_and_a_writer_do_not_disturb_each_other) {
  create_table();
  insert(1);
  const auto reader = connect();
  reader->begin();
  if (on_sqlite()) reader->rollback();  // a transaction there is for writing: reading needs none
  const auto rows = reader->prepare("SELECT ID FROM T", Reading::forward);
  rows->execute({});
  ASSERT_TRUE(rows->fetch());
  EXPECT_NO_THROW(insert(2));
  rows->close();
  reader->rollback();
}

TEST_P(DriverTraps, foreign_keys_are_enforced_without_being_asked_for) {
  session->run("CREATE TABLE P (ID INTEGER NOT NULL PRIMARY KEY)");
  session->run("CREATE TABLE C (PID INTEGER, FOREIGN KEY (PID) REFERENCES P (ID))");
  EXPECT_NE(caught([&] { session->run("INSERT INTO C VALUES (1)"); }).code, 0);
}

TEST_P(MariaDbTraps, numbers_beyond_64_bits_fail_and_do_not_wrap) {
  session->run("CREATE TABLE U (A BIGINT UNSIGNED, B DECIMAL(30,0))");
  session->run("INSERT INTO U VALUES (18446744073709551615, 99999999999999999999)");
  std::int64_t value = 7;
  EXPECT_TRUE(has_state(caught([&] {
                          const auto rows = query("SELECT A FROM U", Kind::integer);
                          rows->fetch();
                          rows->integer(0, value);
                        }),
                        "22003"));
  EXPECT_TRUE(has_state(caught([&] {
                          const auto rows = query("SELECT B FROM U", Kind::integer);
                          rows->fetch();
                          rows->integer(0, value);
                        }),
                        "22003"));
  EXPECT_EQ(value, 7);
}

TEST_P(MariaDbTraps, a_date_column_is_a_moment_at_midnight) {
  session->run("CREATE TABLE D (A DATE)");
  session->run("INSERT INTO D VALUES ('2024-02-03')");
  const auto rows = query("SELECT A FROM D", Kind::moment);
  TIMESTAMP_STRUCT moment{};
  ASSERT_TRUE(rows->fetch() && rows->moment(0, moment));
  EXPECT_EQ(moment.day, 3);
  EXPECT_EQ(moment.hour, 0);
}

TEST_P(MariaDbTraps, the_catalogue_is_asked_for_this_database_alone) {
  const auto other = test_support::PrivateMariaDb::shared().create_database();
  spcdb::open_odbc(other.odbc_connect_text(), false)->run("CREATE TABLE ONLYTHERE (X INTEGER NOT NULL PRIMARY KEY)");
  session->run("CREATE TABLE BOTH_ (A INTEGER NOT NULL PRIMARY KEY)");
  spcdb::open_odbc(other.odbc_connect_text(), false)->run("CREATE TABLE BOTH_ (Z INTEGER NOT NULL PRIMARY KEY)");
  EXPECT_TRUE(session->find_key("ONLYTHERE").columns.empty());
  EXPECT_EQ(session->find_key("BOTH_").columns, std::vector<std::string>{"A"});
}

TEST(SqliteMemory, a_million_rows_are_read_forward_in_constant_memory) {
  const auto session = spcdb::open_sqlite("sqlite::memory:", false);
  const auto rows = session->prepare(
      "WITH RECURSIVE C (X) AS (VALUES (1) UNION ALL SELECT X+1 FROM C WHERE X<1000000) SELECT X, 'row ' || X FROM C",
      Reading::forward);
  const spcdb::ColumnBinding bindings[] = {{spcdb::ValueKind::integer, 0}, {spcdb::ValueKind::text, 20}};
  rows->bind_columns(bindings);
  rows->execute({});
  std::int64_t sum = 0;
  const auto take = [&] {
    std::int64_t id = 0;
    std::string_view text;
    if (!rows->fetch()) return false;
    sum += rows->integer(0, id) && rows->text(1, text) ? id : 0;
    return true;
  };
  for (int i = 0; i < 1000; ++i)
    ASSERT_TRUE(take());
  test_support::MemoryMeter memory;
  for (int row = 0; take(); ++row)
    if (row % 1000 == 0) memory.sample();
  EXPECT_EQ(sum, 500000500000);
  EXPECT_LT(memory.growth_kib(), 2048);
}

}  // namespace
}  // namespace database_test
