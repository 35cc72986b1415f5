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
    const std::string why = database_ == nullptr ? "out of memory" : sqlite3_errmsg(database_);
    sqlite3_close(database_);
    throw std::runtime_error("cannot open " + file + ": " + why);
  }
  sqlite3_busy_timeout(database_, 2000);
}

RawSqlite::~RawSqlite() { sqlite3_close(database_); }

std::vector<RawSqlite::Row> RawSqlite::rows(const std::string& statement) {
  std::vector<Row> all;
  if (sqlite3_exec(database_, statement.c_str(), &add_row, &all, nullptr) == SQLITE_OK) return all;
  throw std::runtime_error(std::string(sqlite3_errmsg(database_)) + " in: " + statement);
}

}  // namespace test_support
