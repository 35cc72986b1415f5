// Plan, on SQLite and on a private MariaDB server
//   export: identity and cipher, or the password hidden; owner's rights alone; never over a file; JSON
//   import: a new id and so another cipher text; another name; both kinds; every version that was ever written; the
//     file's id, and --file-id for one that does not tell
//   Bad input: the other kind, a future version, a damaged cipher text, another id, a hidden password, XML that does
//   not
//     parse, another root, no version, no kind, a name that is taken, no file, a folder
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>

#include "tests/tools/source_fixture.h"

namespace {

using command_test::Answer;

class SourceFiles : public command_test::OnSources {
 protected:
  std::string file(const std::string& name) const { return folder_.file(name); }
  std::string file(const std::string& name, const std::string& text) const {
    std::ofstream(file(name), std::ios::binary) << text;
    return file(name);
  }
  std::string content(const std::string& name) const {
    std::ifstream stream(file(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  }
  Answer add_warehouse() { return add("Warehouse", {"--connection-string", "DSN=wh;UID=anna", "--password-fd", "3"}); }
  Answer import(const std::string& text, std::vector<std::string> more = {}) {
    more.insert(more.begin(), {"import", file("in.xml", text)});
    return source(more);
  }
  /// What is wrong with a file.
  void expect_refused(const std::string& text, const std::string& words, const std::vector<std::string>& more = {}) {
    const Answer refused = import(text, more);
    EXPECT_EQ(refused.status, 1) << refused;
    EXPECT_TRUE(refused.complains("spc: cannot import " + file("in.xml") + ": " + words)) << words << refused;
    EXPECT_EQ(std::count(refused.err.begin(), refused.err.end(), '\n'), 2) << "with advice: " << refused;
  }

 private:
  test_support::ScratchFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(Servers, SourceFiles, test_support::main_servers(), test_support::server_name);

std::string cipher_in(const std::string& xml) {
  std::smatch found;
  return std::regex_search(xml, found, std::regex("<connection_string(?:_2)?>([^<]*)<")) ? found[1].str() : "none";
}

TEST_P(SourceFiles, export_writes_identity_and_cipher_for_the_owner_alone) {
  add_warehouse();
  const Answer exported = source({"export", "Warehouse", file("w.xml")});
  EXPECT_EQ(exported.status, 0) << exported;
  EXPECT_EQ(exported.out, "Exported data source 1 Warehouse (OLE DB) to " + file("w.xml") + ": " +
                              std::to_string(content("w.xml").size()) +
                              " bytes, the connection string enciphered under its id\n");
  EXPECT_TRUE(content("w.xml").find("<id>1</id><name>Warehouse</name>") != std::string::npos) << content("w.xml");
  EXPECT_TRUE(std::regex_match(cipher_in(content("w.xml")), std::regex("[A-Za-z0-9+/]{20,}={0,2}")));
  using std::filesystem::perms;
  EXPECT_EQ(std::filesystem::status(file("w.xml")).permissions(), perms::owner_read | perms::owner_write);
}

TEST_P(SourceFiles, export_never_writes_over_a_file) {
  add_warehouse();
  file("w.xml", "mine");
  const Answer refused = source({"export", "1", file("w.xml")});
  EXPECT_EQ(refused.status, 1);
  EXPECT_TRUE(source({"export", "1", file("no/such.xml")})
                  .complains("\n     See that the folder is there, writable and not full.\n"));
  EXPECT_EQ(refused.err, "spc: cannot write " + file("w.xml") +
                             ": the file is there already\n     Name a file that does not exist yet.\n");
  EXPECT_EQ(content("w.xml"), "mine");
  EXPECT_EQ(source({"export", "1", file("none/w.xml")}).status, 1);
}

TEST_P(SourceFiles, export_hides_the_password_when_it_is_asked_to) {
  add_warehouse();
  const auto told = source_json({"export", "1", file("w.xml"), "--hide-password"});
  EXPECT_EQ(told["password"].text, "hidden");
  EXPECT_EQ(told["bytes"].number, static_cast<double>(content("w.xml").size()));
  EXPECT_EQ(cipher_in(content("w.xml")), "DSN=wh;UID=anna;PWD=***");
  const Answer refused = source({"import", file("w.xml"), "--name", "again"});
  EXPECT_EQ(refused.err, "spc: cannot import " + file("w.xml") +
                             ": its connection string is not enciphered, since it was exported with its password "
                             "hidden\n     Export it again without --hide-password, or add the data source anew with "
                             "spc source add.\n");
}

TEST_P(SourceFiles, import_gives_a_new_id_and_enciphers_anew) {
  add_warehouse();
  source({"export", "1", file("w.xml")});
  source({"remove", "1"});
  const Answer imported = source({"import", file("w.xml")});
  EXPECT_EQ(imported.status, 0) << imported;
  EXPECT_EQ(imported.out,
            "Imported " + file("w.xml") + " as data source 2 Warehouse (OLE DB); the id that it had, 1, is not kept\n");
  EXPECT_NE(cipher_in(definition(2)), cipher_in(definition(1)));
  EXPECT_EQ(source_json({"show", "2"})["connection_string"].text, "DSN=wh;UID=anna;PWD=***");
  // The passwords are the same: what is exported under the old id can be read there alone.
  put_definition(1, definition(2));
  EXPECT_TRUE(source({"show", "1"}).complains("cannot be deciphered under the id 1"));
}

TEST_P(SourceFiles, import_takes_both_kinds_and_another_name) {
  add("Plant", {"--kind", "adonet", "--provider", "p", "--timeout", "0", "--connection-string", "Server=x",
                "--password-fd", "3"});
  source({"export", "1", file("p.xml")});
  const Answer taken = source({"import", file("p.xml")});
  EXPECT_EQ(taken.status, 1) << "the name is taken, by the very one that was exported";
  EXPECT_TRUE(taken.complains("data source 1 Plant has this name already")) << taken;
  const auto imported = source_json({"import", file("p.xml"), "--name", "Copy"});
  EXPECT_EQ(imported["id"].number, 2);
  EXPECT_EQ(imported["file_id"].number, 1);
  EXPECT_EQ(imported["kind"].text, "ADO.NET");
  EXPECT_EQ(imported["name"].text, "Copy");
  EXPECT_EQ(imported["default_command_timeout"].number, 0);
  EXPECT_EQ(imported["connection_string"].text, "Server=x;Password=***");
}

TEST_P(SourceFiles, import_reads_what_old_versions_have_written) {
  struct Old {
    const char* file;
    const char* connection;
  };
  int id = 0;
  for (const auto& [name, connection] :
       {Old{"v0_oldest", "DSN=warehouse;UID=spc;PWD=***"}, Old{"v1_old_names", "DSN=warehouse;UID=spc;PWD=***"},
        Old{"v2_clear", "DSN=warehouse;UID=spc;PWD=***"}, Old{"v3_hidden", "DSN=warehouse;UID=spc;PWD=***"},
        Old{"v4_stored", "DSN=warehouse;UID=spc;PWD=***"}}) {
    const Answer imported = source({"import", std::string(SPC_DEFINITIONS "/") + name + ".xml", "--kind", "oledb",
                                    "--file-id", "7", "--name", name});
    EXPECT_EQ(imported.status, 0) << name << imported;
    EXPECT_EQ(source_json({"show", name})["connection_string"].text, connection) << name;
    EXPECT_NE(definition(++id).find("<connection_string_2>"), std::string::npos) << definition(id);
    EXPECT_EQ(definition(id).find("secret"), std::string::npos) << definition(id);
  }
}

TEST_P(SourceFiles, import_tells_what_is_wrong_with_a_file) {
  const std::string head = "<external_database version=\"4\"><id>1</id><name>x</name>";
  expect_refused(head + "<flag1>1</flag1></external_database>", "it is a definition of the other kind: ADO.NET",
                 {"--kind", "oledb"});
  expect_refused(head + "<flag1>5</flag1></external_database>", "its flag1 says that it is of the kind 5");
  expect_refused(head + "</external_database>", "it does not say of which kind it is");
  expect_refused("<external_database version=\"5\"><flag1>0</flag1></external_database>",
                 "its version is 5, and this program knows those up to 4");
  expect_refused("<external_database><flag1>0</flag1></external_database>", "its root has no attribute version");
  expect_refused("<external_database version=\"two\"><flag1>0</flag1></external_database>",
                 "its version is no number: two");
  expect_refused("<list/>", "it is no definition of a data source: its root is list, not external_database");
  expect_refused("<external_database", "Load xml failed:");
  expect_refused("", "Load xml failed:");
  EXPECT_TRUE(import("sample,piece\n").complains("     Name a file that spc source export has written.\n"));
  expect_refused("<!DOCTYPE a [<!ENTITY b \"c\">]><a>&b;</a>", "Load xml failed:");
  expect_refused(head + "<flag1>0</flag1><option><x/></option></external_database>",
                 "its XML cannot be read: XML error.");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSEXDB"), "0");
  EXPECT_EQ(value("SELECT MAXNO FROM CSEXDBRN"), "0");
}

TEST_P(SourceFiles, import_tells_of_a_connection_string_that_cannot_be_deciphered) {
  add_warehouse();
  source({"export", "1", file("w.xml")});
  const std::string good = content("w.xml");
  expect_refused(std::regex_replace(good, std::regex("<id>1<"), "<id>2<"),
                 "its connection string cannot be deciphered under the id 2 (", {"--name", "x"});
  expect_refused(std::regex_replace(good, std::regex("_2>AQAAA"), "_2>AQAAA4"),
                 "its connection string cannot be deciphered under the id 1 (", {"--name", "x"});
  expect_refused(std::regex_replace(good, std::regex("<id>1</id>"), ""),
                 "its connection string cannot be deciphered under the id 0 (", {"--name", "x"});
  const Answer told = import(std::regex_replace(good, std::regex("<id>1</id>"), ""), {"--name", "x", "--file-id", "1"});
  EXPECT_EQ(told.status, 0) << told;
}

TEST_P(SourceFiles, import_wants_a_file_with_a_name) {
  EXPECT_TRUE(source({"import", file("none.xml")}).complains("spc: cannot read "));
  EXPECT_TRUE(source({"import", file("")}).complains("it is a folder"));
  const Answer unnamed = import("<external_database version=\"4\"><flag1>0</flag1></external_database>");
  EXPECT_EQ(unnamed.status, 1);
  EXPECT_TRUE(unnamed.complains("it has no name")) << unnamed;
  EXPECT_EQ(source({"import", file("in.xml"), "--name", "x"}).out,
            "Imported " + file("in.xml") + " as data source 1 x (OLE DB)\n");
}

}  // namespace
