#include "tools/spc/doctor/check.h"

#include <algorithm>

namespace spc::doctor {

const char* word_of(Severity severity) {
  switch (severity) {
    case Severity::error:
      return "error";
    case Severity::warning:
      return "warning";
    default:
      return "note";
  }
}

std::string Check::tables() const {
  std::vector<std::string_view> named;
  std::string text = looked_at;
  for (const Query& query : queries) {
    if (std::ranges::find(named, query.table) != named.end()) continue;
    named.emplace_back(query.table);
    text += (text.empty() ? "" : ", ") + query.table;
  }
  return text;
}

const std::vector<Check>& all_checks() {
  static const std::vector<Check> all = [] {
    std::vector<Check> checks;
    for (const auto& theme : {schema_checks(), server_checks(), number_checks(), revision_checks(), tree_checks(),
                              profile_checks(), sample_checks(), stored_checks()})
      checks.insert(checks.end(), theme.begin(), theme.end());
    return checks;
  }();
  return all;
}

const Check* find_check(std::string_view name) {
  const auto found = std::ranges::find(all_checks(), name, &Check::name);
  return found == all_checks().end() ? nullptr : &*found;
}

Query without_parent(const std::string& table, const std::string& id, const std::string& column,
                     const std::string& parent, const std::string& parent_column) {
  const std::string reference = "[" + table + "].[" + column + "]";
  const std::string key = "[" + parent + "].[" + parent_column + "]";
  return {table, id,
          reference + " IS NOT NULL AND NOT EXISTS (SELECT " + key + " FROM [" + parent + "] WHERE " + key + " = " +
              reference + ")"};
}

Query without_parent(const std::string& table, const std::string& column, const std::string& parent) {
  return without_parent(table, column, column, parent, column);
}

}  // namespace spc::doctor
