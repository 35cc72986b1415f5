// Plan, on SQLite and on a private MariaDB server, each of which leads back to itself as the outside database
//   test: server, syntax, names, quotes, time, for both kinds; JSON; --save stores what was learnt, without it nothing
//     is stored
//   rewrite: all, one kind, none; the failed ones with their reasons, which stand as they were; progress; old versions
//   come out in
//     the present form; removed ones are passed over
//   Bad input: no connection string, a driver that is none, a login that is refused, a future version
#include <gtest/gtest.h>

#include <regex>
#include <sstream>

#include "tests/tools/source_fixture.h"
#include "tools/spc/command.h"

namespace {

using command_test::Answer;

class SourceOutside : public command_test::OnSources {
 protected:
  bool on_sqlite() const { return kind() == test_support::ServerKind::sqlite; }
};

INSTANTIATE_TEST_SUITE_P(Servers, SourceOutside, test_support::main_servers(), test_support::server_name);

TEST_P(SourceOutside, test_says_what_the_database_is_and_how_long_that_took) {
  add_live("Self");
  const Answer tested = source({"test", "Self"});
  EXPECT_EQ(tested.status, 0) << tested;
  const std::string server = on_sqlite() ? "SQLite" : "MariaDB";
  EXPECT_TRUE(std::regex_search(tested.out, std::regex("source  data source 1 Self \\(OLE DB\\)\nserver  [^\n]*" +
                                                       server + "[^\n]*[0-9]+\\.[0-9]+")))
      << tested;
  EXPECT_TRUE(tested.says("\nsyntax  0, escape clauses of ODBC, or nothing known\n")) << tested;
  EXPECT_TRUE(tested.says(on_sqlite() ? "\nquotes  \"name\"\n" : "\nquotes  `name`\n")) << tested;
  EXPECT_TRUE(std::regex_search(tested.out, std::regex("\ntime    [0-9.]+ ms to connect, [0-9.]+ ms to ask\n")))
      << tested;
  EXPECT_TRUE(tested.says("\nstored  no: --save stores what was learnt\n")) << tested;
}

TEST_P(SourceOutside, test_stores_what_it_learnt_when_asked_to) {
  add_live("Self");
  EXPECT_EQ(source({"test", "1"}).status, 0);
  EXPECT_EQ(source_json({"show", "1"})["version"].number, 0) << "nothing is stored";
  const auto tested = source_json({"test", "1", "--save"});
  EXPECT_TRUE(tested["saved"].truth);
  EXPECT_GE(tested["connecting_ms"].number, 0);
  const auto shown = source_json({"show", "1"});
  EXPECT_EQ(shown["version"].number, 4);
  EXPECT_EQ(shown["quote_prefix"].text, tested["quote_prefix"].text);
  EXPECT_NE(shown["quote_prefix"].text, "");
  EXPECT_NE(shown["internal_option"].number, 0);
}

TEST_P(SourceOutside, test_learns_about_an_ado_net_source_too) {
  add_live("Self", {"--kind", "adonet", "--provider", "System.Data.Odbc"});
  const Answer tested = source({"test", "1", "--save"});
  EXPECT_EQ(tested.status, 0) << tested;
  EXPECT_TRUE(tested.says("\nstored  yes\n")) << tested;
  const auto shown = source_json({"show", "1"});
  EXPECT_EQ(shown["version"].number, 0);
  EXPECT_NE(shown["quote_prefix"].text, "");
  EXPECT_EQ(shown["syntax_kind"].number, 0);
}

TEST_P(SourceOutside, test_tells_why_a_database_cannot_be_opened) {
  add("empty");
  EXPECT_EQ(source({"test", "empty"}).err,
            "spc: cannot test the data source empty: it has no connection string\n"
            "     spc source edit gives it one with --connection-string.\n");
  add("no driver", {"--connection-string", "Driver={None};UID=anna", "--password-fd", "3"});
  const Answer refused = source({"test", "no driver"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_TRUE(refused.complains("spc: cannot test the data source no driver: ")) << refused;
  EXPECT_TRUE(refused.complains("SQLSTATE ")) << refused;
  EXPECT_TRUE(refused.complains("     The connection string is Driver={None};UID=anna;PWD=***\n")) << refused;
  add("no ODBC", {"--kind", "adonet", "--connection-string", "Server=x;Database=y"});
  const Answer kept = source({"test", "no ODBC"});
  EXPECT_TRUE(kept.complains("names neither a driver (Driver=...) nor a data source (DSN=...)")) << kept;
  EXPECT_TRUE(
      kept.complains("     It is one for programs that use OLE DB or ADO.NET. Here a data source is opened over "
                     "ODBC alone, by Driver={...}, DSN=... or sqlite:FILE.\n"))
      << kept;
  EXPECT_TRUE(refused.complains("     odbcinst -q -d lists the installed drivers")) << refused;
}

TEST_P(SourceOutside, rewrite_saves_all_of_both_kinds) {
  EXPECT_EQ(source({"rewrite"}).out, "Found 0 data sources, saved 0\n");
  add("a", {"--connection-string", "DSN=a", "--password-fd", "3"});
  add("b", {"--kind", "adonet"});
  add("c");
  source({"remove", "c"});
  const std::string removed = definition(3);
  EXPECT_EQ(source({"rewrite"}).out, "Found 2 data sources, saved 2\n");
  EXPECT_EQ(source({"rewrite", "--kind", "adonet"}).out, "Found 1 data source, saved 1\n");
  EXPECT_EQ(definition(3), removed);
  EXPECT_EQ(source_json({"show", "a"})["connection_string"].text, "DSN=a;PWD=***");
}

TEST_P(SourceOutside, rewrite_brings_old_definitions_into_the_present_form) {
  add("old");
  put_definition(1,
                 "<external_database version=\"2\"><connection_string>DSN=a;PWD=secret</connection_string>"
                 "<identifier_quote>`</identifier_quote></external_database>");
  EXPECT_EQ(source({"rewrite"}).status, 0);
  EXPECT_EQ(definition(1).find("secret"), std::string::npos) << definition(1);
  EXPECT_NE(definition(1).find("version=\"2\"><connection_string_2>"), std::string::npos) << definition(1);
  EXPECT_NE(definition(1).find("<quote_prefix>`</quote_prefix><quote_suffix>`</quote_suffix>"), std::string::npos);
  EXPECT_EQ(source_json({"show", "1"})["connection_string"].text, "DSN=a;PWD=***");
}

TEST_P(SourceOutside, rewrite_ends_with_the_failed_ones_and_their_reasons) {
  for (const char* name : {"good", "damaged", "future"})
    add(name);
  add("other kind", {"--kind", "adonet"});
  put_definition(2, "<external_database version=\"");
  put_definition(3, "<external_database version=\"9\"/>");
  put_definition(4, "<external_database version=\"0\"><flag1>0</flag1></external_database>");
  const std::string future = definition(3);
  const Answer rewritten = source({"rewrite"});
  EXPECT_EQ(rewritten.status, 1);
  EXPECT_TRUE(rewritten.out.starts_with("Found 4 data sources, saved 1\n  id  kind     name        reason\n"))
      << rewritten;
  EXPECT_TRUE(rewritten.says("\n   2  OLE DB   damaged     its XML cannot be read: Load xml failed:")) << rewritten;
  EXPECT_TRUE(
      rewritten.says("\n   3  OLE DB   future      the definition has version 9, and this program knows those "
                     "up to 4\n"))
      << rewritten;
  EXPECT_TRUE(rewritten.says("\n   4  ADO.NET  other kind  its XML is a definition of the other kind (Not OLE DB"))
      << rewritten;
  EXPECT_EQ(rewritten.err,
            "spc: cannot rewrite all data sources: 3 of 4 failed\n"
            "     They stand as they were; spc source show ID tells more of each.\n");
  EXPECT_EQ(definition(3), future);
  const auto told = source_json({"rewrite"});
  EXPECT_EQ(told["found"].number, 4);
  EXPECT_EQ(told["saved"].number, 1);
  ASSERT_EQ(told["failed"].items.size(), 3U);
  EXPECT_EQ(told["failed"].items[0]["id"].number, 2);
}

TEST_P(SourceOutside, rewrite_shows_how_far_it_is_when_somebody_looks_on) {
  for (const char* name : {"a", "b"})
    add(name);
  const std::string connect = database().connect_text();
  const std::vector<const char*> arguments = {"spc", "--connect", connect.c_str(), "source", "rewrite"};
  std::ostringstream out;
  std::ostringstream err;
  EXPECT_EQ(spc::run(static_cast<int>(arguments.size()), arguments.data(), out, err, true), 0);
  EXPECT_EQ(out.str(), "Found 2 data sources, saved 2\n");
  EXPECT_NE(err.str().find("\rrewriting [###############               ] 1/2"), std::string::npos) << err.str();
  EXPECT_TRUE(err.str().ends_with("\r\x1b[K")) << "the bar is wiped";
}

TEST_P(SourceOutside, a_future_version_can_be_tested_and_is_not_saved) {
  add("future", {"--connection-string", "sqlite::memory:"});
  put_definition(1, std::regex_replace(definition(1), std::regex("version=\"0\""), "version=\"5\""));
  EXPECT_EQ(source({"test", "1"}).status, 0);
  EXPECT_TRUE(source({"test", "1", "--save"}).complains("the definition has version 5"));
  EXPECT_EQ(source_json({"show", "1"})["version"].number, 5);
}

}  // namespace
