// Long data at the sessions.
//
// Plan
//   SessionLongData   what a session promises on each driver: lengths, pieces of any size, one column after the other,
//                     a statement that is used again after a write that was given up
//   SqliteLongData    statements whose long column SQLite can and cannot open by its row id, and writing in one step
#include <algorithm>

#include "spcbase/testkit/fail_kth_call.h"
#include "tests/platform/database/session_under_test.h"
#include "tests/support/blob_bytes.h"

namespace database_test {
namespace {

using spcdb::Reading;
using test_support::payload;

constexpr std::size_t piece = spcdb::long_piece_bytes;

class SessionLongData : public SessionTest {
 protected:
  void SetUp() override {
    SessionTest::SetUp();
    const std::string blob = on_mariadb() ? "LONGBLOB" : "BLOB";
    session->run("CREATE TABLE L (ID INTEGER NOT NULL PRIMARY KEY, A " + blob + ", B " + blob + ")");
  }
  /// The statement, executed, its last `count` columns read in pieces.
  std::unique_ptr<spcdb::Statement> long_query(const std::string& sql, std::size_t count = 1) {
    auto statement = session->prepare(sql, Reading::all);
    std::vector<spcdb::ColumnBinding> bindings(statement->column_count());
    for (std::size_t i = bindings.size() - count; i < bindings.size(); ++i)
      bindings[i].kind = Kind::long_bytes;
    statement->bind_columns(bindings);
    statement->execute({});
    return statement;
  }
  static std::string rest(spcdb::Statement& statement, unsigned column, std::size_t step = piece) {
    std::string all;
    std::string part(step, '\0');
    for (;;) {
      const auto taken = statement.read_long(column, std::as_writable_bytes(std::span(part)));
      all.append(part, 0, taken);
      if (taken < step) return all;
    }
  }
  /// The long value of a row; "null" for a null.
  static std::string value(spcdb::Statement& statement, unsigned column, std::size_t step = piece) {
    std::int64_t length = 0;
    if (!statement.long_length(column, length)) return "null";
    auto all = rest(statement, column, step);
    EXPECT_EQ(length, static_cast<std::int64_t>(all.size()));
    return all;
  }
  void insert_long(std::int64_t id, const std::string& a, const std::string& b, const std::string& table = "L") {
    const auto statement = session->prepare("INSERT INTO " + table + " (ID, A, B) VALUES (?,?,?)", Reading::all);
    const P values[] = {P::of_integer(id), P::of_long_bytes(a, table, "A"), P::of_long_bytes(b, table, "B")};
    statement->execute(values);
    EXPECT_EQ(statement->rows_affected(), 1);
  }
};
INSTANTIATE_TEST_SUITE_P(, SessionLongData, all_servers, server_name);

TEST_P(SessionLongData, two_columns_are_written_and_read_one_after_the_other) {
  insert_long(1, payload(3 * piece), payload(2 * piece + 5));
  insert_long(2, payload(7), "");
  const auto rows = long_query("SELECT ID, A, B FROM L ORDER BY ID", 2);
  ASSERT_TRUE(rows->fetch());
  EXPECT_TRUE(value(*rows, 1) == payload(3 * piece));
  EXPECT_TRUE(value(*rows, 2) == payload(2 * piece + 5));
  ASSERT_TRUE(rows->fetch());
  EXPECT_EQ(value(*rows, 1), payload(7));
  EXPECT_EQ(value(*rows, 2), "");
  EXPECT_FALSE(rows->fetch());
}

TEST_P(SessionLongData, pieces_of_any_size_make_the_whole) {
  insert_long(1, payload(200001), "");
  for (const std::size_t step : {std::size_t{999}, std::size_t{100000}, std::size_t{200001}, std::size_t{300000}}) {
    const auto rows = long_query("SELECT ID, A FROM L");
    ASSERT_TRUE(rows->fetch());
    EXPECT_TRUE(value(*rows, 1, step) == payload(200001)) << step;
  }
}

TEST_P(SessionLongData, a_row_may_be_left_before_its_data_were_read_to_the_end) {
  insert_long(1, payload(3 * piece), "");
  insert_long(2, payload(4 * piece), "");
  const auto rows = long_query("SELECT ID, A FROM L ORDER BY ID");
  ASSERT_TRUE(rows->fetch());
  std::int64_t length = 0;
  EXPECT_TRUE(rows->long_length(1, length));
  std::string part(10, '\0');
  EXPECT_EQ(rows->read_long(1, std::as_writable_bytes(std::span(part))), 10U);
  ASSERT_TRUE(rows->fetch());
  EXPECT_TRUE(value(*rows, 1) == payload(4 * piece));
}

TEST_P(SessionLongData, a_statement_works_again_after_a_write_that_was_given_up) {
  const auto statement = session->prepare("INSERT INTO L (ID, A) VALUES (?,?)", Reading::all);
  const auto old = payload(5 * piece);
  const P given_up[] = {P::of_integer(1), P::of_long_bytes(old, "L", "A")};
  for (const char* function : {"SQLPutData", "sqlite3_blob_write"}) {
    // The second piece is the one that fails.
    struct SecondPiece : spcdb::CallHook {
      std::string function;
      int seen = 0;
      std::optional<spcdb::Diagnostic> before_call(const char* called) override {
        if (called != function || ++seen != 2) return std::nullopt;
        return test_support::FailKthCall::staged();
      }
    } hook;
    if ((std::string(function) == "SQLPutData") == on_sqlite()) continue;
    hook.function = function;
    session->gate().set_hook(&hook);
    EXPECT_TRUE(has_native(caught([&] { statement->execute(given_up); }), 4711));
    session->gate().set_hook(nullptr);
  }
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM L"), 0);
  const std::string fresh = "fresh";
  const P small[] = {P::of_integer(1), P::of_bytes(fresh)};
  statement->execute(small);
  const P large[] = {P::of_integer(2), P::of_long_bytes(old, "L", "A")};
  statement->execute(large);
  const auto rows = long_query("SELECT ID, A FROM L ORDER BY ID");
  ASSERT_TRUE(rows->fetch());
  EXPECT_EQ(value(*rows, 1), "fresh");
  ASSERT_TRUE(rows->fetch());
  EXPECT_TRUE(value(*rows, 1) == old);
}

TEST_P(SessionLongData, a_column_is_read_in_pieces_or_not) {
  insert_long(1, "a", "b");
  const auto rows = long_query("SELECT ID, A, B FROM L");
  ASSERT_TRUE(rows->fetch());
  std::int64_t length = 0;
  EXPECT_EQ(caught([&] { rows->long_length(0, length); }).code, AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH);
  EXPECT_EQ(caught([&] { rows->long_length(9, length); }).code, AFX_SQL_ERROR_FIELD_SCHEMA_MISMATCH);
}

class SqliteLongData : public SessionLongData {};
INSTANTIATE_TEST_SUITE_P(, SqliteLongData, testing::Values(Server::sqlite), server_name);

TEST_P(SqliteLongData, gives_the_right_row_whatever_the_statement) {
  session->run("CREATE TABLE M (ID INTEGER NOT NULL, A BLOB, B BLOB, PRIMARY KEY (ID)) WITHOUT ROWID");
  session->run("CREATE VIEW V AS SELECT ID, A FROM L");
  insert_long(1, payload(2 * piece), "");
  insert_long(2, payload(3 * piece), "");
  insert_long(3, payload(piece + 9), "", "M");
  const auto first = payload(2 * piece);
  const auto second = payload(3 * piece);
  const std::pair<const char*, std::string> cases[] = {
      {"SELECT ID, A FROM L WHERE ID=2", second},
      {"select ID, `A` from main.L where L.ID=2", second},
      {"SELECT /* , FROM */ 'x, FROM y', (SELECT 1), A FROM L WHERE ID=2", second},
      {"SELECT X.ID, X.A FROM L AS X WHERE X.ID=2", second},
      {"SELECT L.ID, X.A FROM L, L AS X WHERE L.ID=1 AND X.ID=2", second},
      {"SELECT L.ID, X.A FROM L AS X JOIN L WHERE L.ID=1 AND X.ID=2", second},
      {"SELECT ID, A FROM V WHERE ID=2", second},
      {"SELECT L.ID, L.A FROM V AS L WHERE L.ID=2", second},
      {"SELECT ID, A FROM (SELECT ID, A FROM L) WHERE ID=2", second},
      {"SELECT DISTINCT ID, A FROM L WHERE ID=2", second},
      {"SELECT ID, A FROM L WHERE ID=2 UNION ALL SELECT ID, A FROM L WHERE ID=9", second},
      {"SELECT COUNT(*), A FROM L WHERE ID=2 GROUP BY ID", second},
      {"WITH W AS (SELECT ID, A FROM L) SELECT ID, A FROM W WHERE ID=2", second},
      {"SELECT ID, A AS DATA FROM L WHERE ID=2", second},
      {"SELECT ID, A || '' FROM L WHERE ID=2", second},
      {"SELECT ID, A FROM L WHERE ID IN (SELECT ID FROM L WHERE ID=2)", second},
      {"SELECT ID, A FROM M", payload(piece + 9)},
      {"SELECT ID, A FROM L ORDER BY ID", first},
      {"SELECT ID, A FROM L ORDER BY 1 DESC LIMIT 1", second},
      {"SELECT 1, zeroblob(70000)", std::string(70000, '\0')},
      {"SELECT 1, NULL", "null"},
      {"SELECT 1, 12.5", "12.5"},
  };
  for (const auto& [sql, expected] : cases) {
    SCOPED_TRACE(sql);
    const auto rows = long_query(sql);
    ASSERT_TRUE(rows->fetch());
    EXPECT_TRUE(value(*rows, rows->column_count() - 1) == expected);
  }
}

TEST_P(SqliteLongData, a_text_and_a_null_in_the_column_are_what_they_are) {
  session->run("INSERT INTO L (ID, A) VALUES (1, NULL)");
  session->run("INSERT INTO L (ID, A) VALUES (2, 'text')");
  session->run("INSERT INTO L (ID, A) VALUES (3, printf('%.*c', 70000, 'x'))");
  session->run("INSERT INTO L (ID, A) VALUES (4, 4711)");
  const auto rows = long_query("SELECT ID, A FROM L ORDER BY ID");
  for (const std::string& expected :
       {std::string("null"), std::string("text"), std::string(70000, 'x'), std::string("4711")}) {
    ASSERT_TRUE(rows->fetch());
    EXPECT_TRUE(value(*rows, 1) == expected);
  }
}

TEST_P(SqliteLongData, what_has_no_row_id_is_written_whole) {
  session->run("CREATE TABLE M (ID INTEGER NOT NULL, A BLOB, B BLOB, PRIMARY KEY (ID)) WITHOUT ROWID");
  insert_long(1, payload(2 * piece), payload(3 * piece), "M");
  session->run("CREATE VIEW V AS SELECT ID, A, B FROM L");
  session->run(
      "CREATE TRIGGER IV INSTEAD OF INSERT ON V BEGIN INSERT INTO L (ID, A, B) VALUES (NEW.ID, NEW.A, NEW.B); END");
  const auto into_view = session->prepare("INSERT INTO V (ID, A, B) VALUES (?,?,?)", Reading::all);
  const auto bytes = payload(2 * piece);
  const P values[] = {P::of_integer(1), P::of_long_bytes(bytes, "V", "A"), P::null_of(Kind::long_bytes)};
  into_view->execute(values);
  for (const char* sql : {"SELECT ID, A FROM M", "SELECT ID, A FROM L"}) {
    const auto rows = long_query(sql);
    ASSERT_TRUE(rows->fetch());
    EXPECT_TRUE(value(*rows, 1) == payload(2 * piece)) << sql;
  }
}

TEST_P(SqliteLongData, one_update_writes_every_row_that_it_hits) {
  insert_long(1, "a", "");
  insert_long(2, "b", "");
  const auto update = session->prepare("UPDATE L SET A=? WHERE ID>?", Reading::all);
  const auto bytes = payload(2 * piece);
  const P all[] = {P::of_long_bytes(bytes, "L", "A"), P::of_integer(0)};
  update->execute(all);
  EXPECT_EQ(update->rows_affected(), 2);
  const P none[] = {P::of_long_bytes(bytes, "L", "A"), P::of_integer(7)};
  update->execute(none);
  EXPECT_EQ(update->rows_affected(), 0);
  const auto rows = long_query("SELECT ID, A FROM L");
  while (rows->fetch())
    EXPECT_TRUE(value(*rows, 1) == bytes);
}

TEST_P(SqliteLongData, a_write_inside_a_transaction_ends_with_it) {
  session->begin();
  insert_long(1, payload(2 * piece), "");
  EXPECT_TRUE(session->in_transaction());
  session->rollback();
  EXPECT_EQ(integer_of("SELECT COUNT(*) FROM L"), 0);
  insert_long(1, payload(2 * piece), "");
  EXPECT_FALSE(session->in_transaction()) << "by itself it is a transaction of its own";
  EXPECT_EQ(integer_of("SELECT LENGTH(A) FROM L"), static_cast<std::int64_t>(2 * piece));
}

TEST_P(SqliteLongData, a_statement_may_be_bound_in_pieces_and_whole_by_turns) {
  insert_long(1, payload(2 * piece), "");
  const auto statement = session->prepare("SELECT ID, A FROM L", Reading::all);
  const spcdb::ColumnBinding in_pieces[] = {{Kind::integer}, {Kind::long_bytes}};
  const spcdb::ColumnBinding whole[] = {{Kind::integer}, {Kind::bytes, 0, 200000}};
  for (int i = 0; i < 2; ++i) {
    statement->bind_columns(in_pieces);
    statement->execute({});
    ASSERT_TRUE(statement->fetch());
    EXPECT_TRUE(value(*statement, 1) == payload(2 * piece));
    EXPECT_EQ(statement->column_count(), 2U);
    EXPECT_EQ(statement->describe(1).name, "A");
    statement->bind_columns(whole);
    statement->execute({});
    ASSERT_TRUE(statement->fetch());
    std::string_view bytes;
    EXPECT_TRUE(statement->bytes(1, bytes));
    EXPECT_TRUE(bytes == payload(2 * piece));
  }
}

}  // namespace
}  // namespace database_test
