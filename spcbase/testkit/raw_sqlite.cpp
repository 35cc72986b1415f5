#include "spcbase/testkit/raw_sqlite.h"

#include <sqlite3.h>

#include <stdexcept>

namespace test_support {
namespace {

int add_row(void* all, int columns, char** values, char** /*names*/) {
  auto& row = static_cast<std::vector<RawSqlite::Row>*>(all)->emplace_back();
  for (int i = 0; i < columns; ++i)
    row.push_back(values[i] == nullptr ? std::nullopt : std::optional<std::string>(values[i]));
  return 0;
}

}  // namespace

RawSqlite::RawSqlite(const std::string& file) {
  const int result = sqlite3_open(file.c_str(), &database_);
  if (result != SQLITE_OK) {
    sqlite3_close(database_);
    throw std::runtime_error("cannot open " + file);
  }
  sqlite3_busy_timeout(database_, 2000);
}

RawSqlite::~RawSqlite() { sqlite3_close(database_); }

std::vector<RawSqlite::Row> RawSqlite::rows(const std::string& statement) {
  std::vector<Row> all;
  char* why = nullptr;
  if (sqlite3_exec(database_, statement.c_str(), &add_row, &all, &why) == SQLITE_OK) return all;
  const std::string text = std::string(why) + " in: " + statement;
  sqlite3_free(why);
  throw std::runtime_error(text);
}

}  // namespace test_support
