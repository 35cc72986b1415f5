// Plan
//   A fresh database has the schema, no rows, and running numbers of 0, whatever was in the one before
//   Two at a time are two; a spoiled one is given to nobody after it
//   value tells a null, no row and an empty text apart; a refused statement throws
//   open connects, and its failure is one that a test program shows
#include "spcbase/testkit/schema_database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "spcbase/testkit/database_fixture.h"

namespace test_support {
namespace {

class SchemaDatabaseOn : public testing::TestWithParam<ServerKind> {};

INSTANTIATE_TEST_SUITE_P(Servers, SchemaDatabaseOn, all_servers(), server_name);

constexpr const char* add_station = "INSERT INTO CSSTN (STNID, NAME) VALUES (1, 'Forge 2')";
constexpr const char* count_stations = "SELECT COUNT(*) FROM CSSTN";
constexpr const char* highest_station = "SELECT MAXNO FROM CSSTRN";

TEST_P(SchemaDatabaseOn, is_fresh_whatever_stood_in_the_one_before) {
  {
    SchemaDatabase former(GetParam());
    former.execute(add_station);
    former.execute("UPDATE CSSTRN SET MAXNO = 7");
  }
  SchemaDatabase database(GetParam());
  EXPECT_EQ(database.value(count_stations), "0");
  EXPECT_EQ(database.value(highest_station), "0");
}

TEST_P(SchemaDatabaseOn, is_whole_again_after_its_rows_are_gone) {
  {
    SchemaDatabase former(GetParam());
    former.execute("DELETE FROM CSSTRN");
    former.execute("INSERT INTO CSSPRN VALUES (3)");
  }
  SchemaDatabase database(GetParam());
  EXPECT_EQ(database.rows(highest_station).size(), 1U) << "a counter without its row gets it again";
  EXPECT_EQ(database.rows("SELECT MAXNO FROM CSSPRN").size(), 1U) << "a counter with two rows has one again";
}

TEST_P(SchemaDatabaseOn, two_at_a_time_are_two) {
  SchemaDatabase first(GetParam());
  first.execute(add_station);
  SchemaDatabase second(GetParam());
  EXPECT_EQ(second.value(count_stations), "0");
  EXPECT_EQ(first.value(count_stations), "1");
  EXPECT_NE(first.connect_text(), second.connect_text());
}

TEST_P(SchemaDatabaseOn, a_spoiled_one_is_given_to_nobody_after_it) {
  {
    SchemaDatabase former(GetParam());
    former.spoil();
    former.execute("DROP TABLE CSVDAT");
  }
  SchemaDatabase database(GetParam());
  EXPECT_EQ(database.value("SELECT COUNT(*) FROM CSVDAT"), "0");
}

TEST_P(SchemaDatabaseOn, tells_a_null_no_row_and_an_empty_text_apart) {
  SchemaDatabase database(GetParam());
  EXPECT_EQ(database.value("SELECT NULL"), "NULL");
  EXPECT_EQ(database.value("SELECT NAME FROM CSSTN"), "no row");
  EXPECT_EQ(database.value("SELECT ''"), "");
  database.execute(add_station);
  EXPECT_EQ(database.rows("SELECT STNID, NAME, VFLG FROM CSSTN"),
            (std::vector<SchemaDatabase::Row>{{"1", "Forge 2", std::nullopt}}));
}

TEST_P(SchemaDatabaseOn, a_refused_statement_throws_with_its_text) {
  SchemaDatabase database(GetParam());
  try {
    database.execute("DELETE FROM NOWHERE");
    FAIL() << "the statement was not refused";
  } catch (const std::runtime_error& failure) {
    EXPECT_THAT(failure.what(), testing::EndsWith(" in: DELETE FROM NOWHERE"));
  }
}

TEST_P(SchemaDatabaseOn, open_connects_to_it_and_both_see_the_same) {
  SchemaDatabase database(GetParam());
  EXPECT_EQ(database.kind(), GetParam());
  CDatabaseEx db;
  database.open(db);
  db.ExecuteSQL(add_station);
  EXPECT_EQ(database.value("SELECT NAME FROM CSSTN"), "Forge 2");
}

TEST_P(SchemaDatabaseOn, open_fails_with_a_text_that_a_test_program_shows) {
  const SchemaDatabase database(GetParam());
  CDatabaseEx db;
  database.open(db);
  try {
    database.open(db);
    FAIL() << "a connection was opened twice";
  } catch (const std::runtime_error& failure) {
    EXPECT_STREQ(failure.what(), "The database is connected already.");
  }
}

/// The fixture itself.
class Fixture : public DatabaseTest {};

INSTANTIATE_TEST_SUITE_P(Servers, Fixture, all_servers(), server_name);

TEST_P(Fixture, has_a_connection_another_one_and_a_view_from_beside) {
  EXPECT_EQ(kind(), database().kind());
  const auto other = second_connection();
  ASSERT_TRUE(db().BeginTrans());
  db().ExecuteSQL(add_station);
  EXPECT_EQ(value(count_stations), "0");
  ASSERT_TRUE(db().CommitTrans());
  EXPECT_EQ(value(count_stations), "1");
  other->ExecuteSQL("DELETE FROM CSSTN");
  EXPECT_EQ(value(count_stations), "0");
}

TEST(server_name, is_that_of_the_kind) {
  EXPECT_STREQ(name_of(ServerKind::sqlite), "sqlite");
  EXPECT_STREQ(name_of(ServerKind::mariadb), "mariadb");
  EXPECT_STREQ(name_of(ServerKind::sqlite_odbc), "sqlite_odbc");
  EXPECT_EQ(server_name({ServerKind::mariadb, 1}), "mariadb");
}

}  // namespace
}  // namespace test_support
