#include "tools/spc/command.h"

#include "tools/spc/connection_text.h"
#include "tools/spc/demo.h"
#include "tools/spc/problem.h"
#include "tools/spc/request.h"

namespace spc {
namespace {

void add_global_options(CLI::App& app, Request& request) {
  auto* dsn = app.add_option("--dsn", request.place.dsn, "The ODBC data source of the database")->type_name("NAME");
  app.add_option("--connect", request.place.connect,
                 "An ODBC connect text, or sqlite:FILE; without it and --dsn: spc/spc.db in the user's data folder")
      ->type_name("TEXT")
      ->excludes(dsn);
  app.add_flag("--json", request.json, "Answer in JSON");
  app.add_flag("--trace", request.trace, "Show every statement, its rows and its time on standard error");
  app.add_option("--as-user", request.as_user,
                 "List only what this user may see; 0, which is everything, when not given")
      ->type_name("ID")
      ->check(CLI::Range(0, 2'147'483'647));
  app.set_version_flag("--version", std::string("spc " SPCBASE_VERSION));
}

void add_db(CLI::App& app, Request& request) {
  CLI::App* db = app.add_subcommand("db", "Create and check the database");
  db->add_subcommand("create", "Create every table and view in an empty database")->callback([&] {
    request.task = [&](const Terminal& terminal) { return create_database(request.place, terminal); };
  });
  db->add_subcommand("check", "See that the connection lives and that nothing of the schema is missing")->callback([&] {
    request.task = [&](const Terminal& terminal) { return check_database(request.place, terminal); };
  });
}

void add_sample_import(CLI::App& sample, Request& request) {
  ImportRequest& import = request.import;
  CLI::App* command = sample.add_subcommand("import", "Check a CSV file and save each of its samples");
  command->add_option("FILE", import.file, "Columns: sample, piece, and one for each entry of the profile")->required();
  command->add_option("--profile", import.profile, "The profile of the samples")->type_name("NAME|ID")->required();
  command->add_option("--station", import.station, "Where they were taken")->type_name("NAME|ID");
  command->add_option("--user", import.user, "By whom")->type_name("NAME|ID");
  // One value each: a list would swallow the file's name behind it.
  command->add_option("--map", import.maps, "A column that stands for an entry of another name")
      ->type_name("COLUMN=ENTRY")
      ->type_size(1)
      ->expected(-1)
      ->allow_extra_args(false);
  command->add_option("--set", import.values, "The value of an entry without a column")
      ->type_name("ENTRY=VALUE")
      ->type_size(1)
      ->expected(-1)
      ->allow_extra_args(false);
  command->callback([&] {
    request.task = [&](const Terminal& terminal) { return import_samples(request.place, request.import, terminal); };
  });
}

void add_sample(CLI::App& app, Request& request) {
  CLI::App* sample = app.add_subcommand("sample", "Import, list and show samples");
  add_sample_import(*sample, request);
  CLI::App* list = sample->add_subcommand("list", "List the newest samples");
  list->add_option("--profile", request.list_profile, "Only those of one profile")->type_name("NAME|ID");
  list->add_option("--limit", request.list_limit, "At most so many; 20 when it is not given")
      ->type_name("N")
      ->check(CLI::Range(1, 1'000'000));
  list->callback([&] {
    request.task = [&](const Terminal& terminal) {
      return list_samples(request.place, request.list_profile, request.list_limit, request.as_user, terminal);
    };
  });
  CLI::App* show = sample->add_subcommand("show", "Show a sample as a grid");
  show->add_option("ID", request.shown_sample, "The sample's number")->required()->check(CLI::Range(1, 2'147'483'647));
  show->callback([&] {
    request.task = [&](const Terminal& terminal) { return show_sample(request.place, request.shown_sample, terminal); };
  });
}

void add_demo(CLI::App& app, Request& request) {
  CLI::App* demo = app.add_subcommand("demo", "Build a small plant with real measurements, and read it back");
  demo->add_option("--keep", request.demo_keep, "Keep the demo's database as this SQLite file")->type_name("FILE");
  demo->callback([&] {
    request.task = [&](const Terminal& terminal) {
      const bool elsewhere = !request.place.dsn.empty() || !request.place.connect.empty();
      if (elsewhere && !request.demo_keep.empty())
        throw Problem{"cannot read the command line", "--keep makes a file, --connect and --dsn name a database",
                      "Give one of them.", exit_misuse};
      run_demo({request.place, request.demo_keep}, terminal);
      return exit_done;
    };
  });
}

/// What is wrong with the arguments. A word that is wrong may be a password, given where none may stand.
std::string told(const CLI::ParseError& error) {
  std::string text = error.what();
  const bool repeats_words = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr ||
                             dynamic_cast<const CLI::ConversionError*>(&error) != nullptr ||
                             dynamic_cast<const CLI::ValidationError*>(&error) != nullptr;
  if (!repeats_words || !speaks_of_password(text)) return text;
  return "one of its words is wrong, and not shown since it may be a password";
}

/// Parses; gives a status when the run ends here.
std::optional<int> parse(CLI::App& app, const Request& request, int argc, const char* const* argv, std::ostream& out,
                         std::ostream& err) {
  try {
    app.parse(argc, argv);
    if (request.task) return std::nullopt;
    report(err, {"cannot read the command line", "it names no task", "spc --help tells what there is.", exit_misuse});
    return exit_misuse;
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) return app.exit(e, out, err) == 0 ? exit_done : exit_misuse;
    report(err, {"cannot read the command line", told(e), "spc --help tells what there is.", exit_misuse});
    return exit_misuse;
  }
}

}  // namespace

int run(int argc, const char* const* argv, std::ostream& out, std::ostream& err, bool bars) {
  Request request;
  CLI::App app("Administers databases of measured samples.", "spc");
  app.fallthrough();
  add_global_options(app, request);
  add_db(app, request);
  add_sample(app, request);
  add_data_tasks(app, request);
  add_revision_tasks(app, request);
  add_time_tasks(app, request);
  add_tree_tasks(app, request);
  add_source_tasks(app, request);
  add_doctor_tasks(app, request);
  add_demo(app, request);
  try {
    if (const auto status = parse(app, request, argc, argv, out, err)) return *status;
    const Terminal terminal{out, err, request.json, request.trace, bars};
    return doing("the command failed", [&] { return request.task(terminal); });
  } catch (const Problem& problem) {
    out.flush();
    report(err, problem);
    return problem.status;
  }
}

}  // namespace spc
