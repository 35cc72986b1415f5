#include "spcbase/platform/database/quirks.h"

#include <array>

namespace spcdb {
namespace {

/// One fact: who behaves so, on what it was seen, and what it means.
struct Fact {
  std::string_view name;  ///< how the DBMS name or the driver's name begins
  std::string_view seen;
  void (*apply)(Quirks&);
};

constexpr std::string_view sqlite_driver = "sqlite3odbc 0.9998, SQLite 3.40.1";
constexpr std::string_view mariadb_driver = "libmaodbc 3.1.15, server 10.11.19";
constexpr std::string_view postgres_driver = "psqlodbcw 13.02, server 15.18";
constexpr std::string_view manual = "its manual";

/// The driver rounds to 15 digits on every way out. 20 digits bring every double back; printf makes a zero of a null
/// and of a text, so only reals go through it.
constexpr const char* sqlite_double = "CASE WHEN typeof(%s)='real' THEN printf('%!.20g',%s) ELSE %s END";

constexpr std::array<Fact, 21> facts{{
    {"SQLite", sqlite_driver, [](Quirks& q) { q.quote_open = q.quote_close = '`'; }},
    {"SQLite", sqlite_driver, [](Quirks& q) { q.fixed_quotes = true; }},  // the driver's "NAME" may become a text
    {"SQLite", sqlite_driver, [](Quirks& q) { q.double_expression = sqlite_double; }},
    {"SQLite", sqlite_driver, [](Quirks& q) { q.fetch_as_text = true; }},  // 'abc' is 0, 'x' as a moment is null
    {"SQLite", sqlite_driver, [](Quirks& q) { q.streams_forward = false; }},
    {"SQLite", sqlite_driver, [](Quirks& q) { q.one_row = OneRow::rowid; }},
    {"SQLite", sqlite_driver, [](Quirks& q) { q.blob_sizes_unknown = true; }},          // 255 whatever is stored
    {"MariaDB", mariadb_driver, [](Quirks& q) { q.counts_changed_rows_only = true; }},  // unless OPTION=2 was given
    {"MariaDB", mariadb_driver, [](Quirks& q) { q.streams_forward = false; }},          // NO_CACHE has no effect
    {"MariaDB", mariadb_driver, [](Quirks& q) { q.one_row = OneRow::limit; }},
    {"MariaDB", mariadb_driver, [](Quirks& q) { q.timeout_statement = "SET SESSION max_statement_time=%s"; }},
    {"MariaDB", mariadb_driver, [](Quirks& q) { q.backslash_escapes = true; }},  // unless sql_mode says otherwise
    {"MySQL", manual, [](Quirks& q) { q.backslash_escapes = true; }},
    {"MySQL", manual, [](Quirks& q) { q.counts_changed_rows_only = true; }},
    {"MySQL", manual, [](Quirks& q) { q.one_row = OneRow::limit; }},
    {"PostgreSQL", postgres_driver, [](Quirks& q) { q.one_row = OneRow::ctid; }},
    {"PostgreSQL", postgres_driver, [](Quirks& q) { q.folds_names_to_lower = true; }},
    {"PostgreSQL", postgres_driver, [](Quirks& q) { q.streams_forward = false; }},
    {"PostgreSQL", postgres_driver, [](Quirks& q) { q.runs_several_statements = true; }},
    {"Microsoft SQL Server", manual, [](Quirks& q) { q.one_row = OneRow::top; }},
    {"Oracle", manual, [](Quirks& q) { q.one_row = OneRow::rownum; }},
}};

}  // namespace

Quirks quirks_of(std::string_view dbms_name, std::string_view driver_name) {
  Quirks quirks;
  for (const auto& fact : facts)
    if (dbms_name.starts_with(fact.name) || driver_name.starts_with(fact.name)) fact.apply(quirks);
  return quirks;
}

}  // namespace spcdb
