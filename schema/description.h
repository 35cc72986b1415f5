/// The tables and views that the library works on, described once as data.
///
/// The library creates none of them: it finds them in place. This description is what DDL for each server is made from
/// (schema/ddl.h), what a database is checked against (`required_objects`), and where a reader looks up a column.
/// All lists come in one fixed order, which is also the order of creation: a table stands after those it refers to.
#pragma once

#include <string_view>
#include <vector>

namespace schema {

/// What a column holds. `auto_id` is an integer key that the database assigns at insert.
enum class ColumnType { integer, auto_id, text, moment, real, blob };

/// One column of a table. Texts are measured in characters, moments keep milliseconds.
struct Column {
  std::string_view name;
  ColumnType type = ColumnType::integer;
  int width_chars = 0;  ///< of a text column, else 0
  bool nullable = true;
  std::string_view default_text = {};  ///< the text a row gets that names none; empty: no default
};

/// A key or an index: its name and its columns in order.
struct Index {
  std::string_view name;
  std::vector<std::string_view> columns;
};

/// A column that refers to the key of another table.
struct ForeignKey {
  std::string_view name;
  std::string_view column;
  std::string_view target_table;
  std::string_view target_column;
};

/// One table. Every unique key counts two nulls as equal, so that an absent part of a key cannot make a double row.
struct Table {
  std::string_view name;
  std::vector<Column> columns;
  std::vector<std::string_view> primary_key = {};
  std::vector<Index> unique_keys = {};
  std::vector<Index> indexes = {};
  std::vector<ForeignKey> foreign_keys = {};

  /// The column of that name, or null.
  const Column* find(std::string_view column) const;
};

/// A view that shows the live rows of its table: those whose `VFLG` is null, without that column.
struct View {
  std::string_view name;
  std::string_view table;
  bool takes_inserts = false;  ///< rows are added through it on every server
};

/// One running number: the highest id in use of `table` stands in the one row of `counter`, in its column `MAXNO`.
struct RunningNumber {
  std::string_view table;
  std::string_view id_column;
  std::string_view counter;
};

/// A table or view that must exist, with the columns that it must have.
struct RequiredObject {
  std::string_view name;
  bool is_view = false;
  std::vector<std::string_view> columns;
};

/// Every table apart from the running-number tables.
const std::vector<Table>& tables();

/// Every view.
const std::vector<View>& views();

/// The 27 running numbers, in the order in which they are repaired.
const std::vector<RunningNumber>& running_numbers();

/// The table of that name, or null. Running-number tables are not among them.
const Table* find_table(std::string_view name);

/// The columns that a view shows, in order.
std::vector<std::string_view> columns_of(const View& view);

/// Tables, running-number tables and views, each with its columns: what a complete database holds.
std::vector<RequiredObject> required_objects();

}  // namespace schema
