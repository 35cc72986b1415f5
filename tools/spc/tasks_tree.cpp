#include "tools/spc/json.h"
#include "tools/spc/problem.h"
#include "tools/spc/table.h"
#include "tools/spc/tasks.h"
#include "tools/spc/tree_view.h"
#include "tools/spc/utf8.h"
#include "tools/spc/viewer.h"

namespace spc {
namespace {

/// The folder at a path or of a number; the root for an empty text.
Folder top_of(Link& link, const std::string& path) {
  if (path.empty()) return {};
  const auto found = find_objects(link, {path, {ObjectKind::folder}, 0}).found.front();
  const auto& folders = found.locations.front().chain.folders;
  return folders.empty() ? Folder() : folders.back();
}

/// What a whole tree leaves out because it stands nowhere.
std::vector<Unreachable> unreachable_of(const NodeTree& tree, const TreePart& part) {
  std::vector<Unreachable> found;
  if (part.top.id == 0) found = tree.unreachable();
  if (!part.all) std::erase_if(found, [](const Unreachable& thing) { return thing.hidden; });
  return found;
}

void print_all(std::ostream& out, const NodeTree& tree, const TreePart& part) {
  const TreeCounts counts = print_tree(out, tree, part);
  out << '\n'
      << counted(counts.folders, "folder") << ", " << counted(counts.monitors, "monitor") << ", "
      << counted(counts.profiles, "profile") << '\n';
  if (counts.hidden != 0) out << counted(counts.hidden, "hidden folder") << " left out; --all shows what is hidden\n";
  const auto unreachable = unreachable_of(tree, part);
  if (unreachable.empty()) return;
  out << "\nNot reachable from the root:\n\n";
  Table table("  ");
  table.add_column("kind");
  table.add_column("number", Align::right);
  table.add_column("name");
  table.add_column("why");
  for (const auto& thing : unreachable)
    table.add_row({word_of(thing.kind), std::to_string(thing.id), on_one_line(thing.name), thing.why});
  table.print(out);
}

void write_all(std::ostream& out, const NodeTree& tree, const TreePart& part) {
  JsonWriter json(out);
  json.begin_object();
  json.key("tree");
  write_tree(json, tree, part);
  json.key("not_reachable").begin_array();
  for (const auto& thing : unreachable_of(tree, part)) {
    json.begin_object();
    json.key("kind").value(word_of(thing.kind));
    json.key("id").value(thing.id);
    json.key("name").value(thing.name);
    json.key("hidden").value(thing.hidden);
    json.key("why").value(thing.why);
    json.end_object();
  }
  json.end_array();
  json.end_object();
}

}  // namespace

int show_tree(const Place& place, const TreeRequest& request, int as_user, const Terminal& terminal) {
  Link link(connect_text_of(place, false), trace_of(terminal));
  check_viewer(link, as_user);
  const TreePart part{top_of(link, request.path), request.depth, request.all};
  const NodeTree tree(link, as_user);
  terminal.json ? write_all(terminal.out, tree, part) : print_all(terminal.out, tree, part);
  return exit_done;
}

}  // namespace spc
