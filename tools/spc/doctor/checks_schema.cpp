// What is wrong with the tables, views and columns themselves.
#include <cstdlib>
#include <list>

#include "schema/description.h"
#include "spcbase/platform/database/recordset.h"
#include "tools/spc/doctor/check.h"
#include "tools/spc/doctor/examination.h"
#include "tools/spc/doctor/unique_keys.h"
#include "tools/spc/terminal.h"

namespace spc::doctor {
namespace {

/// Things of the schema that are missing: "table CSVDAT", "column CSSAMP.PROFREV".
template <class Report>
void look_at_missing(Examination& examination, const std::string& kind, Report report) {
  for (const auto& thing : examination.schema().missing)
    if (thing.starts_with(kind + " ")) report(thing.substr(kind.size() + 1));
}

void look_for_missing_tables(Examination& examination) {
  look_at_missing(examination, "table", [&](const std::string& name) {
    examination.found(name, {"", {}, false, 1, "table " + name});
  });
}

void look_for_missing_views(Examination& examination) {
  look_at_missing(examination, "view", [&](const std::string& name) {
    examination.found(name, {"", {}, false, 1, "view " + name});
  });
}

void look_for_missing_columns(Examination& examination) {
  look_at_missing(examination, "column", [&](const std::string& name) {
    const auto point = name.find('.');
    examination.found(name.substr(0, point), {"column", {name.substr(point + 1)}, false, 1});
  });
}

/// The columns of a table as the server describes them; no row is read.
class Columns : public CRecordset {
 public:
  Columns(CDatabase* db, const schema::Table& table) : CRecordset(db), table_(table) {
    m_nFields = static_cast<UINT>(table.columns.size());
    values_.resize(table.columns.size());
    // No row, without a literal, which servers cannot always tell the type of.
    const std::string column = "[" + std::string(table.columns.front().name) + "]";
    m_strFilter = (column + " IS NULL AND " + column + " IS NOT NULL").c_str();
    Open(forwardOnly, nullptr, readOnly | executeDirect);
  }
  CString GetDefaultSQL() override { return ("[" + std::string(table_.name) + "]").c_str(); }
  void DoFieldExchange(CFieldExchange* exchange) override {
    exchange->SetFieldType(CFieldExchange::outputColumn);
    auto value = values_.begin();
    for (const auto& column : table_.columns)
      RFX_Text(exchange, ("[" + std::string(column.name) + "]").c_str(), *value++);
  }
  CODBCFieldInfo of(std::size_t column) {
    CODBCFieldInfo info;
    GetODBCFieldInfo(static_cast<short>(column), info);
    return info;
  }

 private:
  const schema::Table& table_;
  std::list<CString> values_;
};

// ODBC's numbers for types.
constexpr short sql_decimal = 3;
constexpr short sql_numeric = 2;
constexpr short sql_smallint = 5;
constexpr short sql_real = 7;
constexpr short sql_tinyint = -6;
constexpr short sql_bit = -7;
constexpr short sql_date = 91;

/// A payload of this size is nothing unusual.
constexpr unsigned long small_blob_bytes = 1'000'000;
constexpr unsigned long integer_digits = 10;

bool is_decimal(const CODBCFieldInfo& info) { return info.m_nSQLType == sql_decimal || info.m_nSQLType == sql_numeric; }

/// Why a column cannot hold what belongs in it; empty when it can, or when the server does not tell.
std::string too_narrow(const schema::Column& wanted, const CODBCFieldInfo& info) {
  const unsigned long size = info.m_nPrecision;
  switch (wanted.type) {
    case schema::ColumnType::text:
      if (size == 0 || size >= static_cast<unsigned long>(wanted.width_chars)) return {};
      return std::to_string(size) + " characters instead of " + std::to_string(wanted.width_chars);
    case schema::ColumnType::integer:
    case schema::ColumnType::auto_id:
      for (const short type : {sql_smallint, sql_tinyint, sql_bit})
        if (info.m_nSQLType == type) return "an integer of fewer than 32 bits";
      if (!is_decimal(info) || size == 0 || size >= integer_digits) return {};
      return std::to_string(size) + " digits instead of " + std::to_string(integer_digits);
    case schema::ColumnType::real:
      if (info.m_nSQLType == sql_real) return "a real number of 32 bits instead of 64";
      return is_decimal(info)
                 ? "a decimal number of " + std::to_string(size) + " digits instead of a real one of 64 bits"
                 : std::string();
    case schema::ColumnType::moment:
      return info.m_nSQLType == sql_date ? "a date without a time" : std::string();
    case schema::ColumnType::blob:
      if (size == 0 || size >= small_blob_bytes) return {};
      return std::to_string(size) + " bytes";
  }
  return {};
}

/// Looks at every column of every table that stands; `judge` gives what is wrong with one, or an empty text.
template <class Judge>
void look_at_columns(Examination& examination, Judge judge) {
  for (const auto& table : schema::tables()) {
    const std::string name(table.name);
    examination.attempt(name, [&] {
      Subjects columns{"column", {}, false};
      Columns described(&examination.link().db(), table);
      for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const std::string fault = judge(table.columns[i], described.of(i));
        if (fault.empty()) continue;
        if (columns.count < static_cast<long>(examination.limit()))
          columns.detail += (columns.detail.empty() ? "" : "; ") + std::string(table.columns[i].name) + ": " + fault;
        add(columns, std::string(table.columns[i].name), examination.limit());
      }
      examination.found(name, std::move(columns));
    });
  }
}

void look_for_narrow_columns(Examination& examination) { look_at_columns(examination, too_narrow); }

void look_for_columns_without_null(Examination& examination) {
  constexpr short no_nulls = 0;
  look_at_columns(examination, [](const schema::Column& wanted, const CODBCFieldInfo& info) -> std::string {
    return wanted.nullable && info.m_nNullability == no_nulls ? "refuses null" : "";
  });
}

void look_at_views(Examination& examination) {
  for (const auto& view : schema::views()) {
    const std::string name(view.name);
    const std::string table(view.table);
    examination.attempt(name, [&] {
      const long shown = examination.count("[" + name + "]", "");
      const long live = examination.count("[" + table + "]", "[VFLG] IS NULL");
      if (shown == live) return;
      examination.found(name, {"",
                               {},
                               false,
                               std::labs(shown - live),
                               "it shows " + counted(static_cast<std::size_t>(shown), "row") + ", " + table + " has " +
                                   std::to_string(live) + " live ones"});
    });
  }
}

constexpr const char* every_table = "all tables";

}  // namespace

std::vector<Check> schema_checks() {
  return {
      {"table-missing",
       Severity::error,
       "A table of the schema is missing, or this login may not read it.",
       "Create it as spc db create makes it in an empty database, or grant the right; spc db check names all that is "
       "missing.",
       {},
       look_for_missing_tables,
       every_table},
      {"view-missing",
       Severity::error,
       "A view of the schema is missing, stands on something that is missing, or may not be read by this login.",
       "Create it: it shows the rows of its table whose VFLG is null. spc db check names all that is missing.",
       {},
       look_for_missing_views,
       "all views"},
      {"column-missing",
       Severity::error,
       "A column of the schema is missing: whatever reads or writes the table is refused.",
       "Add the column; spc db check names all that is missing.",
       {},
       look_for_missing_columns,
       "all tables and views"},
      {"column-too-narrow",
       Severity::error,
       "A column cannot hold all that belongs in it: values are refused, or cut without a word.",
       "Widen the column.",
       {},
       look_for_narrow_columns,
       every_table},
      {"column-refuses-null",
       Severity::warning,
       "A column refuses null, which is written where there is no value: such rows are refused.",
       "Let the column take null.",
       {},
       look_for_columns_without_null,
       every_table},
      {"unique-key-missing",
       Severity::error,
       "A key that keeps rows apart is missing: two writers can take one number, and neither is refused.",
       "Mend the rows that are double by now, then add the key.",
       {},
       look_for_missing_keys,
       every_table},
      {"view-shows-other-rows",
       Severity::error,
       "A view does not show the live rows of its table, which are those whose VFLG is null.",
       "Create the view anew; it is a SELECT on one table with WHERE VFLG IS NULL.",
       {},
       look_at_views,
       "all views"},
  };
}

}  // namespace spc::doctor
