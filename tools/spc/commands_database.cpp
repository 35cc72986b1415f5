// The databases themselves: db, doctor, demo.
#include "tools/spc/command_table.h"
#include "tools/spc/demo.h"
#include "tools/spc/json_shapes.h"
#include "tools/spc/problem.h"

namespace spc {
namespace {

using namespace shapes;

int demonstrate(const Request& request, const Terminal& terminal) {
  const bool elsewhere = !request.place.dsn.empty() || !request.place.connect.empty();
  if (elsewhere && !request.demo_keep.empty())
    throw Problem{"cannot read the command line", "--keep makes a file, --connect and --dsn name a database",
                  "Give one of them.", exit_misuse};
  run_demo({request.place, request.demo_keep, request.demo_report}, terminal);
  return exit_done;
}

Shape created() { return object({{"database", text()}, {"objects", integer()}}); }

Shape checked() {
  return object({{"database", text()},
                 {"server", text()},
                 {"driver_says_alive", boolean()},
                 {"answers", boolean()},
                 {"driver_says_dead", boolean()},
                 {"dialect", integer()},
                 {"dialect_name", text()},
                 {"tables", integer()},
                 {"views", integer()},
                 {"missing", array(text())}});
}

Shape severity() { return constants({"error", "warning", "note"}); }

Shape finding() {
  return object({{"name", text()},
                 {"severity", severity()},
                 {"table", text()},
                 {"column", text()},
                 {"ids", array(any_of({integer(), text()}))},
                 {"count", integer()},
                 {"detail", text()},
                 {"meaning", text()},
                 {"advice", text()}});
}

/// Of the audit; with --list, of what it looks for.
Shape audited() {
  const Shape not_run = object({{"name", text()}, {"table", text()}, {"why", text()}, {"failed", boolean()}});
  const Shape kind =
      object({{"name", text()}, {"severity", severity()}, {"tables", text()}, {"meaning", text()}, {"advice", text()}});
  return any_of({object({{"database", text()},
                         {"checks", integer()},
                         {"errors", integer()},
                         {"warnings", integer()},
                         {"notes", integer()},
                         {"sound", boolean()},
                         {"findings", array(finding())},
                         {"not_run", array(not_run)}}),
                 array(kind)});
}

Shape demonstrated() {
  const Shape step = object({{"step", text()}, {"rows", integer()}, {"milliseconds", number()}, {"result", text()}});
  const Shape found =
      object({{"path", text()}, {"kind", text()}, {"id", integer()}, {"asked", text()}, {"revision", text()}});
  const Shape seen = object({{"id", integer()},
                             {"kind", text()},
                             {"name", text()},
                             {"connection_string", text()},
                             {"seen_by", array(text())}});
  return object({{"server", text()},
                 {"steps", array(step)},
                 {"examples", array(sample_shape())},
                 {"history", array(object(revision_properties()))},
                 {"tree", folder_shape()},
                 {"paths", array(found)},
                 {"data_sources", array(seen)},
                 {"renewal", array(object({{"before", text()}, {"after", text()}}))}});
}

}  // namespace

std::vector<Command> database_commands() {
  return {
      {.path = "db", .help = "Create and check the database"},
      {.path = "db create",
       .help = "Create every table and view in an empty database",
       .more = "All or nothing: a database that holds any of them stays as it is. An SQLite file is made when it is "
               "missing.",
       .examples = {{"--connect sqlite:plant.db db create", "make the SQLite file plant.db with the schema in it"}},
       .changes = true,
       .json = created,
       .task = on_database<create_database>},
      {.path = "db check",
       .help = "See that the connection lives and that nothing of the schema is missing",
       .more = "It tells the driver's word and whether a statement was answered, the server and its dialect, and each "
               "missing table, view and column.",
       .examples = {{"--connect sqlite:demo.db db check", "check an SQLite file"},
                    {"--dsn plant db check --json", "check an ODBC data source, for a program"}},
       .failed = "So it does when something of the schema is missing.",
       .json = checked,
       .task = on_database<check_database>},
      {.path = "doctor",
       .help = "Look for whatever is wrong in the whole database; changes nothing",
       .more = "Each finding has a name, the table, the ids, what it means and what to do about it.",
       .options = {{.name = "--only",
                    .value = "NAME",
                    .help = "Only these kinds of findings",
                    .target = at<&Request::doctor, &DoctorRequest::only>,
                    .commas = true,
                    .offers = Offers::findings},
                   {.name = "--skip",
                    .value = "NAME",
                    .help = "Leave these kinds out",
                    .target = at<&Request::doctor, &DoctorRequest::skip>,
                    .commas = true,
                    .offers = Offers::findings},
                   {.name = "--limit",
                    .value = "N",
                    .help = "Name so many ids for each finding; 5 when not given",
                    .target = at<&Request::doctor, &DoctorRequest::limit>,
                    .within = Bounds{0, 1'000'000}},
                   {.name = "--list",
                    .help = "Tell all kinds of findings instead; needs no database",
                    .target = at<&Request::doctor, &DoctorRequest::list>}},
       .examples = {{"--connect sqlite:demo.db doctor --skip server-zone", "audit a database"},
                    {"doctor --list", "tell what it looks for"}},
       .failed = "So it does when an error or a warning was found, or something could not be looked at.",
       .json = audited,
       .task = on_database<run_doctor, &Request::doctor>},
      {.path = "demo",
       .help = "Build a small plant with real measurements, and read it back",
       .more = "It imports 140 samples, reads every one back and compares each cell with the files. Without --keep, "
               "--connect and --dsn it works in a temporary SQLite file. A database that is named is an empty one, or "
               "one that a demo has filled, which is built anew; any other is left alone.",
       .options = {{.name = "--keep",
                    .value = "FILE",
                    .help = "Keep the demo's database as this SQLite file",
                    .target = at<&Request::demo_keep>,
                    .offers = Offers::files,
                    .problem = why_not_given},
                   {.name = "--report",
                    .value = "FILE",
                    .help = "Write all of it as one page for a browser, a file that does not exist yet",
                    .target = at<&Request::demo_report>,
                    .offers = Offers::files,
                    .problem = why_not_given}},
       .examples = {{"demo", "show the plant"},
                    {"demo --keep plant.db", "and keep it, to try other commands on"},
                    {"demo --report plant.html", "and draw it"}},
       .changes = true,
       .json = demonstrated,
       .task = demonstrate},
  };
}

}  // namespace spc
