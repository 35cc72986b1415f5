#include "tools/spc/object_paths.h"

#include <algorithm>

#include "spcbase/foundation/schema/tree.h"
#include "spcbase/tree/path.h"
#include "spcbase/utility/text.h"
#include "tools/spc/problem.h"
#include "tools/spc/utf8.h"
#include "tools/spc/viewer.h"
#include "tools/spc/words.h"

namespace spc {
namespace {

class MonitorName : public TableRecordset<MonitorName> {
 public:
  using TableRecordset::TableRecordset;
  long id = 0;
  CString name;
  static constexpr const char* source = "[CSMONV]";
  static constexpr auto columns =
      coltab::table(coltab::key("[MONID]", &MonitorName::id), coltab::field("[NAME]", &MonitorName::name, 255));
};

class ProfileName : public TableRecordset<ProfileName> {
 public:
  using TableRecordset::TableRecordset;
  long id = 0;
  CString name;
  static constexpr const char* source = "[CSPROFV]";
  static constexpr auto columns =
      coltab::table(coltab::key("[PROFID]", &ProfileName::id), coltab::field("[NAME]", &ProfileName::name, 255));
};

/// What differs between monitors and profiles.
struct Monitors {
  using Name = MonitorName;
  using InFolder = RSMonInNode1;
  static constexpr ObjectKind kind = ObjectKind::monitor;
  static constexpr const char* id_column = "[MONID]";
  static constexpr const char* joined_id_column = "[CSMONV].[MONID]";
  static int id_from_path(CDatabase& db, const char* path) { return get_mon_id_from_path(&db, path); }
  static CString visible(int /*user*/) { return {}; }
};

struct Profiles {
  using Name = ProfileName;
  using InFolder = RSProfInNode1;
  static constexpr ObjectKind kind = ObjectKind::profile;
  static constexpr const char* id_column = "[PROFID]";
  static constexpr const char* joined_id_column = "[CSPROFV].[PROFID]";
  static int id_from_path(CDatabase& db, const char* path) { return get_prof_id_from_path(&db, path); }
  static CString visible(int user) { return visible_profiles(id_column, user); }
};

bool wanted(const PathQuestion& question, ObjectKind kind) {
  return std::ranges::find(question.kinds, kind) != question.kinds.end();
}

std::string kinds_text(const PathQuestion& question) {
  std::vector<std::string> words;
  for (const auto kind : question.kinds)
    words.emplace_back(word_of(kind));
  return either(words);
}

/// The name as it stands in a path.
std::string path_name(const std::string& name) {
  CString text = fix_spc_name(CString(name), false);
  text.Replace("/", "//");
  return std::string(text.view());
}

/// The place of an object, or with an empty name that of the folder itself.
Location location_in(Link& link, int folder, const std::string& name) {
  Location location{{}, chain_of(link, folder)};
  if (!location.chain.broken.empty()) return location;
  location.path = get_node_path(&link.db(), folder, true).view();
  if (name.empty()) return location;
  if (folder != 0) location.path += '/';
  location.path += path_name(name);
  return location;
}

/// An object that this user may see; nothing when there is none.
template <class Kind>
std::optional<FoundObject> object_of(Link& link, int id, int as_user) {
  typename Kind::Name row(&link.db());
  CString filter;
  filter.Format("%s = %d", Kind::id_column, id);
  row.m_strFilter = filter;
  set_rs_where_clause(row, Kind::visible(as_user));
  requery_rs_for_read(row, nullptr, true);
  if (row.m_bEOF) return std::nullopt;
  return FoundObject{Kind::kind, id, std::string(row.name.view()), {}};
}

template <class Kind>
void add_by_id(Link& link, int id, const PathQuestion& question, PathAnswer& answer) {
  if (!wanted(question, Kind::kind)) return;
  auto object = object_of<Kind>(link, id, question.as_user);
  if (!object) return;
  std::vector<int> folders;
  typename Kind::InFolder rows(&link.db());
  CString filter;
  filter.Format("%s AND %s = %d", Kind::InFolder::join, Kind::joined_id_column, id);
  for (requery_rs_for_read(rows, filter, true); !rows.m_bEOF; rows.MoveNext())
    folders.push_back(static_cast<int>(rows.nodeid));
  std::ranges::sort(folders);
  for (const int folder : folders)
    object->locations.push_back(location_in(link, folder, object->name));
  answer.found.push_back(std::move(*object));
}

PathAnswer find_by_id(Link& link, int id, const PathQuestion& question) {
  PathAnswer answer;
  if (wanted(question, ObjectKind::folder)) {
    auto location = location_in(link, id, {});
    if (id == 0)
      answer.found.push_back({ObjectKind::folder, 0, "", {location}});
    else if (!location.chain.folders.empty())
      answer.found.push_back({ObjectKind::folder, id, location.chain.folders.back().name, {location}});
  }
  add_by_id<Monitors>(link, id, question, answer);
  add_by_id<Profiles>(link, id, question, answer);
  if (answer.found.empty())
    throw Problem{"cannot find number " + std::to_string(id), "no " + kinds_text(question) + " has this number",
                  "A name that is a number is found as a path: /" + std::to_string(id) + "."};
  return answer;
}

/// What a path says, taken apart.
struct ReadPath {
  CString text;                ///< without the root
  std::vector<CString> names;  ///< the last one with its revision word
  CString object;              ///< the path of an object, without that word; empty when it cannot be one
  CString object_name;         ///< the last name of it
  int revision = 0;
  std::string note;
};

ReadPath read_path(const std::string& path) {
  ReadPath read;
  read.text = without_root(path);
  split_path(read.text, read.names);
  CString folder;
  CString name;
  CString whole_name;
  if (read.names.size() < 2 || !analyse_path(read.text, folder, whole_name, false, false, false, nullptr) ||
      !analyse_path(read.text, folder, name, false, false, true, &read.revision))
    return read;
  const char separator[] = {determine_sep_char(read.text, 0), '\0'};
  read.object = folder + separator + name;
  analyse_path(read.text, folder, read.object_name, false, true, true, &read.revision);
  const int bar = whole_name.ReverseFind('|');
  if (bar >= 0 && name == whole_name)
    read.note = quoted(whole_name.Mid(bar + 1).view()) +
                " is no revision word, so the bar before it belongs to the name; latest, latestapproved, approved and "
                "numbers are.";
  return read;
}

template <class Kind>
void add_by_path(Link& link, const ReadPath& read, const Descent& descent, const PathQuestion& question,
                 PathAnswer& answer) {
  if (!wanted(question, Kind::kind) || read.object.IsEmpty() || descent.folders.size() + 1 < read.names.size()) return;
  const int id = Kind::id_from_path(link.db(), read.object);
  auto object = id == 0 ? std::nullopt : object_of<Kind>(link, id, question.as_user);
  if (!object) return;
  object->locations.push_back(location_in(link, descent.folders[read.names.size() - 2].id, object->name));
  answer.found.push_back(std::move(*object));
}

/// Says which name is the first that is not there.
[[noreturn]] void fail_on_path(const PathQuestion& question, const ReadPath& read, const Descent& descent) {
  const std::string what = "cannot find " + quoted(question.path);
  const std::size_t depth = descent.folders.size();
  const std::string holder = depth == 0 ? "the root" : shown(descent.folders[depth - 1]);
  std::string advice = read.note;
  if (depth == read.names.size())
    throw Problem{what, "there is a folder at this path, but no " + kinds_text(question), advice};
  if (descent.hidden)
    throw Problem{what,
                  shown(*descent.hidden) + " in " + holder + " is hidden, and paths lead through no hidden folder",
                  "A folder is hidden when its VFLG in CSNODE is not null; spc tree --all shows it."};
  const bool is_last = depth + 1 == read.names.size();
  const std::string name = quoted((is_last && depth > 0 ? read.object_name : read.names[depth]).view());
  if (!is_last) throw Problem{what, "there is no folder " + name + " in " + holder, advice};
  if (depth == 0) {
    advice = "A monitor or profile needs the folder that holds it before its name: /FOLDER/NAME.";
    throw Problem{what, "there is no folder " + name + " in " + holder, advice};
  }
  throw Problem{what, holder + " holds no " + kinds_text(question) + " " + name, advice};
}

PathAnswer find_by_path(Link& link, const PathQuestion& question) {
  const ReadPath read = read_path(question.path);
  if (read.names.empty() && wanted(question, ObjectKind::folder)) return find_by_id(link, 0, question);
  if (read.names.empty())
    throw Problem{"cannot find " + quoted(question.path), "it is the root, and no " + kinds_text(question), ""};
  const Descent descent = descend(link, read.names);
  PathAnswer answer{{}, read.revision, read.note};
  if (wanted(question, ObjectKind::folder) && descent.folders.size() == read.names.size()) {
    const auto& folder = descent.folders.back();
    answer.found.push_back({ObjectKind::folder, folder.id, folder.name, {location_in(link, folder.id, {})}});
  }
  add_by_path<Monitors>(link, read, descent, question, answer);
  add_by_path<Profiles>(link, read, descent, question, answer);
  if (answer.found.empty()) fail_on_path(question, read, descent);
  return answer;
}

}  // namespace

const char* word_of(ObjectKind kind) {
  switch (kind) {
    case ObjectKind::monitor:
      return "monitor";
    case ObjectKind::profile:
      return "profile";
    case ObjectKind::folder:
      break;
  }
  return "folder";
}

std::string asked_revision_text(int revision) {
  if (revision == 0) return "latest";
  return revision == latest_approved_revision ? "latest approved" : std::to_string(revision);
}

PathAnswer find_objects(Link& link, const PathQuestion& question) {
  if (trimmed(question.path).empty()) throw Problem{"cannot find a path", "it is empty", "The root is /.", exit_misuse};
  const int id = plain_number(trimmed(question.path));
  return doing("cannot find " + quoted(question.path),
               [&] { return id >= 0 ? find_by_id(link, id, question) : find_by_path(link, question); });
}

}  // namespace spc
