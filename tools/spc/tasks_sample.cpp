#include "tools/spc/import_check.h"
#include "tools/spc/import_write.h"
#include "tools/spc/json.h"
#include "tools/spc/problem.h"
#include "tools/spc/sample_view.h"
#include "tools/spc/schema_work.h"
#include "tools/spc/table.h"
#include "tools/spc/tasks.h"
#include "tools/spc/viewer.h"

namespace spc {
namespace {

/// "LEFT=RIGHT" in two.
std::pair<std::string, std::string> parted(const std::string& text, const char* option, const char* form) {
  const auto equals = text.find('=');
  if (equals == std::string::npos || equals == 0)
    throw Problem{"cannot read " + std::string(option) + " " + text, "it has the form " + std::string(form), "",
                  exit_misuse};
  return {text.substr(0, equals), text.substr(equals + 1)};
}

ImportRules rules_of(const ImportRequest& request) {
  ImportRules rules;
  for (const auto& map : request.maps) {
    auto [column, entry] = parted(map, "--map", "COLUMN=ENTRY");
    rules.names.push_back({std::move(column), std::move(entry)});
  }
  for (const auto& set : request.values) {
    auto [entry, value] = parted(set, "--set", "ENTRY=VALUE");
    rules.constants.push_back(
        {std::move(entry), [value = std::move(value)](std::size_t, std::size_t) { return value; }});
  }
  return rules;
}

Entrant entrant_of(Link& link, const ImportRequest& request) {
  Entrant entrant;
  // Approval records want to know who changed a sample, also when nobody says so.
  entrant.user.name = "spc";
  if (!request.station.empty()) entrant.station = find_station(link, request.station);
  if (!request.user.empty()) entrant.user = find_user(link, request.user);
  return entrant;
}

void tell_import(const Terminal& terminal, const ImportRequest& request, const ProfileShape& shape, std::size_t rows,
                 const std::vector<long>& numbers) {
  if (terminal.json) {
    JsonWriter json(terminal.out);
    json.begin_object();
    json.key("file").value(request.file);
    json.key("profile").value(shape.id);
    json.key("profile_name").value(shape.name);
    json.key("rows").value(rows);
    json.key("samples").begin_array();
    for (const long number : numbers)
      json.value(number);
    json.end_array();
    json.end_object();
    return;
  }
  terminal.out << "Imported " << counted(numbers.size(), "sample") << " (" << counted(rows, "line") << ") on profile "
               << shape.name << ": " << numbers.front();
  if (numbers.size() > 1) terminal.out << " to " << numbers.back();
  terminal.out << '\n';
}

}  // namespace

int import_samples(const Place& place, const ImportRequest& request, const Terminal& terminal) {
  const ImportRules rules = rules_of(request);
  const CsvFile file = read_csv(request.file);
  Link link(connect_text_of(place, false), terminal);
  const ProfileShape shape = read_shape(link, find_profile(link, request.profile));
  const Entrant entrant = entrant_of(link, request);
  auto samples = prepare_samples(file, shape, rules);
  std::vector<long> numbers;
  {
    Progress progress(terminal, "importing " + request.file, samples.size());
    numbers = write_samples(link, request.file, shape, entrant, samples, [&] { progress.step(); });
  }
  tell_import(terminal, request, shape, file.rows.size(), numbers);
  return exit_done;
}

int list_samples(const Place& place, const std::string& profile, std::size_t limit, int as_user,
                 const Terminal& terminal) {
  Link link(connect_text_of(place, false), trace_of(terminal));
  check_viewer(link, as_user);
  const int id = profile.empty() ? 0 : find_profile(link, profile, as_user).id;
  const auto lines = list_samples(link, id, limit, as_user);
  if (terminal.json) {
    JsonWriter json(terminal.out);
    json.begin_array();
    for (const auto& line : lines) {
      json.begin_object();
      json.key("sample").value(line.sample);
      json.key("profile").value(line.profile);
      json.key("profile_name").value(line.profile_name);
      json.key("taken").value(line.taken);
      json.end_object();
    }
    json.end_array();
  } else if (lines.empty()) {
    terminal.out << "There are no samples.\n";
  } else {
    Table table;
    table.add_column("sample", Align::right);
    table.add_column("profile");
    table.add_column("taken");
    for (const auto& line : lines)
      table.add_row({std::to_string(line.sample), line.profile_name, line.taken});
    table.print(terminal.out);
  }
  return exit_done;
}

int show_sample(const Place& place, long sample, const Terminal& terminal) {
  Link link(connect_text_of(place, false), trace_of(terminal));
  const SampleView view = read_sample(link, sample);
  if (terminal.json) {
    JsonWriter json(terminal.out);
    write_sample(json, view);
  } else {
    print_sample(terminal.out, view);
  }
  return exit_done;
}

}  // namespace spc
