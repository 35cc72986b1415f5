#include "tools/spc/doctor/unique_keys.h"

#include <algorithm>
#include <array>
#include <map>

#include "schema/description.h"
#include "spcbase/platform/database/recordset.h"
#include "tools/spc/doctor/examination.h"
#include "tools/spc/problem.h"

namespace spc::doctor {
namespace {

/// How a kind of server tells its unique indexes: table, index and column of each, ordered by table and index. A column
/// that is an expression is null.
struct Catalogue {
  schema::Server server;
  const char* statement;
};

constexpr std::array<Catalogue, 4> catalogues = {{
    {schema::Server::sqlite,
     "SELECT M.[name], L.[name], I.[name] FROM [sqlite_master] M, pragma_index_list(M.[name]) L, "
     "pragma_index_info(L.[name]) I WHERE M.[type] = 'table' AND L.[unique] = 1 AND L.[partial] = 0 UNION ALL "
     "SELECT M.[name], '', T.[name] FROM [sqlite_master] M, pragma_table_info(M.[name]) T WHERE M.[type] = 'table' AND "
     "T.[pk] > 0 ORDER BY 1, 2"},
    {schema::Server::mysql,
     "SELECT TABLE_NAME, INDEX_NAME, COLUMN_NAME FROM INFORMATION_SCHEMA.STATISTICS WHERE TABLE_SCHEMA = DATABASE() "
     "AND "
     "NON_UNIQUE = 0 ORDER BY TABLE_NAME, INDEX_NAME"},
    {schema::Server::sql_server,
     "SELECT T.[name], I.[name], C.[name] FROM sys.tables T, sys.indexes I, sys.index_columns K, sys.columns C WHERE "
     "I.[object_id] = T.[object_id] AND K.[object_id] = I.[object_id] AND K.[index_id] = I.[index_id] AND "
     "C.[object_id] "
     "= K.[object_id] AND C.[column_id] = K.[column_id] AND I.[is_unique] = 1 AND I.[has_filter] = 0 AND "
     "K.[is_included_column] = 0 ORDER BY T.[name], I.[name]"},
    {schema::Server::oracle,
     "SELECT I.TABLE_NAME, I.INDEX_NAME, C.COLUMN_NAME FROM USER_INDEXES I, USER_IND_COLUMNS C WHERE C.INDEX_NAME = "
     "I.INDEX_NAME AND I.UNIQUENESS = 'UNIQUE' ORDER BY I.TABLE_NAME, I.INDEX_NAME"},
}};

constexpr int name_chars = 255;

class IndexColumns : public CRecordset {
 public:
  explicit IndexColumns(CDatabase* db) : CRecordset(db) { m_nFields = 3; }
  void DoFieldExchange(CFieldExchange* exchange) override {
    exchange->SetFieldType(CFieldExchange::outputColumn);
    RFX_Text(exchange, "[TABLE_NAME]", table, name_chars);
    RFX_Text(exchange, "[INDEX_NAME]", index, name_chars);
    RFX_Text(exchange, "[COLUMN_NAME]", column, name_chars);
  }
  CString table;
  CString index;
  CString column;
};

std::string capitals(CString name) { return std::string(name.MakeUpper().view()); }

/// The columns of one unique index; an empty name is an expression.
using IndexParts = std::vector<std::string>;
/// The unique indexes of each table by its name in capitals.
using UniqueIndexes = std::map<std::string, std::map<std::string, IndexParts>>;

UniqueIndexes read_indexes(CDatabase& db, const char* statement) {
  UniqueIndexes indexes;
  IndexColumns row(&db);
  for (row.Open(CRecordset::forwardOnly, statement, CRecordset::readOnly); row.m_bEOF == FALSE; row.MoveNext()) {
    const bool expression = row.IsFieldNull(&row.column) != FALSE;
    indexes[capitals(row.table)][capitals(row.index)].push_back(expression ? "" : capitals(row.column));
  }
  return indexes;
}

/// Whether an index part is a column of the key, or stands for one that may be null: an expression, or a column that
/// hides one, as the schema makes them on servers that let several nulls pass.
bool stands_for(const std::string& part, const schema::Table& table, std::string_view column) {
  if (part == column) return true;
  return table.find(column)->nullable && (part.empty() || part == std::string(column) + "_KEY");
}

bool keeps_apart(const IndexParts& parts, const schema::Table& table, const std::vector<std::string_view>& key) {
  IndexParts left = parts;
  for (const auto column : key) {
    // A column of its own goes before one that may stand for another.
    auto found = std::ranges::find(left, column);
    if (found == left.end())
      found = std::ranges::find_if(left, [&](const auto& part) { return stands_for(part, table, column); });
    // An index over fewer columns keeps rows apart all the more.
    if (found != left.end()) left.erase(found);
  }
  return left.empty();
}

std::string joined(const std::vector<std::string_view>& names) {
  std::string text;
  for (const auto name : names)
    text += (text.empty() ? "" : ", ") + std::string(name);
  return text;
}

void look_at_table(Examination& examination, const schema::Table& table, const UniqueIndexes& indexes) {
  std::vector<std::pair<std::string, std::vector<std::string_view>>> wanted;
  if (!table.primary_key.empty()) wanted.emplace_back("primary key", table.primary_key);
  for (const auto& key : table.unique_keys)
    wanted.emplace_back(key.name, key.columns);
  const auto found = indexes.find(std::string(table.name));
  for (const auto& key : wanted) {
    const bool there = found != indexes.end() && std::ranges::any_of(found->second, [&](const auto& index) {
                         return keeps_apart(index.second, table, key.second);
                       });
    if (!there)
      examination.found(std::string(table.name),
                        {"key", {key.first}, false, 1, key.first + " over " + joined(key.second)});
  }
}

}  // namespace

void look_for_missing_keys(Examination& examination) {
  const auto server = examination.link().server();
  const auto catalogue = std::ranges::find_if(catalogues, [&](const auto& known) { return server == known.server; });
  if (catalogue == catalogues.end())
    return examination.does_not_apply({}, "this kind of server has no list of its keys that a login may read");
  const auto indexes = read_indexes(examination.link().db(), catalogue->statement);
  const bool any = std::ranges::any_of(schema::tables(),
                                       [&](const auto& table) { return indexes.contains(std::string(table.name)); });
  if (!any) throw Problem{"", "the server lists no key of any table of the schema, so this login may not see them", ""};
  const auto& present = examination.schema().present;
  for (const auto& table : schema::tables())
    if (std::ranges::find(present, table.name) != present.end()) look_at_table(examination, table, indexes);
}

}  // namespace spc::doctor
