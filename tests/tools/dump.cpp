#include "tests/tools/dump.h"

#include <algorithm>
#include <optional>

#include "spcbase/testkit/raw_odbc.h"
#include "spcbase/testkit/raw_sqlite.h"

namespace command_test {
namespace {

template <class Row>
std::string joined(const Row& row) {
  std::string text;
  for (const auto& cell : row)
    text += (cell ? *cell : "NULL") + '\x1f';
  return text;
}

template <class Connection>
std::vector<std::string> sorted_rows(Connection& connection, const std::string& statement) {
  std::vector<std::string> rows;
  for (const auto& row : connection.rows(statement))
    rows.push_back(joined(row));
  std::ranges::sort(rows);
  return rows;
}

/// `names` and `schema` are statements.
template <class Connection>
Dump read(Connection& connection, const std::string& names, const std::vector<std::string>& schema) {
  Dump dump;
  for (const auto& statement : schema)
    for (auto& row : sorted_rows(connection, statement))
      dump.schema.push_back(std::move(row));
  for (const auto& row : connection.rows(names)) {
    const std::string table = row.at(0).value();
    dump.tables[table] = sorted_rows(connection, "SELECT * FROM " + table);
  }
  return dump;
}

}  // namespace

Dump dump_of(test_support::ServerKind kind, const std::string& connect_text) {
  if (kind == test_support::ServerKind::sqlite) {
    test_support::RawSqlite connection(connect_text.substr(std::string("sqlite:").size()));
    return read(connection, "SELECT name FROM sqlite_master WHERE type = 'table'",
                {"SELECT type, name, tbl_name, sql FROM sqlite_master"});
  }
  test_support::RawOdbc connection(connect_text);
  const std::string here = " WHERE TABLE_SCHEMA = DATABASE()";
  return read(connection, "SELECT TABLE_NAME FROM INFORMATION_SCHEMA.TABLES" + here + " AND TABLE_TYPE = 'BASE TABLE'",
              {"SELECT TABLE_NAME, TABLE_TYPE, ENGINE FROM INFORMATION_SCHEMA.TABLES" + here,
               "SELECT TABLE_NAME, COLUMN_NAME, COLUMN_TYPE, IS_NULLABLE FROM INFORMATION_SCHEMA.COLUMNS" + here,
               "SELECT TABLE_NAME, CONSTRAINT_NAME, CONSTRAINT_TYPE FROM INFORMATION_SCHEMA.TABLE_CONSTRAINTS" + here});
}

std::ostream& operator<<(std::ostream& out, const Dump& dump) {
  out << dump.schema.size() << " lines of schema";
  for (const auto& [table, rows] : dump.tables)
    if (!rows.empty()) out << ", " << table << ' ' << rows.size();
  return out;
}

}  // namespace command_test
