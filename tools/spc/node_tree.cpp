#include "tools/spc/node_tree.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>

#include "spcbase/foundation/schema/tree.h"
#include "tools/spc/problem.h"
#include "tools/spc/viewer.h"

namespace spc {
namespace {

template <class Rows>
void read_members(Link& link, ObjectKind kind, long Rows::*id, const CString& condition, std::vector<Member>& members) {
  Rows rows(&link.db());
  rows.m_strFilter = Rows::join;
  set_rs_where_clause(rows, condition);
  for (requery_rs_for_read(rows, nullptr, true); !rows.m_bEOF; rows.MoveNext())
    members.push_back({static_cast<int>(rows.nodeid), kind, static_cast<int>(rows.*id), std::string(rows.name.view())});
}

auto order(const Folder& folder) { return std::tie(folder.parent, folder.hidden, folder.name, folder.id); }
auto order(const Member& member) { return std::tie(member.folder, member.kind, member.name, member.id); }

/// Where folders stand in the list, by their numbers.
using Places = std::unordered_map<int, std::size_t>;

constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

std::size_t parent_of(const Folder& folder, const Places& places) {
  const auto found = folder.parent ? places.find(*folder.parent) : places.end();
  return found == places.end() ? nowhere : found->second;
}

/// The circles among folders, each as a text, by one of the folders in it.
class Circles {
 public:
  Circles(const std::vector<Folder>& folders, const Places& places) : walks_(folders.size(), 0) {
    for (std::size_t start = 0; start < folders.size(); ++start) {
      std::size_t at = start;
      while (at != nowhere && walks_[at] == 0) {
        walks_[at] = start + 1;
        at = parent_of(folders[at], places);
      }
      // Back at a folder of the same walk.
      if (at != nowhere && walks_[at] == start + 1) add(folders, places, at);
    }
  }
  /// Empty when the folder is in none.
  std::string text_of(int folder) const {
    const auto found = texts_.find(folder);
    return found == texts_.end() ? std::string() : circles_[found->second];
  }

 private:
  void add(const std::vector<Folder>& folders, const Places& places, std::size_t first) {
    constexpr int most = 10;
    std::string text = "its parents lead in a circle: ";
    int told = 0;
    std::size_t at = first;
    do {
      texts_.emplace(folders[at].id, circles_.size());
      if (++told <= most) text += std::to_string(folders[at].id) + ", ";
      at = parent_of(folders[at], places);
    } while (at != first);
    circles_.push_back(text + (told > most ? "..., " : "") + std::to_string(folders[first].id));
  }

  std::vector<std::size_t> walks_;
  std::vector<std::string> circles_;
  std::unordered_map<int, std::size_t> texts_;
};

}  // namespace

NodeTree::NodeTree(Link& link, int as_user) {
  doing("cannot read the tree", [&] {
    read_folders(link);
    read_members(link, ObjectKind::monitor, &RSMonInNode1::monid, {}, members_);
    read_members(link, ObjectKind::profile, &RSProfInNode1::profid, visible_profiles("[CSPROFV].[PROFID]", as_user),
                 members_);
  });
  std::ranges::sort(folders_, [](const Folder& left, const Folder& right) { return order(left) < order(right); });
  std::ranges::sort(members_, [](const Member& left, const Member& right) { return order(left) < order(right); });
}

NodeTree::NodeTree(Link& link) {
  doing("cannot read the folders", [&] { read_folders(link); });
  std::ranges::sort(folders_, [](const Folder& left, const Folder& right) { return order(left) < order(right); });
}

void NodeTree::read_folders(Link& link) {
  FolderRow rows(&link.db());
  for (requery_rs_for_read(rows, nullptr, true); !rows.m_bEOF; rows.MoveNext())
    folders_.push_back(rows.folder());
}

std::span<const Folder> NodeTree::folders_in(int folder) const {
  const std::optional<int> parent(folder);
  return {std::ranges::lower_bound(folders_, parent, {}, &Folder::parent),
          std::ranges::upper_bound(folders_, parent, {}, &Folder::parent)};
}

std::span<const Member> NodeTree::members_of(int folder) const {
  return {std::ranges::lower_bound(members_, folder, {}, &Member::folder),
          std::ranges::upper_bound(members_, folder, {}, &Member::folder)};
}

/// For each folder whether a way from the root leads there.
std::vector<char> NodeTree::reach() const {
  std::vector<char> reached(folders_.size(), 0);
  std::vector<int> open = {0};
  while (!open.empty()) {
    const auto children = folders_in(open.back());
    open.pop_back();
    for (const Folder& child : children) {
      char& mark = reached[static_cast<std::size_t>(&child - folders_.data())];
      // The root has no row; where one has its number all the same, its way ends here.
      if (mark == 0 && child.id != 0) open.push_back(child.id);
      mark = 1;
    }
  }
  return reached;
}

std::vector<Unreachable> NodeTree::unreachable() const {
  std::vector<Unreachable> found;
  Places places;
  for (std::size_t i = 0; i < folders_.size(); ++i)
    places.emplace(folders_[i].id, i);
  const auto reached = reach();
  const Circles circles(folders_, places);
  for (std::size_t i = 0; i < folders_.size(); ++i) {
    if (reached[i] != 0) continue;
    const Folder& folder = folders_[i];
    std::string why = circles.text_of(folder.id);
    const bool in_circle = !why.empty();
    if (!in_circle)
      why = parent_of(folder, places) == nowhere
                ? missing_parent_text(folder)
                : "it is in folder " + std::to_string(*folder.parent) + ", which cannot be reached";
    found.push_back({ObjectKind::folder, folder.id, folder.name, folder.hidden, why, in_circle});
  }
  for (const Member& member : members_) {
    if (member.folder == 0) continue;
    const auto place = places.find(member.folder);
    const std::string folder = "it is in folder " + std::to_string(member.folder);
    if (place == places.end())
      found.push_back({member.kind, member.id, member.name, false, folder + ", which does not exist"});
    else if (reached[place->second] == 0)
      found.push_back(
          {member.kind, member.id, member.name, folders_[place->second].hidden, folder + ", which cannot be reached"});
  }
  return found;
}

}  // namespace spc
