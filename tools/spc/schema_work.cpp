#include "tools/spc/schema_work.h"

#include <algorithm>
#include <set>
#include <sstream>

#include "schema/description.h"
#include "tools/spc/interruption.h"
#include "tools/spc/problem.h"

namespace spc {
namespace {

const std::string cannot_ask = "cannot look at the schema";
const std::string cannot_create = "cannot create the schema";

/// Whether the server can run a select of these columns.
bool can_select(Link& link, const std::string& columns, std::string_view object) {
  const std::string statement = "SELECT " + columns + " FROM " + std::string(object) + " WHERE 1=0";
  const auto outcome = guarded([&] { link.db().ExecuteSQL(statement.c_str()); });
  if (outcome) return true;
  const FailureClass why = outcome.failure().failure_class;
  // A view whose table is gone is refused in words of each server's own.
  if (why == FailureClass::no_such_object || why == FailureClass::other) return false;
  throw problem_of(cannot_ask, outcome.failure());
}

std::string joined(const std::vector<std::string_view>& names) {
  std::string text;
  for (const auto name : names)
    text += (text.empty() ? "" : ", ") + std::string(name);
  return text;
}

void inspect(Link& link, const schema::RequiredObject& object, SchemaState& state) {
  const std::string kind = object.is_view ? "view" : "table";
  const bool complete = can_select(link, joined(object.columns), object.name);
  if (!complete && !can_select(link, "1", object.name)) {
    state.missing.push_back(kind + " " + std::string(object.name));
    return;
  }
  ++(object.is_view ? state.views : state.tables);
  state.present.emplace_back(object.name);
  if (complete) return;
  for (const auto column : object.columns)
    if (!can_select(link, std::string(column), object.name))
      state.missing.push_back("column " + std::string(object.name) + "." + std::string(column));
}

/// What a statement creates or drops: the word behind TABLE or VIEW; empty for other statements.
std::string object_of(const std::string& statement) {
  std::istringstream words(statement);
  std::string word;
  while (words >> word)
    if (word == "TABLE" || word == "VIEW") break;
  while (words >> word)
    if (word != "IF" && word != "EXISTS") return word;
  return {};
}

schema::Server known_server(Link& link, const std::string& what) {
  const auto server = link.server();
  if (server) return *server;
  throw Problem{what, "there is no schema for " + std::string(link.db().describe_server().view()),
                "Schemas are there for SQLite, MySQL and MariaDB, SQL Server, Oracle and Access."};
}

void refuse_when_present(Link& link) {
  const SchemaState state = inspect_schema(link);
  if (state.present.empty()) return;
  constexpr std::size_t most = 5;
  std::string names;
  for (std::size_t i = 0; i < std::min(most, state.present.size()); ++i)
    names += (i == 0 ? "" : ", ") + state.present[i];
  if (state.present.size() > most) names += " and " + std::to_string(state.present.size() - most) + " more";
  throw Problem{cannot_create, "the database holds " + names + " already",
                state.missing.empty() ? "It is complete and ready for use; for a new one, name another database."
                                      : "It is not complete: see spc db check. Name an empty database."};
}

/// Takes back what a server without transactions for DDL has kept. Only what this run has made: another may have
/// created the schema at the same time.
void drop_again(Link& link, schema::Server server, const std::set<std::string>& made) {
  for (const auto& statement : schema::drop_statements(server))
    if (made.contains(object_of(statement)))
      static_cast<void>(guarded([&] { link.db().ExecuteSQL(statement.c_str()); }));
}

}  // namespace

SchemaState inspect_schema(Link& link) {
  SchemaState state;
  for (const auto& object : schema::required_objects())
    inspect(link, object, state);
  return state;
}

std::size_t create_schema(Link& link) {
  const schema::Server server = known_server(link, cannot_create);
  refuse_when_present(link);
  link.before_schema_change(schema::create_statements(server));
  std::set<std::string> made;
  const auto outcome = guarded([&] {
    AutoODBCTransaction transaction(link.db(), true);
    for (const auto& statement : schema::create_statements(server)) {
      link.db().ExecuteSQL(statement.c_str());
      if (const auto name = object_of(statement); statement.starts_with("CREATE") && !name.empty()) made.insert(name);
    }
    transaction.commit();
  });
  if (!outcome) {
    const Undisturbed cleaning(link.db());
    drop_again(link, server, made);
    throw problem_of(cannot_create, outcome.failure());
  }
  return schema::required_objects().size();
}

std::vector<std::string> renewal_statements(Link& link) {
  const schema::Server server = known_server(link, "cannot renew the schema");
  auto all = schema::drop_statements(server);
  const auto then = schema::create_statements(server);
  all.insert(all.end(), then.begin(), then.end());
  return all;
}

void drop_schema(Link& link) {
  const std::string what = "cannot drop the schema";
  const schema::Server server = known_server(link, what);
  link.before_schema_change(schema::drop_statements(server));
  doing(what, [&] {
    AutoODBCTransaction transaction(link.db(), true);
    for (const auto& statement : schema::drop_statements(server))
      link.db().ExecuteSQL(statement.c_str());
    transaction.commit();
  });
}

}  // namespace spc
