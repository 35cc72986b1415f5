#include "spcbase/platform/database/odbc_statement.h"

#include <algorithm>
#include <array>

namespace spcdb {
namespace {

/// Columns of the catalogue's answers.
constexpr SQLUSMALLINT primary_keys_column = 4;
constexpr SQLUSMALLINT statistics_index = 6;
constexpr SQLUSMALLINT statistics_type = 7;
constexpr SQLUSMALLINT statistics_column = 9;
constexpr SQLUSMALLINT columns_name = 4;
constexpr SQLUSMALLINT columns_nullable = 11;

/// One call of the catalogue and its rows.
class CatalogueRows {
 public:
  explicit CatalogueRows(OdbcSession& session) : session_(session), handle_(session.allocate_statement()) {}
  ~CatalogueRows() {
    session_.gate().release("SQLFreeHandle");
    SQLFreeHandle(SQL_HANDLE_STMT, handle_);
  }
  CatalogueRows(const CatalogueRows&) = delete;
  CatalogueRows& operator=(const CatalogueRows&) = delete;

  template <class Call>
  SQLRETURN checked(const char* function, Call&& call) {
    return session_.checked(function, SQL_HANDLE_STMT, handle_, [&] { return call(handle_); });
  }
  bool next() {
    return checked("SQLFetch", [](SQLHSTMT handle) { return SQLFetch(handle); }) != SQL_NO_DATA;
  }
  std::string text(SQLUSMALLINT column) {
    std::array<char, 512> buffer{};
    SQLLEN length = SQL_NULL_DATA;
    checked("SQLGetData", [&](SQLHSTMT handle) {
      return SQLGetData(handle, column, SQL_C_CHAR, buffer.data(), static_cast<SQLLEN>(buffer.size() - 1), &length);
    });
    return length == SQL_NULL_DATA ? std::string() : std::string(buffer.data());
  }

 private:
  OdbcSession& session_;
  SQLHSTMT handle_;
};

SQLSMALLINT size_of(std::string_view text) noexcept { return static_cast<SQLSMALLINT>(text.size()); }

}  // namespace

std::vector<std::string> OdbcSession::primary_key(std::string_view table) {
  CatalogueRows rows(*this);
  rows.checked("SQLPrimaryKeys", [&](SQLHSTMT handle) {
    return SQLPrimaryKeys(handle, nullptr, 0, nullptr, 0, odbc_text(table), size_of(table));
  });
  std::vector<std::string> columns;
  while (rows.next())
    columns.push_back(rows.text(primary_keys_column));
  return columns;
}

std::vector<std::string> OdbcSession::never_null_columns(std::string_view table) {
  CatalogueRows rows(*this);
  rows.checked("SQLColumns", [&](SQLHSTMT handle) {
    return SQLColumns(handle, nullptr, 0, nullptr, 0, odbc_text(table), size_of(table), nullptr, 0);
  });
  std::vector<std::string> columns;
  while (rows.next()) {
    auto name = rows.text(columns_name);
    if (rows.text(columns_nullable) == std::to_string(SQL_NO_NULLS)) columns.push_back(std::move(name));
  }
  return columns;
}

std::vector<std::string> OdbcSession::unique_key(std::string_view table) {
  std::vector<std::pair<std::string, std::vector<std::string>>> indexes;
  {
    CatalogueRows rows(*this);
    rows.checked("SQLStatistics", [&](SQLHSTMT handle) {
      return SQLStatistics(handle, nullptr, 0, nullptr, 0, odbc_text(table), size_of(table), SQL_INDEX_UNIQUE,
                           SQL_QUICK);
    });
    while (rows.next()) {
      auto index = rows.text(statistics_index);
      const bool about_table = rows.text(statistics_type) == std::to_string(SQL_TABLE_STAT);
      auto column = rows.text(statistics_column);
      if (about_table || column.empty()) continue;
      if (indexes.empty() || indexes.back().first != index)
        indexes.emplace_back(std::move(index), std::vector<std::string>{});
      indexes.back().second.push_back(std::move(column));
    }
  }
  if (indexes.empty()) return {};
  const auto never_null = never_null_columns(table);
  const auto is_never_null = [&](const std::string& column) {
    return std::find(never_null.begin(), never_null.end(), column) != never_null.end();
  };
  for (auto& [index, columns] : indexes)
    if (std::all_of(columns.begin(), columns.end(), is_never_null)) return std::move(columns);
  return {};
}

TableKey OdbcSession::find_key(std::string_view table) {
  settle();
  if (const auto dot = table.rfind('.'); dot != std::string_view::npos) table.remove_prefix(dot + 1);
  TableKey key{primary_key(table)};
  if (key.columns.empty()) key.columns = unique_key(table);
  if (!key.columns.empty() || !quirks_.folds_names_to_lower) return key;
  std::string folded(table);
  std::transform(folded.begin(), folded.end(), folded.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  if (folded == table) return key;
  key.columns = primary_key(folded);
  if (key.columns.empty()) key.columns = unique_key(folded);
  return key;
}

}  // namespace spcdb
