/// The tree of folders as nested lists.
///
/// Part of the command.
#pragma once

#include "tools/spc/node_tree.h"
#include "tools/spc/report/markup.h"

namespace spc::report_page {

/// The shapes that stand before folders, monitors and profiles: once on a page, before the tree.
void write_icons(Markup& page);

/// All folders that are not hidden, with what they hold.
void write_tree(Markup& page, const NodeTree& tree);

}  // namespace spc::report_page
