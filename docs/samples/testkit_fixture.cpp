// A module's tests with GoogleTest: each runs on SQLite and on a private MariaDB server.
#include <gtest/gtest.h>

#include "spcbase/testkit/database_fixture.h"
#include "spcbase/testkit/plant.h"

namespace {

class Stations : public test_support::DatabaseTest {};

TEST_P(Stations, are_seen_by_others_after_the_commit_only) {
  AutoODBCTransaction transaction(db(), true);
  const int paint = plant::Builder(db()).add_station("Paint");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSSTN"), "0");  // beside the connection under test
  transaction.commit();
  EXPECT_EQ(value("SELECT NAME FROM CSSTN WHERE STNID = " + std::to_string(paint)), "Paint");
}

TEST_P(Stations, are_none_in_a_fresh_database) {
  EXPECT_EQ(value("SELECT NAME FROM CSSTN"), "no row");
  EXPECT_EQ(plant::Builder(*second_connection()).add_station("Forge 2"), 1);
}

INSTANTIATE_TEST_SUITE_P(Servers, Stations, test_support::main_servers(), test_support::server_name);

}  // namespace
