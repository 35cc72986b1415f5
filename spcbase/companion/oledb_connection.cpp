#include "spcbase/companion/oledb_connection.h"

#include <charconv>
#include "spcbase/companion/internal/source_facts.h"

namespace {

/// ODBC's numbers for what is asked.
enum Question : WORD {
  ask_odbc_conformance = 15,
  ask_dbms_name = 17,
  ask_dbms_version = 18,
  ask_integrity = 73,
  ask_sql_conformance = 118
};

/// The bits of DBPROP_SQLSUPPORT. Who has a level of the grammar has those below.
enum SqlSupport : DWORD {
  odbc_minimum = 0x1,
  odbc_core = 0x2,
  odbc_extended = 0x4,
  ansi89_integrity = 0x8,
  ansi92_entry = 0x10,
  fips_transitional = 0x20,
  ansi92_intermediate = 0x40,
  ansi92_full = 0x80,
  escape_clauses = 0x100
};

/// The first version of SQL Server with the new types, 2008.
constexpr int first_with_new_types = 10;

/// Answers to questions, numbers as 0 when there is none.
CString fact(CDatabase& database, WORD type) {
  CString text;
  source_facts::of_connection(database, type, text);
  return text;
}

DWORD number(CDatabase& database, WORD type) {
  const auto digits = fact(database, type);
  DWORD value = 0;
  std::from_chars(digits.view().data(), digits.view().data() + digits.view().size(), value);
  return value;
}

/// What every driver must answer.
template <class Find>
CString required(const char* what, const Find& find) {
  CString text;
  if (find(text) == S_OK) return text;
  CString message;
  message.Format("The driver does not tell %s.", what);
  AfxThrowDBException(AFX_SQL_ERROR, message.GetString());
}

DWORD odbc_levels(DWORD conformance) {
  switch (conformance) {
    case 0:
      return odbc_minimum;
    case 1:
      return odbc_minimum | odbc_core;
    default:
      return odbc_minimum | odbc_core | odbc_extended;
  }
}

DWORD ansi_levels(DWORD conformance) {
  DWORD levels = 0;
  if (conformance >= 1) levels |= ansi92_entry;
  if (conformance >= 2) levels |= fips_transitional;
  if (conformance >= 4) levels |= ansi92_intermediate;
  if (conformance >= 8) levels |= ansi92_full;
  return levels;
}

/// The driver takes what ODBC's escape clauses say for every server, whatever its own words are.
DWORD sql_support_of(CDatabase& database) {
  DWORD support = odbc_levels(number(database, ask_odbc_conformance)) |
                  ansi_levels(number(database, ask_sql_conformance)) | escape_clauses;
  if (fact(database, ask_integrity) == "Y") support |= ansi89_integrity;
  return support;
}

bool has_new_datetime_type(const CString& server, const CString& version) {
  int major = 0;
  const auto digits = version.view();
  std::from_chars(digits.data(), digits.data() + digits.size(), major);
  return server.Find("SQL SERVER") >= 0 && major >= first_with_new_types;
}

}  // namespace

OLEDBConnection::OLEDBConnection(CDatabase& database) {
  if (!database.IsOpen()) AfxThrowDBException(AFX_SQL_ERROR_CONNECT_FAIL, "The database is not connected.");
  const auto ask = [&](WORD type, CString& answer) { return source_facts::of_connection(database, type, answer); };
  const auto ask_for = [&](WORD type) { return [&ask, type](CString& answer) { return ask(type, answer); }; };
  CString server = required("the name of its server", ask_for(ask_dbms_name));
  const CString version = required("the version of its server", ask_for(ask_dbms_version));
  quote_prefix =
      required("how names are quoted", [&](CString& quote) { return source_facts::identifier_quote(ask, quote); });
  quote_suffix = quote_prefix;

  server.MakeUpper();
  msjet = server == "ACCESS" || server == "MS JET";
  new_datetime_type = has_new_datetime_type(server, version);
  sql_support = sql_support_of(database);
  source_facts::catalog_separator(ask, catalog_separator);
  source_facts::schema_separator(ask, schema_separator);
  table_separator = source_facts::table_separator;
}
