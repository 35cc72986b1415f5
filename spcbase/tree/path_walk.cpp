// Paths in the database: from an id to its path, and from a path to an id.
#include <set>
#include <string>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/recordset.h"
#include "spcbase/foundation/schema/tree.h"
#include "spcbase/tree/internal/alike_name.h"
#include "spcbase/tree/internal/node_walk.h"
#include "spcbase/tree/path.h"
#include "spcbase/utility/text.h"

namespace {

/// A condition in the making. A walk makes one for each name, so no format is read for it.
class Filter {
 public:
  Filter() { text_.reserve(128); }
  /// The same memory for the next one.
  Filter& anew() {
    text_.clear();
    return *this;
  }
  Filter& operator<<(const char* piece) {
    text_ += piece;
    return *this;
  }
  Filter& operator<<(int number) {
    text_ += std::to_string(number);
    return *this;
  }
  /// A name, as a literal.
  Filter& operator<<(const CString& name) {
    text_ += '\'';
    for (const char c : name.view())
      text_.append(c == '\'' ? 2 : 1, c);
    text_ += '\'';
    return *this;
  }
  const char* text() const { return text_.c_str(); }

 private:
  std::string text_;
};

/// Reads another set: one recordset serves a whole walk. It only looks forward, since a folder may hold very many, and
/// stays open, so that the next set is a requery. False when it does not open.
bool select(CRecordset& rs, const Filter& filter) {
  if (rs.IsOpen()) return requery_rs_for_read(rs, filter.text(), false);
  rs.m_strFilter = filter.text();
  return rs.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly) != FALSE;
}

/// Moves on to the first row whose name is the wanted one but for case, white space at the ends and what names must not
/// hold. Returns whether there is one.
template <class Rows>
bool find_alike(Rows& rs, const CString& name) {
  const AlikeName wanted(name);
  while (!rs.m_bEOF && !wanted.matches(rs.name))
    rs.MoveNext();
  return !rs.m_bEOF;
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
  names.reserve(8);
  const int count = split_path(path, names);
  if (count < 2) return 0;
  const int node = find_node_from_names(database, names, count - 1);
  if (node == 0) return 0;

  using Rows = typename Kind::Rows;
  Rows rs(database);
  if (!select(rs, Filter() << Rows::join << " AND [NODEID] = " << node << " AND [NAME] = " << names.back()))
    throw_can_not_open_rs_exception();
  if (rs.m_bEOF) {
    if (!select(rs, Filter() << Rows::join << " AND [NODEID] = " << node)) return 0;
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
    if (!select(rs, Filter() << "NODEID = " << node) || rs.m_bEOF) return {};
    CString name = fix_spc_name(rs.name, false);
    name.Replace(single, doubled);
    path = path.IsEmpty() ? name : name + single + path;
    node = static_cast<int>(rs.pnode);
  }
  return single + path;
}

int find_node_from_names(CDatabase* database, const std::vector<CString>& names, int count) {
  RSNode1 rs(database);
  Filter filter;
  int node = 0;
  for (int i = 0; i < count; ++i) {
    const CString& name = names.at(static_cast<std::size_t>(i));
    if (!select(rs, filter.anew() << "PNODE = " << node << " AND NAME = " << name << " AND VFLG IS NULL")) return 0;
    if (rs.m_bEOF) {
      if (!select(rs, filter.anew() << "PNODE = " << node << " AND VFLG IS NULL") || !find_alike(rs, name)) return 0;
    }
    node = static_cast<int>(rs.nodeid);
  }
  return node;
}

int get_mon_id_from_path(CDatabase* database, const char* path) { return id_from_path<Monitors>(database, path); }
int get_prof_id_from_path(CDatabase* database, const char* path) { return id_from_path<Profiles>(database, path); }
