/// The tree of folders, printed for people and written for machines.
///
/// Part of the command.
#pragma once

#include <ostream>

#include "tools/spc/json.h"
#include "tools/spc/node_tree.h"

namespace spc {

/// Which part of a tree is shown.
struct TreePart {
  Folder top;        ///< with number 0 it is the root
  int depth = 0;     ///< so many levels below the top; 0 for all
  bool all = false;  ///< with what is hidden
};

/// What was shown.
struct TreeCounts {
  std::size_t folders = 0;
  std::size_t monitors = 0;
  std::size_t profiles = 0;
  std::size_t hidden = 0;  ///< folders left out for that, those in them not counted
};

/// Told of a tree from the top down. Folders come before the monitors and profiles beside them.
class TreeVisitor {
 public:
  virtual ~TreeVisitor() = default;
  /// `is_last` of what its folder holds; `is_cut` when what it holds is not shown.
  virtual void begin(const Folder& folder, bool is_last, bool is_cut) = 0;
  /// After the folders in a folder.
  virtual void members(std::span<const Member> all) = 0;
  virtual void end() = 0;
};

/// Leads a visitor through a tree, which may be as deep as it has folders.
TreeCounts visit_tree(const NodeTree& tree, const TreePart& part, TreeVisitor& visitor);

/// Prints a line for each thing.
TreeCounts print_tree(std::ostream& out, const NodeTree& tree, const TreePart& part);

/// Writes the top folder as an object, and in it what it holds. One that is too deep is "cut", and empty.
TreeCounts write_tree(JsonWriter& json, const NodeTree& tree, const TreePart& part);

}  // namespace spc
