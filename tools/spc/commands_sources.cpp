// Data sources.
#include "tools/spc/command_table.h"
#include "tools/spc/json_shapes.h"

namespace spc {
namespace {

using namespace shapes;
using S = SourceRequest;
using F = SourceFields;
using P = PasswordRequest;

template <auto work>
int on_sources(const Request& request, const Terminal& terminal) {
  SourceRequest asked = request.source;
  asked.as_user = request.as_user;
  return work(request.place, asked, terminal);
}

// What they print.

Properties row_properties() {
  return {{"id", integer()}, {"kind", text()},    {"name", text()},     {"description", text()},
          {"type", text()},  {"flag", integer()}, {"modified", text()}, {"removed", boolean()}};
}

Properties definition_properties() {
  const Shape syntax = object(
      {{"date_literal", text()}, {"time_literal", text()}, {"timestamp_literal", text()}, {"concatenation", text()}});
  return with(row_properties(), {{"version", integer()},
                                 {"connection_string", text()},
                                 {"password", boolean()},
                                 {"quote", array(text())},
                                 {"quote_prefix", text()},
                                 {"quote_suffix", text()},
                                 {"catalog_separator", text()},
                                 {"schema_separator", text()},
                                 {"table_separator", text()},
                                 optional("option", integer()),
                                 optional("internal_option", integer()),
                                 optional("provider", text()),
                                 optional("default_command_timeout", nullable(integer())),
                                 {"syntax_kind", integer()},
                                 {"is_oracle", boolean()},
                                 {"syntax", nullable(syntax)}});
}

Shape definition() { return object(definition_properties()); }
Shape rows() { return array(object(row_properties())); }
Shape removed() { return object(with(row_properties(), {{"was_removed", boolean()}})); }

Shape tested() {
  return object(with(definition_properties(),
                     {{"server", text()}, {"connecting_ms", number()}, {"asking_ms", number()}, {"saved", boolean()}}));
}

Shape exported() {
  return object(with(row_properties(),
                     {{"file", text()}, {"bytes", integer()}, {"password", constants({"hidden", "enciphered"})}}));
}

Shape imported() { return object(with(definition_properties(), {{"file", text()}, {"file_id", integer()}})); }

Shape rewritten() {
  const Shape failed = object({{"id", integer()}, {"kind", text()}, {"name", text()}, {"reason", text()}});
  return object({{"found", integer()}, {"saved", integer()}, {"failed", array(failed)}});
}

// What they take.

template <auto member>
Target field(Request& request) {
  return at<&Request::source, &S::fields, member>(request);
}

const Option which = {.name = "ID",
                      .help = "The number of the data source, or its name",
                      .target = at<&Request::source, &S::which>,
                      .required = true,
                      .offers = Offers::data_sources};
const Option max_size = max_size_option(at<&Request::source, &S::max_size>);

Option kind(std::string_view help) {
  return {.name = "--kind",
          .value = "oledb|adonet",
          .help = help,
          .target = at<&Request::source, &S::kind>,
          .offers = Offers::words,
          .words = {"oledb", "adonet"}};
}

Option name(std::string_view help) {
  return {.name = "--name", .value = "NAME", .help = help, .target = field<&F::name>};
}

Option file(std::string_view help) {
  return {.name = "FILE",
          .help = help,
          .target = at<&Request::source, &S::file>,
          .required = true,
          .offers = Offers::files};
}

/// What a definition is made of, and how its password comes.
std::vector<Option> definition_options() {
  return {
      {.name = "--description", .value = "TEXT", .help = "What it is for", .target = field<&F::description>},
      {.name = "--type", .value = "TEXT", .help = "A word of your own", .target = field<&F::type>},
      {.name = "--flag", .value = "N", .help = "A number of your own", .target = field<&F::flag>},
      {.name = "--quote",
       .value = "LIST",
       .help = "Which identifiers are quoted: some of catalog,schema,table,column; none",
       .target = field<&F::quote>,
       .offers = Offers::suggestions,
       .words = {"catalog", "schema", "table", "column", "none"}},
      {.name = "--option", .value = "N", .help = "A number of your own; OLE DB alone", .target = field<&F::option>},
      {.name = "--provider",
       .value = "TEXT",
       .help = "The provider's invariant name; ADO.NET alone",
       .target = field<&F::provider>},
      {.name = "--timeout",
       .value = "SECONDS",
       .help = "How long a command may take; -1 is unset; ADO.NET alone",
       .target = field<&F::timeout>,
       .within = Bounds{-1, largest}},
      {.name = "--date-literal",
       .value = "PATTERN",
       .help = "A date in its SQL: DATE '%Y-%m-%d'",
       .target = field<&F::date_literal>},
      {.name = "--time-literal", .value = "PATTERN", .help = "A time in its SQL", .target = field<&F::time_literal>},
      {.name = "--timestamp-literal",
       .value = "PATTERN",
       .help = "A moment in its SQL",
       .target = field<&F::timestamp_literal>},
      {.name = "--concatenation",
       .value = "TEXT",
       .help = "The operator that joins texts",
       .target = field<&F::concatenation>},
      {.name = "--default-syntax", .help = "Forget the literals of its own", .target = field<&F::default_syntax>},
      {.name = "--connection-string",
       .value = "TEXT",
       .help = "Without its password; \"ask\": all of it is typed unseen",
       .target = field<&F::connection_string>,
       .offers = Offers::connect_texts},
      {.name = "--password-fd",
       .value = "N",
       .help = "Read the password from this open file descriptor",
       .target = at<&Request::source, &S::password, &P::file>,
       .within = Bounds{0, largest}},
      {.name = "--ask-password",
       .help = "Ask for the password",
       .target = at<&Request::source, &S::password, &P::ask>,
       .excludes = {"--password-fd"}},
      {.name = "--no-password",
       .help = "There is no password: do not ask",
       .target = at<&Request::source, &S::password, &P::none>,
       .excludes = {"--password-fd", "--ask-password"}},
      {.name = "--allow-password-in-arguments",
       .help = "Take a connection string with a password, which every user of the machine can see",
       .target = at<&Request::source, &S::password, &P::in_arguments>},
      max_size,
  };
}

std::vector<Option> behind(std::vector<Option> first, const std::vector<Option>& more) {
  first.insert(first.end(), more.begin(), more.end());
  return first;
}

constexpr std::string_view password_note =
    "The connection string is given without its password, which is asked for at a terminal and never shown. In the "
    "database the whole string is enciphered, by a key that follows from the row's number: that hides it from readers, "
    "not from whoever has this program. So let its users alone read the database, and give the outside login no more "
    "rights than it needs.";

std::vector<Command> writing_commands() {
  return {
      {.path = "source add",
       .help = "Add a data source",
       .more = password_note,
       .options = behind({{.name = "NAME", .help = "What it is called", .target = field<&F::name>, .required = true},
                          kind("oledb when it is not given")},
                         definition_options()),
       .examples = {{"--connect sqlite:demo.db source add Itself --connection-string sqlite:demo.db",
                     "an SQLite file, which has no password"},
                    {"source add Lab --connection-string 'DSN=lab;UID=spc' --password-fd 3",
                     "with a password that a script hands over: 3<FILE"}},
       .changes = true,
       .json = definition,
       .task = on_sources<add_source>},
      {.path = "source edit",
       .help = "Change what is given, and nothing else",
       .more = password_note,
       .options = behind({which, name("A new name")}, definition_options()),
       .examples = {{"source edit Lab --description 'results of the laboratory'", "one field"}},
       .changes = true,
       .json = definition,
       .task = on_sources<edit_source>},
      {.path = "source remove",
       .help = "Mark a data source as removed",
       .more = "Nothing is deleted: its row stays, connection string included.",
       .options = {which},
       .examples = {{"--connect sqlite:demo.db source remove 1", "by its number"}},
       .changes = true,
       .json = removed,
       .task = on_sources<remove_source>},
  };
}

std::vector<Command> showing_commands() {
  return {
      {.path = "source list",
       .help = "List the data sources",
       .options = {{.name = "--all", .help = "The removed ones too", .target = at<&Request::source, &S::all>},
                   kind("Only those of one kind")},
       .examples = {{"--connect sqlite:demo.db source list --as-user 2", "those that a user may see"}},
       .json = rows,
       .task = on_sources<list_sources>},
      {.path = "source show",
       .help = "Show a data source, its password hidden",
       .options = {which,
                   {.name = "--xml",
                    .help = "Print the XML, its password hidden",
                    .target = at<&Request::source, &S::xml>},
                   max_size},
       .examples = {{"--connect sqlite:demo.db source show 1", "every field"}},
       .json = definition,
       .task = on_sources<show_source>},
      {.path = "source test",
       .help = "Open the outside database and say what it is",
       .more = "Over ODBC, or as sqlite:FILE: the server, how names are written and quoted there, and how long that "
               "took.",
       .options = {which,
                   {.name = "--save",
                    .help = "Store what was learnt in the definition",
                    .target = at<&Request::source, &S::save>},
                   max_size},
       .examples = {{"source test Lab --save", "and keep what was learnt"}},
       .changes = true,
       .json = tested,
       .task = on_sources<test_source>},
  };
}

std::vector<Command> moving_commands() {
  return {
      {.path = "source export",
       .help = "Write a data source into a new file",
       .more = "Its owner alone can read the file.",
       .options = {which,
                   file("A file that does not exist yet"),
                   {.name = "--hide-password",
                    .help = "Hide the password; such a file cannot be imported",
                    .target = at<&Request::source, &S::hide_password>},
                   max_size},
       .examples = {{"--connect sqlite:demo.db source export 1 lab.xml --hide-password", "to show it to someone"}},
       .json = exported,
       .task = on_sources<export_source>},
      {.path = "source import",
       .help = "Add the data source in a file",
       .more = "It gets a number of its own.",
       .options = {file("What spc source export has written"),
                   kind("The kind, for a file that does not tell"),
                   {.name = "--file-id",
                    .value = "ID",
                    .help = "The id that the file was written under, when it does not tell",
                    .target = at<&Request::source, &S::file_id>},
                   name("Another name than that in the file"),
                   max_size},
       .examples = {{"source import lab.xml --name 'Lab 2'", "beside the one that it was exported from"}},
       .changes = true,
       .json = imported,
       .task = on_sources<import_source>},
      {.path = "source rewrite",
       .help = "Write every data source in the present form",
       .more = "Each is read and saved by itself, so that old ones lose what was stored in clear. What fails is listed "
               "with the reason, and stands as it was.",
       .options = {kind("Only those of one kind"), max_size},
       .examples = {{"--connect sqlite:demo.db source rewrite", "all of them"}},
       .failed = "So it does when one of them failed.",
       .changes = true,
       .json = rewritten,
       .task = on_sources<rewrite_sources>},
  };
}

}  // namespace

std::vector<Command> source_commands() {
  std::vector<Command> all = {{.path = "source", .help = "Keep the connections to outside databases"}};
  for (const auto& part : {writing_commands(), showing_commands(), moving_commands()})
    all.insert(all.end(), part.begin(), part.end());
  return all;
}

}  // namespace spc
