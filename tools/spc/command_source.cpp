// The grammar of the tasks on data sources.
#include "tools/spc/request.h"

namespace spc {
namespace {

constexpr int largest = 2'147'483'647;

using SourceTask = int (*)(const Place&, const SourceRequest&, const Terminal&);

CLI::App* add_task(CLI::App& source, Request& request, const char* name, const char* help, SourceTask task) {
  CLI::App* command = source.add_subcommand(name, help);
  command->callback([&request, task] {
    request.task = [&request, task](const Terminal& terminal) {
      request.source.as_user = request.as_user;
      return task(request.place, request.source, terminal);
    };
  });
  return command;
}

/// A task on one data source.
CLI::App* add_task_on_one(CLI::App& source, Request& request, const char* name, const char* help, SourceTask task) {
  CLI::App* command = add_task(source, request, name, help, task);
  command->add_option("ID", request.source.which, "The number of the data source, or its name")
      ->type_name("ID|NAME")
      ->required();
  return command;
}

CLI::Option* add_kind(CLI::App& command, Request& request, const char* help) {
  return command.add_option("--kind", request.source.kind, help)->check(CLI::IsMember({"oledb", "adonet"}));
}

void add_name(CLI::App& command, Request& request, const char* help) {
  command.add_option("--name", request.source.fields.name, help)->type_name("NAME");
}

void add_texts(CLI::App& command, SourceFields& fields) {
  command.add_option("--description", fields.description, "What it is for")->type_name("TEXT");
  command.add_option("--type", fields.type, "A word of your own")->type_name("TEXT");
  command.add_option("--flag", fields.flag, "A number of your own")->type_name("N");
}

void add_sql(CLI::App& command, SourceFields& fields) {
  command
      .add_option("--quote", fields.quote, "Which identifiers are quoted: some of catalog,schema,table,column; none")
      ->type_name("LIST");
  command.add_option("--option", fields.option, "A number of your own; OLE DB alone")->type_name("N");
  command.add_option("--provider", fields.provider, "The provider's invariant name; ADO.NET alone")->type_name("TEXT");
  command.add_option("--timeout", fields.timeout, "How long a command may take; -1 is unset; ADO.NET alone")
      ->type_name("SECONDS")
      ->check(CLI::Range(-1, largest));
  command.add_option("--date-literal", fields.date_literal, "A date in its SQL: DATE '%Y-%m-%d'")->type_name("PATTERN");
  command.add_option("--time-literal", fields.time_literal, "A time in its SQL")->type_name("PATTERN");
  command.add_option("--timestamp-literal", fields.timestamp_literal, "A moment in its SQL")->type_name("PATTERN");
  command.add_option("--concatenation", fields.concatenation, "The operator that joins texts")->type_name("TEXT");
  command.add_flag("--default-syntax", fields.default_syntax, "Forget the literals of its own");
}

void add_connection(CLI::App& command, Request& request) {
  PasswordRequest& password = request.source.password;
  command
      .add_option("--connection-string", request.source.fields.connection_string,
                  "Without its password; \"ask\": all of it is typed unseen")
      ->type_name("TEXT");
  auto* file = command.add_option("--password-fd", password.file, "Read the password from this open file descriptor")
                   ->type_name("N")
                   ->check(CLI::Range(0, largest));
  auto* ask = command.add_flag("--ask-password", password.ask, "Ask for the password");
  auto* none = command.add_flag("--no-password", password.none, "There is no password: do not ask");
  ask->excludes(file);
  none->excludes(file)->excludes(ask);
  command.add_flag("--allow-password-in-arguments", password.in_arguments,
                   "Take a connection string with a password, which every user of the machine can see");
}

void add_writing(CLI::App& source, Request& request) {
  SourceFields& fields = request.source.fields;
  CLI::App* add = add_task(source, request, "add", "Add a data source", add_source);
  add->add_option("NAME", fields.name, "What it is called")->required();
  add_kind(*add, request, "oledb when it is not given")->default_str("oledb");
  CLI::App* edit = add_task_on_one(source, request, "edit", "Change what is given, and nothing else", edit_source);
  add_name(*edit, request, "A new name");
  for (CLI::App* command : {add, edit}) {
    add_texts(*command, fields);
    add_sql(*command, fields);
    add_connection(*command, request);
    add_max_size(*command, request.source.max_size);
  }
  add_task_on_one(source, request, "remove", "Mark a data source as removed", remove_source);
}

void add_showing(CLI::App& source, Request& request) {
  CLI::App* list = add_task(source, request, "list", "List the data sources", list_sources);
  list->add_flag("--all", request.source.all, "The removed ones too");
  add_kind(*list, request, "Only those of one kind");
  CLI::App* show = add_task_on_one(source, request, "show", "Show a data source, its password hidden", show_source);
  show->add_flag("--xml", request.source.xml, "Print the XML, its password hidden");
  add_max_size(*show, request.source.max_size);
  CLI::App* test =
      add_task_on_one(source, request, "test", "Open the outside database and say what it is", test_source);
  test->add_flag("--save", request.source.save, "Store what was learnt in the definition");
  add_max_size(*test, request.source.max_size);
}

void add_moving(CLI::App& source, Request& request) {
  SourceRequest& moved = request.source;
  CLI::App* write = add_task_on_one(source, request, "export", "Write a data source into a new file", export_source);
  write->add_option("FILE", moved.file, "A file that does not exist yet")->required();
  write->add_flag("--hide-password", moved.hide_password, "Hide the password; such a file cannot be imported");
  add_max_size(*write, moved.max_size);
  CLI::App* read = add_task(source, request, "import", "Add the data source in a file", import_source);
  read->add_option("FILE", moved.file, "What spc source export has written")->required();
  add_kind(*read, request, "The kind, for a file that does not tell");
  read->add_option("--file-id", moved.file_id, "The id that the file was written under, when it does not tell")
      ->type_name("ID");
  add_name(*read, request, "Another name than that in the file");
  add_max_size(*read, moved.max_size);
  CLI::App* rewrite =
      add_task(source, request, "rewrite", "Write every data source in the present form", rewrite_sources);
  add_kind(*rewrite, request, "Only those of one kind");
  add_max_size(*rewrite, moved.max_size);
}

}  // namespace

void add_source_tasks(CLI::App& app, Request& request) {
  CLI::App* source = app.add_subcommand("source", "Keep the connections to outside databases");
  add_writing(*source, request);
  add_showing(*source, request);
  add_moving(*source, request);
}

}  // namespace spc
