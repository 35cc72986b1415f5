// Plan, each case on SQLite and on a private MariaDB server
//   The DDL runs, twice after a drop, and every described column can be selected -> has_every_described_column
//   Keys: one row for each key of revisions, values, defects, totals, labels (nulls too), values of a label, approvals,
//     links and settings -> refuses_a_second_row_*
//   REVID comes from the database and FKREVDAT1 holds -> the_database_assigns_*, a_payload_needs_*
//   Widths: n characters of several bytes pass, n + 1 do not, in every text column -> keeps_the_width_of_every_text
//   Moments to the millisecond -> keeps_milliseconds
//   Views show live rows; an insert through CSVALUEV lands in its table -> views_*, takes_an_insert_through_*
//   Statements over two tables run without a prefix on their columns -> runs_the_joins_*
//   Texts compare exactly: case, accents, trailing blanks -> compares_texts_exactly
//   27 running numbers at 0, an id is never assigned by itself, ALFLG is never null -> running_*, an_id_*, an_entry_*
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "schema/ddl.h"
#include "schema/description.h"
#include "spcbase/testkit/private_server.h"
#include "spcbase/testkit/raw_odbc.h"
#include "spcbase/testkit/raw_sqlite.h"

namespace {

using Row = std::vector<std::optional<std::string>>;

/// A database with the schema in it, as this test sees it.
class LiveDatabase {
 public:
  LiveDatabase() = default;
  LiveDatabase(const LiveDatabase&) = delete;
  LiveDatabase& operator=(const LiveDatabase&) = delete;
  virtual ~LiveDatabase() = default;
  virtual void execute(const std::string& statement) = 0;
  virtual std::vector<Row> rows(const std::string& statement) = 0;
};

class LiveSqlite : public LiveDatabase {
 public:
  LiveSqlite() { execute("PRAGMA foreign_keys = ON"); }
  void execute(const std::string& statement) override { database_.execute(statement); }
  std::vector<Row> rows(const std::string& statement) override { return database_.rows(statement); }

 private:
  test_support::RawSqlite database_{":memory:"};
};

class LiveMariaDb : public LiveDatabase {
 public:
  LiveMariaDb()
      : database_(test_support::PrivateMariaDb::shared().create_database()),
        connection_(database_.odbc_connect_text()) {}
  void execute(const std::string& statement) override { connection_.execute(statement); }
  std::vector<Row> rows(const std::string& statement) override { return connection_.rows(statement); }

 private:
  test_support::TestDatabase database_;
  test_support::RawOdbc connection_;
};

class LiveSchema : public testing::TestWithParam<schema::Server> {
 protected:
  void SetUp() override {
    if (GetParam() == schema::Server::sqlite) {
      database_ = std::make_unique<LiveSqlite>();
    } else {
      database_ = std::make_unique<LiveMariaDb>();
    }
    for (const std::string& statement : schema::create_statements(GetParam()))
      execute(statement);
  }

  void execute(const std::string& statement) { database_->execute(statement); }
  std::vector<Row> rows(const std::string& statement) { return database_->rows(statement); }
  std::string value(const std::string& statement) { return rows(statement).at(0).at(0).value_or("null"); }

  bool refuses(const std::string& statement) {
    try {
      execute(statement);
      return false;
    } catch (const std::runtime_error&) {
      return true;
    }
  }

  void expect_one_row_for_each(const std::string& insert) {
    EXPECT_NO_THROW(execute(insert));
    EXPECT_TRUE(refuses(insert)) << insert;
  }

 private:
  std::unique_ptr<LiveDatabase> database_;
};

std::string server_name(const testing::TestParamInfo<schema::Server>& parameter) {
  return std::string(schema::name_of(parameter.param));
}
INSTANTIATE_TEST_SUITE_P(On, LiveSchema, testing::Values(schema::Server::sqlite, schema::Server::mysql), server_name);

std::string repeated(std::string_view text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i)
    all += text;
  return all;
}

/// An insert of one row with `text` in one column and the least the table asks for in the others.
std::string insert_with(const schema::Table& table, const schema::Column& filled, const std::string& text) {
  std::string names(filled.name);
  std::string values = "'" + text + "'";
  for (const schema::Column& column : table.columns) {
    const bool left_out = column.nullable || column.type == schema::ColumnType::auto_id ||
                          !column.default_text.empty() || column.name == filled.name;
    if (left_out) continue;
    names += ", " + std::string(column.name);
    values += column.type == schema::ColumnType::text ? ", 'x'" : ", 7";
  }
  return "INSERT INTO " + std::string(table.name) + " (" + names + ") VALUES (" + values + ")";
}

TEST_P(LiveSchema, has_every_described_column) {
  for (const schema::RequiredObject& object : schema::required_objects()) {
    for (const std::string_view column : object.columns) {
      const std::string name = std::string(object.name) + "." + std::string(column);
      EXPECT_NO_THROW(rows("SELECT " + name + " FROM " + std::string(object.name))) << name;
    }
  }
}

TEST_P(LiveSchema, can_be_dropped_and_created_again) {
  for (const std::string& statement : schema::drop_statements(GetParam()))
    execute(statement);
  EXPECT_TRUE(refuses("SELECT * FROM CSVALUEV"));
  EXPECT_TRUE(refuses("SELECT * FROM CSNODE"));
  for (const std::string& statement : schema::drop_statements(GetParam()))
    execute(statement);
  for (const std::string& statement : schema::create_statements(GetParam()))
    execute(statement);
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSVALUEV"), "0");
}

TEST_P(LiveSchema, refuses_a_second_row_of_one_key) {
  expect_one_row_for_each("INSERT INTO CSOBJREV (OBJID, OBJTYPE, REVISION) VALUES (1, 2, 3)");
  expect_one_row_for_each("INSERT INTO CSREVDAT (REVID) SELECT MAX(REVID) FROM CSOBJREV");
  expect_one_row_for_each("INSERT INTO CSVDAT (SAMPID, CHRTID, PIECENO, VARVALUE) VALUES (1, 2, 3, 4.5)");
  expect_one_row_for_each("INSERT INTO CSDEFDAT (SAMPID, CHRTID, PIECENO) VALUES (1, 2, 3)");
  expect_one_row_for_each("INSERT INTO CSDEFTOT (SAMPID, CHRTID) VALUES (1, 2)");
  expect_one_row_for_each("INSERT INTO CSVINL (LABELID, VALUEID) VALUES (1, 2)");
  expect_one_row_for_each("INSERT INTO CSSPAPPR (SAMPID) VALUES (1)");
  expect_one_row_for_each("INSERT INTO CSSAMP (SAMPID) VALUES (1)");
  expect_one_row_for_each("INSERT INTO CSMOPB (MONID) VALUES (1)");
  expect_one_row_for_each("INSERT INTO CSINI (QUAL, SECT, KYWORD, SEQNO) VALUES ('SYSTEM', 'SETTINGS', 'k', 1)");
}

TEST_P(LiveSchema, refuses_a_second_row_of_one_link) {
  expect_one_row_for_each("INSERT INTO CSCINP (PROFID, CHRTID) VALUES (1, 2)");
  expect_one_row_for_each("INSERT INTO CSLINP (PROFID, LABELID) VALUES (1, 2)");
  expect_one_row_for_each("INSERT INTO CSMINN (NODEID, MONID) VALUES (1, 2)");
  expect_one_row_for_each("INSERT INTO CSPINN (NODEID, PROFID) VALUES (1, 2)");
  expect_one_row_for_each("INSERT INTO CSUINP (PROFID, USERID) VALUES (1, 2)");
  expect_one_row_for_each("INSERT INTO CSGINP (PROFID, GROUPID) VALUES (1, 2)");
  expect_one_row_for_each("INSERT INTO CSUSGP (GROUPID, USERID) VALUES (1, 2)");
  expect_one_row_for_each("INSERT INTO CSUINEDB (EXDBID, USERID) VALUES (1, 2)");
  expect_one_row_for_each("INSERT INTO CSGINEDB (EXDBID, GROUPID) VALUES (1, 2)");
}

TEST_P(LiveSchema, refuses_a_second_label_value_also_where_characteristic_or_piece_is_null) {
  const std::string insert = "INSERT INTO CSLDAT (SAMPID, CHRTID, LABELID, PIECENO, LABVALUE) VALUES ";
  expect_one_row_for_each(insert + "(1, NULL, 5, NULL, 'a')");
  expect_one_row_for_each(insert + "(1, NULL, 5, 1, 'a')");
  expect_one_row_for_each(insert + "(1, NULL, 5, 2, 'a')");
  expect_one_row_for_each(insert + "(1, 9, 5, NULL, 'a')");
  expect_one_row_for_each(insert + "(1, 9, 5, 1, 'a')");
  expect_one_row_for_each(insert + "(1, NULL, 6, NULL, 'a')");
  expect_one_row_for_each(insert + "(2, NULL, 5, NULL, 'a')");
  EXPECT_TRUE(refuses(insert + "(2, NULL, 5, NULL, 'another text')"));
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSLDAT"), "7");
  EXPECT_EQ(rows("SELECT * FROM CSLDAT").front().size(), 5U) << "helper columns must stay out of sight";
}

TEST_P(LiveSchema, the_database_assigns_the_revision_id) {
  execute("INSERT INTO CSOBJREV (OBJID, OBJTYPE, REVISION) VALUES (1, 2, 1)");
  execute("INSERT INTO CSOBJREV (OBJID, OBJTYPE, REVISION) VALUES (1, 2, 2)");
  EXPECT_EQ(value("SELECT COUNT(DISTINCT REVID) FROM CSOBJREV WHERE REVID > 0"), "2");
}

TEST_P(LiveSchema, a_revision_id_is_not_given_out_again) {
  execute("INSERT INTO CSOBJREV (OBJID, OBJTYPE, REVISION) VALUES (1, 2, 1)");
  const std::string first = value("SELECT MAX(REVID) FROM CSOBJREV");
  execute("DELETE FROM CSOBJREV");
  execute("INSERT INTO CSOBJREV (OBJID, OBJTYPE, REVISION) VALUES (1, 2, 1)");
  EXPECT_GT(std::stoi(value("SELECT MAX(REVID) FROM CSOBJREV")), std::stoi(first));
}

TEST_P(LiveSchema, a_payload_needs_its_revision) { EXPECT_TRUE(refuses("INSERT INTO CSREVDAT (REVID) VALUES (4711)")); }

TEST_P(LiveSchema, keeps_the_width_of_every_text) {
  int texts = 0;
  for (const schema::Table& table : schema::tables()) {
    for (const schema::Column& column : table.columns) {
      if (column.type != schema::ColumnType::text) continue;
      const std::string name = std::string(table.name) + "." + std::string(column.name);
      EXPECT_TRUE(refuses(insert_with(table, column, repeated("\U0001D11E", column.width_chars + 1)))) << name;
      EXPECT_NO_THROW(execute(insert_with(table, column, repeated("\U0001D11E", column.width_chars)))) << name;
      EXPECT_EQ(value("SELECT COUNT(*) FROM " + std::string(table.name)), "1") << name;
      execute("DELETE FROM " + std::string(table.name));
      ++texts;
    }
  }
  EXPECT_GT(texts, 40);
}

TEST_P(LiveSchema, keeps_milliseconds) {
  execute("INSERT INTO CSSAMP (SAMPID, CTIME) VALUES (1, '2024-02-03 04:05:06.123')");
  EXPECT_EQ(value("SELECT CTIME FROM CSSAMP"), "2024-02-03 04:05:06.123");
  execute("INSERT INTO CSSAMP (SAMPID, CTIME) VALUES (2, '1899-12-30 23:59:59.999')");
  EXPECT_EQ(value("SELECT CTIME FROM CSSAMP WHERE SAMPID = 2"), "1899-12-30 23:59:59.999");
}

TEST_P(LiveSchema, views_show_only_rows_without_a_deletion_mark) {
  for (const schema::View& view : schema::views()) {
    const schema::Table& table = *schema::find_table(view.table);
    execute(insert_with(table, *table.find("VFLG"), "D"));
    EXPECT_EQ(value("SELECT COUNT(*) FROM " + std::string(view.name)), "0") << view.name;
    execute("UPDATE " + std::string(table.name) + " SET VFLG = NULL");
    EXPECT_EQ(value("SELECT COUNT(*) FROM " + std::string(view.name)), "1") << view.name;
  }
}

TEST_P(LiveSchema, takes_an_insert_through_the_view_of_values) {
  execute("INSERT INTO CSVALUEV (VALUEID, NAME) VALUES (3, 'O''Hara')");
  EXPECT_EQ(value("SELECT NAME FROM CSVALUE WHERE VALUEID = 3 AND VFLG IS NULL"), "O'Hara");
  EXPECT_TRUE(refuses("INSERT INTO CSVALUEV (VALUEID, NAME) VALUES (3, 'double')"));
}

TEST_P(LiveSchema, runs_the_joins_that_name_columns_without_a_table) {
  EXPECT_NO_THROW(
      rows("SELECT PROFID, CSCINP.CHRTID, SEQNO, NAME, DESCR, CTYPE FROM CSCINP, CSCHRTV "
           "WHERE CSCINP.CHRTID=CSCHRTV.CHRTID AND PROFID=1"));
  EXPECT_NO_THROW(
      rows("SELECT PROFID, CSLINP.LABELID, SEQNO, ALFLG, LTYPE, NAME, LISTTYPE FROM CSLINP, CSLABELV "
           "WHERE CSLINP.LABELID=CSLABELV.LABELID AND PROFID=1 AND ALFLG<>'YES'"));
  EXPECT_NO_THROW(
      rows("SELECT CSOBJREV.REVID, OBJID, OBJTYPE, REVISION, MAJORVER, MINORVER, FLAG, CTIME, CUSERID, "
           "CUSER, CREASON, ALEVEL, ATYPE, ATIME, AUSERID, AUSER, AREASON, DATA "
           "FROM CSOBJREV LEFT JOIN CSREVDAT ON CSOBJREV.REVID = CSREVDAT.REVID"));
  EXPECT_NO_THROW(
      rows("SELECT CSMONV.MONID, CSMONV.NAME, CSMINNV.NODEID FROM CSMINNV,CSMONV "
           "WHERE CSMONV.MONID = CSMINNV.MONID AND NODEID = 1 AND NAME = 'x'"));
  EXPECT_NO_THROW(
      rows("SELECT CSPROFV.PROFID, CSPROFV.NAME, CSPINNV.NODEID FROM CSPINNV,CSPROFV "
           "WHERE CSPROFV.PROFID = CSPINNV.PROFID AND NODEID = 1 AND NAME = 'x'"));
  EXPECT_NO_THROW(
      rows("SELECT CSVINL.LABELID, CSVINL.VALUEID FROM CSVINL, CSVALUE "
           "WHERE CSVINL.VALUEID = CSVALUE.VALUEID AND CSVINL.LABELID = 1 AND CSVALUE.NAME = 'x'"));
}

TEST_P(LiveSchema, compares_texts_exactly) {
  execute("INSERT INTO CSVALUE (VALUEID, NAME) VALUES (1, 'resume')");
  for (const char* other : {"Resume", "résumé", "resume ", " resume"}) {
    EXPECT_EQ(value(std::string("SELECT COUNT(*) FROM CSVALUE WHERE NAME = '") + other + "'"), "0") << other;
  }
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSVALUE WHERE NAME = 'resume'"), "1");
}

TEST_P(LiveSchema, running_numbers_start_with_one_row_of_0) {
  for (const schema::RunningNumber& number : schema::running_numbers()) {
    const std::vector<Row> all = rows("SELECT * FROM " + std::string(number.counter));
    ASSERT_EQ(all.size(), 1U) << number.counter;
    EXPECT_EQ(all.front(), Row{"0"}) << number.counter;
  }
}

TEST_P(LiveSchema, running_number_tables_take_a_row_without_column_names) {
  execute("DELETE FROM CSSPRN");
  execute("INSERT INTO CSSPRN VALUES (12)");
  EXPECT_EQ(value("SELECT MAXNO FROM CSSPRN"), "12");
}

TEST_P(LiveSchema, an_id_that_was_forgotten_is_refused_and_not_assigned) {
  for (const char* insert : {"INSERT INTO CSPROF (PROFID) VALUES (NULL)", "INSERT INTO CSPROF (NAME) VALUES ('a')",
                             "INSERT INTO CSVALUEV (NAME) VALUES ('a')"}) {
    EXPECT_TRUE(refuses(insert)) << insert;
  }
}

TEST_P(LiveSchema, an_entry_label_needs_no_flag_but_never_has_a_null_one) {
  execute("INSERT INTO CSLINP (PROFID, LABELID) VALUES (1, 2)");
  EXPECT_EQ(value("SELECT ALFLG FROM CSLINP WHERE ALFLG<>'YES'"), "NO");
  EXPECT_TRUE(refuses("INSERT INTO CSLINP (PROFID, LABELID, ALFLG) VALUES (1, 3, NULL)"));
}

TEST_P(LiveSchema, a_measured_value_is_never_null) {
  EXPECT_TRUE(refuses("INSERT INTO CSVDAT (SAMPID, CHRTID, PIECENO, VARVALUE) VALUES (1, 2, 3, NULL)"));
}

}  // namespace
