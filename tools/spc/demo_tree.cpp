#include "tools/spc/demo_tree.h"

#include <algorithm>

#include "spcbase/tree/path.h"
#include "tools/spc/object_paths.h"
#include "tools/spc/problem.h"
#include "tools/spc/revisions.h"
#include "tools/spc/table.h"

namespace spc {
namespace {

/// A path as somebody writes it, and what it must lead to.
struct Wanted {
  const char* path;
  plant::Known object;
  bool is_profile = true;
  bool has_history = false;
};

/// With either separator, with a separator in a name, in other letters, from the root and with revision words.
std::vector<Wanted> wanted_paths(const plant::DemoPlant& plant) {
  return {{"enterprise:/Plant/Forge/Line 1/Piston rings|approved", plant.piston_rings, true, true},
          {R"(\Plant\Forge\Line 1\Piston rings|2)", plant.piston_rings, true, true},
          {"/Plant/Filling // packing/Juice cans", plant.juice_cans},
          {"/plant/electronics/BOARD DEFECTS", plant.board_defects, false}};
}

/// The library only tells that the latest approved one is wanted: which that is, the host knows.
const rev::RevisionBaseInfo* revision_for(int asked, const std::vector<rev::RevisionBaseInfo>& history) {
  const auto wanted = [&](const rev::RevisionBaseInfo& revision) {
    if (asked == latest_approved_revision) return revision.approval != nullptr;
    return asked == 0 || revision.revision == asked;
  };
  const auto found = std::ranges::find_if(history, wanted);
  return found == history.end() ? nullptr : &*found;
}

[[noreturn]] void differ(const Wanted& wanted, const std::string& how) {
  throw Problem{"the demo failed", std::string("the path ") + wanted.path + " " + how,
                "The database did not keep what was saved: please report this with the server's name and version."};
}

FoundByPath find_one(CDatabase& db, const Wanted& wanted, const std::vector<rev::RevisionBaseInfo>& history) {
  CString folder;
  CString name;
  int asked = 0;
  if (!analyse_path(wanted.path, folder, name, false, false, true, &asked)) differ(wanted, "is none");
  const CString path = folder + CString(determine_sep_char(folder, '/')) + name;
  const int id = wanted.is_profile ? get_prof_id_from_path(&db, path) : get_mon_id_from_path(&db, path);
  if (id != wanted.object.id) differ(wanted, "leads to " + std::to_string(id));
  FoundByPath found{wanted.path, wanted.is_profile ? "profile" : "monitor", id, asked_revision_text(asked), {}};
  if (!wanted.has_history) return found;
  const auto* revision = revision_for(asked, history);
  if (revision == nullptr) differ(wanted, "asks for a revision that there is not");
  found.revision = std::to_string(revision->revision) + ", version " + version_text(*revision);
  return found;
}

}  // namespace

std::vector<FoundByPath> find_by_paths(Link& link, const plant::DemoPlant& plant,
                                       const std::vector<rev::RevisionBaseInfo>& history) {
  return doing("cannot find the plant's objects by path", [&] {
    std::vector<FoundByPath> found;
    for (const auto& wanted : wanted_paths(plant))
      found.push_back(find_one(link.db(), wanted, history));
    return found;
  });
}

void print_found(std::ostream& out, const std::vector<FoundByPath>& found, const std::string& indent) {
  Table table(indent);
  for (const char* heading : {"path", "kind"})
    table.add_column(heading);
  table.add_column("number", Align::right);
  for (const char* heading : {"asked for", "revision"})
    table.add_column(heading);
  for (const auto& object : found)
    table.add_row({object.path, object.kind, std::to_string(object.id), object.asked, object.revision});
  table.print(out);
}

void write_found(JsonWriter& json, const std::vector<FoundByPath>& found) {
  json.begin_array();
  for (const auto& object : found) {
    json.begin_object();
    json.key("path").value(object.path);
    json.key("kind").value(object.kind);
    json.key("id").value(object.id);
    json.key("asked").value(object.asked);
    json.key("revision").value(object.revision);
    json.end_object();
  }
  json.end_array();
}

}  // namespace spc
