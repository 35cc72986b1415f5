// Plan, on SQLite and MariaDB
//   names with quotes, wildcards, brackets, braces, marks of parameters, letters of several bytes and SQL in them, as
//     folder, monitor and profile, exactly and by the slow comparison: they find what they name -> HurtfulNames.find_*
//   where nothing has such a name they find nothing, and never change a row -> HurtfulNames.*
#include "tests/tree/tree_fixture.h"

namespace {

const std::vector<std::string>& names() {
  static const std::vector<std::string> all = {
      "o'clock",
      "'",
      "''",
      "it''s",
      "'quoted'",
      "ends'",
      "100%",
      "%",
      "%s%d%n",
      "a%b",
      "a_b",
      "aXb",
      "_",
      "[x]",
      "[",
      "]",
      "[CSNODE].[NAME]",
      "back\\slash",
      "\\'; --",
      "ends\\",
      "two\\\\of",
      "n/m",
      "what?",
      "?",
      "?,?",
      "{x}",
      "{",
      "}",
      "{fn NOW()}",
      "{d '2024-01-01'}",
      "semi;colon",
      "'; DELETE FROM CSNODE; --",
      "x'); DROP TABLE CSPROF; --",
      "x' OR '1'='1",
      "' OR 1=1 -- ",
      "0 OR 1=1",
      "x' UNION SELECT 1, 2 FROM CSMON --",
      "/* open",
      "-- comment",
      "NULL",
      "0x41",
      "1e3",
      "quote\"d",
      "`tick`",
      "$1",
      ":name",
      "@@version",
      "#",
      "a|7",
      "&apos;",
      "%27",
      "\xC3\xA4\xE2\x82\xAC",
      "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E",
      "\xF0\x9F\x94\xA9 bolt",
      "\xE2\x80\x99",
  };
  return all;
}

std::string doubled(const std::string& name, char separator) {
  std::string text;
  for (const char c : name)
    text.append(c == separator ? 2 : 1, c);
  return text;
}

/// In other letters and with blanks around it, so that no server takes it for the stored name.
std::string disguised(const std::string& name) {
  CString text(name);
  text.MakeUpper();
  return "  " + std::string(text.GetString()) + " ";
}

class HurtfulNames : public test_support::TreeTest {
 protected:
  static constexpr int first = 100;  ///< the id of the first name's folder and objects
  static constexpr int crowd = 9;    ///< a folder that holds the objects of all names

  void add_all() {
    add_node(crowd, "crowd", 0);
    std::string folders;
    std::string objects;
    std::string memberships;
    int id = first;
    for (const auto& name : names()) {
      const auto number = std::to_string(id++);
      folders += ", (" + number + ", " + literal(name) + ", 1)";
      objects += ", (" + number + ", " + literal(name) + ")";
      memberships += ", (" + number + ", " + number + "), (" + std::to_string(crowd) + ", " + number + ")";
    }
    insert("CSNODE (NODEID, NAME, PNODE)", folders);
    insert("CSMON (MONID, NAME)", objects);
    insert("CSPROF (PROFID, NAME)", objects);
    insert("CSMINN (NODEID, MONID)", memberships);
    insert("CSPINN (NODEID, PROFID)", memberships);
  }

 private:
  void insert(const std::string& table, const std::string& rows) {
    execute("INSERT INTO " + table + " VALUES " + rows.substr(2));
  }
};

INSTANTIATE_TEST_SUITE_P(Servers, HurtfulNames, test_support::main_servers(), test_support::server_name);

TEST_P(HurtfulNames, find_the_folder_that_they_name) {
  add_all();
  const auto before = all_rows();
  int id = first;
  for (const auto& name : names()) {
    EXPECT_EQ(walk({"plant", name.c_str()}), id) << name;
    EXPECT_EQ(walk({"plant", disguised(name).c_str()}), id) << name;
    ++id;
  }
  EXPECT_EQ(all_rows(), before);
}

TEST_P(HurtfulNames, find_the_monitor_and_the_profile_that_they_name) {
  add_all();
  const auto before = all_rows();
  int number = first;
  for (const auto& name : names()) {
    for (const char separator : {'/', '\\'}) {
      const std::string between(1, separator);
      const std::string last = doubled(name, separator);
      const std::string among_all = between + "crowd" + between + last;
      const std::string alone = between + "plant" + between + last + between + last;
      // Behind a separator one that begins a name cannot be told from a doubled one.
      if (name.front() == separator) continue;
      EXPECT_EQ(id(among_all), number) << among_all;
      EXPECT_EQ(id(alone), number) << alone;
      EXPECT_EQ(id(between + "crowd" + between + doubled(disguised(name), separator)), number) << name;
    }
    ++number;
  }
  EXPECT_EQ(all_rows(), before);
}

TEST_P(HurtfulNames, stand_in_paths_as_they_are_but_for_doubled_separators) {
  add_all();
  int node = first;
  for (const auto& name : names()) {
    EXPECT_EQ(path(node), "/plant/" + doubled(name, '/'));
    EXPECT_EQ(path(node, false), "\\plant\\" + doubled(name, '\\'));
    ++node;
  }
}

TEST_P(HurtfulNames, find_nothing_where_nothing_has_them) {
  add_objects(31, "bore", 2);
  const auto before = all_rows();
  for (const auto& name : names()) {
    EXPECT_EQ(walk({"plant", name.c_str()}), 0) << name;
    EXPECT_EQ(walk({name.c_str(), "Line 4"}), 0) << name;
    EXPECT_EQ(id("/plant/Line 4/" + doubled(name, '/')), 0) << name;
    EXPECT_EQ(id("/plant/" + doubled(name, '/') + "/bore"), 0) << name;
  }
  EXPECT_EQ(all_rows(), before);
}

}  // namespace
