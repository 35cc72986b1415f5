/// The whole tree of folders with what they hold, read once for each table.
///
/// Part of the command. Nothing here calls itself: trees may be as deep as they have folders.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "tools/spc/folders.h"
#include "tools/spc/object_paths.h"

namespace spc {

/// A monitor or a profile in a folder.
struct Member {
  int folder = 0;
  ObjectKind kind = ObjectKind::monitor;
  int id = 0;
  std::string name;
};

/// Something that no way from the root leads to, and why.
struct Unreachable {
  ObjectKind kind = ObjectKind::folder;
  int id = 0;
  std::string name;
  bool hidden = false;
  std::string why;
  bool in_circle = false;  ///< a folder whose parents lead back to itself
};

class NodeTree {
 public:
  /// Reads everything; of the profiles those that the user may see.
  /// Fails: Problem.
  NodeTree(Link& link, int as_user);
  /// Reads the folders alone.
  /// Fails: Problem.
  explicit NodeTree(Link& link);

  /// The folders in one, by their names, those that are hidden last.
  std::span<const Folder> folders_in(int folder) const;
  /// The monitors and then the profiles in one, by their names.
  std::span<const Member> members_of(int folder) const;
  /// What stands nowhere, as it was read.
  std::vector<Unreachable> unreachable() const;

 private:
  void read_folders(Link& link);
  std::vector<char> reach() const;

  std::vector<Folder> folders_;  ///< by parent, hidden, name
  std::vector<Member> members_;  ///< by folder, kind, name
};

}  // namespace spc
