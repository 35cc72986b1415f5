// Plan
//   facts       of SQLite, of its ODBC driver, of MariaDB; scripted of SQL Server, Oracle, Access
//   grammar     each level brings those below it
//   new types   of SQL Server from version 10 on, and of nobody else
//   refusals    a connection that is not open, answers that are missing, a blank as quote
#include "spcbase/companion/oledb_connection.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "tests/platform/database/database_under_test.h"
#include "tests/support/scripted_servers.h"

namespace {

using database_test::caught;
using database_test::Server;
using test_support::open_scripted;
using test_support::ServerFacts;

/// The five texts in their order.
std::string names_of(const OLEDBConnection& facts) {
  return std::string(facts.catalog_separator.view()) + "," + facts.schema_separator.GetString() + "," +
         facts.table_separator.GetString() + "," + facts.quote_prefix.GetString() + "," +
         facts.quote_suffix.GetString();
}

OLEDBConnection scripted(const ServerFacts& server) {
  CDatabase database;
  open_scripted(database, server);
  return OLEDBConnection(database);
}

class OLEDBConnectionFacts : public database_test::DatabaseTest {};

TEST_P(OLEDBConnectionFacts, are_those_of_the_server) {
  const OLEDBConnection facts(db);
  EXPECT_FALSE(facts.is_msjet());
  EXPECT_FALSE(facts.has_sql_server_new_datetime_type());
  EXPECT_NE(facts.sql_support & 0x100U, 0U) << "escape clauses";
  EXPECT_NE(facts.sql_support & 0xD0U, 0U) << "ANSI SQL";
  EXPECT_EQ(facts.quote_prefix, facts.quote_suffix);
  switch (GetParam()) {
    case Server::sqlite:
      EXPECT_EQ(names_of(facts), ",.,.,`,`");
      break;
    case Server::sqlite_odbc:
      EXPECT_EQ(names_of(facts), ",,.,\",\"");
      break;
    case Server::mariadb:
      EXPECT_EQ(names_of(facts), ".,,.,`,`");
      break;
  }
}

TEST_P(OLEDBConnectionFacts, stand_when_the_connection_is_closed) {
  const OLEDBConnection facts(db);
  db.Close();
  EXPECT_EQ(facts.table_separator, ".");
}

TEST_P(OLEDBConnectionFacts, name_tables_as_the_server_does) {
  create_things();
  const OLEDBConnection facts(db);
  const CString name = facts.quote_prefix + CString("THINGS") + facts.quote_suffix;
  const CString column = facts.quote_prefix + CString("ID") + facts.quote_suffix;
  db.ExecuteSQL(
      (CString("DELETE FROM ") + name + " WHERE " + name + facts.table_separator + column + " = 1").GetString());
}

TEST_P(OLEDBConnectionFacts, of_a_connection_that_is_not_open_are_refused) {
  db.Close();
  const auto failure = caught([&] { const OLEDBConnection facts(db); });
  EXPECT_EQ(failure.code, AFX_SQL_ERROR_CONNECT_FAIL);
  EXPECT_EQ(failure.text, "The database is not connected.");
}

INSTANTIATE_TEST_SUITE_P(Servers, OLEDBConnectionFacts, database_test::all_servers, database_test::server_name);

TEST(OLEDBConnection, that_is_made_of_nothing_knows_nothing) {
  const OLEDBConnection facts;
  EXPECT_FALSE(facts.is_msjet() || facts.has_sql_server_new_datetime_type());
  EXPECT_EQ(facts.sql_support, 0U);
  EXPECT_EQ(names_of(facts), ",,,,");
}

TEST(OLEDBConnection, tells_sql_server_by_its_name_and_the_new_types_by_its_version) {
  for (const char* version : {"08.00.2039", "09.00.5000", "9", "", "x10"})
    EXPECT_FALSE(scripted(test_support::sql_server(version)).has_sql_server_new_datetime_type()) << version;
  for (const char* version : {"10.00.1600", "10", "15.00.4153", "16.00.1000"})
    EXPECT_TRUE(scripted(test_support::sql_server(version)).has_sql_server_new_datetime_type()) << version;
  EXPECT_TRUE(scripted({"SQL Server", "15.00.2000"}).has_sql_server_new_datetime_type()) << "another driver's name";
  for (const char* name : {"Oracle", "PostgreSQL", "ACCESS", "MariaDB"})
    EXPECT_FALSE(scripted({name, "19.00.0000"}).has_sql_server_new_datetime_type()) << name;
  EXPECT_EQ(names_of(scripted(test_support::sql_server("15.00.4153"))), ".,.,.,\",\"");
}

TEST(OLEDBConnection, tells_a_jet_engine_by_its_name) {
  EXPECT_TRUE(scripted(test_support::access()).is_msjet());
  EXPECT_TRUE(scripted({"Access", "12.00.0000"}).is_msjet());
  EXPECT_TRUE(scripted({"MS Jet", "04.00.0000"}).is_msjet());
  for (const char* name : {"Oracle", "Microsoft SQL Server", "MariaDB", "JethroData", ""})
    EXPECT_FALSE(scripted({name, "4"}).is_msjet()) << name;
  EXPECT_EQ(names_of(scripted(test_support::access())), ".,,.,`,`");
}

TEST(OLEDBConnection, of_oracle_has_schemas_and_no_catalogs) {
  EXPECT_EQ(names_of(scripted(test_support::oracle())), ",.,.,\",\"");
}

TEST(OLEDBConnection, knows_each_level_of_the_grammar_with_those_below) {
  const auto support = [](unsigned odbc, unsigned ansi, const char* integrity) {
    ServerFacts server{"S", "1"};
    server.odbc_grammar = odbc;
    server.sql_grammar = ansi;
    server.integrity = integrity;
    return scripted(server).sql_support;
  };
  EXPECT_EQ(support(0, 0, "N"), 0x101U);
  EXPECT_EQ(support(1, 0, "N"), 0x103U);
  EXPECT_EQ(support(2, 0, "N"), 0x107U);
  EXPECT_EQ(support(0, 0, "Y"), 0x109U);
  EXPECT_EQ(support(0, 1, "N"), 0x111U);
  EXPECT_EQ(support(0, 2, "N"), 0x131U);
  EXPECT_EQ(support(0, 4, "N"), 0x171U);
  EXPECT_EQ(support(0, 8, "Y"), 0x1F9U);
}

TEST(OLEDBConnection, takes_a_blank_as_quote_for_names_that_cannot_be_quoted) {
  EXPECT_EQ(names_of(scripted({"S", "1", " "})), ".,.,.,,");
  EXPECT_EQ(names_of(scripted({"S", "1", ""})), ".,.,.,,");
}

TEST(OLEDBConnection, finds_catalogs_by_either_answer) {
  ServerFacts server{"S", "1"};
  server.has_catalogs = "N";
  EXPECT_EQ(scripted(server).catalog_separator, ".") << "they are used";
  server.catalog_usage = 0;
  EXPECT_EQ(scripted(server).catalog_separator, "") << "though a separator is named";
  server.has_catalogs = "Y";
  EXPECT_EQ(scripted(server).catalog_separator, ".");
  server.catalog_separator = ":";
  EXPECT_EQ(scripted(server).catalog_separator, ":");
  server.catalog_separator = "";
  EXPECT_EQ(scripted(server).catalog_separator, ".") << "the usual one where none is named";
}

TEST(OLEDBConnection, cannot_be_made_without_the_answers_that_every_driver_has) {
  for (const auto& [type, text] :
       {std::pair<unsigned short, const char*>{17, "The driver does not tell the name of its server."},
        {18, "The driver does not tell the version of its server."},
        {29, "The driver does not tell how names are quoted."}}) {
    auto script = test_support::script_of({"S", "1"});
    script->information_text(type, -1);
    CDatabase database;
    open_scripted(database, script);
    const auto failure = caught([&] { const OLEDBConnection facts(database); });
    EXPECT_EQ(failure.text, text);
  }
}

TEST(OLEDBConnection, does_without_the_answers_that_a_driver_refuses) {
  auto script = test_support::script_of({"S", "1"});
  for (const WORD type : std::initializer_list<WORD>{41, 73, 10003})
    script->information_text(type, -1, "Y");
  for (const WORD type : std::initializer_list<WORD>{15, 91, 92, 118})
    script->information(type, -1, 31);
  CDatabase database;
  open_scripted(database, script);
  const OLEDBConnection facts(database);
  EXPECT_EQ(names_of(facts), ",,.,\",\"");
  EXPECT_EQ(facts.sql_support, 0x101U);
}

}  // namespace
