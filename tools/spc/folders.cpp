#include "tools/spc/folders.h"

#include <algorithm>
#include <set>

#include "spcbase/utility/text.h"
#include "tools/spc/problem.h"
#include "tools/spc/utf8.h"
#include "tools/spc/words.h"

namespace spc {
namespace {

bool same_name(const CString& stored, const CString& wanted) {
  CString name = fix_spc_name(stored, false);
  return name.Trim().CompareNoCase(wanted) == 0;
}

/// A child by its name: exactly, or by the library's slow comparison.
std::optional<Folder> child_of(Link& link, int parent, const CString& name, const char* flag_condition) {
  CString filter;
  filter.Format("PNODE = %d AND %s", parent, flag_condition);
  FolderRow rows(&link.db());
  requery_rs_for_read(rows, filter + CString(" AND NAME = " + sql_literal(name.view())), true);
  if (!rows.m_bEOF) return rows.folder();
  CString wanted = name;
  wanted.Trim();
  for (requery_rs_for_read(rows, filter, true); !rows.m_bEOF; rows.MoveNext())
    if (same_name(rows.name, wanted)) return rows.folder();
  return std::nullopt;
}

std::string circle_text(const std::vector<Folder>& upward, int again) {
  std::string text = "the parents lead in a circle: ";
  auto at = std::ranges::find(upward, again, &Folder::id);
  for (; at != upward.end(); ++at)
    text += std::to_string(at->id) + ", ";
  return text + std::to_string(again);
}

}  // namespace

Folder FolderRow::folder() {
  Folder found{static_cast<int>(nodeid), std::string(name.view()), static_cast<int>(pnode), !IsFieldNull(&vflg)};
  if (IsFieldNull(&pnode)) found.parent.reset();
  return found;
}

Chain chain_of(Link& link, int folder) {
  return doing("cannot read the folders", [&] {
    Chain chain;
    std::set<int> passed;
    FolderRow row(&link.db());
    for (int id = folder; id != 0 && chain.broken.empty();) {
      CString filter;
      filter.Format("NODEID = %d", id);
      requery_rs_for_read(row, filter, true);
      if (row.m_bEOF) {
        chain.broken = chain.folders.empty() ? "there is no folder " + std::to_string(id)
                                             : missing_parent_text(chain.folders.back());
        break;
      }
      chain.folders.push_back(row.folder());
      const auto& found = chain.folders.back();
      id = found.parent.value_or(0);
      passed.insert(found.id);
      if (!found.parent)
        chain.broken = missing_parent_text(found);
      else if (passed.contains(id))
        chain.broken = circle_text(chain.folders, id);
    }
    std::ranges::reverse(chain.folders);
    return chain;
  });
}

Descent descend(Link& link, const std::vector<CString>& names) {
  return doing("cannot read the folders", [&] {
    Descent descent;
    int parent = 0;
    for (const auto& name : names) {
      auto child = child_of(link, parent, name, "VFLG IS NULL");
      if (!child) {
        descent.hidden = child_of(link, parent, name, "VFLG IS NOT NULL");
        break;
      }
      parent = child->id;
      descent.folders.push_back(std::move(*child));
    }
    return descent;
  });
}

CString without_root(const std::string& path) {
  constexpr std::string_view root = "enterprise:/";
  CString text(path);
  text.Trim();
  const int size = static_cast<int>(root.size());
  if (text.Left(size).CompareNoCase(root.data()) == 0) text.Delete(0, size);
  return text;
}

std::string missing_parent_text(const Folder& folder) {
  if (!folder.parent) return "the parent of " + shown(folder) + " is null, and not 0, which is the root";
  return "the parent " + std::to_string(*folder.parent) + " of " + shown(folder) + " does not exist";
}

std::string shown(const Folder& folder) { return on_one_line(folder.name) + " (" + std::to_string(folder.id) + ")"; }

}  // namespace spc
