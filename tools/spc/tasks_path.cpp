#include "tools/spc/json.h"
#include "tools/spc/object_paths.h"
#include "tools/spc/problem.h"
#include "tools/spc/table.h"
#include "tools/spc/tasks.h"
#include "tools/spc/utf8.h"
#include "tools/spc/viewer.h"

namespace spc {
namespace {

std::vector<ObjectKind> kinds_of(const std::string& word) {
  std::vector<ObjectKind> all = {ObjectKind::folder, ObjectKind::monitor, ObjectKind::profile};
  if (word.empty()) return all;
  for (const auto kind : all)
    if (word == word_of(kind)) return {kind};
  throw Problem{"cannot read --kind " + quoted(word), "it is folder, monitor or profile", "", exit_misuse};
}

std::string chain_text(const Chain& chain) {
  std::string text;
  for (const auto& folder : chain.folders)
    text += (text.empty() ? "" : ", ") + shown(folder) + (folder.hidden ? " hidden" : "");
  return text.empty() ? "none, it stands in the root" : text;
}

void print_object(std::ostream& out, const FoundObject& object, const PathAnswer& answer) {
  Facts facts = {{"kind", word_of(object.kind)}, {"number", std::to_string(object.id)}};
  if (object.kind == ObjectKind::folder && object.id == 0) {
    facts.emplace_back("name", "none, it is the root");
    facts.emplace_back("path", "/");
    return print_facts(out, facts);
  }
  facts.emplace_back("name", on_one_line(object.name));
  if (object.kind != ObjectKind::folder && answer.revision)
    facts.emplace_back("revision", asked_revision_text(*answer.revision));
  if (object.locations.empty()) facts.emplace_back("path", "none, it stands in no folder");
  for (const auto& location : object.locations) {
    facts.emplace_back("path", location.chain.broken.empty() ? location.path : "none, " + location.chain.broken);
    facts.emplace_back("folders", chain_text(location.chain));
  }
  print_facts(out, facts);
}

void print_answer(std::ostream& out, const PathAnswer& answer) {
  for (std::size_t i = 0; i < answer.found.size(); ++i) {
    if (i > 0) out << '\n';
    print_object(out, answer.found[i], answer);
  }
  if (!answer.note.empty()) out << '\n' << answer.note << '\n';
}

void write_location(JsonWriter& json, const Location& location) {
  json.begin_object();
  location.chain.broken.empty() ? json.key("path").value(location.path) : json.key("path").null();
  json.key("broken").value(location.chain.broken);
  json.key("folders").begin_array();
  for (const auto& folder : location.chain.folders) {
    json.begin_object();
    json.key("id").value(folder.id);
    json.key("name").value(folder.name);
    json.key("hidden").value(folder.hidden);
    json.end_object();
  }
  json.end_array();
  json.end_object();
}

void write_answer(std::ostream& out, const std::string& asked, const PathAnswer& answer) {
  JsonWriter json(out);
  json.begin_object();
  json.key("asked").value(asked);
  answer.revision ? json.key("revision").value(*answer.revision) : json.key("revision").null();
  json.key("revision_text").value(answer.revision ? asked_revision_text(*answer.revision) : "");
  json.key("note").value(answer.note);
  json.key("found").begin_array();
  for (const auto& object : answer.found) {
    json.begin_object();
    json.key("kind").value(word_of(object.kind));
    json.key("id").value(object.id);
    json.key("name").value(object.name);
    json.key("locations").begin_array();
    for (const auto& location : object.locations)
      write_location(json, location);
    json.end_array();
    json.end_object();
  }
  json.end_array();
  json.end_object();
}

/// The first way that leads nowhere.
void fail_on_broken_chain(const PathAnswer& answer) {
  for (const auto& object : answer.found)
    for (const auto& location : object.locations)
      if (!location.chain.broken.empty())
        throw Problem{
            std::string("cannot tell a path of ") + word_of(object.kind) + " " + std::to_string(object.id),
            location.chain.broken,
            "PNODE in CSNODE names the parent of a folder, 0 is the root; spc tree lists what it cannot reach."};
}

}  // namespace

int show_path(const Place& place, const PathRequest& request, int as_user, const Terminal& terminal) {
  const PathQuestion question{request.path, kinds_of(request.kind), as_user};
  Link link(connect_text_of(place, false), trace_of(terminal));
  check_viewer(link, as_user);
  const PathAnswer answer = find_objects(link, question);
  terminal.json ? write_answer(terminal.out, request.path, answer) : print_answer(terminal.out, answer);
  fail_on_broken_chain(answer);
  return exit_done;
}

}  // namespace spc
