#include "spcbase/foundation/failure.h"
#include "tools/spc/connection_text.h"
#include "tools/spc/interruption.h"
#include "tools/spc/password_input.h"
#include "tools/spc/problem.h"
#include "tools/spc/source_definition.h"
#include "tools/spc/source_request.h"
#include "tools/spc/source_rows.h"

namespace spc {
namespace {

constexpr const char* ask_word = "ask";

void require_no_password(const std::string& connection, const PasswordRequest& request, const std::string& what) {
  if (request.in_arguments || !holds_password(connection)) return;
  throw Problem{
      what, "the connection string on the command line holds a password",
      "Every user of the machine can see it there. Leave it out: it is asked for at a terminal, and read with "
      "--password-fd N; --allow-password-in-arguments takes it nevertheless.",
      exit_misuse};
}

/// The connection string with the password that was obtained for it.
std::string completed(const std::string& connection, const std::optional<std::string>& password,
                      const std::string& what) {
  if (!password) return connection;
  if (connection.empty())
    throw Problem{what, "there is no connection string for the password to stand in",
                  "Give one with --connection-string.", exit_misuse};
  if (names_sqlite_file(connection))
    throw Problem{what, "an SQLite file has no password", "Leave the password out, or say --no-password.", exit_misuse};
  return with_password(connection, *password);
}

/// The connection string that is asked for; nothing when it is to stay as it is.
std::optional<std::string> new_connection(const SourceRequest& request, const Definition& definition,
                                          const Terminal& terminal, const std::string& what) {
  const auto& given = request.fields.connection_string;
  const std::string whose = text_of(base_of(definition).name);
  const bool wants_password = request.password.ask || request.password.file;
  if (!given) {
    if (request.password.none)
      throw Problem{what, "--no-password does not take a password away",
                    "Give the connection string anew with --connection-string.", exit_misuse};
    if (!wants_password) return std::nullopt;
    const auto password = obtain_password(request.password, false, whose, terminal, what);
    return completed(text_of(base_of(definition).connection_string), password, what);
  }
  if (*given == ask_word) return ask_unseen(terminal, "Connection string of " + whose + ", password included", what);
  require_no_password(*given, request.password, what);
  const bool expected = !given->empty() && !names_sqlite_file(*given) && !holds_password(*given);
  return completed(*given, obtain_password(request.password, expected, whose, terminal, what), what);
}

/// For machines the whole definition, for people a line.
void tell(const Terminal& terminal, Link& link, const Definition& definition, const std::string& did) {
  const auto& base = base_of(definition);
  if (!terminal.json) {
    const bool secret = holds_password(text_of(base.connection_string));
    terminal.out << did << ' ' << described(definition) << ", " << (secret ? "with" : "without") << " a password\n";
    return;
  }
  const auto rows = read_source_rows(link, 0, "cannot read what was stored");
  JsonWriter json(terminal.out);
  json.begin_object();
  write_definition(json, definition, find_source(rows, std::to_string(base.id), "cannot read what was stored"));
  json.end_object();
}

void print_rows(std::ostream& out, const std::vector<SourceRow>& rows, bool with_state) {
  Table table;
  table.add_column("id", Align::right);
  for (const char* heading : {"kind", "name", "description", "type", "modified"})
    table.add_column(heading);
  if (with_state) table.add_column("state");
  for (const auto& row : rows)
    table.add_row({std::to_string(row.id), kind_name(row.kind), row.name, row.description, row.type, row.modified,
                   row.removed ? "removed" : "live"});
  table.print(out);
}

}  // namespace

int add_source(const Place& place, const SourceRequest& request, const Terminal& terminal) {
  const std::string what = "cannot add the data source " + *request.fields.name;
  Definition definition = definition_of_kind(request.kind.empty() ? OLEDBInfo::kind : kind_of_word(request.kind));
  apply(request.fields, definition, what);
  Link link(connect_text_of(place, false), terminal);
  require_free_name(read_source_rows(link, 0, what), definition, what);
  if (request.fields.connection_string || request.password.file || request.password.ask) {
    const auto connection = new_connection(request, definition, terminal, what);
    base_of(definition).connection_string = connection->c_str();
  }
  store_new(link, definition, request.max_size, what);
  const Undisturbed saved(link.db());
  tell(terminal, link, definition, "Added");
  return exit_done;
}

int list_sources(const Place& place, const SourceRequest& request, const Terminal& terminal) {
  Link link(connect_text_of(place, false), trace_of(terminal));
  auto rows = read_source_rows(link, request.as_user, "cannot list the data sources");
  if (!request.all) std::erase_if(rows, [](const SourceRow& row) { return row.removed; });
  if (!request.kind.empty())
    std::erase_if(rows, [kind = kind_of_word(request.kind)](const SourceRow& row) { return row.kind != kind; });
  if (terminal.json) {
    JsonWriter json(terminal.out);
    json.begin_array();
    for (const auto& row : rows) {
      json.begin_object();
      write_source_row(json, row);
      json.end_object();
    }
    json.end_array();
  } else if (rows.empty()) {
    terminal.out << "There are no data sources to be seen.\n";
  } else {
    print_rows(terminal.out, rows, request.all);
  }
  return exit_done;
}

int show_source(const Place& place, const SourceRequest& request, const Terminal& terminal) {
  const std::string what = "cannot show the data source " + request.which;
  Link link(connect_text_of(place, false), trace_of(terminal));
  const auto rows = read_source_rows(link, request.as_user, what);
  const SourceRow& row = find_source(rows, request.which, what);
  const Definition definition = read_definition(link, row, request.max_size, what);
  if (request.xml) {
    terminal.out << doing(what, [&] {
                      return std::visit([](const auto& held) { return held.get_xml(true, true); }, definition);
                    }).view();
  } else if (terminal.json) {
    JsonWriter json(terminal.out);
    json.begin_object();
    write_definition(json, definition, row);
    json.end_object();
  } else {
    print_facts(terminal.out, facts_of(definition, row));
  }
  return exit_done;
}

int edit_source(const Place& place, const SourceRequest& request, const Terminal& terminal) {
  const std::string what = "cannot edit the data source " + request.which;
  const PasswordRequest& password = request.password;
  if (request.fields == SourceFields() && !password.file && !password.ask && !password.none)
    throw Problem{what, "nothing is given that is to change", "spc source edit --help tells what can.", exit_misuse};
  Link link(connect_text_of(place, false), terminal);
  const auto rows = read_source_rows(link, request.as_user, what);
  const SourceRow& row = find_source(rows, request.which, what);
  Definition definition = read_definition(link, row, request.max_size, what);
  apply(request.fields, definition, what);
  if (request.fields.name && !row.removed) require_free_name(read_source_rows(link, 0, what), definition, what);
  if (const auto connection = new_connection(request, definition, terminal, what))
    base_of(definition).connection_string = connection->c_str();
  store(link, definition, request.max_size, what);
  const Undisturbed saved(link.db());
  tell(terminal, link, definition, row.removed ? "Changed the removed" : "Changed");
  return exit_done;
}

int remove_source(const Place& place, const SourceRequest& request, const Terminal& terminal) {
  const std::string what = "cannot remove the data source " + request.which;
  Link link(connect_text_of(place, false), terminal);
  const auto rows = read_source_rows(link, request.as_user, what);
  const SourceRow& row = find_source(rows, request.which, what);
  // Removing asks for the id alone, so that what cannot be read can be removed too.
  doing(what, [&] {
    OLEDBInfo removed;
    removed.id = row.id;
    removed.remove(&link.db());
  });
  if (terminal.json) {
    JsonWriter json(terminal.out);
    json.begin_object();
    SourceRow now = row;
    now.removed = true;
    write_source_row(json, now);
    json.key("was_removed").value(row.removed);
    json.end_object();
  } else {
    terminal.out << "Removed " << described(row) << " (" << kind_name(row.kind)
                 << "): " << (row.removed ? "it was removed already\n" : "its row stays, marked\n");
  }
  return exit_done;
}

}  // namespace spc
