/// Definitions of either kind, as the command reads, changes, shows and stores them.
///
/// Part of the command. Passwords are hidden in whatever is shown.
#pragma once

#include <ostream>
#include <string>
#include <variant>

#include "spcbase/datasource/definition.h"
#include "tools/spc/json.h"
#include "tools/spc/problem.h"
#include "tools/spc/source_request.h"
#include "tools/spc/source_rows.h"
#include "tools/spc/table.h"

namespace spc {

using Definition = std::variant<OLEDBInfo, ADONETDBInfo>;

/// A new definition of a kind.
Definition definition_of_kind(int kind);

inline DataSourceInfoBase& base_of(Definition& definition) {
  return std::visit([](auto& held) -> DataSourceInfoBase& { return held; }, definition);
}
inline const DataSourceInfoBase& base_of(const Definition& definition) {
  return std::visit([](const auto& held) -> const DataSourceInfoBase& { return held; }, definition);
}
inline int version_of(const Definition& definition) {
  return std::visit([](const auto& held) { return held.version; }, definition);
}
inline std::string text_of(const CString& text) { return std::string(text.view()); }

/// "data source 3 Warehouse (OLE DB)".
std::string described(const Definition& definition);

/// The definition in a row.
/// Fails: Problem that tells why it cannot be read.
Definition read_definition(Link& link, const SourceRow& row, int max_size, const std::string& what);

/// Gives a definition the next number and stores it, both or neither.
void store_new(Link& link, Definition& definition, int max_size, const std::string& what);

/// Stores it in its row. One of a future version is refused: what this program does not know of it would be lost.
void store(Link& link, Definition& definition, int max_size, const std::string& what);

/// Refuses a version that this program does not know all of.
void require_known_version(int version, const std::string& what);

/// Refuses a connection string that is none: a cipher may give bytes of chance under another key.
/// Fails: std::runtime_error, as a cipher that notices itself.
void require_readable(const Definition& definition);

/// What is wrong with XML that `set_xml` has refused under an id.
Problem definition_problem(const std::string& what, const Failure& failure, int id);

/// Refuses a name that another live row has.
void require_free_name(const std::vector<SourceRow>& rows, const Definition& definition, const std::string& what);

/// Takes over what is given, but for the connection string.
/// Fails: Problem for a field that the kind does not have, and for one that is none.
void apply(const SourceFields& fields, Definition& definition, const std::string& what);

/// All fields, the connection string as it may be shown. `row` tells what only the row knows.
Facts facts_of(const Definition& definition, const SourceRow& row);
/// The members of one definition, for an object that is open.
void write_definition(JsonWriter& json, const Definition& definition, const SourceRow& row);

/// What is known of names in the SQL of the outside database: "schema.table.column", and "\"name\"" for a quoted one.
void add_name_facts(Facts& facts, const Definition& definition);

/// "0, escape clauses of ODBC or nothing known", as `get_sql_builder` chooses for the definition.
std::string syntax_text(const Definition& definition);

}  // namespace spc
