#include "spcbase/datasource/stored.h"
#include "tools/spc/interruption.h"
#include "tools/spc/outside_database.h"
#include "tools/spc/problem.h"
#include "tools/spc/source_definition.h"
#include "tools/spc/source_request.h"
#include "tools/spc/source_rows.h"

namespace spc {
namespace {

struct Failed {
  SourceRow row;
  Problem problem;
};

struct Rewriting {
  std::size_t found = 0;
  std::size_t saved = 0;
  std::vector<Failed> failed;
};

std::string tenths(double milliseconds) {
  CString text;
  text.Format("%.1f ms", milliseconds);
  return text_of(text);
}

std::vector<int> ids_of(Link& link, const SourceRequest& request, const std::string& what) {
  std::vector<int> ids;
  doing(what, [&] {
    if (request.kind.empty() || kind_of_word(request.kind) == OLEDBInfo::kind) get_all_ole_db_id(&link.db(), ids);
    if (request.kind.empty() || kind_of_word(request.kind) == ADONETDBInfo::kind) get_all_adonet_db_id(&link.db(), ids);
  });
  return ids;
}

Rewriting rewrite(Link& link, const SourceRequest& request, const Terminal& terminal, const std::string& what) {
  const auto ids = ids_of(link, request, what);
  const auto rows = read_source_rows(link, 0, what);
  Rewriting rewriting;
  rewriting.found = ids.size();
  Progress progress(terminal, "rewriting", ids.size());
  const auto stop_here = [&] {
    stop_if_interrupted(std::to_string(rewriting.saved) + " of " + counted(ids.size(), "data source") +
                        " are saved, the others stand as they were");
  };
  for (const int id : ids) {
    stop_here();
    SourceRow row;
    row.id = id;
    try {
      row = find_source(rows, std::to_string(id), what);
      Definition definition = read_definition(link, row, request.max_size, what);
      store(link, definition, request.max_size, what);
      ++rewriting.saved;
    } catch (const Problem& problem) {
      rewriting.failed.push_back({row, problem});
    }
    progress.step();
  }
  stop_here();
  return rewriting;
}

void print_failed(std::ostream& out, const std::vector<Failed>& failed) {
  Table table("  ");
  table.add_column("id", Align::right);
  for (const char* heading : {"kind", "name", "reason"})
    table.add_column(heading);
  for (const auto& [row, problem] : failed)
    table.add_row({std::to_string(row.id), kind_name(row.kind), row.name, problem.why});
  table.print(out);
}

void write_failed(JsonWriter& json, const std::vector<Failed>& failed) {
  json.key("failed").begin_array();
  for (const auto& [row, problem] : failed) {
    json.begin_object();
    json.key("id").value(row.id);
    json.key("kind").value(kind_name(row.kind));
    json.key("name").value(row.name);
    json.key("reason").value(problem.why);
    json.end_object();
  }
  json.end_array();
}

void print_outside(const Terminal& terminal, const Definition& definition, const OutsideDatabase& outside, bool saved) {
  Facts facts = {{"source", described(definition)}, {"server", outside.server}, {"syntax", syntax_text(definition)}};
  add_name_facts(facts, definition);
  facts.emplace_back("time", tenths(outside.connecting_ms) + " to connect, " + tenths(outside.asking_ms) + " to ask");
  facts.emplace_back("stored", saved ? "yes" : "no: --save stores what was learnt");
  print_facts(terminal.out, facts);
}

void write_outside(const Terminal& terminal, const Definition& definition, const SourceRow& row,
                   const OutsideDatabase& outside, bool saved) {
  JsonWriter json(terminal.out);
  json.begin_object();
  write_definition(json, definition, row);
  json.key("server").value(outside.server);
  json.key("connecting_ms").value(outside.connecting_ms);
  json.key("asking_ms").value(outside.asking_ms);
  json.key("saved").value(saved);
  json.end_object();
}

}  // namespace

int test_source(const Place& place, const SourceRequest& request, const Terminal& terminal) {
  const std::string what = "cannot test the data source " + request.which;
  Link link(connect_text_of(place, false), terminal);
  const auto rows = read_source_rows(link, request.as_user, what);
  const SourceRow& row = find_source(rows, request.which, what);
  Definition definition = read_definition(link, row, request.max_size, what);
  // Learning sets the version to the present one, so that storing would not notice a future one.
  if (request.save) require_known_version(version_of(definition), what);
  const auto outside = learn_from_outside(definition, terminal, what);
  if (request.save) store(link, definition, request.max_size, what);
  if (terminal.json)
    write_outside(terminal, definition, row, outside, request.save);
  else
    print_outside(terminal, definition, outside, request.save);
  return exit_done;
}

int rewrite_sources(const Place& place, const SourceRequest& request, const Terminal& terminal) {
  const std::string what = "cannot rewrite the data sources";
  Link link(connect_text_of(place, false), terminal);
  const Rewriting rewriting = rewrite(link, request, terminal, what);
  if (terminal.json) {
    JsonWriter json(terminal.out);
    json.begin_object();
    json.key("found").value(rewriting.found);
    json.key("saved").value(rewriting.saved);
    write_failed(json, rewriting.failed);
    json.end_object();
  } else {
    terminal.out << "Found " << counted(rewriting.found, "data source") << ", saved " << rewriting.saved << '\n';
    if (!rewriting.failed.empty()) print_failed(terminal.out, rewriting.failed);
  }
  if (rewriting.failed.empty()) return exit_done;
  throw Problem{"cannot rewrite all data sources",
                std::to_string(rewriting.failed.size()) + " of " + std::to_string(rewriting.found) + " failed",
                "They stand as they were; spc source show ID tells more of each."};
}

}  // namespace spc
