#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "spcbase/platform/database/connect_text.h"
#include "spcbase/platform/database/sqlite_connection.h"

namespace spcdb {
namespace {

using Rule = std::pair<std::string_view, const char*>;

/// SQLITE_ERROR stands for everything that is wrong with a statement: only the text tells more.
constexpr std::array<Rule, 14> statement_errors{{
    {"no such table", "42S02"},
    {"no such view", "42S02"},
    {"no such index", "42S12"},
    {"no such column", "42S22"},
    {"has no column named", "42S22"},
    {"already exists", "42S01"},
    {"syntax error", "42000"},
    {"incomplete input", "42000"},
    {"unrecognized token", "42000"},
    {"no such function", "42000"},
    {"ambiguous column name", "42000"},
    {"because it is a view", "42000"},
    {"within a transaction", "25000"},
    {"no transaction is active", "25000"},
}};

const char* sqlstate_of_statement_error(std::string_view message) noexcept {
  for (const auto& [words, state] : statement_errors)
    if (message.find(words) != std::string_view::npos) return state;
  return "HY000";
}

const char* sqlstate_of_constraint(int extended_code, std::string_view message) noexcept {
  // Widths of texts are CHECK constraints by name, as SQLite itself does not enforce them.
  return extended_code == SQLITE_CONSTRAINT_CHECK && message.ends_with("_WIDTH") ? "22001" : "23000";
}

struct TypeRule {
  std::string_view word;
  short sql_type;
  unsigned long precision;
  short scale;
};

constexpr short sql_varchar = 12;
constexpr std::array<TypeRule, 20> type_rules{{
    {"INTEGER", 4, 10, 0},       {"INT", 4, 10, 0},
    {"SMALLINT", 5, 5, 0},       {"TINYINT", -6, 3, 0},
    {"BIGINT", -5, 19, 0},       {"BIT", -7, 1, 0},
    {"DOUBLE", 8, 15, 0},        {"FLOAT", 8, 15, 0},
    {"REAL", 8, 15, 0},          {"NUMERIC", 2, 15, 0},
    {"DECIMAL", 3, 15, 0},       {"DATETIME", 93, 23, 3},
    {"TIMESTAMP", 93, 23, 3},    {"DATE", 91, 10, 0},
    {"TIME", 92, 8, 0},          {"TEXT", -1, 2147483647, 0},
    {"BLOB", -4, 2147483647, 0}, {"LONGBLOB", -4, 2147483647, 0},
    {"CHAR", 1, 1, 0},           {"VARCHAR", sql_varchar, 255, 0},
}};

/// The first number in brackets behind a type's name; 0 when there is none.
unsigned long declared_size(std::string_view declared) noexcept {
  unsigned long size = 0;
  const auto open = declared.find('(');
  if (open != std::string_view::npos)
    std::from_chars(declared.data() + open + 1, declared.data() + declared.size(), size);
  return size;
}

}  // namespace

const char* sqlite_sqlstate(int extended_code, std::string_view message) noexcept {
  switch (extended_code & 0xff) {
    case SQLITE_ERROR:
      return sqlstate_of_statement_error(message);
    case SQLITE_CONSTRAINT:
      return sqlstate_of_constraint(extended_code, message);
    case SQLITE_BUSY:
      return extended_code == SQLITE_BUSY_SNAPSHOT ? "40001" : "HYT00";
    case SQLITE_LOCKED:
      return "HYT00";
    case SQLITE_INTERRUPT:
      return "HY008";
    case SQLITE_FULL:
      return "53100";
    case SQLITE_READONLY:
      return "25006";
    case SQLITE_PERM:
    case SQLITE_AUTH:
      return "42501";
    case SQLITE_CANTOPEN:
    case SQLITE_NOTADB:
      return "08001";
    case SQLITE_IOERR:
      return "08S01";
    case SQLITE_NOMEM:
      return "HY001";
    case SQLITE_TOOBIG:
      return "22001";
    case SQLITE_MISMATCH:
      return "22018";
    case SQLITE_RANGE:
      return "07009";
    case SQLITE_MISUSE:
      return "HY010";
    default:
      return "HY000";
  }
}

void describe_sqlite_type(std::string_view declared, ColumnInfo& info) {
  info.sql_type = sql_varchar;
  info.precision = 255;
  const auto word = declared.substr(0, declared.find_first_of(" ("));
  for (const auto& rule : type_rules) {
    if (!same_word(word, rule.word)) continue;
    info.sql_type = rule.sql_type;
    info.precision = rule.precision;
    info.scale = rule.scale;
  }
  const auto size = declared_size(declared);
  if (size != 0 && (info.sql_type == sql_varchar || info.sql_type == 1 || info.sql_type == 2 || info.sql_type == 3))
    info.precision = size;
}

}  // namespace spcdb
