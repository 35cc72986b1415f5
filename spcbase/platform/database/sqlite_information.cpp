#include <algorithm>
#include <array>

#include "spcbase/platform/database/sqlite_connection.h"
#include "spcbase/platform/database/sqlite_session.h"

// What an ODBC driver of SQLite would answer to SQLGetInfo: here there is none.

namespace spcdb {
namespace {

/// An answer that is a number, by ODBC's number for the question.
struct NumberFact {
  unsigned short type;
  std::uint32_t value;
};

/// An answer that is a text.
struct TextFact {
  unsigned short type;
  std::string_view text;
};

constexpr std::array<NumberFact, 6> numbers{{
    {15, 0},   // SQL_ODBC_SQL_CONFORMANCE: SQL_OSC_MINIMUM
    {46, 2},   // SQL_TXN_CAPABLE: SQL_TC_ALL
    {86, 0},   // SQL_ALTER_TABLE: nothing that a standard names
    {91, 31},  // SQL_SCHEMA_USAGE: the name of an attached file goes before that of a table
    {92, 0},   // SQL_CATALOG_USAGE: none
    {118, 1},  // SQL_SQL_CONFORMANCE: SQL_SC_SQL92_ENTRY, but for GRANT and REVOKE
}};

constexpr std::array<TextFact, 5> texts{{
    {17, "SQLite"},  // SQL_DBMS_NAME
    {29, "`"},       // SQL_IDENTIFIER_QUOTE_CHAR: "NAME" may become a text
    {41, ""},        // SQL_CATALOG_NAME_SEPARATOR
    {73, "Y"},       // SQL_INTEGRITY
    {10003, "N"},    // SQL_CATALOG_NAME
}};

constexpr unsigned short info_dbms_ver = 18;

template <class Facts>
auto find(const Facts& facts, unsigned short type) {
  return std::find_if(facts.begin(), facts.end(), [=](const auto& fact) { return fact.type == type; });
}

}  // namespace

short SqliteSession::information(unsigned short type, std::uint32_t& value) {
  value = 0;
  const auto* fact = find(numbers, type);
  if (fact == numbers.end()) return -1;
  value = fact->value;
  return 0;
}

short SqliteSession::information_text(unsigned short type, std::string& text) {
  text.clear();
  const auto* fact = find(texts, type);
  if (fact != texts.end())
    text = fact->text;
  else if (type == info_dbms_ver)
    text = sqlite3_libversion();
  else
    return -1;
  return 0;
}

}  // namespace spcdb
