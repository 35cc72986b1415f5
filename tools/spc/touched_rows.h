/// Which rows statements touched, counted by table from the statements that are really sent.
///
/// Part of the command.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "spcbase/platform/database/observer.h"

namespace spc {

/// Rows of one table. Nothing: a statement touched some, and the driver did not say how many.
struct TouchedRows {
  std::optional<long> inserted = 0;
  std::optional<long> updated = 0;
  std::optional<long> deleted = 0;

  bool any() const { return inserted != 0L || updated != 0L || deleted != 0L; }
};

/// What a statement does to a table.
struct RowChange {
  std::string table;  ///< without quotes and in capital letters
  std::optional<long> TouchedRows::*rows = nullptr;
};

/// Reads the beginning of a statement; nothing for those that touch no rows, as a SELECT.
std::optional<RowChange> row_change_of(std::string_view statement);

/// Whether a statement changes the schema, or empties a table in the way of those: CREATE, ALTER, DROP, TRUNCATE.
bool changes_schema(std::string_view statement);

/// Counts rows, each time that one is touched: a row that is changed twice counts twice. Statements that failed count
/// for nothing.
class RowCounter {
 public:
  void count(const spcdb::StatementReport& report);

  /// The tables that were touched, in the order of their names.
  const std::map<std::string, TouchedRows>& tables() const { return tables_; }
  /// Statements that changed the schema.
  std::size_t schema_statements() const { return schema_statements_; }

 private:
  std::map<std::string, TouchedRows> tables_;
  std::size_t schema_statements_ = 0;
};

}  // namespace spc
