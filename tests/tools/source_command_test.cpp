// Plan, on SQLite and on a private MariaDB server
//   add: both kinds, every field, ids from the running number; row and number in one transaction
//   list: live ones, removed ones too, one kind, what one user may see, JSON; one that cannot be read is listed
//   show: every field, JSON, XML; by number, by name, by a name of digits
//   edit: what is given and nothing else; a new password in the old one's place
//   remove: marks, again too; what cannot be read can be removed
//   Bad input: fields of the other kind, names that are taken, empty, ambiguous or unknown, no change, a damaged cipher
//     text, XML of the other kind, without version, that is none, of a future version, a row of no kind
#include "tests/tools/source_fixture.h"

#include <gtest/gtest.h>

namespace {

using command_test::Answer;

class SourceCommand : public command_test::OnSources {};

INSTANTIATE_TEST_SUITE_P(Servers, SourceCommand, test_support::main_servers(), test_support::server_name);

TEST_P(SourceCommand, add_takes_ids_from_the_running_number) {
  execute("UPDATE CSEXDBRN SET MAXNO = 40");
  const Answer first = add("Warehouse", {"--connection-string", "DSN=wh;UID=anna", "--password-fd", "3"});
  EXPECT_EQ(first.status, 0) << first;
  EXPECT_EQ(first.out, "Added data source 41 Warehouse (OLE DB), with a password\n");
  EXPECT_EQ(add("Plant", {"--kind", "adonet"}).out, "Added data source 42 Plant (ADO.NET), without a password\n");
  EXPECT_EQ(value("SELECT MAXNO FROM CSEXDBRN"), "42");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSEXDB WHERE VFLG IS NULL"), "2");
}

TEST_P(SourceCommand, add_takes_no_number_when_the_row_is_refused) {
  execute("UPDATE CSEXDBRN SET MAXNO = 6");
  execute("INSERT INTO CSEXDB (EXDBID, NAME, FLG1, FLG2) VALUES (7, 'there', 0, 0)");
  const Answer refused = add("Warehouse");
  EXPECT_EQ(refused.status, 1);
  EXPECT_TRUE(refused.complains("spc: cannot add the data source Warehouse: ")) << refused;
  EXPECT_TRUE(refused.complains("duplicate key")) << refused;
  EXPECT_EQ(value("SELECT MAXNO FROM CSEXDBRN"), "6");
}

TEST_P(SourceCommand, show_tells_every_field_of_an_ole_db_source) {
  EXPECT_EQ(add("Lager Süd",
                {"--description", "stock", "--type", "erp", "--flag", "5", "--option", "3", "--quote", "table,column",
                 "--connection-string", "DSN=wh;UID=anna", "--password-fd", "3", "--date-literal", "#%m/%d/%Y#"})
                .status,
            0);
  const Answer shown = source({"show", "Lager Süd"});
  EXPECT_EQ(shown.status, 0) << shown;
  for (const char* line :
       {"id             1\n", "kind           OLE DB\n", "name           Lager Süd\n", "description    stock\n",
        "type           erp\n", "flag           5\n", "state          live\n", "version        0\n",
        "connection     DSN=wh;UID=anna;PWD=***\n", "quoted         table, column\n", "names          not known\n",
        "quotes         none\n", "option         3\n", "known          0 (none)\n", "date           #%m/%d/%Y#\n",
        "concatenation  ||\n", "syntax         0, escape clauses of ODBC, or nothing known, literals of its own\n"})
    EXPECT_TRUE(shown.says(line)) << line << shown;
  const auto json = source_json({"show", "1"});
  EXPECT_EQ(json["connection_string"].text, "DSN=wh;UID=anna;PWD=***");
  EXPECT_TRUE(json["password"].truth);
  EXPECT_EQ(json["quote"].items.size(), 2U);
  EXPECT_EQ(json["option"].number, 3);
  EXPECT_EQ(json["syntax"]["date_literal"].text, "#%m/%d/%Y#");
  EXPECT_EQ(json["syntax"]["time_literal"].text, "TIME '%H:%M:%S'");
}

TEST_P(SourceCommand, show_tells_every_field_of_an_ado_net_source) {
  add("Plant", {"--kind", "adonet", "--provider", "Oracle.DataAccess.Client", "--timeout", "30", "--quote", "none",
                "--connection-string", "Data Source=x;User ID=sa", "--password-fd", "3"});
  const Answer shown = source({"show", "Plant"});
  for (const char* line : {"kind         ADO.NET\n", "provider     Oracle.DataAccess.Client\n", "timeout      30 s\n",
                           "quoted       none\n", "connection   Data Source=x;User ID=sa;Password=***\n",
                           "syntax       1, ANSI SQL, Oracle\n"})
    EXPECT_TRUE(shown.says(line)) << line << shown;
  const auto json = source_json({"show", "Plant"});
  EXPECT_EQ(json["provider"].text, "Oracle.DataAccess.Client");
  EXPECT_EQ(json["default_command_timeout"].number, 30);
  EXPECT_TRUE(json["is_oracle"].truth);
}

TEST_P(SourceCommand, show_prints_the_xml_with_its_password_hidden) {
  add("Warehouse", {"--connection-string", "DSN=wh", "--password-fd", "3"});
  const Answer shown = source({"show", "1", "--xml"});
  EXPECT_TRUE(shown.out.starts_with("<?xml version=\"1.0\" ?><external_database version=\"0\"><id>1</id>")) << shown;
  EXPECT_TRUE(shown.says("<connection_string_2>DSN=wh;PWD=***</connection_string_2>")) << shown;
}

TEST_P(SourceCommand, numbers_win_over_names) {
  add("2");
  add("other");
  EXPECT_TRUE(source({"show", "2"}).says("name         other\n"));
  EXPECT_TRUE(source({"show", "1"}).says("name         2\n"));
  add("77");
  EXPECT_TRUE(source({"show", "77"}).says("id           3\n")) << "a number that nobody has may be a name";
}

TEST_P(SourceCommand, list_shows_live_ones_and_with_all_the_removed_too) {
  EXPECT_EQ(source({"list"}).out, "There are no data sources to be seen.\n");
  add("Warehouse", {"--description", "stock", "--type", "erp"});
  add("Plant", {"--kind", "adonet"});
  add("Old");
  source({"remove", "Old"});
  execute("UPDATE CSEXDB SET MTIME = '2024-03-05 08:30:00'");
  EXPECT_EQ(source({"list"}).out,
            "id  kind     name       description  type  modified\n"
            "--  -------  ---------  -----------  ----  -------------------\n"
            " 1  OLE DB   Warehouse  stock        erp   2024-03-05 08:30:00\n"
            " 2  ADO.NET  Plant                         2024-03-05 08:30:00\n");
  EXPECT_TRUE(
      source({"list", "--all"}).says(" 3  OLE DB   Old                           2024-03-05 08:30:00  removed\n"));
  EXPECT_EQ(source_json({"list", "--kind", "adonet"}).items.size(), 1U);
  const auto all = source_json({"list", "--all"});
  ASSERT_EQ(all.items.size(), 3U);
  EXPECT_FALSE(all.items[0]["removed"].truth);
  EXPECT_TRUE(all.items[2]["removed"].truth);
}

TEST_P(SourceCommand, tells_local_times) {
  add("Warehouse");
  execute("UPDATE CSEXDB SET MTIME = '2024-07-05 08:30:00'");
  const Answer listed =
      command_test::run_in_zone("Europe/Berlin", {"--connect", database().connect_text(), "source", "list"});
  EXPECT_TRUE(listed.says("2024-07-05 10:30:00\n")) << listed;
}

TEST_P(SourceCommand, shows_a_user_what_that_user_may_see) {
  for (const char* name : {"for anna", "for the group", "for nobody"})
    add(name);
  execute("INSERT INTO CSUSER (USERID, NAME) VALUES (4, 'anna')");
  execute("INSERT INTO CSUINEDB (EXDBID, USERID) VALUES (1, 4)");
  execute("INSERT INTO CSUSGP (GROUPID, USERID) VALUES (9, 4)");
  execute("INSERT INTO CSGINEDB (EXDBID, GROUPID) VALUES (2, 9)");
  const auto seen = source_json({"list", "--as-user", "4"});
  ASSERT_EQ(seen.items.size(), 2U);
  EXPECT_EQ(seen.items[0]["name"].text, "for anna");
  EXPECT_EQ(seen.items[1]["name"].text, "for the group");
  EXPECT_EQ(source_json({"list"}).items.size(), 3U);
  EXPECT_TRUE(source({"show", "for nobody", "--as-user", "4"}).complains("there is no data source for nobody"));
  EXPECT_EQ(source({"list", "--as-user", "5"}).status, 1) << "a user who does not exist";
}

TEST_P(SourceCommand, edit_changes_what_is_given_and_keeps_the_rest) {
  add("Warehouse", {"--description", "stock", "--type", "erp", "--flag", "5", "--option", "3", "--connection-string",
                    "DSN=wh;PWD={in}", "--allow-password-in-arguments"});
  const Answer edited = source({"edit", "Warehouse", "--description", "all stock", "--name", "Store"});
  EXPECT_EQ(edited.out, "Changed data source 1 Store (OLE DB), with a password\n") << edited;
  const auto json = source_json({"show", "Store"});
  EXPECT_EQ(json["description"].text, "all stock");
  EXPECT_EQ(json["type"].text, "erp");
  EXPECT_EQ(json["flag"].number, 5);
  EXPECT_EQ(json["option"].number, 3);
  EXPECT_EQ(json["connection_string"].text, "DSN=wh;PWD=***");
  EXPECT_EQ(source({"edit", "1", "--connection-string", "DSN=other", "--no-password"}).out,
            "Changed data source 1 Store (OLE DB), without a password\n");
  EXPECT_EQ(source_json({"show", "1"})["connection_string"].text, "DSN=other");
}

TEST_P(SourceCommand, edit_sets_and_forgets_literals) {
  add("Warehouse", {"--concatenation", "+"});
  EXPECT_EQ(source_json({"edit", "1", "--time-literal", "t"})["syntax"]["concatenation"].text, "+");
  EXPECT_EQ(source_json({"edit", "1", "--default-syntax"})["syntax"].kind, json_check::Value::Kind::null);
}

TEST_P(SourceCommand, remove_marks_and_a_removed_one_stays_so) {
  add("Warehouse");
  EXPECT_EQ(source({"remove", "Warehouse"}).out, "Removed data source 1 Warehouse (OLE DB): its row stays, marked\n");
  EXPECT_EQ(value("SELECT VFLG FROM CSEXDB"), "D");
  const Answer again = source({"remove", "Warehouse"});
  EXPECT_EQ(again.status, 0) << again;
  EXPECT_EQ(again.out, "Removed data source 1 Warehouse (OLE DB): it was removed already\n");
  EXPECT_TRUE(source_json({"remove", "1"})["was_removed"].truth);
  EXPECT_EQ(source({"edit", "1", "--type", "x"}).out,
            "Changed the removed data source 1 Warehouse (OLE DB), without a password\n");
  EXPECT_EQ(value("SELECT VFLG FROM CSEXDB"), "D");
}

TEST_P(SourceCommand, a_name_may_be_used_again_when_its_data_source_was_removed) {
  add("Warehouse");
  EXPECT_EQ(add("Warehouse").err,
            "spc: cannot add the data source Warehouse: data source 1 Warehouse has this name already\n"
            "     Names tell data sources apart for people: give this one another.\n");
  source({"remove", "Warehouse"});
  EXPECT_EQ(add("Warehouse").status, 0);
  EXPECT_TRUE(source({"show", "Warehouse"}).says("id           2\n")) << "the live one";
  EXPECT_TRUE(source({"edit", "2", "--name", "Warehouse"}).says("Changed ")) << "its own name";
}

TEST_P(SourceCommand, refuses_a_name_that_several_have) {
  for (const char* name : {"a", "b", "c"})
    add(name);
  execute("UPDATE CSEXDB SET NAME = 'same' WHERE EXDBID <> 2");
  for (const char* task : {"show", "remove", "test"}) {
    const Answer refused = source({task, "same"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.complains("several data sources have this name: 1 or 3\n")) << refused;
  }
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSEXDB WHERE VFLG IS NULL"), "3");
}

TEST_P(SourceCommand, names_with_sql_in_them_find_what_they_name_and_change_nothing_else) {
  const std::vector<std::string> names = {"O'Brien", "[x]", "100%", "a\\'b", "' OR '1'='1", "\xE5\xB7\xA5\xE5\x8E\x82"};
  for (const auto& name : names)
    EXPECT_EQ(add(name).status, 0) << name;
  for (std::size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(source_json({"show", names[i]})["id"].number, static_cast<double>(i + 1)) << names[i];
    EXPECT_EQ(source({"remove", names[i]}).status, 0);
    EXPECT_EQ(value("SELECT COUNT(*) FROM CSEXDB WHERE VFLG IS NULL"), std::to_string(names.size() - i - 1));
  }
}

TEST_P(SourceCommand, tells_of_misuse) {
  add("Warehouse");
  for (const auto& [arguments, words] : std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"add", "x", "--timeout", "5"}, "--timeout is not for data sources of the kind OLE DB"},
           {{"add", "x", "--provider", "p"}, "--provider is not for data sources of the kind OLE DB"},
           {{"add", "x", "--kind", "adonet", "--option", "5"}, "--option is not for data sources of the kind ADO.NET"},
           {{"add", "x", "--kind", "odbc"}, "--kind"},
           {{"add", "x", "--quote", "table,rows"}, "--quote does not know rows"},
           {{"add", " "}, "the name is empty"},
           {{"edit", "1"}, "nothing is given that is to change"},
           {{"edit", "1", "--no-password"}, "--no-password does not take a password away"},
           {{"add", "x", "--no-password", "--ask-password"}, "--ask-password"}}) {
    const Answer refused = source(arguments);
    EXPECT_EQ(refused.status, 2) << refused;
    EXPECT_TRUE(refused.complains(words)) << words << refused;
  }
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSEXDB"), "1");
}

TEST_P(SourceCommand, tells_of_a_data_source_that_is_not_there) {
  EXPECT_EQ(source({"show", "Warehouse"}).err,
            "spc: cannot show the data source Warehouse: there is no data source Warehouse\n"
            "     spc source list shows those that there are; large and small letters differ.\n");
  EXPECT_EQ(source({"remove", "7"}).status, 1);
}

TEST_P(SourceCommand, tells_what_is_wrong_with_a_definition_that_cannot_be_read) {
  for (const char* name : {"cipher", "other kind", "no version", "no XML", "no text"})
    add(name);
  put_definition(1,
                 "<external_database version=\"4\"><connection_string_2>AQAAAEVERY</connection_string_2>"
                 "</external_database>");
  put_definition(2, "<external_database version=\"0\"><flag1>1</flag1></external_database>");
  put_definition(3, "<external_database/>");
  put_definition(4, "<external_database version=");
  put_definition(5, "<external_database version=\"0\"><option><x/></option></external_database>");
  for (const auto& [id, words] : std::vector<std::pair<std::string, std::string>>{
           {"1", "its connection string cannot be deciphered under the id 1 ("},
           {"2", "its XML is a definition of the other kind (Not OLE DB database connection.)"},
           {"3", "its XML has no version ("},
           {"4", "its XML cannot be read: Load xml failed:"},
           {"5", "its XML cannot be read: XML error."}}) {
    const Answer shown = source({"show", id});
    EXPECT_EQ(shown.status, 1);
    EXPECT_TRUE(shown.complains("spc: cannot show the data source " + id + ": " + words)) << shown;
    EXPECT_TRUE(shown.complains("Restore its row of CSEXDB from a backup, or remove the data source")) << shown;
  }
  EXPECT_EQ(source_json({"list"}).items.size(), 5U) << "they are listed";
  EXPECT_EQ(source({"remove", "cipher"}).status, 0) << "and can be removed";
}

TEST_P(SourceCommand, tells_of_a_row_of_no_kind) {
  execute("INSERT INTO CSEXDB (EXDBID, NAME, FLG1, FLG2) VALUES (7, 'what', 5, 0)");
  EXPECT_TRUE(source({"list"}).says(" 7  unknown (5)  what")) << source({"list"});
  EXPECT_TRUE(source({"show", "7"}).complains("its row says that it is of the kind 5"));
}

TEST_P(SourceCommand, shows_a_future_version_and_leaves_it_as_it_is) {
  add("Warehouse");
  const std::string future = "<external_database version=\"7\"><option>9</option><new/></external_database>";
  put_definition(1, future);
  EXPECT_TRUE(
      source({"show", "1"}).says("version      7, newer than this program knows: it may show less than there is\n"));
  const Answer edited = source({"edit", "1", "--type", "x"});
  EXPECT_EQ(edited.status, 1);
  EXPECT_EQ(edited.err,
            "spc: cannot edit the data source 1: the definition has version 7, and this program knows those up to 4\n"
            "     Saving it here would lose what is new in it: use the program that wrote it, or a newer spc.\n");
  EXPECT_EQ(definition(1), future);
}

TEST_P(SourceCommand, wants_the_schema) {
  execute("DROP VIEW CSEXDBV");
  execute("DROP TABLE CSEXDB");
  database().spoil();
  const Answer listed = source({"list"});
  EXPECT_EQ(listed.status, 1);
  EXPECT_TRUE(listed.complains("spc: cannot list the data sources: ")) << listed;
}

}  // namespace
