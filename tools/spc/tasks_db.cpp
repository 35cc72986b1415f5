#include <filesystem>
#include <optional>

#include "tools/spc/dry_run.h"
#include "tools/spc/json.h"
#include "tools/spc/problem.h"
#include "tools/spc/schema_work.h"
#include "tools/spc/table.h"
#include "tools/spc/tasks.h"

namespace spc {
namespace {

const char* dialect_name(int dialect) {
  switch (dialect) {
    case 0:
      return "Microsoft SQL Server";
    case 1:
      return "Oracle";
    case 2:
      return "Microsoft Access";
    case 3:
      return "MySQL";
    default:
      return "none of the four";
  }
}

/// What `spc db check` finds out.
struct CheckResult {
  std::string database;
  std::string server;
  bool driver_says_alive = false;
  bool answers = false;  ///< a statement on CSMON
  bool driver_says_dead = false;
  int dialect = -1;
  SchemaState schema;

  bool complete() const { return schema.missing.empty(); }
  bool good() const { return complete() && answers && !driver_says_dead; }
};

CheckResult check(Link& link) {
  CheckResult result;
  result.database = link.shown_connect_text();
  result.server = link.db().describe_server().view();
  result.driver_says_alive = link.db().check_connection(1);
  result.answers = link.db().check_connection(0);
  // The light check answers from memory on most drivers; this asks the driver what it knows of the link.
  result.driver_says_dead = link.db().link_is_dead();
  if (result.driver_says_dead)
    throw Problem{"cannot check " + result.database, "the driver says that the link is dead",
                  "See that the server runs and can be reached."};
  result.dialect = doing("cannot find the dialect", [&] { return dbcheck::find_db_type(link.db()); });
  result.schema = inspect_schema(link);
  return result;
}

std::string connection_text(const CheckResult& result) {
  if (result.answers) return "alive, a statement was answered";
  if (result.schema.present.empty() && result.driver_says_alive)
    return "alive says the driver; no table is there to ask for";
  return result.driver_says_alive ? "alive says the driver, but a statement on CSMON failed"
                                  : "a statement on CSMON failed";
}

void print_check(std::ostream& out, const CheckResult& result) {
  out << "database    " << result.database << '\n'
      << "server      " << result.server << '\n'
      << "connection  " << connection_text(result) << '\n'
      << "dialect     " << result.dialect << ", " << dialect_name(result.dialect) << '\n'
      << "schema      ";
  if (result.schema.present.empty()) {
    out << "none of its " << result.schema.missing.size() << " tables and views is there\n";
    return;
  }
  out << (result.complete() ? "complete: " : "") << counted(result.schema.tables, "table") << ", "
      << counted(result.schema.views, "view");
  if (!result.complete()) out << "; missing: " << result.schema.missing.size();
  out << '\n';
  for (const auto& name : result.schema.missing)
    out << "  missing " << name << '\n';
}

void write_check(std::ostream& out, const CheckResult& result) {
  JsonWriter json(out);
  json.begin_object();
  json.key("database").value(result.database);
  json.key("server").value(result.server);
  json.key("driver_says_alive").value(result.driver_says_alive);
  json.key("answers").value(result.answers);
  json.key("driver_says_dead").value(result.driver_says_dead);
  json.key("dialect").value(result.dialect);
  json.key("dialect_name").value(dialect_name(result.dialect));
  json.key("tables").value(result.schema.tables);
  json.key("views").value(result.schema.views);
  json.key("missing").begin_array();
  for (const auto& name : result.schema.missing)
    json.value(name);
  json.end_array();
  json.end_object();
}

int create_in(const std::string& connect_text, const Terminal& terminal) {
  Link link(connect_text, terminal);
  const std::size_t objects = create_schema(link);
  if (terminal.json) {
    JsonWriter json(terminal.out);
    json.begin_object();
    json.key("database").value(link.shown_connect_text());
    json.key("objects").value(objects);
    json.end_object();
  } else {
    terminal.out << "Created " << objects << " tables and views in " << link.shown_connect_text() << '\n';
  }
  return exit_done;
}

}  // namespace

int create_database(const Place& place, const Terminal& terminal) {
  const bool dry = terminal.dry_run != nullptr;
  const std::string connect_text = connect_text_of(place, true, dry);
  const auto new_file = dry ? std::nullopt : file_to_be_made(connect_text);
  try {
    return create_in(connect_text, terminal);
  } catch (Problem& problem) {
    std::error_code ignored;
    // It is left: somebody else may have begun with it meanwhile.
    if (new_file && std::filesystem::exists(*new_file, ignored)) problem.note = *new_file + " was made, and is empty.";
    throw;
  }
}

int check_database(const Place& place, const Terminal& terminal) {
  Link link(connect_text_of(place, false), trace_of(terminal));
  const CheckResult result = check(link);
  terminal.json ? write_check(terminal.out, result) : print_check(terminal.out, result);
  if (result.good()) return exit_done;
  const bool empty = result.schema.present.empty();
  throw Problem{"the check found faults",
                result.complete() ? "the server did not answer a statement"
                : empty           ? "the database does not hold the schema"
                                  : counted(result.schema.missing.size(), "thing") + " of the schema " +
                              (result.schema.missing.size() == 1 ? "is" : "are") + " missing",
                empty ? "spc db create makes it." : ""};
}

}  // namespace spc
