/// Folders as they stand in CSNODE: the way up from one, and the way down along names.
///
/// Part of the command. The library finds objects by paths and tells the paths of folders; here is told what stands on
/// the way, and where a way ends that leads nowhere.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "spcbase/foundation/schema/column_table.h"
#include "tools/spc/link.h"

namespace spc {

struct Folder {
  int id = 0;
  std::string name;
  std::optional<int> parent;  ///< 0 for the root; nothing for a null, which no walk from the root finds
  bool hidden = false;        ///< takes no part in paths
};

/// All that a row of CSNODE says.
class FolderRow : public TableRecordset<FolderRow> {
 public:
  using TableRecordset::TableRecordset;
  long nodeid = 0;
  CString name;
  long pnode = 0;
  CString vflg;
  static constexpr const char* source = "[CSNODE]";
  static constexpr auto columns =
      coltab::table(coltab::key("[NODEID]", &FolderRow::nodeid), coltab::field("[NAME]", &FolderRow::name, 255),
                    coltab::field("[PNODE]", &FolderRow::pnode), coltab::field("[VFLG]", &FolderRow::vflg, 255));

  Folder folder();
};

/// The folders from the root down to one.
struct Chain {
  std::vector<Folder> folders;  ///< the folder itself stands last
  std::string broken;           ///< why they do not begin at the root; empty when they do
};

/// The chain of a folder; of the root it has no folders. A folder that does not exist is a broken chain.
/// Fails: Problem.
Chain chain_of(Link& link, int folder);

/// Where names lead to from the root.
struct Descent {
  std::vector<Folder> folders;   ///< one for each name, up to the first that is not there
  std::optional<Folder> hidden;  ///< the one that is there for that name, but hidden
};

/// Follows names as the library's paths do.
/// Fails: Problem.
Descent descend(Link& link, const std::vector<CString>& names);

/// The names of a path without "enterprise:/", white space at the ends left out.
CString without_root(const std::string& path);

/// Why a folder whose parent is not there stands nowhere.
std::string missing_parent_text(const Folder& folder);

/// "Forge (2)", on one line.
std::string shown(const Folder& folder);

}  // namespace spc
