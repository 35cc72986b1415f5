/// A tree of folders with monitors and profiles, on each kind of server.
///
///     plant(1) > Line 4(2) > a/b(3);  plant(1) > hidden(4, hidden) > below(5)
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "spcbase/testkit/database_fixture.h"
#include "spcbase/testkit/scripted_session.h"
#include "spcbase/tree/internal/node_walk.h"
#include "spcbase/tree/path.h"
#include "tests/support/row_texts.h"

namespace test_support {

class TreeTest : public DatabaseTest {
 protected:
  TreeTest() {
    add_node(1, "plant", 0);
    add_node(2, "Line 4", 1);
    add_node(3, "a/b", 2);
    add_node(4, "hidden", 1, "'D'");
    add_node(5, "below", 4);
  }

  void add_node(int id, const std::string& name, int parent, const std::string& flag = "NULL") {
    execute("INSERT INTO CSNODE (NODEID, NAME, PNODE, VFLG) VALUES (" + std::to_string(id) + ", " + literal(name) +
            ", " + std::to_string(parent) + ", " + flag + ")");
  }
  /// A monitor and a profile of the same id and name.
  void add_objects(int id, const std::string& name, int node) {
    const auto number = std::to_string(id);
    execute("INSERT INTO CSMON (MONID, NAME) VALUES (" + number + ", " + literal(name) + ")");
    execute("INSERT INTO CSPROF (PROFID, NAME) VALUES (" + number + ", " + literal(name) + ")");
    const auto both = std::to_string(node) + ", " + number;
    execute("INSERT INTO CSMINN (NODEID, MONID) VALUES (" + both + ")");
    execute("INSERT INTO CSPINN (NODEID, PROFID) VALUES (" + both + ")");
  }
  /// A row for each number I from `first` to `last`, whose values are these expressions.
  void add_many(const std::string& table_and_columns, const std::string& values, int first, int last) {
    const auto from = std::to_string(first);
    const auto to = std::to_string(last);
    const std::string numbers = kind() == ServerKind::mariadb
                                    ? "(SELECT seq AS I FROM seq_" + from + "_to_" + to + ") N"
                                    : "(WITH RECURSIVE N(I) AS (SELECT " + from +
                                          " UNION ALL SELECT I + 1 FROM N WHERE I < " + to + ") SELECT I FROM N)";
    execute("INSERT INTO " + table_and_columns + " SELECT " + values + " FROM " + numbers);
  }
  /// The expression of a text followed by the number I.
  std::string numbered(const std::string& text) const {
    return kind() == ServerKind::mariadb ? "CONCAT('" + text + "', I)" : "'" + text + "' || I";
  }
  /// A literal. MariaDB's know the backslash, SQLite's do not.
  std::string literal(const std::string& text) const {
    std::string result = "'";
    for (const char c : text)
      result.append(c == '\'' || (c == '\\' && kind() == ServerKind::mariadb) ? 2 : 1, c);
    return result + "'";
  }

  std::string path(int node, bool forward = true) { return get_node_path(&db(), node, forward).GetString(); }
  int walk(const std::vector<CString>& names) {
    return find_node_from_names(&db(), names, static_cast<int>(names.size()));
  }
  /// Monitors and profiles stand alike, so both must be found alike.
  int id(const std::string& text) {
    const int monitor = get_mon_id_from_path(&db(), text.c_str());
    EXPECT_EQ(get_prof_id_from_path(&db(), text.c_str()), monitor) << text;
    return monitor;
  }

  /// Everything that a walk could touch.
  std::vector<std::string> all_rows() {
    std::vector<std::string> all;
    for (const char* table : {"CSNODE", "CSMON", "CSPROF", "CSMINN", "CSPINN"})
      for (auto& row : row_texts(database(), std::string("SELECT * FROM ") + table + " ORDER BY 1, 2"))
        all.push_back(table + (": " + row));
    return all;
  }
};

}  // namespace test_support
