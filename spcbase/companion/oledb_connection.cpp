#include "spcbase/companion/oledb_connection.h"

#include <charconv>
#include <string>

namespace {

/// ODBC's numbers for what is asked.
enum Question : WORD {
  ask_odbc_conformance = 15,
  ask_dbms_name = 17,
  ask_dbms_version = 18,
  ask_quote = 29,
  ask_catalog_separator = 41,
  ask_integrity = 73,
  ask_schema_usage = 91,
  ask_catalog_usage = 92,
  ask_sql_conformance = 118,
  ask_catalog_name = 10003
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

/// The separator where the driver does not name another.
constexpr char usual_separator[] = ".";

/// The first version of SQL Server with the new types, 2008.
constexpr int first_with_new_types = 10;

bool succeeded(RETCODE code) { return code == 0 || code == 1; }

CString required_text(CDatabase& database, WORD type) {
  CString text;
  if (succeeded(database.information_text(type, text))) return text;
  CString message;
  message.Format("The driver does not answer what SQLGetInfo(%d) asks.", static_cast<int>(type));
  AfxThrowDBException(AFX_SQL_ERROR, message.GetString());
}

CString optional_text(CDatabase& database, WORD type) {
  CString text;
  database.information_text(type, text);
  return text;
}

DWORD optional_number(CDatabase& database, WORD type) {
  DWORD value = 0;
  return succeeded(database.GetInfo(type, value)) ? value : 0;
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
  DWORD support = odbc_levels(optional_number(database, ask_odbc_conformance)) |
                  ansi_levels(optional_number(database, ask_sql_conformance)) | escape_clauses;
  if (optional_text(database, ask_integrity) == "Y") support |= ansi89_integrity;
  return support;
}

/// One driver has catalogs and does not say so by its usage of them, another the other way round.
CString catalog_separator_of(CDatabase& database) {
  if (optional_text(database, ask_catalog_name) != "Y" && optional_number(database, ask_catalog_usage) == 0) return {};
  const CString separator = optional_text(database, ask_catalog_separator);
  return separator.IsEmpty() ? CString(usual_separator) : separator;
}

int major_version(const CString& version) {
  int major = 0;
  const auto digits = version.view();
  std::from_chars(digits.data(), digits.data() + digits.size(), major);
  return major;
}

}  // namespace

OLEDBConnection::OLEDBConnection(CDatabase& database) {
  if (!database.IsOpen()) AfxThrowDBException(AFX_SQL_ERROR_CONNECT_FAIL, "The database is not connected.");
  CString server = required_text(database, ask_dbms_name);
  const CString version = required_text(database, ask_dbms_version);
  const CString quote = required_text(database, ask_quote);

  server.MakeUpper();
  msjet = server == "ACCESS" || server == "MS JET";
  new_datetime_type = server.Find("SQL SERVER") >= 0 && major_version(version) >= first_with_new_types;
  sql_support = sql_support_of(database);
  catalog_separator = catalog_separator_of(database);
  if (optional_number(database, ask_schema_usage) != 0) schema_separator = usual_separator;
  table_separator = usual_separator;
  // A blank says that names cannot be quoted.
  if (quote != " ") quote_prefix = quote_suffix = quote;
}
