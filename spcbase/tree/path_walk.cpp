// Paths in the database: from an id to its path, and from a path to an id.
#include <algorithm>
#include <set>
#include <string>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/recordset.h"
#include "spcbase/foundation/schema/tree.h"
#include "spcbase/tree/internal/node_walk.h"
#include "spcbase/tree/path.h"
#include "spcbase/utility/text.h"

namespace {

CString quoted(const CString& name) {
  CString text = name;
  text.Replace("'", "''");
  return text;
}

template <class... Values>
CString filter_of(const char* format, Values... values) {
  CString filter;
  filter.Format(format, values...);
  return filter;
}

/// Reads another level: one recordset serves a whole walk. False when it does not open.
bool select(CRecordset& rs, const CString& filter) {
  if (rs.IsOpen()) return requery_rs_for_read(rs, filter, false);
  rs.m_strFilter = filter;
  return open_read_only(rs);
}

/// Moves on to the first row whose name is the wanted one but for case, white space at the ends and what names must not
/// hold. Returns whether there is one.
template <class Rows>
bool find_alike(Rows& rs, const CString& name) {
  CString wanted = name;
  wanted.Trim();
  for (; !rs.m_bEOF; rs.MoveNext()) {
    CString found = fix_spc_name(rs.name, false);
    if (found.Trim().CompareNoCase(wanted) == 0) return true;
  }
  return false;
}

/// What differs between the two kinds of objects.
struct Monitors {
  using Rows = RSMonInNode1;
  static int id(const Rows& rs) { return static_cast<int>(rs.monid); }
};
struct Profiles {
  using Rows = RSProfInNode1;
  static int id(const Rows& rs) { return static_cast<int>(rs.profid); }
};

template <class Kind>
int id_from_path(CDatabase* database, const char* path) {
  std::vector<CString> names;
  const int count = split_path(path, names);
  if (count < 2) return 0;
  const int node = find_node_from_names(database, names, count - 1);
  if (node == 0) return 0;

  using Rows = typename Kind::Rows;
  Rows rs(database);
  rs.m_strFilter =
      filter_of("%s AND [NODEID] = %d AND [NAME] = '%s'", Rows::join, node, quoted(names.back()).GetString());
  if (!open_read_only(rs)) throw_can_not_open_rs_exception();
  if (rs.m_bEOF) {
    if (!requery_rs_for_read(rs, filter_of("%s AND [NODEID] = %d", Rows::join, node), false)) return 0;
    find_alike(rs, names.back());
  }
  return rs.m_bEOF ? 0 : Kind::id(rs);
}

}  // namespace

CString get_node_path(CDatabase* database, int node, bool forward_slashes) {
  const char separator = forward_slashes ? '/' : '\\';
  const char single[] = {separator, '\0'};
  const char doubled[] = {separator, separator, '\0'};
  RSNode2 rs(database);
  CString path;
  std::set<int> passed;
  while (node != 0) {
    if (!passed.insert(node).second) return {};
    if (!select(rs, filter_of("NODEID = %d", node)) || rs.m_bEOF) return {};
    CString name = fix_spc_name(rs.name, false);
    name.Replace(single, doubled);
    path = path.IsEmpty() ? name : name + single + path;
    node = static_cast<int>(rs.pnode);
  }
  return single + path;
}

int find_node_from_names(CDatabase* database, const std::vector<CString>& names, int count) {
  RSNode1 rs(database);
  int node = 0;
  for (int i = 0; i < count; ++i) {
    const CString& name = names.at(static_cast<std::size_t>(i));
    if (!select(rs, filter_of("PNODE = %d AND NAME = '%s' AND VFLG IS NULL", node, quoted(name).GetString()))) return 0;
    if (rs.m_bEOF) {
      if (!select(rs, filter_of("PNODE = %d AND VFLG IS NULL", node)) || !find_alike(rs, name)) return 0;
    }
    node = static_cast<int>(rs.nodeid);
  }
  return node;
}

int get_mon_id_from_path(CDatabase* database, const char* path) { return id_from_path<Monitors>(database, path); }
int get_prof_id_from_path(CDatabase* database, const char* path) { return id_from_path<Profiles>(database, path); }
